// Fuzz targets of single line files, one source built as several targets
// (VELMIO_FUZZ_LINE picks one), so that each reader gets a whole fuzzing run
// of its own instead of a share of the mixed sensor line target:
//
//   observed_depths, slant_range, tpe   the three files of that profile family
//   time_index, line_segments           that one file, for any family, beside
//                                       whole data and other files of a line
//                                       the library wrote
//
// Each line is read in query mode, edited and saved in update mode, and read
// again. Input: byte 0 picks the family (modulo the target's list), bytes
// 1..3 are unused; the profile targets then carry the big-endian lengths of
// the data file and the line segment file and the three files back to back,
// the single-file targets the file alone.
#include "fuzz_support.h"

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

using velmio::fuzz::Bytes;
using velmio::fuzz::Part;

namespace {

// Loop bounds: a file claiming many records costs no more than a small one.
constexpr unsigned kMaxSegments = 64;
constexpr unsigned kMaxRecords = 1024;
constexpr unsigned kMaxBeams = 64;

enum class Kind { Simple, Navigation, ObservedDepths, SlantRange, Tpe };

struct Family {
    const char *name;  // file stem in the line directory
    Kind kind;
    bool alternate;    // ObservedDepthsNew
};

// Which files an input carries.
enum class Carried { AllThree, TimeIndex, LineSegments };

#if VELMIO_FUZZ_LINE == 1
const Family kFamilies[] = {{"ObservedDepths", Kind::ObservedDepths, false},
                            {"ObservedDepthsNew", Kind::ObservedDepths, true}};
constexpr Carried kCarried = Carried::AllThree;
#elif VELMIO_FUZZ_LINE == 2
const Family kFamilies[] = {{"SLRange", Kind::SlantRange, false}};
constexpr Carried kCarried = Carried::AllThree;
#elif VELMIO_FUZZ_LINE == 3
const Family kFamilies[] = {{"TPE", Kind::Tpe, false}};
constexpr Carried kCarried = Carried::AllThree;
#else
// Every family once: the line segment files differ in their extents.
const Family kFamilies[] = {{"Gyro", Kind::Simple, false},           {"Navigation", Kind::Navigation, false},
                            {"ObservedDepths", Kind::ObservedDepths, false}, {"SLRange", Kind::SlantRange, false},
                            {"TPE", Kind::Tpe, false}};
constexpr Carried kCarried = VELMIO_FUZZ_LINE == 4 ? Carried::TimeIndex : Carried::LineSegments;
#endif
constexpr unsigned kFamilyCount = sizeof kFamilies / sizeof kFamilies[0];

const wchar_t *const kQuery = L"query";
const wchar_t *const kUpdate = L"update";
constexpr unsigned kGyroType = 1;

// Both ends, the middle and the numbers just outside.
std::vector<unsigned> editTargets(unsigned count) { return {0u, 1u, count / 2 + 1, count, count + 1}; }

// Every segment by number, with one past each end.
template <class Segment>
void readSegments(unsigned segments, Segment segment) {
    for (unsigned s = 0; s <= std::min(segments, kMaxSegments) + 1; ++s) {
        wchar_t *name = nullptr;
        if (segment(static_cast<int>(s), &name) == 0) std::free(name);
    }
}

// Every profile header and its beams by number (one beam outside each end),
// then in query mode the whole file sequentially. 0 is success.
template <class Profile, class Beam, class ProfileSeq, class BeamSeq>
void readProfiles(unsigned profiles, bool sequential, Profile profile, Beam beam, ProfileSeq profileSeq,
                  BeamSeq beamSeq) {
    const unsigned n = std::min(profiles, kMaxRecords);
    unsigned budget = 4 * kMaxRecords;
    for (unsigned p = 0; p <= n + 1; ++p) {
        unsigned beams = 0, first = 0;
        if (profile(p, beams, first) != 0) continue;
        for (unsigned b = 0; b <= std::min(beams, kMaxBeams) + 1 && budget; ++b, --budget) beam(p, first + b - 1);
    }
    for (unsigned p = 0; sequential && p <= n; ++p) {
        unsigned beams = 0, first = 0;
        if (profileSeq(beams, first) != 0) break;
        for (unsigned b = 0; b < std::min(beams, kMaxBeams) && budget; ++b, --budget)
            if (beamSeq() != 0) break;
    }
}

void simplePass(const std::wstring &dir, const Family &, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = SimpleSensorOpen(dir.c_str(), mode, kGyroType, VELMIO_SIMPLE_SENSOR_RADIANS, &error);
    if (!h) return;
    unsigned segments = 0, records = 0, status = 0, first = 0, last = 0;
    double t0, t1, v0, v1, t, v;
    SimpleSensorSummary(h, &segments, &records, &t0, &t1, &v0, &v1, &status);
    readSegments(segments, [&](int s, wchar_t **name) {
        return SimpleSensorLineSegment(h, s, name, &first, &last, &t0, &t1, &v0, &v1, &status);
    });
    const unsigned n = std::min(records, kMaxRecords);
    for (unsigned r = 0; r <= n + 1; ++r) SimpleSensorRead(h, r, &t, &v, &status);
    if (mode == kQuery) {
        for (unsigned r = 0; r <= n + 1 && SimpleSensorReadSeq(h, &t, &v, &status) == 0; ++r) {
        }
    } else {
        for (unsigned r : editTargets(records)) SimpleSensorSetRecordStatus(h, r, 0x80000000u);
        SimpleSensorSetLineSegmentStatus(h, 1, 0x3u);
        SimpleSensorSetSummaryStatus(h, 0x5u);
        SimpleSensorSaveStatusToDisk(h);
    }
    SimpleSensorClose(h);
}

void navigationPass(const std::wstring &dir, const Family &, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = NavigationOpenDir(dir.c_str(), mode, &error);
    if (!h) return;
    unsigned segments = 0, records = 0, coordinates = 0, status = 0, first = 0, last = 0;
    double t0, t1, lat0, lat1, lon0, lon1, t, lat, lon, m;
    NavigationSummary(h, &segments, &records, &coordinates, &t0, &t1, &lat0, &lat1, &lon0, &lon1, &status);
    readSegments(segments, [&](int s, wchar_t **name) {
        return NavigationLineSegment(h, s, name, &first, &last, &t0, &t1, &lat0, &lat1, &lon0, &lon1, &status);
    });
    const unsigned n = std::min(records, kMaxRecords);
    for (unsigned r = 0; r <= n + 1; ++r) NavigationRead(h, r, &t, &lat, &lon, &m, &status);
    if (mode == kQuery) {
        for (unsigned r = 0; r <= n + 1 && NavigationReadSeq(h, &t, &lat, &lon, &m, &status) == 0; ++r) {
        }
    } else {
        for (unsigned r : editTargets(records)) NavigationSetRecordStatus(h, r, 0x80000000u);
        NavigationSetLineSegmentStatus(h, 1, 0x3u);
        NavigationSetSummaryStatus(h, 0x5u);
        NavigationSaveStatusToDisk(h);
    }
    NavigationClose(h);
}

void observedDepthsPass(const std::wstring &dir, const Family &f, const wchar_t *mode) {
    int error = 0;
    TOVO_Sensor *h = f.alternate ? ObservedDepthsNewOpenDir(dir.c_str(), mode, &error)
                                 : ObservedDepthsOpenDir(dir.c_str(), mode, &error);
    if (!h) return;
    unsigned tool = 0, segments = 0, profiles = 0, beams = 0, status = 0, first = 0, last = 0;
    double t0, t1, d0, d1, t, a1, a2, x, y, z, extra;
    ObservedDepthsSummary(h, &tool, &segments, &profiles, &beams, &t0, &t1, &d0, &d1, &status);
    readSegments(segments, [&](int s, wchar_t **name) {
        return ObservedDepthsLineSegment(h, s, name, &first, &last, &t0, &t1, &d0, &d1, &status);
    });
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
    readSegments(segments,
                 [&](int s, wchar_t **name) { return SLRangeLineSegment(h, s, name, &first, &last, &t0, &t1, &status); });
    readProfiles(
        profiles, mode == kQuery,
        [&](unsigned p, unsigned &nb, unsigned &fb) { return SLRangeReadProfile(h, p, &nb, &fb, &t, &a1, &a2, &status); },
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
    readSegments(segments,
                 [&](int s, wchar_t **name) { return TPELineSegment(h, s, name, &first, &last, &t0, &t1, &status); });
    readProfiles(
        profiles, mode == kQuery,
        [&](unsigned p, unsigned &nb, unsigned &fb) { return TPEReadProfile(h, p, &nb, &fb, &t, &word, &status); },
        [&](unsigned p, unsigned b) { return TPERead(h, p, b, &t, &e1, &e2, &status); },
        [&](unsigned &nb, unsigned &fb) { return TPEReadProfileSeq(h, &nb, &fb, &t, &word, &status); },
        [&]() { return TPEReadSeq(h, &t, &e1, &e2, &status); });
    if (mode == kUpdate) {
        TPESetLineSegmentStatus(h, 1, 0x3u);
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

// ---- lines the library writes ----------------------------------------------

double seedTime() { return TmYDStoUTCs80(2009, 83, 45005.25); }

// Two segments; profile families write two profiles of three beams in each,
// the second segment's beams numbered from 5.
void writeLine(const std::wstring &dir, const Family &f) {
    int error = 0;
    const double t = seedTime();
    const wchar_t *names[2] = {L"0001_raw.all", L"0002.xtf"};
    switch (f.kind) {
    case Kind::Simple: {
        TOVO_Sensor *h = SimpleSensorOpen(dir.c_str(), L"create", kGyroType, VELMIO_SIMPLE_SENSOR_RADIANS, &error);
        if (!h) return;
        SimpleSensorBgnSeqWriteSummary(h);
        for (int s = 0; s < 2; ++s) {
            SimpleSensorBgnSeqWriteLineSegment(h, names[s]);
            for (int i = 0; i < 3; ++i) SimpleSensorSeqWrite(h, t + s * 60 + i * 0.1, 0.01 * i - 0.005, 0);
            SimpleSensorEndSeqWriteLineSegment(h, s);
        }
        SimpleSensorEndSeqWriteSummary(h, 0x1u);
        SimpleSensorClose(h);
        break;
    }
    case Kind::Navigation: {
        TOVO_Sensor *h = NavigationOpenDir(dir.c_str(), L"create", &error);
        if (!h) return;
        NavigationBgnSeqWriteSummary(h, 2);
        for (int s = 0; s < 2; ++s) {
            NavigationBgnSeqWriteLineSegment(h, names[s]);
            for (int i = 0; i < 3; ++i)
                NavigationSeqWrite(h, t + s * 30 + i, 0.7875 + i * 1e-6, -1.1083 - i * 1e-6, 10.0 + i, 0);
            NavigationEndSeqWriteLineSegment(h, s);
        }
        NavigationEndSeqWriteSummary(h, 0x1u);
        NavigationClose(h);
        break;
    }
    case Kind::ObservedDepths: {
        TOVO_Sensor *h = f.alternate ? ObservedDepthsNewOpenDir(dir.c_str(), L"create", &error)
                                     : ObservedDepthsOpenDir(dir.c_str(), L"create", &error);
        if (!h) return;
        ObservedDepthsBgnSeqWriteSummary(h);
        ObservedDepthsSetToolType(h, 12);
        for (int s = 0; s < 2; ++s) {
            ObservedDepthsBgnSeqWriteLineSegment(h, names[s]);
            for (int p = 0; p < 2; ++p) {
                const double pt = t + s * 10 + p * 0.5;
                ObservedDepthsBgnSeqWriteProfile(h, 3, s ? 5 : 1, pt, 0.01, -0.02, 0);
                for (int b = 0; b < 3; ++b)
                    ObservedDepthsSeqWrite(h, pt + b * 0.001, b * 1.5, -b * 0.5, 20.0 + b, 0, 0,
                                           b == 1 ? 0x80000000u : 0);
                ObservedDepthsEndSeqWriteProfile(h);
            }
            ObservedDepthsEndSeqWriteLineSegment(h, 0);
        }
        ObservedDepthsEndSeqWriteSummary(h, 0x1u);
        ObservedDepthsClose(h);
        break;
    }
    case Kind::SlantRange: {
        TOVO_Sensor *h = SLRangeOpenDir(dir.c_str(), L"create", &error);
        if (!h) return;
        SLRangeBgnSeqWriteSummary(h, 5);
        for (int s = 0; s < 2; ++s) {
            SLRangeBgnSeqWriteLineSegment(h, names[s]);
            for (int p = 0; p < 2; ++p) {
                const double pt = t + s * 10 + p * 0.5;
                SLRangeBgnSeqWriteProfile(h, 3, s ? 5 : 1, pt, 0.01, -0.02, 0);
                for (int b = 0; b < 3; ++b)
                    SLRangeSeqWrite(h, pt + b * 0.002, 30.0 + b, 0.25 * b, 0.5 - b * 0.1, -0.3, 0);
                SLRangeEndSeqWriteProfile(h);
            }
            SLRangeEndSeqWriteLineSegment(h, 0);
        }
        SLRangeEndSeqWriteSummary(h, 0x1u);
        SLRangeClose(h);
        break;
    }
    case Kind::Tpe: {
        TOVO_Sensor *h = TPEOpenDir(dir.c_str(), L"create", &error);
        if (!h) return;
        TPEBgnSeqWriteSummary(h);
        TPESetToolType(h, 1, 2);
        for (int s = 0; s < 2; ++s) {
            TPEBgnSeqWriteLineSegment(h, names[s]);
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
        break;
    }
    }
}

const char *const kSuffixes[3] = {"", "LineSegments", "TmIdx"};

// The three files of a line of the family, written once per process.
const std::vector<Bytes> &writtenLine(const Family &f) {
    static std::map<const Family *, std::vector<Bytes>> lines;
    auto found = lines.find(&f);
    if (found != lines.end()) return found->second;
    const std::string dir = velmio::fuzz::freshDirectory();
    writeLine(velmio::fuzz::widen(dir), f);
    std::vector<Bytes> files;
    for (const char *suffix : kSuffixes) files.push_back(velmio::fuzz::requireFile(dir + "/" + f.name + suffix));
    return lines[&f] = files;
}

void runLine(const Family &f, const std::vector<Part> &parts) {
    const std::string dir = velmio::fuzz::freshDirectory();
    for (std::size_t i = 0; i < 3; ++i) velmio::fuzz::writeFile(dir + "/" + f.name + kSuffixes[i], parts[i]);
    const std::wstring wdir = velmio::fuzz::widen(dir);
    const Pass pass = passOf(f.kind);
    pass(wdir, f, kQuery);
    pass(wdir, f, kUpdate);
    pass(wdir, f, kQuery);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0) return 0;
    const Family &f = kFamilies[data[0] % kFamilyCount];
    std::vector<Part> parts;
    if (kCarried == Carried::AllThree) {
        parts = velmio::fuzz::unpack(data, size, 3);
    } else {
        const std::vector<Bytes> &line = writtenLine(f);  // before freshDirectory() of runLine
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

std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds() {
    std::vector<Bytes> seeds;
    for (unsigned i = 0; i < kFamilyCount; ++i) {
        const std::vector<Bytes> &line = writtenLine(kFamilies[i]);
        const Bytes header{static_cast<std::uint8_t>(i)};
        if (kCarried == Carried::AllThree) {
            seeds.push_back(velmio::fuzz::pack(header, line));
        } else {
            Bytes seed{static_cast<std::uint8_t>(i), 0, 0, 0};
            const Bytes &file = line[kCarried == Carried::TimeIndex ? 2 : 1];
            seed.insert(seed.end(), file.begin(), file.end());
            seeds.push_back(seed);
        }
    }
    return seeds;
}
