#include "ui/MainWindow.h"

#include "print/OrderForm.h"
#include "print/PrintJob.h"
#include "shell/AppFolder.h"
#include "shell/AppState.h"
#include "shell/SingleInstance.h"
#include "support/Fault.h"
#include "ui/ClinicDialog.h"
#include "ui/DatabaseCommands.h"
#include "ui/Guarded.h"
#include "ui/ItemsDialog.h"
#include "ui/PatientDialogs.h"
#include "ui/PreferencesDialog.h"
#include "ui/PrintPreviewDialog.h"
#include "ui/PrinterSurface.h"
#include "ui/ProgramListDialog.h"
#include "ui/ScreenFit.h"
#include "ui/SplashDialog.h"
#include "ui/SupportCommands.h"
#include "ui/SupportDialogs.h"
#include "ui/ToolsCommands.h"
#include "ui/WorkspaceWindow.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMdiArea>
#include <QMenuBar>
#include <QPageSize>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinterInfo>
#include <QProcess>
#include <QScreen>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QWindow>

namespace tarvex {

namespace {

struct ToolbarButton {
    const char* key;
    const char* tip;
    int separatorsAfter;
    QStyle::StandardPixmap icon;
};

const ToolbarButton kButtons[] = {
    {"Patient", "Select patient", 0, QStyle::SP_DirHomeIcon},
    {"Exercises", "Select exercises", 0, QStyle::SP_FileDialogListView},
    {"Video", "Order video tape", 1, QStyle::SP_MediaPlay},
    {"Preview", "Preview exercise sheets", 1, QStyle::SP_FileDialogContentsView},
    {"Print", "Print exercise eheets", 2, QStyle::SP_DialogSaveButton},
    {"Programs", "Recall stored programs", 2, QStyle::SP_FileDialogDetailedView},
    {"Help", "Help", 0, QStyle::SP_DialogHelpButton},
};

} // namespace

MainWindow::MainWindow(AppState& state, ISettingsStore& store, SingleInstanceLock& lock,
                       bool showSplash)
    : state_(state), store_(store), lock_(lock), showSplash_(showSplash), title_(this),
      prompter_(this) {
    setObjectName(QStringLiteral("mdiTVX"));
    setWindowTitle(Shell::kTitle);
    mdi_ = new QMdiArea(this);
    mdi_->setBackground(palette().brush(QPalette::Dark));
    setCentralWidget(mdi_);
    BuildToolbar();
    BuildMenu();
    BuildStatusBar();
    IPrintDialog& printDialog = *this;
    shell_ = std::make_unique<Shell>(state_, toolbar_, menu_, status_, title_, printDialog);
    programs_ = std::make_unique<ProgramStore>(state_, *shell_, prompter_);
    RegisterProtocolCommands(*this, state_);
    RegisterPicklistCommands(*this, state_);
    RegisterLibraryCommands(*this, state_);
    RegisterMediaCommands(*this, state_);
    RegisterHelpCommands(*this, state_);
    RegisterDatabaseCommands(*this, state_);
    // The sheets are laid out on 8.5 by 11 inch paper; the printer dialog can change it.
    printer_.setPageSize(QPageSize(QPageSize::Letter));
    resize(1024, 720);
    KeepOnScreenWhenShown(this);
    // A command that a fault ends gives the toolbar and the menu back as they were.
    SetCommandStateCapture([window = QPointer<MainWindow>(this)]() -> CommandStateRestorer {
        if (!window)
            return {};
        const ToolbarMode toolbar = window->shell_->ToolbarMode();
        const MenuMode menu = window->shell_->MenuMode();
        return [window, toolbar, menu] {
            if (!window)
                return;
            window->shell_->UpdateToolbar(toolbar);
            window->shell_->UpdateMenu(menu);
        };
    });
}

MainWindow::~MainWindow() {
    SetCommandStateCapture({});
}

void MainWindow::BuildToolbar() {
    QToolBar* bar = addToolBar(QStringLiteral("Toolbar1"));
    bar->setObjectName(QStringLiteral("Toolbar1"));
    bar->setMovable(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    bar->setIconSize(QSize(32, 32));
    for (const ToolbarButton& b : kButtons) {
        const QString key = QLatin1String(b.key);
        QAction* action = bar->addAction(style()->standardIcon(b.icon), key);
        action->setObjectName(key);
        action->setToolTip(QLatin1String(b.tip));
        connect(action, &QAction::triggered, this, Guarded([this, key] { OnToolbar(key); }));
        toolbar_.Add(key, action);
        for (int i = 0; i < b.separatorsAfter; ++i)
            bar->addSeparator();
    }
}

QAction* MainWindow::AddMenuEntry(QMenu* menu, const QString& key, const QString& caption) {
    QAction* action = menu->addAction(caption);
    action->setObjectName(key);
    menu_.Add(key, action);
    return action;
}

void MainWindow::BuildMenu() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    menu_.Add(QStringLiteral("mnuFile"), file->menuAction());
    QMenu* print = file->addMenu(QStringLiteral("Print"));
    menu_.Add(QStringLiteral("mnuPrint"), print->menuAction());
    connect(AddMenuEntry(print, "mnuPrintEx4", "Exercises &4/page"), &QAction::triggered, this,
            Guarded([this] {
                PrintExercises(kJobExercises4, QStringLiteral("Printing 4 Exercises Per Page"));
            }));
    connect(AddMenuEntry(print, "mnuPrintEx2", "Exercises &2/page"), &QAction::triggered, this,
            Guarded([this] {
                PrintExercises(kJobExercises2, QStringLiteral("Printing 2 Exercises Per Page"));
            }));
    connect(AddMenuEntry(print, "mnuPrintPatientRecord", "Patient &Record"), &QAction::triggered,
            this, Guarded([this] { PrintJob(kJobPatientRecord); }));
    connect(AddMenuEntry(print, "mnuPrintVideo", "&Video Order"), &QAction::triggered, this,
            Guarded([this] { PrintJob(kJobVideoOrder); }));
    connect(AddMenuEntry(print, "mnuPrintCover", "&Cover Page"), &QAction::triggered, this,
            Guarded([this] { PrintCoverDocument(); }));
    QMenu* preview = file->addMenu(QStringLiteral("Preview"));
    menu_.Add(QStringLiteral("mnuPreview"), preview->menuAction());
    struct PreviewEntry {
        const char* key;
        const char* caption;
        JobKind job;
    };
    const PreviewEntry previews[] = {
        {"mnuPreviewEx4", "Exercises &4/page", kJobExercises4},
        {"mnuPreviewEx2", "Exercises &2/page", kJobExercises2},
        {"mnuPreviewPatientRecord", "Patient &Record", kJobPatientRecord},
        {"mnuPreviewVideo", "&Video Order", kJobVideoOrder},
        {"mnuPreviewCover", "&Cover Page", kJobCoverSheet},
    };
    for (const PreviewEntry& entry : previews) {
        const JobKind job = entry.job;
        connect(AddMenuEntry(preview, entry.key, entry.caption), &QAction::triggered, this,
                Guarded([this, job] { OpenPreview(job); }));
    }
    file->addSeparator()->setObjectName(QStringLiteral("mnuSep0"));
    connect(AddMenuEntry(file, "mnuClinic", "&Clinic Info"), &QAction::triggered, this,
            Guarded([this] { OpenClinic(); }));
    AddMenuEntry(file, "mnuSetMedia", "&Media Location");
    AddMenuEntry(file, "mnuCopyPictures", "&Copy Pictures");
    connect(AddMenuEntry(file, "mnuPreferences", "&Preferences"), &QAction::triggered, this,
            Guarded([this] { OpenPreferences(); }));
    file->addSeparator()->setObjectName(QStringLiteral("mnuSep1"));
    connect(AddMenuEntry(file, "mnuExit", "E&xit"), &QAction::triggered, this, &QWidget::close);

    QMenu* database = menuBar()->addMenu(QStringLiteral("Database"));
    menu_.Add(QStringLiteral("mnuDatabase"), database->menuAction());
    AddMenuEntry(database, "mnuBackup", "&Backup");
    AddMenuEntry(database, "mnuCompress", "&Compress");
    AddMenuEntry(database, "mnuRebuild", "&Rebuild");
    AddMenuEntry(database, "mnuRestore", "&Restore");

    QMenu* tools = menuBar()->addMenu(QStringLiteral("&Tools"));
    menu_.Add(QStringLiteral("mnuTools"), tools->menuAction());
    AddMenuEntry(tools, "mnuEditPicklist", "Pick&list Editor");
    AddMenuEntry(tools, "mnuProtocolEditor", "&Protocol Editor");
    AddMenuEntry(tools, "mnuLibrary", "&Exercise Library");

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    menu_.Add(QStringLiteral("mnuHelp"), help->menuAction());
    AddMenuEntry(help, "mnuContents", "&Contents");
    AddMenuEntry(help, "mnuPrintManual", "&User Manual");
    AddMenuEntry(help, "mnuAbout", "&About");
}

void MainWindow::BuildStatusBar() {
    auto* status = new QLabel(this);
    status->setObjectName(QStringLiteral("status"));
    status->setMinimumWidth(300);
    auto* dirty = new QLabel(this);
    dirty->setObjectName(QStringLiteral("dirty"));
    dirty->setMinimumWidth(120);
    dirty->setFrameShape(QFrame::StyledPanel);
    statusBar()->setObjectName(QStringLiteral("StatusBar1"));
    statusBar()->addWidget(status, 1);
    statusBar()->addPermanentWidget(dirty);
    status_.AddPanel(status);
    status_.AddPanel(dirty);
}

bool MainWindow::Start() {
    started_ = RunStartup(state_, *shell_, store_, *this, prompter_);
    return started_;
}

void MainWindow::OnToolbar(const QString& key) {
    const QHash<QString, QString> later = {
        {"Exercises", "The selection workspace"},
        {"Print", "Printing"},
    };
    if (key == QLatin1String("Patient"))
        return OpenSelectPatient();
    if (key == QLatin1String("Programs"))
        return OpenProgramList();
    if (key == QLatin1String("Exercises") && workspace_) {
        PlaceDialog(workspace_);
        return workspace_->StartProgramVisit();
    }
    if (key == QLatin1String("Video")) {
        auto* dialog = new ItemsDialog(state_, *shell_, *programs_, this);
        PlaceDialog(dialog);
        return dialog->show();
    }
    if (key == QLatin1String("Preview"))
        return OpenPreview(kJobExercises4);
    if (key == QLatin1String("Print")) {
        // The toolbar prints straight to the current printer; the menu shows the dialog.
        state_.SkipPrintDialog = true;
        return PrintExercises(kJobExercises4, QStringLiteral("Printing 4 Exercises Per Page"));
    }
    if (key == QLatin1String("Help"))
        return RunCommand(QStringLiteral("mnuContents"));
    NotYetAvailable(later.value(key));
}

void MainWindow::NotYetAvailable(const QString& what) {
    prompter_.MsgBox(QStringLiteral("%1 is not available in this release.").arg(what),
                     msg::Information, Shell::kTitle);
}

void MainWindow::OpenPreferences() {
    auto* dialog = new PreferencesDialog(state_, this);
    dialog->StatusNote = [this](const QString& note) { shell_->SetStatusBar(note); };
    PlaceDialog(dialog);
    dialog->show();
}

void MainWindow::OpenClinic() {
    auto* dialog = new ClinicDialog(state_, *shell_, this);
    PlaceDialog(dialog);
    dialog->show();
}

void MainWindow::OpenSelectPatient() {
    auto* dialog = new SelectPatientDialog(
        state_, *shell_, prompter_, [this] { OpenEditPatient(); }, this);
    PlaceDialog(dialog);
    dialog->show();
}

void MainWindow::OpenEditPatient() {
    auto* dialog = new EditPatientDialog(state_, *shell_, this);
    PlaceDialog(dialog);
    dialog->show();
}

void MainWindow::OpenProgramList() {
    auto* dialog = new ProgramListDialog(state_, *shell_, prompter_, *programs_, this);
    PlaceDialog(dialog);
    dialog->show();
}

bool MainWindow::RunJobOn(PageSurface& surface, JobKind job) {
    state_.Print.PrintJobKind = job;
    return RunPrintJob(
        state_, surface, [this] { return shell_->MaybeShowPrintDlg(); }, PrintVideoOrderForm);
}

void MainWindow::PrintExercises(JobKind job, const QString& statusText) {
    shell_->SetStatusBar(statusText);
    bool printed = false;
    {
        const BusyCursor busy;
        PrinterSurface surface(printer_);
        // The cover sheet comes first when it is wanted and leaves the document open. The
        // sheets follow whatever became of it: a cancelled or failed cover stops the cover
        // only, and its printer dialog holds for the sheets as well.
        if (state_.Prefs.PrintPatientCover)
            RunJobOn(surface, kJobCoverSheet);
        printed = RunJobOn(surface, job);
    }
    shell_->SetStatusBarReady();
    if (!printed)
        NoteUnprinted();
}

void MainWindow::OpenPreview(JobKind job) {
    state_.Print.PrintJobKind = job;
    PrintPreviewDialog dialog(
        state_, printer_, [this] { return shell_->MaybeShowPrintDlg(); }, this);
    dialog.exec();
}

void MainWindow::PrintJob(JobKind job) {
    bool printed = false;
    {
        const BusyCursor busy;
        PrinterSurface surface(printer_);
        printed = RunJobOn(surface, job);
    }
    if (!printed)
        NoteUnprinted();
}

void MainWindow::NoteUnprinted() {
    // Printing fails without a message box; the status line says what became of it. A
    // printer dialog that was cancelled needs no word.
    if (QPrinterInfo::availablePrinters().isEmpty())
        shell_->SetStatusBar(
            QStringLiteral("Nothing was printed: no printer is set up on this computer."));
    else if (printer_.printerState() == QPrinter::Error)
        shell_->SetStatusBar(QStringLiteral("Nothing was printed: the printer %1 did not take "
                                            "the job.")
                                 .arg(printer_.printerName()));
}

void MainWindow::PrintCoverDocument() {
    // The patient instructions are a word-processor document, printed by LibreOffice
    // when it is installed; any failure is ignored without a word.
    const QString document = AppPathAndFName(state_, QStringLiteral("Patient Instructions.Doc"));
    const QString office = QStandardPaths::findExecutable(QStringLiteral("soffice"));
    if (!QFileInfo::exists(document))
        shell_->SetStatusBar(QStringLiteral("The patient instructions were not printed: %1 is "
                                            "missing.")
                                 .arg(QDir::toNativeSeparators(document)));
    else if (office.isEmpty())
        shell_->SetStatusBar(QStringLiteral("The patient instructions were not printed: "
                                            "LibreOffice is not installed."));
    else if (!QProcess::startDetached(
                 office, {QStringLiteral("--headless"), QStringLiteral("-p"), document}))
        shell_->SetStatusBar(QStringLiteral("The patient instructions were not printed: "
                                            "LibreOffice could not be started."));
}

void MainWindow::PlaceDialog(QWidget* dialog) const {
    if (!dialog->testAttribute(Qt::WA_Resized))
        dialog->adjustSize();
    const QPoint offset = CenterForm(dialog->frameGeometry().size(), true, mdi_->width(), QSize());
    dialog->move(mdi_->mapToGlobal(offset));
}

void MainWindow::SetMenuCommand(const QString& key, const std::function<void()>& command) {
    commands_.insert(key, command);
    connect(menu_.Action(key), &QAction::triggered, this, Guarded(command));
}

void MainWindow::RunCommand(const QString& key) {
    const std::function<void()> command = commands_.value(key);
    if (command)
        RunGuarded(command);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (started_ && !unloaded_) {
        unloaded_ = true;
        RunUnload(state_, store_, *programs_);
    }
    event->accept();
}

bool MainWindow::AnotherInstanceRunning() {
    const InstanceClaim claim = lock_.Claim();
    if (claim == InstanceClaim::Claimed)
        return false;
    if (claim == InstanceClaim::HeldHere)
        return true;
    // A lock of another computer or a folder that takes no lock: the start ends with a box
    // that says which folder and what to do.
    throw Fault(lock_.ProblemText(claim));
}

void MainWindow::ShowSplash() {
    if (!showSplash_)
        return;
    SplashDialog splash;
    const QSize screen = splash.screen() ? splash.screen()->availableSize() : QSize(1024, 768);
    splash.adjustSize();
    splash.move(CenterForm(splash.size(), false, 0, screen));
    splash.exec();
}

void MainWindow::ShowMainWindow() {
    // Moved before it is shown, a window places its frame, not only its inside, there.
    move(1, 1);
    show();
}

void MainWindow::LoadSelectionWorkspace() {
    workspace_ = new WorkspaceWindow(state_, *shell_, prompter_, *programs_, this);
    workspace_->LoadOnce();
    workspace_->show();
    workspace_->hide();
}

void MainWindow::ReopenDatabasesAndReloadWorkspace() {
    CloseDatabases(state_);
    OpenDatabases(state_);
    ReloadWorkspace();
}

void MainWindow::ReloadWorkspace() {
    // The workspace goes and is made again from the library as it now is.
    delete workspace_;
    workspace_ = nullptr;
    LoadSelectionWorkspace();
    QCoreApplication::processEvents();
}

void MainWindow::ShowTip() {
    TipDialog tip(state_, this);
    tip.StatusNote = [this](const QString& note) { shell_->SetStatusBar(note); };
    PlaceDialog(&tip);
    tip.exec();
}

void MainWindow::ShowCheckMedia() {
    RunCommand(QStringLiteral("mnuCopyPictures"));
}

bool MainWindow::Show() {
    QPrintDialog dialog(&printer_, this);
    // Every job prints whole: the dialog offers no choice of pages and no selection.
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, false);
    dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace tarvex
