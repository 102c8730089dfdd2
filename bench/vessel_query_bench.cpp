// Opening a vessel configuration of 1000 gyro entries and asking it for the
// entry valid at a time, as a processing run does per sensor and line.
#include "bench_support.h"

#include <velmio/time_conversions.h>
#include <velmio/vessel_queries.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <vector>
#include <stdexcept>

namespace velmio::bench {
namespace {

constexpr int kEntries = 1000;

// One entry a day from 2000 on, in days of a 360-day year to keep dates simple.
std::wstring vesselFile() {
    static const std::string path = [] {
        const std::string file = freshDir("vessel") + "/boat.tvc";
        std::ofstream out(file);
        out << "<VELMVesselConfig Version=\"2.0\"><GyroSensor>";
        for (int i = 0; i < kEntries; ++i) {
            char stamp[32];
            std::snprintf(stamp, sizeof stamp, "%04d-%03d 00:00:00", 2000 + i / 360, i % 360 + 1);
            out << "<TimeStamp value=\"" << stamp << "\"><Model value=\"Gy" << i
                << "\"/><Latency value=\"0.01\"/><ApplyFlag value=\"Yes\"/><Offsets><Gyro>"
                   "<Entry Azimuth=\"0\" Offset=\"2\"/></Gyro></Offsets><Comment value=\"c\"/></TimeStamp>";
        }
        out << "</GyroSensor></VELMVesselConfig>";
        return file;
    }();
    return widen(path);
}

void VesselOpen(benchmark::State &state) {
    const std::wstring file = vesselFile();
    best(state, 1.0, [&](Stopwatch &watch) {
        int error = -1;
        watch.start();
        VELMVesselHandle *vessel = VELMGetVesselConfiguration(file.c_str(), &error);
        watch.stop();
        if (!vessel || error) state.SkipWithError("vessel not opened");
        VesselConfigFree(vessel);
        return 0.0;
    });
}

// Times spread over the entries, the same sequence every run.
void VesselGyroQuery(benchmark::State &state) {
    int error = -1;
    VELMVesselHandle *vessel = VELMGetVesselConfiguration(vesselFile().c_str(), &error);
    if (!vessel || error) {
        state.SkipWithError("vessel not opened");
        VesselConfigFree(vessel);
        return;
    }
    std::mt19937 random(12);
    std::uniform_int_distribution<int> pick(0, kEntries - 1);
    std::vector<double> times(1024);
    for (double &t : times) {
        const int i = pick(random);
        t = TmYDStoUTCs80(2000 + i / 360, i % 360 + 1, 3600.0);
    }
    best(state, static_cast<double>(times.size()), [&](Stopwatch &watch) {
        double sum = 0;
        watch.start();
        for (double time : times) {
            double entryTime, latency, offset, r1, r2, r3;
            int apply;
            wchar_t *manufacturer, *model, *serial, *comment, *authorization;
            if (VesselGyroSensorTmIdxConfig(vessel, time, &entryTime, &manufacturer, &model, &serial, &r1, &r2, &r3,
                                            &latency, &offset, &apply, &comment, &authorization))
                state.SkipWithError("query failed");
            for (wchar_t *text : {manufacturer, model, serial, comment, authorization}) std::free(text);
            sum += entryTime;
        }
        watch.stop();
        return sum;
    });
    VesselConfigFree(vessel);
}

BENCHMARK(VesselOpen)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(0.5);
BENCHMARK(VesselGyroQuery)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(0.5);

}  // namespace
}  // namespace velmio::bench
