#pragma once

#include <QImage>
#include <QSize>

class QImageReader;

namespace tarvex {

// Reads a picture at no more than the size it is drawn at, in device pixels, keeping its
// shape: a photo of many megapixels is decoded straight at that size (JPEG scales while it
// decodes), so it shows and prints with bounded memory instead of failing against the
// image allocation limit. A picture smaller than the bound is read as it is, never
// enlarged; an empty bound reads it whole. A null image when it cannot be read; the
// reader then holds the error.
QImage ReadPictureAtMost(QImageReader& reader, QSize bound);

} // namespace tarvex
