#include "ui/ProductPicture.h"

#include <QPainter>
#include <QPainterPath>

namespace tarvex {

QPixmap ProductPicture(int size) {
    QPixmap picture(size, size);
    picture.fill(Qt::transparent);
    QPainter p(&picture);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size / 100.0, size / 100.0);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0x1d, 0x3f, 0x6e));
    p.drawRoundedRect(QRectF(2, 2, 96, 96), 18, 18);

    // The figure: head, trunk leaning forward, front knee bent, back leg long.
    QPen limb(QColor(0xf4, 0xf7, 0xfb), 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    p.setPen(limb);
    p.setBrush(Qt::NoBrush);
    QPainterPath body;
    body.moveTo(47, 32);
    body.lineTo(44, 56); // trunk
    body.moveTo(44, 56);
    body.lineTo(60, 64);
    body.lineTo(62, 82); // front leg
    body.moveTo(44, 56);
    body.lineTo(30, 70);
    body.lineTo(18, 82); // back leg
    body.moveTo(46, 38);
    body.lineTo(62, 44);
    body.lineTo(74, 38); // arm reaching forward
    p.drawPath(body);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0xf4, 0xf7, 0xfb));
    p.drawEllipse(QPointF(50, 22), 7.5, 7.5);

    // The band, from the front foot to the hand, in the accent colour.
    p.setPen(QPen(QColor(0xf2, 0xa1, 0x3b), 3, Qt::SolidLine, Qt::RoundCap));
    p.setBrush(Qt::NoBrush);
    QPainterPath band;
    band.moveTo(66, 84);
    band.quadTo(82, 62, 76, 38);
    p.drawPath(band);
    // The floor.
    p.setPen(QPen(QColor(0x9f, 0xb7, 0xd6), 3, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(12, 87), QPointF(88, 87));
    return picture;
}

} // namespace tarvex
