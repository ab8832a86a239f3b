#include "print/OrderForm.h"
#include "order/OrderFakes.h"
#include "print/PrinterModule.h"
#include "print/RecordingSurface.h"

#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::UsLocale;

using OrderFormTest = UsLocale;

namespace {

void AddTapeExercise(ExerciseProgram& p, const QString& code, bool hasVideo = true) {
    ExerciseEntry& e = p.Exercise(p.NumExercises);
    e.Code = code;
    e.Desc = "Exercise " + code;
    e.HasVideo = hasVideo;
    e.VideoReps = 10;
    e.VideoHold = 5;
    e.VideoSets = 2;
    ++p.NumExercises;
}

QStringList TextsOf(const RecordingSurface& surface) {
    QStringList texts;
    for (const RecordedOp& op : surface.Texts())
        texts << op.text;
    return texts;
}

} // namespace

TEST_F(OrderFormTest, CodesTwelveAndThirtyAtSiteThousandGive1042InAnyOrder) {
    ExerciseProgram p;
    AddTapeExercise(p, "12");
    AddTapeExercise(p, "30");
    EXPECT_EQ(OrderChecksum(1000, p), 1042);
    std::swap(p.Exercise(0), p.Exercise(1));
    EXPECT_EQ(OrderChecksum(1000, p), 1042);
    EXPECT_EQ(ChecksumText(1042), "CHECKSUM: 1042");

    AppState state;
    state.SiteNumber = 1000;
    state.Program = p;
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    EXPECT_NE(surface.FindText("CHECKSUM: 1042"), nullptr);
}

TEST_F(OrderFormTest, OnlyTheLeadingNumberOfACodeOfAVideoExerciseCounts) {
    ExerciseProgram p;
    AddTapeExercise(p, "A12");
    AddTapeExercise(p, "12A");
    AddTapeExercise(p, "500", false);
    AddTapeExercise(p, " 7");
    EXPECT_EQ(OrderChecksum(1000, p), 1019);
}

TEST_F(OrderFormTest, SiteZeroWithNoTapeAsksForTheChecksumByHand) {
    ExerciseProgram p;
    EXPECT_EQ(OrderChecksum(0, p), 0);
    EXPECT_EQ(ChecksumText(0), "CHECKSUM (to be filled by TVX):____");
    EXPECT_EQ(ChecksumText(-5), "CHECKSUM (to be filled by TVX):____");
    AppState state;
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    EXPECT_NE(surface.FindText("CHECKSUM (to be filled by TVX):____"), nullptr);
}

TEST_F(OrderFormTest, AnExerciseWithoutVideoLeavesItsRowBlankAndTheRowsBelowInPlace) {
    AppState state;
    AddTapeExercise(state.Program, "12");
    AddTapeExercise(state.Program, "20", false);
    AddTapeExercise(state.Program, "30");
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    const RecordedOp* first = surface.FindText("12");
    const RecordedOp* third = surface.FindText("30");
    ASSERT_NE(first, nullptr);
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(surface.FindText("20"), nullptr);
    EXPECT_EQ(surface.FindText("Exercise 20"), nullptr);
    // Rows keep their places: the third row lies two row steps below the first.
    const double rowStep = third->y - first->y;
    EXPECT_GT(rowStep, 0);
    const RecordedOp* desc = surface.FindText("Exercise 12");
    ASSERT_NE(desc, nullptr);
    EXPECT_EQ(desc->x, 2880);
    EXPECT_NE(surface.FindText(" 10 "), nullptr);
    EXPECT_NE(surface.FindText("5s"), nullptr);
    EXPECT_NE(surface.FindText(" 2 "), nullptr);
    // 21 row rules and the top rule across, 6 column lines, the section divider.
    EXPECT_EQ(surface.OpsOf(RecordedOp::Kind::Line).size(), 22 + 6 + 1);
}

TEST_F(OrderFormTest, TotalsUseTheFormsOwnShippingRates) {
    ExerciseProgram p;
    p.Item(0) = {"P001", "Exercise Video", 1, Currency{199500}};
    p.Tax = 5;
    p.ShipMethod = "UPS 2-Day";
    Currency sub, ship, tax, total;
    ComputeOrderTotals(p, sub, ship, tax, total);
    EXPECT_EQ(sub, Currency{199500});
    EXPECT_EQ(tax, Currency{9975});
    EXPECT_EQ(ship, Currency::FromWhole(8)); // the dialog shows 12 for the same service
    EXPECT_EQ(total, Currency{289475});
    EXPECT_EQ(OrderFormShipping("UPS Ground"), Currency::FromWhole(4));
    EXPECT_EQ(OrderFormShipping("UPS Next Day"), Currency::FromWhole(14));
    p.Item(1) = {"P002", "Band Kit", 3, Currency::FromWhole(10)};
    ComputeOrderTotals(p, sub, ship, tax, total);
    EXPECT_EQ(sub, Currency{499500});
}

TEST_F(OrderFormTest, AnUnknownShipMethodCostsNothingAndTicksNoBox) {
    ExerciseProgram p;
    p.ShipMethod = "UPS 2 Day";
    p.Item(0) = {"P003", "Gym Ball", 1, Currency::FromWhole(20)};
    Currency sub, ship, tax, total;
    ComputeOrderTotals(p, sub, ship, tax, total);
    EXPECT_EQ(ship, Currency{});
    EXPECT_EQ(total, Currency::FromWhole(20));
    AppState state;
    state.Program = p;
    RecordingSurface surface;
    PrintShippingLines(surface, state, 0);
    const QStringList texts = TextsOf(surface);
    EXPECT_FALSE(texts.contains(QString(QChar(kTickedBoxCode))));
    EXPECT_TRUE(texts.contains("$8.00 2 Day        "));
    EXPECT_TRUE(texts.contains("$4.00 Ground     "));
    EXPECT_TRUE(texts.contains("$14.00 Next Day  "));
}

TEST_F(OrderFormTest, APurchaseOrderPrintsTheCardPromptsBareAndItsNumberOnItsRow) {
    AppState state;
    state.Program.PayMethod = "Purchase Order";
    state.Program.CardNum = "PO-4471";
    state.Program.NameOnCard = "Dana Reyes";
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    const QStringList texts = TextsOf(surface);
    EXPECT_TRUE(texts.contains("Card #: "));
    EXPECT_TRUE(texts.contains("Exp Date: "));
    EXPECT_TRUE(texts.contains("Name: "));
    EXPECT_FALSE(texts.contains("Card #: PO-4471"));
    EXPECT_TRUE(texts.contains("PO-4471"));
    EXPECT_FALSE(texts.join("|").contains("Dana Reyes"));
}

TEST_F(OrderFormTest, ACardPaymentPrintsItsDetailsOrBlanks) {
    AppState state;
    state.Program.PayMethod = "VISA";
    state.Program.CardNum = "4111";
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    const QStringList texts = TextsOf(surface);
    EXPECT_TRUE(texts.contains("Card #: 4111"));
    EXPECT_TRUE(texts.contains("Exp Date: ______/______"));
    EXPECT_TRUE(texts.contains("Name: ______________________________"));
    EXPECT_TRUE(texts.contains("_____________________"));
}

TEST_F(OrderFormTest, AnOrderWithNoItemsHasEmptyLinesAndBlankAmounts) {
    ExerciseProgram p;
    EXPECT_EQ(OrderItemLines(p), "\r\n\r\n\r\n");
    EXPECT_EQ(OrderPriceLines(p),
              "___x $0.00 = $_____\r\n___x $0.00 = $_____\r\n___x $0.00 = $_____\r\n");
    AppState state;
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    EXPECT_EQ(TextsOf(surface).count("= $__________"), 4);
}

TEST_F(OrderFormTest, PriceLinesAndAmountsOfAnOrder) {
    AppState state;
    state.Program.Item(0) = {"P001", "Exercise Video", 2, Currency{199500}};
    state.Program.ShipMethod = "UPS Ground";
    EXPECT_EQ(OrderPriceLines(state.Program),
              "  2  x $19.95 = $39.90\r\n___x $0.00 = $_____\r\n___x $0.00 = $_____\r\n");
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    const QStringList texts = TextsOf(surface);
    EXPECT_TRUE(texts.contains("= $39.90"));
    EXPECT_TRUE(texts.contains("= $4.00"));
    EXPECT_TRUE(texts.contains("= $0.00"));
    EXPECT_TRUE(texts.contains("= $43.90"));
    EXPECT_TRUE(texts.contains("Exercise Video"));
}

TEST_F(OrderFormTest, BlanksForAMissingAddressPatientProviderAndDate) {
    AppState state;
    state.SiteNumber = 1000;
    state.Clinic.Name = "Riverside PT";
    state.Clinic.Phone = "(217) 555-0100";
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    const QStringList texts = TextsOf(surface);
    EXPECT_TRUE(texts.contains("Riverside PT, (217) 555-0100"));
    EXPECT_TRUE(texts.contains(" 1000 "));
    EXPECT_EQ(texts.count("________________________"), 6 * 2 + 2);
    EXPECT_EQ(texts.count("(____)___________________"), 3);
    EXPECT_TRUE(texts.contains("_________"));
    EXPECT_TRUE(texts.contains("___x per_______"));
    EXPECT_TRUE(texts.contains("3. TAPE CONTENT"));
    EXPECT_EQ(surface.OpsOf(RecordedOp::Kind::Box).size(), 1);
}

TEST_F(OrderFormTest, TheFormIsLaidOutAtTheInchOfItsOwnScale) {
    AppState state;
    state.Print.InchTwips = 1440; // left by a job on paper
    state.Print.PrintScale = 0.5; // the preview's zoom
    RecordingSurface surface;
    PrintVideoOrderForm(surface, state);
    EXPECT_EQ(state.Print.InchTwips, 720);
    EXPECT_EQ(state.Print.MarginTwips, 720);
    const RecordedOp* site = surface.FindText("Site #:");
    ASSERT_NE(site, nullptr);
    EXPECT_DOUBLE_EQ(site->x, 720.0);
}

TEST_F(OrderFormTest, TheChecksumReadsCodesAsDecimalNumbersOnly) {
    ExerciseProgram p;
    for (const char* code : {"&H10", "&O17", "1E3", "12A", "A12"})
        AddTapeExercise(p, code);
    // 0 + 0 + 1 + 12 + 0: no hexadecimal, octal or exponent.
    EXPECT_EQ(OrderChecksum(1000, p), 1013);
}

TEST_F(OrderFormTest, TheChecksumSkipsBlanksInACodeAndRoundsAfterEachCode) {
    ExerciseProgram spaced;
    AddTapeExercise(spaced, " 1 2");
    EXPECT_EQ(OrderChecksum(1000, spaced), 1012);

    // 1000 + 12.5 = 1012.5 rounds to 1012, + 12.5 = 1024.5 rounds to 1024; rounding only
    // the total would give 1025.
    ExerciseProgram halves;
    AddTapeExercise(halves, "12.5");
    EXPECT_EQ(OrderChecksum(1000, halves), 1012);
    AddTapeExercise(halves, "12.5");
    EXPECT_EQ(OrderChecksum(1000, halves), 1024);
    AddTapeExercise(halves, "1.5");
    EXPECT_EQ(OrderChecksum(1000, halves), 1026); // 1025.5 rounds to the even 1026
}

TEST_F(OrderFormTest, EachKindOfCodeCountsWithItsDecimalValue) {
    const std::pair<const char*, int> codes[] = {{"&H10", 0}, {"&O17", 0}, {"1E3", 1},
                                                 {"12A", 12}, {"A12", 0},  {" 1 2", 12},
                                                 {"12.5", 12}}; // 1012.5 rounds to 1012
    for (const auto& [code, value] : codes) {
        ExerciseProgram p;
        AddTapeExercise(p, code);
        EXPECT_EQ(OrderChecksum(1000, p), 1000 + value) << code;
    }
}
