#pragma once

#include "picklist/PicklistEditorLogic.h"
#include "support/TreeModel.h"
#include "ui/FormDialog.h"
#include "ui/QtControls.h"

#include <memory>

class QPushButton;
class QTreeView;

namespace tarvex {

// frmPicklistEditor, "Edit Picklists": the picklists as a tree whose entries can be
// added, renamed (F2 or a click on the chosen entry) and deleted, and a status bar with
// the path of the entry chosen last.
class PicklistEditorDialog : public FormDialog {
    Q_OBJECT
public:
    explicit PicklistEditorDialog(AppState& state, QWidget* parent = nullptr);
    ~PicklistEditorDialog() override;

    QTreeView* tvwDB;
    TreeModel& Model() { return model_; }
    PicklistEditorLogic& Logic() { return *logic_; }
    QPushButton* Button(const QString& tag) const;
    QString StatusText() const { return status_.PanelText(0); }

protected:
    void CancelByFrame() override;

private:
    void Run(const QString& tag);
    void BuildLayout();
    void ConnectTree();

    TreeModel model_;
    QtStatusPanels status_;
    QtButtons buttons_;
    std::unique_ptr<PicklistEditorLogic> logic_;
    bool selectingInCode_ = false;
};

} // namespace tarvex
