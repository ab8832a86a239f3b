#include "print/ExerciseSheets.h"

#include "print/PrinterModule.h"
#include "support/Dates.h"
#include "support/Numbers.h"

#include <array>

namespace tarvex {

QString ExerciseCaption(const ExerciseEntry& entry) {
    QString caption = QString::number(entry.Reps) + QStringLiteral(" rep");
    if (entry.Reps > 1)
        caption += QLatin1Char('s');
    if (entry.Hold != 0)
        caption += QStringLiteral(", ") + QString::number(entry.Hold) + QStringLiteral(" sec hold");
    caption += QStringLiteral(", ") + QString::number(entry.Sets) + QStringLiteral(" set");
    if (entry.Sets > 1)
        caption += QLatin1Char('s');
    return caption;
}

QString SheetTitle(const ClinicInfo& clinic) {
    return clinic.Name + QStringLiteral(", ") + clinic.Phone;
}

void PrintSheetHeader(PageSurface& surface, const AppState& state) {
    const PrintState& print = state.Print;
    surface.SetFontSize(ScaledPoints(print, 10));
    surface.EndLine();
    surface.SetCurrentX(print.MarginTwips);
    surface.PrintLine(QStringLiteral("Site #: ") + QString::number(state.SiteNumber));
    surface.SetFontSize(ScaledPoints(print, print.BaseFontSize));

    const int16_t top = InchesToTwips(print, 0.875);
    const int16_t leftLabel = print.MarginTwips;
    const int16_t leftValue = ToInt16(double(leftLabel) + InchesToTwips(print, 1.0));
    const int16_t rightLabel = InchesToTwips(print, 4.25);
    const int16_t rightValue = ToInt16(double(rightLabel) + InchesToTwips(print, 1.0));

    const auto row = [&surface](int16_t labelX, int16_t valueX, const QString& label,
                                const QString& value) {
        surface.SetCurrentX(labelX);
        surface.Print(label);
        surface.SetCurrentX(valueX);
        surface.PrintLine(value);
    };
    const ExerciseProgram& program = state.Program;
    surface.SetCurrentY(top);
    row(leftLabel, leftValue, QStringLiteral("Patient:"), program.FullName);
    row(leftLabel, leftValue, QStringLiteral("Usage:"), program.Usage);
    surface.SetCurrentY(top);
    row(rightLabel, rightValue, QStringLiteral("Provider:"), program.Provider);
    row(rightLabel, rightValue, QStringLiteral("Date:"), ShortDate(program.Date));
}

namespace {

// The lengths of one layout, in twips of the current scale.
struct SheetLayout {
    int16_t PictureWidth = 0;
    int16_t PictureHeight = 0;
    std::array<int16_t, 3> ColumnX{};
};

SheetLayout ComputeLayout(const PrintState& print, int perPage) {
    SheetLayout layout;
    layout.PictureHeight = InchesToTwips(print, 1.5);
    layout.PictureWidth = ToInt16(2.0 * print.InchTwips);
    layout.ColumnX[0] = print.MarginTwips;
    if (perPage == 2) {
        layout.PictureHeight = ToInt16(layout.PictureHeight * 1.5);
        layout.PictureWidth = ToInt16(layout.PictureWidth * 1.5);
        layout.ColumnX[1] = InchesToTwips(print, 3.75);
        layout.ColumnX[2] = InchesToTwips(print, 7.0);
    } else {
        layout.ColumnX[1] = InchesToTwips(print, 3.0);
        layout.ColumnX[2] = InchesToTwips(print, 5.5);
    }
    return layout;
}

void PrintExercise(PageSurface& surface, const AppState& state, const SheetLayout& layout,
                   int index) {
    const PrintState& print = state.Print;
    const ExerciseEntry& entry = state.Program.Exercise(index);

    surface.SetFontBold(true);
    const QString number = QStringLiteral(" ") + QString::number(index + 1) + QStringLiteral(". ");
    surface.SetCurrentX(print.MarginTwips - surface.TextWidth(number));
    surface.Print(number);
    surface.SetCurrentX(print.MarginTwips);
    surface.PrintLine(QStringLiteral("(") + entry.Code + QStringLiteral(") ") + entry.Desc +
                      QStringLiteral(": ") + ExerciseCaption(entry));
    surface.SetFontBold(false);

    std::array<int16_t, 3> viewY{};
    for (int16_t& y : viewY)
        y = ToInt16(surface.CurrentY() + print.InchTwips * 0.05);

    surface.SetFontSize((print.BaseFontSize - 1) * print.PrintScale);
    const std::array<const QString*, 3> pictures{&entry.Picture0, &entry.Picture1, &entry.Picture2};
    const std::array<const QString*, 3> instructions{&entry.Instruct0, &entry.Instruct1,
                                                     &entry.Instruct2};
    for (int j = 0; j < 3; ++j) {
        PrintPicture(surface, state.Media, *pictures[j], layout.ColumnX[j], viewY[j],
                     layout.PictureWidth, layout.PictureHeight);
        surface.SetCurrentY(ToInt16(double(viewY[j]) + layout.PictureHeight));
        PrintWrappedText(surface, *instructions[j], layout.ColumnX[j], layout.PictureWidth);
    }
    // The room for the instructions is two lines, however long they are.
    surface.SetCurrentY(ToInt16(double(viewY[2]) + layout.PictureHeight) +
                        2.0 * surface.TextHeight(QStringLiteral("X")));
    surface.SetFontSize(ScaledPoints(print, print.BaseFontSize));
}

} // namespace

PageSurface& PrintExerciseSheets(PageSurface& surface, AppState& state, int perPage,
                                 const NextPreviewPage& nextPage) {
    PrintState& print = state.Print;
    print.BaseFontSize = 12;
    print.InchTwips = ToInt16(1440.0 * print.PrintScale);
    print.MarginTwips = InchesToTwips(print, 0.5);
    const SheetLayout layout = ComputeLayout(print, perPage);

    PageSurface* page = &surface;
    if (print.IsPreview)
        page->Cls();
    const QString title = SheetTitle(state.Clinic);
    PrintPageTitle(*page, print, title);
    PrintSheetHeader(*page, state);

    for (int i = 0; i < state.Program.NumExercises; ++i) {
        if (i > 0 && i % perPage == 0) {
            PrintPageFooter(*page, state);
            if (print.IsPreview && nextPage)
                page = nextPage();
            else
                page->NewPage();
            PrintPageTitle(*page, print, title);
            PrintSheetHeader(*page, state);
        }
        PrintExercise(*page, state, layout, i);
    }
    PrintPageFooter(*page, state);
    return *page;
}

} // namespace tarvex
