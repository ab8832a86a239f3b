// Checks of the delivered exercise library and its companions as the build makes them
// from content/: the rows, their numbers and texts, the media names, the fixed words of
// the Joint, Motion and Type columns, the versions, the pick lists, the protocols, the two
// files the database upgrade reads, and the pose data of the pictures.

#include "support/TestFolder.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QTextStream>
#include <gtest/gtest.h>
#include <map>
#include <utility>

using tarvex::testing::DeliveredFolder;

namespace {

QString TemplateFile(const QString& name) {
    return DeliveredFolder() + QStringLiteral("/templates/") + name;
}

// A delivered database opened read-only on a connection of its own while the object lives.
class ReadOnlyDatabase {
public:
    explicit ReadOnlyDatabase(const QString& fileName)
        : path_(TemplateFile(fileName)), name_(QStringLiteral("delivered-check-%1").arg(++count_)) {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name_);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        db.setDatabaseName(path_);
        open_ = QFileInfo::exists(path_) && db.open();
    }
    ~ReadOnlyDatabase() {
        QSqlDatabase::database(name_, false).close();
        QSqlDatabase::removeDatabase(name_);
    }
    ReadOnlyDatabase(const ReadOnlyDatabase&) = delete;
    ReadOnlyDatabase& operator=(const ReadOnlyDatabase&) = delete;

    bool IsOpen() const { return open_; }
    const QString& Path() const { return path_; }

    // Every row a query returns; a refused query is a failure of the test.
    QList<QSqlRecord> Rows(const QString& sql) const {
        QList<QSqlRecord> rows;
        QSqlQuery query(QSqlDatabase::database(name_, false));
        query.setForwardOnly(true);
        if (!query.exec(sql)) {
            ADD_FAILURE() << sql.toStdString() << ": " << query.lastError().text().toStdString();
            return rows;
        }
        while (query.next())
            rows << query.record();
        return rows;
    }

    QString Version() const {
        const QList<QSqlRecord> rows = Rows(QStringLiteral("SELECT Version FROM Version"));
        return rows.size() == 1 ? rows[0].value(0).toString()
                                : QStringLiteral("<%1 rows>").arg(rows.size());
    }

private:
    QString path_;
    QString name_;
    bool open_ = false;
    static inline int count_ = 0;
};

std::string Id(const QSqlRecord& row) {
    return "exercise " + row.value(QStringLiteral("ExerciseID")).toString().toStdString();
}

QString Text(const QSqlRecord& row, const char* column) {
    return row.value(QLatin1String(column)).toString();
}

QStringList ColumnNames(const QSqlRecord& row) {
    QStringList names;
    for (int i = 0; i < row.count(); ++i)
        names << row.fieldName(i);
    return names;
}

QList<QSqlRecord> LibraryRows(const ReadOnlyDatabase& db) {
    return db.Rows(QStringLiteral("SELECT * FROM ExerciseLibrary ORDER BY ExerciseID"));
}

const char* const kInstructions[] = {"Instruct0", "Instruct1", "Instruct2"};
const char* const kPictures[] = {"Picture0", "Picture1", "Picture2"};

} // namespace

TEST(DeliveredLibrary, HoldsTheWholeLibraryNumberedBelow244ExceptSitToStand) {
    ReadOnlyDatabase db(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    const QList<QSqlRecord> rows = LibraryRows(db);
    EXPECT_GE(rows.size(), 240);
    QList<int> high;
    QSet<int> ids;
    for (const QSqlRecord& row : rows) {
        const int id = row.value(QStringLiteral("ExerciseID")).toInt();
        ids.insert(id);
        if (id >= 244)
            high << id;
    }
    EXPECT_EQ(ids.size(), rows.size());
    EXPECT_EQ(high, QList<int>({385}));
    const auto desc = [&rows](int id) {
        for (const QSqlRecord& row : rows)
            if (row.value(QStringLiteral("ExerciseID")).toInt() == id)
                return Text(row, "Desc");
        return QStringLiteral("<missing>");
    };
    EXPECT_EQ(desc(1), "Chin tucks");
    EXPECT_EQ(desc(385), "Sit to stand from chair");
}

TEST(DeliveredLibrary, TextsFitTheirFieldsAndAreNeverEmptyWhereRequired) {
    ReadOnlyDatabase db(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    const QList<QSqlRecord> rows = LibraryRows(db);
    ASSERT_FALSE(rows.isEmpty());
    for (const QSqlRecord& row : rows) {
        EXPECT_FALSE(Text(row, "Desc").isEmpty()) << Id(row);
        EXPECT_LE(Text(row, "Desc").size(), 50) << Id(row);
        EXPECT_FALSE(Text(row, "AbbrevDesc").isEmpty()) << Id(row);
        EXPECT_LE(Text(row, "AbbrevDesc").size(), 15) << Id(row);
        for (const char* column : kInstructions)
            EXPECT_LE(Text(row, column).size(), 75) << Id(row) << " " << column;
        EXPECT_FALSE(Text(row, "Instruct0").isEmpty()) << Id(row);
        EXPECT_FALSE(Text(row, "Instruct1").isEmpty()) << Id(row);
    }
}

TEST(DeliveredLibrary, NumbersCountsAndVideoFlagIsNeverNull) {
    ReadOnlyDatabase db(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    const QList<QSqlRecord> rows = LibraryRows(db);
    ASSERT_FALSE(rows.isEmpty());
    for (const QSqlRecord& row : rows)
        for (const char* column : {"ExerciseID", "code", "Reps", "Hold", "Sets", "HasVideo"})
            EXPECT_FALSE(row.isNull(QLatin1String(column))) << Id(row) << " " << column;
    const QList<QSqlRecord> nulls = db.Rows(
        QStringLiteral("SELECT COUNT(*) FROM ExerciseLibrary WHERE ExerciseID IS NULL OR code IS "
                       "NULL OR Reps IS NULL OR Hold IS NULL OR Sets IS NULL OR HasVideo IS NULL"));
    ASSERT_EQ(nulls.size(), 1);
    EXPECT_EQ(nulls[0].value(0).toInt(), 0);
}

TEST(DeliveredLibrary, CodeIsTheNumberAsText) {
    ReadOnlyDatabase db(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    const QList<QSqlRecord> rows = LibraryRows(db);
    ASSERT_FALSE(rows.isEmpty());
    for (const QSqlRecord& row : rows) {
        bool numeric = false;
        const int code = Text(row, "code").toInt(&numeric);
        EXPECT_TRUE(numeric) << Id(row) << " code \"" << Text(row, "code").toStdString() << "\"";
        EXPECT_EQ(code, row.value(QStringLiteral("ExerciseID")).toInt()) << Id(row);
        EXPECT_EQ(Text(row, "code"), Text(row, "ExerciseID")) << Id(row);
    }
}

TEST(DeliveredLibrary, MediaNamesFollowTheNumberAndTheLinesThatExist) {
    ReadOnlyDatabase db(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    const QList<QSqlRecord> rows = LibraryRows(db);
    ASSERT_FALSE(rows.isEmpty());
    for (const QSqlRecord& row : rows) {
        const QString id = Text(row, "ExerciseID");
        EXPECT_EQ(Text(row, "Icon"), id + ".JPG") << Id(row);
        for (int k = 0; k < 3; ++k) {
            const QString expected = Text(row, kInstructions[k]).isEmpty()
                                         ? QString()
                                         : QStringLiteral("%1_%2.JPG").arg(id).arg(k + 1);
            EXPECT_EQ(Text(row, kPictures[k]), expected) << Id(row) << " " << kPictures[k];
        }
        const bool hasVideo = row.value(QStringLiteral("HasVideo")).toBool();
        EXPECT_EQ(Text(row, "Movie"), hasVideo ? id + ".AVI" : QString()) << Id(row);
    }
}

TEST(DeliveredLibrary, JointMotionAndTypeUseOnlyTheFixedWords) {
    const QSet<QString> joints = {"Neck",   "Shoulder", "Elbow", "Wrist", "Hand", "Thoracic",
                                  "Lumbar", "Hip",      "Knee",  "Ankle", "Foot", "Balance"};
    const QSet<QString> motions = {
        "Flexion",           "Extension",    "Abduction",    "Adduction",      "Internal Rotation",
        "External Rotation", "Rotation",     "Retraction",   "Protraction",    "Elevation",
        "Depression",        "Side Bending", "Dorsiflexion", "Plantarflexion", "Inversion",
        "Eversion",          "Pronation",    "Supination",   "Grip",           "Circumduction",
        "Stabilization",     "Weight Shift", "Gait",         "Squat"};
    const QSet<QString> types = {"Stretch",       "Strengthening", "Range of Motion", "Isometric",
                                 "Stabilization", "Balance",       "Functional",      "Mobility"};
    ReadOnlyDatabase db(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    const QList<QSqlRecord> rows = LibraryRows(db);
    ASSERT_FALSE(rows.isEmpty());
    QSet<QString> regions;
    for (const QSqlRecord& row : rows) {
        const std::pair<const char*, const QSet<QString>*> columns[] = {
            {"Joint", &joints}, {"Motion", &motions}, {"Type", &types}};
        for (const auto& [column, words] : columns) {
            const QStringList items = Text(row, column).split(QStringLiteral(", "));
            for (const QString& item : items)
                EXPECT_TRUE(words->contains(item))
                    << Id(row) << " " << column << " \"" << item.toStdString() << "\"";
        }
        for (const QString& joint : Text(row, "Joint").split(QStringLiteral(", ")))
            regions.insert(joint);
    }
    EXPECT_EQ(regions, joints);
}

TEST(DeliveredLibrary, VideoColumnsAgreeWithTheFlag) {
    ReadOnlyDatabase db(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    const QList<QSqlRecord> rows = LibraryRows(db);
    int withVideo = 0;
    for (const QSqlRecord& row : rows) {
        const int reps = row.value(QStringLiteral("VideoReps")).toInt();
        const int hold = row.value(QStringLiteral("VideoHold")).toInt();
        const int sets = row.value(QStringLiteral("VideoSets")).toInt();
        if (row.value(QStringLiteral("HasVideo")).toBool()) {
            ++withVideo;
            EXPECT_GT(reps, 0) << Id(row);
            EXPECT_GE(hold, 0) << Id(row);
            EXPECT_GT(sets, 0) << Id(row);
        } else {
            EXPECT_EQ(reps, 0) << Id(row);
            EXPECT_EQ(hold, 0) << Id(row);
            EXPECT_EQ(sets, 0) << Id(row);
        }
    }
    EXPECT_GE(withVideo, 60);
}

TEST(DeliveredLibrary, LibraryAndProgramDatabaseCarryVersion38) {
    ReadOnlyDatabase library(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(library.IsOpen()) << library.Path().toStdString();
    EXPECT_EQ(library.Version(), "3.8");
    ReadOnlyDatabase program(QStringLiteral("Tarvex.MDB"));
    ASSERT_TRUE(program.IsOpen()) << program.Path().toStdString();
    EXPECT_EQ(program.Version(), "3.8");
}

TEST(DeliveredLibrary, PicklistsOfferProvidersAndUsagesThatFitTheirField) {
    ReadOnlyDatabase db(QStringLiteral("Picklist.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    std::map<QString, int> entries;
    for (const QSqlRecord& row : db.Rows(QStringLiteral("SELECT Name FROM Label")))
        entries[Text(row, "Name")] = 0;
    EXPECT_EQ(entries.count(QStringLiteral("Provider")), 1u);
    EXPECT_EQ(entries.count(QStringLiteral("Usage")), 1u);
    for (const QSqlRecord& row : db.Rows(QStringLiteral(
             "SELECT Label.Name AS Label, Level1.Name AS Entry FROM Level1 JOIN Label ON "
             "Level1.LabelID = Label.ID"))) {
        const QString entry = Text(row, "Entry");
        EXPECT_FALSE(entry.isEmpty());
        EXPECT_LE(entry.size(), 40) << entry.toStdString();
        ++entries[Text(row, "Label")];
    }
    EXPECT_GE(entries[QStringLiteral("Provider")], 1);
    EXPECT_GE(entries[QStringLiteral("Usage")], 10);
    EXPECT_LE(entries[QStringLiteral("Usage")], 14);
}

TEST(DeliveredLibrary, ProtocolsAreCopiesOfLibraryExercisesInRankOrder) {
    ReadOnlyDatabase program(QStringLiteral("Tarvex.MDB"));
    ASSERT_TRUE(program.IsOpen()) << program.Path().toStdString();
    ReadOnlyDatabase library(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(library.IsOpen()) << library.Path().toStdString();
    std::map<int, QSqlRecord> exercises;
    for (const QSqlRecord& row : LibraryRows(library))
        exercises.emplace(row.value(QStringLiteral("ExerciseID")).toInt(), row);

    const QList<QSqlRecord> protocols =
        program.Rows(QStringLiteral("SELECT ProtocolID, Name FROM Protocol"));
    EXPECT_GE(protocols.size(), 12);
    QSet<QString> names;
    for (const QSqlRecord& protocol : protocols) {
        const QString name = Text(protocol, "Name");
        const std::string where = "protocol " + name.toStdString();
        EXPECT_FALSE(name.trimmed().isEmpty());
        EXPECT_FALSE(names.contains(name)) << where;
        names.insert(name);
        const QList<QSqlRecord> rows = program.Rows(
            QStringLiteral("SELECT * FROM ProtocolExercise WHERE ProtocolID = %1 ORDER BY "
                           "RankOnTape")
                .arg(protocol.value(0).toInt()));
        EXPECT_GE(rows.size(), 5) << where;
        EXPECT_LE(rows.size(), 10) << where;
        QSet<int> seen;
        for (int rank = 0; rank < rows.size(); ++rank) {
            const QSqlRecord& row = rows[rank];
            EXPECT_EQ(row.value(QStringLiteral("RankOnTape")).toInt(), rank) << where;
            const int id = row.value(QStringLiteral("ExerciseID")).toInt();
            EXPECT_FALSE(seen.contains(id)) << where << ": " << id << " twice";
            seen.insert(id);
            const auto found = exercises.find(id);
            ASSERT_NE(found, exercises.end()) << where << ": no exercise " << id;
            // Every column but the dosage is the library's own.
            for (const char* column :
                 {"code", "Desc", "AbbrevDesc", "Movie", "Icon", "Picture0", "Picture1", "Picture2",
                  "Instruct0", "Instruct1", "Instruct2", "HasVideo", "VideoReps", "VideoHold",
                  "VideoSets"})
                EXPECT_EQ(Text(row, column), Text(found->second, column))
                    << where << ", exercise " << id << ", " << column;
            const int reps = row.value(QStringLiteral("Reps")).toInt();
            const int hold = row.value(QStringLiteral("Hold")).toInt();
            const int sets = row.value(QStringLiteral("Sets")).toInt();
            EXPECT_GE(reps, 1) << where << ", exercise " << id;
            EXPECT_LE(reps, 30) << where << ", exercise " << id;
            EXPECT_GE(hold, 0) << where << ", exercise " << id;
            EXPECT_LE(hold, 60) << where << ", exercise " << id;
            EXPECT_GE(sets, 1) << where << ", exercise " << id;
            EXPECT_LE(sets, 5) << where << ", exercise " << id;
        }
    }
}

TEST(DeliveredLibrary, VideoDatabaseHasTheVideoColumnsOfEveryExercise) {
    ReadOnlyDatabase library(QStringLiteral("Exercise Library.MDB"));
    ReadOnlyDatabase video(QStringLiteral("Video.MDB"));
    ASSERT_TRUE(library.IsOpen()) << library.Path().toStdString();
    ASSERT_TRUE(video.IsOpen()) << video.Path().toStdString();
    const QList<QSqlRecord> expected = library.Rows(QStringLiteral(
        "SELECT ExerciseID, HasVideo, VideoReps, VideoHold, VideoSets FROM ExerciseLibrary "
        "ORDER BY ExerciseID"));
    const QList<QSqlRecord> rows =
        video.Rows(QStringLiteral("SELECT * FROM Video ORDER BY ExerciseID"));
    ASSERT_EQ(rows.size(), expected.size());
    ASSERT_FALSE(rows.isEmpty());
    EXPECT_EQ(ColumnNames(rows[0]),
              QStringList({"ExerciseID", "HasVideo", "VideoReps", "VideoHold", "VideoSets"}));
    for (qsizetype i = 0; i < rows.size(); ++i)
        for (int c = 0; c < 5; ++c)
            EXPECT_EQ(rows[i].value(c).toInt(), expected[i].value(c).toInt())
                << Id(expected[i]) << " " << rows[i].fieldName(c).toStdString();
}

TEST(DeliveredLibrary, OlderLibraryHasTheSameRowsAndVersion36) {
    ReadOnlyDatabase library(QStringLiteral("Exercise Library.MDB"));
    ReadOnlyDatabase older(QStringLiteral("TVX Exercise Library.MDB"));
    ASSERT_TRUE(library.IsOpen()) << library.Path().toStdString();
    ASSERT_TRUE(older.IsOpen()) << older.Path().toStdString();
    EXPECT_EQ(older.Version(), "3.6");
    const QList<QSqlRecord> expected = LibraryRows(library);
    const QList<QSqlRecord> rows = LibraryRows(older);
    ASSERT_EQ(rows.size(), expected.size());
    ASSERT_FALSE(rows.isEmpty());
    EXPECT_EQ(ColumnNames(rows[0]), ColumnNames(expected[0]));
    for (qsizetype i = 0; i < rows.size(); ++i)
        for (int c = 0; c < expected[i].count(); ++c)
            EXPECT_EQ(rows[i].value(c), expected[i].value(c))
                << Id(expected[i]) << " " << expected[i].fieldName(c).toStdString();
}

TEST(DeliveredLibrary, EveryViewWithAnInstructionHasExactlyOnePose) {
    ReadOnlyDatabase db(QStringLiteral("Exercise Library.MDB"));
    ASSERT_TRUE(db.IsOpen()) << db.Path().toStdString();
    std::map<std::pair<int, int>, int> poses;
    for (const QSqlRecord& row : LibraryRows(db))
        for (int k = 0; k < 3; ++k)
            if (!Text(row, kInstructions[k]).isEmpty())
                poses[{row.value(QStringLiteral("ExerciseID")).toInt(), k + 1}] = 0;
    ASSERT_FALSE(poses.empty());

    QFile file(QStringLiteral(TARVEX_CONTENT_DIR "/poses.tsv"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text)) << file.fileName().toStdString();
    QTextStream in(&file);
    QString line;
    ASSERT_TRUE(in.readLineInto(&line));
    EXPECT_EQ(line, "ExerciseID\tView\tPosture\tAngles\tProps\tArrow");
    int number = 1;
    while (in.readLineInto(&line)) {
        ++number;
        const QStringList fields = line.split(u'\t');
        ASSERT_EQ(fields.size(), 6) << "poses.tsv:" << number;
        const std::pair<int, int> view{fields[0].toInt(), fields[1].toInt()};
        const auto it = poses.find(view);
        if (it == poses.end())
            ADD_FAILURE() << "poses.tsv:" << number << ": exercise " << view.first << " view "
                          << view.second << " has no instruction line";
        else
            ++it->second;
    }
    for (const auto& [view, count] : poses)
        EXPECT_EQ(count, 1) << "exercise " << view.first << " view " << view.second;
}
