#include "protocol/ProtocolSelectionLogic.h"

namespace tarvex {

ProtocolSelectionLogic::ProtocolSelectionLogic(AppState& state, Prompter& prompter,
                                               IItemDataCombo& cboProtocol, IListBox& lstProtocol,
                                               IProtocolWorkspace& workspace)
    : workspace_(workspace), lists_(state, prompter, cboProtocol, lstProtocol) {}

bool ProtocolSelectionLogic::cmdOKCancel(const QString& tag) {
    const bool ok = tag == QLatin1String("OK");
    if (!ok && tag != QLatin1String("Cancel"))
        return false;
    workspace_.ShowAgain();
    // The protocol replaces the list at once; Modified stays as it was, so the workspace's
    // OK stores the list only if something else changed the program.
    if (ok)
        lists_.InitSelExsFromProtocol(lists_.CurrentProtocolID(),
                                      [this] { workspace_.LoadSelectedExs(); });
    return true;
}

} // namespace tarvex
