#include "ui/ProgressWindow.h"

#include "shell/Shell.h"

#include <QGuiApplication>
#include <QProgressBar>
#include <QScreen>
#include <QVBoxLayout>

namespace tarvex {

namespace {

constexpr int kWidth = 360;
constexpr int kHeight = 56;

} // namespace

ProgressWindow::ProgressWindow(QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint) {
    setObjectName(QStringLiteral("frmProgress"));
    setWindowTitle(QLatin1String(kProgressCaption));
    ProgressBar1 = new QProgressBar(this);
    ProgressBar1->setObjectName(QStringLiteral("ProgressBar1"));
    ProgressBar1->setRange(0, 100);
    ProgressBar1->setValue(0);
    ProgressBar1->setTextVisible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->addWidget(ProgressBar1);
    setFixedSize(kWidth, kHeight);

    // The load handler's CenterForm: the window is no child of the main window's client
    // area, so it goes to the middle of the screen.
    const QScreen* screen = parent ? parent->screen() : QGuiApplication::primaryScreen();
    const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    move(area.topLeft() + CenterForm(size(), false, 0, area.size()));
}

QtProgressWindow::~QtProgressWindow() {
    Unload();
}

ProgressWindow* QtProgressWindow::Load() {
    if (!window_) {
        window_ = new ProgressWindow(parent_);
        window_->setAttribute(Qt::WA_DeleteOnClose);
    }
    return window_;
}

void QtProgressWindow::SetCaption(const QString& caption) {
    Load()->setWindowTitle(caption);
}

QString QtProgressWindow::Caption() const {
    return window_ ? window_->windowTitle() : QString(QLatin1String(kProgressCaption));
}

void QtProgressWindow::Show() {
    Load()->show();
}

void QtProgressWindow::SetMax(int max) {
    Load()->ProgressBar1->setMaximum(max);
}

int QtProgressWindow::Max() const {
    return window_ ? window_->ProgressBar1->maximum() : 100;
}

void QtProgressWindow::SetValue(int value) {
    Load()->ProgressBar1->setValue(value);
}

int QtProgressWindow::Value() const {
    return window_ ? window_->ProgressBar1->value() : 0;
}

void QtProgressWindow::Unload() {
    delete window_.data();
}

} // namespace tarvex
