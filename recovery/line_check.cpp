// Checking lines through the families' own readers: opening a sensor for
// reading validates its files, one pass over the record times finds
// unreadable records and times that go backwards, and the segment list is
// checked against the record count.
#include <velmio/line_check.h>
#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>
#include <velmio/simple_sensor.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include "foundation/wide_copy.h"
#include "platform/files.h"
#include "sensors/line_salvage.h"

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr int kNoMemory = 5000009;
constexpr int kNoDirectory = 5000010;
constexpr int kNotFound = 5000046;
constexpr int kTimeBackwards = 5029101;
constexpr int kSegmentsDoNotCover = 5029102;
constexpr int kWholeRecordsBeyond = 5029103;
constexpr int kPartialRecordAtEnd = 5029104;
constexpr unsigned int kChunk = 4096;  // records read at once

// What checking needs of a family, over its public functions.
struct Family {
    const wchar_t *name;
    TOVO_Sensor *(*open)(const wchar_t *line, const wchar_t *mode, int *error);
    int (*close)(TOVO_Sensor *);
    int (*counts)(TOVO_Sensor *, unsigned int *segments, unsigned int *records);
    int (*times)(TOVO_Sensor *, unsigned int first, unsigned int count, double *times);
    // Inclusive record range of segment n (from 1).
    int (*segment)(TOVO_Sensor *, int n, unsigned int *first, unsigned int *last);
};

// The segment functions hand out the name whether it is wanted or not.
template <class Call>
int segmentRange(Call call) {
    wchar_t *name = nullptr;
    const int rc = call(&name);
    std::free(name);
    return rc;
}

#define VELM_SIMPLE(F)                                                                                              \
    Family {                                                                                                        \
        L## #F, F##OpenDir, SimpleSensorClose,                                                                      \
            [](TOVO_Sensor *h, unsigned int *s, unsigned int *r) {                                                  \
                double d[4];                                                                                        \
                unsigned int status;                                                                                \
                return SimpleSensorSummary(h, s, r, &d[0], &d[1], &d[2], &d[3], &status);                           \
            },                                                                                                      \
            [](TOVO_Sensor *h, unsigned int f, unsigned int c, double *t) {                                         \
                return SimpleSensorReadRange(h, f, c, t, nullptr, nullptr);                                         \
            },                                                                                                      \
            [](TOVO_Sensor *h, int n, unsigned int *f, unsigned int *l) {                                           \
                unsigned int status;                                                                                \
                return segmentRange([&](wchar_t **name) {                                                           \
                    double d[4];                                                                                    \
                    return SimpleSensorLineSegment(h, n, name, f, l, &d[0], &d[1], &d[2], &d[3], &status);          \
                });                                                                                                 \
            }                                                                                                       \
    }

#define VELM_NAVIGATION(F)                                                                                          \
    Family {                                                                                                        \
        L## #F, F##OpenDir, F##Close,                                                                               \
            [](TOVO_Sensor *h, unsigned int *s, unsigned int *r) {                                                  \
                double d[6];                                                                                        \
                unsigned int u[2];                                                                                  \
                return F##Summary(h, s, r, &u[0], &d[0], &d[1], &d[2], &d[3], &d[4], &d[5], &u[1]);                 \
            },                                                                                                      \
            [](TOVO_Sensor *h, unsigned int f, unsigned int c, double *t) {                                         \
                return F##ReadRange(h, f, c, t, nullptr, nullptr, nullptr, nullptr);                                \
            },                                                                                                      \
            [](TOVO_Sensor *h, int n, unsigned int *f, unsigned int *l) {                                           \
                unsigned int status;                                                                                \
                return segmentRange([&](wchar_t **name) {                                                           \
                    double d[6];                                                                                    \
                    return F##LineSegment(h, n, name, f, l, &d[0], &d[1], &d[2], &d[3], &d[4], &d[5], &status);     \
                });                                                                                                 \
            }                                                                                                       \
    }

// Profile families: the records checked are the profiles.
#define VELM_PROFILES(NAME, OPEN, F, SUMMARY, TIMES, SEGMENT)                                                        \
    Family {                                                                                                        \
        NAME, OPEN, F##Close,                                                                                       \
            [](TOVO_Sensor *h, unsigned int *s, unsigned int *r) {                                                  \
                double d[6];                                                                                        \
                unsigned int u[4];                                                                                  \
                return SUMMARY;                                                                                     \
            },                                                                                                      \
            [](TOVO_Sensor *h, unsigned int f, unsigned int c, double *t) { return TIMES; },                        \
            [](TOVO_Sensor *h, int n, unsigned int *f, unsigned int *l) {                                           \
                unsigned int status;                                                                                \
                return segmentRange([&](wchar_t **name) {                                                           \
                    double d[4];                                                                                    \
                    return SEGMENT;                                                                                 \
                });                                                                                                 \
            }                                                                                                       \
    }

// The "SideScan" file opens through the opener of the kind it records.
TOVO_Sensor *openSideScanFile(const wchar_t *line, const wchar_t *mode, int *error) {
    const std::uint32_t type = velmio::sideScanFileType(line);
    if (type == 9) return SideScanEM100OpenDir(line, mode, error);
    if (type == 10) return SideScanEM1000OpenDir(line, mode, error);
    return SideScanOpenDir(line, mode, error);
}

int processedDepthsTimes(TOVO_Sensor *h, unsigned int first, unsigned int count, double *times) {
    std::vector<ProcessedDepthsPing> pings(count);
    const int rc = ProcessedDepthsReadProfiles(h, first, count, pings.data(), nullptr, nullptr);
    for (unsigned int i = 0; rc == 0 && i < count; ++i) times[i] = pings[i].time;
    return rc;
}

#define VELM_SIDE_SCAN(NAME, OPEN)                                                                                  \
    VELM_PROFILES(NAME, OPEN, SideScan,                                                                             \
                  SideScanSummary(h, nullptr, s, r, nullptr, &d[0], &d[1], nullptr, nullptr, &u[0]),             \
                  SideScanReadProfiles(h, f, c, nullptr, nullptr, t, nullptr, nullptr, nullptr, nullptr, nullptr), \
                  SideScanLineSegment(h, n, name, f, l, &d[0], &d[1], &status))

const Family kFamilies[] = {
    VELM_SIMPLE(Gyro), VELM_SIMPLE(Heave), VELM_SIMPLE(Pitch), VELM_SIMPLE(Roll), VELM_SIMPLE(Tide),
    VELM_SIMPLE(SSSGyro), VELM_SIMPLE(SSSCableOut), VELM_SIMPLE(SSSSensorHeight), VELM_SIMPLE(SSSSensorDepth),
    VELM_SIMPLE(GPSHeight), VELM_SIMPLE(GPSTide), VELM_SIMPLE(TrueHeave), VELM_SIMPLE(DeltaDraft), VELM_SIMPLE(SOW),
    VELM_NAVIGATION(Navigation), VELM_NAVIGATION(SSSNavigation),
    VELM_PROFILES(L"ObservedDepths", ObservedDepthsOpenDir, ObservedDepths,
                  ObservedDepthsSummary(h, &u[0], s, r, &u[1], &d[0], &d[1], &d[2], &d[3], &u[2]),
                  ObservedDepthsReadProfiles(h, f, c, nullptr, nullptr, t, nullptr, nullptr, nullptr),
                  ObservedDepthsLineSegment(h, n, name, f, l, &d[0], &d[1], &d[2], &d[3], &status)),
    VELM_PROFILES(L"ObservedDepthsNew", ObservedDepthsNewOpenDir, ObservedDepths,
                  ObservedDepthsSummary(h, &u[0], s, r, &u[1], &d[0], &d[1], &d[2], &d[3], &u[2]),
                  ObservedDepthsReadProfiles(h, f, c, nullptr, nullptr, t, nullptr, nullptr, nullptr),
                  ObservedDepthsLineSegment(h, n, name, f, l, &d[0], &d[1], &d[2], &d[3], &status)),
    VELM_PROFILES(L"SLRange", SLRangeOpenDir, SLRange, SLRangeSummary(h, &u[0], s, r, &u[1], &d[0], &d[1], &u[2]),
                  SLRangeReadProfiles(h, f, c, nullptr, nullptr, t, nullptr, nullptr, nullptr),
                  SLRangeLineSegment(h, n, name, f, l, &d[0], &d[1], &status)),
    VELM_PROFILES(L"TPE", TPEOpenDir, TPE,
                  TPESummary(h, s, r, &u[0], &d[0], &d[1], &u[1], &u[2], &d[2], &d[3], &d[4], &d[5], &u[3]),
                  TPEReadProfiles(h, f, c, nullptr, nullptr, t, nullptr, nullptr),
                  TPELineSegment(h, n, name, f, l, &d[0], &d[1], &status)),
    VELM_PROFILES(L"ProcessedDepths", ProcessedDepthsOpenDir, ProcessedDepths,
                  ProcessedDepthsSummary(h, &u[0], s, r, &u[1], &d[0], &d[1], &d[2], &d[3], &u[2]),
                  processedDepthsTimes(h, f, c, t),
                  ProcessedDepthsLineSegment(h, n, name, f, l, &d[0], &d[1], &d[2], &d[3], &status)),
    VELM_SIDE_SCAN(L"SideScan", openSideScanFile),
    VELM_SIDE_SCAN(L"SSSSideScan", SSSSideScanOpenDir),
    VELM_SIDE_SCAN(L"SSSProcessedSideScan", SSSProcessedSideScanOpenDir),
    VELM_SIDE_SCAN(L"NewSSSProcessedSideScan", NewSSSProcessedSideScanOpenDir),
};

struct Problem {
    std::wstring line;
    const wchar_t *sensor;
    unsigned int number;
    int code;
};

class Checker {
public:
    std::vector<Problem> problems;
    unsigned int lines = 0;

    // A line when any family has a data file in it; else the lines below.
    void checkTree(const std::wstring &path) {
        bool isLine = false;
        for (const Family &family : kFamilies) isLine = checkSensor(path, family) || isLine;
        if (isLine) {
            ++lines;
            return;
        }
        std::vector<std::wstring> names;
        if (!velmio::platform::listSubdirectories(path.c_str(), names)) return;
        for (const std::wstring &name : names)
            if (name[0] != L'.') checkTree(path + L"/" + name);  // ".backup" holds no line
    }

private:
    void report(const std::wstring &line, const Family &family, unsigned int number, int code) {
        problems.push_back({line, family.name, number, code});
    }

    // False when the family has no data file in line.
    bool checkSensor(const std::wstring &line, const Family &family) {
        int error = 0;
        TOVO_Sensor *h = family.open(line.c_str(), L"query", &error);
        if (!h) {
            if (error == kNotFound) return false;
            report(line, family, 0, error);
            checkTail(line, family);
            return true;
        }
        unsigned int segments = 0, records = 0;
        if (int rc = family.counts(h, &segments, &records)) {
            report(line, family, 0, rc);
        } else {
            checkTimes(line, family, h, records);
            checkSegments(line, family, h, segments, records);
        }
        // Readers refuse a trace file cut inside a record.
        const std::uint32_t kind = family.open == openSideScanFile ? velmio::sideScanFileType(line.c_str()) : 0;
        unsigned int traces = 0;
        if (kind == 9 || kind == 10)
            if (int rc = SideScanTraceCount(h, &traces)) report(line, family, 0, rc);
        family.close(h);
        checkTail(line, family);
        return true;
    }

    // What an interrupted writer leaves behind the records the summary
    // counts; the problem's number is the bytes concerned.
    void checkTail(const std::wstring &line, const Family &family) {
        velmio::SalvageOptions options;
        options.tailOnly = true;
        velmio::SalvageReport tail;
        std::uint32_t typeId = 0;
        if (!velmio::salvageTypeId(family.name, typeId) ||
            velmio::salvageLine(line.c_str(), typeId, options, tail) != 0 || !tail.summaryValid)
            return;
        if (tail.wholeBytes > tail.summaryEnd)
            report(line, family, static_cast<unsigned int>(tail.wholeBytes - tail.summaryEnd), kWholeRecordsBeyond);
        if (tail.droppedBytes)
            report(line, family, static_cast<unsigned int>(tail.droppedBytes), kPartialRecordAtEnd);
    }

    void checkTimes(const std::wstring &line, const Family &family, TOVO_Sensor *h, unsigned int records) {
        std::vector<double> times(kChunk);
        double previous = -1e300;
        for (unsigned int first = 1; first <= records; first += kChunk) {
            const unsigned int count = records - first + 1 < kChunk ? records - first + 1 : kChunk;
            if (family.times(h, first, count, times.data()) != 0) {
                // Find the record that fails; what follows it is not read.
                for (unsigned int i = 0; i < count; ++i)
                    if (int rc = family.times(h, first + i, 1, &times[i])) {
                        report(line, family, first + i, rc);
                        return;
                    }
            }
            for (unsigned int i = 0; i < count; ++i) {
                if (times[i] < previous) report(line, family, first + i, kTimeBackwards);
                previous = times[i];
            }
        }
    }

    // Segments follow one another from record 1 to the last record.
    void checkSegments(const std::wstring &line, const Family &family, TOVO_Sensor *h, unsigned int segments,
                       unsigned int records) {
        unsigned int next = 1;
        for (unsigned int n = 1; n <= segments; ++n) {
            unsigned int first = 0, last = 0;
            if (int rc = family.segment(h, static_cast<int>(n), &first, &last)) {
                report(line, family, 0, rc);
                return;
            }
            if (first != next || last + 1 < first) {
                report(line, family, first, kSegmentsDoNotCover);
                return;
            }
            next = last + 1;
        }
        if (next != records + 1) report(line, family, next, kSegmentsDoNotCover);
    }
};

}  // namespace

extern "C" {

VELMIO_API int VELMCheckPath(const wchar_t *path, VELMCheckProblem **problems, unsigned int *problemCount,
                             unsigned int *linesChecked) {
    if (!path || !problems || !problemCount) return -1;
    *problems = nullptr;
    *problemCount = 0;
    if (linesChecked) *linesChecked = 0;
    if (!velmio::platform::isDirectory(path)) return kNoDirectory;
    try {
        Checker checker;
        checker.checkTree(path);
        const std::size_t n = checker.problems.size();
        VELMCheckProblem *out = nullptr;
        if (n) {
            out = static_cast<VELMCheckProblem *>(std::calloc(n, sizeof *out));
            if (!out) return kNoMemory;
            for (std::size_t i = 0; i < n; ++i) {
                const Problem &p = checker.problems[i];
                out[i] = {velmio::mallocWideCopy(p.line.c_str()), velmio::mallocWideCopy(p.sensor), p.number, p.code};
                if (!out[i].line || !out[i].sensor) {
                    VELMCheckFree(out, static_cast<unsigned int>(n));
                    return kNoMemory;
                }
            }
        }
        *problems = out;
        *problemCount = static_cast<unsigned int>(n);
        if (linesChecked) *linesChecked = checker.lines;
        return 0;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

VELMIO_API void VELMCheckFree(VELMCheckProblem *problems, unsigned int problemCount) {
    if (!problems) return;
    for (unsigned int i = 0; i < problemCount; ++i) {
        std::free(problems[i].line);
        std::free(problems[i].sensor);
    }
    std::free(problems);
}

}  // extern "C"
