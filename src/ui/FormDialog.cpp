#include "ui/FormDialog.h"

#include "ui/ScreenFit.h"

#include "ui/Guarded.h"

namespace tarvex {

void FormDialog::EndByButton(int result) {
    endedByButton_ = true;
    done(result);
}

void FormDialog::EnsureUnloaded() {
    if (unloaded_)
        return;
    unloaded_ = true;
    RunGuarded([this] { Unload(); });
}

void FormDialog::done(int result) {
    if (!unloaded_) {
        unloaded_ = true;
        // A fault in the Cancel or the unload is reported; the window still goes, so that
        // it can never be left half closed.
        if (!endedByButton_)
            RunGuarded([this] { CancelByFrame(); });
        RunGuarded([this] { Unload(); });
    }
    QDialog::done(result);
}

void FormDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    // Every dialog lies on the screen, frame and all, once the window manager has framed it.
    KeepOnScreenAfterShow(this);
}

} // namespace tarvex
