#pragma once

#include "data/Server.h"

#include <functional>

namespace tarvex {

class IMaintenanceHost;
class Prompter;

// Database > Compress and Database > Rebuild with the databases on a server. They ask as the
// forms for the files do and end with the same boxes; the databases stay open, since other
// workstations go on working on them meanwhile.
class ServerMaintenanceLogic {
public:
    ServerMaintenanceLogic(ServerSettings server, IMaintenanceHost& host, Prompter& prompts);

    // VACUUM (ANALYZE) of every table of the three stores: the room of deleted rows is given
    // back for new ones and the planner's statistics are renewed.
    void CompressDatabase();
    // The server mends itself after a crash, from its write-ahead log; what a workstation can
    // do is check: the stores are there at versions this program knows, and every table reads
    // to its end.
    void RepairDatabase();

private:
    // The work after the question; a fault there is shown by the trap box of the files'
    // form. True when the work went through.
    bool Trapped(const std::function<void()>& work);

    ServerSettings server_;
    IMaintenanceHost& host_;
    Prompter& prompts_;
};

} // namespace tarvex
