#include "ui/MediaDialogs.h"

#include "ui/Guarded.h"

#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarvex {

namespace {

QLineEdit* PathLine(QWidget* parent) {
    auto* line = new QLineEdit(parent);
    line->setReadOnly(true);
    line->setMinimumWidth(460);
    return line;
}

} // namespace

MediaDialog::MediaDialog(AppState& state, QWidget* parent, IOpenFileDialog* dialog)
    : FormDialog(parent), lblMedia{PathLine(this), PathLine(this), PathLine(this)},
      captions_{QtCaption(lblMedia[0]), QtCaption(lblMedia[1]), QtCaption(lblMedia[2])},
      qtDialog_(this) {
    setObjectName(QStringLiteral("frmMedia"));
    setWindowTitle(QStringLiteral("Media Locations"));
    setAttribute(Qt::WA_DeleteOnClose);
    const char* captions[] = {"Icons", "Pictures", "Movies"};
    const char* tags[] = {"Icon", "Picture", "Movie"};
    const char* tips[] = {"Choose the folder of the selection icons (it holds 1.JPG)",
                          "Choose the folder of the exercise pictures (it holds 1_1.JPG)",
                          "Choose the folder of the exercise movies (it holds 1.AVI)"};
    auto* grid = new QGridLayout;
    for (int i = 0; i < 3; ++i) {
        cmdMedia[i] = TaggedButton(QLatin1String(captions[i]), QLatin1String(tags[i]),
                                   QLatin1String(tips[i]), this);
        cmdMedia[i]->setObjectName(QStringLiteral("cmdMedia%1").arg(i));
        lblMedia[i]->setObjectName(QStringLiteral("lblMedia%1").arg(i));
        grid->addWidget(cmdMedia[i], i, 0);
        grid->addWidget(lblMedia[i], i, 1);
        connect(cmdMedia[i], &QPushButton::clicked, this,
                Guarded([this, i] { logic_->cmdMedia(i); }));
    }
    cmdOK = TaggedButton(QStringLiteral("OK"), QStringLiteral("OK"),
                         QStringLiteral("Save changes and exit"), this);
    cmdCancel = TaggedButton(QStringLiteral("Cancel"), QStringLiteral("Cancel"),
                             QStringLiteral("Discard changes and exit"), this);
    cmdOK->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    logic_ = std::make_unique<MediaLocationsLogic>(
        state,
        MediaLocationsLogic::Controls{
            {&captions_[0], &captions_[1], &captions_[2]},
            {QLatin1String(tags[0]), QLatin1String(tags[1]), QLatin1String(tags[2])}},
        dialog ? *dialog : static_cast<IOpenFileDialog&>(qtDialog_));
    logic_->Load();
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
    connect(cmdCancel, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
}

MediaDialog::~MediaDialog() = default;

void MediaDialog::OnOKCancel() {
    if (logic_->cmdOKCancel(ButtonTag(sender())))
        EndByButton();
}

CheckMediaDialog::CheckMediaDialog(AppState& state, Prompter& prompter, QWidget* parent)
    : FormDialog(parent), Drive1(new QComboBox(this)), drives_(Drive1), progress_(this) {
    setObjectName(QStringLiteral("frmCheckMedia"));
    setWindowTitle(QStringLiteral("Exericse Pictures Not Found"));
    setAttribute(Qt::WA_DeleteOnClose);
    Drive1->setObjectName(QStringLiteral("Drive1"));
    Drive1->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    Drive1->setMinimumContentsLength(40);
    cmdFindCD = new QPushButton(QStringLiteral("FindCD"), this);
    cmdFindCD->setObjectName(QStringLiteral("cmdFindCD"));
    cmdFindCD->setToolTip(QStringLiteral("Choose the CD-ROM drive of the settings again"));
    cmdCD = TaggedButton(QStringLiteral("CD"), QStringLiteral("CD"),
                         QStringLiteral("Work with the pictures and movies where they are"), this);
    cmdHardDrive =
        TaggedButton(QStringLiteral("Hard Drive"), QStringLiteral("HardDrive"),
                     QStringLiteral("Copy the pictures and movies into the data folder"), this);
    cmdCancel = TaggedButton(QStringLiteral("Cancel"), QStringLiteral("Cancel"),
                             QStringLiteral("Change nothing"), this);
    for (QPushButton* button : {cmdCD, cmdHardDrive, cmdCancel}) {
        button->setObjectName(QStringLiteral("cmdPictureLocation") + ButtonTag(button));
        buttons_.Add(ButtonTag(button), button);
        connect(button, &QPushButton::clicked, this, Guarded([this] { OnPictureLocation(); }));
    }

    const char* instructions[] = {
        "Insert the Tarvex CD into your CD-ROM drive.", "Press Find CD.",
        "Select CD to continue working from the CD-ROM drive.",
        "Select HARD DRIVE to copy the pictures to the Hard Drive and eliminate the need for "
        "the CD-ROM. (Approximately 200MB required.)"};
    auto* steps = new QGridLayout;
    for (int i = 0; i < 4; ++i) {
        auto* text = new QLabel(QLatin1String(instructions[i]), this);
        text->setObjectName(QStringLiteral("lblInstr%1").arg(i));
        text->setWordWrap(true);
        if (i < 3) {
            auto* number = new QLabel(QStringLiteral("%1.").arg(i + 1), this);
            number->setObjectName(QStringLiteral("lblNumber%1").arg(i));
            steps->addWidget(number, i, 0, Qt::AlignTop);
        }
        steps->addWidget(text, i, 1);
    }
    steps->setColumnStretch(1, 1);
    auto* driveRow = new QHBoxLayout;
    driveRow->addWidget(Drive1, 1);
    driveRow->addWidget(cmdFindCD);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdCD);
    buttons->addWidget(cmdHardDrive);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(steps);
    layout->addLayout(driveRow);
    layout->addLayout(buttons);
    setMinimumWidth(560);

    logic_ = std::make_unique<CheckMediaLogic>(state, CheckMediaLogic::Controls{drives_, buttons_},
                                               static_cast<ICheckMediaHost&>(*this), progress_,
                                               prompter);
    logic_->Load();
    connect(cmdFindCD, &QPushButton::clicked, this, Guarded([this] { logic_->cmdFindCD(); }));
}

CheckMediaDialog::~CheckMediaDialog() {
    if (busy_)
        QApplication::restoreOverrideCursor();
}

void CheckMediaDialog::done(int result) {
    // The copy lets events through between files: Esc or the close box then do nothing
    // until it has ended.
    if (logic_ && logic_->Copying())
        return;
    FormDialog::done(result);
}

void CheckMediaDialog::OnPictureLocation() {
    logic_->cmdPictureLocation(ButtonTag(sender()));
}

void CheckMediaDialog::SetBusy(bool busy) {
    if (busy == busy_)
        return;
    busy_ = busy;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void CheckMediaDialog::DoEvents() {
    QCoreApplication::processEvents();
}

void CheckMediaDialog::UnloadForm() {
    EndByButton();
}

} // namespace tarvex
