#include "ui/SlotPaneWidget.h"

#include "ui/Guarded.h"

#include "ui/PaneDrag.h"

#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace tarvex {

namespace {
constexpr double S = SlotPaneWidget::kScale;
constexpr double kSlotCaptionHeight = 29;
} // namespace

SlotPaneWidget::SlotPaneWidget(QWidget* parent)
    : QWidget(parent), scroll_(new QScrollBar(Qt::Vertical, this)) {
    setObjectName(QStringLiteral("SelExOuterFrame"));
    setAcceptDrops(true);
    setMouseTracking(true);
    setFocusPolicy(Qt::ClickFocus);
    scroll_->setObjectName(QStringLiteral("VScroll2"));
    scroll_->setRange(SelectionPanes::kScroll2Min, SelectionPanes::kScroll2Max);
    scroll_->setSingleStep(SelectionPanes::kScroll2Small);
    scroll_->setPageStep(SelectionPanes::kScroll2Large);
    scroll_->setValue(SelectionPanes::kScroll2Min);
    connect(scroll_, &QScrollBar::valueChanged, this, [this](int value) { SetSurfaceTop(-value); });
    SetViewportHeight(SelectionPanes::kLowerViewportHeight);
}

void SlotPaneWidget::SetViewportHeight(int designHeight) {
    setFixedSize(static_cast<int>(SelectionPanes::kViewportWidth * S) + scroll_->sizeHint().width(),
                 static_cast<int>(designHeight * S));
}

void SlotPaneWidget::resizeEvent(QResizeEvent*) {
    scroll_->setGeometry(width() - scroll_->sizeHint().width(), 0, scroll_->sizeHint().width(),
                         height());
}

PictureLoad SlotPaneWidget::ShowSlot(int slot, const QString& iconPath, const QString& caption,
                                     bool blue) {
    Slot& s = slots_.at(static_cast<size_t>(slot));
    const QSize box(static_cast<int>(70 * S), static_cast<int>(53 * S));
    QImage image;
    const PictureLoad result = ReadPaneImage(iconPath, image, box * devicePixelRatio());
    s.image = image.isNull() ? QImage()
                             : image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    s.text = caption;
    s.blue = blue;
    update();
    return result;
}

void SlotPaneWidget::ClearSlot(int slot) {
    Slot& s = slots_.at(static_cast<size_t>(slot));
    s.image = QImage();
    s.text.clear(); // the caption's colour stays as it was
    update();
}

void SlotPaneWidget::SetSlotCaption(int slot, const QString& caption) {
    slots_.at(static_cast<size_t>(slot)).text = caption;
    update();
}

void SlotPaneWidget::MarkSlot(int slot) {
    marked_ = slot;
    update();
}

void SlotPaneWidget::SetSurfaceTop(int top) {
    surfaceTop_ = top;
    update();
}

QRect SlotPaneWidget::SlotPictureRect(int slot) const {
    const QPoint p = SelectionPanes::SlotPicturePos(slot);
    return QRect(static_cast<int>((p.x() - 1) * S), static_cast<int>((p.y() + surfaceTop_) * S),
                 static_cast<int>(70 * S), static_cast<int>(53 * S));
}

QRectF SlotPaneWidget::CaptionRect(int slot) const {
    const QPoint p = SelectionPanes::SlotCaptionPos(slot);
    return QRectF((p.x() - 1) * S, (p.y() + surfaceTop_) * S, 77 * S, kSlotCaptionHeight * S);
}

int SlotPaneWidget::SlotAt(QPoint pos, bool picturesOnly) const {
    for (int i = 0; i < 20; ++i) {
        if (SlotPictureRect(i).contains(pos) || (!picturesOnly && CaptionRect(i).contains(pos)))
            return i;
    }
    return -1;
}

void SlotPaneWidget::paintEvent(QPaintEvent*) {
    QPainter p(this);
    const int viewWidth = width() - scroll_->width();
    p.fillRect(QRect(0, 0, viewWidth, height()), QColor(0xf7, 0xf9, 0xfc));
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    QFont font = p.font();
    font.setPointSizeF(8.5);
    p.setFont(font);
    for (int i = 0; i < 20; ++i) {
        const Slot& s = slots_[static_cast<size_t>(i)];
        const QRect box = SlotPictureRect(i);
        p.fillRect(box, Qt::white);
        p.setPen(QColor(0xb4, 0xb4, 0xb4));
        p.drawRect(box.adjusted(0, 0, -1, -1));
        if (!s.image.isNull())
            p.drawImage(QRect(box.x() + (box.width() - s.image.width()) / 2,
                              box.y() + (box.height() - s.image.height()) / 2, s.image.width(),
                              s.image.height()),
                        s.image);
        const QPoint n = SelectionPanes::SlotNumberPos(i);
        p.setPen(QColor(0x60, 0x60, 0x60));
        p.drawText(QPointF((n.x() - 1) * S, (n.y() + surfaceTop_) * S + p.fontMetrics().ascent()),
                   QString::number(i + 1));
        p.setPen(s.blue ? QColor(0, 0, 0xff) : Qt::black);
        p.drawText(CaptionRect(i), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, s.text);
    }
    if (marked_ >= 0 && hasFocus()) {
        p.setPen(QPen(QColor(0xd0, 0, 0), 2));
        p.drawRect(SlotPictureRect(marked_).adjusted(-2, -2, 1, 1));
    }
}

void SlotPaneWidget::mousePressEvent(QMouseEvent* event) {
    pressed_ = -1;
    if (!logic_ || event->button() != Qt::LeftButton)
        return;
    const int i = SlotAt(event->position().toPoint(), true);
    if (i < 0)
        return;
    setFocus(Qt::MouseFocusReason);
    pressed_ = i;
    RunGuarded([&] { logic_->TargetPress(i); });
}

void SlotPaneWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!logic_)
        return;
    if ((event->buttons() & Qt::LeftButton) && pressed_ >= 0) {
        const int source = pressed_;
        pressed_ = -1;
        StartPaneDrag(this, {DragKind::TargetIm, source},
                      slots_[static_cast<size_t>(source)].image);
        return;
    }
    const int i = SlotAt(event->position().toPoint(), false);
    if (i >= 0)
        RunGuarded([&] { logic_->PointerOverTarget(i); });
    else
        RunGuarded([&] { logic_->PointerOverOther(); });
}

void SlotPaneWidget::mouseReleaseEvent(QMouseEvent*) {
    // A press without a move is a drop of the slot on itself.
    if (logic_ && pressed_ >= 0)
        RunGuarded([&] {
            logic_->DropSelectedEx(static_cast<int16_t>(pressed_), {DragKind::TargetIm, pressed_});
        });
    pressed_ = -1;
}

void SlotPaneWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const int i = SlotAt(event->position().toPoint(), true);
    if (logic_ && i >= 0)
        RunGuarded([&] { logic_->TargetDblClick(i); });
}

void SlotPaneWidget::keyPressEvent(QKeyEvent* event) {
    if (logic_ && event->key() == Qt::Key_Delete)
        RunGuarded([&] { logic_->TargetKeyDown(SelectionWorkspace::kDeleteKey); });
    else
        QWidget::keyPressEvent(event);
}

void SlotPaneWidget::focusOutEvent(QFocusEvent* event) {
    if (logic_)
        RunGuarded([&] { logic_->TargetLostFocus(); });
    QWidget::focusOutEvent(event);
}

void SlotPaneWidget::dragEnterEvent(QDragEnterEvent* event) {
    if (PaneDragSource(event->mimeData()).kind != DragKind::Other)
        event->acceptProposedAction();
}

void SlotPaneWidget::dragMoveEvent(QDragMoveEvent* event) {
    const QPoint pos = event->position().toPoint();
    const int caption = SlotAt(pos, false);
    if (logic_ && caption >= 0 && !SlotPictureRect(caption).contains(pos)) {
        const double y = pos.y() / S - (SelectionPanes::SlotCaptionPos(caption).y() + surfaceTop_);
        RunGuarded([&] {
            logic_->DescLabelDragOver(caption, static_cast<int>(y * 15), surfaceTop_);
        }); // in twips
    }
    event->setAccepted(SlotAt(pos, true) >= 0);
}

bool SlotPaneWidget::DropAt(QPoint widgetPos, const QMimeData* data) {
    const int i = SlotAt(widgetPos, true);
    if (!logic_ || i < 0)
        return false;
    RunGuarded([&] { logic_->DropSelectedEx(static_cast<int16_t>(i), PaneDragSource(data)); });
    return true;
}

void SlotPaneWidget::dropEvent(QDropEvent* event) {
    if (DropAt(event->position().toPoint(), event->mimeData()))
        event->acceptProposedAction();
}

} // namespace tarvex
