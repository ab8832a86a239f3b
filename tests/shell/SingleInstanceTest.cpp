#include "shell/SingleInstance.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void Write(const QString& path, const QByteArray& content, int ageSeconds = 0) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
    file.close();
    if (ageSeconds > 0) {
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds),
                                     QFileDevice::FileModificationTime));
    }
}

// The number of a process that ran here and is gone.
qint64 DeadPid() {
    QProcess process;
    process.start(QStringLiteral("true"), {});
    process.waitForFinished(10000);
    return process.processId() ? process.processId() : 999999;
}

} // namespace

TEST(SingleInstanceLock, TheSecondHolderHereIsRefused) {
    QTemporaryDir dir;
    SingleInstanceLock first(dir.filePath("tarvex.lock"));
    SingleInstanceLock second(dir.filePath("tarvex.lock"));
    EXPECT_EQ(first.Claim(), InstanceClaim::Claimed);
    EXPECT_EQ(first.Claim(), InstanceClaim::Claimed);
    EXPECT_EQ(second.Claim(), InstanceClaim::HeldHere);
    // The refused claim leaves the holder's lock file as it was.
    EXPECT_TRUE(ReadAll(dir.filePath("tarvex.lock"))
                    .startsWith(QByteArray::number(QCoreApplication::applicationPid()) + '\n'));
}

TEST(SingleInstanceLock, ALockLeftByACopyThatDiedIsTakenOver) {
    QTemporaryDir dir;
    const QString path = dir.filePath("tarvex.lock");
    const qint64 pid = DeadPid();
    Write(path, QByteArray::number(pid) + '\n' + QCoreApplication::applicationName().toUtf8() +
                    '\n' + QSysInfo::machineHostName().toUtf8() + '\n');
    SingleInstanceLock lock(path);
    EXPECT_EQ(lock.Claim(), InstanceClaim::Claimed);
    EXPECT_TRUE(
        ReadAll(path).startsWith(QByteArray::number(QCoreApplication::applicationPid()) + '\n'));
}

TEST(SingleInstanceLock, ALockFileLeftEmptyByACrashIsTakenOver) {
    QTemporaryDir dir;
    const QString path = dir.filePath("tarvex.lock");
    Write(path, QByteArray(), 3600);
    SingleInstanceLock lock(path);
    EXPECT_EQ(lock.Claim(), InstanceClaim::Claimed);
    EXPECT_TRUE(
        ReadAll(path).startsWith(QByteArray::number(QCoreApplication::applicationPid()) + '\n'));
}

TEST(SingleInstanceLock, ALockFileBeingWrittenJustNowIsLeftAlone) {
    QTemporaryDir dir;
    const QString path = dir.filePath("tarvex.lock");
    Write(path, QByteArray());
    SingleInstanceLock lock(path);
    EXPECT_EQ(lock.Claim(), InstanceClaim::HeldHere);
    EXPECT_EQ(ReadAll(path), QByteArray());
}

TEST(SingleInstanceLock, ALockFromAnotherComputerIsNamedAndLeftAlone) {
    QTemporaryDir dir;
    const QString path = dir.filePath("tarvex.lock");
    const QByteArray theirs = "4242\ntarvex\nfront-desk-pc\n";
    Write(path, theirs, 3600);
    SingleInstanceLock lock(path);
    ASSERT_EQ(lock.Claim(), InstanceClaim::HeldElsewhere);
    EXPECT_EQ(ReadAll(path), theirs);
    const QString text = lock.ProblemText(InstanceClaim::HeldElsewhere);
    EXPECT_TRUE(text.contains(QDir::toNativeSeparators(dir.path()))) << text.toStdString();
    EXPECT_TRUE(text.contains("\"front-desk-pc\"")) << text.toStdString();
    EXPECT_TRUE(text.contains("delete the file " + QDir::toNativeSeparators(path)))
        << text.toStdString();
}

TEST(SingleInstanceLock, AFolderThatCannotHoldTheLockIsNamed) {
    QTemporaryDir dir;
    // A plain file where the data folder should be: nothing can be made inside it.
    Write(dir.filePath("data"), "not a folder");
    const QString path = dir.filePath("data/tarvex.lock");
    SingleInstanceLock lock(path);
    ASSERT_EQ(lock.Claim(), InstanceClaim::FolderUnwritable);
    const QString text = lock.ProblemText(InstanceClaim::FolderUnwritable);
    EXPECT_TRUE(text.contains(QDir::toNativeSeparators(dir.filePath("data"))))
        << text.toStdString();
    EXPECT_TRUE(text.contains("cannot write")) << text.toStdString();
}
