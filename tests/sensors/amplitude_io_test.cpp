// The amplitude reader: the three conversions against values worked out by
// hand, and the reader's states over a side scan table whose calls are
// counted, so that "no file access" is observable.
#include <velmio/amplitude_io.hpp>

#include "linestore/sensor.h"
#include "sensors/amplitude_bytes.h"
#include "sensors/side_scan_access.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace velmio;

namespace {

TEST(AmplitudeBytes, EM100ScalesByGainAndAttenuationsThenTakesTheLowByte) {
    // Raw 1 at gain 20: trunc(log10(3.162277^k) x 255) & 255 for k attenuation steps.
    const std::int32_t settings[] = {0, -10, -20, -30};
    const int steps1[] = {0, 1, 2, 3}, steps2[] = {0, 1, 2, 0};  // -30 is no setting of the second
    const unsigned char byteOfSteps[] = {0, 127, 254, 126, 253, 125};
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            EXPECT_EQ(em100Byte(1, em100Scale(20, settings[i], settings[j])), byteOfSteps[steps1[i] + steps2[j]])
                << settings[i] << ' ' << settings[j];
    EXPECT_EQ(em100Byte(1, em100Scale(20, 7, -15)), 0);  // unknown settings count nothing
    // 3 dB per gain step below 20: 5 -> 178; 5 x 10^(6/20) -> 254; 10 x 10^(-9/20) -> 140.
    EXPECT_EQ(em100Byte(5, em100Scale(20, 0, 0)), 178);
    EXPECT_EQ(em100Byte(5, em100Scale(18, 0, 0)), 254);
    EXPECT_EQ(em100Byte(10, em100Scale(23, 0, 0)), 140);
    // Raw above 255 loses 255 first: 266 -> 11 -> 265.55; 300 -> 45 x 1.2589 -> 447.07.
    EXPECT_EQ(em100Byte(266, 1.0), 9);
    EXPECT_EQ(em100Byte(300, em100Scale(26, -20, 0)), 191);
    EXPECT_EQ(em100Byte(0, 1.0), 0);
    EXPECT_EQ(em100Byte(-3, 1.0), 253);  // not positive: no logarithm
    // Gains no sonar has (infinite or NaN products) still make a defined byte.
    em100Byte(1000, em100Scale(INT32_MIN, -30, -20));
    em100Byte(0, em100Scale(INT32_MIN, 0, 0));
}

TEST(AmplitudeBytes, EM1000HeldToAByteAndELACLowByte) {
    const std::int32_t raw[] = {-64, 0, 63, 64, 2000000000, -65, INT32_MIN};
    const unsigned char em1000[] = {0, 128, 254, 255, 255, 0, 0};
    unsigned char out[7] = {};
    ASSERT_TRUE(amplitudeBytes(kEM1000, SideScanPing(), raw, 7, out));
    for (int k = 0; k < 7; ++k) EXPECT_EQ(out[k], em1000[k]) << raw[k];
    const std::int32_t elac[] = {0x12345678, -1, 256};
    ASSERT_TRUE(amplitudeBytes(kELAC, SideScanPing(), elac, 3, out));
    EXPECT_EQ(out[0], 0x78);
    EXPECT_EQ(out[1], 255);
    EXPECT_EQ(out[2], 0);
    EXPECT_FALSE(amplitudeBytes(kNoDetection, SideScanPing(), raw, 2, out));
}

// A side scan table over lines held in memory, counting what is asked of it.
struct FakeProfile {
    SideScanPing ping;
    std::vector<std::int32_t> amplitudes;
    std::vector<std::uint32_t> detections;
};
struct FakeLine {
    std::uint32_t sonar;
    std::vector<FakeProfile> profiles;
    int summaryCode = 0;
};
std::map<std::wstring, FakeLine> lines;
int opens, closes, pingReads, sampleReads;
const std::int32_t *lastSampleArray;

// Each opener finds its own sonar; the ELAC one also the plain trace-less files.
template <std::uint32_t Sonar>
TOVO_Sensor *fakeOpen(const wchar_t *dir, const wchar_t *token, int *error) {
    const auto it = lines.find(dir);
    if (it == lines.end() || std::wstring(token) != L"query" ||
        (it->second.sonar != Sonar && !(Sonar == kELAC && it->second.sonar == kNoDetection))) {
        *error = 5000046;
        return nullptr;
    }
    ++opens;
    auto *h = new TOVO_Sensor;
    h->typeId = it->second.sonar;
    h->lineDirectory = dir;
    return h;
}
int fakeSummary(TOVO_Sensor *h, double *minTime, double *maxTime, unsigned *status) {
    *minTime = *maxTime = *status = 0;
    return lines[h->lineDirectory].summaryCode;
}
std::uint32_t fakeSonar(const TOVO_Sensor *h) { return h->typeId; }
int fakeReadPing(TOVO_Sensor *h, unsigned n, SideScanPing *ping) {
    ++pingReads;
    const FakeLine &line = lines[h->lineDirectory];
    if (n < 1 || n > line.profiles.size()) return 5000919;
    *ping = line.profiles[n - 1].ping;
    return 0;
}
int fakeReadSamples(TOVO_Sensor *h, unsigned n, std::int32_t *amplitudes, std::uint32_t *detections) {
    ++sampleReads;
    lastSampleArray = amplitudes;
    const FakeProfile &p = lines[h->lineDirectory].profiles[n - 1];
    std::copy(p.amplitudes.begin(), p.amplitudes.end(), amplitudes);
    std::copy(p.detections.begin(), p.detections.end(), detections);
    return 0;
}
int fakeClose(TOVO_Sensor *h) {
    ++closes;
    delete h;
    return 0;
}
const SideScanAccess kFake = {{fakeOpen<kEM100>, fakeOpen<kEM1000>, fakeOpen<kELAC>}, fakeSummary, fakeSonar,
                              fakeReadPing, fakeReadSamples, fakeClose};

// Samples base, base + 1, ... with detection words 126, 127, ...
FakeProfile profile(std::uint32_t count, std::uint32_t first, std::int32_t base) {
    FakeProfile p;
    p.ping.sampleCount = count;
    p.ping.firstSample = first;
    for (std::uint32_t k = 0; k < count; ++k) {
        p.amplitudes.push_back(base + static_cast<std::int32_t>(k));
        p.detections.push_back(126 + k);
    }
    return p;
}

class AmplitudeReader : public ::testing::Test {
protected:
    void SetUp() override {
        lines.clear();
        opens = closes = pingReads = sampleReads = 0;
        // EM1000 bytes are (a + 64) x 2; profile 2 has no samples.
        lines[L"em1000"] = {kEM1000, {profile(3, 5, 0), profile(0, 1, 0), profile(40, 1, -64), profile(2, 1, 10)}};
        lines[L"elac"] = {kELAC, {profile(2, 1, 0x1FF)}};
        lines[L"plain"] = {kNoDetection, {profile(2, 1, 5)}};
        lines[L"em100"] = {kEM100, {profile(1, 1, 10)}, 5000906};
        VELMAmplitudeIOAccess::use(reader, kFake);
    }
    void TearDown() override {
        reader.close();
        EXPECT_EQ(opens, closes);
    }
    int amplitude(const VELMAmplitudeIO &r) {
        long status = 99;
        const unsigned char byte = r.getAmplitude(status);
        return status == 0 ? byte : status == -1 && byte == 0 ? -1 : -99;
    }
    VELMAmplitudeIO reader;
};

TEST_F(AmplitudeReader, StatesWithoutASample) {
    EXPECT_EQ(reader.read(1, 1), -2);
    EXPECT_EQ(reader.getDetectType(), VELMAmplitudeIO::DETECT_NONE);
    EXPECT_EQ(amplitude(reader), -1);
    EXPECT_EQ(reader.open(L"no side scan here"), -1);
    EXPECT_EQ(reader.open(L"em100"), 5000906);  // a summary that cannot be read leaves nothing open
    EXPECT_EQ(reader.read(1, 1), -2);

    ASSERT_EQ(reader.open(L"em1000"), 0);
    const struct { unsigned profile, sample; int amplitude; } reads[] = {
        {1, 5, 128}, {1, 0, -1}, {1, 4, -1}, {1, 8, -1}, {1, 7, 132}, {2, 1, -1}};
    for (const auto &r : reads) {
        ASSERT_EQ(reader.read(r.profile, r.sample), 0);
        EXPECT_EQ(amplitude(reader), r.amplitude) << r.profile << ' ' << r.sample;
    }
    EXPECT_EQ(reader.getDetectType(), VELMAmplitudeIO::DETECT_NONE);
    // A profile that cannot be read passes its code on, and is tried again.
    EXPECT_EQ(reader.read(9, 1), 5000919);
    EXPECT_EQ(amplitude(reader), -1);
    EXPECT_EQ(reader.read(9, 1), 5000919);
}

TEST_F(AmplitudeReader, NewSampleOfTheCurrentProfileReadsNothingAndBuffersOnlyGrow) {
    ASSERT_EQ(reader.open(L"em1000"), 0);
    for (unsigned s = 40; s >= 2; --s) ASSERT_EQ(reader.read(3, s), 0);
    EXPECT_EQ(amplitude(reader), 2);
    EXPECT_EQ(reader.getDetectType(), VELMAmplitudeIO::DETECT_WORD_LOW);  // 127
    EXPECT_EQ(reader.read(3, 3), 0);
    EXPECT_EQ(reader.getDetectType(), VELMAmplitudeIO::DETECT_WORD_HIGH);  // 128
    EXPECT_EQ(pingReads, 1);
    EXPECT_EQ(sampleReads, 1);
    // 40 samples, then 2 and 3 into the same arrays.
    const std::int32_t *large = lastSampleArray;
    ASSERT_EQ(reader.read(4, 2), 0);
    EXPECT_EQ(amplitude(reader), 150);
    ASSERT_EQ(reader.read(1, 6), 0);
    EXPECT_EQ(amplitude(reader), 130);
    EXPECT_EQ(lastSampleArray, large);
}

TEST_F(AmplitudeReader, SonarsWithoutBytesAndIndependentCopies) {
    ASSERT_EQ(reader.open(L"plain"), 0);  // found by the ELAC opener
    EXPECT_EQ(reader.read(1, 1), 0);
    EXPECT_EQ(sampleReads, 0);
    EXPECT_EQ(amplitude(reader), -1);
    EXPECT_EQ(reader.getDetectType(), VELMAmplitudeIO::DETECT_NONE);

    ASSERT_EQ(reader.open(L"elac"), 0);
    ASSERT_EQ(reader.read(1, 1), 0);
    VELMAmplitudeIO copy(reader), assigned;
    assigned = copy;
    VELMAmplitudeIO &alias = assigned;
    assigned = alias;
    EXPECT_EQ(opens, 4);  // plain, elac and two copies, each with its own handle
    reader.close();
    EXPECT_EQ(reader.read(1, 2), -2);
    EXPECT_EQ(amplitude(copy), 0xFF);
    EXPECT_EQ(copy.read(1, 2), 0);
    EXPECT_EQ(amplitude(copy), 0);  // 0x200
    EXPECT_EQ(amplitude(assigned), 0xFF);
    copy.close();
    assigned.close();
}

}  // namespace
