#pragma once

#include "exercise/ExerciseParamsLogic.h"
#include "ui/QtControls.h"
#include "ui/QtMediaLibrary.h"

#include "ui/FormDialog.h"

#include <array>
#include <functional>
#include <memory>

class QComboBox;
class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tarvex {

struct AppState;

// frmExerciseParams: repetitions, hold and sets of one exercise, its pictures and
// instruction lines, and its movie. Shown modally by the selection workspace after it has
// set CurrentChoice and ParamsFromLibrary; it loads when it is first shown.
class ExerciseParamsDialog : public FormDialog {
    Q_OBJECT
public:
    ExerciseParamsDialog(AppState& state, IParamsTarget& target, QWidget* parent = nullptr);
    ~ExerciseParamsDialog() override;

    // The size of the movie surface before a movie sets it.
    static constexpr int kEmptyMovieWidth = 322;
    static constexpr int kEmptyMovieHeight = 259;
    static constexpr int kPictureWidth = 240;
    static constexpr int kPictureHeight = 180;

    std::array<QLabel*, 3> Image1;
    std::array<QLineEdit*, 3> txtInstr;
    QGroupBox* fraExercises;
    QGroupBox* fraOptions;
    QGroupBox* fraMovie;
    QComboBox* RepsList;
    QComboBox* HoldList;
    QComboBox* SetsList;
    QFrame* MovFrame;
    std::array<QPushButton*, 6> cmdControl;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

    ExerciseParamsLogic& Logic() { return *logic_; }
    QtMediaLibrary& Media() { return media_; }

    // The first show runs the load.
    void setVisible(bool visible) override;

private:
    class Form;

    void ShowNow();
    void BuildLayout();
    void OnOKCancel();
    void PlaceOnScreen();
    void FitMovieToScreen();
    void Unload() override;
    void NoteMissingMovie(int command);

    QtComboBox reps_, hold_, sets_;
    std::array<std::unique_ptr<QtLineEdit>, 3> instr_;
    std::array<std::unique_ptr<QtPicture>, 3> pictures_;
    QtMovieFrame movFrame_;
    QtMediaLibrary media_;
    std::unique_ptr<Form> form_;
    std::unique_ptr<ExerciseParamsLogic> logic_;
    bool loaded_ = false;
};

} // namespace tarvex
