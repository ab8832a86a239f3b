#pragma once

#include <QColor>
#include <QIcon>

namespace tarvex {

// The icons of Picture Bench that no standard icon fits, drawn in code so that they are
// sharp at every size the toolbar and the menus ask for.
enum class ToolIcon {
    Undo,
    Redo,
    Crop,
    ApplyCrop,
    StopTool,
    RotateLeft,
    RotateRight,
    FlipHorizontal,
    FlipVertical,
    Straighten,
    BrightnessContrast,
    Greyscale,
    DrawingLook,
    Arrow,
    Line,
    Text,
    ZoomIn,
    ZoomOut,
    ZoomFit,
    ZoomActual,
};

QIcon MakeToolIcon(ToolIcon icon);

// The save icon with a pencil over its corner: save under a name of one's own.
QIcon MakeSaveAsIcon(const QIcon& save);

// A swatch of the colour marks are drawn in.
QIcon MakeColourIcon(const QColor& colour);

// A line of the width marks are drawn with: 1 thin, 2 medium, 3 thick.
QIcon MakeWidthIcon(int weight);

} // namespace tarvex
