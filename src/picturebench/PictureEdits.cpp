#include "picturebench/PictureEdits.h"

#include "support/Pictures.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QImageReader>
#include <QImageWriter>
#include <QLineF>
#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <QSaveFile>
#include <QtMath>
#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

namespace tarvex {

namespace {

constexpr int kJpegQuality = 90;
constexpr int kMinCropWidth = 8;
constexpr int kMinCropHeight = 6;
constexpr double kMaxStraighten = 45.0;

QString Native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

// A number that is not finite (from a computation gone wrong) counts as the fallback.
double Finite(double value, double fallback = 0.0) {
    return std::isfinite(value) ? value : fallback;
}

// The picture as RGB32; a picture with transparency is laid on white, as it prints.
QImage AsRgb32(const QImage& image) {
    if (image.isNull() || image.format() == QImage::Format_RGB32)
        return image;
    if (!image.hasAlphaChannel())
        return image.convertToFormat(QImage::Format_RGB32);
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter painter(&flat);
    painter.drawImage(0, 0, image);
    painter.end();
    return flat;
}

// The pixels of one row of an RGB32 picture (the call detaches a shared picture).
std::span<QRgb> Row(QImage& image, int y) {
    return {reinterpret_cast<QRgb*>(image.scanLine(y)), static_cast<size_t>(image.width())};
}

// Each channel of every pixel through the table.
QImage MapChannels(const QImage& image, const std::array<uchar, 256>& table) {
    QImage result = AsRgb32(image);
    for (int y = 0; y < result.height(); ++y)
        for (QRgb& pixel : Row(result, y))
            pixel = qRgb(table[qRed(pixel)], table[qGreen(pixel)], table[qBlue(pixel)]);
    return result;
}

// True when the JPEG data holds its whole picture: its segments and scans run on to the
// end-of-image marker. A file cut short ends inside them, and the decoder would fill what
// is missing with grey without a word. What follows the end marker (some phones add a
// movie or records of their own there) does not matter.
bool JpegIsComplete(std::span<const uchar> data) {
    const size_t size = data.size();
    if (size < 4 || data[0] != 0xFF || data[1] != 0xD8)
        return false;
    size_t pos = 2;
    while (pos < size) {
        if (data[pos] != 0xFF) { // stray bytes between segments, which the decoder skips
            ++pos;
            continue;
        }
        while (pos < size && data[pos] == 0xFF) // fill bytes before a marker
            ++pos;
        if (pos >= size)
            return false;
        const uchar marker = data[pos++];
        if (marker == 0xD9) // end of image
            return true;
        if (marker == 0x00 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
            continue; // markers without a length
        if (pos + 2 > size)
            return false;
        const size_t length = (size_t{data[pos]} << 8) | data[pos + 1];
        if (length < 2 || pos + length > size)
            return false;
        pos += length;
        if (marker != 0xDA)
            continue;
        // A scan's coded data runs to the next marker; 0xFF 0x00 is a coded 0xFF and
        // 0xFF 0xD0..0xD7 are restart markers inside the scan.
        for (; pos + 1 < size; ++pos) {
            if (data[pos] != 0xFF)
                continue;
            const uchar next = data[pos + 1];
            if (next != 0x00 && next != 0xFF && (next < 0xD0 || next > 0xD7))
                break;
        }
        if (pos + 1 >= size)
            return false;
    }
    return false;
}

bool JpegFileIsComplete(QFile& file) {
    const qint64 size = file.size();
    if (uchar* mapped = file.map(0, size)) {
        const bool complete = JpegIsComplete({mapped, static_cast<size_t>(size)});
        file.unmap(mapped);
        return complete;
    }
    const QByteArray bytes = file.readAll();
    return JpegIsComplete(
        {reinterpret_cast<const uchar*>(bytes.constData()), static_cast<size_t>(bytes.size())});
}

QString OpenFailure(const QString& path, const QString& cause) {
    return QStringLiteral("The picture \"%1\" could not be opened: %2").arg(Native(path), cause);
}

QString SaveFailure(const QString& target, const QString& cause) {
    return QStringLiteral("The picture could not be saved as \"%1\": %2")
        .arg(Native(target), cause);
}

// Why a file could not be written, in words: a full disk is said as such, beside the
// system's own text.
QString WriteCause(const QFileDevice& file) {
    if (file.error() == QFileDevice::ResourceError)
        return QStringLiteral("the disk is full (%1).").arg(file.errorString());
    return file.errorString() + u'.';
}

// Writes all the bytes, taking up after a short write: the write after it fails with the
// system's reason (a full disk, a file too large). False when not all were written.
bool WriteWhole(QFileDevice& file, const QByteArray& bytes) {
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 count = file.write(bytes.constData() + written, bytes.size() - written);
        if (count <= 0)
            return false;
        written += count;
    }
    return true;
}

double DefaultMarkWidth(const QImage& image) {
    return std::max(2.0, image.width() / 150.0);
}

void DrawArrow(QPainter& painter, const Mark& mark, double width) {
    const QLineF line(mark.from, mark.to);
    const double length = line.length();
    painter.setPen(QPen(mark.colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (length < 0.5) { // no direction to point in: a dot
        painter.drawPoint(mark.to);
        return;
    }
    // The head is about four line widths long and as wide as long: it reads at any size.
    const double headLength = std::min(length, std::max(10.0, 4.0 * width));
    const QPointF along = (mark.to - mark.from) / length;
    const QPointF across(-along.y(), along.x());
    const QPointF base = mark.to - along * headLength;
    // The shaft ends inside the head, so its round end never shows past the point.
    painter.drawLine(QLineF(mark.from, base + along * std::min(width / 2, headLength / 2)));
    painter.setPen(Qt::NoPen);
    painter.setBrush(mark.colour);
    const double half = headLength * 0.5;
    painter.drawPolygon(QPolygonF({mark.to, base + across * half, base - across * half}));
}

void DrawText(QPainter& painter, const Mark& mark, const QImage& image) {
    if (mark.text.isEmpty())
        return;
    QFont font(QStringLiteral("Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    const int pixelSize = std::max(8, static_cast<int>(std::lround(image.height() / 20.0)));
    font.setPixelSize(pixelSize);
    painter.setFont(font);
    const double padding = pixelSize * 0.25;
    constexpr int kFlags = Qt::AlignLeft | Qt::AlignTop;
    const QRectF text = painter.boundingRect(
        QRectF(mark.from + QPointF(padding, padding), QSizeF(0, 0)), kFlags, mark.text);
    painter.fillRect(text.adjusted(-padding, -padding, padding, padding), Qt::white);
    painter.setPen(mark.colour);
    painter.drawText(text, kFlags, mark.text);
}

} // namespace

OpenedPicture OpenPicture(const QString& path, int maxSide) {
    const auto refused = [&path](const QString& cause) {
        return OpenedPicture{{}, OpenFailure(path, cause)};
    };
    if (path.isEmpty())
        return {{}, QStringLiteral("No picture file was named.")};
    const QFileInfo info(path);
    if (!info.exists())
        return refused(QStringLiteral("there is no such file."));
    if (info.isDir())
        return refused(QStringLiteral("it is a folder, not a picture file."));
    if (info.size() == 0)
        return refused(QStringLiteral("the file is empty."));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return refused(QStringLiteral("the file could not be read (%1).").arg(file.errorString()));
    QImageReader reader(&file);
    reader.setAutoTransform(true); // a photo stands as the camera was held
    if (!reader.canRead())
        return refused(QStringLiteral("the file is not a picture, or not in a format that can be "
                                      "opened (such as JPEG, PNG or BMP)."));
    if (reader.format() == "jpeg") {
        const qint64 start = file.pos();
        if (!JpegFileIsComplete(file))
            return refused(QStringLiteral("the file ends before the picture does (it may have "
                                          "been cut short while it was copied)."));
        file.seek(start);
    }
    // The header alone gives the size: a picture larger than the bound is decoded at the
    // bound (JPEG scales while it decodes), never whole.
    const int bound = std::max(1, maxSide);
    QImage image = ReadPictureAtMost(reader, QSize(bound, bound));
    if (image.isNull())
        return refused(
            QStringLiteral("the picture in it could not be read (%1).").arg(reader.errorString()));
    // A format whose header gave no size was read whole: it is scaled down now.
    if (image.width() > bound || image.height() > bound)
        image = image.scaled(bound, bound, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return {AsRgb32(image), {}};
}

QImage EmptyCanvas() {
    QImage canvas(kPictureWidth, kPictureHeight, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    return canvas;
}

QRect LargestCrop(QSize size) {
    if (size.width() <= 0 || size.height() <= 0)
        return {};
    int width = size.width();
    int height = size.height();
    // Whichever side is short of 4:3 sets the other; rounding keeps the box inside.
    if (qint64{width} * 3 > qint64{height} * 4)
        width = static_cast<int>(std::lround(height * 4.0 / 3.0));
    else
        height = static_cast<int>(std::lround(width * 3.0 / 4.0));
    width = std::clamp(width, 1, size.width());
    height = std::clamp(height, 1, size.height());
    return {(size.width() - width) / 2, (size.height() - height) / 2, width, height};
}

QRect FitCropBox(const QRectF& wanted, QSize image) {
    const QRect largest = LargestCrop(image);
    if (largest.width() < kMinCropWidth || largest.height() < kMinCropHeight)
        return largest; // a picture too small for the smallest box: all of it
    const QRectF box = wanted.normalized();
    double wantedWidth = Finite(box.width());
    if (wantedWidth <= 0) // a box with no width: its height sets it
        wantedWidth = Finite(box.height()) * 4.0 / 3.0;
    const int width = static_cast<int>(std::lround(
        std::clamp(wantedWidth, double{kMinCropWidth}, static_cast<double>(largest.width()))));
    const int height = width == largest.width()
                           ? largest.height()
                           : std::clamp(static_cast<int>(std::lround(width * 3.0 / 4.0)),
                                        kMinCropHeight, largest.height());
    const QPointF centre = box.center();
    const double left = std::clamp(Finite(centre.x()) - width / 2.0, 0.0,
                                   static_cast<double>(image.width() - width));
    const double top = std::clamp(Finite(centre.y()) - height / 2.0, 0.0,
                                  static_cast<double>(image.height() - height));
    // Halves round down, as LargestCrop centres: a box about the picture's centre is there.
    return {static_cast<int>(std::ceil(left - 0.5)), static_cast<int>(std::ceil(top - 0.5)), width,
            height};
}

QImage Crop(const QImage& image, const QRect& rect) {
    QImage source = AsRgb32(image);
    const QRect inside = rect.normalized() & source.rect();
    if (inside.isEmpty())
        return source;
    return source.copy(inside);
}

QImage Rotate90(const QImage& image, bool clockwise) {
    // A quarter turn moves the pixels exactly: nothing is resampled.
    return AsRgb32(AsRgb32(image).transformed(QTransform().rotate(clockwise ? 90 : -90)));
}

QImage Flip(const QImage& image, Qt::Orientation orientation) {
    return AsRgb32(image).mirrored(orientation == Qt::Horizontal, orientation == Qt::Vertical);
}

QImage Straighten(const QImage& image, double degrees) {
    QImage source = AsRgb32(image);
    const double angle = std::clamp(Finite(degrees), -kMaxStraighten, kMaxStraighten);
    if (source.isNull() || angle == 0.0)
        return source;
    const double width = source.width();
    const double height = source.height();
    // A centred box of the picture's shape, scaled by s, fits inside the turned picture
    // when its corners lie within both pairs of the turned sides.
    const double radians = qDegreesToRadians(std::abs(angle));
    const double cosine = std::cos(radians);
    const double sine = std::sin(radians);
    const double scale = std::min(width / (width * cosine + height * sine),
                                  height / (width * sine + height * cosine));
    // One pixel in from every side: the turned picture's own edge is blended.
    const double roomWidth = std::floor(width * scale) - 2;
    const double roomHeight = std::floor(height * scale) - 2;
    int resultWidth = std::max(1, static_cast<int>(roomWidth));
    int resultHeight = static_cast<int>(std::lround(resultWidth * height / width));
    if (resultHeight > roomHeight) {
        resultHeight = std::max(1, static_cast<int>(roomHeight));
        resultWidth = static_cast<int>(std::lround(resultHeight * width / height));
    }
    resultWidth = std::max(1, resultWidth);
    resultHeight = std::max(1, resultHeight);
    // Black underneath: an empty corner would show at once rather than pass as white.
    QImage result(resultWidth, resultHeight, QImage::Format_RGB32);
    result.fill(Qt::black);
    QPainter painter(&result);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(resultWidth / 2.0, resultHeight / 2.0);
    painter.rotate(angle);
    painter.translate(-width / 2.0, -height / 2.0);
    painter.drawImage(QPointF(0, 0), source);
    painter.end();
    return result;
}

QImage AdjustBrightnessContrast(const QImage& image, int brightness, int contrast) {
    const int shift = std::clamp(brightness, -100, 100);
    const int stretch = std::clamp(contrast, -100, 100);
    if (shift == 0 && stretch == 0)
        return AsRgb32(image);
    const double factor = stretch >= 0 ? 1.0 + 3.0 * stretch / 100.0 : 1.0 + stretch / 100.0;
    const double offset = shift * 128 / 100.0;
    std::array<uchar, 256> table{};
    for (int value = 0; value < 256; ++value) {
        const double mapped = (value - 127.5) * factor + 127.5 + offset;
        table[static_cast<size_t>(value)] =
            static_cast<uchar>(std::clamp(std::lround(mapped), 0L, 255L));
    }
    return MapChannels(image, table);
}

QImage Greyscale(const QImage& image) {
    QImage result = AsRgb32(image);
    for (int y = 0; y < result.height(); ++y)
        for (QRgb& pixel : Row(result, y)) {
            const int grey = qGray(pixel);
            pixel = qRgb(grey, grey, grey);
        }
    return result;
}

QImage DrawingLook(const QImage& image, int strength) {
    QImage result = AsRgb32(image);
    if (result.isNull())
        return result;
    const int width = result.width();
    const int height = result.height();
    std::vector<uchar> grey(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y) {
        const std::span<QRgb> row = Row(result, y);
        for (int x = 0; x < width; ++x)
            grey[static_cast<size_t>(y) * width + x] = static_cast<uchar>(qGray(row[x]));
    }
    // The grey at a point, the edge pixels repeated beyond the picture: a flat border has
    // no edge.
    const auto at = [&](int x, int y) {
        x = std::clamp(x, 0, width - 1);
        y = std::clamp(y, 0, height - 1);
        return int{grey[static_cast<size_t>(y) * width + x]};
    };
    // Sobel's gradient is 1020 across a hard black and white edge; at strength 50 that is
    // full black (1020 * 50 / 200 = 255).
    const double gain = std::clamp(strength, 1, 100) / 200.0;
    for (int y = 0; y < height; ++y) {
        const std::span<QRgb> row = Row(result, y);
        for (int x = 0; x < width; ++x) {
            const int gx = (at(x + 1, y - 1) + 2 * at(x + 1, y) + at(x + 1, y + 1)) -
                           (at(x - 1, y - 1) + 2 * at(x - 1, y) + at(x - 1, y + 1));
            const int gy = (at(x - 1, y + 1) + 2 * at(x, y + 1) + at(x + 1, y + 1)) -
                           (at(x - 1, y - 1) + 2 * at(x, y - 1) + at(x + 1, y - 1));
            const double darkness = std::hypot(gx, gy) * gain;
            const int value = 255 - static_cast<int>(std::min(255.0, std::round(darkness)));
            row[x] = qRgb(value, value, value);
        }
    }
    return result;
}

QImage DrawMark(const QImage& image, const Mark& mark) {
    QImage result = AsRgb32(image).copy(); // the painter never writes into a shared picture
    if (result.isNull())
        return result;
    const double width = mark.width > 0 ? mark.width : DefaultMarkWidth(result);
    QPainter painter(&result);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    switch (mark.kind) {
    case Mark::Kind::Arrow:
        DrawArrow(painter, mark, width);
        break;
    case Mark::Kind::Line:
        painter.setPen(QPen(mark.colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawLine(QLineF(mark.from, mark.to));
        break;
    case Mark::Kind::Text:
        DrawText(painter, mark, result);
        break;
    }
    painter.end();
    return result;
}

QImage ToPictureSize(const QImage& image) {
    QImage source = AsRgb32(image);
    if (source.size() == QSize(kPictureWidth, kPictureHeight))
        return source;
    QImage canvas = EmptyCanvas();
    if (source.isNull())
        return canvas;
    const QImage scaled =
        source.scaled(kPictureWidth, kPictureHeight, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&canvas);
    painter.drawImage((kPictureWidth - scaled.width()) / 2, (kPictureHeight - scaled.height()) / 2,
                      scaled);
    painter.end();
    return canvas;
}

QString SavePicture(const QImage& image, const QString& target) {
    if (target.isEmpty())
        return QStringLiteral("No file was named to save the picture in.");
    if (image.isNull())
        return SaveFailure(target, QStringLiteral("there is no picture to save."));
    const QFileInfo info(target);
    const QString folder = info.absolutePath();
    if (info.isDir())
        return SaveFailure(target, QStringLiteral("that is a folder."));
    if (!QFileInfo(folder).isDir())
        return SaveFailure(target,
                           QStringLiteral("the folder \"%1\" does not exist.").arg(Native(folder)));
    // The JPEG is made in memory first, so that its writing to the disk can be checked to
    // the last byte: a short write (a disk that fills up) is an error, never a cut file.
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QImageWriter writer(&buffer, "jpeg");
        writer.setQuality(kJpegQuality);
        if (!writer.write(ToPictureSize(image)))
            return SaveFailure(target, QStringLiteral("the picture could not be made a JPEG (%1).")
                                           .arg(writer.errorString()));
    }
    // Written to a temporary file beside the target and renamed over it at the end: a
    // failure on the way leaves the old file as it was and no piece of the new one.
    QSaveFile file(target);
    if (!file.open(QIODevice::WriteOnly)) {
        if (!QFileInfo(folder).isWritable())
            return SaveFailure(
                target,
                QStringLiteral("the folder \"%1\" may not be written in.").arg(Native(folder)));
        return SaveFailure(target, WriteCause(file));
    }
    if (!WriteWhole(file, bytes)) {
        const QString cause = file.error() != QFileDevice::NoError
                                  ? WriteCause(file)
                                  : QStringLiteral("the file could not be written whole (the "
                                                   "disk may be full).");
        file.cancelWriting();
        return SaveFailure(target, cause);
    }
    if (!file.commit())
        return SaveFailure(target, WriteCause(file));
    return {};
}

} // namespace tarvex
