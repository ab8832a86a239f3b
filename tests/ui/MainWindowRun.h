#pragma once

#include "data/Sql.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/AppState.h"
#include "shell/SingleInstance.h"
#include "support/TestFolder.h"
#include "ui/MainWindow.h"

#include <QProcess>
#include <QTemporaryDir>
#include <stdexcept>

namespace tarvex::testing {

// The program started on a fresh data folder (no splash, no tips), closed at the end.
struct MainWindowRun {
    MainWindowRun() : lock(dir.filePath("tarvex.lock")), window(state, store, lock, false) {
        state.AppFolder = dir.filePath("data");
        state.DeliveredFolder = DeliveredFolder();
        store.values["Options/ShowTips"] = "False";
        if (!window.Start())
            throw std::runtime_error("the program did not start");
    }
    ~MainWindowRun() { window.close(); }

    int32_t AddPatient(const QString& last, const QString& first, const QString& id = {}) {
        return static_cast<int32_t>(InsertRow(state.Dbs.ProgramDb, "Patient",
                                              {{"LastName", last},
                                               {"FirstName", first},
                                               {"ID", id},
                                               {"FullName", last + ", " + first}}));
    }

    // Makes Okafor, Chidi the current patient with the library's first exercises in the
    // program, as after the patient dialog and a visit of the workspace.
    void ChooseOkafor(int exercises = 0) {
        ExerciseProgram& p = state.Program;
        p.PatientID = AddPatient("Okafor", "Chidi");
        p.FullName = "Okafor, Chidi";
        p.IsNew = true;
        const size_t count = state.Library.Entries.size();
        for (int i = 0; i < exercises; ++i)
            p.Exercise(i) = state.Library.Entries[static_cast<size_t>(i) % count];
        p.NumExercises = static_cast<int16_t>(exercises);
        window.ShellLogic().UpdateToolbar(ToolbarMode::All);
    }

    // Sends what the printer prints to a PDF file of the run, and reads its text back.
    void PrintToPdf() {
        window.Printer().setOutputFormat(QPrinter::PdfFormat);
        window.Printer().setOutputFileName(dir.filePath("printed.pdf"));
    }
    QString PrintedText() const {
        QProcess pdftotext;
        pdftotext.start("pdftotext", {"-layout", dir.filePath("printed.pdf"), "-"});
        pdftotext.waitForFinished(30000);
        return QString::fromLocal8Bit(pdftotext.readAllStandardOutput());
    }

    QTemporaryDir dir;
    AppState state;
    fakes::FakeSettingsStore store;
    SingleInstanceLock lock;
    MainWindow window;
};

// The dialog of type D that a command of the run opened: the one shown, else the newest.
template <typename D> D* Opened(MainWindowRun& run) {
    D* dialog = nullptr;
    for (D* d : run.window.findChildren<D*>())
        if (d->isVisible() || !dialog)
            dialog = d;
    return dialog;
}

} // namespace tarvex::testing
