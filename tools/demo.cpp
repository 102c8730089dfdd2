// velmio demo: writes a small but complete survey line, through the same
// calling orders any processing tool uses: navigation, attitude and heave at
// 10 Hz, tide, multibeam observed depths, their error estimates, and a sound
// velocity profile.
#include "command.h"

#include <velmio/linestore.h>
#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>
#include <velmio/svp.hpp>
#include <velmio/time_conversions.h>
#include <velmio/tpe.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace velmio::tool {
namespace {

constexpr double kDegree = 0.017453292519943295;
constexpr double kSeconds = 300.0;  // length of the line in time
const wchar_t *const kSources[2] = {L"demo_0001.raw", L"demo_0002.raw"};

struct Failure {
    const char *what;
    int code;
};

// Throws nothing: each step reports its first failing call.
#define CHECK(call, what)                       \
    do {                                        \
        int rc_ = (call);                       \
        if (rc_ != 0) return Failure{what, rc_}; \
    } while (0)

using OpenFn = TOVO_Sensor *(*)(const wchar_t *, const wchar_t *, int *);

Failure writeNavigation(const std::wstring &line, double start) {
    int err = 0;
    TOVO_Sensor *h = NavigationOpenDir(line.c_str(), L"create", &err);
    if (!h) return {"NavigationOpenDir", err};
    CHECK(NavigationBgnSeqWriteSummary(h, 1), "NavigationBgnSeqWriteSummary");
    for (int segment = 0; segment < 2; ++segment) {
        CHECK(NavigationBgnSeqWriteLineSegment(h, kSources[segment]), "NavigationBgnSeqWriteLineSegment");
        for (int i = 0; i < 150; ++i) {
            const double t = segment * 150 + i;
            // North-east at about 2.5 m/s from 43 N, 65 W.
            const double lat = (43.0 + t * 1.6e-5) * kDegree, lon = (-65.0 + t * 2.2e-5) * kDegree;
            CHECK(NavigationSeqWrite(h, start + t, lat, lon, 0.0, 0), "NavigationSeqWrite");
        }
        CHECK(NavigationEndSeqWriteLineSegment(h, 0), "NavigationEndSeqWriteLineSegment");
    }
    CHECK(NavigationEndSeqWriteSummary(h, 0), "NavigationEndSeqWriteSummary");
    CHECK(NavigationClose(h), "NavigationClose");
    return {nullptr, 0};
}

Failure writeSimple(const std::wstring &line, const char *name, OpenFn open, double start, double rate,
                    double (*value)(double)) {
    int err = 0;
    TOVO_Sensor *h = open(line.c_str(), L"create", &err);
    if (!h) return {name, err};
    CHECK(SimpleSensorBgnSeqWriteSummary(h), name);
    const int count = static_cast<int>(kSeconds * rate);
    for (int segment = 0; segment < 2; ++segment) {
        CHECK(SimpleSensorBgnSeqWriteLineSegment(h, kSources[segment]), name);
        for (int i = segment * count / 2; i < (segment + 1) * count / 2; ++i) {
            const double t = i / rate;
            CHECK(SimpleSensorSeqWrite(h, start + t, value(t), 0), name);
        }
        CHECK(SimpleSensorEndSeqWriteLineSegment(h, 0), name);
    }
    CHECK(SimpleSensorEndSeqWriteSummary(h, 0), name);
    CHECK(SimpleSensorClose(h), name);
    return {nullptr, 0};
}

double depthAt(int ping, int beam) {
    const double across = (beam - 51) * 1.2;  // metres from nadir
    return 48.0 + 0.02 * ping + 0.0004 * across * across + 0.3 * std::sin(ping * 0.2 + beam * 0.1);
}

Failure writeDepths(const std::wstring &line, double start) {
    int err = 0;
    TOVO_Sensor *h = ObservedDepthsOpenDir(line.c_str(), L"create", &err);
    if (!h) return {"ObservedDepthsOpenDir", err};
    TOVO_Sensor *tpe = TPEOpenDir(line.c_str(), L"create", &err);
    if (!tpe) {
        ObservedDepthsClose(h);
        return {"TPEOpenDir", err};
    }
    CHECK(ObservedDepthsBgnSeqWriteSummary(h), "ObservedDepthsBgnSeqWriteSummary");
    CHECK(ObservedDepthsSetToolType(h, 1), "ObservedDepthsSetToolType");
    CHECK(TPEBgnSeqWriteSummary(tpe), "TPEBgnSeqWriteSummary");
    const int beams = 101;
    for (int segment = 0; segment < 2; ++segment) {
        CHECK(ObservedDepthsBgnSeqWriteLineSegment(h, kSources[segment]), "ObservedDepthsBgnSeqWriteLineSegment");
        CHECK(TPEBgnSeqWriteLineSegment(tpe, kSources[segment]), "TPEBgnSeqWriteLineSegment");
        for (int ping = segment * 75; ping < (segment + 1) * 75; ++ping) {
            const double t = start + ping * 2.0;
            CHECK(ObservedDepthsBgnSeqWriteProfile(h, beams, 1, t, 0.0, 0.0, 0), "ObservedDepthsBgnSeqWriteProfile");
            CHECK(TPEBgnSeqWriteProfile(tpe, beams, 1, t, 0, 0), "TPEBgnSeqWriteProfile");
            for (int beam = 1; beam <= beams; ++beam) {
                const double depth = depthAt(ping, beam), across = (beam - 51) * 1.2;
                const double beamTime = t + 0.0001 * beam;
                CHECK(ObservedDepthsSeqWrite(h, beamTime, 0.0, across, depth, 0.0, 0.0, 0), "ObservedDepthsSeqWrite");
                CHECK(TPESeqWrite(tpe, beamTime, 0.15 + 0.002 * std::fabs(across), 0.25, 0), "TPESeqWrite");
            }
            CHECK(ObservedDepthsEndSeqWriteProfile(h), "ObservedDepthsEndSeqWriteProfile");
            CHECK(TPEEndSeqWriteProfile(tpe), "TPEEndSeqWriteProfile");
        }
        CHECK(ObservedDepthsEndSeqWriteLineSegment(h, 0), "ObservedDepthsEndSeqWriteLineSegment");
        CHECK(TPEEndSeqWriteLineSegment(tpe, 0), "TPEEndSeqWriteLineSegment");
    }
    CHECK(ObservedDepthsEndSeqWriteSummary(h, 0), "ObservedDepthsEndSeqWriteSummary");
    CHECK(TPEEndSeqWriteSummary(tpe, 0), "TPEEndSeqWriteSummary");
    CHECK(ObservedDepthsClose(h), "ObservedDepthsClose");
    CHECK(TPEClose(tpe), "TPEClose");
    return {nullptr, 0};
}

Failure writeProfile(const std::wstring &line, double start) {
    VelmSvpFile svp(MORVAUString(line + L"/Svp"));
    CHECK(svp.SetSvpSection(start, MORVAUString(L"43:00:00.00"), MORVAUString(L"-65:00:00.00")), "SetSvpSection");
    for (int depth = 0; depth <= 60; depth += 5)
        CHECK(svp.AddSvpValue(start, depth, 1480.0 + 0.3 * depth - 0.002 * depth * depth), "AddSvpValue");
    CHECK(svp.UpdateDataFile(), "UpdateDataFile");
    return {nullptr, 0};
}

}  // namespace

int runDemo(const Args &args) {
    if (args.size() != 1) {
        std::fprintf(stderr, "%s\n", text("ToolDemoUsage", "usage: velmio demo LINE_DIRECTORY").c_str());
        return 2;
    }
    const std::wstring line = widen(args[0]);
    int rc = LineCreateHierarchy(line.c_str());
    if (rc != 0) return reportError("LineCreateHierarchy", rc);
    const double start = TmYDStoUTCs80(2004, 123, TmHMSXtoS(12, 0, 0, 0.0));
    Failure steps[] = {
        writeNavigation(line, start),
        writeSimple(line, "Gyro", GyroOpenDir, start, 10.0, [](double t) { return (45.0 + 2.0 * std::sin(t / 7.0)) * kDegree; }),
        writeSimple(line, "Heave", HeaveOpenDir, start, 10.0, [](double t) { return 0.4 * std::sin(t * 1.3); }),
        writeSimple(line, "Pitch", PitchOpenDir, start, 10.0, [](double t) { return 1.5 * kDegree * std::sin(t * 0.9); }),
        writeSimple(line, "Roll", RollOpenDir, start, 10.0, [](double t) { return 3.0 * kDegree * std::sin(t * 0.6); }),
        writeSimple(line, "Tide", TideOpenDir, start, 1.0 / 60.0, [](double t) { return 1.2 + 0.0001 * t; }),
        writeDepths(line, start),
        writeProfile(line, start),
    };
    for (const Failure &f : steps)
        if (f.what) return reportError(f.what, f.code);
    std::printf(text("ToolDemoWritten", "demo line written: %s").c_str(), args[0].c_str());
    std::printf("\n");
    return 0;
}

}  // namespace velmio::tool
