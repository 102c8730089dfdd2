// velmio show: one line per sensor found in a survey line directory, with its
// counts, time span and value range, read through the families' summaries.
#include "command.h"
#include "families.h"

#include <velmio/linestore.h>
#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/paths.h>
#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>
#include <velmio/simple_sensor.h>
#include <velmio/slant_range.h>
#include <velmio/svp.hpp>
#include <velmio/time_conversions.h>
#include <velmio/tpe.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

namespace velmio::tool {
namespace {

constexpr int kMissing = 5000046;  // no data file of that sensor in the line

std::string timeText(double utcs80) {
    int year, day, h, m, s;
    double seconds;
    TmUTCs80toYDS(utcs80, &year, &day, &seconds);
    if (year < 0) return "-";
    TmStoHMSX(seconds, &h, &m, &s, nullptr);
    char buf[32];
    std::snprintf(buf, sizeof buf, "%04d-%03d %02d:%02d:%02d", year, day, h, m, s);
    return buf;
}

void row(const char *name, unsigned int count, const char *countUnit, unsigned int segments, double t0, double t1,
         const std::string &range) {
    std::printf("  %-22s %8u %-8s %3u  %s .. %s  %s\n", name, count, countUnit, segments, timeText(t0).c_str(),
                timeText(t1).c_str(), range.c_str());
}

std::string span(const char *what, double lo, double hi, const char *unit, double scale, const char *format = "%.3f") {
    char a[40], b[40], buf[160];
    std::snprintf(a, sizeof a, format, lo * scale);
    std::snprintf(b, sizeof b, format, hi * scale);
    std::snprintf(buf, sizeof buf, "%s %s .. %s %s", what, a, b, unit);
    return buf;
}

using OpenFn = TOVO_Sensor *(*)(const wchar_t *, const wchar_t *, int *);

struct Simple {
    const char *name;
    OpenFn open;
    bool radians;
};

const Simple kSimple[] = {
    {"Gyro", GyroOpenDir, true},           {"Heave", HeaveOpenDir, false},
    {"Pitch", PitchOpenDir, true},         {"Roll", RollOpenDir, true},
    {"Tide", TideOpenDir, false},          {"SSSGyro", SSSGyroOpenDir, true},
    {"SSSCableOut", SSSCableOutOpenDir, false}, {"SSSSensorHeight", SSSSensorHeightOpenDir, false},
    {"SSSSensorDepth", SSSSensorDepthOpenDir, false}, {"DeltaDraft", DeltaDraftOpenDir, false},
    {"SOW", SOWOpenDir, false},            {"GPSHeight", GPSHeightOpenDir, false},
    {"GPSTide", GPSTideOpenDir, false},    {"TrueHeave", TrueHeaveOpenDir, false},
};

// Opens a sensor for reading; missing sensors are skipped quietly, other
// failures are reported and counted.
TOVO_Sensor *openQuietly(OpenFn open, const std::wstring &line, const char *name, int &failures) {
    int err = 0;
    TOVO_Sensor *h = open(line.c_str(), L"query", &err);
    if (!h && err != kMissing) failures += reportError(name, err);
    return h;
}

using NavSummaryFn = int (*)(TOVO_Sensor *, unsigned int *, unsigned int *, unsigned int *, double *, double *,
                             double *, double *, double *, double *, unsigned int *);

// Each navigation family takes only its own handles, so it brings its own summary and close.
void showNavigation(const std::wstring &line, const char *name, OpenFn open, NavSummaryFn summary,
                    int (*close)(TOVO_Sensor *), int &failures) {
    TOVO_Sensor *h = openQuietly(open, line, name, failures);
    if (!h) return;
    unsigned int segments = 0, records = 0;
    double t0, t1, lat0, lat1, lon0, lon1;
    const int rc = summary(h, &segments, &records, nullptr, &t0, &t1, &lat0, &lat1, &lon0, &lon1, nullptr);
    if (rc == 0)
        row(name, records, "fixes", segments, t0, t1,
            span("lat", lat0, lat1, "deg", 1 / kDegree, "%.6f") + ", " + span("lon", lon0, lon1, "deg", 1 / kDegree, "%.6f"));
    else
        failures += reportError(name, rc);
    close(h);
}

}  // namespace

int runShow(const Args &args) {
    if (args.size() != 1) {
        std::fprintf(stderr, "%s\n", text("ToolShowUsage", "usage: velmio show LINE_DIRECTORY").c_str());
        return 2;
    }
    const std::wstring line = widen(args[0]);
    if (!LineExists(line.c_str())) return reportError(args[0].c_str(), 5000010);
    wchar_t *parts[4] = {VELMGetProjectFromPath(line.c_str()), VELMGetVesselFromPath(line.c_str()),
                         VELMGetDayFromPath(line.c_str()), VELMGetLineFromPath(line.c_str())};
    std::printf("%s %s\n", text("ToolShowLine", "line").c_str(), args[0].c_str());
    if (parts[0] && parts[1] && parts[2] && parts[3])
        std::printf("  project %s, vessel %s, day %s, line %s\n", narrow(parts[0]).c_str(), narrow(parts[1]).c_str(),
                    narrow(parts[2]).c_str(), narrow(parts[3]).c_str());
    for (wchar_t *p : parts) std::free(p);
    std::printf("  %-22s %17s %3s  %-40s  %s\n", "sensor", "count", "seg", "time span", "range");

    int failures = 0;
    showNavigation(line, "Navigation", NavigationOpenDir, NavigationSummary, NavigationClose, failures);
    showNavigation(line, "SSSNavigation", SSSNavigationOpenDir, SSSNavigationSummary, SSSNavigationClose, failures);
    for (const Simple &s : kSimple) {
        TOVO_Sensor *h = openQuietly(s.open, line, s.name, failures);
        if (!h) continue;
        unsigned int segments = 0, records = 0;
        double t0, t1, v0, v1;
        const int rc = SimpleSensorSummary(h, &segments, &records, &t0, &t1, &v0, &v1, nullptr);
        if (rc == 0)
            row(s.name, records, "records", segments, t0, t1,
                s.radians ? span("value", v0, v1, "deg", 1 / kDegree) : span("value", v0, v1, "m", 1.0));
        else
            failures += reportError(s.name, rc);
        SimpleSensorClose(h);
    }
    for (auto [name, open] : {std::pair<const char *, OpenFn>{"ObservedDepths", ObservedDepthsOpenDir},
                              {"ObservedDepthsNew", ObservedDepthsNewOpenDir}}) {
        TOVO_Sensor *h = openQuietly(open, line, name, failures);
        if (!h) continue;
        unsigned int segments = 0, profiles = 0, beams = 0;
        double t0, t1, d0, d1;
        const int rc = ObservedDepthsSummary(h, nullptr, &segments, &profiles, &beams, &t0, &t1, &d0, &d1, nullptr);
        if (rc == 0)
            row(name, profiles, "pings", segments, t0, t1,
                span("depth", d0, d1, "m", 1.0) + " (" + std::to_string(beams) + " beams)");
        else
            failures += reportError(name, rc);
        ObservedDepthsClose(h);
    }
    if (TOVO_Sensor *h = openQuietly(SLRangeOpenDir, line, "SLRange", failures)) {
        unsigned int segments = 0, profiles = 0, beams = 0;
        double t0, t1;
        const int rc = SLRangeSummary(h, nullptr, &segments, &profiles, &beams, &t0, &t1, nullptr);
        if (rc == 0)
            row("SLRange", profiles, "pings", segments, t0, t1, std::to_string(beams) + " beams");
        else
            failures += reportError("SLRange", rc);
        SLRangeClose(h);
    }
    if (TOVO_Sensor *h = openQuietly(TPEOpenDir, line, "TPE", failures)) {
        unsigned int segments = 0, profiles = 0, beams = 0;
        double t0, t1, a0, a1, b0, b1;
        const int rc = TPESummary(h, &segments, &profiles, &beams, &t0, &t1, nullptr, nullptr, &a0, &a1, &b0, &b1, nullptr);
        if (rc == 0)
            row("TPE", profiles, "pings", segments, t0, t1,
                span("errors", a0, a1, "m", 1.0) + "; " + span("second", b0, b1, "m", 1.0));
        else
            failures += reportError("TPE", rc);
        TPEClose(h);
    }
    if (TOVO_Sensor *h = openQuietly(ProcessedDepthsOpenDir, line, "ProcessedDepths", failures)) {
        unsigned int segments = 0, profiles = 0, beams = 0;
        double t0, t1, d0, d1;
        const int rc =
            ProcessedDepthsSummary(h, nullptr, &segments, &profiles, &beams, &t0, &t1, &d0, &d1, nullptr);
        if (rc == 0)
            row("ProcessedDepths", profiles, "pings", segments, t0, t1,
                span("depth", d0, d1, "m", 1.0) + " (" + std::to_string(beams) + " beams)");
        else
            failures += reportError("ProcessedDepths", rc);
        ProcessedDepthsClose(h);
    }
    for (auto [name, open] : {std::pair<const char *, OpenFn>{"SideScan", openSideScan},
                              {"SSSSideScan", SSSSideScanOpenDir},
                              {"SSSProcessedSideScan", SSSProcessedSideScanOpenDir},
                              {"NewSSSProcessedSideScan", NewSSSProcessedSideScanOpenDir}}) {
        TOVO_Sensor *h = openQuietly(open, line, name, failures);
        if (!h) continue;
        unsigned int sonar = 0, segments = 0, profiles = 0, samples = 0;
        double t0, t1;
        int a0, a1;
        const int rc = SideScanSummary(h, &sonar, &segments, &profiles, &samples, &t0, &t1, &a0, &a1, nullptr);
        if (rc == 0)
            row(name, profiles, "pings", segments, t0, t1,
                (a0 <= a1 ? span("amplitude", a0, a1, "", 1.0, "%.0f") + " " : std::string()) + "(" +
                    std::to_string(samples) + " samples)");
        else
            failures += reportError(name, rc);
        SideScanClose(h);
    }
    std::unique_ptr<SvpFile> svp;
    {
        const std::wstring path = line + L"/Svp";
        std::FILE *probe = std::fopen(narrow(path).c_str(), "rb");
        if (probe) {
            std::fclose(probe);
            int status = 0;
            svp.reset(SvpFile::GetSvpFormat(MORVAUString(path), status));
            if (svp && svp->ReadInData() == 0) {
                int casts = 0;
                for (const SvpFile::SvpSections *s = svp->GetSections(); s; s = s->next) ++casts;
                std::printf("  %-22s %8d %-8s\n", "Svp", casts, "casts");
            }
        }
    }
    return failures ? 1 : 0;
}

}  // namespace velmio::tool
