#include "print/OrderForm.h"

#include "print/PrinterModule.h"
#include "support/Dates.h"
#include "support/Numbers.h"

#include <algorithm>
#include <array>

namespace tarvex {

namespace {

struct ShipRow {
    const char* Service;
    int Rate;
    const char* Text;
};
constexpr std::array<ShipRow, 3> kShipRows = {{
    {"UPS Ground", 4, " Ground     "},
    {"UPS 2-Day", 8, " 2 Day        "},
    {"UPS Next Day", 14, " Next Day  "},
}};

const QString kBlankLine = QStringLiteral("________________________");
const QString kBlankPhone = QStringLiteral("(____)___________________");

QString BlankAddressBlock() {
    QString block;
    for (int i = 0; i < 6; ++i)
        block += kBlankLine + QStringLiteral("\r\n");
    return block + kBlankPhone;
}

// A number as the form prints it: a blank (or the minus) before it and a blank after it.
QString NumberText(int value) {
    return (value < 0 ? QStringLiteral("-") : QStringLiteral(" ")) +
           QString::number(std::abs(value)) + u' ';
}

// The lengths of the form at the current scale.
struct FormLengths {
    explicit FormLengths(const PrintState& print)
        : RulePad(InchesToTwips(print, 0.0625)), RowPad(ToInt16(RulePad / 2.0)),
          TinyPad(ToInt16(RowPad / 2.0)), BandRight(ToInt16(print.InchTwips * 7.5 - RulePad)) {}
    int16_t RulePad;
    int16_t RowPad;
    int16_t TinyPad;
    int16_t BandRight;
};

bool HoldsDate(const QDateTime& date) {
    return date.isValid() && date != ZeroDate();
}

} // namespace

Currency OrderFormShipping(const QString& shipMethod) {
    for (const ShipRow& row : kShipRows)
        if (shipMethod == QLatin1String(row.Service))
            return Currency::FromWhole(row.Rate);
    return {};
}

void ComputeOrderTotals(const ExerciseProgram& program, Currency& subTotal, Currency& shipping,
                        Currency& tax, Currency& total) {
    subTotal = {};
    for (const OrderItem& item : program.Items)
        subTotal += item.Price * item.Qty;
    tax = program.Tax != 0 ? Currency::FromDouble(subTotal.ToDouble() * 0.05) : Currency{};
    shipping = OrderFormShipping(program.ShipMethod);
    total = subTotal + shipping + tax;
}

int32_t OrderChecksum(int32_t siteNumber, const ExerciseProgram& program) {
    int32_t sum = siteNumber;
    for (int i = 0; i < program.NumExercises; ++i) {
        const ExerciseEntry& e = program.Exercise(i);
        // A code counts with its leading decimal number, 0 without one: "12A" is 12, "A12"
        // and "&H10" are 0, and "1E3" is 1, since an exponent is no part of a plain decimal
        // number. The sum is rounded to a whole number after each code, half to even.
        if (e.HasVideo)
            sum = ToInt32(static_cast<double>(sum) + DecimalVal(e.Code));
    }
    return sum;
}

QString ChecksumText(int32_t checksum) {
    if (checksum > 0)
        return QStringLiteral("CHECKSUM: ") + QString::number(checksum);
    return QStringLiteral("CHECKSUM (to be filled by TVX):____");
}

QString OrderItemLines(const ExerciseProgram& program) {
    QString text;
    for (const OrderItem& item : program.Items)
        text += item.Description + QStringLiteral("\r\n");
    return text;
}

QString OrderPriceLines(const ExerciseProgram& program) {
    QString text;
    for (const OrderItem& item : program.Items) {
        if (item.Qty != 0)
            text += QStringLiteral("  %1  x %2 = %3\r\n")
                        .arg(item.Qty)
                        .arg(FormatCurrency(item.Price), FormatCurrency(item.Price * item.Qty));
        else
            text += QStringLiteral("___x %1 = $_____\r\n").arg(FormatCurrency(item.Price));
    }
    return text;
}

void PrintShippingLines(PageSurface& surface, const AppState& state, double x) {
    for (const ShipRow& row : kShipRows) {
        surface.SetCurrentX(x);
        PrintCheckBox(surface, state.Program.ShipMethod == QLatin1String(row.Service));
        surface.Print(FormatCurrency(Currency::FromWhole(row.Rate)) + QLatin1String(row.Text));
        NextLine(surface, state.Print);
    }
}

void PrintVideoOrderForm(PageSurface& surface, AppState& state) {
    PrintState& print = state.Print;
    const ExerciseProgram& p = state.Program;
    // The inch follows the scale of this drawing, as on every other sheet, so that a
    // preview never lays the form out at the inch of an earlier job.
    print.InchTwips = ToInt16(1440.0 * print.PrintScale);
    print.BaseFontSize = 10;
    print.MarginTwips = InchesToTwips(print, 1);
    const FormLengths len(print);
    const double margin = print.MarginTwips;
    auto at = [&](double inches) { return static_cast<double>(InchesToTwips(print, inches)); };
    auto fontSize = [&](double points) { surface.SetFontSize(ScaledPoints(print, points)); };
    auto bold = [&](bool on) { surface.SetFontBold(on); };
    if (print.IsPreview)
        surface.Cls();

    PrintPageTitle(surface, print, state.Clinic.Name + QStringLiteral(", ") + state.Clinic.Phone);
    fontSize(10);
    NextWideLine(surface, print);
    surface.SetCurrentX(margin);
    surface.Print(QStringLiteral("Site #:"));
    surface.PrintLine(NumberText(state.SiteNumber));
    NextLine(surface, print);
    fontSize(print.BaseFontSize);
    surface.SetCurrentY(surface.CurrentY() + len.RowPad);

    // Sections 1 and 2: who pays, where it goes, and the date.
    surface.SetCurrentX(margin);
    surface.Print(QStringLiteral("1. "));
    bold(true);
    surface.Print(QStringLiteral("BILL TO:"));
    bold(false);
    surface.SetCurrentX(at(3.75));
    surface.Print(QStringLiteral("2. "));
    bold(true);
    surface.Print(QStringLiteral("SHIP TO:  "));
    bold(false);
    PrintCheckBox(surface, false);
    surface.Print(QStringLiteral("Billing address"));
    surface.SetCurrentX(at(6.25));
    surface.Print(QStringLiteral("DATE:"));

    NextWideLine(surface, print);
    surface.SetCurrentX(margin);
    double y = surface.CurrentY();
    PrintTextBlockSpaced(surface, print, margin,
                         p.BillAddr.isEmpty() ? BlankAddressBlock()
                                              : WithStoredLineBreaks(p.BillAddr));
    surface.SetCurrentY(y);
    if (!p.ShipAddr.isEmpty()) {
        PrintTextBlockSpaced(surface, print, at(3.75), WithStoredLineBreaks(p.ShipAddr));
        surface.SetCurrentX(at(3.75));
        surface.Print(QStringLiteral("Phone: "));
        surface.PrintLine(p.ShipPhone);
    } else {
        PrintTextBlockSpaced(surface, print, at(3.75), BlankAddressBlock());
    }
    surface.SetCurrentY(y);
    surface.SetCurrentX(at(6.25));
    surface.PrintLine(p.Date.isValid() ? ShortDate(p.Date) : QStringLiteral("_________"));

    // Section 3: the tape.
    SkipLines(surface, print, 6.5f);
    y = surface.CurrentY();
    fontSize(10);
    PrintShadedBand(surface, margin - len.RulePad, len.BandRight, y);
    surface.SetCurrentY(y);
    bold(true);
    PrintCenter(surface, print, QStringLiteral("3. TAPE CONTENT"));
    bold(false);
    fontSize(print.BaseFontSize);
    surface.EndLine();
    surface.SetCurrentY(surface.CurrentY() + len.RowPad);

    auto valueOrBlank = [&](const QString& value) {
        if (!value.isEmpty())
            return surface.Print(value);
        surface.SetCurrentX(at(2.25));
        surface.Print(kBlankLine);
    };
    surface.SetCurrentX(margin);
    surface.Print(QStringLiteral("Patient: "));
    valueOrBlank(p.FullName);
    surface.SetCurrentX(at(5.25));
    surface.Print(p.Usage.isEmpty() ? QStringLiteral("___x per_______") : p.Usage);
    surface.EndLine();
    surface.SetCurrentX(margin);
    surface.Print(QStringLiteral("Provider: "));
    valueOrBlank(p.Provider);
    surface.EndLine();
    surface.SetCurrentX(margin);
    surface.Print(QStringLiteral("Phone: "));
    surface.SetCurrentX(at(2.25));
    surface.Print(kBlankPhone);
    surface.EndLine();

    const std::array<double, 6> columns = {margin, at(2), at(6), at(6.5), at(7), at(7.5)};
    const std::array<QString, 5> headings = {"Code", "Description", "Reps", "Hold", "Sets"};
    surface.SetCurrentY(surface.CurrentY() + len.RowPad);
    const double y0 = surface.CurrentY();
    surface.Line(columns[0] - len.RulePad, y0, columns[5] - len.RulePad, y0);
    surface.SetCurrentY(y0 + len.RowPad);
    bold(true);
    for (size_t c = 0; c < headings.size(); ++c) {
        surface.SetCurrentX(columns[c]);
        surface.Print(headings[c]);
    }
    bold(false);
    surface.SetCurrentY(y0 + 2.0 * len.RowPad);
    // 21 passes: each rule lies above the text of its pass, the last only closes the table.
    for (int i = 0; i <= ExerciseProgram::kMaxExercises; ++i) {
        NextLine(surface, print);
        if (i < p.NumExercises && p.Exercise(i).HasVideo) {
            const ExerciseEntry& e = p.Exercise(i);
            const std::array<QString, 5> values = {e.Code, e.Desc, NumberText(e.VideoReps),
                                                   QString::number(e.VideoHold) + u's',
                                                   NumberText(e.VideoSets)};
            for (size_t c = 0; c < values.size(); ++c) {
                surface.SetCurrentX(columns[c]);
                surface.Print(values[c]);
            }
        }
        const double rule = surface.CurrentY() - len.TinyPad;
        surface.Line(columns[0] - len.RulePad, rule, columns[5] - len.RulePad, rule);
        surface.SetCurrentY(rule + len.RowPad);
    }
    y = surface.CurrentY() - len.RowPad;
    for (double column : columns)
        surface.Line(column - len.RulePad, y0, column - len.RulePad, y);

    surface.SetCurrentY(surface.CurrentY() + len.RowPad);
    fontSize(10);
    surface.SetCurrentX(margin);
    surface.Print(ChecksumText(OrderChecksum(state.SiteNumber, p)));
    NextLine(surface, print);
    surface.SetCurrentY(surface.CurrentY() + len.RowPad);

    // Sections 4 and 5: payment, and what is ordered.
    y = surface.CurrentY();
    PrintShadedBand(surface, margin - len.RulePad, len.BandRight, y);
    surface.SetCurrentY(y);
    surface.SetCurrentX(margin);
    bold(true);
    surface.Print(QStringLiteral(" 4. PAYMENT METHOD"));
    surface.SetCurrentX(at(4.25));
    surface.PrintLine(QStringLiteral(" 5. ORDER QUANTITY & PRICE"));
    bold(false);

    const bool purchaseOrder = p.PayMethod == QLatin1String("Purchase Order");
    surface.SetCurrentY(surface.CurrentY() + len.RulePad + len.RowPad);
    surface.SetCurrentX(margin);
    PrintCheckBox(surface, p.PayMethod == QLatin1String("VISA"));
    surface.SetCurrentX(margin + at(1));
    PrintCheckBox(surface, p.PayMethod == QLatin1String("Master Card"));
    const double px = margin + surface.TextWidth(QStringLiteral("XX"));
    surface.SetCurrentX(px);
    surface.Print(QStringLiteral("Visa"));
    surface.SetCurrentX(px + at(1));
    surface.Print(QStringLiteral("Master Card"));
    surface.SetCurrentX(at(6));
    surface.Print(QStringLiteral("Qty"));
    surface.SetCurrentX(at(7));
    surface.Print(QStringLiteral("Total"));

    auto step = [&] { SkipWideLines(surface, print, 1.75f); };
    step();
    y = surface.CurrentY();
    auto either = [](const QString& value, const char* blank) {
        return value.isEmpty() ? QString::fromLatin1(blank) : value;
    };
    surface.SetCurrentX(px);
    if (purchaseOrder) {
        surface.Print(QStringLiteral("Card #: "));
        step();
        surface.SetCurrentX(px);
        surface.PrintLine(QStringLiteral("Exp Date: "));
        surface.SetCurrentY(surface.CurrentY() + len.RulePad);
        surface.SetCurrentX(px);
        surface.PrintLine(QStringLiteral("Name: "));
    } else {
        surface.Print(QStringLiteral("Card #: ") +
                      either(p.CardNum, "_____________________________"));
        step();
        surface.SetCurrentX(px);
        surface.Print(QStringLiteral("Exp Date: ") + (HoldsDate(p.CardDate)
                                                          ? ShortDate(p.CardDate)
                                                          : QStringLiteral("______/______")));
        step();
        surface.SetCurrentX(px);
        surface.Print(QStringLiteral("Name: ") +
                      either(p.NameOnCard, "______________________________"));
    }
    step();
    surface.SetCurrentX(px);
    surface.Print(QStringLiteral("Signature: ___________________________"));
    step();
    surface.SetCurrentX(margin);
    PrintCheckBox(surface, purchaseOrder);
    surface.SetCurrentX(px);
    surface.Print(QStringLiteral("Purchase Order #: "));
    surface.PrintLine(purchaseOrder ? either(p.CardNum, "_____________________")
                                    : QStringLiteral("_____________________"));
    const double leftBottom = surface.CurrentY();

    const int16_t ox = InchesToTwips(print, 4.25);
    surface.SetCurrentY(y);
    PrintTextBlockSpaced(surface, print, ox, OrderItemLines(p));
    surface.SetCurrentY(y);
    PrintTextBlockSpaced(surface, print, ox + at(1.75), OrderPriceLines(p));
    surface.SetCurrentY(surface.CurrentY() + len.RulePad);
    const double y2 = surface.CurrentY();
    surface.Box(ox, y2 - len.RowPad, ox + at(1.45), y2 + at(0.5));
    surface.SetCurrentY(y2);
    PrintShippingLines(surface, state, ox + len.RowPad);
    surface.SetCurrentY(y2);

    const double tx = ToInt16(ox + print.InchTwips * 1.85);
    Currency subTotal, shipping, tax, total;
    ComputeOrderTotals(p, subTotal, shipping, tax, total);
    const double amountX = tx + at(0.7);
    auto amount = [&](Currency value) {
        surface.SetCurrentX(amountX);
        surface.Print(subTotal != Currency{} ? QStringLiteral("= ") + FormatCurrency(value)
                                             : QStringLiteral("= $__________"));
    };
    surface.SetCurrentX(tx);
    surface.Print(QStringLiteral("Sub-Total"));
    amount(subTotal);
    NextLine(surface, print);
    NextLine(surface, print);
    surface.SetCurrentX(tx - len.RulePad);
    PrintArrow(surface);
    surface.Print(QStringLiteral("Shipping"));
    amount(shipping);
    NextLine(surface, print);
    surface.SetCurrentY(surface.CurrentY() + len.RulePad);
    surface.SetCurrentX(tx - at(1));
    surface.Print(QStringLiteral("5% sales Tax (MA only)"));
    amount(tax);
    NextLine(surface, print);
    surface.SetCurrentY(surface.CurrentY() + len.RulePad);
    surface.SetCurrentX(tx);
    surface.Print(QStringLiteral("Total"));
    amount(total);

    NextLine(surface, print);
    const int16_t bottom = std::max(ToInt16(surface.CurrentY()), ToInt16(leftBottom));
    surface.Line(ox - len.RulePad, y - at(0.18), ox - len.RulePad, bottom);

    surface.EndLine();
    fontSize(12);
    PrintCenter(surface, print,
                QStringLiteral("Please FAX completed order form to Tarvex, Inc. at ") +
                    state.TollFreeFax);
    NextWideLine(surface, print);
    PrintCenter(surface, print,
                QStringLiteral("For questions, call Tarvex, Inc. at ") + state.TollFreeOrder);
    NextWideLine(surface, print);
    PrintSmallNotice(surface, print);
}

} // namespace tarvex
