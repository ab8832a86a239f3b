#include "ui/PrintPreviewDialog.h"

#include "ui/Guarded.h"

#include "print/PainterSurface.h"
#include "ui/PrinterSurface.h"

#include <QAction>
#include <QApplication>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPrinter>
#include <QScreen>
#include <QScrollBar>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <cmath>

namespace tarvex {

namespace {

// One page picture: draws the image of its page in the logic.
class PagePicture : public QWidget {
public:
    PagePicture(const PreviewLogic& logic, int index, QWidget* parent)
        : QWidget(parent), logic_(logic), index_(index) {
        setObjectName(QStringLiteral("PagePrev%1").arg(index));
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const QImage& image = logic_.Page(index_).Image;
        painter.fillRect(rect(), Qt::white);
        if (!image.isNull())
            painter.drawImage(QPoint(0, 0), image);
    }

private:
    const PreviewLogic& logic_;
    int index_;
};

struct ToolButton {
    const char* key;
    const char* tip;
    QStyle::StandardPixmap icon;
};

const ToolButton kButtons[] = {
    {"Print", "Print", QStyle::SP_DialogSaveButton},
    {"ZoomIn", "Zoom in", QStyle::SP_ArrowUp},
    {"ZoomOut", "Zoom out", QStyle::SP_ArrowDown},
    {"Prev", "Previous page", QStyle::SP_ArrowBack},
    {"Next", "Next page", QStyle::SP_ArrowForward},
    {"OK", "Close the preview", QStyle::SP_DialogOkButton},
};

int KeyCode(int qtKey) {
    switch (qtKey) {
    case Qt::Key_Escape:
        return kKeyEscape;
    case Qt::Key_Left:
        return kKeyLeft;
    case Qt::Key_Up:
        return kKeyUp;
    case Qt::Key_Right:
        return kKeyRight;
    case Qt::Key_Down:
        return kKeyDown;
    default:
        return qtKey & 0xffff;
    }
}

} // namespace

PrintPreviewDialog::PrintPreviewDialog(AppState& state, QPrinter& printer,
                                       std::function<bool()> printDialog, QWidget* parent)
    : FormDialog(parent), printer_(printer), printDialog_(std::move(printDialog)) {
    setObjectName(QStringLiteral("frmPrintPreview"));
    setWindowTitle(QStringLiteral("Print Preview"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);

    Toolbar1 = new QToolBar(this);
    Toolbar1->setObjectName(QStringLiteral("Toolbar1"));
    Toolbar1->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    Toolbar1->setIconSize(QSize(24, 24));
    for (const ToolButton& b : kButtons) {
        const QString key = QLatin1String(b.key);
        QAction* action = Toolbar1->addAction(style()->standardIcon(b.icon), key);
        action->setObjectName(key);
        action->setToolTip(QLatin1String(b.tip));
        connect(action, &QAction::triggered, this, Guarded([this, key] { OnToolbar(key); }));
        buttons_.insert(key, action);
    }
    StatusBar1 = new QStatusBar(this);
    StatusBar1->setObjectName(QStringLiteral("StatusBar1"));
    StatusBar1->setSizeGripEnabled(false);
    PageText = new QLabel(StatusBar1);
    PageText->setObjectName(QStringLiteral("Panel1"));
    StatusBar1->addWidget(PageText, 1);

    OuterFrame = new QFrame(this);
    OuterFrame->setObjectName(QStringLiteral("OuterFrame"));
    OuterFrame->setFrameShape(QFrame::NoFrame);
    OuterFrame->setAutoFillBackground(true);
    QPalette dark = OuterFrame->palette();
    dark.setColor(QPalette::Window, QColor(128, 128, 128));
    OuterFrame->setPalette(dark);
    OuterFrame->setFocusPolicy(Qt::StrongFocus);
    OuterFrame->installEventFilter(this);
    VScroll1 = new QScrollBar(Qt::Vertical, OuterFrame);
    VScroll1->setObjectName(QStringLiteral("VScroll1"));
    HScroll1 = new QScrollBar(Qt::Horizontal, OuterFrame);
    HScroll1->setObjectName(QStringLiteral("HScroll1"));
    PatchPict = new QWidget(OuterFrame);
    PatchPict->setObjectName(QStringLiteral("PatchPict"));
    PatchPict->setAutoFillBackground(true);
    for (QScrollBar* bar : {VScroll1, HScroll1})
        bar->installEventFilter(this);
    connect(VScroll1, &QScrollBar::valueChanged, this, Guarded([this](int value) {
                if (!syncing_)
                    logic_->VScrollChanged(value);
            }));
    connect(VScroll1, &QScrollBar::sliderMoved, this, Guarded([this](int value) {
                if (!syncing_)
                    logic_->VScrollScrolled(value);
            }));
    connect(HScroll1, &QScrollBar::valueChanged, this, Guarded([this](int value) {
                if (!syncing_)
                    logic_->HScrollChanged(value);
            }));
    connect(HScroll1, &QScrollBar::sliderMoved, this, Guarded([this](int value) {
                if (!syncing_)
                    logic_->HScrollScrolled(value);
            }));

    const double twipsPerPixel = 1440.0 / std::max(1, logicalDpiY());
    printerSurface_ = std::make_unique<PrinterSurface>(printer_);
    logic_ = std::make_unique<PreviewLogic>(state, *printerSurface_, twipsPerPixel);
    // The bars fill the room the page area leaves for them, so no page shows beside them.
    logic_->SetScrollBarThickness(PreviewLogic::kScrollBarRoom);
    logic_->Changed = [this] { Sync(); };

    const QSize screenSize = screen() ? screen()->availableGeometry().size() : QSize(1024, 768);
    const QRect form = logic_->Load(static_cast<int>(screenSize.width() * twipsPerPixel),
                                    static_cast<int>(screenSize.height() * twipsPerPixel));
    move(Pixels(form.left()), Pixels(form.top()));
    resize(Pixels(form.width()), Pixels(form.height()));
    Sync();
}

PrintPreviewDialog::~PrintPreviewDialog() {
    logic_->Changed = nullptr;
}

int PrintPreviewDialog::Pixels(double twips) const {
    return static_cast<int>(std::lround(twips / logic_->TwipsPerPixel()));
}

QWidget* PrintPreviewDialog::PageWidget(int index) const {
    if (index < 0 || index >= static_cast<int>(pages_.size()))
        return nullptr;
    return pages_[static_cast<size_t>(index)];
}

void PrintPreviewDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    const int toolbarHeight = Toolbar1->sizeHint().height();
    const int statusHeight = StatusBar1->sizeHint().height();
    Toolbar1->setGeometry(0, 0, width(), toolbarHeight);
    StatusBar1->setGeometry(0, height() - statusHeight, width(), statusHeight);
    // The logic takes the form's size less fixed allowances for the toolbar, the status bar
    // and the borders; give it the size whose page area is the room this window has between
    // its toolbar and status bar.
    const double p = logic_->TwipsPerPixel();
    const int roomWidth = std::max(0, width() - 2 * Pixels(PreviewLogic::kFrameInset));
    const int roomHeight = std::max(0, height() - toolbarHeight - statusHeight);
    logic_->Resize(static_cast<int>(std::lround(roomWidth * p)) + PreviewLogic::kWidthAllowance,
                   static_cast<int>(std::lround(roomHeight * p)) + PreviewLogic::kHeightAllowance);
}

void PrintPreviewDialog::Sync() {
    if (syncing_)
        return;
    syncing_ = true;
    const PreviewLogic& logic = *logic_;
    const int toolbarHeight = Toolbar1->sizeHint().height();
    OuterFrame->setGeometry(Pixels(PreviewLogic::kFrameInset), toolbarHeight,
                            std::max(0, Pixels(logic.FrameWidth())),
                            std::max(0, Pixels(logic.FrameHeight())));
    while (static_cast<int>(pages_.size()) < logic.PageCount()) {
        auto* page = new PagePicture(logic, static_cast<int>(pages_.size()), OuterFrame);
        page->installEventFilter(this);
        page->lower();
        pages_.push_back(page);
    }
    for (int i = 0; i < logic.PageCount(); ++i) {
        const PreviewPage& data = logic.Page(i);
        QWidget* page = pages_[static_cast<size_t>(i)];
        page->setGeometry(Pixels(data.Left), Pixels(data.Top), data.Image.width(),
                          data.Image.height());
        page->setVisible(data.Visible);
        page->update();
    }
    const auto apply = [this](QScrollBar* bar, const PreviewScrollBar& state) {
        bar->setGeometry(Pixels(state.Left), Pixels(state.Top), Pixels(state.Width),
                         Pixels(state.Height));
        bar->setRange(state.Min, std::max(state.Min, state.Max));
        bar->setSingleStep(state.SmallChange);
        bar->setPageStep(state.LargeChange);
        bar->setValue(state.Value);
        bar->setVisible(state.Visible);
        bar->raise();
    };
    apply(VScroll1, logic.VScroll());
    apply(HScroll1, logic.HScroll());
    PatchPict->setGeometry(Pixels(logic.PatchLeft()), Pixels(logic.PatchTop()),
                           Pixels(logic.VScroll().Width), Pixels(logic.HScroll().Height));
    PatchPict->setVisible(logic.PatchVisible());
    PatchPict->raise();
    PageText->setText(logic.PageStatus());
    buttons_.value(QStringLiteral("Prev"))->setEnabled(logic.PrevEnabled());
    buttons_.value(QStringLiteral("Next"))->setEnabled(logic.NextEnabled());
    syncing_ = false;
}

void PrintPreviewDialog::OnToolbar(const QString& key) {
    PreviewAction action = PreviewAction::None;
    if (key.startsWith(QLatin1String("Zoom"))) {
        const BusyCursor busy;
        action = logic_->Toolbar(key);
    } else {
        action = logic_->Toolbar(key);
    }
    if (action == PreviewAction::Print)
        PrintFromPreview();
    else if (action == PreviewAction::Close)
        close();
}

void PrintPreviewDialog::PrintFromPreview() {
    {
        const BusyCursor busy;
        PrinterSurface surface(printer_);
        logic_->PrintFromPreview(surface, printDialog_);
    }
    Sync();
}

bool PrintPreviewDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return FormDialog::eventFilter(watched, event);
    const int code = KeyCode(static_cast<QKeyEvent*>(event)->key());
    PreviewKeyTarget target = PreviewKeyTarget::Page;
    if (watched == VScroll1 || watched == HScroll1)
        target = PreviewKeyTarget::ScrollBar;
    else if (watched == OuterFrame)
        target = PreviewKeyTarget::Frame;
    PreviewAction action = PreviewAction::None;
    RunGuarded([&] { action = logic_->KeyDown(target, code); });
    if (action == PreviewAction::Close) {
        close();
        return true;
    }
    return target == PreviewKeyTarget::Page;
}

} // namespace tarvex
