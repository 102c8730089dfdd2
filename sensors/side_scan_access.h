// What the amplitude reader needs of the side scan family: the openers of
// the three sonars, the summary, one profile's header and samples, and the
// close. The reader goes through this table so that it holds no knowledge
// of the family's files.
#ifndef VELMIO_SENSORS_SIDE_SCAN_ACCESS_H
#define VELMIO_SENSORS_SIDE_SCAN_ACCESS_H

#include <velmio/amplitude_io.hpp>
#include <velmio/export.h>

#include <cstdint>

namespace velmio {

// The header values of one side scan ping that the conversions use.
struct SideScanPing {
    std::uint32_t sampleCount = 0;
    std::uint32_t firstSample = 0;
    std::int32_t gain = 0;
    std::int32_t attenuation1 = 0;  // dB
    std::int32_t attenuation2 = 0;
};

struct SideScanAccess {
    using Opener = TOVO_Sensor *(*)(const wchar_t *lineDirectory, const wchar_t *token, int *error);
    // EM100, EM1000, ELAC, tried in this order; a null entry never opens.
    Opener openers[3];
    int (*summary)(TOVO_Sensor *h, double *minTime, double *maxTime, unsigned int *status);
    // The sonar type the open handle reads as (9, 10, 15, 20, ...).
    std::uint32_t (*sonarType)(const TOVO_Sensor *h);
    int (*readPing)(TOVO_Sensor *h, unsigned int profile, SideScanPing *ping);
    // The samples of the profile readPing described; the arrays hold its
    // sample count.
    int (*readSamples)(TOVO_Sensor *h, unsigned int profile, std::int32_t *amplitudes, std::uint32_t *detections);
    int (*close)(TOVO_Sensor *h);
};

// The side scan family's table.
const SideScanAccess &sideScanFamilyAccess();

}  // namespace velmio

// Lets the library and its tests point a closed reader at another table.
struct VELMAmplitudeIOAccess {
    static void use(VELMAmplitudeIO &reader, const velmio::SideScanAccess &access);
};

#endif
