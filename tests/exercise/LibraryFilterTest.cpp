#include "exercise/LibraryFilter.h"

#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QSet>
#include <QSqlQuery>
#include <gtest/gtest.h>

#include <memory>

using namespace tarvex;
using namespace tarvex::fakes;
using tarvex::testing::TestFolder;

namespace {

// One exercise of a library made for a test; an invalid QVariant stores a null.
struct Row {
    int id;
    QString name;
    QVariant joint, motion, type;
};

// The few exercises most tests filter. Joint cells hold combinations; one Motion cell too.
const std::vector<Row> kClinicLibrary = {
    {1, "Ankle pumps", "Ankle", "Flexion", "Strength"},
    {2, "Bridge", "Hip", "Extension", "Strength"},
    {3, "Heel slide", "Knee", "Flexion", "Stretch"},
    {4, "Hip flexor", "Hip, Knee", "Flexion", "Stretch"},
    {5, "Knee extension", "Knee", "Extension", "Strength"},
    {6, "Shoulder rolls", "Shoulder", "Rotation", "Range of motion"},
    {7, "Wall slide", "Shoulder, Elbow", "Flexion, Extension", "Stretch"},
};

void ReplaceLibrary(TestFolder& folder, const std::vector<Row>& rows) {
    folder.WithDatabase("Exercise Library.MDB", [&rows](QSqlDatabase& db) {
        Execute(db, "DELETE * FROM ExerciseLibrary");
        PreparedInsert insert(db, "ExerciseLibrary",
                              {"ExerciseID", "code", "Desc", "AbbrevDesc", "Reps", "Hold", "Sets",
                               "HasVideo", "Joint", "Motion", "Type"});
        for (const Row& r : rows)
            insert.Insert({r.id, QString::number(r.id), r.name, r.name, 10, 0, 1, false, r.joint,
                           r.motion, r.type});
    });
}

// The workspace around the filter: records what was asked of it.
class FakeFilterHost : public IFilterHost {
public:
    void SetBusy(bool busy) override { calls << (busy ? "busy" : "idle"); }
    void Yield() override {
        calls << "yield";
        if (onYield)
            onYield();
    }
    void SizeSourcePane() override {
        calls << "size";
        ++sizes;
    }
    void LoadPictsInSight() override {
        calls << "load";
        ++loads;
    }
    int Count(const QString& call) const { return static_cast<int>(calls.count(call)); }

    QStringList calls;
    int sizes = 0;
    int loads = 0;
    std::function<void()> onYield;
};

// A list that counts its reloads and notes whether the filter called them loading.
class CountingListBox : public FakeListBox {
public:
    CountingListBox(QString tag, bool sortedList) : FakeListBox(tag, sortedList) {}
    void Clear() override {
        ++clears;
        loadingAtClear = loading && loading();
        FakeListBox::Clear();
    }
    int clears = 0;
    bool loadingAtClear = false;
    std::function<bool()> loading;
};

// A filter over three fake lists and a library of the test's own, with the databases open
// and the cache read, as the workspace has them when it is first shown.
struct FilterHarness {
    explicit FilterHarness(const std::vector<Row>& rows = kClinicLibrary) {
        ReplaceLibrary(folder, rows);
        OpenDatabases(folder.state);
        LoadLibraryCache(folder.state);
        filter = std::make_unique<LibraryFilter>(
            folder.state, std::array<IListBox*, 3>{&joint, &motion, &type}, host);
        for (CountingListBox* list : {&joint, &motion, &type})
            list->loading = [this] { return filter->ListsLoading; };
        joint.onClick = [this] { filter->ViewListClick(0); };
        motion.onClick = [this] { filter->ViewListClick(1); };
        type.onClick = [this] { filter->ViewListClick(2); };
    }

    AppState& State() { return folder.state; }
    QStringList Cache() const {
        QStringList names;
        for (int i = 0; i < folder.state.Library.NumChoices; ++i)
            names << folder.state.Library.Entries[static_cast<size_t>(i)].AbbrevDesc;
        return names;
    }
    QString ViewFilter() const { return folder.state.Dbs.Library.Filter(); }
    std::array<int, 3> Clears() const { return {joint.clears, motion.clears, type.clears}; }

    TestFolder folder;
    CountingListBox joint{"Joint", true};
    CountingListBox motion{"Motion", false};
    CountingListBox type{"Type", false};
    FakeFilterHost host;
    std::unique_ptr<LibraryFilter> filter;
};

const QStringList kAllSeven = {"Ankle pumps",    "Bridge",         "Heel slide", "Hip flexor",
                               "Knee extension", "Shoulder rolls", "Wall slide"};

} // namespace

// --- the list queries

TEST(BuildListQuery, JointIsAlwaysTheSameQueryWithoutConditionOrOrder) {
    AppState state;
    FakeListBox a, b, c;
    FakeFilterHost host;
    LibraryFilter filter(state, {&a, &b, &c}, host);
    EXPECT_EQ(filter.BuildListQuery("Joint"), "SELECT DISTINCT Joint AS Item FROM ExerciseLibrary");
    filter.ViewClause = {"Joint LIKE '*Knee*'", "Motion In ('Flexion')", "Type In ('Stretch')"};
    EXPECT_EQ(filter.BuildListQuery("Joint"), "SELECT DISTINCT Joint AS Item FROM ExerciseLibrary");
}

TEST(BuildListQuery, MotionTakesTheJointClauseWithoutParentheses) {
    AppState state;
    FakeListBox a, b, c;
    FakeFilterHost host;
    LibraryFilter filter(state, {&a, &b, &c}, host);
    EXPECT_EQ(filter.BuildListQuery("Motion"),
              "SELECT DISTINCT motion AS Item FROM ExerciseLibrary ORDER BY motion");
    filter.ViewClause = {"Joint LIKE '*Knee*' OR Joint LIKE '*Hip*'", "Motion In ('Flexion')",
                         "Type In ('Stretch')"};
    EXPECT_EQ(filter.BuildListQuery("Motion"),
              "SELECT DISTINCT motion AS Item FROM ExerciseLibrary WHERE Joint LIKE '*Knee*' OR "
              "Joint LIKE '*Hip*' ORDER BY motion");
    filter.ViewClause = {"", "Motion In ('Flexion')", "Type In ('Stretch')"};
    EXPECT_EQ(filter.BuildListQuery("Motion"),
              "SELECT DISTINCT motion AS Item FROM ExerciseLibrary ORDER BY motion");
}

TEST(BuildListQuery, TypeTakesJointAndMotionButNeverItsOwnClause) {
    AppState state;
    FakeListBox a, b, c;
    FakeFilterHost host;
    LibraryFilter filter(state, {&a, &b, &c}, host);
    filter.ViewClause = {"", "", "Type In ('Stretch')"};
    EXPECT_EQ(filter.BuildListQuery("Type"),
              "SELECT DISTINCT type As Item FROM ExerciseLibrary ORDER BY type");
    filter.ViewClause = {"Joint LIKE '*Knee*'", "", ""};
    EXPECT_EQ(filter.BuildListQuery("Type"),
              "SELECT DISTINCT type As Item FROM ExerciseLibrary WHERE (Joint LIKE '*Knee*') "
              "ORDER BY type");
    filter.ViewClause = {"", "Motion In ('Flexion','Extension')", ""};
    EXPECT_EQ(filter.BuildListQuery("Type"),
              "SELECT DISTINCT type As Item FROM ExerciseLibrary WHERE Motion In "
              "('Flexion','Extension') ORDER BY type");
    filter.ViewClause = {"Joint LIKE '*Knee*' OR Joint LIKE '*Hip*'", "Motion In ('Flexion')",
                         "Type In ('Stretch')"};
    EXPECT_EQ(filter.BuildListQuery("Type"),
              "SELECT DISTINCT type As Item FROM ExerciseLibrary WHERE (Joint LIKE '*Knee*' OR "
              "Joint LIKE '*Hip*') AND (Motion In ('Flexion')) ORDER BY type");
}

TEST(BuildListQuery, AnyOtherNameGivesAnEmptyText) {
    AppState state;
    FakeListBox a, b, c;
    FakeFilterHost host;
    LibraryFilter filter(state, {&a, &b, &c}, host);
    EXPECT_EQ(filter.BuildListQuery("Pattern"), "");
    EXPECT_EQ(filter.BuildListQuery("joint"), "");
    EXPECT_EQ(filter.BuildListQuery(""), "");
}

// --- splitting and clauses

TEST(SplitCommaList, CutsAtCommasTrimsBlanksAndDropsEmptyPieces) {
    AppState state;
    FakeListBox a, b, c;
    FakeFilterHost host;
    LibraryFilter filter(state, {&a, &b, &c}, host);
    filter.SplitCommaList("a, b,,c ");
    EXPECT_EQ(filter.ParsedItems, QStringList({"a", "b", "c"}));
    filter.SplitCommaList(" , ");
    EXPECT_TRUE(filter.ParsedItems.isEmpty());
    filter.SplitCommaList("Knee");
    EXPECT_EQ(filter.ParsedItems, QStringList({"Knee"}));
    filter.SplitCommaList("");
    EXPECT_TRUE(filter.ParsedItems.isEmpty());
    filter.SplitCommaList(",");
    EXPECT_TRUE(filter.ParsedItems.isEmpty());
    filter.SplitCommaList("  Lower back ,Hip");
    EXPECT_EQ(filter.ParsedItems, QStringList({"Lower back", "Hip"}));
}

TEST(SplitCommaList, TrimsBlanksOnlyNotTabs) {
    AppState state;
    FakeListBox a, b, c;
    FakeFilterHost host;
    LibraryFilter filter(state, {&a, &b, &c}, host);
    filter.SplitCommaList("Knee\t, Hip");
    EXPECT_EQ(filter.ParsedItems, QStringList({"Knee\t", "Hip"}));
}

TEST(ListHasItem, ComparesExactlyWithRegardToCase) {
    FakeListBox list;
    list.items = {"(All)", "Knee", "Knee"};
    list.selected = {false, false, false};
    EXPECT_TRUE(LibraryFilter::ListHasItem("Knee", list));
    EXPECT_FALSE(LibraryFilter::ListHasItem("knee", list));
    EXPECT_FALSE(LibraryFilter::ListHasItem("Knee ", list));
    EXPECT_FALSE(LibraryFilter::ListHasItem("Knee", FakeListBox()));
}

TEST(BuildInClause, ListsTheSelectedEntriesUnderTheTag) {
    FakeListBox list("Motion");
    for (const char* t : {"(All)", "Extension", "Flexion", "Rotation"})
        list.AddItem(t);
    list.SetSelected(1, true);
    list.SetSelected(3, true);
    EXPECT_EQ(LibraryFilter::BuildInClause(list), "Motion In ('Extension','Rotation')");
}

TEST(BuildInClause, AllSelectedWithOthersImposesNoCondition) {
    FakeListBox list("Type");
    for (const char* t : {"(All)", "Strength", "Stretch"})
        list.AddItem(t);
    list.SetSelected(0, true);
    list.SetSelected(2, true);
    EXPECT_EQ(LibraryFilter::BuildInClause(list), "");
}

TEST(BuildInClause, NothingSelectedImposesNoCondition) {
    FakeListBox list("Type");
    for (const char* t : {"(All)", "Strength", "Stretch"})
        list.AddItem(t);
    EXPECT_EQ(LibraryFilter::BuildInClause(list), "");
    EXPECT_EQ(LibraryFilter::BuildInClause(FakeListBox("Type")), "");
}

TEST(BuildInClause, EntryZeroTakesPartWhenItIsAValue) {
    FakeListBox list("Type");
    list.AddItem("Stretch");
    list.SetSelected(0, true);
    EXPECT_EQ(LibraryFilter::BuildInClause(list), "Type In ('Stretch')");
}

TEST(BuildInClause, DoublesApostrophes) {
    FakeListBox list("Motion");
    for (const char* t : {"(All)", "Child's pose", "Flexion"})
        list.AddItem(t);
    list.SetSelected(1, true);
    list.SetSelected(2, true);
    EXPECT_EQ(LibraryFilter::BuildInClause(list), "Motion In ('Child''s pose','Flexion')");
}

TEST(BuildLikeClause, JoinsTheSelectedEntriesWithOr) {
    FakeListBox list("Joint");
    for (const char* t : {"(All)", "Knee", "Hip", "Ankle"})
        list.AddItem(t);
    list.SetSelected(1, true);
    list.SetSelected(2, true);
    EXPECT_EQ(LibraryFilter::BuildLikeClause(list), "Joint LIKE '*Knee*' OR Joint LIKE '*Hip*'");
}

TEST(BuildLikeClause, AllSelectedOrNothingSelectedImposesNoCondition) {
    FakeListBox list("Joint");
    for (const char* t : {"(All)", "Knee", "Hip"})
        list.AddItem(t);
    EXPECT_EQ(LibraryFilter::BuildLikeClause(list), "");
    list.SetSelected(0, true);
    list.SetSelected(1, true);
    EXPECT_EQ(LibraryFilter::BuildLikeClause(list), "");
}

TEST(BuildLikeClause, EntryZeroNeverTakesPart) {
    FakeListBox list("Joint");
    list.AddItem("Knee");
    list.SetSelected(0, true);
    EXPECT_EQ(LibraryFilter::BuildLikeClause(list), "");
}

TEST(BuildLikeClause, DoublesApostrophesAndLeavesWildcards) {
    FakeListBox list("Joint");
    for (const char* t : {"(All)", "Runner's knee", "Hip*"})
        list.AddItem(t);
    list.SetSelected(1, true);
    list.SetSelected(2, true);
    EXPECT_EQ(LibraryFilter::BuildLikeClause(list),
              "Joint LIKE '*Runner''s knee*' OR Joint LIKE '*Hip**'");
}

// --- filling the lists

TEST(InitListBoxes, FillsEachListWithSingleValuesAndSelectsTheFirstEntry) {
    FilterHarness h;
    h.filter->InitListBoxes();
    EXPECT_EQ(h.joint.items, QStringList({"(All)", "Ankle", "Elbow", "Hip", "Knee", "Shoulder"}));
    EXPECT_EQ(h.motion.items, QStringList({"(All)", "Extension", "Flexion", "Rotation"}));
    EXPECT_EQ(h.type.items, QStringList({"(All)", "Range of motion", "Strength", "Stretch"}));
    for (const FakeListBox* list : {&h.joint, &h.motion, &h.type})
        EXPECT_EQ(list->SelectedItems(), QStringList({"(All)"}));
    EXPECT_EQ(h.filter->ViewClause, (std::array<QString, 3>{"", "", ""}));
    EXPECT_EQ(h.filter->LastViewFilter, "");
    EXPECT_EQ(h.ViewFilter(), "");
    EXPECT_FALSE(h.filter->ListsLoading);
    EXPECT_FALSE(h.filter->InViewClick);
    EXPECT_EQ(h.Cache(), kAllSeven);
}

TEST(InitListBoxes, EachSelectionCountsAsAClickAndTheDependentListsLoadAgain) {
    FilterHarness h;
    h.filter->InitListBoxes();
    // Joint once; Motion by itself and by the Joint click; Type by itself and both clicks.
    EXPECT_EQ(h.Clears(), (std::array<int, 3>{1, 2, 3}));
    EXPECT_EQ(h.host.calls, QStringList({"busy", "yield", "idle", "busy", "yield", "idle", "busy",
                                         "yield", "idle", "size"}));
    EXPECT_EQ(h.host.loads, 0); // the filter stayed empty: the cache is not rebuilt
}

TEST(InitListBoxes, ANewVisitClearsTheFilterOfTheLastOne) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.joint.ClickItems({"Knee"});
    ASSERT_EQ(h.ViewFilter(), "(Joint LIKE '*Knee*')");
    ASSERT_EQ(h.Cache(), QStringList({"Heel slide", "Hip flexor", "Knee extension"}));
    h.host.calls.clear();

    h.filter->InitListBoxes();
    EXPECT_EQ(h.filter->LastViewFilter, "");
    EXPECT_EQ(h.ViewFilter(), "");
    EXPECT_EQ(h.Cache(), kAllSeven);
    EXPECT_EQ(h.joint.SelectedItems(), QStringList({"(All)"}));
    // The first click found the changed filter: the pane followed it, then once more at the end.
    EXPECT_EQ(h.host.calls, QStringList({"busy", "yield", "size", "load", "idle", "busy", "yield",
                                         "idle", "busy", "yield", "idle", "size"}));
}

TEST(InitListBoxes, ListsLoadingIsSetWhileTheListsRefill) {
    FilterHarness h;
    h.filter->InitListBoxes();
    EXPECT_TRUE(h.joint.loadingAtClear);
    EXPECT_TRUE(h.type.loadingAtClear);
    EXPECT_FALSE(h.filter->ListsLoading);
}

TEST(LoadViewList, ClearsListsLoadingWhateverItWasBefore) {
    FilterHarness h;
    h.filter->ListsLoading = true;
    h.filter->LoadViewList(h.filter->BuildListQuery("Type"), h.type);
    EXPECT_FALSE(h.filter->ListsLoading);
    EXPECT_EQ(h.type.items, QStringList({"(All)", "Range of motion", "Strength", "Stretch"}));
}

TEST(LoadViewList, AReloadedListHasNothingSelected) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.type.ClickItems({"Strength", "Stretch"});
    h.filter->LoadViewList(h.filter->BuildListQuery("Type"), h.type);
    EXPECT_TRUE(h.type.SelectedItems().isEmpty());
}

TEST(LoadViewList, AllAppearsOnlyWhenTheQueryHasMoreThanOneRow) {
    FilterHarness h({{1, "A", "Knee", "Flexion", "Stretch"},
                     {2, "B", "Knee", "Flexion", "Strength"},
                     {3, "C", "Knee", "Extension", "Stretch"}});
    // One row: no "(All)".
    h.filter->LoadViewList("SELECT DISTINCT Joint AS Item FROM ExerciseLibrary", h.joint);
    EXPECT_EQ(h.joint.items, QStringList({"Knee"}));
    // Two rows.
    h.filter->LoadViewList("SELECT DISTINCT motion AS Item FROM ExerciseLibrary ORDER BY motion",
                           h.motion);
    EXPECT_EQ(h.motion.items, QStringList({"(All)", "Extension", "Flexion"}));
    // No row.
    h.filter->LoadViewList(
        "SELECT DISTINCT type As Item FROM ExerciseLibrary WHERE (Joint LIKE '*Hip*') "
        "ORDER BY type",
        h.type);
    EXPECT_TRUE(h.type.items.isEmpty());
}

TEST(LoadViewList, ARowThatAddsNoEntryStillCountsTowardsAll) {
    // Two rows, Null and "Knee": "(All)" and one entry.
    FilterHarness h(
        {{1, "A", "Knee", "Flexion", "Stretch"}, {2, "B", QVariant(), "Flexion", "Stretch"}});
    h.filter->LoadViewList(h.filter->BuildListQuery("Joint"), h.joint);
    EXPECT_EQ(h.joint.items, QStringList({"(All)", "Knee"}));
}

TEST(LoadViewList, EachSingleValueShowsOnceAndJointSortsItself) {
    FilterHarness h({{1, "A", "Shoulder, Knee", "Flexion", "Stretch"},
                     {2, "B", "Knee", "Flexion", "Stretch"},
                     {3, "C", "knee, Ankle", "Flexion", "Stretch"}});
    h.filter->LoadViewList(h.filter->BuildListQuery("Joint"), h.joint);
    // The comparison is exact, so "knee" and "Knee" are both entries.
    EXPECT_EQ(h.joint.items.first(), "(All)");
    EXPECT_EQ(h.joint.items.size(), 5);
    EXPECT_EQ(h.joint.items.mid(1, 1), QStringList({"Ankle"}));
    EXPECT_TRUE(h.joint.items.contains("Knee"));
    EXPECT_TRUE(h.joint.items.contains("knee"));
    EXPECT_EQ(h.joint.items.last(), "Shoulder");
}

// --- clicks

TEST(ViewListClick, JointClickNarrowsTheOtherListsAndTheLibrary) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.host.calls.clear();
    h.joint.ClickItems({"Knee"});
    EXPECT_EQ(h.filter->ViewClause[0], "Joint LIKE '*Knee*'");
    EXPECT_EQ(h.motion.items, QStringList({"(All)", "Extension", "Flexion"}));
    EXPECT_EQ(h.type.items, QStringList({"(All)", "Strength", "Stretch"}));
    EXPECT_TRUE(h.motion.SelectedItems().isEmpty());
    EXPECT_TRUE(h.type.SelectedItems().isEmpty());
    EXPECT_EQ(h.filter->LastViewFilter, "(Joint LIKE '*Knee*')");
    EXPECT_EQ(h.ViewFilter(), "(Joint LIKE '*Knee*')");
    EXPECT_EQ(h.Cache(), QStringList({"Heel slide", "Hip flexor", "Knee extension"}));
    EXPECT_EQ(h.host.calls, QStringList({"busy", "yield", "size", "load", "idle"}));
}

TEST(ViewListClick, BuildsTheFilterFromAllThreeListsInOrder) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.joint.ClickItems({"Hip", "Knee"});
    h.motion.ClickItems({"Flexion"});
    // Only "Stretch" is left for these joints and this pattern: one row, no "(All)".
    EXPECT_EQ(h.type.items, QStringList({"Stretch"}));
    h.type.ClickItems({"Stretch"});
    EXPECT_EQ(h.filter->LastViewFilter, "(Joint LIKE '*Hip*' OR Joint LIKE '*Knee*') AND "
                                        "(Motion In ('Flexion')) AND (Type In ('Stretch'))");
    EXPECT_EQ(h.Cache(), QStringList({"Heel slide", "Hip flexor"}));
}

TEST(ViewListClick, GivesTheFilterExpressionOfTheExample) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.filter->ViewClause[0] = "Joint LIKE '*Knee*' OR Joint LIKE '*Hip*'";
    h.filter->ViewClause[1] = "Motion In ('Flexion')";
    h.type.ClickItems({"Stretch"});
    EXPECT_EQ(h.ViewFilter(), "(Joint LIKE '*Knee*' OR Joint LIKE '*Hip*') AND (Motion In "
                              "('Flexion')) AND (Type In ('Stretch'))");
    EXPECT_EQ(h.Cache(), QStringList({"Heel slide", "Hip flexor"}));
}

TEST(ViewListClick, AFilterOfOneClauseHasOneParenthesis) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.motion.ClickItems({"Rotation"});
    EXPECT_EQ(h.ViewFilter(), "(Motion In ('Rotation'))");
    EXPECT_EQ(h.Cache(), QStringList({"Shoulder rolls"}));
}

TEST(ViewListClick, EachListReloadsOnlyTheListsToItsRight) {
    FilterHarness h;
    h.filter->InitListBoxes();
    auto before = h.Clears();
    h.joint.ClickItems({"Hip"});
    EXPECT_EQ(h.Clears(), (std::array<int, 3>{before[0], before[1] + 1, before[2] + 1}));
    before = h.Clears();
    h.motion.ClickItems({"Flexion"});
    EXPECT_EQ(h.Clears(), (std::array<int, 3>{before[0], before[1], before[2] + 1}));
    before = h.Clears();
    h.type.ClickItems({"Stretch"});
    EXPECT_EQ(h.Clears(), before);
}

TEST(ViewListClick, JointClearsMotionAndTypeButTypeLeavesJointAndMotion) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.joint.ClickItems({"Knee"});
    h.motion.ClickItems({"Flexion"});
    h.type.ClickItems({"Stretch"});
    ASSERT_EQ(h.filter->ViewClause,
              (std::array<QString, 3>{"Joint LIKE '*Knee*'", "Motion In ('Flexion')",
                                      "Type In ('Stretch')"}));
    h.type.ClickItems({});
    EXPECT_EQ(h.filter->ViewClause,
              (std::array<QString, 3>{"Joint LIKE '*Knee*'", "Motion In ('Flexion')", ""}));
    EXPECT_EQ(h.ViewFilter(), "(Joint LIKE '*Knee*') AND (Motion In ('Flexion'))");

    h.type.ClickItems({"Stretch"});
    h.motion.ClickItems({"Flexion", "Extension"});
    EXPECT_EQ(
        h.filter->ViewClause,
        (std::array<QString, 3>{"Joint LIKE '*Knee*'", "Motion In ('Extension','Flexion')", ""}));

    h.joint.ClickItems({"Hip"});
    EXPECT_EQ(h.filter->ViewClause, (std::array<QString, 3>{"Joint LIKE '*Hip*'", "", ""}));
    EXPECT_EQ(h.ViewFilter(), "(Joint LIKE '*Hip*')");
    EXPECT_EQ(h.Cache(), QStringList({"Bridge", "Hip flexor"}));
}

TEST(ViewListClick, AllWithOtherEntriesImposesNoCondition) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.joint.ClickItems({"(All)", "Knee", "Ankle"});
    EXPECT_EQ(h.filter->ViewClause[0], "");
    EXPECT_EQ(h.ViewFilter(), "");
    EXPECT_EQ(h.Cache(), kAllSeven);
}

TEST(ViewListClick, NothingSelectedImposesNoConditionLikeAll) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.joint.ClickItems({"Knee"});
    h.motion.ClickItems({"Flexion"});
    ASSERT_EQ(h.Cache(), QStringList({"Heel slide", "Hip flexor"}));
    h.motion.ClickItems({});
    EXPECT_EQ(h.filter->ViewClause[1], "");
    EXPECT_EQ(h.ViewFilter(), "(Joint LIKE '*Knee*')");
    EXPECT_EQ(h.Cache(), QStringList({"Heel slide", "Hip flexor", "Knee extension"}));
}

TEST(ViewListClick, AnUnchangedFilterLeavesTheSourcePaneUntouched) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.joint.ClickItems({"Knee"});
    ASSERT_EQ(h.host.sizes, 2);
    ASSERT_EQ(h.host.loads, 1);
    h.State().Library.Entries[0].AbbrevDesc = "not reloaded";
    const auto before = h.Clears();

    h.joint.ClickItems({"Knee"});
    EXPECT_EQ(h.Clears(), (std::array<int, 3>{before[0], before[1] + 1, before[2] + 1}));
    EXPECT_EQ(h.host.sizes, 2);
    EXPECT_EQ(h.host.loads, 1);
    EXPECT_EQ(h.State().Library.Entries[0].AbbrevDesc, "not reloaded");

    // Clicking "(All)" of Pattern again: the same expression, nothing rebuilt.
    h.motion.ClickItems({"(All)"});
    EXPECT_EQ(h.host.loads, 1);
    EXPECT_EQ(h.State().Library.Entries[0].AbbrevDesc, "not reloaded");
}

TEST(ViewListClick, AFilterThatNoRowMatchesEmptiesTheCache) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.joint.ClickItems({"Shoulder"});
    // The Pattern list splits "Flexion, Extension", but In compares whole cells.
    EXPECT_EQ(h.motion.items, QStringList({"(All)", "Flexion", "Extension", "Rotation"}));
    h.motion.ClickItems({"Extension"});
    EXPECT_EQ(h.ViewFilter(), "(Joint LIKE '*Shoulder*') AND (Motion In ('Extension'))");
    EXPECT_EQ(h.State().Library.NumChoices, 0);
    EXPECT_TRUE(h.State().Library.Entries.empty());
    EXPECT_TRUE(h.type.items.isEmpty());
    EXPECT_EQ(h.host.calls.mid(h.host.calls.size() - 3), QStringList({"size", "load", "idle"}));
}

TEST(ViewListClick, AValueOfACellWithTwoValuesDoesNotFindThatRowThroughIn) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.motion.ClickItems({"Flexion"});
    // "Wall slide" has "Flexion, Extension" and is not found.
    EXPECT_EQ(h.Cache(), QStringList({"Ankle pumps", "Heel slide", "Hip flexor"}));
}

TEST(ViewListClick, JointFindsAValueAnywhereInTheCellAndAlsoInsideLongerValues) {
    FilterHarness h({{1, "Arm circles", "Arm", "Rotation", "Range of motion"},
                     {2, "Wrist curls", "Forearm, Wrist", "Flexion", "Strength"},
                     {3, "Knee bends", "Knee", "Flexion", "Strength"}});
    h.filter->InitListBoxes();
    EXPECT_EQ(h.joint.items, QStringList({"(All)", "Arm", "Forearm", "Knee", "Wrist"}));
    h.joint.ClickItems({"Wrist"});
    EXPECT_EQ(h.Cache(), QStringList({"Wrist curls"}));
    h.joint.ClickItems({"Arm"});
    EXPECT_EQ(h.Cache(), QStringList({"Arm circles", "Wrist curls"}));
}

TEST(ViewListClick, AColumnWithOneValueShowsNoAllAndItsJointEntryGivesNoClause) {
    FilterHarness h({{1, "A", "Knee", "Flexion", "Stretch"},
                     {2, "B", "Knee", "Extension", "Stretch"},
                     {3, "C", "Knee", "Flexion", "Stretch"}});
    h.filter->InitListBoxes();
    EXPECT_EQ(h.joint.items, QStringList({"Knee"}));
    EXPECT_EQ(h.type.items, QStringList({"Stretch"}));
    EXPECT_EQ(h.joint.SelectedItems(), QStringList({"Knee"}));
    EXPECT_EQ(h.filter->ViewClause[0], "");
    // The Type entry is entry 0 too, but In takes it: the visit starts with a filter that
    // lets every row through.
    EXPECT_EQ(h.filter->ViewClause[2], "Type In ('Stretch')");
    EXPECT_EQ(h.ViewFilter(), "(Type In ('Stretch'))");
    EXPECT_EQ(h.Cache(), QStringList({"A", "B", "C"}));
    h.joint.ClickItems({"Knee"});
    EXPECT_EQ(h.filter->ViewClause[0], "");
}

// --- re-entry

TEST(ViewListClick, DoesNothingWhileTheListsLoad) {
    FilterHarness h;
    h.filter->InitListBoxes();
    h.host.calls.clear();
    const auto before = h.Clears();
    h.filter->ListsLoading = true;
    h.joint.ClickItems({"Knee"});
    EXPECT_TRUE(h.host.calls.isEmpty());
    EXPECT_EQ(h.filter->ViewClause[0], "");
    EXPECT_EQ(h.Clears(), before);
    EXPECT_EQ(h.ViewFilter(), "");
}

TEST(ViewListClick, AClickArrivingWhileOneIsWorkedThroughIsIgnored) {
    FilterHarness h;
    h.filter->InitListBoxes();
    bool inClickDuringYield = false;
    h.host.onYield = [&h, &inClickDuringYield] {
        inClickDuringYield = h.filter->InViewClick;
        h.type.ClickItems({"Strength"}); // the user clicks Type while the screen repaints
    };
    h.host.calls.clear();
    h.joint.ClickItems({"Knee"});
    EXPECT_TRUE(inClickDuringYield);
    EXPECT_FALSE(h.filter->InViewClick);
    EXPECT_EQ(h.host.Count("busy"), 1);
    EXPECT_EQ(h.filter->ViewClause[2], "");
    EXPECT_EQ(h.ViewFilter(), "(Joint LIKE '*Knee*')");
    // The nested click was lost, though its selection stays on the screen.
    EXPECT_EQ(h.type.SelectedItems(), QStringList({"Strength"}));
}

TEST(ViewListClick, AFaultEndsTheClickAndTheListsAnswerTheNextOne) {
    FilterHarness h;
    h.filter->InitListBoxes();
    // The library's table is away behind the program's back (a closed connection would be
    // opened again on the server).
    const auto rename = [&h](const char* from, const char* to) {
        h.folder.WithDatabase("Exercise Library.MDB", [&](QSqlDatabase& db) {
            Execute(db, QStringLiteral("ALTER TABLE %1 RENAME TO %2").arg(from, to));
        });
    };
    rename("ExerciseLibrary", "Away");
    h.host.calls.clear();
    EXPECT_THROW(h.joint.ClickItems({"Knee"}), DatabaseFault);
    EXPECT_FALSE(h.filter->InViewClick);
    EXPECT_FALSE(h.filter->ListsLoading);
    EXPECT_EQ(h.host.calls.last(), "idle");
    rename("Away", "ExerciseLibrary");
    h.joint.ClickItems({"Knee"});
    EXPECT_EQ(h.ViewFilter(), "(Joint LIKE '*Knee*')");
}

TEST(ViewListClick, AnIndexOutsideTheThreeListsIsABoundsFault) {
    FilterHarness h;
    EXPECT_THROW(h.filter->ViewListClick(3), BoundsFault);
    EXPECT_THROW(h.filter->ViewListClick(-1), BoundsFault);
    EXPECT_FALSE(h.filter->InViewClick);
}

// --- awkward values in the library

TEST(LibraryFilterValues, ApostrophesAreFilteredLikeAnyOtherValue) {
    FilterHarness h({{1, "Child's pose", "Lower back", "Child's pose", "Stretch"},
                     {2, "Runner's stretch", "Runner's knee, Hip", "Flexion", "Stretch"},
                     {3, "Squat", "Knee", "Flexion", "Strength"}});
    h.filter->InitListBoxes();
    EXPECT_EQ(h.joint.items, QStringList({"(All)", "Hip", "Knee", "Lower back", "Runner's knee"}));
    EXPECT_EQ(h.motion.items, QStringList({"(All)", "Child's pose", "Flexion"}));

    h.joint.ClickItems({"Runner's knee"});
    EXPECT_EQ(h.filter->ViewClause[0], "Joint LIKE '*Runner''s knee*'");
    EXPECT_EQ(h.motion.items, QStringList({"Flexion"}));
    EXPECT_EQ(h.Cache(), QStringList({"Runner's stretch"}));

    h.joint.ClickItems({"(All)"});
    h.motion.ClickItems({"Child's pose"});
    EXPECT_EQ(h.ViewFilter(), "(Motion In ('Child''s pose'))");
    EXPECT_EQ(h.type.items, QStringList({"Stretch"}));
    EXPECT_EQ(h.Cache(), QStringList({"Child's pose"}));
}

TEST(LibraryFilterValues, NullsEmptyCellsCommasAndBlanksKeepTheListsWorking) {
    FilterHarness h({{1, "A", QVariant(), QVariant(), QVariant()},
                     {2, "B", "", "", ""},
                     {3, "C", ",", " , ", ","},
                     {4, "D", " Knee ", " Flexion ", "Stretch "},
                     {5, "E", "Knee,,Hip", "Flexion", "Stretch"}});
    h.filter->InitListBoxes();
    EXPECT_EQ(h.joint.items, QStringList({"(All)", "Hip", "Knee"}));
    EXPECT_EQ(h.motion.items, QStringList({"(All)", "Flexion"}));
    EXPECT_EQ(h.type.items, QStringList({"(All)", "Stretch"}));
    EXPECT_EQ(h.Cache(), QStringList({"A", "B", "C", "D", "E"}));

    // LIKE finds the value inside blanks.
    h.joint.ClickItems({"Knee"});
    EXPECT_EQ(h.Cache(), QStringList({"D", "E"}));
    EXPECT_EQ(h.motion.items, QStringList({"(All)", "Flexion"}));
    // In compares whole cells: " Flexion " is not "Flexion".
    h.motion.ClickItems({"Flexion"});
    EXPECT_EQ(h.Cache(), QStringList({"E"}));
    h.joint.ClickItems({"(All)"});
    EXPECT_EQ(h.Cache(), QStringList({"A", "B", "C", "D", "E"}));
}

TEST(LibraryFilterValues, AJointColumnWithoutValuesLeavesAnEmptyListAndTheOthersWork) {
    FilterHarness h({{1, "A", QVariant(), "Flexion", "Stretch"},
                     {2, "B", QVariant(), "Extension", "Strength"}});
    h.filter->InitListBoxes();
    EXPECT_TRUE(h.joint.items.isEmpty());
    EXPECT_EQ(h.motion.items, QStringList({"(All)", "Extension", "Flexion"}));
    h.motion.ClickItems({"Extension"});
    EXPECT_EQ(h.Cache(), QStringList({"B"}));
}

TEST(LibraryFilterValues, WorksOnTheDeliveredLibrary) {
    TestFolder folder;
    OpenDatabases(folder.state);
    LoadLibraryCache(folder.state);
    const int all = folder.state.Library.NumChoices;
    FakeListBox joint("Joint", true), motion("Motion"), type("Type");
    FakeFilterHost host;
    LibraryFilter filter(folder.state, {&joint, &motion, &type}, host);
    joint.onClick = [&filter] { filter.ViewListClick(0); };
    filter.InitListBoxes();
    ASSERT_GT(joint.ListCount(), 2);
    EXPECT_EQ(joint.List(0), "(All)");
    for (const FakeListBox* list : {&joint, &motion, &type}) {
        EXPECT_EQ(list->items.size(), QSet<QString>(list->items.begin(), list->items.end()).size());
        EXPECT_TRUE(list->Selected(0));
    }
    for (int i = 2; i < joint.ListCount(); ++i)
        EXPECT_FALSE(SortsBefore(joint.List(i), joint.List(i - 1))) << joint.List(i).toStdString();
    EXPECT_EQ(folder.state.Library.NumChoices, all);

    const QString chosen = joint.List(1);
    joint.ClickItems({chosen});
    const LibraryCache& cache = folder.state.Library;
    EXPECT_GT(cache.NumChoices, 0);
    EXPECT_LT(cache.NumChoices, all);
    for (int i = 0; i < cache.NumChoices; ++i)
        EXPECT_TRUE(
            cache.Entries[static_cast<size_t>(i)].Joint.contains(chosen, Qt::CaseInsensitive));
}
