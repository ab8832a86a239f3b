#include "order/OrderFakes.h"
#include "support/Dates.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::OrderForm;
using tarvex::testing::UsLocale;

using OrderDetails = UsLocale;

namespace {

QDateTime Day(int y, int m, int d) {
    return QDateTime(QDate(y, m, d), QTime(0, 0));
}

void SetClinicDefaults(AppState& state) {
    state.Clinic.BillAddr = "Riverside PT\r\n1200 River Road";
    state.Clinic.ShipAddr = "Riverside PT\r\nSuite 4";
    state.Clinic.Phone = "(217) 555-0100";
    state.Clinic.PayMethod = "Master Card";
    state.Clinic.ShipMethod = "UPS Next Day";
    state.Clinic.CardNum = "5100 0000 0000 0001";
    state.Clinic.CardDate = Day(2027, 6, 1);
    state.Clinic.NameOnCard = "Dana Reyes";
}

} // namespace

TEST_F(OrderDetails, TheCatalogueAndTheDialogsOwnShippingRates) {
    const auto& articles = OrderDetailsLogic::Catalogue();
    EXPECT_STREQ(articles[0].Description, "Exercise Video");
    EXPECT_STREQ(articles[0].PartNumber, "P001");
    EXPECT_EQ(articles[0].Price, Currency{199500});
    EXPECT_STREQ(articles[1].Description, "Band Kit");
    EXPECT_STREQ(articles[1].PartNumber, "P002");
    EXPECT_EQ(articles[1].Price, Currency::FromWhole(10));
    EXPECT_STREQ(articles[2].Description, "Gym Ball");
    EXPECT_STREQ(articles[2].PartNumber, "P003");
    EXPECT_EQ(articles[2].Price, Currency::FromWhole(20));
    const auto& rates = OrderDetailsLogic::ShipRates();
    EXPECT_STREQ(rates[0].Method, "UPS Ground");
    EXPECT_EQ(rates[0].Rate, Currency::FromWhole(4));
    EXPECT_STREQ(rates[1].Method, "UPS 2-Day");
    EXPECT_EQ(rates[1].Rate, Currency::FromWhole(12));
    EXPECT_STREQ(rates[2].Method, "UPS Next Day");
    EXPECT_EQ(rates[2].Rate, Currency::FromWhole(20));
}

TEST_F(OrderDetails, LoadTurnsEveryToolbarButtonOffAndTheRestrictedMenuToo) {
    OrderForm f;
    f.h.shell.shell.UpdateToolbar(ToolbarMode::All);
    f.h.shell.shell.UpdateMenu(MenuMode::All);
    f.logic.Load();
    EXPECT_EQ(f.h.shell.shell.ToolbarMode(), ToolbarMode::None);
    EXPECT_EQ(f.h.shell.shell.MenuMode(), MenuMode::None);
    EXPECT_TRUE(f.h.shell.ToolbarOn().isEmpty());
    EXPECT_TRUE(f.h.shell.MenuOn().isEmpty());
}

TEST_F(OrderDetails, OkAndCancelBothGiveToolbarModeTwoAndUnloadGivesMenuModeTwo) {
    for (const char* button : {"OK", "Cancel"}) {
        OrderForm f;
        f.logic.Load();
        EXPECT_TRUE(f.logic.cmdOKCancel(button));
        EXPECT_EQ(f.h.shell.shell.ToolbarMode(), ToolbarMode::All) << button;
        EXPECT_EQ(f.h.shell.shell.MenuMode(), MenuMode::None) << button;
        f.logic.Unload();
        EXPECT_EQ(f.h.shell.shell.MenuMode(), MenuMode::All) << button;
        EXPECT_EQ(f.h.shell.ToolbarOn(), Shell::ToolbarKeys());
    }
}

TEST_F(OrderDetails, WithNoBoxTickedTheSubTotalIsZeroAndTheTotalIsTheShippingAlone) {
    OrderForm f;
    f.logic.Load();
    EXPECT_EQ(f.lblVideo.caption, "");
    EXPECT_EQ(f.lblBand.caption, "");
    EXPECT_EQ(f.lblBall.caption, "");
    EXPECT_EQ(f.lblSubTotal.caption, "$0.00");
    EXPECT_EQ(f.lblTax.caption, "");
    EXPECT_EQ(f.lblShipMethod.caption, "$4.00");
    EXPECT_EQ(f.lblTotal.caption, "$4.00");
    f.ChooseShipping(2);
    EXPECT_EQ(f.lblShipMethod.caption, "$20.00");
    EXPECT_EQ(f.lblTotal.caption, "$20.00");
}

TEST_F(OrderDetails, TaxIsFivePercentOfTheItemsAndNotOfTheShipping) {
    OrderForm f;
    f.logic.Load();
    f.Click(f.chkBand);
    f.Click(f.chkBall);
    EXPECT_EQ(f.lblSubTotal.caption, "$30.00");
    EXPECT_EQ(f.lblTotal.caption, "$34.00");
    f.Click(f.chkTax);
    EXPECT_EQ(f.lblTax.caption, "$1.50");
    EXPECT_EQ(f.lblTotal.caption, "$35.50");
    f.Click(f.chkTax);
    EXPECT_EQ(f.lblTax.caption, "");
    EXPECT_EQ(f.lblTotal.caption, "$34.00");
}

TEST_F(OrderDetails, TheVideoAloneByTwoDayWithTaxAddsTheRoundedTaxAndTwelve) {
    OrderForm f;
    f.logic.Load();
    f.Click(f.chkVideo);
    f.ChooseShipping(1);
    f.Click(f.chkTax);
    EXPECT_EQ(f.lblVideo.caption, "$19.95");
    EXPECT_EQ(f.lblSubTotal.caption, "$19.95");
    EXPECT_EQ(f.lblTax.caption, "$1.00"); // 0.9975 as the format shows it
    EXPECT_EQ(f.lblShipMethod.caption, "$12.00");
    // The total adds the amounts as the captions show them: 19.95 + 1.00 + 12.
    EXPECT_EQ(f.lblTotal.caption, "$32.95");
}

TEST_F(OrderDetails, WithNoSelectedShippingTheShippingLabelStaysAsItWas) {
    OrderForm f;
    f.logic.Load();
    f.shipMethod.text = "Courier"; // no entry of the list
    f.Click(f.chkBall);
    EXPECT_EQ(f.lblShipMethod.caption, "$4.00");
    EXPECT_EQ(f.lblTotal.caption, "$24.00");
}

TEST_F(OrderDetails, FillsFromTheClinicWhereTheProgramHasNoValue) {
    OrderForm f;
    SetClinicDefaults(f.h.State());
    f.logic.FillOrderDetails();
    EXPECT_EQ(f.billAddr.text, "Riverside PT\r\n1200 River Road");
    EXPECT_EQ(f.shipAddr.text, "Riverside PT\r\nSuite 4");
    EXPECT_EQ(f.shipPhone.text, "(217) 555-0100");
    EXPECT_EQ(f.payMethod.text, "Master Card");
    EXPECT_EQ(f.shipMethod.text, "UPS Next Day");
    EXPECT_EQ(f.cardNum.text, "5100 0000 0000 0001");
    EXPECT_EQ(f.cardDate.text, ShortDate(Day(2027, 6, 1)));
    EXPECT_EQ(f.nameOnCard.text, "Dana Reyes");
}

TEST_F(OrderDetails, TheProgramsOwnValuesComeFirst) {
    OrderForm f;
    SetClinicDefaults(f.h.State());
    ExerciseProgram& p = f.h.Program();
    p.BillAddr = "Ann Ng\r\n3 Elm St";
    p.ShipAddr = "Ann Ng\r\n9 Oak Ave";
    p.ShipPhone = "(217) 555-0199";
    p.PayMethod = "VISA";
    p.ShipMethod = "UPS 2-Day";
    p.CardNum = "4111 1111 1111 1111";
    p.CardDate = Day(2026, 1, 31);
    p.NameOnCard = "Ann Ng";
    f.logic.FillOrderDetails();
    EXPECT_EQ(f.billAddr.text, "Ann Ng\r\n3 Elm St");
    EXPECT_EQ(f.shipAddr.text, "Ann Ng\r\n9 Oak Ave");
    EXPECT_EQ(f.shipPhone.text, "(217) 555-0199");
    EXPECT_EQ(f.payMethod.text, "VISA");
    EXPECT_EQ(f.shipMethod.text, "UPS 2-Day");
    EXPECT_EQ(f.cardNum.text, "4111 1111 1111 1111");
    EXPECT_EQ(f.cardDate.text, ShortDate(Day(2026, 1, 31)));
    EXPECT_EQ(f.nameOnCard.text, "Ann Ng");
}

TEST_F(OrderDetails, AClinicThatPaysByPurchaseOrderGivesNoCardDetails) {
    OrderForm f;
    SetClinicDefaults(f.h.State());
    f.h.State().Clinic.PayMethod = "Purchase Order";
    f.logic.FillOrderDetails();
    EXPECT_EQ(f.payMethod.text, "Purchase Order");
    EXPECT_EQ(f.cardNum.text, "");
    EXPECT_EQ(f.cardDate.text, "");
    EXPECT_EQ(f.nameOnCard.text, "");
}

TEST_F(OrderDetails, TheListsComeAfterTheFieldsAndAlwaysOpenWithGroundAndVisa) {
    OrderForm f;
    SetClinicDefaults(f.h.State());
    f.h.Program().PayMethod = "Master Card";
    f.h.Program().ShipMethod = "UPS Next Day";
    f.h.Program().CardNum = "5100 2222";
    f.logic.FillOrderDetails();
    EXPECT_EQ(f.shipMethod.text, "UPS Next Day");
    EXPECT_EQ(f.payMethod.text, "Master Card");
    EXPECT_TRUE(f.shipMethod.items.isEmpty());
    f.logic.FillOrderCombos();
    EXPECT_EQ(f.shipMethod.items, QStringList({"UPS Ground", "UPS 2-Day", "UPS Next Day"}));
    EXPECT_EQ(f.payMethod.items, QStringList({"VISA", "Master Card", "Purchase Order"}));
    EXPECT_EQ(f.shipMethod.text, "UPS Ground");
    EXPECT_EQ(f.payMethod.text, "VISA");
    EXPECT_EQ(f.lblShipMethod.caption, "$4.00");
    EXPECT_EQ(f.cardNum.text, "5100 2222"); // the card fields keep what the program gave

    // A save without changes stores the first entries.
    f.logic.SaveOrderDetails();
    EXPECT_EQ(f.h.Program().ShipMethod, "UPS Ground");
    EXPECT_EQ(f.h.Program().PayMethod, "VISA");
}

TEST_F(OrderDetails, AProgramPaidByPurchaseOrderOpensWithVisaAndEmptyCardFields) {
    OrderForm f;
    SetClinicDefaults(f.h.State());
    f.h.Program().PayMethod = "Purchase Order";
    f.h.Program().CardNum = "PO-4471";
    f.h.Program().NameOnCard = "Dana Reyes";
    f.logic.Load();
    EXPECT_EQ(f.payMethod.text, "VISA");
    EXPECT_EQ(f.cardNum.text, "");
    EXPECT_EQ(f.cardDate.text, "");
    EXPECT_EQ(f.nameOnCard.text, "");
    EXPECT_TRUE(f.cardDateBox.visible);
    EXPECT_TRUE(f.nameOnCardBox.visible);
}

TEST_F(OrderDetails, ChoosingPurchaseOrderHidesDateAndNameButKeepsTheNumber) {
    OrderForm f;
    f.logic.Load();
    f.ChoosePayment(2);
    EXPECT_FALSE(f.lblCardDate.visible);
    EXPECT_FALSE(f.cardDateBox.visible);
    EXPECT_FALSE(f.lblNameOnCard.visible);
    EXPECT_FALSE(f.nameOnCardBox.visible);
    EXPECT_TRUE(f.cardNum.enabled);
    f.ChoosePayment(1);
    EXPECT_TRUE(f.lblCardDate.visible);
    EXPECT_TRUE(f.cardDateBox.visible);
    EXPECT_TRUE(f.lblNameOnCard.visible);
    EXPECT_TRUE(f.nameOnCardBox.visible);
}

TEST_F(OrderDetails, TheProgramsItemsAndTaxTickTheirBoxesAndRecalculateAtOnce) {
    OrderForm f;
    ExerciseProgram& p = f.h.Program();
    p.Tax = 5;
    p.Item(0) = {"P003", "Gym Ball", 1, Currency::FromWhole(20)};
    p.Item(1) = {"P001", "Exercise Video", 1, Currency{199500}};
    p.Item(2) = {"P001", "Exercise Video", 1, Currency{199500}};
    f.logic.FillOrderDetails();
    EXPECT_EQ(f.chkTax.value, 1);
    EXPECT_EQ(f.chkVideo.value, 1);
    EXPECT_EQ(f.chkBand.value, 0);
    EXPECT_EQ(f.chkBall.value, 1);
    EXPECT_EQ(f.chkVideo.sets, 1); // a box already ticked is not ticked again
    // Ticking recalculated before the lists exist: no shipping yet.
    EXPECT_EQ(f.lblVideo.caption, "$19.95");
    EXPECT_EQ(f.lblBall.caption, "$20.00");
    EXPECT_EQ(f.lblSubTotal.caption, "$39.95");
    EXPECT_EQ(f.lblTax.caption, "$2.00");
    EXPECT_EQ(f.lblShipMethod.caption, "");
    EXPECT_EQ(f.lblTotal.caption, "$41.95");
    f.logic.FillOrderCombos();
    EXPECT_EQ(f.lblTotal.caption, "$45.95");
}

TEST_F(OrderDetails, CopyPutsTheBillingAddressIntoTheShippingAddress) {
    OrderForm f;
    f.logic.Load();
    f.billAddr.text = "Ann Ng\r\n3 Elm St";
    f.shipAddr.text = "elsewhere";
    f.logic.txtShiptoBill_Click();
    EXPECT_EQ(f.shipAddr.text, "Ann Ng\r\n3 Elm St");
}

TEST_F(OrderDetails, OkWritesTheControlsIntoTheProgramAndStoresIt) {
    OrderForm f;
    SetClinicDefaults(f.h.State());
    const int32_t patient = f.h.AddPatient("Ng");
    f.h.Choose(patient, "Ng, Ann");
    f.h.FillExercises(2);
    f.h.Program().Modified = false;
    f.h.Program().Item(2) = {"X9", "Old line", 4, Currency::FromWhole(3)};
    f.logic.Load();
    f.Click(f.chkVideo);
    f.Click(f.chkBall);
    f.Click(f.chkTax);
    f.ChooseShipping(1);
    f.ChoosePayment(1);
    f.cardDate.text = ShortDate(Day(2028, 2, 29));
    EXPECT_TRUE(f.logic.cmdOKCancel("OK"));

    const ExerciseProgram& p = f.h.Program();
    EXPECT_EQ(p.BillAddr, "Riverside PT\r\n1200 River Road");
    EXPECT_EQ(p.ShipPhone, "(217) 555-0100");
    EXPECT_EQ(p.PayMethod, "Master Card");
    EXPECT_EQ(p.ShipMethod, "UPS 2-Day");
    EXPECT_EQ(p.CardNum, "5100 0000 0000 0001");
    EXPECT_EQ(p.CardDate, Day(2028, 2, 29));
    EXPECT_EQ(p.NameOnCard, "Dana Reyes");
    EXPECT_EQ(p.Tax, 5);
    EXPECT_EQ(p.NumItems, 2);
    EXPECT_EQ(p.Item(0).Description, "Exercise Video");
    EXPECT_EQ(p.Item(0).PartNumber, "P001");
    EXPECT_EQ(p.Item(0).Price, Currency{199500});
    EXPECT_EQ(p.Item(0).Qty, 1);
    EXPECT_EQ(p.Item(1).Description, "Gym Ball");
    EXPECT_EQ(p.Item(1).PartNumber, "P003");
    EXPECT_EQ(p.Item(1).Price, Currency::FromWhole(20));
    EXPECT_EQ(p.Item(1).Qty, 1);
    EXPECT_EQ(p.Item(2).Description, "");
    EXPECT_EQ(p.Item(2).PartNumber, "");
    EXPECT_EQ(p.Item(2).Qty, 0);
    EXPECT_EQ(p.Item(2).Price, Currency{});

    // Stored without a question: the save clears Modified and gives the program its row.
    EXPECT_TRUE(f.h.prompter.boxes.empty());
    EXPECT_FALSE(p.Modified);
    ASSERT_TRUE(p.InvoiceID.has_value());
    const QString id = QString::number(*p.InvoiceID);
    EXPECT_EQ(f.h.Count("SELECT COUNT(*) FROM Items WHERE InvoiceID = " + id), 2);
    EXPECT_EQ(f.h.Count("SELECT Tax FROM Invoice WHERE InvoiceID = " + id), 5);
    EXPECT_EQ(f.h.Count("SELECT COUNT(*) FROM Items WHERE InvoiceID = " + id +
                        " AND PartNumber = 'P003' AND Price = 20 AND Qty = 1"),
              1);
}

TEST_F(OrderDetails, OkWithoutAPatientKeepsTheOrderInMemoryAndLeavesItModified) {
    OrderForm f;
    f.logic.Load();
    f.Click(f.chkBand);
    f.logic.cmdOKCancel("OK");
    EXPECT_TRUE(f.h.Program().Modified);
    EXPECT_EQ(f.h.Program().NumItems, 1);
    EXPECT_EQ(f.h.Program().Item(0).PartNumber, "P002");
    EXPECT_EQ(f.h.Count("SELECT COUNT(*) FROM Invoice"), 0);
}

TEST_F(OrderDetails, CancelChangesNothingInTheProgramNorSetsModified) {
    OrderForm f;
    SetClinicDefaults(f.h.State());
    ExerciseProgram& p = f.h.Program();
    p.PayMethod = "Purchase Order";
    p.ShipMethod = "UPS Next Day";
    p.CardNum = "PO-4471";
    p.Item(0) = {"P002", "Band Kit", 1, Currency::FromWhole(10)};
    p.NumItems = 1;
    f.logic.Load();
    f.Click(f.chkVideo);
    f.Click(f.chkTax);
    f.billAddr.text = "changed";
    EXPECT_TRUE(f.logic.cmdOKCancel("Cancel"));
    f.logic.Unload();
    EXPECT_FALSE(p.Modified);
    EXPECT_EQ(p.PayMethod, "Purchase Order");
    EXPECT_EQ(p.ShipMethod, "UPS Next Day");
    EXPECT_EQ(p.CardNum, "PO-4471");
    EXPECT_EQ(p.BillAddr, "");
    EXPECT_EQ(p.Tax, 0);
    EXPECT_EQ(p.NumItems, 1);
    EXPECT_EQ(p.Item(0).PartNumber, "P002");
    EXPECT_EQ(p.Item(1).PartNumber, "");
}

TEST_F(OrderDetails, ACardDateThatIsNoDateEndsTheSaveWithAFault) {
    OrderForm f;
    f.logic.Load();
    f.cardDate.text = "soon";
    EXPECT_THROW(f.logic.cmdOKCancel("OK"), TypeFault);
}

TEST_F(OrderDetails, AnEmptyCardDateIsStoredAsTheEmptyDate) {
    OrderForm f;
    f.h.Program().PayMethod = "Purchase Order";
    f.logic.Load();
    ASSERT_EQ(f.cardDate.text, "");
    f.logic.SaveOrderDetails();
    EXPECT_EQ(f.h.Program().CardDate, ZeroDate());
}
