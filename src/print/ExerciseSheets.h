#pragma once

#include "print/PageSurface.h"
#include "shell/AppState.h"

#include <functional>

namespace tarvex {

// Hands the preview's next page picture to a sheet that needs a fresh page. On paper a
// sheet calls the surface's own NewPage instead.
using NextPreviewPage = std::function<PageSurface*()>;

// The text of an exercise's parameters: "10 reps, 5 sec hold, 2 sets", "1 rep, 1 set".
QString ExerciseCaption(const ExerciseEntry& entry);

// The header block below the page title: the site line, then patient and usage on the
// left, provider and date on the right.
void PrintSheetHeader(PageSurface& surface, const AppState& state);

// The page title: "<clinic>, <phone>".
QString SheetTitle(const ClinicInfo& clinic);

// All pages of the exercise sheets, 2 (landscape) or 4 (portrait) exercises a page.
// Sets the sheet's lengths in state.Print. In the preview a fresh page comes from
// nextPage; the surface the drawing ended on is returned.
PageSurface& PrintExerciseSheets(PageSurface& surface, AppState& state, int perPage,
                                 const NextPreviewPage& nextPage = {});

} // namespace tarvex
