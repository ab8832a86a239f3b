#include "ui/LoadPictureDialog.h"

#include "shell/AppState.h"
#include "support/Fault.h"
#include "ui/Guarded.h"

#include <QComboBox>
#include <QDir>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QStatusBar>
#include <QStorageInfo>
#include <QTreeView>
#include <QVBoxLayout>

namespace tarvex {

namespace {

constexpr QSize kPreview(320, 240);

} // namespace

LoadPictureDialog::LoadPictureDialog(AppState& state, Prompter& prompter, QWidget* parent)
    : FormDialog(parent), Drive1(new QComboBox(this)), Dir1(new QTreeView(this)),
      File1(new QListView(this)), LEAD1(new QLabel(this)), StatusPanel(new QLabel(this)),
      state_(state), prompter_(prompter), import_(status_) {
    setObjectName(QStringLiteral("frmLoadPicture"));
    setWindowTitle(QLatin1String(kCaption));
    BuildLayout();
    // Loading the form loads the file chosen in the file list; with none chosen, as ever
    // at this point, nothing is loaded and nothing is said.
    if (!FileName().isEmpty()) {
        try {
            LoadFile(QDir(FilePath()).filePath(FileName()), 0);
        } catch (const Fault&) {
        }
    }
}

LoadPictureDialog::~LoadPictureDialog() {
    Dir1->setModel(nullptr);
    File1->setModel(nullptr);
}

void LoadPictureDialog::BuildLayout() {
    Drive1->setObjectName(QStringLiteral("Drive1"));
    Dir1->setObjectName(QStringLiteral("Dir1"));
    Dir1->setHeaderHidden(true);
    File1->setObjectName(QStringLiteral("File1"));
    LEAD1->setObjectName(QStringLiteral("LEAD1"));
    LEAD1->setFixedSize(kPreview);
    LEAD1->setFrameShape(QFrame::StyledPanel);
    LEAD1->setAlignment(Qt::AlignCenter);
    auto* bar = new QStatusBar(this);
    bar->setObjectName(QStringLiteral("StatusBar1"));
    bar->setSizeGripEnabled(false);
    StatusPanel->setObjectName(QStringLiteral("StatusBar1Panel1"));
    bar->addWidget(StatusPanel, 1);
    status_.AddPanel(StatusPanel);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (const QString& tag : {QStringLiteral("OK"), QStringLiteral("Cancel")}) {
        auto* button = new QPushButton(tag, this);
        button->setObjectName(QStringLiteral("cmdOkCancel") + tag);
        button->setProperty("tag", tag);
        // Either button only closes the form; the picture is kept by nobody.
        connect(button, &QPushButton::clicked, this, [this] { EndByButton(Rejected); });
        buttons->addWidget(button);
    }
    auto* grid = new QGridLayout;
    grid->addWidget(Drive1, 0, 0);
    grid->addWidget(Dir1, 1, 0);
    grid->addWidget(File1, 0, 1, 2, 1);
    grid->addWidget(LEAD1, 0, 2, 2, 1);
    grid->setRowStretch(1, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid, 1);
    layout->addLayout(buttons);
    layout->addWidget(bar);
    resize(900, 420);
}

void LoadPictureDialog::showEvent(QShowEvent* event) {
    FormDialog::showEvent(event);
    if (!browsing_)
        StartBrowsing();
}

void LoadPictureDialog::StartBrowsing() {
    browsing_ = true;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (!volume.isValid() || !volume.isReady())
            continue;
        const QString name = volume.displayName();
        Drive1->addItem(name == volume.rootPath()
                            ? name
                            : name + QStringLiteral("  (") + volume.rootPath() + u')',
                        volume.rootPath());
    }
    folders_ = new QFileSystemModel(this);
    folders_->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    folders_->setRootPath(QDir::rootPath());
    Dir1->setModel(folders_);
    for (int column = 1; column < folders_->columnCount(); ++column)
        Dir1->hideColumn(column);
    files_ = new QFileSystemModel(this);
    files_->setFilter(QDir::Files);
    files_->setNameFilters(QString::fromLatin1(kBrowserPattern).split(u';'));
    files_->setNameFilterDisables(false);
    File1->setModel(files_);
    connect(Drive1, &QComboBox::activated, this,
            Guarded([this](int index) { Drive1_Change(Drive1->itemData(index).toString()); }));
    connect(
        Dir1->selectionModel(), &QItemSelectionModel::currentChanged, this,
        Guarded([this](const QModelIndex& current) { Dir1_Change(folders_->filePath(current)); }));
    connect(File1, &QListView::clicked, this,
            Guarded([this](const QModelIndex& index) { File1_Click(files_->fileName(index)); }));
    Drive1_Change(QDir::homePath());
}

void LoadPictureDialog::Drive1_Change(const QString& root) {
    if (!folders_)
        return;
    const QModelIndex index = folders_->index(root);
    Dir1->setCurrentIndex(index);
    Dir1->scrollTo(index);
}

void LoadPictureDialog::Dir1_Change(const QString& folder) {
    if (IsMediaFolder(folder, state_.Media.Icon, state_.Media.Picture)) {
        prompter_.MsgBox(QStringLiteral("Can't select pictures already in the browser"),
                         msg::OkOnly, QStringLiteral("Error: Picture source"));
        return;
    }
    filePath_ = folder;
    if (files_)
        File1->setRootIndex(files_->setRootPath(folder));
}

void LoadPictureDialog::File1_Click(const QString& name) {
    LoadFile(QDir(filePath_).filePath(name), 0);
}

QString LoadPictureDialog::FilePath() const {
    return filePath_;
}

QString LoadPictureDialog::FileName() const {
    if (!files_)
        return QString();
    const QModelIndex current = File1->currentIndex();
    return current.isValid() ? files_->fileName(current) : QString();
}

void LoadPictureDialog::LoadFile(const QString& path, int32_t flag) {
    import_.LoadFile(path, flag);
    ShowPicture();
}

void LoadPictureDialog::ResizeAndSaveFile(const QString& path, int32_t size) {
    import_.ResizeAndSaveFile(path, size);
}

void LoadPictureDialog::ShowPicture() {
    if (!isVisible())
        return; // the hidden service shows nothing
    LEAD1->setPixmap(QPixmap::fromImage(
        import_.Picture().scaled(kPreview, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

} // namespace tarvex
