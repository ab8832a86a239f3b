#pragma once

#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "program/ProgramStore.h"
#include "shell/ShellHarness.h"
#include "support/TestFolder.h"

#include <QSqlQuery>

namespace tarvex::testing {

// A run on a fresh application folder with the databases open, the library read, and the
// program store over fake controls.
struct ProgramHarness {
    ProgramHarness() : shell(folder.state), store(folder.state, shell.shell, prompter) {
        OpenDatabases(folder.state);
        LoadLibraryCache(folder.state);
    }

    AppState& State() { return folder.state; }
    ExerciseProgram& Program() { return folder.state.Program; }
    QSqlDatabase& Db() { return folder.state.Dbs.ProgramDb; }

    int32_t AddPatient(const QString& last, const QString& first = "Ann") {
        return static_cast<int32_t>(InsertRow(Db(), "Patient",
                                              {{"LastName", last},
                                               {"FirstName", first},
                                               {"FullName", last + ", " + first},
                                               {"ID", "ID-" + last}}));
    }

    // Makes a patient current as the patient dialog's "OK" does.
    void Choose(int32_t patientID, const QString& fullName) {
        Program().PatientID = patientID;
        Program().FullName = fullName;
        Program().InvoiceID.reset();
        Program().IsNew = true;
    }

    // Puts n library exercises into the program's slots, as the workspace does.
    void FillExercises(int n) {
        for (int i = 0; i < n; ++i)
            Program().Exercise(i) =
                State().Library.Entries[static_cast<size_t>(i % State().Library.NumChoices)];
        Program().NumExercises = static_cast<int16_t>(n);
        Program().Modified = true;
    }

    int Count(const QString& sql) {
        QSqlQuery q = OpenQuery(Db(), sql);
        return q.next() ? q.value(0).toInt() : -1;
    }

    TestFolder folder;
    fakes::ScriptedPrompter prompter;
    ShellHarness shell;
    ProgramStore store;
};

} // namespace tarvex::testing
