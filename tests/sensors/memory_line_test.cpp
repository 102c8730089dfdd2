// A line the library wrote, opened from its bytes in memory: every value
// reads as from the files, an update saves the very bytes the file open
// saves, and a missing file fails with the file open's code.
#include <velmio/side_scan.h>

#include "tests/sensors/profile_families.h"

#include "linestore/memory_line.h"

#include <cstdlib>
#include <sstream>

namespace velmio::test {
namespace {

const std::wstring kMemoryDirectory = L"/in-memory/Project/Vessel/2009-083/Line";

struct MemoryCase {
    const char *stem;  // the data file's name
    H (*open)(const wchar_t *, const wchar_t *, int *);
    int (*close)(H);
    void (*write)(const TempDir &);
    // Every value the handle reads; in update mode also edits what it can.
    void (*visit)(H, bool update, std::ostream &);
    const char *cacheSize;  // VelmIOCacheSize at open, or null
};

void visitGyro(H h, bool update, std::ostream &out) {
    double t = 0, v = 0;
    unsigned status = 0;
    for (unsigned n = 1; n <= 4; ++n)
        out << GyroRead(h, n, &t, &v, &status) << ' ' << t << ' ' << v << ' ' << status << ';';
    if (update) out << GyroSetRecordStatus(h, 2, 0x8000u) << GyroSetLineSegmentStatus(h, 1, 3) << GyroSaveStatusToDisk(h);
}

void visitProfiles(const Family &f, H h, std::ostream &out) {
    for (unsigned p = 1; p <= kProfiles; ++p) {
        for (unsigned b = kLayout[p - 1].first; b < kLayout[p - 1].first + kLayout[p - 1].count; ++b) {
            Reading r;
            out << f.read(h, p, b, r) << ' ' << r << ';';
        }
    }
}

void writeSideScan(const TempDir &dir) {
    H h = openLine(SideScanEM1000OpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    const int amplitudes[] = {-64, 10, 300};
    const unsigned detections[] = {0x81, 3, 0};
    SideScanBgnSeqWriteSummary(h, 3);
    SideScanBgnSeqWriteLineSegment(h, L"a.all");
    for (unsigned p = 0; p < 3; ++p) {
        SideScanBgnSeqWriteProfile(h, 3 - p, 1 + p, 7200.0 + p, 0.0001, 18, -20, -10, 0);
        SideScanSeqWriteSamples(h, 3 - p, amplitudes, detections);
        SideScanEndSeqWriteProfile(h);
        SideScanSeqWriteTrace(h, 2 + p, 12.5 * p);
    }
    SideScanEndSeqWriteLineSegment(h, 0);
    ASSERT_EQ(SideScanEndSeqWriteSummary(h, 1) | SideScanClose(h), 0);
}

void visitSideScan(H h, bool update, std::ostream &out) {
    unsigned n = 0, first = 0, detection = 0, status = 0, profile = 0, bottom = 0;
    double t = 0, interval = 0, depth = 0;
    int gain = 0, a1 = 0, a2 = 0, amplitude = 0;
    for (unsigned p = 1; p <= 3; ++p) {
        out << SideScanReadProfile(h, p, &n, &first, &t, &interval, &gain, &a1, &a2, &status) << ' ' << n;
        for (unsigned k = first; k < first + n; ++k) out << SideScanRead(h, p, k, &amplitude, &detection) << amplitude;
        out << SideScanReadTrace(h, p, &profile, &bottom, &depth) << ' ' << bottom << ' ' << depth << ';';
    }
    if (update) out << SideScanUpdateProfileStatus(h, 2, 0x10000u) << SideScanSaveStatusToDisk(h);
}

const MemoryCase kCases[] = {
    {"Gyro", GyroOpenDir, GyroClose, writeGyroLine, visitGyro, nullptr},
    {"ObservedDepths", ObservedDepthsOpenDir, ObservedDepthsClose,
     [](const TempDir &dir) { writeLine(observedDepths(), dir.wpath()); },
     [](H h, bool update, std::ostream &out) {
         visitProfiles(observedDepths(), h, out);
         if (update) out << ObservedDepthsUpdateStatus(h, 4, 101, 0x10000000u) << ObservedDepthsSaveStatusToDisk(h);
     },
     nullptr},
    // The block reader serves the reads when a cache size is set.
    {"TPE", TPEOpenDir, TPEClose, [](const TempDir &dir) { writeLine(tpe(), dir.wpath()); },
     [](H h, bool update, std::ostream &out) {
         visitProfiles(tpe(), h, out);
         if (update) out << TPESetLineSegmentStatus(h, 2, 0x5u) << TPESetSummaryStatus(h, 0x9u);
     },
     "3"},
    {"SideScan", SideScanEM1000OpenDir, SideScanClose, writeSideScan, visitSideScan, nullptr},
};

class MemoryLineTest : public ::testing::TestWithParam<MemoryCase> {};

TEST_P(MemoryLineTest, ReadsAndSavesAsTheFiles) {
    const MemoryCase &c = GetParam();
    TempDir disk;
    c.write(disk);
    const std::string stem = disk.file(c.stem);
    MemoryLine line;
    std::pair<MemoryFile *, std::string> files[] = {{&line.data, stem},
                                                    {&line.segments, stem + "LineSegments"},
                                                    {&line.timeIndex, stem + "TmIdx"},
                                                    {&line.trace, stem + "Trace"}};
    for (auto &[file, path] : files)
        if (fileExists(path)) file->assign(readFile(path).data(), readFile(path).size());
    const std::vector<unsigned char> written = line.data.bytes;
    const std::wstring name(c.stem, c.stem + std::strlen(c.stem));
    const MountedLine mount(kMemoryDirectory, name.c_str(), line);
    if (c.cacheSize) setenv("VelmIOCacheSize", c.cacheSize, 1);
    auto pass = [&](const std::wstring &dir, const wchar_t *mode) {
        int error = -1;
        H h = c.open(dir.c_str(), mode, &error);
        EXPECT_EQ(error, 0);
        if (!h) return std::string();
        std::ostringstream out;
        out.precision(17);
        c.visit(h, std::wstring(mode) == L"update", out);
        out << " close " << c.close(h);
        return out.str();
    };
    const std::string read = pass(disk.wpath(), L"query");
    EXPECT_EQ(pass(kMemoryDirectory, L"query"), read);
    EXPECT_EQ(pass(kMemoryDirectory, L"update"), pass(disk.wpath(), L"update"));
    for (auto &[file, path] : files) EXPECT_EQ(file->bytes, readFile(path)) << path;
    EXPECT_EQ(pass(kMemoryDirectory, L"query"), pass(disk.wpath(), L"query"));
    if (c.cacheSize) unsetenv("VelmIOCacheSize");
    EXPECT_NE(line.data.bytes, written);  // the update saved something

    // A missing time index fails as on the disk; a line in memory is never written afresh.
    int onDisk = 0, inMemory = 0;
    std::remove((stem + "TmIdx").c_str());
    line.timeIndex.exists = false;
    EXPECT_EQ(c.open(disk.wpath().c_str(), L"query", &onDisk), nullptr);
    EXPECT_EQ(c.open(kMemoryDirectory.c_str(), L"query", &inMemory), nullptr);
    EXPECT_NE(onDisk, 0);
    EXPECT_EQ(inMemory, onDisk);
    EXPECT_EQ(c.open(kMemoryDirectory.c_str(), L"create", &inMemory), nullptr);
    EXPECT_EQ(inMemory, 5000021);
}

INSTANTIATE_TEST_SUITE_P(Families, MemoryLineTest, ::testing::ValuesIn(kCases),
                         [](const auto &info) { return std::string(info.param.stem); });

}  // namespace
}  // namespace velmio::test
