// The rounding rules of the scaled encodings, shared by every family.
#ifndef VELMIO_ENCODING_ROUNDING_H
#define VELMIO_ENCODING_ROUNDING_H

#include <cstdint>

namespace velmio {

// Round half away from zero to a signed 32-bit integer, wrapping modulo 2^32.
// NaN, infinities and |x| >= 2^63 give INT32_MIN.
std::int32_t nint(double x);
// Truncate toward zero, wrapping the same way (same special values).
std::int32_t truncToInt32(double x);

}  // namespace velmio

#endif
