// Opening sensors in a line directory: names, modes, failures.
#include <velmio/linestore.h>

#include "linestore/sensor.h"
#include "support/test_support.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>

using namespace velmio::test;

namespace {
void closeAndFree(TOVO_Sensor *h) {
    if (!h) return;
    if (h->dataFile) std::fclose(h->dataFile);
    SensorFree(h);
}
}  // namespace

// Names and ids come from the sensor table (the segment and index names
// follow the data file's in every layout test); ObservedDepthsNew is recorded
// as observed depths, and only the traced side scan kind makes a trace file.
TEST(SensorOpen, BuildsFileNamesFromTheSensorTable) {
    TempDir dir;
    int err = -1;
    const struct {
        unsigned int sensor, typeId;
        const wchar_t *file;
        bool traced;
    } rows[] = {{1, 1, L"Gyro", false}, {53, 4, L"ObservedDepthsNew", false},
                {32787, 19, L"NewSSSProcessedSideScan", false}, {20, 20, L"SideScan", false}, {9, 9, L"SideScan", true}};
    for (const auto &r : rows) {
        SCOPED_TRACE(r.sensor);
        TOVO_Sensor *h = SensorOpenDir(dir.wpath().c_str(), r.sensor, L"create", &err);
        ASSERT_NE(h, nullptr);
        EXPECT_EQ(err, 0);
        EXPECT_EQ(h->typeId, r.typeId);
        EXPECT_EQ(h->dataPath, dir.wpath() + L"/" + r.file);
        EXPECT_EQ(h->segmentPath, h->dataPath + L"LineSegments");
        EXPECT_EQ(h->traceFile != nullptr, r.traced);
        EXPECT_EQ(fileExists(dir.file("SideScanTrace")), r.traced);
        closeAndFree(h);
    }
    EXPECT_TRUE(fileExists(dir.file("Gyro")));
}

TEST(SensorOpen, QueryAndUpdateOpenExistingFilesInTheirModes) {
    TempDir dir;
    writeText(dir.file("Heave"), "x");
    int err = -1;
    TOVO_Sensor *h = SensorOpenDir(dir.wpath().c_str(), 2, L"Query", &err);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(h->accessMode, 2u);
    EXPECT_EQ(std::fputc('y', h->dataFile), EOF) << "query opens read-only";
    closeAndFree(h);
    h = SensorOpenDir(dir.wpath().c_str(), 2, L"UPDATE", &err);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(h->accessMode, 3u);
    closeAndFree(h);
    // An unknown token is kept as the mode and opens the file for update.
    h = silently([&] { return SensorOpenDir(dir.wpath().c_str(), 2, L"read", &err); });
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(h->accessMode, 5000035u);
    closeAndFree(h);
    h = SensorOpenDir(dir.wpath().c_str(), 2, L"create", &err);
    ASSERT_NE(h, nullptr);
    closeAndFree(h);
    EXPECT_TRUE(readFile(dir.file("Heave")).empty()) << "create truncates";
}

TEST(SensorOpen, FailuresHaveTheirCodesAndMessages) {
    TempDir dir;
    int err = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(SensorOpenDir((dir.wpath() + L"/nowhere").c_str(), 1, L"query", &err), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VELMio:SensorOpenDir(type = 1): Unable to find directory " + dir.path() + "/nowhere\n");
    EXPECT_EQ(err, 5000010);
    for (unsigned int unknown : {8u, 14u, 31u, 56u, 32786u, 32788u}) {
        EXPECT_EQ(SensorOpenDir(dir.wpath().c_str(), unknown, L"create", &err), nullptr);
        EXPECT_EQ(err, 5000022);
    }
    testing::internal::CaptureStdout();
    EXPECT_EQ(SensorOpenDir(dir.wpath().c_str(), 1, L"query", &err), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "") << "the existence test comes before the open";
    EXPECT_EQ(err, 5000046);
    // A line directory that is a plain file passes the existence test.
    writeText(dir.file("plain"), "");
    EXPECT_EQ(SensorOpenDir(dir.wfile("plain").c_str(), 1, L"query", &err), nullptr);
    EXPECT_EQ(err, 5000046);
}

TEST(SensorOpen, AccessDeniedIsReported) {
    if (::geteuid() == 0) GTEST_SKIP() << "root is never denied";
    TempDir dir;
    writeText(dir.file("Gyro"), "");
    ::chmod(dir.file("Gyro").c_str(), 0);
    int err = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(SensorOpenDir(dir.wpath().c_str(), 1, L"query", &err), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VELM IO could not open '" + dir.file("Gyro") + "' because access is denied by the system.\n");
    EXPECT_EQ(err, 5000016);
}

TEST(SensorRemove, DeletesTheThreeFilesButNotTheTrace) {
    TempDir dir;
    for (const char *f : {"SideScan", "SideScanLineSegments", "SideScanTmIdx", "SideScanTrace"}) writeText(dir.file(f), "");
    EXPECT_EQ(SensorRemoveDir(dir.wpath().c_str(), L"SideScan"), 0);
    EXPECT_FALSE(fileExists(dir.file("SideScan")));
    EXPECT_FALSE(fileExists(dir.file("SideScanLineSegments")));
    EXPECT_FALSE(fileExists(dir.file("SideScanTmIdx")));
    EXPECT_TRUE(fileExists(dir.file("SideScanTrace")));
    EXPECT_EQ(SensorRemoveDir(dir.wpath().c_str(), L"SideScan"), 0) << "missing files are fine";
    EXPECT_EQ(SensorFree(nullptr), 0);
}

TEST(LineDirectory, ExistsCreatesAndFindsTheVesselFile) {
    TempDir dir;
    const std::wstring line = dir.wpath() + L"/Proj\\Boat/2004-123/L1";
    EXPECT_EQ(LineExists(line.c_str()), 0);
    ASSERT_EQ(LineCreateHierarchy(line.c_str()), 0);
    EXPECT_EQ(LineExists(line.c_str()), 1);
    EXPECT_EQ(LineCreateHierarchy(line.c_str()), 0) << "existing directories are fine";
    EXPECT_EQ(LineCreateHierarchy(L"Day/Line"), 5000034);
    writeText(dir.file("Proj/Boat/2004-123/L1/file"), "");
    EXPECT_EQ(LineExists((line + L"/file").c_str()), 0);

    wchar_t buffer[512];
    EXPECT_EQ(VELMFindVesselConfigurationDir(line.c_str(), buffer, 512), 5000006);
    ASSERT_EQ(::mkdir(dir.file("VesselConfig").c_str(), 0777), 0);
    writeText(dir.file("VesselConfig/Boat.tvc"), "<VELMVesselConfig/>");
    ASSERT_EQ(VELMFindVesselConfigurationDir(line.c_str(), buffer, 512), 0);
    EXPECT_EQ(std::wstring(buffer), dir.wpath() + L"/VesselConfig/Boat.tvc");
    const int exact = static_cast<int>(dir.wpath().size() + std::wstring(L"/VesselConfig/Boat.tvc").size());
    buffer[0] = L'#';
    EXPECT_EQ(VELMFindVesselConfigurationDir(line.c_str(), buffer, exact), 5000006) << "no room for the terminator";
    EXPECT_EQ(buffer[0], L'#');
    EXPECT_EQ(VELMFindVesselConfigurationDir(line.c_str(), buffer, exact + 1), 0);
}

TEST(LineSegments, AllocateSearchAndShadow) {
    TempDir dir;
    int err;
    TOVO_Sensor *h = SensorOpenDir(dir.wpath().c_str(), 1, L"create", &err);
    ASSERT_NE(h, nullptr);
    TOVO_LnSeg *a = LnSegAlloc(h);
    TOVO_LnSeg *b = LnSegAlloc(h);
    ASSERT_TRUE(a && b);
    EXPECT_EQ(a->extents[0].min, velmio::kEmptyMin);
    EXPECT_EQ(a->extents[0].max, velmio::kEmptyMax);
    EXPECT_EQ(b->prev, a);
    EXPECT_EQ(LnSegIndexSearch(h, 1), a);
    EXPECT_EQ(LnSegIndexSearch(h, 2), b);
    EXPECT_EQ(LnSegIndexSearch(h, 0), nullptr);
    EXPECT_EQ(LnSegIndexSearch(h, 3), nullptr);
    testing::internal::CaptureStdout();
    EXPECT_EQ(LnSegIndexSearch(nullptr, 1), nullptr);
    EXPECT_EQ(SensorAllocStatusShadow(nullptr), -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "LnSegIndexSearch: sensor is invalid (empty)\nSenosrAllocStatusShadow: sensor is invalid (empty)\n");
    h->recordCount = 3;
    ASSERT_EQ(SensorAllocStatusShadow(h), 0);
    EXPECT_EQ(h->shadowStatus[3], 0u);
    EXPECT_EQ(h->shadowChanged[3], 0);
    closeAndFree(h);
}

TEST(ValidationRecords, DataAndSegmentRecordsAreByteExactAndChecked) {
    TempDir dir;
    int err;
    TOVO_Sensor *h = SensorOpenDir(dir.wpath().c_str(), 53, L"create", &err);
    ASSERT_NE(h, nullptr);
    h->formatVersion = 2;
    ASSERT_EQ(TOVO_WriteDataValidationRecord(h), 0);
    EXPECT_EQ(std::ftell(h->dataFile), 16);
    std::fclose(h->dataFile);
    SensorFree(h);
    Bytes expected = ascii("TOVO");
    append(expected, be32s({4, 1, 2}));
    EXPECT_TRUE(SameBytes(expected, readFile(dir.file("ObservedDepthsNew"))));

    h = SensorOpenDir(dir.wpath().c_str(), 53, L"query", &err);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(TOVO_ReadDataValidationRecord(h), 0);
    EXPECT_EQ(h->formatVersion, 2u);
    h->typeId = 5;
    h->formatVersion = 7;
    EXPECT_EQ(TOVO_ReadDataValidationRecord(h), 5000027);
    EXPECT_EQ(h->formatVersion, 7u) << "a failed read leaves the version alone";
    std::fclose(h->dataFile);
    SensorFree(h);
    EXPECT_EQ(TOVO_ReadDataValidationRecord(nullptr), 5000027);
    EXPECT_EQ(TOVO_WriteDataValidationRecord(nullptr), 5000028);
}
