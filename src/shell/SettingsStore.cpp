#include "shell/SettingsStore.h"

#include "shell/PrivateFiles.h"

#include <QDir>
#include <QSettings>

namespace tarvex {

QtSettingsStore::QtSettingsStore()
    : settings_(std::make_unique<QSettings>(QStringLiteral("Tarvex"), QStringLiteral("Tarvex"))) {}

QtSettingsStore::QtSettingsStore(const QString& iniPath)
    : settings_(std::make_unique<QSettings>(iniPath, QSettings::IniFormat)) {}

QtSettingsStore::~QtSettingsStore() {
    Sync();
}

std::optional<QString> QtSettingsStore::Get(const QString& section, const QString& key) const {
    const QVariant value = settings_->value(section + u'/' + key);
    if (!value.isValid())
        return std::nullopt;
    // A list (a value with commas in an INI file) reads back as its text.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

void QtSettingsStore::Set(const QString& section, const QString& key, const QString& value) {
    settings_->setValue(section + u'/' + key, value);
}

QString QtSettingsStore::Location() const {
    return QDir::toNativeSeparators(settings_->fileName());
}

void QtSettingsStore::Sync() {
    settings_->sync();
    // The settings name the clinic's clinician; they are the user's alone.
    MakeFilePrivate(settings_->fileName());
}

} // namespace tarvex
