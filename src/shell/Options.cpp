#include "shell/Options.h"

#include "media/MediaDrives.h"
#include "shell/AppFolder.h"
#include "shell/AppState.h"
#include "shell/SettingsStore.h"
#include "support/Booleans.h"
#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

namespace tarvex {

namespace {

const QString kSection = QStringLiteral("Options");

QString Sep() {
    return QString(QDir::separator());
}

QString TextOption(const ISettingsStore& store, const char* key, const QString& fallback) {
    return store.Get(kSection, QLatin1String(key)).value_or(fallback);
}

bool BoolOption(const ISettingsStore& store, const char* key, bool fallback) {
    const auto value = store.Get(kSection, QLatin1String(key));
    if (!value)
        return fallback;
    return AtPlace(QStringLiteral("the settings file %1, section [%2], key \"%3\", value \"%4\"")
                       .arg(store.Location(), kSection, QLatin1String(key), value->left(40)),
                   [&] { return CBool(*value); });
}

// The site number: set by the clinic's administrator in section "Site", never written
// by the program. A value that is no number of up to 8 digits counts as 0.
int32_t ReadSiteNumber(const ISettingsStore& store) {
    const QString text =
        store.Get(QStringLiteral("Site"), QStringLiteral("SiteNumber")).value_or(QString());
    bool ok = false;
    const qlonglong number = text.trimmed().toLongLong(&ok);
    return ok && number >= 0 && number <= 99999999 ? static_cast<int32_t>(number) : 0;
}

} // namespace

EngineChoice ReadEngineChoice(const ISettingsStore& store) {
    const QString section = QStringLiteral("Database");
    const auto value = [&](const char* key) {
        return store.Get(section, QLatin1String(key)).value_or(QString()).trimmed();
    };
    const auto wrong = [&](const QString& what) {
        return Fault(QStringLiteral("The settings file %1, section [%2]: %3")
                         .arg(store.Location(), section, what));
    };
    EngineChoice choice;
    const QString engine = value("Engine");
    if (engine.isEmpty() || engine.compare(QLatin1String("SQLite"), Qt::CaseInsensitive) == 0)
        return choice;
    if (engine.compare(QLatin1String("PostgreSQL"), Qt::CaseInsensitive) != 0)
        throw wrong(QStringLiteral("the engine \"%1\" is none this program knows; write "
                                   "\"SQLite\" or \"PostgreSQL\".")
                        .arg(engine.left(40)));
    if (store.Get(section, QStringLiteral("Password")))
        throw wrong(QStringLiteral("a password does not belong in the settings. Remove the key "
                                   "\"Password\" and keep the password in the file ~/.pgpass "
                                   "(or in the service file)."));
    choice.Engine = DatabaseEngine::Postgres;
    choice.Server.Service = value("Service");
    choice.Server.Host = value("Host");
    choice.Server.Database = value("Name");
    choice.Server.User = value("User");
    if (const QString port = value("Port"); !port.isEmpty()) {
        bool ok = false;
        choice.Server.Port = port.toInt(&ok);
        if (!ok || choice.Server.Port < 1 || choice.Server.Port > 65535)
            throw wrong(QStringLiteral("the port \"%1\" is no port number.").arg(port.left(40)));
    }
    return choice;
}

QString DefaultCDRomDrive(const AppState& state) {
    return QDir::toNativeSeparators(QDir::cleanPath(state.DeliveredFolder));
}

void LoadOptions(AppState& state, const ISettingsStore& store) {
    // A folder path is kept whole; anything else names a drive, of which the first two
    // characters count ("D:").
    state.CDRomDrive = DriveRoot(TextOption(store, "CDRom Drive", DefaultCDRomDrive(state)));
    const QString sep = Sep();
    state.Media.Icon =
        TextOption(store, "Icon",
                   QDir::toNativeSeparators(state.AppFolder) + sep + QStringLiteral("ICON") + sep);
    state.Media.Movie =
        TextOption(store, "Movie", state.CDRomDrive + sep + QStringLiteral("MOVIE") + sep);
    state.Media.Picture =
        TextOption(store, "Picture", state.CDRomDrive + sep + QStringLiteral("PICTURE") + sep);
    state.Prefs.PrintPatientCover = BoolOption(store, "PrintPatientCover", true);
    state.Prefs.PrintCallTVX = BoolOption(store, "PrintCallTVX", false);
    state.Prefs.ShowTips = BoolOption(store, "ShowTips", true);
    state.Prefs.Provider = TextOption(store, "Provider", QString());
    state.Print.BaseFontSize = 10;
    state.SiteNumber = ReadSiteNumber(store);
    state.Dbs.Choice = ReadEngineChoice(store);
}

void SaveOptions(const AppState& state, ISettingsStore& store) {
    store.Set(kSection, QStringLiteral("Movie"), state.Media.Movie);
    store.Set(kSection, QStringLiteral("Icon"), state.Media.Icon);
    store.Set(kSection, QStringLiteral("Picture"), state.Media.Picture);
    store.Set(kSection, QStringLiteral("PrintPatientCover"),
              BoolText(state.Prefs.PrintPatientCover));
    store.Set(kSection, QStringLiteral("PrintCallTVX"), BoolText(state.Prefs.PrintCallTVX));
    store.Set(kSection, QStringLiteral("ShowTips"), BoolText(state.Prefs.ShowTips));
    store.Set(kSection, QStringLiteral("Provider"), state.Prefs.Provider);
}

QString LoadCoverText(const AppState& state) {
    QFile file(AppPathAndFName(state, QStringLiteral("cover.txt")));
    if (!file.exists() || !file.open(QIODevice::ReadOnly))
        return QString();
    // The cover sheet holds a page of text; a file beyond a megabyte is read no further.
    constexpr qint64 kMaxBytes = 1 << 20;
    QTextStream in(file.read(kMaxBytes));
    QString text;
    QString line;
    while (in.readLineInto(&line))
        text += line + QStringLiteral("\r\n");
    return text;
}

} // namespace tarvex
