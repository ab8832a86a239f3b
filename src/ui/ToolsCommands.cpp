#include "ui/ToolsCommands.h"

#include "ui/LibraryWindow.h"
#include "ui/MainWindow.h"
#include "ui/OpenOnce.h"
#include "ui/PicklistEditorDialog.h"
#include "ui/ProtocolWindows.h"
#include "ui/WorkspaceWindow.h"

#include "support/Fault.h"

#include <QPointer>
#include <memory>

namespace tarvex {

void RegisterProtocolCommands(MainWindow& window, AppState& state) {
    auto open = std::make_shared<QPointer<QWidget>>();
    window.SetMenuCommand(QStringLiteral("mnuProtocolEditor"), [&window, &state, open] {
        OpenOnce(window, *open, [&] {
            if (!window.Workspace())
                throw Fault(QStringLiteral("The selection workspace is not loaded yet."));
            return new ProtocolEditorDialog(state, window.ShellLogic(), window.Prompts(),
                                            *window.Workspace(), &window);
        });
    });
}

void RegisterPicklistCommands(MainWindow& window, AppState& state) {
    auto open = std::make_shared<QPointer<QWidget>>();
    window.SetMenuCommand(QStringLiteral("mnuEditPicklist"), [&window, &state, open] {
        OpenOnce(window, *open, [&] { return new PicklistEditorDialog(state, &window); });
    });
}

void RegisterLibraryCommands(MainWindow& window, AppState& state) {
    auto open = std::make_shared<QPointer<QWidget>>();
    window.SetMenuCommand(QStringLiteral("mnuLibrary"), [&window, &state, open] {
        OpenOnce(window, *open, [&]() -> QWidget* {
            auto library = std::make_unique<LibraryWindow>(
                state, window.ShellLogic(), window.Prompts(),
                [&window] { window.ReopenDatabasesAndReloadWorkspace(); }, &window);
            library->Open();
            return library.release();
        });
    });
}

} // namespace tarvex
