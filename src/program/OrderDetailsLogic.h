#pragma once

#include "support/Controls.h"
#include "support/Currency.h"

#include <QString>
#include <QVariant>
#include <array>

namespace tarvex {

struct AppState;
class Shell;
class ProgramStore;

// A control that is shown or hidden.
class IVisible {
public:
    virtual ~IVisible() = default;
    virtual void SetVisible(bool visible) = 0;
    virtual bool IsVisible() const = 0;
};

// Converts a value to currency: a number as it is, a text as the locale reads an amount.
// Anything that does not convert, the empty text and a null included, gives 0.
Currency VarToCur(const QVariant& value);

// The logic of the "Order Items" dialog: what the clinic orders for the video tape of the
// current program, how it ships and how it is paid.
class OrderDetailsLogic {
public:
    // One article of the fixed catalogue: the check box's caption and tag, and its price.
    struct Article {
        const char* Description;
        const char* PartNumber;
        Currency Price;
    };
    static const std::array<Article, 3>& Catalogue(); // video, band kit, gym ball

    // The dialog's own shipping rates, beside the entries of cboShipMethod. The printed
    // order form has rates of its own; the two tables are kept apart on purpose.
    struct ShipRate {
        const char* Method;
        Currency Rate;
    };
    static const std::array<ShipRate, 3>& ShipRates();
    static const QStringList& PayMethods(); // "VISA", "Master Card", "Purchase Order"

    static inline const QString kPurchaseOrder = QStringLiteral("Purchase Order");
    static constexpr double kTaxRate = 0.05;

    struct Controls {
        ITextBox& txtBillAddr;
        ITextBox& txtShipAddr;
        ITextBox& txtShipPhone;
        IComboBox& cboPayMethod;
        ITextBox& txtCardNum;
        ITextBox& txtCardDate;
        ITextBox& txtNameOnCard;
        IVisible& lblCardDate;
        IVisible& lblNameOnCard;
        IVisible& txtCardDateVisible;
        IVisible& txtNameOnCardVisible;
        ICheckBox& chkVideo;
        ICheckBox& chkBand;
        ICheckBox& chkBall;
        ICheckBox& chkTax;
        IComboBox& cboShipMethod;
        ILabel& lblVideo;
        ILabel& lblBand;
        ILabel& lblBall;
        ILabel& lblShipMethod;
        ILabel& lblTax;
        ILabel& lblSubTotal;
        ILabel& lblTotal;
    };

    OrderDetailsLogic(AppState& state, Shell& shell, ProgramStore& store, Controls controls);

    // On load: the commands are restricted while the order is open, then the fields are
    // filled and, after them, the lists.
    void Load();
    void FillOrderDetails();
    void FillOrderCombos();
    void ShowItemPrices();
    void SaveOrderDetails();

    void cboPayMethod_Click();
    void txtShiptoBill_Click();
    // "OK" stores the order with the program; both buttons return true (unload).
    bool cmdOKCancel(const QString& caption);
    void Unload();

private:
    ICheckBox& Box(int article) const;
    ILabel& PriceLabel(int article) const;
    // Ticks a box as a click does: a box that changes runs the recalculation.
    void Tick(ICheckBox& box);

    AppState& state_;
    Shell& shell_;
    ProgramStore& store_;
    Controls c_;
};

} // namespace tarvex
