// Every dialog of the program ends through the same unload path, whatever closes it: its
// Cancel button, Esc or the frame's close box. Driven with real key and mouse events.
#include "data/Sql.h"
#include "ui/Application.h"
#include "ui/ClinicDialog.h"
#include "ui/ItemsDialog.h"
#include "ui/MainWindowRun.h"
#include "ui/PatientDialogs.h"
#include "ui/PreferencesDialog.h"
#include "ui/ProgramListDialog.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QWindow>
#include <functional>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

using Window = tarvex::testing::MainWindowRun;
using tarvex::testing::Opened;

enum class Way { CancelButton, Escape, CloseBox };

std::string WayName(Way way) {
    switch (way) {
    case Way::CancelButton:
        return "CancelButton";
    case Way::Escape:
        return "Escape";
    case Way::CloseBox:
        return "CloseBox";
    }
    return "?";
}

void CloseBy(QDialog* dialog, Way way) {
    dialog->show();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
    switch (way) {
    case Way::CancelButton: {
        QPushButton* cancel = nullptr;
        for (QPushButton* b : dialog->findChildren<QPushButton*>())
            if (b->property("tag").toString() == "Cancel")
                cancel = b;
        ASSERT_NE(cancel, nullptr);
        QTest::mouseClick(cancel, Qt::LeftButton);
        break;
    }
    case Way::Escape:
        QTest::keyClick(dialog, Qt::Key_Escape);
        break;
    case Way::CloseBox:
        // What the window manager does when the frame's close box is pressed.
        ASSERT_NE(dialog->windowHandle(), nullptr);
        dialog->windowHandle()->close();
        break;
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// The commands of normal work with no patient: toolbar 1, menu 2.
void ExpectNoPatientCommands(Window& w) {
    EXPECT_EQ(w.window.ShellLogic().ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_TRUE(w.window.ToolbarCommands().Action("Patient")->isEnabled());
    EXPECT_TRUE(w.window.ToolbarCommands().Action("Programs")->isEnabled());
    EXPECT_FALSE(w.window.ToolbarCommands().Action("Exercises")->isEnabled());
    for (const char* key : {"mnuDatabase", "mnuTools", "mnuClinic", "mnuPreferences"})
        EXPECT_TRUE(w.window.MenuCommands().Action(key)->isEnabled()) << key;
}

struct Opener {
    const char* name;
    bool restricts; // the toolbar is cut down while the dialog is open
    std::function<QDialog*(Window&)> open;
};

const Opener kOpeners[] = {
    {"ClinicInfo", true,
     [](Window& w) -> QDialog* {
         w.window.MenuCommands().Action("mnuClinic")->trigger();
         return Opened<ClinicDialog>(w);
     }},
    {"SelectPatient", true,
     [](Window& w) -> QDialog* {
         w.AddPatient("Okafor", "Chidi", "MRN-1001");
         w.window.ToolbarCommands().Action("Patient")->trigger();
         return Opened<SelectPatientDialog>(w);
     }},
    {"EditPatientOfNew", true,
     [](Window& w) -> QDialog* {
         w.window.ToolbarCommands().Action("Patient")->trigger();
         auto* select = Opened<SelectPatientDialog>(w);
         QTest::mouseClick(select->Button("New"), Qt::LeftButton);
         return Opened<EditPatientDialog>(w);
     }},
    {"Preferences", false,
     [](Window& w) -> QDialog* {
         w.window.MenuCommands().Action("mnuPreferences")->trigger();
         return Opened<PreferencesDialog>(w);
     }},
};

class DialogUnload : public ::testing::TestWithParam<std::tuple<int, Way>> {};

} // namespace

TEST_P(DialogUnload, GivesTheCommandsBackAndGoes) {
    const Opener& opener = kOpeners[std::get<0>(GetParam())];
    const Way way = std::get<1>(GetParam());
    Window w;
    QPointer<QDialog> dialog = opener.open(w);
    ASSERT_FALSE(dialog.isNull()) << opener.name;
    if (opener.restricts) {
        EXPECT_FALSE(w.window.ToolbarCommands().Action("Patient")->isEnabled()) << opener.name;
    }
    CloseBy(dialog, way);
    EXPECT_TRUE(dialog.isNull()) << opener.name << " by " << WayName(way);
    ExpectNoPatientCommands(w);
}

INSTANTIATE_TEST_SUITE_P(EveryWay, DialogUnload,
                         ::testing::Combine(::testing::Range(0, 4),
                                            ::testing::Values(Way::CancelButton, Way::Escape,
                                                              Way::CloseBox)),
                         [](const auto& info) {
                             return std::string(kOpeners[std::get<0>(info.param)].name) + "_" +
                                    WayName(std::get<1>(info.param));
                         });

TEST(DialogUnload, TheProgramListGoesByEscAndByItsCloseBox) {
    for (Way way : {Way::Escape, Way::CloseBox}) {
        Window w;
        w.window.ToolbarCommands().Action("Programs")->trigger();
        QPointer<QDialog> dialog = Opened<ProgramListDialog>(w);
        ASSERT_FALSE(dialog.isNull());
        CloseBy(dialog, way);
        EXPECT_TRUE(dialog.isNull()) << WayName(way);
        ExpectNoPatientCommands(w);
    }
}

TEST(DialogUnload, TheClinicDialogGivesBackTheToolbarOfAPatient) {
    for (Way way : {Way::CancelButton, Way::Escape, Way::CloseBox}) {
        Window w;
        w.ChooseOkafor(2);
        w.window.MenuCommands().Action("mnuClinic")->trigger();
        QPointer<QDialog> dialog = Opened<ClinicDialog>(w);
        ASSERT_FALSE(dialog.isNull());
        EXPECT_FALSE(w.window.ToolbarCommands().Action("Exercises")->isEnabled());
        CloseBy(dialog, way);
        EXPECT_TRUE(dialog.isNull());
        EXPECT_EQ(w.window.ShellLogic().ToolbarMode(), ToolbarMode::All) << WayName(way);
        EXPECT_TRUE(w.window.ToolbarCommands().Action("Exercises")->isEnabled());
        EXPECT_TRUE(w.window.MenuCommands().Action("mnuTools")->isEnabled());
    }
}

TEST(DialogUnload, TheVideoOrderGoesByEveryWayAndStoresNothing) {
    for (Way way : {Way::CancelButton, Way::Escape, Way::CloseBox}) {
        Window w;
        w.ChooseOkafor(3);
        w.window.ToolbarCommands().Action("Video")->trigger();
        QPointer<QDialog> dialog = Opened<ItemsDialog>(w);
        ASSERT_FALSE(dialog.isNull());
        CloseBy(dialog, way);
        EXPECT_TRUE(dialog.isNull()) << WayName(way);
        EXPECT_EQ(w.window.ShellLogic().ToolbarMode(), ToolbarMode::All);
        EXPECT_TRUE(w.window.MenuCommands().Action("mnuDatabase")->isEnabled());
        QSqlQuery count = OpenQuery(w.state.Dbs.ProgramDb, "SELECT COUNT(*) FROM Invoice");
        ASSERT_TRUE(count.next());
        EXPECT_EQ(count.value(0).toInt(), 0) << WayName(way);
    }
}

TEST(DialogUnload, TheVideoOrderSavesOnceOnOkAndGoes) {
    Window w;
    w.ChooseOkafor(3);
    w.window.ToolbarCommands().Action("Video")->trigger();
    QPointer<ItemsDialog> dialog = Opened<ItemsDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
    QPushButton* ok = dialog->cmdOK;
    QTest::mouseClick(ok, Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(dialog.isNull());
    QSqlQuery count = OpenQuery(w.state.Dbs.ProgramDb, "SELECT COUNT(*) FROM Invoice");
    ASSERT_TRUE(count.next());
    EXPECT_EQ(count.value(0).toInt(), 1);
    EXPECT_EQ(w.window.ShellLogic().ToolbarMode(), ToolbarMode::All);
    EXPECT_TRUE(w.window.MenuCommands().Action("mnuDatabase")->isEnabled());
}

TEST(DialogUnload, AFaultInAButtonIsReportedAndTheDialogStaysOpen) {
    QStringList reported;
    Application::SetFaultReporter([&reported](const QString& m) { reported << m; });
    Window w;
    w.AddPatient("Okafor", "Chidi", "MRN-1001");
    w.window.ToolbarCommands().Action("Patient")->trigger();
    QPointer<SelectPatientDialog> dialog = Opened<SelectPatientDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    dialog->lstPatients->clearSelection();
    dialog->lstPatients->setCurrentItem(nullptr);
    // "Edit" with no row chosen is a bounds fault of the logic.
    QTest::mouseClick(dialog->Button("Edit"), Qt::LeftButton);
    Application::SetFaultReporter({});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(reported.size(), 1);
    ASSERT_FALSE(dialog.isNull());
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    CloseBy(dialog, Way::Escape);
    EXPECT_TRUE(dialog.isNull());
    ExpectNoPatientCommands(w);
}
