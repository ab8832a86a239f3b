#pragma once

#include "exercise/SelectionPanes.h"
#include "exercise/SelectionWorkspace.h"

#include <QImage>
#include <QWidget>
#include <vector>

class QMimeData;
class QScrollBar;

namespace tarvex {

// The upper pane: the library's pictures on a surface that scrolls by rows. The cells are
// drawn by this one widget, so a library of 32,767 entries costs no child widgets. Sizes
// are design pixels, drawn at a scale.
class ChoicePaneWidget : public QWidget, public IChoicePaneView {
    Q_OBJECT
public:
    static constexpr double kScale = 1.5;

    explicit ChoicePaneWidget(QWidget* parent = nullptr);
    void SetLogic(SelectionWorkspace* logic) { logic_ = logic; }
    QScrollBar* VScroll1() const { return scroll_; }

    // IChoicePaneView
    int CellCount() const override { return static_cast<int>(cells_.size()); }
    void CreateCell(int index) override;
    void PlaceCell(int index, QPoint picture, QPoint caption) override;
    QPoint PicturePos(int index) const override { return cells_.at(index).picture; }
    QPoint CaptionPos(int index) const override { return cells_.at(index).caption; }
    void ShowCell(int index, bool visible) override;
    PictureLoad LoadCellPicture(int index, const QString& path) override;
    void SetCellCaption(int index, const QString& text, bool blue) override;
    void SetSurfaceHeight(int height) override { surfaceHeight_ = height; }
    void SetSurfaceTop(int top) override;
    int SurfaceTop() const override { return surfaceTop_; }
    void SetScrollMax(int maximum) override;
    int ScrollValue() const override;
    void HideSelectedRect() override;
    void MarkPicture(int index);

    // The cell under a point of the widget, or -1.
    int CellAt(QPoint widgetPos, bool picturesOnly) const;
    QRect PictureRect(int index) const; // in widget coordinates
    // What a drop on the pane does: a slot dragged back to the library is removed.
    void DropAt(const QMimeData* data);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Cell {
        QPoint picture, caption;
        bool visible = false;
        QImage image;
        QString text;
        bool blue = false;
    };
    QRectF CaptionRect(int index) const;
    int Columns() const; // of the grid the logic lays out

    std::vector<Cell> cells_;
    QScrollBar* scroll_;
    SelectionWorkspace* logic_ = nullptr;
    int surfaceHeight_ = 0;
    int surfaceTop_ = 0;
    int marked_ = -1;
    int pressed_ = -1;
};

} // namespace tarvex
