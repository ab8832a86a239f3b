#include "support/Numbers.h"
#include "support/Booleans.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;

TEST(Val, ReadsTheLeadingNumberOfAText) {
    EXPECT_EQ(Val("12 Main Street"), 12);
    EXPECT_EQ(Val("  42"), 42);
    EXPECT_EQ(Val("1 2 3"), 123); // blanks are skipped anywhere
    EXPECT_EQ(Val("-7.5kg"), -7.5);
    EXPECT_EQ(Val("1e3"), 1000);
    EXPECT_EQ(Val("&H1F"), 31);
    EXPECT_EQ(Val("&O17"), 15);
}

TEST(Val, GivesZeroWithoutANumber) {
    EXPECT_EQ(Val("UPS Ground"), 0);
    EXPECT_EQ(Val(""), 0);
    EXPECT_EQ(Val("VISA"), 0);
    EXPECT_EQ(Val("-"), 0);
}

TEST(Rounding, TiesGoToTheEvenInteger) {
    EXPECT_EQ(RoundHalfEven(2.5), 2);
    EXPECT_EQ(RoundHalfEven(3.5), 4);
    EXPECT_EQ(RoundHalfEven(-2.5), -2);
    EXPECT_EQ(RoundHalfEven(2.6), 3);
    EXPECT_EQ(ToInt16(22.5), 22);
}

TEST(Int16, OverflowIsAFault) {
    EXPECT_EQ(ToInt16(32767), 32767);
    EXPECT_EQ(ToInt16(-32768), -32768);
    EXPECT_THROW(ToInt16(32768), OverflowFault);
    EXPECT_THROW(ToInt16(-32769), OverflowFault);
    EXPECT_THROW(ToInt32(3e9), OverflowFault);
}

TEST(Booleans, AreWrittenAsWordsAndReadBack) {
    EXPECT_EQ(BoolText(true), "True");
    EXPECT_EQ(BoolText(false), "False");
    EXPECT_TRUE(CBool("True"));
    EXPECT_TRUE(CBool("true"));
    EXPECT_FALSE(CBool("FALSE"));
    EXPECT_TRUE(CBool("-1"));
    EXPECT_FALSE(CBool("0"));
}

TEST(Booleans, AnyOtherTextIsAFault) {
    EXPECT_THROW(CBool("Yes please"), TypeFault);
    EXPECT_THROW(CBool(""), TypeFault);
    EXPECT_THROW(CBool(QString(5000, QChar(0xFFFD))), TypeFault);
}

TEST(DecimalVal, ReadsOnlyALeadingDecimalNumber) {
    EXPECT_EQ(DecimalVal("12A"), 12.0);
    EXPECT_EQ(DecimalVal("A12"), 0.0);
    EXPECT_EQ(DecimalVal(" 1 2"), 12.0);
    EXPECT_EQ(DecimalVal("12.5"), 12.5);
    EXPECT_EQ(DecimalVal("-7"), -7.0);
    EXPECT_EQ(DecimalVal("&H10"), 0.0); // Val reads 16
    EXPECT_EQ(DecimalVal("&O17"), 0.0); // Val reads 15
    EXPECT_EQ(DecimalVal("1E3"), 1.0);  // Val reads 1000
    EXPECT_EQ(DecimalVal(""), 0.0);
    EXPECT_EQ(DecimalVal("."), 0.0);
}

TEST(DecimalVal, EndsAtTheFirstCharacterThatIsNoPartOfTheNumber) {
    EXPECT_EQ(DecimalVal("1E3"), 1.0);
    EXPECT_EQ(DecimalVal("2D2"), 2.0); // Val reads 200
    EXPECT_EQ(DecimalVal("1.2.3"), 1.2);
    EXPECT_EQ(DecimalVal("1."), 1.0);
    EXPECT_EQ(DecimalVal("-.5"), -0.5);
    EXPECT_EQ(DecimalVal("+3x"), 3.0);
    EXPECT_EQ(DecimalVal("-"), 0.0);
    EXPECT_EQ(DecimalVal("\t4\r\n2"), 42.0);
    EXPECT_EQ(DecimalVal(QString::fromUtf8("\u0661\u0662")), 0.0); // only the digits 0 to 9
    EXPECT_EQ(DecimalVal("9999999999"), 9999999999.0);
}
