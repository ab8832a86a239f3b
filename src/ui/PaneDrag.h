#pragma once

#include "exercise/SelectionWorkspace.h"

#include <QMimeData>

namespace tarvex {

// What a drag between the two panes carries: the kind of picture and its index.
inline constexpr const char* kPaneDragMime = "application/x-tarvex-pane-drag";

QMimeData* PaneDragData(DragSource source);
DragSource PaneDragSource(const QMimeData* data);

// Reads a picture file as the panes do: a file that is not there is no error; a file
// that cannot be read as a picture is.
PictureLoad ReadPaneImage(const QString& path, QImage& image);

} // namespace tarvex
