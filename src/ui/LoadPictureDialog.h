#pragma once

#include "library/PictureImport.h"
#include "ui/FormDialog.h"
#include "ui/QtControls.h"

#include <memory>

class QComboBox;
class QFileSystemModel;
class QLabel;
class QListView;
class QTreeView;

namespace tarvex {

struct AppState;

// frmLoadPicture, "Select Picture": the picture service of the exercise editor (made
// hidden, used for LoadFile and ResizeAndSaveFile, and gone again), laid out as a picture
// browser with a drive list, a folder list, a file list and a preview. The browsing lists
// read the disk only once the form is shown.
class LoadPictureDialog : public FormDialog {
    Q_OBJECT
public:
    static constexpr const char* kCaption = "Select Picture";

    explicit LoadPictureDialog(AppState& state, Prompter& prompter, QWidget* parent = nullptr);
    ~LoadPictureDialog() override;

    void LoadFile(const QString& path, int32_t flag);
    void ResizeAndSaveFile(const QString& path, int32_t size);

    QComboBox* Drive1;
    QTreeView* Dir1;
    QListView* File1;
    QLabel* LEAD1;
    QLabel* StatusPanel;

    // The folder the file list shows, and the file chosen in it (empty when none).
    QString FilePath() const;
    QString FileName() const;

    // The browsing events.
    void Drive1_Change(const QString& root);
    void Dir1_Change(const QString& folder);
    void File1_Click(const QString& name);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void BuildLayout();
    void StartBrowsing();
    void ShowPicture();

    AppState& state_;
    Prompter& prompter_;
    QtStatusPanels status_;
    PictureImport import_;
    QFileSystemModel* folders_ = nullptr;
    QFileSystemModel* files_ = nullptr;
    QString filePath_;
    bool browsing_ = false;
};

} // namespace tarvex
