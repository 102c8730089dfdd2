// The side scan records as XDR units (docs/formats.md): the profile header
// of a ping, a sample and a trace record. Decoding refuses
// what no file of the family can hold, so that a count is known good before
// anything is sized by it.
#ifndef VELMIO_SENSORS_SIDE_SCAN_RECORDS_H
#define VELMIO_SENSORS_SIDE_SCAN_RECORDS_H

#include <cstdint>

namespace velmio {

constexpr unsigned kSideScanSummaryWords = 10;
constexpr unsigned kSideScanHeaderWords = 8;
constexpr unsigned kSideScanSampleWords = 2;
constexpr unsigned kSideScanTraceWords = 3;
constexpr std::uint32_t kSideScanMaxSamples = 1u << 20;
constexpr std::uint32_t kTraceRecordKind = 4;

struct SideScanHeader {
    std::uint32_t status = 0;
    std::uint32_t sampleCount = 0;
    std::uint32_t firstSample = 1;
    double time = 0.0;
    double sampleInterval = 0.0;  // seconds
    std::int32_t gain = 0;
    std::int32_t attenuation1 = 0;  // dB
    std::int32_t attenuation2 = 0;
};

struct SideScanTrace {
    std::uint32_t profile = 0;
    std::uint32_t bottomSample = 0;  // 0: no bottom found
    double depth = 0.0;              // metres below the transducer
};

// Times against the summary's reference time and time scale.
void encodeSideScanHeader(const SideScanHeader &p, std::int32_t referenceTime, std::int32_t timeScale,
                          std::uint32_t *words);
// False for more than kSideScanMaxSamples samples or a first sample of 0.
bool decodeSideScanHeader(const std::uint32_t *words, std::int32_t referenceTime, std::int32_t timeScale,
                          SideScanHeader &p);
// Bytes of a profile's samples behind its header.
inline std::uint64_t sideScanPayloadBytes(const SideScanHeader &p) {
    return std::uint64_t{p.sampleCount} * kSideScanSampleWords * 4;
}

void encodeSideScanTrace(const SideScanTrace &t, std::uint32_t *words);
void decodeSideScanTrace(const std::uint32_t *words, SideScanTrace &t);

}  // namespace velmio

#endif
