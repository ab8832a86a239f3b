#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>
#include <optional>

namespace tarvex {

// A money amount in fixed point: ten-thousandths of the currency unit, as the classic
// Currency type keeps it, so sums of prices never drift.
struct Currency {
    int64_t units = 0; // 1.0 = 10000 units

    static constexpr int64_t kScale = 10000;
    static Currency FromDouble(double value);
    static constexpr Currency FromWhole(int64_t whole) { return Currency{whole * kScale}; }
    double ToDouble() const { return static_cast<double>(units) / kScale; }
    friend bool operator==(Currency, Currency) = default;

    friend constexpr Currency operator+(Currency a, Currency b) {
        return Currency{a.units + b.units};
    }
    friend constexpr Currency operator-(Currency a, Currency b) {
        return Currency{a.units - b.units};
    }
    friend constexpr Currency operator*(Currency a, int64_t factor) {
        return Currency{a.units * factor};
    }
    Currency& operator+=(Currency other) {
        units += other.units;
        return *this;
    }
};

// Reads an amount the way the classic conversion to currency does under a locale: blanks
// around it, the locale's currency symbol before or after the number, a sign or
// parentheses for a negative amount, the locale's group separators and decimal point.
// Digits beyond the fourth decimal are rounded half to even. Anything else, the empty
// text included, is no amount.
std::optional<Currency> ParseCurrency(const QString& text, const QLocale& locale = QLocale());

// The "Currency" format: the amount rounded to cents (half away from zero) with the
// locale's currency symbol and separators.
QString FormatCurrency(Currency value, const QLocale& locale = QLocale());

} // namespace tarvex
