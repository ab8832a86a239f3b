#include "support/Progress.h"

#include "support/Numbers.h"

namespace tarvex {

namespace {

// What a 16-bit bar holds: a scale that keeps the maximum at or below this many steps.
constexpr int32_t kStepsPerScale = 32000;

int32_t TotalOrOne(int32_t total) {
    return total == 0 ? 1 : total;
}

} // namespace

int16_t ProgressScaleFor(int32_t total) {
    // Whole steps: the division drops the remainder.
    const int32_t steps = TotalOrOne(total) / kStepsPerScale;
    return ToInt16(steps + 1);
}

int32_t ProgressMaxFor(int32_t total) {
    const int16_t scale = ProgressScaleFor(total);
    if (scale == 0)
        throw Fault(QStringLiteral("Division by zero"));
    return TotalOrOne(total) / scale;
}

void ProgressLogic::SetCaption(const QString& caption) {
    window_.SetCaption(caption);
}

void ProgressLogic::InitProgress(int32_t total) {
    window_.Show();
    ProgressScale = ProgressScaleFor(total);
    const int32_t max = ProgressMaxFor(total);
    // The bar refuses a maximum that is not above its minimum of 0.
    if (max < 1)
        throw ProgressValueFault(QStringLiteral("Invalid property value"));
    window_.SetMax(max);
}

void ProgressLogic::UpdateProgress(int32_t value) {
    if (ProgressScale == 0)
        throw Fault(QStringLiteral("Division by zero"));
    const int32_t step = value / ProgressScale;
    if (step < 0 || step > window_.Max())
        throw ProgressValueFault(QStringLiteral("Invalid property value"));
    window_.SetValue(step);
}

void ProgressLogic::DestroyProgress() {
    window_.Unload();
    ProgressScale = 0;
}

} // namespace tarvex
