#pragma once

#include "support/Controls.h"

#include <QString>

namespace tarvex {

struct AppState;
class Shell;
class Prompter;
class ProgramStore;

// The logic of "Recall an Exericse Program": the stored programs of the current patient,
// or of all patients when none is current. Buttons by tag: "OK", "Edit", "Delete".
class ProgramListLogic {
public:
    static inline const QString kCaption = QStringLiteral("Recall an Exericse Program");

    ProgramListLogic(AppState& state, Shell& shell, Prompter& prompter, ProgramStore& store,
                     IReportList& lstPatients, ICommands& buttons);

    void Load();
    void FillProgramList();
    void lstPatients_Click();
    void lstPatients_ColumnClick(int column);
    // A double click is "OK": the dialog closes and nothing is recalled.
    bool lstPatients_DblClick() { return cmdOKCancel(QStringLiteral("OK")); }
    // Returns true when the dialog unloads.
    bool cmdOKCancel(const QString& tag);

private:
    int SelectedRowOrFault() const;

    AppState& state_;
    Shell& shell_;
    Prompter& prompter_;
    ProgramStore& store_;
    IReportList& list_;
    ICommands& buttons_;
};

} // namespace tarvex
