#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeSettingsStore.h"
#include "program/ClinicStore.h"
#include "shell/Options.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QDir>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::TestFolder;

namespace {

// The text of the fault of the given kind that the work raises, or a note that none came.
template <typename Kind, typename Work> std::string FaultText(Work work) {
    try {
        work();
    } catch (const Kind& fault) {
        return fault.Message().toStdString();
    } catch (const std::exception& other) {
        return std::string("<another fault> ") + other.what();
    }
    return "<no fault>";
}

} // namespace

// The report holds the given part.
#define EXPECT_HAS(text, part) EXPECT_NE((text).find(part), std::string::npos) << (text)

TEST(FaultPlace, AStoredBooleanThatIsNoBooleanNamesTheFileTheKeyAndTheValue) {
    AppState state;
    fakes::FakeSettingsStore store;
    store.values["Options/ShowTips"] = "Perhaps";
    const std::string text = FaultText<TypeFault>([&] { LoadOptions(state, store); });
    EXPECT_HAS(text, ("is not a boolean"));
    EXPECT_HAS(text, ("the settings file /home/clinic/.config/Tarvex.conf"));
    EXPECT_HAS(text, ("section [Options], key \"ShowTips\", value \"Perhaps\""));
}

TEST(FaultPlace, AClinicRowWithoutACardDateNamesTheDatabaseTheTableAndTheColumn) {
    TestFolder folder;
    OpenDatabases(folder.state);
    Execute(folder.state.Dbs.ProgramDb, "INSERT INTO Clinic (Name) VALUES ('Harbor PT')");
    const std::string text = FaultText<TypeFault>([&] { ReadClinicRecord(folder.state); });
    EXPECT_HAS(text, ("Type mismatch"));
    EXPECT_HAS(text, ("the database " +
                      QDir::toNativeSeparators(folder.File("Tarvex.MDB")).toStdString()));
    EXPECT_HAS(text, ("table Clinic, column CardDate, value Null"));
}

TEST(FaultPlace, ANullInARequiredLibraryColumnNamesTheRowTheColumnAndTheFile) {
    TestFolder folder;
    OpenDatabases(folder.state);
    Execute(folder.state.Dbs.LibraryDb, "UPDATE ExerciseLibrary SET Reps = NULL WHERE "
                                        "ExerciseID = 17");
    const std::string text = FaultText<TypeFault>([&] { LoadLibraryCache(folder.state); });
    EXPECT_HAS(text, ("Invalid use of Null (column Reps)"));
    EXPECT_HAS(text, ("the database " +
                      QDir::toNativeSeparators(folder.File("Exercise Library.MDB")).toStdString()));
    EXPECT_HAS(text, ("table ExerciseLibrary, the row of ExerciseID \"17\""));
}

TEST(FaultPlace, ATextInANumberColumnShowsTheValue) {
    TestFolder folder;
    OpenDatabases(folder.state);
    Execute(folder.state.Dbs.LibraryDb, "UPDATE ExerciseLibrary SET Sets = 'three' WHERE "
                                        "ExerciseID = 18");
    const std::string text = FaultText<TypeFault>([&] { LoadLibraryCache(folder.state); });
    EXPECT_HAS(text, ("Type mismatch (column Sets, value \"three\")"));
    EXPECT_HAS(text, ("the row of ExerciseID \"18\""));
}

TEST(FaultPlace, TheKindOfTheFaultIsKept) {
    EXPECT_THROW(AtPlace("here", [] { throw BoundsFault("Subscript out of range"); }), BoundsFault);
    EXPECT_THROW(AtPlace("here", [] { throw DatabaseFault("no such table"); }), DatabaseFault);
    EXPECT_THROW(AtPlace("here", [] { throw std::logic_error("not ours"); }), std::logic_error);
    EXPECT_EQ(AtPlace("here", [] { return 7; }), 7);
}
