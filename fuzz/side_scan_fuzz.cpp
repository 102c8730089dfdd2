// Fuzz target of the side scan records: one input is a side scan trace file,
// counted and read record by record; the same bytes are then taken as side
// scan and processed depths units to decode, and as a ping's samples to turn
// into amplitude bytes for each sonar.
#include "fuzz_support.h"

#include "sensors/amplitude_bytes.h"
#include "sensors/processed_depths_records.h"
#include "sensors/side_scan_records.h"
#include "sensors/side_scan_trace.h"

#include <algorithm>
#include <cstdio>
#include <string>

using velmio::fuzz::Bytes;
using namespace velmio;

namespace {

constexpr std::uint32_t kMaxTraces = 1024;
constexpr std::size_t kMaxWords = 4096;

void readTraces(const std::string &path) {
    std::FILE *f = std::fopen(path.c_str(), "rb");
    if (!f) return;
    std::uint32_t count = 0;
    SideScanTrace t;
    for (std::uint32_t type : {9u, 10u})
        if (countTraces(f, type, count) == 0)
            for (std::uint32_t n = 1; n <= std::min(count, kMaxTraces) + 1; ++n) readTrace(f, count, n, t);
    std::fclose(f);
}

void decodeUnits(const std::vector<std::uint32_t> &w) {
    if (w.size() >= kProcessedHeaderBytes / 4 + kProcessedBeamBytes / 4) {
        ProcessedDepthsSummary summary;
        if (!decodeProcessedSummary(w.data(), summary)) summary = ProcessedDepthsSummary();
        ProcessedDepthsPing ping;
        ProcessedDepthsHeads heads;
        ProcessedDepthsPingUncertainty uncertainty;
        ProcessedDepthsSounding sounding;
        ProcessedDepthsMeasurement measurement;
        ProcessedDepthsReductions reductions;
        decodePing(w.data(), summary.frame, ping);
        decodeHeads(w.data() + kPingWords, heads);
        decodePingUncertainty(w.data() + kPingWords + kHeadsWords, uncertainty);
        const std::uint32_t *beam = w.data() + kProcessedHeaderBytes / 4;
        decodeSounding(beam, ping, summary.frame, sounding);
        decodeMeasurement(beam + kSoundingWords, measurement);
        decodeReductions(beam + kSoundingWords + kMeasurementWords, reductions);
    }
    if (w.size() < kSideScanSummaryWords + kSideScanHeaderWords) return;
    SideScanSummary summary;
    if (!decodeSideScanSummary(w.data(), summary)) return;
    SideScanHeader header;
    if (!decodeSideScanHeader(w.data() + kSideScanSummaryWords, summary.referenceTime, summary.timeScale, header)) return;
    // The samples the input still holds after the header, as a reader would be given them.
    const std::size_t first = kSideScanSummaryWords + kSideScanHeaderWords;
    const std::size_t count = std::min<std::size_t>(header.sampleCount, w.size() - first);
    std::vector<std::int32_t> raw(w.begin() + first, w.begin() + first + count);
    std::vector<unsigned char> bytes(count);
    SideScanPing ping;
    ping.sampleCount = static_cast<std::uint32_t>(count);
    ping.gain = header.gain;
    ping.attenuation1 = header.attenuation1;
    ping.attenuation2 = header.attenuation2;
    for (std::uint32_t sonar : {kEM100, kEM1000, kELAC}) amplitudeBytes(sonar, ping, raw.data(), count, bytes.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string path = velmio::fuzz::freshDirectory() + "/SideScanTrace";
    velmio::fuzz::writeFile(path, data, size);
    readTraces(path);
    std::vector<std::uint32_t> words;
    for (std::size_t k = 0; k + 4 <= size && words.size() < kMaxWords; k += 4)
        words.push_back(std::uint32_t{data[k]} << 24 | std::uint32_t{data[k + 1]} << 16 |
                        std::uint32_t{data[k + 2]} << 8 | data[k + 3]);
    decodeUnits(words);
    return 0;
}

// ---- seeds ---------------------------------------------------------------

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    const std::string path = velmio::fuzz::freshDirectory() + "/SideScanTrace";
    std::FILE *f = std::fopen(path.c_str(), "wb+");
    if (f) {
        startTraceFile(f, 10);
        for (std::uint32_t p = 1; p <= 3; ++p) appendTrace(f, {p, 40 * p, 12.5 * p});
        std::fclose(f);
    }
    // A trace file, then units that read as a side scan summary and a
    // three-sample EM100 ping.
    Bytes units;
    for (std::uint32_t w : {0u, 9u, 1u, 3u, 1000u, 100u, 0u, 0u, 0u, 300u, 0u, 3u, 1u, 0u, 125u, 18u,
                            0xFFFFFFE2u, 0xFFFFFFF6u, 10u, 266u, 0xFFFFFFFDu})
        for (int b = 24; b >= 0; b -= 8) units.push_back(static_cast<std::uint8_t>(w >> b));
    units.resize(std::max<std::size_t>(units.size(), 4 * (kProcessedHeaderBytes / 4 + kProcessedBeamBytes / 4)));
    return {velmio::fuzz::requireFile(path), units};
}
