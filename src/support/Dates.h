#pragma once

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <optional>

namespace tarvex {

// The origin of the classic date scale: day 0 is 30 December 1899, midnight. An empty
// date field of a record holds it.
QDateTime ZeroDate();

// The date that stands in for any date that cannot be read: 1 January 1990 (day 32874).
QDateTime UnreadableDate();

// A day number of the classic scale (days since 30 December 1899, fraction = time).
QDateTime DateFromSerial(double serial);

// Reads a date from a text: the stored form ("yyyy-MM-dd HH:mm:ss", ISO with "T") first,
// then whatever a person types that the classic date conversion read (ReadTypedDate).
// Text that is no date at all gives none.
std::optional<QDateTime> ParseDate(const QString& text);

// Like ParseDate, but a text that is no date is a TypeFault ("Type mismatch").
QDateTime CDate(const QString& text);

// The "Short Date" format of the locale, always with a four-digit year so that a date
// survives being shown and read back.
QString ShortDateFormat();
QString ShortDate(const QDateTime& date);

// The default text form of a date: the short date, and the time when it is not midnight.
QString DefaultDateText(const QDateTime& date);

// The form in which dates are stored in the databases.
QString DateToStorage(const QDateTime& date);
// The value a date column is given: the stored form, or null for a date that is no date
// (both engines then read it back as no date; the server takes no empty text for one).
QVariant StoredDate(const QDateTime& date);

} // namespace tarvex
