#include <velmio/simple_sensor.h>

#include "tests/sensors/sensor_test_support.h"

#include <string>
#include <tuple>

using namespace velmio::test;
using namespace std::string_literals;

namespace {

// Every family's exported functions, taken by name so that each forwarder
// is called; ids, file names and scales are written out from the tables.
struct Family {
    const char *file;
    unsigned int id;
    bool radians;
    decltype(&GyroOpenDir) openDir;
    decltype(&GyroSummary) summary;
    decltype(&GyroLineSegment) lineSegment;
    decltype(&GyroRead) read;
    decltype(&GyroReadSeq) readSeq;
    decltype(&GyroBgnSeqWriteSummary) bgnSummary, save, close;
    decltype(&GyroBgnSeqWriteLineSegment) bgnSegment;
    decltype(&GyroSeqWrite) seqWrite;
    decltype(&GyroEndSeqWriteSummary) endSegment, endSummary, setSummaryStatus;
    decltype(&GyroSetLineSegmentStatus) setSegmentStatus;
    decltype(&GyroSetRecordStatus) setRecordStatus;
    decltype(&GyroRemoveDir) removeDir;
};

#define FAMILY(P, FILE, ID, RADIANS)                                                                            \
    Family {                                                                                                  \
        FILE, ID, RADIANS, P##OpenDir, P##Summary, P##LineSegment, P##Read, P##ReadSeq, P##BgnSeqWriteSummary, \
            P##SaveStatusToDisk, P##Close, P##BgnSeqWriteLineSegment, P##SeqWrite, P##EndSeqWriteLineSegment,  \
            P##EndSeqWriteSummary, P##SetSummaryStatus, P##SetLineSegmentStatus, P##SetRecordStatus,           \
            P##RemoveDir                                                                                       \
    }

const Family kFamilies[] = {
    FAMILY(Gyro, "Gyro", 1, true),
    FAMILY(Heave, "Heave", 2, false),
    FAMILY(Pitch, "Pitch", 5, true),
    FAMILY(Roll, "Roll", 6, true),
    FAMILY(Tide, "Tide", 7, false),
    FAMILY(SSSGyro, "SSSGyro", 11, true),
    FAMILY(SSSCableOut, "SSSCableOut", 40, false),
    FAMILY(SSSSensorHeight, "SSSSensorHeight", 41, false),
    FAMILY(SSSSensorDepth, "SSSSensorDepth", 42, false),
    FAMILY(DeltaDraft, "DeltaDraft", 45, false),
    FAMILY(SOW, "SOW", 46, false),
    FAMILY(GPSHeight, "GPSHeight", 47, false),
    FAMILY(GPSTide, "GPSTide", 48, false),
    FAMILY(TrueHeave, "TrueHeave", 55, false),
};

// Write, edit and read back, in the calling orders of the flat interface.
TEST(SensorFamilies, EveryFamilyWritesEditsAndReads) {
    for (const Family &f : kFamilies) {
        SCOPED_TRACE(f.file);
        TempDir dir;
        const std::wstring line = dir.wpath();
        TOVO_Sensor *h = openLine(f.openDir, dir, L"create");
        ASSERT_NE(h, nullptr);
        for (int rc : {f.bgnSummary(h), f.bgnSegment(h, L"src"), f.seqWrite(h, 600.0, 0.5, 1),
                       f.seqWrite(h, 601.0, 0.75, 2), f.endSegment(h, 3), f.endSummary(h, 4), f.close(h)})
            ASSERT_EQ(rc, 0);
        // The file's type, the statuses and the value's scale: 0.5 as 1e-7 rad or mm.
        const Bytes data = readFile(dir.file(f.file));
        ASSERT_EQ(data.size(), 72u);
        EXPECT_TRUE(SameBytes(words({kTovo, f.id, 1, 1, 4}), Bytes(data.begin(), data.begin() + 20)));
        EXPECT_TRUE(SameBytes(words({1, 0, f.radians ? 5000000 : 500}), Bytes(data.begin() + 48, data.begin() + 60)));
        EXPECT_EQ(readFile(dir.file(f.file + "LineSegments"s)).at(23), 3);
        EXPECT_TRUE(fileExists(dir.file(f.file + "TmIdx"s)));

        h = openLine(f.openDir, dir, L"update");
        for (int rc : {f.setRecordStatus(h, 2, 0x80), f.setSegmentStatus(h, 1, 0x81), f.setSummaryStatus(h, 0x82),
                       f.save(h), f.close(h)})
            ASSERT_EQ(rc, 0);
        h = openLine(f.openDir, dir, L"query");
        unsigned int segments = 0, records = 0, status[3] = {};
        double t, v;
        ASSERT_EQ(f.summary(h, &segments, &records, nullptr, nullptr, nullptr, nullptr, &status[0]), 0);
        wchar_t *name = nullptr;
        ASSERT_EQ(f.lineSegment(h, 1, &name, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &status[1]), 0);
        EXPECT_STREQ(name, L"src");
        VELMIO_free(name);
        EXPECT_EQ(std::make_tuple(segments, records, status[0], status[1]), std::make_tuple(1u, 2u, 0x82u, 0x81u));
        ASSERT_EQ(f.readSeq(h, &t, &v, &status[2]), 0);
        EXPECT_EQ(std::make_tuple(t, v, status[2]), std::make_tuple(600.0, 0.5, 1u));
        ASSERT_EQ(f.read(h, 2, &t, &v, &status[2]), 0);
        EXPECT_EQ(std::make_tuple(t, v, status[2]), std::make_tuple(601.0, 0.75, 0x80u));
        ASSERT_EQ(f.close(h), 0);

        EXPECT_EQ(f.removeDir(line.c_str()), 0);
        for (const char *suffix : {"", "LineSegments", "TmIdx"})
            EXPECT_FALSE(fileExists(dir.file(std::string(f.file) + suffix)));
    }
}

}  // namespace
