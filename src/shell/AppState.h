#pragma once

#include "data/Databases.h"
#include "exercise/ExerciseProgram.h"
#include "exercise/LibraryCache.h"
#include "exercise/MediaPaths.h"
#include "program/ClinicInfo.h"

#include <QString>
#include <cstdint>
#include <optional>

namespace tarvex {

// Why the selection workspace is open; it decides what its OK and Cancel do.
enum class WorkspacePurpose : int {
    None = 0,           // not in use
    Program = 1,        // building the current patient's program
    NewProtocol = 2,    // a new protocol for the protocol editor
    StoredProtocol = 3, // a stored protocol for the protocol editor
};

// The user's options (kept in the settings store).
struct Preferences {
    bool PrintPatientCover = true;
    bool PrintCallTVX = false;
    bool ShowTips = true;
    QString Provider;
};

// The print jobs.
enum class JobKind : int {
    VideoOrder = 0,    // the video order form, portrait
    Exercises2 = 1,    // exercise sheets, two a page, landscape
    Exercises4 = 2,    // exercise sheets, four a page, portrait
    CoverSheet = 3,    // the patient's cover sheet, portrait
    PatientRecord = 4, // the record for the chart, portrait
};

// What the printed pages share.
struct PrintState {
    JobKind PrintJobKind = JobKind::VideoOrder;
    double PrintScale = 1.0;
    int BaseFontSize = 10;
    int16_t InchTwips = 1440; // twips of one page inch at the current scale
    int16_t MarginTwips = 0; // left margin of the current sheet (and right, for right-aligned text)
    bool IsPreview = false;  // true while drawing for the preview
    double PageWidthInches = 8.5; // set only by SetPageOrientation
    double PageHeightInches = 11.0;
};

// The shared state of a run: everything that every window reads and writes. One object,
// passed by reference to whoever needs it.
struct AppState {
    QString AppFolder;       // the per-user data folder with the databases and texts
    QString DeliveredFolder; // the installed delivered files (templates and media)

    Preferences Prefs;
    MediaPaths Media;
    QString CDRomDrive;
    int32_t SiteNumber = 0;

    QString TollFreeOrder;
    QString TollFreeFax;
    QString CoverText;

    ClinicInfo Clinic;
    ExerciseProgram Program;
    LibraryCache Library;
    Databases Dbs;
    PrintState Print;

    WorkspacePurpose WorkspaceMode = WorkspacePurpose::None;
    bool SkipPrintDialog = false;

    // The selection workspace and its parameter dialog.
    int DragMode = 0;          // 0 "Insert (def)", 1 "Replace"; back to 0 with each library load
    int ParamsFromLibrary = 0; // 1: CurrentChoice indexes the library; 0: a slot of the program
    ExerciseEntry TmpExercise; // holding place for moves and for the dialog's result

    // The library's exercise editor: the number (as the list shows it) of the exercise to
    // edit, or nothing to add a new one.
    std::optional<QString> ExerciseNumber;
    // The picture (1 to 3) last sent to the companion picture editor; 0 before any.
    int32_t PictureNumber = 0;
};

// The order telephone numbers, fixed at start.
inline constexpr const char* kTollFreeOrder = "1-888-555-0147";
inline constexpr const char* kTollFreeFax = "1-800-555-0142";

} // namespace tarvex
