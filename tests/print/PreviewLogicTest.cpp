#include "print/PreviewLogic.h"
#include "print/PrintJob.h"
#include "print/RecordingSurface.h"

#include <QColor>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

struct PreviewFixture : ::testing::Test {
    AppState state;
    RecordingSurface printer;
    std::unique_ptr<PreviewLogic> logic;

    void SetUp() override {
        state.Clinic.Name = "Harbor PT";
        state.Clinic.Phone = "555-0100";
        state.Program.FullName = "Doe, Ann";
        state.CoverText = "Please read this first.";
    }

    void Fill(int n) {
        for (int i = 0; i < n; ++i) {
            ExerciseEntry e;
            e.Code = QString::number(100 + i);
            e.Desc = "Heel slides";
            e.Reps = 10;
            e.Sets = 2;
            state.Program.Exercise(i) = e;
        }
        state.Program.NumExercises = static_cast<int16_t>(n);
    }

    // Opens the preview of a job in a form of 660 x 770 screen pixels.
    void Open(JobKind job) {
        state.Print.PrintJobKind = job;
        logic = std::make_unique<PreviewLogic>(state, printer, 15.0);
        const QRect form = logic->Load(1920 * 15, 1080 * 15);
        logic->Resize(form.width(), form.height());
    }

    bool HasInk(const QImage& image) const {
        for (int y = 0; y < image.height(); y += 2)
            for (int x = 0; x < image.width(); x += 2)
                if (image.pixel(x, y) != QColor(Qt::white).rgb())
                    return true;
        return false;
    }
};

} // namespace

TEST_F(PreviewFixture, LoadDrawsEveryPageAtThreeQuartersScale) {
    Fill(20);
    Open(kJobExercises2);
    EXPECT_DOUBLE_EQ(logic->Scale(), 0.75);
    EXPECT_EQ(logic->LastPage(), 9); // 20 exercises at 2 a page
    EXPECT_EQ(logic->PageCount(), 10);
    EXPECT_EQ(logic->PageStatus(), "Page: 1 of 10");
    EXPECT_TRUE(state.Print.IsPreview);
    EXPECT_EQ(printer.Orientation(), kLandscape); // the printer follows the job
    // Landscape letter at 0.75: 11 x 8.5 inches, 15 twips a pixel.
    EXPECT_EQ(logic->Page(0).Width, 11880);
    EXPECT_EQ(logic->Page(0).Height, 9180);
    EXPECT_EQ(logic->Page(0).Image.size(), QSize(792, 612));
    for (int i = 0; i < logic->PageCount(); ++i)
        EXPECT_TRUE(HasInk(logic->Page(i).Image)) << i;
    EXPECT_TRUE(logic->Page(0).Visible);
    EXPECT_FALSE(logic->Page(1).Visible);
    // A fresh page lies 150 twips in from the left; the landscape page is lower than the
    // viewport, so the vertical bar goes and the page moves up to 50 twips.
    EXPECT_EQ(logic->VScroll().Min, -150);
    EXPECT_EQ(logic->VScroll().SmallChange, 300);
    EXPECT_EQ(logic->HScroll().Value, -150);
    EXPECT_EQ(logic->Page(0).Left, 150);
    EXPECT_FALSE(logic->VScroll().Visible);
    EXPECT_TRUE(logic->HScroll().Visible);
    EXPECT_EQ(logic->Page(0).Top, 50);
}

TEST_F(PreviewFixture, FormIsPlacedAndSizedForTheScreen) {
    Fill(1);
    state.Print.PrintJobKind = kJobExercises4;
    PreviewLogic small(state, printer, 15.0);
    const QRect form = small.Load(600 * 15, 500 * 15);
    EXPECT_EQ(form, QRect(120, 60, 8640, 7350)); // 96% and 98% of the screen
    PreviewLogic large(state, printer, 15.0);
    EXPECT_EQ(large.Load(1920 * 15, 1200 * 15).size(), QSize(660 * 15, 770 * 15));
}

TEST_F(PreviewFixture, AOnePageJobCountsOneOfOneAndNextDoesNothing) {
    Fill(3);
    Open(kJobExercises4);
    EXPECT_EQ(logic->PageStatus(), "Page: 1 of 1");
    EXPECT_FALSE(logic->PrevEnabled());
    EXPECT_TRUE(logic->NextEnabled());
    EXPECT_EQ(logic->Toolbar("Next"), PreviewAction::None);
    EXPECT_EQ(logic->CurrentPage(), 0);
    EXPECT_EQ(logic->PageStatus(), "Page: 1 of 1");
    EXPECT_TRUE(logic->NextEnabled());
    EXPECT_TRUE(logic->Page(0).Visible);
}

TEST_F(PreviewFixture, OnTheLastPageNextIsDisabledAndPagingGuardsItself) {
    Fill(10);
    Open(kJobExercises4); // three pages
    logic->Toolbar("Next");
    EXPECT_TRUE(logic->PrevEnabled());
    EXPECT_TRUE(logic->NextEnabled());
    logic->Toolbar("Next");
    EXPECT_EQ(logic->CurrentPage(), 2);
    EXPECT_EQ(logic->PageStatus(), "Page: 3 of 3");
    EXPECT_TRUE(logic->PrevEnabled());
    EXPECT_FALSE(logic->NextEnabled());
    logic->GoToPage(1);
    EXPECT_EQ(logic->CurrentPage(), 2);
    EXPECT_TRUE(logic->Page(2).Visible);
    EXPECT_FALSE(logic->Page(1).Visible);
    logic->GoToPage(0);
    logic->GoToPage(0);
    logic->GoToPage(0);
    EXPECT_EQ(logic->CurrentPage(), 0);
    EXPECT_TRUE(logic->Page(0).Visible);
}

TEST_F(PreviewFixture, ANewPageKeepsThePlaceOnThePaper) {
    Fill(10);
    Open(kJobExercises4);
    logic->ScrollByKey(kKeyDown);
    logic->ScrollByKey(kKeyDown);
    EXPECT_EQ(logic->Page(0).Top, -450);
    logic->GoToPage(1);
    EXPECT_EQ(logic->Page(1).Top, -450);
    EXPECT_EQ(logic->Page(1).Left, logic->Page(0).Left);
    EXPECT_FALSE(logic->Page(0).Visible);
}

TEST_F(PreviewFixture, ZoomInTakesFiveStepsAndZoomOutTwo) {
    Fill(1);
    Open(kJobExercises4);
    const double in[] = {1.0, 1.25, 1.5, 1.75, 2.0, 2.0};
    for (double expected : in) {
        logic->Toolbar("ZoomIn");
        EXPECT_DOUBLE_EQ(logic->Scale(), expected);
    }
    EXPECT_EQ(logic->Page(0).Width, 24480); // 8.5 inches at twice the size
    EXPECT_EQ(logic->Page(0).Image.width(), 1632);

    Open(kJobExercises4);
    const double out[] = {0.5, 0.25, 0.25};
    for (double expected : out) {
        logic->Toolbar("ZoomOut");
        EXPECT_DOUBLE_EQ(logic->Scale(), expected);
    }
    EXPECT_TRUE(HasInk(logic->Page(0).Image));
}

TEST_F(PreviewFixture, ZoomingOutBelowTheSmallestStepStopsJustAboveIt) {
    Fill(1);
    Open(kJobExercises4);
    state.Print.PrintScale = 0.4;
    logic->ZoomBy(1);
    EXPECT_DOUBLE_EQ(logic->Scale(), 0.252);
    logic->ZoomBy(1); // above the smallest step: it goes down, and back to 0.252
    EXPECT_DOUBLE_EQ(logic->Scale(), 0.252);
}

TEST_F(PreviewFixture, AZoomOnPageThreeStaysOnPageThreeAtTheSameOffset) {
    Fill(12);
    Open(kJobExercises4);
    logic->GoToPage(1);
    logic->GoToPage(1);
    logic->ScrollByKey(kKeyDown);
    logic->ScrollByKey(kKeyRight);
    const int top = logic->Page(2).Top;
    const int left = logic->Page(2).Left;
    logic->Toolbar("ZoomIn");
    EXPECT_EQ(logic->CurrentPage(), 2);
    EXPECT_EQ(logic->PageStatus(), "Page: 3 of 3");
    EXPECT_TRUE(logic->Page(2).Visible);
    EXPECT_EQ(logic->Page(2).Top, top);
    EXPECT_EQ(logic->Page(2).Left, left);
    EXPECT_EQ(logic->Page(2).Width, 12240);
    // Only a change of the scroll bars moves it.
    logic->VScrollChanged(600);
    EXPECT_EQ(logic->Page(2).Top, -600);
}

TEST_F(PreviewFixture, ASecondRunUsesThePagesAgain) {
    Fill(12);
    Open(kJobExercises4);
    logic->ZoomBy(0);
    logic->ZoomBy(1);
    EXPECT_EQ(logic->PageCount(), 3);
    EXPECT_EQ(logic->LastPage(), 2);
}

TEST_F(PreviewFixture, TheVerticalBarStaysUntilThePageIsMoreThan100TwipsShort) {
    Fill(1);
    Open(kJobExercises4);
    const int hbar = logic->HScroll().Height;
    const int pageHeight = logic->Page(0).Height;
    // V = page height - frame height + bar height.
    logic->SetFrameSize(20000, pageHeight + hbar + 50); // V = -50
    logic->RecalcSizes();
    EXPECT_TRUE(logic->VScroll().Visible);
    EXPECT_EQ(logic->VScroll().Max, 151);
    logic->SetFrameSize(20000, pageHeight + hbar + 100); // V = -100
    logic->RecalcSizes();
    EXPECT_TRUE(logic->VScroll().Visible);
    EXPECT_EQ(logic->VScroll().Max, 151);
    logic->SetFrameSize(20000, pageHeight + hbar + 101); // V = -101
    logic->RecalcSizes();
    EXPECT_FALSE(logic->VScroll().Visible);
    EXPECT_EQ(logic->Page(0).Top, 50);
    EXPECT_FALSE(logic->PatchVisible());
}

TEST_F(PreviewFixture, TheHorizontalBarHidesAsSoonAsTheExcessIsBelowOne) {
    Fill(1);
    Open(kJobExercises4);
    const int vbar = logic->VScroll().Width;
    const int pageWidth = logic->Page(0).Width;
    // H = page width - frame width + bar width + 230.
    logic->SetFrameSize(pageWidth + vbar + 229, 2000); // H = 1
    logic->RecalcSizes();
    EXPECT_TRUE(logic->HScroll().Visible);
    EXPECT_EQ(logic->HScroll().Max, 151);
    EXPECT_EQ(logic->HScroll().LargeChange, 1);
    EXPECT_TRUE(logic->PatchVisible());
    logic->SetFrameSize(pageWidth + vbar + 230, 2000); // H = 0
    logic->RecalcSizes();
    EXPECT_FALSE(logic->HScroll().Visible);
    EXPECT_EQ(logic->HScroll().LargeChange, 1);
    EXPECT_EQ(logic->Page(0).Left, 50);
    EXPECT_FALSE(logic->PatchVisible());
}

TEST_F(PreviewFixture, LargeChangeIsTheExcessOrTheFrame) {
    Fill(1);
    Open(kJobExercises4);
    logic->SetFrameSize(3000, 3000);
    logic->RecalcSizes();
    const int v = logic->Page(0).Height - 3000 + logic->HScroll().Height;
    EXPECT_EQ(logic->VScroll().Max, v + 150);
    EXPECT_EQ(logic->VScroll().LargeChange, 3000);
    logic->SetFrameSize(logic->Page(0).Width, logic->Page(0).Height);
    logic->RecalcSizes();
    EXPECT_EQ(logic->VScroll().LargeChange, logic->HScroll().Height);
    EXPECT_EQ(logic->HScroll().LargeChange, logic->VScroll().Width + 230);
}

TEST_F(PreviewFixture, ResizePlacesTheBarsInsideTheFrame) {
    Fill(1);
    Open(kJobExercises4);
    logic->Resize(9000, 10000);
    EXPECT_EQ(logic->FrameWidth(), 8880);
    EXPECT_EQ(logic->VScroll().Left, 8565);
    EXPECT_EQ(logic->HScroll().Width, 8565);
    EXPECT_EQ(logic->FrameHeight(), 8845);
    EXPECT_EQ(logic->HScroll().Top, 8530);
    EXPECT_EQ(logic->VScroll().Height, 8530);
    EXPECT_EQ(logic->PatchTop(), 8530);
    EXPECT_EQ(logic->PatchLeft(), 8565);
}

TEST_F(PreviewFixture, ArrowKeysScrollAndClampEscCloses) {
    Fill(1);
    Open(kJobExercises4);
    logic->SetFrameSize(3000, 3000);
    logic->RecalcSizes();
    EXPECT_EQ(logic->KeyDown(PreviewKeyTarget::Page, kKeyDown), PreviewAction::None);
    EXPECT_EQ(logic->VScroll().Value, 150);
    EXPECT_EQ(logic->Page(0).Top, -150);
    logic->ScrollByKey(kKeyUp);
    logic->ScrollByKey(kKeyUp);
    EXPECT_EQ(logic->VScroll().Value, -150); // the minimum
    for (int i = 0; i < 100; ++i)
        logic->ScrollByKey(kKeyRight);
    EXPECT_EQ(logic->HScroll().Value, logic->HScroll().Max);
    logic->ScrollByKey(kKeyLeft);
    EXPECT_EQ(logic->HScroll().Value, logic->HScroll().Max - 300);
    // Only the page scrolls by key; every control closes on Esc.
    const int value = logic->VScroll().Value;
    EXPECT_EQ(logic->KeyDown(PreviewKeyTarget::Frame, kKeyDown), PreviewAction::None);
    EXPECT_EQ(logic->KeyDown(PreviewKeyTarget::ScrollBar, kKeyDown), PreviewAction::None);
    EXPECT_EQ(logic->VScroll().Value, value);
    logic->ScrollByKey(65);
    EXPECT_EQ(logic->VScroll().Value, value);
    EXPECT_EQ(logic->KeyDown(PreviewKeyTarget::Frame, kKeyEscape), PreviewAction::Close);
    EXPECT_EQ(logic->KeyDown(PreviewKeyTarget::ScrollBar, kKeyEscape), PreviewAction::Close);
    EXPECT_EQ(logic->KeyDown(PreviewKeyTarget::Page, kKeyEscape), PreviewAction::Close);
    EXPECT_EQ(logic->Toolbar("OK"), PreviewAction::Close);
    EXPECT_EQ(logic->Toolbar("Print"), PreviewAction::Print);
}

TEST_F(PreviewFixture, ChangesWhileApplyingSizesLeaveThePage) {
    Fill(1);
    Open(kJobExercises4);
    for (int i = 0; i < 10; ++i)
        logic->ScrollByKey(kKeyDown);
    const int top = logic->Page(0).Top;
    // A taller frame lowers the maximum below the value: the bar is pulled back, the page
    // stays.
    logic->SetFrameSize(logic->FrameWidth(), logic->Page(0).Height);
    logic->RecalcSizes();
    EXPECT_EQ(logic->VScroll().Value, logic->VScroll().Max);
    EXPECT_EQ(logic->Page(0).Top, top);
    logic->VScrollScrolled(10);
    EXPECT_EQ(logic->Page(0).Top, -10);
    logic->HScrollScrolled(20);
    EXPECT_EQ(logic->Page(0).Left, -20);
}

TEST_F(PreviewFixture, PrintingExercisesFromThePreviewPutsTheCoverSheetFirst) {
    Fill(5);
    state.Prefs.PrintPatientCover = true;
    Open(kJobExercises4);
    logic->ZoomBy(0);
    RecordingSurface paper;
    int dialogs = 0;
    logic->PrintFromPreview(paper, [&] { return ++dialogs > 0; });
    EXPECT_EQ(dialogs, 1); // the cover sheet asks, the sheets follow it
    EXPECT_NE(paper.FindText("Please read this first."), nullptr);
    EXPECT_EQ(paper.PageCount(), 3);
    EXPECT_EQ(state.Print.PrintJobKind, kJobExercises4);
    EXPECT_DOUBLE_EQ(logic->Scale(), 1.0); // the zoom is put back
    EXPECT_FALSE(state.Print.IsPreview);
    EXPECT_EQ(logic->LastPage(), 1);
}

TEST_F(PreviewFixture, PrintingTheCoverOrTheRecordFromThePreviewPrintsThatJobAlone) {
    Fill(5);
    state.Prefs.PrintPatientCover = true;
    for (JobKind job : {kJobCoverSheet, kJobPatientRecord}) {
        Open(job);
        RecordingSurface paper;
        logic->PrintFromPreview(paper, [] { return true; });
        int covers = 0;
        for (const RecordedOp& op : paper.Texts())
            covers += op.text == "Please read this first." ? 1 : 0;
        EXPECT_EQ(covers, job == kJobCoverSheet ? 1 : 0) << static_cast<int>(job);
        if (job == kJobCoverSheet) {
            EXPECT_EQ(paper.PageCount(), 2); // the cover ends with a new page
        }
        EXPECT_EQ(state.Print.PrintJobKind, job);
    }
}

TEST_F(PreviewFixture, TheOrderFormPreviewsOnOnePortraitPage) {
    Fill(3);
    Open(kJobVideoOrder);
    EXPECT_EQ(logic->PageStatus(), "Page: 1 of 1");
    EXPECT_EQ(printer.Orientation(), kPortrait);
    EXPECT_TRUE(HasInk(logic->Page(0).Image));
}
