#include "dbtools/UpgradeRoutines.h"

#include "data/Schema.h"
#include "data/Sql.h"
#include "dbtools/CompanionSource.h"
#include "dbtools/TableDef.h"
#include "support/Fault.h"

#include <QSqlQuery>
#include <QStringList>
#include <optional>

namespace tarvex {

namespace {

std::optional<float> VersionNumber(const QString& text) {
    bool ok = false;
    const float number = text.trimmed().toFloat(&ok);
    if (!ok)
        return std::nullopt;
    return number;
}

// The rows of a table by their row number, with the exercise number of each.
struct TargetRow {
    qint64 RowId;
    QVariant ExerciseId;
};

std::vector<TargetRow> TargetRows(QSqlDatabase& db, const QString& table) {
    std::vector<TargetRow> rows;
    QSqlQuery query =
        OpenQuery(db, QStringLiteral("SELECT rowid, ExerciseID FROM %1 ORDER BY rowid").arg(table));
    while (query.next())
        rows.push_back({query.value(0).toLongLong(), query.value(1)});
    return rows;
}

qint64 SearchKey(const QVariant& exerciseId, const QString& table) {
    if (exerciseId.isNull())
        throw DatabaseFault(
            QStringLiteral("Syntax error in the search \"ExerciseID = \" of table '%1': a row "
                           "has no exercise number.")
                .arg(table));
    return exerciseId.toLongLong();
}

// For each row of the table: search the source for its exercise, then copy the columns
// from the source's current row, whether the search found one or not.
void CopyFromCompanion(QSqlDatabase& db, const QString& table, CompanionSource& source,
                       const QStringList& columns) {
    QStringList sets;
    for (const QString& column : columns)
        sets << QStringLiteral("\"%1\" = ?").arg(column);
    const QString sql = QStringLiteral("UPDATE %1 SET %2 WHERE rowid = ?")
                            .arg(table, sets.join(QStringLiteral(", ")));
    for (const TargetRow& row : TargetRows(db, table)) {
        source.FindFirst(SearchKey(row.ExerciseId, table));
        QVariantList values;
        for (const QString& column : columns)
            values << source.Value(column);
        values << row.RowId;
        ExecPrepared(db, sql, values);
    }
}

// The text with its last three characters replaced by "JPG"; a text shorter than that, or
// none, cannot be cut.
QString WithJpgEnding(const QVariant& value, const QString& column, const QVariant& id) {
    if (value.isNull())
        throw TypeFault(QStringLiteral("Invalid use of Null: %1 of exercise %2 is empty.")
                            .arg(column, id.toString()));
    const QString text = value.toString();
    if (text.size() < 3)
        throw Fault(QStringLiteral("Invalid procedure call or argument: %1 of exercise %2 "
                                   "(\"%3\") is shorter than its extension.")
                        .arg(column, id.toString(), text));
    return text.left(text.size() - 3) + QStringLiteral("JPG");
}

void ResizeThroughTemp(QSqlDatabase& db, const QString& table, const QString& column, int16_t width,
                       bool cut) {
    const QString alter = QStringLiteral("ALTER TABLE ") + table;
    ExecuteIgnoringErrors(db, alter + QStringLiteral(" DROP COLUMN Temp"));
    Execute(db, alter + QStringLiteral(" ADD COLUMN Temp TEXT"));
    AllowEmptyStrings(db, table, QStringLiteral("Temp"));
    Execute(db, QStringLiteral("UPDATE %1 SET Temp = %2").arg(table, column));
    Execute(db, alter + QStringLiteral(" DROP COLUMN ") + column);
    AppendField(db, table, {column, FieldType::Text, width, false, true});
    if (cut)
        Execute(
            db,
            QStringLiteral("UPDATE %1 SET %2 = substr(Temp, 1, %3)").arg(table, column).arg(width));
    Execute(db, QStringLiteral("UPDATE %1 SET %2 = Temp").arg(table, column));
    Execute(db, alter + QStringLiteral(" DROP COLUMN Temp"));
}

} // namespace

bool DatabaseHasVersion(QSqlDatabase& db, const QString& version) {
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("SELECT Version FROM Version")) || !query.next())
        return false;
    const std::optional<float> stored = VersionNumber(query.value(0).toString());
    const std::optional<float> asked = VersionNumber(version);
    return stored && asked && *asked <= *stored;
}

void SetDatabaseVersion(QSqlDatabase& db, const QString& version) {
    ExecuteIgnoringErrors(db, QStringLiteral("DROP TABLE Version"));
    CreateVersionTable(db);
    ExecPrepared(db, QStringLiteral("INSERT INTO Version (Version) VALUES (?)"), {version});
}

void AddVideoColumns(QSqlDatabase& db, const QString& folder, const QString& table) {
    AddVideoFields(db, table);
    CopyVideoData(db, folder, table);
}

void AddVideoFields(QSqlDatabase& db, const QString& table) {
    AppendField(db, table, {QStringLiteral("HasVideo"), FieldType::Boolean});
    for (const char* name : {"VideoReps", "VideoHold", "VideoSets"})
        AppendField(db, table, {QLatin1String(name), FieldType::Long});
}

void CopyVideoData(QSqlDatabase& db, const QString& folder, const QString& table) {
    CompanionSource source(folder, QLatin1String(kVideoDbFile), QStringLiteral("Video"));
    CopyFromCompanion(db, table, source, {"HasVideo", "VideoReps", "VideoHold", "VideoSets"});
}

void ChangePicturesToJPG(QSqlDatabase& db, const QString& table) {
    const QStringList columns = {"Icon", "Picture0", "Picture1", "Picture2"};
    struct Change {
        qint64 RowId;
        QVariantList Values;
    };
    std::vector<Change> changes;
    {
        QSqlQuery query = OpenQuery(
            db,
            QStringLiteral("SELECT rowid, ExerciseID, Icon, Picture0, Picture1, Picture2 FROM ") +
                table);
        while (query.next()) {
            const QVariant id = query.value(1);
            const qint64 number = id.toLongLong();
            if (id.isNull() || number <= 0 || number >= 10000)
                continue; // the exercises a clinic added keep their names
            Change change{query.value(0).toLongLong(), {}};
            for (int i = 0; i < columns.size(); ++i)
                change.Values << WithJpgEnding(query.value(2 + i), columns[i], id);
            changes.push_back(std::move(change));
        }
    }
    const QString sql =
        QStringLiteral("UPDATE %1 SET Icon = ?, Picture0 = ?, Picture1 = ?, Picture2 = ? WHERE "
                       "rowid = ?")
            .arg(table);
    for (Change& change : changes) {
        change.Values << change.RowId;
        ExecPrepared(db, sql, change.Values);
    }
}

void RebuildRankOnTape(QSqlDatabase& db, const QString& table) {
    const QString alter = QStringLiteral("ALTER TABLE ") + table;
    Execute(db, alter + QStringLiteral(" ADD COLUMN Temp LONG"));
    Execute(db, QStringLiteral("UPDATE %1 SET Temp = RankOnTape").arg(table));
    Execute(db, alter + QStringLiteral(" DROP COLUMN RankOnTape"));
    AppendField(db, table, {QStringLiteral("RankOnTape"), FieldType::Long, 0, true, true});
    AppendIndex(db, table, QStringLiteral("RankOnTape"), QStringLiteral("RankOnTape"));
    Execute(db, QStringLiteral("UPDATE %1 SET RankOnTape = Temp").arg(table));
    Execute(db, alter + QStringLiteral(" DROP COLUMN Temp"));
}

void ResizeInstructions(QSqlDatabase& db, const QString& table) {
    for (const char* column : {"Instruct0", "Instruct1", "Instruct2"})
        ResizeTextColumn(db, table, QLatin1String(column), 75);
}

void ResizeTextColumn(QSqlDatabase& db, const QString& table, const QString& column,
                      int16_t width) {
    ResizeThroughTemp(db, table, column, width, false);
}

void CutTextColumn(QSqlDatabase& db, const QString& table, const QString& column, int16_t width) {
    ResizeThroughTemp(db, table, column, width, true);
}

void UpdateExerciseText(QSqlDatabase& db, const QString& folder, const QString& table) {
    CompanionSource source(folder, QLatin1String(kOldLibraryDbFile),
                           QStringLiteral("ExerciseLibrary"));
    CopyFromCompanion(db, table, source,
                      {"code", "Desc", "AbbrevDesc", "Reps", "Hold", "Sets", "Icon", "Movie",
                       "Picture0", "Instruct0", "Picture1", "Instruct1", "Picture2", "Instruct2",
                       "HasVideo", "VideoReps", "VideoHold", "VideoSets"});
}

void AllowEmptyInstruct0(QSqlDatabase& db) {
    AllowEmptyStrings(db, QStringLiteral("ProtocolExercise"), QStringLiteral("Instruct0"));
}

void DropFourthPicture(QSqlDatabase& db, const QString& table) {
    ExecuteIgnoringErrors(db, QStringLiteral("ALTER TABLE %1 DROP COLUMN Picture3").arg(table));
    ExecuteIgnoringErrors(db, QStringLiteral("ALTER TABLE %1 DROP COLUMN Instruct3").arg(table));
}

} // namespace tarvex
