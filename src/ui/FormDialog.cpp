#include "ui/FormDialog.h"

#include "ui/ScreenFit.h"

#include "ui/Guarded.h"

namespace tarvex {

FormDialog::FormDialog(QWidget* parent, Qt::WindowFlags flags)
    : QDialog(parent, flags), restoreCommands_(CaptureCommandState()) {}

void FormDialog::EndByButton(int result) {
    endedByButton_ = true;
    done(result);
}

void FormDialog::EnsureUnloaded() {
    if (unloaded_)
        return;
    unloaded_ = true;
    if (!RunGuarded([this] { Unload(); }) && restoreCommands_)
        restoreCommands_();
}

void FormDialog::done(int result) {
    if (!unloaded_) {
        unloaded_ = true;
        // A fault in the Cancel or the unload is reported; the window still goes, so that
        // it can never be left half closed.
        bool whole = endedByButton_ || RunGuarded([this] { CancelByFrame(); });
        whole = RunGuarded([this] { Unload(); }) && whole;
        if (!whole && restoreCommands_)
            restoreCommands_();
    }
    QDialog::done(result);
}

void FormDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // Every dialog lies on the screen, frame and all, once the window manager has framed it.
    KeepOnScreenAfterShow(this);
}

} // namespace tarvex
