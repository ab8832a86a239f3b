#include "shell/Shell.h"

#include "shell/AppState.h"

namespace tarvex {

Shell::Shell(AppState& state, ICommands& toolbar, ICommands& menu, IStatusBar& statusBar,
             IWindowTitle& title, IPrintDialog& printDialog)
    : state_(state), toolbar_(toolbar), menu_(menu), statusBar_(statusBar), title_(title),
      printDialog_(printDialog) {}

const QStringList& Shell::ToolbarKeys() {
    static const QStringList keys = {"Patient", "Exercises", "Video", "Preview",
                                     "Print",   "Programs",  "Help"};
    return keys;
}

const QStringList& Shell::RestrictedMenuKeys() {
    static const QStringList keys = {"mnuPrint",    "mnuPreview",      "mnuClinic",
                                     "mnuSetMedia", "mnuCopyPictures", "mnuPreferences",
                                     "mnuDatabase", "mnuTools"};
    return keys;
}

void Shell::UpdateToolbar(tarvex::ToolbarMode mode) {
    toolbarMode_ = mode;
    for (const QString& key : ToolbarKeys())
        toolbar_.SetEnabled(key, false);
    QStringList enabled;
    switch (mode) {
    case ToolbarMode::HelpOnly:
        enabled = {"Help"};
        break;
    case ToolbarMode::PatientOnly:
        enabled = {"Patient", "Programs", "Help"};
        break;
    case ToolbarMode::All:
        enabled = ToolbarKeys();
        break;
    case ToolbarMode::PrintOnly:
        enabled = {"Preview", "Print", "Help"};
        break;
    case ToolbarMode::None:
        break;
    }
    for (const QString& key : enabled)
        toolbar_.SetEnabled(key, true);
}

void Shell::UpdateMenu(tarvex::MenuMode mode) {
    menuMode_ = mode;
    const bool print = mode == MenuMode::PrintOnly || mode == MenuMode::All;
    const bool others = mode == MenuMode::All;
    for (const QString& key : RestrictedMenuKeys()) {
        const bool isPrint = key == QLatin1String("mnuPrint") || key == QLatin1String("mnuPreview");
        menu_.SetEnabled(key, isPrint ? print : others);
    }
}

void Shell::SetStatusBar(const QString& text) {
    if (text == lastStatus_ && text != kReady)
        return;
    lastStatus_ = text;
    statusBar_.SetPanelText(0, text);
    const ExerciseProgram& program = state_.Program;
    QString dirty;
    if (program.Modified)
        dirty = program.IsNew ? QStringLiteral("Add") : QStringLiteral("Update");
    statusBar_.SetPanelText(1, dirty);
    const QString invoice = program.InvoiceID ? QString::number(*program.InvoiceID) : QString();
    statusBar_.SetPanelText(1, statusBar_.PanelText(1) + u' ' + invoice);
    statusBar_.Refresh();
}

void Shell::UpdateCaption() {
    const ExerciseProgram& program = state_.Program;
    if (!program.PatientID)
        title_.SetTitle(kTitle + QStringLiteral(" - No Patient Selected"));
    else
        title_.SetTitle(kTitle + QStringLiteral(" Patient: ") + program.FullName);
}

void Shell::ResetAfterReopen() {
    state_.Program.PatientID.reset();
    state_.Program.InvoiceID.reset();
    state_.Program.FullName.clear();
    UpdateToolbar(ToolbarMode::PatientOnly);
    UpdateMenu(MenuMode::All);
    UpdateCaption();
}

bool Shell::MaybeShowPrintDlg() {
    if (state_.SkipPrintDialog) {
        state_.SkipPrintDialog = false;
        return true;
    }
    return printDialog_.Show();
}

QPoint CenterForm(QSize form, bool childOfMain, int mainClientWidth, QSize screen) {
    if (childOfMain)
        return QPoint((mainClientWidth - form.width()) / 2, 0);
    return QPoint((screen.width() - form.width()) / 2, (screen.height() - form.height()) / 2);
}

} // namespace tarvex
