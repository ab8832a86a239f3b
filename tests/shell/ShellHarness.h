#pragma once

#include "fakes/FakeControls.h"
#include "shell/AppState.h"
#include "shell/Shell.h"

namespace tarvex::testing {

// The shell's logic over fake controls.
struct ShellHarness {
    explicit ShellHarness(AppState& s)
        : state(s), shell(s, toolbar, menu, status, title, printDialog) {}
    AppState& state;
    fakes::FakeCommands toolbar;
    fakes::FakeCommands menu;
    fakes::FakeStatusBar status;
    fakes::FakeTitle title;
    fakes::FakePrintDialog printDialog;
    Shell shell;

    QStringList ToolbarOn() const { return toolbar.EnabledOf(Shell::ToolbarKeys()); }
    QStringList MenuOn() const { return menu.EnabledOf(Shell::RestrictedMenuKeys()); }
};

} // namespace tarvex::testing
