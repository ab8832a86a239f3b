#include "program/ClinicStore.h"

#include "data/NullValues.h"
#include "data/Sql.h"
#include "shell/AppState.h"
#include "support/Dates.h"
#include "support/Fault.h"

#include <QDir>

namespace tarvex {

namespace {
const char* const kClinicSql = "SELECT * FROM Clinic";
}

void ReadClinicRecord(AppState& state) {
    QSqlQuery rows = OpenQuery(state.Dbs.ProgramDb, QLatin1String(kClinicSql));
    if (!rows.next())
        return;
    ClinicInfo& c = state.Clinic;
    c.Name = NullToText(rows.value(QStringLiteral("Name")));
    c.Phone = NullToText(rows.value(QStringLiteral("Phone")));
    c.ShipAddr = NullToText(rows.value(QStringLiteral("ShipAddr")));
    c.BillAddr = NullToText(rows.value(QStringLiteral("BillAddr")));
    c.CardNum = NullToText(rows.value(QStringLiteral("CardNum")));
    c.NameOnCard = NullToText(rows.value(QStringLiteral("NameOnCard")));
    const QVariant cardDate = rows.value(QStringLiteral("CardDate"));
    c.CardDate =
        AtPlace(QStringLiteral("the database %1, table Clinic, column CardDate, value %2")
                    .arg(QDir::toNativeSeparators(state.Dbs.ProgramPath), DescribeValue(cardDate)),
                [&] { return CDate(NullToText(cardDate)); });
    c.ShipMethod = QString::number(NullToInt(rows.value(QStringLiteral("ShipMethod"))));
    c.PayMethod = QString::number(NullToInt(rows.value(QStringLiteral("PayMethod"))));
}

void WriteClinicRecord(AppState& state) {
    QSqlDatabase& db = state.Dbs.ProgramDb;
    const ClinicInfo& c = state.Clinic;
    const ColumnValues values = {
        {QStringLiteral("Name"), c.Name},
        {QStringLiteral("Phone"), c.Phone},
        {QStringLiteral("ShipAddr"), c.ShipAddr},
        {QStringLiteral("ShipMethod"), c.ShipMethod},
        {QStringLiteral("BillAddr"), c.BillAddr},
        {QStringLiteral("PayMethod"), c.PayMethod},
        {QStringLiteral("CardNum"), c.CardNum},
        {QStringLiteral("CardDate"), StoredDate(c.CardDate)},
        {QStringLiteral("NameOnCard"), c.NameOnCard},
    };
    Transaction transaction(db);
    // The table has no key: its one row is named by the engine's own row identity.
    const QString identity = RowIdentityColumn(DialectOf(db));
    QSqlQuery first = OpenQuery(db, QStringLiteral("SELECT %1 FROM Clinic LIMIT 1").arg(identity));
    if (first.next()) {
        const QVariant row = first.value(0);
        first.finish();
        UpdateRow(db, QStringLiteral("Clinic"), identity, row, values);
    } else {
        first.finish();
        InsertRow(db, QStringLiteral("Clinic"), values);
    }
    transaction.Commit();
}

} // namespace tarvex
