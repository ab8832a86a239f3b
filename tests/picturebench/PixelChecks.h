#pragma once

// Pictures of known pixels and checks on them, for the tests of Picture Bench's edits.

#include <QColor>
#include <QImage>
#include <QPainter>
#include <QString>
#include <cstdlib>
#include <gtest/gtest.h>
#include <ostream>

// Texts in the failure messages as text, not as code units.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace tarvex::testing {

inline const QColor kRed(255, 0, 0);
inline const QColor kGreen(0, 255, 0);
inline const QColor kBlue(0, 0, 255);
inline const QColor kYellow(255, 255, 0);

// A picture of four coloured quarters: red, green above; blue, yellow below.
inline QImage Quadrants(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    const int halfWidth = size.width() / 2;
    const int halfHeight = size.height() / 2;
    QPainter painter(&image);
    painter.fillRect(0, 0, halfWidth, halfHeight, kRed);
    painter.fillRect(halfWidth, 0, size.width() - halfWidth, halfHeight, kGreen);
    painter.fillRect(0, halfHeight, halfWidth, size.height() - halfHeight, kBlue);
    painter.fillRect(halfWidth, halfHeight, size.width() - halfWidth, size.height() - halfHeight,
                     kYellow);
    painter.end();
    return image;
}

// Every channel of the pixel within tolerance of the colour (JPEG and smoothing blur a bit).
inline ::testing::AssertionResult Near(const QImage& image, QPoint at, const QColor& colour,
                                       int tolerance = 40) {
    const QRgb pixel = image.pixel(at);
    if (std::abs(qRed(pixel) - colour.red()) <= tolerance &&
        std::abs(qGreen(pixel) - colour.green()) <= tolerance &&
        std::abs(qBlue(pixel) - colour.blue()) <= tolerance)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << "pixel (" << at.x() << "," << at.y() << ") is " << qRed(pixel) << "," << qGreen(pixel)
           << "," << qBlue(pixel) << ", not " << colour.red() << "," << colour.green() << ","
           << colour.blue();
}

} // namespace tarvex::testing
