#pragma once

#include "support/Progress.h"

#include <QPointer>
#include <QWidget>

class QProgressBar;

namespace tarvex {

// frmProgress: a small tool window with one bar, shown without modality. Its load centres
// it on the screen.
class ProgressWindow : public QWidget {
    Q_OBJECT
public:
    explicit ProgressWindow(QWidget* parent = nullptr);

    QProgressBar* ProgressBar1 = nullptr;
};

// The progress window for the logic: loads the window on first use and deletes it on
// unload, so that every use starts from a fresh window.
class QtProgressWindow : public IProgressWindow {
public:
    explicit QtProgressWindow(QWidget* parent = nullptr) : parent_(parent) {}
    ~QtProgressWindow() override;

    void SetCaption(const QString& caption) override;
    QString Caption() const override;
    void Show() override;
    void SetMax(int max) override;
    int Max() const override;
    void SetValue(int value) override;
    int Value() const override;
    void Unload() override;

    // The window while it is loaded; null otherwise.
    ProgressWindow* Window() const { return window_; }

private:
    ProgressWindow* Load();

    QPointer<QWidget> parent_;
    QPointer<ProgressWindow> window_;
};

} // namespace tarvex
