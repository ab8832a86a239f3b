#pragma once

#include <QDialog>
#include <functional>

namespace tarvex {

// A dialog of the program. Whatever ends it (one of its buttons, Esc, the frame's close
// box, the window manager) passes through done(), and the form's unload runs there once:
// first its Cancel when no button ended it, then its unload handler. So Esc and the close
// box always do what the form's Cancel does, and the commands it restricted come back.
class FormDialog : public QDialog {
    Q_OBJECT
public:
    explicit FormDialog(QWidget* parent = nullptr, Qt::WindowFlags flags = {});

    void done(int result) override;

    // Where a note for the status line goes (the main window's status bar): what became
    // of a command that the program carries out without a message box.
    std::function<void(const QString&)> StatusNote;

protected:
    void showEvent(QShowEvent* event) override;
    // What Esc or the close box does when no button has ended the form: its "Cancel".
    virtual void CancelByFrame() {}
    // The form's unload handler; runs once, after the button's work or CancelByFrame.
    virtual void Unload() {}
    // Ends the form after one of its buttons has done its work.
    void EndByButton(int result = Accepted);
    // Runs the unload handler now if it has not run (for a form that goes without being
    // closed); Cancel is not run.
    void EnsureUnloaded();

private:
    // The toolbar and menu as they were before the form opened: what a fault in its
    // Cancel or unload gives back, since the unload that would have did not finish.
    std::function<void()> restoreCommands_;
    bool endedByButton_ = false;
    bool unloaded_ = false;
};

} // namespace tarvex
