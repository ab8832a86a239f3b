#pragma once

#include "support/Controls.h"
#include "support/Desktop.h"

#include <QString>

namespace tarvex {

struct AppState;

// The logic of the "Preferences" dialog. The dialog changes the options in memory only;
// they are written at the end of the run.
class PreferencesLogic {
public:
    struct Controls {
        ICheckBox& chkPrintCover;
        ICheckBox& chkCallTVX;
        ICheckBox& chkShowTips;
    };

    PreferencesLogic(AppState& state, Controls controls, IDesktop& desktop);

    // On load: ticks each box from the options.
    void InitPreferences();
    // Copies the boxes to the options (a box counts as set when its value is above 0).
    void SavePreferences();
    // "OK" saves, "Cancel" does not; both return true: the dialog unloads.
    bool cmdOKCancel(const QString& tag);
    // Opens the cover text in the user's editor; any failure is ignored.
    // False when no program could be asked to open the cover text.
    bool cmdEditCoverSheet();

private:
    AppState& state_;
    Controls c_;
    IDesktop& desktop_;
};

} // namespace tarvex
