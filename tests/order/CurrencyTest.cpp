#include "support/Currency.h"
#include "order/OrderFakes.h"

#include <QDate>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::UsLocale;

namespace {
using Amount = std::optional<Currency>;
Currency Units(int64_t units) {
    return Currency{units};
}
} // namespace

using CurrencyText = UsLocale;

TEST_F(CurrencyText, ReadsPlainAndFormattedAmounts) {
    EXPECT_EQ(ParseCurrency("19.95"), Amount(Units(199500)));
    EXPECT_EQ(ParseCurrency("$19.95"), Amount(Units(199500)));
    EXPECT_EQ(ParseCurrency("  12 "), Amount(Units(120000)));
    EXPECT_EQ(ParseCurrency("$1,234.50"), Amount(Units(12345000)));
    EXPECT_EQ(ParseCurrency(".5"), Amount(Units(5000)));
    EXPECT_EQ(ParseCurrency("7."), Amount(Units(70000)));
}

TEST_F(CurrencyText, ReadsNegativeAmountsBySignOrParentheses) {
    EXPECT_EQ(ParseCurrency("-$1.00"), Amount(Units(-10000)));
    EXPECT_EQ(ParseCurrency("$-1.00"), Amount(Units(-10000)));
    EXPECT_EQ(ParseCurrency("($1.00)"), Amount(Units(-10000)));
    EXPECT_EQ(ParseCurrency("-2.5"), Amount(Units(-25000)));
}

TEST_F(CurrencyText, RoundsBeyondTheFourthDecimalHalfToEven) {
    EXPECT_EQ(ParseCurrency("1.23454"), Amount(Units(12345)));
    EXPECT_EQ(ParseCurrency("1.23455"), Amount(Units(12346)));
    EXPECT_EQ(ParseCurrency("1.23465"), Amount(Units(12346)));
    EXPECT_EQ(ParseCurrency("1.234651"), Amount(Units(12347)));
    EXPECT_EQ(ParseCurrency("0.00005"), Amount(Units(0)));
}

TEST_F(CurrencyText, TextsThatAreNoAmount) {
    for (const char* text : {"", "   ", "abc", "12abc", "A12", "$", "1.2.3", "()", "--1", "1 2"})
        EXPECT_EQ(ParseCurrency(text), std::nullopt) << text;
    EXPECT_EQ(ParseCurrency("99999999999999999999"), std::nullopt);
}

TEST_F(CurrencyText, FormatsWithTheSymbolAndTwoDecimalsRoundedHalfAway) {
    EXPECT_EQ(FormatCurrency(Units(199500)), "$19.95");
    EXPECT_EQ(FormatCurrency(Units(0)), "$0.00");
    EXPECT_EQ(FormatCurrency(Units(9975)), "$1.00");
    EXPECT_EQ(FormatCurrency(Units(14975)), "$1.50");
    EXPECT_EQ(FormatCurrency(Units(125)), "$0.01");
    EXPECT_EQ(FormatCurrency(Units(12345000)), "$1,234.50");
    EXPECT_EQ(ParseCurrency(FormatCurrency(Units(-10000))), Amount(Units(-10000)));
}

TEST(CurrencyFormat, ReadsBackWhatItWroteUnderAnotherLocale) {
    const QLocale german(QLocale::German, QLocale::Germany);
    const QString text = FormatCurrency(Units(12345000), german);
    EXPECT_TRUE(text.contains(u'€')) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("234,50"))) << text.toStdString();
    EXPECT_EQ(ParseCurrency(text, german), Amount(Units(12345000)));
    EXPECT_EQ(ParseCurrency("19,95", german), Amount(Units(199500)));
}

TEST(CurrencyArithmetic, AddsAndMultipliesExactly) {
    Currency sum;
    for (int i = 0; i < 3; ++i)
        sum += Currency::FromDouble(19.95);
    EXPECT_EQ(sum, Units(598500));
    EXPECT_EQ(Currency::FromWhole(10) * 3, Units(300000));
    EXPECT_EQ(Currency::FromWhole(12) - Units(5), Units(119995));
}

using VarToCurTest = UsLocale;

TEST_F(VarToCurTest, ConvertsNumbersAndAmountTexts) {
    EXPECT_EQ(VarToCur(QVariant(QStringLiteral("$19.95"))), Units(199500));
    EXPECT_EQ(VarToCur(QVariant(QStringLiteral("12"))), Units(120000));
    EXPECT_EQ(VarToCur(QVariant(12)), Units(120000));
    EXPECT_EQ(VarToCur(QVariant(0.9975)), Units(9975));
    EXPECT_EQ(VarToCur(QVariant(19.95 * 0.05)), Units(9975));
    EXPECT_EQ(VarToCur(QVariant(true)), Units(-10000));
}

TEST_F(VarToCurTest, AnythingThatDoesNotConvertGivesZero) {
    EXPECT_EQ(VarToCur(QVariant()), Units(0));
    EXPECT_EQ(VarToCur(QVariant(QString())), Units(0));
    EXPECT_EQ(VarToCur(QVariant(QStringLiteral(""))), Units(0));
    EXPECT_EQ(VarToCur(QVariant(QStringLiteral("Gym Ball"))), Units(0));
    EXPECT_EQ(VarToCur(QVariant(QStringLiteral("12 dollars"))), Units(0));
    EXPECT_EQ(VarToCur(QVariant(1e300)), Units(0));
    EXPECT_EQ(VarToCur(QVariant(QDate(2024, 5, 1))), Units(0));
}

TEST(CurrencySign, EveryLocalePrintsAmountsWithOne) {
    EXPECT_EQ(FormatCurrency(Units(199500), QLocale::c()).toStdString(), "$19.95");
    EXPECT_EQ(FormatCurrency(Units(-199500), QLocale::c()).toStdString(), "-$19.95");
    EXPECT_TRUE(FormatCurrency(Units(199500), QLocale(QLocale::German, QLocale::Germany))
                    .contains(QChar(0x20AC)));
    EXPECT_TRUE(FormatCurrency(Units(199500), QLocale(QLocale::English, QLocale::UnitedKingdom))
                    .startsWith(QChar(0x00A3)));
}
