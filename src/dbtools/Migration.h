#pragma once

#include "data/Schema.h"
#include "data/Server.h"

#include <QByteArray>
#include <QSqlDatabase>
#include <QString>
#include <functional>
#include <vector>

namespace tarvex {

// What a move found of one table on both sides.
struct TableTally {
    Store Of = Store::Program;
    QString Table;
    qint64 Rows = 0;
    QByteArray Checksum; // hex SHA-256 of the rows, whatever their order
};

// A fingerprint of a table's rows that both engines give alike: each row's values in the
// form the program reads them (numbers as numbers, dates to the second, booleans as 0 or 1,
// text as it stands, null as null), hashed, and the hashes of all rows hashed in sorted
// order.
TableTally TallyTable(QSqlDatabase& db, Store store, const TableShape& table);

// Copies every row of one store into the same store on the other side (whose tables are
// empty), in one transaction of the target, with the counter of the engine's keys, then
// compares the tallies of both sides. A difference is a DatabaseFault naming the table.
// Progress reports each table before it is copied.
std::vector<TableTally> CopyStore(QSqlDatabase& from, QSqlDatabase& to, Store store,
                                  const std::function<void(const QString&)>& progress = {});

// Moves a clinic: the three files of a data folder into an empty database of the server
// (whose three schemas are made first), and the three stores of a server into a folder that
// has none of the three files (they are made new). Either way the source is only read.
// What was copied is checked row by row; on a failure nothing is left on the target.
std::vector<TableTally> MoveFolderToServer(const QString& folder, const ServerSettings& server,
                                           const std::function<void(const QString&)>& progress);
std::vector<TableTally> MoveServerToFolder(const ServerSettings& server, const QString& folder,
                                           const std::function<void(const QString&)>& progress);

} // namespace tarvex
