// Repairing a damaged line whose segment file survived: a dry run touches
// nothing, the repair keeps the segments and rebuilds exactly the files a
// clean write made, and the damaged files stay aside. Profile families cut
// inside their last profile repair to a clean write of the whole profiles.
#include <velmio/line_check.h>
#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>
#include <velmio/simple_sensor.h>

#include "support/test_support.h"
#include "tests/sensors/profile_families.h"

#include <filesystem>
#include <string>
#include <vector>

using namespace velmio::test;
namespace fs = std::filesystem;

namespace {

// Two segments, so that keeping them differs from one recovered segment.
void writeGyroAndDepths(const std::string &line) {
    fs::create_directories(line);
    const std::wstring w = widen(line);
    int error = 0;
    TOVO_Sensor *h = GyroOpenDir(w.c_str(), L"create", &error);
    ASSERT_NE(h, nullptr);
    for (int segment = 0; segment < 2; ++segment) {
        ASSERT_EQ(GyroBgnSeqWriteLineSegment(h, segment ? L"b.raw" : L"a.raw"), 0);
        for (int i = 0; i < 3; ++i) ASSERT_EQ(GyroSeqWrite(h, 100.0 + 3 * segment + i, 0.1 * i - 0.05, i), 0);
        ASSERT_EQ(GyroEndSeqWriteLineSegment(h, 7), 0);
    }
    ASSERT_EQ(GyroClose(h), 0);
    writeLine(observedDepths(), w, 2, false, [](unsigned) { return Layout{2, 1}; });
}

// Profiles 0 .. count - 1 in one segment named as a repair names the one it
// recovers; the last of three holds the widest values, so that bounds left
// over from the cut profile show.
void processedDepths(const std::string &line, int count) {
    int error = 0;
    TOVO_Sensor *h = ProcessedDepthsOpenDir(widen(line).c_str(), L"create", &error);
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(ProcessedDepthsBgnSeqWriteSummary(h, 7), 0);
    ASSERT_EQ(ProcessedDepthsBgnSeqWriteLineSegment(h, L"recovered"), 0);
    for (int p = 0; p < count; ++p) {
        const ProcessedDepthsPing ping = {0, 2, 1, 500.0 + p, unsigned(p), 0.9, 0.1, 0, 0, 0, 0, 0, 0, 1500};
        ASSERT_EQ(ProcessedDepthsBgnSeqWriteProfile(h, &ping, nullptr, nullptr), 0);
        for (int b = 0; b < 2; ++b) {
            const ProcessedDepthsSounding sounding = {0, 500.0 + p, 10.0 + 10 * p * p + b, 0, 0, 0.9, 0.1, 0, 0};
            ASSERT_EQ(ProcessedDepthsSeqWrite(h, &sounding, nullptr, nullptr), 0);
        }
        ASSERT_EQ(ProcessedDepthsEndSeqWriteProfile(h), 0);
    }
    ASSERT_EQ(ProcessedDepthsEndSeqWriteLineSegment(h, 0), 0);
    ASSERT_EQ(ProcessedDepthsClose(h), 0);
}

template <TOVO_Sensor *(*Open)(const wchar_t *, const wchar_t *, int *), bool traced>
void sideScan(const std::string &line, int count) {
    int error = 0;
    TOVO_Sensor *h = Open(widen(line).c_str(), L"create", &error);
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(SideScanBgnSeqWriteSummary(h, 3), 0);
    ASSERT_EQ(SideScanBgnSeqWriteLineSegment(h, L"recovered"), 0);
    for (int p = 0; p < count; ++p) {
        ASSERT_EQ(SideScanBgnSeqWriteProfile(h, 3, 1, 600.0 + p, 0.001, 2, 3, 4, 0), 0);
        for (int k = 0; k < 3; ++k) ASSERT_EQ(SideScanSeqWrite(h, (k - 1) * (1 + 100 * p * p), 0), 0);
        ASSERT_EQ(SideScanEndSeqWriteProfile(h), 0);
        if (traced) {
            ASSERT_EQ(SideScanSeqWriteTrace(h, 2, 12.5), 0);
        }
    }
    ASSERT_EQ(SideScanEndSeqWriteLineSegment(h, 0), 0);
    ASSERT_EQ(SideScanClose(h), 0);
}

int repair(const std::string &line, int dryRun, VELMRepairReport **reports, unsigned int *count) {
    return silently([&] { return VELMRepairPath(widen(line).c_str(), nullptr, dryRun, reports, count); });
}

unsigned int problems(const std::string &line) {
    VELMCheckProblem *found = nullptr;
    unsigned int count = 0;
    EXPECT_EQ(silently([&] { return VELMCheckPath(widen(line).c_str(), &found, &count, nullptr); }), 0);
    VELMCheckFree(found, count);
    return count;
}

TEST(LineRepair, KeepsIntactSegmentsAndRebuildsWhatACleanWriteMade) {
    TempDir dir;
    const std::string line = dir.file("line");
    writeGyroAndDepths(line);
    const auto clean = snapshot(line);
    // A lost time index, a summary that counts one record less and a torn
    // record at the end of the gyro; a profile cut inside its beams.
    fs::remove(line + "/GyroTmIdx");
    Bytes gyro = clean.at("Gyro");
    gyro[23] -= 1;
    append(gyro, {1, 2, 3, 4, 5});
    writeFile(line + "/Gyro", gyro);
    Bytes depths = clean.at("ObservedDepths");
    depths.resize(depths.size() - 10);
    writeFile(line + "/ObservedDepths", depths);
    const auto damaged = snapshot(line);

    VELMRepairReport *reports = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(repair(line, 1, &reports, &count), 0);
    EXPECT_EQ(snapshot(line), damaged);
    ASSERT_EQ(count, 2u);
    const VELMRepairReport &g = reports[0], &d = reports[1];
    EXPECT_TRUE(g.repaired && g.segmentsKept && !g.timeIndexWasValid && !g.summaryWasValid);
    EXPECT_EQ(std::vector<unsigned long long>({g.records, g.summaryRecords, g.droppedBytes}),
              std::vector<unsigned long long>({6, 5, 5}));
    // The cut profile is dropped: the segment file no longer covers the line.
    EXPECT_TRUE(d.repaired && !d.segmentsKept && d.records == 1 && d.droppedBytes == 20 + 2 * 16 - 10);
    VELMRepairFree(reports, count);

    ASSERT_EQ(repair(line, 0, &reports, &count), 0);
    VELMRepairFree(reports, count);
    const auto repaired = snapshot(line);
    for (const char *name : {"Gyro", "GyroLineSegments", "GyroTmIdx"}) EXPECT_EQ(repaired.at(name), clean.at(name)) << name;
    EXPECT_EQ(repaired.at("Gyro.damaged"), gyro);
    EXPECT_EQ(repaired.at("ObservedDepths.damaged"), depths);
    EXPECT_EQ(problems(line), 0u);
    // The recovered segment's depth bounds are those of the profile kept.
    int error = 0;
    TOVO_Sensor *h = ObservedDepthsOpenDir(widen(line).c_str(), L"query", &error);
    ASSERT_NE(h, nullptr);
    wchar_t *name = nullptr;
    unsigned int first = 0, last = 0, status = 1;
    double bounds[4];
    ASSERT_EQ(ObservedDepthsLineSegment(h, 1, &name, &first, &last, &bounds[0], &bounds[1], &bounds[2], &bounds[3],
                                        &status), 0);
    EXPECT_EQ(std::wstring(name) + L" " + std::to_wstring(last), L"recovered 1");
    EXPECT_DOUBLE_EQ(bounds[2], depthBeam(1, 0)[3]);
    EXPECT_DOUBLE_EQ(bounds[3], depthBeam(1, 1)[3]);
    std::free(name);
    ObservedDepthsClose(h);

    // Repaired lines are intact: nothing more is set aside.
    ASSERT_EQ(repair(line, 0, &reports, &count), 0);
    EXPECT_TRUE(!reports[0].repaired && !reports[1].repaired);
    VELMRepairFree(reports, count);
    EXPECT_EQ(snapshot(line), repaired);
}

TEST(LineRepair, ProfileFamiliesCutInsideTheirLastProfileRepairToACleanWriteOfTheWholeOnes) {
    struct Case {
        const char *data;
        void (*write)(const std::string &, int);
    };
    const Case cases[] = {{"ProcessedDepths", processedDepths},
                          {"SideScan", sideScan<SideScanEM100OpenDir, true>},
                          {"SideScan", sideScan<SideScanELACOpenDir, false>},
                          {"NewSSSProcessedSideScan", sideScan<NewSSSProcessedSideScanOpenDir, false>}};
    for (const Case &c : cases) {
        SCOPED_TRACE(c.data);
        TempDir dir;
        const std::string line = dir.file("line"), whole = dir.file("whole"), data = line + "/" + c.data;
        fs::create_directories(line);
        fs::create_directories(whole);
        c.write(line, 3);
        c.write(whole, 2);
        // As a writer killed inside its last profile leaves the line: the
        // trace of the cut profile is written, segment file and index are not.
        fs::resize_file(data, fs::file_size(data) - 5);
        fs::remove(data + "TmIdx");
        fs::remove(data + "LineSegments");
        EXPECT_GT(problems(line), 0u);

        VELMRepairReport *reports = nullptr;
        unsigned int count = 0;
        ASSERT_EQ(repair(line, 0, &reports, &count), 0);
        ASSERT_EQ(count, 1u);
        EXPECT_TRUE(reports[0].repaired && reports[0].records == 2);
        VELMRepairFree(reports, count);
        auto repaired = snapshot(line);
        for (auto at = repaired.begin(); at != repaired.end();)
            at = at->first.find(".damaged") == std::string::npos ? std::next(at) : repaired.erase(at);
        EXPECT_EQ(repaired, snapshot(whole));
        EXPECT_EQ(problems(line), 0u);
    }
}

}  // namespace
