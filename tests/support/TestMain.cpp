// The main of every test executable: a Qt application object on the offscreen platform,
// with Qt's test mode on so that settings and data folders stay away from the user's.

#include <gtest/gtest.h>

#include <QStandardPaths>
#include <QtGlobal>

#ifdef TARVEX_TEST_UI
#include "ui/Application.h"
using TestApplication = tarvex::Application;
#else
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#endif

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    testing::InitGoogleTest(&argc, argv);
    TestApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
