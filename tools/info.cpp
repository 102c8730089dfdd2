// velmio info: what every line under a path holds, with totals per day,
// vessel and project. Lines are reported as they are scanned, so memory does
// not grow with their number; only the totals are kept.
#include "command.h"
#include "families.h"
#include "format.h"
#include "progress.h"
#include "survey.h"

#include <velmio/linestore.h>
#include <velmio/svp.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <map>
#include <memory>
#include <sys/stat.h>

namespace velmio::tool {
namespace {

struct SensorInfo {
    const Family *family = nullptr;
    int error = 0;
    Summary summary;
    std::vector<Segment> segments;
};

struct LineInfo {
    std::string path;
    LineName name;
    std::vector<SensorInfo> sensors;
    int svpCasts = -1;  // -1: no sound velocity file
    int errors = 0;
};

struct Totals {
    std::size_t lines = 0, damaged = 0;
    unsigned long long records = 0, beams = 0;
    double start = 0, end = 0;
    void add(const LineInfo &line) {
        ++lines;
        if (line.errors) ++damaged;
        for (const SensorInfo &s : line.sensors) {
            if (s.error) continue;
            records += s.summary.records;
            beams += s.summary.beams;
            if (s.summary.records == 0) continue;
            if (start == 0 || s.summary.minTime < start) start = s.summary.minTime;
            if (s.summary.maxTime > end) end = s.summary.maxTime;
        }
    }
};

int countCasts(const std::string &line) {
    const std::string path = line + "/Svp";
    struct stat st;
    if (stat(path.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return -1;
    int status = 0;
    std::unique_ptr<SvpFile> svp(SvpFile::GetSvpFormat(MORVAUString(widen(path)), status));
    if (!svp || svp->ReadInData() != 0) return -1;
    int casts = 0;
    for (const SvpFile::SvpSections *s = svp->GetSections(); s; s = s->next) ++casts;
    return casts;
}

// The names in a line directory: a family whose data file is absent is not
// opened at all, which keeps a scan of many lines to one listing per line.
std::set<std::string> entries(const std::string &path) {
    std::set<std::string> names;
    std::error_code ec;
    for (std::filesystem::directory_iterator it(path, ec), end; !ec && it != end; it.increment(ec))
        names.insert(it->path().filename().string());
    return names;
}

LineInfo scanLine(const std::string &path) {
    LineInfo info;
    info.path = path;
    info.name = lineName(path);
    const std::wstring line = widen(path);
    const std::set<std::string> present = entries(path);
    for (const Family &f : families()) {
        if (!present.count(f.name)) continue;
        SensorInfo s;
        s.family = &f;
        TOVO_Sensor *h = f.open(line.c_str(), L"query", &s.error);
        if (!h && s.error == kSensorMissing) continue;
        if (h) {
            s.error = f.summarise(h, s.summary);
            for (unsigned int n = 1; s.error == 0 && n <= s.summary.segments; ++n) {
                Segment seg;
                s.error = f.segment(h, static_cast<int>(n), seg);
                s.segments.push_back(std::move(seg));
            }
            f.close(h);
        } else if (s.error == 0) {
            s.error = -1;
        }
        if (s.error) ++info.errors;
        info.sensors.push_back(std::move(s));
    }
    info.svpCasts = countCasts(path);
    return info;
}

std::string extentText(const Extent &e) {
    char buf[160];
    const bool degrees = e.type == ColumnType::Radians;
    // Plain values (side scan amplitudes) carry no unit.
    const char *format = degrees ? "%s %.6f .. %.6f deg" : e.type == ColumnType::Value ? "%s %.0f .. %.0f" : "%s %.3f .. %.3f m";
    std::snprintf(buf, sizeof buf, format, e.name, shown(e.min, e.type), shown(e.max, e.type));
    return buf;
}

void printLine(const LineInfo &line) {
    std::printf("%s %s\n", text("ToolShowLine", "line").c_str(), line.path.c_str());
    if (!line.name.line.empty())
        std::printf("  project %s, vessel %s, day %s, line %s\n", line.name.project.c_str(),
                    line.name.vessel.c_str(), line.name.day.c_str(), line.name.line.c_str());
    for (const SensorInfo &s : line.sensors) {
        if (s.error) {
            std::printf("  %-18s error %d: %s\n", s.family->name, s.error, sentence(s.error).c_str());
            continue;
        }
        const Summary &m = s.summary;
        std::printf("  %-18s %8u %-7s", s.family->name, m.records, s.family->unitName);
        if (m.beams) std::printf(" %9u %-7s", m.beams, s.family->itemName);
        std::printf("  %s .. %s", dayOfYearText(m.minTime).c_str(), dayOfYearText(m.maxTime).c_str());
        for (const Extent &e : m.extents) std::printf("  %s", extentText(e).c_str());
        std::printf("  status %u\n", m.status);
        for (std::size_t i = 0; i < s.segments.size(); ++i) {
            const Segment &g = s.segments[i];
            std::printf("    segment %zu %s: %u..%u  %s .. %s  status %u\n", i + 1, g.name.c_str(), g.first, g.last,
                        dayOfYearText(g.minTime).c_str(), dayOfYearText(g.maxTime).c_str(), g.status);
        }
    }
    if (line.svpCasts >= 0) std::printf("  %-18s %8d casts\n", "Svp", line.svpCasts);
}

void printTotals(const char *level, const std::string &name, const Totals &t) {
    std::printf("  %-7s %-36s %6zu lines %4zu damaged %12llu records %12llu beams  %s .. %s\n", level, name.c_str(),
                t.lines, t.damaged, t.records, t.beams, dayOfYearText(t.start).c_str(),
                dayOfYearText(t.end).c_str());
}

std::string jsonTime(double t) {
    return "{\"text\":" + jsonString(dayOfYearText(t)) + ",\"iso\":" + jsonString(isoText(t)) +
           ",\"s80\":" + number(t) + "}";
}

std::string jsonError(int code) {
    return "{\"code\":" + std::to_string(code) + ",\"message\":" + jsonString(sentence(code)) + "}";
}

void printLineJson(const LineInfo &line, bool first) {
    std::printf("%s\n    {\"path\":%s,\"project\":%s,\"vessel\":%s,\"day\":%s,\"line\":%s,\"sensors\":[", first ? "" : ",",
                jsonString(line.path).c_str(), jsonString(line.name.project).c_str(),
                jsonString(line.name.vessel).c_str(), jsonString(line.name.day).c_str(),
                jsonString(line.name.line).c_str());
    const char *sep = "";
    for (const SensorInfo &s : line.sensors) {
        std::printf("%s\n      {\"name\":%s,\"type\":%u", sep, jsonString(s.family->name).c_str(), s.family->typeId);
        sep = ",";
        if (s.error) {
            std::printf(",\"error\":%s}", jsonError(s.error).c_str());
            continue;
        }
        const Summary &m = s.summary;
        std::printf(",\"unit\":%s,\"records\":%u,\"beams\":%u,\"start\":%s,\"end\":%s,\"extents\":{",
                    jsonString(s.family->unitName).c_str(), m.records, m.beams, jsonTime(m.minTime).c_str(),
                    jsonTime(m.maxTime).c_str());
        for (std::size_t i = 0; i < m.extents.size(); ++i) {
            const Extent &e = m.extents[i];
            std::printf("%s%s:{\"min\":%s,\"max\":%s,\"unit\":\"%s\"}", i ? "," : "", jsonString(e.name).c_str(),
                        number(shown(e.min, e.type)).c_str(), number(shown(e.max, e.type)).c_str(),
                        e.type == ColumnType::Radians ? "deg" : "m");
        }
        std::printf("},\"status\":%u,\"statusText\":%s,\"segments\":[", m.status, jsonString(statusText(m.status)).c_str());
        for (std::size_t i = 0; i < s.segments.size(); ++i) {
            const Segment &g = s.segments[i];
            std::printf("%s{\"name\":%s,\"first\":%u,\"last\":%u,\"start\":%s,\"end\":%s,\"status\":%u}", i ? "," : "",
                        jsonString(g.name).c_str(), g.first, g.last, jsonTime(g.minTime).c_str(),
                        jsonTime(g.maxTime).c_str(), g.status);
        }
        std::printf("]}");
    }
    std::printf("]");
    if (line.svpCasts >= 0) std::printf(",\"svpCasts\":%d", line.svpCasts);
    std::printf(",\"errors\":%d}", line.errors);
}

std::string totalsJson(const Totals &t) {
    return "\"lines\":" + std::to_string(t.lines) + ",\"damaged\":" + std::to_string(t.damaged) +
           ",\"records\":" + std::to_string(t.records) + ",\"beams\":" + std::to_string(t.beams) +
           ",\"start\":" + (t.records ? jsonTime(t.start) : "null") + ",\"end\":" + (t.records ? jsonTime(t.end) : "null");
}

}  // namespace

int runInfo(const Args &args) {
    const Parsed p = parseArgs(args, {"--json", "--quiet"}, {});
    if (!p.error.empty() || p.positional.size() != 1) return usageError("info", p.error);
    const std::string &path = p.positional[0];
    const bool json = p.has("--json");
    if (!LineExists(widen(path).c_str())) return reportError(path.c_str(), 5000010);

    std::unique_ptr<Progress> progress;
    if (Progress::wanted(p.has("--quiet")))
        progress = std::make_unique<Progress>(forEachLine(path, [](const std::string &) { return true; }), false);

    // Keyed "project/vessel/day": a handful of entries however many lines.
    std::map<std::vector<std::string>, Totals> days, vessels, projects;
    Totals all;
    if (json) std::printf("{\"path\":%s,\"lines\":[", jsonString(path).c_str());
    forEachLine(path, [&](const std::string &linePath) {
        const LineInfo line = scanLine(linePath);
        for (const SensorInfo &s : line.sensors)
            if (s.error) reportError((linePath + ": " + s.family->name).c_str(), s.error);
        if (json)
            printLineJson(line, all.lines == 0);
        else
            printLine(line);
        const LineName &n = line.name;
        days[{n.project, n.vessel, n.day}].add(line);
        vessels[{n.project, n.vessel}].add(line);
        projects[{n.project}].add(line);
        all.add(line);
        if (progress) progress->step();
        return true;
    });
    progress.reset();

    auto join = [](const std::vector<std::string> &parts) {
        std::string out;
        for (const std::string &s : parts) out += (out.empty() ? "" : "/") + s;
        return out;
    };
    if (json) {
        std::printf("\n  ],\n  \"totals\":{");
        const char *names[3] = {"projects", "vessels", "days"};
        const char *fields[3] = {"project", "vessel", "day"};
        const std::map<std::vector<std::string>, Totals> *levels[3] = {&projects, &vessels, &days};
        for (int l = 0; l < 3; ++l) {
            std::printf("\"%s\":[", names[l]);
            const char *sep = "";
            for (const auto &[key, t] : *levels[l]) {
                std::printf("%s\n    {", sep);
                sep = ",";
                for (std::size_t i = 0; i < key.size(); ++i)
                    std::printf("\"%s\":%s,", fields[i], jsonString(key[i]).c_str());
                std::printf("%s}", totalsJson(t).c_str());
            }
            std::printf("],");
        }
        std::printf("\n    \"all\":{%s}}\n}\n", totalsJson(all).c_str());
    } else {
        std::printf("%s\n", text("ToolInfoTotals", "totals").c_str());
        for (const auto &[key, t] : days) printTotals("day", join(key), t);
        for (const auto &[key, t] : vessels) printTotals("vessel", join(key), t);
        for (const auto &[key, t] : projects) printTotals("project", join(key), t);
        printTotals("all", path, all);
    }
    return all.damaged ? kExitData : 0;
}

}  // namespace velmio::tool
