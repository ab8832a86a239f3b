#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QString>

namespace tarvex {

// The edits of Picture Bench, the companion picture editor: each takes a picture and
// returns a new one, and none keeps any state. Pictures in and out are
// QImage::Format_RGB32; a picture of another format given to an edit is converted first
// (one with transparency is laid on white, as it prints).

// The size of an exercise picture: every picture is saved at this size (4:3).
constexpr int kPictureWidth = 900;
constexpr int kPictureHeight = 675;

// A picture read from a file, or the reason it could not be read (naming the file).
struct OpenedPicture {
    QImage image;
    QString error;
};

// Reads the picture file, turned as the camera's orientation mark says, at no more than
// maxSide pixels on its longer side: a larger picture is scaled while it decodes, so a
// photo of many megapixels is never held whole. A JPEG that ends before its picture does
// (cut short while copying) is refused rather than shown with a grey band.
OpenedPicture OpenPicture(const QString& path, int maxSide = 1800);

// A blank picture of the exercise picture size, white.
QImage EmptyCanvas();

// The largest 4:3 rectangle centred in a picture of the size (the whole picture when it
// is too small to hold one).
QRect LargestCrop(QSize size);

// The crop box a user drags, made fit: 4:3 (within a pixel), wholly inside the picture
// and at least 8x6 pixels. The wanted centre and width are kept where they fit; a box
// too wide is shrunk, and one that reaches past an edge is moved back in.
QRect FitCropBox(const QRectF& wanted, QSize image);

// What lies inside the rectangle (only what is within the picture). A rectangle wholly
// outside the picture crops nothing: the picture is returned as it is.
QImage Crop(const QImage& image, const QRect& rect);

// The picture turned a quarter turn, clockwise or counter-clockwise.
QImage Rotate90(const QImage& image, bool clockwise);

// The picture mirrored: Qt::Horizontal swaps left and right, Qt::Vertical top and bottom.
QImage Flip(const QImage& image, Qt::Orientation orientation);

// The picture turned by a small angle (clockwise for a positive angle, at most 45
// degrees either way) and cut to the largest centred rectangle of its own shape that lies
// wholly inside the turned picture, so that no empty corner shows. The result is smaller
// than the picture and has its shape within a pixel.
QImage Straighten(const QImage& image, double degrees);

// Brightness and contrast, each from -100 to 100 (0 changes nothing). Brightness adds or
// takes up to half the range of a channel (128); contrast stretches the channels away
// from the middle grey (up to four times) or draws them towards it (all the way at -100).
// One table for all three channels, so colours keep their balance.
QImage AdjustBrightnessContrast(const QImage& image, int brightness, int contrast);

// The picture in shades of grey (still RGB32, with red, green and blue equal).
QImage Greyscale(const QImage& image);

// A line-drawing look, so a photo prints well beside the line drawings of the library:
// the edges of the picture dark on white. Strength 1..100 sets how dark the edges are; at
// 50 a hard black and white edge is black. A flat area becomes white.
QImage DrawingLook(const QImage& image, int strength);

// A mark drawn on a picture to show a movement or to label it. Points are in pixels of
// the picture. A width of 0 draws in proportion to the picture (about 1/150 of its width,
// at least 2 pixels).
struct Mark {
    enum class Kind { Arrow, Line, Text };
    Kind kind = Kind::Arrow;
    QPointF from;
    QPointF to;
    QString text;
    QColor colour = Qt::black;
    double width = 0;
};

// The picture with the mark drawn on it, antialiased. An arrow is a line from `from` to
// `to` with a filled head at `to`; a line is a plain line; a text is written in a bold
// sans font (its height about 1/20 of the picture's) on a white box whose top-left corner
// is at `from`, so that it reads over a photo.
QImage DrawMark(const QImage& image, const Mark& mark);

// The picture at the exercise picture size: scaled smoothly to fit, and centred on white
// when it is not 4:3.
QImage ToPictureSize(const QImage& image);

// Saves the picture at the exercise picture size as a JPEG (quality 90) at target,
// replacing a file that is there. The file is written whole or not at all: a failure
// leaves a file that was there as it was. An empty text when it is saved, else what went
// wrong, naming the file.
QString SavePicture(const QImage& image, const QString& target);

} // namespace tarvex
