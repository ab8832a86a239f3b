#include "print/PrinterModule.h"
#include "print/RecordingSurface.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;

namespace {

using Kind = RecordedOp::Kind;

struct PageFixture : ::testing::Test {
    RecordingSurface surface;
    AppState state;
    PrintState& print = state.Print;

    void SetUp() override {
        print.MarginTwips = 720;
        surface.SetFontSize(12); // 120 twips a character, 288 a line
    }
};

} // namespace

TEST(SplitTextLines, EmptyTextGivesNoLine) {
    EXPECT_TRUE(SplitTextLines(QString()).isEmpty());
}

TEST(SplitTextLines, TrailingLineEndGivesNoFurtherLine) {
    EXPECT_EQ(SplitTextLines("one\r\ntwo\r\n"), QStringList({"one", "two"}));
    EXPECT_EQ(SplitTextLines("one\r\ntwo"), QStringList({"one", "two"}));
}

TEST(SplitTextLines, EmptyLineInsideIsKept) {
    EXPECT_EQ(SplitTextLines("one\r\n\r\ntwo"), QStringList({"one", "", "two"}));
}

TEST_F(PageFixture, EmptyTextBlockPrintsNothing) {
    surface.SetCurrentY(1000);
    PrintTextBlock(surface, 500, QString());
    EXPECT_TRUE(surface.Texts().isEmpty());
    EXPECT_EQ(surface.CurrentY(), 1000);
}

TEST_F(PageFixture, TextBlockWithTrailingLineEndPrintsSameLines) {
    RecordingSurface other;
    other.SetFontSize(12);
    PrintTextBlock(surface, 500, "a\r\nb\r\n");
    PrintTextBlock(other, 500, "a\r\nb");
    ASSERT_EQ(surface.Texts().size(), 2);
    ASSERT_EQ(other.Texts().size(), 2);
    EXPECT_EQ(surface.CurrentY(), other.CurrentY());
    EXPECT_EQ(surface.Texts()[1].x, 500);
    EXPECT_EQ(surface.Texts()[1].y, 288);
}

TEST_F(PageFixture, SpacedTextBlockStepsFixedLines) {
    surface.SetCurrentY(100);
    PrintTextBlockSpaced(surface, print, 300, "a\r\nb");
    ASSERT_EQ(surface.Texts().size(), 2);
    EXPECT_EQ(surface.Texts()[1].y, 320);
    EXPECT_EQ(surface.CurrentY(), 540);
}

TEST_F(PageFixture, WordExactlyAsWideAsTheRestOfTheColumnStaysOnTheLine) {
    surface.SetCurrentY(2000);
    // "abcd " is 600 twips and "efghi" another 600: together exactly the width.
    PrintWrappedText(surface, "abcd efghi", 1000, 1200);
    const auto texts = surface.Texts();
    ASSERT_EQ(texts.size(), 2);
    EXPECT_EQ(texts[1].text, "efghi");
    EXPECT_EQ(texts[1].x, 1600);
    EXPECT_EQ(texts[1].y, 2000);
}

TEST_F(PageFixture, WordOneCharacterWiderWraps) {
    surface.SetCurrentY(2000);
    PrintWrappedText(surface, "abcd efghij", 1000, 1200);
    const auto texts = surface.Texts();
    ASSERT_EQ(texts.size(), 2);
    EXPECT_EQ(texts[1].x, 1000);
    EXPECT_EQ(texts[1].y, 2288);
}

TEST_F(PageFixture, HyphenatedWordWrapsAfterEachHyphen) {
    PrintWrappedText(surface, "self-care-plan", 1000, 600);
    const auto texts = surface.Texts();
    ASSERT_EQ(texts.size(), 3);
    EXPECT_EQ(texts[0].text, "self-");
    EXPECT_EQ(texts[1].text, "care-");
    EXPECT_EQ(texts[2].text, "plan");
    EXPECT_EQ(texts[1].x, 1000);
    EXPECT_EQ(texts[1].y, 288);
    EXPECT_EQ(texts[2].y, 576);
}

TEST_F(PageFixture, TokenWiderThanColumnOverrunsOnItsOwnLine) {
    PrintWrappedText(surface, "a extraordinarily", 1000, 600);
    const auto texts = surface.Texts();
    ASSERT_EQ(texts.size(), 2);
    EXPECT_EQ(texts[1].text, "extraordinarily");
    EXPECT_EQ(texts[1].x, 1000);
    EXPECT_EQ(texts[1].y, 288);
}

TEST(FindBreakChar, FindsFirstBreakAtOrAfterStart) {
    EXPECT_EQ(FindBreakChar(1, "ab cd-e", " -"), 3);
    EXPECT_EQ(FindBreakChar(4, "ab cd-e", " -"), 6);
    EXPECT_EQ(FindBreakChar(7, "ab cd-e", " -"), 0);
}

TEST_F(PageFixture, FooterWithoutCallLinesHoldsTheNoticeOnly) {
    state.Prefs.PrintCallTVX = false;
    PrintPageFooter(surface, state);
    const auto texts = surface.Texts();
    ASSERT_EQ(texts.size(), 1);
    EXPECT_EQ(texts[0].text, MakerNotice());
    // 11 inches less three 12 point lines less half an inch.
    EXPECT_EQ(texts[0].y, 15840 - 3 * 288 - 720);
}

TEST_F(PageFixture, FooterWithCallLinesIsBoldAndCentred) {
    state.Prefs.PrintCallTVX = true;
    state.TollFreeOrder = "1-888-555-0147";
    PrintPageFooter(surface, state);
    const auto texts = surface.Texts();
    ASSERT_EQ(texts.size(), 3);
    EXPECT_EQ(texts[0].text, "Call Tarvex, Inc. toll free at 1-888-555-0147");
    EXPECT_TRUE(texts[0].font.Bold);
    EXPECT_EQ(texts[0].x, (12240 - texts[0].text.size() * 120) / 2.0);
    EXPECT_EQ(texts[1].text, "to order your video tape of this exercise program.");
    EXPECT_EQ(texts[1].y, texts[0].y + 288);
    EXPECT_FALSE(texts[2].font.Bold);
    EXPECT_FALSE(surface.FontBold());
}

TEST_F(PageFixture, LandscapeFooterLiesEightAndAHalfInchesDownAndEndsAtTheRightMargin) {
    SetPageOrientation(surface, print, kLandscape);
    EXPECT_EQ(print.PageWidthInches, 11.0);
    EXPECT_EQ(print.PageHeightInches, 8.5);
    EXPECT_EQ(surface.Orientation(), kLandscape);
    PrintPageFooter(surface, state);
    const RecordedOp notice = surface.Texts().last();
    EXPECT_EQ(notice.y, 12240 - 3 * 288 - 720);
    EXPECT_EQ(notice.x + notice.text.size() * 120, 15840 - 720);
}

TEST_F(PageFixture, SmallNoticeIsArialTenPoint) {
    surface.SetFontName("Courier");
    PrintSmallNotice(surface, print);
    const RecordedOp notice = surface.Texts().last();
    EXPECT_EQ(notice.font.Name, "Arial");
    EXPECT_EQ(notice.font.Size, 10);
    EXPECT_EQ(notice.y, 15840 - 3 * 288 - 720); // measured in the font on entry
}

TEST_F(PageFixture, OrientationPortraitAndAnyOtherValue) {
    SetPageOrientation(surface, print, kPortrait);
    EXPECT_EQ(print.PageWidthInches, 8.5);
    SetPageOrientation(surface, print, 7);
    EXPECT_EQ(print.PageWidthInches, 11.0);
    EXPECT_EQ(surface.Orientation(), kLandscape);
}

TEST_F(PageFixture, CheckBoxesAndArrowUseTheSymbolFontAndRestoreTheFont) {
    surface.SetFontName("Arial");
    PrintCheckBox(surface, true);
    PrintCheckBox(surface, false);
    PrintArrow(surface);
    const auto texts = surface.Texts();
    ASSERT_EQ(texts.size(), 3);
    EXPECT_EQ(texts[0].text, QString(QChar(254)));
    EXPECT_EQ(texts[1].text, QString(QChar(111)));
    EXPECT_EQ(texts[2].text, QString(QChar(231)));
    EXPECT_EQ(texts[0].font.Name, "Wingdings");
    EXPECT_EQ(texts[1].x, 120); // stays on the line
    EXPECT_EQ(surface.FontName(), "Arial");
}

TEST_F(PageFixture, ShadedBandReachesAboveAndBelowTheHeading) {
    surface.SetFontSize(10); // 240 twips high
    PrintShadedBand(surface, 630, 10710, 3000);
    const auto bands = surface.OpsOf(Kind::FillBox);
    ASSERT_EQ(bands.size(), 1);
    EXPECT_EQ(bands[0].x, 630);
    EXPECT_EQ(bands[0].y, 3000 - 30);
    EXPECT_EQ(bands[0].x2, 10710);
    EXPECT_EQ(bands[0].y2, 3000 + 240 + 15);
    EXPECT_EQ(bands[0].color, QColor(0xE0, 0xE0, 0xE0));
}

TEST_F(PageFixture, PageTitleIsArialTwelveHalfAnInchDownCentred) {
    print.PrintScale = 0.5;
    print.InchTwips = 720;
    surface.SetFontName("Wingdings");
    PrintPageTitle(surface, print, "Clinic, 555");
    const RecordedOp title = surface.Texts().last();
    EXPECT_EQ(title.font.Name, "Arial");
    EXPECT_EQ(title.font.Size, 6);
    EXPECT_EQ(title.y, 360);
    EXPECT_EQ(title.x, (720 * 8.5 - 11 * 60) / 2.0);
}

TEST_F(PageFixture, LineStepsScaleWithoutRounding) {
    print.PrintScale = 0.25;
    NextLine(surface, print);
    EXPECT_EQ(surface.CurrentY(), 55);
    NextWideLine(surface, print);
    EXPECT_EQ(surface.CurrentY(), 120);
    SkipLines(surface, print, 1.5f);
    EXPECT_EQ(surface.CurrentY(), 202.5);
    SkipWideLines(surface, print, 1.75f);
    EXPECT_EQ(surface.CurrentY(), 307.5);
}

TEST(InchesToTwips, RoundsTiesToEvenAndFaultsOutOfRange) {
    PrintState print;
    print.InchTwips = 360;                       // a quarter of the paper scale
    EXPECT_EQ(InchesToTwips(print, 0.0625), 22); // 22.5 goes to the even 22
    print.InchTwips = 1080;
    EXPECT_EQ(InchesToTwips(print, 0.0625), 68); // 67.5 goes to 68
    print.InchTwips = 2880;
    EXPECT_EQ(InchesToTwips(print, 11.0), 31680);
    print.InchTwips = 1440;
    EXPECT_THROW(InchesToTwips(print, 23.0), OverflowFault);
}

TEST_F(PageFixture, MissingOrBrokenPictureLeavesTheBoxEmpty) {
    MediaPaths media;
    media.Picture = "/nonexistent/folder/";
    PrintPicture(surface, media, "1_1.JPG", 0, 0, 100, 100);
    PrintPicture(surface, media, QString(), 0, 0, 100, 100);
    EXPECT_TRUE(surface.OpsOf(Kind::Picture).isEmpty());
}
