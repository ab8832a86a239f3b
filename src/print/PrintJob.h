#pragma once

#include "print/ExerciseSheets.h"
#include "print/PageSurface.h"
#include "shell/AppState.h"

#include <functional>

namespace tarvex {

// The print jobs by the names the commands use.
inline constexpr JobKind kJobVideoOrder = JobKind::VideoOrder;
inline constexpr JobKind kJobExercises2 = JobKind::Exercises2;
inline constexpr JobKind kJobExercises4 = JobKind::Exercises4;
inline constexpr JobKind kJobCoverSheet = JobKind::CoverSheet;
inline constexpr JobKind kJobPatientRecord = JobKind::PatientRecord;

// The orientation of a job's pages.
int JobOrientation(JobKind job);

// A drawing routine of a whole job.
using SheetRoutine = std::function<void(PageSurface&, AppState&)>;

// Draws the job in state.Print.PrintJobKind on the surface: the orientation, then the
// job's routine. The order form is drawn by orderForm, which may be empty (nothing is
// drawn then). Returns false for an unknown job or a missing routine.
bool DrawPrintJob(PageSurface& surface, AppState& state, const SheetRoutine& orderForm = {},
                  const NextPreviewPage& nextPage = {});

// The one entry for printing: prints the job in PrintJobKind on the printer at scale 1.0.
// printDialog shows the printer dialog and returns false on cancel (MaybeShowPrintDlg).
// The exercise sheets skip the dialog when the cover sheet came first. The cover sheet
// ends with a new page and leaves the document open for the sheets that follow; every
// other job ends the document. A fault while drawing ends the job silently and the
// document is not ended. PrintScale is always put back. Returns true when the job ran.
bool RunPrintJob(AppState& state, PageSurface& printer, const std::function<bool()>& printDialog,
                 const SheetRoutine& orderForm = {});

} // namespace tarvex
