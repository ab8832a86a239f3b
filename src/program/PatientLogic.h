#pragma once

#include "support/Controls.h"

#include <QString>

namespace tarvex {

struct AppState;
class Shell;
class Prompter;

// What the patient dialogs ask of their windows.
class IPatientDialogHost {
public:
    virtual ~IPatientDialogHost() = default;
    // Shows "Patient Information" for the current PatientID (null: a new patient).
    virtual void ShowEditPatient() = 0;
};

// The logic of "Select a Patient". Buttons by tag: "OK", "Cancel", "New", "Edit", "Delete".
class SelectPatientLogic {
public:
    SelectPatientLogic(AppState& state, Shell& shell, Prompter& prompter, IReportList& lstPatients,
                       ICommands& buttons, IPatientDialogHost& host);

    // On load: restricts the commands, drops the current patient, fills the list.
    void Load();
    void FillPatientList();
    // A click in the list or the space key: "OK", "Edit" and "Delete" become available.
    void lstPatients_Click();
    void lstPatients_ColumnClick(int column);
    // A double click is "OK".
    void lstPatients_DblClick() { cmdOKCancel(QStringLiteral("OK")); }
    // Runs a button; the dialog unloads after every one of them.
    void cmdOKCancel(const QString& tag);

private:
    // The selected entry; none is a fault, as the handlers read it without a test.
    int SelectedRowOrFault() const;
    void Delete();
    void Unload();

    AppState& state_;
    Shell& shell_;
    Prompter& prompter_;
    IReportList& list_;
    ICommands& buttons_;
    IPatientDialogHost& host_;
};

// The logic of "Patient Information": edits one row of Patient, a new one when no patient
// is current (the row is added at once on load).
class EditPatientLogic {
public:
    static constexpr int kNameLimit = 50;

    EditPatientLogic(AppState& state, Shell& shell, ITextBox& txtLastName, ITextBox& txtFirstName,
                     ITextBox& txtID);

    void Load();
    // "OK" writes the four columns and makes the patient current; "Cancel" writes nothing.
    void cmdOKCancel(const QString& tag);

    // Last name, ", ", first name, with the outer blanks removed: "Smith," for a last name
    // alone, "," for no name at all.
    static QString FullNameOf(const QString& lastName, const QString& firstName);

private:
    AppState& state_;
    Shell& shell_;
    ITextBox& last_;
    ITextBox& first_;
    ITextBox& id_;
};

} // namespace tarvex
