#pragma once

#include "shell/AboutLogic.h"
#include "shell/SystemInfo.h"
#include "shell/TipLogic.h"
#include "ui/FormDialog.h"
#include "ui/QtControls.h"
#include "ui/QtMediaControls.h"

#include <array>
#include <memory>

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTreeWidget;

namespace tarvex {

struct AppState;

// frmTip, "Tip of the Day": shown modally at start. Esc and the close box leave the
// option as it was; only OK keeps the box's state.
class TipDialog : public FormDialog {
    Q_OBJECT
public:
    TipDialog(AppState& state, QWidget* parent = nullptr, std::function<double()> random = {});
    ~TipDialog() override;

    TipLogic& Logic() { return *logic_; }

    QLabel* Label1 = nullptr;
    QPlainTextEdit* lblTipText = nullptr;
    QCheckBox* chkLoadTipsAtStartup = nullptr;
    QPushButton* cmdNextTip = nullptr;
    QPushButton* cmdEditTip = nullptr;
    QPushButton* cmdOK = nullptr;

private:
    QtCaption tipText_;
    QtCheckBox loadTips_;
    QtDesktop desktop_;
    std::unique_ptr<TipLogic> logic_;
};

// The system information window: what a support call needs, and a button that copies it.
class SystemInfoDialog : public FormDialog {
    Q_OBJECT
public:
    SystemInfoDialog(const QList<SystemInfoItem>& items, QWidget* parent = nullptr);

    QTreeWidget* Items = nullptr;
    QPushButton* cmdCopy = nullptr;
    QPushButton* cmdClose = nullptr;
    QString Text() const { return text_; }

private:
    QString text_;
};

// frmAbout.
class AboutDialog : public FormDialog, private ISystemInfoHost {
    Q_OBJECT
public:
    AboutDialog(AppState& state, Prompter& prompter, QWidget* parent = nullptr);
    ~AboutDialog() override;

    // How the window asks for the system information; by default it opens our window.
    std::function<bool()> SystemInfo;

    QLabel* Image1 = nullptr;
    QLabel* lblTitle = nullptr;
    QLabel* lblVersion = nullptr;
    QLabel* lblDescription = nullptr;
    std::array<QLabel*, 3> lblCSMI{};
    QLabel* lblDisclaimer = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdSysInfo = nullptr;

private:
    bool ShowSystemInfo() override;
    bool OpenSystemInfoWindow();

    AppState& state_;
    QtWindowTitle caption_;
    std::array<QtCaption, 6> labels_;
    QtCaption disclaimer_;
    std::unique_ptr<AboutLogic> logic_;
};

} // namespace tarvex
