#include "exercise/ExerciseParamsLogic.h"

#include "exercise/ParamText.h"
#include "shell/AppState.h"
#include "support/Fault.h"
#include "support/Numbers.h"

namespace tarvex {

namespace {

// Adds count entries of step apart, from 0, and shows the value, listed or not.
void FillNumberList(IComboBox& box, int count, int step, int16_t value) {
    box.Clear();
    for (int i = 0; i < count; ++i)
        box.AddItem(QString::number(i * step));
    box.SetText(QString::number(value));
}

// The number that a list's text starts with, as a 16-bit integer.
int16_t NumberOf(const IComboBox& box) {
    return ToInt16(Val(box.Text()));
}

} // namespace

ExerciseParamsLogic::ExerciseParamsLogic(AppState& state, IParamsTarget& target,
                                         IMediaLibrary& media, Controls controls)
    : state_(state), target_(target), media_(media), c_(controls) {}

const ExerciseEntry& ExerciseParamsLogic::ChosenEntry() const {
    const int choice = state_.Library.CurrentChoice;
    if (state_.ParamsFromLibrary != 1)
        return state_.Program.Exercise(choice);
    const auto& entries = state_.Library.Entries;
    if (choice < 0 || choice >= static_cast<int>(entries.size()))
        throw BoundsFault(QStringLiteral("Subscript out of range (%1)").arg(choice));
    return entries[static_cast<size_t>(choice)];
}

void ExerciseParamsLogic::Load() {
    paramEntry_ = ChosenEntry();
    c_.Form.SetCaption(QStringLiteral("Exercise: ") + paramEntry_.Desc);
    InitListBoxes();
    c_.Form.ShowForm();
    OpenMovieFile();

    const std::array<QString, 3> pictures = {paramEntry_.Picture0, paramEntry_.Picture1,
                                             paramEntry_.Picture2};
    // A picture that cannot be read leaves its box empty; the load goes on.
    for (size_t i = 0; i < pictures.size(); ++i)
        c_.Image1[i]->LoadFile(state_.Media.Picture + pictures[i]);
    c_.txtInstr[0]->SetText(paramEntry_.Instruct0);
    c_.txtInstr[1]->SetText(paramEntry_.Instruct1);
    c_.txtInstr[2]->SetText(paramEntry_.Instruct2);
}

void ExerciseParamsLogic::InitListBoxes() {
    FillNumberList(c_.RepsList, 6, 5, paramEntry_.Reps);
    FillNumberList(c_.HoldList, 13, 5, paramEntry_.Hold);
    FillNumberList(c_.SetsList, 11, 1, paramEntry_.Sets);
}

void ExerciseParamsLogic::OpenMovieFile() {
    movieFileName_ = state_.Media.Movie + paramEntry_.Movie;
    cmdControl(kOpen);
}

void ExerciseParamsLogic::cmdControl(int index) {
    switch (index) {
    case kOpen: {
        if (media_.FileDoesNotExist(movieFileName_) == 1)
            return;
        int width = 0;
        int height = 0;
        mediaHandle_ = nFuncOpenMedia(movieFileName_, width, height, 0, 0);
        if (mediaHandle_ != 0)
            c_.MovFrame.SetSize(width, height);
        return;
    }
    // The play commands do not look at the handle: with no movie, 0 goes to the library.
    case kPlay:
        media_.Play(mediaHandle_);
        return;
    case kPause:
        media_.Pause(mediaHandle_);
        return;
    case kStop:
        media_.Stop(mediaHandle_);
        return;
    case kClose:
        if (mediaHandle_ != 0)
            mediaHandle_ = media_.Close(mediaHandle_);
        return;
    case kRewind:
        media_.Rewind(mediaHandle_);
        return;
    default:
        return;
    }
}

int16_t ExerciseParamsLogic::nFuncOpenMedia(const QString& fileName, int& width, int& height,
                                            int left, int top) {
    // Only one movie is open at a time.
    if (mediaHandle_ != 0)
        mediaHandle_ = media_.Close(mediaHandle_);
    const int16_t handle = media_.Open(fileName, left, top);
    if (handle == 0)
        return 0;
    int videoWidth = 0;
    int videoHeight = 0;
    media_.GetVideoWinSize(handle, videoWidth, videoHeight);
    width = videoWidth + kBorderWidth;
    height = videoHeight + kBorderHeight;
    media_.SetWinPos(handle, 0, 0);
    media_.Show(handle);
    return handle;
}

bool ExerciseParamsLogic::cmdOKCancel(const QString& tag) {
    if (tag == QLatin1String("OK")) {
        WriteBack();
        return true;
    }
    return tag == QLatin1String("Cancel");
}

void ExerciseParamsLogic::WriteBack() {
    paramEntry_.Reps = NumberOf(c_.RepsList);
    paramEntry_.Sets = NumberOf(c_.SetsList);
    paramEntry_.Hold = NumberOf(c_.HoldList);
    paramEntry_.Instruct0 = c_.txtInstr[0]->Text();
    paramEntry_.Instruct1 = c_.txtInstr[1]->Text();
    paramEntry_.Instruct2 = c_.txtInstr[2]->Text();

    ExerciseProgram& program = state_.Program;
    if (state_.ParamsFromLibrary == 1) {
        // A library picture: the exercise goes behind the last filled slot.
        state_.TmpExercise = paramEntry_;
        target_.SetSelExFromTmp(program.NumExercises);
        program.NumExercises = ToInt16(program.NumExercises + 1);
        return;
    }
    // A selected exercise: only its slot changes; the program is not marked as modified.
    const int slot = state_.Library.CurrentChoice;
    program.Exercise(slot) = paramEntry_;
    target_.ShowSlotCaption(static_cast<int16_t>(slot), ShortParamText(program, slot));
}

void ExerciseParamsLogic::Unload() {
    cmdControl(kClose);
}

} // namespace tarvex
