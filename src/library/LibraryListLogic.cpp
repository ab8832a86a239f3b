#include "library/LibraryListLogic.h"

#include "data/NullValues.h"
#include "data/Sql.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QFileInfo>
#include <QSqlQuery>
#include <QSqlRecord>
#include <iterator>

namespace tarvex {

namespace {

constexpr const char* kListSql =
    "SELECT ExerciseID, Code, Joint, Motion, Type, Desc From ExerciseLibrary";
// The list's columns after the first, each showing the field of its own name.
constexpr const char* kFieldColumns[] = {"Desc", "Joint", "Motion", "Type"};
// The instruction columns the cleaning goes through, in this order.
constexpr const char* kCleanedColumns[] = {"Instruct1", "Instruct2", "Instruct3"};

// "Item not found in this collection": a field that the recordset does not have.
constexpr int kItemNotFound = 3265;

} // namespace

LibraryListLogic::LibraryListLogic(AppState& state, Shell& shell, Prompter& prompter,
                                   IReportList& listView1, ILibraryListHost& host)
    : state_(state), shell_(shell), prompter_(prompter), list_(listView1), host_(host) {}

void LibraryListLogic::Load() {
    shell_.UpdateToolbar(ToolbarMode::HelpOnly);
    shell_.UpdateMenu(MenuMode::None);
    cmdFillListBox_Click();
    shell_.SetStatusBar(QStringLiteral("Starting Picture Bench"));
    const QString program = host_.PictureBenchProgram();
    if (QFileInfo(program).isFile())
        host_.StartDetached(program);
    else
        prompter_.MsgBox(QStringLiteral("Can't find TVX Picture Bench"), msg::Exclamation,
                         QStringLiteral("Picture Bench Not Found"));
    shell_.SetStatusBarReady();
}

void LibraryListLogic::cmdFillListBox_Click() {
    shell_.SetStatusBar(QStringLiteral("Loading Exercise Library"));
    const ReportFill fill(list_);
    list_.Clear();
    QSqlQuery rows = OpenQuery(state_.Dbs.LibraryDb, QLatin1String(kListSql));
    const QSqlRecord record = rows.record();
    const int id = record.indexOf(QStringLiteral("ExerciseID"));
    int fields[std::size(kFieldColumns)];
    for (size_t i = 0; i < std::size(kFieldColumns); ++i)
        fields[i] = record.indexOf(QLatin1String(kFieldColumns[i]));
    QStringList columns;
    while (rows.next()) {
        const qint64 number = rows.value(id).toLongLong();
        columns.clear();
        columns << FormatCode(number);
        for (const int field : fields)
            columns << NullToText(rows.value(field));
        list_.AddRow(u'"' + QString::number(number) + u'"', columns);
    }
    shell_.SetStatusBarReady();
}

void LibraryListLogic::cmdAdd_Click() {
    state_.ExerciseNumber.reset();
    host_.ShowExerciseEditor();
}

void LibraryListLogic::cmdEdit_Click() {
    state_.ExerciseNumber = list_.Text(SelectedRow(), 0);
    host_.ShowExerciseEditor();
}

void LibraryListLogic::cmdDelete_Click() {
    const int row = SelectedRow();
    const QString code = list_.Text(row, 0);
    if (code.toLongLong() < kFirstDeletable) {
        prompter_.MsgBox(QStringLiteral("Can't delete original exercises"), msg::Information,
                         QStringLiteral("Error: Deleting original exercise"));
        return;
    }
    if (prompter_.MsgBox(QStringLiteral("Delete: ") + list_.Text(row, 1),
                         msg::OkCancel | msg::Exclamation,
                         QStringLiteral("Are you sure?")) != Answer::Ok)
        return;
    Execute(state_.Dbs.LibraryDb,
            QStringLiteral("DELETE * FROM ExerciseLibrary WHERE ExerciseID = ") + code);
    cmdFillListBox_Click();
}

void LibraryListLogic::cmdCleanText_Click() {
    QSqlDatabase& db = state_.Dbs.LibraryDb;
    QSqlQuery rows = OpenQuery(db, QStringLiteral("SELECT * From ExerciseLibrary"));
    const QSqlRecord record = rows.record();
    const int id = record.indexOf(QStringLiteral("ExerciseID"));
    while (rows.next()) {
        ColumnValues cleaned;
        for (const char* column : kCleanedColumns) {
            const int field = record.indexOf(QLatin1String(column));
            if (field < 0)
                throw DatabaseFault(QStringLiteral("Item not found in this collection. (%1)")
                                        .arg(QLatin1String(column)),
                                    kItemNotFound);
            cleaned.emplace_back(QLatin1String(column), CleanText(NullToText(rows.value(field))));
        }
        UpdateRow(db, QStringLiteral("ExerciseLibrary"), QStringLiteral("ExerciseID"),
                  rows.value(id), cleaned);
    }
}

void LibraryListLogic::cmdExit_Click() {
    host_.ReopenDatabasesAndRebuildWorkspace();
}

void LibraryListLogic::ListView1_ColumnClick(int column) {
    list_.SortByColumn(column);
}

void LibraryListLogic::Unload() {
    shell_.UpdateToolbar(ToolbarMode::PatientOnly);
    state_.Program.PatientID.reset();
    state_.Program.InvoiceID.reset();
    shell_.UpdateMenu(MenuMode::All);
}

QString LibraryListLogic::CleanText(const QString& text) {
    QString clean;
    clean.reserve(text.size());
    for (const QChar c : text) {
        if (c == u'\r')
            clean += u' ';
        else if (c != u'\n')
            clean += c;
    }
    return clean;
}

QString LibraryListLogic::FormatCode(qint64 exerciseID) {
    return QStringLiteral("%1").arg(exerciseID, 3, 10, QChar(u'0'));
}

int LibraryListLogic::SelectedRow() const {
    const int row = list_.SelectedRow();
    if (row < 0)
        throw Fault(QStringLiteral("Object variable or With block variable not set"), 91);
    return row;
}

} // namespace tarvex
