#include "data/Schema.h"

#include "data/Sql.h"

#include <QStringList>

namespace tarvex {

namespace {

using K = ColumnKind;

// The columns shared by a stored program's exercise rows and a protocol's, from
// ExerciseID to VideoSets.
std::vector<ColumnShape> ExerciseColumns() {
    return {
        {"ExerciseID", K::Long},    {"code", K::Text},          {"Desc", K::Text},
        {"AbbrevDesc", K::Text},    {"Reps", K::Short},         {"Hold", K::Short},
        {"Sets", K::Short},         {"Movie", K::Text},         {"Icon", K::Text},
        {"Picture0", K::Text},      {"Picture1", K::Text},      {"Picture2", K::Text},
        {"Instruct0", K::Text, 75}, {"Instruct1", K::Text, 75}, {"Instruct2", K::Text, 75},
        {"HasVideo", K::Boolean},   {"VideoReps", K::Long},     {"VideoHold", K::Long},
        {"VideoSets", K::Long},
    };
}

std::vector<ColumnShape> Joined(std::vector<ColumnShape> first,
                                const std::vector<ColumnShape>& then) {
    first.insert(first.end(), then.begin(), then.end());
    return first;
}

TableShape VersionTable() {
    return {"Version", {{"Version", K::Text, 20, true, true}}, {}};
}

const std::vector<TableShape>& ProgramTables() {
    static const std::vector<TableShape> tables = {
        {"Patient",
         {{"PatientID", K::Identity},
          {"ID", K::Text},
          {"LastName", K::Text},
          {"FirstName", K::Text},
          {"FullName", K::Text}},
         {}},
        {"Invoice",
         {{"InvoiceID", K::Identity},
          {"PatientID", K::Long, 0, false, false, "Patient (PatientID)"},
          {"Date", K::Date},
          {"Provider", K::Text, 40},
          {"Usage", K::Text},
          {"BillAddr", K::Text},
          {"PayMethod", K::Text, 0, false, true},
          {"CardNum", K::Text},
          {"CardDate", K::Date},
          {"NameOnCard", K::Text},
          {"Tax", K::Short},
          {"ShipAddr", K::Text},
          {"ShipPhone", K::Text},
          {"ShipMethod", K::Text, 0, false, true}},
         {{"PatientID", "PatientID, Date"}}},
        {"Exercise",
         Joined({{"InvoiceID", K::Long, 0, false, false, "Invoice (InvoiceID)"},
                 {"RankOnTape", K::Long, 0, true}},
                ExerciseColumns()),
         {{"RankOnTape", "RankOnTape"}, {"InvoiceID", "InvoiceID"}}},
        {"Items",
         {{"InvoiceID", K::Long, 0, false, false, "Invoice (InvoiceID)"},
          {"PartNumber", K::Text},
          {"Description", K::Text},
          {"Qty", K::Short},
          {"Price", K::Currency},
          {"RankOnOrder", K::Short}},
         {{"ItemsInvoiceID", "InvoiceID"}}},
        {"Clinic",
         {{"Name", K::Text},
          {"Phone", K::Text},
          {"ShipAddr", K::Text},
          {"ShipMethod", K::Text},
          {"BillAddr", K::Text},
          {"PayMethod", K::Text},
          {"CardNum", K::Text},
          {"CardDate", K::Date},
          {"NameOnCard", K::Text}},
         {}},
        {"Protocol", {{"ProtocolID", K::Identity}, {"Name", K::Text}}, {}},
        {"ProtocolExercise",
         Joined({{"ProtocolID", K::Long, 0, false, false, "Protocol (ProtocolID)"},
                 {"RankOnTape", K::Long}},
                ExerciseColumns()),
         {{"ProtocolID", "ProtocolID"}}},
        VersionTable(),
    };
    return tables;
}

const std::vector<TableShape>& LibraryTables() {
    static const std::vector<TableShape> tables = {
        {"ExerciseLibrary",
         {{"ExerciseID", K::Key},     {"code", K::Text},          {"Desc", K::Text},
          {"AbbrevDesc", K::Text},    {"Reps", K::Short},         {"Hold", K::Short},
          {"Sets", K::Short},         {"Joint", K::Text},         {"Motion", K::Text},
          {"Type", K::Text},          {"Movie", K::Text},         {"Icon", K::Text},
          {"Picture0", K::Text},      {"Picture1", K::Text},      {"Picture2", K::Text},
          {"IconSrc", K::Short},      {"Picture0Src", K::Text},   {"Picture1Src", K::Text},
          {"Picture2Src", K::Text},   {"Instruct0", K::Text, 75}, {"Instruct1", K::Text, 75},
          {"Instruct2", K::Text, 75}, {"HasVideo", K::Boolean},   {"VideoReps", K::Long},
          {"VideoHold", K::Long},     {"VideoSets", K::Long}},
         {{"AbbrevDesc", "AbbrevDesc"}}},
        VersionTable(),
    };
    return tables;
}

const std::vector<TableShape>& PicklistTables() {
    static const std::vector<TableShape> tables = {
        {"Label", {{"ID", K::Identity}, {"Name", K::Text}}, {}},
        {"Level1",
         {{"ID", K::Identity},
          {"LabelID", K::Long, 0, false, false, "Label (ID)"},
          {"Name", K::Text, 40}},
         {{"LabelID", "LabelID"}}},
    };
    return tables;
}

// A name as the statements of this program write it: "Desc" is a keyword of both engines.
QString ColumnName(const char* name) {
    const QString text = QLatin1String(name);
    return text == QLatin1String("Desc") ? QStringLiteral("\"Desc\"") : text;
}

QString ColumnType(const ColumnShape& c, SqlDialect dialect) {
    const bool server = dialect == SqlDialect::Postgres;
    switch (c.Kind) {
    case K::Identity:
        return server ? QStringLiteral("INTEGER GENERATED BY DEFAULT AS IDENTITY PRIMARY KEY")
                      : QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT");
    case K::Key:
        return QStringLiteral("INTEGER PRIMARY KEY");
    case K::Long:
        return QStringLiteral("INTEGER");
    case K::Short:
        return QStringLiteral("SMALLINT");
    case K::Text:
        // The server holds text of any length, as SQLite does, so that a clinic moved from
        // one engine to the other never loses a character; the classic size stays in the
        // SQLite form, where it is only a note.
        if (server)
            return QStringLiteral("TEXT COLLATE %1").arg(QLatin1String(kServerNoCase));
        return c.Size > 0 ? QStringLiteral("VARCHAR(%1) COLLATE NOCASE").arg(c.Size)
                          : QStringLiteral("TEXT COLLATE NOCASE");
    case K::Boolean:
        return QStringLiteral("BOOLEAN");
    case K::Date:
        return server ? QStringLiteral("TIMESTAMP(0)") : QStringLiteral("DATETIME");
    case K::Currency:
        return server ? QStringLiteral("NUMERIC(19,4)") : QStringLiteral("CURRENCY");
    }
    return {};
}

QString ColumnSql(const ColumnShape& c, SqlDialect dialect) {
    QString sql = ColumnName(c.Name) + u' ' + ColumnType(c, dialect);
    if (c.Required)
        sql += QStringLiteral(" NOT NULL");
    if (c.NoEmpty)
        sql += QStringLiteral(" CHECK (%1 <> '')").arg(ColumnName(c.Name));
    if (c.References)
        sql += QStringLiteral(" REFERENCES %1 ON DELETE CASCADE").arg(QLatin1String(c.References));
    return sql;
}

QString CreateTableSql(const TableShape& table, SqlDialect dialect) {
    QStringList columns;
    for (const ColumnShape& c : table.Columns)
        columns << ColumnSql(c, dialect);
    return QStringLiteral("CREATE TABLE %1 (%2)")
        .arg(QLatin1String(table.Name), columns.join(QStringLiteral(", ")));
}

void ExecuteAll(QSqlDatabase& db, const QStringList& statements) {
    Transaction transaction(db);
    for (const QString& sql : statements)
        Execute(db, sql);
    transaction.Commit();
}

const TableShape& FindVersionTable() {
    return ProgramTables().back();
}

} // namespace

QString StoreFileName(Store store) {
    switch (store) {
    case Store::Program:
        return QLatin1String(kProgramDbFile);
    case Store::Library:
        return QLatin1String(kLibraryDbFile);
    case Store::Picklist:
        return QLatin1String(kPicklistDbFile);
    }
    return {};
}

QString StoreSchemaName(Store store) {
    switch (store) {
    case Store::Program:
        return QStringLiteral("program");
    case Store::Library:
        return QStringLiteral("library");
    case Store::Picklist:
        return QStringLiteral("picklist");
    }
    return {};
}

QString StoreMarkTable(Store store) {
    switch (store) {
    case Store::Program:
        return QStringLiteral("Patient");
    case Store::Library:
        return QStringLiteral("ExerciseLibrary");
    case Store::Picklist:
        return QStringLiteral("Label");
    }
    return {};
}

const std::vector<TableShape>& StoreTables(Store store) {
    switch (store) {
    case Store::Program:
        return ProgramTables();
    case Store::Library:
        return LibraryTables();
    case Store::Picklist:
        break;
    }
    return PicklistTables();
}

QString IdentityKeyOf(const QString& table) {
    for (const Store store : kAllStores)
        for (const TableShape& shape : StoreTables(store))
            if (table.compare(QLatin1String(shape.Name), Qt::CaseInsensitive) == 0) {
                for (const ColumnShape& c : shape.Columns)
                    if (c.Kind == K::Identity)
                        return QLatin1String(c.Name);
                return {};
            }
    return {};
}

QStringList SchemaStatements(Store store, SqlDialect dialect) {
    QStringList statements;
    if (dialect == SqlDialect::Postgres)
        statements << QStringLiteral("CREATE COLLATION %1 (provider = icu, locale = "
                                     "'und-u-ks-level2', deterministic = false)")
                          .arg(QLatin1String(kServerNoCase));
    for (const TableShape& table : StoreTables(store)) {
        statements << CreateTableSql(table, dialect);
        for (const IndexShape& index : table.Indexes)
            statements << QStringLiteral("CREATE INDEX %1 ON %2 (%3)")
                              .arg(QLatin1String(index.Name), QLatin1String(table.Name),
                                   QLatin1String(index.Columns));
    }
    return statements;
}

void ApplyConnectionSettings(QSqlDatabase& db) {
    Execute(db, QStringLiteral("PRAGMA foreign_keys = ON"));
    Execute(db, QStringLiteral("PRAGMA journal_mode = WAL"));
    Execute(db, QStringLiteral("PRAGMA synchronous = NORMAL"));
}

void CreateProgramSchema(QSqlDatabase& db) {
    ExecuteAll(db, SchemaStatements(Store::Program, DialectOf(db)));
}

void CreateLibrarySchema(QSqlDatabase& db) {
    ExecuteAll(db, SchemaStatements(Store::Library, DialectOf(db)));
}

void CreatePicklistSchema(QSqlDatabase& db) {
    ExecuteAll(db, SchemaStatements(Store::Picklist, DialectOf(db)));
}

void CreateVersionTable(QSqlDatabase& db) {
    Execute(db, CreateTableSql(FindVersionTable(), DialectOf(db)));
}

void WriteVersion(QSqlDatabase& db, const QString& version) {
    Transaction transaction(db);
    Execute(db, QStringLiteral("DELETE * FROM Version"));
    ExecPrepared(db, QStringLiteral("INSERT INTO Version (Version) VALUES (?)"), {version});
    transaction.Commit();
}

} // namespace tarvex
