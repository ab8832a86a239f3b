#pragma once

// The backup and the restore of the databases on a server go through PostgreSQL's own
// tools: pg_dump writes the three stores into one dump of its custom format, pg_restore puts
// such a dump back. Both run as programs of their own, with their arguments as a list (no
// shell); the password is never among them: libpq reads it from its password file.

#include "data/Server.h"

#include <QString>
#include <QTemporaryDir>
#include <functional>

namespace tarvex {

// The one file of a backup archive of the server: the three stores as one dump.
inline constexpr const char* kServerDumpEntry = "Tarvex Server.dump";

// The tools and where their files go.
struct ServerTools {
    // Found on the PATH (Debian's postgresql-client).
    QString PgDump = QStringLiteral("pg_dump");
    QString PgRestore = QStringLiteral("pg_restore");
    // How long a tool waits for a table that another workstation is using before it gives up.
    int LockWaitMs = 10000;
    // Where the private folder of a dump is made.
    QString WorkFolder;
};

// Runs while pg_dump works, about ten times a second; false stops it.
using DumpTick = std::function<bool()>;

// A private folder (owner only) for one dump, removed with everything in it when it goes.
// One that cannot be made is a Fault.
class DumpFolder {
public:
    explicit DumpFolder(const ServerTools& tools);
    DumpFolder(const DumpFolder&) = delete;
    DumpFolder& operator=(const DumpFolder&) = delete;

    QString Path() const { return dir_.path(); }
    // The dump's place in it, under the name it has in the archive.
    QString DumpPath() const;

private:
    QTemporaryDir dir_;
};

// Writes the three stores of the server into a dump at path, private to the user. The
// databases stay open meanwhile: pg_dump reads one consistent snapshot and takes no lock
// that would hold back another workstation. False when the tick stopped it. A tool that is
// not there, a server that refuses it or a store that is missing is a Fault that names the
// tool and gives what it said.
bool DumpServerStores(const ServerSettings& server, const QString& path, const ServerTools& tools,
                      const DumpTick& tick);

// Looks at a dump before it replaces anything: pg_restore must read it, it must hold the
// three schemas with the tables of this program, and versions that this program knows. A
// dump that fails is a Fault that says why.
void CheckServerDump(const QString& path, const ServerTools& tools);

// Puts the three stores of the dump in the place of the server's, in one transaction: a
// failure leaves the server as it was, and is a Fault with what pg_restore said. A table
// that another workstation holds for longer than tools.LockWaitMs ends the restore, as a
// Fault that says so.
void RestoreServerDump(const ServerSettings& server, const QString& path, const ServerTools& tools);

} // namespace tarvex
