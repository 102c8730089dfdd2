// Sensor lines under failing file operations: a create reports a code or
// leaves a line that reads back whole, and an edit leaves every record
// readable with its old value or its new one.
#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>

#include "fault_sweep.h"
#include "support/test_support.h"

#include <vector>

using namespace velmio::test;

namespace {

using Values = std::vector<double>;  // what a line holds, flattened
const double kTimes[] = {100.0, 101.0, 102.0};

// The first failure of a sequence of calls, whatever follows it.
struct FirstFailure {
    int code = 0;
    FirstFailure &operator<<(int rc) {
        if (code == 0) code = rc;
        return *this;
    }
};

// One family: how to create the line, edit record 2 of it, and read it.
struct Line {
    int (*create)(const wchar_t *line);
    int (*edit)(const wchar_t *line);
    Values (*read)(const wchar_t *line);  // empty when it does not open
};

const Line kGyro = {
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = GyroOpenDir(line, L"create", &error);
        if (!h) return error;
        const double values[] = {0.0, 0.25, 0.5};
        return (FirstFailure() << GyroBgnSeqWriteSummary(h) << GyroBgnSeqWriteLineSegment(h, L"raw.dat")
                               << GyroSeqWriteRange(h, 3, kTimes, values, nullptr) << GyroEndSeqWriteLineSegment(h, 0)
                               << GyroEndSeqWriteSummary(h, 0) << GyroClose(h))
            .code;
    },
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = GyroOpenDir(line, L"update", &error);
        if (!h) return error;
        return (FirstFailure() << GyroSetRecordStatus(h, 2, 0x40) << GyroSaveStatusToDisk(h) << GyroClose(h)).code;
    },
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = GyroOpenDir(line, L"query", &error);
        if (!h) return Values();
        Values v(9);
        unsigned int statuses[3];
        const int rc = GyroReadRange(h, 1, 3, v.data(), v.data() + 3, statuses);
        GyroClose(h);
        for (int i = 0; i < 3; ++i) v[6 + i] = statuses[i];
        return rc ? Values() : v;
    }};

const Line kNavigation = {
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = NavigationOpenDir(line, L"create", &error);
        if (!h) return error;
        const double lat[] = {0.5, 0.5, 0.5}, lon[] = {-1.0, -1.0, -1.0}, metres[] = {0.0, 10.0, 20.0};
        return (FirstFailure() << NavigationBgnSeqWriteSummary(h, 1) << NavigationBgnSeqWriteLineSegment(h, L"raw")
                               << NavigationSeqWriteRange(h, 3, kTimes, lat, lon, metres, nullptr)
                               << NavigationEndSeqWriteLineSegment(h, 0) << NavigationEndSeqWriteSummary(h, 0)
                               << NavigationClose(h))
            .code;
    },
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = NavigationOpenDir(line, L"update", &error);
        if (!h) return error;
        return (FirstFailure() << NavigationSetRecordStatus(h, 2, 0x40) << NavigationSaveStatusToDisk(h)
                               << NavigationClose(h))
            .code;
    },
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = NavigationOpenDir(line, L"query", &error);
        if (!h) return Values();
        Values v(9);
        unsigned int statuses[3];
        const int rc = NavigationReadRange(h, 1, 3, v.data(), nullptr, nullptr, v.data() + 3, statuses);
        NavigationClose(h);
        for (int i = 0; i < 3; ++i) v[6 + i] = statuses[i];
        return rc ? Values() : v;
    }};

const Line kDepths = {
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = ObservedDepthsOpenDir(line, L"create", &error);
        if (!h) return error;
        FirstFailure first;
        first << ObservedDepthsBgnSeqWriteSummary(h) << ObservedDepthsBgnSeqWriteLineSegment(h, L"raw");
        const double offsets[] = {0.0, 0.001}, ys[] = {1.0, 1.0}, xs[] = {2.0, 2.0};
        for (int p = 0; p < 3; ++p) {
            const double depths[] = {20.0 + p, 30.0 + p};
            first << ObservedDepthsBgnSeqWriteProfile(h, 2, 1, kTimes[p], 0, 0, 0)
                  << ObservedDepthsSeqWriteBeams(h, 2, offsets, ys, xs, depths, nullptr)
                  << ObservedDepthsEndSeqWriteProfile(h);
        }
        return (first << ObservedDepthsEndSeqWriteLineSegment(h, 0) << ObservedDepthsEndSeqWriteSummary(h, 0)
                      << ObservedDepthsClose(h))
            .code;
    },
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = ObservedDepthsOpenDir(line, L"update", &error);
        if (!h) return error;
        return (FirstFailure() << ObservedDepthsUpdateDepth(h, 2, 1, 55.5) << ObservedDepthsSaveStatusToDisk(h)
                               << ObservedDepthsClose(h))
            .code;
    },
    [](const wchar_t *line) {
        int error = 0;
        TOVO_Sensor *h = ObservedDepthsOpenDir(line, L"query", &error);
        if (!h) return Values();
        Values v(6);
        unsigned int offsets[4];
        const int rc = ObservedDepthsReadBeams(h, 1, 3, 6, offsets, nullptr, nullptr, nullptr, v.data(), nullptr,
                                               nullptr);
        ObservedDepthsClose(h);
        return rc ? Values() : v;
    }};

TEST(SensorFaults, CreateOfASimpleFamilyNavigationAndProfiles) {
    for (const Line *family : {&kGyro, &kNavigation, &kDepths}) {
        TempDir dir;
        ASSERT_EQ(family->create(dir.wpath().c_str()), 0);
        const Values whole = family->read(dir.wpath().c_str());
        sweepFaults([&] { restore(dir.path(), {}); }, [&] { return family->create(dir.wpath().c_str()); },
                    [&](int code) { EXPECT_TRUE(code != 0 || family->read(dir.wpath().c_str()) == whole); });
    }
}

TEST(SensorFaults, StatusSavesAndEditsLeaveTheOldValueOrTheNew) {
    for (const Line *family : {&kGyro, &kNavigation, &kDepths}) {
        TempDir dir;
        ASSERT_EQ(family->create(dir.wpath().c_str()), 0);
        const Files before = snapshot(dir.path());
        const Values old = family->read(dir.wpath().c_str());
        ASSERT_EQ(family->edit(dir.wpath().c_str()), 0);
        const Values edited = family->read(dir.wpath().c_str());
        ASSERT_NE(old, edited);
        sweepFaults([&] { restore(dir.path(), before); }, [&] { return family->edit(dir.wpath().c_str()); },
                    [&](int code) {
                        const Values now = family->read(dir.wpath().c_str());
                        EXPECT_TRUE(now == edited || (code != 0 && now == old));
                    });
    }
}

}  // namespace
