// Amplitude bytes of the EM100, EM1000 and ELAC side scan sonars.
#include "sensors/amplitude_bytes.h"

#include <cmath>
#include <cstdint>

namespace velmio {

namespace {

// Attenuation setting in dB to its step count; unknown settings count 0.
int attenuationSteps(std::int32_t dB, bool thirtyAllowed) {
    switch (dB) {
    case -10: return 1;
    case -20: return 2;
    case -30: return thirtyAllowed ? 3 : 0;
    default: return 0;
    }
}

// Truncation toward zero held within the 32-bit range, so that no gain a
// file carries makes the conversion undefined.
std::int32_t truncHeld(double v) {
    if (std::isnan(v)) return 0;
    if (v >= 2147483647.0) return INT32_MAX;
    if (v <= -2147483648.0) return INT32_MIN;
    return static_cast<std::int32_t>(v);
}

}  // namespace

double em100Scale(std::int32_t gain, std::int32_t attenuation1, std::int32_t attenuation2) {
    const int steps = attenuationSteps(attenuation1, true) + attenuationSteps(attenuation2, false);
    return std::pow(1.412537, 20.0 - gain) * std::pow(3.162277, steps);
}

unsigned char em100Byte(std::int32_t raw, double scale) {
    double a = raw > 255 ? raw - 255.0 : static_cast<double>(raw);
    a *= scale;
    if (a > 0) a = std::log10(a) * 255.0;
    // The low byte of the truncated value, as EM100 bytes have always been made.
    return static_cast<unsigned char>(static_cast<std::uint32_t>(truncHeld(a)) & 0xFFu);
}

unsigned char em1000Byte(std::int32_t raw) {
    const std::int32_t v = truncHeld((raw + 64.0) * 2.0);
    return static_cast<unsigned char>(v > 255 ? 255 : v < 0 ? 0 : v);
}

unsigned char elacByte(std::int32_t raw) { return static_cast<unsigned char>(static_cast<std::uint32_t>(raw) & 0xFFu); }

bool amplitudeBytes(std::uint32_t sonar, const SideScanPing &ping, const std::int32_t *raw, std::size_t count,
                    unsigned char *bytes) {
    switch (sonar) {
    case kEM100: {
        const double scale = em100Scale(ping.gain, ping.attenuation1, ping.attenuation2);
        for (std::size_t i = 0; i < count; ++i) bytes[i] = em100Byte(raw[i], scale);
        return true;
    }
    case kEM1000:
        for (std::size_t i = 0; i < count; ++i) bytes[i] = em1000Byte(raw[i]);
        return true;
    case kELAC:
        for (std::size_t i = 0; i < count; ++i) bytes[i] = elacByte(raw[i]);
        return true;
    default:
        return false;
    }
}

}  // namespace velmio
