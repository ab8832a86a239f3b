#include "ui/ItemsDialog.h"
#include "order/OrderFakes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::ProgramHarness;
using tarvex::testing::UsLocale;

using ItemsWindow = UsLocale;

TEST_F(ItemsWindow, OpensWithItsCaptionsGroundVisaAndTheShippingAsTheTotal) {
    ProgramHarness h;
    h.shell.shell.UpdateToolbar(ToolbarMode::All);
    auto* dialog = new ItemsDialog(h.State(), h.shell.shell, h.store);
    EXPECT_EQ(dialog->windowTitle(), "Order Items");
    EXPECT_EQ(dialog->chkVideo->text(), "Exercise Video");
    EXPECT_EQ(dialog->chkVideo->property("tag").toString(), "P001");
    EXPECT_EQ(dialog->chkBand->text(), "Band Kit");
    EXPECT_EQ(dialog->chkBall->text(), "Gym Ball");
    EXPECT_EQ(dialog->chkTax->text(), "Mass Tax (5%)");
    EXPECT_EQ(dialog->txtShiptoBill->text(), "Copy >>");
    EXPECT_EQ(dialog->cboShipMethod->currentText(), "UPS Ground");
    EXPECT_EQ(dialog->cboPayMethod->currentText(), "VISA");
    EXPECT_EQ(dialog->lblSubTotal->text(), "$0.00");
    EXPECT_EQ(dialog->lblTotal->text(), "$4.00");
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::None);
    EXPECT_EQ(h.shell.shell.MenuMode(), MenuMode::None);
    dialog->close();
}

TEST_F(ItemsWindow, ClicksRecalculateAndOkStoresTheOrder) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.FillExercises(2);
    auto* dialog = new ItemsDialog(h.State(), h.shell.shell, h.store);
    dialog->show();
    QTest::mouseClick(dialog->chkVideo, Qt::LeftButton, {},
                      QPoint(4, dialog->chkVideo->height() / 2));
    dialog->chkTax->click();
    dialog->cboShipMethod->setCurrentIndex(1);
    emit dialog->cboShipMethod->activated(1);
    EXPECT_EQ(dialog->lblVideo->text(), "$19.95");
    EXPECT_EQ(dialog->lblTax->text(), "$1.00");
    EXPECT_EQ(dialog->lblShipMethod->text(), "$12.00");
    EXPECT_EQ(dialog->lblTotal->text(), "$32.95");

    dialog->cboPayMethod->setCurrentIndex(2);
    emit dialog->cboPayMethod->activated(2);
    EXPECT_FALSE(dialog->txtCardDate->isVisible());
    EXPECT_FALSE(dialog->lblNameOnCard->isVisible());
    EXPECT_TRUE(dialog->txtCardNum->isVisible());
    dialog->txtCardNum->setText("PO-4471");
    dialog->txtBillAddr->setPlainText("Ann Ng\n3 Elm St");
    dialog->txtShiptoBill->click();
    EXPECT_EQ(dialog->txtShipAddr->toPlainText(), "Ann Ng\n3 Elm St");

    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    ASSERT_TRUE(dialog->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/order-items.png"));
    dialog->cmdOK->click();
    const ExerciseProgram& p = h.Program();
    EXPECT_EQ(p.PayMethod, "Purchase Order");
    EXPECT_EQ(p.CardNum, "PO-4471");
    EXPECT_EQ(p.ShipMethod, "UPS 2-Day");
    EXPECT_EQ(p.NumItems, 1);
    EXPECT_EQ(p.Item(0).Price, Currency{199500});
    EXPECT_FALSE(p.Modified);
    EXPECT_TRUE(p.InvoiceID.has_value());
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::All);
    EXPECT_EQ(h.shell.shell.MenuMode(), MenuMode::All);
}

TEST_F(ItemsWindow, TheCloseBoxActsAsCancelAndGivesTheCommandsBack) {
    ProgramHarness h;
    auto* dialog = new ItemsDialog(h.State(), h.shell.shell, h.store);
    dialog->show();
    dialog->chkBall->click();
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_EQ(h.Program().NumItems, 0);
    EXPECT_FALSE(h.Program().Modified);
    EXPECT_EQ(h.shell.shell.ToolbarMode(), ToolbarMode::All);
    EXPECT_EQ(h.shell.shell.MenuMode(), MenuMode::All);
}
