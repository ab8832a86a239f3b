#pragma once

#include "exercise/ExerciseEntry.h"
#include "support/Controls.h"
#include "support/MediaPlayer.h"

#include <QString>
#include <array>
#include <cstdint>

namespace tarvex {

struct AppState;

// The selection workspace, as seen from the parameter dialog.
class IParamsTarget {
public:
    virtual ~IParamsTarget() = default;
    // Copies TmpExercise into the slot, redraws it and marks the program as modified.
    virtual void SetSelExFromTmp(int16_t slot) = 0;
    // Sets the caption under the slot's picture.
    virtual void ShowSlotCaption(int16_t slot, const QString& caption) = 0;
};

// The parameter dialog's own window, as its load sees it.
class IParamsForm {
public:
    virtual ~IParamsForm() = default;
    virtual void SetCaption(const QString& caption) = 0;
    // Puts the window on the screen, so that the movie has a surface to live in.
    virtual void ShowForm() = 0;
};

// The logic of frmExerciseParams: repetitions, hold and sets of one exercise, its
// instruction lines and its movie. It works on a private copy of the exercise; OK puts
// the copy back into the program, Cancel drops it.
class ExerciseParamsLogic {
public:
    static constexpr int kInstructLimit = 75; // characters of an instruction line

    // The movie commands, by the index of their button.
    enum Command : int { kOpen = 0, kPlay = 1, kPause = 2, kStop = 3, kClose = 4, kRewind = 5 };

    struct Controls {
        IParamsForm& Form;
        IComboBox& RepsList;
        IComboBox& HoldList;
        IComboBox& SetsList;
        std::array<ITextBox*, 3> txtInstr;
        std::array<IPicture*, 3> Image1;
        IMovieFrame& MovFrame;
    };

    ExerciseParamsLogic(AppState& state, IParamsTarget& target, IMediaLibrary& media,
                        Controls controls);

    // Everything the load does after the window has been placed: the copy of the
    // exercise, the caption, the lists, the window shown, the movie, the pictures and the
    // instruction lines.
    void Load();
    // Fills the three lists with their usual values and shows the copy's numbers.
    void InitListBoxes();
    // The movie of the copy from the movie folder, opened.
    void OpenMovieFile();
    // "Open", "Play", "Pause", "Stop", "Close", "Rewind" by index; any other index does
    // nothing.
    void cmdControl(int index);
    // Opens a movie file into the movie surface after closing the one before. Returns
    // the new handle, 0 when it failed; width and height receive the size of the movie
    // window: the video's size plus its border and bar.
    int16_t nFuncOpenMedia(const QString& fileName, int& width, int& height, int left, int top);
    // "OK" writes the copy back, "Cancel" writes nothing. Returns true when the dialog is
    // to unload, false for a tag that is neither.
    bool cmdOKCancel(const QString& tag);
    // On unload: the movie is closed.
    void Unload();

    const ExerciseEntry& ParamEntry() const { return paramEntry_; }
    int16_t MediaHandle() const { return mediaHandle_; }
    const QString& MovieFileName() const { return movieFileName_; }

private:
    // Room for the movie window's border and bar around the video.
    static constexpr int kBorderWidth = 2;
    static constexpr int kBorderHeight = 19;

    const ExerciseEntry& ChosenEntry() const;
    void WriteBack();

    AppState& state_;
    IParamsTarget& target_;
    IMediaLibrary& media_;
    Controls c_;
    ExerciseEntry paramEntry_;
    int16_t mediaHandle_ = 0;
    QString movieFileName_;
};

} // namespace tarvex
