#include "ui/ExerciseParamsDialog.h"

#include "ui/Guarded.h"

#include "shell/Shell.h"

#include <QComboBox>
#include <QDir>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace tarvex {

namespace {

template <typename W> W* Named(W* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

QString Indexed(const char* name, size_t index) {
    return QStringLiteral("%1_%2").arg(QLatin1String(name)).arg(index);
}

std::array<QLabel*, 3> MakePictures(QWidget* parent) {
    std::array<QLabel*, 3> labels{};
    for (size_t i = 0; i < labels.size(); ++i) {
        auto* label = Named(new QLabel(parent), Indexed("Image1", i));
        label->setFixedSize(ExerciseParamsDialog::kPictureWidth,
                            ExerciseParamsDialog::kPictureHeight);
        label->setAlignment(Qt::AlignCenter);
        label->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
        label->setAutoFillBackground(true);
        label->setBackgroundRole(QPalette::Base);
        labels[i] = label;
    }
    return labels;
}

std::array<QLineEdit*, 3> MakeInstructions(QWidget* parent) {
    std::array<QLineEdit*, 3> edits{};
    for (size_t i = 0; i < edits.size(); ++i) {
        auto* edit = Named(new QLineEdit(parent), Indexed("txtInstr", i));
        edit->setMaxLength(ExerciseParamsLogic::kInstructLimit);
        edits[i] = edit;
    }
    return edits;
}

QComboBox* NumberCombo(const char* name, QWidget* parent) {
    auto* box = Named(new QComboBox(parent), QLatin1String(name));
    box->setEditable(true);
    // A typed number is taken by OK; it does not join the list of usual values.
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setMaxVisibleItems(13);
    box->setMinimumContentsLength(5);
    return box;
}

std::array<QPushButton*, 6> MakeMovieButtons(QWidget* parent) {
    static const std::array<const char*, 6> captions = {"Open", "Play",  "Pause",
                                                        "Stop", "Close", "Rewind"};
    std::array<QPushButton*, 6> buttons{};
    for (size_t i = 0; i < buttons.size(); ++i) {
        auto* button =
            Named(new QPushButton(QLatin1String(captions[i]), parent), Indexed("cmdControl", i));
        button->setProperty("index", static_cast<int>(i));
        button->setAutoDefault(false);
        buttons[i] = button;
    }
    return buttons;
}

} // namespace

// The window as the load sees it.
class ExerciseParamsDialog::Form : public IParamsForm {
public:
    explicit Form(ExerciseParamsDialog* dialog) : dialog_(dialog) {}
    void SetCaption(const QString& caption) override { dialog_->setWindowTitle(caption); }
    void ShowForm() override { dialog_->ShowNow(); }

private:
    ExerciseParamsDialog* dialog_;
};

ExerciseParamsDialog::ExerciseParamsDialog(AppState& state, IParamsTarget& target, QWidget* parent)
    : FormDialog(parent), Image1(MakePictures(this)), txtInstr(MakeInstructions(this)),
      fraExercises(
          Named(new QGroupBox(QStringLiteral("Exercises"), this), QStringLiteral("fraExercises"))),
      fraOptions(
          Named(new QGroupBox(QStringLiteral("Options"), this), QStringLiteral("fraOptions"))),
      fraMovie(Named(new QGroupBox(QStringLiteral("Movie"), this), QStringLiteral("fraMovie"))),
      RepsList(NumberCombo("RepsList", this)), HoldList(NumberCombo("HoldList", this)),
      SetsList(NumberCombo("SetsList", this)),
      MovFrame(Named(new QFrame(this), QStringLiteral("MovFrame"))),
      cmdControl(MakeMovieButtons(this)),
      cmdOK(Named(new QPushButton(QStringLiteral("OK"), this), QStringLiteral("cmdOK"))),
      cmdCancel(
          Named(new QPushButton(QStringLiteral("Cancel"), this), QStringLiteral("cmdCancel"))),
      reps_(RepsList), hold_(HoldList), sets_(SetsList), movFrame_(MovFrame), media_(MovFrame),
      form_(std::make_unique<Form>(this)) {
    setObjectName(QStringLiteral("frmExerciseParams"));
    setWindowTitle(QStringLiteral("Exercise: "));
    for (size_t i = 0; i < 3; ++i) {
        instr_[i] = std::make_unique<QtLineEdit>(txtInstr[i]);
        pictures_[i] = std::make_unique<QtPicture>(Image1[i]);
    }
    MovFrame->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    MovFrame->setFixedSize(kEmptyMovieWidth, kEmptyMovieHeight);
    MovFrame->setAutoFillBackground(true);
    MovFrame->setBackgroundRole(QPalette::Dark);
    cmdOK->setProperty("tag", QStringLiteral("OK"));
    cmdOK->setToolTip(QStringLiteral("Save changes and exit"));
    cmdOK->setDefault(true);
    cmdCancel->setProperty("tag", QStringLiteral("Cancel"));
    cmdCancel->setToolTip(QStringLiteral("Discard changes and exit"));
    BuildLayout();

    logic_ = std::make_unique<ExerciseParamsLogic>(
        state, target, media_,
        ExerciseParamsLogic::Controls{*form_,
                                      reps_,
                                      hold_,
                                      sets_,
                                      {instr_[0].get(), instr_[1].get(), instr_[2].get()},
                                      {pictures_[0].get(), pictures_[1].get(), pictures_[2].get()},
                                      movFrame_});

    for (QPushButton* button : cmdControl) {
        connect(button, &QPushButton::clicked, this, Guarded([this, button] {
                    const int index = button->property("index").toInt();
                    logic_->cmdControl(index);
                    NoteMissingMovie(index);
                }));
    }
    for (QLineEdit* edit : txtInstr)
        connect(edit, &QLineEdit::textEdited, edit, &QLineEdit::setToolTip);
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
    connect(cmdCancel, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
}

ExerciseParamsDialog::~ExerciseParamsDialog() {
    // A dialog that goes without being closed still closes its movie.
    EnsureUnloaded();
}

void ExerciseParamsDialog::BuildLayout() {
    auto* pictures = new QGridLayout(fraExercises);
    pictures->setHorizontalSpacing(12);
    pictures->setVerticalSpacing(6);
    for (int i = 0; i < 3; ++i) {
        pictures->addWidget(Image1[static_cast<size_t>(i)], 0, i, Qt::AlignHCenter);
        pictures->addWidget(txtInstr[static_cast<size_t>(i)], 1, i);
    }

    auto* options = new QFormLayout(fraOptions);
    options->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    options->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    options->addRow(QStringLiteral("Repetitions:"), RepsList);
    options->addRow(QStringLiteral("Hold (secs):"), HoldList);
    options->addRow(QStringLiteral("Sets:"), SetsList);
    options->setVerticalSpacing(10);

    auto* movieButtons = new QHBoxLayout;
    movieButtons->setSpacing(4);
    for (QPushButton* button : cmdControl)
        movieButtons->addWidget(button);
    auto* movie = new QVBoxLayout(fraMovie);
    movie->addWidget(MovFrame, 0, Qt::AlignHCenter);
    movie->addLayout(movieButtons);

    auto* lower = new QHBoxLayout;
    lower->setSpacing(12);
    lower->addWidget(fraOptions, 1);
    lower->addWidget(fraMovie, 0);

    auto* ends = new QHBoxLayout;
    ends->addStretch();
    ends->addWidget(cmdOK);
    ends->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->setContentsMargins(12, 12, 12, 12);
    layout->addWidget(fraExercises);
    layout->addLayout(lower);
    layout->addLayout(ends);
    // The window follows its content, which grows with the movie.
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void ExerciseParamsDialog::setVisible(bool visible) {
    if (!visible || loaded_) {
        FormDialog::setVisible(visible);
        return;
    }
    // The first show is the load: placed, filled, shown in the middle of it (so that the
    // movie has a window to live in), then the movie, the pictures and the lines.
    loaded_ = true;
    layout()->activate();
    PlaceOnScreen();
    const QSize before = size();
    logic_->Load();
    ShowNow();
    // A long instruction line shows its beginning, and all of it when pointed at.
    for (QLineEdit* edit : txtInstr) {
        edit->setCursorPosition(0);
        edit->setToolTip(edit->text());
    }
    // The movie may have made the window larger: keep it on the screen, then centre it
    // again at its new size.
    FitMovieToScreen();
    layout()->activate();
    if (size() != before)
        PlaceOnScreen();
}

void ExerciseParamsDialog::ShowNow() {
    if (!isVisible())
        FormDialog::setVisible(true);
}

void ExerciseParamsDialog::FitMovieToScreen() {
    const QScreen* where = screen();
    if (!where)
        return;
    layout()->activate();
    // Room for the window manager's title bar, which the frame does not show yet.
    constexpr int kTitleBar = 32;
    const int room = where->availableGeometry().height() - kTitleBar;
    const int excess = sizeHint().height() - room;
    const QSize movie = MovFrame->size();
    if (excess <= 0 || movie.height() <= 0)
        return;
    // A large movie is shown smaller, in its own proportions, so that OK and the movie's
    // buttons stay on the screen; the video scales to its surface.
    const int height = std::max(kEmptyMovieHeight / 2, movie.height() - excess);
    const int width = movie.width() * height / movie.height();
    MovFrame->setFixedSize(width, height);
}

void ExerciseParamsDialog::PlaceOnScreen() {
    const QScreen* where = screen();
    if (!where)
        return;
    const QRect area = where->availableGeometry();
    move(area.topLeft() + CenterForm(frameGeometry().size(), false, 0, area.size()));
}

void ExerciseParamsDialog::OnOKCancel() {
    const QString tag = ButtonTag(sender());
    if (!logic_->cmdOKCancel(tag))
        return;
    EndByButton(tag == QLatin1String("OK") ? Accepted : Rejected);
}

void ExerciseParamsDialog::NoteMissingMovie(int command) {
    // The commands stay silent without a movie; the status line says why nothing plays.
    const bool playing =
        command == ExerciseParamsLogic::kOpen || command == ExerciseParamsLogic::kPlay;
    if (playing && logic_->MediaHandle() == 0 && StatusNote)
        StatusNote(QStringLiteral("This exercise has no movie that can be played (%1).")
                       .arg(QDir::toNativeSeparators(logic_->MovieFileName())));
}

void ExerciseParamsDialog::Unload() {
    logic_->Unload();
}

} // namespace tarvex
