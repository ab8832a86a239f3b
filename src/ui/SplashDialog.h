#pragma once

#include "shell/Splash.h"

#include <QDialog>
#include <QTimer>

class QLabel;

namespace tarvex {

// frmSplash: product, company and version for three seconds; a key or a click closes it.
class SplashDialog : public QDialog {
    Q_OBJECT
public:
    explicit SplashDialog(QWidget* parent = nullptr);

    QLabel* lblProductName = nullptr;
    QLabel* lblCompanyProduct = nullptr;
    QLabel* lblVersion = nullptr;
    QTimer Timer1;

    // One tick of Timer1: at the third the splash closes.
    void Tick();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    SplashCountdown countdown_;
};

} // namespace tarvex
