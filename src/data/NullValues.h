#pragma once

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <cstdint>

namespace tarvex {

// How a nullable column value comes into memory.

// A column's value as a report shows it: Null, or the text in quotes (cut at 40).
QString DescribeValue(const QVariant& value);

// The value as text; a null gives the empty text.
QString NullToText(const QVariant& value);

// A 16-bit integer: 0 for a null, otherwise the leading number of the value's text form
// (0 when there is none), rounded half to even. A value beyond 16 bits is an OverflowFault.
int16_t NullToInt(const QVariant& value);

// The value as a date when it is one or reads as one; otherwise (null, empty, anything
// else) 1 January 1990.
QDateTime NullToDate(const QVariant& value);

// The columns read without null handling: a null is a TypeFault naming the column, a
// value that does not fit is an OverflowFault.
QString RequiredText(const QVariant& value, const char* column);
int16_t RequiredInt16(const QVariant& value, const char* column);
int32_t RequiredInt32(const QVariant& value, const char* column);
bool RequiredBool(const QVariant& value, const char* column);

} // namespace tarvex
