#include "support/Dates.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;

TEST(Dates, TheClassicScaleStartsOn30December1899) {
    EXPECT_EQ(ZeroDate(), QDateTime(QDate(1899, 12, 30), QTime(0, 0)));
    EXPECT_EQ(DateFromSerial(32874), QDateTime(QDate(1990, 1, 1), QTime(0, 0)));
    EXPECT_EQ(UnreadableDate(), QDateTime(QDate(1990, 1, 1), QTime(0, 0)));
    EXPECT_EQ(DateFromSerial(1.5), QDateTime(QDate(1899, 12, 31), QTime(12, 0)));
}

TEST(Dates, ReadTheStoredFormAndTheShortDate) {
    EXPECT_EQ(ParseDate("2026-11-22 14:30:00"), QDateTime(QDate(2026, 11, 22), QTime(14, 30)));
    EXPECT_EQ(ParseDate("2026-11-22T14:30:00"), QDateTime(QDate(2026, 11, 22), QTime(14, 30)));
    const QDateTime day(QDate(2027, 3, 4), QTime(0, 0));
    EXPECT_EQ(ParseDate(ShortDate(day)), day);
    EXPECT_EQ(ParseDate(DateToStorage(day)), day);
}

TEST(Dates, ShortDateKeepsTheCenturySoItSurvivesTheRoundTrip) {
    const QDateTime old(QDate(1899, 12, 30), QTime(0, 0));
    EXPECT_TRUE(ShortDate(old).contains("1899"));
    EXPECT_EQ(CDate(ShortDate(old)), old);
}

TEST(Dates, ATextThatIsNoDateIsNotReadAsOne) {
    EXPECT_FALSE(ParseDate("").has_value());
    EXPECT_FALSE(ParseDate("soon").has_value());
    EXPECT_FALSE(ParseDate("2026-13-45").has_value());
    EXPECT_THROW(CDate(""), TypeFault);
}
