#include "MainWindowRun.h"

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// Answers the message boxes as they come with the given buttons, in order, and keeps
// "title: text" of each.
class BoxAnswers {
public:
    explicit BoxAnswers(QList<QMessageBox::StandardButton> buttons) : buttons_(std::move(buttons)) {
        timer_.setInterval(10);
        QObject::connect(&timer_, &QTimer::timeout, [this] { Answer(); });
        timer_.start();
    }
    QStringList seen;

private:
    void Answer() {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || buttons_.isEmpty() || box->property("answered").toBool())
            return;
        box->setProperty("answered", true);
        seen << box->windowTitle() + ": " + box->text();
        box->button(buttons_.takeFirst())->click();
    }
    QList<QMessageBox::StandardButton> buttons_;
    QTimer timer_;
};

} // namespace

TEST(DatabaseCommands, CompressFromTheMenuReopensTheDatabasesAndResetsTheShell) {
    tarvex::testing::MainWindowRun w;
    w.state.Program.PatientID = 1;
    w.state.Program.FullName = "Rossi, Ida";
    w.window.ShellLogic().UpdateCaption();
    w.window.ShellLogic().UpdateToolbar(ToolbarMode::All);
    BoxAnswers answers({QMessageBox::Yes, QMessageBox::Ok});
    w.window.MenuCommands().Action("mnuCompress")->trigger();
    EXPECT_EQ(answers.seen, QStringList({"Compress Database: Compress the TVX database?",
                                         "Compress Database: Compression completed!"}));
    EXPECT_TRUE(w.state.Dbs.IsOpen());
    EXPECT_EQ(w.window.windowTitle(), "TVX Regimenter - No Patient Selected");
    EXPECT_EQ(w.window.ShellLogic().ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_EQ(w.window.ShellLogic().MenuMode(), MenuMode::All);
    EXPECT_TRUE(w.state.Program.FullName.isEmpty());
    EXPECT_NE(w.window.Workspace(), nullptr);
    EXPECT_FALSE(QFileInfo::exists(w.state.AppFolder + "/~TEMP.MDB"));
}

TEST(DatabaseCommands, RebuildOfASoundDatabaseSaysCompletedAndNoLeavesEverythingAsItWas) {
    tarvex::testing::MainWindowRun w;
    w.state.Program.PatientID = 3;
    {
        BoxAnswers answers({QMessageBox::No});
        w.window.MenuCommands().Action("mnuRebuild")->trigger();
        EXPECT_EQ(answers.seen, QStringList({"Repair Database: Repair the TVX database?"}));
        EXPECT_EQ(w.state.Program.PatientID, 3);
    }
    BoxAnswers answers({QMessageBox::Yes, QMessageBox::Ok});
    w.window.MenuCommands().Action("mnuRebuild")->trigger();
    EXPECT_EQ(answers.seen, QStringList({"Repair Database: Repair the TVX database?",
                                         "Repair Database: Repair completed!"}));
    EXPECT_TRUE(w.state.Dbs.IsOpen());
    EXPECT_FALSE(w.state.Program.PatientID.has_value());
}
