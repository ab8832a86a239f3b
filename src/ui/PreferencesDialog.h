#pragma once

#include "shell/PreferencesLogic.h"
#include "ui/QtControls.h"

#include "ui/FormDialog.h"
#include <memory>

class QCheckBox;
class QPushButton;

namespace tarvex {

struct AppState;

// frmPreferences.
class PreferencesDialog : public FormDialog {
    Q_OBJECT
public:
    PreferencesDialog(AppState& state, QWidget* parent = nullptr);
    ~PreferencesDialog() override;

    QCheckBox* chkPrintCover = nullptr;
    QCheckBox* chkCallTVX = nullptr;
    QCheckBox* chkShowTips = nullptr;
    QPushButton* cmdEditCoverSheet = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

private:
    void OnOKCancel();

    QtCheckBox printCover_, callTVX_, showTips_;
    QtDesktop desktop_;
    std::unique_ptr<PreferencesLogic> logic_;
};

} // namespace tarvex
