// The side scan and processed depths records against units written by hand
// from docs/formats.md, and decoded back.
#include "sensors/processed_depths_records.h"
#include "sensors/side_scan_records.h"

#include <gtest/gtest.h>

#include <vector>

using namespace velmio;

namespace {

using Units = std::vector<std::uint32_t>;

template <class Encode>
Units encoded(unsigned count, Encode encode) {
    Units u(count, 0xDEADBEEFu);
    encode(u.data());
    return u;
}

TEST(SideScanRecords, SummaryHeaderAndTraceUnits) {
    SideScanSummary s;
    s.status = 0x80000000u;
    s.sonarType = 3;
    s.profiles = 2;
    s.samples = 5;
    s.referenceTime = 100;  // 6000 s
    s.minTime = 6001.5;
    s.maxTime = 6002.25;
    s.minAmplitude = -64;
    s.maxAmplitude = 300;
    const Units summary = {0x80000000, 3, 2, 5, 0x3E8, 0x64, 0x5DC, 0x8CA, 0xFFFFFFC0, 0x12C};
    EXPECT_EQ(encoded(kSideScanSummaryWords, [&](std::uint32_t *w) { encodeSideScanSummary(s, w); }), summary);
    SideScanSummary back;
    ASSERT_TRUE(decodeSideScanSummary(summary.data(), back));
    EXPECT_EQ(back.maxTime, 6002.25);
    EXPECT_EQ(back.minAmplitude, -64);
    Units badScale = summary;
    badScale[4] = 0;
    EXPECT_FALSE(decodeSideScanSummary(badScale.data(), back));

    SideScanHeader p;
    p.status = 0x10000;
    p.sampleCount = 3;
    p.firstSample = 7;
    p.time = 6001.5;
    p.sampleInterval = 0.000125;
    p.gain = 18;
    p.attenuation1 = -30;
    p.attenuation2 = -10;
    const Units header = {0x10000, 3, 7, 0x5DC, 0x7D, 0x12, 0xFFFFFFE2, 0xFFFFFFF6};
    EXPECT_EQ(encoded(kSideScanHeaderWords, [&](std::uint32_t *w) { encodeSideScanHeader(p, 100, 1000, w); }), header);
    SideScanHeader q;
    ASSERT_TRUE(decodeSideScanHeader(header.data(), 100, 1000, q));
    EXPECT_EQ(q.time, 6001.5);
    EXPECT_EQ(q.sampleInterval, 0.000125);
    EXPECT_EQ(q.attenuation1, -30);
    EXPECT_EQ(sideScanPayloadBytes(q), 24u);
    // Counts no profile can hold are refused before anything is sized by them.
    Units tooMany = header, firstZero = header;
    tooMany[1] = kSideScanMaxSamples + 1;
    firstZero[2] = 0;
    EXPECT_FALSE(decodeSideScanHeader(tooMany.data(), 100, 1000, q));
    EXPECT_FALSE(decodeSideScanHeader(firstZero.data(), 100, 1000, q));

    const Units trace = {4, 0x78, 0x3039};
    EXPECT_EQ(encoded(kSideScanTraceWords, [&](std::uint32_t *w) { encodeSideScanTrace({4, 120, 12.345}, w); }),
              trace);
    SideScanTrace t;
    decodeSideScanTrace(trace.data(), t);
    EXPECT_EQ(t.bottomSample, 120u);
    EXPECT_EQ(t.depth, 12.345);
}

TEST(ProcessedDepthsRecords, HeaderSectionsUnits) {
    ProcessedDepthsSummary s;
    s.status = 1;
    s.toolType = 2;
    s.profiles = 3;
    s.beams = 4;
    s.frame = {1000, 100, 1, 100, 5000000, -1000000};
    s.minTime = 6001.5;
    s.maxTime = 6010.0;
    s.minDepth = 10.5;
    s.maxDepth = 55.125;
    const Units summary = {1, 2, 3, 4, 0x3E8, 0x64, 1, 0x64, 0x4C4B40, 0xFFF0BDC0, 0x5DC, 0x2710, 0x2904, 0xD755, 0, 0};
    EXPECT_EQ(encoded(kProcessedSummaryWords, [&](std::uint32_t *w) { encodeProcessedSummary(s, w); }), summary);
    ProcessedDepthsSummary sBack;
    ASSERT_TRUE(decodeProcessedSummary(summary.data(), sBack));
    EXPECT_EQ(sBack.frame.referenceLongitude, -1000000);
    EXPECT_EQ(sBack.maxDepth, 55.125);

    ProcessedDepthsFrame f = s.frame;
    f.depthTimeScale = 1000;
    ProcessedDepthsPing p;
    p.status = 0x04000000u;
    p.beamCount = 2;
    p.firstBeam = 1;
    p.time = 6001.5;
    p.pingNumber = 77;
    p.latitude = 0.5000001;
    p.longitude = -0.0999998;
    p.heading = 1.0;
    p.heave = -0.25;
    p.pitch = 0.01;
    p.roll = -0.02;
    p.tide = 1.5;
    p.draft = 4.2;
    p.soundSpeed = 1500.0;
    const Units ping = {0x04000000, 0x20001, 0x5DC, 0x4D, 0x64, 0xC8, 0x989680, 0xFFFFFF06,
                        0x186A0, 0xFFFCF2C0, 0x5DC, 0x1068, 0x16E360};
    EXPECT_EQ(encoded(kPingWords, [&](std::uint32_t *w) { encodePing(p, f, w); }), ping);
    ProcessedDepthsPing q;
    ASSERT_TRUE(decodePing(ping.data(), f, q));
    EXPECT_EQ(q.beamCount, 2u);
    EXPECT_NEAR(q.latitude, 0.5000001, 1e-12);
    Units firstBeamZero = ping;
    firstBeamZero[1] = 0x20000;
    EXPECT_FALSE(decodePing(firstBeamZero.data(), f, q));

    ProcessedDepthsHeads h;
    h.count = 1;
    h.head[0] = {0.1, -0.2, 0.3, 0.001, 0.0, -0.001, 0.002, 0xABCD};
    const Units heads = {1, 0x64, 0xFFFFFF38, 0x12C, 0x2710, 0, 0xFFFFD8F0, 0x7D0, 0xABCD, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(encoded(kHeadsWords, [&](std::uint32_t *w) { encodeHeads(h, w); }), heads);
    ProcessedDepthsHeads hBack;
    ASSERT_TRUE(decodeHeads(heads.data(), hBack));
    EXPECT_EQ(hBack.head[0].latency, 0.002);
    Units threeHeads = heads;
    threeHeads[0] = 3;
    EXPECT_FALSE(decodeHeads(threeHeads.data(), hBack));

    const ProcessedDepthsPingUncertainty u = {0.5, 0.25, 0.05, 0.1, 0.02, 0.0001, 0.0002, 0.0003, 0.5, 0.001};
    const Units uncertainty = {0x1F4, 0xFA, 0x32, 0x64, 0x14, 0x3E8, 0x7D0, 0xBB8, 0x1F4, 0x3E8};
    EXPECT_EQ(encoded(kPingUncertaintyWords, [&](std::uint32_t *w) { encodePingUncertainty(u, w); }), uncertainty);
    ProcessedDepthsPingUncertainty uBack;
    decodePingUncertainty(uncertainty.data(), uBack);
    EXPECT_EQ(uBack.timing, 0.001);
}

TEST(ProcessedDepthsRecords, BeamSectionsUnits) {
    const ProcessedDepthsFrame f = {1000, 1000, 1, 100, 5000000, -1000000};
    ProcessedDepthsPing ping;
    ping.time = 6001.5;
    ping.latitude = 0.5000001;
    ping.longitude = -0.0999998;
    ProcessedDepthsSounding s;
    s.status = 0x80000000u;
    s.time = 6001.75;
    s.depth = 25.5;
    s.acrossTrack = -12.25;
    s.alongTrack = 0.75;
    s.latitude = 0.5000002;
    s.longitude = -0.09999985;
    s.horizontalUncertainty = 0.3;
    s.verticalUncertainty = 0.15;
    const Units sounding = {0x800000FA, 0x639C, 0xFFFFD026, 0x2EE, 0x64, 0xFFFFFFCE, 0x12C, 0x96};
    EXPECT_EQ(encoded(kSoundingWords, [&](std::uint32_t *w) { encodeSounding(s, ping, f, w); }), sounding);
    ProcessedDepthsSounding sBack;
    decodeSounding(sounding.data(), ping, f, sBack);
    EXPECT_EQ(sBack.status, 0x80000000u);
    EXPECT_DOUBLE_EQ(sBack.time, 6001.75);
    EXPECT_NEAR(sBack.longitude, -0.09999985, 1e-12);

    const ProcessedDepthsMeasurement m = {0.0345, -0.5, 0.01, 30.25, -35.5, 3, 0x81, 1};
    const Units measurement = {0x86C4, 0xFFB3B4C0, 0x186A0, 0x762A, 0xFFFF7554, 3, 0x81, 1};
    EXPECT_EQ(encoded(kMeasurementWords, [&](std::uint32_t *w) { encodeMeasurement(m, w); }), measurement);
    ProcessedDepthsMeasurement mBack;
    decodeMeasurement(measurement.data(), mBack);
    EXPECT_EQ(mBack.reflectivity, -35.5);

    const Units reductions = {0x5DC, 0xFFFFFF06, 0x1068, 0xC};
    EXPECT_EQ(encoded(kReductionWords, [&](std::uint32_t *w) { encodeReductions({1.5, -0.25, 4.2, 0.012}, w); }),
              reductions);
    ProcessedDepthsReductions rBack;
    decodeReductions(reductions.data(), rBack);
    EXPECT_EQ(rBack.refraction, 0.012);
}

}  // namespace
