#include "dbtools/DurableCopy.h"

#include "data/Sql.h"
#include "shell/PrivateFiles.h"
#include "support/DurableFiles.h"
#include "support/Fault.h"

#include <QFile>

namespace tarvex {

void CopyDatabaseDurably(QSqlDatabase& db, const QString& target) {
    const QString partial = target + QStringLiteral(".partial");
    QFile::remove(partial);
    try {
        ExecPrepared(db, QStringLiteral("VACUUM INTO ?"), {partial});
        MakeFilePrivate(partial);
        ReplaceFileDurably(partial, target);
    } catch (const Fault& fault) {
        QFile::remove(partial);
        throw DatabaseFault(fault.Message());
    }
}

} // namespace tarvex
