#include "ui/ChoicePaneWidget.h"
#include "ui/PaneDrag.h"
#include "ui/SlotPaneWidget.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

QString Write(const QTemporaryDir& dir, const QString& name, const QByteArray& bytes) {
    QFile file(dir.filePath(name));
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return file.fileName();
}

} // namespace

TEST(PaneWidgets, AMissingFileIsNoErrorABrokenOrEmptyPictureIsAndNothingShows) {
    QTemporaryDir dir;
    const QString empty = Write(dir, "1.JPG", QByteArray());
    const QString broken = Write(dir, "2.JPG", QByteArray("\xff\xd8\xff\xe0 not really a jpeg"));
    QImage good(61, 46, QImage::Format_RGB32);
    good.fill(Qt::white);
    ASSERT_TRUE(good.save(dir.filePath("3.JPG"), "JPG"));

    ChoicePaneWidget pane;
    for (int i = 1; i < 4; ++i)
        pane.CreateCell(i);
    EXPECT_EQ(pane.LoadCellPicture(0, dir.filePath("missing.JPG")).result, PictureLoad::Missing);
    EXPECT_EQ(pane.LoadCellPicture(0, dir.filePath("nofolder/x.JPG")).errorNumber, 76);
    const PictureLoad e = pane.LoadCellPicture(1, empty);
    EXPECT_EQ(e.result, PictureLoad::Failed);
    EXPECT_EQ(e.errorNumber, 481);
    EXPECT_EQ(pane.LoadCellPicture(2, broken).result, PictureLoad::Failed);
    EXPECT_EQ(pane.LoadCellPicture(3, dir.filePath("3.JPG")).result, PictureLoad::Loaded);

    SlotPaneWidget slotPane;
    EXPECT_EQ(slotPane.ShowSlot(0, broken, "Heel slides\n10r/2x", false).result,
              PictureLoad::Failed);
    EXPECT_FALSE(slotPane.SlotHasPicture(0));
    EXPECT_EQ(slotPane.SlotCaption(0), "Heel slides\n10r/2x"); // the caption shows all the same
    slotPane.ShowSlot(1, dir.filePath("3.JPG"), "x", true);
    EXPECT_TRUE(slotPane.SlotHasPicture(1));
    slotPane.ClearSlot(1);
    EXPECT_FALSE(slotPane.SlotHasPicture(1));
    EXPECT_EQ(slotPane.SlotCaption(1), "");
}

TEST(PaneWidgets, ADragCarriesItsKindAndIndex) {
    std::unique_ptr<QMimeData> data(PaneDragData({DragKind::TargetIm, 17}));
    const DragSource source = PaneDragSource(data.get());
    EXPECT_EQ(source.kind, DragKind::TargetIm);
    EXPECT_EQ(source.index, 17);
    QMimeData other;
    other.setText("a picture from elsewhere");
    EXPECT_EQ(PaneDragSource(&other).kind, DragKind::Other);
}

TEST(PaneWidgets, TheLibraryPaneFindsTheCellUnderThePointer) {
    ChoicePaneWidget pane;
    for (int i = 1; i < 12; ++i) {
        pane.CreateCell(i);
        pane.PlaceCell(i, QPoint((i % 5) * 89 + 18, (i / 5) * 76 + 4),
                       QPoint((i % 5) * 89 + 16, (i / 5) * 76 + 57));
        pane.ShowCell(i, true);
    }
    pane.ShowCell(0, true);
    EXPECT_EQ(pane.CellAt(pane.PictureRect(7).center(), true), 7);
    pane.SetSurfaceTop(-76);
    EXPECT_EQ(pane.CellAt(pane.PictureRect(7).center(), true), 7);
    EXPECT_EQ(pane.PictureRect(7).top(), static_cast<int>(4 * ChoicePaneWidget::kScale));
    pane.ShowCell(7, false);
    EXPECT_EQ(pane.CellAt(pane.PictureRect(7).center(), true), -1);
}

TEST(ReadPaneImage, ALargePhotoIsDecodedAtTheCellsSizeInsteadOfFailing) {
    QTemporaryDir dir;
    QImage photo(4000, 3000, QImage::Format_RGB888);
    photo.fill(QColor(30, 90, 200));
    ASSERT_TRUE(photo.save(dir.filePath("photo.jpg"), "jpeg", 40));
    // Qt's allocation limit, lowered so that this photo stands for one of 60 megapixels.
    const int before = QImageReader::allocationLimit();
    QImageReader::setAllocationLimit(24);
    QImage image;
    const PictureLoad whole = ReadPaneImage(dir.filePath("photo.jpg"), image);
    const PictureLoad fitted = ReadPaneImage(dir.filePath("photo.jpg"), image, QSize(140, 140));
    QImageReader::setAllocationLimit(before);
    EXPECT_EQ(whole.result, PictureLoad::Failed);
    EXPECT_EQ(fitted.result, PictureLoad::Loaded);
    EXPECT_EQ(image.size(), QSize(140, 105));
}
