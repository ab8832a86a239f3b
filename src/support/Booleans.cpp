#include "support/Booleans.h"

#include "support/Fault.h"

namespace tarvex {

QString BoolText(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

bool CBool(const QString& text) {
    const QString t = text.trimmed();
    if (t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        return false;
    bool isNumber = false;
    const double number = t.toDouble(&isNumber);
    if (isNumber)
        return number != 0;
    throw TypeFault(QStringLiteral("Type mismatch: \"%1\" is not a boolean").arg(text.left(40)));
}

} // namespace tarvex
