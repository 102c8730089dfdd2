#include <velmio/slant_range.h>

#include "tests/sensors/sensor_test_support.h"

#include <vector>

using namespace velmio::test;

namespace {

// One profile of beams 3-4 at 60 s (reference time 1 minute).
void writeLine(const TempDir &dir) {
    TOVO_Sensor *h = openLine(SLRangeOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    for (int rc : {SLRangeBgnSeqWriteSummary(h, 11), SLRangeBgnSeqWriteLineSegment(h, L"s1"),
                   SLRangeBgnSeqWriteProfile(h, 2, 3, 60.0, 0.5, -0.25, 0x100),
                   SLRangeSeqWrite(h, 60.002, 12.5, 1.2345678, -0.00005, 0.00005, 0x40000000u),
                   SLRangeSeqWrite(h, 59.999, 3.0, -0.0000015, 0.1, -3.2767, 0), SLRangeEndSeqWriteProfile(h),
                   SLRangeEndSeqWriteLineSegment(h, 1), SLRangeEndSeqWriteSummary(h, 2), SLRangeClose(h)})
        ASSERT_EQ(rc, 0);
}

Bytes expectedData() {
    return be32s({kTovo, 30, 1, 2,
                  2, 11, 1, 2, 1000, 1000, 1, 0xFFFFFFFF, 2,          // summary
                  0x100, 0x00020003, 0, 0x004C4B40, 0xFFD9DA60,        // header at 52
                  // value truncated (1234567.8), angles rounded half away (-1, 1)
                  0x40000002, 12500, 1234567, 0xFFFF0001,
                  0x0000FFFF, 3000, 0xFFFFFFFF, 0x03E88001});
}

constexpr std::size_t kBeam4 = 88;  // second beam of profile 1

struct Beam {
    double time, range, value, angle1, angle2;
    unsigned status;
};

int read(TOVO_Sensor *h, unsigned p, unsigned b, Beam &r) {
    return SLRangeRead(h, p, b, &r.time, &r.range, &r.value, &r.angle1, &r.angle2, &r.status);
}

TEST(SlantRangeWrite, FilesMatchTheirLayoutsByteForByte) {
    TempDir dir;
    writeLine(dir);
    EXPECT_TRUE(SameBytes(expectedData(), readFile(dir.file("SLRange"))));
    const Bytes segments = cat({be32s({kTovo, 30, 2, 2, 1, 1, 2}), xdrString("s1"), be32s({1, 1, 0xFFFFFFFF, 2})});
    EXPECT_TRUE(SameBytes(segments, readFile(dir.file("SLRangeLineSegments"))));
    EXPECT_TRUE(SameBytes(be32s({kTovo, 30, 3, 2, 1, 512, 1, 0, 0, 1, 0, 52}), readFile(dir.file("SLRangeTmIdx"))));

    // Entry checks: null handle, then mode, then missing outputs.
    EXPECT_EQ(SLRangeBgnSeqWriteSummary(nullptr, 0), 5001912);
    TOVO_Sensor *h = openLine(SLRangeOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    Beam b{};
    EXPECT_EQ(read(h, 1, 1, b), 5001918);
    EXPECT_EQ(SLRangeLineSegment(h, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), -1);
    ASSERT_EQ(SLRangeClose(h), 0);
    EXPECT_FALSE(fileExists(dir.file("SLRange")));
}

TEST(SlantRangeRead, DecodesTruncatedValuesAndRoundedAngles) {
    TempDir dir;
    writeLine(dir);
    TOVO_Sensor *h = openLine(SLRangeOpenDir, dir, L"query");
    ASSERT_NE(h, nullptr);
    unsigned tool, segments, profiles, beams, status;
    double t0, t1;
    ASSERT_EQ(SLRangeSummary(h, &tool, &segments, &profiles, &beams, &t0, &t1, &status), 0);
    EXPECT_EQ(tool, 11u);
    EXPECT_EQ(beams, 2u);
    EXPECT_DOUBLE_EQ(t0, 59.999);
    EXPECT_DOUBLE_EQ(t1, 60.002);
    Beam b{};
    ASSERT_EQ(read(h, 1, 3, b), 0);
    EXPECT_EQ(std::vector<double>({b.time, b.range, b.value, b.angle1, b.angle2}),
              std::vector<double>({60.002, 12.5, 1.234567, -0.0001, 0.0001}));
    EXPECT_EQ(b.status, 0x40000000u);
    ASSERT_EQ(read(h, 1, 4, b), 0);
    EXPECT_DOUBLE_EQ(b.value, -0.000001);
    EXPECT_DOUBLE_EQ(b.angle2, -3.2767);
    EXPECT_EQ(read(h, 1, 2, b), 5001919);
    EXPECT_EQ(read(h, 1, 5, b), 5001919);
    // The profile bound is the beam total (2): profile 2 passes it and fails
    // in the time index, profile 3 fails the bound.
    EXPECT_EQ(read(h, 2, 3, b), 5001908);
    EXPECT_EQ(read(h, 3, 3, b), 5001919);
    EXPECT_EQ(SLRangeUpdateStatus(h, 1, 3, 0), 5001918);
    EXPECT_EQ(SLRangeClose(h), 0);
}

// A beam's status goes to disk at once; the summary and segment statuses at
// the close.
TEST(SlantRangeUpdate, StatusChangesOnlyTheUpperBitsOnDiskAtOnce) {
    TempDir dir;
    writeLine(dir);
    TOVO_Sensor *h = openLine(SLRangeOpenDir, dir, L"update");
    ASSERT_NE(h, nullptr);
    Beam b{};
    ASSERT_EQ(read(h, 1, 3, b), 0);
    for (int rc : {SLRangeUpdateStatus(h, 1, 4, 0x80000000u), SLRangeSetSummaryStatus(h, 0x77),
                   SLRangeSetLineSegmentStatus(h, 1, 0x66), read(h, 1, 4, b)})
        ASSERT_EQ(rc, 0);
    EXPECT_EQ(b.status, 0x80000000u);
    EXPECT_DOUBLE_EQ(b.time, 59.999);
    const Bytes beamSaved = patched(expectedData(), kBeam4, 0x8000FFFFu);
    EXPECT_TRUE(SameBytes(beamSaved, readFile(dir.file("SLRange"))));
    // Bounded by the profile count, not the beam total.
    EXPECT_EQ(SLRangeUpdateStatus(h, 2, 3, 0), 5001919);
    EXPECT_EQ(SLRangeUpdateStatus(h, 1, 5, 0), 5001919);
    EXPECT_EQ(SLRangeSetLineSegmentStatus(h, 2, 0x66), 5001917);
    ASSERT_EQ(SLRangeClose(h), 0);
    EXPECT_TRUE(SameBytes(patched(beamSaved, 16, 0x77), readFile(dir.file("SLRange"))));
    EXPECT_EQ(readFile(dir.file("SLRangeLineSegments")).at(23), 0x66);
}

TEST(SlantRangeUpdate, VersionOneFileIsLeftUnchanged) {
    TempDir dir;
    writeLine(dir);
    const Bytes version1 = patched(expectedData(), 12, 1);
    writeFile(dir.file("SLRange"), version1);
    TOVO_Sensor *h = openLine(SLRangeOpenDir, dir, L"update");
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(SLRangeUpdateStatus(h, 1, 3, 0x80000000u), 0);
    Beam b{};
    ASSERT_EQ(read(h, 1, 3, b), 0);
    EXPECT_EQ(b.status, 0x40000000u);
    ASSERT_EQ(SLRangeClose(h), 0);
    EXPECT_TRUE(SameBytes(version1, readFile(dir.file("SLRange"))));
}

}  // namespace
