#include "survey_lines.h"

#include "bench_support.h"

#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>
#include <velmio/tpe.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>

namespace velmio::bench {

namespace {
// One ping of a profile family; beams spread over a few milliseconds.
double beamTime(std::size_t profile, std::size_t beam) { return recordTime(profile) + beam * 1e-5; }

void writeGyro(TOVO_Sensor *h, std::size_t records) {
    require(GyroBgnSeqWriteSummary(h), "GyroBgnSeqWriteSummary");
    for (std::size_t i = 0; i < records; ++i) {
        if (i % kSegmentRecords == 0) {
            if (i) require(GyroEndSeqWriteLineSegment(h, 0), "GyroEndSeqWriteLineSegment");
            require(GyroBgnSeqWriteLineSegment(h, L"raw.dat"), "GyroBgnSeqWriteLineSegment");
        }
        require(GyroSeqWrite(h, recordTime(i), recordValue(i), recordStatus(i)), "GyroSeqWrite");
    }
    require(GyroEndSeqWriteLineSegment(h, 0), "GyroEndSeqWriteLineSegment");
    require(GyroEndSeqWriteSummary(h, 0), "GyroEndSeqWriteSummary");
}

void writeNavigation(TOVO_Sensor *h, std::size_t records) {
    require(NavigationBgnSeqWriteSummary(h, 1), "NavigationBgnSeqWriteSummary");
    for (std::size_t i = 0; i < records; ++i) {
        if (i % kSegmentRecords == 0) {
            if (i) require(NavigationEndSeqWriteLineSegment(h, 0), "NavigationEndSeqWriteLineSegment");
            require(NavigationBgnSeqWriteLineSegment(h, L"raw.dat"), "NavigationBgnSeqWriteLineSegment");
        }
        const double drift = static_cast<double>(i) * 1e-9;
        require(NavigationSeqWrite(h, recordTime(i), 0.9 + drift, 0.05 + drift, recordValue(i), recordStatus(i)),
              "NavigationSeqWrite");
    }
    require(NavigationEndSeqWriteLineSegment(h, 0), "NavigationEndSeqWriteLineSegment");
    require(NavigationEndSeqWriteSummary(h, 0), "NavigationEndSeqWriteSummary");
}

void writeObservedDepths(TOVO_Sensor *h, std::size_t profiles) {
    require(ObservedDepthsBgnSeqWriteSummary(h), "ObservedDepthsBgnSeqWriteSummary");
    require(ObservedDepthsBgnSeqWriteLineSegment(h, L"raw.dat"), "ObservedDepthsBgnSeqWriteLineSegment");
    for (std::size_t p = 0; p < profiles; ++p) {
        require(ObservedDepthsBgnSeqWriteProfile(h, kBeamsPerProfile, 1, recordTime(p), 0.01, -0.02, recordStatus(p)),
              "ObservedDepthsBgnSeqWriteProfile");
        for (std::size_t b = 0; b < kBeamsPerProfile; ++b)
            require(ObservedDepthsSeqWrite(h, beamTime(p, b), b * 0.5, -(b * 0.25), 20.0 + recordValue(b), 0, 0,
                                         recordStatus(b) << 16),
                  "ObservedDepthsSeqWrite");
        require(ObservedDepthsEndSeqWriteProfile(h), "ObservedDepthsEndSeqWriteProfile");
    }
    require(ObservedDepthsEndSeqWriteLineSegment(h, 0), "ObservedDepthsEndSeqWriteLineSegment");
    require(ObservedDepthsEndSeqWriteSummary(h, 0), "ObservedDepthsEndSeqWriteSummary");
}

void writeTPE(TOVO_Sensor *h, std::size_t profiles) {
    require(TPEBgnSeqWriteSummary(h), "TPEBgnSeqWriteSummary");
    require(TPEBgnSeqWriteLineSegment(h, L"raw.dat"), "TPEBgnSeqWriteLineSegment");
    for (std::size_t p = 0; p < profiles; ++p) {
        require(TPEBgnSeqWriteProfile(h, kBeamsPerProfile, 1, recordTime(p), 7, recordStatus(p)),
              "TPEBgnSeqWriteProfile");
        for (std::size_t b = 0; b < kBeamsPerProfile; ++b)
            require(TPESeqWrite(h, beamTime(p, b), 0.1 + b * 0.001, 0.2 + b * 0.002, recordStatus(b) << 16),
                  "TPESeqWrite");
        require(TPEEndSeqWriteProfile(h), "TPEEndSeqWriteProfile");
    }
    require(TPEEndSeqWriteLineSegment(h, 0), "TPEEndSeqWriteLineSegment");
    require(TPEEndSeqWriteSummary(h, 0), "TPEEndSeqWriteSummary");
}
}  // namespace

void require(int rc, const char *what) {
    if (rc != 0) throw std::runtime_error(std::string(what) + " failed: " + std::to_string(rc));
}

const Layout &layoutOf(Family family) {
    static const Layout layouts[] = {
        {"Gyro", 48, 12, 0},
        {"Navigation", 72, 20, 0},
        {"ObservedDepths", 60, 16, 20},
        {"TPE", 88, 12, 16},
    };
    return layouts[static_cast<int>(family)];
}

Scales scalesOf(Family family, const unsigned char *head) {
    Scales s;
    switch (family) {
    case Family::Gyro:
        s.timeScale = sbe32(head + 24);
        s.referenceTime = sbe32(head + 28) * 60.0;
        break;
    case Family::Navigation:
        s.timeScale = sbe32(head + 24);
        s.referenceTime = sbe32(head + 28) * 60.0;
        s.positionScale = sbe32(head + 44);
        s.referenceLatitude = sbe32(head + 48) * 1e-7;
        s.referenceLongitude = sbe32(head + 60) * 1e-7;
        break;
    case Family::ObservedDepths:
        s.timeScale = sbe32(head + 32);
        s.depthTimeScale = sbe32(head + 36);
        s.referenceTime = sbe32(head + 40) * 60.0;
        break;
    case Family::TPE:
        s.timeScale = sbe32(head + 36);
        s.depthTimeScale = sbe32(head + 40);
        s.referenceTime = sbe32(head + 44) * 60.0;
        break;
    }
    return s;
}

std::size_t profilesFor(Family family, std::size_t records) {
    if (layoutOf(family).headerBytes == 0) return records;
    return (records + kBeamsPerProfile - 1) / kBeamsPerProfile;
}

// 50 Hz from 2011 on; the values sweep a few radians or metres.
double recordTime(std::size_t i) { return 1.0e9 + static_cast<double>(i) * 0.02; }
double recordValue(std::size_t i) { return static_cast<double>(i % 6000) * 1e-3 - 3.0; }
std::uint32_t recordStatus(std::size_t i) { return static_cast<std::uint32_t>(i & 0x3F); }

TOVO_Sensor *openLine(Family family, const std::wstring &directory, const wchar_t *mode, const char *cacheSize) {
    if (cacheSize)
        ::setenv("VelmIOCacheSize", cacheSize, 1);
    else
        ::unsetenv("VelmIOCacheSize");
    int error = -1;
    TOVO_Sensor *h = nullptr;
    switch (family) {
    case Family::Gyro: h = GyroOpenDir(directory.c_str(), mode, &error); break;
    case Family::Navigation: h = NavigationOpenDir(directory.c_str(), mode, &error); break;
    case Family::ObservedDepths: h = ObservedDepthsOpenDir(directory.c_str(), mode, &error); break;
    case Family::TPE: h = TPEOpenDir(directory.c_str(), mode, &error); break;
    }
    ::unsetenv("VelmIOCacheSize");
    if (!h) throw std::runtime_error("OpenDir failed: " + std::to_string(error));
    return h;
}

int closeLine(Family family, TOVO_Sensor *handle) {
    switch (family) {
    case Family::Gyro: return GyroClose(handle);
    case Family::Navigation: return NavigationClose(handle);
    case Family::ObservedDepths: return ObservedDepthsClose(handle);
    case Family::TPE: return TPEClose(handle);
    }
    return -1;
}

void writeLine(Family family, const std::wstring &directory, std::size_t records) {
    TOVO_Sensor *h = openLine(family, directory, L"create");
    switch (family) {
    case Family::Gyro: writeGyro(h, records); break;
    case Family::Navigation: writeNavigation(h, records); break;
    case Family::ObservedDepths: writeObservedDepths(h, profilesFor(family, records)); break;
    case Family::TPE: writeTPE(h, profilesFor(family, records)); break;
    }
    require(closeLine(family, h), "Close");
}

void addForLines(const std::string &name, void (*run)(benchmark::State &), bool cached) {
    for (long long cache : {0, 1}) {
        if (cache && !cached) continue;
        for (std::size_t records : {kSmallLine, kLargeLine})
            passes(benchmark::RegisterBenchmark((name + (cache ? "+cache" : "")).c_str(), run)
                       ->Args({static_cast<long long>(records), cache})
                       ->ArgNames({"records", "cache"}),
                   records);
    }
}

const Line &line(Family family, std::size_t records) {
    static std::map<std::pair<Family, std::size_t>, Line> lines;
    const auto key = std::make_pair(family, records);
    auto found = lines.find(key);
    if (found != lines.end()) return found->second;
    Line made;
    made.directory = freshDir(std::string(layoutOf(family).stem) + "-" + std::to_string(records));
    made.wdirectory = widen(made.directory);
    made.dataFile = made.directory + "/" + layoutOf(family).stem;
    made.indexFile = made.dataFile + "TmIdx";
    made.records = records;
    writeLine(family, made.wdirectory, records);
    warm(made.dataFile);
    warm(made.indexFile);
    return lines.emplace(key, std::move(made)).first->second;
}

}  // namespace velmio::bench
