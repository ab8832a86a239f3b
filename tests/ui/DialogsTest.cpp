#include "data/Databases.h"
#include "fakes/FakeControls.h"
#include "shell/ShellHarness.h"
#include "shell/SingleInstance.h"
#include "support/TestFolder.h"
#include "ui/ClinicDialog.h"
#include "ui/PreferencesDialog.h"
#include "ui/SplashDialog.h"

#include <QDir>
#include <QFocusEvent>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

using namespace tarvex;

TEST(SplashDialog, ShowsProductCompanyAndVersion) {
    SplashDialog splash;
    EXPECT_EQ(splash.lblProductName->text(), "TVX Regimenter");
    EXPECT_EQ(splash.lblCompanyProduct->text(), "Tarvex");
    EXPECT_EQ(splash.lblVersion->text(), "Version 3.6.0");
    EXPECT_EQ(splash.Timer1.interval(), 1000);
    EXPECT_TRUE(splash.Timer1.isActive());
}

TEST(SplashDialog, AKeyPressClosesItAtOnce) {
    SplashDialog splash;
    splash.show();
    QSignalSpy accepted(&splash, &QDialog::accepted);
    QTest::keyClick(&splash, Qt::Key_Space);
    EXPECT_EQ(accepted.count(), 1);
    EXPECT_FALSE(splash.isVisible());
}

TEST(SplashDialog, AClickClosesItAtOnce) {
    SplashDialog splash;
    splash.show();
    QTest::mouseClick(&splash, Qt::LeftButton);
    EXPECT_FALSE(splash.isVisible());
}

TEST(SplashDialog, DisappearsAfterThreeTicksIfNothingIsPressed) {
    SplashDialog splash;
    splash.show();
    splash.Tick();
    splash.Tick();
    EXPECT_TRUE(splash.isVisible());
    splash.Tick();
    EXPECT_FALSE(splash.isVisible());
}

TEST(PreferencesDialog, HasItsCaptionsAndTips) {
    AppState state;
    state.Prefs.PrintCallTVX = true;
    auto* dialog = new PreferencesDialog(state);
    EXPECT_EQ(dialog->windowTitle(), "Preferences");
    EXPECT_EQ(dialog->chkPrintCover->text(), "Print Patient's Cover Sheet");
    EXPECT_EQ(dialog->chkCallTVX->text(), "Print \"Call TVX\" prompt");
    EXPECT_EQ(dialog->chkShowTips->text(), "Show Tips at Startup");
    EXPECT_TRUE(dialog->chkCallTVX->isChecked());
    EXPECT_EQ(dialog->cmdOK->toolTip(), "Save changes and exit");
    EXPECT_EQ(dialog->cmdCancel->toolTip(), "Discard changes and exit");
    dialog->chkShowTips->setChecked(false);
    dialog->cmdOK->click();
    EXPECT_FALSE(state.Prefs.ShowTips);
}

TEST(ClinicDialog, ScreenshotAndControls) {
    tarvex::testing::TestFolder folder;
    OpenDatabases(folder.state);
    folder.state.SiteNumber = 1000;
    tarvex::testing::ShellHarness shell(folder.state);
    shell.shell.UpdateToolbar(ToolbarMode::PatientOnly);
    auto* dialog = new ClinicDialog(folder.state, shell.shell);
    EXPECT_EQ(dialog->windowTitle(), "Clinic Information");
    EXPECT_FALSE(dialog->SiteNumBox->isEnabled());
    EXPECT_EQ(dialog->SiteNumBox->text(), "1000");
    EXPECT_EQ(dialog->txtName->maxLength(), 50);
    EXPECT_EQ(dialog->txtPhone->maxLength(), 20);
    EXPECT_EQ(dialog->txtCardNum->maxLength(), 20);
    EXPECT_EQ(dialog->txtNameOnCard->maxLength(), 30);
    EXPECT_EQ(dialog->cboPayMethod->currentText(), "VISA");
    EXPECT_EQ(shell.shell.ToolbarMode(), ToolbarMode::HelpOnly);

    dialog->show();
    dialog->txtName->setText("Riverside Physical Therapy");
    QFocusEvent focusOut(QEvent::FocusOut, Qt::TabFocusReason); // the name loses the focus
    QCoreApplication::sendEvent(dialog->txtName, &focusOut);
    EXPECT_EQ(dialog->txtBillAddr->toPlainText(), "Riverside Physical Therapy\n");
    dialog->txtBillAddr->setPlainText("Riverside Physical Therapy\n1200 River Road\nSuite "
                                      "4\nSpringfield, IL 62701\nUSA\nextra line");
    EXPECT_EQ(dialog->txtBillAddr->toPlainText(),
              "Riverside Physical Therapy\n1200 River Road\nSuite 4\nSpringfield, IL 62701\nUSA");
    dialog->cboPayMethod->setCurrentIndex(2);
    emit dialog->cboPayMethod->activated(2);
    EXPECT_FALSE(dialog->txtCardNum->isEnabled());

    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    ASSERT_TRUE(dialog->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/clinic-dialog.png"));
    dialog->cmdOK->click();
    EXPECT_EQ(folder.state.Clinic.Name, "Riverside Physical Therapy");
    EXPECT_EQ(folder.state.Clinic.PayMethod, "Purchase Order");
    EXPECT_EQ(shell.shell.ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_EQ(shell.shell.MenuMode(), MenuMode::All);
}
