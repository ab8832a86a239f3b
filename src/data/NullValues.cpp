#include "data/NullValues.h"

#include "support/Dates.h"
#include "support/Fault.h"
#include "support/Numbers.h"

namespace tarvex {

namespace {

void RequireValue(const QVariant& value, const char* column) {
    if (value.isNull())
        throw TypeFault(
            QStringLiteral("Invalid use of Null (column %1)").arg(QLatin1String(column)));
}

double RequiredNumber(const QVariant& value, const char* column) {
    RequireValue(value, column);
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok)
        throw TypeFault(QStringLiteral("Type mismatch (column %1, value %2)")
                            .arg(QLatin1String(column), DescribeValue(value)));
    return number;
}

} // namespace

QString DescribeValue(const QVariant& value) {
    if (value.isNull())
        return QStringLiteral("Null");
    return QStringLiteral("\"%1\"").arg(value.toString().left(40));
}

QString NullToText(const QVariant& value) {
    return value.isNull() ? QString() : value.toString();
}

int16_t NullToInt(const QVariant& value) {
    if (value.isNull())
        return 0;
    return ToInt16(Val(value.toString()));
}

QDateTime NullToDate(const QVariant& value) {
    if (value.isNull())
        return UnreadableDate();
    if (value.typeId() == QMetaType::QDateTime && value.toDateTime().isValid())
        return value.toDateTime();
    if (value.typeId() == QMetaType::QDate && value.toDate().isValid())
        return QDateTime(value.toDate(), QTime(0, 0));
    return ParseDate(value.toString()).value_or(UnreadableDate());
}

QString RequiredText(const QVariant& value, const char* column) {
    RequireValue(value, column);
    return value.toString();
}

int16_t RequiredInt16(const QVariant& value, const char* column) {
    return ToInt16(RequiredNumber(value, column));
}

int32_t RequiredInt32(const QVariant& value, const char* column) {
    return ToInt32(RequiredNumber(value, column));
}

bool RequiredBool(const QVariant& value, const char* column) {
    return RequiredNumber(value, column) != 0;
}

} // namespace tarvex
