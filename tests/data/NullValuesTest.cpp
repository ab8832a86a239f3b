#include "data/NullValues.h"
#include "support/Dates.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;

namespace {
const QVariant kNull = QVariant(QMetaType::fromType<QString>());
}

TEST(NullToText, GivesTheEmptyTextForANull) {
    EXPECT_EQ(NullToText(kNull), "");
    EXPECT_EQ(NullToText(QVariant("O'Brien")), "O'Brien");
    EXPECT_EQ(NullToText(QVariant(12)), "12");
}

TEST(NullToInt, GivesZeroForANullAndForATextWithoutANumber) {
    EXPECT_EQ(NullToInt(kNull), 0);
    EXPECT_EQ(NullToInt(QVariant(QMetaType::fromType<int>())), 0);
    EXPECT_EQ(NullToInt(QVariant("UPS Ground")), 0);
}

TEST(NullToInt, ReadsTheLeadingNumberRounded) {
    EXPECT_EQ(NullToInt(QVariant("12 Main Street")), 12);
    EXPECT_EQ(NullToInt(QVariant("12")), 12);
    EXPECT_EQ(NullToInt(QVariant(7)), 7);
    EXPECT_EQ(NullToInt(QVariant("2.5")), 2);
    EXPECT_EQ(NullToInt(QVariant("3.5")), 4);
}

TEST(NullToInt, AValueBeyondSixteenBitsIsAFault) {
    EXPECT_EQ(NullToInt(QVariant("32767")), 32767);
    EXPECT_THROW(NullToInt(QVariant("32768")), OverflowFault);
    EXPECT_THROW(NullToInt(QVariant(100000)), OverflowFault);
}

TEST(NullToDate, GivesFirstJanuary1990ForAnythingThatIsNoDate) {
    const QDateTime expected(QDate(1990, 1, 1), QTime(0, 0));
    EXPECT_EQ(NullToDate(kNull), expected);
    EXPECT_EQ(NullToDate(QVariant("")), expected);
    EXPECT_EQ(NullToDate(QVariant("next Tuesday")), expected);
    EXPECT_EQ(NullToDate(QVariant("31/31/31")), expected);
}

TEST(NullToDate, KeepsADate) {
    const QDateTime when(QDate(2026, 11, 22), QTime(9, 15));
    EXPECT_EQ(NullToDate(QVariant(when)), when);
    EXPECT_EQ(NullToDate(QVariant("2026-11-22 09:15:00")), when);
}

TEST(RequiredValues, ANullIsAFault) {
    EXPECT_THROW(RequiredInt16(kNull, "Reps"), TypeFault);
    EXPECT_THROW(RequiredText(kNull, "code"), TypeFault);
    EXPECT_THROW(RequiredBool(kNull, "HasVideo"), TypeFault);
    EXPECT_THROW(RequiredInt16(QVariant("ten"), "Reps"), TypeFault);
    EXPECT_THROW(RequiredInt16(QVariant(40000), "Reps"), OverflowFault);
    EXPECT_EQ(RequiredInt32(QVariant(100001), "ExerciseID"), 100001);
}

TEST(NullToDate, ReadsADateTypedInACommonForm) {
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(NullToDate(QVariant(QStringLiteral("12/31/2027"))),
              QDateTime(QDate(2027, 12, 31), QTime(0, 0)));
    EXPECT_EQ(NullToDate(QVariant(QStringLiteral("UPS Ground"))), UnreadableDate());
    QLocale::setDefault(before);
}
