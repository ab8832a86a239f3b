// The program store in a clinic's database of 10,000 patients and 50,000 programs: saving
// (replacing) and loading a 20-exercise program against floors of the same rows written
// and read with bare prepared statements in one transaction; and the patient list filled
// with 10,000 patients in its window.

#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "program/PatientLogic.h"
#include "program/ProgramStore.h"
#include "shell/ShellHarness.h"
#include "support/TestFolder.h"
#include "ui/QtControls.h"

#include <QApplication>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTreeWidget>
#include <benchmark/benchmark.h>

using namespace tarvex;

namespace {

constexpr int kPatients = 10000;
constexpr int kPrograms = 50000;
constexpr int kExercisesPerStoredProgram = 6;

void Exec(QSqlQuery& q) {
    if (!q.exec())
        throw std::runtime_error("statement failed");
}

// The clinic's database, made once for all benchmarks.
struct Clinic {
    Clinic() : shell(folder.state), store(folder.state, shell.shell, prompter) {
        OpenDatabases(folder.state);
        LoadLibraryCache(folder.state);
        QSqlDatabase& db = folder.state.Dbs.ProgramDb;
        Transaction t(db);
        QSqlQuery patient(db), invoice(db), exercise(db);
        patient.prepare("INSERT INTO Patient (LastName, FirstName, FullName, ID) VALUES (?,?,?,?)");
        invoice.prepare("INSERT INTO Invoice (PatientID, Date, Provider, Usage) VALUES (?,?,?,?)");
        exercise.prepare("INSERT INTO Exercise (InvoiceID, RankOnTape, ExerciseID, code, \"Desc\", "
                         "AbbrevDesc, Reps, Hold, Sets, HasVideo) VALUES (?,?,?,?,?,?,?,?,?,?)");
        for (int i = 1; i <= kPatients; ++i) {
            const QString n = QString::number(i);
            for (const QVariant& v :
                 QVariantList{"Last" + n, "First" + n, "Last" + n + ", First" + n, "MRN" + n})
                patient.addBindValue(v);
            Exec(patient);
        }
        for (int i = 1; i <= kPrograms; ++i) {
            for (const QVariant& v : QVariantList{1 + i % kPatients,
                                                  QStringLiteral("2025-%1-%2 10:00:00")
                                                      .arg(1 + i % 12, 2, 10, QChar('0'))
                                                      .arg(1 + i % 28, 2, 10, QChar('0')),
                                                  "Dr. Jane Smith, PT", "Twice a day"})
                invoice.addBindValue(v);
            Exec(invoice);
            const qint64 id = invoice.lastInsertId().toLongLong();
            for (int r = 0; r < kExercisesPerStoredProgram; ++r) {
                for (const QVariant& v :
                     QVariantList{id, r, 1 + r, "1", "Desc", "Abbrev", 10, 0, 2, 0})
                    exercise.addBindValue(v);
                Exec(exercise);
            }
        }
        t.Commit();
        // The program of patient 77 that the benchmarks save and load.
        ExerciseProgram& p = folder.state.Program;
        p.PatientID = 77;
        p.FullName = "Last77, First77";
        store.LoadProgram(std::nullopt);
        for (int i = 0; i < ExerciseProgram::kMaxExercises; ++i)
            p.Exercise(i) = folder.state.Library
                                .Entries[static_cast<size_t>(i % folder.state.Library.NumChoices)];
        p.NumExercises = ExerciseProgram::kMaxExercises;
        p.NumItems = 2;
        p.Item(0) = {"TVX-20", "Custom video tape", 1, Currency::FromDouble(49.95)};
        p.Item(1) = {"SH", "Shipping", 1, Currency::FromDouble(6.5)};
        p.IsNew = false;
        p.Modified = true;
        store.SaveProgram(false);
    }
    tarvex::testing::TestFolder folder;
    fakes::ScriptedPrompter prompter;
    tarvex::testing::ShellHarness shell;
    ProgramStore store;
};

Clinic& TheClinic() {
    static Clinic clinic;
    return clinic;
}

void BM_SaveProgram(benchmark::State& s) {
    Clinic& c = TheClinic();
    for (auto _ : s) {
        c.folder.state.Program.Modified = true;
        c.store.SaveProgram(false);
    }
}

// The floor: the same delete and rows with bare prepared statements in one transaction.
void BM_SaveProgramFloor(benchmark::State& s) {
    Clinic& c = TheClinic();
    QSqlDatabase& db = c.folder.state.Dbs.ProgramDb;
    QSqlQuery remove(db), invoice(db), exercise(db), item(db);
    remove.prepare("DELETE FROM Invoice WHERE InvoiceID = ?");
    invoice.prepare(
        "INSERT INTO Invoice (PatientID, Date, Provider, Usage, BillAddr, CardNum, CardDate, "
        "NameOnCard, Tax, ShipAddr, ShipPhone) VALUES (?,?,?,?,?,?,?,?,?,?,?)");
    exercise.prepare(
        "INSERT INTO Exercise (InvoiceID, AbbrevDesc, code, \"Desc\", ExerciseID, Hold, Icon, "
        "Movie, Instruct0, Instruct1, Instruct2, Picture0, Picture1, Picture2, RankOnTape, "
        "Reps, Sets, HasVideo, VideoReps, VideoHold, VideoSets) VALUES "
        "(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    item.prepare("INSERT INTO Items (InvoiceID, PartNumber, Description, Qty, Price, RankOnOrder) "
                 "VALUES (?,?,?,?,?,?)");
    const ExerciseProgram& p = c.folder.state.Program;
    qint64 id = *p.InvoiceID;
    for (auto _ : s) {
        db.transaction();
        remove.bindValue(0, id);
        Exec(remove);
        const QVariantList values = {
            77,         "2026-11-22 10:00:00", p.Provider,   p.Usage, p.BillAddr,
            p.CardNum,  "2028-01-01 00:00:00", p.NameOnCard, 0,       p.ShipAddr,
            p.ShipPhone};
        for (int i = 0; i < values.size(); ++i)
            invoice.bindValue(i, values[i]);
        Exec(invoice);
        id = invoice.lastInsertId().toLongLong();
        for (int i = 0; i < p.NumExercises; ++i) {
            const ExerciseEntry& e = p.Exercises[static_cast<size_t>(i)];
            const QVariantList row = {id,          e.AbbrevDesc, e.Code,
                                      e.Desc,      e.ExerciseID, e.Hold,
                                      e.Icon,      e.Movie,      e.Instruct0,
                                      e.Instruct1, e.Instruct2,  e.Picture0,
                                      e.Picture1,  e.Picture2,   i,
                                      e.Reps,      e.Sets,       e.HasVideo ? 1 : 0,
                                      e.VideoReps, e.VideoHold,  e.VideoSets};
            for (int k = 0; k < row.size(); ++k)
                exercise.bindValue(k, row[k]);
            Exec(exercise);
        }
        for (int i = 0; i < p.NumItems; ++i) {
            const QVariantList row = {id, p.Items[i].PartNumber, p.Items[i].Description, 1, 10.0,
                                      i};
            for (int k = 0; k < row.size(); ++k)
                item.bindValue(k, row[k]);
            Exec(item);
        }
        db.commit();
    }
    c.folder.state.Program.InvoiceID = static_cast<int32_t>(id); // the program now lies there
}

void BM_LoadProgram(benchmark::State& s) {
    Clinic& c = TheClinic();
    const auto id = c.folder.state.Program.InvoiceID;
    for (auto _ : s)
        c.store.LoadProgram(id);
    c.folder.state.Program.IsNew = false;
}

// The floor: the owner, the program row and its exercises read with prepared statements.
void BM_LoadProgramFloor(benchmark::State& s) {
    Clinic& c = TheClinic();
    QSqlDatabase& db = c.folder.state.Dbs.ProgramDb;
    const qint64 id = *c.folder.state.Program.InvoiceID;
    QSqlQuery owner(db), invoice(db), exercises(db);
    owner.prepare("SELECT Patient.PatientID, Patient.FullName FROM Patient INNER JOIN Invoice ON "
                  "Patient.PatientID = Invoice.PatientID WHERE InvoiceID = ?");
    invoice.prepare("SELECT * FROM Invoice WHERE InvoiceID = ?");
    exercises.prepare("SELECT * FROM Exercise WHERE InvoiceID = ? ORDER BY RankOnTape");
    qint64 touched = 0;
    for (auto _ : s) {
        for (QSqlQuery* q : {&owner, &invoice, &exercises}) {
            q->bindValue(0, id);
            Exec(*q);
            while (q->next())
                for (int col = 0; col < 21; ++col)
                    touched += q->value(col).isNull() ? 0 : 1;
        }
    }
    benchmark::DoNotOptimize(touched);
}

void BM_FillPatientList(benchmark::State& s) {
    Clinic& c = TheClinic();
    QTreeWidget tree;
    tree.setColumnCount(2);
    QtReportList list(&tree);
    fakes::FakeCommands buttons;
    struct NoEditor : IPatientDialogHost {
        void ShowEditPatient() override {}
    } host;
    SelectPatientLogic logic(c.folder.state, c.shell.shell, c.prompter, list, buttons, host);
    for (auto _ : s) {
        logic.FillPatientList();
        benchmark::DoNotOptimize(tree.topLevelItemCount());
    }
    s.counters["patients"] = tree.topLevelItemCount();
}

} // namespace

BENCHMARK(BM_SaveProgram)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_SaveProgramFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LoadProgram)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_LoadProgramFloor)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_FillPatientList)->Unit(benchmark::kMillisecond)->Repetitions(5);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
