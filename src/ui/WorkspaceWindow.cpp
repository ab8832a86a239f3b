#include "ui/WorkspaceWindow.h"

#include "ui/Guarded.h"

#include "picklist/PicklistStore.h"
#include "program/ProgramStore.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Fault.h"
#include "support/Progress.h"
#include "ui/ChoicePaneWidget.h"
#include "ui/ExerciseParamsDialog.h"
#include "ui/ProgressWindow.h"
#include "ui/ProtocolWindows.h"
#include "ui/ScreenFit.h"
#include "ui/SlotPaneWidget.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

namespace tarvex {

namespace {

QPushButton* CommandButton(const QString& caption, const QString& name, QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

} // namespace

WorkspaceWindow::WorkspaceWindow(AppState& state, Shell& shell, Prompter& prompter,
                                 ProgramStore& programs, QWidget* parent)
    : QWidget(parent, Qt::Window), state_(state), shell_(shell), prompter_(prompter),
      choices_(new ChoicePaneWidget(this)), slots_(new SlotPaneWidget(this)),
      cboProvider_(new QComboBox(this)), cboUsage_(new QComboBox(this)), provider_(cboProvider_),
      usage_(cboUsage_) {
    setObjectName(QStringLiteral("frmExerciseSelection"));
    setWindowTitle(QStringLiteral("Select Exercises"));
    cboProvider_->setObjectName(QStringLiteral("cboProvider"));
    cboProvider_->setEditable(true);
    // Typed text names the program's clinician; it is not added to the picklist.
    cboProvider_->setInsertPolicy(QComboBox::NoInsert);
    cboProvider_->setProperty("tag", QStringLiteral("Provider"));
    cboUsage_->setObjectName(QStringLiteral("cboUsage"));
    cboUsage_->setEditable(true);
    cboUsage_->setInsertPolicy(QComboBox::NoInsert);
    cboUsage_->setProperty("tag", QStringLiteral("Usage"));
    BuildLayout();
    KeepOnScreenWhenShown(this);

    SelectionWorkspace::Services services;
    services.InitListBoxes = [this] { filter_->InitListBoxes(); };
    services.LoadComboBox = [this](IComboBox& box) { tarvex::LoadComboBox(state_, box); };
    services.AddNewProtocol = [this] {
        if (OnAddNewProtocol)
            OnAddNewProtocol();
    };
    services.SaveEditedProtocol = [this] {
        if (OnSaveEditedProtocol)
            OnSaveEditedProtocol();
    };
    IWorkspaceView& view = *this;
    logic_ = std::make_unique<SelectionWorkspace>(state, shell, prompter, programs, view, *choices_,
                                                  provider_, usage_, services);
    std::array<IListBox*, 3> lists{};
    for (size_t i = 0; i < 3; ++i)
        lists[i] = viewListAdapters_[i].get();
    IFilterHost& host = *this;
    filter_ = std::make_unique<LibraryFilter>(state, lists, host);
    choices_->SetLogic(logic_.get());
    slots_->SetLogic(logic_.get());
    progressWindow_ = std::make_unique<QtProgressWindow>(this);
    progress_ = std::make_unique<ProgressLogic>(*progressWindow_);

    for (int i = 0; i < 3; ++i)
        connect(viewLists_[static_cast<size_t>(i)], &QListWidget::itemSelectionChanged, this,
                Guarded([this, i] { filter_->ViewListClick(i); }));
    connect(cboProvider_, &QComboBox::activated, this,
            Guarded([this] { logic_->cboProvider_Click(); }));
    connect(cboUsage_, &QComboBox::activated, this, Guarded([this] { logic_->cboUsage_Click(); }));
    connect(Button("cmdProtocol"), &QPushButton::clicked, this,
            Guarded([this] { logic_->cmdProtocol(); }));
    connect(Button("cmdClear"), &QPushButton::clicked, this,
            Guarded([this] { logic_->ClearSelectedExercises(); }));
    connect(showAllBtn_, &QPushButton::clicked, this,
            Guarded([this] { logic_->ShowChoicesPane(); }));
    connect(Button("cmdOK"), &QPushButton::clicked, this,
            Guarded([this] { logic_->cmdOKCancel(QStringLiteral("OK")); }));
    connect(Button("cmdCancel"), &QPushButton::clicked, this,
            Guarded([this] { logic_->cmdOKCancel(QStringLiteral("Cancel")); }));
    // Esc is the Cancel button, as in every window of the program.
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, Button("cmdCancel"), &QPushButton::click);
}

WorkspaceWindow::~WorkspaceWindow() = default;

QPushButton* WorkspaceWindow::Button(const QString& name) const {
    return findChild<QPushButton*>(name);
}

QWidget* WorkspaceWindow::BuildSidePanel() {
    auto* panel = new QWidget(this);
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);

    frame1_ = new QGroupBox(QStringLiteral("View"), panel);
    frame1_->setObjectName(QStringLiteral("Frame1"));
    auto* lists = new QVBoxLayout(frame1_);
    const char* tags[] = {"Joint", "Motion", "Type"};
    const char* labels[] = {"Joint:", "Pattern:", "Type:"};
    for (size_t i = 0; i < 3; ++i) {
        auto* label = new QLabel(QLatin1String(labels[i]), frame1_);
        label->setObjectName(QStringLiteral("ViewLabel%1").arg(i));
        auto* list = new QListWidget(frame1_);
        list->setObjectName(QStringLiteral("ViewList%1").arg(i));
        list->setProperty("tag", QLatin1String(tags[i]));
        list->setSelectionMode(QAbstractItemView::ExtendedSelection);
        list->setMinimumHeight(80);
        viewLists_[i] = list;
        viewListAdapters_[i] = std::make_unique<QtListBox>(list);
        viewListAdapters_[i]->SetSorted(i == 0); // the Joint list keeps itself sorted
        lists->addWidget(label);
        lists->addWidget(list, 1);
    }
    column->addWidget(frame1_, 1);

    auto* frame2 = new QGroupBox(QStringLiteral("Drag Mode"), panel);
    frame2->setObjectName(QStringLiteral("Frame2"));
    auto* modes = new QVBoxLayout(frame2);
    auto* insert = new QRadioButton(QStringLiteral("Insert (def)"), frame2);
    insert->setObjectName(QStringLiteral("DragModeOp0"));
    auto* replace = new QRadioButton(QStringLiteral("Replace"), frame2);
    replace->setObjectName(QStringLiteral("DragModeOp1"));
    insert->setChecked(true);
    connect(insert, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            state_.DragMode = 0;
    });
    connect(replace, &QRadioButton::toggled, this, [this](bool on) {
        if (on)
            state_.DragMode = 1;
    });
    modes->addWidget(insert);
    modes->addWidget(replace);
    column->addWidget(frame2);

    lblProvider_ = new QLabel(QStringLiteral("Provider"), panel);
    lblProvider_->setObjectName(QStringLiteral("lblProvider"));
    lblUsage_ = new QLabel(QStringLiteral("Usage"), panel);
    lblUsage_->setObjectName(QStringLiteral("lblUsage"));
    column->addWidget(lblProvider_);
    column->addWidget(cboProvider_);
    column->addWidget(lblUsage_);
    column->addWidget(cboUsage_);

    auto* commands = new QGridLayout;
    commands->addWidget(
        CommandButton(QStringLiteral("Protocol"), QStringLiteral("cmdProtocol"), panel), 0, 0);
    commands->addWidget(CommandButton(QStringLiteral("Clear"), QStringLiteral("cmdClear"), panel),
                        0, 1);
    showAllBtn_ = CommandButton(QStringLiteral("&Show All"), QStringLiteral("ShowAllBtn"), panel);
    commands->addWidget(showAllBtn_, 1, 0, 1, 2);
    QPushButton* ok = CommandButton(QStringLiteral("OK"), QStringLiteral("cmdOK"), panel);
    ok->setProperty("tag", QStringLiteral("OK"));
    QPushButton* cancel =
        CommandButton(QStringLiteral("Cancel"), QStringLiteral("cmdCancel"), panel);
    cancel->setProperty("tag", QStringLiteral("Cancel"));
    commands->addWidget(ok, 2, 0);
    commands->addWidget(cancel, 2, 1);
    column->addLayout(commands);
    panel->setFixedWidth(240);
    return panel;
}

void WorkspaceWindow::BuildLayout() {
    choicesLabel_ = new QLabel(QStringLiteral("Exercise Library"), this);
    choicesLabel_->setObjectName(QStringLiteral("ChoicesLabel"));
    selectedLabel_ = new QLabel(QStringLiteral("Patient's Exercise Program"), this);
    selectedLabel_->setObjectName(QStringLiteral("SelectedLabel"));
    for (QLabel* label : {choicesLabel_, selectedLabel_}) {
        QFont font = label->font();
        font.setBold(true);
        label->setFont(font);
    }
    auto* panes = new QVBoxLayout;
    panes->addWidget(choicesLabel_);
    panes->addWidget(choices_, 1); // the library takes what the window has to spare
    panes->addSpacing(6);
    panes->addWidget(selectedLabel_);
    panes->addWidget(slots_, 0, Qt::AlignLeft);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(BuildSidePanel());
    layout->addLayout(panes);
}

void WorkspaceWindow::LoadOnce() {
    if (loaded_)
        return;
    logic_->Load(*this);
    loaded_ = true;
}

void WorkspaceWindow::StartProgramVisit() {
    LoadOnce();
    const ToolbarMode toolbarBefore = shell_.ToolbarMode();
    const MenuMode menuBefore = shell_.MenuMode();
    state_.WorkspaceMode = WorkspacePurpose::Program;
    show();
    raise();
    const bool loaded = RunGuarded([this] {
        logic_->InitExerciseSelection(true);
        logic_->Activate();
    });
    if (!loaded) {
        // The program could not be loaded (it was deleted, say): the command ends with its
        // error box, and the window goes as if it had never opened.
        state_.WorkspaceMode = WorkspacePurpose::None;
        hide();
        shell_.UpdateToolbar(toolbarBefore);
        shell_.UpdateMenu(menuBefore);
        return;
    }
    shell_.UpdateMenu(MenuMode::PrintOnly);
    shell_.UpdateToolbar(ToolbarMode::PrintOnly);
}

bool WorkspaceWindow::event(QEvent* e) {
    if (e->type() == QEvent::WindowActivate && loaded_ && isVisible())
        RunGuarded([this] { logic_->Activate(); });
    return QWidget::event(e);
}

void WorkspaceWindow::closeEvent(QCloseEvent* e) {
    // Closing by the frame is Cancel: the window stays loaded and hides.
    e->ignore();
    RunGuarded([this] { logic_->cmdOKCancel(QStringLiteral("Cancel")); });
}

// --- IWorkspaceView

PictureLoad WorkspaceWindow::ShowSlot(int slot, const QString& iconPath, const QString& caption,
                                      bool blue) {
    return slots_->ShowSlot(slot, iconPath, caption, blue);
}
void WorkspaceWindow::ClearSlot(int slot) {
    slots_->ClearSlot(slot);
}
void WorkspaceWindow::SetSlotCaption(int slot, const QString& caption) {
    slots_->SetSlotCaption(slot, caption);
}
int WorkspaceWindow::Scroll2Value() const {
    return slots_->VScroll2()->value();
}
void WorkspaceWindow::SetScroll2Value(int value) {
    slots_->VScroll2()->setValue(value);
}
bool WorkspaceWindow::Scroll2Visible() const {
    return !slots_->VScroll2()->isHidden();
}
void WorkspaceWindow::MarkLibraryPicture(int index) {
    choices_->MarkPicture(index);
    slots_->MarkSlot(-1);
}
void WorkspaceWindow::MarkSlot(int slot) {
    slots_->MarkSlot(slot);
    choices_->HideSelectedRect();
}
void WorkspaceWindow::HideSlotMarker() {
    slots_->MarkSlot(-1);
}
void WorkspaceWindow::ShowProgramControls(bool visible) {
    for (QWidget* w : std::initializer_list<QWidget*>{lblProvider_, cboProvider_, lblUsage_,
                                                      cboUsage_, Button("cmdProtocol")})
        w->setVisible(visible);
}
void WorkspaceWindow::SetVisitCommandsEnabled(bool enabled) {
    frame1_->setVisible(enabled);
    choicesLabel_->setVisible(enabled);
    for (const char* name : {"cmdOK", "cmdCancel", "cmdProtocol", "cmdClear"})
        Button(QLatin1String(name))->setEnabled(enabled);
}
void WorkspaceWindow::ShowUpperPane(bool visible) {
    choices_->setVisible(visible);
    slots_->VScroll2()->setVisible(visible);
    if (!visible)
        slots_->SetSurfaceTop(-2);
}
void WorkspaceWindow::SetShowAllCaption(const QString& caption) {
    showAllBtn_->setText(caption);
}
void WorkspaceWindow::SetLowerPaneOffset(int offset) {
    slots_->SetViewportHeight(SelectionPanes::kLowerViewportHeight + offset);
}
void WorkspaceWindow::Repaint() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}
void WorkspaceWindow::OpenParams() {
    if (OnOpenParams)
        return OnOpenParams();
    IParamsTarget& target = *this;
    ExerciseParamsDialog dialog(state_, target, this);
    dialog.StatusNote = [this](const QString& note) { shell_.SetStatusBar(note); };
    dialog.exec();
}
void WorkspaceWindow::OpenProtocolSelection() {
    // The selection belongs to the main window: the workspace is hidden while it is open.
    auto* dialog = new ProtocolSelectionDialog(state_, prompter_, ProtocolHost(), parentWidget());
    protocolSelection_ = dialog;
    dialog->adjustSize();
    dialog->move(geometry().center() - dialog->rect().center());
    dialog->show();
}
void WorkspaceWindow::HideWindow() {
    hide();
    emit VisitEnded();
}
void WorkspaceWindow::SetBusy(bool busy) {
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        while (QApplication::overrideCursor())
            QApplication::restoreOverrideCursor();
}

// --- IFilterHost

void WorkspaceWindow::Yield() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}
void WorkspaceWindow::SizeSourcePane() {
    logic_->Panes().SizeSourcePane();
}
void WorkspaceWindow::LoadPictsInSight() {
    logic_->Panes().LoadPictsInSight();
}

// --- IProgressSink over the progress window

void WorkspaceWindow::Init(int maximum, const QString& title) {
    progress_->SetCaption(title);
    progress_->InitProgress(maximum);
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}
void WorkspaceWindow::Update(int value) {
    try {
        progress_->UpdateProgress(value);
    } catch (const Fault&) {
        // An error in the progress window is ignored.
    }
}
void WorkspaceWindow::Destroy() {
    progress_->DestroyProgress();
}

// --- IParamsTarget

void WorkspaceWindow::SetSelExFromTmp(int16_t slot) {
    logic_->SetSelExFromTmp(slot);
}
void WorkspaceWindow::ShowSlotCaption(int16_t slot, const QString& caption) {
    slots_->SetSlotCaption(slot, caption);
}

// --- IProtocolWorkspace

void WorkspaceWindow::ClearSelectedExercises() {
    logic_->ClearSelectedExercises();
}
void WorkspaceWindow::LoadSelectedExs() {
    logic_->LoadSelectedExs();
}
void WorkspaceWindow::OpenForProtocol(WorkspacePurpose mode) {
    LoadOnce();
    state_.WorkspaceMode = mode;
    ShowAgain();
    logic_->InitExerciseSelection(false);
    logic_->Activate();
}
void WorkspaceWindow::ShowAgain() {
    show();
    raise();
    activateWindow();
}

} // namespace tarvex
