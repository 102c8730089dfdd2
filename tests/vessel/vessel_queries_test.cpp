#include <velmio/time_conversions.h>
#include <velmio/vessel.hpp>
#include <velmio/vessel_queries.h>

#include "support/test_support.h"

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace velmio::test;

namespace {
// 2004-100 00:00:00, computed when called: the time conversions are not
// ready during static initialisation of another file.
double t0() { return TmYDStoUTCs80(2004, 100, 0.0); }
constexpr double kDeg = 0.017453292519943295;
using V = std::vector<double>;

// A vessel file holding one entry of each kind the queries read, at t0().
std::wstring writeVessel(const TempDir &dir, const std::string &depthClass = "Swath") {
    writeText(dir.file("boat.tvc"),
              "<VELMVesselConfig Version=\"2.0\">"
              "<GyroSensor><TimeStamp value=\"2004-100 00:00:00\"><Model value=\"Gy\"/><Latency value=\"0.01\"/>"
              "<ApplyFlag value=\"Yes\"/><Offsets><Gyro><Entry Azimuth=\"0\" Offset=\"2\"/></Gyro></Offsets>"
              "<Comment value=\"c\"/></TimeStamp></GyroSensor>"
              "<HeaveSensor><TimeStamp value=\"2004-100 00:00:00\"><Offsets X=\"1\" Y=\"2\" Z=\"3\" Heave=\"4\"/>"
              "</TimeStamp></HeaveSensor>"
              "<NavSensor><TimeStamp value=\"2004-100 00:00:00\"><Ellipse value=\"WGS84\"/></TimeStamp></NavSensor>"
              "<PitchSensor><TimeStamp value=\"2004-100 00:00:00\"><Offsets Pitch=\"90\"/></TimeStamp></PitchSensor>"
              "<RollSensor><TimeStamp value=\"2004-100 00:00:00\"><Offsets Roll=\"-90\"/></TimeStamp></RollSensor>"
              "<SVPSensor><TimeStamp value=\"2004-100 00:00:00\"><DualHead value=\"Yes\"/>"
              "<MountAngle Azimuth=\"180\" Roll2=\"45\"/><Offsets Z2=\"7\"/></TimeStamp></SVPSensor>"
              "<TowedSensor><TimeStamp value=\"2004-100 00:00:00\"><Offsets Layback=\"30\"/></TimeStamp></TowedSensor>"
              "<WaterlineHeight><TimeStamp value=\"2004-100 00:00:00\"><WaterLine value=\"1.5\"/>"
              "<StdDev Waterline=\"0.1\"/><Authorization value=\"a\"/></TimeStamp></WaterlineHeight>"
              "<DraftSensor><TimeStamp value=\"2004-100 00:00:00\"><DraftEntries><Entry Speed=\"8\" Draft=\"0.3\"/>"
              "<Entry Speed=\"2\" Draft=\"0.1\"/></DraftEntries></TimeStamp></DraftSensor>"
              "<DepthSensor><TimeStamp value=\"2004-100 00:00:00\"><SensorClass value=\"" +
                  depthClass +
                  "\"/><TransducerEntries>"
                  "<Transducer Number=\"1\" StartBeam=\"1\" Model=\"M1\"><Offsets X=\"1\" Latency=\"0.5\"/>"
                  "<MountAngle Pitch=\"10\"/><MRUAlignment Gyro=\"180\"/></Transducer>"
                  "<Transducer Number=\"2\" StartBeam=\"101\"><Offsets X=\"2\" Latency=\"0.25\"/>"
                  "<MountAngle Roll=\"-20\"/><SquatPercFactor value=\"50\"/></Transducer>"
                  "</TransducerEntries></TimeStamp></DepthSensor>"
                  "</VELMVesselConfig>");
    return dir.wfile("boat.tvc");
}

struct VesselFree {
    void operator()(VELMVesselHandle *v) const { VesselConfigFree(v); }
};
using Vessel = std::unique_ptr<VELMVesselHandle, VesselFree>;

Vessel openVessel(const std::wstring &path) {
    int error = -1;
    Vessel vessel(VELMGetVesselConfiguration(path.c_str(), &error));
    EXPECT_EQ(error, 0);
    return vessel;
}

// A query called with every output left out: only its status is wanted.
template <typename... Outputs>
std::function<int(VELMVesselHandle *, double)> withNulls(int (*query)(VELMVesselHandle *, double, Outputs...)) {
    return [query](VELMVesselHandle *v, double t) { return query(v, t, static_cast<Outputs>(nullptr)...); };
}
}  // namespace

TEST(VesselQueries, EachQueryTellsAMissingKindFromATimeBeforeItsFirstEntry) {
    TempDir dir;
    Vessel full = openVessel(writeVessel(dir));
    VELMVessel empty;
    const struct {
        const char *name;
        int noList, beforeFirst;
        std::function<int(VELMVesselHandle *, double)> query;
    } queries[] = {
        {"RP", 5000407, 5000406, withNulls(VesselRPTmIdxConfig)},
        {"Towed", 5000408, 5000409, withNulls(VesselTowedTmIdxConfig)},
        {"SVP", 5000410, 5000411, withNulls(VesselSVPTmIdxConfig)},
        {"Gyro", 5000412, 5000413, withNulls(VesselGyroSensorTmIdxConfig)},
        {"Heave", 5000414, 5000415, withNulls(VesselHeaveSensorTmIdxConfig)},
        {"Navigation", 5000416, 5000417, withNulls(VesselNavigationSensorTmIdxConfig)},
        {"Pitch", 5000418, 5000419, withNulls(VesselPitchSensorTmIdxConfig)},
        {"Roll", 5000420, 5000421, withNulls(VesselRollSensorTmIdxConfig)},
        {"Draft", 5000422, 5000423, withNulls(VesselDraftTmIdxConfig)},
        {"Depth", 5000405, 5000405, withNulls(VesselDepthSensorTmIdxConfig)},
        {"SweepTPE", 5000405, 5000405, withNulls(VesselSweepTPETmIdxConfig)},
        {"Orientation", 5000405, 5000405, withNulls(VesselDepthSensorOrientationTmIdxConfig)},
        {"Latency", 5000405, 5000405, withNulls(VesselDepthSensorLatencyTmIdxConfig)},
    };
    for (const auto &q : queries) {
        EXPECT_EQ(q.query(full.get(), t0() + 5.0), 0) << q.name;
        EXPECT_EQ(q.query(full.get(), t0() - 1.0), q.beforeFirst) << q.name;
        EXPECT_EQ(q.query(&empty, t0()), q.noList) << q.name;
        EXPECT_EQ(q.query(nullptr, t0()), -1) << q.name;
    }
}

TEST(VesselQueries, AnglesLeaveInRadiansOffsetsAsHeldAndTextsAsCopies) {
    TempDir dir;
    Vessel vessel = openVessel(writeVessel(dir));
    double entryTime, r1 = 9, r2 = 9, r3 = 9, latency, offset;
    wchar_t *manufacturer = reinterpret_cast<wchar_t *>(1), *model, *serial, *comment, *authorization;
    int apply = 0;
    ASSERT_EQ(VesselGyroSensorTmIdxConfig(vessel.get(), t0() + 100.0, &entryTime, &manufacturer, &model, &serial, &r1,
                                          &r2, &r3, &latency, &offset, &apply, &comment, &authorization),
              0);
    EXPECT_EQ(V({entryTime, r1, r2, r3, latency, double(apply)}), V({t0(), 0, 0, 0, 0.01, 1}));
    EXPECT_DOUBLE_EQ(offset, 0.03490658503988659);
    EXPECT_EQ(manufacturer, nullptr);  // unset texts stay null
    EXPECT_EQ(authorization, nullptr);
    EXPECT_STREQ(model, L"Gy");
    EXPECT_STREQ(comment, L"c");
    std::free(model);
    std::free(comment);

    double pitch = 0, roll = 0;
    ASSERT_EQ(VesselPitchSensorTmIdxConfig(vessel.get(), t0(), nullptr, nullptr, nullptr, nullptr, nullptr, &pitch,
                                           nullptr, nullptr, nullptr),
              0);
    ASSERT_EQ(VesselRollSensorTmIdxConfig(vessel.get(), t0(), nullptr, nullptr, nullptr, nullptr, nullptr, &roll,
                                          nullptr, nullptr, nullptr),
              0);
    EXPECT_DOUBLE_EQ(pitch, 90 * kDeg);
    EXPECT_DOUBLE_EQ(roll, -90 * kDeg);

    double azimuth, roll2, z2, heave, x;
    int dual = 0;
    ASSERT_EQ(VesselSVPTmIdxConfig(vessel.get(), t0(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &azimuth,
                                   nullptr, nullptr, &z2, nullptr, &roll2, nullptr, &dual, nullptr, nullptr),
              0);
    EXPECT_DOUBLE_EQ(azimuth, 180 * kDeg);
    EXPECT_DOUBLE_EQ(roll2, 45 * kDeg);
    EXPECT_EQ(V({z2, double(dual)}), V({7, 1}));
    ASSERT_EQ(VesselHeaveSensorTmIdxConfig(vessel.get(), t0(), nullptr, nullptr, nullptr, nullptr, &x, nullptr,
                                           nullptr, nullptr, &heave, nullptr, nullptr, nullptr),
              0);
    EXPECT_EQ(V({x, heave}), V({1, 4}));

    double height, stdDev;
    ASSERT_EQ(VesselRPTmIdxConfig(vessel.get(), t0(), nullptr, &height, &stdDev, nullptr, &authorization), 0);
    EXPECT_EQ(V({height, stdDev}), V({1.5, 0.1}));
    EXPECT_STREQ(authorization, L"a");
    VELMIO_free(authorization);

    int rows = 0;
    double *speeds = nullptr, *drafts = nullptr;
    ASSERT_EQ(VesselDraftTmIdxConfig(vessel.get(), t0(), nullptr, &rows, &speeds, &drafts, nullptr, nullptr, nullptr),
              0);
    ASSERT_EQ(rows, 2);
    EXPECT_EQ(V(speeds, speeds + 2), V({2, 8}));
    EXPECT_EQ(V(drafts, drafts + 2), V({0.1, 0.3}));
    std::free(speeds);
    std::free(drafts);
}

TEST(VesselQueries, SwathDepthGivesTwoHeadsAndTheirBeamCounts) {
    TempDir dir;
    Vessel vessel = openVessel(writeVessel(dir, "Swath"));
    wchar_t *sensorClass = nullptr, *model = nullptr;
    int count = 0, firstHead = 0, total = 0;
    double x1, pitch1, latency1, x2, roll2, latency2;
    double *sweepX = reinterpret_cast<double *>(1);
    ASSERT_EQ(VesselDepthSensorTmIdxConfig(vessel.get(), t0(), nullptr, &sensorClass, &count, &firstHead, &total,
                                           nullptr, &model, nullptr, &x1, nullptr, nullptr, &pitch1, nullptr, nullptr,
                                           &latency1, &x2, nullptr, nullptr, nullptr, &roll2, nullptr, &latency2,
                                           &sweepX, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr),
              0);
    EXPECT_STREQ(sensorClass, L"Swath");
    EXPECT_STREQ(model, L"M1");
    EXPECT_EQ(std::vector<int>({count, firstHead, total}), std::vector<int>({2, 100, 200}));
    EXPECT_EQ(V({x1, latency1, x2, latency2}), V({1, 0.5, 2, 0.25}));
    EXPECT_DOUBLE_EQ(pitch1, 10 * kDeg);
    EXPECT_DOUBLE_EQ(roll2, -20 * kDeg);
    EXPECT_EQ(sweepX, nullptr);
    std::free(sensorClass);
    std::free(model);
}

TEST(VesselQueries, SweepDepthInAnyCaseGivesPerTransducerArrays) {
    TempDir dir;
    Vessel vessel = openVessel(writeVessel(dir, "SWEEP"));
    int count = 0;
    double *x = nullptr, *pitch = nullptr, *latency = nullptr;
    double x1 = 5;
    ASSERT_EQ(VesselDepthSensorTmIdxConfig(vessel.get(), t0(), nullptr, nullptr, &count, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, &x1, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &x,
                                           nullptr, nullptr, &pitch, nullptr, nullptr, &latency, nullptr, nullptr),
              0);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(x1, 0.0);  // single-head outputs stay cleared
    EXPECT_EQ(V({x[0], x[1], latency[0], latency[1]}), V({1, 2, 0.5, 0.25}));
    EXPECT_DOUBLE_EQ(pitch[0], 10 * kDeg);
    std::free(x), std::free(pitch), std::free(latency);

    double *fixed = nullptr, *gyro = nullptr, *squat = nullptr, *roll = nullptr, *lat = nullptr;
    ASSERT_EQ(VesselSweepTPETmIdxConfig(vessel.get(), t0(), &count, &fixed, &gyro, nullptr, &squat, nullptr), 0);
    EXPECT_EQ(V({fixed[0], squat[0], squat[1]}), V({1, 100, 50}));
    EXPECT_DOUBLE_EQ(gyro[0], 180 * kDeg);
    ASSERT_EQ(VesselDepthSensorOrientationTmIdxConfig(vessel.get(), t0(), &count, nullptr, &roll, nullptr), 0);
    EXPECT_DOUBLE_EQ(roll[1], -20 * kDeg);
    ASSERT_EQ(VesselDepthSensorLatencyTmIdxConfig(vessel.get(), t0(), &count, &lat), 0);
    EXPECT_EQ(lat[0], 0.5);
    for (double *a : {fixed, gyro, squat, roll, lat}) std::free(a);
}

TEST(VesselQueries, OpeningKeepsReadableVesselsAndDropsVersion1Files) {
    TempDir dir;
    int error = -1;
    EXPECT_EQ(VELMGetVesselConfiguration(nullptr, &error), nullptr);
    EXPECT_EQ(error, 0);

    writeText(dir.file("other.tvc"), "<SomethingElse/>");
    testing::internal::CaptureStdout();
    Vessel notVessel(VELMGetVesselConfiguration(dir.wfile("other").c_str(), &error));
    EXPECT_NE(notVessel, nullptr);
    EXPECT_EQ(error, 5100001);

    writeText(dir.file("old.tvc"), "version one text");
    EXPECT_EQ(VELMGetVesselConfiguration(dir.wfile("old.tvc").c_str(), &error), nullptr);
    EXPECT_EQ(error, 5000401);
    EXPECT_EQ(VELMVesselConvert(dir.wfile("old").c_str()), 5000401);
    EXPECT_EQ(VELMVesselImport(nullptr, nullptr), 5000401);
    EXPECT_NE(testing::internal::GetCapturedStdout().find(
                  dir.file("old") + " is a Version 1 VCF file.  Attempting to load using Version 1 API\n"),
              std::string::npos);
    EXPECT_FALSE(fileExists(dir.file("old.tvc.tvc")));
}

TEST(VesselQueries, InstallationParameterFileNameNeverOverflows) {
    wchar_t name[64];
    ASSERT_EQ(getInstallationParameterFileName(L"C:\\data\\", name), 0);
    EXPECT_STREQ(name, L"C:\\data/InstallationParameter.xml");
    wchar_t small[9];
    small[8] = L'#';
    EXPECT_EQ(getInstallationParameterFileNameN(L"/data", small, 8), -1);
    EXPECT_STREQ(small, L"/data/I");
    EXPECT_EQ(small[8], L'#');

    std::wstring buffer(VELMIO_INSTALLATION_PARAMETER_CAPACITY + 4, L'#');
    const std::wstring longDirectory(600, L'd');
    EXPECT_EQ(getInstallationParameterFileName(longDirectory.c_str(), buffer.data()), -1);
    EXPECT_EQ(std::wcslen(buffer.c_str()), static_cast<std::size_t>(VELMIO_INSTALLATION_PARAMETER_CAPACITY - 1));
    EXPECT_EQ(buffer[VELMIO_INSTALLATION_PARAMETER_CAPACITY], L'#');
    EXPECT_EQ(getInstallationParameterFileName(nullptr, name), -1);
}
