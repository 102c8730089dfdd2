// Processed depths header and beam sections to XDR units and back.
#include "sensors/processed_depths_records.h"

#include <velmio/encoding.h>

namespace velmio {

namespace {

std::uint32_t w(std::int32_t v) { return static_cast<std::uint32_t>(v); }
std::int32_t i(std::uint32_t v) { return static_cast<std::int32_t>(v); }
std::uint32_t metres(double v) { return w(TOVO_EncodeMeters(v)); }
double metres(std::uint32_t v) { return TOVO_DecodeMeters(i(v)); }
std::uint32_t radians(double v) { return w(TOVO_EncodeRadians(v)); }
double radians(std::uint32_t v) { return TOVO_DecodeRadians(i(v)); }
std::uint32_t seconds(double v) { return w(TOVO_EncodeSeconds(v)); }
double seconds(std::uint32_t v) { return TOVO_DecodeSeconds(i(v)); }

}  // namespace

void encodePing(const ProcessedDepthsPing &p, const ProcessedDepthsFrame &f, std::uint32_t *words) {
    const std::uint32_t units[kPingWords] = {
        p.status,
        (p.beamCount << 16) | (p.firstBeam & 0xFFFFu),
        w(TOVO_EncodeTime(p.time, f.referenceTime, f.timeScale)),
        p.pingNumber,
        w(TOVO_EncodePosition(p.latitude, f.referenceLatitude, f.positionScale)),
        w(TOVO_EncodePosition(p.longitude, f.referenceLongitude, f.positionScale)),
        radians(p.heading), metres(p.heave), radians(p.pitch), radians(p.roll),
        metres(p.tide), metres(p.draft), metres(p.soundSpeed)};
    for (unsigned k = 0; k < kPingWords; ++k) words[k] = units[k];
}

bool decodePing(const std::uint32_t *words, const ProcessedDepthsFrame &f, ProcessedDepthsPing &p) {
    if ((words[1] & 0xFFFFu) == 0) return false;
    p.status = words[0];
    p.beamCount = words[1] >> 16;
    p.firstBeam = words[1] & 0xFFFFu;
    p.time = TOVO_DecodeTime(f.referenceTime, f.timeScale, i(words[2]));
    p.pingNumber = words[3];
    p.latitude = TOVO_DecodePosition(f.referenceLatitude, f.positionScale, i(words[4]));
    p.longitude = TOVO_DecodePosition(f.referenceLongitude, f.positionScale, i(words[5]));
    p.heading = radians(words[6]);
    p.heave = metres(words[7]);
    p.pitch = radians(words[8]);
    p.roll = radians(words[9]);
    p.tide = metres(words[10]);
    p.draft = metres(words[11]);
    p.soundSpeed = metres(words[12]);
    return true;
}

void encodeHeads(const ProcessedDepthsHeads &h, std::uint32_t *words) {
    words[0] = h.count;
    for (int k = 0; k < 2; ++k) {
        const ProcessedDepthsHead &t = h.head[k];
        std::uint32_t *u = words + 1 + 8 * k;
        u[0] = metres(t.x);
        u[1] = metres(t.y);
        u[2] = metres(t.z);
        u[3] = radians(t.roll);
        u[4] = radians(t.pitch);
        u[5] = radians(t.heading);
        u[6] = seconds(t.latency);
        u[7] = t.word;
    }
}

bool decodeHeads(const std::uint32_t *words, ProcessedDepthsHeads &h) {
    if (words[0] > 2) return false;
    h.count = words[0];
    for (int k = 0; k < 2; ++k) {
        ProcessedDepthsHead &t = h.head[k];
        const std::uint32_t *u = words + 1 + 8 * k;
        t = {metres(u[0]), metres(u[1]), metres(u[2]), radians(u[3]), radians(u[4]), radians(u[5]), seconds(u[6]), u[7]};
    }
    return true;
}

void encodePingUncertainty(const ProcessedDepthsPingUncertainty &u, std::uint32_t *words) {
    const std::uint32_t units[kPingUncertaintyWords] = {
        metres(u.horizontal), metres(u.vertical), metres(u.heave), metres(u.tide), metres(u.draft),
        radians(u.roll), radians(u.pitch), radians(u.heading), metres(u.soundSpeed), seconds(u.timing)};
    for (unsigned k = 0; k < kPingUncertaintyWords; ++k) words[k] = units[k];
}

void decodePingUncertainty(const std::uint32_t *words, ProcessedDepthsPingUncertainty &u) {
    u = {metres(words[0]), metres(words[1]), metres(words[2]), metres(words[3]), metres(words[4]),
         radians(words[5]), radians(words[6]), radians(words[7]), metres(words[8]), seconds(words[9])};
}

void encodeSounding(const ProcessedDepthsSounding &s, const ProcessedDepthsPing &ping, const ProcessedDepthsFrame &f,
                    std::uint32_t *words) {
    const auto offset = static_cast<std::uint32_t>(TOVO_EncodeDepthTime(s.time, ping.time, f.depthTimeScale));
    words[0] = (s.status & 0xFFFF0000u) | (offset & 0xFFFFu);
    words[1] = metres(s.depth);
    words[2] = metres(s.acrossTrack);
    words[3] = metres(s.alongTrack);
    words[4] = w(TOVO_EncodeDepthPosition(s.latitude, ping.latitude, f.positionScale));
    words[5] = w(TOVO_EncodeDepthPosition(s.longitude, ping.longitude, f.positionScale));
    words[6] = metres(s.horizontalUncertainty);
    words[7] = metres(s.verticalUncertainty);
}

void decodeSounding(const std::uint32_t *words, const ProcessedDepthsPing &ping, const ProcessedDepthsFrame &f,
                    ProcessedDepthsSounding &s) {
    s.status = words[0] & 0xFFFF0000u;
    s.time = TOVO_DecodeDepthTime(ping.time, f.depthTimeScale, static_cast<std::int16_t>(words[0] & 0xFFFFu));
    s.depth = metres(words[1]);
    s.acrossTrack = metres(words[2]);
    s.alongTrack = metres(words[3]);
    s.latitude = TOVO_DecodeDepthPosition(ping.latitude, f.positionScale, i(words[4]));
    s.longitude = TOVO_DecodeDepthPosition(ping.longitude, f.positionScale, i(words[5]));
    s.horizontalUncertainty = metres(words[6]);
    s.verticalUncertainty = metres(words[7]);
}

void encodeMeasurement(const ProcessedDepthsMeasurement &m, std::uint32_t *words) {
    const std::uint32_t units[kMeasurementWords] = {
        seconds(m.travelTime), radians(m.acrossAngle), radians(m.alongAngle), metres(m.slantRange),
        w(TOVO_EncodeDecibles(m.reflectivity)), m.quality, m.detection, m.head};
    for (unsigned k = 0; k < kMeasurementWords; ++k) words[k] = units[k];
}

void decodeMeasurement(const std::uint32_t *words, ProcessedDepthsMeasurement &m) {
    m = {seconds(words[0]), radians(words[1]), radians(words[2]), metres(words[3]),
         TOVO_DecodeDecibles(i(words[4])), words[5], words[6], words[7]};
}

void encodeReductions(const ProcessedDepthsReductions &r, std::uint32_t *words) {
    words[0] = metres(r.tide);
    words[1] = metres(r.heave);
    words[2] = metres(r.draft);
    words[3] = metres(r.refraction);
}

void decodeReductions(const std::uint32_t *words, ProcessedDepthsReductions &r) {
    r = {metres(words[0]), metres(words[1]), metres(words[2]), metres(words[3])};
}

}  // namespace velmio
