// One workstation of a clinic for the tests of several workstations on one server: for the
// given number of seconds it adds patients, saves, loads, saves again and deletes programs,
// and deletes patients, each through the program's own logic, with random choices of its
// seed. Some programs are saved for the patient that all workstations share. A load that
// does not give back what was saved ends it at once with a message and exit 1.
//
//   workstation_child HOME SOCKET DATABASE SECONDS SEED SHARED_PATIENT
//
// At the end it prints what it kept, for the test to hold against the server:
//   patient ID                       a patient of its own that it did not delete
//   program ID PATIENT DIGEST        a program it saved last and did not delete
//   saves N ... slowest_ms N ...     its counts, the slowest save and the 95th percentile
// and "done".

#include "data/Databases.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "program/PatientLogic.h"
#include "program/ProgramListLogic.h"
#include "program/ProgramStore.h"
#include "shell/AppState.h"
#include "shell/ShellHarness.h"
#include "support/Fault.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QMap>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <vector>

using namespace tarvex;
using namespace tarvex::fakes;

namespace {

struct Kept {
    int32_t patient = 0;
    QByteArray digest;
};

// What a program holds, in a form the test computes from the server's rows as well.
QByteArray DigestOf(const ExerciseProgram& p) {
    QByteArray text;
    for (int i = 0; i < p.NumExercises; ++i) {
        const ExerciseEntry& e = p.Exercise(i);
        text += QStringLiteral("%1/%2/%3/%4/%5|")
                    .arg(e.ExerciseID)
                    .arg(e.Reps)
                    .arg(e.Hold)
                    .arg(e.Sets)
                    .arg(e.Desc)
                    .toUtf8();
    }
    return QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex();
}

class NoWindow : public IPatientDialogHost {
public:
    void ShowEditPatient() override {}
};

[[noreturn]] void Die(const QString& what) {
    std::fprintf(stderr, "workstation: %s\n", qPrintable(what));
    std::exit(1);
}

class Workstation {
public:
    Workstation(AppState& state, quint32 seed, int32_t shared)
        : state_(state), shell_(state), store_(state, shell_.shell, prompter_), random_(seed),
          seed_(seed), shared_(shared) {}

    void Run(qint64 milliseconds) {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < milliseconds) {
            const int roll = static_cast<int>(random_.bounded(100));
            if (patients_.size() < 3 || roll < 10)
                AddPatient();
            else if (roll < 45)
                SaveNew(roll < 20 ? shared_ : AnyOwnPatient());
            else if (roll < 60)
                SaveAgain();
            else if (roll < 80)
                LoadAndCheck();
            else if (roll < 93)
                DeleteProgram();
            else
                DeletePatient();
        }
    }

    void Report() const {
        for (int32_t patient : patients_)
            std::printf("patient %d\n", patient);
        for (auto it = programs_.begin(); it != programs_.end(); ++it)
            std::printf("program %d %d %s\n", it.key(), it->patient, it->digest.constData());
        std::vector<qint64> times = times_;
        std::sort(times.begin(), times.end());
        const qint64 p95 =
            times.empty() ? 0 : times[std::min(times.size() - 1, times.size() * 95 / 100)];
        std::printf("saves %d loads %d deleted_programs %d deleted_patients %d added_patients %d "
                    "slowest_ms %lld total_save_ms %lld p95_ms %lld\n",
                    saves_, loads_, deletedPrograms_, deletedPatients_, addedPatients_, slowest_,
                    saveTotal_, p95);
        std::printf("done\n");
    }

private:
    void Choose(int32_t patient) {
        ExerciseProgram& p = state_.Program;
        p.PatientID = patient;
        p.FullName = QStringLiteral("Workstation %1").arg(seed_);
        p.InvoiceID.reset();
        p.IsNew = true;
    }

    int32_t AnyOwnPatient() {
        return patients_.at(static_cast<qsizetype>(random_.bounded(patients_.size())));
    }

    void AddPatient() {
        FakeTextBox last, first, id;
        state_.Program.PatientID.reset();
        EditPatientLogic edit(state_, shell_.shell, last, first, id);
        edit.Load();
        // Quotes, letters beyond ASCII and a long identifier, as clinics type them.
        last.text = QStringLiteral("O'Brien-Zoë %1-%2").arg(seed_).arg(addedPatients_);
        first.text = QStringLiteral("Ann \"Nan\"");
        id.text = QStringLiteral("W%1-%2").arg(seed_).arg(addedPatients_);
        edit.cmdOKCancel(QStringLiteral("OK"));
        patients_ << *state_.Program.PatientID;
        ++addedPatients_;
    }

    void Fill() {
        ExerciseProgram& p = state_.Program;
        const int n = 1 + static_cast<int>(random_.bounded(ExerciseProgram::kMaxExercises));
        for (int i = 0; i < n; ++i) {
            p.Exercise(i) = state_.Library.Entries[static_cast<size_t>(
                random_.bounded(static_cast<quint32>(state_.Library.NumChoices)))];
            p.Exercise(i).Reps = static_cast<int16_t>(random_.bounded(1, 30));
            p.Exercise(i).Hold = static_cast<int16_t>(random_.bounded(0, 60));
            p.Exercise(i).Sets = static_cast<int16_t>(random_.bounded(1, 5));
        }
        p.NumExercises = static_cast<int16_t>(n);
        p.Modified = true;
    }

    void Save() {
        QElapsedTimer took;
        took.start();
        store_.SaveProgram(false);
        const qint64 ms = took.elapsed();
        slowest_ = std::max(slowest_, ms);
        saveTotal_ += ms;
        times_.push_back(ms);
        ++saves_;
        const ExerciseProgram& p = state_.Program;
        programs_.insert(*p.InvoiceID, {*p.PatientID, DigestOf(p)});
    }

    void SaveNew(int32_t patient) {
        Choose(patient);
        Fill();
        Save();
    }

    // A program of its own, or none.
    std::optional<int32_t> AnyProgram() {
        if (programs_.isEmpty())
            return std::nullopt;
        auto it = programs_.begin();
        std::advance(it, random_.bounded(programs_.size()));
        return it.key();
    }

    void LoadAndCheck() {
        if (const std::optional<int32_t> id = AnyProgram())
            LoadAndCheck(*id);
    }

    void LoadAndCheck(int32_t id) {
        Choose(programs_.value(id).patient);
        store_.LoadProgram(id);
        ++loads_;
        if (state_.Program.InvoiceID != id ||
            DigestOf(state_.Program) != programs_.value(id).digest)
            Die(QStringLiteral("program %1 came back other than it was saved").arg(id));
    }

    // A program loaded, changed and saved again, which replaces it.
    void SaveAgain() {
        const std::optional<int32_t> id = AnyProgram();
        if (!id)
            return;
        LoadAndCheck(*id);
        Fill();
        state_.Program.IsNew = false;
        programs_.remove(*id);
        Save();
    }

    void DeleteProgram() {
        const std::optional<int32_t> id = AnyProgram();
        if (!id)
            return;
        Choose(programs_.value(*id).patient);
        FakeReportList list;
        FakeCommands buttons;
        ProgramListLogic recall(state_, shell_.shell, prompter_, store_, list, buttons);
        recall.Load();
        list.SetSelectedRow(RowOf(list, *id));
        prompter_.answers.push_back(Answer::Yes);
        recall.cmdOKCancel(QStringLiteral("Delete"));
        programs_.remove(*id);
        ++deletedPrograms_;
    }

    void DeletePatient() {
        if (patients_.size() < 2)
            return;
        const int32_t patient = AnyOwnPatient();
        FakeReportList list;
        FakeCommands buttons;
        NoWindow window;
        SelectPatientLogic select(state_, shell_.shell, prompter_, list, buttons, window);
        select.Load();
        list.SetSelectedRow(RowOf(list, patient));
        prompter_.answers.push_back(Answer::Yes);
        select.cmdOKCancel(QStringLiteral("Delete"));
        patients_.removeOne(patient);
        // Its programs go with it.
        for (auto it = programs_.begin(); it != programs_.end();)
            it = it->patient == patient ? programs_.erase(it) : std::next(it);
        ++deletedPatients_;
    }

    static int RowOf(const FakeReportList& list, int32_t id) {
        for (int r = 0; r < list.RowCount(); ++r) {
            if (list.Key(r).mid(1).toInt() == id)
                return r;
        }
        Die(QStringLiteral("%1 is not in the list").arg(id));
    }

    AppState& state_;
    testing::ShellHarness shell_;
    ScriptedPrompter prompter_;
    ProgramStore store_;
    QRandomGenerator random_;
    quint32 seed_;
    int32_t shared_;
    QList<int32_t> patients_;
    QMap<int32_t, Kept> programs_;
    int saves_ = 0, loads_ = 0, deletedPrograms_ = 0, deletedPatients_ = 0, addedPatients_ = 0;
    qint64 slowest_ = 0, saveTotal_ = 0;
    std::vector<qint64> times_;
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 7) {
        std::fprintf(stderr,
                     "usage: workstation_child HOME SOCKET DATABASE SECONDS SEED SHARED_PATIENT\n");
        return 2;
    }
    AppState state;
    state.AppFolder = QString::fromLocal8Bit(argv[1]);
    state.Dbs.Choice.Engine = DatabaseEngine::Postgres;
    state.Dbs.Choice.Server.Host = QString::fromLocal8Bit(argv[2]);
    state.Dbs.Choice.Server.Database = QString::fromLocal8Bit(argv[3]);
    state.Dbs.Choice.Server.User = QStringLiteral("tarvex");
    try {
        OpenDatabases(state);
        LoadLibraryCache(state);
        Workstation workstation(state, QString::fromLocal8Bit(argv[5]).toUInt(),
                                QString::fromLocal8Bit(argv[6]).toInt());
        workstation.Run(static_cast<qint64>(QString::fromLocal8Bit(argv[4]).toDouble() * 1000));
        workstation.Report();
    } catch (const Fault& fault) {
        Die(QStringLiteral("%1 (%2)").arg(fault.Message()).arg(fault.Number()));
    } catch (const std::exception& error) {
        Die(QString::fromLocal8Bit(error.what()));
    }
    return 0;
}
