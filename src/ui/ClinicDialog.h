#pragma once

#include "program/ClinicDialogLogic.h"
#include "ui/QtControls.h"

#include "ui/FormDialog.h"
#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace tarvex {

struct AppState;
class Shell;

// frmClinic, "Clinic Information".
class ClinicDialog : public FormDialog {
    Q_OBJECT
public:
    ClinicDialog(AppState& state, Shell& shell, QWidget* parent = nullptr);
    ~ClinicDialog() override;

    QLineEdit* SiteNumBox;
    QLineEdit* txtName;
    QLineEdit* txtPhone;
    QPlainTextEdit* txtBillAddr;
    QPushButton* cmdCopyBillToShip;
    QPlainTextEdit* txtShipAddr;
    QComboBox* cboPayMethod;
    QLabel* lblCardNum;
    QLineEdit* txtCardNum;
    QLabel* lblCardDate;
    QLineEdit* txtCardDate;
    QLabel* lblNameOnCard;
    QLineEdit* txtNameOnCard;
    QComboBox* cboShipMethod;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void Unload() override;

private:
    void BuildLayout();
    void OnOKCancel();

    QtLineEdit siteNum_, name_, phone_, cardNum_, cardDate_, nameOnCard_;
    QtPlainTextEdit billAddr_, shipAddr_;
    QtComboBox payMethod_, shipMethod_;
    QtEnableable lblCardNum_, lblCardDate_, lblNameOnCard_;
    std::unique_ptr<ClinicDialogLogic> logic_;
};

} // namespace tarvex
