// The side scan family on disk: its bytes against bytes written by hand,
// the kinds its openers keep apart, every way of reading back, edits, and
// files cut at every byte.
#include <velmio/amplitude_io.hpp>
#include <velmio/side_scan.h>

#include "tests/sensors/sensor_test_support.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

using namespace velmio::test;

namespace {

using Opener = TOVO_Sensor *(*)(const wchar_t *, const wchar_t *, int *);

// Two pings in one segment: samples 5 and 6 (EM100-like settings), then an
// empty ping; a trace record after the first where the kind has a trace.
void writeLine(const TempDir &dir, Opener open) {
    TOVO_Sensor *h = openLine(open, dir, L"create");
    ASSERT_NE(h, nullptr);
    const bool traced = h->typeId == 9 || h->typeId == 10;
    const int lastAmplitude = 300;  // written in bulk, its detection from null
    for (int rc : {SideScanBgnSeqWriteSummary(h, 7), SideScanBgnSeqWriteLineSegment(h, L"ping.all"),
                   SideScanBgnSeqWriteProfile(h, 2, 5, 6001.5, 0.000125, 18, -30, -10, 0),
                   SideScanSeqWrite(h, -64, 0x81), SideScanSeqWriteSamples(h, 1, &lastAmplitude, nullptr),
                   SideScanEndSeqWriteProfile(h),
                   traced ? SideScanSeqWriteTrace(h, 6, 12.345) : 0,
                   SideScanBgnSeqWriteProfile(h, 0, 1, 6002.25, 0.0, 0, 0, 0, 0x10000),
                   SideScanEndSeqWriteProfile(h), SideScanEndSeqWriteLineSegment(h, 3),
                   SideScanEndSeqWriteSummary(h, 0x40), SideScanClose(h)})
        ASSERT_EQ(rc, 0);
}

TEST(SideScanFiles, BytesWrittenByHand) {
    TempDir dir;
    writeLine(dir, SideScanEM1000OpenDir);
    // Reference time 100 min; pings 1500 and 2250 ms after it.
    const Bytes data = cat({words({kTovo, 10, 1, 1}),
                            words({0x40, 7, 2, 2, 1000, 100, 0x5DC, 0x8CA, -64, 300}),
                            words({0, 2, 5, 0x5DC, 125, 18, -30, -10}), words({-64, 0x81, 300, 0}),
                            words({0x10000, 0, 1, 0x8CA, 0, 0, 0, 0})});
    EXPECT_EQ(hex(readFile(dir.file("SideScan"))), hex(data));
}

struct Kind {
    Opener open;
    const char *file;
    unsigned type;  // the handle's
};
const Kind kKinds[] = {{SideScanEM100OpenDir, "SideScan", 9},
                       {SideScanEM1000OpenDir, "SideScan", 10},
                       {SideScanELACOpenDir, "SideScan", 15},
                       {SideScanOpenDir, "SideScan", 20},
                       {SSSSideScanOpenDir, "SSSSideScan", 13},
                       {SSSProcessedSideScanOpenDir, "SSSProcessedSideScan", 19},
                       {NewSSSProcessedSideScanOpenDir, "NewSSSProcessedSideScan", 19}};

TEST(SideScanFiles, EachKindReadsBackThroughEveryReader) {
    for (const Kind &k : kKinds) {
        SCOPED_TRACE(k.type);
        TempDir dir;
        writeLine(dir, k.open);
        ASSERT_TRUE(fileExists(dir.file(k.file)));
        TOVO_Sensor *h = openLine(k.open, dir, L"query");
        ASSERT_NE(h, nullptr);
        EXPECT_EQ(h->typeId, k.type);
        unsigned sonar, segments, profiles, samples, status, n, first, detection;
        double t, interval;
        int gain, att1, att2, amplitude;
        double t0, t1;
        int a0, a1;
        ASSERT_EQ(SideScanSummary(h, &sonar, &segments, &profiles, &samples, &t0, &t1, &a0, &a1, &status), 0);
        EXPECT_EQ(std::vector<double>({double(sonar), double(segments), double(profiles), double(samples), t0, t1,
                                       double(a0), double(a1), double(status)}),
                  std::vector<double>({7, 1, 2, 2, 6001.5, 6002.25, -64, 300, 0x40}));
        // In sequence from the start, then by number and in bulk.
        ASSERT_EQ(SideScanReadProfileSeq(h, &n, &first, &t, &interval, &gain, &att1, &att2, &status), 0);
        ASSERT_EQ(SideScanReadSeq(h, &amplitude, &detection), 0);
        EXPECT_EQ(amplitude, -64);
        EXPECT_EQ(detection, 0x81u);
        ASSERT_EQ(SideScanReadSeq(h, &amplitude, &detection), 0);
        ASSERT_EQ(SideScanReadProfileSeq(h, &n, &first, &t, &interval, &gain, &att1, &att2, &status), 0);
        EXPECT_EQ(status, 0x10000u);
        EXPECT_EQ(SideScanReadProfileSeq(h, &n, &first, &t, &interval, &gain, &att1, &att2, &status), 5000925);
        ASSERT_EQ(SideScanReadProfile(h, 1, &n, &first, &t, &interval, &gain, &att1, &att2, &status), 0);
        EXPECT_EQ(std::vector<double>({double(n), double(first), t, interval, double(gain), double(att1),
                                       double(att2)}),
                  std::vector<double>({2, 5, 6001.5, 0.000125, 18, -30, -10}));
        ASSERT_EQ(SideScanRead(h, 1, 6, &amplitude, &detection), 0);
        EXPECT_EQ(amplitude, 300);
        EXPECT_EQ(SideScanRead(h, 1, 4, &amplitude, &detection), 5000919);
        EXPECT_EQ(SideScanRead(h, 1, 7, &amplitude, &detection), 5000919);
        EXPECT_EQ(SideScanRead(h, 2, 1, &amplitude, &detection), 5000919);
        EXPECT_EQ(SideScanReadProfile(h, 3, &n, &first, &t, &interval, &gain, &att1, &att2, &status), 5000919);
        unsigned offsets[3], detections[2];
        int amplitudes[2];
        EXPECT_EQ(SideScanReadSamples(h, 1, 2, 1, offsets, amplitudes, detections), 5000919);
        ASSERT_EQ(SideScanReadSamples(h, 1, 2, 2, offsets, amplitudes, detections), 0);
        EXPECT_EQ(std::vector<int>({int(offsets[0]), int(offsets[1]), int(offsets[2]), amplitudes[0],
                                    amplitudes[1], int(detections[0])}),
                  std::vector<int>({0, 2, 2, -64, 300, 0x81}));
        unsigned count = 0, profile = 0, bottom = 0;
        double depth = 0;
        if (k.type == 9 || k.type == 10) {
            ASSERT_EQ(SideScanTraceCount(h, &count), 0);
            EXPECT_EQ(count, 1u);
            ASSERT_EQ(SideScanReadTrace(h, 1, &profile, &bottom, &depth), 0);
            EXPECT_EQ(profile * 100 + bottom, 106u);
            EXPECT_DOUBLE_EQ(depth, 12.345);
            EXPECT_EQ(SideScanReadTrace(h, 2, &profile, &bottom, &depth), 5000928);
        } else {
            EXPECT_EQ(SideScanTraceCount(h, &count), 5000928);
        }
        EXPECT_EQ(SideScanClose(h), 0);
    }
}

TEST(SideScanFiles, OpenersKeepTheKindsApart) {
    TempDir elac, plain, em100;
    writeLine(elac, SideScanELACOpenDir);
    writeLine(plain, SideScanOpenDir);
    writeLine(em100, SideScanEM100OpenDir);
    // Either trace-less opener reads both kinds, as the file says.
    for (Opener open : {SideScanELACOpenDir, SideScanOpenDir}) {
        TOVO_Sensor *h = openLine(open, elac, L"query");
        EXPECT_EQ(h->typeId, 15u);
        SideScanClose(h);
        h = openLine(open, plain, L"query");
        EXPECT_EQ(h->typeId, 20u);
        SideScanClose(h);
    }
    int error = 0;
    EXPECT_EQ(SideScanEM1000OpenDir(em100.wpath().c_str(), L"query", &error), nullptr);
    EXPECT_EQ(error, 5000906);  // the validation record carries 9
    EXPECT_EQ(SideScanEM100OpenDir(elac.wpath().c_str(), L"query", &error), nullptr);
    EXPECT_EQ(error, 5000024);  // no trace file
    // Another family's handle is refused by type.
    EXPECT_EQ(SideScanClose(nullptr), 5000912);
    TOVO_Sensor *h = openLine(SideScanELACOpenDir, elac, L"query");
    h->typeId = 4;
    EXPECT_EQ(SideScanRead(h, 1, 5, nullptr, nullptr), 5000913);
    h->typeId = 15;
    EXPECT_EQ(SideScanBgnSeqWriteProfile(h, 1, 1, 0, 0, 0, 0, 0, 0), 5000918);
    EXPECT_EQ(SideScanClose(h), 0);
    EXPECT_EQ(SideScanRemoveDir(em100.wpath().c_str()), 0);
    EXPECT_FALSE(fileExists(em100.file("SideScanTrace")));
    EXPECT_FALSE(fileExists(em100.file("SideScan")));
}

TEST(SideScanFiles, StatusEditsReachTheDisk) {
    TempDir dir;
    writeLine(dir, SideScanELACOpenDir);
    const Bytes before = readFile(dir.file("SideScan"));
    TOVO_Sensor *h = openLine(SideScanELACOpenDir, dir, L"update");
    ASSERT_EQ(SideScanUpdateProfileStatus(h, 2, 0xABCD), 0);
    EXPECT_EQ(SideScanUpdateProfileStatus(h, 3, 1), 5000919);
    ASSERT_EQ(SideScanSetSummaryStatus(h, 0x41), 0);
    ASSERT_EQ(SideScanSetSonarType(h, 8), 0);
    EXPECT_EQ(SideScanSetLineSegmentStatus(h, 2, 1), 5000917);
    ASSERT_EQ(SideScanSaveStatusToDisk(h), 0);
    EXPECT_EQ(SideScanClose(h), 0);
    EXPECT_EQ(hex(readFile(dir.file("SideScan"))),
              hex(patched(before, {{16, 0x41}, {20, 8}, {16 + 40 + 32 + 16, 0xABCD}})));
}

TEST(SideScanFiles, WritesRefuseWhatNoReaderAccepts) {
    TempDir dir;
    TOVO_Sensor *h = openLine(SideScanEM100OpenDir, dir, L"create");
    EXPECT_EQ(SideScanSeqWriteTrace(h, 1, 1.0), 5000919);  // no profile yet
    EXPECT_EQ(SideScanBgnSeqWriteProfile(h, 1, 0, 0, 0, 0, 0, 0, 0), 5000922);
    EXPECT_EQ(SideScanBgnSeqWriteProfile(h, (1u << 20) + 1, 1, 0, 0, 0, 0, 0, 0), 5000922);
    ASSERT_EQ(SideScanBgnSeqWriteProfile(h, 2, 1, 10.0, 0, 0, 0, 0, 0), 0);
    const int amplitudes[] = {1, 2, 3};
    EXPECT_EQ(SideScanSeqWriteSamples(h, 2, nullptr, nullptr), -1);
    EXPECT_EQ(SideScanSeqWriteSamples(h, 3, amplitudes, nullptr), 5000919);  // the third is one too many
    EXPECT_EQ(SideScanEndSeqWriteProfile(h), 0);
    EXPECT_EQ(SideScanClose(h), 0);
}

// Every cut of each file opens, or fails with a code, and every read of
// what opened gives values or the family's code (the trace file's cuts are
// side_scan_trace_test's).
TEST(SideScanCorrupt, EveryCutOfEveryFileOpensOrReadsWithACode) {
    TempDir source;
    writeLine(source, SideScanEM1000OpenDir);
    for (const char *name : {"SideScan", "SideScanTmIdx", "SideScanLineSegments"}) {
        const Bytes whole = readFile(source.file(name));
        for (std::size_t cut = 0; cut < whole.size(); ++cut) {
            SCOPED_TRACE(std::string(name) + " cut at " + std::to_string(cut));
            TempDir dir;
            for (const char *other : {"SideScan", "SideScanTmIdx", "SideScanLineSegments", "SideScanTrace"})
                writeFile(dir.file(other), readFile(source.file(other)));
            writeFile(dir.file(name), Bytes(whole.begin(), whole.begin() + cut));
            VELMAmplitudeIO reader;
            const long opened = reader.open(dir.wpath().c_str());
            EXPECT_TRUE(opened == 0 || opened == -1 || (opened > 5000000 && opened < 5001000)) << opened;
            for (unsigned p = 1; opened == 0 && p <= 3; ++p) {
                const long rc = reader.read(p, 5);
                EXPECT_TRUE(rc == 0 || (rc > 5000900 && rc < 5001000)) << rc;
            }
        }
    }
}

// A sample count that the file cannot hold is refused before the reader
// sizes a buffer by it.
TEST(SideScanCorrupt, CountsBeyondTheFileAreRefused) {
    TempDir dir;
    writeLine(dir, SideScanEM1000OpenDir);
    const Bytes good = readFile(dir.file("SideScan"));
    VELMAmplitudeIO reader;
    for (long long count : {3LL, 1LL << 20, 0xFFFFFFFFLL}) {
        writeFile(dir.file("SideScan"), patched(good, 16 + 40 + 4, count));
        ASSERT_EQ(reader.open(dir.wpath().c_str()), 0);
        EXPECT_EQ(reader.read(1, 5), 5000921) << count;
        EXPECT_EQ(reader.read(2, 1), 0);
    }
}

// The amplitude reader over lines of each sonar (its states and copies are
// amplitude_io_test's): bytes worked out by hand
// from the samples -64 and 300 of ping 1 (gain 18, attenuations -30 and -10).
TEST(AmplitudeReaderOnLines, BytesByType) {
    struct Case {
        Opener open;
        int bytes[2];  // -1: no sample
        VELMAmplitudeIO::DetectType detect[2];
    };
    // EM100: the scale is 1.412537^2 x 3.162277^4 = 199.53: -64 -> trunc(-12769.7) & 255 = 31,
    // 45 -> log10(8978.7) x 255 = 1008.07 -> 240. EM1000: (a + 64) x 2 held to 0-255.
    const Case cases[] = {
        {SideScanEM100OpenDir, {31, 240}, {VELMAmplitudeIO::DETECT_WORD_HIGH, VELMAmplitudeIO::DETECT_WORD_LOW}},
        {SideScanEM1000OpenDir, {0, 255}, {VELMAmplitudeIO::DETECT_WORD_HIGH, VELMAmplitudeIO::DETECT_WORD_LOW}},
        {SideScanELACOpenDir, {0xC0, 0x2C}, {VELMAmplitudeIO::DETECT_WORD_HIGH, VELMAmplitudeIO::DETECT_WORD_LOW}},
        {SideScanOpenDir, {-1, -1}, {VELMAmplitudeIO::DETECT_NONE, VELMAmplitudeIO::DETECT_NONE}},
    };
    for (const Case &c : cases) {
        TempDir dir;
        writeLine(dir, c.open);
        VELMAmplitudeIO reader;
        ASSERT_EQ(reader.open(dir.wpath().c_str()), 0);
        for (unsigned k = 0; k < 2; ++k) {
            ASSERT_EQ(reader.read(1, 5 + k), 0);
            long status = 99;
            const int byte = reader.getAmplitude(status);
            EXPECT_EQ(status == 0 ? byte : -1, c.bytes[k]) << k;
            EXPECT_EQ(reader.getDetectType(), c.detect[k]);
        }
    }
    TempDir empty;
    VELMAmplitudeIO reader;
    EXPECT_EQ(reader.open(empty.wpath().c_str()), -1);
}

}  // namespace
