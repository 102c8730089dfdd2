// Side scan profile header and trace record to XDR units and back.
#include "sensors/side_scan_records.h"

#include <velmio/encoding.h>

namespace velmio {

namespace {
std::uint32_t w(std::int32_t v) { return static_cast<std::uint32_t>(v); }
std::int32_t i(std::uint32_t v) { return static_cast<std::int32_t>(v); }
}  // namespace

void encodeSideScanHeader(const SideScanHeader &p, std::int32_t referenceTime, std::int32_t timeScale,
                          std::uint32_t *words) {
    words[0] = p.status;
    words[1] = p.sampleCount;
    words[2] = p.firstSample;
    words[3] = w(TOVO_EncodeTime(p.time, referenceTime, timeScale));
    words[4] = w(TOVO_EncodeSeconds(p.sampleInterval));
    words[5] = w(p.gain);
    words[6] = w(p.attenuation1);
    words[7] = w(p.attenuation2);
}

bool decodeSideScanHeader(const std::uint32_t *words, std::int32_t referenceTime, std::int32_t timeScale,
                          SideScanHeader &p) {
    if (words[1] > kSideScanMaxSamples || words[2] == 0) return false;
    p.status = words[0];
    p.sampleCount = words[1];
    p.firstSample = words[2];
    p.time = TOVO_DecodeTime(referenceTime, timeScale, i(words[3]));
    p.sampleInterval = TOVO_DecodeSeconds(i(words[4]));
    p.gain = i(words[5]);
    p.attenuation1 = i(words[6]);
    p.attenuation2 = i(words[7]);
    return true;
}

void encodeSideScanTrace(const SideScanTrace &t, std::uint32_t *words) {
    words[0] = t.profile;
    words[1] = t.bottomSample;
    words[2] = w(TOVO_EncodeMeters(t.depth));
}

void decodeSideScanTrace(const std::uint32_t *words, SideScanTrace &t) {
    t.profile = words[0];
    t.bottomSample = words[1];
    t.depth = TOVO_DecodeMeters(i(words[2]));
}

}  // namespace velmio
