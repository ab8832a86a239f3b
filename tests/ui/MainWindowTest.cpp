#include "ui/MainWindow.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/SingleInstance.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QToolBar>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

struct Window {
    Window() : lock(dir.filePath("tarvex.lock")), window(state, store, lock, false) {
        state.AppFolder = dir.filePath("data");
        state.DeliveredFolder = tarvex::testing::DeliveredFolder();
        store.values["Options/ShowTips"] = "False";
    }
    QTemporaryDir dir;
    AppState state;
    fakes::FakeSettingsStore store;
    SingleInstanceLock lock;
    MainWindow window;
};

QAction* Find(QWidget& w, const char* name) {
    return w.findChild<QAction*>(QLatin1String(name));
}

} // namespace

TEST(MainWindow, StartsInTheReadyState) {
    Window w;
    ASSERT_TRUE(w.window.Start());
    EXPECT_EQ(w.window.windowTitle(), "TVX Regimenter");
    // At the top left of the screen, and on it: the test screen (800x600) is smaller than
    // the window, which is made to fit it.
    const QRect screen = w.window.screen()->availableGeometry();
    EXPECT_TRUE(screen.contains(w.window.frameGeometry()))
        << w.window.frameGeometry().x() << "," << w.window.frameGeometry().y() << " in "
        << screen.width() << "x" << screen.height();
    EXPECT_EQ(w.window.frameGeometry().width(), screen.width());
    EXPECT_LE(w.window.pos().x(), 1);
    EXPECT_LE(w.window.pos().y(), 1);
    EXPECT_TRUE(Find(w.window, "Patient")->isEnabled());
    EXPECT_TRUE(Find(w.window, "Programs")->isEnabled());
    EXPECT_TRUE(Find(w.window, "Help")->isEnabled());
    EXPECT_FALSE(Find(w.window, "Exercises")->isEnabled());
    EXPECT_FALSE(Find(w.window, "Print")->isEnabled());
    EXPECT_TRUE(Find(w.window, "mnuClinic")->isEnabled());
    w.window.close();
    EXPECT_EQ(w.store.values["Options/ShowTips"], "False"); // a quit writes the options
    EXPECT_FALSE(w.state.Dbs.IsOpen());
}

TEST(MainWindow, ALockOfAnotherComputerEndsTheStartWithABoxNotInSilence) {
    Window w;
    QFile lock(w.dir.filePath("tarvex.lock"));
    ASSERT_TRUE(lock.open(QIODevice::WriteOnly));
    lock.write("4242\ntarvex\ntreatment-room-2\n");
    lock.close();
    try {
        w.window.Start();
        ADD_FAILURE() << "the start went on";
    } catch (const Fault& fault) {
        EXPECT_TRUE(fault.Message().contains(QDir::toNativeSeparators(w.dir.path())))
            << fault.Message().toStdString();
        EXPECT_TRUE(fault.Message().contains("treatment-room-2")) << fault.Message().toStdString();
    }
    EXPECT_FALSE(w.window.isVisible());
    EXPECT_FALSE(QFile::exists(w.dir.filePath("data/Tarvex.MDB")));
}

TEST(MainWindow, ToolbarKeysCaptionsAndTips) {
    Window w;
    const QList<QPair<QString, QString>> expected = {{"Patient", "Select patient"},
                                                     {"Exercises", "Select exercises"},
                                                     {"Video", "Order video tape"},
                                                     {"Preview", "Preview exercise sheets"},
                                                     {"Print", "Print exercise eheets"},
                                                     {"Programs", "Recall stored programs"},
                                                     {"Help", "Help"}};
    QToolBar* bar = w.window.findChild<QToolBar*>("Toolbar1");
    ASSERT_NE(bar, nullptr);
    QStringList order;
    int separators = 0;
    QList<int> separatorsAfter;
    for (QAction* a : bar->actions()) {
        if (a->isSeparator()) {
            ++separators;
            if (!separatorsAfter.isEmpty())
                ++separatorsAfter.last();
            continue;
        }
        order << a->objectName();
        separatorsAfter << 0;
        EXPECT_EQ(a->text(), a->objectName());
    }
    EXPECT_EQ(order, QStringList({"Patient", "Exercises", "Video", "Preview", "Print", "Programs",
                                  "Help"}));
    EXPECT_EQ(separatorsAfter, QList<int>({0, 0, 1, 1, 2, 2, 0}));
    for (const auto& [key, tip] : expected)
        EXPECT_EQ(Find(w.window, key.toLatin1())->toolTip(), tip);
}

TEST(MainWindow, MenuCaptionsWithTheirAccessKeys) {
    Window w;
    const QList<QPair<const char*, const char*>> entries = {
        {"mnuFile", "&File"},
        {"mnuPrint", "Print"},
        {"mnuPrintEx4", "Exercises &4/page"},
        {"mnuPrintEx2", "Exercises &2/page"},
        {"mnuPrintPatientRecord", "Patient &Record"},
        {"mnuPrintVideo", "&Video Order"},
        {"mnuPrintCover", "&Cover Page"},
        {"mnuPreview", "Preview"},
        {"mnuPreviewEx4", "Exercises &4/page"},
        {"mnuPreviewEx2", "Exercises &2/page"},
        {"mnuPreviewPatientRecord", "Patient &Record"},
        {"mnuPreviewVideo", "&Video Order"},
        {"mnuPreviewCover", "&Cover Page"},
        {"mnuClinic", "&Clinic Info"},
        {"mnuSetMedia", "&Media Location"},
        {"mnuCopyPictures", "&Copy Pictures"},
        {"mnuPreferences", "&Preferences"},
        {"mnuExit", "E&xit"},
        {"mnuDatabase", "Database"},
        {"mnuBackup", "&Backup"},
        {"mnuCompress", "&Compress"},
        {"mnuRebuild", "&Rebuild"},
        {"mnuRestore", "&Restore"},
        {"mnuTools", "&Tools"},
        {"mnuEditPicklist", "Pick&list Editor"},
        {"mnuProtocolEditor", "&Protocol Editor"},
        {"mnuLibrary", "&Exercise Library"},
        {"mnuHelp", "&Help"},
        {"mnuContents", "&Contents"},
        {"mnuPrintManual", "&User Manual"},
        {"mnuAbout", "&About"},
    };
    for (const auto& [key, caption] : entries) {
        QAction* action = w.window.MenuCommands().Action(key);
        ASSERT_NE(action, nullptr) << key;
        EXPECT_EQ(action->text(), caption) << key;
    }
    QStringList top;
    for (QAction* a : w.window.menuBar()->actions())
        top << a->text();
    EXPECT_EQ(top, QStringList({"&File", "Database", "&Tools", "&Help"}));
}

TEST(MainWindow, HasTheTwoStatusPanels) {
    Window w;
    ASSERT_TRUE(w.window.Start());
    w.window.ShellLogic().SetStatusBarReady();
    EXPECT_EQ(w.window.findChild<QLabel*>("status")->text(), "Status: Ready");
    EXPECT_EQ(w.window.findChild<QLabel*>("dirty")->text(), " ");
    w.window.close();
}

TEST(MainWindow, ScreenshotOfTheReadyState) {
    Window w;
    ASSERT_TRUE(w.window.Start());
    w.window.ShellLogic().SetStatusBarReady();
    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    const QString path = QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/main-window.png";
    const QPixmap shot = w.window.grab();
    ASSERT_TRUE(shot.save(path));
    // As wide as the test screen lets it be, frame and all.
    EXPECT_EQ(w.window.frameGeometry().width(), w.window.screen()->availableGeometry().width());
    EXPECT_EQ(shot.size(), w.window.size());
    w.window.close();
}
