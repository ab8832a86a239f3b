#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <optional>

namespace tarvex {

// Reads a date as a person types it, as the classic date conversion did: the locale's
// short, long and narrow forms, ISO 8601, numbers with "/", "-" or "." in the locale's
// order of day and month (month first where the locale has no order of its own, and the
// other order when only that one makes a date), month names of the locale or in English,
// each with or without a time ("14:30", "2:30 PM", "14:30:05"). Two-digit years 00 to 29
// are 2000 to 2029, 30 to 99 are 1930 to 1999. A month and a day without a year ("12/31",
// "December 31") are of this year; a month and a year ("12/2027", "Dec 2027") the first of
// that month; a time alone is that time of 30 December 1899. Digits of other scripts read
// as 0 to 9. Anything else is no date.
std::optional<QDateTime> ReadTypedDate(const QString& text, const QLocale& locale = QLocale());

} // namespace tarvex
