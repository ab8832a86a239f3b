#include "print/PrintJob.h"

#include "print/PatientRecord.h"
#include "print/PrinterModule.h"

namespace tarvex {

int JobOrientation(JobKind job) {
    return job == kJobExercises2 ? kLandscape : kPortrait;
}

bool DrawPrintJob(PageSurface& surface, AppState& state, const SheetRoutine& orderForm,
                  const NextPreviewPage& nextPage) {
    const JobKind job = state.Print.PrintJobKind;
    if (static_cast<int>(job) < 0 || static_cast<int>(job) > static_cast<int>(kJobPatientRecord))
        return false;
    if (job == kJobVideoOrder && !orderForm)
        return false;
    SetPageOrientation(surface, state.Print, JobOrientation(job));
    switch (job) {
    case kJobVideoOrder:
        orderForm(surface, state);
        break;
    case kJobExercises2:
        PrintExerciseSheets(surface, state, 2, nextPage);
        break;
    case kJobExercises4:
        PrintExerciseSheets(surface, state, 4, nextPage);
        break;
    case kJobCoverSheet:
        PrintCoverSheet(surface, state);
        break;
    case kJobPatientRecord:
        PrintPatientRecord(surface, state);
        break;
    default:
        break;
    }
    return true;
}

bool RunPrintJob(AppState& state, PageSurface& printer, const std::function<bool()>& printDialog,
                 const SheetRoutine& orderForm) {
    PrintState& print = state.Print;
    const double savedScale = print.PrintScale;
    print.PrintScale = 1.0;
    print.IsPreview = false;

    const JobKind job = print.PrintJobKind;
    const bool coverCameFirst =
        (job == kJobExercises2 || job == kJobExercises4) && state.Prefs.PrintPatientCover;
    if (!coverCameFirst && printDialog && !printDialog()) {
        print.PrintScale = savedScale;
        return false;
    }
    bool ran = false;
    try {
        ran = DrawPrintJob(printer, state, orderForm);
        if (ran) {
            if (job == kJobCoverSheet)
                printer.NewPage();
            else
                printer.EndDoc();
        }
    } catch (...) {
        // Printing fails silently: the document stays open.
        ran = false;
    }
    print.PrintScale = savedScale;
    return ran;
}

} // namespace tarvex
