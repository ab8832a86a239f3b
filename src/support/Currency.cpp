#include "support/Currency.h"

#include "support/Numbers.h"

#include <cmath>
#include <limits>

namespace tarvex {

namespace {

// Takes away one occurrence of a text at the start or at the end.
bool StripAffix(QString& text, const QString& affix) {
    if (affix.isEmpty())
        return false;
    if (text.startsWith(affix)) {
        text = text.mid(affix.size()).trimmed();
        return true;
    }
    if (text.endsWith(affix)) {
        text.chop(affix.size());
        text = text.trimmed();
        return true;
    }
    return false;
}

// Takes away a sign before or after the number: true for a minus, false for a plus,
// nullopt when there is none.
std::optional<bool> StripSign(QString& text, const QLocale& locale) {
    const QString minus = locale.negativeSign();
    const QString plus = locale.positiveSign();
    for (const QString& sign : {minus, QStringLiteral("-"), plus, QStringLiteral("+")}) {
        if (StripAffix(text, sign))
            return sign == minus || sign == QLatin1String("-");
    }
    return std::nullopt;
}

// Digits with at most one decimal point, into ten-thousandths; nullopt for anything else
// or an amount beyond the range.
std::optional<int64_t> DecimalUnits(const QString& digits, const QString& point) {
    const qsizetype at = digits.indexOf(point);
    const QString whole = at < 0 ? digits : digits.left(at);
    const QString fraction = at < 0 ? QString() : digits.mid(at + point.size());
    if (whole.isEmpty() && fraction.isEmpty())
        return std::nullopt;
    constexpr int64_t kLimit = std::numeric_limits<int64_t>::max() / 10;
    int64_t units = 0;
    for (QChar c : whole) {
        if (!c.isDigit() || units > kLimit / Currency::kScale)
            return std::nullopt;
        units = units * 10 + c.digitValue();
    }
    units *= Currency::kScale;
    int64_t step = Currency::kScale / 10;
    int firstDropped = -1;
    bool restNonZero = false;
    for (QChar c : fraction) {
        if (!c.isDigit())
            return std::nullopt;
        if (step > 0) {
            units += c.digitValue() * step;
            step /= 10;
        } else if (firstDropped < 0) {
            firstDropped = c.digitValue();
        } else if (c.digitValue() != 0) {
            restNonZero = true;
        }
    }
    // Rounding at the fourth decimal, ties to the even unit.
    if (firstDropped > 5 || (firstDropped == 5 && (restNonZero || units % 2 != 0)))
        ++units;
    return units;
}

} // namespace

Currency Currency::FromDouble(double value) {
    return Currency{static_cast<int64_t>(RoundHalfEven(value * kScale))};
}

std::optional<Currency> ParseCurrency(const QString& text, const QLocale& locale) {
    QString t = text.trimmed();
    bool negative = false;
    int signs = 0;
    if (t.size() >= 2 && t.startsWith(u'(') && t.endsWith(u')')) {
        negative = true;
        ++signs;
        t = t.mid(1, t.size() - 2).trimmed();
    }
    // One sign at most, on either side of the currency symbol.
    for (int side = 0; side < 2; ++side) {
        if (const std::optional<bool> minus = StripSign(t, locale)) {
            negative = *minus;
            ++signs;
        }
        if (side == 0)
            StripAffix(t, locale.currencySymbol(QLocale::CurrencySymbol));
    }
    if (signs > 1)
        return std::nullopt;
    const QString group = locale.groupSeparator();
    if (!group.isEmpty() && group != locale.decimalPoint())
        t.remove(group);
    const std::optional<int64_t> units = DecimalUnits(t, locale.decimalPoint());
    if (!units)
        return std::nullopt;
    return Currency{negative ? -*units : *units};
}

QString FormatCurrency(Currency value, const QLocale& locale) {
    // Whole cents, half away from zero, so that the double below is the nearest to them.
    constexpr int64_t kCent = Currency::kScale / 100;
    const int64_t magnitude = value.units < 0 ? -value.units : value.units;
    int64_t cents = (magnitude + kCent / 2) / kCent;
    if (value.units < 0)
        cents = -cents;
    // A locale without a currency of its own (the C locale) prints dollars, as the blanks
    // beside the amounts do.
    const double amount = static_cast<double>(cents) / 100.0;
    if (locale.currencySymbol(QLocale::CurrencySymbol).isEmpty()) {
        const QString digits = locale.toString(std::abs(amount), 'f', 2);
        return (cents < 0 ? QStringLiteral("-$") : QStringLiteral("$")) + digits;
    }
    return locale.toCurrencyString(amount, QString(), 2);
}

} // namespace tarvex
