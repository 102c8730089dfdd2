#include <velmio/simple_sensor.h>

#include "tests/sensors/simple_sensor_helpers.h"

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

// Write, read and edit, in the calling orders of the flat interface.
TEST(SensorFamilies, EveryFamilyWritesReadsAndEdits) {
    for (const Family &f : kFamilies) {
        SCOPED_TRACE(f.file);
        TempDir dir;
        const std::wstring line = dir.wpath();
        int error = -1;
        TOVO_Sensor *h = f.openDir(line.c_str(), L"create", &error);
        ASSERT_NE(h, nullptr) << error;
        for (int rc : {f.bgnSummary(h), f.bgnSegment(h, L"src"), f.seqWrite(h, 600.0, 0.5, 1),
                       f.seqWrite(h, 601.0, 0.75, 2), f.endSegment(h, 3), f.endSummary(h, 4), f.close(h)})
            ASSERT_EQ(rc, 0);
        // The file's type and the value's scale: 0.5 as 1e-7 rad or mm.
        const Bytes data = readFile(dir.file(f.file));
        ASSERT_EQ(data.size(), 72u);
        EXPECT_TRUE(SameBytes(words({kTOVO, f.id}), Bytes(data.begin(), data.begin() + 8)));
        EXPECT_TRUE(SameBytes(words({1, 0, f.radians ? 5000000 : 500}), Bytes(data.begin() + 48, data.begin() + 60)));
        EXPECT_TRUE(fileExists(dir.file(f.file + "LineSegments"s)) && fileExists(dir.file(f.file + "TmIdx"s)));

        h = f.openDir(line.c_str(), L"query", &error);
        ASSERT_NE(h, nullptr) << error;
        unsigned int segments = 0, records = 0, status = 0;
        double t, v;
        ASSERT_EQ(f.summary(h, &segments, &records, nullptr, nullptr, nullptr, nullptr, &status), 0);
        EXPECT_EQ(segments * 100 + records * 10 + status, 124u);
        wchar_t *name = nullptr;
        ASSERT_EQ(f.lineSegment(h, 1, &name, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &status), 0);
        EXPECT_STREQ(name, L"src");
        VELMIO_free(name);
        ASSERT_EQ(f.readSeq(h, &t, &v, &status), 0);
        ASSERT_EQ(f.read(h, 2, &t, &v, &status), 0);
        EXPECT_EQ(std::make_pair(t, v), std::make_pair(601.0, 0.75));
        ASSERT_EQ(f.close(h), 0);

        h = f.openDir(line.c_str(), L"update", &error);
        ASSERT_NE(h, nullptr) << error;
        for (int rc : {f.setRecordStatus(h, 2, 0x80), f.setSegmentStatus(h, 1, 0x81), f.setSummaryStatus(h, 0x82),
                       f.save(h), f.close(h)})
            ASSERT_EQ(rc, 0);
        h = f.openDir(line.c_str(), L"query", &error);
        unsigned int edited[3];
        ASSERT_EQ(f.read(h, 2, &t, &v, &edited[0]), 0);
        ASSERT_EQ(f.lineSegment(h, 1, &name, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &edited[1]), 0);
        free(name);
        ASSERT_EQ(f.summary(h, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &edited[2]), 0);
        EXPECT_EQ(std::make_tuple(edited[0], edited[1], edited[2]), std::make_tuple(0x80u, 0x81u, 0x82u));
        ASSERT_EQ(f.close(h), 0);

        EXPECT_EQ(f.removeDir(line.c_str()), 0);
        for (const char *suffix : {"", "LineSegments", "TmIdx"})
            EXPECT_FALSE(fileExists(dir.file(std::string(f.file) + suffix)));
    }
}

}  // namespace
