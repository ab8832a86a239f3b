#pragma once

#include "exercise/SelectionPanes.h"
#include "exercise/SelectionWorkspace.h"

#include <QImage>
#include <QWidget>
#include <array>

class QMimeData;
class QScrollBar;

namespace tarvex {

// The lower pane: the program's 20 slots, four rows of five, on a surface that scrolls
// by pixels. One widget draws them all.
class SlotPaneWidget : public QWidget {
    Q_OBJECT
public:
    static constexpr double kScale = 1.5;

    explicit SlotPaneWidget(QWidget* parent = nullptr);
    void SetLogic(SelectionWorkspace* logic) { logic_ = logic; }
    QScrollBar* VScroll2() const { return scroll_; }

    PictureLoad ShowSlot(int slot, const QString& iconPath, const QString& caption, bool blue);
    void ClearSlot(int slot);
    void SetSlotCaption(int slot, const QString& caption);
    QString SlotCaption(int slot) const { return slots_.at(static_cast<size_t>(slot)).text; }
    bool SlotHasPicture(int slot) const {
        return !slots_.at(static_cast<size_t>(slot)).image.isNull();
    }
    void MarkSlot(int slot);
    int SurfaceTop() const { return surfaceTop_; }
    void SetSurfaceTop(int top);
    // Height in design pixels of the viewport; grows when the upper pane folds away.
    void SetViewportHeight(int designHeight);

    int SlotAt(QPoint widgetPos, bool picturesOnly) const;
    // What a drop at a point of the pane does; true when it landed on a slot.
    bool DropAt(QPoint widgetPos, const QMimeData* data);
    QRect SlotPictureRect(int slot) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Slot {
        QImage image;
        QString text;
        bool blue = false;
    };
    QRectF CaptionRect(int slot) const;

    std::array<Slot, 20> slots_;
    QScrollBar* scroll_;
    SelectionWorkspace* logic_ = nullptr;
    int surfaceTop_ = -2;
    int marked_ = -1;
    int pressed_ = -1;
};

} // namespace tarvex
