#include "program/ProgramListLogic.h"

#include "data/NullValues.h"
#include "data/Sql.h"
#include "program/ProgramStore.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Dates.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QSqlQuery>

namespace tarvex {

namespace {

// A date column as the list shows it: empty stays empty, a date in the short form, any
// other text as it is.
QString ShortDateColumn(const QVariant& value) {
    const QString text = NullToText(value);
    const auto date = ParseDate(text);
    return date ? ShortDate(*date) : text;
}

} // namespace

ProgramListLogic::ProgramListLogic(AppState& state, Shell& shell, Prompter& prompter,
                                   ProgramStore& store, IReportList& lstPatients,
                                   ICommands& buttons)
    : state_(state), shell_(shell), prompter_(prompter), store_(store), list_(lstPatients),
      buttons_(buttons) {}

void ProgramListLogic::Load() {
    buttons_.SetEnabled(QStringLiteral("Edit"), false);
    buttons_.SetEnabled(QStringLiteral("Delete"), false);
    FillProgramList();
}

void ProgramListLogic::FillProgramList() {
    QString sql = QStringLiteral("SELECT DISTINCTROW FullName, ID, InvoiceID, Date FROM Patient "
                                 "INNER JOIN Invoice ON Patient.PatientID = Invoice.PatientID");
    if (state_.Program.PatientID)
        sql += QStringLiteral(" WHERE Patient.PatientID = %1").arg(*state_.Program.PatientID);
    QSqlQuery rows = OpenQuery(state_.Dbs.ProgramDb, sql);
    list_.Clear();
    while (rows.next())
        list_.AddRow(
            QStringLiteral("k") + rows.value(2).toString(),
            {NullToText(rows.value(0)), NullToText(rows.value(1)), ShortDateColumn(rows.value(3))});
    list_.SetSelectedRow(-1);
}

void ProgramListLogic::lstPatients_Click() {
    buttons_.SetEnabled(QStringLiteral("Edit"), true);
    buttons_.SetEnabled(QStringLiteral("Delete"), true);
}

void ProgramListLogic::lstPatients_ColumnClick(int column) {
    list_.SortByColumn(column);
}

int ProgramListLogic::SelectedRowOrFault() const {
    const int row = list_.SelectedRow();
    if (row < 0)
        throw Fault(QStringLiteral("Object variable or With block variable not set: no program "
                                   "is selected."));
    return row;
}

bool ProgramListLogic::cmdOKCancel(const QString& tag) {
    if (tag == QLatin1String("OK"))
        return true;
    if (tag == QLatin1String("Edit")) {
        const int32_t id = list_.Key(SelectedRowOrFault()).mid(1).toInt();
        store_.LoadProgram(id);
        state_.Program.IsNew = false;
        shell_.SetStatusBar(Shell::kReady);
        shell_.UpdateToolbar(ToolbarMode::All);
        return true;
    }
    if (tag == QLatin1String("Delete")) {
        const int32_t id = list_.Key(SelectedRowOrFault()).mid(1).toInt();
        const Answer answer = prompter_.MsgBox(
            QStringLiteral("Are you sure you want to delete this exercise program."),
            msg::YesNo | msg::Information | msg::DefaultButton2,
            QStringLiteral("Delete Exercise Program"));
        if (answer == Answer::Yes) {
            Execute(state_.Dbs.ProgramDb,
                    QStringLiteral("DELETE * FROM Invoice WHERE InvoiceID = %1").arg(id));
            FillProgramList();
        }
    }
    return false;
}

} // namespace tarvex
