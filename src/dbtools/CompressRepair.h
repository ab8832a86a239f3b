#pragma once

#include <QDateTime>
#include <functional>

namespace tarvex {

class IMaintenanceHost;
class Prompter;

// Database > Compress and Database > Rebuild: both work on "Tarvex.MDB", the database that
// grows in daily use, with all three closed, and open them again afterwards.
class CompressRepairLogic {
public:
    CompressRepairLogic(IMaintenanceHost& host, Prompter& prompts);

    void CompressDatabase();
    void RepairDatabase();

    // The clock of the damaged copy's name; tests set it.
    std::function<QDateTime()> Now = [] { return QDateTime::currentDateTime(); };

private:
    // The work between the question and the reopening; a fault there is shown by the trap,
    // the shell is reset and the databases stay closed. True when the work went through.
    bool Trapped(const std::function<void()>& work);

    IMaintenanceHost& host_;
    Prompter& prompts_;
};

} // namespace tarvex
