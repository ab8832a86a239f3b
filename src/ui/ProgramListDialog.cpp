#include "ui/ProgramListDialog.h"

#include "ui/PatientDialogs.h"

#include <QHeaderView>
#include <QPushButton>

namespace tarvex {

ProgramListDialog::ProgramListDialog(AppState& state, Shell& shell, Prompter& prompter,
                                     ProgramStore& store, QWidget* parent)
    : FormDialog(parent), lstPatients(new QTreeWidget(this)), list_(lstPatients) {
    setObjectName(QStringLiteral("frmListPrograms"));
    setWindowTitle(ProgramListLogic::kCaption);
    setAttribute(Qt::WA_DeleteOnClose);
    LayOutListWithButtons(
        this, lstPatients, {QStringLiteral("Name"), QStringLiteral("ID"), QStringLiteral("Date")},
        240, buttons_, {"OK", "Edit", "Delete"}, [this](const QString& tag) { Run(tag); });
    resize(600, 380);

    logic_ = std::make_unique<ProgramListLogic>(state, shell, prompter, store, list_, buttons_);
    logic_->Load();
    ConnectListEvents(
        lstPatients, [this] { logic_->lstPatients_Click(); }, [this] { Run(QStringLiteral("OK")); },
        [this](int section) { logic_->lstPatients_ColumnClick(section); });
}

ProgramListDialog::~ProgramListDialog() = default;

QPushButton* ProgramListDialog::Button(const QString& tag) const {
    return findChild<QPushButton*>(QStringLiteral("cmd") + tag);
}

void ProgramListDialog::Run(const QString& tag) {
    if (logic_->cmdOKCancel(tag))
        EndByButton();
}

} // namespace tarvex
