#pragma once

#include <QString>
#include <QStringList>

namespace tarvex::testing {

// The size of a clinic made for a test or a benchmark.
struct ClinicSize {
    int Patients = 12;
    int Programs = 30;
    int ExercisesPerProgram = 6;
    int Protocols = 4;
};

// The version texts of the former releases that the builder knows: "" is a release from
// before the Version table; "3.1" and "3.10" also read as below 3.2.
QStringList FormerVersions();

// The schema level of a version text: 3.1 for "" and for any text below 3.2.
float SchemaLevel(const QString& version);

// Replaces the three databases of the folder (which holds the delivered files, the two
// companions of the upgrade among them) by those a clinic of a former release had: the
// tables and columns as that release had them (the option columns and the fourth picture
// and instruction, ".BMP" names, instructions of 50 characters, a RankOnTape without an
// index, an Instruct0 of the protocols that takes no empty string, a provider of 50
// characters), filled with patients, their programs and order lines, protocols, picklists
// and the delivered library with two exercises the clinic added (numbers 100000 and
// 100001). The version is written as given, and none for "".
void MakeOldDatabases(const QString& folder, const QString& version, const ClinicSize& size = {});

} // namespace tarvex::testing
