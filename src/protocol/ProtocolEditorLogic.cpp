#include "protocol/ProtocolEditorLogic.h"

#include "protocol/ProtocolStore.h"
#include "shell/Shell.h"
#include "support/Prompter.h"

namespace tarvex {

ProtocolEditorLogic::ProtocolEditorLogic(AppState& state, Shell& shell, Prompter& prompter,
                                         IItemDataCombo& cboProtocol, IListBox& lstProtocol,
                                         IProtocolWorkspace& workspace)
    : state_(state), shell_(shell), prompter_(prompter), workspace_(workspace),
      lists_(state, prompter, cboProtocol, lstProtocol) {}

void ProtocolEditorLogic::Load() {
    lists_.FillcboProtocol();
    shell_.UpdateToolbar(ToolbarMode::HelpOnly);
}

bool ProtocolEditorLogic::cmdOKCancel(const QString& tag) {
    if (tag == QLatin1String("OK")) {
        shell_.UpdateToolbar(state_.Program.PatientID ? ToolbarMode::All
                                                      : ToolbarMode::PatientOnly);
        return true;
    }
    if (tag == QLatin1String("New")) {
        workspace_.ClearSelectedExercises();
        workspace_.OpenForProtocol(WorkspacePurpose::NewProtocol);
    } else if (tag == QLatin1String("Edit")) {
        lists_.InitSelExsFromProtocol(lists_.CurrentProtocolID(),
                                      [this] { workspace_.LoadSelectedExs(); });
        workspace_.OpenForProtocol(WorkspacePurpose::StoredProtocol);
    } else if (tag == QLatin1String("Delete")) {
        DeleteProtocol(lists_.CurrentProtocolID(), true);
    }
    return false;
}

void ProtocolEditorLogic::AddNewProtocol() {
    // Nothing checks the answer: an empty name (which Cancel gives too) or one that exists
    // already is stored as it is.
    const std::optional<QString> name = prompter_.InputBox(
        QStringLiteral("Enter the new protocol name"), QStringLiteral("Add Protocol"), QString());
    StoreProtocol(name.value_or(QString()));
}

void ProtocolEditorLogic::SaveEditedProtocol() {
    // No update in place: the new version gets a new ProtocolID, and the old one goes in
    // the same transaction.
    const int32_t oldID = lists_.CurrentProtocolID();
    ReplaceProtocol(state_, oldID, lists_.ChosenName());
    lists_.FillcboProtocol();
}

void ProtocolEditorLogic::StoreProtocol(const QString& name) {
    InsertProtocol(state_, name);
    lists_.FillcboProtocol();
}

void ProtocolEditorLogic::DeleteProtocol(int32_t protocolID, bool ask) {
    if (ask &&
        prompter_.MsgBox(QStringLiteral("Are you sure you want to delete: ") + lists_.ChosenName(),
                         msg::YesNo | msg::Exclamation | msg::DefaultButton2,
                         QStringLiteral("Delete Protocol")) == Answer::No)
        return;
    DeleteProtocolRow(state_, protocolID);
    lists_.FillcboProtocol();
}

} // namespace tarvex
