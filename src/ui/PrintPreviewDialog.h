#pragma once

#include "print/PreviewLogic.h"

#include "ui/FormDialog.h"

#include <QHash>
#include <functional>
#include <memory>
#include <vector>

class QAction;
class QFrame;
class QLabel;
class QPrinter;
class QScrollBar;
class QStatusBar;
class QToolBar;

namespace tarvex {

class PainterSurface;

// frmPrintPreview, "Print Preview": the pages of the job in PrintJobKind, drawn by the
// printer's own routines on page pictures. Opened modally; printing from it runs the job
// on the printer.
class PrintPreviewDialog : public FormDialog {
    Q_OBJECT
public:
    // printDialog asks for the printer before a job prints (false: cancelled).
    PrintPreviewDialog(AppState& state, QPrinter& printer, std::function<bool()> printDialog,
                       QWidget* parent = nullptr);
    ~PrintPreviewDialog() override;

    PreviewLogic& Logic() { return *logic_; }
    QAction* Button(const QString& key) const { return buttons_.value(key); }
    // The picture of a page as the window shows it.
    QWidget* PageWidget(int index) const;

    QToolBar* Toolbar1;
    QStatusBar* StatusBar1;
    QLabel* PageText;
    QFrame* OuterFrame;
    QScrollBar* HScroll1;
    QScrollBar* VScroll1;
    QWidget* PatchPict;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void OnToolbar(const QString& key);
    void PrintFromPreview();
    void Sync();
    int Pixels(double twips) const;

    QPrinter& printer_;
    std::function<bool()> printDialog_;
    std::unique_ptr<PainterSurface> printerSurface_;
    std::unique_ptr<PreviewLogic> logic_;
    QHash<QString, QAction*> buttons_;
    std::vector<QWidget*> pages_;
    bool syncing_ = false;
};

} // namespace tarvex
