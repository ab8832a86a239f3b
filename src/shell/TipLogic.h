#pragma once

#include "support/Controls.h"
#include "support/Desktop.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <functional>

namespace tarvex {

struct AppState;

// The logic of "Tip of the Day": a line of the tip file, chosen at random, at start.
class TipLogic {
public:
    struct Controls {
        ILabel& lblTipText;
        ICheckBox& chkLoadTipsAtStartup;
    };

    // random gives a number from 0 up to but not including 1; by default a generator seeded
    // from the clock at load.
    TipLogic(AppState& state, Controls controls, IDesktop& desktop,
             std::function<double()> random = {});

    // On load: the box ticked, the tips read from "TIPOFDAY.TXT" in the data folder and one
    // shown, or the text that says the file was not found.
    void Load();
    // Reads the file, one tip a line, and shows one; false when the name is empty or there
    // is no such file.
    bool LoadTips(const QString& fileName);
    // Chooses a tip at random and shows it; the same may come twice in a row.
    void DoNextTip();
    // Shows the tip CurrentTip; with no tips nothing changes.
    void DisplayCurrentTip();

    void cmdNextTip() { DoNextTip(); }
    // Opens the tip file in the user's text editor, without waiting; the tips on show stay.
    bool cmdEditTip();
    // Keeps whether tips show at the next start (written at the end of the run); the form
    // unloads.
    void cmdOK();

    QStringList Tips;       // item n is Tips[n - 1]
    int32_t CurrentTip = 0; // numbered from 1

    static const QString kFileName;
    static const QString kNotFoundText;

private:
    AppState& state_;
    Controls c_;
    IDesktop& desktop_;
    std::function<double()> random_;
};

} // namespace tarvex
