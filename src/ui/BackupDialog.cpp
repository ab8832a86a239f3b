#include "ui/BackupDialog.h"

#include "media/MediaDrives.h"
#include "shell/AppState.h"
#include "support/ReportModel.h"
#include "ui/Guarded.h"

#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace tarvex {

namespace {

constexpr int kSizeColumn = 3;

// The list of added files: sizes stand right-aligned, as numbers do.
class BackupListModel : public ReportModel {
public:
    explicit BackupListModel(QObject* parent)
        : ReportModel({QStringLiteral("Name"), QStringLiteral("Date"), QStringLiteral("Time"),
                       QStringLiteral("Size")},
                      parent) {}
    QVariant data(const QModelIndex& index, int role) const override {
        if (role == Qt::TextAlignmentRole && index.column() == kSizeColumn)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return ReportModel::data(index, role);
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (role == Qt::TextAlignmentRole && section == kSizeColumn)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return ReportModel::headerData(section, orientation, role);
    }
};

} // namespace

class BackupDialog::Bar : public IProgressBar {
public:
    explicit Bar(QProgressBar* bar) : bar_(bar) {}
    void SetValue(int value) override { bar_->setValue(value); }
    int Value() const override { return bar_->value(); }

private:
    QProgressBar* bar_;
};

class BackupDialog::FolderDialog : public IFolderChooser {
public:
    explicit FolderDialog(QWidget* owner) : owner_(owner) {}
    std::optional<QString> ChooseFolder(const QString& start) override {
        const QString folder = QFileDialog::getExistingDirectory(
            owner_, QStringLiteral("Back Up To"), start, QFileDialog::ShowDirsOnly);
        if (folder.isEmpty())
            return std::nullopt;
        return folder;
    }

private:
    QWidget* owner_;
};

BackupDialog::BackupDialog(AppState& state, IMaintenanceHost& host, Prompter& prompts,
                           ISettingsStore& settings, QWidget* parent)
    : FormDialog(parent) {
    setObjectName(QStringLiteral("frmBackup"));
    setWindowTitle(QStringLiteral("Backup TVX Database"));
    setAttribute(Qt::WA_DeleteOnClose);
    // Nothing else may run while the databases are closed for a job.
    setWindowModality(Qt::ApplicationModal);
    BuildLayout();
    folderCaption_ = std::make_unique<QtCaption>(txtFolder);
    password_ = std::make_unique<QtLineEdit>(txtPassword);
    bar_ = std::make_unique<Bar>(prbMain);
    folders_ = std::make_unique<FolderDialog>(this);
    logic_ = std::make_unique<BackupLogic>(
        BackupLogic::Controls{*model_, *bar_, buttons_, *folderCaption_, *password_}, host, prompts,
        settings, *folders_);
    if (state.Dbs.OnServer())
        logic_->UseServer(state.Dbs.Choice.Server);
    logic_->Load(ListMediaDrives(state), QDir::homePath());
    Connect();
}

BackupDialog::~BackupDialog() = default;

QPushButton* BackupDialog::Button(const char* name, const QString& caption, const QString& tip) {
    auto* button = new QPushButton(caption, this);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(tip);
    buttons_.Add(QLatin1String(name), button);
    return button;
}

void BackupDialog::BuildLayout() {
    txtFolder = new QLineEdit(this);
    txtFolder->setObjectName(QStringLiteral("txtFolder"));
    txtFolder->setReadOnly(true);
    txtFolder->setMinimumWidth(360);
    cmdFolder = Button("cmdFolder", QStringLiteral("Change..."),
                       QStringLiteral("Choose the folder or medium to back up to"));
    txtPassword = new QLineEdit(this);
    txtPassword->setObjectName(QStringLiteral("txtPassword"));
    txtPassword->setEchoMode(QLineEdit::Password);
    txtPassword->setPlaceholderText(QStringLiteral("none: the archive is not encrypted"));
    txtPassword->setToolTip(QStringLiteral("With a password every file in the archive is "
                                           "encrypted (AES-256); it is needed to restore"));
    auto* folderLabel = new QLabel(QStringLiteral("Back up &to:"), this);
    folderLabel->setBuddy(txtFolder);
    auto* passwordLabel = new QLabel(QStringLiteral("&Password:"), this);
    passwordLabel->setBuddy(txtPassword);
    auto* grid = new QGridLayout;
    grid->addWidget(folderLabel, 0, 0);
    grid->addWidget(txtFolder, 0, 1);
    grid->addWidget(cmdFolder, 0, 2);
    grid->addWidget(passwordLabel, 1, 0);
    grid->addWidget(txtPassword, 1, 1);
    grid->setColumnStretch(1, 1);

    model_ = new BackupListModel(this);
    lstMain = new QTreeView(this);
    lstMain->setObjectName(QStringLiteral("lstMain"));
    lstMain->setModel(model_);
    lstMain->setSelectionModel(model_->Selection());
    lstMain->setRootIsDecorated(false);
    lstMain->setUniformRowHeights(true);
    lstMain->setMinimumHeight(140);
    lstMain->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    lstMain->header()->setStretchLastSection(false);
    prbMain = new QProgressBar(this);
    prbMain->setObjectName(QStringLiteral("prbMain"));
    prbMain->setRange(0, 100);

    cmdTest = Button("cmdTest", QStringLiteral("Test"),
                     QStringLiteral("Read every file of the archive and check it"));
    cmdFix = Button("cmdFix", QStringLiteral("Fix"),
                    QStringLiteral("Repair a damaged archive, saving what can be saved"));
    cmdBackup = Button("cmdBackup", QStringLiteral("Backup"),
                       QStringLiteral("Write the three databases into the archive"));
    cmdAbort = Button("cmdAbort", QStringLiteral("Abort"),
                      QStringLiteral("Stop the running job; the last archive stays as it was"));
    cmdOK = Button("cmdOK", QStringLiteral("OK"), QStringLiteral("Close this window"));
    cmdBackup->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdTest);
    buttons->addWidget(cmdFix);
    buttons->addStretch();
    buttons->addWidget(cmdBackup);
    buttons->addWidget(cmdAbort);
    buttons->addWidget(cmdOK);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(lstMain, 1);
    layout->addWidget(prbMain);
    layout->addLayout(buttons);
    resize(620, 400);
}

void BackupDialog::Connect() {
    // The newest row of the list stays in view.
    connect(model_, &QAbstractItemModel::rowsInserted, lstMain, &QTreeView::scrollToBottom);
    connect(cmdBackup, &QPushButton::clicked, this, Guarded([this] { logic_->cmdBackup(); }));
    connect(cmdAbort, &QPushButton::clicked, this, Guarded([this] { logic_->cmdAbort(); }));
    connect(cmdTest, &QPushButton::clicked, this, Guarded([this] { logic_->cmdTest(); }));
    connect(cmdFix, &QPushButton::clicked, this, Guarded([this] { logic_->cmdFix(); }));
    connect(cmdFolder, &QPushButton::clicked, this, Guarded([this] { logic_->cmdFolder(); }));
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] {
                if (!logic_->Running())
                    EndByButton();
            }));
}

void BackupDialog::done(int result) {
    // A job lets events through: Esc and the close box then do nothing until it has ended.
    if (logic_ && logic_->Running())
        return;
    FormDialog::done(result);
}

} // namespace tarvex
