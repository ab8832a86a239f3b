#include "support/DateText.h"

#include "support/Dates.h"

#include <QList>
#include <QRegularExpression>
#include <QStringList>

namespace tarvex {

namespace {

// A two-digit year in the classic window; a year written with more digits as it is.
int FullYear(int year, qsizetype digits) {
    if (digits > 2)
        return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

std::optional<QDate> IfValid(const QDate& date) {
    return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
}

// The text with the digits of any script written as 0 to 9, so that a date the locale
// writes in its own digits reads as one written in ours.
QString WithAsciiDigits(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (const char32_t c : text.toUcs4()) {
        if (QChar::category(c) == QChar::Number_DecimalDigit && QChar::digitValue(c) >= 0)
            out += QChar(u'0' + QChar::digitValue(c));
        else
            out += QString::fromUcs4(&c, 1);
    }
    return out;
}

// The time at the end of a text, with the text before it.
struct SplitTime {
    QString date;
    std::optional<QTime> time; // none when the text ends without a time
    bool ok = true;
};

SplitTime SplitOffTime(const QString& text) {
    // "14:30", "14:30:05", "2:30 PM", "2 PM", "2:30p.m.", after the date or alone.
    static const QRegularExpression timeAtEnd(
        QStringLiteral("^(?:(.*?)[\\sT,]+)?(\\d{1,2})(?::(\\d{2})(?::(\\d{2}))?)?"
                       "\\s*(?:([AaPp])\\.?(?:[Mm]\\.?)?)?$"));
    const auto m = timeAtEnd.match(text);
    const QString half = m.captured(5).toUpper();
    // A number without minutes and without AM or PM is part of the date.
    if (!m.hasMatch() || (!m.hasCaptured(3) && half.isEmpty()))
        return {text, std::nullopt};
    int hour = m.captured(2).toInt();
    if (!half.isEmpty()) {
        if (hour > 12)
            return {QString(), std::nullopt, false};
        hour = (hour % 12) + (half == QLatin1String("P") ? 12 : 0);
    }
    const QTime time(hour, m.captured(3).toInt(), m.captured(4).toInt());
    if (!time.isValid())
        return {QString(), std::nullopt, false};
    return {m.captured(1).trimmed(), time};
}

// The locale's own forms: with the year written out in full, then with two digits read
// in the classic window.
std::optional<QDate> LocaleForms(const QString& text, const QLocale& locale) {
    for (const QLocale::FormatType type :
         {QLocale::ShortFormat, QLocale::LongFormat, QLocale::NarrowFormat}) {
        const QString format = locale.dateFormat(type);
        const bool twoDigits =
            format.contains(QLatin1String("yy")) && !format.contains(QLatin1String("yyyy"));
        if (twoDigits) {
            QString fullYear = format;
            fullYear.replace(QLatin1String("yy"), QLatin1String("yyyy"));
            const QDate date = locale.toDate(text, fullYear);
            if (date.isValid())
                return date;
        }
        const QDate date = locale.toDate(text, format);
        if (!date.isValid())
            continue;
        if (!twoDigits)
            return date;
        const QDate windowed(FullYear(date.year() % 100, 2), date.month(), date.day());
        if (windowed.isValid())
            return windowed;
    }
    return std::nullopt;
}

// Whether the locale writes the day before the month in its short form.
bool DayFirst(const QLocale& locale) {
    const QString format = locale.dateFormat(QLocale::ShortFormat);
    const qsizetype day = format.indexOf(u'd');
    const qsizetype month = format.indexOf(u'M');
    if (locale == QLocale::c() || day < 0 || month < 0)
        return false;
    return day < month;
}

// Two numbers that are a month and a day of the given year: in the locale's order, or in
// the other one when only that makes a date.
std::optional<QDate> MonthAndDay(int first, int second, int year, const QLocale& locale) {
    const QDate monthFirst(year, first, second);
    const QDate dayFirst(year, second, first);
    if (DayFirst(locale))
        return dayFirst.isValid() ? IfValid(dayFirst) : IfValid(monthFirst);
    return monthFirst.isValid() ? IfValid(monthFirst) : IfValid(dayFirst);
}

// Whether a number can only be a year: three or four digits, or more than a month has days.
bool OnlyAYear(const QString& number) {
    return number.size() > 2 || number.toInt() > 31;
}

// Two numbers without a year ("12/31", "31.12."): a month and a day of this year. Where
// one of them can only be a year ("12/2027", "2027-12", "12/45"), the first of that month.
std::optional<QDate> TwoNumbers(const QString& a, const QString& b, const QLocale& locale) {
    if (OnlyAYear(a) && OnlyAYear(b))
        return std::nullopt;
    if (OnlyAYear(a) || OnlyAYear(b)) {
        const QString& year = OnlyAYear(a) ? a : b;
        const QString& month = OnlyAYear(a) ? b : a;
        if (year.size() == 3)
            return std::nullopt;
        return IfValid(QDate(FullYear(year.toInt(), year.size()), month.toInt(), 1));
    }
    return MonthAndDay(a.toInt(), b.toInt(), QDate::currentDate().year(), locale);
}

std::optional<QDate> NumericDate(const QString& text, const QLocale& locale) {
    static const QRegularExpression numeric(
        QStringLiteral("^(\\d{1,4})\\s*([/.-])\\s*(\\d{1,4})(?:\\s*\\2\\s*(\\d{1,4}))?\\.?$"));
    const auto m = numeric.match(text);
    if (!m.hasMatch())
        return std::nullopt;
    const QString a = m.captured(1), b = m.captured(3), c = m.captured(4);
    if (c.isEmpty())
        return TwoNumbers(a, b, locale);
    if (b.size() > 2)
        return std::nullopt;
    if (a.size() > 2) // year first
        return IfValid(QDate(a.toInt(), b.toInt(), c.toInt()));
    if (c.size() == 3)
        return std::nullopt;
    return MonthAndDay(a.toInt(), b.toInt(), FullYear(c.toInt(), c.size()), locale);
}

// 1 to 12 for a month's name or abbreviation in the locale or in English, else 0.
int MonthOf(const QString& word, const QLocale& locale) {
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    for (const QLocale* names : {&locale, &english}) {
        for (int month = 1; month <= 12; ++month) {
            for (const QLocale::FormatType type : {QLocale::LongFormat, QLocale::ShortFormat}) {
                for (QString name :
                     {names->monthName(month, type), names->standaloneMonthName(month, type)}) {
                    name.remove(u'.');
                    if (!name.isEmpty() && name.compare(word, Qt::CaseInsensitive) == 0)
                        return month;
                }
            }
        }
    }
    return 0;
}

bool IsWeekday(const QString& word, const QLocale& locale) {
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    for (const QLocale* names : {&locale, &english})
        for (int day = 1; day <= 7; ++day)
            for (const QLocale::FormatType type : {QLocale::LongFormat, QLocale::ShortFormat})
                if (names->dayName(day, type).remove(u'.').compare(word, Qt::CaseInsensitive) == 0)
                    return true;
    return false;
}

std::optional<QDate> NamedMonthDate(const QString& text, const QLocale& locale) {
    static const QRegularExpression separators(QStringLiteral("[\\s,./-]+"));
    int month = 0;
    QStringList numbers;
    for (const QString& word : text.split(separators, Qt::SkipEmptyParts)) {
        bool isNumber = false;
        word.toInt(&isNumber);
        if (isNumber) {
            numbers << word;
        } else if (const int m = MonthOf(word, locale); m != 0 && month == 0) {
            month = m;
        } else if (!IsWeekday(word, locale)) {
            return std::nullopt;
        }
    }
    if (month == 0 || numbers.isEmpty() || numbers.size() > 2)
        return std::nullopt;
    if (numbers.size() == 1) {
        // "December 31" is a day of this year, "Dec 2027" the first of that month.
        const QString& number = numbers[0];
        if (!OnlyAYear(number))
            return IfValid(QDate(QDate::currentDate().year(), month, number.toInt()));
        if (number.size() == 3)
            return std::nullopt;
        return IfValid(QDate(FullYear(number.toInt(), number.size()), month, 1));
    }
    // The day is the number of one or two digits that comes first; the other is the year.
    const bool yearFirst = numbers[0].size() > 2;
    const QString day = yearFirst ? numbers[1] : numbers[0];
    const QString year = yearFirst ? numbers[0] : numbers[1];
    return IfValid(QDate(FullYear(year.toInt(), year.size()), month, day.toInt()));
}

std::optional<QDateTime> ReadWith(const QString& text, const QLocale& locale) {
    const SplitTime split = SplitOffTime(text);
    if (!split.ok)
        return std::nullopt;
    // A time alone is that time of the day the classic scale starts with.
    if (split.date.isEmpty())
        return split.time ? std::optional<QDateTime>(QDateTime(ZeroDate().date(), *split.time))
                          : std::nullopt;
    for (const auto& read : {LocaleForms, NumericDate, NamedMonthDate}) {
        if (const std::optional<QDate> date = read(split.date, locale))
            return QDateTime(*date, split.time.value_or(QTime(0, 0)));
    }
    return std::nullopt;
}

} // namespace

std::optional<QDateTime> ReadTypedDate(const QString& text, const QLocale& locale) {
    const QString trimmed = text.trimmed();
    if (auto date = ReadWith(trimmed, locale))
        return date;
    const QString ascii = WithAsciiDigits(trimmed);
    if (ascii != trimmed)
        return ReadWith(ascii, locale);
    return std::nullopt;
}

} // namespace tarvex
