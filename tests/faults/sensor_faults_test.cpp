// Sensor lines under failing file operations: a create reports a documented
// code or leaves a line that reads back, and a status save leaves every
// record readable with its old status or its new one.
#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>

#include "fault_sweep.h"
#include "support/test_support.h"

#include <cmath>
#include <filesystem>
#include <map>
#include <vector>

using namespace velmio::test;
namespace fs = std::filesystem;

namespace {

constexpr int kRecords = 3;
using Allowed = std::vector<double>;

// The edited field holds one of the allowed values.
::testing::AssertionResult oneOf(double value, const Allowed &allowed) {
    for (double a : allowed)
        if (std::fabs(value - a) < 1e-3) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << value << " is none of the allowed values";
}

// The first failure of a sequence of calls, whatever follows it.
struct FirstFailure {
    int code = 0;
    void operator()(int rc) {
        if (code == 0) code = rc;
    }
};

std::map<std::string, Bytes> snapshot(const std::string &dir) {
    std::map<std::string, Bytes> files;
    for (const auto &e : fs::directory_iterator(dir)) files[e.path().string()] = readFile(e.path().string());
    return files;
}

void restore(const std::string &dir, const std::map<std::string, Bytes> &files) {
    fs::remove_all(dir);
    fs::create_directories(dir);
    for (const auto &[path, bytes] : files) writeFile(path, bytes);
}

int createGyro(const std::wstring &line) {
    int error = 0;
    TOVO_Sensor *h = GyroOpenDir(line.c_str(), L"create", &error);
    if (!h) return error;
    FirstFailure first;
    first(GyroBgnSeqWriteSummary(h));
    first(GyroBgnSeqWriteLineSegment(h, L"raw.dat"));
    for (int i = 0; i < kRecords; ++i) first(GyroSeqWrite(h, 100.0 + i, 0.25 * i, 0));
    first(GyroEndSeqWriteLineSegment(h, 0));
    first(GyroEndSeqWriteSummary(h, 0));
    first(GyroClose(h));
    return first.code;
}

// Every record with its value; record 2 with an allowed status.
void expectGyro(const std::wstring &line, const Allowed &status2) {
    int error = -1;
    TOVO_Sensor *h = GyroOpenDir(line.c_str(), L"query", &error);
    ASSERT_EQ(error, 0);
    for (int i = 0; i < kRecords; ++i) {
        double time = 0, value = 0;
        unsigned int status = 99;
        EXPECT_EQ(GyroRead(h, i + 1, &time, &value, &status), 0);
        EXPECT_EQ(time, 100.0 + i);
        EXPECT_NEAR(value, 0.25 * i, 1e-7);
        EXPECT_TRUE(i == 1 ? oneOf(status, status2) : oneOf(status, {0}));
    }
    GyroClose(h);
}

int createNavigation(const std::wstring &line) {
    int error = 0;
    TOVO_Sensor *h = NavigationOpenDir(line.c_str(), L"create", &error);
    if (!h) return error;
    FirstFailure first;
    first(NavigationBgnSeqWriteSummary(h, 1));
    first(NavigationBgnSeqWriteLineSegment(h, L"raw.nav"));
    for (int i = 0; i < kRecords; ++i) first(NavigationSeqWrite(h, 100.0 + i, 0.5 + 1e-6 * i, -1.0, 10.0 * i, 0));
    first(NavigationEndSeqWriteLineSegment(h, 0));
    first(NavigationEndSeqWriteSummary(h, 0));
    first(NavigationClose(h));
    return first.code;
}

void expectNavigation(const std::wstring &line, const Allowed &status2) {
    int error = -1;
    TOVO_Sensor *h = NavigationOpenDir(line.c_str(), L"query", &error);
    ASSERT_EQ(error, 0);
    double times[kRecords], metres[kRecords];
    unsigned int statuses[kRecords];
    ASSERT_EQ(NavigationReadRange(h, 1, kRecords, times, nullptr, nullptr, metres, statuses), 0);
    for (int i = 0; i < kRecords; ++i) {
        EXPECT_EQ(times[i], 100.0 + i);
        EXPECT_NEAR(metres[i], 10.0 * i, 1e-3);
        EXPECT_TRUE(i == 1 ? oneOf(statuses[i], status2) : oneOf(statuses[i], {0}));
    }
    NavigationClose(h);
}

int createDepths(const std::wstring &line) {
    int error = 0;
    TOVO_Sensor *h = ObservedDepthsOpenDir(line.c_str(), L"create", &error);
    if (!h) return error;
    FirstFailure first;
    first(ObservedDepthsBgnSeqWriteSummary(h));
    first(ObservedDepthsBgnSeqWriteLineSegment(h, L"raw.all"));
    for (int p = 0; p < kRecords; ++p) {
        first(ObservedDepthsBgnSeqWriteProfile(h, 2, 1, 100.0 + p, 0, 0, 0));
        for (int b = 0; b < 2; ++b) first(ObservedDepthsSeqWrite(h, 0.001 * b, 1.0, 2.0, 20.0 + p, 0, 0, 0));
        first(ObservedDepthsEndSeqWriteProfile(h));
    }
    first(ObservedDepthsEndSeqWriteLineSegment(h, 0));
    first(ObservedDepthsEndSeqWriteSummary(h, 0));
    first(ObservedDepthsClose(h));
    return first.code;
}

// Every beam with its depth; beam 1 of profile 2 with an allowed depth.
void expectDepths(const std::wstring &line, const Allowed &depth2) {
    int error = -1;
    TOVO_Sensor *h = ObservedDepthsOpenDir(line.c_str(), L"query", &error);
    ASSERT_EQ(error, 0);
    for (int p = 0; p < kRecords; ++p)
        for (int b = 0; b < 2; ++b) {
            double time, y, x, depth = 0, extra;
            unsigned int status;
            EXPECT_EQ(ObservedDepthsRead(h, p + 1, b + 1, &time, &y, &x, &depth, &extra, &status), 0);
            EXPECT_TRUE(p == 1 && b == 0 ? oneOf(depth, depth2) : oneOf(depth, {20.0 + p}));
        }
    ObservedDepthsClose(h);
}

// A created line: a documented code, or every record as written.
template <class Create, class Expect>
void sweepCreate(Create create, Expect expect, double value) {
    TempDir dir;
    const std::wstring line = dir.wpath();
    sweepFaults([&] { restore(dir.path(), {}); }, [&] { return create(line); },
                [&](int code) {
                    if (code == 0) expect(line, Allowed{value});
                });
}

// An edit of a complete line changing the watched field from before to
// after: a failed edit leaves a line that opens with either.
template <class Create, class Edit, class Expect>
void sweepEdit(Create create, Edit edit, Expect expect, double before, double after) {
    TempDir dir;
    const std::wstring line = dir.wpath();
    ASSERT_EQ(create(line), 0);
    const auto complete = snapshot(dir.path());
    sweepFaults([&] { restore(dir.path(), complete); }, [&] { return edit(line); },
                [&](int code) { expect(line, code == 0 ? Allowed{after} : Allowed{before, after}); });
}

template <class Open, class Set, class Save, class Close>
int edit(const std::wstring &line, Open open, Set set, Save save, Close close) {
    int error = 0;
    TOVO_Sensor *h = open(line.c_str(), L"update", &error);
    if (!h) return error;
    FirstFailure first;
    first(set(h));
    first(save(h));
    first(close(h));
    return first.code;
}

TEST(SensorFaults, CreateOfASimpleFamilyNavigationAndProfiles) {
    sweepCreate(createGyro, expectGyro, 0);
    sweepCreate(createNavigation, expectNavigation, 0);
    sweepCreate(createDepths, expectDepths, 21.0);
}

// A status save rewrites the line segment file in place, so a failure part
// way leaves a line that no longer opens; on once that file is replaced
// through a temporary.
TEST(SensorFaults, DISABLED_StatusSavesAndEditsKeepTheLineReadable) {
    sweepEdit(createGyro,
              [](const std::wstring &line) {
                  return edit(line, GyroOpenDir, [](TOVO_Sensor *h) { return GyroSetRecordStatus(h, 2, 0x40); },
                              GyroSaveStatusToDisk, GyroClose);
              },
              expectGyro, 0, 0x40);
    sweepEdit(createNavigation,
              [](const std::wstring &line) {
                  return edit(line, NavigationOpenDir,
                              [](TOVO_Sensor *h) { return NavigationSetRecordStatus(h, 2, 0x40); },
                              NavigationSaveStatusToDisk, NavigationClose);
              },
              expectNavigation, 0, 0x40);
    sweepEdit(createDepths,
              [](const std::wstring &line) {
                  return edit(line, ObservedDepthsOpenDir,
                              [](TOVO_Sensor *h) { return ObservedDepthsUpdateDepth(h, 2, 1, 55.5); },
                              ObservedDepthsSaveStatusToDisk, ObservedDepthsClose);
              },
              expectDepths, 21.0, 55.5);
}

}  // namespace
