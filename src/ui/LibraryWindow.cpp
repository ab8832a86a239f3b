#include "ui/LibraryWindow.h"

#include "ui/ExerciseEditorDialog.h"
#include "ui/Guarded.h"
#include "ui/PatientDialogs.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QProcess>
#include <QPushButton>
#include <QShortcut>
#include <QTreeView>
#include <QVBoxLayout>

namespace tarvex {

namespace {

// The companion picture editor's executable.
constexpr const char* kPictureBenchProgram = "tarvex-picture-bench";
constexpr int kColumnWidths[] = {70, 300, 140, 170, 170};

} // namespace

LibraryWindow::LibraryWindow(AppState& state, Shell& shell, Prompter& prompter, Reopen reopen,
                             QWidget* parent)
    : FormDialog(parent), ListView1(new QTreeView(this)), state_(state), prompter_(prompter),
      reopen_(std::move(reopen)),
      model_({QStringLiteral("Code"), QStringLiteral("Desc"), QStringLiteral("Joint"),
              QStringLiteral("Motion"), QStringLiteral("Type")}) {
    setObjectName(QStringLiteral("frmLibrary"));
    setWindowTitle(QLatin1String(LibraryListLogic::kCaption));
    setAttribute(Qt::WA_DeleteOnClose);
    BuildLayout();
    logic_ = std::make_unique<LibraryListLogic>(state, shell, prompter, model_,
                                                static_cast<ILibraryListHost&>(*this));
    resize(1000, 560);
}

LibraryWindow::~LibraryWindow() {
    // The view lets go of the model before the model goes.
    ListView1->setModel(nullptr);
}

void LibraryWindow::BuildLayout() {
    ListView1->setObjectName(QStringLiteral("ListView1"));
    ListView1->setRootIsDecorated(false);
    ListView1->setUniformRowHeights(true);
    ListView1->setAllColumnsShowFocus(true);
    ListView1->setAlternatingRowColors(true);
    ListView1->setEditTriggers(QAbstractItemView::NoEditTriggers);
    ListView1->setSelectionBehavior(QAbstractItemView::SelectRows);
    ListView1->setSelectionMode(QAbstractItemView::SingleSelection);
    ListView1->setModel(&model_);
    ListView1->setSelectionModel(model_.Selection());
    QHeaderView* header = ListView1->header();
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(false);
    header->setStretchLastSection(true);
    for (int column = 0; column < 5; ++column)
        ListView1->setColumnWidth(column, kColumnWidths[column]);
    connect(header, &QHeaderView::sectionClicked, this, Guarded([this](int column) {
                logic_->ListView1_ColumnClick(column);
                ListView1->header()->setSortIndicatorShown(true);
                ListView1->header()->setSortIndicator(column, Qt::AscendingOrder);
            }));
    // A double click, or Return on the chosen row, edits it; Delete deletes it.
    connect(ListView1, &QTreeView::doubleClicked, this,
            Guarded([this] { logic_->cmdEdit_Click(); }));
    const auto onKey = [this](const QKeySequence& key, void (LibraryListLogic::*command)()) {
        auto* shortcut = new QShortcut(key, ListView1, nullptr, nullptr, Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                Guarded([this, command] { (logic_.get()->*command)(); }));
    };
    onKey(QKeySequence(Qt::Key_Return), &LibraryListLogic::cmdEdit_Click);
    onKey(QKeySequence(Qt::Key_Enter), &LibraryListLogic::cmdEdit_Click);
    onKey(QKeySequence::Delete, &LibraryListLogic::cmdDelete_Click);

    auto* column = new QVBoxLayout;
    const QStringList tags = {QStringLiteral("Add"), QStringLiteral("Edit"),
                              QStringLiteral("Delete"), QStringLiteral("Clean Text"),
                              QStringLiteral("Exit")};
    const QStringList tips = {
        QStringLiteral("Add a new exercise to the library"),
        QStringLiteral("Edit the chosen exercise (or double-click it)"),
        QStringLiteral("Delete the chosen exercise (the delivered ones cannot be deleted)"),
        QStringLiteral("Make each instruction line of the library one line"),
        QStringLiteral("Close the library; the exercise selection shows the changes")};
    for (qsizetype i = 0; i < tags.size(); ++i) {
        const QString tag = tags[i];
        QPushButton* button = AddTaggedButton(this, buttons_, tag, tips[i]);
        button->setObjectName(QStringLiteral("cmd") + QString(tag).remove(u' '));
        connect(button, &QPushButton::clicked, this, Guarded([this, tag] { Run(tag); }));
        if (tag == QLatin1String("Exit"))
            column->addStretch();
        column->addWidget(button);
    }
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(ListView1, 1);
    layout->addLayout(column);
}

ExerciseEditorDialog* LibraryWindow::Editor() const {
    return editor_ && editor_->isVisible() ? editor_.data() : nullptr;
}

QPushButton* LibraryWindow::Button(const QString& tag) const {
    return findChild<QPushButton*>(QStringLiteral("cmd") + QString(tag).remove(u' '));
}

void LibraryWindow::Open() {
    logic_->Load();
    if (model_.RowCount() > 0)
        ListView1->setCurrentIndex(model_.index(0, 0));
    ListView1->setFocus();
}

void LibraryWindow::Run(const QString& tag) {
    if (tag == QLatin1String("Add"))
        return logic_->cmdAdd_Click();
    if (tag == QLatin1String("Edit"))
        return logic_->cmdEdit_Click();
    if (tag == QLatin1String("Delete"))
        return logic_->cmdDelete_Click();
    if (tag == QLatin1String("Clean Text"))
        return logic_->cmdCleanText_Click();
    if (tag == QLatin1String("Exit"))
        return Leave();
}

void LibraryWindow::reject() {
    // Esc and the close box leave as Exit does, so that the workspace never shows a
    // library that has changed.
    RunGuarded([this] { Leave(); });
}

bool LibraryWindow::EditorStillOpen() {
    // A closed editor is gone only once its deletion has come round.
    if (!editor_ || !editor_->isVisible())
        return false;
    editor_->raise();
    editor_->activateWindow();
    prompter_.MsgBox(QStringLiteral("The exercise editor is still open.\n\nPress OK there to "
                                    "save the exercise, or Cancel to drop it, then leave the "
                                    "library."),
                     msg::Information, QLatin1String(LibraryListLogic::kCaption));
    return true;
}

void LibraryWindow::Leave() {
    if (EditorStillOpen())
        return;
    logic_->cmdExit_Click();
    EndByButton(Accepted);
}

void LibraryWindow::Unload() {
    logic_->Unload();
    QCoreApplication::processEvents();
}

void LibraryWindow::ShowExerciseEditor() {
    if (editor_ && editor_->isVisible()) {
        // A further Add or Edit brings the open editor forward; it keeps its exercise.
        editor_->raise();
        editor_->activateWindow();
        return;
    }
    editor_ = ExerciseEditorDialog::Open(
        state_, prompter_, [this] { logic_->cmdFillListBox_Click(); }, this);
}

QString LibraryWindow::PictureBenchPath() {
    return QDir(QCoreApplication::applicationDirPath())
        .filePath(QLatin1String(kPictureBenchProgram));
}

QString LibraryWindow::PictureBenchProgram() const {
    return pictureBench_;
}

void LibraryWindow::StartDetached(const QString& program) {
    const bool started =
        OnStartDetached ? OnStartDetached(program) : QProcess::startDetached(program, {});
    // A program that is there but does not start is as good as missing; the window opens
    // all the same.
    if (!started)
        prompter_.MsgBox(QStringLiteral("Can't find TVX Picture Bench"), msg::Exclamation,
                         QStringLiteral("Picture Bench Not Found"));
}

void LibraryWindow::ReopenDatabasesAndRebuildWorkspace() {
    const BusyCursor busy;
    reopen_();
}

} // namespace tarvex
