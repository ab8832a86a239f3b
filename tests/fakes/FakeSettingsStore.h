#pragma once

#include "shell/SettingsStore.h"

#include <QMap>
#include <QStringList>

namespace tarvex::fakes {

// A settings store in memory that remembers the order of the writes.
class FakeSettingsStore : public ISettingsStore {
public:
    std::optional<QString> Get(const QString& section, const QString& key) const override {
        const QString full = section + u'/' + key;
        if (!values.contains(full))
            return std::nullopt;
        return values.value(full);
    }
    void Set(const QString& section, const QString& key, const QString& value) override {
        values[section + u'/' + key] = value;
        writes << key;
    }
    QString Location() const override { return QStringLiteral("/home/clinic/.config/Tarvex.conf"); }
    QMap<QString, QString> values;
    QStringList writes;
};

} // namespace tarvex::fakes
