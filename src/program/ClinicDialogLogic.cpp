#include "program/ClinicDialogLogic.h"

#include "data/NullValues.h"
#include "program/ClinicStore.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Dates.h"

namespace tarvex {

namespace {

// Sets a fixed list's text; when the list refuses it the first item is chosen.
void SetListText(IComboBox& box, const QString& text) {
    if (!box.SetText(text))
        box.SetListIndex(0);
}

} // namespace

const QStringList& ClinicDialogLogic::PayMethods() {
    static const QStringList items = {"VISA", "Master Card", "Purchase Order"};
    return items;
}

const QStringList& ClinicDialogLogic::ShipMethods() {
    static const QStringList items = {"UPS Ground", "UPS 2 Day", "UPS Next Day"};
    return items;
}

ClinicDialogLogic::ClinicDialogLogic(AppState& state, Shell& shell, Controls controls)
    : state_(state), shell_(shell), c_(controls) {}

void ClinicDialogLogic::Load() {
    FillClinicLists();
    InitClinicFields();
    shell_.UpdateMenu(MenuMode::None);
    savedToolbarMode_ = shell_.ToolbarMode();
    shell_.UpdateToolbar(ToolbarMode::HelpOnly);
}

void ClinicDialogLogic::FillClinicLists() {
    c_.cboPayMethod.Clear();
    c_.cboShipMethod.Clear();
    for (const QString& item : PayMethods())
        c_.cboPayMethod.AddItem(item);
    for (const QString& item : ShipMethods())
        c_.cboShipMethod.AddItem(item);
}

void ClinicDialogLogic::InitClinicFields() {
    const ClinicInfo& clinic = state_.Clinic;
    c_.SiteNumBox.SetText(QString::number(state_.SiteNumber));
    c_.txtName.SetText(clinic.Name);
    c_.txtPhone.SetText(clinic.Phone);
    c_.txtBillAddr.SetText(clinic.BillAddr);
    c_.txtShipAddr.SetText(clinic.ShipAddr);
    SetListText(c_.cboPayMethod, clinic.PayMethod);
    c_.txtCardNum.SetText(clinic.CardNum);
    c_.txtCardDate.SetText(ShortDate(clinic.CardDate));
    c_.txtNameOnCard.SetText(clinic.NameOnCard);
    SetListText(c_.cboShipMethod, clinic.ShipMethod);
    cboPayMethod_Click();
}

void ClinicDialogLogic::SaveClinicFields() {
    ClinicInfo& clinic = state_.Clinic;
    clinic.Name = c_.txtName.Text();
    clinic.Phone = c_.txtPhone.Text();
    clinic.BillAddr = c_.txtBillAddr.Text();
    clinic.ShipAddr = c_.txtShipAddr.Text();
    clinic.PayMethod = c_.cboPayMethod.Text();
    clinic.CardNum = c_.txtCardNum.Text();
    // Through the short date and back, which drops any time of day.
    clinic.CardDate = CDate(ShortDate(NullToDate(c_.txtCardDate.Text())));
    clinic.NameOnCard = c_.txtNameOnCard.Text();
    clinic.ShipMethod = c_.cboShipMethod.Text();
}

void ClinicDialogLogic::cboPayMethod_Click() {
    const bool card = c_.cboPayMethod.Text() != QLatin1String("Purchase Order");
    c_.lblCardNum.SetEnabled(card);
    c_.txtCardNum.SetEnabled(card);
    c_.lblCardDate.SetEnabled(card);
    c_.txtCardDate.SetEnabled(card);
    c_.lblNameOnCard.SetEnabled(card);
    c_.txtNameOnCard.SetEnabled(card);
}

void ClinicDialogLogic::txtName_LostFocus() {
    const QString filled = c_.txtName.Text() + u'\n';
    if (c_.txtBillAddr.Text().isEmpty())
        c_.txtBillAddr.SetText(filled);
    if (c_.txtShipAddr.Text().isEmpty())
        c_.txtShipAddr.SetText(filled);
}

void ClinicDialogLogic::txtAddress_Change(ITextBox& box) {
    if (box.Text().size() > kAddressLimit) {
        box.SetText(box.Text().left(kAddressLimit));
        box.SetCursorPosition(kAddressLimit);
    }
    LimitAddressLines(box);
}

void ClinicDialogLogic::cmdCopyBillToShip() {
    c_.txtShipAddr.SetText(c_.txtBillAddr.Text());
}

bool ClinicDialogLogic::cmdOKCancel(const QString& tag) {
    if (tag == QLatin1String("OK")) {
        SaveClinicFields();
        WriteClinicRecord(state_);
    }
    return tag == QLatin1String("OK") || tag == QLatin1String("Cancel");
}

void ClinicDialogLogic::Unload() {
    shell_.UpdateToolbar(savedToolbarMode_);
    shell_.UpdateMenu(MenuMode::All);
}

bool LimitAddressLines(ITextBox& box) {
    const QString text = box.Text();
    int breaks = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) != u'\n')
            continue;
        if (++breaks <= ClinicDialogLogic::kMaxAddressBreaks)
            continue;
        const qsizetype cut = (i > 0 && text.at(i - 1) == u'\r') ? i - 1 : i;
        box.SetText(text.left(cut));
        box.SetCursorPosition(static_cast<int>(cut));
        return true;
    }
    return false;
}

} // namespace tarvex
