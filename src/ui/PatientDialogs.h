#pragma once

#include "program/PatientLogic.h"
#include "ui/QtControls.h"

#include "ui/FormDialog.h"

#include <functional>
#include <memory>

class QPushButton;
class QTreeWidget;

namespace tarvex {

struct AppState;
class Shell;
class Prompter;

// frmSelectPatient, "Select a Patient".
class SelectPatientDialog : public FormDialog, private IPatientDialogHost {
    Q_OBJECT
public:
    // openEditor shows "Patient Information"; the main window places it.
    SelectPatientDialog(AppState& state, Shell& shell, Prompter& prompter,
                        std::function<void()> openEditor, QWidget* parent = nullptr);
    ~SelectPatientDialog() override;

    QTreeWidget* lstPatients;
    QPushButton* Button(const QString& tag) const;

protected:
    void CancelByFrame() override;

private:
    void ShowEditPatient() override;
    void Run(const QString& tag);

    QtReportList list_;
    QtButtons buttons_;
    std::function<void()> openEditor_;
    std::unique_ptr<SelectPatientLogic> logic_;
};

// frmEditPatient, "Patient Information".
class EditPatientDialog : public FormDialog {
    Q_OBJECT
public:
    EditPatientDialog(AppState& state, Shell& shell, QWidget* parent = nullptr);
    ~EditPatientDialog() override;

    QLineEdit* txtLastName;
    QLineEdit* txtFirstName;
    QLineEdit* txtID;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

protected:
    void CancelByFrame() override;

private:
    void Run(const QString& tag);

    QtLineEdit last_, first_, id_;
    std::unique_ptr<EditPatientLogic> logic_;
};

// Lays out a report list of the given columns with a column of tagged buttons at its
// right; a button runs `run` with its tag.
void LayOutListWithButtons(QDialog* dialog, QTreeWidget* list, const QStringList& headers,
                           int firstColumnWidth, QtButtons& buttons, const QStringList& tags,
                           const std::function<void(const QString&)>& run);

// What both list windows do alike with their list's events: a click or the space bar
// picks the row (`pick`), a double click runs "OK" (`ok`), a click on a column heading
// sorts by that column (`sort`).
void ConnectListEvents(QTreeWidget* list, const std::function<void()>& pick,
                       const std::function<void()>& ok, const std::function<void(int)>& sort);

// Adds a row of tagged buttons to a dialog's layout and to its command set.
QPushButton* AddTaggedButton(QWidget* parent, QtButtons& buttons, const QString& tag,
                             const QString& tip = {});

} // namespace tarvex
