#include "picturebench/PictureEdits.h"
#include "picturebench/PixelChecks.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <array>
#include <cmath>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

using namespace tarvex;
using namespace tarvex::testing;

// Rectangles in the failure messages as numbers, not as bytes.
inline void PrintTo(const QSize& size, std::ostream* out) {
    *out << size.width() << "x" << size.height();
}
inline void PrintTo(const QRect& rect, std::ostream* out) {
    *out << "QRect(" << rect.x() << ", " << rect.y() << ", " << rect.width() << "x" << rect.height()
         << ")";
}

namespace {

QImage Filled(QSize size, const QColor& colour) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

bool IsDark(QRgb pixel) {
    return qGray(pixel) < 100;
}

// The rectangle is 4:3 within a pixel.
::testing::AssertionResult FourByThree(QSize size) {
    if (std::abs(size.height() - size.width() * 0.75) <= 1.0)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << size.width() << "x" << size.height() << " is not 4:3";
}

// The smallest channel of any pixel: how dark the darkest spot is.
int DarkestChannel(const QImage& image) {
    int darkest = 255;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            darkest = std::min({darkest, qRed(pixel), qGreen(pixel), qBlue(pixel)});
        }
    return darkest;
}

int DarkInColumn(const QImage& image, int x) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        count += IsDark(image.pixel(x, y)) ? 1 : 0;
    return count;
}

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void WriteAll(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray JpegBytes(const QImage& image, int quality = 90) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "JPEG", quality));
    return bytes;
}

// The JPEG with a camera's orientation mark (EXIF orientation 6: the stored picture is to
// be turned a quarter clockwise to stand as it was taken) put in after its start marker.
QByteArray WithOrientationSix(QByteArray jpeg) {
    static const char kExif[] = "\xFF\xE1\x00\x22"                   // APP1, 34 bytes
                                "Exif\0\0"                           // EXIF header
                                "MM\0\x2A\0\0\0\x08"                 // big-endian TIFF, IFD at 8
                                "\0\x01"                             // one entry
                                "\x01\x12\0\x03\0\0\0\x01\0\x06\0\0" // Orientation, SHORT, 6
                                "\0\0\0\0";                          // no next IFD
    jpeg.insert(2, QByteArray(kExif, sizeof(kExif) - 1));
    return jpeg;
}

QStringList FilesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

} // namespace

// --- The crop box ---

TEST(PictureEdits, TheLargestCropIsFourByThreeCentredAndAsLargeAsFits) {
    EXPECT_EQ(LargestCrop({900, 675}), QRect(0, 0, 900, 675));
    EXPECT_EQ(LargestCrop({1000, 700}), QRect(33, 0, 933, 700));
    EXPECT_EQ(LargestCrop({600, 800}), QRect(0, 175, 600, 450));
    EXPECT_EQ(LargestCrop({4032, 3024}), QRect(0, 0, 4032, 3024));
    for (const QSize size : {QSize(1000, 700), QSize(600, 800), QSize(3024, 4032),
                             QSize(1920, 1080), QSize(1081, 1920), QSize(50, 50), QSize(17, 13)}) {
        const QRect crop = LargestCrop(size);
        SCOPED_TRACE(::testing::Message() << size.width() << "x" << size.height());
        EXPECT_TRUE(QRect(QPoint(0, 0), size).contains(crop));
        EXPECT_TRUE(FourByThree(crop.size()));
        // One pair of sides touches the picture's: nothing larger would fit.
        EXPECT_TRUE(crop.width() == size.width() || crop.height() == size.height());
        // Centred: the margins on either side differ by a pixel at most.
        EXPECT_LE(std::abs(crop.left() - (size.width() - crop.right() - 1)), 1);
        EXPECT_LE(std::abs(crop.top() - (size.height() - crop.bottom() - 1)), 1);
    }
    EXPECT_TRUE(LargestCrop({0, 10}).isEmpty());
}

TEST(PictureEdits, TheCropBoxKeepsItsCentreAndWidthWhereTheyFit) {
    // 400 wide, centred at (300, 225): made 4:3 about the same centre.
    EXPECT_EQ(FitCropBox(QRectF(100, 100, 400, 250), {1000, 700}), QRect(100, 75, 400, 300));
    // Dragged from the other corner, the same box.
    EXPECT_EQ(FitCropBox(QRectF(500, 350, -400, -250), {1000, 700}), QRect(100, 75, 400, 300));
    // Too wide: the largest box there is, about the wanted centre...
    EXPECT_EQ(FitCropBox(QRectF(-500, -100, 2000, 900), {1000, 700}), LargestCrop({1000, 700}));
    // ...or as near it as the picture allows (here the centre was at x = 950).
    EXPECT_EQ(FitCropBox(QRectF(-50, 0, 2000, 500), {1000, 700}), QRect(67, 0, 933, 700));
    // Past the bottom right corner: moved back in, its size kept.
    EXPECT_EQ(FitCropBox(QRectF(900, 600, 200, 150), {1000, 700}), QRect(800, 550, 200, 150));
    // Past the top left corner likewise.
    EXPECT_EQ(FitCropBox(QRectF(-100, -100, 200, 150), {1000, 700}), QRect(0, 0, 200, 150));
    // A click without a drag: the smallest box, 8x6, about the point.
    EXPECT_EQ(FitCropBox(QRectF(500, 400, 0, 0), {1000, 700}), QRect(496, 397, 8, 6));
    // Only a height: the width follows from it.
    EXPECT_EQ(FitCropBox(QRectF(100, 100, 0, 300), {1000, 700}), QRect(0, 100, 400, 300));
}

TEST(PictureEdits, AnyDraggedCropBoxIsFourByThreeInsideAndAtLeastEightBySix) {
    QRandomGenerator random(1234);
    for (const QSize size : {QSize(900, 675), QSize(1000, 700), QSize(600, 800), QSize(1350, 1800),
                             QSize(3000, 400), QSize(40, 300), QSize(12, 9)}) {
        for (int i = 0; i < 200; ++i) {
            // A number between low and high.
            const auto between = [&random](double low, double high) {
                return low + random.bounded(high - low);
            };
            const QRectF wanted(between(-200.0, size.width() + 200.0),
                                between(-200.0, size.height() + 200.0),
                                between(-1.5 * size.width(), 1.5 * size.width()),
                                between(-1.5 * size.height(), 1.5 * size.height()));
            const QRect box = FitCropBox(wanted, size);
            SCOPED_TRACE(::testing::Message()
                         << size.width() << "x" << size.height() << " wanted " << wanted.x() << ","
                         << wanted.y() << " " << wanted.width() << "x" << wanted.height());
            ASSERT_TRUE(QRect(QPoint(0, 0), size).contains(box));
            ASSERT_TRUE(FourByThree(box.size()));
            ASSERT_GE(box.width(), 8);
            ASSERT_GE(box.height(), 6);
            // Where the wanted width fits, it is kept.
            const double width = std::abs(wanted.width());
            if (width >= 8 && width <= LargestCrop(size).width()) {
                ASSERT_LE(std::abs(box.width() - width), 0.5);
            }
        }
    }
    // A picture smaller than the smallest box: all of it that is 4:3.
    EXPECT_EQ(FitCropBox(QRectF(0, 0, 100, 100), {6, 5}), LargestCrop({6, 5}));
}

TEST(PictureEdits, ACropOfTheMiddleHasEachQuartersColourInItsCorner) {
    const QImage picture = Quadrants({800, 600});
    const QRect box = FitCropBox(QRectF(200, 150, 400, 300), picture.size());
    ASSERT_EQ(box, QRect(200, 150, 400, 300));
    const QImage cropped = Crop(picture, box);
    ASSERT_EQ(cropped.size(), QSize(400, 300));
    EXPECT_EQ(cropped.format(), QImage::Format_RGB32);
    EXPECT_EQ(cropped.pixelColor(0, 0), kRed);
    EXPECT_EQ(cropped.pixelColor(399, 0), kGreen);
    EXPECT_EQ(cropped.pixelColor(0, 299), kBlue);
    EXPECT_EQ(cropped.pixelColor(399, 299), kYellow);
    // Off-centre: only the top left quarter.
    const QImage corner = Crop(picture, QRect(10, 10, 200, 150));
    EXPECT_EQ(corner.size(), QSize(200, 150));
    EXPECT_EQ(corner.pixelColor(199, 149), kRed);
    // A box reaching past the picture takes what is inside; one wholly outside takes nothing.
    EXPECT_EQ(Crop(picture, QRect(700, 500, 400, 300)).size(), QSize(100, 100));
    EXPECT_EQ(Crop(picture, QRect(900, 700, 40, 30)), picture);
}

// --- Turning and mirroring ---

TEST(PictureEdits, AQuarterTurnClockwiseTakesTheTopLeftPixelToTheTopRight) {
    QImage picture = Filled({40, 30}, Qt::white);
    picture.setPixelColor(0, 0, kRed);
    const QImage right = Rotate90(picture, true);
    ASSERT_EQ(right.size(), QSize(30, 40));
    EXPECT_EQ(right.format(), QImage::Format_RGB32);
    EXPECT_EQ(right.pixelColor(29, 0), kRed);
    EXPECT_EQ(right.pixelColor(0, 0), QColor(Qt::white));
    const QImage left = Rotate90(picture, false);
    ASSERT_EQ(left.size(), QSize(30, 40));
    EXPECT_EQ(left.pixelColor(0, 39), kRed);
    // The pixels move exactly: four quarter turns, or one each way, give the picture back.
    EXPECT_EQ(Rotate90(Rotate90(Rotate90(right, true), true), true), picture);
    EXPECT_EQ(Rotate90(right, false), picture);
}

TEST(PictureEdits, FlippingMirrorsLeftAndRightOrTopAndBottom) {
    QImage picture = Filled({40, 30}, Qt::white);
    picture.setPixelColor(0, 0, kRed);
    const QImage mirrored = Flip(picture, Qt::Horizontal);
    EXPECT_EQ(mirrored.size(), picture.size());
    EXPECT_EQ(mirrored.pixelColor(39, 0), kRed);
    EXPECT_EQ(mirrored.pixelColor(0, 0), QColor(Qt::white));
    const QImage upsideDown = Flip(picture, Qt::Vertical);
    EXPECT_EQ(upsideDown.pixelColor(0, 29), kRed);
    EXPECT_EQ(upsideDown.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(Flip(mirrored, Qt::Horizontal), picture);
    EXPECT_EQ(Flip(upsideDown, Qt::Vertical), picture);
}

// --- Straightening ---

TEST(PictureEdits, StraighteningKeepsTheShapeAndLeavesNoEmptyCorner) {
    for (const QSize size : {QSize(800, 600), QSize(600, 800), QSize(901, 677)}) {
        for (const double degrees : {0.5, 5.0, -12.5, 30.0, 45.0}) {
            SCOPED_TRACE(::testing::Message()
                         << size.width() << "x" << size.height() << " at " << degrees);
            const QImage white = Straighten(Filled(size, Qt::white), degrees);
            EXPECT_EQ(white.format(), QImage::Format_RGB32);
            EXPECT_LT(white.width(), size.width());
            EXPECT_LE(
                std::abs(white.height() - white.width() * double(size.height()) / size.width()),
                1.0);
            // The largest box of the shape that fits the turned picture, less a pixel a side.
            const double radians = std::abs(degrees) * M_PI / 180;
            const double scale = std::min(size.width() / (size.width() * std::cos(radians) +
                                                          size.height() * std::sin(radians)),
                                          size.height() / (size.width() * std::sin(radians) +
                                                           size.height() * std::cos(radians)));
            EXPECT_NEAR(white.width(), size.width() * scale - 2, 2.0);
            EXPECT_GE(DarkestChannel(white), 250);
            // On a coloured picture too every pixel is the picture's own.
            const QImage green = Straighten(Filled(size, QColor(30, 200, 60)), degrees);
            for (const QPoint corner :
                 {QPoint(0, 0), QPoint(green.width() - 1, 0), QPoint(0, green.height() - 1),
                  QPoint(green.width() - 1, green.height() - 1)})
                EXPECT_TRUE(Near(green, corner, QColor(30, 200, 60), 3));
        }
    }
}

TEST(PictureEdits, StraighteningTurnsClockwiseForAPositiveAngle) {
    // A black upright line down the middle leans to the right at the top after a turn
    // clockwise, and to the left after a turn counter-clockwise.
    QImage picture = Filled({400, 300}, Qt::white);
    QPainter painter(&picture);
    painter.fillRect(198, 0, 4, 300, Qt::black);
    painter.end();
    const auto darkestColumn = [](const QImage& image, int y) {
        int best = 0;
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) < qGray(image.pixel(best, y)))
                best = x;
        return best;
    };
    const QImage clockwise = Straighten(picture, 10);
    const int top = darkestColumn(clockwise, 0);
    const int bottom = darkestColumn(clockwise, clockwise.height() - 1);
    // tan(10 degrees) of the height: about 43 pixels apart over 243 rows.
    EXPECT_NEAR(top - bottom, std::tan(10 * M_PI / 180) * (clockwise.height() - 1), 3.0);
    const QImage counter = Straighten(picture, -10);
    EXPECT_LT(darkestColumn(counter, 0), darkestColumn(counter, counter.height() - 1));
}

TEST(PictureEdits, StraighteningByNothingChangesNothingAndMoreThanFortyFiveIsFortyFive) {
    const QImage picture = Quadrants({400, 300});
    EXPECT_EQ(Straighten(picture, 0), picture);
    EXPECT_EQ(Straighten(picture, 60), Straighten(picture, 45));
    EXPECT_EQ(Straighten(picture, -90), Straighten(picture, -45));
}

// --- Tones ---

namespace {

// A picture with every grey from black to white and a few colours.
QImage Tones() {
    QImage image(256, 4, QImage::Format_RGB32);
    for (int x = 0; x < 256; ++x) {
        image.setPixel(x, 0, qRgb(x, x, x));
        image.setPixel(x, 1, qRgb(x, 255 - x, 128));
        image.setPixel(x, 2, qRgb(200, x, 30));
        image.setPixel(x, 3, qRgb(x / 2, x / 3, x));
    }
    return image;
}

} // namespace

TEST(PictureEdits, BrightnessAndContrastOfNothingGiveTheSamePixels) {
    const QImage tones = Tones();
    EXPECT_EQ(AdjustBrightnessContrast(tones, 0, 0), tones);
}

TEST(PictureEdits, BrightnessLightensOrDarkensEveryChannel) {
    const QImage tones = Tones();
    const QImage lighter = AdjustBrightnessContrast(tones, 100, 0);
    const QImage darker = AdjustBrightnessContrast(tones, -100, 0);
    ASSERT_EQ(lighter.size(), tones.size());
    for (int y = 0; y < tones.height(); ++y)
        for (int x = 0; x < tones.width(); ++x) {
            const QRgb was = tones.pixel(x, y);
            for (int (*channel)(QRgb) : std::array<int (*)(QRgb), 3>{qRed, qGreen, qBlue}) {
                ASSERT_EQ(channel(lighter.pixel(x, y)), std::min(255, channel(was) + 128))
                    << x << "," << y;
                ASSERT_EQ(channel(darker.pixel(x, y)), std::max(0, channel(was) - 128))
                    << x << "," << y;
            }
        }
    // A little brightness lifts a mid grey a little.
    EXPECT_EQ(qRed(AdjustBrightnessContrast(tones, 20, 0).pixel(100, 0)), 126);
}

TEST(PictureEdits, ContrastSpreadsTheGreysFromTheMiddleOrDrawsThemIn) {
    const QImage tones = Tones();
    const QImage more = AdjustBrightnessContrast(tones, 0, 50); // two and a half times
    EXPECT_EQ(qRed(more.pixel(100, 0)), 59);                    // 127.5 - 27.5 * 2.5
    EXPECT_EQ(qRed(more.pixel(160, 0)), 209);                   // 127.5 + 32.5 * 2.5
    EXPECT_EQ(qRed(more.pixel(10, 0)), 0);
    EXPECT_EQ(qRed(more.pixel(250, 0)), 255);
    const QImage flat = AdjustBrightnessContrast(tones, 0, -100);
    for (int x = 0; x < 256; ++x)
        ASSERT_EQ(flat.pixel(x, 0), qRgb(128, 128, 128)) << x;
    const QImage less = AdjustBrightnessContrast(tones, 0, -50);
    EXPECT_EQ(qRed(less.pixel(0, 0)), 64);
    EXPECT_EQ(qRed(less.pixel(255, 0)), 191);
}

TEST(PictureEdits, GreyscaleHasRedGreenAndBlueEqualAndKeepsTheLightness) {
    const QImage grey = Greyscale(Tones());
    ASSERT_EQ(grey.format(), QImage::Format_RGB32);
    for (int y = 0; y < grey.height(); ++y)
        for (int x = 0; x < grey.width(); ++x) {
            const QRgb pixel = grey.pixel(x, y);
            ASSERT_EQ(qRed(pixel), qGreen(pixel)) << x << "," << y;
            ASSERT_EQ(qGreen(pixel), qBlue(pixel)) << x << "," << y;
        }
    // Greys stay as they are; pure green is lighter than pure blue.
    EXPECT_EQ(grey.pixel(77, 0), qRgb(77, 77, 77));
    const QImage colours = Greyscale(Quadrants({2, 2}));
    EXPECT_GT(qRed(colours.pixel(1, 0)), qRed(colours.pixel(0, 1)));
}

// --- The drawing look ---

TEST(PictureEdits, TheDrawingLookOfAFlatPictureIsWhite) {
    for (const QColor colour : {QColor(120, 60, 200), QColor(Qt::black), QColor(Qt::white)}) {
        const QImage drawing = DrawingLook(Filled({60, 45}, colour), 100);
        ASSERT_EQ(drawing.size(), QSize(60, 45));
        EXPECT_EQ(drawing, Filled({60, 45}, Qt::white)) << colour.name().toStdString();
    }
}

TEST(PictureEdits, TheDrawingLookOfABlackSquareIsADarkOutline) {
    QImage picture = Filled({100, 80}, Qt::white);
    QPainter painter(&picture);
    painter.fillRect(30, 20, 40, 40, Qt::black);
    painter.end();
    const QImage drawing = DrawingLook(picture, 50);
    // The edges: both sides of each of the square's four sides.
    for (const QPoint edge : {QPoint(29, 40), QPoint(30, 40), QPoint(69, 40), QPoint(70, 40),
                              QPoint(50, 19), QPoint(50, 20), QPoint(50, 59), QPoint(50, 60)})
        EXPECT_LT(qGray(drawing.pixel(edge)), 60) << edge.x() << "," << edge.y();
    // Inside and outside: white.
    for (const QPoint flat : {QPoint(50, 40), QPoint(33, 23), QPoint(5, 5), QPoint(95, 75)})
        EXPECT_EQ(drawing.pixel(flat), qRgb(255, 255, 255)) << flat.x() << "," << flat.y();
    // Grey, and the strength sets how dark an edge is.
    const QRgb edge = drawing.pixel(29, 40);
    EXPECT_TRUE(qRed(edge) == qGreen(edge) && qGreen(edge) == qBlue(edge));
    QImage soft = Filled({100, 80}, Qt::white);
    painter.begin(&soft);
    painter.fillRect(30, 20, 40, 40, QColor(200, 200, 200));
    painter.end();
    const int faint = qGray(DrawingLook(soft, 10).pixel(29, 40));
    const int strong = qGray(DrawingLook(soft, 100).pixel(29, 40));
    EXPECT_GT(faint, strong);
    EXPECT_LT(faint, 255);
    EXPECT_GT(faint, 200);
}

// --- Marks ---

TEST(PictureEdits, AnArrowDarkensItsLineAndItsHeadAndNothingElse) {
    const QImage picture = EmptyCanvas();
    ASSERT_EQ(picture.size(), QSize(kPictureWidth, kPictureHeight));
    Mark arrow;
    arrow.kind = Mark::Kind::Arrow;
    arrow.from = QPointF(100, 300);
    arrow.to = QPointF(800, 300);
    const QImage marked = DrawMark(picture, arrow);
    EXPECT_EQ(marked.format(), QImage::Format_RGB32);
    for (int x = 100; x <= 790; x += 10)
        EXPECT_TRUE(IsDark(marked.pixel(x, 300))) << x;
    // The line is about 900 / 150 = 6 pixels wide.
    EXPECT_TRUE(IsDark(marked.pixel(450, 302)));
    EXPECT_FALSE(IsDark(marked.pixel(450, 306)));
    EXPECT_EQ(DarkInColumn(marked, 450), 6);
    // The head is wider than the line near the point.
    EXPECT_GT(DarkInColumn(marked, 785), 12);
    EXPECT_TRUE(IsDark(marked.pixel(785, 306)));
    // Nothing away from it, nor past the point.
    EXPECT_EQ(marked.pixel(450, 100), qRgb(255, 255, 255));
    EXPECT_EQ(marked.pixel(805, 300), qRgb(255, 255, 255));
    EXPECT_EQ(marked.pixel(90, 300), qRgb(255, 255, 255));
    // The picture given is left as it was.
    EXPECT_EQ(picture, EmptyCanvas());
}

TEST(PictureEdits, ALineHasNoHeadAndAWidthAndColourOfItsOwn) {
    Mark line;
    line.kind = Mark::Kind::Line;
    line.from = QPointF(100, 300);
    line.to = QPointF(800, 300);
    line.width = 20;
    line.colour = kRed;
    const QImage marked = DrawMark(EmptyCanvas(), line);
    EXPECT_TRUE(Near(marked, {450, 300}, kRed, 0));
    EXPECT_TRUE(Near(marked, {780, 308}, kRed, 0));
    EXPECT_TRUE(Near(marked, {450, 315}, Qt::white, 0));
    EXPECT_TRUE(Near(marked, {780, 318}, Qt::white, 0)); // no head
}

TEST(PictureEdits, TextIsWrittenOnAWhiteBoxAtItsPlace) {
    const QImage photo = Filled({kPictureWidth, kPictureHeight}, QColor(60, 110, 160));
    Mark text;
    text.kind = Mark::Kind::Text;
    text.from = QPointF(100, 200);
    text.text = QStringLiteral("Lift slowly");
    const QImage marked = DrawMark(photo, text);
    // The box begins at the point; the text, dark, is within a text's height of it.
    EXPECT_EQ(marked.pixel(101, 201), qRgb(255, 255, 255));
    EXPECT_EQ(marked.pixel(99, 201), photo.pixel(99, 201));
    int dark = 0;
    int rightmost = 0;
    for (int y = 200; y < 200 + 60; ++y)
        for (int x = 100; x < 600; ++x)
            if (IsDark(marked.pixel(x, y))) {
                ++dark;
                rightmost = std::max(rightmost, x);
            }
    EXPECT_GT(dark, 300);
    // Eleven letters of about 34 pixels: some 250 pixels long.
    EXPECT_GT(rightmost, 250);
    EXPECT_LT(rightmost, 550);
    // Away from it the photo is untouched.
    EXPECT_EQ(marked.pixel(100, 400), photo.pixel(100, 400));
    EXPECT_EQ(marked.pixel(700, 200), photo.pixel(700, 200));
}

// --- The picture size and saving ---

TEST(PictureEdits, ThePictureSizeIsNineHundredBySixSeventyFiveCentredOnWhite) {
    const QImage large = ToPictureSize(Quadrants({1800, 1350}));
    ASSERT_EQ(large.size(), QSize(kPictureWidth, kPictureHeight));
    EXPECT_TRUE(Near(large, {10, 10}, kRed, 2));
    EXPECT_TRUE(Near(large, {889, 664}, kYellow, 2));
    const QImage small = ToPictureSize(Quadrants({300, 225}));
    ASSERT_EQ(small.size(), QSize(kPictureWidth, kPictureHeight));
    EXPECT_TRUE(Near(small, {10, 10}, kRed, 2));
    // A wide picture: white bands above and below.
    const QImage wide = ToPictureSize(Filled({1000, 500}, kBlue));
    ASSERT_EQ(wide.size(), QSize(kPictureWidth, kPictureHeight));
    EXPECT_EQ(wide.pixelColor(450, 10), QColor(Qt::white));
    EXPECT_EQ(wide.pixelColor(450, 337), kBlue);
    EXPECT_EQ(wide.pixelColor(450, 664), QColor(Qt::white));
    // A tall one: bands at the sides.
    const QImage tall = ToPictureSize(Filled({300, 600}, kBlue));
    EXPECT_EQ(tall.pixelColor(10, 337), QColor(Qt::white));
    EXPECT_EQ(tall.pixelColor(450, 337), kBlue);
}

TEST(PictureEdits, ASavedPictureIsANineHundredBySixSeventyFiveJpeg) {
    QTemporaryDir dir;
    const QString target = dir.filePath("exercise 12.jpg");
    ASSERT_EQ(SavePicture(Quadrants({1800, 1350}), target), QString());
    QImageReader reader(target);
    EXPECT_EQ(reader.format(), "jpeg");
    const QImage saved = reader.read();
    ASSERT_EQ(saved.size(), QSize(kPictureWidth, kPictureHeight));
    EXPECT_TRUE(Near(saved, {100, 100}, kRed, 20));
    EXPECT_TRUE(Near(saved, {800, 100}, kGreen, 20));
    EXPECT_TRUE(Near(saved, {100, 575}, kBlue, 20));
    EXPECT_TRUE(Near(saved, {800, 575}, kYellow, 20));
    // Saved again over it: replaced, and no other file is left.
    ASSERT_EQ(SavePicture(Filled({400, 300}, kBlue), target), QString());
    EXPECT_TRUE(Near(QImage(target), {450, 337}, kBlue, 20));
    EXPECT_EQ(FilesIn(dir.path()), QStringList({"exercise 12.jpg"}));
}

TEST(PictureEdits, SavingIntoAFolderThatIsNotThereSaysSoAndWritesNothing) {
    QTemporaryDir dir;
    const QString target = dir.filePath("no such folder/1.jpg");
    const QString error = SavePicture(EmptyCanvas(), target);
    EXPECT_TRUE(error.contains(QDir::toNativeSeparators(target))) << error.toStdString();
    EXPECT_TRUE(error.contains("does not exist")) << error.toStdString();
    EXPECT_FALSE(QFile::exists(target));
    EXPECT_TRUE(FilesIn(dir.path()).isEmpty());
}

TEST(PictureEdits, SavingNothingOrOverAFolderIsRefused) {
    QTemporaryDir dir;
    const QString target = dir.filePath("1.jpg");
    EXPECT_TRUE(SavePicture(QImage(), target).contains("no picture"));
    EXPECT_FALSE(QFile::exists(target));
    ASSERT_TRUE(QDir(dir.path()).mkdir("2.jpg"));
    const QString error = SavePicture(EmptyCanvas(), dir.filePath("2.jpg"));
    EXPECT_TRUE(error.contains("folder")) << error.toStdString();
    EXPECT_FALSE(SavePicture(EmptyCanvas(), QString()).isEmpty());
}

TEST(PictureEdits, SavingIntoAReadOnlyFolderSaysSoAndLeavesTheOldFile) {
    QTemporaryDir dir;
    const QString folder = dir.filePath("pictures");
    ASSERT_TRUE(QDir(dir.path()).mkdir("pictures"));
    const QString target = folder + "/3.jpg";
    ASSERT_EQ(SavePicture(Filled({900, 675}, kGreen), target), QString());
    const QByteArray old = ReadAll(target);
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const bool writable = QFileInfo(folder).isWritable();
    const QString error = writable ? QString() : SavePicture(EmptyCanvas(), target);
    QFile::setPermissions(folder,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    if (writable)
        GTEST_SKIP() << "this user may write in any folder (root): the failed write's test "
                        "covers the old file";
    EXPECT_TRUE(error.contains(QDir::toNativeSeparators(target))) << error.toStdString();
    EXPECT_TRUE(error.contains("may not be written")) << error.toStdString();
    EXPECT_EQ(ReadAll(target), old);
    EXPECT_EQ(FilesIn(folder), QStringList({"3.jpg"}));
}

namespace {

// While it lives, no file of this process may grow past the given size: a write beyond
// it fails (EFBIG) as a write to a full disk does, instead of ending the process.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        getrlimit(RLIMIT_FSIZE, &old_);
        oldHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = old_;
        limit.rlim_cur = bytes;
        set_ = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, oldHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    bool IsSet() const { return set_; }

private:
    rlimit old_{};
    void (*oldHandler_)(int) = nullptr;
    bool set_ = false;
};

} // namespace

TEST(PictureEdits, AWriteThatFailsHalfwayLeavesTheOldFileAsItWasAndNoPartOfTheNew) {
    QTemporaryDir dir;
    const QString target = dir.filePath("4.jpg");
    ASSERT_EQ(SavePicture(Filled({900, 675}, kGreen), target), QString());
    const QByteArray old = ReadAll(target);
    ASSERT_LT(old.size(), 20000);
    // A picture of noise makes a JPEG far larger than the limit.
    QImage noise(900, 675, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < noise.height(); ++y)
        for (int x = 0; x < noise.width(); ++x)
            noise.setPixel(x, y, random.generate() | 0xff000000U);
    QString error;
    {
        const FileSizeLimit limit(30000);
        ASSERT_TRUE(limit.IsSet());
        error = SavePicture(noise, target);
    }
    EXPECT_TRUE(error.contains(QDir::toNativeSeparators(target))) << error.toStdString();
    // The system's reason is given (its words depend on the language of the system).
    EXPECT_FALSE(error.contains("Unknown error")) << error.toStdString();
    EXPECT_EQ(ReadAll(target), old);
    EXPECT_EQ(FilesIn(dir.path()), QStringList({"4.jpg"}));
    // Without the limit the same picture saves.
    EXPECT_EQ(SavePicture(noise, target), QString());
    EXPECT_GT(ReadAll(target).size(), 30000);
}

// --- Opening ---

TEST(PictureEdits, OpeningAPictureGivesItAsItIsWhenItIsSmallEnough) {
    QTemporaryDir dir;
    const QString path = dir.filePath("photo.png");
    ASSERT_TRUE(Quadrants({1200, 900}).save(path, "PNG"));
    const OpenedPicture opened = OpenPicture(path);
    EXPECT_EQ(opened.error, QString());
    EXPECT_EQ(opened.image.format(), QImage::Format_RGB32);
    EXPECT_EQ(opened.image, Quadrants({1200, 900}));
    // Transparency is laid on white.
    QImage clear(40, 30, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    ASSERT_TRUE(clear.save(dir.filePath("clear.png"), "PNG"));
    const OpenedPicture white = OpenPicture(dir.filePath("clear.png"));
    EXPECT_EQ(white.image, Filled({40, 30}, Qt::white));
}

TEST(PictureEdits, APictureLargerThanTheBoundIsReadAtTheBound) {
    QTemporaryDir dir;
    const QString path = dir.filePath("camera.jpg");
    {
        // 48 megapixels, in grey so that the test itself holds only 48 MB.
        QImage photo(8000, 6000, QImage::Format_Grayscale8);
        photo.fill(90);
        QPainter painter(&photo);
        painter.fillRect(0, 0, 4000, 3000, QColor(250, 250, 250));
        painter.end();
        ASSERT_TRUE(photo.save(path, "JPEG", 60));
    }
    // Held whole, the picture would pass a limit of 32 MB; decoded at the bound it does not.
    const int oldLimit = QImageReader::allocationLimit();
    QImageReader::setAllocationLimit(32);
    EXPECT_TRUE(QImageReader(path).read().isNull());
    const OpenedPicture opened = OpenPicture(path);
    const OpenedPicture small = OpenPicture(path, 400);
    QImageReader::setAllocationLimit(oldLimit);
    EXPECT_EQ(opened.error, QString());
    ASSERT_EQ(opened.image.size(), QSize(1800, 1350));
    EXPECT_EQ(opened.image.format(), QImage::Format_RGB32);
    EXPECT_TRUE(Near(opened.image, {450, 300}, QColor(250, 250, 250), 8));
    EXPECT_TRUE(Near(opened.image, {1350, 1000}, QColor(90, 90, 90), 8));
    EXPECT_EQ(small.image.size(), QSize(400, 300));
}

TEST(PictureEdits, APhotoTakenWithTheCameraTurnedStandsAsItWasTaken) {
    QTemporaryDir dir;
    // Stored 400x200 with red at its top left; the mark says "turn a quarter clockwise".
    QImage stored = Filled({400, 200}, kBlue);
    QPainter painter(&stored);
    painter.fillRect(0, 0, 100, 100, kRed);
    painter.end();
    const QString path = dir.filePath("turned.jpg");
    WriteAll(path, WithOrientationSix(JpegBytes(stored)));
    ASSERT_EQ(QImageReader(path).size(), QSize(400, 200)); // as stored
    const OpenedPicture opened = OpenPicture(path);
    ASSERT_EQ(opened.error, QString());
    ASSERT_EQ(opened.image.size(), QSize(200, 400));
    EXPECT_TRUE(Near(opened.image, {150, 50}, kRed)); // the top left went to the top right
    EXPECT_TRUE(Near(opened.image, {50, 50}, kBlue));
    EXPECT_TRUE(Near(opened.image, {100, 300}, kBlue));
    // Turned and larger than the bound: the longer side, now upright, is at the bound.
    const OpenedPicture bounded = OpenPicture(path, 100);
    ASSERT_EQ(bounded.image.size(), QSize(50, 100));
    EXPECT_TRUE(Near(bounded.image, {37, 12}, kRed));
}

TEST(PictureEdits, AFileThatIsMissingEmptyOrNoPictureIsNamedInTheError) {
    QTemporaryDir dir;
    const QString missing = dir.filePath("missing.jpg");
    const QString empty = dir.filePath("empty.jpg");
    const QString notes = dir.filePath("notes.jpg");
    WriteAll(empty, {});
    WriteAll(notes, "These are a clinician's notes, not a picture.\n");
    const struct {
        QString path;
        const char* says;
    } cases[] = {{missing, "no such file"},
                 {empty, "empty"},
                 {notes, "not a picture"},
                 {dir.path(), "folder"}};
    for (const auto& c : cases) {
        const OpenedPicture opened = OpenPicture(c.path);
        EXPECT_TRUE(opened.image.isNull()) << c.path.toStdString();
        EXPECT_TRUE(opened.error.contains(QDir::toNativeSeparators(c.path)))
            << opened.error.toStdString();
        EXPECT_TRUE(opened.error.contains(c.says)) << opened.error.toStdString();
    }
    EXPECT_FALSE(OpenPicture(QString()).error.isEmpty());
}

TEST(PictureEdits, AJpegCutShortIsRefusedRatherThanShownWithAGreyBand) {
    QTemporaryDir dir;
    const QByteArray whole = JpegBytes(Quadrants({900, 675}));
    const QString path = dir.filePath("copied.jpg");
    // Qt itself reads the first half without an error, the rest grey: the check is ours.
    WriteAll(path, whole.left(whole.size() / 2));
    ASSERT_FALSE(QImageReader(path).read().isNull());
    for (const qsizetype keep :
         {whole.size() / 2, whole.size() - 2, whole.size() / 10, qsizetype(300), qsizetype(10)}) {
        WriteAll(path, whole.left(keep));
        const OpenedPicture opened = OpenPicture(path);
        EXPECT_TRUE(opened.image.isNull()) << keep;
        EXPECT_TRUE(opened.error.contains(QDir::toNativeSeparators(path)))
            << opened.error.toStdString();
    }
    WriteAll(path, whole.left(whole.size() / 2));
    EXPECT_TRUE(OpenPicture(path).error.contains("cut short"))
        << OpenPicture(path).error.toStdString();
    // The whole file opens, and so does one with more after its end (as some phones write).
    WriteAll(path, whole);
    EXPECT_EQ(OpenPicture(path).error, QString());
    WriteAll(path, whole + QByteArray(5000, 'm'));
    const OpenedPicture trailing = OpenPicture(path);
    EXPECT_EQ(trailing.error, QString());
    EXPECT_TRUE(Near(trailing.image, {800, 600}, kYellow));
}

TEST(PictureEdits, AnEmptyCanvasIsWhiteAtThePictureSize) {
    const QImage canvas = EmptyCanvas();
    EXPECT_EQ(canvas.size(), QSize(900, 675));
    EXPECT_EQ(canvas.format(), QImage::Format_RGB32);
    EXPECT_EQ(DarkestChannel(canvas), 255);
}
