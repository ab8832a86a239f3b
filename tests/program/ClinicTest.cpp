#include "data/Databases.h"
#include "fakes/FakeControls.h"
#include "program/ClinicDialogLogic.h"
#include "program/ClinicStore.h"
#include "shell/ShellHarness.h"
#include "support/Dates.h"
#include "support/TestFolder.h"

#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;
using tarvex::testing::ShellHarness;
using tarvex::testing::TestFolder;

namespace {

struct ClinicForm {
    explicit ClinicForm(AppState& state)
        : shell(state), logic(state, shell.shell,
                              {site, name, phone, billAddr, shipAddr, payMethod, cardNum, cardDate,
                               nameOnCard, shipMethod, lblCardNum, lblCardDate, lblNameOnCard}) {}
    ShellHarness shell;
    FakeTextBox site, name, phone, billAddr, shipAddr, cardNum, cardDate, nameOnCard;
    FakeComboBox payMethod, shipMethod;
    FakeEnableable lblCardNum, lblCardDate, lblNameOnCard;
    ClinicDialogLogic logic;
};

// A new run on the same folder: what a restart reads.
ClinicInfo ReadAfterRestart(TestFolder& folder) {
    AppState fresh;
    folder.PointAt(fresh);
    OpenDatabases(fresh);
    ReadClinicRecord(fresh);
    CloseDatabases(fresh);
    return fresh.Clinic;
}

} // namespace

TEST(ClinicDialog, OnAFirstRunShowsTheFirstItemsAndTheZeroDate) {
    TestFolder folder;
    OpenDatabases(folder.state);
    ReadClinicRecord(folder.state);
    ClinicForm form(folder.state);
    form.logic.Load();
    EXPECT_EQ(form.payMethod.text, "VISA");
    EXPECT_EQ(form.shipMethod.text, "UPS Ground");
    EXPECT_EQ(form.cardDate.text, ShortDate(QDateTime(QDate(1899, 12, 30), QTime(0, 0))));
    EXPECT_EQ(form.payMethod.items, QStringList({"VISA", "Master Card", "Purchase Order"}));
    EXPECT_EQ(form.shipMethod.items, QStringList({"UPS Ground", "UPS 2 Day", "UPS Next Day"}));
}

TEST(ClinicDialog, LoadRestrictsTheCommandsAndUnloadRestoresTheToolbarMode) {
    AppState state;
    ClinicForm form(state);
    form.shell.shell.UpdateToolbar(ToolbarMode::All);
    form.logic.Load();
    EXPECT_EQ(form.shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);
    EXPECT_EQ(form.shell.shell.MenuMode(), MenuMode::None);
    form.logic.Unload();
    EXPECT_EQ(form.shell.shell.ToolbarMode(), ToolbarMode::All);
    EXPECT_EQ(form.shell.shell.MenuMode(), MenuMode::All);
}

TEST(ClinicDialog, ShowsTheSiteNumber) {
    AppState state;
    state.SiteNumber = 1000;
    ClinicForm form(state);
    form.logic.Load();
    EXPECT_EQ(form.site.text, "1000");
}

TEST(ClinicDialog, TypingTheNameFillsOnlyTheEmptyAddressBoxes) {
    AppState state;
    ClinicForm form(state);
    form.logic.Load();
    form.name.text = "Riverside Physical Therapy";
    form.shipAddr.text = "Dock 4";
    form.logic.txtName_LostFocus();
    EXPECT_EQ(form.billAddr.text, "Riverside Physical Therapy\n");
    EXPECT_EQ(form.shipAddr.text, "Dock 4");
}

TEST(ClinicDialog, AFifthLineBreakIsCutOffWithEverythingBehindIt) {
    AppState state;
    ClinicForm form(state);
    form.billAddr.text = "1\n2\n3\n4\n5\n6 the tail\n7";
    form.logic.txtAddress_Change(form.billAddr);
    EXPECT_EQ(form.billAddr.text, "1\n2\n3\n4\n5");
    EXPECT_EQ(form.billAddr.cursor, 9);
    form.shipAddr.text = "a\r\nb\r\nc\r\nd\r\ne\r\nf";
    form.logic.txtAddress_Change(form.shipAddr);
    EXPECT_EQ(form.shipAddr.text, "a\r\nb\r\nc\r\nd\r\ne");
}

TEST(ClinicDialog, FourLineBreaksAreAllowed) {
    FakeTextBox box;
    box.text = "1\n2\n3\n4\n5";
    EXPECT_FALSE(LimitAddressLines(box));
    EXPECT_EQ(box.text, "1\n2\n3\n4\n5");
    EXPECT_EQ(box.cursor, -1);
}

TEST(ClinicDialog, CopyPutsTheBillingAddressIntoTheShippingAddress) {
    AppState state;
    ClinicForm form(state);
    form.billAddr.text = "12 Elm St\nSpringfield";
    form.shipAddr.text = "old";
    form.logic.cmdCopyBillToShip();
    EXPECT_EQ(form.shipAddr.text, "12 Elm St\nSpringfield");
}

TEST(ClinicDialog, PurchaseOrderMakesTheCardFieldsUnavailableButKeepsAndSavesThem) {
    TestFolder folder;
    OpenDatabases(folder.state);
    ClinicForm form(folder.state);
    form.logic.Load();
    form.cardNum.text = "PO-7781";
    form.nameOnCard.text = "Accounts";
    form.payMethod.SetText("Purchase Order");
    form.logic.cboPayMethod_Click();
    EXPECT_FALSE(form.cardNum.enabled);
    EXPECT_FALSE(form.cardDate.enabled);
    EXPECT_FALSE(form.nameOnCard.enabled);
    EXPECT_FALSE(form.lblCardNum.enabled);
    EXPECT_FALSE(form.lblCardDate.enabled);
    EXPECT_FALSE(form.lblNameOnCard.enabled);
    EXPECT_EQ(form.cardNum.text, "PO-7781");
    EXPECT_TRUE(form.logic.cmdOKCancel("OK"));
    EXPECT_EQ(folder.state.Clinic.CardNum, "PO-7781");
    EXPECT_EQ(ReadAfterRestart(folder).NameOnCard, "Accounts");
    form.payMethod.SetText("VISA");
    form.logic.cboPayMethod_Click();
    EXPECT_TRUE(form.cardNum.enabled);
}

TEST(ClinicDialog, SavingMasterCardAndRestartingShowsVisa) {
    TestFolder folder;
    OpenDatabases(folder.state);
    ClinicForm form(folder.state);
    form.logic.Load();
    form.payMethod.SetText("Master Card");
    form.shipMethod.SetText("UPS Next Day");
    form.logic.cmdOKCancel("OK");
    EXPECT_EQ(folder.state.Clinic.PayMethod, "Master Card");

    AppState restarted;
    folder.PointAt(restarted);
    OpenDatabases(restarted);
    ReadClinicRecord(restarted);
    EXPECT_EQ(restarted.Clinic.PayMethod, "0"); // read back as a number
    EXPECT_EQ(restarted.Clinic.ShipMethod, "0");
    ClinicForm again(restarted);
    again.logic.Load();
    EXPECT_EQ(again.payMethod.text, "VISA");
    EXPECT_EQ(again.shipMethod.text, "UPS Ground");
    CloseDatabases(restarted);
}

TEST(ClinicDialog, AnUnreadableCardDateBecomesFirstJanuary1990WithoutTimeOfDay) {
    TestFolder folder;
    OpenDatabases(folder.state);
    ClinicForm form(folder.state);
    form.logic.Load();
    form.cardDate.text = "whenever";
    form.logic.cmdOKCancel("OK");
    EXPECT_EQ(folder.state.Clinic.CardDate, QDateTime(QDate(1990, 1, 1), QTime(0, 0)));
    form.cardDate.text = "2028-07-31 17:45:00";
    form.logic.cmdOKCancel("OK");
    EXPECT_EQ(folder.state.Clinic.CardDate, QDateTime(QDate(2028, 7, 31), QTime(0, 0)));
    EXPECT_EQ(ReadAfterRestart(folder).CardDate, QDateTime(QDate(2028, 7, 31), QTime(0, 0)));
}

TEST(ClinicDialog, CancelWritesNothing) {
    TestFolder folder;
    OpenDatabases(folder.state);
    ClinicForm form(folder.state);
    form.logic.Load();
    form.name.text = "Not saved";
    EXPECT_TRUE(form.logic.cmdOKCancel("Cancel"));
    EXPECT_EQ(folder.state.Clinic.Name, "");
    EXPECT_EQ(ReadAfterRestart(folder).Name, "");
}

TEST(ClinicStore, KeepsOneRowAndReadsNamesOfAnyKindBack) {
    TestFolder folder;
    OpenDatabases(folder.state);
    const QString names[] = {
        "O'Brien's \"Best\" Physio; DROP TABLE Clinic; --",
        QString::fromUtf8("Физиотерапия Ёлка — 東京リハビリ 🏥 100% \\ back"),
        QString(10000, QChar('W')),
    };
    for (const QString& name : names) {
        folder.state.Clinic.Name = name;
        folder.state.Clinic.BillAddr = name.left(255);
        WriteClinicRecord(folder.state);
        const ClinicInfo read = ReadAfterRestart(folder);
        EXPECT_EQ(read.Name, name);
        EXPECT_EQ(read.BillAddr, name.left(255));
    }
    QSqlQuery count(folder.state.Dbs.ProgramDb);
    ASSERT_TRUE(count.exec("SELECT COUNT(*) FROM Clinic"));
    ASSERT_TRUE(count.next());
    EXPECT_EQ(count.value(0).toInt(), 1);
}
