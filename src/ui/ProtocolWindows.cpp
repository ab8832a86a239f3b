#include "ui/ProtocolWindows.h"

#include "ui/Guarded.h"
#include "ui/PatientDialogs.h"
#include "ui/WorkspaceWindow.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarvex {

ProtocolListWindow::ProtocolListWindow(const QString& name, const QString& caption,
                                       const QStringList& tags, QWidget* parent)
    : FormDialog(parent), cboProtocol(new QComboBox(this)), lstProtocol(new QListWidget(this)),
      combo_(cboProtocol), list_(lstProtocol) {
    setObjectName(name);
    setWindowTitle(caption);
    setAttribute(Qt::WA_DeleteOnClose);
    cboProtocol->setObjectName(QStringLiteral("cboProtocol"));
    cboProtocol->setMinimumWidth(320);
    // Long names are shown whole in the open list and cut in the closed box.
    cboProtocol->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    lstProtocol->setObjectName(QStringLiteral("lstProtocol"));
    auto* nameLabel = new QLabel(QStringLiteral("Protocol &Name:"), this);
    nameLabel->setBuddy(cboProtocol);
    auto* listLabel = new QLabel(QStringLiteral("E&xercises:"), this);
    listLabel->setBuddy(lstProtocol);

    auto* fields = new QVBoxLayout;
    fields->addWidget(nameLabel);
    fields->addWidget(cboProtocol);
    fields->addWidget(listLabel);
    fields->addWidget(lstProtocol, 1);
    auto* column = new QVBoxLayout;
    column->addSpacing(nameLabel->sizeHint().height());
    for (const QString& tag : tags) {
        QPushButton* button = AddTaggedButton(this, buttons_, tag);
        connect(button, &QPushButton::clicked, this, Guarded([this, tag] { Run(tag); }));
        column->addWidget(button);
        // Return in the combo or the list is OK.
        if (tag == QLatin1String("OK"))
            button->setDefault(true);
    }
    column->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(fields, 1);
    layout->addLayout(column);
    connect(cboProtocol, &QComboBox::activated, this, Guarded([this] { Chosen(); }));
    resize(520, 400);
}

QPushButton* ProtocolListWindow::Button(const QString& tag) const {
    return findChild<QPushButton*>(QStringLiteral("cmd") + tag);
}

// --- the editor

ProtocolEditorDialog::ProtocolEditorDialog(AppState& state, Shell& shell, Prompter& prompter,
                                           WorkspaceWindow& workspace, QWidget* parent)
    : ProtocolListWindow(QStringLiteral("frmProtocolEditor"),
                         QLatin1String(ProtocolEditorLogic::kCaption),
                         {QStringLiteral("OK"), QStringLiteral("New"), QStringLiteral("Edit"),
                          QStringLiteral("Delete")},
                         parent),
      workspace_(&workspace) {
    logic_ = std::make_unique<ProtocolEditorLogic>(state, shell, prompter, combo_, list_,
                                                   workspace.ProtocolHost());
    // The workspace's OK for a protocol comes back here; the editor waits for it.
    workspace.OnAddNewProtocol = [this] { logic_->AddNewProtocol(); };
    workspace.OnSaveEditedProtocol = [this] { logic_->SaveEditedProtocol(); };
    connect(&workspace, &WorkspaceWindow::VisitEnded, this, [this] { setEnabled(true); });
    logic_->Load();
}

ProtocolEditorDialog::~ProtocolEditorDialog() {
    if (workspace_) {
        workspace_->OnAddNewProtocol = nullptr;
        workspace_->OnSaveEditedProtocol = nullptr;
    }
}

void ProtocolEditorDialog::Run(const QString& tag) {
    const bool opens = tag == QLatin1String("New") || tag == QLatin1String("Edit");
    if (opens)
        setEnabled(false);
    bool unload = false;
    if (!RunGuarded([&] { unload = logic_->cmdOKCancel(tag); }) && opens &&
        (!workspace_ || workspace_->isHidden()))
        setEnabled(true);
    if (unload)
        EndByButton();
}

void ProtocolEditorDialog::Chosen() {
    logic_->cboProtocol_Click();
}

void ProtocolEditorDialog::CancelByFrame() {
    // The editor has no Cancel: Esc and the close box close it as OK does.
    logic_->cmdOKCancel(QStringLiteral("OK"));
}

void ProtocolEditorDialog::closeEvent(QCloseEvent* event) {
    // While the workspace works on a protocol, the editor waits behind it.
    if (!isEnabled()) {
        event->ignore();
        return;
    }
    ProtocolListWindow::closeEvent(event);
}

// --- the selection

ProtocolSelectionDialog::ProtocolSelectionDialog(AppState& state, Prompter& prompter,
                                                 IProtocolWorkspace& workspace, QWidget* parent)
    : ProtocolListWindow(QStringLiteral("frmSelectProtocol"),
                         QLatin1String(ProtocolSelectionLogic::kCaption),
                         {QStringLiteral("OK"), QStringLiteral("Cancel")}, parent) {
    logic_ = std::make_unique<ProtocolSelectionLogic>(state, prompter, combo_, list_, workspace);
    logic_->Load();
    connect(lstProtocol, &QListWidget::itemDoubleClicked, this,
            Guarded([this] { Run(QStringLiteral("OK")); }));
}

ProtocolSelectionDialog::~ProtocolSelectionDialog() = default;

void ProtocolSelectionDialog::Run(const QString& tag) {
    if (logic_->cmdOKCancel(tag))
        EndByButton();
}

void ProtocolSelectionDialog::Chosen() {
    logic_->cboProtocol_Click();
}

void ProtocolSelectionDialog::CancelByFrame() {
    logic_->cmdOKCancel(QStringLiteral("Cancel"));
}

} // namespace tarvex
