#include "data/Sql.h"
#include "ui/Application.h"
#include "ui/FormDialog.h"
#include "ui/MainWindowRun.h"

#include <QApplication>
#include <QPushButton>
#include <QSqlQuery>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::MainWindowRun;

namespace {

// Collects the error boxes of a test instead of showing them.
struct Reports {
    Reports() {
        Application::SetFaultReporter([this](const QString& m) { texts << m; });
    }
    ~Reports() { Application::SetFaultReporter({}); }
    QStringList texts;
};

// Takes a table away behind the program's back, as a damaged page would: every statement
// on it fails from now on.
void Break(QSqlDatabase& db, const QString& table) {
    QSqlQuery q(db);
    ASSERT_TRUE(q.exec(QStringLiteral("ALTER TABLE %1 RENAME TO %1Gone").arg(table)))
        << table.toStdString();
}

QList<QWidget*> OpenWindows() {
    QList<QWidget*> open;
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible() && !qobject_cast<MainWindow*>(w))
            open << w;
    return open;
}

struct Case {
    const char* command;  // the toolbar key or the menu entry's name
    const char* database; // "program" or "library"
    const char* table;
};

class FaultInACommand : public ::testing::TestWithParam<Case> {};

} // namespace

// Whatever fault ends a command, the toolbar and the menu are as they were before it and
// no window is left open in a state that cannot be used.
TEST_P(FaultInACommand, LeavesTheCommandsAsTheyWereAndNoWindowStranded) {
    const Case c = GetParam();
    Reports reports;
    MainWindowRun run;
    run.ChooseOkafor(3);
    run.state.Program.InvoiceID.reset();
    const ToolbarMode toolbar = run.window.ShellLogic().ToolbarMode();
    const MenuMode menu = run.window.ShellLogic().MenuMode();
    const QList<QWidget*> before = OpenWindows();
    Break(QLatin1String(c.database) == QLatin1String("program") ? run.state.Dbs.ProgramDb
                                                                : run.state.Dbs.LibraryDb,
          QLatin1String(c.table));

    QAction* action = run.window.ToolbarCommands().Action(QLatin1String(c.command));
    if (!action)
        action = run.window.MenuCommands().Action(QLatin1String(c.command));
    ASSERT_NE(action, nullptr) << c.command;
    ASSERT_TRUE(action->isEnabled()) << c.command;
    action->trigger();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    ASSERT_FALSE(reports.texts.isEmpty()) << c.command << ": no fault came of the broken table";
    EXPECT_TRUE(reports.texts.first().contains(QLatin1String(c.table)))
        << reports.texts.first().toStdString();
    // A window the command left open must still be usable, and closing it gives the
    // commands back.
    for (QWidget* w : OpenWindows()) {
        if (before.contains(w))
            continue;
        EXPECT_TRUE(w->isEnabled()) << c.command << ": " << w->objectName().toStdString();
        w->close();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(run.window.ShellLogic().ToolbarMode(), toolbar) << c.command;
    EXPECT_EQ(run.window.ShellLogic().MenuMode(), menu) << c.command;
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(EachCommand, FaultInACommand,
                         ::testing::Values(Case{"Patient", "program", "Patient"},
                                           Case{"Programs", "program", "Invoice"},
                                           Case{"Exercises", "library", "ExerciseLibrary"}),
                         [](const auto& info) {
                             QString name = QLatin1String(info.param.command);
                             name.remove(QLatin1Char('&'));
                             return name.toStdString();
                         });

// A fault in a window's OK leaves the window open and usable, with the commands as they
// were while it was open; its Cancel then gives the commands back.
class FaultInAWindow : public ::testing::TestWithParam<Case> {};

TEST_P(FaultInAWindow, TheWindowStaysUsableAndItsCancelGivesTheCommandsBack) {
    const Case c = GetParam();
    Reports reports;
    MainWindowRun run;
    run.ChooseOkafor(3);
    const ToolbarMode toolbar = run.window.ShellLogic().ToolbarMode();
    const MenuMode menu = run.window.ShellLogic().MenuMode();
    QAction* action = run.window.ToolbarCommands().Action(QLatin1String(c.command));
    if (!action)
        action = run.window.MenuCommands().Action(QLatin1String(c.command));
    ASSERT_NE(action, nullptr) << c.command;
    action->trigger();
    QWidget* window = nullptr;
    for (QWidget* w : OpenWindows())
        window = w;
    ASSERT_NE(window, nullptr) << c.command;
    const ToolbarMode toolbarWhileOpen = run.window.ShellLogic().ToolbarMode();
    const MenuMode menuWhileOpen = run.window.ShellLogic().MenuMode();
    Break(run.state.Dbs.ProgramDb, QLatin1String(c.table));
    auto* ok = window->findChild<QPushButton*>("cmdOK");
    ASSERT_NE(ok, nullptr);
    ok->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(reports.texts.size(), 1) << c.command;
    EXPECT_TRUE(reports.texts.first().contains(QLatin1String(c.table)))
        << reports.texts.first().toStdString();
    ASSERT_TRUE(OpenWindows().contains(window)) << c.command;
    EXPECT_TRUE(window->isEnabled());
    EXPECT_EQ(run.window.ShellLogic().ToolbarMode(), toolbarWhileOpen) << c.command;
    EXPECT_EQ(run.window.ShellLogic().MenuMode(), menuWhileOpen) << c.command;
    window->findChild<QPushButton*>("cmdCancel")->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(OpenWindows().contains(window));
    EXPECT_EQ(run.window.ShellLogic().ToolbarMode(), toolbar) << c.command;
    EXPECT_EQ(run.window.ShellLogic().MenuMode(), menu) << c.command;
    // A program whose save failed is still there to be saved; the test ends without asking.
    run.state.Program.Modified = false;
}

INSTANTIATE_TEST_SUITE_P(EachWindow, FaultInAWindow,
                         ::testing::Values(Case{"mnuClinic", "program", "Clinic"},
                                           Case{"Video", "program", "Items"}),
                         [](const auto& info) { return std::string(info.param.command); });
