// The processed depths records as XDR units (docs/formats.md). A profile
// header and a beam record are each three sections that readers take on
// their own: 52, 68 and 40 bytes of header, 32, 32 and 16 bytes of beam.
#ifndef VELMIO_SENSORS_PROCESSED_DEPTHS_RECORDS_H
#define VELMIO_SENSORS_PROCESSED_DEPTHS_RECORDS_H

#include <velmio/processed_depths.h>

#include <cstdint>

namespace velmio {

constexpr unsigned kPingWords = 13, kHeadsWords = 17, kPingUncertaintyWords = 10;
constexpr unsigned kSoundingWords = 8, kMeasurementWords = 8, kReductionWords = 4;
constexpr unsigned kProcessedHeaderBytes = 4 * (kPingWords + kHeadsWords + kPingUncertaintyWords);
constexpr unsigned kProcessedBeamBytes = 4 * (kSoundingWords + kMeasurementWords + kReductionWords);
static_assert(kProcessedHeaderBytes == 160 && kProcessedBeamBytes == 80, "the sections the block reader copies");

// What the units are encoded against: the summary's scales and references.
struct ProcessedDepthsFrame {
    std::int32_t timeScale = 1000;
    std::int32_t depthTimeScale = 1000;
    std::int32_t positionScale = 1;
    std::int32_t referenceTime = 0;       // minutes
    std::int32_t referenceLatitude = 0;   // 1e-7 rad
    std::int32_t referenceLongitude = 0;
};

constexpr unsigned kProcessedSummaryWords = 16;

void encodePing(const ProcessedDepthsPing &p, const ProcessedDepthsFrame &f, std::uint32_t *words);
// False for a layout no profile can have (first beam 0).
bool decodePing(const std::uint32_t *words, const ProcessedDepthsFrame &f, ProcessedDepthsPing &p);
void encodeHeads(const ProcessedDepthsHeads &h, std::uint32_t *words);
// False for more than two heads.
bool decodeHeads(const std::uint32_t *words, ProcessedDepthsHeads &h);
void encodePingUncertainty(const ProcessedDepthsPingUncertainty &u, std::uint32_t *words);
void decodePingUncertainty(const std::uint32_t *words, ProcessedDepthsPingUncertainty &u);

// Beam times and positions against their ping's.
void encodeSounding(const ProcessedDepthsSounding &s, const ProcessedDepthsPing &ping, const ProcessedDepthsFrame &f,
                    std::uint32_t *words);
void decodeSounding(const std::uint32_t *words, const ProcessedDepthsPing &ping, const ProcessedDepthsFrame &f,
                    ProcessedDepthsSounding &s);
void encodeMeasurement(const ProcessedDepthsMeasurement &m, std::uint32_t *words);
void decodeMeasurement(const std::uint32_t *words, ProcessedDepthsMeasurement &m);
void encodeReductions(const ProcessedDepthsReductions &r, std::uint32_t *words);
void decodeReductions(const std::uint32_t *words, ProcessedDepthsReductions &r);

}  // namespace velmio

#endif
