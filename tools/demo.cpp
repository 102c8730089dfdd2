// velmio demo: writes a small survey (or one line of it) through the same
// calling orders any processing tool uses: both positions, every one-value
// sensor, multibeam observed depths with their error estimates and processed
// depths, slant ranges, an EM1000-like side scan, a sound velocity cast per
// line and a vessel configuration per vessel.
// Each family is written by a function of its own.
#include "command.h"

#include <velmio/linestore.h>
#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>
#include <velmio/simple_sensor.h>
#include <velmio/slant_range.h>
#include <velmio/svp.hpp>
#include <velmio/time_conversions.h>
#include <velmio/tpe.h>
#include <velmio/vessel.hpp>
#include <velmio/vessel_entries.hpp>

#include <cmath>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

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

// Where and when a line runs: the demo survey shifts each line in both.
struct Place {
    double start;     // UTC seconds since 1980
    double lat, lon;  // degrees at the first fix
};

using NavOpen = OpenFn;

Failure writeNavigation(const std::wstring &line, const Place &at, const char *name, NavOpen open,
                        int (*begin)(TOVO_Sensor *, unsigned int), int (*beginSegment)(TOVO_Sensor *, const wchar_t *),
                        int (*write)(TOVO_Sensor *, double, double, double, double, unsigned int),
                        int (*endSegment)(TOVO_Sensor *, unsigned int), int (*end)(TOVO_Sensor *, unsigned int),
                        int (*close)(TOVO_Sensor *), double metres) {
    int err = 0;
    TOVO_Sensor *h = open(line.c_str(), L"create", &err);
    if (!h) return {name, err};
    CHECK(begin(h, 1), name);
    for (int segment = 0; segment < 2; ++segment) {
        CHECK(beginSegment(h, kSources[segment]), name);
        for (int i = 0; i < 150; ++i) {
            const double t = segment * 150 + i;
            // North-east at about 2.5 m/s.
            const double lat = (at.lat + t * 1.6e-5) * kDegree, lon = (at.lon + t * 2.2e-5) * kDegree;
            CHECK(write(h, at.start + t, lat, lon, metres, 0), name);
        }
        CHECK(endSegment(h, 0), name);
    }
    CHECK(end(h, 0), name);
    CHECK(close(h), name);
    return {nullptr, 0};
}

Failure writeVesselPosition(const std::wstring &line, const Place &at) {
    return writeNavigation(line, at, "Navigation", NavigationOpenDir, NavigationBgnSeqWriteSummary,
                           NavigationBgnSeqWriteLineSegment, NavigationSeqWrite, NavigationEndSeqWriteLineSegment,
                           NavigationEndSeqWriteSummary, NavigationClose, 0.0);
}

// The towed side scan sensor, 40 m behind at 12 m depth.
Failure writeTowedPosition(const std::wstring &line, const Place &at) {
    const Place behind{at.start, at.lat - 3.0e-4, at.lon - 3.0e-4};
    return writeNavigation(line, behind, "SSSNavigation", SSSNavigationOpenDir, SSSNavigationBgnSeqWriteSummary,
                           SSSNavigationBgnSeqWriteLineSegment, SSSNavigationSeqWrite,
                           SSSNavigationEndSeqWriteLineSegment, SSSNavigationEndSeqWriteSummary, SSSNavigationClose,
                           12.0);
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

// The observed depths reduced: the ping on the vessel's track, the soundings
// with positions and uncertainties, and the reductions applied.
Failure writeProcessedDepths(const std::wstring &line, const Place &at) {
    int err = 0;
    TOVO_Sensor *h = ProcessedDepthsOpenDir(line.c_str(), L"create", &err);
    if (!h) return {"ProcessedDepthsOpenDir", err};
    CHECK(ProcessedDepthsBgnSeqWriteSummary(h, 1), "ProcessedDepthsBgnSeqWriteSummary");
    const unsigned int beams = 101;
    ProcessedDepthsHeads heads{};
    heads.count = 1;
    heads.head[0] = {1.2, 0.0, 2.8, 0.0, 0.0, 0.0, 0.002, 0};
    const ProcessedDepthsPingUncertainty sigma = {0.5, 0.2, 0.05, 0.1, 0.02, 0.0005, 0.0005, 0.001, 0.3, 0.0001};
    for (int segment = 0; segment < 2; ++segment) {
        CHECK(ProcessedDepthsBgnSeqWriteLineSegment(h, kSources[segment]), "ProcessedDepthsBgnSeqWriteLineSegment");
        for (int p = segment * 75; p < (segment + 1) * 75; ++p) {
            const double t = p * 2.0;
            ProcessedDepthsPing ping{};
            ping = {0, beams, 1, at.start + t, static_cast<unsigned int>(p + 1), (at.lat + t * 1.6e-5) * kDegree,
                    (at.lon + t * 2.2e-5) * kDegree, 54.0 * kDegree, 0.4 * std::sin(t * 1.3),
                    1.5 * kDegree * std::sin(t * 0.9), 3.0 * kDegree * std::sin(t * 0.6), 1.2, 2.8, 1492.5};
            CHECK(ProcessedDepthsBgnSeqWriteProfile(h, &ping, &heads, &sigma), "ProcessedDepthsBgnSeqWriteProfile");
            for (unsigned int beam = 1; beam <= beams; ++beam) {
                const double depth = depthAt(p, static_cast<int>(beam)), across = (static_cast<int>(beam) - 51) * 1.2;
                // Across track points south-east of the north-east track.
                ProcessedDepthsSounding s{};
                s = {0, ping.time + 0.0001 * beam, depth, across, 0.0,
                     ping.latitude - across * 0.7071 / 6371000.0,
                     ping.longitude + across * 0.7071 / (6371000.0 * std::cos(ping.latitude)),
                     0.2 + 0.004 * std::fabs(across), 0.1 + 0.002 * depth};
                const double range = std::hypot(depth, across);
                const ProcessedDepthsMeasurement m = {2.0 * range / 1492.5, std::atan2(across, depth), 0.0, range,
                                                      -25.0 - 0.1 * std::fabs(across), 3, 0x80, 1};
                const ProcessedDepthsReductions r = {1.2, ping.heave, 2.8, 0.001 * std::fabs(across)};
                CHECK(ProcessedDepthsSeqWrite(h, &s, &m, &r), "ProcessedDepthsSeqWrite");
            }
            CHECK(ProcessedDepthsEndSeqWriteProfile(h), "ProcessedDepthsEndSeqWriteProfile");
        }
        CHECK(ProcessedDepthsEndSeqWriteLineSegment(h, 0), "ProcessedDepthsEndSeqWriteLineSegment");
    }
    CHECK(ProcessedDepthsEndSeqWriteSummary(h, 0), "ProcessedDepthsEndSeqWriteSummary");
    CHECK(ProcessedDepthsClose(h), "ProcessedDepthsClose");
    return {nullptr, 0};
}

// An EM1000-like side scan (samples in dB, -64 to 63): quiet water, the
// seafloor's first return where the beam meets the bottom, then backscatter
// that fades with range, with a speckle of its own per sample.
Failure writeSideScan(const std::wstring &line, double start) {
    int err = 0;
    TOVO_Sensor *h = SideScanEM1000OpenDir(line.c_str(), L"create", &err);
    if (!h) return {"SideScanEM1000OpenDir", err};
    CHECK(SideScanBgnSeqWriteSummary(h, 1000), "SideScanBgnSeqWriteSummary");
    const unsigned int samples = 512;
    const double interval = 0.0002;  // 0.15 m of slant range a sample
    std::vector<int> amplitudes(samples);
    std::vector<unsigned int> detections(samples);
    unsigned int speckle = 12345;
    for (int segment = 0; segment < 2; ++segment) {
        CHECK(SideScanBgnSeqWriteLineSegment(h, kSources[segment]), "SideScanBgnSeqWriteLineSegment");
        for (int ping = segment * 75; ping < (segment + 1) * 75; ++ping) {
            const double depth = depthAt(ping, 51);
            const unsigned int bottom = static_cast<unsigned int>(2.0 * depth / 1492.5 / interval);
            for (unsigned int k = 0; k < samples; ++k) {
                speckle = speckle * 1103515245u + 12345u;
                const double noise = ((speckle >> 16) % 1000) / 1000.0 * 6.0 - 3.0;
                double db = -55.0 + noise;
                if (k + 3 >= bottom && k <= bottom + 3) db = -4.0 + noise;
                else if (k > bottom) db = -18.0 - 20.0 * std::log10(double(k) / bottom) * 1.5 + noise;
                amplitudes[k] = static_cast<int>(std::lround(db));
                detections[k] = k == bottom ? 20 : 200;
            }
            CHECK(SideScanBgnSeqWriteProfile(h, samples, 1, start + ping * 2.0, interval, 0, 0, 0, 0),
                  "SideScanBgnSeqWriteProfile");
            CHECK(SideScanSeqWriteSamples(h, samples, amplitudes.data(), detections.data()), "SideScanSeqWriteSamples");
            CHECK(SideScanEndSeqWriteProfile(h), "SideScanEndSeqWriteProfile");
            CHECK(SideScanSeqWriteTrace(h, bottom + 1, depth), "SideScanSeqWriteTrace");
        }
        CHECK(SideScanEndSeqWriteLineSegment(h, 0), "SideScanEndSeqWriteLineSegment");
    }
    CHECK(SideScanEndSeqWriteSummary(h, 0), "SideScanEndSeqWriteSummary");
    CHECK(SideScanClose(h), "SideScanClose");
    return {nullptr, 0};
}

// A side-looking profiler: 21 beams a ping, ranges growing outwards.
Failure writeSlantRange(const std::wstring &line, double start) {
    int err = 0;
    TOVO_Sensor *h = SLRangeOpenDir(line.c_str(), L"create", &err);
    if (!h) return {"SLRangeOpenDir", err};
    CHECK(SLRangeBgnSeqWriteSummary(h, 2), "SLRangeBgnSeqWriteSummary");
    for (int segment = 0; segment < 2; ++segment) {
        CHECK(SLRangeBgnSeqWriteLineSegment(h, kSources[segment]), "SLRangeBgnSeqWriteLineSegment");
        for (int ping = segment * 30; ping < (segment + 1) * 30; ++ping) {
            const double t = start + ping * 5.0;
            CHECK(SLRangeBgnSeqWriteProfile(h, 21, 1, t, 0.0, 0.0, 0), "SLRangeBgnSeqWriteProfile");
            for (int beam = 1; beam <= 21; ++beam) {
                const double angle = (beam - 11) * 3.0 * kDegree;
                CHECK(SLRangeSeqWrite(h, t + 0.001 * beam, 50.0 / std::cos(angle), 0.5, angle, 0.0, 0),
                      "SLRangeSeqWrite");
            }
            CHECK(SLRangeEndSeqWriteProfile(h), "SLRangeEndSeqWriteProfile");
        }
        CHECK(SLRangeEndSeqWriteLineSegment(h, 0), "SLRangeEndSeqWriteLineSegment");
    }
    CHECK(SLRangeEndSeqWriteSummary(h, 0), "SLRangeEndSeqWriteSummary");
    CHECK(SLRangeClose(h), "SLRangeClose");
    return {nullptr, 0};
}

Failure writeProfile(const std::wstring &line, const Place &at) {
    VelmSvpFile svp(MORVAUString(line + L"/Svp"));
    const double start = at.start;
    auto dms = [](double degrees) {
        const double a = std::fabs(degrees);
        char buf[40];
        std::snprintf(buf, sizeof buf, "%s%02d:%02d:%05.2f", degrees < 0 ? "-" : "", static_cast<int>(a),
                      static_cast<int>(a * 60) % 60, std::fmod(a * 3600, 60.0));
        return MORVAUString::fromUtf8(buf);
    };
    CHECK(svp.SetSvpSection(start, dms(at.lat), dms(at.lon)), "SetSvpSection");
    for (int depth = 0; depth <= 60; depth += 5)
        CHECK(svp.AddSvpValue(start, depth, 1480.0 + 0.3 * depth - 0.002 * depth * depth), "AddSvpValue");
    CHECK(svp.UpdateDataFile(), "UpdateDataFile");
    return {nullptr, 0};
}

// Every family of a line, each in a function of its own.
Failure writeLine(const std::wstring &line, const Place &at) {
    int rc = LineCreateHierarchy(line.c_str());
    if (rc != 0) return {"LineCreateHierarchy", rc};
    const double start = at.start;
    Failure steps[] = {
        writeVesselPosition(line, at),
        writeTowedPosition(line, at),
        writeSimple(line, "Gyro", GyroOpenDir, start, 10.0, [](double t) { return (45.0 + 2.0 * std::sin(t / 7.0)) * kDegree; }),
        writeSimple(line, "Heave", HeaveOpenDir, start, 10.0, [](double t) { return 0.4 * std::sin(t * 1.3); }),
        writeSimple(line, "Pitch", PitchOpenDir, start, 10.0, [](double t) { return 1.5 * kDegree * std::sin(t * 0.9); }),
        writeSimple(line, "Roll", RollOpenDir, start, 10.0, [](double t) { return 3.0 * kDegree * std::sin(t * 0.6); }),
        writeSimple(line, "Tide", TideOpenDir, start, 1.0 / 60.0, [](double t) { return 1.2 + 0.0001 * t; }),
        writeSimple(line, "SSSGyro", SSSGyroOpenDir, start, 1.0, [](double t) { return (44.0 + std::sin(t / 9.0)) * kDegree; }),
        writeSimple(line, "SSSCableOut", SSSCableOutOpenDir, start, 1.0, [](double) { return 42.5; }),
        writeSimple(line, "SSSSensorHeight", SSSSensorHeightOpenDir, start, 1.0, [](double t) { return 8.0 + 0.5 * std::sin(t / 20.0); }),
        writeSimple(line, "SSSSensorDepth", SSSSensorDepthOpenDir, start, 1.0, [](double t) { return 12.0 + 0.3 * std::sin(t / 15.0); }),
        writeSimple(line, "DeltaDraft", DeltaDraftOpenDir, start, 0.1, [](double) { return 0.05; }),
        writeSimple(line, "SOW", SOWOpenDir, start, 1.0, [](double t) { return 2.5 + 0.1 * std::sin(t / 30.0); }),
        writeSimple(line, "GPSHeight", GPSHeightOpenDir, start, 1.0, [](double t) { return 21.3 + 0.2 * std::sin(t / 11.0); }),
        writeSimple(line, "GPSTide", GPSTideOpenDir, start, 1.0, [](double t) { return 1.2 + 0.0001 * t; }),
        writeSimple(line, "TrueHeave", TrueHeaveOpenDir, start, 10.0, [](double t) { return 0.38 * std::sin(t * 1.3 + 0.1); }),
        writeDepths(line, start),
        writeProcessedDepths(line, at),
        writeSlantRange(line, start),
        writeSideScan(line, start),
        writeProfile(line, at),
    };
    for (const Failure &f : steps)
        if (f.what) return f;
    return {nullptr, 0};
}

// The vessel configuration the queries find for the survey's lines.
Failure writeVessel(const std::wstring &root, const wchar_t *name, double since) {
    const std::wstring dir = root + L"/VesselConfig";
    std::error_code ec;
    std::filesystem::create_directories(std::filesystem::path(narrow(dir)), ec);
    if (ec) return {"VesselConfig", 5000034};
    VELMVessel vessel;
    CHECK(vessel.setFileName((dir + L"/" + name).c_str()), "setFileName");
    auto stamp = [](auto entry) {
        entry->setComment(L"installed for the demo survey");
        return entry;
    };
    auto nav = stamp(std::make_shared<VELMNavConfig>(since));
    nav->setManufacturer(L"Demo Positioning");
    nav->setModel(L"DP-2");
    nav->setEllipseName(L"WGS84");
    nav->setOffsets(1.25, -0.5, -3.2);
    nav->setLatency(0.02);
    CHECK(vessel.addSensor(nav), "addSensor");
    auto gyro = stamp(std::make_shared<VELMGyroConfig>(since));
    gyro->setModel(L"G-7");
    gyro->setGyroOffset(0.4, 0.0);
    gyro->setApplyFlag(true);
    CHECK(vessel.addSensor(gyro), "addSensor");
    auto heave = stamp(std::make_shared<VELMHeaveConfig>(since));
    heave->setOffsets(0.1, 0.0, 0.3);
    CHECK(vessel.addSensor(heave), "addSensor");
    auto pitch = stamp(std::make_shared<VELMPitchConfig>(since));
    pitch->setPitchOffset(0.25);
    CHECK(vessel.addSensor(pitch), "addSensor");
    auto roll = stamp(std::make_shared<VELMRollConfig>(since));
    roll->setRollOffset(-0.15);
    CHECK(vessel.addSensor(roll), "addSensor");
    auto waterline = stamp(std::make_shared<VELMWaterlineHeight>(since));
    waterline->setWaterLine(-0.8);
    waterline->setWaterlineStdDev(0.05);
    CHECK(vessel.addSensor(waterline), "addSensor");
    auto depth = stamp(std::make_shared<VELMDepthConfig>(since));
    CHECK(depth->setSensorClass(L"Swath"), "setSensorClass");
    VELMTransducerConfig transducer;
    transducer.setNumber(1);
    transducer.setStartBeamNum(1);
    transducer.setModel(L"MB-101");
    transducer.setPositionOffset(2.0, 0.0, 1.5);
    transducer.setMountAngle(0.5, -0.2, 0.0);
    depth->addTransducer(transducer);
    CHECK(vessel.addSensor(depth), "addSensor");
    CHECK(vessel.store(), "VELMVessel::store");
    return {nullptr, 0};
}

// Two vessels, two days each, two lines a day: every family, a vessel
// configuration per vessel and a cast per line.
Failure writeSurvey(const std::wstring &root) {
    const wchar_t *vessels[2] = {L"Surveyor", L"Tender"};
    const double day1 = TmYDStoUTCs80(2004, 123, 0.0);
    for (int v = 0; v < 2; ++v) {
        Failure f = writeVessel(root, vessels[v], day1);
        if (f.what) return f;
        for (int d = 0; d < 2; ++d) {
            for (int l = 0; l < 2; ++l) {
                wchar_t path[64];
                std::swprintf(path, 64, L"/DemoProject/%ls/2004-%03d/Line%03d", vessels[v], 123 + d, l + 1);
                const Place at{TmYDStoUTCs80(2004, 123 + d, TmHMSXtoS(12 + l + 2 * v, 0, 0, 0.0)),
                               43.0 + 0.01 * l + 0.05 * v, -65.0 + 0.02 * d};
                f = writeLine(root + path, at);
                if (f.what) return f;
            }
        }
    }
    return {nullptr, 0};
}

}  // namespace

int runDemo(const Args &args) {
    const bool oneLine = args.size() == 2 && args[0] == "--line";
    if (args.size() != 1 && !oneLine) return usageError("demo", "");
    const std::string &target = args.back();
    const std::wstring path = widen(target);
    const Place noon{TmYDStoUTCs80(2004, 123, TmHMSXtoS(12, 0, 0, 0.0)), 43.0, -65.0};
    const Failure f = oneLine ? writeLine(path, noon) : writeSurvey(path);
    if (f.what) return reportError(f.what, f.code);
    std::printf(oneLine ? text("ToolDemoWritten", "demo line written: %s").c_str()
                        : text("ToolDemoSurveyWritten", "demo survey written: %s").c_str(),
                target.c_str());
    std::printf("\n");
    return 0;
}

}  // namespace velmio::tool
