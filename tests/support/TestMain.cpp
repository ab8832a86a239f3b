// The main of every test executable: a Qt application object on the offscreen platform,
// with Qt's test mode on so that settings and data folders stay away from the user's.

#include <gtest/gtest.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QStandardPaths>
#include <QThread>
#include <QtGlobal>

#ifdef TARVEX_TEST_UI
#include "ui/Application.h"
using TestApplication = tarvex::Application;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif

namespace {

qsizetype ThreadCount() {
    return QDir(QStringLiteral("/proc/self/task"))
        .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
        .size();
}

// The media framework's streaming threads wind down on their own after a movie is closed.
// The leak check at exit stops every thread; one that ends just then crashes its tracer.
// So the run waits until only the threads of its start are left, or until their number
// has held still for 0.6 s (some of the framework's threads live to the end), at most
// three seconds.
void LetWorkerThreadsEnd(qsizetype atStart) {
    const QDeadlineTimer deadline(3000);
    qsizetype last = ThreadCount();
    QDeadlineTimer still(600);
    while (last > atStart && !still.hasExpired() && !deadline.hasExpired()) {
        QThread::msleep(20);
        if (const qsizetype now = ThreadCount(); now != last) {
            last = now;
            still.setRemainingTime(600);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    testing::InitGoogleTest(&argc, argv);
    TestApplication app(argc, argv);
    const qsizetype threadsAtStart = ThreadCount();
    const int result = RUN_ALL_TESTS();
    LetWorkerThreadsEnd(threadsAtStart);
    return result;
}
