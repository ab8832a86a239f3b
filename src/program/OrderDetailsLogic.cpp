#include "program/OrderDetailsLogic.h"

#include "program/ProgramStore.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Dates.h"

#include <QMetaType>

namespace tarvex {

Currency VarToCur(const QVariant& value) {
    if (!value.isValid() || value.isNull())
        return {};
    switch (value.metaType().id()) {
    case QMetaType::QString:
        return ParseCurrency(value.toString()).value_or(Currency{});
    case QMetaType::Bool:
        return Currency::FromWhole(value.toBool() ? -1 : 0); // True is -1, as it always was
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Double:
    case QMetaType::Float: {
        const double number = value.toDouble();
        // The range of the fixed-point amount, with room for rounding.
        if (!(number > -9.2e14 && number < 9.2e14))
            return {};
        return Currency::FromDouble(number);
    }
    default:
        return {};
    }
}

const std::array<OrderDetailsLogic::Article, 3>& OrderDetailsLogic::Catalogue() {
    static const std::array<Article, 3> articles = {{
        {"Exercise Video", "P001", Currency{199500}},
        {"Band Kit", "P002", Currency::FromWhole(10)},
        {"Gym Ball", "P003", Currency::FromWhole(20)},
    }};
    return articles;
}

const std::array<OrderDetailsLogic::ShipRate, 3>& OrderDetailsLogic::ShipRates() {
    static const std::array<ShipRate, 3> rates = {{
        {"UPS Ground", Currency::FromWhole(4)},
        {"UPS 2-Day", Currency::FromWhole(12)},
        {"UPS Next Day", Currency::FromWhole(20)},
    }};
    return rates;
}

const QStringList& OrderDetailsLogic::PayMethods() {
    static const QStringList methods = {"VISA", "Master Card", "Purchase Order"};
    return methods;
}

OrderDetailsLogic::OrderDetailsLogic(AppState& state, Shell& shell, ProgramStore& store,
                                     Controls controls)
    : state_(state), shell_(shell), store_(store), c_(controls) {}

ICheckBox& OrderDetailsLogic::Box(int article) const {
    ICheckBox* boxes[] = {&c_.chkVideo, &c_.chkBand, &c_.chkBall};
    return *boxes[article];
}

ILabel& OrderDetailsLogic::PriceLabel(int article) const {
    ILabel* labels[] = {&c_.lblVideo, &c_.lblBand, &c_.lblBall};
    return *labels[article];
}

void OrderDetailsLogic::Tick(ICheckBox& box) {
    if (box.Value() == 1)
        return;
    box.SetValue(1);
    ShowItemPrices();
}

void OrderDetailsLogic::Load() {
    shell_.UpdateToolbar(ToolbarMode::None);
    shell_.UpdateMenu(MenuMode::None);
    FillOrderDetails();
    // The lists come second: choosing their first entries replaces the texts that the
    // program gave, so the dialog always opens with the first shipping and payment.
    FillOrderCombos();
}

void OrderDetailsLogic::FillOrderDetails() {
    const ExerciseProgram& p = state_.Program;
    const ClinicInfo& clinic = state_.Clinic;
    auto either = [](const QString& own, const QString& fallback) {
        return own.isEmpty() ? fallback : own;
    };
    c_.txtBillAddr.SetText(either(p.BillAddr, clinic.BillAddr));
    c_.txtShipAddr.SetText(either(p.ShipAddr, clinic.ShipAddr));
    c_.txtShipPhone.SetText(either(p.ShipPhone, clinic.Phone));
    // The lists are still empty here, so a combo's text is taken as it comes; the test
    // below reads that text, whatever the box itself kept.
    const QString payText = either(p.PayMethod, clinic.PayMethod);
    c_.cboPayMethod.SetText(payText);
    c_.cboShipMethod.SetText(either(p.ShipMethod, clinic.ShipMethod));

    if (p.PayMethod.isEmpty() && payText != kPurchaseOrder) {
        c_.txtCardNum.SetText(clinic.CardNum);
        c_.txtCardDate.SetText(ShortDate(clinic.CardDate));
        c_.txtNameOnCard.SetText(clinic.NameOnCard);
    }
    if (!p.PayMethod.isEmpty() && p.PayMethod != kPurchaseOrder) {
        c_.txtCardNum.SetText(p.CardNum);
        c_.txtCardDate.SetText(ShortDate(p.CardDate));
        c_.txtNameOnCard.SetText(p.NameOnCard);
    }

    if (p.Tax != 0)
        Tick(c_.chkTax);
    for (const OrderItem& item : p.Items)
        for (int i = 0; i < static_cast<int>(Catalogue().size()); ++i)
            if (item.PartNumber == QLatin1String(Catalogue()[i].PartNumber))
                Tick(Box(i));
}

void OrderDetailsLogic::FillOrderCombos() {
    c_.cboShipMethod.Clear();
    for (const ShipRate& rate : ShipRates())
        c_.cboShipMethod.AddItem(QString::fromLatin1(rate.Method));
    c_.cboPayMethod.Clear();
    for (const QString& method : PayMethods())
        c_.cboPayMethod.AddItem(method);
    c_.cboShipMethod.SetListIndex(0);
    ShowItemPrices();
    c_.cboPayMethod.SetListIndex(0);
    cboPayMethod_Click();
}

void OrderDetailsLogic::ShowItemPrices() {
    for (int i = 0; i < static_cast<int>(Catalogue().size()); ++i)
        PriceLabel(i).SetCaption(Box(i).Value() == 1 ? FormatCurrency(Catalogue()[i].Price)
                                                     : QString());
    // The amounts are read back from the captions: they are the only place that holds them.
    Currency subTotal;
    for (int i = 0; i < static_cast<int>(Catalogue().size()); ++i)
        subTotal += VarToCur(PriceLabel(i).Caption());
    c_.lblSubTotal.SetCaption(FormatCurrency(subTotal));

    if (c_.chkTax.Value() == 1) {
        const double tax = VarToCur(c_.lblSubTotal.Caption()).ToDouble() * kTaxRate;
        c_.lblTax.SetCaption(FormatCurrency(Currency::FromDouble(tax)));
    } else {
        c_.lblTax.SetCaption(QString());
    }

    const int ship = c_.cboShipMethod.ListIndex();
    if (ship >= 0 && ship < static_cast<int>(ShipRates().size()))
        c_.lblShipMethod.SetCaption(FormatCurrency(ShipRates()[ship].Rate));

    const Currency total = VarToCur(c_.lblSubTotal.Caption()) + VarToCur(c_.lblTax.Caption()) +
                           VarToCur(c_.lblShipMethod.Caption());
    c_.lblTotal.SetCaption(FormatCurrency(total));
}

void OrderDetailsLogic::SaveOrderDetails() {
    ExerciseProgram& p = state_.Program;
    p.BillAddr = c_.txtBillAddr.Text();
    p.ShipAddr = c_.txtShipAddr.Text();
    p.ShipPhone = c_.txtShipPhone.Text();
    p.PayMethod = c_.cboPayMethod.Text();
    p.ShipMethod = c_.cboShipMethod.Text();
    p.CardNum = c_.txtCardNum.Text();
    // A text that is no date ends the save here (a TypeFault). An empty field, which a
    // purchase order leaves, stands for the empty date.
    const QString cardDate = c_.txtCardDate.Text().trimmed();
    p.CardDate = cardDate.isEmpty() ? ZeroDate() : CDate(cardDate);
    p.NameOnCard = c_.txtNameOnCard.Text();

    p.Tax = c_.chkTax.Value() == 1 ? 5 : 0;

    p.NumItems = 0;
    for (int i = 0; i < static_cast<int>(Catalogue().size()); ++i) {
        if (Box(i).Value() != 1)
            continue;
        OrderItem& line = p.Item(p.NumItems);
        line.Description = QString::fromLatin1(Catalogue()[i].Description);
        line.PartNumber = QString::fromLatin1(Catalogue()[i].PartNumber);
        line.Price = VarToCur(PriceLabel(i).Caption());
        line.Qty = 1;
        ++p.NumItems;
    }
    for (int i = p.NumItems; i < ExerciseProgram::kMaxItems; ++i)
        p.Item(i) = OrderItem{};
}

void OrderDetailsLogic::cboPayMethod_Click() {
    const bool card = c_.cboPayMethod.Text() != kPurchaseOrder;
    c_.lblCardDate.SetVisible(card);
    c_.txtCardDateVisible.SetVisible(card);
    c_.lblNameOnCard.SetVisible(card);
    c_.txtNameOnCardVisible.SetVisible(card);
}

void OrderDetailsLogic::txtShiptoBill_Click() {
    c_.txtShipAddr.SetText(c_.txtBillAddr.Text());
}

bool OrderDetailsLogic::cmdOKCancel(const QString& caption) {
    shell_.UpdateToolbar(ToolbarMode::All);
    if (caption == QLatin1String("OK")) {
        state_.Program.Modified = true;
        SaveOrderDetails();
        store_.SaveProgram(false);
    }
    return true;
}

void OrderDetailsLogic::Unload() {
    shell_.UpdateMenu(MenuMode::All);
}

} // namespace tarvex
