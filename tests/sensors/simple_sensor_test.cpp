#include <velmio/simple_sensor.h>

#include "tests/sensors/sensor_test_support.h"

#include <cstdio>
#include <tuple>

using namespace velmio::test;

namespace {

// The files of writeGyroLine, from the tables: reference time 2 minutes,
// times -20000, -19500, -19000 ms; radians x 1e7.
const Bytes kGyroData = words({kTovo, 1, 1, 1, 0x40, 3, 1000, 2, -20000, -19000, -2500000, 31415927,  //
                               0x10, -20000, 5000000, 0, -19500, -2500000, 7, -19000, 31415927});
const Bytes kGyroSegments = cat({words({kTovo, 1, 2, 1, 1, 0x20, 8, 8}), ascii("raw1.dat"),
                                 words({1, 3, -20000, -19000, -2500000, 31415927})});
const Bytes kGyroTimeIndex =
    words({kTovo, 1, 3, 1, 1, 512, 3, -20000, -19000, 3, -20000, 48, -19500, 60, -19000, 72});

TOVO_Sensor *open(const TempDir &dir, const wchar_t *mode) { return openLine(GyroOpenDir, dir, mode); }

// Metres clamp at 2000000 m; a 5-character name is padded to 8 bytes; an
// empty segment has first = last + 1 and its empty ranges encode as the
// clamped or unrepresentable patterns.
TEST(SimpleSensorWrite, HeaveFilesMatchTheLayout) {
    TempDir dir;
    TOVO_Sensor *h = openLine(HeaveOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    for (int rc : {HeaveBgnSeqWriteLineSegment(h, L"a"), HeaveSeqWrite(h, 3600.25, 1.25, 1),
                   HeaveSeqWrite(h, 3601.0, 2500000.0, 2), HeaveEndSeqWriteLineSegment(h, 0x11),
                   HeaveBgnSeqWriteLineSegment(h, L"bcde5"), HeaveSeqWrite(h, 3599.5, -0.5, 3),
                   HeaveEndSeqWriteLineSegment(h, 0x22), HeaveBgnSeqWriteLineSegment(h, L""),
                   HeaveEndSeqWriteLineSegment(h, 0x33), HeaveEndSeqWriteSummary(h, 0x99), HeaveClose(h)})
        ASSERT_EQ(rc, 0);
    EXPECT_TRUE(SameBytes(words({kTovo, 2, 1, 1, 0x99, 3, 1000, 60, -500, 1000, -500, 2147483647,  //
                                 1, 250, 1250, 2, 1000, 2147483647, 3, -500, -500}),
                          readFile(dir.file("Heave"))));
    EXPECT_TRUE(SameBytes(cat({words({kTovo, 2, 2, 1, 3, 0x11, 1, 1}), ascii("a"), Bytes(3, 0),
                               words({1, 2, 250, 1000, 1250, 2147483647, 0x22, 5, 5}), ascii("bcde5"), Bytes(3, 0),
                               words({3, 3, -500, -500, -500, -500, 0x33, 0, 0, 4, 3, 0x80000000, 0x80000000,
                                      2147483647, 0x80000000})}),
                          readFile(dir.file("HeaveLineSegments"))));
    EXPECT_TRUE(SameBytes(words({kTovo, 2, 3, 1, 1, 512, 3, -500, 1000, 3, 250, 48, 1000, 60, -500, 72}),
                          readFile(dir.file("HeaveTmIdx"))));
}

// The first record fixes the references: from then on a writer that is killed
// leaves a summary that decodes, with the count as it stood.
TEST(SimpleSensorWrite, SummaryIsOnDiskOnceTheFirstRecordFixesTheReferences) {
    TempDir dir;
    TOVO_Sensor *h = open(dir, L"create");
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(GyroSeqWrite(h, 100.0, 0.5, 0x10), 0);
    ASSERT_EQ(GyroSeqWrite(h, 100.5, -0.25, 0), 0);
    EXPECT_TRUE(SameBytes(words({kTovo, 1, 1, 1, 0, 1, 1000, 2, -20000, -20000, 5000000, 5000000}),
                          readFile(dir.file("Gyro"))));
    EXPECT_EQ(GyroClose(h), 0);
}

TEST(SimpleSensorWrite, ClosingWithoutRecordsLeavesNoFiles) {
    TempDir dir;
    writeGyroLine(dir);  // an earlier write of the line that the create replaces
    TOVO_Sensor *h = open(dir, L"create");
    for (int rc : {GyroBgnSeqWriteLineSegment(h, L"empty"), GyroEndSeqWriteLineSegment(h, 0), GyroClose(h)})
        ASSERT_EQ(rc, 0);
    for (const char *name : {"Gyro", "GyroLineSegments", "GyroTmIdx"}) EXPECT_FALSE(fileExists(dir.file(name)));
}

TEST(SimpleSensorWrite, RefusesReadingAndEditingWhileWriting) {
    TempDir dir;
    // Bad arguments are refused before the data file is created.
    int error = 0;
    EXPECT_EQ(SimpleSensorOpen(dir.wpath().c_str(), L"create", 1, 2, &error), nullptr);
    EXPECT_EQ(error, -1);
    EXPECT_EQ(SimpleSensorOpen(dir.wpath().c_str(), L"create", 3, 0, &error), nullptr);
    EXPECT_EQ(error, 5000022);
    EXPECT_FALSE(fileExists(dir.file("Gyro")) || fileExists(dir.file("Navigation")));
    TOVO_Sensor *h = open(dir, L"create");
    double t, v;
    unsigned int s;
    EXPECT_EQ(GyroEndSeqWriteLineSegment(h, 0), 5001217);  // no segment begun
    EXPECT_EQ(GyroSeqWrite(h, 1.0, 2.0, 3), 0);             // records outside a segment are kept
    for (int rc : {GyroRead(h, 1, &t, &v, &s), GyroReadSeq(h, &t, &v, &s), GyroSetRecordStatus(h, 1, 0),
                   GyroSetLineSegmentStatus(h, 1, 0), GyroSaveStatusToDisk(h)})
        EXPECT_EQ(rc, 5001218);
    EXPECT_EQ(GyroClose(h), 0);
    EXPECT_EQ(GyroSummary(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 5000019);
}

TEST(SimpleSensorRead, SummarySegmentsAndRecordsComeBack) {
    TempDir dir;
    writeGyroLine(dir);
    TOVO_Sensor *h = open(dir, L"query");
    ASSERT_NE(h, nullptr);
    unsigned int segments, records, status, first, last;
    double t0, t1, v0, v1;
    ASSERT_EQ(GyroSummary(h, &segments, &records, &t0, &t1, &v0, &v1, &status), 0);
    EXPECT_EQ(std::make_tuple(segments, records, status, t0, t1, v0), std::make_tuple(1u, 3u, 0x40u, 100.0, 101.0, -0.25));
    EXPECT_DOUBLE_EQ(v1, 3.1415927);
    EXPECT_EQ(GyroSummary(h, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    wchar_t *name = nullptr;
    ASSERT_EQ(GyroLineSegment(h, 1, &name, &first, &last, &t0, &t1, nullptr, nullptr, &status), 0);
    EXPECT_STREQ(name, L"raw1.dat");
    free(name);
    EXPECT_EQ(std::make_tuple(first, last, status), std::make_tuple(1u, 3u, 0x20u));
    EXPECT_EQ(GyroLineSegment(h, 2, &name, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &status), 5001217);
    EXPECT_EQ(GyroLineSegment(h, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &status), -1);

    double t, v;
    ASSERT_EQ(GyroReadSeq(h, &t, &v, &status), 0);  // the first sequential read is record 1
    EXPECT_EQ(std::make_tuple(t, v, status), std::make_tuple(100.0, 0.5, 0x10u));
    ASSERT_EQ(GyroRead(h, 3, &t, &v, &status), 0);
    EXPECT_EQ(std::make_tuple(t, status), std::make_tuple(101.0, 7u));
    ASSERT_EQ(GyroRead(h, 2, nullptr, &v, &status), 0);  // time and value are optional
    EXPECT_DOUBLE_EQ(v, -0.25);
    for (unsigned n : {0u, 4u}) EXPECT_EQ(GyroRead(h, n, &t, &v, &status), 5001219);
    // Records are read by position, wherever the data file's stream was
    // left, and ReadSeq goes on behind the last record read.
    ASSERT_EQ(GyroRead(h, 1, &t, &v, &status), 0);
    std::fseek(h->dataFile, 0, SEEK_END);
    ASSERT_EQ(GyroReadSeq(h, &t, &v, &status), 0);
    EXPECT_EQ(t, 100.5);
    ASSERT_EQ(GyroRead(h, 1, &t, &v, &status), 0);
    EXPECT_EQ(t, 100.0);
    EXPECT_EQ(GyroRead(h, 1, &t, &v, nullptr), -1);
    EXPECT_EQ(GyroSetRecordStatus(h, 1, 0), 5001218);
    EXPECT_EQ(GyroClose(h), 0);
}

// The written files are checked against the layout before the edits are saved.
TEST(SimpleSensorUpdate, EditsAreSeenAtOnceAndSavedByteExact) {
    TempDir dir;
    writeGyroLine(dir);
    EXPECT_TRUE(SameBytes(kGyroSegments, readFile(dir.file("GyroLineSegments"))));
    TOVO_Sensor *h = open(dir, L"update");
    ASSERT_NE(h, nullptr);
    double t, v;
    unsigned int s;
    EXPECT_EQ(GyroReadSeq(h, &t, &v, &s), 5001218);
    EXPECT_EQ(GyroSetRecordStatus(h, 4, 1), 5001219);
    EXPECT_EQ(GyroSetLineSegmentStatus(h, 2, 1), 5001217);
    for (int rc : {GyroSetRecordStatus(h, 2, 0xAB), GyroSetRecordStatus(h, 2, 0xCD),
                   GyroSetLineSegmentStatus(h, 1, 0x21), GyroSetSummaryStatus(h, 0x41), GyroRead(h, 2, &t, &v, &s)})
        ASSERT_EQ(rc, 0);
    EXPECT_EQ(s, 0xCDu);  // before the save
    EXPECT_TRUE(SameBytes(kGyroData, readFile(dir.file("Gyro"))));
    ASSERT_EQ(GyroSaveStatusToDisk(h), 0);
    ASSERT_EQ(GyroClose(h), 0);

    // The summary's and record 2's status.
    EXPECT_TRUE(SameBytes(patched(kGyroData, {{16, 0x41}, {60, 0xCD}}), readFile(dir.file("Gyro"))));
    EXPECT_TRUE(SameBytes(patched(kGyroSegments, 20, 0x21), readFile(dir.file("GyroLineSegments"))));
    EXPECT_TRUE(SameBytes(kGyroTimeIndex, readFile(dir.file("GyroTmIdx"))));
}

// Records are changed on disk behind the handle: a save rewrites only the
// records whose status was set since the last save, and each once.
TEST(SimpleSensorUpdate, SavesOnlyChangedRecords) {
    TempDir dir;
    writeGyroLine(dir);
    TOVO_Sensor *h = open(dir, L"update");
    patchWord(dir.file("Gyro"), 48, 0x1111);  // record 1, not edited
    ASSERT_EQ(GyroSetRecordStatus(h, 3, 9), 0);
    ASSERT_EQ(GyroSaveStatusToDisk(h), 0);
    const Bytes after = readFile(dir.file("Gyro"));
    EXPECT_TRUE(SameBytes(words({0x1111}), Bytes(after.begin() + 48, after.begin() + 52)));
    EXPECT_TRUE(SameBytes(words({9, -19000, 31415927}), Bytes(after.begin() + 72, after.end())));
    patchWord(dir.file("Gyro"), 72, 0x5555);
    ASSERT_EQ(GyroSaveStatusToDisk(h), 0);
    EXPECT_TRUE(SameBytes(patched(after, 72, 0x5555), readFile(dir.file("Gyro"))));
    EXPECT_EQ(GyroClose(h), 0);
}

}  // namespace
