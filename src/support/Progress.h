#pragma once

// The one progress window of the system, shown without modality by an operation that walks
// through many items: the making of the picture cells and the copy of media from CD.

#include "support/Fault.h"

#include <QString>
#include <cstdint>

namespace tarvex {

// The window as the logic sees it. It is loaded on first use, by any of these calls, and
// a fresh load has the caption "Building Report", a bar from 0 to 100 at 0, and is hidden.
class IProgressWindow {
public:
    virtual ~IProgressWindow() = default;
    virtual void SetCaption(const QString& caption) = 0;
    virtual QString Caption() const = 0;
    // Shows the window without modality; its load has centred it on the screen.
    virtual void Show() = 0;
    virtual void SetMax(int max) = 0;
    virtual int Max() const = 0;
    virtual void SetValue(int value) = 0;
    virtual int Value() const = 0;
    // Closes the window and forgets it; the next use loads it afresh.
    virtual void Unload() = 0;
};

// A bar value outside 0 to the bar's maximum ("Invalid property value"). It goes to the
// caller of UpdateProgress, which may ignore it.
class ProgressValueFault : public Fault {
public:
    using Fault::Fault;
};

// The caption a freshly loaded window has.
inline constexpr const char* kProgressCaption = "Building Report";

// The bar holds at most 32000 steps: every ProgressScale items make one step.
int16_t ProgressScaleFor(int32_t total);
// The bar's maximum for a total: the total, or 1 for none, in steps of the scale.
int32_t ProgressMaxFor(int32_t total);

// frmProgress: the scale that it keeps and the three operations on it.
class ProgressLogic {
public:
    explicit ProgressLogic(IProgressWindow& window) : window_(window) {}

    // Sets the caption; the caller does so before InitProgress.
    void SetCaption(const QString& caption);
    // Shows the window and sets the scale and the bar's maximum for total items.
    void InitProgress(int32_t total);
    // Moves the bar to the step of the value-th item.
    void UpdateProgress(int32_t value);
    // Unloads the window; the scale goes with it.
    void DestroyProgress();

    // Items per step of the bar; 0 while the window is not set up by InitProgress.
    int16_t ProgressScale = 0;

private:
    IProgressWindow& window_;
};

} // namespace tarvex
