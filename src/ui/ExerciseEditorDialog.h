#pragma once

#include "library/ExerciseEditorLogic.h"
#include "ui/FormDialog.h"
#include "ui/QtControls.h"

#include <QPlainTextEdit>
#include <array>
#include <functional>
#include <memory>

class QButtonGroup;
class QLineEdit;
class QRadioButton;

namespace tarvex {

// A multi-line box that takes at most so many characters from the user. A text set by the
// program is shown whole, as a text box's limit holds for typing only.
class LimitedTextEdit : public QPlainTextEdit {
    Q_OBJECT
public:
    LimitedTextEdit(int maxLength, QWidget* parent);
    void SetTextFromProgram(const QString& text);
    int MaxLength() const { return maxLength_; }

private:
    void Trim(int position, int added);
    int maxLength_;
    bool fromProgram_ = false;
};

// frmEditExercise, "Exercise Number: N": one exercise of the library with its texts,
// defaults, joints, pattern and type, and its three pictures with their instruction lines
// and the choice of the selection icon. Shown without modality beside the library list.
class ExerciseEditorDialog : public FormDialog, private IExerciseEditorHost {
    Q_OBJECT
public:
    // Makes the editor for the exercise that ExerciseNumber names (or a new one) and shows
    // it; nullptr when it could not load (the fault was reported).
    static ExerciseEditorDialog* Open(AppState& state, Prompter& prompter,
                                      std::function<void()> refillList, QWidget* parent);

    ExerciseEditorLogic& Logic() { return *logic_; }
    QPushButton* Button(const QString& tag) const;

    QLineEdit* txtDescription;
    QLineEdit* txtAbbrevDesc;
    QLineEdit* txtRepsDef;
    QLineEdit* txtHoldDef;
    QLineEdit* txtSetsDef;
    QComboBox* cboPattern;
    QComboBox* cboType;
    QListWidget* lstJoint;
    std::array<LimitedTextEdit*, 3> txtPicture{};
    std::array<QLabel*, 3> imgPicture{};
    std::array<QRadioButton*, 3> optExIcon{};
    // The values of the link to the companion picture editor, shown under the captions
    // "Status:", "Source:", "Prev Src:", "SaveAs:".
    QLabel* lblLinkStatus = nullptr;
    QLabel* lblPictOpenFName = nullptr;
    QLabel* lblSrcPicture = nullptr;
    QLabel* lblPictSaveFName = nullptr;

protected:
    void CancelByFrame() override;
    void Unload() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ExerciseEditorDialog(AppState& state, Prompter& prompter, std::function<void()> refillList,
                         QWidget* parent);
    ~ExerciseEditorDialog() override;

    // IExerciseEditorHost
    void MakeIcon(const QString& picture, const QString& icon, int32_t width) override;
    void RefillLibraryList() override;

    QWidget* BuildDescription();
    QWidget* BuildOptions();
    QWidget* BuildView();
    QWidget* BuildPictures();
    QWidget* BuildLink();
    void Run(const QString& tag);

    AppState& state_;
    Prompter& prompter_;
    std::function<void()> refillList_;
    QButtonGroup* iconGroup_ = nullptr;
    QtButtons buttons_;
    QtWindowTitle title_;
    std::vector<std::unique_ptr<ITextBox>> texts_;
    std::vector<std::unique_ptr<IPicture>> pictures_;
    std::vector<std::unique_ptr<ICheckBox>> options_;
    std::unique_ptr<QtComboBox> pattern_, type_;
    std::unique_ptr<QtListBox> joints_;
    // The link's conversation and labels live as long as the form.
    LinkChannels linkChannels_;
    LinkLabel linkSave_{linkChannels_};
    LinkLabel linkOpen_{linkChannels_};
    LinkLabel linkSource_{linkChannels_};
    LinkLabel linkStatus_{linkChannels_};
    std::unique_ptr<ExerciseEditorLogic> logic_;
};

} // namespace tarvex
