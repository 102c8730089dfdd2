// Fuzz targets of the line store and the sensor families: one input is the
// files of one sensor of a line, mounted in memory, read in query mode,
// edited and saved in update mode, and read again. One source is built as several
// targets (VELMIO_FUZZ_LINE picks one), so that a reader can get a fuzzing
// run of its own:
//
//   sensor_line (0)                     every family's three files
//   observed_depths, slant_range, tpe   the three files of that profile family
//   (1, 2, 3)
//   time_index, line_segments (4, 5)    that one file, for any family, beside
//                                       the other files of a line the
//                                       library wrote
//
// Input: byte 0 picks the family (modulo the target's table), bytes 1..3 are
// unused; three-file targets then carry the big-endian lengths of the data
// file and the line segment file and the three files back to back, the
// single-file targets the file alone. The files start on 4-byte boundaries,
// so word-wise mutations of the input hit whole XDR units.
#include "fuzz_support.h"

#include "linestore/memory_line.h"

#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>
#include <velmio/slant_range.h>
#include <velmio/time_conversions.h>
#include <velmio/tpe.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <string>

#ifndef VELMIO_FUZZ_LINE
#define VELMIO_FUZZ_LINE 0
#endif

using velmio::fuzz::Bytes;
using velmio::fuzz::Part;

namespace {

// Upper bounds of the loops, so that a file claiming many records costs no
// more than the reads a small file can hold.
constexpr unsigned kMaxSegments = 64;
constexpr unsigned kMaxRecords = 1024;
constexpr unsigned kMaxBeamsPerProfile = 64;

enum class Kind { Simple, Navigation, ObservedDepths, SlantRange, Tpe };

struct Family {
    const char *name;  // file stem in the line directory
    Kind kind;
    unsigned typeId;   // simple sensors only
    int scale;         // simple sensors only
    bool alternate;    // SSSNavigation, ObservedDepthsNew
};

// Which files an input carries.
enum class Carried { AllThree, TimeIndex, LineSegments };

#if VELMIO_FUZZ_LINE == 1
const Family kFamilies[] = {{"ObservedDepths", Kind::ObservedDepths, 0, 0, false},
                            {"ObservedDepthsNew", Kind::ObservedDepths, 0, 0, true}};
#elif VELMIO_FUZZ_LINE == 2
const Family kFamilies[] = {{"SLRange", Kind::SlantRange, 0, 0, false}};
#elif VELMIO_FUZZ_LINE == 3
const Family kFamilies[] = {{"TPE", Kind::Tpe, 0, 0, false}};
#elif VELMIO_FUZZ_LINE == 4 || VELMIO_FUZZ_LINE == 5
// Every layout once: the line segment files differ in their extents.
const Family kFamilies[] = {{"Gyro", Kind::Simple, 1, VELMIO_SIMPLE_SENSOR_RADIANS, false},
                            {"Navigation", Kind::Navigation, 0, 0, false},
                            {"ObservedDepths", Kind::ObservedDepths, 0, 0, false},
                            {"SLRange", Kind::SlantRange, 0, 0, false},
                            {"TPE", Kind::Tpe, 0, 0, false}};
#else
const Family kFamilies[] = {
    {"Gyro", Kind::Simple, 1, VELMIO_SIMPLE_SENSOR_RADIANS, false},
    {"Heave", Kind::Simple, 2, VELMIO_SIMPLE_SENSOR_METRES, false},
    {"Navigation", Kind::Navigation, 0, 0, false},
    {"SSSNavigation", Kind::Navigation, 0, 0, true},
    {"ObservedDepths", Kind::ObservedDepths, 0, 0, false},
    {"ObservedDepthsNew", Kind::ObservedDepths, 0, 0, true},
    {"SLRange", Kind::SlantRange, 0, 0, false},
    {"TPE", Kind::Tpe, 0, 0, false},
};
#endif
constexpr Carried kCarried = VELMIO_FUZZ_LINE == 4   ? Carried::TimeIndex
                             : VELMIO_FUZZ_LINE == 5 ? Carried::LineSegments
                                                     : Carried::AllThree;
constexpr unsigned kFamilyCount = sizeof(kFamilies) / sizeof(kFamilies[0]);

const wchar_t *const kQuery = L"query";
const wchar_t *const kUpdate = L"update";

// Records (or profiles) to touch in update mode: both ends, the middle and
// the numbers just outside.
std::vector<unsigned> editTargets(unsigned count) {
    return {0u, 1u, count / 2 + 1, count, count + 1};
}

// ---- simple sensors ----------------------------------------------------

void simplePass(const std::wstring &dir, const Family &f, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = SimpleSensorOpen(dir.c_str(), mode, f.typeId, f.scale, &error);
    if (!h) return;
    unsigned segments = 0, records = 0, status = 0, first = 0, last = 0;
    double t0, t1, v0, v1, t, v;
    SimpleSensorSummary(h, &segments, &records, &t0, &t1, &v0, &v1, &status);
    for (unsigned s = 0; s <= std::min(segments, kMaxSegments) + 1; ++s) {
        wchar_t *name = nullptr;
        if (SimpleSensorLineSegment(h, static_cast<int>(s), &name, &first, &last, &t0, &t1, &v0, &v1, &status) == 0)
            std::free(name);
    }
    const unsigned n = std::min(records, kMaxRecords);
    for (unsigned r = 0; r <= n + 1; ++r) SimpleSensorRead(h, r, &t, &v, &status);
    SimpleSensorRead(h, 0xFFFFFFFFu, &t, &v, &status);
    if (mode == kQuery) {
        for (unsigned r = 0; r <= n + 1; ++r)
            if (SimpleSensorReadSeq(h, &t, &v, &status) != 0) break;
    } else {
        for (unsigned r : editTargets(records)) {
            status = 0;
            SimpleSensorRead(h, r, &t, &v, &status);
            SimpleSensorSetRecordStatus(h, r, status ^ 0x80000000u);
        }
        SimpleSensorSetRecordStatus(h, 1, 0x40000000u);
        SimpleSensorSetLineSegmentStatus(h, 1, 0x3u);
        SimpleSensorSetLineSegmentStatus(h, static_cast<int>(segments) + 1, 0x3u);
        SimpleSensorSetSummaryStatus(h, 0x5u);
        SimpleSensorSaveStatusToDisk(h);
        SimpleSensorRead(h, 1, &t, &v, &status);
    }
    SimpleSensorClose(h);
}

// ---- navigation ----------------------------------------------------------

struct NavigationApi {
    decltype(&NavigationOpenDir) open;
    decltype(&NavigationClose) close;
    decltype(&NavigationSummary) summary;
    decltype(&NavigationLineSegment) lineSegment;
    decltype(&NavigationRead) read;
    decltype(&NavigationReadSeq) readSeq;
    decltype(&NavigationSetSummaryStatus) setSummaryStatus;
    decltype(&NavigationSetLineSegmentStatus) setLineSegmentStatus;
    decltype(&NavigationGetRecordStatus) getRecordStatus;
    decltype(&NavigationSetRecordStatus) setRecordStatus;
    decltype(&NavigationSaveStatusToDisk) save;
};

const NavigationApi kNavigation = {
    NavigationOpenDir, NavigationClose, NavigationSummary, NavigationLineSegment,
    NavigationRead, NavigationReadSeq, NavigationSetSummaryStatus, NavigationSetLineSegmentStatus,
    NavigationGetRecordStatus, NavigationSetRecordStatus, NavigationSaveStatusToDisk};
const NavigationApi kSSSNavigation = {
    SSSNavigationOpenDir, SSSNavigationClose, SSSNavigationSummary, SSSNavigationLineSegment,
    SSSNavigationRead, SSSNavigationReadSeq, SSSNavigationSetSummaryStatus, SSSNavigationSetLineSegmentStatus,
    SSSNavigationGetRecordStatus, SSSNavigationSetRecordStatus, SSSNavigationSaveStatusToDisk};

void navigationPass(const std::wstring &dir, const Family &f, const wchar_t *mode) {
    const NavigationApi &api = f.alternate ? kSSSNavigation : kNavigation;
    int error = 0;
    TOVO_Sensor *h = api.open(dir.c_str(), mode, &error);
    if (!h) return;
    unsigned segments = 0, records = 0, coordinates = 0, status = 0, first = 0, last = 0;
    double t0, t1, lat0, lat1, lon0, lon1, t, lat, lon, m;
    api.summary(h, &segments, &records, &coordinates, &t0, &t1, &lat0, &lat1, &lon0, &lon1, &status);
    for (unsigned s = 0; s <= std::min(segments, kMaxSegments) + 1; ++s) {
        wchar_t *name = nullptr;
        if (api.lineSegment(h, static_cast<int>(s), &name, &first, &last, &t0, &t1, &lat0, &lat1, &lon0, &lon1,
                            &status) == 0)
            std::free(name);
    }
    const unsigned n = std::min(records, kMaxRecords);
    for (unsigned r = 0; r <= n + 1; ++r) api.read(h, r, &t, &lat, &lon, &m, &status);
    if (mode == kQuery) {
        for (unsigned r = 0; r <= n + 1; ++r)
            if (api.readSeq(h, &t, &lat, &lon, &m, &status) != 0) break;
    } else {
        for (unsigned r : editTargets(records)) {
            status = 0;
            api.getRecordStatus(h, r, &status);
            api.setRecordStatus(h, r, status ^ 0x80000000u);
        }
        api.setLineSegmentStatus(h, 1, 0x3u);
        api.setLineSegmentStatus(h, static_cast<int>(segments) + 1, 0x3u);
        api.setSummaryStatus(h, 0x5u);
        api.save(h);
        api.read(h, 1, &t, &lat, &lon, &m, &status);
    }
    api.close(h);
}

// ---- profile families ----------------------------------------------------

// Reads every profile header and every beam by number, then (query mode)
// the whole file sequentially. readProfile and readBeam return 0 on success.
template <class ReadProfile, class ReadBeam, class ReadProfileSeq, class ReadSeq>
void readProfiles(unsigned profiles, bool sequential, ReadProfile readProfile, ReadBeam readBeam,
                  ReadProfileSeq readProfileSeq, ReadSeq readSeq) {
    const unsigned n = std::min(profiles, kMaxRecords);
    unsigned budget = 4 * kMaxRecords;
    for (unsigned p = 0; p <= n + 1; ++p) {
        unsigned beams = 0, firstBeam = 0;
        if (readProfile(p, beams, firstBeam) != 0) continue;
        const unsigned count = std::min(beams, kMaxBeamsPerProfile);
        // One beam before the profile's numbering and one after it.
        for (unsigned b = 0; b <= count + 1 && budget; ++b, --budget) readBeam(p, firstBeam + b - 1);
    }
    if (!sequential) return;
    for (unsigned p = 0; p <= n; ++p) {
        unsigned beams = 0, firstBeam = 0;
        if (readProfileSeq(beams, firstBeam) != 0) break;
        const unsigned count = std::min(beams, kMaxBeamsPerProfile);
        for (unsigned b = 0; b < count && budget; ++b, --budget)
            if (readSeq() != 0) break;
    }
}

void observedDepthsPass(const std::wstring &dir, const Family &f, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = f.alternate ? ObservedDepthsNewOpenDir(dir.c_str(), mode, &error)
                                 : ObservedDepthsOpenDir(dir.c_str(), mode, &error);
    if (!h) return;
    unsigned tool = 0, segments = 0, profiles = 0, beams = 0, status = 0, first = 0, last = 0;
    double t0, t1, d0, d1, t, a1, a2, x, y, z, extra;
    ObservedDepthsSummary(h, &tool, &segments, &profiles, &beams, &t0, &t1, &d0, &d1, &status);
    for (unsigned s = 0; s <= std::min(segments, kMaxSegments) + 1; ++s) {
        wchar_t *name = nullptr;
        if (ObservedDepthsLineSegment(h, static_cast<int>(s), &name, &first, &last, &t0, &t1, &d0, &d1, &status) ==
            0)
            std::free(name);
    }
    readProfiles(
        profiles, mode == kQuery,
        [&](unsigned p, unsigned &nb, unsigned &fb) {
            return ObservedDepthsReadProfile(h, p, &nb, &fb, &t, &a1, &a2, &status);
        },
        [&](unsigned p, unsigned b) { return ObservedDepthsRead(h, p, b, &t, &y, &x, &z, &extra, &status); },
        [&](unsigned &nb, unsigned &fb) { return ObservedDepthsReadProfileSeq(h, &nb, &fb, &t, &a1, &a2, &status); },
        [&]() { return ObservedDepthsReadSeq(h, &t, &y, &x, &z, &extra, &status); });
    if (mode == kUpdate) {
        for (unsigned p : editTargets(profiles)) {
            unsigned nb = 0, fb = 0;
            ObservedDepthsReadProfile(h, p, &nb, &fb, &t, &a1, &a2, &status);
            for (unsigned b : {fb, fb + nb - 1, fb + nb}) {
                const double depth = 12.5, nx = 3.0;
                const unsigned word = 0x80000000u;
                ObservedDepthsUpdateStatus(h, p, b, 0x10000000u);
                ObservedDepthsUpdateRejectionStatus(h, p, b, 0x40000000u);
                ObservedDepthsUpdateDepth(h, p, b, -20.0);
                ObservedDepthsUpdateDepthStatus(h, p, b, 2500000.0, 0x20000000u);
                ObservedDepthsUpdateXYZStatus(h, p, b, &nx, nullptr, &depth, &word);
            }
        }
        ObservedDepthsSetLineSegmentStatus(h, 1, 0x3u);
        ObservedDepthsSetLineSegmentStatus(h, static_cast<int>(segments) + 1, 0x3u);
        ObservedDepthsSetSummaryStatus(h, 0x5u);
        ObservedDepthsSetToolType(h, 7u);
        ObservedDepthsSaveStatusToDisk(h);
    }
    ObservedDepthsClose(h);
}

void slantRangePass(const std::wstring &dir, const Family &, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = SLRangeOpenDir(dir.c_str(), mode, &error);
    if (!h) return;
    unsigned tool = 0, segments = 0, profiles = 0, beams = 0, status = 0, first = 0, last = 0;
    double t0, t1, t, a1, a2, range, value, b1, b2;
    SLRangeSummary(h, &tool, &segments, &profiles, &beams, &t0, &t1, &status);
    for (unsigned s = 0; s <= std::min(segments, kMaxSegments) + 1; ++s) {
        wchar_t *name = nullptr;
        if (SLRangeLineSegment(h, static_cast<int>(s), &name, &first, &last, &t0, &t1, &status) == 0)
            std::free(name);
    }
    readProfiles(
        profiles, mode == kQuery,
        [&](unsigned p, unsigned &nb, unsigned &fb) {
            return SLRangeReadProfile(h, p, &nb, &fb, &t, &a1, &a2, &status);
        },
        [&](unsigned p, unsigned b) { return SLRangeRead(h, p, b, &t, &range, &value, &b1, &b2, &status); },
        [&](unsigned &nb, unsigned &fb) { return SLRangeReadProfileSeq(h, &nb, &fb, &t, &a1, &a2, &status); },
        [&]() { return SLRangeReadSeq(h, &t, &range, &value, &b1, &b2, &status); });
    if (mode == kUpdate) {
        for (unsigned p : editTargets(profiles)) {
            unsigned nb = 0, fb = 0;
            SLRangeReadProfile(h, p, &nb, &fb, &t, &a1, &a2, &status);
            for (unsigned b : {fb, fb + nb - 1, fb + nb}) SLRangeUpdateStatus(h, p, b, 0x80000000u);
        }
        SLRangeSetLineSegmentStatus(h, 1, 0x3u);
        SLRangeSetLineSegmentStatus(h, static_cast<int>(segments) + 1, 0x3u);
        SLRangeSetSummaryStatus(h, 0x5u);
        SLRangeSetToolType(h, 9u);
    }
    SLRangeClose(h);
}

void tpePass(const std::wstring &dir, const Family &, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = TPEOpenDir(dir.c_str(), mode, &error);
    if (!h) return;
    unsigned segments = 0, profiles = 0, beams = 0, tool1 = 0, tool2 = 0, status = 0, first = 0, last = 0, word = 0;
    double t0, t1, e10, e11, e20, e21, t, e1, e2;
    TPESummary(h, &segments, &profiles, &beams, &t0, &t1, &tool1, &tool2, &e10, &e11, &e20, &e21, &status);
    for (unsigned s = 0; s <= std::min(segments, kMaxSegments) + 1; ++s) {
        wchar_t *name = nullptr;
        if (TPELineSegment(h, static_cast<int>(s), &name, &first, &last, &t0, &t1, &status) == 0) std::free(name);
    }
    readProfiles(
        profiles, mode == kQuery,
        [&](unsigned p, unsigned &nb, unsigned &fb) { return TPEReadProfile(h, p, &nb, &fb, &t, &word, &status); },
        [&](unsigned p, unsigned b) { return TPERead(h, p, b, &t, &e1, &e2, &status); },
        [&](unsigned &nb, unsigned &fb) { return TPEReadProfileSeq(h, &nb, &fb, &t, &word, &status); },
        [&]() { return TPEReadSeq(h, &t, &e1, &e2, &status); });
    if (mode == kUpdate) {
        TPESetLineSegmentStatus(h, 1, 0x3u);
        TPESetLineSegmentStatus(h, static_cast<int>(segments) + 1, 0x3u);
        TPESetSummaryStatus(h, 0x5u);
        TPESetToolType(h, 3u, 4u);
    }
    TPEClose(h);
}

using Pass = void (*)(const std::wstring &, const Family &, const wchar_t *);

Pass passOf(Kind kind) {
    switch (kind) {
    case Kind::Simple: return simplePass;
    case Kind::Navigation: return navigationPass;
    case Kind::ObservedDepths: return observedDepthsPass;
    case Kind::SlantRange: return slantRangePass;
    case Kind::Tpe: return tpePass;
    }
    return simplePass;
}

const char *const kSuffixes[3] = {"", "LineSegments", "TmIdx"};

// Query, update, then query again what the update saved, all in memory.
void runLine(const Family &f, const std::vector<Part> &parts) {
    velmio::MemoryLine line;
    line.data.assign(parts[0].data, parts[0].size);
    line.segments.assign(parts[1].data, parts[1].size);
    line.timeIndex.assign(parts[2].data, parts[2].size);
    const std::wstring dir = velmio::fuzz::memoryDirectory();
    const velmio::MountedLine mount(dir, velmio::fuzz::widen(f.name).c_str(), line);
    const Pass pass = passOf(f.kind);
    pass(dir, f, kQuery);
    pass(dir, f, kUpdate);
    pass(dir, f, kQuery);
}

// The three files of a line of the family the library wrote, once per process.
const std::vector<Bytes> &writtenLine(const Family &f);

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    const Family &f = kFamilies[data[0] % kFamilyCount];
    std::vector<Part> parts;
    if (kCarried == Carried::AllThree) {
        parts = velmio::fuzz::unpack(data, size, 3);
    } else {
        const std::vector<Bytes> &line = writtenLine(f);
        for (const Bytes &file : line) parts.push_back({file.data(), file.size()});
        const std::size_t body = std::min<std::size_t>(4, size);
        parts[kCarried == Carried::TimeIndex ? 2 : 1] = {data + body, size - body};
    }
    if (f.kind == Kind::Tpe) {
        // The block reader serves reads only when the cache size is set at open.
        setenv("VelmIOCacheSize", "4", 1);
        runLine(f, parts);
        unsetenv("VelmIOCacheSize");
    }
    runLine(f, parts);
    return 0;
}

// ---- seeds ---------------------------------------------------------------

namespace {

double seedTime() { return TmYDStoUTCs80(2009, 83, 45005.25); }

// Two segments of three and two records.
void writeSimple(const std::wstring &dir, const Family &f) {
    int error = 0;
    TOVO_Sensor *h = SimpleSensorOpen(dir.c_str(), L"create", f.typeId, f.scale, &error);
    if (!h) return;
    SimpleSensorBgnSeqWriteSummary(h);
    const double t = seedTime();
    SimpleSensorBgnSeqWriteLineSegment(h, L"0001_raw.all");
    for (int i = 0; i < 3; ++i) SimpleSensorSeqWrite(h, t + i * 0.1, 0.01 * i - 0.005, 0);
    SimpleSensorEndSeqWriteLineSegment(h, 0);
    SimpleSensorBgnSeqWriteLineSegment(h, L"0002.xtf");
    SimpleSensorSeqWrite(h, t + 60.25, 1.5, 0x80000000u);
    SimpleSensorSeqWrite(h, t + 61.0, -1.5, 0);
    SimpleSensorEndSeqWriteLineSegment(h, 0x2u);
    SimpleSensorEndSeqWriteSummary(h, 0x1u);
    SimpleSensorClose(h);
}

void writeNavigation(const std::wstring &dir, const Family &f) {
    const NavigationApi &api = f.alternate ? kSSSNavigation : kNavigation;
    int error = 0;
    TOVO_Sensor *h = api.open(dir.c_str(), L"create", &error);
    if (!h) return;
    const auto bgnSummary = f.alternate ? SSSNavigationBgnSeqWriteSummary : NavigationBgnSeqWriteSummary;
    const auto bgnSegment = f.alternate ? SSSNavigationBgnSeqWriteLineSegment : NavigationBgnSeqWriteLineSegment;
    const auto write = f.alternate ? SSSNavigationSeqWrite : NavigationSeqWrite;
    const auto endSegment = f.alternate ? SSSNavigationEndSeqWriteLineSegment : NavigationEndSeqWriteLineSegment;
    const auto endSummary = f.alternate ? SSSNavigationEndSeqWriteSummary : NavigationEndSeqWriteSummary;
    bgnSummary(h, 2);
    const double t = seedTime();
    bgnSegment(h, L"nav_a.pos");
    for (int i = 0; i < 3; ++i) write(h, t + i, 0.7875 + i * 1e-6, -1.1083 - i * 1e-6, 10.0 + i, 0);
    endSegment(h, 0);
    bgnSegment(h, L"nav_b.pos");
    write(h, t + 30, 0.7876, -1.1084, -3.25, 0x80000000u);
    write(h, t + 31, 0.7877, -1.1085, 0.0, 0);
    endSegment(h, 0x4u);
    endSummary(h, 0x1u);
    api.close(h);
}

// Profiles of three beams, the second segment's numbered from 5.
void writeObservedDepths(const std::wstring &dir, const Family &f) {
    int error = 0;
    TOVO_Sensor *h = f.alternate ? ObservedDepthsNewOpenDir(dir.c_str(), L"create", &error)
                                 : ObservedDepthsOpenDir(dir.c_str(), L"create", &error);
    if (!h) return;
    ObservedDepthsBgnSeqWriteSummary(h);
    ObservedDepthsSetToolType(h, 12);
    const double t = seedTime();
    for (int s = 0; s < 2; ++s) {
        ObservedDepthsBgnSeqWriteLineSegment(h, s ? L"ping_b.all" : L"ping_a.all");
        for (int p = 0; p < 2; ++p) {
            const double pt = t + s * 10 + p * 0.5;
            ObservedDepthsBgnSeqWriteProfile(h, 3, s ? 5 : 1, pt, 0.01, -0.02, 0);
            for (int b = 0; b < 3; ++b)
                ObservedDepthsSeqWrite(h, pt + b * 0.001, b * 1.5, -b * 0.5, 20.0 + b, 0, 0, b == 1 ? 0x80000000u : 0);
            ObservedDepthsEndSeqWriteProfile(h);
        }
        ObservedDepthsEndSeqWriteLineSegment(h, 0);
    }
    ObservedDepthsEndSeqWriteSummary(h, 0x1u);
    ObservedDepthsClose(h);
}

void writeSlantRange(const std::wstring &dir, const Family &) {
    int error = 0;
    TOVO_Sensor *h = SLRangeOpenDir(dir.c_str(), L"create", &error);
    if (!h) return;
    SLRangeBgnSeqWriteSummary(h, 5);
    const double t = seedTime();
    for (int s = 0; s < 2; ++s) {
        SLRangeBgnSeqWriteLineSegment(h, s ? L"sl_b.all" : L"sl_a.all");
        for (int p = 0; p < 2; ++p) {
            const double pt = t + s * 10 + p * 0.5;
            SLRangeBgnSeqWriteProfile(h, 3, s ? 5 : 1, pt, 0.01, -0.02, 0);
            for (int b = 0; b < 3; ++b)
                SLRangeSeqWrite(h, pt + b * 0.002, 30.0 + b, 0.25 * b, 0.5 - b * 0.1, -0.3, b == 2 ? 0x40000000u : 0);
            SLRangeEndSeqWriteProfile(h);
        }
        SLRangeEndSeqWriteLineSegment(h, 0);
    }
    SLRangeEndSeqWriteSummary(h, 0x1u);
    SLRangeClose(h);
}

void writeTpe(const std::wstring &dir, const Family &) {
    int error = 0;
    TOVO_Sensor *h = TPEOpenDir(dir.c_str(), L"create", &error);
    if (!h) return;
    TPEBgnSeqWriteSummary(h);
    TPESetToolType(h, 1, 2);
    const double t = seedTime();
    for (int s = 0; s < 2; ++s) {
        TPEBgnSeqWriteLineSegment(h, s ? L"tpe_b.all" : L"tpe_a.all");
        for (int p = 0; p < 2; ++p) {
            const double pt = t + s * 10 + p * 0.5;
            TPEBgnSeqWriteProfile(h, 3, s ? 5 : 1, pt, 0x00010002u, 0);
            for (int b = 0; b < 3; ++b) TPESeqWrite(h, pt + b * 0.003, 0.1 * b, 0.25 + b, 0);
            TPEEndSeqWriteProfile(h);
        }
        TPEEndSeqWriteLineSegment(h, 0);
    }
    TPEEndSeqWriteSummary(h, 0x1u);
    TPEClose(h);
}

const std::vector<Bytes> &writtenLine(const Family &f) {
    static std::map<const Family *, std::vector<Bytes>> lines;
    auto found = lines.find(&f);
    if (found != lines.end()) return found->second;
    const std::string dir = velmio::fuzz::freshDirectory();
    const std::wstring wdir = velmio::fuzz::widen(dir);
    switch (f.kind) {
    case Kind::Simple: writeSimple(wdir, f); break;
    case Kind::Navigation: writeNavigation(wdir, f); break;
    case Kind::ObservedDepths: writeObservedDepths(wdir, f); break;
    case Kind::SlantRange: writeSlantRange(wdir, f); break;
    case Kind::Tpe: writeTpe(wdir, f); break;
    }
    std::vector<Bytes> files;
    for (const char *suffix : kSuffixes) files.push_back(velmio::fuzz::requireFile(dir + "/" + f.name + suffix));
    return lines[&f] = files;
}

}  // namespace

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    std::vector<Bytes> seeds;
    for (unsigned i = 0; i < kFamilyCount; ++i) {
        const std::vector<Bytes> &line = writtenLine(kFamilies[i]);
        if (kCarried == Carried::AllThree) {
            seeds.push_back(velmio::fuzz::pack({static_cast<std::uint8_t>(i)}, line));
        } else {
            Bytes seed{static_cast<std::uint8_t>(i), 0, 0, 0};
            const Bytes &file = line[kCarried == Carried::TimeIndex ? 2 : 1];
            seed.insert(seed.end(), file.begin(), file.end());
            seeds.push_back(seed);
        }
    }
    return seeds;
}
