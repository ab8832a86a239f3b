#include "ui/ItemsDialog.h"

#include "ui/Guarded.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarvex {

namespace {

template <typename W> W* Named(W* widget, const char* name) {
    widget->setObjectName(QLatin1String(name));
    return widget;
}

QPlainTextEdit* AddressEdit(const char* name, QWidget* parent) {
    auto* edit = Named(new QPlainTextEdit(parent), name);
    edit->setTabChangesFocus(true);
    edit->setFixedHeight(edit->fontMetrics().lineSpacing() * 5 + 14);
    return edit;
}

// An amount: right-aligned in a column wide enough for the largest total.
QLabel* AmountLabel(const char* name, QWidget* parent) {
    auto* label = Named(new QLabel(parent), name);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(QStringLiteral("$0,000.00")) + 8);
    return label;
}

QCheckBox* ArticleBox(int article, const char* name, QWidget* parent) {
    const auto& a = OrderDetailsLogic::Catalogue()[static_cast<size_t>(article)];
    auto* box = Named(new QCheckBox(QString::fromLatin1(a.Description), parent), name);
    box->setProperty("tag", QString::fromLatin1(a.PartNumber));
    return box;
}

QLabel* Note(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    label->setStyleSheet(QStringLiteral("color: palette(dark);"));
    label->setContentsMargins(22, 0, 0, 0);
    return label;
}

} // namespace

void QtVisibility::SetVisible(bool visible) {
    visible_ = visible;
    if (widget_)
        widget_->setVisible(visible);
}

ItemsDialog::ItemsDialog(AppState& state, Shell& shell, ProgramStore& store, QWidget* parent)
    : FormDialog(parent), txtBillAddr(AddressEdit("txtBillAddr", this)),
      txtShiptoBill(Named(new QPushButton(QStringLiteral("Copy >>"), this), "txtShiptoBill")),
      txtShipAddr(AddressEdit("txtShipAddr", this)),
      lblShipPhone(Named(new QLabel(QStringLiteral("Phone:"), this), "lblShipPhone")),
      txtShipPhone(Named(new QLineEdit(this), "txtShipPhone")),
      cboPayMethod(Named(new QComboBox(this), "cboPayMethod")),
      txtCardNum(Named(new QLineEdit(this), "txtCardNum")),
      lblCardDate(Named(new QLabel(QStringLiteral("Date:"), this), "lblCardDate")),
      txtCardDate(Named(new QLineEdit(this), "txtCardDate")),
      lblNameOnCard(Named(new QLabel(QStringLiteral("Name:"), this), "lblNameOnCard")),
      txtNameOnCard(Named(new QLineEdit(this), "txtNameOnCard")),
      chkVideo(ArticleBox(0, "chkVideo", this)), chkBand(ArticleBox(1, "chkBand", this)),
      chkBall(ArticleBox(2, "chkBall", this)),
      chkTax(Named(new QCheckBox(QStringLiteral("Mass Tax (5%)"), this), "chkTax")),
      cboShipMethod(Named(new QComboBox(this), "cboShipMethod")),
      lblVideo(AmountLabel("lblVideo", this)), lblBand(AmountLabel("lblBand", this)),
      lblBall(AmountLabel("lblBall", this)), lblShipMethod(AmountLabel("lblShipMethod", this)),
      lblTax(AmountLabel("lblTax", this)), lblSubTotal(AmountLabel("lblSubTotal", this)),
      lblTotal(AmountLabel("lblTotal", this)),
      cmdOK(Named(new QPushButton(QStringLiteral("OK"), this), "cmdOK")),
      cmdCancel(Named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel")),
      billAddr_(txtBillAddr), shipAddr_(txtShipAddr), shipPhone_(txtShipPhone),
      cardNum_(txtCardNum), cardDate_(txtCardDate), nameOnCard_(txtNameOnCard),
      payMethod_(cboPayMethod), shipMethod_(cboShipMethod), lblCardDateShown_(lblCardDate),
      lblNameOnCardShown_(lblNameOnCard), cardDateShown_(txtCardDate),
      nameOnCardShown_(txtNameOnCard), video_(chkVideo), band_(chkBand), ball_(chkBall),
      tax_(chkTax), videoPrice_(lblVideo), bandPrice_(lblBand), ballPrice_(lblBall),
      shipPrice_(lblShipMethod), taxAmount_(lblTax), subTotal_(lblSubTotal), total_(lblTotal) {
    setObjectName(QStringLiteral("frmItems"));
    setWindowTitle(QStringLiteral("Order Items"));
    setAttribute(Qt::WA_DeleteOnClose);
    cmdOK->setProperty("tag", QStringLiteral("OK"));
    cmdOK->setToolTip(QStringLiteral("Save the order with the program and exit"));
    cmdOK->setDefault(true);
    cmdCancel->setProperty("tag", QStringLiteral("Cancel"));
    cmdCancel->setToolTip(QStringLiteral("Discard changes and exit"));
    txtShiptoBill->setToolTip(QStringLiteral("Ship to the billing address"));
    QFont bold = lblTotal->font();
    bold.setBold(true);
    lblTotal->setFont(bold);
    BuildLayout();

    logic_ = std::make_unique<OrderDetailsLogic>(state, shell, store,
                                                 OrderDetailsLogic::Controls{billAddr_,
                                                                             shipAddr_,
                                                                             shipPhone_,
                                                                             payMethod_,
                                                                             cardNum_,
                                                                             cardDate_,
                                                                             nameOnCard_,
                                                                             lblCardDateShown_,
                                                                             lblNameOnCardShown_,
                                                                             cardDateShown_,
                                                                             nameOnCardShown_,
                                                                             video_,
                                                                             band_,
                                                                             ball_,
                                                                             tax_,
                                                                             shipMethod_,
                                                                             videoPrice_,
                                                                             bandPrice_,
                                                                             ballPrice_,
                                                                             shipPrice_,
                                                                             taxAmount_,
                                                                             subTotal_,
                                                                             total_});
    logic_->Load();

    for (QCheckBox* box : {chkVideo, chkBand, chkBall, chkTax})
        connect(box, &QCheckBox::clicked, this, Guarded([this] { logic_->ShowItemPrices(); }));
    connect(cboShipMethod, &QComboBox::activated, this,
            Guarded([this] { logic_->ShowItemPrices(); }));
    connect(cboPayMethod, &QComboBox::activated, this,
            Guarded([this] { logic_->cboPayMethod_Click(); }));
    connect(txtShiptoBill, &QPushButton::clicked, this,
            Guarded([this] { logic_->txtShiptoBill_Click(); }));
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
    connect(cmdCancel, &QPushButton::clicked, this, Guarded([this] { OnOKCancel(); }));
}

ItemsDialog::~ItemsDialog() = default;

void ItemsDialog::BuildLayout() {
    auto* billTo = Named(new QGroupBox(QStringLiteral("Bill To"), this), "fraBillTo");
    (new QVBoxLayout(billTo))->addWidget(txtBillAddr);
    auto* shipTo = Named(new QGroupBox(QStringLiteral("Ship To"), this), "fraShipTo");
    auto* shipLayout = new QGridLayout(shipTo);
    shipLayout->addWidget(txtShipAddr, 0, 0, 1, 2);
    shipLayout->addWidget(lblShipPhone, 1, 0);
    shipLayout->addWidget(txtShipPhone, 1, 1);
    auto* addresses = new QHBoxLayout;
    addresses->addWidget(billTo, 1);
    addresses->addWidget(txtShiptoBill, 0, Qt::AlignVCenter);
    addresses->addWidget(shipTo, 1);

    auto* payment = Named(new QGroupBox(QStringLiteral("Payment Method"), this), "fraPayment");
    auto* payLayout = new QGridLayout(payment);
    payLayout->addWidget(cboPayMethod, 0, 0, 1, 2);
    payLayout->addWidget(new QLabel(QStringLiteral("Nbr:"), payment), 1, 0);
    payLayout->addWidget(txtCardNum, 1, 1);
    payLayout->addWidget(lblCardDate, 2, 0);
    payLayout->addWidget(txtCardDate, 2, 1);
    payLayout->addWidget(lblNameOnCard, 3, 0);
    payLayout->addWidget(txtNameOnCard, 3, 1);
    payLayout->setRowStretch(4, 1);

    auto* items = Named(new QGroupBox(QStringLiteral("Items"), this), "fraItems");
    auto* grid = new QGridLayout(items);
    grid->setColumnStretch(0, 1);
    auto* description = new QLabel(QStringLiteral("<b>Description</b>"), items);
    auto* price = new QLabel(QStringLiteral("<b>Price</b>"), items);
    price->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->addWidget(description, 0, 0);
    grid->addWidget(price, 0, 1);
    grid->addWidget(chkVideo, 1, 0);
    grid->addWidget(lblVideo, 1, 1);
    grid->addWidget(chkBand, 2, 0);
    grid->addWidget(lblBand, 2, 1);
    grid->addWidget(Note(QStringLiteral("(6' Each of Red, Yellow and Green)"), items), 3, 0);
    grid->addWidget(chkBall, 4, 0);
    grid->addWidget(lblBall, 4, 1);
    grid->addWidget(Note(QStringLiteral("(66 cm Blue Ball)"), items), 5, 0);
    auto* rule = new QFrame(items);
    rule->setFrameShape(QFrame::HLine);
    rule->setFrameShadow(QFrame::Sunken);
    grid->addWidget(rule, 6, 0, 1, 2);
    auto* subTotalLbl = Named(new QLabel(QStringLiteral("Sub-Total"), items), "lblSubTotalLbl");
    grid->addWidget(subTotalLbl, 7, 0);
    grid->addWidget(lblSubTotal, 7, 1);
    grid->addWidget(chkTax, 8, 0);
    grid->addWidget(lblTax, 8, 1);
    grid->addWidget(cboShipMethod, 9, 0, Qt::AlignLeft);
    grid->addWidget(lblShipMethod, 9, 1);
    auto* totalLbl = Named(new QLabel(QStringLiteral("<b>Total</b>"), items), "lblTotalLbl");
    grid->addWidget(totalLbl, 10, 0);
    grid->addWidget(lblTotal, 10, 1);

    auto* lower = new QHBoxLayout;
    lower->addWidget(payment, 1);
    lower->addWidget(items, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(addresses);
    layout->addLayout(lower);
    layout->addLayout(buttons);
    setMinimumWidth(640);
}

void ItemsDialog::OnOKCancel() {
    // OK saves once and the form unloads; a fault in the save leaves it open.
    if (logic_->cmdOKCancel(ButtonTag(sender())))
        EndByButton();
}

void ItemsDialog::CancelByFrame() {
    logic_->cmdOKCancel(QStringLiteral("Cancel"));
}

void ItemsDialog::Unload() {
    logic_->Unload();
}

} // namespace tarvex
