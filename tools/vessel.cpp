// velmio vessel: the entries of a vessel configuration that the flat queries
// hand out at one time, every sensor kind, angles in degrees.
#include "command.h"
#include "families.h"
#include "format.h"

#include <velmio/utils.hpp>
#include <velmio/vessel_queries.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace velmio::tool {
namespace {

// The settings of one sensor kind as name/value pairs, in query order.
struct Entry {
    const char *kind = nullptr;
    int code = 0;
    double time = 0;
    std::vector<std::pair<std::string, std::string>> fields;  // values already JSON texts
    void text(const char *name, wchar_t *value) {
        fields.emplace_back(name, value ? jsonString(narrow(value)) : "null");
        std::free(value);
    }
    void metres(const char *name, double v) { fields.emplace_back(name, number(v)); }
    void degrees(const char *name, double v) { fields.emplace_back(std::string(name) + "_deg", number(v / kDegree)); }
    void flag(const char *name, int v) { fields.emplace_back(name, std::to_string(v)); }
};

using Query = std::function<void(VELMVesselHandle *, double, Entry &)>;

struct SensorKind {
    const char *name;
    Query query;
};

const SensorKind kKinds[] = {
    {"Gyro", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *m, *mo, *s, *c, *a;
         double r1, r2, r3, lat, off;
         int apply;
         e.code = VesselGyroSensorTmIdxConfig(v, t, &e.time, &m, &mo, &s, &r1, &r2, &r3, &lat, &off, &apply, &c, &a);
         e.text("manufacturer", m), e.text("model", mo), e.text("serial", s), e.metres("latency", lat);
         e.degrees("gyroOffset", off), e.flag("apply", apply), e.text("comment", c), e.text("authorization", a);
     }},
    {"Heave", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *m, *mo, *s, *c, *a;
         double x, y, z, lat, off;
         int apply;
         e.code = VesselHeaveSensorTmIdxConfig(v, t, &e.time, &m, &mo, &s, &x, &y, &z, &lat, &off, &apply, &c, &a);
         e.text("manufacturer", m), e.text("model", mo), e.text("serial", s), e.metres("offsetX", x);
         e.metres("offsetY", y), e.metres("offsetZ", z), e.metres("latency", lat), e.metres("heaveOffset", off);
         e.flag("apply", apply), e.text("comment", c), e.text("authorization", a);
     }},
    {"Navigation", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *m, *mo, *s, *el, *c, *a;
         double x, y, z, lat;
         e.code = VesselNavigationSensorTmIdxConfig(v, t, &e.time, &m, &mo, &s, &el, &x, &y, &z, &lat, &c, &a);
         e.text("manufacturer", m), e.text("model", mo), e.text("serial", s), e.text("ellipse", el);
         e.metres("offsetX", x), e.metres("offsetY", y), e.metres("offsetZ", z), e.metres("latency", lat);
         e.text("comment", c), e.text("authorization", a);
     }},
    {"Pitch", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *m, *mo, *s, *c, *a;
         double lat, off;
         int apply;
         e.code = VesselPitchSensorTmIdxConfig(v, t, &e.time, &m, &mo, &s, &lat, &off, &apply, &c, &a);
         e.text("manufacturer", m), e.text("model", mo), e.text("serial", s), e.metres("latency", lat);
         e.degrees("pitchOffset", off), e.flag("apply", apply), e.text("comment", c), e.text("authorization", a);
     }},
    {"Roll", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *m, *mo, *s, *c, *a;
         double lat, off;
         int apply;
         e.code = VesselRollSensorTmIdxConfig(v, t, &e.time, &m, &mo, &s, &lat, &off, &apply, &c, &a);
         e.text("manufacturer", m), e.text("model", mo), e.text("serial", s), e.metres("latency", lat);
         e.degrees("rollOffset", off), e.flag("apply", apply), e.text("comment", c), e.text("authorization", a);
     }},
    {"SVP", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *c, *a;
         double x, y, z, p, r, az, x2, y2, z2, p2, r2, az2;
         int dual;
         e.code = VesselSVPTmIdxConfig(v, t, &e.time, &x, &y, &z, &p, &r, &az, &x2, &y2, &z2, &p2, &r2, &az2, &dual, &c, &a);
         e.metres("offsetX", x), e.metres("offsetY", y), e.metres("offsetZ", z), e.degrees("mountPitch", p);
         e.degrees("mountRoll", r), e.degrees("mountAzimuth", az), e.metres("offsetX2", x2), e.metres("offsetY2", y2);
         e.metres("offsetZ2", z2), e.degrees("mountPitch2", p2), e.degrees("mountRoll2", r2);
         e.degrees("mountAzimuth2", az2), e.flag("dualHead", dual), e.text("comment", c), e.text("authorization", a);
     }},
    {"Towed", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *m, *mo, *s;
         double x, y, z, lat, layback;
         e.code = VesselTowedTmIdxConfig(v, t, &e.time, &m, &mo, &s, &x, &y, &z, &lat, &layback);
         e.text("manufacturer", m), e.text("model", mo), e.text("serial", s), e.metres("offsetX", x);
         e.metres("offsetY", y), e.metres("offsetZ", z), e.metres("latency", lat), e.metres("layback", layback);
     }},
    {"Waterline", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *c, *a;
         double h, sd;
         e.code = VesselRPTmIdxConfig(v, t, &e.time, &h, &sd, &c, &a);
         e.metres("waterlineHeight", h), e.metres("waterlineStdDev", sd), e.text("comment", c);
         e.text("authorization", a);
     }},
    {"Depth", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *cls, *m, *mo, *s, *c, *a;
         int n, firstHead, total;
         double x, y, z, p, r, az, lat, x2, y2, z2, p2, r2, az2, lat2;
         double *sx, *sy, *sz, *sp, *sr, *sa, *sl;
         e.code = VesselDepthSensorTmIdxConfig(v, t, &e.time, &cls, &n, &firstHead, &total, &m, &mo, &s, &x, &y, &z,
                                               &p, &r, &az, &lat, &x2, &y2, &z2, &p2, &r2, &az2, &lat2, &sx, &sy, &sz,
                                               &sp, &sr, &sa, &sl, &c, &a);
         e.text("class", cls), e.flag("transducers", n), e.flag("firstHeadBeams", firstHead);
         e.flag("totalBeams", total), e.text("manufacturer", m), e.text("model", mo), e.text("serial", s);
         e.metres("offsetX", x), e.metres("offsetY", y), e.metres("offsetZ", z), e.degrees("mountPitch", p);
         e.degrees("mountRoll", r), e.degrees("mountAzimuth", az), e.metres("latency", lat);
         e.metres("offsetX2", x2), e.metres("offsetY2", y2), e.metres("offsetZ2", z2), e.degrees("mountPitch2", p2);
         e.degrees("mountRoll2", r2), e.degrees("mountAzimuth2", az2), e.metres("latency2", lat2);
         for (double *array : {sx, sy, sz, sp, sr, sa, sl}) std::free(array);
         e.text("comment", c), e.text("authorization", a);
     }},
    {"Draft", [](VELMVesselHandle *v, double t, Entry &e) {
         wchar_t *c, *a;
         int rows, apply;
         double *speeds, *drafts;
         e.code = VesselDraftTmIdxConfig(v, t, &e.time, &rows, &speeds, &drafts, &apply, &c, &a);
         std::string table = "[";
         for (int i = 0; i < rows && speeds && drafts; ++i)
             table += std::string(i ? "," : "") + "[" + number(speeds[i]) + "," + number(drafts[i]) + "]";
         e.fields.emplace_back("speedDraft", table + "]");
         std::free(speeds), std::free(drafts);
         e.flag("apply", apply), e.text("comment", c), e.text("authorization", a);
     }},
};

bool parseTime(const std::string &text, double &out) {
    char *end = nullptr;
    out = std::strtod(text.c_str(), &end);
    if (end != text.c_str() && !*end && std::isfinite(out)) return true;
    int y, d, h, m, s;
    char tail;
    if (std::sscanf(text.c_str(), "%d-%d %d:%d:%d%c", &y, &d, &h, &m, &s, &tail) != 5) return false;
    return VELMIOUtils::decodeTime(text.c_str(), out) == 0;
}

}  // namespace

int runVessel(const Args &args) {
    const Parsed p = parseArgs(args, {"--json"}, {"--at"});
    if (!p.error.empty() || p.positional.size() != 1) return usageError("vessel", p.error);
    // Far in the future: the latest entry of every kind.
    double at = 1.0e12;
    if (p.has("--at") && !parseTime(p.get("--at"), at)) return usageError("vessel", "--at " + p.get("--at"));
    int error = 0;
    VELMVesselHandle *vessel = VELMGetVesselConfiguration(widen(p.positional[0]).c_str(), &error);
    if (!vessel || error) {
        VesselConfigFree(vessel);
        return reportError(p.positional[0].c_str(), error ? error : -1);
    }
    const bool json = p.has("--json");
    if (json)
        std::printf("{\"file\":%s,\"at\":%s,\"sensors\":{", jsonString(p.positional[0]).c_str(),
                    p.has("--at") ? number(at).c_str() : "null");
    else
        std::printf("vessel %s at %s\n", p.positional[0].c_str(), p.has("--at") ? dayOfYearText(at).c_str() : "latest");
    bool first = true;
    for (const SensorKind &k : kKinds) {
        Entry e;
        e.kind = k.name;
        k.query(vessel, at, e);
        if (json) {
            std::printf("%s\n  %s:{", first ? "" : ",", jsonString(k.name).c_str());
            if (e.code) {
                std::printf("\"error\":{\"code\":%d,\"message\":%s}}", e.code, jsonString(sentence(e.code)).c_str());
            } else {
                std::printf("\"entryTime\":%s", jsonString(isoText(e.time)).c_str());
                for (const auto &[name, value] : e.fields) std::printf(",\"%s\":%s", name.c_str(), value.c_str());
                std::printf("}");
            }
        } else if (e.code) {
            std::printf("  %-10s %s\n", k.name, sentence(e.code).c_str());
        } else {
            std::printf("  %-10s entry of %s\n", k.name, dayOfYearText(e.time).c_str());
            for (const auto &[name, value] : e.fields)
                if (value != "null") std::printf("    %-18s %s\n", name.c_str(), value.c_str());
        }
        first = false;
    }
    if (json) std::printf("\n}}\n");
    VesselConfigFree(vessel);
    return 0;
}

}  // namespace velmio::tool
