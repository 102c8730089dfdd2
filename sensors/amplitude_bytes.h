// The three ways a raw side scan sample becomes an amplitude byte 0-255.
#ifndef VELMIO_SENSORS_AMPLITUDE_BYTES_H
#define VELMIO_SENSORS_AMPLITUDE_BYTES_H

#include "sensors/side_scan_access.h"

#include <cstddef>
#include <cstdint>

namespace velmio {

enum SonarType : std::uint32_t { kEM100 = 9, kEM1000 = 10, kELAC = 15, kNoDetection = 20 };

// The EM100 scale of a ping: 3 dB per gain step below 20 and 10 dB per
// attenuation step (settings -10, -20, -30 dB; the second stops at -20).
double em100Scale(std::int32_t gain, std::int32_t attenuation1, std::int32_t attenuation2);
unsigned char em100Byte(std::int32_t raw, double scale);
unsigned char em1000Byte(std::int32_t raw);
unsigned char elacByte(std::int32_t raw);

// Converts count samples of a ping of the sonar; false (nothing written)
// for a sonar without amplitude bytes.
bool amplitudeBytes(std::uint32_t sonar, const SideScanPing &ping, const std::int32_t *raw, std::size_t count,
                    unsigned char *bytes);

}  // namespace velmio

#endif
