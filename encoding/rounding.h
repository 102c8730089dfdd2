// The rounding rules of the scaled encodings, shared by every family.
#ifndef VELMIO_ENCODING_ROUNDING_H
#define VELMIO_ENCODING_ROUNDING_H

#include <cmath>
#include <cstdint>

namespace velmio {

// Round half away from zero to a signed 32-bit integer, wrapping modulo 2^32.
// NaN, infinities and |x| >= 2^63 give INT32_MIN. Inline, as truncToInt32:
// the record writers call them for every field.
inline std::int32_t nint(double x) {
    // The comparison is false for NaN too.
    if (!(std::fabs(x) < 9223372036854775808.0 - 1024.0)) return INT32_MIN;
    // Below 2^63: the int64 conversion truncates as std::trunc would, in one
    // instruction where std::trunc takes a round trip without SSE4.1.
    const auto magnitude = static_cast<std::int64_t>(std::fabs(x) + 0.5);
    const std::int64_t wide = x < 0 ? -magnitude : magnitude;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(wide)));
}
// Truncate toward zero, wrapping the same way (same special values).
inline std::int32_t truncToInt32(double x) {
    if (!(std::fabs(x) < 9223372036854775808.0 - 1024.0)) return INT32_MIN;
    const auto wide = static_cast<std::int64_t>(x);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(wide)));
}

}  // namespace velmio

#endif
