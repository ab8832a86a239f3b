#pragma once

#include "support/Dates.h"

#include <QDateTime>
#include <QString>

namespace tarvex {

// The clinic's row in memory: the defaults of every new program's order data.
struct ClinicInfo {
    QString Name;
    QString Phone;
    QString ShipAddr;
    QString ShipMethod;
    QString BillAddr;
    QString PayMethod;
    QString CardNum;
    QDateTime CardDate = ZeroDate();
    QString NameOnCard;
};

} // namespace tarvex
