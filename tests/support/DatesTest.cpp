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

namespace {

// Runs with the given default locale and puts the one before back.
class UnderLocale {
public:
    explicit UnderLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~UnderLocale() { QLocale::setDefault(before_); }

private:
    QLocale before_;
};

QDateTime Day(int y, int m, int d, QTime t = QTime(0, 0)) {
    return QDateTime(QDate(y, m, d), t);
}

} // namespace

TEST(TypedDates, UnderEnglishOfTheUnitedStates) {
    UnderLocale us(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(ParseDate("12/31/2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("12/31/27"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("31/12/2027"), Day(2027, 12, 31)); // only day first makes a date
    EXPECT_EQ(ParseDate("3/4/2027"), Day(2027, 3, 4));     // month first, as the locale
    EXPECT_EQ(ParseDate("12-31-2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("December 31, 2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("Friday, December 31, 2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("Dec 31 2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("31-Dec-2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("12/31/2027 2:30 PM"), Day(2027, 12, 31, QTime(14, 30)));
    EXPECT_EQ(ParseDate("12/31/2027 14:30:05"), Day(2027, 12, 31, QTime(14, 30, 5)));
    EXPECT_EQ(ParseDate("2027-12-31"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("2027-12-31T08:15"), Day(2027, 12, 31, QTime(8, 15)));
    EXPECT_EQ(ParseDate("1/1/45"), Day(1945, 1, 1)); // the classic two-digit window
}

TEST(TypedDates, UnderEnglishOfBritain) {
    UnderLocale gb(QLocale(QLocale::English, QLocale::UnitedKingdom));
    EXPECT_EQ(ParseDate("31/12/2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("3/4/2027"), Day(2027, 4, 3)); // day first, as the locale
    EXPECT_EQ(ParseDate("31 December 2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("31 Dec 2027 09:05"), Day(2027, 12, 31, QTime(9, 5)));
    EXPECT_EQ(ParseDate("2027-12-31"), Day(2027, 12, 31));
}

TEST(TypedDates, UnderGerman) {
    UnderLocale de(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(ParseDate("31.12.2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("31.12.27"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("31. Dezember 2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("31.12.2027 14:30"), Day(2027, 12, 31, QTime(14, 30)));
    EXPECT_EQ(ParseDate("2027-12-31"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("December 31, 2027"), Day(2027, 12, 31)); // English names too
}

TEST(TypedDates, UnderTheCLocale) {
    UnderLocale c(QLocale::c());
    EXPECT_EQ(ParseDate("12/31/2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("2027-12-31"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("31 Dec 2027"), Day(2027, 12, 31));
    EXPECT_EQ(ParseDate("Dec 31, 2027 2:30 AM"), Day(2027, 12, 31, QTime(2, 30)));
}

TEST(TypedDates, TextThatIsNoDateStaysNoDate) {
    for (const QLocale& locale : {QLocale(QLocale::English, QLocale::UnitedStates),
                                  QLocale(QLocale::English, QLocale::UnitedKingdom),
                                  QLocale(QLocale::German, QLocale::Germany), QLocale::c()}) {
        UnderLocale under(locale);
        for (const char* text :
             {"", "   ", "UPS Ground", "13/45/2027", "abc", "13/45", "2/30", "31.13.2027",
              "December", "2027", "12/31/2027 25:00", "12/31/2027 13:00 PM", "12/31/2027 14:30 m",
              "12/31/2027 soon", "Smarch 3, 2027", "1/1/100"})
            EXPECT_FALSE(ParseDate(text).has_value()) << text << " " << locale.name().toStdString();
    }
}

TEST(TypedDates, AMonthAndADayWithoutAYearAreOfThisYear) {
    const int year = QDate::currentDate().year();
    {
        UnderLocale us(QLocale(QLocale::English, QLocale::UnitedStates));
        EXPECT_EQ(ParseDate("12/31"), Day(year, 12, 31));
        EXPECT_EQ(ParseDate("3/4"), Day(year, 3, 4));
        EXPECT_EQ(ParseDate("December 31"), Day(year, 12, 31));
        EXPECT_EQ(ParseDate("12/31 14:30"), Day(year, 12, 31, QTime(14, 30)));
    }
    {
        UnderLocale gb(QLocale(QLocale::English, QLocale::UnitedKingdom));
        EXPECT_EQ(ParseDate("3/4"), Day(year, 4, 3));
        EXPECT_EQ(ParseDate("31 Dec"), Day(year, 12, 31));
    }
    {
        UnderLocale de(QLocale(QLocale::German, QLocale::Germany));
        EXPECT_EQ(ParseDate("31.12."), Day(year, 12, 31));
        EXPECT_EQ(ParseDate("3.4."), Day(year, 4, 3));
    }
}

TEST(TypedDates, AMonthAndAYearAreTheFirstOfThatMonth) {
    for (const QLocale& locale : {QLocale(QLocale::English, QLocale::UnitedStates),
                                  QLocale(QLocale::German, QLocale::Germany), QLocale::c()}) {
        UnderLocale under(locale);
        EXPECT_EQ(ParseDate("12/2027"), Day(2027, 12, 1)) << locale.name().toStdString();
        EXPECT_EQ(ParseDate("2027-12"), Day(2027, 12, 1)) << locale.name().toStdString();
        EXPECT_EQ(ParseDate("12/45"), Day(1945, 12, 1)) << locale.name().toStdString();
        EXPECT_EQ(ParseDate("Dec 2027"), Day(2027, 12, 1)) << locale.name().toStdString();
    }
}

TEST(TypedDates, ATimeAloneIsThatTimeOfTheFirstDayOfTheScale) {
    UnderLocale us(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(ParseDate("14:30"), Day(1899, 12, 30, QTime(14, 30)));
    EXPECT_EQ(ParseDate("2:30:05 PM"), Day(1899, 12, 30, QTime(14, 30, 5)));
    EXPECT_FALSE(ParseDate("24:00").has_value());
}

TEST(TypedDates, HoursWithAmOrPm) {
    UnderLocale us(QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(ParseDate("12/31/2027 12:30 AM"), Day(2027, 12, 31, QTime(0, 30)));
    EXPECT_EQ(ParseDate("12/31/2027 0:30 AM"), Day(2027, 12, 31, QTime(0, 30)));
    EXPECT_EQ(ParseDate("12/31/2027 12:30 PM"), Day(2027, 12, 31, QTime(12, 30)));
    EXPECT_EQ(ParseDate("12/31/2027 2 PM"), Day(2027, 12, 31, QTime(14, 0)));
    EXPECT_EQ(ParseDate("12/31/2027 2:30p.m."), Day(2027, 12, 31, QTime(14, 30)));
    EXPECT_EQ(ParseDate("12/31/2027 11:59:59 pm"), Day(2027, 12, 31, QTime(23, 59, 59)));
}

TEST(TypedDates, DigitsOfOtherScriptsReadAsOurs) {
    UnderLocale arabic(QLocale(QLocale::Arabic, QLocale::Egypt));
    // 31/12/2027 14:30 in Arabic-Indic digits.
    EXPECT_EQ(ParseDate(QString::fromUtf8("\u0663\u0661/\u0661\u0662/\u0662\u0660\u0662\u0667 "
                                          "\u0661\u0664:\u0663\u0660")),
              Day(2027, 12, 31, QTime(14, 30)));
}

TEST(Dates, ShownDatesAreReadBackUnderEveryLocale) {
    const QDateTime dates[] = {Day(2027, 12, 31, QTime(14, 30, 5)),
                               Day(1899, 12, 30),
                               Day(2027, 3, 4),
                               Day(1945, 1, 1, QTime(9, 5)),
                               Day(2029, 7, 8, QTime(23, 59, 59)),
                               Day(2030, 1, 2)};
    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    ASSERT_GT(locales.size(), 100);
    for (const QLocale& locale : locales) {
        UnderLocale under(locale);
        for (const QDateTime& date : dates) {
            const QDateTime midnight(date.date(), QTime(0, 0));
            EXPECT_EQ(ParseDate(ShortDate(date)), midnight)
                << locale.name().toStdString() << " " << ShortDate(date).toStdString();
            EXPECT_EQ(ParseDate(DefaultDateText(date)), date)
                << locale.name().toStdString() << " " << DefaultDateText(date).toStdString();
        }
    }
}
