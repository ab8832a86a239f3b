#include "shell/AppFolder.h"
#include "shell/AppState.h"
#include "shell/CommandLine.h"
#include "shell/PrivateFiles.h"
#include "shell/SettingsStore.h"
#include "shell/SingleInstance.h"
#include "support/Fault.h"
#include "ui/Application.h"
#include "ui/MainWindow.h"

#include <QDir>

namespace {

const QString kHelp = QStringLiteral(
    "Usage: tarvex [--help | --version]\n"
    "\n"
    "TVX Regimenter: illustrated home exercise programs for physical-therapy clinics.\n"
    "Started without arguments, it opens its main window.\n"
    "\n"
    "Options:\n"
    "  -h, --help     show this help and end\n"
    "  -v, --version  show the version and end\n"
    "Qt's own options (such as -platform or -style) are taken as by any Qt program.\n"
    "\n"
    "The data folder is $XDG_DATA_HOME/Tarvex (by default ~/.local/share/Tarvex); its\n"
    "first start fills it from the delivered files. The settings are in\n"
    "$XDG_CONFIG_HOME/Tarvex/Tarvex.conf (by default ~/.config/Tarvex/Tarvex.conf).\n"
    "See tarvex(1).");

} // namespace

int main(int argc, char** argv) {
    // Help and the version need no display.
    if (tarvex::AsksForHelpOrVersion(tarvex::ArgumentsOf(argc, argv)))
        return tarvex::PrintCommandLineAnswer(tarvex::ReadCommandLine(
            tarvex::ArgumentsOf(argc, argv), QStringLiteral("tarvex"), kHelp));

    // The program's files hold patient data: whatever it creates is its user's alone.
    tarvex::RestrictNewFilesToOwner();
    tarvex::Application app(argc, argv);
    // What is left once Qt has taken its own options.
    const tarvex::CommandLineAnswer answer = tarvex::ReadCommandLine(
        QCoreApplication::arguments().mid(1), QStringLiteral("tarvex"), kHelp);
    if (answer.ask != tarvex::CommandLineAsk::Run)
        return tarvex::PrintCommandLineAnswer(answer);

    tarvex::AppState state;
    state.AppFolder = tarvex::DefaultAppFolder();
    state.DeliveredFolder = tarvex::DefaultDeliveredFolder();
    QDir().mkpath(state.AppFolder);
    app.UseProgramIcon(state.DeliveredFolder);

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
