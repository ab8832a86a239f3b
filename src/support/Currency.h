#pragma once

#include <cstdint>

namespace tarvex {

// A money amount in fixed point: ten-thousandths of the currency unit, as the classic
// Currency type keeps it, so sums of prices never drift.
struct Currency {
    int64_t units = 0; // 1.0 = 10000 units

    static constexpr int64_t kScale = 10000;
    static Currency FromDouble(double value);
    double ToDouble() const { return static_cast<double>(units) / kScale; }
    friend bool operator==(Currency, Currency) = default;
};

} // namespace tarvex
