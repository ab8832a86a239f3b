#include "fakes/FakeControls.h"
#include "shell/AppState.h"
#include "shell/PreferencesLogic.h"

#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;

namespace {

struct Dialog {
    Dialog() : logic(state, {cover, callTVX, tips}, desktop) { logic.InitPreferences(); }
    AppState state;
    FakeCheckBox cover, callTVX, tips;
    FakeDesktop desktop;
    PreferencesLogic logic;
};

} // namespace

TEST(Preferences, TheBoxesShowTheOptions) {
    Dialog d;
    EXPECT_EQ(d.cover.value, 1);
    EXPECT_EQ(d.callTVX.value, 0);
    EXPECT_EQ(d.tips.value, 1);
}

TEST(Preferences, OkCopiesTheBoxesIntoTheOptions) {
    Dialog d;
    d.cover.value = 0;
    d.callTVX.value = 1;
    d.tips.value = 2; // any value above 0 counts as ticked
    EXPECT_TRUE(d.logic.cmdOKCancel("OK"));
    EXPECT_FALSE(d.state.Prefs.PrintPatientCover);
    EXPECT_TRUE(d.state.Prefs.PrintCallTVX);
    EXPECT_TRUE(d.state.Prefs.ShowTips);
}

TEST(Preferences, CancelAfterTickingABoxLeavesTheOptionsAsTheyWere) {
    Dialog d;
    d.callTVX.value = 1;
    d.tips.value = 0;
    EXPECT_TRUE(d.logic.cmdOKCancel("Cancel"));
    EXPECT_FALSE(d.state.Prefs.PrintCallTVX);
    EXPECT_TRUE(d.state.Prefs.ShowTips);
}

TEST(Preferences, EditOpensTheCoverTextAndIgnoresAFailure) {
    Dialog d;
    d.state.AppFolder = "/data/Tarvex";
    d.desktop.result = false;
    d.logic.cmdEditCoverSheet();
    ASSERT_EQ(d.desktop.opened.size(), 1);
    EXPECT_TRUE(d.desktop.opened[0].endsWith("Cover.Txt", Qt::CaseInsensitive));
    EXPECT_TRUE(d.desktop.opened[0].startsWith("/data/Tarvex/"));
}
