#include "support/Dates.h"

#include "support/DateText.h"
#include "support/Fault.h"

#include <QLocale>
#include <cmath>

namespace tarvex {

QDateTime ZeroDate() {
    return QDateTime(QDate(1899, 12, 30), QTime(0, 0));
}

QDateTime UnreadableDate() {
    return DateFromSerial(32874);
}

QDateTime DateFromSerial(double serial) {
    const double days = std::floor(serial);
    const qint64 msecs = std::llround((serial - days) * 86400000.0);
    return ZeroDate().addDays(static_cast<qint64>(days)).addMSecs(msecs);
}

QString ShortDateFormat() {
    QString format = QLocale().dateFormat(QLocale::ShortFormat);
    if (!format.contains(QLatin1String("yyyy")))
        format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    return format;
}

QString ShortDate(const QDateTime& date) {
    return QLocale().toString(date.date(), ShortDateFormat());
}

QString DefaultDateText(const QDateTime& date) {
    if (date.time() == QTime(0, 0))
        return ShortDate(date);
    return ShortDate(date) + u' ' + date.time().toString(QStringLiteral("HH:mm:ss"));
}

QString DateToStorage(const QDateTime& date) {
    return date.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QVariant StoredDate(const QDateTime& date) {
    return date.isValid() ? QVariant(DateToStorage(date)) : QVariant();
}

namespace {

// The stored form "yyyy-MM-dd HH:mm:ss" (or with "T"), read without the general parser,
// since every stored date passes through here.
std::optional<QDateTime> ParseStoredForm(const QString& t) {
    if (t.size() != 19 || t[4] != u'-' || t[7] != u'-' || (t[10] != u' ' && t[10] != u'T') ||
        t[13] != u':' || t[16] != u':')
        return std::nullopt;
    const auto number = [&t](int from, int length) {
        int value = 0;
        for (int i = from; i < from + length; ++i) {
            const char16_t c = t[i].unicode();
            if (c < u'0' || c > u'9')
                return -1;
            value = value * 10 + (c - u'0');
        }
        return value;
    };
    const QDate date(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    if (!date.isValid() || !time.isValid())
        return std::nullopt;
    return QDateTime(date, time);
}

} // namespace

std::optional<QDateTime> ParseDate(const QString& text) {
    const QString t = text.trimmed();
    if (t.isEmpty())
        return std::nullopt;
    if (auto stored = ParseStoredForm(t))
        return stored;
    for (const char* format : {"yyyy-MM-dd HH:mm:ss", "yyyy-MM-ddTHH:mm:ss",
                               "yyyy-MM-ddTHH:mm:ss.zzz", "yyyy-MM-dd HH:mm:ss.zzz"}) {
        const QDateTime dt = QDateTime::fromString(t, QLatin1String(format));
        if (dt.isValid())
            return dt;
    }
    for (const QString& format : {QStringLiteral("yyyy-MM-dd"), ShortDateFormat()}) {
        const QDate d = QLocale().toDate(t, format);
        if (d.isValid())
            return QDateTime(d, QTime(0, 0));
    }
    // What a person types: the locale's other forms, month names, times.
    return ReadTypedDate(t);
}

QDateTime CDate(const QString& text) {
    if (auto date = ParseDate(text))
        return *date;
    throw TypeFault(QStringLiteral("Type mismatch"));
}

} // namespace tarvex
