#include "encoding/rounding.h"

#include <cmath>
#include <limits>

namespace velmio {
namespace {
constexpr double kTwo63 = 9223372036854775808.0;

std::int32_t wrap(double whole) {
    // whole is integral and |whole| < 2^63, so the int64 conversion is exact.
    auto wide = static_cast<std::int64_t>(whole);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(wide)));
}
}  // namespace

std::int32_t truncToInt32(double x) {
    if (std::isnan(x) || !(std::fabs(x) < kTwo63 - 1024.0)) return std::numeric_limits<std::int32_t>::min();
    return wrap(std::trunc(x));
}

}  // namespace velmio
