#include "exercise/MediaPaths.h"
#include "print/PrinterModule.h"
#include "print/RecordingSurface.h"
#include "support/Pictures.h"

#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// Qt refuses to decode a picture whose pixels need more than its allocation limit (128 MB
// in Qt 6.4: a 60-megapixel photo of 9000 by 6750 needs 232 MB). The tests lower the limit
// so that a 12-megapixel photo, quick to make, stands for such a one.
class AllocationLimit {
public:
    explicit AllocationLimit(int megabytes) : before_(QImageReader::allocationLimit()) {
        QImageReader::setAllocationLimit(megabytes);
    }
    ~AllocationLimit() { QImageReader::setAllocationLimit(before_); }

private:
    int before_;
};

// A colour photo of 4000 by 3000 pixels (48 MB once decoded): white, with a dark figure.
QString MakePhoto(const QTemporaryDir& dir, const QString& name) {
    QImage photo(4000, 3000, QImage::Format_RGB888);
    photo.fill(Qt::white);
    QPainter painter(&photo);
    painter.fillRect(1500, 500, 1000, 2000, QColor(20, 40, 160));
    painter.end();
    const QString path = dir.filePath(name);
    QImageWriter writer(path, "jpeg");
    writer.setQuality(40);
    return writer.write(photo) ? path : QString();
}

} // namespace

TEST(LargePicture, ThePlainDecodeFailsAgainstTheLimit) {
    QTemporaryDir dir;
    const QString path = MakePhoto(dir, "385_1.JPG");
    ASSERT_FALSE(path.isEmpty());
    const AllocationLimit limit(24);
    QImageReader reader(path);
    EXPECT_TRUE(reader.read().isNull()) << "the limit did not bite: the test proves nothing";
}

TEST(LargePicture, IsDecodedAtTheSizeItIsDrawnAndKeepsItsShape) {
    QTemporaryDir dir;
    const QString path = MakePhoto(dir, "385_1.JPG");
    ASSERT_FALSE(path.isEmpty());
    const AllocationLimit limit(24);
    QImageReader reader(path);
    const QImage image = ReadPictureAtMost(reader, QSize(1200, 1200));
    ASSERT_FALSE(image.isNull()) << reader.errorString().toStdString();
    EXPECT_EQ(image.size(), QSize(1200, 900));
    // The figure is where it was: the middle is dark, the corner white.
    EXPECT_LT(qGray(image.pixel(600, 450)), 100);
    EXPECT_GT(qGray(image.pixel(20, 20)), 230);
}

TEST(LargePicture, ASmallPictureIsNeverEnlarged) {
    QTemporaryDir dir;
    QImage small(90, 60, QImage::Format_RGB32);
    small.fill(Qt::gray);
    ASSERT_TRUE(small.save(dir.filePath("small.png")));
    QImageReader reader(dir.filePath("small.png"));
    EXPECT_EQ(ReadPictureAtMost(reader, QSize(900, 600)).size(), QSize(90, 60));
}

TEST(LargePicture, PrintsInItsBoxInsteadOfLeavingItBlank) {
    QTemporaryDir dir;
    ASSERT_FALSE(MakePhoto(dir, "385_1.JPG").isEmpty());
    const AllocationLimit limit(24);
    MediaPaths media;
    media.Picture = dir.path() + "/";
    RecordingSurface surface;
    // A box of 2 by 1.5 inches: 1200 by 900 pixels on a 600-dpi printer.
    PrintPicture(surface, media, "385_1.JPG", 100, 200, 2880, 2160);
    const auto pictures = surface.OpsOf(RecordedOp::Kind::Picture);
    ASSERT_EQ(pictures.size(), 1);
    EXPECT_EQ(pictures.first().text, "1200x900");
    EXPECT_EQ(pictures.first().x2, 2880);
    EXPECT_EQ(pictures.first().y2, 2160);
}
