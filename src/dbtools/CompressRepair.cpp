#include "dbtools/CompressRepair.h"

#include "data/Schema.h"
#include "dbtools/DatabaseRepair.h"
#include "dbtools/MaintenanceHost.h"
#include "shell/AppFolder.h"
#include "support/DurableFiles.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tarvex {

namespace {

constexpr const char* kWorkFile = "~TEMP.MDB";

} // namespace

CompressRepairLogic::CompressRepairLogic(IMaintenanceHost& host, Prompter& prompts)
    : host_(host), prompts_(prompts) {}

bool CompressRepairLogic::Trapped(const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const Fault& fault) {
        prompts_.MsgBox(QStringLiteral("Repair unsuccessful!\rError number: %1\r%2")
                            .arg(fault.Number())
                            .arg(fault.Message()),
                        msg::OkOnly, QStringLiteral("TVX Regimenter"));
        host_.ResetShell();
        return false;
    }
}

void CompressRepairLogic::CompressDatabase() {
    if (prompts_.MsgBox(QStringLiteral("Compress the TVX database?"), msg::YesNo,
                        QStringLiteral("Compress Database")) == Answer::No)
        return;
    const bool done = Trapped([this] {
        const QString folder = host_.AppFolder();
        const QString work = QDir(folder).filePath(QLatin1String(kWorkFile));
        const QString data = FindFileNoCase(folder, QLatin1String(kProgramDbFile));
        host_.CloseDatabases();
        if (QFileInfo::exists(work) && !QFile::remove(work))
            throw DatabaseFault(QStringLiteral("Could not delete the work file '%1'.").arg(work),
                                75);
        CompactDatabase(data, work);
        if (QFileInfo::exists(data + QStringLiteral("-wal")))
            throw DatabaseFault(
                QStringLiteral("'%1' is still in use by another program.").arg(data), 3045);
        // One rename puts the compacted file in the data file's place: there is never a
        // moment without "Tarvex.MDB".
        try {
            ReplaceFileDurably(work, data);
        } catch (const Fault& fault) {
            throw DatabaseFault(fault.Message(), 75);
        }
    });
    if (!done)
        return;
    host_.OpenDatabases();
    prompts_.MsgBox(QStringLiteral("Compression completed!"), msg::OkOnly,
                    QStringLiteral("Compress Database"));
    host_.ResetShell();
}

void CompressRepairLogic::RepairDatabase() {
    if (prompts_.MsgBox(QStringLiteral("Repair the TVX database?"), msg::YesNo,
                        QStringLiteral("Repair Database")) == Answer::No)
        return;
    const bool done = Trapped([this] {
        const QString data = FindFileNoCase(host_.AppFolder(), QLatin1String(kProgramDbFile));
        host_.CloseDatabases();
        RepairDatabaseFile(data, Now());
    });
    if (!done)
        return;
    host_.OpenDatabases();
    prompts_.MsgBox(QStringLiteral("Repair completed!"), msg::OkOnly,
                    QStringLiteral("Repair Database"));
    host_.ResetShell();
}

} // namespace tarvex
