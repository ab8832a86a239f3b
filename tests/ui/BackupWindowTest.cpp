// The backup window on the offscreen platform: its controls, its keys, and a job driven
// through its buttons.
#include "dbtools/BackupFakes.h"
#include "ui/BackupDialog.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTreeView>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

// The window over a fresh data folder, backing up to a folder the user chose before.
struct BackupWindow {
    BackupWindow() {
        OpenDatabases(data.state);
        target = dir.filePath("stick");
        QDir().mkpath(target);
        settings.values["Backup/Folder"] = target;
        window = new BackupDialog(data.state, host, prompts, settings);
        window->show();
    }
    ~BackupWindow() {
        if (window)
            window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QStringList Enabled() const {
        QStringList on;
        for (QPushButton* button : window->findChildren<QPushButton*>())
            if (button->isEnabled())
                on << button->objectName();
        on.sort();
        return on;
    }
    QStringList Titles() const { return BoxTitles(prompts); }
    TestFolder data;
    QTemporaryDir dir;
    QString target;
    FakeBackupHost host{data.state};
    HookedPrompter prompts;
    fakes::FakeSettingsStore settings;
    QPointer<BackupDialog> window;
};

const QStringList kResting = {"cmdBackup", "cmdFix", "cmdFolder", "cmdOK", "cmdTest"};

} // namespace

TEST(BackupWindow, OpensWithItsControlsAndCaptions) {
    BackupWindow w;
    BackupDialog& d = *w.window;
    EXPECT_EQ(d.objectName(), "frmBackup");
    EXPECT_EQ(d.windowTitle(), "Backup TVX Database");
    EXPECT_EQ(d.windowModality(), Qt::ApplicationModal);
    const std::pair<const char*, const char*> captions[] = {
        {"cmdBackup", "Backup"}, {"cmdAbort", "Abort"}, {"cmdOK", "OK"},
        {"cmdTest", "Test"},     {"cmdFix", "Fix"},     {"cmdFolder", "Change..."}};
    for (const auto& [name, caption] : captions) {
        auto* button = d.findChild<QPushButton*>(name);
        ASSERT_NE(button, nullptr) << name;
        EXPECT_EQ(button->text(), caption);
    }
    ASSERT_NE(d.findChild<QTreeView*>("lstMain"), nullptr);
    ASSERT_NE(d.findChild<QProgressBar*>("prbMain"), nullptr);
    QStringList headers;
    for (int column = 0; column < d.lstMain->model()->columnCount(); ++column)
        headers << d.lstMain->model()->headerData(column, Qt::Horizontal).toString();
    EXPECT_EQ(headers, QStringList({"Name", "Date", "Time", "Size"}));
    EXPECT_TRUE(d.txtFolder->isReadOnly());
    EXPECT_EQ(d.txtFolder->text(), QDir::toNativeSeparators(w.target));
    EXPECT_EQ(d.txtPassword->echoMode(), QLineEdit::Password);
    EXPECT_EQ(w.Enabled(), kResting);
    EXPECT_TRUE(d.cmdBackup->isDefault());
    const QSize size = d.frameGeometry().size();
    EXPECT_LE(size.width(), 1366);
    EXPECT_LE(size.height(), 768 - 60);
}

TEST(BackupWindow, EscClosesItWhenNoJobRuns) {
    BackupWindow w;
    QTest::keyClick(w.window, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(w.window.isNull()); // closed and gone
    EXPECT_TRUE(w.host.calls.isEmpty());
}

TEST(BackupWindow, OKClosesIt) {
    BackupWindow w;
    QTest::mouseClick(w.window->cmdOK, Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(w.window.isNull());
}

TEST(BackupWindow, ABackupFillsTheListWhileEscAndTheCloseBoxAreIgnored) {
    BackupWindow w;
    QStringList duringJob;
    bool stayed = false;
    w.host.onEvents = [&](int events) {
        QCoreApplication::processEvents();
        if (events != 1)
            return;
        duringJob = w.Enabled();
        QTest::keyClick(w.window, Qt::Key_Escape);
        const bool closed = w.window->close();
        QTest::mouseClick(w.window->cmdBackup, Qt::LeftButton); // off: nothing happens
        stayed = !closed && w.window->isVisible();
    };
    w.prompts.answers = {Answer::Ok, Answer::Ok};
    QTest::mouseClick(w.window->cmdBackup, Qt::LeftButton);
    EXPECT_EQ(duringJob, QStringList{"cmdAbort"});
    EXPECT_TRUE(stayed);
    ASSERT_FALSE(w.window.isNull());
    EXPECT_TRUE(w.window->isVisible());
    EXPECT_EQ(w.Titles(), QStringList({"Backup Status", "TVX Regimenter"}));
    QAbstractItemModel* model = w.window->lstMain->model();
    ASSERT_EQ(model->rowCount(), 3);
    EXPECT_EQ(model->index(0, 0).data().toString(), "Tarvex.MDB");
    EXPECT_EQ(model->index(2, 0).data().toString(), "Picklist.MDB");
    EXPECT_EQ(model->index(2, 3).data().toString().trimmed(), "20480");
    EXPECT_EQ(model->index(0, 3).data(Qt::TextAlignmentRole).value<Qt::Alignment>() &
                  Qt::AlignRight,
              Qt::AlignRight);
    EXPECT_EQ(w.host.statuses.last(), "Ready");
    EXPECT_EQ(w.Enabled(), kResting);
    EXPECT_EQ(ListArchive(w.target + "/Tarvex Backup.ZIP", {}).size(), 3u);
    // Now that the job is over, Esc closes the window.
    QTest::keyClick(w.window, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(w.window.isNull());
}

TEST(BackupWindow, AbortDuringTheJobAsksAndEndsInTheErrorBox) {
    BackupWindow w;
    w.host.onEvents = [&](int events) {
        if (events == 1)
            QTest::mouseClick(w.window->cmdAbort, Qt::LeftButton);
    };
    w.prompts.answers = {Answer::Yes, Answer::Ok};
    QTest::mouseClick(w.window->cmdBackup, Qt::LeftButton);
    EXPECT_EQ(w.Titles(), QStringList({"Abort", "Backup Error: 190"}));
    EXPECT_EQ(w.host.calls, QStringList({"close", "busy", "open", "idle", "reset"}));
    EXPECT_EQ(w.Enabled(), kResting);
    EXPECT_FALSE(QFileInfo::exists(w.target + "/Tarvex Backup.ZIP"));
}
