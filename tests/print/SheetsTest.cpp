#include "print/ExerciseSheets.h"
#include "print/PatientRecord.h"
#include "print/PrintJob.h"
#include "print/PrinterModule.h"
#include "print/RecordingSurface.h"
#include "print/SheetData.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

using Kind = RecordedOp::Kind;

ExerciseEntry Entry(const QString& code, int reps = 10, int hold = 5, int sets = 2) {
    ExerciseEntry e;
    e.Code = code;
    e.Desc = "Heel slides";
    e.Reps = static_cast<int16_t>(reps);
    e.Hold = static_cast<int16_t>(hold);
    e.Sets = static_cast<int16_t>(sets);
    return e;
}

struct SheetFixture : ::testing::Test {
    RecordingSurface surface;
    AppState state;

    void SetUp() override { tarvex::testing::SetSheetHeader(state); }

    void Fill(int n) {
        for (int i = 0; i < n; ++i)
            state.Program.Exercise(i) = Entry(QString::number(100 + i));
        state.Program.NumExercises = static_cast<int16_t>(n);
    }

    int Job(JobKind kind) {
        state.Print.PrintJobKind = kind;
        EXPECT_TRUE(DrawPrintJob(surface, state));
        return surface.PageCount();
    }

    int CountTexts(const QString& text) const {
        int n = 0;
        for (const RecordedOp& op : surface.Texts())
            n += op.text == text ? 1 : 0;
        return n;
    }
};

} // namespace

TEST(ExerciseCaption, SingularFormsWithoutHold) {
    EXPECT_EQ(ExerciseCaption(Entry("1", 1, 0, 1)), "1 rep, 1 set");
}

TEST(ExerciseCaption, AllClausesInPlural) {
    EXPECT_EQ(ExerciseCaption(Entry("1", 10, 5, 2)), "10 reps, 5 sec hold, 2 sets");
}

TEST(ExerciseCaption, ZeroRepetitionsReadInTheSingularAndSetsAlwaysAppear) {
    EXPECT_EQ(ExerciseCaption(Entry("1", 0, 0, 0)), "0 rep, 0 set");
}

TEST_F(SheetFixture, NoExercisesGiveOnePageWithTitleHeaderAndFooter) {
    EXPECT_EQ(Job(kJobExercises4), 1);
    EXPECT_NE(surface.FindText("Harbor PT, 555-0100"), nullptr);
    EXPECT_NE(surface.FindText("Site #: 4711"), nullptr);
    EXPECT_NE(surface.FindText("Doe, Ann"), nullptr);
    EXPECT_NE(surface.FindText(MakerNotice()), nullptr);
    EXPECT_EQ(CountTexts("to order your video tape of this exercise program."), 1);
}

TEST_F(SheetFixture, FourExercisesAtFourAPageGiveOnePage) {
    Fill(4);
    EXPECT_EQ(Job(kJobExercises4), 1);
    EXPECT_TRUE(surface.OpsOf(Kind::NewPage).isEmpty());
}

TEST_F(SheetFixture, FiveExercisesAtTwoAPageGiveThreePagesEachWithFooter) {
    Fill(5);
    EXPECT_EQ(Job(kJobExercises2), 3);
    EXPECT_EQ(surface.Orientation(), kLandscape);
    for (int page = 0; page < 3; ++page) {
        int notices = 0;
        int titles = 0;
        for (const RecordedOp& op : surface.TextsOnPage(page)) {
            notices += op.text == MakerNotice() ? 1 : 0;
            titles += op.text == "Harbor PT, 555-0100" ? 1 : 0;
        }
        EXPECT_EQ(notices, 1) << "page " << page;
        EXPECT_EQ(titles, 1) << "page " << page;
    }
    // The footer stands in landscape: 8.5 inches less three 12 point lines and half an inch;
    // the notice follows the two call lines.
    EXPECT_EQ(surface.FindText("to order your video tape of this exercise program.")->y,
              12240 - 3 * 288 - 720 + 288);
    EXPECT_EQ(surface.FindText(MakerNotice())->y, 12240 - 3 * 288 - 720 + 2 * 288);
}

TEST_F(SheetFixture, HeaderBlockPositions) {
    Job(kJobExercises2);
    // Title 0.5 inch down; site line one 10 point line under it.
    EXPECT_EQ(surface.FindText("Harbor PT, 555-0100")->y, 720);
    const RecordedOp* site = surface.FindText("Site #: 4711");
    EXPECT_EQ(site->y, 960);
    EXPECT_EQ(site->x, 720);
    EXPECT_EQ(site->font.Size, 10);
    const RecordedOp* patient = surface.FindText("Patient:");
    EXPECT_EQ(patient->y, 1260);
    EXPECT_EQ(surface.FindText("Doe, Ann")->x, 720 + 1440);
    EXPECT_EQ(surface.FindText("Usage:")->y, 1260 + 288);
    // The right column stands at 4.25 inches in landscape as in portrait.
    const RecordedOp* provider = surface.FindText("Provider:");
    EXPECT_EQ(provider->x, 6120);
    EXPECT_EQ(provider->y, 1260);
    EXPECT_EQ(surface.FindText("Dr. Lee")->x, 6120 + 1440);
    EXPECT_EQ(surface.FindText("Date:")->y, 1548);
}

TEST_F(SheetFixture, ExerciseHeadingHangsItsNumberInTheMargin) {
    Fill(2);
    Job(kJobExercises4);
    const RecordedOp* number = surface.FindText(" 1. ");
    ASSERT_NE(number, nullptr);
    EXPECT_TRUE(number->font.Bold);
    EXPECT_EQ(number->x, 720 - 4 * 120);
    EXPECT_EQ(number->y, 1836);
    const RecordedOp* heading = surface.FindText("(100) Heel slides: 10 reps, 5 sec hold, 2 sets");
    ASSERT_NE(heading, nullptr);
    EXPECT_EQ(heading->x, 720);
    // The next exercise: heading line, 0.05 inch, picture, two 11 point lines.
    EXPECT_EQ(surface.FindText(" 2. ")->y, 1836 + 288 + 72 + 2160 + 2 * 264);
}

TEST_F(SheetFixture, InstructionsStandUnderEachPictureAtElevenPoints) {
    Fill(1);
    ExerciseEntry& e = state.Program.Exercise(0);
    e.Instruct0 = "Slide the heel";
    e.Instruct2 = "Rest";
    Job(kJobExercises2);
    const RecordedOp* first = surface.FindText("Slide ");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->font.Size, 11);
    EXPECT_EQ(first->x, 720);
    EXPECT_EQ(first->y, 2196 + 3240);
    // The missing second instruction prints nothing; the third stands at 7 inches.
    const RecordedOp* third = surface.FindText("Rest");
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(third->x, 10080);
    EXPECT_EQ(third->y, 2196 + 3240);
}

TEST_F(SheetFixture, PicturesFillTheirBoxesAndMissingOrBrokenOnesLeaveThemEmpty) {
    QTemporaryDir dir;
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(dir.filePath("100_1.JPG"), "JPG"));
    QFile broken(dir.filePath("100_3.JPG"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("not a picture");
    broken.close();
    state.Media.Picture = dir.path() + "/";
    Fill(1);
    state.Program.Exercise(0).Picture0 = "100_1.jpg"; // found whatever the case
    state.Program.Exercise(0).Picture1 = "100_2.JPG"; // missing
    state.Program.Exercise(0).Picture2 = "100_3.JPG"; // broken
    Job(kJobExercises4);
    const auto pictures = surface.OpsOf(Kind::Picture);
    ASSERT_EQ(pictures.size(), 1);
    EXPECT_EQ(pictures[0].x, 720);
    EXPECT_EQ(pictures[0].y, 2196);
    EXPECT_EQ(pictures[0].x2, 2880);
    EXPECT_EQ(pictures[0].y2, 2160);
    EXPECT_EQ(pictures[0].text, "40x30");
}

TEST_F(SheetFixture, PreviewClearsThePageAndTakesFreshPagesFromThePreview) {
    Fill(3);
    state.Print.IsPreview = true;
    state.Print.PrintScale = 0.5;
    std::vector<std::unique_ptr<RecordingSurface>> pages;
    PageSurface& last = PrintExerciseSheets(surface, state, 2, [&pages]() -> PageSurface* {
        pages.push_back(std::make_unique<RecordingSurface>());
        return pages.back().get();
    });
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(&last, pages[0].get());
    EXPECT_EQ(surface.OpsOf(Kind::Cls).size(), 1);
    EXPECT_TRUE(surface.OpsOf(Kind::NewPage).isEmpty());
    EXPECT_EQ(state.Print.InchTwips, 720);
    EXPECT_NE(pages[0]->FindText(" 3. "), nullptr);
}

TEST_F(SheetFixture, RecordWithTwentyExercisesFillsTheTable) {
    Fill(20);
    Job(kJobPatientRecord);
    EXPECT_EQ(surface.PageCount(), 1);
    EXPECT_NE(surface.FindText(" 20 "), nullptr);
    // Head line, 21 row lines, 7 verticals, log head, 16 log lines, 3 verticals.
    EXPECT_EQ(surface.OpsOf(Kind::Line).size(), 1 + 21 + 7 + 1 + 16 + 3);
}

TEST_F(SheetFixture, EmptyRecordIsAGridOfEmptyRows) {
    Job(kJobPatientRecord);
    EXPECT_EQ(surface.OpsOf(Kind::Line).size(), 1 + 21 + 7 + 1 + 16 + 3);
    EXPECT_EQ(surface.FindText(" 1 "), nullptr);
    EXPECT_NE(surface.FindText("EXERCISE PROGRAM"), nullptr);
    EXPECT_NE(surface.FindText("EXERCISE LOG"), nullptr);
}

TEST_F(SheetFixture, RecordRowsAndRulesLieWhereTheyShould) {
    Fill(1);
    state.Program.Exercise(0).Hold = 0;
    state.Program.Exercise(0).Desc = QString(60, 'd');
    Job(kJobPatientRecord);
    const auto lines = surface.OpsOf(Kind::Line);
    // Rules lie 0.0625 inch (90) left of their columns: margin 1 inch, right edge 7.5 inches.
    EXPECT_EQ(lines[0].x, 1440 - 90);
    EXPECT_EQ(lines[0].x2, 10800 - 90);
    const double y0 = lines[0].y;
    // A row is 220 twips plus half of the 45 twip row pad: 242.5 from an even rule, which
    // rounds to the even 242, and so on down the table.
    EXPECT_EQ(lines[1].y, y0 + 90 + 220 - 22); // 22.5 below a whole position: 287.5 -> 288
    EXPECT_EQ(lines[2].y - lines[1].y, 242);
    EXPECT_EQ(lines[3].y - lines[1].y, 484);
    // A number stands with a blank before and after; the hold is text with "s".
    const RecordedOp* nbr = surface.FindText(" 1 ");
    ASSERT_NE(nbr, nullptr);
    EXPECT_EQ(nbr->x, 1440);
    EXPECT_EQ(surface.FindText("0s")->x, 1440 + 7920);
    EXPECT_EQ(surface.FindText(" 10 ")->x, 1440 + 7200);
    // A long description runs on over the next column, neither cut nor wrapped.
    EXPECT_EQ(surface.FindText(QString(60, 'd'))->x, 2880);
}

TEST_F(SheetFixture, RecordTiePadsGoToEven) {
    state.Print.PrintScale = 0.25; // 360 twips an inch: the rule pad of 22.5 becomes 22
    Job(kJobPatientRecord);
    EXPECT_EQ(surface.OpsOf(Kind::Line)[0].x, 360 - 22);
}

TEST_F(SheetFixture, RecordEndsWithTheShortNoticeWhateverTheCallOption) {
    state.Prefs.PrintCallTVX = true;
    Job(kJobPatientRecord);
    EXPECT_EQ(CountTexts("to order your video tape of this exercise program."), 0);
    const RecordedOp last = surface.Texts().last();
    EXPECT_EQ(last.text, MakerNotice());
    EXPECT_EQ(last.font.Size, 10);
    EXPECT_NE(surface.FindText("Signature: ___________________________"), nullptr);
}

TEST_F(SheetFixture, CoverSheetWithoutTextHasTitleHeaderAndFooter) {
    state.CoverText.clear();
    Job(kJobCoverSheet);
    const auto texts = surface.Texts();
    EXPECT_EQ(texts.first().text, "Harbor PT, 555-0100");
    EXPECT_EQ(texts.last().text, MakerNotice());
    EXPECT_EQ(surface.FindText("Patient:")->x, 1800);
    // Title, site, four labels, four values, two call lines, notice.
    EXPECT_EQ(texts.size(), 1 + 1 + 8 + 2 + 1);
}

TEST_F(SheetFixture, CoverTextLinesStandAtTheMarginUnwrapped) {
    state.CoverText = "Welcome to our clinic.\r\n\r\nDo your exercises every day.\r\n";
    Job(kJobCoverSheet);
    const RecordedOp* first = surface.FindText("Welcome to our clinic.");
    const RecordedOp* second = surface.FindText("Do your exercises every day.");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->x, 1800);
    EXPECT_EQ(second->y - first->y, 2 * 288);
}

TEST_F(SheetFixture, CoverSheetJobEndsWithANewPageAndLeavesTheDocumentOpen) {
    state.Print.PrintJobKind = kJobCoverSheet;
    state.Print.PrintScale = 0.75;
    int dialogs = 0;
    EXPECT_TRUE(RunPrintJob(state, surface, [&dialogs] { return ++dialogs > 0; }));
    EXPECT_EQ(dialogs, 1);
    EXPECT_EQ(surface.OpsOf(Kind::NewPage).size(), 1);
    EXPECT_TRUE(surface.OpsOf(Kind::EndDoc).isEmpty());
    EXPECT_EQ(state.Print.PrintScale, 0.75);
    EXPECT_EQ(state.Print.InchTwips, 1440); // drawn at paper scale
}

TEST_F(SheetFixture, ExerciseSheetsAfterTheCoverAskNothingAndEndTheDocument) {
    state.Prefs.PrintPatientCover = true;
    state.Print.PrintJobKind = kJobExercises4;
    int dialogs = 0;
    EXPECT_TRUE(RunPrintJob(state, surface, [&dialogs] { return ++dialogs > 100; }));
    EXPECT_EQ(dialogs, 0);
    EXPECT_EQ(surface.OpsOf(Kind::EndDoc).size(), 1);
}

TEST_F(SheetFixture, CancelledDialogPrintsNothingAndRestoresTheScale) {
    state.Prefs.PrintPatientCover = false;
    state.Print.PrintJobKind = kJobExercises2;
    state.Print.PrintScale = 1.5;
    state.Print.IsPreview = true;
    EXPECT_FALSE(RunPrintJob(state, surface, [] { return false; }));
    EXPECT_TRUE(surface.Ops().isEmpty());
    EXPECT_EQ(state.Print.PrintScale, 1.5);
    EXPECT_FALSE(state.Print.IsPreview);
}

TEST_F(SheetFixture, OrderFormJobWithoutItsRoutineDrawsNothing) {
    state.Print.PrintJobKind = kJobVideoOrder;
    EXPECT_FALSE(DrawPrintJob(surface, state));
    EXPECT_TRUE(surface.Ops().isEmpty());
}
