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
