#pragma once

#include "exercise/SelectionWorkspace.h"

#include <QImage>
#include <QMimeData>
#include <QSize>

class QWidget;

namespace tarvex {

// What a drag between the two panes carries: the kind of picture and its index.
inline constexpr const char* kPaneDragMime = "application/x-tarvex-pane-drag";

QMimeData* PaneDragData(DragSource source);
DragSource PaneDragSource(const QMimeData* data);

// Starts the drag of a pane's picture from a widget, showing the picture under the pointer.
void StartPaneDrag(QWidget* from, DragSource source, const QImage& image);

// Reads a picture file as the panes do: a file that is not there is no error; a file
// that cannot be read as a picture is. A large picture is decoded at no more than the
// bound (the cell it is drawn in).
PictureLoad ReadPaneImage(const QString& path, QImage& image, QSize bound = {});

} // namespace tarvex
