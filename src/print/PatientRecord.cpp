#include "print/PatientRecord.h"

#include "print/ExerciseSheets.h"
#include "print/PrinterModule.h"
#include "support/Numbers.h"

#include <vector>

namespace tarvex {

QString NumberText(int value) {
    return (value < 0 ? QString() : QStringLiteral(" ")) + QString::number(value) +
           QStringLiteral(" ");
}

namespace {

// The lengths of the record at the current scale.
struct RecordLayout {
    int16_t Right = 0;
    int16_t RulePad = 0;
    int16_t RowPad = 0;
    std::vector<int16_t> Table; // 7 column positions
    std::vector<int16_t> Log;   // 3 column positions
};

int16_t At(const PrintState& print, double inches) {
    return ToInt16(double(print.MarginTwips) + InchesToTwips(print, inches));
}

RecordLayout ComputeLayout(const PrintState& print) {
    RecordLayout layout;
    layout.Right = InchesToTwips(print, 7.5);
    layout.RulePad = InchesToTwips(print, 0.0625);
    layout.RowPad = ToInt16(print.InchTwips * 0.0625 / 2.0);
    layout.Table = {print.MarginTwips, At(print, 0.5), At(print, 1.0), At(print, 5.0),
                    At(print, 5.5),    At(print, 6.0), layout.Right};
    layout.Log = {print.MarginTwips, At(print, 1.0), layout.Right};
    return layout;
}

void SectionHeading(PageSurface& surface, const PrintState& print, const RecordLayout& layout,
                    const QString& text) {
    const double y = surface.CurrentY();
    surface.SetFontSize(ScaledPoints(print, 10));
    PrintShadedBand(surface, print.MarginTwips - layout.RulePad, layout.Right - layout.RulePad, y);
    surface.SetCurrentY(y);
    surface.SetFontBold(true);
    PrintCenter(surface, print, text);
    surface.SetFontBold(false);
    surface.SetFontSize(ScaledPoints(print, print.BaseFontSize));
    surface.EndLine();
    surface.SetCurrentX(print.MarginTwips);
    surface.SetCurrentY(surface.CurrentY() + 2.0 * layout.RowPad);
}

void RuleAcross(PageSurface& surface, const RecordLayout& layout,
                const std::vector<int16_t>& columns, double y) {
    surface.Line(columns.front() - layout.RulePad, y, columns.back() - layout.RulePad, y);
}

// Draws the head of a ruled table and returns its top.
int16_t TableHead(PageSurface& surface, const RecordLayout& layout,
                  const std::vector<int16_t>& columns, const QStringList& headings) {
    const int16_t y0 = ToInt16(surface.CurrentY());
    RuleAcross(surface, layout, columns, y0);
    surface.SetCurrentY(y0 + layout.RowPad);
    surface.SetFontBold(true);
    for (qsizetype k = 0; k < headings.size(); ++k) {
        surface.SetCurrentX(columns[size_t(k)]);
        surface.Print(headings[k]);
    }
    surface.SetFontBold(false);
    surface.SetCurrentY(y0 + 2.0 * layout.RowPad);
    return y0;
}

void RuleDown(PageSurface& surface, const RecordLayout& layout, const std::vector<int16_t>& columns,
              int16_t top) {
    const double bottom = surface.CurrentY() - layout.RowPad;
    for (const int16_t x : columns)
        surface.Line(x - layout.RulePad, top, x - layout.RulePad, bottom);
}

// The line of a row lies above the text of its pass.
void CloseRow(PageSurface& surface, const RecordLayout& layout,
              const std::vector<int16_t>& columns) {
    const int16_t y = ToInt16(surface.CurrentY() - layout.RowPad / 2.0);
    RuleAcross(surface, layout, columns, y);
    surface.SetCurrentY(double(y) + layout.RowPad);
}

void PrintProgramRow(PageSurface& surface, const RecordLayout& layout, const ExerciseEntry& entry,
                     int index) {
    const QStringList values{NumberText(index + 1),
                             entry.Code,
                             entry.Desc,
                             NumberText(entry.Reps),
                             QString::number(entry.Hold) + QStringLiteral("s"),
                             NumberText(entry.Sets)};
    for (qsizetype k = 0; k < values.size(); ++k) {
        surface.SetCurrentX(layout.Table[size_t(k)]);
        surface.Print(values[k]);
    }
}

} // namespace

void PrintPatientRecord(PageSurface& surface, AppState& state) {
    PrintState& print = state.Print;
    print.BaseFontSize = 10;
    print.InchTwips = ToInt16(1440.0 * print.PrintScale);
    print.MarginTwips = InchesToTwips(print, 1.0);
    const RecordLayout layout = ComputeLayout(print);
    if (print.IsPreview)
        surface.Cls();

    PrintPageTitle(surface, print, SheetTitle(state.Clinic));
    PrintSheetHeader(surface, state);
    NextLine(surface, print);

    SectionHeading(surface, print, layout, QStringLiteral("EXERCISE PROGRAM"));
    const int16_t tableTop =
        TableHead(surface, layout, layout.Table,
                  {QStringLiteral("Nbr"), QStringLiteral("Code"), QStringLiteral("Description"),
                   QStringLiteral("Reps"), QStringLiteral("Hold"), QStringLiteral("Sets")});
    for (int i = 0; i <= ExerciseProgram::kMaxExercises; ++i) {
        NextLine(surface, print);
        if (i < state.Program.NumExercises)
            PrintProgramRow(surface, layout, state.Program.Exercise(i), i);
        CloseRow(surface, layout, layout.Table);
    }
    RuleDown(surface, layout, layout.Table, tableTop);

    NextLine(surface, print);
    SectionHeading(surface, print, layout, QStringLiteral("EXERCISE LOG"));
    const int16_t logTop =
        TableHead(surface, layout, layout.Log, {QStringLiteral("Date"), QStringLiteral("Notes")});
    for (int i = 0; i < 16; ++i) {
        NextWideLine(surface, print);
        CloseRow(surface, layout, layout.Log);
    }
    RuleDown(surface, layout, layout.Log, logTop);

    SkipLines(surface, print, 3);
    surface.SetCurrentX(print.MarginTwips);
    surface.Print(QStringLiteral("Signature: ___________________________"));
    PrintSmallNotice(surface, print);
}

void PrintCoverSheet(PageSurface& surface, AppState& state) {
    PrintState& print = state.Print;
    print.BaseFontSize = 12;
    print.InchTwips = ToInt16(1440.0 * print.PrintScale);
    if (print.IsPreview)
        surface.Cls();
    print.MarginTwips = InchesToTwips(print, 1.25);

    PrintPageTitle(surface, print, SheetTitle(state.Clinic));
    PrintSheetHeader(surface, state);
    surface.EndLine();
    surface.SetFontSize(ScaledPoints(print, 12));
    PrintTextBlock(surface, print.MarginTwips, state.CoverText);
    PrintPageFooter(surface, state);
}

} // namespace tarvex
