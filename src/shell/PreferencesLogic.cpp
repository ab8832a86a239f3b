#include "shell/PreferencesLogic.h"

#include "shell/AppFolder.h"
#include "shell/AppState.h"

namespace tarvex {

PreferencesLogic::PreferencesLogic(AppState& state, Controls controls, IDesktop& desktop)
    : state_(state), c_(controls), desktop_(desktop) {}

void PreferencesLogic::InitPreferences() {
    c_.chkPrintCover.SetValue(state_.Prefs.PrintPatientCover ? 1 : 0);
    c_.chkCallTVX.SetValue(state_.Prefs.PrintCallTVX ? 1 : 0);
    c_.chkShowTips.SetValue(state_.Prefs.ShowTips ? 1 : 0);
}

void PreferencesLogic::SavePreferences() {
    state_.Prefs.PrintPatientCover = c_.chkPrintCover.Value() > 0;
    state_.Prefs.PrintCallTVX = c_.chkCallTVX.Value() > 0;
    state_.Prefs.ShowTips = c_.chkShowTips.Value() > 0;
}

bool PreferencesLogic::cmdOKCancel(const QString& tag) {
    if (tag == QLatin1String("OK"))
        SavePreferences();
    return tag == QLatin1String("OK") || tag == QLatin1String("Cancel");
}

bool PreferencesLogic::cmdEditCoverSheet() {
    return desktop_.OpenDocument(AppPathAndFName(state_, QStringLiteral("Cover.Txt")));
}

} // namespace tarvex
