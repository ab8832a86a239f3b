#include "data/Schema.h"

#include "data/Sql.h"

#include <QStringList>

namespace tarvex {

namespace {

// Text columns compare without regard to case, as the classic engine did.
#define TEXT " TEXT COLLATE NOCASE"

// The columns shared by a stored program's exercise rows and a protocol's, from
// ExerciseID to VideoSets.
const char* const kExerciseColumns = "ExerciseID INTEGER,"
                                     "code" TEXT ","
                                     "\"Desc\"" TEXT ","
                                     "AbbrevDesc" TEXT ","
                                     "Reps SMALLINT,"
                                     "Hold SMALLINT,"
                                     "Sets SMALLINT,"
                                     "Movie" TEXT ","
                                     "Icon" TEXT ","
                                     "Picture0" TEXT ","
                                     "Picture1" TEXT ","
                                     "Picture2" TEXT ","
                                     "Instruct0 VARCHAR(75) COLLATE NOCASE,"
                                     "Instruct1 VARCHAR(75) COLLATE NOCASE,"
                                     "Instruct2 VARCHAR(75) COLLATE NOCASE,"
                                     "HasVideo BOOLEAN,"
                                     "VideoReps INTEGER,"
                                     "VideoHold INTEGER,"
                                     "VideoSets INTEGER";

const char* const kVersionTable =
    "CREATE TABLE Version (Version VARCHAR(20) COLLATE NOCASE NOT NULL CHECK (Version <> ''))";

void ExecuteAll(QSqlDatabase& db, const QStringList& statements) {
    Transaction transaction(db);
    for (const QString& sql : statements)
        Execute(db, sql);
    transaction.Commit();
}

} // namespace

void ApplyConnectionSettings(QSqlDatabase& db) {
    Execute(db, QStringLiteral("PRAGMA foreign_keys = ON"));
    Execute(db, QStringLiteral("PRAGMA journal_mode = WAL"));
    Execute(db, QStringLiteral("PRAGMA synchronous = NORMAL"));
}

void CreateProgramSchema(QSqlDatabase& db) {
    ExecuteAll(
        db,
        {
            "CREATE TABLE Patient ("
            "PatientID INTEGER PRIMARY KEY AUTOINCREMENT,"
            "ID" TEXT ","
            "LastName" TEXT ","
            "FirstName" TEXT ","
            "FullName" TEXT ")",

            "CREATE TABLE Invoice ("
            "InvoiceID INTEGER PRIMARY KEY AUTOINCREMENT,"
            "PatientID INTEGER REFERENCES Patient (PatientID) ON DELETE CASCADE,"
            "Date DATETIME,"
            "Provider VARCHAR(40) COLLATE NOCASE,"
            "Usage" TEXT ","
            "BillAddr" TEXT ","
            "PayMethod" TEXT " CHECK (PayMethod <> ''),"
            "CardNum" TEXT ","
            "CardDate DATETIME,"
            "NameOnCard" TEXT ","
            "Tax SMALLINT,"
            "ShipAddr" TEXT ","
            "ShipPhone" TEXT ","
            "ShipMethod" TEXT " CHECK (ShipMethod <> ''))",
            "CREATE INDEX PatientID ON Invoice (PatientID, Date)",

            QStringLiteral("CREATE TABLE Exercise ("
                           "InvoiceID INTEGER REFERENCES Invoice (InvoiceID) ON DELETE CASCADE,"
                           "RankOnTape INTEGER NOT NULL,%1)")
                .arg(QLatin1String(kExerciseColumns)),
            "CREATE INDEX RankOnTape ON Exercise (RankOnTape)",
            "CREATE INDEX InvoiceID ON Exercise (InvoiceID)",

            "CREATE TABLE Items ("
            "InvoiceID INTEGER REFERENCES Invoice (InvoiceID) ON DELETE CASCADE,"
            "PartNumber" TEXT ","
            "Description" TEXT ","
            "Qty SMALLINT,"
            "Price CURRENCY,"
            "RankOnOrder SMALLINT)",
            "CREATE INDEX ItemsInvoiceID ON Items (InvoiceID)",

            "CREATE TABLE Clinic ("
            "Name" TEXT ","
            "Phone" TEXT ","
            "ShipAddr" TEXT ","
            "ShipMethod" TEXT ","
            "BillAddr" TEXT ","
            "PayMethod" TEXT ","
            "CardNum" TEXT ","
            "CardDate DATETIME,"
            "NameOnCard" TEXT ")",

            "CREATE TABLE Protocol ("
            "ProtocolID INTEGER PRIMARY KEY AUTOINCREMENT,"
            "Name" TEXT ")",

            QStringLiteral("CREATE TABLE ProtocolExercise ("
                           "ProtocolID INTEGER REFERENCES Protocol (ProtocolID) ON DELETE CASCADE,"
                           "RankOnTape INTEGER,%1)")
                .arg(QLatin1String(kExerciseColumns)),
            "CREATE INDEX ProtocolID ON ProtocolExercise (ProtocolID)",

            kVersionTable,
        });
}

void CreateLibrarySchema(QSqlDatabase& db) {
    ExecuteAll(db, {
                       "CREATE TABLE ExerciseLibrary ("
                       "ExerciseID INTEGER PRIMARY KEY,"
                       "code" TEXT ","
                       "\"Desc\"" TEXT ","
                       "AbbrevDesc" TEXT ","
                       "Reps SMALLINT,"
                       "Hold SMALLINT,"
                       "Sets SMALLINT,"
                       "Joint" TEXT ","
                       "Motion" TEXT ","
                       "Type" TEXT ","
                       "Movie" TEXT ","
                       "Icon" TEXT ","
                       "Picture0" TEXT ","
                       "Picture1" TEXT ","
                       "Picture2" TEXT ","
                       "IconSrc SMALLINT,"
                       "Picture0Src" TEXT ","
                       "Picture1Src" TEXT ","
                       "Picture2Src" TEXT ","
                       "Instruct0 VARCHAR(75) COLLATE NOCASE,"
                       "Instruct1 VARCHAR(75) COLLATE NOCASE,"
                       "Instruct2 VARCHAR(75) COLLATE NOCASE,"
                       "HasVideo BOOLEAN,"
                       "VideoReps INTEGER,"
                       "VideoHold INTEGER,"
                       "VideoSets INTEGER)",
                       "CREATE INDEX AbbrevDesc ON ExerciseLibrary (AbbrevDesc)",
                       kVersionTable,
                   });
}

void CreatePicklistSchema(QSqlDatabase& db) {
    ExecuteAll(db, {
                       "CREATE TABLE Label ("
                       "ID INTEGER PRIMARY KEY AUTOINCREMENT,"
                       "Name" TEXT ")",
                       "CREATE TABLE Level1 ("
                       "ID INTEGER PRIMARY KEY AUTOINCREMENT,"
                       "LabelID INTEGER REFERENCES Label (ID) ON DELETE CASCADE,"
                       "Name VARCHAR(40) COLLATE NOCASE)",
                       "CREATE INDEX LabelID ON Level1 (LabelID)",
                   });
}

#undef TEXT

void CreateVersionTable(QSqlDatabase& db) {
    Execute(db, QLatin1String(kVersionTable));
}

void WriteVersion(QSqlDatabase& db, const QString& version) {
    Transaction transaction(db);
    Execute(db, QStringLiteral("DELETE * FROM Version"));
    ExecPrepared(db, QStringLiteral("INSERT INTO Version (Version) VALUES (?)"), {version});
    transaction.Commit();
}

} // namespace tarvex
