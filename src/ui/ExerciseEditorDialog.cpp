#include "ui/ExerciseEditorDialog.h"

#include "shell/AppState.h"
#include "ui/Guarded.h"
#include "ui/LoadPictureDialog.h"
#include "ui/PatientDialogs.h"

#include <QButtonGroup>
#include <QEvent>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QVBoxLayout>

namespace tarvex {

namespace {

constexpr QSize kPictureSize(240, 180);

// A one-line box whose limit holds for typing; a longer text from the library is shown
// whole and can be shortened.
class LimitedLineText : public QtLineEdit {
public:
    LimitedLineText(QLineEdit* edit, int limit) : QtLineEdit(edit), edit_(edit), limit_(limit) {
        edit->setMaxLength(limit);
    }
    void SetText(const QString& text) override {
        edit_->setMaxLength(std::max(limit_, static_cast<int>(text.size())));
        QtLineEdit::SetText(text);
    }

private:
    QLineEdit* edit_;
    int limit_;
};

class LimitedMultiLineText : public ITextBox {
public:
    explicit LimitedMultiLineText(LimitedTextEdit* edit) : edit_(edit) {}
    QString Text() const override { return edit_->toPlainText(); }
    void SetText(const QString& text) override { edit_->SetTextFromProgram(text); }
    void SetEnabled(bool enabled) override { edit_->setEnabled(enabled); }
    bool IsEnabled() const override { return edit_->isEnabled(); }
    void SetCursorPosition(int position) override {
        QTextCursor cursor = edit_->textCursor();
        cursor.setPosition(position);
        edit_->setTextCursor(cursor);
    }

private:
    LimitedTextEdit* edit_;
};

// One of a group of option buttons: at most one is on, and all can be off.
class OptionButton : public ICheckBox {
public:
    OptionButton(QRadioButton* button, QButtonGroup* group) : button_(button), group_(group) {}
    int Value() const override { return button_->isChecked() ? 1 : 0; }
    void SetValue(int value) override {
        // An exclusive group keeps one button on; it lets go while one is turned off.
        group_->setExclusive(false);
        button_->setChecked(value != 0);
        group_->setExclusive(true);
    }

private:
    QRadioButton* button_;
    QButtonGroup* group_;
};

QLineEdit* NamedLine(const char* name, QWidget* parent) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(QLatin1String(name));
    return edit;
}

} // namespace

// --- the limited multi-line box

LimitedTextEdit::LimitedTextEdit(int maxLength, QWidget* parent)
    : QPlainTextEdit(parent), maxLength_(maxLength) {
    setTabChangesFocus(true);
    connect(document(), &QTextDocument::contentsChange, this,
            [this](int position, int, int added) { Trim(position, added); });
}

void LimitedTextEdit::SetTextFromProgram(const QString& text) {
    fromProgram_ = true;
    setPlainText(text);
    fromProgram_ = false;
}

void LimitedTextEdit::Trim(int position, int added) {
    const int excess = static_cast<int>(toPlainText().size()) - maxLength_;
    if (fromProgram_ || excess <= 0 || added <= 0)
        return;
    // What was typed or pasted beyond the limit is taken out again, at its own place.
    const int drop = std::min(excess, added);
    QTextCursor cursor(document());
    cursor.setPosition(position + added - drop);
    cursor.setPosition(position + added, QTextCursor::KeepAnchor);
    const QSignalBlocker quiet(document());
    cursor.removeSelectedText();
}

// --- the editor

ExerciseEditorDialog* ExerciseEditorDialog::Open(AppState& state, Prompter& prompter,
                                                 std::function<void()> refillList,
                                                 QWidget* parent) {
    auto* dialog = new ExerciseEditorDialog(state, prompter, std::move(refillList), parent);
    if (!RunGuarded([dialog] { dialog->logic_->Load(); })) {
        // A form that did not load never shows, and its closing refills nothing.
        dialog->refillList_ = nullptr;
        dialog->EnsureUnloaded();
        delete dialog;
        return nullptr;
    }
    // The exercise's first joint is in sight in its list.
    const QList<QListWidgetItem*> joints = dialog->lstJoint->selectedItems();
    if (!joints.isEmpty())
        dialog->lstJoint->scrollToItem(joints.first(), QAbstractItemView::PositionAtTop);
    dialog->adjustSize();
    if (const QScreen* screen = dialog->screen()) {
        const QRect area = screen->availableGeometry();
        dialog->move(area.center() - QPoint(dialog->width() / 2, dialog->height() / 2));
    }
    dialog->show();
    dialog->txtDescription->setFocus();
    return dialog;
}

ExerciseEditorDialog::ExerciseEditorDialog(AppState& state, Prompter& prompter,
                                           std::function<void()> refillList, QWidget* parent)
    : FormDialog(parent), state_(state), prompter_(prompter), refillList_(std::move(refillList)),
      title_(this) {
    setObjectName(QStringLiteral("frmEditExercise"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* top = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    left->addWidget(BuildDescription());
    left->addWidget(BuildOptions());
    left->addStretch();
    top->addLayout(left, 3);
    top->addWidget(BuildView(), 2);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (const QString& tag : {QStringLiteral("OK"), QStringLiteral("Cancel")}) {
        QPushButton* button = AddTaggedButton(this, buttons_, tag);
        connect(button, &QPushButton::clicked, this, Guarded([this, tag] { Run(tag); }));
        buttons->addWidget(button);
    }
    Button(QStringLiteral("OK"))->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(BuildPictures());
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(BuildLink(), 1);
    bottom->addLayout(buttons);
    layout->addLayout(bottom);

    pattern_ = std::make_unique<QtComboBox>(cboPattern);
    type_ = std::make_unique<QtComboBox>(cboType);
    joints_ = std::make_unique<QtListBox>(lstJoint);
    joints_->SetSorted(true);
    const auto line = [this](QLineEdit* edit, int limit) -> ITextBox& {
        texts_.push_back(limit > 0 ? std::make_unique<LimitedLineText>(edit, limit)
                                   : std::make_unique<QtLineEdit>(edit));
        return *texts_.back();
    };
    ITextBox& desc = line(txtDescription, ExerciseEditorLogic::kDescLength);
    ITextBox& abbrev = line(txtAbbrevDesc, ExerciseEditorLogic::kAbbrevDescLength);
    ITextBox& reps = line(txtRepsDef, 0);
    ITextBox& hold = line(txtHoldDef, 0);
    ITextBox& sets = line(txtSetsDef, 0);
    std::array<ITextBox*, 3> instruct{};
    std::array<IPicture*, 3> pictures{};
    std::array<ICheckBox*, 3> options{};
    for (size_t i = 0; i < 3; ++i) {
        texts_.push_back(std::make_unique<LimitedMultiLineText>(txtPicture[i]));
        instruct[i] = texts_.back().get();
        pictures_.push_back(std::make_unique<QtPicture>(imgPicture[i]));
        pictures[i] = pictures_.back().get();
        options_.push_back(std::make_unique<OptionButton>(optExIcon[i], iconGroup_));
        options[i] = options_.back().get();
    }
    logic_ = std::make_unique<ExerciseEditorLogic>(
        state, prompter,
        ExerciseEditorControls{title_,
                               desc,
                               abbrev,
                               reps,
                               hold,
                               sets,
                               *pattern_,
                               *type_,
                               *joints_,
                               instruct,
                               pictures,
                               options,
                               {linkSave_, linkOpen_, linkSource_, linkStatus_}},
        static_cast<IExerciseEditorHost&>(*this));
    connect(&linkStatus_, &LinkLabel::LinkNotify, this,
            Guarded([this] { logic_->lblLinkStatus_LinkNotify(); }));
}

ExerciseEditorDialog::~ExerciseEditorDialog() = default;

QWidget* ExerciseEditorDialog::BuildDescription() {
    auto* frame = new QGroupBox(QStringLiteral("Description"), this);
    txtDescription = NamedLine("txtDescription", frame);
    txtDescription->setMinimumWidth(360);
    txtAbbrevDesc = NamedLine("txtAbbrevDesc", frame);
    txtAbbrevDesc->setMaximumWidth(180);
    auto* form = new QFormLayout(frame);
    form->addRow(QStringLiteral("Long:"), txtDescription);
    form->addRow(QStringLiteral("Short:"), txtAbbrevDesc);
    return frame;
}

QWidget* ExerciseEditorDialog::BuildOptions() {
    auto* frame = new QGroupBox(QStringLiteral("Options"), this);
    auto* row = new QHBoxLayout(frame);
    txtRepsDef = NamedLine("txtRepsDef", frame);
    txtHoldDef = NamedLine("txtHoldDef", frame);
    txtSetsDef = NamedLine("txtSetsDef", frame);
    const std::pair<const char*, QLineEdit*> boxes[] = {
        {"Reps:", txtRepsDef}, {"Hold:", txtHoldDef}, {"Sets:", txtSetsDef}};
    for (const auto& [caption, edit] : boxes) {
        edit->setMaximumWidth(60);
        auto* label = new QLabel(QLatin1String(caption), frame);
        label->setBuddy(edit);
        row->addWidget(label);
        row->addWidget(edit);
        row->addSpacing(12);
    }
    row->addStretch();
    return frame;
}

QWidget* ExerciseEditorDialog::BuildView() {
    auto* frame = new QGroupBox(QStringLiteral("View"), this);
    lstJoint = new QListWidget(frame);
    lstJoint->setObjectName(QStringLiteral("lstJoint"));
    lstJoint->setSelectionMode(QAbstractItemView::MultiSelection);
    lstJoint->setMinimumHeight(110);
    auto* add = new QPushButton(QStringLiteral("Add"), frame);
    add->setObjectName(QStringLiteral("cmdNewJoint"));
    add->setAutoDefault(false);
    add->setToolTip(QStringLiteral("Add a joint to the list"));
    connect(add, &QPushButton::clicked, this, Guarded([this] { logic_->cmdNewJoint_Click(); }));
    cboPattern = new QComboBox(frame);
    cboPattern->setObjectName(QStringLiteral("cboPattern"));
    cboType = new QComboBox(frame);
    cboType->setObjectName(QStringLiteral("cboType"));
    for (QComboBox* box : {cboPattern, cboType}) {
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
    }
    auto* joint = new QHBoxLayout;
    joint->addWidget(lstJoint, 1);
    joint->addWidget(add, 0, Qt::AlignTop);
    auto* form = new QFormLayout(frame);
    form->addRow(QStringLiteral("Joint:"), joint);
    form->addRow(QStringLiteral("Pattern:"), cboPattern);
    form->addRow(QStringLiteral("Type:"), cboType);
    return frame;
}

QWidget* ExerciseEditorDialog::BuildPictures() {
    auto* frame = new QGroupBox(QStringLiteral("Pictures and Text  for Patient Handout"), this);
    auto* row = new QHBoxLayout(frame);
    iconGroup_ = new QButtonGroup(this);
    for (size_t i = 0; i < 3; ++i) {
        const QString n = QString::number(i);
        imgPicture[i] = new QLabel(frame);
        imgPicture[i]->setObjectName(QStringLiteral("imgPicture") + n);
        imgPicture[i]->setFixedSize(kPictureSize);
        imgPicture[i]->setFrameShape(QFrame::StyledPanel);
        imgPicture[i]->setAlignment(Qt::AlignCenter);
        imgPicture[i]->installEventFilter(this);
        imgPicture[i]->setToolTip(
            QStringLiteral("Double-click to edit this picture in Picture Bench"));
        txtPicture[i] = new LimitedTextEdit(ExerciseEditorLogic::kInstructLength, frame);
        txtPicture[i]->setObjectName(QStringLiteral("txtPicture") + n);
        txtPicture[i]->setFixedSize(kPictureSize.width(), 62);
        optExIcon[i] = new QRadioButton(QStringLiteral("Use as selection icon"), frame);
        optExIcon[i]->setObjectName(QStringLiteral("optExIcon") + n);
        iconGroup_->addButton(optExIcon[i], static_cast<int>(i));
        auto* column = new QVBoxLayout;
        column->addWidget(imgPicture[i]);
        column->addWidget(txtPicture[i]);
        column->addWidget(optExIcon[i]);
        row->addLayout(column);
    }
    return frame;
}

QWidget* ExerciseEditorDialog::BuildLink() {
    auto* frame = new QGroupBox(QStringLiteral("Picture Bench"), this);
    frame->setObjectName(QStringLiteral("fraLink"));
    auto* grid = new QGridLayout(frame);
    grid->setContentsMargins(6, 2, 6, 2);
    grid->setVerticalSpacing(0);
    // A value shows as much of a long path as fits; the whole is in its tool tip.
    const auto value = [frame](const char* name, LinkLabel& link) {
        auto* label = new QLabel(frame);
        label->setObjectName(QLatin1String(name));
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        QObject::connect(&link, &LinkLabel::CaptionChanged, label, [label](const QString& text) {
            label->setText(text);
            label->setToolTip(text);
        });
        return label;
    };
    lblLinkStatus = value("lblLinkStatus", linkStatus_);
    lblPictOpenFName = value("lblPictOpenFName", linkOpen_);
    lblSrcPicture = value("lblSrcPicture", linkSource_);
    lblPictSaveFName = value("lblPictSaveFName", linkSave_);
    const std::array<QLabel*, 4> values = {lblLinkStatus, lblPictOpenFName, lblSrcPicture,
                                           lblPictSaveFName};
    for (size_t i = 0; i < values.size(); ++i) {
        auto* caption = new QLabel(QLatin1String(ExerciseEditorLogic::kLinkCaptions[i]), frame);
        caption->setObjectName(QStringLiteral("lblDDE%1").arg(i));
        const int row = static_cast<int>(i / 2);
        const int column = static_cast<int>(i % 2) * 2;
        grid->addWidget(caption, row, column);
        grid->addWidget(values[i], row, column + 1);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 2);
    return frame;
}

QPushButton* ExerciseEditorDialog::Button(const QString& tag) const {
    return findChild<QPushButton*>(QStringLiteral("cmd") + tag);
}

void ExerciseEditorDialog::Run(const QString& tag) {
    // A save that could not start or failed leaves the form open with all that was typed.
    if (logic_->cmdOKCancel_Click(tag))
        EndByButton(tag == QLatin1String("OK") ? Accepted : Rejected);
}

void ExerciseEditorDialog::CancelByFrame() {
    logic_->cmdOKCancel_Click(QStringLiteral("Cancel"));
}

void ExerciseEditorDialog::Unload() {
    if (refillList_)
        logic_->Unload();
}

bool ExerciseEditorDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonDblClick) {
        for (size_t i = 0; i < 3; ++i) {
            if (watched == imgPicture[i]) {
                RunGuarded([this, i] { logic_->imgPicture_DblClick(static_cast<int>(i)); });
                return true;
            }
        }
    }
    return FormDialog::eventFilter(watched, event);
}

void ExerciseEditorDialog::MakeIcon(const QString& picture, const QString& icon, int32_t width) {
    // The picture service is made hidden, used, and gone again.
    LoadPictureDialog service(state_, prompter_, this);
    service.LoadFile(picture, 0);
    service.ResizeAndSaveFile(icon, width);
}

void ExerciseEditorDialog::RefillLibraryList() {
    if (refillList_)
        refillList_();
}

} // namespace tarvex
