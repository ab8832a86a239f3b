#pragma once

#include "data/Server.h"
#include "dbtools/ServerDump.h"
#include "dbtools/ZipArchive.h"

#include <QString>
#include <optional>

namespace tarvex {

class IMaintenanceHost;
class IOpenFileDialog;
class Prompter;

// Database > Restore with the databases on a server: puts the three stores of a backup of
// the server (a "Tarvex Backup.ZIP" that holds the one dump "Tarvex Server.dump") in the
// place of the server's. The archive is chosen, tested, shown and asked about as for the
// files; its dump is taken out into a private folder and checked with pg_restore before
// anything is closed. Then this workstation's connections close, pg_restore replaces the
// three stores in one transaction, and the databases open again. A failure leaves the
// server as it was.
class ServerRestoreLogic {
public:
    ServerRestoreLogic(ServerSettings server, IMaintenanceHost& host, Prompter& prompts,
                       IOpenFileDialog& dialog);

    void RestoreDatabases();

    // Where the chooser opens first.
    QString StartFolder;
    ServerTools Tools;

private:
    // From the chooser to the checked dump in work; false when the user stopped or a box
    // said why not.
    bool Prepare(QString& archive, std::optional<DumpFolder>& work);
    bool Confirm(const QString& archive, const ZipEntryInfo& dump, size_t entries);
    void Replace(const QString& archive, const DumpFolder& work);
    void Fail(const QString& text);

    ServerSettings server_;
    IMaintenanceHost& host_;
    Prompter& prompts_;
    IOpenFileDialog& dialog_;
};

} // namespace tarvex
