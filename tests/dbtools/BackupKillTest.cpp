// A backup that is killed while it writes the new archive: the last good archive stays
// whole, since the new one only takes its place when it is complete.
#include "BackupFakes.h"
#include "dbtools/ZipArchive.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Waits until the child says it is writing; false when it ends or stays silent.
bool WaitUntilWriting(QProcess& child) {
    QByteArray said;
    while (!said.contains("writing")) {
        if (!child.waitForReadyRead(30000))
            return false;
        said += child.readAllStandardOutput();
    }
    return true;
}

} // namespace

TEST(BackupKill, AKilledBackupLeavesTheLastGoodArchiveWhole) {
    TestFolder data;
    QTemporaryDir dir;
    const QString archive = dir.filePath(QLatin1String(kBackupArchiveName));
    RecordingEvents events;
    ASSERT_EQ(ZipAddFiles({archive, data.Path(), BackupFileNames(), {}}, events),
              zipcode::kSuccess);
    const QByteArray good = ReadAll(archive);

    QProcess child;
    child.start(QStringLiteral(BACKUP_KILL_CHILD), {data.Path(), archive});
    ASSERT_TRUE(child.waitForStarted());
    ASSERT_TRUE(WaitUntilWriting(child));
    child.kill();
    ASSERT_TRUE(child.waitForFinished());
    EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);

    EXPECT_EQ(ReadAll(archive), good);
    EXPECT_EQ(ZipTestArchive(archive, {}), zipcode::kSuccess);
    // The next backup goes through, and takes away what the killed one left.
    ASSERT_EQ(ZipAddFiles({archive, data.Path(), BackupFileNames(), {}}, events),
              zipcode::kSuccess);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden),
              QStringList{QLatin1String(kBackupArchiveName)});
}
