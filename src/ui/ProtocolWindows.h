#pragma once

#include "protocol/ProtocolEditorLogic.h"
#include "protocol/ProtocolSelectionLogic.h"
#include "ui/FormDialog.h"
#include "ui/QtControls.h"

#include <QPointer>
#include <memory>

class QComboBox;
class QListWidget;
class QPushButton;

namespace tarvex {

class WorkspaceWindow;

// What the two protocol windows look alike in: "Protocol Name:" with its combo,
// "Exercises:" with the list of the chosen protocol, and a column of tagged buttons.
class ProtocolListWindow : public FormDialog {
    Q_OBJECT
public:
    QComboBox* cboProtocol;
    QListWidget* lstProtocol;
    QPushButton* Button(const QString& tag) const;

protected:
    ProtocolListWindow(const QString& name, const QString& caption, const QStringList& tags,
                       QWidget* parent);
    // The button of the tag was pressed.
    virtual void Run(const QString& tag) = 0;
    // The user chose another protocol.
    virtual void Chosen() = 0;

    QtItemDataCombo combo_;
    QtListBox list_;
    QtButtons buttons_;
};

// frmProtocolEditor, "Protocol Editor". It stays open behind the workspace while a
// protocol is made or edited there, and takes no input until the workspace is done.
class ProtocolEditorDialog : public ProtocolListWindow {
    Q_OBJECT
public:
    ProtocolEditorDialog(AppState& state, Shell& shell, Prompter& prompter,
                         WorkspaceWindow& workspace, QWidget* parent = nullptr);
    ~ProtocolEditorDialog() override;

    ProtocolEditorLogic& Logic() { return *logic_; }

protected:
    void Run(const QString& tag) override;
    void Chosen() override;
    void CancelByFrame() override;
    void closeEvent(QCloseEvent* event) override;

private:
    // The main window may take the workspace down before this window when both close.
    QPointer<WorkspaceWindow> workspace_;
    std::unique_ptr<ProtocolEditorLogic> logic_;
};

// frmSelectProtocol, "Protocol Selection", opened from the workspace, which it hides.
class ProtocolSelectionDialog : public ProtocolListWindow {
    Q_OBJECT
public:
    ProtocolSelectionDialog(AppState& state, Prompter& prompter, IProtocolWorkspace& workspace,
                            QWidget* parent = nullptr);
    ~ProtocolSelectionDialog() override;

    ProtocolSelectionLogic& Logic() { return *logic_; }

protected:
    void Run(const QString& tag) override;
    void Chosen() override;
    void CancelByFrame() override;

private:
    std::unique_ptr<ProtocolSelectionLogic> logic_;
};

} // namespace tarvex
