#include "support/Progress.h"

#include "fakes/FakeControls.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::fakes::FakeProgressWindow;

TEST(ProgressScale, ZeroCountsAsOneItemAndGivesABarOfMaximumOne) {
    EXPECT_EQ(ProgressScaleFor(0), 1);
    EXPECT_EQ(ProgressMaxFor(0), 1);
}

TEST(ProgressScale, SixtyFourThousandGivesScaleThreeAndMaximum21333) {
    EXPECT_EQ(ProgressScaleFor(64000), 3);
    EXPECT_EQ(ProgressMaxFor(64000), 21333);
}

TEST(ProgressScale, BelowThirtyTwoThousandTheScaleIsOne) {
    EXPECT_EQ(ProgressScaleFor(31999), 1);
    EXPECT_EQ(ProgressMaxFor(31999), 31999);
    EXPECT_EQ(ProgressScaleFor(1), 1);
    EXPECT_EQ(ProgressMaxFor(1), 1);
}

TEST(ProgressScale, AtThirtyTwoThousandTheScaleTurnsToTwo) {
    // The scale steps up one total early: 32000 items already take two per step.
    EXPECT_EQ(ProgressScaleFor(32000), 2);
    EXPECT_EQ(ProgressMaxFor(32000), 16000);
    EXPECT_EQ(ProgressScaleFor(63999), 2);
    EXPECT_EQ(ProgressMaxFor(63999), 31999);
}

TEST(ProgressScale, TheMaximumStaysBelowWhatASixteenBitBarHolds) {
    for (int32_t total : {0, 1, 31999, 32000, 63999, 64000, 95999, 1000000, 100000000}) {
        EXPECT_LE(ProgressMaxFor(total), 32000) << total;
        EXPECT_GE(ProgressMaxFor(total), 1) << total;
    }
}

TEST(ProgressScale, AScaleBeyondSixteenBitsOverflows) {
    EXPECT_EQ(ProgressScaleFor(1048543999), 32767);
    EXPECT_EQ(ProgressMaxFor(1048543999), 31999);
    EXPECT_THROW(ProgressScaleFor(1048544000), OverflowFault);
}

TEST(ProgressScale, NegativeTotalsBreakTheArithmetic) {
    // -1 gives a maximum of -1, -32000 a scale of 0.
    EXPECT_EQ(ProgressScaleFor(-1), 1);
    EXPECT_EQ(ProgressMaxFor(-1), -1);
    EXPECT_EQ(ProgressScaleFor(-32000), 0);
    EXPECT_THROW(ProgressMaxFor(-32000), Fault);
}

TEST(InitProgress, ShowsTheWindowAndSetsScaleAndMaximum) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    progress.InitProgress(64000);
    EXPECT_TRUE(window.visible);
    EXPECT_EQ(progress.ProgressScale, 3);
    EXPECT_EQ(window.max, 21333);
    EXPECT_EQ(window.value, 0);
    EXPECT_EQ(window.calls, QStringList({"load", "show", "max 21333"}));
}

TEST(InitProgress, TheCaptionIsBuildingReportUnlessTheCallerSetsAnother) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    progress.InitProgress(10);
    EXPECT_EQ(window.Caption(), "Building Report");
    progress.DestroyProgress();

    progress.SetCaption("Copying Pictures From CD To Hard Drive");
    progress.InitProgress(10);
    EXPECT_EQ(window.Caption(), "Copying Pictures From CD To Hard Drive");
    EXPECT_EQ(
        window.calls.mid(window.calls.indexOf("unload") + 1),
        QStringList({"load", "caption Copying Pictures From CD To Hard Drive", "show", "max 10"}));
}

TEST(InitProgress, WithZeroGivesABarOfMaximumOne) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    progress.InitProgress(0);
    EXPECT_EQ(window.max, 1);
    EXPECT_EQ(progress.ProgressScale, 1);
    progress.UpdateProgress(1);
    EXPECT_EQ(window.value, 1);
}

TEST(InitProgress, WithANegativeTotalTheBarRefusesItsMaximum) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    EXPECT_THROW(progress.InitProgress(-1), ProgressValueFault);
    EXPECT_TRUE(window.visible);
    EXPECT_EQ(window.max, 100);
}

TEST(UpdateProgress, MovesTheBarByWholeStepsOfTheScale) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    progress.InitProgress(64000);
    progress.UpdateProgress(2);
    EXPECT_EQ(window.value, 0);
    progress.UpdateProgress(3);
    EXPECT_EQ(window.value, 1);
    progress.UpdateProgress(32000);
    EXPECT_EQ(window.value, 10666);
    progress.UpdateProgress(64000);
    EXPECT_EQ(window.value, 21333);
}

TEST(UpdateProgress, WithScaleOneTheValueIsTheItemCount) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    progress.InitProgress(31999);
    progress.UpdateProgress(12345);
    EXPECT_EQ(window.value, 12345);
    progress.UpdateProgress(31999);
    EXPECT_EQ(window.value, 31999);
}

TEST(UpdateProgress, AValueBeyondTheBarIsAFaultForTheCaller) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    progress.InitProgress(10);
    progress.UpdateProgress(10);
    EXPECT_THROW(progress.UpdateProgress(11), ProgressValueFault);
    EXPECT_EQ(window.value, 10);
    EXPECT_THROW(progress.UpdateProgress(-1), ProgressValueFault);
}

TEST(UpdateProgress, AValueAboveTheTotalPassesWhileItStaysInTheLastStep) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    progress.InitProgress(64000);
    progress.UpdateProgress(64001); // 64001 / 3 = 21333, still the maximum
    EXPECT_EQ(window.value, 21333);
    EXPECT_THROW(progress.UpdateProgress(64002), ProgressValueFault);
}

TEST(UpdateProgress, WithoutInitProgressTheScaleIsZero) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    EXPECT_THROW(progress.UpdateProgress(1), Fault);
    progress.InitProgress(5);
    progress.DestroyProgress();
    EXPECT_THROW(progress.UpdateProgress(1), Fault);
}

TEST(DestroyProgress, UnloadsTheWindowAndTheNextUseStartsAfresh) {
    FakeProgressWindow window;
    ProgressLogic progress(window);
    progress.SetCaption("Loading Exercise Library");
    progress.InitProgress(245);
    progress.UpdateProgress(100);
    progress.DestroyProgress();
    EXPECT_FALSE(window.loaded);
    EXPECT_FALSE(window.visible);
    EXPECT_EQ(progress.ProgressScale, 0);
    progress.InitProgress(3);
    EXPECT_EQ(window.loads, 2);
    EXPECT_EQ(window.Caption(), "Building Report");
    EXPECT_EQ(window.value, 0);
    EXPECT_EQ(window.max, 3);
}
