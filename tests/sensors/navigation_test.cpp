#include <velmio/navigation.h>
#include <velmio/simple_sensor.h>

#include "tests/sensors/sensor_test_support.h"

#include <string>
#include <tuple>

using namespace velmio::test;

namespace {

// Two fixes in segment "nav1": reference time 60 min, reference position
// 0.8 / -1.2 rad (8000000 / -12000000 x 1e-7), offsets in 1e-9 rad.
const Bytes kData = words({kTovo, 3, 1, 1, 0x77, 2, 1000, 60, 0, 1500, 4, 1, 8000000, 0, 100, -12000000, -200, 0,
                           0, 0, 0, 0, 12500, 0x40000000, 1500, 100, -200, -3250});
const Bytes kSegments =
    cat({words({kTovo, 3, 2, 1, 1, 5, 4, 4}), ascii("nav1"), words({1, 2, 0, 1500, 0, 100, -200, 0})});
const Bytes kTimeIndex = words({kTovo, 3, 3, 1, 1, 512, 2, 0, 1500, 2, 0, 72, 1500, 92});

void writeNavigationLine(const TempDir &dir) {
    TOVO_Sensor *h = openLine(NavigationOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    for (int rc : {NavigationBgnSeqWriteSummary(h, 4), NavigationBgnSeqWriteLineSegment(h, L"nav1"),
                   NavigationSeqWrite(h, 3600.0, 0.8, -1.2, 12.5, 0),
                   NavigationSeqWrite(h, 3601.5, 0.8000001, -1.2000002, -3.25, 0x40000000),
                   NavigationEndSeqWriteLineSegment(h, 5), NavigationEndSeqWriteSummary(h, 0x77), NavigationClose(h)})
        ASSERT_EQ(rc, 0);
}

TOVO_Sensor *open(const TempDir &dir, const wchar_t *mode) { return openLine(NavigationOpenDir, dir, mode); }

TEST(NavigationWrite, UnsetCoordinateTypeIsOneAndEmptyLinesLeaveNothing) {
    TempDir dir;
    TOVO_Sensor *h = openLine(SSSNavigationOpenDir, dir, L"create");
    ASSERT_EQ(SSSNavigationSeqWrite(h, 10.0, 0.1, 0.2, 0.0, 0) + SSSNavigationClose(h), 0);
    const Bytes data = readFile(dir.file("SSSNavigation"));
    EXPECT_TRUE(SameBytes(words({kTovo, 12, 1, 1, 0, 1, 1000, 0, 10000, 10000, 1}), Bytes(data.begin(), data.begin() + 44)));
    h = open(dir, L"create");
    ASSERT_EQ(NavigationBgnSeqWriteLineSegment(h, L"none") + NavigationClose(h), 0);
    for (const char *name : {"Navigation", "NavigationLineSegments", "NavigationTmIdx"})
        EXPECT_FALSE(fileExists(dir.file(name)));
}

TEST(NavigationRead, SummarySegmentsAndRecordsComeBack) {
    TempDir dir;
    writeNavigationLine(dir);
    TOVO_Sensor *h = open(dir, L"query");
    ASSERT_NE(h, nullptr);
    unsigned int segments, records, coordinates, status, begin, end;
    double t0, t1, lat0, lat1, lon0, lon1;
    ASSERT_EQ(NavigationSummary(h, &segments, &records, &coordinates, &t0, &t1, &lat0, &lat1, &lon0, &lon1, &status),
              0);
    EXPECT_EQ(std::make_tuple(segments, records, coordinates, status, t1), std::make_tuple(1u, 2u, 4u, 0x77u, 3601.5));
    EXPECT_NEAR(lat1, 0.8000001, 1e-12);
    EXPECT_NEAR(lon0, -1.2000002, 1e-12);
    EXPECT_EQ(NavigationSummary(h, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    wchar_t *name = nullptr;
    ASSERT_EQ(NavigationLineSegment(h, 1, &name, &begin, &end, &t0, &t1, &lat0, &lat1, &lon0, &lon1, &status), 0);
    EXPECT_STREQ(name, L"nav1");
    free(name);
    EXPECT_EQ(std::make_tuple(begin, end, status), std::make_tuple(1u, 2u, 5u));
    EXPECT_EQ(NavigationLineSegment(h, 2, &name, &begin, &end, &t0, &t1, &lat0, &lat1, &lon0, &lon1, &status),
              5000117);
    EXPECT_EQ(NavigationLineSegment(h, 1, &name, &begin, &end, &t0, &t1, &lat0, &lat1, &lon0, nullptr, &status), -1);

    double t, lat, lon, m;
    ASSERT_EQ(NavigationReadSeq(h, &t, &lat, &lon, &m, &status), 0);
    EXPECT_DOUBLE_EQ(m, 12.5);
    ASSERT_EQ(NavigationRead(h, 2, &t, &lat, &lon, &m, &status), 0);
    EXPECT_EQ(std::make_tuple(t, m, status), std::make_tuple(3601.5, -3.25, 0x40000000u));
    EXPECT_EQ(NavigationRead(h, 3, &t, &lat, &lon, &m, &status), 5000119);
    EXPECT_EQ(NavigationGetRecordStatus(h, 1, &status), 5000118);
    EXPECT_EQ(NavigationSeqWrite(h, 1, 1, 1, 1, 1), 5000118);
    EXPECT_EQ(NavigationClose(h), 0);
}

// The expected files are the layout's, with the edited words changed.
TEST(NavigationUpdate, EditsAreSeenAtOnceAndSavedByteExact) {
    TempDir dir;
    writeNavigationLine(dir);
    TOVO_Sensor *h = open(dir, L"update");
    ASSERT_NE(h, nullptr);
    double t, lat, lon, m;
    unsigned int status;
    EXPECT_EQ(NavigationReadSeq(h, &t, &lat, &lon, &m, &status), 5000118);
    EXPECT_EQ(NavigationSetRecordStatus(h, 0, 1), 5000119);
    EXPECT_EQ(NavigationGetRecordStatus(h, 3, &status), 5000119);
    ASSERT_EQ(NavigationSetRecordStatus(h, 1, 0x80000001), 0);
    unsigned int got = 0;
    ASSERT_EQ(NavigationGetRecordStatus(h, 1, &got) + NavigationRead(h, 1, &t, &lat, &lon, &m, &status), 0);
    EXPECT_EQ(std::make_pair(got, status), std::make_pair(0x80000001u, 0x80000001u));  // before the save
    for (int rc : {NavigationSetLineSegmentStatus(h, 1, 6), NavigationSetSummaryStatus(h, 0x78),
                   NavigationSaveStatusToDisk(h), NavigationClose(h)})
        ASSERT_EQ(rc, 0);
    EXPECT_TRUE(SameBytes(patched(kData, {{16, 0x78}, {72, 0x80000001}}), readFile(dir.file("Navigation"))));
    EXPECT_TRUE(SameBytes(patched(kSegments, 20, 6), readFile(dir.file("NavigationLineSegments"))));
    EXPECT_TRUE(SameBytes(kTimeIndex, readFile(dir.file("NavigationTmIdx"))));
}

}  // namespace
