#include "support/Numbers.h"

#include "support/Fault.h"

#include <cmath>
#include <limits>

namespace tarvex {

namespace {

QString WithoutBlanks(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (QChar c : text) {
        if (c != u' ' && c != u'\t' && c != u'\n' && c != u'\r')
            out.append(c);
    }
    return out;
}

int DigitValue(QChar c) {
    const char16_t u = c.toUpper().unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'A' && u <= u'F')
        return 10 + (u - u'A');
    return 99;
}

double RadixPrefixed(const QString& s) {
    const QChar kind = s.size() > 1 ? s.at(1).toUpper() : QChar();
    const int base = kind == u'H' ? 16 : (kind == u'O' ? 8 : 0);
    if (base == 0)
        return 0;
    qint64 value = 0;
    for (qsizetype i = 2; i < s.size() && DigitValue(s.at(i)) < base; ++i) {
        value = value * base + DigitValue(s.at(i));
        if (value > 0xFFFFFFFFLL)
            break;
    }
    return static_cast<double>(value);
}

// The decimal number at the start of s (blanks already taken out): an optional sign,
// digits with one decimal point. Returns its text, empty when there are no digits, and
// leaves at the first character after it.
QString LeadingDecimal(const QString& s, qsizetype& at) {
    qsizetype i = 0;
    QString number;
    if (i < s.size() && (s.at(i) == u'+' || s.at(i) == u'-'))
        number.append(s.at(i++));
    bool digits = false, point = false;
    for (; i < s.size(); ++i) {
        const QChar c = s.at(i);
        if (c.isDigit() && c.unicode() < 128) {
            number.append(c);
            digits = true;
        } else if (c == u'.' && !point) {
            number.append(c);
            point = true;
        } else {
            break;
        }
    }
    at = i;
    return digits ? number : QString();
}

} // namespace

double DecimalVal(const QString& text) {
    qsizetype end = 0;
    const QString number = LeadingDecimal(WithoutBlanks(text), end);
    // What follows the number ends it, an "E" too: "1E3" is 1, not 1000.
    return number.isEmpty() ? 0.0 : number.toDouble();
}

double Val(const QString& text) {
    const QString s = WithoutBlanks(text);
    if (s.startsWith(u'&'))
        return RadixPrefixed(s);
    qsizetype i = 0;
    QString number = LeadingDecimal(s, i);
    if (number.isEmpty())
        return 0;
    if (i < s.size() && (s.at(i).toUpper() == u'E' || s.at(i).toUpper() == u'D')) {
        QString exponent = "e";
        qsizetype j = i + 1;
        if (j < s.size() && (s.at(j) == u'+' || s.at(j) == u'-'))
            exponent.append(s.at(j++));
        const qsizetype firstDigit = j;
        while (j < s.size() && s.at(j).isDigit() && s.at(j).unicode() < 128)
            exponent.append(s.at(j++));
        if (j > firstDigit)
            number.append(exponent);
    }
    return number.toDouble();
}

double RoundHalfEven(double value) {
    return std::nearbyint(value); // the default rounding mode is to nearest, ties to even
}

int16_t ToInt16(double value) {
    const double r = RoundHalfEven(value);
    if (!(r >= std::numeric_limits<int16_t>::min() && r <= std::numeric_limits<int16_t>::max()))
        throw OverflowFault(QStringLiteral("Overflow"));
    return static_cast<int16_t>(r);
}

int32_t ToInt32(double value) {
    const double r = RoundHalfEven(value);
    if (!(r >= std::numeric_limits<int32_t>::min() && r <= std::numeric_limits<int32_t>::max()))
        throw OverflowFault(QStringLiteral("Overflow"));
    return static_cast<int32_t>(r);
}

} // namespace tarvex
