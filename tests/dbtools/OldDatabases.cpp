#include "dbtools/OldDatabases.h"

#include "data/Schema.h"
#include "data/Sql.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <stdexcept>
#include <vector>

namespace tarvex::testing {

namespace {

using Row = QVariantMap;

constexpr const char* kText = " TEXT COLLATE NOCASE";

// The columns of an exercise row of a program or protocol at a level, in their order.
QStringList ExerciseColumnsSql(float level, bool protocol) {
    QStringList c = {"ExerciseID INTEGER",
                     QStringLiteral("code") + kText,
                     QStringLiteral("\"Desc\"") + kText,
                     QStringLiteral("AbbrevDesc") + kText,
                     "Reps SMALLINT",
                     "Hold SMALLINT",
                     "Sets SMALLINT",
                     QStringLiteral("Movie") + kText,
                     QStringLiteral("Icon") + kText};
    for (int i = 0; i < (level < 3.7f ? 4 : 3); ++i)
        c << QStringLiteral("Picture%1").arg(i) + kText;
    if (level < 3.5f)
        for (int i = 0; i < 3; ++i)
            c << QStringLiteral("Instruct%1 VARCHAR(50) COLLATE NOCASE").arg(i) +
                     (i == 0 && protocol && level < 3.4f
                          ? QStringLiteral(" CHECK (Instruct0 <> '')")
                          : QString());
    if (level < 3.7f)
        c << QStringLiteral("Instruct3 VARCHAR(50) COLLATE NOCASE");
    if (level >= 3.2f)
        c << "HasVideo BOOLEAN"
          << "VideoReps INTEGER"
          << "VideoHold INTEGER"
          << "VideoSets INTEGER";
    if (level >= 3.3f && !protocol)
        c << "RankOnTape INTEGER NOT NULL DEFAULT 0";
    if (level >= 3.5f)
        for (int i = 0; i < 3; ++i)
            c << QStringLiteral("Instruct%1 VARCHAR(75) COLLATE NOCASE").arg(i);
    return c;
}

QStringList LibraryColumnsSql(float level) {
    QStringList c = {"ExerciseID INTEGER PRIMARY KEY",
                     QStringLiteral("code") + kText,
                     QStringLiteral("\"Desc\"") + kText,
                     QStringLiteral("AbbrevDesc") + kText,
                     "Reps SMALLINT",
                     "Hold SMALLINT",
                     "Sets SMALLINT"};
    if (level < 3.2f)
        c << "reps_opts TEXT"
          << "hold_opts TEXT"
          << "sets_opts TEXT";
    for (const char* name : {"Joint", "Motion", "Type", "Movie", "Icon"})
        c << QLatin1String(name) + kText;
    for (int i = 0; i < (level < 3.7f ? 4 : 3); ++i)
        c << QStringLiteral("Picture%1").arg(i) + kText;
    c << "IconSrc SMALLINT";
    for (int i = 0; i < 3; ++i)
        c << QStringLiteral("Picture%1Src").arg(i) + kText;
    if (level < 3.5f)
        for (int i = 0; i < 3; ++i)
            c << QStringLiteral("Instruct%1 VARCHAR(50) COLLATE NOCASE").arg(i);
    if (level < 3.7f)
        c << QStringLiteral("Instruct3 VARCHAR(50) COLLATE NOCASE");
    if (level >= 3.2f)
        c << "HasVideo BOOLEAN"
          << "VideoReps INTEGER"
          << "VideoHold INTEGER"
          << "VideoSets INTEGER";
    if (level >= 3.5f)
        for (int i = 0; i < 3; ++i)
            c << QStringLiteral("Instruct%1 VARCHAR(75) COLLATE NOCASE").arg(i);
    return c;
}

QStringList NamesOf(const QStringList& definitions) {
    QStringList names;
    for (const QString& d : definitions)
        names << d.section(u' ', 0, 0).remove(u'"');
    return names;
}

// A connection to a new file, removed when it goes.
class NewFile {
public:
    explicit NewFile(const QString& path) : name_(QStringLiteral("old-") + path) {
        QFile::remove(path);
        db_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
        db_.setDatabaseName(path);
        if (!db_.open())
            throw std::runtime_error("cannot create " + path.toStdString());
        Execute(db_, QStringLiteral("PRAGMA journal_mode = WAL"));
    }
    ~NewFile() {
        db_.close();
        db_ = QSqlDatabase();
        QSqlDatabase::removeDatabase(name_);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    QSqlDatabase& Db() { return db_; }

private:
    QString name_;
    QSqlDatabase db_;
};

std::vector<Row> ReadRows(const QString& path, const QString& sql) {
    std::vector<Row> rows;
    const QString name = QStringLiteral("old-read");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!db.open())
            throw std::runtime_error("cannot read " + path.toStdString());
        QSqlQuery query = OpenQuery(db, sql);
        while (query.next()) {
            Row row;
            const QSqlRecord record = query.record();
            for (int i = 0; i < record.count(); ++i)
                row.insert(record.fieldName(i), query.value(i));
            rows.push_back(row);
        }
        query.finish();
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

// A library row as the release of that level had it.
Row FormerLibraryRow(Row row, float level) {
    const auto media = [level](QString name) {
        if (level < 3.4f && name.size() >= 3)
            name = name.left(name.size() - 3) + QStringLiteral("BMP");
        return name;
    };
    // The former releases named all three pictures of every exercise, drawn or not.
    const QString id = row.value("ExerciseID").toString();
    for (int i = 0; i < 3; ++i) {
        const QString column = QStringLiteral("Picture%1").arg(i);
        if (row.value(column).toString().isEmpty())
            row[column] = QStringLiteral("%1_%2.JPG").arg(id).arg(i + 1);
    }
    for (const char* column : {"Icon", "Picture0", "Picture1", "Picture2"})
        row[QLatin1String(column)] = media(row.value(QLatin1String(column)).toString());
    if (level < 3.6f) {
        row["Desc"] = QStringLiteral("Former: ") + row.value("Desc").toString();
        row["Reps"] = row.value("Reps").toInt() + 1;
    }
    row["Picture3"] = QString();
    row["Instruct3"] = QString();
    row["reps_opts"] = QStringLiteral("5,10,15,20");
    row["hold_opts"] = QStringLiteral("0,5,10,30");
    row["sets_opts"] = QStringLiteral("1,2,3");
    for (int i = 0; i < 3; ++i) {
        const QString key = QStringLiteral("Instruct%1").arg(i);
        row[key] = row.value(key).toString().left(level < 3.5f ? 50 : 75);
    }
    return row;
}

void Insert(QSqlDatabase& db, const QString& table, const QStringList& columns,
            const std::vector<Row>& rows) {
    PreparedInsert insert(db, table, columns);
    for (const Row& row : rows) {
        QVariantList values;
        for (const QString& column : columns)
            values << row.value(column);
        insert.Insert(values);
    }
}

void CreateVersion(QSqlDatabase& db, const QString& version) {
    if (version.isEmpty())
        return;
    CreateVersionTable(db);
    ExecPrepared(db, QStringLiteral("INSERT INTO Version (Version) VALUES (?)"), {version});
}

std::vector<Row> MakeLibrary(const QString& path, const std::vector<Row>& delivered, float level,
                             const QString& version) {
    std::vector<Row> rows;
    for (const Row& row : delivered)
        rows.push_back(FormerLibraryRow(row, level));
    // Two exercises the clinic added, with pictures of its own.
    for (int n = 0; n < 2; ++n) {
        Row added = rows[static_cast<size_t>(n)];
        const int id = 100000 + n;
        added["ExerciseID"] = id;
        added["code"] = QString::number(id);
        added["Desc"] = QStringLiteral("Clinic exercise %1").arg(n + 1);
        added["AbbrevDesc"] = QStringLiteral("Clinic ex %1").arg(n + 1);
        added["Icon"] = QStringLiteral("%1.BMP").arg(id);
        for (int i = 0; i < 3; ++i)
            added[QStringLiteral("Picture%1").arg(i)] =
                QStringLiteral("%1_%2.BMP").arg(id).arg(i + 1);
        rows.push_back(added);
    }
    NewFile file(path);
    const QStringList columns = LibraryColumnsSql(level);
    Transaction transaction(file.Db());
    Execute(file.Db(), QStringLiteral("CREATE TABLE ExerciseLibrary (%1)").arg(columns.join(u',')));
    Execute(file.Db(), QStringLiteral("CREATE INDEX AbbrevDesc ON ExerciseLibrary (AbbrevDesc)"));
    Insert(file.Db(), QStringLiteral("ExerciseLibrary"), NamesOf(columns), rows);
    CreateVersion(file.Db(), version);
    transaction.Commit();
    return rows;
}

const char* const kLastNames[] = {"Nguyen", "O'Brien", "Smith",  "García", "Kowalski",
                                  "Jensen", "Okafor",  "Müller", "Tanaka", "Rossi"};
const char* const kFirstNames[] = {"Ann",  "Bob",   "Chloé", "Dev", "Eve",
                                   "Femi", "Grace", "Hugo",  "Ida", "Jon"};
const char* const kProviders[] = {"Dr. Ruth Alvarez, PT, DPT, OCS, Cert. MDT, CSCS", "J. Park, PTA",
                                  "M. O'Neil, PT"};

void MakeProgramTables(QSqlDatabase& db, float level) {
    QStringList statements = {
        QStringLiteral("CREATE TABLE Patient (PatientID INTEGER PRIMARY KEY AUTOINCREMENT,ID%1,"
                       "LastName%1,FirstName%1,FullName%1)"),
        QStringLiteral(
            "CREATE TABLE Invoice (InvoiceID INTEGER PRIMARY KEY AUTOINCREMENT,PatientID INTEGER "
            "REFERENCES Patient (PatientID) ON DELETE CASCADE,Date DATETIME,Provider VARCHAR(50) "
            "COLLATE NOCASE,Usage%1,BillAddr%1,PayMethod%1 CHECK (PayMethod <> ''),CardNum%1,"
            "CardDate DATETIME,NameOnCard%1,Tax SMALLINT,ShipAddr%1,ShipPhone%1,ShipMethod%1 "
            "CHECK (ShipMethod <> ''))"),
        QStringLiteral("CREATE INDEX PatientID ON Invoice (PatientID, Date)"),
        QStringLiteral("CREATE TABLE Exercise (InvoiceID INTEGER REFERENCES Invoice (InvoiceID) "
                       "ON DELETE CASCADE,%2)"),
        QStringLiteral("CREATE INDEX InvoiceID ON Exercise (InvoiceID)"),
        QStringLiteral("CREATE TABLE Items (InvoiceID INTEGER REFERENCES Invoice (InvoiceID) ON "
                       "DELETE CASCADE,PartNumber%1,Description%1,Qty SMALLINT,Price CURRENCY,"
                       "RankOnOrder SMALLINT)"),
        QStringLiteral("CREATE INDEX ItemsInvoiceID ON Items (InvoiceID)"),
        QStringLiteral("CREATE TABLE Clinic (Name%1,Phone%1,ShipAddr%1,ShipMethod%1,BillAddr%1,"
                       "PayMethod%1,CardNum%1,CardDate DATETIME,NameOnCard%1)"),
        QStringLiteral("CREATE TABLE Protocol (ProtocolID INTEGER PRIMARY KEY AUTOINCREMENT,"
                       "Name%1)"),
        QStringLiteral("CREATE TABLE ProtocolExercise (ProtocolID INTEGER REFERENCES Protocol "
                       "(ProtocolID) ON DELETE CASCADE,RankOnTape INTEGER,%3)"),
        QStringLiteral("CREATE INDEX ProtocolID ON ProtocolExercise (ProtocolID)"),
    };
    QStringList exercise = ExerciseColumnsSql(level, false);
    if (level < 3.3f)
        exercise.prepend(QStringLiteral("RankOnTape INTEGER"));
    for (QString& sql : statements) {
        sql.replace(QStringLiteral("%1"), QLatin1String(kText))
            .replace(QStringLiteral("%2"), exercise.join(u','))
            .replace(QStringLiteral("%3"), ExerciseColumnsSql(level, true).join(u','));
        Execute(db, sql);
    }
    if (level >= 3.3f)
        Execute(db, QStringLiteral("CREATE INDEX RankOnTape ON Exercise (RankOnTape)"));
}

// The exercise row of a program or protocol: a copy of the library row with its own
// parameters.
Row ExerciseRow(const Row& library, int rank, int reps) {
    Row row = library;
    row["RankOnTape"] = rank;
    row["Reps"] = reps;
    if (row.value("Instruct0").toString().isEmpty())
        row["Instruct0"] = QStringLiteral("Move slowly and breathe.");
    return row;
}

void FillProgram(QSqlDatabase& db, const std::vector<Row>& library, float level,
                 const ClinicSize& size) {
    QStringList exercise = NamesOf(ExerciseColumnsSql(level, false));
    if (level < 3.3f)
        exercise.prepend(QStringLiteral("RankOnTape"));
    exercise.prepend(QStringLiteral("InvoiceID"));
    QStringList protocolColumns = NamesOf(ExerciseColumnsSql(level, true));
    protocolColumns.prepend(QStringLiteral("RankOnTape"));
    protocolColumns.prepend(QStringLiteral("ProtocolID"));

    PreparedInsert patients(db, QStringLiteral("Patient"),
                            {"ID", "LastName", "FirstName", "FullName"});
    PreparedInsert invoices(db, QStringLiteral("Invoice"),
                            {"PatientID", "Date", "Provider", "Usage", "BillAddr", "PayMethod",
                             "CardNum", "CardDate", "NameOnCard", "Tax", "ShipAddr", "ShipPhone",
                             "ShipMethod"});
    PreparedInsert exercises(db, QStringLiteral("Exercise"), exercise);
    PreparedInsert items(db, QStringLiteral("Items"),
                         {"InvoiceID", "PartNumber", "Description", "Qty", "Price", "RankOnOrder"});
    const auto values = [](const Row& row, const QStringList& columns) {
        QVariantList v;
        for (const QString& c : columns)
            v << row.value(c);
        return v;
    };
    std::vector<qint64> patientIds;
    for (int p = 0; p < size.Patients; ++p) {
        const QString last = QString::fromUtf8(kLastNames[p % 10]);
        const QString first = QString::fromUtf8(kFirstNames[(p / 10) % 10]);
        patientIds.push_back(patients.Insert(
            {QStringLiteral("MRN-%1").arg(10000 + p), last, first, last + ", " + first}));
    }
    const QDateTime start(QDate(2024, 1, 2), QTime(9, 0));
    const int count = static_cast<int>(library.size());
    for (int n = 0; n < size.Programs && !patientIds.empty(); ++n) {
        const qint64 invoice = invoices.Insert(
            {patientIds[static_cast<size_t>(n) % patientIds.size()], start.addSecs(3600LL * 7 * n),
             QString::fromUtf8(kProviders[n % 3]), "Home program", "12 Elm St.\nSpringfield",
             n % 4 == 0 ? QVariant() : QVariant("VISA"), "4111111111111111", QDate(2027, 5, 31),
             "Pat Payer", n % 2, "12 Elm St.", "555-0100", "UPS Ground"});
        for (int e = 0; e < size.ExercisesPerProgram; ++e) {
            // Every seventh program ends with an exercise the clinic added.
            const bool added = e == size.ExercisesPerProgram - 1 && n % 7 == 3;
            const size_t pick = added ? static_cast<size_t>(count - 1 - n % 2)
                                      : static_cast<size_t>((n * 13 + e * 29) % (count - 2));
            Row row = ExerciseRow(library[pick], e, 8 + n % 5);
            row["InvoiceID"] = invoice;
            exercises.Insert(values(row, exercise));
        }
        for (int i = 0; i <= n % 3; ++i)
            items.Insert({invoice, QStringLiteral("TVX-%1").arg(100 + i), "Exercise video tape",
                          1 + i, 29.95 + i, i});
    }
    Execute(db, QStringLiteral("INSERT INTO Clinic (Name, Phone, ShipMethod, PayMethod) VALUES "
                               "('Riverside Physical Therapy', '555-0199', 'UPS Ground', 'VISA')"));
    PreparedInsert protocols(db, QStringLiteral("Protocol"), {"Name"});
    PreparedInsert protocolRows(db, QStringLiteral("ProtocolExercise"), protocolColumns);
    for (int p = 0; p < size.Protocols; ++p) {
        const qint64 id = protocols.Insert({QStringLiteral("Protocol %1").arg(p + 1)});
        for (int e = 0; e < 5; ++e) {
            Row row =
                ExerciseRow(library[static_cast<size_t>((p * 7 + e * 11) % (count - 2))], e, 10);
            row["ProtocolID"] = id;
            protocolRows.Insert(values(row, protocolColumns));
        }
    }
}

void MakePicklist(const QString& path) {
    NewFile file(path);
    QSqlDatabase& db = file.Db();
    Transaction transaction(db);
    Execute(db, QStringLiteral("CREATE TABLE Label (ID INTEGER PRIMARY KEY AUTOINCREMENT,Name TEXT "
                               "COLLATE NOCASE)"));
    Execute(db, QStringLiteral("CREATE TABLE Level1 (ID INTEGER PRIMARY KEY AUTOINCREMENT,LabelID "
                               "INTEGER REFERENCES Label (ID) ON DELETE CASCADE,Name VARCHAR(50) "
                               "COLLATE NOCASE)"));
    Execute(db, QStringLiteral("CREATE INDEX LabelID ON Level1 (LabelID)"));
    Execute(db, QStringLiteral("INSERT INTO Label (Name) VALUES ('Provider'), ('Usage')"));
    Execute(db,
            QStringLiteral(
                "INSERT INTO Level1 (LabelID, Name) VALUES (1, 'Dr. Ruth Alvarez, PT, DPT, OCS, "
                "Cert. MDT, CSCS'), (1, 'J. Park, PTA'), (2, 'Home program'), (2, 'Clinic')"));
    transaction.Commit();
}

} // namespace

QStringList FormerVersions() {
    return {"", "3.1", "3.10", "3.2", "3.3", "3.4", "3.5", "3.6", "3.7"};
}

float SchemaLevel(const QString& version) {
    bool ok = false;
    const float level = version.toFloat(&ok);
    return ok && level >= 3.2f ? level : 3.1f;
}

void MakeOldDatabases(const QString& folder, const QString& version, const ClinicSize& size) {
    const QDir dir(folder);
    const float level = SchemaLevel(version);
    const std::vector<Row> delivered =
        ReadRows(dir.filePath(QLatin1String(kLibraryDbFile)),
                 QStringLiteral("SELECT * FROM ExerciseLibrary ORDER BY ExerciseID"));
    const std::vector<Row> library =
        MakeLibrary(dir.filePath(QLatin1String(kLibraryDbFile)), delivered, level, version);
    {
        NewFile file(dir.filePath(QLatin1String(kProgramDbFile)));
        Transaction transaction(file.Db());
        MakeProgramTables(file.Db(), level);
        FillProgram(file.Db(), library, level, size);
        CreateVersion(file.Db(), version);
        transaction.Commit();
    }
    MakePicklist(dir.filePath(QLatin1String(kPicklistDbFile)));
}

} // namespace tarvex::testing
