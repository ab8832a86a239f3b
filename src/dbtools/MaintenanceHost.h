#pragma once

#include <QString>

namespace tarvex {

// What the database maintenance commands (compress, rebuild, backup, restore) need of the
// program around them. The main window gives the real one; tests give a fake that records.
class IMaintenanceHost {
public:
    virtual ~IMaintenanceHost() = default;
    // The folder of the three databases.
    virtual QString AppFolder() const = 0;
    // Closes the three databases; the write-ahead journal is folded into each file first,
    // so that the files alone hold everything.
    virtual void CloseDatabases() = 0;
    // Opens them again, the upgrade walk included. A failure is a DatabaseFault.
    virtual void OpenDatabases() = 0;
    // After a reopen: no patient or program is current, and the title, toolbar and menus
    // say so.
    virtual void ResetShell() = 0;
    virtual void SetStatusBar(const QString& text) = 0;
    // The hourglass, on or off.
    virtual void SetBusy(bool busy) = 0;
    // Lets pending events of the window run (progress, an Abort click).
    virtual void DoEvents() = 0;
};

// The databases closed for the length of a job and opened again at its end, whatever
// happens. Reopen() opens them and lets a failure through; when the job ends before it,
// the guard opens them itself and keeps a failure quiet (the next use of a database
// reports it), since a destructor must not throw.
class ClosedDatabases {
public:
    explicit ClosedDatabases(IMaintenanceHost& host) : host_(host) { host_.CloseDatabases(); }
    ~ClosedDatabases() {
        if (open_)
            return;
        try {
            host_.OpenDatabases();
        } catch (...) { // NOLINT(bugprone-empty-catch): reported at the next use
        }
    }
    ClosedDatabases(const ClosedDatabases&) = delete;
    ClosedDatabases& operator=(const ClosedDatabases&) = delete;

    void Reopen() {
        open_ = true;
        host_.OpenDatabases();
    }

private:
    IMaintenanceHost& host_;
    bool open_ = false;
};

// The hourglass for the length of a job.
class HostHourglass {
public:
    explicit HostHourglass(IMaintenanceHost& host) : host_(host) { host_.SetBusy(true); }
    ~HostHourglass() { host_.SetBusy(false); }
    HostHourglass(const HostHourglass&) = delete;
    HostHourglass& operator=(const HostHourglass&) = delete;

private:
    IMaintenanceHost& host_;
};

} // namespace tarvex
