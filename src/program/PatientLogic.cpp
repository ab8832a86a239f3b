#include "program/PatientLogic.h"

#include "data/NullValues.h"
#include "data/Sql.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QSqlQuery>

namespace tarvex {

namespace {

const QStringList kSelectButtons = {"OK", "Edit", "Delete"};

int32_t IdFromKey(const QString& key) {
    return key.mid(1).toInt();
}

} // namespace

SelectPatientLogic::SelectPatientLogic(AppState& state, Shell& shell, Prompter& prompter,
                                       IReportList& lstPatients, ICommands& buttons,
                                       IPatientDialogHost& host)
    : state_(state), shell_(shell), prompter_(prompter), list_(lstPatients), buttons_(buttons),
      host_(host) {}

void SelectPatientLogic::Load() {
    shell_.UpdateToolbar(ToolbarMode::HelpOnly);
    shell_.UpdateMenu(MenuMode::None);
    state_.Program.PatientID.reset();
    for (const QString& key : kSelectButtons)
        buttons_.SetEnabled(key, false);
    FillPatientList();
    if (list_.RowCount() > 0) {
        lstPatients_Click();
        list_.SetSelectedRow(0);
    }
}

void SelectPatientLogic::FillPatientList() {
    QSqlQuery rows = OpenQuery(state_.Dbs.ProgramDb,
                               QStringLiteral("SELECT PatientID, FullName, ID FROM Patient"));
    list_.Clear();
    while (rows.next())
        list_.AddRow(QStringLiteral("k") + rows.value(0).toString(),
                     {NullToText(rows.value(1)), NullToText(rows.value(2))});
}

void SelectPatientLogic::lstPatients_Click() {
    for (const QString& key : kSelectButtons)
        buttons_.SetEnabled(key, true);
}

void SelectPatientLogic::lstPatients_ColumnClick(int column) {
    list_.SortByColumn(column);
}

int SelectPatientLogic::SelectedRowOrFault() const {
    const int row = list_.SelectedRow();
    if (row < 0)
        throw Fault(QStringLiteral("Object variable or With block variable not set: no patient "
                                   "is selected."));
    return row;
}

void SelectPatientLogic::cmdOKCancel(const QString& tag) {
    ExerciseProgram& p = state_.Program;
    if (tag == QLatin1String("OK")) {
        const int row = SelectedRowOrFault();
        p.PatientID = IdFromKey(list_.Key(row));
        p.FullName = list_.Text(row, 0);
        p.InvoiceID.reset();
        p.IsNew = true;
        shell_.UpdateCaption();
        shell_.UpdateToolbar(ToolbarMode::All);
    } else if (tag == QLatin1String("Cancel")) {
        p.PatientID.reset();
        shell_.UpdateCaption();
        shell_.UpdateToolbar(ToolbarMode::PatientOnly);
    } else if (tag == QLatin1String("New")) {
        p.PatientID.reset();
        p.IsNew = true;
        shell_.UpdateCaption();
        host_.ShowEditPatient();
        shell_.UpdateToolbar(ToolbarMode::HelpOnly);
    } else if (tag == QLatin1String("Edit")) {
        const int row = SelectedRowOrFault();
        p.PatientID = IdFromKey(list_.Key(row));
        p.FullName = list_.Text(row, 0);
        p.IsNew = true;
        shell_.UpdateCaption();
        host_.ShowEditPatient();
        shell_.UpdateToolbar(ToolbarMode::HelpOnly);
    } else if (tag == QLatin1String("Delete")) {
        Delete();
    }
    Unload();
}

void SelectPatientLogic::Delete() {
    const int row = SelectedRowOrFault();
    const Answer answer = prompter_.MsgBox(
        QStringLiteral("Are you sure you want to delete ") + list_.Text(row, 0),
        msg::YesNo | msg::Exclamation | msg::DefaultButton2, QStringLiteral("Delete Patient"));
    if (answer != Answer::Yes)
        return;
    const int32_t id = IdFromKey(list_.Key(row));
    Execute(state_.Dbs.ProgramDb,
            QStringLiteral("DELETE * FROM Patient WHERE PatientID = %1").arg(id));
    state_.Program.PatientID.reset();
    shell_.UpdateCaption();
    shell_.UpdateToolbar(ToolbarMode::PatientOnly);
}

void SelectPatientLogic::Unload() {
    shell_.UpdateMenu(MenuMode::All);
    shell_.SetStatusBar(Shell::kReady);
}

EditPatientLogic::EditPatientLogic(AppState& state, Shell& shell, ITextBox& txtLastName,
                                   ITextBox& txtFirstName, ITextBox& txtID)
    : state_(state), shell_(shell), last_(txtLastName), first_(txtFirstName), id_(txtID) {}

QString EditPatientLogic::FullNameOf(const QString& lastName, const QString& firstName) {
    return (lastName + QStringLiteral(", ") + firstName).trimmed();
}

void EditPatientLogic::Load() {
    QSqlDatabase& db = state_.Dbs.ProgramDb;
    ExerciseProgram& p = state_.Program;
    if (!p.PatientID) {
        // A new patient is a row like any other from the start.
        p.PatientID = static_cast<int32_t>(InsertRow(db, QStringLiteral("Patient"), {}));
    }
    QSqlQuery row = OpenQuery(
        db, QStringLiteral("SELECT * FROM Patient  WHERE PatientID = %1").arg(*p.PatientID));
    if (!row.next())
        throw DatabaseFault(QStringLiteral("No current record: the patient no longer exists."));
    last_.SetText(NullToText(row.value("LastName")));
    first_.SetText(NullToText(row.value("FirstName")));
    id_.SetText(NullToText(row.value("ID")));
}

void EditPatientLogic::cmdOKCancel(const QString& tag) {
    ExerciseProgram& p = state_.Program;
    if (tag == QLatin1String("OK")) {
        const QString lastName = last_.Text().left(kNameLimit);
        const QString firstName = first_.Text().left(kNameLimit);
        const QString fullName = FullNameOf(lastName, firstName);
        p.InvoiceID.reset();
        p.FullName = fullName;
        UpdateRow(state_.Dbs.ProgramDb, QStringLiteral("Patient"), QStringLiteral("PatientID"),
                  *p.PatientID,
                  {{"LastName", lastName},
                   {"FirstName", firstName},
                   {"ID", id_.Text()},
                   {"FullName", fullName}});
        shell_.UpdateCaption();
        shell_.UpdateToolbar(ToolbarMode::All);
    } else if (tag == QLatin1String("Cancel")) {
        p.PatientID.reset();
        p.InvoiceID.reset();
        shell_.UpdateCaption();
        shell_.UpdateToolbar(ToolbarMode::PatientOnly);
    }
}

} // namespace tarvex
