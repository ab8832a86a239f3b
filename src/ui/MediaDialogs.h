#pragma once

#include "media/CheckMediaLogic.h"
#include "media/MediaLocationsLogic.h"
#include "ui/FormDialog.h"
#include "ui/ProgressWindow.h"
#include "ui/QtControls.h"
#include "ui/QtMediaControls.h"

#include <array>
#include <memory>

class QComboBox;
class QLineEdit;
class QPushButton;

namespace tarvex {

struct AppState;

// frmMedia, "Media Locations".
class MediaDialog : public FormDialog {
    Q_OBJECT
public:
    // dialog: the open-file dialog to ask; by default Qt's.
    MediaDialog(AppState& state, QWidget* parent = nullptr, IOpenFileDialog* dialog = nullptr);
    ~MediaDialog() override;

    std::array<QPushButton*, 3> cmdMedia{};
    std::array<QLineEdit*, 3> lblMedia{};
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdCancel = nullptr;

private:
    void OnOKCancel();

    std::array<QtCaption, 3> captions_;
    QtOpenFileDialog qtDialog_;
    std::unique_ptr<MediaLocationsLogic> logic_;
};

// frmCheckMedia, "Exericse Pictures Not Found": opened without modality; while it copies,
// its buttons are off and it cannot be closed.
class CheckMediaDialog : public FormDialog, private ICheckMediaHost {
    Q_OBJECT
public:
    CheckMediaDialog(AppState& state, Prompter& prompter, QWidget* parent = nullptr);
    ~CheckMediaDialog() override;

    void done(int result) override;
    CheckMediaLogic& Logic() { return *logic_; }
    QtProgressWindow& Progress() { return progress_; }

    QComboBox* Drive1 = nullptr;
    QPushButton* cmdFindCD = nullptr;
    QPushButton* cmdCD = nullptr;
    QPushButton* cmdHardDrive = nullptr;
    QPushButton* cmdCancel = nullptr;

private:
    void SetBusy(bool busy) override;
    void DoEvents() override;
    void UnloadForm() override;
    void OnPictureLocation();

    QtDriveList drives_;
    QtButtons buttons_;
    QtProgressWindow progress_;
    std::unique_ptr<CheckMediaLogic> logic_;
    bool busy_ = false;
};

} // namespace tarvex
