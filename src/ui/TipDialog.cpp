#include "ui/SupportDialogs.h"

#include "ui/Guarded.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace tarvex {

TipDialog::TipDialog(AppState& state, QWidget* parent, std::function<double()> random)
    : FormDialog(parent), Label1(new QLabel(QStringLiteral("Did you know..."), this)),
      lblTipText(new QPlainTextEdit(this)),
      chkLoadTipsAtStartup(new QCheckBox(QStringLiteral("&Show Tips at Startup"), this)),
      tipText_(lblTipText), loadTips_(chkLoadTipsAtStartup) {
    setObjectName(QStringLiteral("frmTip"));
    setWindowTitle(QStringLiteral("Tip of the Day"));
    setModal(true);
    Label1->setObjectName(QStringLiteral("Label1"));
    Label1->setStyleSheet(QStringLiteral("font-size: 14pt; font-weight: bold;"));
    lblTipText->setObjectName(QStringLiteral("lblTipText"));
    lblTipText->setReadOnly(true);
    lblTipText->setFrameShape(QFrame::NoFrame);
    lblTipText->setFixedSize(400, 150);
    lblTipText->setFocusPolicy(Qt::NoFocus);
    chkLoadTipsAtStartup->setObjectName(QStringLiteral("chkLoadTipsAtStartup"));
    cmdNextTip = new QPushButton(QStringLiteral("&Next Tip"), this);
    cmdNextTip->setObjectName(QStringLiteral("cmdNextTip"));
    cmdEditTip = new QPushButton(QStringLiteral("&Edit Tips"), this);
    cmdEditTip->setObjectName(QStringLiteral("cmdEditTip"));
    cmdEditTip->setToolTip(
        QStringLiteral("Open TIPOFDAY.TXT, one tip a line, in your text editor"));
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);

    // The tip on white beside a bulb of light, as tips have always looked.
    auto* bulb = new QLabel(this);
    bulb->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(48, 48));
    bulb->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    auto* card = new QFrame(this);
    card->setFrameShape(QFrame::StyledPanel);
    card->setAutoFillBackground(true);
    QPalette white = card->palette();
    white.setColor(QPalette::Window, Qt::white);
    white.setColor(QPalette::Base, Qt::white);
    card->setPalette(white);
    lblTipText->setPalette(white);
    auto* text = new QVBoxLayout;
    text->addWidget(Label1);
    text->addWidget(lblTipText);
    auto* cardLayout = new QHBoxLayout(card);
    cardLayout->addWidget(bulb);
    cardLayout->addLayout(text);
    auto* side = new QVBoxLayout;
    side->addWidget(cmdOK);
    side->addWidget(cmdNextTip);
    side->addWidget(cmdEditTip);
    side->addStretch();
    auto* top = new QHBoxLayout;
    top->addWidget(card);
    top->addLayout(side);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(chkLoadTipsAtStartup);

    logic_ = std::make_unique<TipLogic>(state, TipLogic::Controls{tipText_, loadTips_}, desktop_,
                                        std::move(random));
    logic_->Load();
    connect(cmdNextTip, &QPushButton::clicked, this, Guarded([this] { logic_->cmdNextTip(); }));
    connect(cmdEditTip, &QPushButton::clicked, this, Guarded([this] {
                if (!logic_->cmdEditTip() && StatusNote)
                    StatusNote(QStringLiteral("The tips could not be opened: no program to edit "
                                              "text files was found."));
            }));
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] {
                logic_->cmdOK();
                EndByButton();
            }));
}

TipDialog::~TipDialog() = default;

} // namespace tarvex
