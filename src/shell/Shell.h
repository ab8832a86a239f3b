#pragma once

#include "shell/CommandModes.h"

#include "support/Controls.h"

#include <QPoint>
#include <QSize>
#include <QString>
#include <QStringList>

namespace tarvex {

struct AppState;

// The window's title.
class IWindowTitle {
public:
    virtual ~IWindowTitle() = default;
    virtual void SetTitle(const QString& title) = 0;
    virtual QString Title() const = 0;
};

// The printer dialog: true when the user pressed Print, false on Cancel.
class IPrintDialog {
public:
    virtual ~IPrintDialog() = default;
    virtual bool Show() = 0;
};

// The logic of the main window: the commands that are available, the status bar and
// the title, through which every other window tells the shell what may be done.
class Shell {
public:
    static inline const QString kReady = QStringLiteral("Status: Ready");
    static inline const QString kTitle = QStringLiteral("TVX Regimenter");

    Shell(AppState& state, ICommands& toolbar, ICommands& menu, IStatusBar& statusBar,
          IWindowTitle& title, IPrintDialog& printDialog);

    // The toolbar's buttons, in order; key and caption are equal.
    static const QStringList& ToolbarKeys();
    // The menu entries whose availability depends on the menu mode.
    static const QStringList& RestrictedMenuKeys();

    void UpdateToolbar(tarvex::ToolbarMode mode);
    void UpdateMenu(tarvex::MenuMode mode);
    void SetStatusBar(const QString& text);
    void SetStatusBarReady() { SetStatusBar(kReady); }
    void UpdateCaption();
    // After the databases were opened again by a maintenance command: no patient, program
    // or name is current, and the toolbar, menus and title say so.
    void ResetAfterReopen();
    // True when the next print may go on: without a dialog when one was to be skipped.
    bool MaybeShowPrintDlg();

    tarvex::ToolbarMode ToolbarMode() const { return toolbarMode_; }
    tarvex::MenuMode MenuMode() const { return menuMode_; }
    const QString& LastStatus() const { return lastStatus_; }
    AppState& State() { return state_; }

private:
    AppState& state_;
    ICommands& toolbar_;
    ICommands& menu_;
    IStatusBar& statusBar_;
    IWindowTitle& title_;
    IPrintDialog& printDialog_;
    tarvex::ToolbarMode toolbarMode_ = ToolbarMode::HelpOnly;
    tarvex::MenuMode menuMode_ = MenuMode::None;
    QString lastStatus_;
};

// Where a form goes when it opens: a child of the main window is centred in the main
// window's client width at top 0; any other form is centred on the screen. Offsets are
// half the difference, truncated.
QPoint CenterForm(QSize form, bool childOfMain, int mainClientWidth, QSize screen);

} // namespace tarvex
