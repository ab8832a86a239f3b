// An address typed on three lines in the clinic dialog is stored with the program's own
// line breaks and prints on three lines of the video order form.
#include "data/Sql.h"
#include "program/OrderDetailsLogic.h"
#include "ui/ClinicDialog.h"
#include "ui/MainWindowRun.h"
#include "ui/WorkspaceWindow.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// The number of the first line of the text that contains the piece, or -1.
int LineOf(const QStringList& lines, const QString& piece) {
    for (int i = 0; i < lines.size(); ++i)
        if (lines[i].contains(piece))
            return i;
    return -1;
}

} // namespace

TEST(AddressLines, AThreeLineAddressTypedInTheClinicDialogPrintsOnThreeLines) {
    tarvex::testing::MainWindowRun w;
    w.window.MenuCommands().Action("mnuClinic")->trigger();
    auto* clinic = w.window.findChild<ClinicDialog*>();
    ASSERT_NE(clinic, nullptr);
    clinic->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(clinic));
    // The clinic's name first: leaving it starts the empty addresses with it.
    clinic->txtName->setFocus();
    QTest::keyClicks(clinic->txtName, "Riverside Physio");
    clinic->txtBillAddr->setFocus();
    EXPECT_EQ(clinic->txtBillAddr->toPlainText(), "Riverside Physio\n");
    QTest::keyClicks(clinic->txtBillAddr, "12 Harbour Road");
    QTest::keyClick(clinic->txtBillAddr, Qt::Key_Return);
    QTest::keyClicks(clinic->txtBillAddr, "Portland, OR 97201");
    QTest::mouseClick(clinic->cmdOK, Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(w.state.Clinic.BillAddr.toStdString(),
              "Riverside Physio\r\n12 Harbour Road\r\nPortland, OR 97201");

    // A patient's program, made in the workspace: its bill-to address comes from the clinic.
    w.ChooseOkafor();
    w.window.ToolbarCommands().Action("Exercises")->trigger();
    QTest::mouseClick(w.window.Workspace()->Button("cmdOK"), Qt::LeftButton);
    ASSERT_TRUE(w.state.Program.InvoiceID.has_value());
    QSqlQuery stored = OpenQuery(w.state.Dbs.ProgramDb,
                                 QStringLiteral("SELECT BillAddr FROM Invoice WHERE InvoiceID = %1")
                                     .arg(*w.state.Program.InvoiceID));
    ASSERT_TRUE(stored.next());
    EXPECT_EQ(stored.value(0).toString(), w.state.Clinic.BillAddr);

    w.PrintToPdf();
    w.state.SkipPrintDialog = true;
    w.window.MenuCommands().Action("mnuPrintVideo")->trigger();
    const QStringList lines = w.PrintedText().split('\n');
    const int first = LineOf(lines, "Riverside Physio");
    const int second = LineOf(lines, "12 Harbour Road");
    const int third = LineOf(lines, "Portland, OR 97201");
    ASSERT_GE(first, 0) << w.PrintedText().toStdString();
    EXPECT_GT(second, first);
    EXPECT_GT(third, second);
    EXPECT_FALSE(lines[first].contains("Harbour")) << lines[first].toStdString();
}

TEST(AddressLines, AStoredLoneLineFeedShowsAsALineInTheBox) {
    QPlainTextEdit edit;
    QtPlainTextEdit box(&edit);
    box.SetText("Riverside Physio\n12 Harbour Road\r\nPortland");
    EXPECT_EQ(edit.blockCount(), 3);
    EXPECT_EQ(box.Text(), "Riverside Physio\r\n12 Harbour Road\r\nPortland");
    box.SetCursorPosition(18); // after the first CR LF
    EXPECT_EQ(edit.textCursor().position(), 17);
}
