#pragma once

#include <QString>
#include <memory>
#include <optional>

class QSettings;

namespace tarvex {

// The per-user store of text values by section and key (application "Tarvex").
class ISettingsStore {
public:
    virtual ~ISettingsStore() = default;
    virtual std::optional<QString> Get(const QString& section, const QString& key) const = 0;
    virtual void Set(const QString& section, const QString& key, const QString& value) = 0;
    // Where the values are kept, for a report that names it: the settings file.
    virtual QString Location() const = 0;
};

// The store kept by QSettings: organisation and application "Tarvex" by default, or an
// INI file at a given path.
class QtSettingsStore : public ISettingsStore {
public:
    QtSettingsStore();
    explicit QtSettingsStore(const QString& iniPath);
    ~QtSettingsStore() override;

    std::optional<QString> Get(const QString& section, const QString& key) const override;
    void Set(const QString& section, const QString& key, const QString& value) override;
    QString Location() const override;
    void Sync();

private:
    std::unique_ptr<QSettings> settings_;
};

} // namespace tarvex
