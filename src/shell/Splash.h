#pragma once

#include <QString>

namespace tarvex {

// The splash's countdown: three ticks of a second, then it closes; a key or a click
// closes it at once.
class SplashCountdown {
public:
    static constexpr int kSeconds = 3;
    static constexpr int kTickMilliseconds = 1000;

    // One tick; true when the splash is to close.
    bool Tick() { return --remaining_ <= 0; }
    int Remaining() const { return remaining_; }

private:
    int remaining_ = kSeconds;
};

// The texts of the splash and the About box.
QString VersionText(); // "Version 3.6.0"
QString ProductName(); // "TVX Regimenter"
QString CompanyName(); // "Tarvex"

} // namespace tarvex
