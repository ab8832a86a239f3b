#pragma once

#include "program/OrderDetailsLogic.h"
#include "ui/QtControls.h"

#include "ui/FormDialog.h"

#include <QPointer>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace tarvex {

struct AppState;
class Shell;
class ProgramStore;

// Shows or hides a widget for the logic. The state is kept here as well, so that it reads
// back as set while the dialog itself is not yet on screen.
class QtVisibility : public IVisible {
public:
    explicit QtVisibility(QWidget* widget) : widget_(widget) {}
    void SetVisible(bool visible) override;
    bool IsVisible() const override { return visible_; }

private:
    QPointer<QWidget> widget_;
    bool visible_ = true;
};

// frmItems, "Order Items": the order of the video tape of the current program.
class ItemsDialog : public FormDialog {
    Q_OBJECT
public:
    ItemsDialog(AppState& state, Shell& shell, ProgramStore& store, QWidget* parent = nullptr);
    ~ItemsDialog() override;

    QPlainTextEdit* txtBillAddr;
    QPushButton* txtShiptoBill;
    QPlainTextEdit* txtShipAddr;
    QLabel* lblShipPhone;
    QLineEdit* txtShipPhone;
    QComboBox* cboPayMethod;
    QLineEdit* txtCardNum;
    QLabel* lblCardDate;
    QLineEdit* txtCardDate;
    QLabel* lblNameOnCard;
    QLineEdit* txtNameOnCard;
    QCheckBox* chkVideo;
    QCheckBox* chkBand;
    QCheckBox* chkBall;
    QCheckBox* chkTax;
    QComboBox* cboShipMethod;
    QLabel* lblVideo;
    QLabel* lblBand;
    QLabel* lblBall;
    QLabel* lblShipMethod;
    QLabel* lblTax;
    QLabel* lblSubTotal;
    QLabel* lblTotal;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

    OrderDetailsLogic& Logic() { return *logic_; }

protected:
    void CancelByFrame() override;
    void Unload() override;

private:
    void BuildLayout();
    void OnOKCancel();

    QtPlainTextEdit billAddr_, shipAddr_;
    QtLineEdit shipPhone_, cardNum_, cardDate_, nameOnCard_;
    QtComboBox payMethod_, shipMethod_;
    QtVisibility lblCardDateShown_, lblNameOnCardShown_, cardDateShown_, nameOnCardShown_;
    QtCheckBox video_, band_, ball_, tax_;
    QtCaption videoPrice_, bandPrice_, ballPrice_, shipPrice_, taxAmount_, subTotal_, total_;
    std::unique_ptr<OrderDetailsLogic> logic_;
};

} // namespace tarvex
