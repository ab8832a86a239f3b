#include "dbtools/ServerRestore.h"

#include "data/Schema.h"
#include "dbtools/MaintenanceHost.h"
#include "dbtools/RestoreLogic.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QLocale>
#include <QStringList>
#include <utility>

namespace tarvex {

namespace {

const ZipEntryInfo* FindEntry(const std::vector<ZipEntryInfo>& files, const char* name) {
    for (const ZipEntryInfo& file : files)
        if (file.Name.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            return &file;
    return nullptr;
}

QString Unsuccessful(const Fault& fault) {
    return QStringLiteral("Restore unsuccessful!\rError number: %1\r%2")
        .arg(fault.Number())
        .arg(fault.Message());
}

} // namespace

ServerRestoreLogic::ServerRestoreLogic(ServerSettings server, IMaintenanceHost& host,
                                       Prompter& prompts, IOpenFileDialog& dialog)
    : server_(std::move(server)), host_(host), prompts_(prompts), dialog_(dialog) {}

void ServerRestoreLogic::Fail(const QString& text) {
    prompts_.MsgBox(text, msg::OkOnly | msg::Critical, QLatin1String(kRestoreTitle));
}

bool ServerRestoreLogic::Confirm(const QString& archive, const ZipEntryInfo& dump, size_t entries) {
    QStringList lines;
    lines << QStringLiteral("%1   %2   %3 K")
                 .arg(dump.Name, QLocale::c().toString(dump.Modified, "MM/dd/yy HH:mm"))
                 .arg(dump.Size / 1024);
    if (entries > 1)
        lines << QStringLiteral("(and %1 other files, which are not restored)").arg(entries - 1);
    const QString text =
        QStringLiteral("Restore the TVX databases on the server (%1) from '%2'?\r\r%3\r\rWhat the "
                       "databases on the server hold now is replaced by the backup, for every "
                       "workstation. Close TVX Regimenter on the other workstations first.")
            .arg(server_.Describe(), archive, lines.join(u'\r'));
    return prompts_.MsgBox(text, msg::YesNo | msg::Question | msg::DefaultButton2,
                           QLatin1String(kRestoreTitle)) == Answer::Yes;
}

bool ServerRestoreLogic::Prepare(QString& archive, std::optional<DumpFolder>& work) {
    QString password;
    if (!ChooseBackupArchive(dialog_, prompts_, StartFolder, archive, password))
        return false;
    const int16_t tested = ZipTestArchive(archive, password);
    if (tested != zipcode::kSuccess) {
        ZipResultMessage(prompts_, tested, QStringLiteral("testing"));
        return false;
    }
    const std::vector<ZipEntryInfo> files = ListArchive(archive, password);
    const ZipEntryInfo* dump = FindEntry(files, kServerDumpEntry);
    if (!dump) {
        QString text = QStringLiteral("The archive '%1' does not hold \"%2\", the backup of the "
                                      "databases on a server. Nothing was restored.")
                           .arg(archive, QLatin1String(kServerDumpEntry));
        if (FindEntry(files, kProgramDbFile))
            text += QStringLiteral("\r\rIt is a backup of the database files of one "
                                   "workstation; tarvex-migrate moves such files to a server.");
        Fail(text);
        return false;
    }
    if (!Confirm(archive, *dump, files.size()))
        return false;
    const HostHourglass busy(host_);
    work.emplace(Tools);
    // The entry as the archive spells it; the file takes the name the program gives it.
    ExtractEntry(archive, dump->Name, password, work->DumpPath());
    CheckServerDump(work->DumpPath(), Tools);
    return true;
}

void ServerRestoreLogic::Replace(const QString& archive, const DumpFolder& work) {
    // This workstation lets go of the stores first, so that none of its own connections
    // holds a table that pg_restore drops.
    ClosedDatabases closed(host_);
    try {
        const HostHourglass busy(host_);
        RestoreServerDump(server_, work.DumpPath(), Tools);
    } catch (const Fault& fault) {
        // pg_restore's one transaction was rolled back: the stores open as before.
        Fail(Unsuccessful(fault) + QStringLiteral("\r\rThe databases are as they were before."));
        closed.Reopen();
        host_.ResetShell();
        return;
    }
    try {
        const HostHourglass busy(host_);
        closed.Reopen();
    } catch (const Fault& fault) {
        Fail(QStringLiteral("The databases were restored from '%1', but they could not be opened "
                            "again.\rError number: %2\r%3")
                 .arg(archive)
                 .arg(fault.Number())
                 .arg(fault.Message()));
        host_.ResetShell();
        return;
    }
    prompts_.MsgBox(QStringLiteral("The databases were restored from '%1'.").arg(archive),
                    msg::OkOnly | msg::Information, QLatin1String(kRestoreTitle));
    host_.ResetShell();
}

void ServerRestoreLogic::RestoreDatabases() {
    QString archive;
    std::optional<DumpFolder> work;
    try {
        if (!Prepare(archive, work))
            return;
    } catch (const Fault& fault) {
        Fail(Unsuccessful(fault));
        return;
    }
    Replace(archive, *work);
}

} // namespace tarvex
