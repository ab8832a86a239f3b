#include "ui/bench/ToolIcons.h"

#include <QFont>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <algorithm>
#include <array>
#include <functional>

namespace tarvex {

namespace {

// Every icon is drawn on a grid of 24 by 24 units, scaled to the size of each pixmap.
constexpr double kGrid = 24.0;
constexpr std::array<int, 5> kSizes = {16, 20, 24, 32, 48};

const QColor kInk(0x33, 0x3d, 0x47);
const QColor kAccent(0x1e, 0x6f, 0xc8);
const QColor kMark(0xd0, 0x3a, 0x2f);

using Drawing = std::function<void(QPainter&)>;

QIcon Painted(const Drawing& draw) {
    QIcon icon;
    for (const int size : kSizes) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
        painter.scale(size / kGrid, size / kGrid);
        draw(painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QPen Stroke(const QColor& colour, double width = 2.0) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

// A filled arrow head with its point at tip, pointing along direction (in degrees, 0 to
// the right, counter-clockwise as on a dial turned upright).
void Head(QPainter& painter, QPointF tip, double degrees, double size, const QColor& colour) {
    painter.save();
    painter.translate(tip);
    painter.rotate(-degrees);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPolygon(
        QPolygonF({QPointF(0, 0), QPointF(-size, -size * 0.6), QPointF(-size, size * 0.6)}));
    painter.restore();
}

// A three-quarter turn about the centre with its head; clockwise or not.
void Turn(QPainter& painter, bool clockwise) {
    const QRectF circle(5, 5, 14, 14);
    painter.setPen(Stroke(kInk, 2.2));
    painter.setBrush(Qt::NoBrush);
    // Three quarters round, ending at the top with the head, which points the way it turns.
    if (clockwise) {
        painter.drawArc(circle, 0, -270 * 16);
        Head(painter, QPointF(16.5, 5), 0, 6, kAccent);
    } else {
        painter.drawArc(circle, 180 * 16, 270 * 16);
        Head(painter, QPointF(7.5, 5), 180, 6, kAccent);
    }
}

// A curved arrow for undo (back, to the left) or redo.
void Curve(QPainter& painter, bool back) {
    if (!back) {
        painter.translate(kGrid, 0);
        painter.scale(-1, 1);
    }
    QPainterPath path(QPointF(7, 9));
    path.lineTo(14, 9);
    path.cubicTo(QPointF(22, 9), QPointF(22, 20), QPointF(14, 20));
    path.lineTo(9, 20);
    painter.setPen(Stroke(kInk, 2.4));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    Head(painter, QPointF(2, 9), 180, 6.5, kAccent);
}

void Magnifier(QPainter& painter) {
    painter.setPen(Stroke(kInk, 2.2));
    painter.setBrush(QColor(0xe8, 0xf1, 0xfb));
    painter.drawEllipse(QRectF(3, 3, 13, 13));
    painter.setPen(Stroke(kInk, 3.4));
    painter.drawLine(QPointF(14.5, 14.5), QPointF(20.5, 20.5));
}

void DrawCrop(QPainter& painter) {
    painter.setPen(QPen(kInk, 2.4, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawPolyline(QPolygonF({QPointF(7, 2), QPointF(7, 17), QPointF(22, 17)}));
    painter.drawPolyline(QPolygonF({QPointF(2, 7), QPointF(17, 7), QPointF(17, 22)}));
}

void DrawFlip(QPainter& painter, bool vertical) {
    if (vertical) {
        painter.translate(kGrid, 0);
        painter.rotate(90);
    }
    painter.setPen(QPen(kInk, 1.4, Qt::DashLine));
    painter.drawLine(QPointF(12, 2), QPointF(12, 22));
    painter.setPen(Stroke(kInk, 1.6));
    painter.setBrush(kInk);
    painter.drawPolygon(QPolygonF({QPointF(9.5, 5), QPointF(9.5, 19), QPointF(2.5, 19)}));
    painter.setBrush(QColor(0xcf, 0xe2, 0xf7));
    painter.setPen(Stroke(kAccent, 1.6));
    painter.drawPolygon(QPolygonF({QPointF(14.5, 5), QPointF(14.5, 19), QPointF(21.5, 19)}));
}

void DrawStraighten(QPainter& painter) {
    painter.setPen(Stroke(kInk, 2.2));
    painter.drawLine(QPointF(2, 19), QPointF(22, 19));
    painter.setPen(Stroke(kAccent, 2.2));
    painter.drawLine(QPointF(3, 19), QPointF(20, 7));
    painter.setPen(Stroke(kInk, 1.4));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(-5, 11, 16, 16), 0, 36 * 16);
}

void DrawBrightnessContrast(QPainter& painter) {
    painter.setPen(Stroke(kInk, 1.6));
    for (int ray = 0; ray < 8; ++ray) {
        painter.save();
        painter.translate(12, 12);
        painter.rotate(ray * 45.0);
        painter.drawLine(QPointF(0, -8.5), QPointF(0, -11));
        painter.restore();
    }
    const QRectF sun(5, 5, 14, 14);
    painter.setBrush(Qt::white);
    painter.drawEllipse(sun);
    painter.setBrush(kInk);
    painter.setPen(Qt::NoPen);
    painter.drawPie(sun, 90 * 16, 180 * 16);
    painter.setPen(Stroke(kInk, 1.6));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(sun);
}

void DrawGreyscale(QPainter& painter) {
    const std::array<int, 4> shades = {0x22, 0x66, 0xaa, 0xee};
    for (size_t i = 0; i < shades.size(); ++i) {
        const int grey = shades[i];
        painter.fillRect(QRectF(3 + 4.5 * static_cast<double>(i), 4, 4.5, 16),
                         QColor(grey, grey, grey));
    }
    painter.setPen(QPen(kInk, 1.4));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(3, 4, 18, 16));
}

void DrawPencil(QPainter& painter) {
    painter.translate(12, 12);
    painter.rotate(45);
    painter.setPen(Stroke(kInk, 1.4));
    painter.setBrush(QColor(0xf2, 0xb1, 0x3b));
    painter.drawRect(QRectF(-3, -10, 6, 14));
    painter.setBrush(QColor(0xf5, 0xde, 0xb3));
    painter.drawPolygon(QPolygonF({QPointF(-3, 4), QPointF(3, 4), QPointF(0, 10)}));
    painter.setBrush(kInk);
    painter.drawPolygon(QPolygonF({QPointF(-1, 8), QPointF(1, 8), QPointF(0, 10)}));
    painter.setBrush(QColor(0xe0, 0x8a, 0x9a));
    painter.drawRect(QRectF(-3, -12, 6, 2.5));
}

void DrawArrow(QPainter& painter) {
    painter.setPen(Stroke(kMark, 2.6));
    painter.drawLine(QPointF(3.5, 20.5), QPointF(15, 9));
    Head(painter, QPointF(21, 3), 45, 9, kMark);
}

void DrawLine(QPainter& painter) {
    painter.setPen(Stroke(kMark, 2.6));
    painter.drawLine(QPointF(4, 20), QPointF(20, 4));
}

void DrawText(QPainter& painter) {
    QFont font(QStringLiteral("Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    font.setPixelSize(20);
    QPainterPath glyph;
    glyph.addText(0, 0, font, QStringLiteral("A"));
    const QRectF box = glyph.boundingRect();
    painter.translate(12 - box.center().x(), 12 - box.center().y());
    painter.setPen(Qt::NoPen);
    painter.setBrush(kMark);
    painter.drawPath(glyph);
}

void DrawZoomFit(QPainter& painter) {
    painter.setPen(QPen(kInk, 1.4));
    painter.setBrush(QColor(0xe8, 0xf1, 0xfb));
    painter.drawRect(QRectF(6.5, 8, 11, 8));
    painter.setPen(Stroke(kAccent, 2.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF({QPointF(2, 7), QPointF(2, 3), QPointF(6, 3)}));
    painter.drawPolyline(QPolygonF({QPointF(18, 3), QPointF(22, 3), QPointF(22, 7)}));
    painter.drawPolyline(QPolygonF({QPointF(22, 17), QPointF(22, 21), QPointF(18, 21)}));
    painter.drawPolyline(QPolygonF({QPointF(6, 21), QPointF(2, 21), QPointF(2, 17)}));
}

void DrawZoomActual(QPainter& painter) {
    painter.setPen(QPen(kAccent, 1.6));
    painter.setBrush(QColor(0xe8, 0xf1, 0xfb));
    painter.drawRoundedRect(QRectF(1.5, 4.5, 21, 15), 2.5, 2.5);
    QFont font(QStringLiteral("Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    QPainterPath label;
    font.setPixelSize(12);
    label.addText(0, 0, font, QStringLiteral("1:1"));
    const QRectF box = label.boundingRect();
    painter.translate(12 - box.center().x(), 12 - box.center().y());
    painter.setPen(Qt::NoPen);
    painter.setBrush(kInk);
    painter.drawPath(label);
}

void DrawCheck(QPainter& painter) {
    painter.setPen(Stroke(QColor(0x2e, 0x8b, 0x3e), 3.2));
    painter.drawPolyline(QPolygonF({QPointF(4, 12.5), QPointF(10, 18.5), QPointF(20, 5.5)}));
}

void DrawStop(QPainter& painter) {
    painter.setPen(Stroke(kMark, 3.0));
    painter.drawLine(QPointF(6, 6), QPointF(18, 18));
    painter.drawLine(QPointF(18, 6), QPointF(6, 18));
}

Drawing DrawingOf(ToolIcon icon) {
    switch (icon) {
    case ToolIcon::Undo:
        return [](QPainter& p) { Curve(p, true); };
    case ToolIcon::Redo:
        return [](QPainter& p) { Curve(p, false); };
    case ToolIcon::Crop:
        return DrawCrop;
    case ToolIcon::ApplyCrop:
        return DrawCheck;
    case ToolIcon::StopTool:
        return DrawStop;
    case ToolIcon::RotateLeft:
        return [](QPainter& p) { Turn(p, false); };
    case ToolIcon::RotateRight:
        return [](QPainter& p) { Turn(p, true); };
    case ToolIcon::FlipHorizontal:
        return [](QPainter& p) { DrawFlip(p, false); };
    case ToolIcon::FlipVertical:
        return [](QPainter& p) { DrawFlip(p, true); };
    case ToolIcon::Straighten:
        return DrawStraighten;
    case ToolIcon::BrightnessContrast:
        return DrawBrightnessContrast;
    case ToolIcon::Greyscale:
        return DrawGreyscale;
    case ToolIcon::DrawingLook:
        return DrawPencil;
    case ToolIcon::Arrow:
        return DrawArrow;
    case ToolIcon::Line:
        return DrawLine;
    case ToolIcon::Text:
        return DrawText;
    case ToolIcon::ZoomIn:
        return [](QPainter& p) {
            Magnifier(p);
            p.setPen(Stroke(kInk, 1.8));
            p.drawLine(QPointF(6.5, 9.5), QPointF(12.5, 9.5));
            p.drawLine(QPointF(9.5, 6.5), QPointF(9.5, 12.5));
        };
    case ToolIcon::ZoomOut:
        return [](QPainter& p) {
            Magnifier(p);
            p.setPen(Stroke(kInk, 1.8));
            p.drawLine(QPointF(6.5, 9.5), QPointF(12.5, 9.5));
        };
    case ToolIcon::ZoomFit:
        return DrawZoomFit;
    case ToolIcon::ZoomActual:
        return DrawZoomActual;
    }
    return [](QPainter&) {};
}

} // namespace

QIcon MakeToolIcon(ToolIcon icon) {
    return Painted(DrawingOf(icon));
}

QIcon MakeSaveAsIcon(const QIcon& save) {
    QIcon icon;
    for (const int size : kSizes) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.drawPixmap(QRect(0, 0, size, size), save.pixmap(size, size));
        painter.scale(size / kGrid, size / kGrid);
        // A small pencil over the bottom-right corner, as DrawPencil draws a large one.
        painter.translate(7, 7);
        painter.scale(0.62, 0.62);
        DrawPencil(painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QIcon MakeColourIcon(const QColor& colour) {
    return Painted([colour](QPainter& painter) {
        painter.setPen(QPen(kInk, 1.2));
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(3.5, 3.5, 17, 17), 3, 3);
    });
}

QIcon MakeWidthIcon(int weight) {
    constexpr std::array<double, 3> kWidths = {1.5, 3.5, 6.5};
    const double width = kWidths[static_cast<size_t>(std::clamp(weight, 1, 3) - 1)];
    return Painted([width](QPainter& painter) {
        painter.setPen(QPen(kInk, width, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(4, 12), QPointF(20, 12));
    });
}

} // namespace tarvex
