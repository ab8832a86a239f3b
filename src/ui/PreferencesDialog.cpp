#include "ui/PreferencesDialog.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/Guarded.h"

namespace tarvex {

PreferencesDialog::PreferencesDialog(AppState& state, QWidget* parent)
    : FormDialog(parent),
      chkPrintCover(new QCheckBox(QStringLiteral("Print Patient's Cover Sheet"), this)),
      chkCallTVX(new QCheckBox(QStringLiteral("Print \"Call TVX\" prompt"), this)),
      chkShowTips(new QCheckBox(QStringLiteral("Show Tips at Startup"), this)),
      printCover_(chkPrintCover), callTVX_(chkCallTVX), showTips_(chkShowTips) {
    setObjectName(QStringLiteral("frmPreferences"));
    setWindowTitle(QStringLiteral("Preferences"));
    setAttribute(Qt::WA_DeleteOnClose);
    chkPrintCover->setObjectName(QStringLiteral("chkPrintCover"));
    chkCallTVX->setObjectName(QStringLiteral("chkCallTVX"));
    chkShowTips->setObjectName(QStringLiteral("chkShowTips"));
    cmdEditCoverSheet = new QPushButton(QStringLiteral("Edit"), this);
    cmdEditCoverSheet->setObjectName(QStringLiteral("cmdEditCoverSheet"));
    cmdEditCoverSheet->setToolTip(QStringLiteral("Edit the text of the patient's cover sheet"));
    cmdOK = TaggedButton(QStringLiteral("OK"), QStringLiteral("OK"),
                         QStringLiteral("Save changes and exit"), this);
    cmdCancel = TaggedButton(QStringLiteral("Cancel"), QStringLiteral("Cancel"),
                             QStringLiteral("Discard changes and exit"), this);
    cmdOK->setDefault(true);

    auto* printing = new QGroupBox(QStringLiteral("Printing"), this);
    auto* coverRow = new QHBoxLayout;
    coverRow->addWidget(chkPrintCover);
    coverRow->addStretch();
    coverRow->addWidget(cmdEditCoverSheet);
    auto* printLayout = new QVBoxLayout(printing);
    printLayout->addLayout(coverRow);
    printLayout->addWidget(chkCallTVX);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(printing);
    layout->addWidget(chkShowTips);
    layout->addLayout(buttons);

    logic_ = std::make_unique<PreferencesLogic>(
        state, PreferencesLogic::Controls{printCover_, callTVX_, showTips_}, desktop_);
    logic_->InitPreferences();
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
    connect(cmdCancel, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
    connect(cmdEditCoverSheet, &QPushButton::clicked, this, Guarded([this] {
                if (!logic_->cmdEditCoverSheet() && StatusNote)
                    StatusNote(QStringLiteral("The cover text could not be opened: no program "
                                              "to edit text files was found."));
            }));
}

PreferencesDialog::~PreferencesDialog() = default;

void PreferencesDialog::OnOKCancel() {
    if (logic_->cmdOKCancel(ButtonTag(sender())))
        EndByButton();
}

} // namespace tarvex
