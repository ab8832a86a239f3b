// The titles that the window manager shows are exactly the program's own: nothing is
// appended to them. Read back from the X server as xprop sees them.
#include "ui/ClinicDialog.h"
#include "ui/MainWindowRun.h"

#include <QGuiApplication>
#include <QProcess>
#include <QTest>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// WM_NAME of a window as the X server holds it, or an empty text.
QString XWindowName(const QWidget* window) {
    QProcess xprop;
    xprop.start("xprop", {"-id", QString::number(window->winId()), "WM_NAME"});
    if (!xprop.waitForFinished(10000))
        return {};
    const QString line = QString::fromUtf8(xprop.readAllStandardOutput()).trimmed();
    const qsizetype quote = line.indexOf('"');
    return quote < 0 ? line : line.mid(quote + 1).chopped(1);
}

} // namespace

TEST(WindowTitles, AreExactlyTheProgramsOwnOnTheDisplay) {
    if (QGuiApplication::platformName() != "xcb")
        GTEST_SKIP() << "needs an X display (run by the test on a virtual display)";
    tarvex::testing::MainWindowRun w;
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w.window));
    w.window.ShellLogic().UpdateCaption();
    QTest::qWait(200);
    EXPECT_EQ(XWindowName(&w.window), "TVX Regimenter - No Patient Selected");

    w.window.MenuCommands().Action("mnuClinic")->trigger();
    auto* clinic = w.window.findChild<ClinicDialog*>();
    ASSERT_NE(clinic, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(clinic));
    QTest::qWait(200);
    EXPECT_EQ(XWindowName(clinic), "Clinic Information");
    clinic->close();
}
