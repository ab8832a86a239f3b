#include "shell/Startup.h"

#include "data/Databases.h"
#include "program/ClinicStore.h"
#include "program/ProgramStore.h"
#include "shell/AppFolder.h"
#include "shell/AppState.h"
#include "shell/Options.h"
#include "shell/Shell.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QFileInfo>

namespace tarvex {

namespace {

// One picture stands for the whole picture set; a test that fails counts as missing.
bool PicturesPresent(const AppState& state) {
    return QFileInfo::exists(state.Media.Picture + QStringLiteral("385_1.JPG"));
}

} // namespace

bool RunStartup(AppState& state, Shell& shell, const ISettingsStore& store, IStartupHost& host,
                Prompter& prompter) {
    shell.UpdateToolbar(ToolbarMode::HelpOnly);
    if (host.AnotherInstanceRunning())
        return false;
    host.ShowSplash();
    LoadOptions(state, store);

    // A first start fills the data folder from the delivered files; later starts find
    // them there and nothing is copied.
    bool madePrivate = false;
    const QString problem = PrepareAppFolder(state.AppFolder, TemplatesFolder(state), &madePrivate);
    if (!problem.isEmpty())
        throw Fault(problem);
    // The upgrade of a former release's databases asks its one question through the
    // program's boxes, now and at every later reopening.
    state.Dbs.UpgradePrompter = &prompter;
    OpenDatabases(state);
    state.TollFreeOrder = QLatin1String(kTollFreeOrder);
    state.TollFreeFax = QLatin1String(kTollFreeFax);
    state.CoverText = LoadCoverText(state);
    ReadClinicRecord(state);
    state.Print.PrintScale = 1.0;

    host.ShowMainWindow();

    state.WorkspaceMode = WorkspacePurpose::None;
    // The selection workspace is built once and kept hidden; loading it builds the
    // library cache.
    host.LoadSelectionWorkspace();

    if (state.Prefs.ShowTips)
        host.ShowTip();
    shell.UpdateToolbar(ToolbarMode::PatientOnly);
    state.Program.PatientID.reset();
    state.Program.InvoiceID.reset();

    if (!PicturesPresent(state))
        host.ShowCheckMedia();
    if (QFileInfo::exists(AppPathAndFName(state, QStringLiteral("TVX.MDB"))))
        prompter.MsgBox(kPreviousDatabaseText, msg::Information, kPreviousDatabaseTitle);
    shell.UpdateMenu(MenuMode::All);
    if (madePrivate)
        shell.SetStatusBar(kMadePrivateText.arg(state.AppFolder));
    return true;
}

void RunUnload(AppState& state, ISettingsStore& store, ProgramStore& programs) {
    programs.SaveProgram(true);
    CloseDatabases(state);
    SaveOptions(state, store);
}

} // namespace tarvex
