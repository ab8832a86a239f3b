#include "support/Currency.h"

#include "support/Numbers.h"

namespace tarvex {

Currency Currency::FromDouble(double value) {
    return Currency{static_cast<int64_t>(RoundHalfEven(value * kScale))};
}

} // namespace tarvex
