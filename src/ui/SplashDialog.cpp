#include "ui/SplashDialog.h"

#include <QFrame>
#include <QLabel>
#include <QVBoxLayout>

namespace tarvex {

SplashDialog::SplashDialog(QWidget* parent)
    : QDialog(parent, Qt::SplashScreen | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("frmSplash"));
    setModal(true);
    auto* frame = new QFrame(this);
    frame->setFrameShape(QFrame::Box);
    frame->setLineWidth(2);
    frame->setStyleSheet(QStringLiteral("QFrame { background: #f4f7fb; }"));
    lblProductName = new QLabel(ProductName(), frame);
    lblProductName->setStyleSheet(
        QStringLiteral("font-size: 28pt; font-weight: bold; color: #1d3f6e;"));
    lblCompanyProduct = new QLabel(CompanyName(), frame);
    lblCompanyProduct->setStyleSheet(QStringLiteral("font-size: 14pt; color: #333;"));
    lblVersion = new QLabel(VersionText(), frame);
    auto* note = new QLabel(QStringLiteral("Home exercise programs for physical therapy"), frame);
    auto* inner = new QVBoxLayout(frame);
    inner->setContentsMargins(40, 32, 40, 32);
    inner->setSpacing(10);
    inner->addWidget(lblProductName);
    inner->addWidget(note);
    inner->addStretch();
    inner->addWidget(lblCompanyProduct);
    inner->addWidget(lblVersion);
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(frame);
    setMinimumSize(480, 260);

    Timer1.setInterval(SplashCountdown::kTickMilliseconds);
    connect(&Timer1, &QTimer::timeout, this, &SplashDialog::Tick);
    Timer1.start();
}

void SplashDialog::Tick() {
    if (countdown_.Tick())
        accept();
}

void SplashDialog::keyPressEvent(QKeyEvent*) {
    accept();
}

void SplashDialog::mousePressEvent(QMouseEvent*) {
    accept();
}

} // namespace tarvex
