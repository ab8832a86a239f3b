#include "ui/ClinicDialog.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/Guarded.h"

namespace tarvex {

namespace {

template <typename W> W* Named(W* widget, const char* name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QLineEdit* LimitedEdit(const char* name, int limit, QWidget* parent) {
    auto* edit = Named(new QLineEdit(parent), name);
    edit->setMaxLength(limit);
    return edit;
}

QPlainTextEdit* AddressEdit(const char* name, QWidget* parent) {
    auto* edit = Named(new QPlainTextEdit(parent), name);
    edit->setTabChangesFocus(true);
    edit->setFixedHeight(edit->fontMetrics().lineSpacing() * 5 + 14);
    return edit;
}

} // namespace

ClinicDialog::ClinicDialog(AppState& state, Shell& shell, QWidget* parent)
    : FormDialog(parent),
      SiteNumBox(LimitedEdit("SiteNumBox", ClinicDialogLogic::kSiteNumLimit, this)),
      txtName(LimitedEdit("txtName", ClinicDialogLogic::kNameLimit, this)),
      txtPhone(LimitedEdit("txtPhone", ClinicDialogLogic::kPhoneLimit, this)),
      txtBillAddr(AddressEdit("txtBillAddr", this)),
      cmdCopyBillToShip(
          Named(new QPushButton(QStringLiteral("Copy >>"), this), "cmdCopyBillToShip")),
      txtShipAddr(AddressEdit("txtShipAddr", this)),
      cboPayMethod(Named(new QComboBox(this), "cboPayMethod")),
      lblCardNum(Named(new QLabel(QStringLiteral("Nbr:"), this), "lblCardNum")),
      txtCardNum(LimitedEdit("txtCardNum", ClinicDialogLogic::kCardNumLimit, this)),
      lblCardDate(Named(new QLabel(QStringLiteral("Date:"), this), "lblCardDate")),
      txtCardDate(Named(new QLineEdit(this), "txtCardDate")),
      lblNameOnCard(Named(new QLabel(QStringLiteral("Name:"), this), "lblNameOnCard")),
      txtNameOnCard(LimitedEdit("txtNameOnCard", ClinicDialogLogic::kNameOnCardLimit, this)),
      cboShipMethod(Named(new QComboBox(this), "cboShipMethod")),
      cmdOK(Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK")),
      cmdCancel(Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel")),
      siteNum_(SiteNumBox), name_(txtName), phone_(txtPhone), cardNum_(txtCardNum),
      cardDate_(txtCardDate), nameOnCard_(txtNameOnCard), billAddr_(txtBillAddr),
      shipAddr_(txtShipAddr), payMethod_(cboPayMethod), shipMethod_(cboShipMethod),
      lblCardNum_(lblCardNum), lblCardDate_(lblCardDate), lblNameOnCard_(lblNameOnCard) {
    setObjectName(QStringLiteral("frmClinic"));
    setWindowTitle(QStringLiteral("Clinic Information"));
    setAttribute(Qt::WA_DeleteOnClose);
    SiteNumBox->setEnabled(false);
    SiteNumBox->setStyleSheet(QStringLiteral("QLineEdit { background: #e4e4e4; color: #555; }"));
    cmdOK->setProperty("tag", QStringLiteral("OK"));
    cmdOK->setToolTip(QStringLiteral("Save changes and exit"));
    cmdOK->setDefault(true);
    cmdCancel->setProperty("tag", QStringLiteral("Cancel"));
    cmdCancel->setToolTip(QStringLiteral("Discard changes and exit"));
    BuildLayout();

    logic_ = std::make_unique<ClinicDialogLogic>(
        state, shell,
        ClinicDialogLogic::Controls{siteNum_, name_, phone_, billAddr_, shipAddr_, payMethod_,
                                    cardNum_, cardDate_, nameOnCard_, shipMethod_, lblCardNum_,
                                    lblCardDate_, lblNameOnCard_});
    logic_->Load();

    txtName->installEventFilter(this);
    connect(cboPayMethod, &QComboBox::activated, this,
            Guarded([this] { logic_->cboPayMethod_Click(); }));
    connect(txtBillAddr, &QPlainTextEdit::textChanged, this,
            Guarded([this] { logic_->txtAddress_Change(billAddr_); }));
    connect(txtShipAddr, &QPlainTextEdit::textChanged, this,
            Guarded([this] { logic_->txtAddress_Change(shipAddr_); }));
    connect(cmdCopyBillToShip, &QPushButton::clicked, this,
            Guarded([this] { logic_->cmdCopyBillToShip(); }));
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
    connect(cmdCancel, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
}

ClinicDialog::~ClinicDialog() = default;

void ClinicDialog::BuildLayout() {
    auto* top = new QFormLayout;
    top->addRow(QStringLiteral("Site  #:"), SiteNumBox);
    top->addRow(QStringLiteral("Name:"), txtName);
    top->addRow(QStringLiteral("Phone:"), txtPhone);

    auto* billTo = new QGroupBox(QStringLiteral("Bill To"), this);
    (new QVBoxLayout(billTo))->addWidget(txtBillAddr);
    auto* shipTo = new QGroupBox(QStringLiteral("Ship To"), this);
    (new QVBoxLayout(shipTo))->addWidget(txtShipAddr);
    auto* addresses = new QHBoxLayout;
    addresses->addWidget(billTo, 1);
    addresses->addWidget(cmdCopyBillToShip, 0, Qt::AlignVCenter);
    addresses->addWidget(shipTo, 1);

    auto* payment = new QGroupBox(QStringLiteral("Payment Method"), this);
    auto* payLayout = new QGridLayout(payment);
    payLayout->addWidget(cboPayMethod, 0, 0, 1, 2);
    payLayout->addWidget(lblCardNum, 1, 0);
    payLayout->addWidget(txtCardNum, 1, 1);
    payLayout->addWidget(lblCardDate, 2, 0);
    payLayout->addWidget(txtCardDate, 2, 1);
    payLayout->addWidget(lblNameOnCard, 3, 0);
    payLayout->addWidget(txtNameOnCard, 3, 1);
    auto* shipping = new QGroupBox(QStringLiteral("Shipping Method"), this);
    auto* shipLayout = new QVBoxLayout(shipping);
    shipLayout->addWidget(cboShipMethod);
    shipLayout->addStretch();
    auto* methods = new QHBoxLayout;
    methods->addWidget(payment, 1);
    methods->addWidget(shipping, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(addresses);
    layout->addLayout(methods);
    layout->addLayout(buttons);
    setMinimumWidth(620);
}

bool ClinicDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtName && event->type() == QEvent::FocusOut)
        RunGuarded([this] { logic_->txtName_LostFocus(); });
    return FormDialog::eventFilter(watched, event);
}

void ClinicDialog::OnOKCancel() {
    if (logic_->cmdOKCancel(ButtonTag(sender())))
        EndByButton();
}

void ClinicDialog::Unload() {
    logic_->Unload();
}

} // namespace tarvex
