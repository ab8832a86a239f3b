#include "ui/bench/PictureBenchWindow.h"

#include "picturebench/BenchService.h"
#include "picturebench/PictureDocument.h"
#include "ui/bench/BenchGuard.h"
#include "ui/bench/ElidedLabel.h"
#include "ui/bench/PictureCanvas.h"
#include "ui/bench/ToolIcons.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>
#include <QUndoStack>
#include <array>
#include <cmath>
#include <utility>

namespace tarvex {

namespace {

// How long a message of the status line stays, in milliseconds.
constexpr int kMessageMs = 10000;

struct ColourChoice {
    const char* name;
    QRgb rgb;
};
constexpr std::array<ColourChoice, 4> kColours = {
    {{"Black", 0xff000000}, {"Red", 0xffd01c1c}, {"Blue", 0xff1f4fd6}, {"Green", 0xff178a2c}}};

QString PlainText(QString text) {
    text.remove(QLatin1Char('&'));
    if (text.endsWith(QStringLiteral("...")))
        text.chop(3);
    if (text.endsWith(QChar(0x2026)))
        text.chop(1);
    return text;
}

// The tool tip of an action: its name and, when it has one, its shortcut.
void SetTip(QAction* action, const QString& name) {
    const QKeySequence shortcut = action->shortcut();
    action->setToolTip(shortcut.isEmpty() ? name
                                          : QStringLiteral("%1 (%2)").arg(
                                                name, shortcut.toString(QKeySequence::NativeText)));
}

QString FileName(const QString& path) {
    return QFileInfo(path).fileName();
}

} // namespace

PictureBenchWindow::PictureBenchWindow(PictureDocument& document, BenchService& service,
                                       QWidget* parent)
    : QMainWindow(parent), document_(document), service_(service),
      canvas_(new PictureCanvas(this)) {
    setObjectName(QStringLiteral("pictureBenchWindow"));
    setWindowIcon(MakeToolIcon(ToolIcon::Crop));
    setCentralWidget(canvas_);
    CreateActions();
    CreateMarkChoices();
    CreateMenus();
    CreateToolBar();
    CreateStatusLine();
    ConnectModel();
    canvas_->SetImage(document_.Image());
    canvas_->SetMarkStyle(markColour_, 0);
    canvas_->setFocus();
    UpdateTitle();
    UpdateStatus();
    UpdateCommands();
    FitToScreen();
}

QAction* PictureBenchWindow::Action(Command command) const {
    const auto found = actions_.find(command);
    return found == actions_.end() ? nullptr : found->second;
}

QList<QAction*> PictureBenchWindow::AllActions() const {
    QList<QAction*> all;
    for (const auto& [command, action] : actions_)
        all.append(action);
    all.append(colours_->actions());
    all.append(widths_->actions());
    return all;
}

QAction* PictureBenchWindow::AddAction(Command command, const QString& text, const QIcon& icon,
                                       const QList<QKeySequence>& shortcuts, const QString& tip,
                                       const std::function<void()>& run) {
    auto* action = new QAction(icon, text, this);
    action->setShortcuts(shortcuts);
    SetTip(action, PlainText(text));
    action->setStatusTip(tip);
    if (run)
        connect(action, &QAction::triggered, this, BenchSlot(this, run));
    actions_[command] = action;
    addAction(action); // its shortcut works wherever the focus is in the window
    return action;
}

void PictureBenchWindow::CreateActions() {
    QStyle* look = style();
    using C = Command;
    AddAction(C::Open, QStringLiteral("&Open..."), look->standardIcon(QStyle::SP_DialogOpenButton),
              {QKeySequence::Open}, QStringLiteral("Opens a picture file to edit"),
              [this] { OpenPicture(); });
    AddAction(C::Save, QStringLiteral("&Save"), look->standardIcon(QStyle::SP_DialogSaveButton),
              {QKeySequence::Save}, QStringLiteral("Saves the picture for the exercise"),
              [this] { Save(); });
    AddAction(C::SaveAs, QStringLiteral("Save &As..."),
              MakeSaveAsIcon(look->standardIcon(QStyle::SP_DialogSaveButton)),
              {QKeySequence(QStringLiteral("Ctrl+Shift+S"))},
              QStringLiteral("Saves the picture in a file you choose"), [this] { SaveAs(); });
    AddAction(C::Quit, QStringLiteral("&Quit"), look->standardIcon(QStyle::SP_DialogCloseButton),
              {QKeySequence(QStringLiteral("Ctrl+Q"))}, QStringLiteral("Closes Picture Bench"),
              [this] { close(); });

    // Undo and redo are the undo stack's own: their text names the step.
    QUndoStack* steps = document_.UndoStack();
    QAction* undo = steps->createUndoAction(this, QStringLiteral("&Undo"));
    undo->setIcon(MakeToolIcon(ToolIcon::Undo));
    undo->setShortcuts(QKeySequence::Undo);
    undo->setStatusTip(QStringLiteral("Takes back the last change"));
    QAction* redo = steps->createRedoAction(this, QStringLiteral("&Redo"));
    redo->setIcon(MakeToolIcon(ToolIcon::Redo));
    redo->setShortcuts(
        {QKeySequence(QStringLiteral("Ctrl+Shift+Z")), QKeySequence(QStringLiteral("Ctrl+Y"))});
    redo->setStatusTip(QStringLiteral("Does again the change last taken back"));
    actions_[C::Undo] = undo;
    actions_[C::Redo] = redo;
    addAction(undo);
    addAction(redo);
    const auto tipSteps = [undo, redo, steps] {
        SetTip(undo, steps->canUndo() ? PlainText(undo->text()) : QStringLiteral("Undo"));
        SetTip(redo, steps->canRedo() ? PlainText(redo->text()) : QStringLiteral("Redo"));
    };
    connect(steps, &QUndoStack::undoTextChanged, this, tipSteps);
    connect(steps, &QUndoStack::redoTextChanged, this, tipSteps);
    tipSteps();

    AddAction(C::StopTool, QStringLiteral("&Stop Tool"), MakeToolIcon(ToolIcon::StopTool),
              {QKeySequence(Qt::Key_Escape)},
              QStringLiteral("Puts the tool away without changing the picture"),
              [this] { StopTool(); });
    AddAction(C::Crop, QStringLiteral("&Crop"), MakeToolIcon(ToolIcon::Crop),
              {QKeySequence(Qt::Key_C)},
              QStringLiteral("Shows a 4:3 box to crop to: drag it or its corners"), nullptr);
    AddAction(C::ApplyCrop, QStringLiteral("Crop to the &Box"), MakeToolIcon(ToolIcon::ApplyCrop),
              {QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)},
              QStringLiteral("Cuts the picture to the crop box"), [this] { ApplyCrop(); });
    AddAction(C::RotateLeft, QStringLiteral("Rotate &Left"), MakeToolIcon(ToolIcon::RotateLeft),
              {QKeySequence(QStringLiteral("Ctrl+L"))},
              QStringLiteral("Turns the picture a quarter turn counter-clockwise"),
              [this] { document_.Rotate90(false); });
    AddAction(C::RotateRight, QStringLiteral("Rotate &Right"), MakeToolIcon(ToolIcon::RotateRight),
              {QKeySequence(QStringLiteral("Ctrl+R"))},
              QStringLiteral("Turns the picture a quarter turn clockwise"),
              [this] { document_.Rotate90(true); });
    AddAction(C::FlipHorizontal, QStringLiteral("Flip &Horizontally"),
              MakeToolIcon(ToolIcon::FlipHorizontal),
              {QKeySequence(QStringLiteral("Ctrl+Shift+H"))},
              QStringLiteral("Swaps the left and the right of the picture"),
              [this] { document_.Flip(Qt::Horizontal); });
    AddAction(C::FlipVertical, QStringLiteral("Flip &Vertically"),
              MakeToolIcon(ToolIcon::FlipVertical), {QKeySequence(QStringLiteral("Ctrl+Shift+V"))},
              QStringLiteral("Swaps the top and the bottom of the picture"),
              [this] { document_.Flip(Qt::Vertical); });
    AddAction(C::Straighten, QStringLiteral("S&traighten..."), MakeToolIcon(ToolIcon::Straighten),
              {QKeySequence(QStringLiteral("Ctrl+T"))},
              QStringLiteral("Turns the picture by a few degrees to stand it upright"),
              [this] { StraightenPicture(); });
    AddAction(C::BrightnessContrast, QStringLiteral("&Brightness and Contrast..."),
              MakeToolIcon(ToolIcon::BrightnessContrast), {QKeySequence(QStringLiteral("Ctrl+B"))},
              QStringLiteral("Makes the picture lighter or darker, and its contrast stronger"),
              [this] { AdjustBrightnessContrast(); });
    AddAction(C::Greyscale, QStringLiteral("&Greyscale"), MakeToolIcon(ToolIcon::Greyscale),
              {QKeySequence(QStringLiteral("Ctrl+G"))},
              QStringLiteral("Makes the picture shades of grey, as it prints"),
              [this] { document_.Greyscale(); });
    AddAction(C::DrawingLook, QStringLiteral("&Drawing Look..."),
              MakeToolIcon(ToolIcon::DrawingLook), {QKeySequence(QStringLiteral("Ctrl+D"))},
              QStringLiteral("Makes a photo look like a line drawing"),
              [this] { ApplyDrawingLook(); });
    AddAction(C::Arrow, QStringLiteral("&Arrow"), MakeToolIcon(ToolIcon::Arrow),
              {QKeySequence(Qt::Key_A)},
              QStringLiteral("Draws an arrow: drag from its tail to its head"), nullptr);
    AddAction(C::Line, QStringLiteral("&Line"), MakeToolIcon(ToolIcon::Line),
              {QKeySequence(Qt::Key_L)}, QStringLiteral("Draws a straight line: drag it"), nullptr);
    AddAction(C::Text, QStringLiteral("&Text"), MakeToolIcon(ToolIcon::Text),
              {QKeySequence(Qt::Key_T)},
              QStringLiteral("Writes a short label: click where it goes"), nullptr);
    tools_ = new QActionGroup(this);
    tools_->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    for (const Command tool : {C::Crop, C::Arrow, C::Line, C::Text}) {
        QAction* action = Action(tool);
        action->setCheckable(true);
        tools_->addAction(action);
    }
    connect(tools_, &QActionGroup::triggered, this,
            [this](QAction* tool) { RunInBench(this, [this, tool] { ChooseTool(tool); }); });

    AddAction(C::ZoomIn, QStringLiteral("Zoom &In"), MakeToolIcon(ToolIcon::ZoomIn),
              {QKeySequence::ZoomIn, QKeySequence(QStringLiteral("Ctrl+="))},
              QStringLiteral("Shows the picture larger"), [this] { canvas_->ZoomIn(); });
    AddAction(C::ZoomOut, QStringLiteral("Zoom &Out"), MakeToolIcon(ToolIcon::ZoomOut),
              {QKeySequence::ZoomOut}, QStringLiteral("Shows the picture smaller"),
              [this] { canvas_->ZoomOut(); });
    AddAction(C::ZoomFit, QStringLiteral("&Fit to Window"), MakeToolIcon(ToolIcon::ZoomFit),
              {QKeySequence(QStringLiteral("Ctrl+0"))},
              QStringLiteral("Shows the whole picture as large as the window allows"),
              [this] { canvas_->ZoomToFit(); });
    AddAction(C::ZoomActual, QStringLiteral("&Actual Size"), MakeToolIcon(ToolIcon::ZoomActual),
              {QKeySequence(QStringLiteral("Ctrl+1"))},
              QStringLiteral("Shows one pixel of the picture on each pixel of the screen"),
              [this] { canvas_->ZoomActual(); });
    AddAction(C::HowToUse, QStringLiteral("&How to Use Picture Bench"),
              look->standardIcon(QStyle::SP_DialogHelpButton), {QKeySequence::HelpContents},
              QStringLiteral("A short guide to the bench"), [this] { ShowHowToUse(); });
    AddAction(C::About, QStringLiteral("&About Picture Bench"),
              look->standardIcon(QStyle::SP_MessageBoxInformation), {},
              QStringLiteral("What Picture Bench is"), [this] { ShowAbout(); });
}

void PictureBenchWindow::CreateMarkChoices() {
    colours_ = new QActionGroup(this);
    for (const ColourChoice& choice : kColours) {
        const QString name = QString::fromLatin1(choice.name);
        auto* action = new QAction(MakeColourIcon(QColor::fromRgb(choice.rgb)), name, colours_);
        action->setCheckable(true);
        action->setData(QColor::fromRgb(choice.rgb));
        action->setToolTip(QStringLiteral("Draw in %1").arg(name.toLower()));
        action->setChecked(QColor::fromRgb(choice.rgb) == markColour_);
    }
    connect(colours_, &QActionGroup::triggered, this,
            [this](QAction* choice) { SetMarkColour(choice->data().value<QColor>()); });

    widths_ = new QActionGroup(this);
    const std::array<std::pair<MarkWeight, QString>, 3> weights = {
        {{MarkWeight::Thin, QStringLiteral("Thin")},
         {MarkWeight::Medium, QStringLiteral("Medium")},
         {MarkWeight::Thick, QStringLiteral("Thick")}}};
    for (const auto& [weight, name] : weights) {
        auto* action = new QAction(MakeWidthIcon(static_cast<int>(weight) + 1), name, widths_);
        action->setCheckable(true);
        action->setData(static_cast<int>(weight));
        action->setToolTip(QStringLiteral("Draw %1 lines").arg(name.toLower()));
        action->setChecked(weight == markWeight_);
    }
    connect(widths_, &QActionGroup::triggered, this, [this](QAction* choice) {
        SetMarkWidth(static_cast<MarkWeight>(choice->data().toInt()));
    });

    // The toolbar's buttons for the two choices show what is chosen and open its list.
    AddAction(Command::MarkColour, QStringLiteral("&Colour"), MakeColourIcon(markColour_), {},
              QStringLiteral("The colour arrows, lines and texts are drawn in"), nullptr);
    AddAction(Command::MarkWidth, QStringLiteral("Line &Width"), MakeWidthIcon(2), {},
              QStringLiteral("How thick arrows and lines are drawn"), nullptr);
    SetTip(Action(Command::MarkColour), QStringLiteral("Colour of the marks: Black"));
    SetTip(Action(Command::MarkWidth), QStringLiteral("Width of the lines: Medium"));
}

void PictureBenchWindow::SetMarkColour(const QColor& colour) {
    markColour_ = colour;
    QString name = colour.name();
    for (QAction* choice : colours_->actions()) {
        const bool chosen = choice->data().value<QColor>() == colour;
        choice->setChecked(chosen);
        if (chosen)
            name = choice->text();
    }
    QAction* button = Action(Command::MarkColour);
    button->setIcon(MakeColourIcon(colour));
    SetTip(button, QStringLiteral("Colour of the marks: %1").arg(name));
    canvas_->SetMarkStyle(markColour_, 0);
}

void PictureBenchWindow::SetMarkWidth(MarkWeight weight) {
    markWeight_ = weight;
    QString name;
    for (QAction* choice : widths_->actions()) {
        const bool chosen = choice->data().toInt() == static_cast<int>(weight);
        choice->setChecked(chosen);
        if (chosen)
            name = choice->text();
    }
    QAction* button = Action(Command::MarkWidth);
    button->setIcon(MakeWidthIcon(static_cast<int>(weight) + 1));
    SetTip(button, QStringLiteral("Width of the lines: %1").arg(name));
}

void PictureBenchWindow::CreateMenus() {
    using C = Command;
    const auto add = [this](QMenu* menu, std::initializer_list<Command> commands) {
        for (const Command command : commands)
            menu->addAction(Action(command));
    };
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    add(file, {C::Open, C::Save, C::SaveAs});
    file->addSeparator();
    add(file, {C::Quit});
    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    add(edit, {C::Undo, C::Redo});
    edit->addSeparator();
    add(edit, {C::StopTool});
    QMenu* picture = menuBar()->addMenu(QStringLiteral("&Picture"));
    add(picture, {C::Crop, C::ApplyCrop});
    picture->addSeparator();
    add(picture,
        {C::RotateLeft, C::RotateRight, C::FlipHorizontal, C::FlipVertical, C::Straighten});
    picture->addSeparator();
    add(picture, {C::BrightnessContrast, C::Greyscale, C::DrawingLook});
    QMenu* draw = menuBar()->addMenu(QStringLiteral("&Draw"));
    add(draw, {C::Arrow, C::Line, C::Text});
    draw->addSeparator();
    QMenu* colours = draw->addMenu(Action(C::MarkColour)->icon(), QStringLiteral("&Colour"));
    colours->addActions(colours_->actions());
    QMenu* widths = draw->addMenu(MakeWidthIcon(2), QStringLiteral("Line &Width"));
    widths->addActions(widths_->actions());
    Action(C::MarkColour)->setMenu(colours);
    Action(C::MarkWidth)->setMenu(widths);
    QMenu* view = menuBar()->addMenu(QStringLiteral("&View"));
    add(view, {C::ZoomIn, C::ZoomOut, C::ZoomFit, C::ZoomActual});
    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    add(help, {C::HowToUse});
    help->addSeparator();
    add(help, {C::About});
}

void PictureBenchWindow::CreateToolBar() {
    using C = Command;
    auto* bar = addToolBar(QStringLiteral("Tools"));
    bar->setObjectName(QStringLiteral("toolBar"));
    bar->setMovable(false);
    bar->setIconSize(QSize(24, 24));
    bar->toggleViewAction()->setEnabled(false);
    const std::initializer_list<std::initializer_list<Command>> groups = {
        {C::Open, C::Save},
        {C::Undo, C::Redo},
        {C::Crop, C::ApplyCrop},
        {C::RotateLeft, C::RotateRight, C::FlipHorizontal, C::FlipVertical, C::Straighten},
        {C::BrightnessContrast, C::Greyscale, C::DrawingLook},
        {C::Arrow, C::Line, C::Text, C::MarkColour, C::MarkWidth},
        {C::ZoomOut, C::ZoomFit, C::ZoomActual, C::ZoomIn}};
    bool first = true;
    for (const auto& group : groups) {
        if (!first)
            bar->addSeparator();
        first = false;
        for (const Command command : group)
            bar->addAction(Action(command));
    }
    for (const Command chooser : {C::MarkColour, C::MarkWidth})
        if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(Action(chooser))))
            button->setPopupMode(QToolButton::InstantPopup);
}

void PictureBenchWindow::CreateStatusLine() {
    QStatusBar* line = statusBar();
    files_ = new ElidedLabel(this);
    files_->setObjectName(QStringLiteral("filesStatus"));
    line->addWidget(files_, 1);
    const auto part = [this, line](const QString& name, const QString& widest) {
        auto* label = new QLabel(this);
        label->setObjectName(name);
        label->setAlignment(Qt::AlignCenter);
        label->setMinimumWidth(label->fontMetrics().horizontalAdvance(widest) + 12);
        line->addPermanentWidget(label);
        return label;
    };
    pointer_ = part(QStringLiteral("pointerStatus"), QStringLiteral("x 8888, y 8888"));
    size_ = part(QStringLiteral("sizeStatus"), QStringLiteral("8888 \u00d7 8888 pixels"));
    zoom_ = part(QStringLiteral("zoomStatus"), QStringLiteral("Zoom 888% (fit)"));
    link_ = new ElidedLabel(this);
    link_->setObjectName(QStringLiteral("linkStatus"));
    link_->SetMaximumTextWidth(300);
    line->addPermanentWidget(link_);
}

void PictureBenchWindow::ConnectModel() {
    connect(&document_, &PictureDocument::ImageChanged, this, [this] {
        canvas_->SetImage(document_.Image());
        UpdateTitle();
        UpdateStatus();
    });
    QUndoStack* steps = document_.UndoStack();
    connect(steps, &QUndoStack::cleanChanged, this, &PictureBenchWindow::UpdateTitle);
    connect(steps, &QUndoStack::indexChanged, this, &PictureBenchWindow::UpdateTitle);
    connect(&service_, &BenchService::SourceOpened, this,
            [this](const QString& source, const QString& error) {
                RunInBench(this, [&] { OnSourceOpened(source, error); });
            });
    connect(&service_, &BenchService::TargetChanged, this, &PictureBenchWindow::UpdateStatus);
    connect(&service_, &BenchService::Saved, this, &PictureBenchWindow::OnSaved);
    connect(&service_.Server(), &LinkServer::ConnectionsChanged, this,
            &PictureBenchWindow::UpdateStatus);

    connect(canvas_, &PictureCanvas::PointerMoved, this, [this](QPoint pixel, bool onPicture) {
        pointer_->setText(onPicture ? QStringLiteral("x %1, y %2").arg(pixel.x()).arg(pixel.y())
                                    : QString());
    });
    connect(canvas_, &PictureCanvas::ZoomChanged, this, &PictureBenchWindow::UpdateStatus);
    connect(canvas_, &PictureCanvas::CropAccepted, this, BenchSlot(this, [this] { ApplyCrop(); }));
    connect(canvas_, &PictureCanvas::LineDrawn, this,
            [this](QPointF from, QPointF to) { RunInBench(this, [&] { DrawLine(from, to); }); });
    connect(canvas_, &PictureCanvas::TextRequested, this,
            [this](QPointF at) { RunInBench(this, [&] { AddText(at); }); });
}

void PictureBenchWindow::FitToScreen() {
    setMinimumSize(480, 360);
    QSize size(kDefaultWidth, kDefaultHeight);
    if (const QScreen* screen = this->screen()) {
        // Room for the frame and the title bar the window manager adds.
        const QSize room = screen->availableGeometry().size() - QSize(16, 48);
        size = size.boundedTo(room).expandedTo(minimumSize());
    }
    resize(size);
}

void PictureBenchWindow::UpdateTitle() {
    const QString source = document_.SourcePath();
    setWindowTitle(QStringLiteral("Picture Bench - %1%2")
                       .arg(source.isEmpty() ? QStringLiteral("New picture") : FileName(source),
                            document_.IsModified() ? QStringLiteral("*") : QString()));
}

void PictureBenchWindow::UpdateStatus() {
    const QImage& image = document_.Image();
    size_->setText(QStringLiteral("%1 \u00d7 %2 pixels").arg(image.width()).arg(image.height()));
    const int percent = static_cast<int>(std::lround(canvas_->Zoom() * 100));
    zoom_->setText(canvas_->IsFitting() ? QStringLiteral("Zoom %1% (fit)").arg(percent)
                                        : QStringLiteral("Zoom %1%").arg(percent));
    if (service_.Linked())
        link_->SetText(QStringLiteral("Linked to the exercise editor"));
    else if (!service_.LinkError().isEmpty())
        link_->SetText(service_.LinkError());
    else
        link_->SetText(QStringLiteral("Working on its own"));
    const QString source = document_.SourcePath().isEmpty()
                               ? QStringLiteral("a new picture")
                               : QDir::toNativeSeparators(document_.SourcePath());
    const QString target = service_.Target().isEmpty()
                               ? QStringLiteral("no file yet (Save As chooses one)")
                               : QDir::toNativeSeparators(service_.Target());
    files_->SetText(QStringLiteral("From: %1    Saves to: %2").arg(source, target));
}

void PictureBenchWindow::UpdateCommands() {
    const bool cropping = canvas_->CurrentTool() == PictureCanvas::Tool::Crop;
    Action(Command::ApplyCrop)->setEnabled(cropping);
    Action(Command::StopTool)->setEnabled(canvas_->CurrentTool() != PictureCanvas::Tool::None);
}

void PictureBenchWindow::ShowMessage(const QString& message) {
    statusBar()->showMessage(message, kMessageMs);
}

QString PictureBenchWindow::StatusMessage() const {
    return statusBar()->currentMessage();
}

QString PictureBenchWindow::PointerText() const {
    return pointer_->text();
}

QString PictureBenchWindow::SizeText() const {
    return size_->text();
}

QString PictureBenchWindow::ZoomText() const {
    return zoom_->text();
}

QString PictureBenchWindow::LinkText() const {
    return link_->Text();
}

QString PictureBenchWindow::FilesText() const {
    return files_->Text();
}

} // namespace tarvex
