#include "ui/ProgressWindow.h"
#include "shell/Shell.h"
#include "support/Progress.h"

#include <QApplication>
#include <QDir>
#include <QProgressBar>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>

using namespace tarvex;

TEST(ProgressWindow, AFreshWindowHasTheDefaultCaptionAndAnEmptyBar) {
    ProgressWindow window;
    EXPECT_EQ(window.objectName(), "frmProgress");
    EXPECT_EQ(window.windowTitle(), "Building Report");
    ASSERT_NE(window.ProgressBar1, nullptr);
    EXPECT_EQ(window.ProgressBar1->minimum(), 0);
    EXPECT_EQ(window.ProgressBar1->maximum(), 100);
    EXPECT_EQ(window.ProgressBar1->value(), 0);
    EXPECT_FALSE(window.ProgressBar1->isTextVisible());
    EXPECT_TRUE(window.windowFlags().testFlag(Qt::Tool));
    EXPECT_FALSE(window.isModal());
}

TEST(ProgressWindow, ItsLoadCentresItOnTheScreen) {
    ProgressWindow window;
    const QRect area = window.screen()->availableGeometry();
    EXPECT_EQ(window.pos(), area.topLeft() + CenterForm(window.size(), false, 0, area.size()));
}

TEST(QtProgressWindow, ShowsTheBarOfTheLogicWithoutModality) {
    QtProgressWindow window;
    ProgressLogic progress(window);
    EXPECT_EQ(window.Window(), nullptr);
    progress.SetCaption("Loading Exercise Library");
    progress.InitProgress(64000);
    ASSERT_NE(window.Window(), nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.Window()));
    EXPECT_TRUE(window.Window()->isVisible());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(window.Window()->windowTitle(), "Loading Exercise Library");
    EXPECT_EQ(window.Window()->ProgressBar1->maximum(), 21333);
    progress.UpdateProgress(32000);
    EXPECT_EQ(window.Window()->ProgressBar1->value(), 10666);
    EXPECT_EQ(window.Value(), 10666);

    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    EXPECT_TRUE(window.Window()->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) +
                                             "/progress-window.png"));
}

TEST(QtProgressWindow, DestroyProgressUnloadsAndTheNextUseLoadsAFreshWindow) {
    QtProgressWindow window;
    ProgressLogic progress(window);
    progress.SetCaption("Copying Movies From CD To Hard Drive");
    progress.InitProgress(10);
    progress.UpdateProgress(10);
    QPointer<ProgressWindow> first = window.Window();
    progress.DestroyProgress();
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(window.Window(), nullptr);
    EXPECT_EQ(window.Caption(), "Building Report");

    progress.InitProgress(0);
    ASSERT_NE(window.Window(), nullptr);
    EXPECT_EQ(window.Window()->windowTitle(), "Building Report");
    EXPECT_EQ(window.Window()->ProgressBar1->maximum(), 1);
    EXPECT_EQ(window.Window()->ProgressBar1->value(), 0);
    EXPECT_THROW(progress.UpdateProgress(2), ProgressValueFault);
    EXPECT_EQ(window.Window()->ProgressBar1->value(), 0);
}

TEST(QtProgressWindow, AWindowClosedByTheUserIsLoadedAgainOnTheNextCall) {
    QtProgressWindow window;
    ProgressLogic progress(window);
    progress.InitProgress(100);
    window.Window()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(window.Window(), nullptr);
    progress.UpdateProgress(50);
    ASSERT_NE(window.Window(), nullptr);
    EXPECT_EQ(window.Value(), 50);
}
