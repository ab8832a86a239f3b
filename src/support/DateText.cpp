#include "support/DateText.h"

#include <QRegularExpression>
#include <QStringList>

namespace tarvex {

namespace {

int FullYear(int year, qsizetype digits) {
    if (digits > 2)
        return year;
    return year < 30 ? 2000 + year : 1900 + year;
}

// The time at the end of a text, with the text before it.
struct SplitTime {
    QString date;
    QTime time{0, 0};
    bool ok = true;
};

SplitTime SplitOffTime(const QString& text) {
    static const QRegularExpression timeAtEnd(QStringLiteral(
        "^(.*?)[\\sT,]+(\\d{1,2}):(\\d{2})(?::(\\d{2}))?\\s*([AaPp])?\\.?[Mm]?\\.?$"));
    const auto m = timeAtEnd.match(text);
    if (!m.hasMatch())
        return {text};
    int hour = m.captured(2).toInt();
    const QString half = m.captured(5).toUpper();
    if (!half.isEmpty()) {
        if (hour < 1 || hour > 12)
            return {QString(), {}, false};
        hour = (hour % 12) + (half == QLatin1String("P") ? 12 : 0);
    }
    const QTime time(hour, m.captured(3).toInt(), m.captured(4).toInt());
    return {m.captured(1).trimmed(), time, time.isValid()};
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

std::optional<QDate> NumericDate(const QString& text, const QLocale& locale) {
    static const QRegularExpression numeric(
        QStringLiteral("^(\\d{1,4})\\s*([/.-])\\s*(\\d{1,2})\\s*\\2\\s*(\\d{1,4})\\.?$"));
    const auto m = numeric.match(text);
    if (!m.hasMatch())
        return std::nullopt;
    const QString a = m.captured(1), b = m.captured(3), c = m.captured(4);
    if (a.size() > 2) { // year first
        const QDate date(a.toInt(), b.toInt(), c.toInt());
        return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
    }
    if (c.size() == 3)
        return std::nullopt;
    const int year = FullYear(c.toInt(), c.size());
    const QDate monthFirst(year, a.toInt(), b.toInt());
    const QDate dayFirst(year, b.toInt(), a.toInt());
    const QDate preferred = DayFirst(locale) ? dayFirst : monthFirst;
    const QDate other = DayFirst(locale) ? monthFirst : dayFirst;
    if (preferred.isValid())
        return preferred;
    if (other.isValid())
        return other;
    return std::nullopt;
}

// 1 to 12 for a month's name or abbreviation in the locale or in English, else 0.
int MonthOf(const QString& word, const QLocale& locale) {
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    for (const QLocale* names : {&locale, &english}) {
        for (int month = 1; month <= 12; ++month) {
            for (const QLocale::FormatType type : {QLocale::LongFormat, QLocale::ShortFormat}) {
                QString name = names->monthName(month, type);
                name.remove(u'.');
                if (!name.isEmpty() && name.compare(word, Qt::CaseInsensitive) == 0)
                    return month;
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
    if (month == 0 || numbers.size() != 2)
        return std::nullopt;
    // The day is the number of one or two digits that comes first; the other is the year.
    const bool yearFirst = numbers[0].size() > 2;
    const QString day = yearFirst ? numbers[1] : numbers[0];
    const QString year = yearFirst ? numbers[0] : numbers[1];
    const QDate date(FullYear(year.toInt(), year.size()), month, day.toInt());
    return date.isValid() ? std::optional<QDate>(date) : std::nullopt;
}

} // namespace

std::optional<QDateTime> ReadTypedDate(const QString& text, const QLocale& locale) {
    const SplitTime split = SplitOffTime(text.trimmed());
    if (!split.ok || split.date.isEmpty())
        return std::nullopt;
    for (const auto& read : {LocaleForms, NumericDate, NamedMonthDate}) {
        if (const std::optional<QDate> date = read(split.date, locale))
            return QDateTime(*date, split.time);
    }
    return std::nullopt;
}

} // namespace tarvex
