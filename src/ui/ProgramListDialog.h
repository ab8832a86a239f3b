#pragma once

#include "program/ProgramListLogic.h"
#include "ui/QtControls.h"

#include "ui/FormDialog.h"
#include <memory>

class QPushButton;
class QTreeWidget;

namespace tarvex {

// frmListPrograms, "Recall an Exericse Program".
class ProgramListDialog : public FormDialog {
    Q_OBJECT
public:
    ProgramListDialog(AppState& state, Shell& shell, Prompter& prompter, ProgramStore& store,
                      QWidget* parent = nullptr);
    ~ProgramListDialog() override;

    QTreeWidget* lstPatients;
    QPushButton* Button(const QString& tag) const;

private:
    void Run(const QString& tag);

    QtReportList list_;
    QtButtons buttons_;
    std::unique_ptr<ProgramListLogic> logic_;
};

} // namespace tarvex
