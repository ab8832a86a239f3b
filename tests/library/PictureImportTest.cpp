#include "library/PictureImport.h"

#include "fakes/FakeControls.h"
#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::fakes::FakeStatusBar;

namespace {

// A status bar that keeps every text it was given, in order.
class RecordingStatusBar : public FakeStatusBar {
public:
    void SetPanelText(int panel, const QString& text) override {
        FakeStatusBar::SetPanelText(panel, text);
        texts << text;
    }
    QStringList texts;
};

struct Import {
    Import() : service(status) {}
    QString Path(const QString& name) const { return dir.filePath(name); }
    // A picture of the size with a dark figure on a light ground, saved in the format.
    QString MakePicture(const QString& name, QSize size, const char* format = "JPEG") const {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor(240, 240, 240));
        QPainter painter(&image);
        painter.fillRect(size.width() / 3, size.height() / 4, size.width() / 3, size.height() / 2,
                         Qt::black);
        painter.end();
        const QString path = Path(name);
        EXPECT_TRUE(image.save(path, format)) << name.toStdString();
        return path;
    }
    QStringList Files() const { return QDir(dir.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir dir;
    RecordingStatusBar status;
    PictureImport service;
};

QSize SizeOf(const QString& path) {
    return QImageReader(path).size();
}

} // namespace

TEST(PictureImport, TheIconIsSixtyOneWideWithTheHeightInProportion) {
    Import t;
    t.service.LoadFile(t.MakePicture("1_1.JPG", {900, 675}), 0);
    t.service.ResizeAndSaveFile(t.Path("1.JPG"), 61);
    const QSize icon = SizeOf(t.Path("1.JPG"));
    EXPECT_EQ(icon.width(), 61);
    EXPECT_LE(std::abs(icon.height() - 61.0 * 675 / 900), 1.0) << icon.height();
    EXPECT_EQ(QImageReader(t.Path("1.JPG")).format(), "jpeg");
}

TEST(PictureImport, AnyWidthOfThePictureGivesTheWidthAsked) {
    Import t;
    for (const QSize size : {QSize(40, 30), QSize(61, 61), QSize(3000, 500), QSize(1, 1)}) {
        t.service.LoadFile(t.MakePicture("p.png", size, "PNG"), 0);
        t.service.ResizeAndSaveFile(t.Path("icon.JPG"), 61);
        EXPECT_EQ(SizeOf(t.Path("icon.JPG")).width(), 61) << size.width() << "x" << size.height();
        EXPECT_GE(SizeOf(t.Path("icon.JPG")).height(), 1);
    }
}

TEST(PictureImport, AnIconThatExistsIsReplaced) {
    Import t;
    QFile old(t.Path("7.JPG"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();
    t.service.LoadFile(t.MakePicture("7_1.JPG", {900, 675}), 0);
    t.service.ResizeAndSaveFile(t.Path("7.JPG"), 61);
    EXPECT_EQ(SizeOf(t.Path("7.JPG")).width(), 61);
    EXPECT_LT(QFileInfo(t.Path("7.JPG")).size(), 100000);
    EXPECT_EQ(t.Files(), QStringList({"7.JPG", "7_1.JPG"})); // no temporary file left
}

TEST(PictureImport, TheFlagChangesNothing) {
    Import t;
    const QString picture = t.MakePicture("2_1.JPG", {900, 675});
    t.service.LoadFile(picture, 0);
    const QImage plain = t.service.Picture();
    for (int32_t flag : {1, -1, 0x7fffffff}) {
        t.service.LoadFile(picture, flag);
        EXPECT_EQ(t.service.Picture(), plain) << flag;
    }
}

TEST(PictureImport, TheStatusPanelTellsEachStep) {
    Import t;
    t.service.LoadFile(t.MakePicture("3_1.JPG", {300, 200}), 0);
    t.service.ResizeAndSaveFile(t.Path("3.JPG"), 61);
    EXPECT_EQ(t.status.texts, QStringList({"Loading picture", "Ready", "Resizing picture",
                                           "Saving picture", "Ready"}));
    EXPECT_GE(t.status.refreshes, 3);
}

TEST(PictureImport, BmpAndPngAreReadAsJpegIs) {
    Import t;
    for (const char* format : {"BMP", "PNG", "JPEG"}) {
        t.service.LoadFile(t.MakePicture(QStringLiteral("p.%1").arg(format), {120, 90}, format), 0);
        EXPECT_EQ(t.service.Picture().size(), QSize(120, 90)) << format;
    }
}

TEST(PictureImport, AFileThatIsNoPictureIsAFaultAndNothingIsHeldOrWritten) {
    Import t;
    t.service.LoadFile(t.MakePicture("good.JPG", {100, 75}), 0);
    QFile text(t.Path("notes.JPG"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("These are a clinician's notes, not a picture.\n");
    text.close();
    QFile empty(t.Path("empty.JPG"));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    for (const QString name : {"notes.JPG", "empty.JPG", "missing.JPG"}) {
        try {
            t.service.LoadFile(t.Path(name), 0);
            ADD_FAILURE() << name.toStdString() << " was read";
        } catch (const Fault& fault) {
            EXPECT_TRUE(fault.Message().contains(name)) << fault.Message().toStdString();
        }
        EXPECT_TRUE(t.service.Picture().isNull()) << name.toStdString();
        EXPECT_THROW(t.service.ResizeAndSaveFile(t.Path("icon.JPG"), 61), Fault);
        EXPECT_FALSE(QFile::exists(t.Path("icon.JPG")));
    }
}

TEST(PictureImport, ATruncatedPictureNeitherCrashesNorLeavesHalfAnIcon) {
    Import t;
    const QString whole = t.MakePicture("whole.JPG", {900, 675});
    QFile in(whole);
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    const QByteArray bytes = in.readAll();
    for (const qsizetype keep : {qsizetype(10), bytes.size() / 10, bytes.size() / 2}) {
        QFile cut(t.Path("cut.JPG"));
        ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
        cut.write(bytes.left(keep));
        cut.close();
        QFile::remove(t.Path("icon.JPG"));
        try {
            t.service.LoadFile(t.Path("cut.JPG"), 0);
            t.service.ResizeAndSaveFile(t.Path("icon.JPG"), 61);
            // What the decoder made of it is a whole icon.
            EXPECT_EQ(SizeOf(t.Path("icon.JPG")).width(), 61) << keep;
        } catch (const Fault&) {
            EXPECT_FALSE(QFile::exists(t.Path("icon.JPG"))) << keep;
        }
    }
    EXPECT_FALSE(t.Files().join(' ').contains(".tmp")) << t.Files().join(' ').toStdString();
}

TEST(PictureImport, AHugePhotoIsDecodedSmallAndStillMakesTheIcon) {
    Import t;
    // 108 megapixels in grey: as colour it would pass Qt's allocation limit whole.
    QImage photo(12000, 9000, QImage::Format_Grayscale8);
    photo.fill(200);
    ASSERT_TRUE(photo.save(t.Path("photo.JPG"), "JPEG", 50));
    photo = QImage();
    t.service.LoadFile(t.Path("photo.JPG"), 0);
    EXPECT_LE(t.service.Picture().width(), PictureImport::kLoadBound);
    EXPECT_LE(t.service.Picture().height(), PictureImport::kLoadBound);
    t.service.ResizeAndSaveFile(t.Path("icon.JPG"), 61);
    const QSize icon = SizeOf(t.Path("icon.JPG"));
    EXPECT_EQ(icon.width(), 61);
    EXPECT_LE(std::abs(icon.height() - 61.0 * 9000 / 12000), 1.0) << icon.height();
}

TEST(PictureImport, AFolderThatCannotBeWrittenIsNamedAndNothingIsLeft) {
    Import t;
    t.service.LoadFile(t.MakePicture("5_1.JPG", {900, 675}), 0);
    const QString folder = t.Path("no such folder");
    EXPECT_FALSE(FolderIsWritable(folder));
    EXPECT_TRUE(FolderIsWritable(t.dir.path()));
    try {
        t.service.ResizeAndSaveFile(folder + "/5.JPG", 61);
        ADD_FAILURE() << "the icon was written";
    } catch (const Fault& fault) {
        EXPECT_TRUE(fault.Message().contains(QDir::toNativeSeparators(folder)))
            << fault.Message().toStdString();
    }
    EXPECT_EQ(t.Files(), QStringList({"5_1.JPG"}));
}

TEST(PictureImport, TheBrowserRefusesTheMediaFoldersOnlyWhenStoredWithoutTheirFinalSeparator) {
    // As the media folders are stored, with the separator at the end, the browser's path
    // never equals them.
    EXPECT_FALSE(IsMediaFolder("/data/Tarvex/ICON", "/data/Tarvex/ICON/", "/data/Tarvex/PICTURE/"));
    // Stored without it, either folder is refused, whatever the case.
    EXPECT_TRUE(IsMediaFolder("/data/tarvex/icon", "/data/Tarvex/ICON", "/data/Tarvex/PICTURE"));
    EXPECT_TRUE(IsMediaFolder("/data/Tarvex/Picture", "/data/Tarvex/ICON", "/data/Tarvex/PICTURE"));
    EXPECT_FALSE(IsMediaFolder("/home/pt/Photos", "/data/Tarvex/ICON", "/data/Tarvex/PICTURE"));
}
