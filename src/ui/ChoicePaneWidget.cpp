#include "ui/ChoicePaneWidget.h"

#include "ui/Guarded.h"

#include "ui/PaneDrag.h"

#include <QDragEnterEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace tarvex {

namespace {
constexpr double S = ChoicePaneWidget::kScale;
}

ChoicePaneWidget::ChoicePaneWidget(QWidget* parent)
    : QWidget(parent), scroll_(new QScrollBar(Qt::Vertical, this)) {
    setObjectName(QStringLiteral("ChoiceOuterFrame"));
    // The design pair: the first cell exists from the start, with its own tops.
    Cell design;
    design.picture = QPoint(static_cast<int>(SelectionPanes::kPictureLeft),
                            static_cast<int>(SelectionPanes::kPictureTop));
    design.caption = QPoint(static_cast<int>(SelectionPanes::kCaptionLeft),
                            static_cast<int>(SelectionPanes::kCaptionTop));
    cells_.push_back(design);
    setAcceptDrops(true);
    setMouseTracking(true);
    // The design's viewport at the least; a bigger window shows more columns and rows.
    setMinimumSize(static_cast<int>(SelectionPanes::kViewportWidth * S) +
                       scroll_->sizeHint().width(),
                   static_cast<int>(SelectionPanes::kViewportHeight * S));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    scroll_->setObjectName(QStringLiteral("VScroll1"));
    scroll_->setRange(0, 0);
    scroll_->setSingleStep(1);
    scroll_->setPageStep(2);
    // A settled value loads the pictures in sight; dragging the thumb only moves the surface.
    connect(scroll_, &QScrollBar::valueChanged, this, [this](int value) {
        if (!logic_)
            return;
        if (scroll_->isSliderDown())
            RunGuarded([&] { logic_->Panes().Scroll1Dragged(value); });
        else
            RunGuarded([&] { logic_->Panes().Scroll1Settled(value); });
    });
    connect(scroll_, &QScrollBar::sliderReleased, this, [this] {
        if (logic_)
            RunGuarded([&] { logic_->Panes().Scroll1Settled(scroll_->value()); });
    });
}

void ChoicePaneWidget::resizeEvent(QResizeEvent*) {
    scroll_->setGeometry(width() - scroll_->sizeHint().width(), 0, scroll_->sizeHint().width(),
                         height());
    if (!logic_)
        return;
    const int columns = SelectionPanes::ColumnsFor((width() - scroll_->sizeHint().width()) / S);
    const int rows = SelectionPanes::RowsFor(height() / S);
    RunGuarded([&] { logic_->Panes().SetGrid(columns, rows); });
}

int ChoicePaneWidget::Columns() const {
    return logic_ ? logic_->Panes().Columns() : SelectionPanes::kColumns;
}

void ChoicePaneWidget::CreateCell(int index) {
    if (index >= CellCount())
        cells_.resize(static_cast<size_t>(index) + 1);
}

void ChoicePaneWidget::PlaceCell(int index, QPoint picture, QPoint caption) {
    CreateCell(index);
    cells_[static_cast<size_t>(index)].picture = picture;
    cells_[static_cast<size_t>(index)].caption = caption;
}

void ChoicePaneWidget::ShowCell(int index, bool visible) {
    cells_.at(static_cast<size_t>(index)).visible = visible;
    update();
}

PictureLoad ChoicePaneWidget::LoadCellPicture(int index, const QString& path) {
    Cell& cell = cells_.at(static_cast<size_t>(index));
    const QSize box(static_cast<int>(SelectionPanes::kPictureWidth * S),
                    static_cast<int>(SelectionPanes::kPictureHeight * S));
    QImage image;
    const PictureLoad result = ReadPaneImage(path, image, box * devicePixelRatio());
    cell.image = image.isNull() ? QImage()
                                : image.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    update();
    return result;
}

void ChoicePaneWidget::SetCellCaption(int index, const QString& text, bool blue) {
    Cell& cell = cells_.at(static_cast<size_t>(index));
    cell.text = text;
    cell.blue = blue;
    update();
}

void ChoicePaneWidget::SetSurfaceTop(int top) {
    surfaceTop_ = top;
    update();
}

void ChoicePaneWidget::SetScrollMax(int maximum) {
    scroll_->setMaximum(maximum); // pulls the value down, and the surface follows
}

int ChoicePaneWidget::ScrollValue() const {
    return scroll_->value();
}

void ChoicePaneWidget::HideSelectedRect() {
    marked_ = -1;
    update();
}

void ChoicePaneWidget::MarkPicture(int index) {
    marked_ = index;
    update();
}

QRect ChoicePaneWidget::PictureRect(int index) const {
    const Cell& cell = cells_.at(static_cast<size_t>(index));
    return QRect(static_cast<int>(cell.picture.x() * S),
                 static_cast<int>((cell.picture.y() + surfaceTop_) * S),
                 static_cast<int>(SelectionPanes::kPictureWidth * S),
                 static_cast<int>(SelectionPanes::kPictureHeight * S));
}

QRectF ChoicePaneWidget::CaptionRect(int index) const {
    const Cell& cell = cells_.at(static_cast<size_t>(index));
    return QRectF(cell.caption.x() * S, (cell.caption.y() + surfaceTop_) * S,
                  SelectionPanes::kCaptionWidth * S, SelectionPanes::kCaptionHeight * S);
}

int ChoicePaneWidget::CellAt(QPoint pos, bool picturesOnly) const {
    // Only the rows near the point can hold it.
    const double designY = pos.y() / S - surfaceTop_;
    const int row = static_cast<int>(designY / 76.0);
    for (int r = std::max(0, row - 1); r <= row + 1; ++r) {
        for (int c = 0; c < Columns(); ++c) {
            const int i = r * Columns() + c;
            if (i >= CellCount() || !cells_[static_cast<size_t>(i)].visible)
                continue;
            if (PictureRect(i).contains(pos) || (!picturesOnly && CaptionRect(i).contains(pos)))
                return i;
        }
    }
    return -1;
}

void ChoicePaneWidget::paintEvent(QPaintEvent*) {
    QPainter p(this);
    const int viewWidth = width() - scroll_->width();
    p.fillRect(QRect(0, 0, viewWidth, height()), Qt::white);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    QFont font = p.font();
    font.setPointSizeF(8.5);
    p.setFont(font);
    const int firstRow = std::max(0, static_cast<int>(-surfaceTop_ / 76.0) - 1);
    const int lastRow = firstRow + static_cast<int>(height() / S / 76.0) + 3;
    for (int i = firstRow * Columns(); i < std::min(CellCount(), (lastRow + 1) * Columns()); ++i) {
        const Cell& cell = cells_[static_cast<size_t>(i)];
        if (!cell.visible)
            continue;
        const QRect box = PictureRect(i);
        p.setPen(QColor(0xc8, 0xc8, 0xc8));
        p.drawRect(box.adjusted(0, 0, -1, -1));
        if (!cell.image.isNull()) {
            const QRect target(box.x() + (box.width() - cell.image.width()) / 2,
                               box.y() + (box.height() - cell.image.height()) / 2,
                               cell.image.width(), cell.image.height());
            p.drawImage(target, cell.image);
        }
        p.setPen(cell.blue ? QColor(0, 0, 0xff) : Qt::black);
        p.drawText(CaptionRect(i), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, cell.text);
    }
    if (marked_ >= 0 && marked_ < CellCount()) {
        p.setPen(QPen(QColor(0xd0, 0, 0), 2));
        p.drawRect(PictureRect(marked_).adjusted(-2, -2, 1, 1));
    }
}

void ChoicePaneWidget::mousePressEvent(QMouseEvent* event) {
    pressed_ = -1;
    if (!logic_ || event->button() != Qt::LeftButton)
        return;
    const int i = CellAt(event->position().toPoint(), true);
    if (i < 0)
        return;
    pressed_ = i;
    RunGuarded([&] { logic_->SrcPress(i); });
}

void ChoicePaneWidget::mouseMoveEvent(QMouseEvent* event) {
    if (!logic_)
        return;
    if ((event->buttons() & Qt::LeftButton) && pressed_ >= 0) {
        // The drag begins with the first move of a pressed picture.
        const int source = pressed_;
        pressed_ = -1;
        StartPaneDrag(this, {DragKind::SrcIm, source}, cells_[static_cast<size_t>(source)].image);
        return;
    }
    const int i = CellAt(event->position().toPoint(), false);
    if (i >= 0)
        RunGuarded([&] { logic_->PointerOverSource(i); });
    else
        RunGuarded([&] { logic_->PointerOverOther(); });
}

void ChoicePaneWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const int i = CellAt(event->position().toPoint(), true);
    if (logic_ && i >= 0)
        RunGuarded([&] { logic_->SrcDblClick(i); });
}

void ChoicePaneWidget::dragEnterEvent(QDragEnterEvent* event) {
    if (PaneDragSource(event->mimeData()).kind != DragKind::Other)
        event->acceptProposedAction();
}

void ChoicePaneWidget::DropAt(const QMimeData* data) {
    if (logic_)
        RunGuarded([&] { logic_->DeleteTarget(PaneDragSource(data)); });
}

void ChoicePaneWidget::dropEvent(QDropEvent* event) {
    DropAt(event->mimeData());
    event->acceptProposedAction();
}

void ChoicePaneWidget::wheelEvent(QWheelEvent* event) {
    const int steps = event->angleDelta().y() / 120;
    if (steps != 0)
        scroll_->setValue(scroll_->value() - steps);
}

} // namespace tarvex
