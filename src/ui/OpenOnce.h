#pragma once

#include "ui/MainWindow.h"

#include <QPointer>
#include <QWidget>

namespace tarvex {

// Shows the window that is open already, or makes one with make and shows it placed.
template <typename Make> QWidget* OpenOnce(MainWindow& window, QPointer<QWidget>& open, Make make) {
    if (open) {
        open->raise();
        open->activateWindow();
        return open;
    }
    QWidget* dialog = make();
    open = dialog;
    window.PlaceDialog(dialog);
    dialog->show();
    return dialog;
}

} // namespace tarvex
