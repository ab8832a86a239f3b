#pragma once

#include "fakes/FakeControls.h"
#include "program/OrderDetailsLogic.h"
#include "program/ProgramHarness.h"

#include <QLocale>
#include <QStringList>
#include <gtest/gtest.h>

namespace tarvex::testing {

using FakeLabel = fakes::FakeLabel;

class FakeVisible : public IVisible {
public:
    void SetVisible(bool v) override { visible = v; }
    bool IsVisible() const override { return visible; }
    bool visible = true;
};

// A check box that counts how often the logic set it.
class CountingCheckBox : public fakes::FakeCheckBox {
public:
    void SetValue(int v) override {
        ++sets;
        FakeCheckBox::SetValue(v);
    }
    int sets = 0;
};

// Amounts in the dollar format of the United States, whatever the machine's locale.
class UsLocale : public ::testing::Test {
protected:
    void SetUp() override { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void TearDown() override { QLocale::setDefault(saved_); }

private:
    QLocale saved_;
};

// The order dialog's logic over fake controls, on a fresh folder with open databases.
struct OrderForm {
    OrderForm()
        : logic(h.State(), h.shell.shell, h.store,
                {billAddr,   shipAddr,      shipPhone,     payMethod,   cardNum,       cardDate,
                 nameOnCard, lblCardDate,   lblNameOnCard, cardDateBox, nameOnCardBox, chkVideo,
                 chkBand,    chkBall,       chkTax,        shipMethod,  lblVideo,      lblBand,
                 lblBall,    lblShipMethod, lblTax,        lblSubTotal, lblTotal}) {}

    ProgramHarness h;
    fakes::FakeTextBox billAddr, shipAddr, shipPhone, cardNum, cardDate, nameOnCard;
    fakes::FakeComboBox payMethod{false}, shipMethod{false};
    FakeVisible lblCardDate, lblNameOnCard, cardDateBox, nameOnCardBox;
    CountingCheckBox chkVideo, chkBand, chkBall, chkTax;
    FakeLabel lblVideo, lblBand, lblBall, lblShipMethod, lblTax, lblSubTotal, lblTotal;
    OrderDetailsLogic logic;

    // What the user does: a click on a box or an entry of a list.
    void Click(fakes::FakeCheckBox& box) {
        box.value = box.value == 1 ? 0 : 1;
        logic.ShowItemPrices();
    }
    void ChooseShipping(int index) {
        shipMethod.SetListIndex(index);
        logic.ShowItemPrices();
    }
    void ChoosePayment(int index) {
        payMethod.SetListIndex(index);
        logic.cboPayMethod_Click();
    }
};

} // namespace tarvex::testing
