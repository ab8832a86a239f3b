#pragma once

#include "shell/CommandModes.h"
#include "support/Controls.h"

#include <QString>
#include <QStringList>

namespace tarvex {

struct AppState;
class Shell;

// The logic of the "Clinic Information" dialog.
class ClinicDialogLogic {
public:
    static constexpr int kNameLimit = 50;
    static constexpr int kPhoneLimit = 20;
    static constexpr int kAddressLimit = 255;
    static constexpr int kCardNumLimit = 20;
    static constexpr int kNameOnCardLimit = 30;
    static constexpr int kSiteNumLimit = 8;
    static constexpr int kMaxAddressBreaks = 4; // at most five lines

    static const QStringList& PayMethods();  // "VISA", "Master Card", "Purchase Order"
    static const QStringList& ShipMethods(); // "UPS Ground", "UPS 2 Day", "UPS Next Day"

    struct Controls {
        ITextBox& SiteNumBox;
        ITextBox& txtName;
        ITextBox& txtPhone;
        ITextBox& txtBillAddr;
        ITextBox& txtShipAddr;
        IComboBox& cboPayMethod;
        ITextBox& txtCardNum;
        ITextBox& txtCardDate;
        ITextBox& txtNameOnCard;
        IComboBox& cboShipMethod;
        IEnableable& lblCardNum;
        IEnableable& lblCardDate;
        IEnableable& lblNameOnCard;
    };

    ClinicDialogLogic(AppState& state, Shell& shell, Controls controls);

    // On load: fills the lists and the fields, restricts the commands.
    void Load();
    void FillClinicLists();
    void InitClinicFields();
    void SaveClinicFields();

    // The card fields are available unless "Purchase Order" is chosen.
    void cboPayMethod_Click();
    // An empty address box takes the name and a line break.
    void txtName_LostFocus();
    // An address keeps at most five lines.
    void txtAddress_Change(ITextBox& box);
    void cmdCopyBillToShip();
    // "OK" saves and writes the clinic row; both "OK" and "Cancel" return true (unload).
    bool cmdOKCancel(const QString& tag);
    // On unload: the toolbar as it was, the menu back to normal work.
    void Unload();

private:
    AppState& state_;
    Shell& shell_;
    Controls c_;
    ToolbarMode savedToolbarMode_ = ToolbarMode::HelpOnly;
};

// Cuts a text before its fifth line break, so that it has at most five lines. Returns
// true when it cut. A line break is a line feed, with or without a carriage return.
bool LimitAddressLines(ITextBox& box);

} // namespace tarvex
