#include <velmio/line_check.h>
#include <velmio/navigation.h>
#include <velmio/simple_sensor.h>

#include "support/test_support.h"

#include <filesystem>
#include <string>
#include <vector>

using namespace velmio::test;
namespace fs = std::filesystem;

namespace {

// A gyro line of three records in one segment, at the given times.
void writeGyro(const std::string &line, std::vector<double> times) {
    fs::create_directories(line);
    int error = -1;
    TOVO_Sensor *h = GyroOpenDir(widen(line).c_str(), L"create", &error);
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(GyroBgnSeqWriteSummary(h), 0);
    ASSERT_EQ(GyroBgnSeqWriteLineSegment(h, L"raw.dat"), 0);
    for (double t : times) ASSERT_EQ(GyroSeqWrite(h, t, 0.5, 0), 0);
    ASSERT_EQ(GyroEndSeqWriteLineSegment(h, 0), 0);
    ASSERT_EQ(GyroEndSeqWriteSummary(h, 0), 0);
    ASSERT_EQ(GyroClose(h), 0);
}

struct Found {
    std::wstring sensor;
    unsigned int number;
    int code;
    bool operator==(const Found &o) const { return sensor == o.sensor && number == o.number && code == o.code; }
};

std::vector<Found> check(const std::string &path, unsigned int expectedLines) {
    VELMCheckProblem *problems = nullptr;
    unsigned int count = 99, lines = 0;
    EXPECT_EQ(silently([&] { return VELMCheckPath(widen(path).c_str(), &problems, &count, &lines); }), 0);
    EXPECT_EQ(lines, expectedLines);
    std::vector<Found> found;
    for (unsigned int i = 0; i < count; ++i) found.push_back({problems[i].sensor, problems[i].number, problems[i].code});
    VELMCheckFree(problems, count);
    return found;
}

TEST(LineCheck, FindsEachDamageInATreeOfLinesAndNothingInWholeOnes) {
    TempDir dir;
    const std::string survey = dir.file("survey");
    writeGyro(survey + "/day1/whole", {100.0, 101.0, 102.0});
    writeGyro(survey + "/day1/backwards", {100.0, 102.0, 101.0});
    writeGyro(survey + "/day2/cut", {100.0, 101.0, 102.0});
    writeGyro(survey + "/day2/no-segments", {100.0, 101.0, 102.0});
    writeGyro(survey + "/day2/interrupted", {100.0, 101.0, 102.0});
    fs::create_directories(survey + "/empty");
    EXPECT_TRUE(check(survey, 5).size() == 1u);  // only the backwards line so far

    fs::resize_file(survey + "/day2/cut/Gyro", fs::file_size(survey + "/day2/cut/Gyro") - 5);
    fs::remove(survey + "/day2/no-segments/GyroLineSegments");
    // One record more than the summary counts, then a torn one.
    Bytes data = readFile(survey + "/day2/interrupted/Gyro");
    data[23] -= 1;
    append(data, {0, 0, 0, 0, 0});
    writeFile(survey + "/day2/interrupted/Gyro", data);
    EXPECT_EQ(check(survey + "/day1", 2), (std::vector<Found>{{L"Gyro", 3, 5029101}}));
    EXPECT_EQ(check(survey + "/day2/cut", 1), (std::vector<Found>{{L"Gyro", 0, 5001206}}));
    EXPECT_EQ(check(survey + "/day2/no-segments", 1), (std::vector<Found>{{L"Gyro", 0, 5028600}}));
    EXPECT_EQ(check(survey + "/day2/interrupted", 1),
              (std::vector<Found>{{L"Gyro", 4, 5029102}, {L"Gyro", 12, 5029103}, {L"Gyro", 5, 5029104}}));
    EXPECT_TRUE(check(survey + "/day1/whole", 1).empty());
    EXPECT_TRUE(check(survey + "/empty", 0).empty());

    VELMCheckProblem *problems = nullptr;
    unsigned int count = 0;
    EXPECT_EQ(VELMCheckPath(widen(dir.file("none")).c_str(), &problems, &count, nullptr), 5000010);
    EXPECT_EQ(VELMCheckPath(nullptr, &problems, &count, nullptr), -1);
}

}  // namespace
