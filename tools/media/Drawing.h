// What a picture shows, after the scene is seen from the viewer's place: flat shapes in
// picture centimetres (x right, y up) with their depth, the floor line and the arrows.
#pragma once

#include <QColor>
#include <QPointF>
#include <QRectF>
#include <QVector>
#include <optional>
#include <vector>

namespace tarvex::media {

namespace ink {
inline const QColor kFigure(0x1a, 0x1a, 0x1a);
inline const QColor kSkin(Qt::white);
inline const QColor kFarSkin(0xd4, 0xd4, 0xd4);
inline const QColor kHair(0x8c, 0x8c, 0x8c);
inline const QColor kProp(0x4a, 0x4a, 0x4a);
inline const QColor kPropFill(0xb4, 0xb4, 0xb4);
inline const QColor kLargePropFill(0xd2, 0xd2, 0xd2);
inline const QColor kFloor(0x55, 0x55, 0x55);
inline const QColor kArrow(Qt::black);
} // namespace ink

struct Shape {
    enum class Kind {
        Tube,    // rounded segments through the points, radius per segment
        Polygon, // closed, corners rounded by radii[0]
        Disc,    // centre points[0], radius radii[0]
        Head,    // a Disc with hair and face
        Line,    // an open line of half width radii[0] (a band, a towel)
    };
    Kind kind = Kind::Tube;
    QVector<QPointF> points;
    QVector<double> radii;
    QColor fill = ink::kSkin;
    QColor line = ink::kFigure;
    bool prop = false; // thinner outline
    double depth = 0;
    int rank = 0; // order among shapes of about the same depth
    // Head only: the direction of the back of the head, the eyes and the tip of the nose
    // when the face is seen from the side.
    QPointF hair;
    QVector<QPointF> eyes;
    std::optional<QPointF> nose;
    // Lines drawn over the shape: edges of a box's top, a door's panels.
    QVector<QVector<QPointF>> details;

    QRectF Bounds() const;
};

struct Drawing {
    std::vector<Shape> props; // painted first, in their order
    std::vector<Shape> body;  // painted from far to near (see SortByDepth)
    std::optional<double> floor;
    QVector<QVector<QPointF>> arrows;

    void SortByDepth();
    QRectF Bounds() const;
};

// The convex hull of points, counter-clockwise.
QVector<QPointF> ConvexHull(QVector<QPointF> points);

} // namespace tarvex::media
