// Several threads at once, each with its own handles of every family, all
// using the process-wide state together. Meant for the ThreadSanitizer build
// (scripts/tsan-test.sh), where any data race fails the run; every build
// still checks that no thread sees another thread's values.
#include "support/test_support.h"
#include "tests/sensors/profile_families.h"

#include <velmio/console.h>
#include <velmio/data_file.hpp>
#include <velmio/geodesy.h>
#include <velmio/messages.hpp>
#include <velmio/navigation.h>
#include <velmio/simple_sensor.h>
#include <velmio/svp.hpp>
#include <velmio/time_conversions.h>
#include <velmio/vessel.hpp>
#include <velmio/vessel_queries.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace velmio::test;

constexpr int kThreads = 4;
constexpr int kRounds = 2;
constexpr int kRecords = 40;

double startTime() { return TmYDStoUTCs80(2009, 83, 3600.0); }

// Each family written by one create handle and read back by a query handle;
// v is the thread's own value, so values crossing threads would show.
void simpleSensor(const std::wstring &dir, double v) {
    int error = 0;
    TOVO_Sensor *h = GyroOpenDir(dir.c_str(), L"create", &error);
    ASSERT_NE(h, nullptr) << error;
    GyroBgnSeqWriteSummary(h);
    GyroBgnSeqWriteLineSegment(h, L"a.all");
    for (int i = 0; i < kRecords; ++i) GyroSeqWrite(h, startTime() + i, v, 0);
    GyroEndSeqWriteLineSegment(h, 0);
    GyroEndSeqWriteSummary(h, 0);
    EXPECT_EQ(GyroClose(h), 0);
    h = GyroOpenDir(dir.c_str(), L"query", &error);
    ASSERT_NE(h, nullptr) << error;
    double t = 0, value = 0;
    unsigned status = 0;
    EXPECT_EQ(GyroRead(h, kRecords, &t, &value, &status), 0);
    EXPECT_NEAR(value, v, 1e-6);
    GyroClose(h);
}

void navigation(const std::wstring &dir, double v) {
    int error = 0;
    TOVO_Sensor *h = NavigationOpenDir(dir.c_str(), L"create", &error);
    ASSERT_NE(h, nullptr) << error;
    NavigationBgnSeqWriteSummary(h, 2);
    NavigationBgnSeqWriteLineSegment(h, L"a.pos");
    for (int i = 0; i < kRecords; ++i) NavigationSeqWrite(h, startTime() + i, 0.5, v / 10, i, 0);
    NavigationEndSeqWriteLineSegment(h, 0);
    NavigationEndSeqWriteSummary(h, 0);
    EXPECT_EQ(NavigationClose(h), 0);
    h = NavigationOpenDir(dir.c_str(), L"query", &error);
    ASSERT_NE(h, nullptr) << error;
    double t, lat, lon, m;
    unsigned status;
    EXPECT_EQ(NavigationRead(h, 3, &t, &lat, &lon, &m, &status), 0);
    EXPECT_NEAR(lon, v / 10, 1e-6);
    NavigationClose(h);
}

// The profile families, one after the other; profile numbers from first on
// give the thread its own ping and beam times.
void profiles(const std::wstring &dir, unsigned first) {
    for (const Family &f : {observedDepths(), slantRange(), tpe()}) {
        TOVO_Sensor *h = f.open(dir, L"create");
        ASSERT_NE(h, nullptr) << f.name;
        ASSERT_EQ(f.beginSegment(h, L"a.all"), 0);
        for (unsigned p = first; p < first + kRecords / 4; ++p) {
            ASSERT_EQ(f.beginProfile(h, p, {3, 1}), 0);
            for (unsigned k = 0; k < 3; ++k) ASSERT_EQ(f.writeBeam(h, p, k), 0);
            ASSERT_EQ(f.endProfile(h), 0);
        }
        ASSERT_EQ(f.endSegment(h, 0), 0);
        EXPECT_EQ(f.close(h), 0);
        h = f.open(dir, L"query");  // TPE's with the block reader (VelmIOCacheSize)
        ASSERT_NE(h, nullptr) << f.name;
        Reading r;
        EXPECT_EQ(f.read(h, 2, 3, r), 0);
        EXPECT_NEAR(r.v[0], beamTimeOf(first + 1, 2), 1e-3) << f.name;
        f.close(h);
    }
}

void dataFile(const std::wstring &dir, int v) {
    dataValue value;
    value.i = v;
    long status = 0;
    {
        VELMDataFile f(MORVAUString(dir), MORVAUString(L"Attrs"), MORVAUString(L"thread"), 77, ACCESS_CREATE, 1,
                       status);
        ASSERT_EQ(status, 0);
        f.AddAttribute(DT_INT, MORVAUString(L"n"));
        for (int r = 0; r < 3; ++r) EXPECT_EQ(f.WriteRecord(startTime() + r, 0, {value}, {1}), 0);
    }
    VELMDataFile f(MORVAUString(dir), MORVAUString(L"Attrs"), MORVAUString(L"thread"), 77, ACCESS_READ, 1, status);
    ASSERT_EQ(status, 0);
    std::vector<dataValue> values;
    std::vector<int> counts;
    double t;
    unsigned int word;
    ASSERT_EQ(f.ReadRecord(t, word, values, counts, 3), 0);
    EXPECT_EQ(values.at(0).i, v);
    f.FreeRecordValues(values);
}

void vessel(const std::wstring &dir, double latency) {
    const std::wstring name = dir + L"/boat";
    {
        VELMVessel v;
        v.setFileName(name.c_str());
        auto gyro = std::make_shared<VELMGyroConfig>(startTime());
        gyro->setLatency(latency);
        v.addSensor(gyro);
        ASSERT_EQ(v.store(), 0);
    }
    int error = 0;
    VELMVesselHandle *v = VELMGetVesselConfiguration((name + L".tvc").c_str(), &error);
    ASSERT_NE(v, nullptr) << error;
    double entry, r1, r2, r3, got = 0, offset;
    int apply;
    wchar_t *s[5] = {};
    EXPECT_EQ(VesselGyroSensorTmIdxConfig(v, startTime() + 1, &entry, &s[0], &s[1], &s[2], &r1, &r2, &r3, &got,
                                          &offset, &apply, &s[3], &s[4]),
              0);
    for (wchar_t *p : s) std::free(p);
    EXPECT_EQ(got, latency);
    VesselConfigFree(v);
}

void soundVelocity(const std::wstring &dir, double velocity) {
    const MORVAUString path(dir + L"/cast.svp");
    {
        VelmSvpFile f(path);
        f.SetSvpSection(startTime(), MORVAUString(L"45:00:00.00"), MORVAUString(L"-63:00:00.00"));
        f.AddSvpValue(startTime(), 10.0, velocity);
        ASSERT_EQ(f.UpdateDataFile(), 0);
    }
    VelmSvpFile f(path);
    ASSERT_EQ(f.ReadInData(), 0);
    double got = 0;
    EXPECT_EQ(f.GetSvpValue(startTime(), 10.0, got), 0);
    EXPECT_NEAR(got, velocity, 1e-6);
}

// The process-wide state: leap seconds and the 1980 offset, the remembered
// datum (threads ask for different names, so it keeps changing), the
// diagnostics redirection and the message bundle.
void sharedState(int id) {
    EXPECT_EQ(TmGetTAIUTCOffset(1981, 182), 20);
    EXPECT_EQ(TmYDStoUTCs80(1981, 182, 0.0), 47260801.0);
    double a = 0, b = 0;
    EXPECT_EQ(HorizDatumLookup(id % 2 ? L"WGS84" : L"NAD27", &a, &b), 0);
    EXPECT_EQ(a, id % 2 ? 6378137.0 : 6378206.4);
    EXPECT_EQ(VELM_IO_StartDiagnostics(), 0);
    EXPECT_EQ(VELM_IO_StopDiagnostics(), 0);
    MORVAUString message;
    EXPECT_EQ(VELMIOUtils::findErrorMessage(5000046, message), 0);
    EXPECT_NE(message.str().find(L"data file"), std::wstring::npos);
}

TEST(Threads, EveryFamilyAndTheSharedStateAtOnce) {
    TempDir root;
    writeText(root.file("datums"), "WGS8 6378137.0 298.257223563\nNAD2 6378206.4 6356583.8\n");
    ::setenv("kbvXdatum", root.file("datums").c_str(), 1);
    ::setenv("CONSOLE", root.file("diagnostics.txt").c_str(), 1);
    ::setenv("VelmIOCacheSize", "4", 1);

    std::vector<std::thread> threads;
    for (int id = 0; id < kThreads; ++id) {
        threads.emplace_back([&root, id] {
            for (int round = 0; round < kRounds; ++round) {
                const std::string line = root.file("line" + std::to_string(id) + "-" + std::to_string(round));
                std::filesystem::create_directory(line);
                const std::wstring dir = widen(line);
                const double v = 1.0 + id + round / 8.0;
                sharedState(id);
                simpleSensor(dir, v / 4);
                navigation(dir, v);
                profiles(dir, 1 + 100 * id + 20 * round);
                dataFile(dir, id * 100 + round);
                vessel(dir, v);
                soundVelocity(dir, 1480.0 + v);
            }
        });
    }
    for (std::thread &t : threads) t.join();
    ::unsetenv("VelmIOCacheSize");
    ::unsetenv("CONSOLE");
    ::unsetenv("kbvXdatum");
}

}  // namespace
