#include "shell/AppFolder.h"
#include "shell/AppState.h"
#include "shell/PrivateFiles.h"
#include "shell/SettingsStore.h"
#include "shell/SingleInstance.h"
#include "support/Fault.h"
#include "ui/Application.h"
#include "ui/MainWindow.h"

#include <QDir>

int main(int argc, char** argv) {
    // The program's files hold patient data: whatever it creates is its user's alone.
    tarvex::RestrictNewFilesToOwner();
    tarvex::Application app(argc, argv);

    tarvex::AppState state;
    state.AppFolder = tarvex::DefaultAppFolder();
    state.DeliveredFolder = tarvex::DefaultDeliveredFolder();
    QDir().mkpath(state.AppFolder);

    tarvex::QtSettingsStore store;
    tarvex::SingleInstanceLock lock(QDir(state.AppFolder).filePath(QStringLiteral("tarvex.lock")));
    tarvex::MainWindow window(state, store, lock);
    try {
        if (!window.Start())
            return 0; // another copy runs: end silently
    } catch (const tarvex::Fault& fault) {
        tarvex::Application::ReportFault(fault.Message());
        return 1;
    }
    return app.exec();
}
