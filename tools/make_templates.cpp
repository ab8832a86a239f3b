// Builds the delivered files from the source data of content/: the three databases
// ("Tarvex.MDB" with the delivered protocols, "Exercise Library.MDB", "Picklist.MDB"), the two
// texts, and the two companions the database upgrade reads: "Video.MDB" (the video data of every
// library exercise) and "TVX Exercise Library.MDB" (the library as the 3.6 release delivered it).
//
//   make_templates --content DIR --out DIR

#include "data/Schema.h"
#include "data/Sql.h"
#include "dbtools/UpgradeRoutines.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QTextStream>
#include <cstdio>

using namespace tarvex;

namespace {

// The version the older library, a companion of the upgrade, carries.
constexpr const char* kOldLibraryVersion = "3.6";

struct Failure {
    QString message;
};

QList<QStringList> ReadTable(const QString& path, int columns) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        throw Failure{QStringLiteral("cannot read %1").arg(path)};
    QTextStream in(&file);
    QList<QStringList> rows;
    QString line;
    int number = 0;
    while (in.readLineInto(&line)) {
        ++number;
        if (number == 1 || line.trimmed().isEmpty())
            continue; // header
        const QStringList fields = line.split(u'\t');
        if (fields.size() != columns)
            throw Failure{QStringLiteral("%1:%2: %3 fields, expected %4")
                              .arg(path)
                              .arg(number)
                              .arg(fields.size())
                              .arg(columns)};
        rows << fields;
    }
    return rows;
}

// Creates a database file under a temporary name and runs fill on it; the file takes
// its real name only when everything went in.
template <typename Fill> void MakeDatabase(const QString& path, Fill fill) {
    const QString partial = path + QStringLiteral(".partial");
    QFile::remove(partial);
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("make"));
        db.setDatabaseName(partial);
        if (!db.open())
            throw Failure{QStringLiteral("cannot create %1").arg(partial)};
        Execute(db, QStringLiteral("PRAGMA foreign_keys = ON"));
        fill(db);
        Execute(db, QStringLiteral("VACUUM"));
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("make"));
    QFile::remove(path);
    if (!QFile::rename(partial, path))
        throw Failure{QStringLiteral("cannot write %1").arg(path)};
}

QVariant MediaName(bool present, const QString& name) {
    return present ? QVariant(name) : QVariant(QString());
}

// The columns of an exercise that a library row and a protocol's copy of it share, apart
// from its repetitions, hold and sets: texts, media names, instructions and video.
ColumnValues SharedColumns(const QStringList& f) {
    const QString id = f[0];
    const bool hasVideo = f[13] == QLatin1String("1");
    return {{"ExerciseID", id.toInt()},
            {"code", f[1]},
            {"Desc", f[2]},
            {"AbbrevDesc", f[3]},
            {"Movie", MediaName(hasVideo, id + QStringLiteral(".AVI"))},
            {"Icon", id + QStringLiteral(".JPG")},
            {"Picture0", MediaName(!f[10].isEmpty(), id + QStringLiteral("_1.JPG"))},
            {"Picture1", MediaName(!f[11].isEmpty(), id + QStringLiteral("_2.JPG"))},
            {"Picture2", MediaName(!f[12].isEmpty(), id + QStringLiteral("_3.JPG"))},
            {"Instruct0", f[10]},
            {"Instruct1", f[11]},
            {"Instruct2", f[12]},
            {"HasVideo", hasVideo ? 1 : 0},
            {"VideoReps", f[14].toInt()},
            {"VideoHold", f[15].toInt()},
            {"VideoSets", f[16].toInt()}};
}

void FillLibrary(QSqlDatabase& db, const QList<QStringList>& rows, const QString& version) {
    CreateLibrarySchema(db);
    Transaction transaction(db);
    for (const QStringList& f : rows) {
        const QString id = f[0];
        bool ok = false;
        id.toInt(&ok);
        if (!ok)
            throw Failure{QStringLiteral("exercise number \"%1\" is not a number").arg(id)};
        ColumnValues values = SharedColumns(f);
        values.insert(values.end(), {{"Reps", f[4].toInt()},
                                     {"Hold", f[5].toInt()},
                                     {"Sets", f[6].toInt()},
                                     {"Joint", f[7]},
                                     {"Motion", f[8]},
                                     {"Type", f[9]},
                                     {"IconSrc", 0},
                                     {"Picture0Src", QString()},
                                     {"Picture1Src", QString()},
                                     {"Picture2Src", QString()}});
        InsertRow(db, QStringLiteral("ExerciseLibrary"), values);
    }
    transaction.Commit();
    WriteVersion(db, version);
}

// The table Video: one row per library exercise with its video columns.
void FillVideo(QSqlDatabase& db, const QList<QStringList>& rows) {
    Execute(db, QStringLiteral("CREATE TABLE Video (ExerciseID INTEGER PRIMARY KEY,"
                               "HasVideo BOOLEAN,VideoReps INTEGER,VideoHold INTEGER,"
                               "VideoSets INTEGER)"));
    Transaction transaction(db);
    for (const QStringList& f : rows)
        InsertRow(db, QStringLiteral("Video"),
                  {{"ExerciseID", f[0].toInt()},
                   {"HasVideo", f[13] == QLatin1String("1") ? 1 : 0},
                   {"VideoReps", f[14].toInt()},
                   {"VideoHold", f[15].toInt()},
                   {"VideoSets", f[16].toInt()}});
    transaction.Commit();
}

// The delivered protocols: each row names a protocol, a library exercise and its
// repetitions, hold and sets; the rest of the exercise is copied from the library row, as
// a protocol keeps a full copy of each exercise.
void FillProtocols(QSqlDatabase& db, const QList<QStringList>& rows,
                   const QList<QStringList>& library) {
    QHash<QString, QStringList> exercises;
    for (const QStringList& f : library)
        exercises.insert(f[0], f);
    Transaction transaction(db);
    QHash<QString, qint64> protocols;
    QHash<QString, int> ranks;
    for (const QStringList& f : rows) {
        if (!exercises.contains(f[1]))
            throw Failure{
                QStringLiteral("protocol \"%1\": no exercise %2 in the library").arg(f[0], f[1])};
        const QStringList e = exercises.value(f[1]);
        if (!protocols.contains(f[0]))
            protocols.insert(f[0], InsertRow(db, QStringLiteral("Protocol"), {{"Name", f[0]}}));
        ColumnValues values = SharedColumns(e);
        values.insert(values.end(), {{"ProtocolID", protocols.value(f[0])},
                                     {"RankOnTape", ranks[f[0]]++},
                                     {"Reps", f[2].toInt()},
                                     {"Hold", f[3].toInt()},
                                     {"Sets", f[4].toInt()}});
        InsertRow(db, QStringLiteral("ProtocolExercise"), values);
    }
    transaction.Commit();
}

void FillPicklists(QSqlDatabase& db, const QList<QStringList>& rows) {
    CreatePicklistSchema(db);
    Transaction transaction(db);
    QHash<QString, qint64> labels;
    for (const QStringList& f : rows) {
        if (!labels.contains(f[0]))
            labels.insert(f[0], InsertRow(db, QStringLiteral("Label"), {{"Name", f[0]}}));
        InsertRow(db, QStringLiteral("Level1"), {{"LabelID", labels.value(f[0])}, {"Name", f[1]}});
    }
    transaction.Commit();
}

void CopyText(const QString& from, const QString& to) {
    QFile::remove(to);
    if (!QFile::copy(from, to))
        throw Failure{QStringLiteral("cannot copy %1 to %2").arg(from, to)};
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int contentAt = args.indexOf(QStringLiteral("--content"));
    const int outAt = args.indexOf(QStringLiteral("--out"));
    if (contentAt < 0 || outAt < 0 || contentAt + 1 >= args.size() || outAt + 1 >= args.size()) {
        std::fprintf(stderr, "usage: make_templates --content DIR --out DIR\n");
        return 2;
    }
    const QDir content(args[contentAt + 1]);
    const QDir out(args[outAt + 1]);
    try {
        if (!QDir().mkpath(out.path()))
            throw Failure{QStringLiteral("cannot create %1").arg(out.path())};
        const auto library = ReadTable(content.filePath(QStringLiteral("library.tsv")), 17);
        const auto picklists = ReadTable(content.filePath(QStringLiteral("picklists.tsv")), 2);
        const auto protocols = ReadTable(content.filePath(QStringLiteral("protocols.tsv")), 5);
        MakeDatabase(out.filePath(QLatin1String(kLibraryDbFile)), [&](QSqlDatabase& db) {
            FillLibrary(db, library, QLatin1String(kCurrentDatabaseVersion));
        });
        MakeDatabase(out.filePath(QLatin1String(kProgramDbFile)), [&](QSqlDatabase& db) {
            CreateProgramSchema(db);
            FillProtocols(db, protocols, library);
            WriteVersion(db, QLatin1String(kCurrentDatabaseVersion));
        });
        MakeDatabase(out.filePath(QLatin1String(kPicklistDbFile)),
                     [&](QSqlDatabase& db) { FillPicklists(db, picklists); });
        MakeDatabase(out.filePath(QLatin1String(kVideoDbFile)),
                     [&](QSqlDatabase& db) { FillVideo(db, library); });
        MakeDatabase(out.filePath(QLatin1String(kOldLibraryDbFile)), [&](QSqlDatabase& db) {
            FillLibrary(db, library, QLatin1String(kOldLibraryVersion));
        });
        CopyText(content.filePath(QStringLiteral("cover.txt")),
                 out.filePath(QStringLiteral("cover.txt")));
        CopyText(content.filePath(QStringLiteral("TIPOFDAY.TXT")),
                 out.filePath(QStringLiteral("TIPOFDAY.TXT")));
        CopyText(content.filePath(QStringLiteral("Patient Instructions.Doc")),
                 out.filePath(QStringLiteral("Patient Instructions.Doc")));
        std::printf("make_templates: %lld exercises, %lld picklist entries, %lld protocol rows "
                    "-> %s\n",
                    static_cast<long long>(library.size()),
                    static_cast<long long>(picklists.size()),
                    static_cast<long long>(protocols.size()), qPrintable(out.path()));
    } catch (const Failure& failure) {
        std::fprintf(stderr, "make_templates: %s\n", qPrintable(failure.message));
        return 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make_templates: %s\n", error.what());
        return 1;
    }
    return 0;
}
