#include "exercise/WorkspaceFakes.h"
#include "shell/AppState.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;

namespace {

// A library of n made-up entries, with icons "<i>.JPG" of which only some exist.
struct PaneRig {
    explicit PaneRig(int n) : panes(state, view) {
        state.Media.Icon = dir.path() + "/";
        SetLibrary(n);
    }
    void SetLibrary(int n) {
        state.Library.Entries.assign(static_cast<size_t>(n) + 1, ExerciseEntry{});
        for (int i = 0; i < n; ++i) {
            ExerciseEntry& e = state.Library.Entries[static_cast<size_t>(i)];
            e.ExerciseID = i + 1;
            e.Icon = QString::number(i + 1) + ".JPG";
            e.AbbrevDesc = "Exercise " + QString::number(i + 1);
            e.Movie = i % 2 == 0 ? e.Icon.replace(".JPG", ".AVI") : QString();
            e.Icon = QString::number(i + 1) + ".JPG";
        }
        state.Library.NumChoices = static_cast<int16_t>(n);
    }
    void MakeIcon(int i) {
        QFile f(dir.filePath(QString::number(i + 1) + ".JPG"));
        f.open(QIODevice::WriteOnly);
        f.write("x");
    }
    QTemporaryDir dir;
    AppState state;
    FakeChoicePane view;
    FakeProgress progress;
    SelectionPanes panes;
};

} // namespace

TEST(SelectionPanes, TheGridArithmeticOfTheDesign) {
    PaneRig rig(12);
    EXPECT_EQ(rig.panes.ColumnWidth(), 89);
    EXPECT_EQ(rig.panes.ChoiceRowHeight(), 76);
    rig.panes.CreateExChoiceControls(rig.progress);
    ASSERT_EQ(rig.view.CellCount(), 12);
    EXPECT_EQ(rig.view.PicturePos(0), QPoint(18, 4));
    EXPECT_EQ(rig.view.CaptionPos(0), QPoint(16, 56)); // the design pair keeps its top
    EXPECT_EQ(rig.view.PicturePos(4), QPoint(4 * 89 + 18, 4));
    EXPECT_EQ(rig.view.CaptionPos(1), QPoint(89 + 16, 57));
    EXPECT_EQ(rig.view.PicturePos(7), QPoint(2 * 89 + 18, 76 + 4));
    EXPECT_EQ(rig.view.CaptionPos(11), QPoint(89 + 16, 2 * 76 + 57));
}

TEST(SelectionPanes, CellsAreMadeBehindTheProgressWindow) {
    PaneRig rig(7);
    rig.panes.CreateExChoiceControls(rig.progress);
    EXPECT_EQ(rig.progress.maximum, 7);
    EXPECT_EQ(rig.progress.title, "Loading Exercise Library");
    EXPECT_EQ(rig.progress.values, std::vector<int>({1, 2, 3, 4, 5, 6, 7}));
    EXPECT_FALSE(rig.progress.open);
}

TEST(SelectionPanes, ScrollMaximaFollowTheRoundedRowCount) {
    const std::pair<int, int> cases[] = {{0, 0},  {5, 1},  {6, 1},  {8, 1}, {9, 2},
                                         {10, 2}, {11, 2}, {13, 2}, {14, 3}};
    for (const auto& [count, maximum] : cases) {
        PaneRig rig(20);
        rig.panes.CreateExChoiceControls(rig.progress);
        rig.SetLibrary(count);
        rig.panes.SizeSourcePane();
        EXPECT_EQ(rig.panes.ScrollMax(), maximum) << count << " entries";
    }
}

TEST(SelectionPanes, WithNoEntriesTheSurfaceIsTheViewportPlusOneAndNothingShowsOrLoads) {
    PaneRig rig(10);
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.SetLibrary(0);
    rig.panes.SizeSourcePane();
    EXPECT_EQ(rig.view.surfaceHeight, 142);
    EXPECT_EQ(rig.view.scrollMax, 0);
    for (const auto& cell : rig.view.cells)
        EXPECT_FALSE(cell.visible);
    EXPECT_TRUE(rig.panes.LoadPictsInSight().empty());
    EXPECT_EQ(rig.view.TotalReads(), 0);
}

TEST(SelectionPanes, TheSurfaceReachesTheLastCaption) {
    PaneRig rig(12);
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.panes.SizeSourcePane();
    // Caption of entry 11 at 2 * 76 + 57, its height 21.6, the picture's top margin 4.
    EXPECT_EQ(rig.view.surfaceHeight, 235); // 209 + 21.6 + 4, rounded
    EXPECT_FALSE(rig.view.selectedRectVisible);
    EXPECT_TRUE(rig.view.cells[11].visible);
}

TEST(SelectionPanes, TwoRowsInSightAreLoadedWithCaptionsAndColours) {
    PaneRig rig(23);
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.panes.SizeSourcePane();
    const auto loaded = rig.panes.LoadPictsInSight();
    EXPECT_EQ(loaded, std::vector<int>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(rig.view.cells[0].caption_text, "Exercise 1");
    EXPECT_TRUE(rig.view.cells[0].blue);  // has a movie
    EXPECT_FALSE(rig.view.cells[1].blue); // has none
    EXPECT_FALSE(rig.panes.PictLoaded(10));
}

TEST(SelectionPanes, AScrollStepLoadsAtMostTenAndScrollingBackReadsNothingAgain) {
    PaneRig rig(40);
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.panes.SizeSourcePane();
    rig.panes.LoadPictsInSight();
    rig.panes.Scroll1Settled(1);
    EXPECT_EQ(rig.view.surfaceTop, -76);
    EXPECT_EQ(rig.view.TotalReads(), 15);
    rig.panes.Scroll1Settled(3);
    EXPECT_EQ(rig.view.TotalReads(), 25);
    rig.panes.Scroll1Settled(0);
    rig.panes.Scroll1Settled(1);
    EXPECT_EQ(rig.view.TotalReads(), 25);
    for (int reads : rig.view.reads)
        EXPECT_EQ(reads, 1); // no file twice in one view
}

TEST(SelectionPanes, DraggingTheThumbMovesTheSurfaceAndLoadsNothing) {
    PaneRig rig(40);
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.panes.SizeSourcePane();
    rig.panes.Scroll1Dragged(5);
    EXPECT_EQ(rig.view.surfaceTop, -380);
    EXPECT_EQ(rig.view.TotalReads(), 0);
}

TEST(SelectionPanes, AMissingIconLeavesABlankCellThatIsNotTriedAgain) {
    PaneRig rig(6);
    rig.MakeIcon(0);
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.panes.SizeSourcePane();
    rig.panes.LoadPictsInSight();
    EXPECT_TRUE(rig.view.cells[0].hasPicture);
    EXPECT_FALSE(rig.view.cells[1].hasPicture);
    EXPECT_EQ(rig.view.cells[1].caption_text, "Exercise 2"); // the caption shows all the same
    EXPECT_TRUE(rig.panes.PictLoaded(1));
    rig.panes.LoadPictsInSight();
    EXPECT_EQ(rig.view.reads.value(rig.state.Media.Icon + "2.JPG"), 1);
}

TEST(SelectionPanes, AnotherFailureIsReportedAndLoadingGoesOn) {
    PaneRig rig(3);
    rig.view.failPaths << rig.state.Media.Icon + "2.JPG";
    QStringList boxes;
    rig.panes.OnLoadError = [&boxes](const QString& text, const QString& title) {
        boxes << title + ": " + text;
    };
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.panes.SizeSourcePane();
    EXPECT_EQ(rig.panes.LoadPictsInSight().size(), 3u);
    EXPECT_EQ(boxes, QStringList({"Error in LoadPictsInSight: Error481 Invalid picture"}));
}

TEST(SelectionPanes, AFilterWithFewerRowsPullsTheScrollBarDownAndLoadsWhatIsInSight) {
    PaneRig rig(40);
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.panes.SizeSourcePane();
    rig.view.scrollValue = rig.panes.ScrollMax();
    rig.panes.Scroll1Settled(rig.view.scrollValue);
    EXPECT_EQ(rig.view.scrollValue, 8);
    rig.SetLibrary(12);
    rig.panes.SizeSourcePane();
    EXPECT_EQ(rig.view.scrollValue, 2);
    EXPECT_EQ(rig.view.surfaceTop, -152);
    const auto loaded = rig.panes.LoadPictsInSight();
    EXPECT_EQ(loaded, std::vector<int>({10, 11}));
}

TEST(SelectionPanes, TheSlotsOfTheLowerPane) {
    EXPECT_EQ(SelectionPanes::SlotPicturePos(0), QPoint(18, 4));
    EXPECT_EQ(SelectionPanes::SlotPicturePos(1), QPoint(108, 4));
    EXPECT_EQ(SelectionPanes::SlotPicturePos(19), QPoint(372, 244));
    EXPECT_EQ(SelectionPanes::SlotCaptionPos(7), QPoint(192, 138));
    EXPECT_EQ(SelectionPanes::SlotNumberPos(15), QPoint(4, 246));
}

TEST(SelectionPanes, AWiderPaneLaysTheCellsOutInMoreColumnsAndLoadsTheRowsInSight) {
    PaneRig rig(40);
    rig.panes.CreateExChoiceControls(rig.progress);
    rig.panes.SizeSourcePane();
    rig.panes.LoadPictsInSight();
    EXPECT_EQ(rig.view.TotalReads(), 10); // two rows of five
    EXPECT_EQ(SelectionPanes::ColumnsFor(449), 5);
    EXPECT_EQ(SelectionPanes::ColumnsFor(449 + 88), 5);
    EXPECT_EQ(SelectionPanes::ColumnsFor(449 + 89), 6);
    EXPECT_EQ(SelectionPanes::ColumnsFor(300), 5); // never fewer than the design's
    EXPECT_EQ(SelectionPanes::RowsFor(141), 2);
    EXPECT_EQ(SelectionPanes::RowsFor(300), 4);

    rig.panes.SetGrid(8, 3);
    EXPECT_EQ(rig.panes.Columns(), 8);
    EXPECT_EQ(rig.view.PicturePos(7), QPoint(7 * 89 + 18, 4));
    EXPECT_EQ(rig.view.PicturePos(8), QPoint(18, 76 + 4));
    EXPECT_EQ(rig.view.CaptionPos(0), QPoint(16, 57)); // laid out again, the design pair too
    EXPECT_EQ(rig.view.CaptionPos(39), QPoint(7 * 89 + 16, 4 * 76 + 57));
    EXPECT_EQ(rig.panes.ScrollMax(), 5); // 39 / 8 rounded
    for (int i = 0; i < 24; ++i)
        EXPECT_TRUE(rig.panes.PictLoaded(i)) << i;
    EXPECT_FALSE(rig.panes.PictLoaded(24));

    // More rows alone load only what came into sight; nothing is read twice.
    const int reads = rig.view.TotalReads();
    rig.panes.SetGrid(8, 4);
    EXPECT_EQ(rig.view.TotalReads(), reads + 8);
    EXPECT_EQ(rig.view.reads.value(rig.state.Media.Icon + "1.JPG"),
              2); // once before, once after the new layout
}

TEST(SelectionPanes, AGridSetBeforeTheCellsExistIsUsedWhenTheyAreMade) {
    PaneRig rig(12);
    rig.panes.SetGrid(6, 2);
    EXPECT_EQ(rig.view.TotalReads(), 0);
    rig.panes.CreateExChoiceControls(rig.progress);
    EXPECT_EQ(rig.view.PicturePos(6), QPoint(18, 76 + 4));
    rig.panes.SizeSourcePane();
    EXPECT_EQ(rig.panes.ScrollMax(), 2); // 11 / 6 rounded
}
