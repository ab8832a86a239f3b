#pragma once

#include "support/Controls.h"

#include <QString>
#include <cstdint>
#include <functional>

namespace tarvex {

struct AppState;
class Prompter;

// The error handler of the protocol windows' reading operations. A file that the engine
// could not find is tried once more with the data folder as the current folder, and a
// second time ends the operation quietly; any other fault ends it with a box under the
// title: "Error: ", the number, a blank and the description.
void RunProtocolHandler(const QString& appFolder, Prompter& prompter, const QString& title,
                        const std::function<void()>& work);

// What both protocol windows share: the combo of protocol names, the list of the chosen
// protocol's exercises, and laying a protocol into the selected exercises. One
// implementation, with the two controls of the window that uses it.
class ProtocolLists {
public:
    ProtocolLists(AppState& state, Prompter& prompter, IItemDataCombo& cboProtocol,
                  IListBox& lstProtocol);

    // Refills the combo: "(None Selected)" first, then the protocols by name; selects the
    // first entry, which runs its click.
    void FillcboProtocol();
    void cboProtocol_Click();
    void LoadLstProtocol(int32_t protocolID);
    // Replaces the selected exercises of the program in memory by the protocol's and has
    // the workspace redraw them. Nothing else of the program changes, Modified included.
    void InitSelExsFromProtocol(int32_t protocolID, const std::function<void()>& loadSelectedExs);

    int32_t CurrentProtocolID() const { return currentProtocolID_; }
    // The name of the chosen entry.
    QString ChosenName() const;

    static constexpr const char* kNoneSelected = "(None Selected)";

private:
    AppState& state_;
    Prompter& prompter_;
    IItemDataCombo& cboProtocol_;
    IListBox& lstProtocol_;
    int32_t currentProtocolID_ = 0;
};

} // namespace tarvex
