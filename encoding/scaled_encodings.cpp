// The flat encode/decode functions of the TOVO line files.
#include <velmio/encoding.h>

#include "encoding/rounding.h"

#include <cstdint>

using velmio::nint;

extern "C" {

VELMIO_API int TOVO_EncodeMeters(double metres) {
    if (metres > 2000000.0) return 2147483647;
    if (metres < -2000000.0) return -2147483647 - 1;
    return nint(metres * 1000.0);
}

VELMIO_API double TOVO_DecodeMeters(int value) { return value / 1000.0; }

VELMIO_API int TOVO_EncodeDecibles(double decibels) { return nint(decibels * 1000.0); }

// The same function as TOVO_DecodeMeters.
VELMIO_API double TOVO_DecodeDecibles(int value) { return TOVO_DecodeMeters(value); }

VELMIO_API int TOVO_EncodeRadians(double radians) { return nint(radians * 10000000.0); }

VELMIO_API double TOVO_DecodeRadians(int value) { return value / 10000000.0; }

VELMIO_API int TOVO_EncodeSeconds(double seconds) { return nint(seconds * 1000000.0); }

VELMIO_API double TOVO_DecodeSeconds(int value) { return value / 1000000.0; }

VELMIO_API int TOVO_EncodeRefPosition(double radians) { return nint(radians / 0.0000001); }

VELMIO_API int TOVO_EncodePosition(double position, int reference, int scale) {
    return nint((position - reference * 1e-7) / (scale * 1e-9));
}

// The product value x scale is formed in floating point.
VELMIO_API double TOVO_DecodePosition(int reference, int scale, int value) {
    return static_cast<double>(value) * scale * 1e-9 + reference * 1e-7;
}

VELMIO_API int TOVO_EncodeDepthPosition(double position, double reference, int scale) {
    return nint((position - reference) / (scale * 1e-9));
}

// Unlike TOVO_DecodePosition, scale x value is a wrapping 32-bit product.
VELMIO_API double TOVO_DecodeDepthPosition(double reference, int scale, int value) {
    auto product = static_cast<std::int32_t>(static_cast<std::uint32_t>(scale) * static_cast<std::uint32_t>(value));
    return product * 1e-9 + reference;
}

VELMIO_API int TOVO_EncodeRefTime(double seconds) { return nint(seconds / 60.0); }

VELMIO_API double TOVO_DecodeRefTime(int minutes) { return minutes * 60.0; }

VELMIO_API int TOVO_EncodeTime(double time, int referenceMinutes, int scale) {
    return nint((time - referenceMinutes * 60.0) * scale);
}

VELMIO_API double TOVO_DecodeTime(int referenceMinutes, int scale, int value) {
    return static_cast<double>(value) / scale + referenceMinutes * 60.0;
}

VELMIO_API int TOVO_EncodeDepthTime(double time, double reference, int scale) {
    return nint((time - reference) * scale);
}

VELMIO_API double TOVO_DecodeDepthTime(double reference, int scale, int value) {
    return static_cast<double>(value) / scale + reference;
}

}  // extern "C"
