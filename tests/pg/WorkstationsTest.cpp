// Several workstations of one clinic on one server at once: separate processes with homes
// of their own, each adding patients and saving, loading and deleting programs through the
// program's logic for a minute. Afterwards the server must hold exactly what each of them
// kept, every program whole, no key twice.

#include "data/Sql.h"
#include "support/TestFolder.h"

#include <QCryptographicHash>
#include <QMap>
#include <QProcess>
#include <QSet>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

const QString kProgramFile = QStringLiteral("Tarvex.MDB");

// How long the workstations work; TARVEX_WORKSTATION_SECONDS shortens it for a quick run.
double Seconds() {
    bool ok = false;
    const double seconds = qEnvironmentVariable("TARVEX_WORKSTATION_SECONDS").toDouble(&ok);
    return ok && seconds > 0 ? seconds : 60.0;
}

struct Program {
    int32_t patient = 0;
    QByteArray digest;
};

struct Outcome {
    QSet<int32_t> patients;
    QMap<int32_t, Program> programs;
    int saves = 0;
    qint64 slowestMs = 0;
};

Outcome ParseOutput(const QString& output) {
    Outcome outcome;
    for (const QString& line : output.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList f = line.split(u' ');
        if (f.value(0) == "patient") {
            outcome.patients.insert(f.value(1).toInt());
        } else if (f.value(0) == "program") {
            EXPECT_FALSE(outcome.programs.contains(f.value(1).toInt())) << line.toStdString();
            outcome.programs.insert(f.value(1).toInt(), {f.value(2).toInt(), f.value(3).toUtf8()});
        } else if (f.value(0) == "saves") {
            outcome.saves = f.value(1).toInt();
            outcome.slowestMs = f.value(f.indexOf("slowest_ms") + 1).toLongLong();
        }
    }
    return outcome;
}

// The digest of every program on the server, from its exercise rows in their order, as the
// workstation makes it from the program it saved.
QMap<int32_t, QByteArray> ServerDigests(QSqlDatabase& db) {
    QMap<int32_t, QByteArray> texts;
    QSqlQuery invoices = OpenQuery(db, "SELECT InvoiceID FROM Invoice");
    while (invoices.next())
        texts.insert(invoices.value(0).toInt(), QByteArray());
    QSqlQuery rows = OpenQuery(db, "SELECT InvoiceID, ExerciseID, Reps, Hold, Sets, Desc FROM "
                                   "Exercise ORDER BY InvoiceID, RankOnTape");
    while (rows.next()) {
        texts[rows.value(0).toInt()] += QStringLiteral("%1/%2/%3/%4/%5|")
                                            .arg(rows.value(1).toInt())
                                            .arg(rows.value(2).toInt())
                                            .arg(rows.value(3).toInt())
                                            .arg(rows.value(4).toInt())
                                            .arg(rows.value(5).toString())
                                            .toUtf8();
    }
    QMap<int32_t, QByteArray> digests;
    for (auto it = texts.begin(); it != texts.end(); ++it)
        digests.insert(it.key(), QCryptographicHash::hash(*it, QCryptographicHash::Md5).toHex());
    return digests;
}

QSet<int32_t> Keys(QSqlDatabase& db, const QString& sql) {
    QSet<int32_t> keys;
    QSqlQuery q = OpenQuery(db, sql);
    while (q.next())
        keys.insert(q.value(0).toInt());
    return keys;
}

int Count(QSqlDatabase& db, const QString& sql) {
    QSqlQuery q = OpenQuery(db, sql);
    return q.next() ? q.value(0).toInt() : -1;
}

void RunClinic(int workstations) {
    if (!OnTestServer())
        GTEST_SKIP() << "several workstations share a server";
    TestFolder clinic;
    int32_t shared = 0;
    QSet<int32_t> patientsBefore, programsBefore;
    clinic.WithDatabase(kProgramFile, [&](QSqlDatabase& db) {
        shared = static_cast<int32_t>(
            InsertRow(db, "Patient",
                      {{"LastName", "Shared"}, {"FirstName", "Sam"}, {"FullName", "Shared, Sam"}}));
        patientsBefore = Keys(db, "SELECT PatientID FROM Patient");
        programsBefore = Keys(db, "SELECT InvoiceID FROM Invoice");
    });

    std::vector<std::unique_ptr<QTemporaryDir>> homes;
    std::vector<std::unique_ptr<QProcess>> children;
    for (int i = 0; i < workstations; ++i) {
        homes.push_back(std::make_unique<QTemporaryDir>());
        auto child = std::make_unique<QProcess>();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", homes.back()->path());
        child->setProcessEnvironment(env);
        child->start(WORKSTATION_CHILD, {homes.back()->path(), TestServerSocket(),
                                         clinic.ServerDatabase(), QString::number(Seconds()),
                                         QString::number(1000 + i), QString::number(shared)});
        ASSERT_TRUE(child->waitForStarted());
        children.push_back(std::move(child));
    }
    std::vector<Outcome> outcomes;
    int saves = 0;
    qint64 slowest = 0;
    for (int i = 0; i < workstations; ++i) {
        QProcess& child = *children[static_cast<size_t>(i)];
        ASSERT_TRUE(child.waitForFinished(static_cast<int>(Seconds() * 1000) + 300000));
        const QString output = QString::fromUtf8(child.readAllStandardOutput());
        ASSERT_EQ(child.exitCode(), 0)
            << "workstation " << i << ": " << child.readAllStandardError().toStdString();
        ASSERT_TRUE(output.endsWith("done\n")) << output.right(200).toStdString();
        outcomes.push_back(ParseOutput(output));
        saves += outcomes.back().saves;
        slowest = std::max(slowest, outcomes.back().slowestMs);
    }
    std::printf("%d workstations: %d saves in %.0f s, the slowest %lld ms\n", workstations, saves,
                Seconds(), static_cast<long long>(slowest));

    QSet<int32_t> keptPatients;
    QMap<int32_t, Program> keptPrograms;
    for (const Outcome& outcome : outcomes) {
        EXPECT_GT(outcome.saves, 0);
        EXPECT_FALSE(keptPatients.intersects(outcome.patients)) << "a patient key twice";
        keptPatients.unite(outcome.patients);
        for (auto it = outcome.programs.begin(); it != outcome.programs.end(); ++it) {
            EXPECT_FALSE(keptPrograms.contains(it.key())) << "program key " << it.key() << " twice";
            keptPrograms.insert(it.key(), *it);
        }
    }

    clinic.WithDatabase(kProgramFile, [&](QSqlDatabase& db) {
        const QSet<int32_t> patients = Keys(db, "SELECT PatientID FROM Patient") - patientsBefore;
        EXPECT_EQ(patients, keptPatients) << "the patients on the server are the ones kept";
        EXPECT_EQ(
            Count(db,
                  QStringLiteral("SELECT COUNT(*) FROM Patient WHERE PatientID = %1").arg(shared)),
            1);
        const QMap<int32_t, QByteArray> digests = ServerDigests(db);
        QSet<int32_t> programs;
        for (auto it = digests.begin(); it != digests.end(); ++it) {
            if (!programsBefore.contains(it.key()))
                programs.insert(it.key());
        }
        EXPECT_EQ(programs.size(), keptPrograms.size()) << "the counts add up";
        for (auto it = keptPrograms.begin(); it != keptPrograms.end(); ++it) {
            ASSERT_TRUE(programs.contains(it.key())) << "program " << it.key() << " is lost";
            EXPECT_EQ(digests.value(it.key()), it->digest)
                << "program " << it.key() << " is not whole";
            EXPECT_EQ(Count(db, QStringLiteral("SELECT PatientID FROM Invoice WHERE InvoiceID = %1")
                                    .arg(it.key())),
                      it->patient);
        }
        for (int32_t id : programs)
            EXPECT_TRUE(keptPrograms.contains(id)) << "program " << id << " was kept by nobody";
        EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM Exercise WHERE InvoiceID NOT IN (SELECT "
                            "InvoiceID FROM Invoice)"),
                  0)
            << "no exercise rows without their program";
        EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM Invoice WHERE PatientID NOT IN (SELECT "
                            "PatientID FROM Patient)"),
                  0)
            << "no program without its patient";
        EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM (SELECT InvoiceID, RankOnTape FROM Exercise "
                            "GROUP BY InvoiceID, RankOnTape HAVING COUNT(*) > 1) AS twice"),
                  0)
            << "no place of a program holds two exercises";
        EXPECT_EQ(Count(db, "SELECT COUNT(*) FROM Patient WHERE LastName LIKE 'O''Brien-Zoë *' "
                            "AND FirstName = 'Ann \"Nan\"'"),
                  keptPatients.size())
            << "the names are stored as typed";
    });
}

} // namespace

TEST(Workstations, TwoWorkstationsWorkingAtOnceKeepEveryProgramWhole) {
    RunClinic(2);
}

TEST(Workstations, TenWorkstationsWorkingAtOnceKeepEveryProgramWhole) {
    RunClinic(10);
}
