#include "ui/SupportDialogs.h"

#include "shell/AppState.h"
#include "ui/Guarded.h"
#include "ui/ProductPicture.h"

#include <QApplication>
#include <QClipboard>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPrinterInfo>
#include <QPushButton>
#include <QSettings>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tarvex {

namespace {

QLabel* NamedLabel(const QString& name, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

// The printers, the default one first.
QStringList PrinterNames() {
    QStringList names = QPrinterInfo::availablePrinterNames();
    const QString standard = QPrinterInfo::defaultPrinterName();
    if (names.removeAll(standard) > 0)
        names.prepend(standard);
    return names;
}

} // namespace

SystemInfoDialog::SystemInfoDialog(const QList<SystemInfoItem>& items, QWidget* parent)
    : FormDialog(parent), text_(SystemInfoText(items)) {
    setObjectName(QStringLiteral("frmSysInfo"));
    setWindowTitle(QStringLiteral("System Information"));
    setAttribute(Qt::WA_DeleteOnClose);
    Items = new QTreeWidget(this);
    Items->setObjectName(QStringLiteral("Items"));
    Items->setColumnCount(2);
    Items->setHeaderLabels({QStringLiteral("Item"), QStringLiteral("Value")});
    Items->setRootIsDecorated(false);
    Items->setWordWrap(true);
    QTreeWidgetItem* section = nullptr;
    for (const SystemInfoItem& item : items) {
        if (!section || section->text(0) != item.Section) {
            section = new QTreeWidgetItem(Items, {item.Section});
            section->setFirstColumnSpanned(true);
            QFont bold = section->font(0);
            bold.setBold(true);
            section->setFont(0, bold);
            section->setExpanded(true);
        }
        auto* row = new QTreeWidgetItem(section, {item.Item, item.Value});
        row->setToolTip(1, item.Value);
    }
    Items->expandAll();
    Items->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    cmdCopy = new QPushButton(QStringLiteral("&Copy"), this);
    cmdCopy->setObjectName(QStringLiteral("cmdCopy"));
    cmdCopy->setToolTip(
        QStringLiteral("Copy all of it as text, to paste into a message for support"));
    cmdClose = new QPushButton(QStringLiteral("Close"), this);
    cmdClose->setObjectName(QStringLiteral("cmdClose"));
    cmdClose->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdCopy);
    buttons->addStretch();
    buttons->addWidget(cmdClose);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Items);
    layout->addLayout(buttons);
    resize(760, 520);
    connect(cmdCopy, &QPushButton::clicked, this,
            Guarded([this] { QApplication::clipboard()->setText(text_); }));
    connect(cmdClose, &QPushButton::clicked, this, Guarded([this] { EndByButton(); }));
}

AboutDialog::AboutDialog(AppState& state, Prompter& prompter, QWidget* parent)
    : FormDialog(parent), Image1(new QLabel(this)),
      lblTitle(NamedLabel(QStringLiteral("lblTitle"), this)),
      lblVersion(NamedLabel(QStringLiteral("lblVersion"), this)),
      lblDescription(NamedLabel(QStringLiteral("lblDescription"), this)),
      lblCSMI{NamedLabel(QStringLiteral("lblCSMI0"), this),
              NamedLabel(QStringLiteral("lblCSMI1"), this),
              NamedLabel(QStringLiteral("lblCSMI2"), this)},
      lblDisclaimer(NamedLabel(QStringLiteral("lblDisclaimer"), this)), state_(state),
      caption_(this), labels_{QtCaption(lblTitle),       QtCaption(lblVersion),
                              QtCaption(lblDescription), QtCaption(lblCSMI[0]),
                              QtCaption(lblCSMI[1]),     QtCaption(lblCSMI[2])},
      disclaimer_(lblDisclaimer) {
    setObjectName(QStringLiteral("frmAbout"));
    setAttribute(Qt::WA_DeleteOnClose);
    Image1->setObjectName(QStringLiteral("Image1"));
    Image1->setPixmap(ProductPicture(96));
    Image1->setAlignment(Qt::AlignTop);
    lblTitle->setStyleSheet(QStringLiteral("font-size: 16pt; font-weight: bold;"));
    lblDisclaimer->setStyleSheet(QStringLiteral("color: #555;"));
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdSysInfo = new QPushButton(QStringLiteral("&System Info..."), this);
    cmdSysInfo->setObjectName(QStringLiteral("cmdSysInfo"));

    auto* maker = new QGridLayout;
    maker->addWidget(lblCSMI[0], 0, 0, 1, 2);
    maker->addWidget(lblCSMI[1], 1, 0, Qt::AlignTop);
    maker->addWidget(lblCSMI[2], 1, 1, Qt::AlignTop);
    maker->setColumnStretch(1, 1);
    auto* text = new QVBoxLayout;
    text->addWidget(lblTitle);
    text->addWidget(lblVersion);
    text->addWidget(lblDescription);
    text->addSpacing(8);
    text->addLayout(maker);
    auto* top = new QHBoxLayout;
    top->addWidget(Image1);
    top->addLayout(text, 1);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdSysInfo);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(lblDisclaimer, 1);
    bottom->addLayout(buttons);
    auto* line = new QFrame(this);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(line);
    layout->addLayout(bottom);

    logic_ =
        std::make_unique<AboutLogic>(AboutLogic::Controls{caption_,
                                                          labels_[0],
                                                          labels_[1],
                                                          labels_[2],
                                                          {&labels_[3], &labels_[4], &labels_[5]},
                                                          disclaimer_},
                                     static_cast<ISystemInfoHost&>(*this), prompter);
    logic_->Load();
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] { EndByButton(); }));
    connect(cmdSysInfo, &QPushButton::clicked, this, Guarded([this] { logic_->cmdSysInfo(); }));
}

AboutDialog::~AboutDialog() = default;

bool AboutDialog::ShowSystemInfo() {
    return SystemInfo ? SystemInfo() : OpenSystemInfoWindow();
}

bool AboutDialog::OpenSystemInfoWindow() {
    const QString settings =
        QSettings(QStringLiteral("Tarvex"), QStringLiteral("Tarvex")).fileName();
    auto* window = new SystemInfoDialog(GatherSystemInfo(state_, PrinterNames(), settings), this);
    window->show();
    return window->isVisible();
}

} // namespace tarvex
