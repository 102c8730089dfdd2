// A repair under failing file operations: it either completes (the line
// checks clean, the damaged files kept aside) or leaves the damaged files
// exactly where they were.
#include <velmio/line_check.h>
#include <velmio/simple_sensor.h>

#include "fault_sweep.h"
#include "support/test_support.h"

#include <filesystem>

using namespace velmio::test;
namespace fs = std::filesystem;

namespace {

TEST(RepairFaults, ARepairCompletesOrLeavesTheDamagedFilesInPlace) {
    TempDir dir;
    const std::string line = dir.file("line");
    fs::create_directories(line);
    int error = 0;
    TOVO_Sensor *h = GyroOpenDir(widen(line).c_str(), L"create", &error);
    ASSERT_NE(h, nullptr);
    const double times[] = {1.0, 2.0, 3.0}, values[] = {0.1, 0.2, 0.3};
    ASSERT_EQ(GyroBgnSeqWriteLineSegment(h, L"a.raw") | GyroSeqWriteRange(h, 3, times, values, nullptr) |
                  GyroEndSeqWriteLineSegment(h, 0) | GyroClose(h),
              0);
    // An interrupted write: no time index, a torn record at the end.
    fs::remove(line + "/GyroTmIdx");
    Bytes data = readFile(line + "/Gyro");
    append(data, {9, 9, 9});
    writeFile(line + "/Gyro", data);
    const Files damaged = snapshot(line);

    sweepFaults(
        [&] { restore(line, damaged); },
        [&] {
            VELMRepairReport *reports = nullptr;
            unsigned int count = 0;
            const int rc = VELMRepairPath(widen(line).c_str(), L"Gyro", 0, &reports, &count);
            VELMRepairFree(reports, count);
            return rc;
        },
        [&](int code) {
            const Files now = snapshot(line);
            if (code == 0) {
                EXPECT_EQ(now.at("Gyro.damaged"), damaged.at("Gyro"));
                EXPECT_EQ(now.at("GyroLineSegments.damaged"), damaged.at("GyroLineSegments"));
                VELMCheckProblem *problems = nullptr;
                unsigned int count = 0;
                EXPECT_EQ(VELMCheckPath(widen(line).c_str(), &problems, &count, nullptr), 0);
                EXPECT_EQ(count, 0u);
                VELMCheckFree(problems, count);
            } else if (code == 5029108) {
                // Not even put back: the bytes as found survive under one name or the other.
                for (const auto &[name, bytes] : damaged)
                    EXPECT_TRUE((now.count(name) && now.at(name) == bytes) ||
                                (now.count(name + ".damaged") && now.at(name + ".damaged") == bytes))
                        << name;
            } else {
                EXPECT_EQ(now, damaged);
            }
        });
}

}  // namespace
