#pragma once

#include "print/PageSurface.h"
#include "shell/AppState.h"
#include "support/Currency.h"

#include <QString>
#include <cstdint>

namespace tarvex {

// The form's own shipping rate of a service, compared exactly: 4 for "UPS Ground", 8 for
// "UPS 2-Day", 14 for "UPS Next Day", 0 for anything else. The order dialog has rates of
// its own; the two are kept apart on purpose.
Currency OrderFormShipping(const QString& shipMethod);

// The amounts of the order as the form prints them: items at quantity times price, 5% of
// the items when the program is taxed, the form's shipping rate.
void ComputeOrderTotals(const ExerciseProgram& program, Currency& subTotal, Currency& shipping,
                        Currency& tax, Currency& total);

// The site number plus the leading number of the code of every exercise on the tape.
int32_t OrderChecksum(int32_t siteNumber, const ExerciseProgram& program);
// "CHECKSUM: " and the sum, or the blank to be filled in when it is 0 or less.
QString ChecksumText(int32_t checksum);

// The description of each of the three order lines, each followed by CR LF.
QString OrderItemLines(const ExerciseProgram& program);
// Quantity, price and amount of each of the three order lines, each followed by CR LF; a
// line without quantity leaves the quantity and the amount blank.
QString OrderPriceLines(const ExerciseProgram& program);

// The three shipping choices at x, the program's service ticked.
void PrintShippingLines(PageSurface& surface, const AppState& state, double x);

// The video order form, one portrait page.
void PrintVideoOrderForm(PageSurface& surface, AppState& state);

} // namespace tarvex
