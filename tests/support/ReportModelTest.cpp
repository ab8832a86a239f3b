#include "support/ReportModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

QStringList Column(const ReportModel& model, int column) {
    QStringList texts;
    for (int r = 0; r < model.RowCount(); ++r)
        texts << model.Text(r, column);
    return texts;
}

void Fill(ReportModel& model, const QList<QStringList>& rows) {
    const ReportFill fill(model);
    model.Clear();
    for (const QStringList& row : rows)
        model.AddRow(u'"' + row.first() + u'"', row);
}

} // namespace

TEST(ReportModel, KeepsTheRowsInTheOrderAddedUntilAColumnIsSortedBy) {
    ReportModel model({"Code", "Desc"});
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    Fill(model, {{"244", "Wall slide"}, {"007", "ankle pumps"}, {"100000", "Bridge"}});
    EXPECT_EQ(Column(model, 0), QStringList({"244", "007", "100000"}));
    EXPECT_EQ(model.SortColumn(), -1);
    EXPECT_EQ(model.Key(2), "\"100000\"");
    EXPECT_EQ(model.data(model.index(2, 1), Qt::DisplayRole).toString(), "Bridge");
    EXPECT_EQ(model.data(model.index(2, 0), ReportModel::kKeyRole).toString(), "\"100000\"");
    EXPECT_EQ(model.headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(), "Desc");
}

TEST(ReportModel, SortsByTextSoThatNumbersSortAsTextAndCaseDoesNotCount) {
    ReportModel model({"Code", "Desc"});
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    Fill(model, {{"244", "Wall slide"}, {"007", "ankle pumps"}, {"100000", "Bridge"}});
    model.SortByColumn(0);
    EXPECT_EQ(Column(model, 0), QStringList({"007", "100000", "244"}));
    model.SortByColumn(1);
    EXPECT_EQ(Column(model, 1), QStringList({"ankle pumps", "Bridge", "Wall slide"}));
}

TEST(ReportModel, TheSortStaysInForceForARefillAndForARowAddedAlone) {
    ReportModel model({"Code", "Desc"});
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.SortByColumn(1);
    Fill(model, {{"3", "c"}, {"1", "a"}, {"2", "B"}});
    EXPECT_EQ(Column(model, 0), QStringList({"1", "2", "3"}));
    model.AddRow("\"4\"", {"4", "b"});
    EXPECT_EQ(Column(model, 1), QStringList({"a", "B", "b", "c"}));
}

TEST(ReportModel, TheChosenRowFollowsItsRowThroughASort) {
    ReportModel model({"Code", "Desc"});
    Fill(model, {{"3", "c"}, {"1", "a"}, {"2", "b"}});
    EXPECT_EQ(model.SelectedRow(), -1);
    model.SetSelectedRow(0);
    ASSERT_EQ(model.SelectedRow(), 0);
    model.SortByColumn(0);
    EXPECT_EQ(model.SelectedRow(), 2);
    EXPECT_EQ(model.Text(model.SelectedRow(), 1), "c");
    model.SetSelectedRow(-1);
    EXPECT_EQ(model.SelectedRow(), -1);
}

TEST(ReportModel, ARefillIsOneResetAndLeavesNoRowChosen) {
    ReportModel model({"Code"});
    Fill(model, {{"1"}, {"2"}});
    model.SetSelectedRow(1);
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    QSignalSpy inserts(&model, &QAbstractItemModel::rowsInserted);
    Fill(model, {{"5"}, {"6"}, {"7"}});
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(inserts.count(), 0);
    EXPECT_EQ(model.RowCount(), 3);
    EXPECT_EQ(model.SelectedRow(), -1);
}

TEST(ReportModel, AFillThatAFaultEndsStillEndsTheReset) {
    ReportModel model({"Code"});
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.SortByColumn(0);
    try {
        const ReportFill fill(model);
        model.Clear();
        model.AddRow("\"2\"", {"2"});
        model.AddRow("\"1\"", {"1"});
        throw std::runtime_error("the read broke off");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(Column(model, 0), QStringList({"1", "2"}));
    model.AddRow("\"0\"", {"0"});
    EXPECT_EQ(model.rowCount(), 3);
}

TEST(ReportModel, ASortByAColumnThatIsNotThereChangesNothing) {
    ReportModel model({"Code"});
    Fill(model, {{"2"}, {"1"}});
    model.SortByColumn(3);
    EXPECT_EQ(model.SortColumn(), -1);
    EXPECT_EQ(Column(model, 0), QStringList({"2", "1"}));
}
