#include "ui/ProgramListDialog.h"

#include "ui/PatientDialogs.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarvex {

ProgramListDialog::ProgramListDialog(AppState& state, Shell& shell, Prompter& prompter,
                                     ProgramStore& store, QWidget* parent)
    : QDialog(parent), lstPatients(new QTreeWidget(this)), list_(lstPatients) {
    setObjectName(QStringLiteral("frmListPrograms"));
    setWindowTitle(ProgramListLogic::kCaption);
    setAttribute(Qt::WA_DeleteOnClose);
    LayOutListWithButtons(
        this, lstPatients, {QStringLiteral("Name"), QStringLiteral("ID"), QStringLiteral("Date")},
        240, buttons_, {"OK", "Edit", "Delete"}, [this](const QString& tag) { Run(tag); });
    lstPatients->installEventFilter(this);
    resize(600, 380);

    logic_ = std::make_unique<ProgramListLogic>(state, shell, prompter, store, list_, buttons_);
    logic_->Load();
    connect(lstPatients, &QTreeWidget::itemClicked, this, [this] { logic_->lstPatients_Click(); });
    connect(lstPatients, &QTreeWidget::itemDoubleClicked, this,
            [this] { Run(QStringLiteral("OK")); });
    connect(lstPatients->header(), &QHeaderView::sectionClicked, this,
            [this](int section) { logic_->lstPatients_ColumnClick(section); });
}

ProgramListDialog::~ProgramListDialog() = default;

QPushButton* ProgramListDialog::Button(const QString& tag) const {
    return findChild<QPushButton*>(QStringLiteral("cmd") + tag);
}

bool ProgramListDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lstPatients && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space)
        logic_->lstPatients_Click();
    return QDialog::eventFilter(watched, event);
}

void ProgramListDialog::Run(const QString& tag) {
    if (logic_->cmdOKCancel(tag))
        close();
}

} // namespace tarvex
