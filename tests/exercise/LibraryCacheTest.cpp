#include "exercise/LibraryCache.h"
#include "data/Databases.h"
#include "data/Sql.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::TestFolder;

namespace {

int LibraryRows(TestFolder& folder) {
    int rows = 0;
    folder.WithDatabase("Exercise Library.MDB", [&rows](QSqlDatabase& db) {
        QSqlQuery q = OpenQuery(db, "SELECT COUNT(*) FROM ExerciseLibrary");
        q.next();
        rows = q.value(0).toInt();
    });
    return rows;
}

void ChangeLibrary(TestFolder& folder, const QString& sql) {
    folder.WithDatabase("Exercise Library.MDB", [&sql](QSqlDatabase& db) { Execute(db, sql); });
}

} // namespace

TEST(LoadLibraryCache, ReadsEveryRowInTheOrderOfTheShortDescription) {
    TestFolder folder;
    const int rows = LibraryRows(folder);
    OpenDatabases(folder.state);
    folder.state.Library.CurrentChoice = 7;
    LoadLibraryCache(folder.state);
    const LibraryCache& cache = folder.state.Library;
    EXPECT_EQ(cache.NumChoices, rows);
    EXPECT_EQ(cache.Entries.size(), static_cast<size_t>(rows) + 1);
    EXPECT_EQ(cache.CurrentChoice, 0);
    for (int i = 1; i < cache.NumChoices; ++i)
        EXPECT_LE(cache.Entries[i - 1].AbbrevDesc.compare(cache.Entries[i].AbbrevDesc,
                                                          Qt::CaseInsensitive),
                  0);
}

TEST(LoadLibraryCache, FillsEveryFieldOfARow) {
    TestFolder folder;
    OpenDatabases(folder.state);
    LoadLibraryCache(folder.state);
    const LibraryCache& cache = folder.state.Library;
    const auto it = std::find_if(cache.Entries.begin(), cache.Entries.end(),
                                 [](const ExerciseEntry& e) { return e.ExerciseID == 1; });
    ASSERT_NE(it, cache.Entries.end());
    EXPECT_EQ(it->Code, "1");
    EXPECT_EQ(it->Desc, "Chin tucks");
    EXPECT_EQ(it->Icon, "1.JPG");
    EXPECT_EQ(it->Picture0, "1_1.JPG");
    EXPECT_EQ(it->Movie, "1.AVI");
    EXPECT_TRUE(it->HasVideo);
    EXPECT_EQ(it->Joint, "Neck");
    EXPECT_FALSE(it->Instruct0.isEmpty());
    EXPECT_GT(it->Reps, 0);
}

TEST(LoadLibraryCache, ANullDescriptionReadsAsEmptyText) {
    TestFolder folder;
    ChangeLibrary(folder,
                  "UPDATE ExerciseLibrary SET \"Desc\" = NULL, Instruct2 = NULL, VideoReps = NULL");
    OpenDatabases(folder.state);
    LoadLibraryCache(folder.state);
    EXPECT_EQ(folder.state.Library.Entries[0].Desc, "");
    EXPECT_EQ(folder.state.Library.Entries[0].VideoReps, 0);
}

TEST(LoadLibraryCache, ANullInRepsIsAFault) {
    TestFolder folder;
    ChangeLibrary(folder, "UPDATE ExerciseLibrary SET Reps = NULL WHERE ExerciseID = 1");
    OpenDatabases(folder.state);
    EXPECT_THROW(LoadLibraryCache(folder.state), TypeFault);
}

TEST(LoadLibraryCache, AnEmptyLibraryIsAFault) {
    TestFolder folder;
    ChangeLibrary(folder, "DELETE * FROM ExerciseLibrary");
    OpenDatabases(folder.state);
    EXPECT_THROW(LoadLibraryCache(folder.state), DatabaseFault);
    EXPECT_EQ(folder.state.Library.NumChoices, 0);
}

TEST(ReloadChoices, AFilterThatMatchesNothingLeavesTheCacheEmpty) {
    TestFolder folder;
    OpenDatabases(folder.state);
    LoadLibraryCache(folder.state);
    folder.state.Library.CurrentChoice = 3;
    folder.state.Dbs.Library.SetFilter("(Joint LIKE '*Elbowpit*')");
    ReloadChoices(folder.state);
    EXPECT_EQ(folder.state.Library.NumChoices, 0);
    EXPECT_TRUE(folder.state.Library.Entries.empty());
    EXPECT_EQ(folder.state.Library.CurrentChoice, 3); // only a full rebuild resets it
}

TEST(ReloadChoices, ReadsTheRowsTheFilterLetsThrough) {
    TestFolder folder;
    OpenDatabases(folder.state);
    folder.state.Dbs.Library.SetFilter("(Joint LIKE '*Knee*')");
    ReloadChoices(folder.state);
    ASSERT_GT(folder.state.Library.NumChoices, 0);
    for (int i = 0; i < folder.state.Library.NumChoices; ++i)
        EXPECT_TRUE(folder.state.Library.Entries[i].Joint.contains("Knee", Qt::CaseInsensitive));
}

TEST(LibraryCache, AnEntryCopiedIntoTheProgramKeepsItsFilterFields) {
    TestFolder folder;
    OpenDatabases(folder.state);
    LoadLibraryCache(folder.state);
    const ExerciseEntry& source = folder.state.Library.Entries[0];
    folder.state.Program.Exercise(0) = source;
    EXPECT_EQ(folder.state.Program.Exercise(0).Joint, source.Joint);
    EXPECT_EQ(folder.state.Program.Exercise(0).Motion, source.Motion);
    EXPECT_EQ(folder.state.Program.Exercise(0).Type, source.Type);
    EXPECT_FALSE(source.Joint.isEmpty());
}
