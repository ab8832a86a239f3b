#pragma once

#include "program/ProgramListLogic.h"
#include "ui/QtControls.h"

#include <QDialog>
#include <memory>

class QPushButton;
class QTreeWidget;

namespace tarvex {

// frmListPrograms, "Recall an Exericse Program".
class ProgramListDialog : public QDialog {
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
