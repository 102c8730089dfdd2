// Sensor files of a line as numpy columns: one handle object per open
// family, reads and writes of whole ranges in C++ loops (never one Python
// call per record or beam), status edits by index.
#include "binding.hpp"

#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/simple_sensor.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace velmio::python {

namespace {

enum class Shape { Records, Navigation, ObservedDepths, SlantRange, Tpe };

struct Family {
    const char *name;
    Shape shape;
    unsigned int typeId;  // simple sensors only
    int scale;            // simple sensors only
    int notEncodable;     // the family's code for a value it cannot store
};

constexpr int R = VELMIO_SIMPLE_SENSOR_RADIANS, M = VELMIO_SIMPLE_SENSOR_METRES;
const Family kFamilies[] = {
    {"Gyro", Shape::Records, 1, R, 5001222},          {"Heave", Shape::Records, 2, M, 5001222},
    {"Pitch", Shape::Records, 5, R, 5001222},         {"Roll", Shape::Records, 6, R, 5001222},
    {"Tide", Shape::Records, 7, M, 5001222},          {"SSSGyro", Shape::Records, 11, R, 5001222},
    {"SSSCableOut", Shape::Records, 40, M, 5001222},  {"SSSSensorHeight", Shape::Records, 41, M, 5001222},
    {"SSSSensorDepth", Shape::Records, 42, M, 5001222}, {"DeltaDraft", Shape::Records, 45, M, 5001222},
    {"SOW", Shape::Records, 46, M, 5001222},          {"GPSHeight", Shape::Records, 47, M, 5001222},
    {"GPSTide", Shape::Records, 48, M, 5001222},      {"TrueHeave", Shape::Records, 55, M, 5001222},
    {"Navigation", Shape::Navigation, 3, 0, 5000122}, {"SSSNavigation", Shape::Navigation, 12, 0, 5000122},
    {"ObservedDepths", Shape::ObservedDepths, 4, 0, 5000222},
    {"ObservedDepthsNew", Shape::ObservedDepths, 53, 0, 5000222},
    {"SLRange", Shape::SlantRange, 0, 0, 5001922},    {"TPE", Shape::Tpe, 0, 0, 5002722},
};

const Family &familyNamed(const std::string &name) {
    for (const Family &f : kFamilies)
        if (name == f.name) return f;
    throw Failure{5000022, "not a sensor family of this library: " + name};
}

// The two navigation families differ only in their function set.
struct NavigationOps {
    TOVO_Sensor *(*open)(const wchar_t *, const wchar_t *, int *);
    int (*close)(TOVO_Sensor *);
    int (*summary)(TOVO_Sensor *, unsigned *, unsigned *, unsigned *, double *, double *, double *, double *,
                   double *, double *, unsigned *);
    int (*segment)(TOVO_Sensor *, int, wchar_t **, unsigned *, unsigned *, double *, double *, double *, double *,
                   double *, double *, unsigned *);
    int (*readRange)(TOVO_Sensor *, unsigned, unsigned, double *, double *, double *, double *, unsigned *);
    int (*beginSummary)(TOVO_Sensor *, unsigned);
    int (*beginSegment)(TOVO_Sensor *, const wchar_t *);
    int (*writeRange)(TOVO_Sensor *, unsigned, const double *, const double *, const double *, const double *,
                      const unsigned *);
    int (*endSegment)(TOVO_Sensor *, unsigned);
    int (*endSummary)(TOVO_Sensor *, unsigned);
    int (*setSummaryStatus)(TOVO_Sensor *, unsigned);
    int (*setSegmentStatus)(TOVO_Sensor *, int, unsigned);
    int (*setRecordStatus)(TOVO_Sensor *, unsigned, unsigned);
    int (*save)(TOVO_Sensor *);
};
const NavigationOps kNavigation = {NavigationOpenDir, NavigationClose, NavigationSummary, NavigationLineSegment,
                                   NavigationReadRange, NavigationBgnSeqWriteSummary,
                                   NavigationBgnSeqWriteLineSegment, NavigationSeqWriteRange,
                                   NavigationEndSeqWriteLineSegment,
                                   NavigationEndSeqWriteSummary, NavigationSetSummaryStatus,
                                   NavigationSetLineSegmentStatus, NavigationSetRecordStatus,
                                   NavigationSaveStatusToDisk};
const NavigationOps kSideScanNavigation = {
    SSSNavigationOpenDir, SSSNavigationClose, SSSNavigationSummary, SSSNavigationLineSegment,
    SSSNavigationReadRange, SSSNavigationBgnSeqWriteSummary, SSSNavigationBgnSeqWriteLineSegment,
    SSSNavigationSeqWriteRange,
    SSSNavigationEndSeqWriteLineSegment, SSSNavigationEndSeqWriteSummary, SSSNavigationSetSummaryStatus,
    SSSNavigationSetLineSegmentStatus, SSSNavigationSetRecordStatus, SSSNavigationSaveStatusToDisk};

// A segment name handed out by the library, freed on every path.
struct HandedOut {
    wchar_t *text = nullptr;
    ~HandedOut() { std::free(text); }
    py::str str() const { return py::cast(std::wstring(text ? text : L"")); }
};

py::dict columns(std::initializer_list<std::pair<const char *, py::object>> items) {
    py::dict d;
    for (const auto &item : items) d[item.first] = item.second;
    return d;
}

double *out(py::array_t<double> &a) { return a.mutable_data(); }
unsigned *out(py::array_t<std::uint32_t> &a) { return reinterpret_cast<unsigned *>(a.mutable_data()); }

class Sensor {
public:
    Sensor(const py::object &line, const std::string &family, const std::string &mode, unsigned parameter,
           unsigned parameter2)
        : family_(familyNamed(family)), mode_(mode) {
        const std::wstring dir = widePath(line);
        const std::wstring token(mode.begin(), mode.end());
        if (mode != "query" && mode != "update" && mode != "create")
            throw Failure{kBadArgument, "mode is \"query\", \"update\" or \"create\""};
        int error = 0;
        {
            py::gil_scoped_release unlocked;
            switch (family_.shape) {
            case Shape::Records:
                h_ = SimpleSensorOpen(dir.c_str(), token.c_str(), family_.typeId, family_.scale, &error);
                break;
            case Shape::Navigation: h_ = nav().open(dir.c_str(), token.c_str(), &error); break;
            case Shape::ObservedDepths:
                h_ = family_.typeId == 53 ? ObservedDepthsNewOpenDir(dir.c_str(), token.c_str(), &error)
                                          : ObservedDepthsOpenDir(dir.c_str(), token.c_str(), &error);
                break;
            case Shape::SlantRange: h_ = SLRangeOpenDir(dir.c_str(), token.c_str(), &error); break;
            case Shape::Tpe: h_ = TPEOpenDir(dir.c_str(), token.c_str(), &error); break;
            }
        }
        if (!h_) throw Failure{error ? error : kBadArgument, std::string(family_.name) + ": open failed"};
        if (mode == "create") {
            int rc = 0;
            switch (family_.shape) {
            case Shape::Records: rc = SimpleSensorBgnSeqWriteSummary(h_); break;
            case Shape::Navigation: rc = nav().beginSummary(h_, parameter ? parameter : 1); break;
            case Shape::ObservedDepths:
                rc = ObservedDepthsBgnSeqWriteSummary(h_);
                if (!rc && parameter) rc = ObservedDepthsSetToolType(h_, parameter);
                break;
            case Shape::SlantRange: rc = SLRangeBgnSeqWriteSummary(h_, parameter); break;
            case Shape::Tpe:
                rc = TPEBgnSeqWriteSummary(h_);
                if (!rc && (parameter || parameter2)) rc = TPESetToolType(h_, parameter, parameter2);
                break;
            }
            if (rc) {
                close();
                throw Failure{rc, std::string(family_.name) + ": begin writing"};
            }
        }
    }
    ~Sensor() {
        if (h_) {
            py::gil_scoped_release unlocked;
            closeHandle();
        }
    }

    const char *family() const { return family_.name; }
    const std::string &mode() const { return mode_; }
    bool closed() const { return h_ == nullptr; }

    int close() {
        if (!h_) return 0;
        int rc = 0;
        {
            py::gil_scoped_release unlocked;
            rc = closeHandle();
        }
        check(rc, "close");
        return 0;
    }

    // Create mode: the summary status, then close (summary, segments, index).
    void finish(unsigned status) {
        int rc = 0;
        switch (family_.shape) {
        case Shape::Records: rc = SimpleSensorEndSeqWriteSummary(h_, status); break;
        case Shape::Navigation: rc = nav().endSummary(h_, status); break;
        case Shape::ObservedDepths: rc = ObservedDepthsEndSeqWriteSummary(h_, status); break;
        case Shape::SlantRange: rc = SLRangeEndSeqWriteSummary(h_, status); break;
        case Shape::Tpe: rc = TPEEndSeqWriteSummary(h_, status); break;
        }
        check(rc, "end summary");
        close();
    }

    py::dict summary() {
        unsigned segments = 0, count = 0, status = 0, type = 0, type2 = 0, beams = 0;
        double t0 = 0, t1 = 0, a0 = 0, a1 = 0, b0 = 0, b1 = 0;
        switch (family_.shape) {
        case Shape::Records:
            check(SimpleSensorSummary(h_, &segments, &count, &t0, &t1, &a0, &a1, &status), "summary");
            return columns({{"segments", py::int_(segments)}, {"records", py::int_(count)},
                            {"min_time", py::float_(t0)}, {"max_time", py::float_(t1)},
                            {"min_value", py::float_(a0)}, {"max_value", py::float_(a1)},
                            {"status", py::int_(status)}});
        case Shape::Navigation:
            check(nav().summary(h_, &segments, &count, &type, &t0, &t1, &a0, &a1, &b0, &b1, &status), "summary");
            return columns({{"segments", py::int_(segments)}, {"records", py::int_(count)},
                            {"coordinate_type", py::int_(type)}, {"min_time", py::float_(t0)},
                            {"max_time", py::float_(t1)}, {"min_latitude", py::float_(a0)},
                            {"max_latitude", py::float_(a1)}, {"min_longitude", py::float_(b0)},
                            {"max_longitude", py::float_(b1)}, {"status", py::int_(status)}});
        case Shape::ObservedDepths:
            check(ObservedDepthsSummary(h_, &type, &segments, &count, &beams, &t0, &t1, &a0, &a1, &status),
                  "summary");
            return columns({{"tool_type", py::int_(type)}, {"segments", py::int_(segments)},
                            {"profiles", py::int_(count)}, {"beams", py::int_(beams)},
                            {"min_time", py::float_(t0)}, {"max_time", py::float_(t1)},
                            {"min_depth", py::float_(a0)}, {"max_depth", py::float_(a1)},
                            {"status", py::int_(status)}});
        case Shape::SlantRange:
            check(SLRangeSummary(h_, &type, &segments, &count, &beams, &t0, &t1, &status), "summary");
            return columns({{"tool_type", py::int_(type)}, {"segments", py::int_(segments)},
                            {"profiles", py::int_(count)}, {"beams", py::int_(beams)},
                            {"min_time", py::float_(t0)}, {"max_time", py::float_(t1)},
                            {"status", py::int_(status)}});
        case Shape::Tpe:
            check(TPESummary(h_, &segments, &count, &beams, &t0, &t1, &type, &type2, &a0, &a1, &b0, &b1, &status),
                  "summary");
            return columns({{"segments", py::int_(segments)}, {"profiles", py::int_(count)},
                            {"beams", py::int_(beams)}, {"min_time", py::float_(t0)}, {"max_time", py::float_(t1)},
                            {"tool_type1", py::int_(type)}, {"tool_type2", py::int_(type2)},
                            {"min_error1", py::float_(a0)}, {"max_error1", py::float_(a1)},
                            {"min_error2", py::float_(b0)}, {"max_error2", py::float_(b1)},
                            {"status", py::int_(status)}});
        }
        return {};
    }

    // Records or profiles in the file.
    unsigned count() {
        unsigned n = 0;
        switch (family_.shape) {
        case Shape::Records: check(SimpleSensorSummary(h_, nullptr, &n, 0, 0, 0, 0, 0), "summary"); break;
        case Shape::Navigation:
            check(nav().summary(h_, nullptr, &n, 0, 0, 0, 0, 0, 0, 0, 0), "summary");
            break;
        case Shape::ObservedDepths: check(ObservedDepthsSummary(h_, 0, 0, &n, 0, 0, 0, 0, 0, 0), "summary"); break;
        case Shape::SlantRange: check(SLRangeSummary(h_, 0, 0, &n, 0, 0, 0, 0), "summary"); break;
        case Shape::Tpe: check(TPESummary(h_, 0, &n, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0), "summary"); break;
        }
        return n;
    }

    py::list segments() {
        py::list list;
        unsigned n = 0;
        switch (family_.shape) {
        case Shape::Records: check(SimpleSensorSummary(h_, &n, 0, 0, 0, 0, 0, 0), "summary"); break;
        case Shape::Navigation: check(nav().summary(h_, &n, 0, 0, 0, 0, 0, 0, 0, 0, 0), "summary"); break;
        case Shape::ObservedDepths: check(ObservedDepthsSummary(h_, 0, &n, 0, 0, 0, 0, 0, 0, 0), "summary"); break;
        case Shape::SlantRange: check(SLRangeSummary(h_, 0, &n, 0, 0, 0, 0, 0), "summary"); break;
        case Shape::Tpe: check(TPESummary(h_, &n, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0), "summary"); break;
        }
        for (int i = 1; i <= static_cast<int>(n); ++i) {
            HandedOut name;
            unsigned first = 0, last = 0, status = 0;
            double t0 = 0, t1 = 0, a0 = 0, a1 = 0, b0 = 0, b1 = 0;
            py::dict d;
            switch (family_.shape) {
            case Shape::Records:
                check(SimpleSensorLineSegment(h_, i, &name.text, &first, &last, &t0, &t1, &a0, &a1, &status),
                      "segment");
                d = columns({{"min_value", py::float_(a0)}, {"max_value", py::float_(a1)}});
                break;
            case Shape::Navigation:
                check(nav().segment(h_, i, &name.text, &first, &last, &t0, &t1, &a0, &a1, &b0, &b1, &status),
                      "segment");
                d = columns({{"min_latitude", py::float_(a0)}, {"max_latitude", py::float_(a1)},
                             {"min_longitude", py::float_(b0)}, {"max_longitude", py::float_(b1)}});
                break;
            case Shape::ObservedDepths:
                check(ObservedDepthsLineSegment(h_, i, &name.text, &first, &last, &t0, &t1, &a0, &a1, &status),
                      "segment");
                d = columns({{"min_depth", py::float_(a0)}, {"max_depth", py::float_(a1)}});
                break;
            case Shape::SlantRange:
                check(SLRangeLineSegment(h_, i, &name.text, &first, &last, &t0, &t1, &status), "segment");
                break;
            case Shape::Tpe:
                check(TPELineSegment(h_, i, &name.text, &first, &last, &t0, &t1, &status), "segment");
                break;
            }
            d["name"] = name.str();
            d["first"] = first;
            d["last"] = last;
            d["min_time"] = t0;
            d["max_time"] = t1;
            d["status"] = status;
            list.append(d);
        }
        return list;
    }

    // Records [first, first + count) of a time series family (from 0).
    py::dict readRecords(unsigned first, py::object countArg) {
        requireRecords();
        const unsigned total = count();
        const unsigned n = clampRange(first, countArg, total);
        const bool simple = family_.shape == Shape::Records;
        py::array_t<double> t(n), a(n), b(simple ? 0 : n), c(simple ? 0 : n);
        py::array_t<std::uint32_t> s(n);
        double *tp = out(t), *ap = out(a), *bp = out(b), *cp = out(c);
        unsigned *sp = out(s);
        {
            py::gil_scoped_release unlocked;
            check(simple ? SimpleSensorReadRange(h_, first + 1, n, tp, ap, sp)
                         : nav().readRange(h_, first + 1, n, tp, ap, bp, cp, sp),
                  "read");
        }
        if (simple) return columns({{"time", t}, {"value", a}, {"status", s}});
        return columns({{"time", t}, {"latitude", a}, {"longitude", b}, {"metres", c}, {"status", s}});
    }

    // The header arrays of n profiles, as ReadProfiles and ReadRange fill them.
    struct Headers {
        py::array_t<double> t, a, b;
        py::array_t<std::uint32_t> beams, firstBeam, word, s;
        explicit Headers(unsigned n) : t(n), a(n), b(n), beams(n), firstBeam(n), word(n), s(n) {}
        py::dict dict(Shape shape) const {
            py::dict d = columns({{"time", t}, {"beam_count", beams}, {"first_beam", firstBeam}, {"status", s}});
            if (shape == Shape::Tpe) {
                d["profile_word"] = word;
            } else {
                d["angle1"] = a;
                d["angle2"] = b;
            }
            return d;
        }
    };

    // The flat beam arrays of total beams and the offsets of n profiles.
    struct Beams {
        py::array_t<double> t, a, b, c, e;
        py::array_t<std::uint32_t> s;
        std::vector<unsigned> offsets;
        Beams(py::ssize_t total, unsigned n)
            : t(total), a(total), b(total), c(total), e(total), s(total), offsets(n + 1) {}
        py::dict dict(Shape shape) const {
            py::array_t<std::int64_t> o(static_cast<py::ssize_t>(offsets.size()));
            std::copy(offsets.begin(), offsets.end(), o.mutable_data());
            switch (shape) {
            case Shape::ObservedDepths:
                return columns({{"time", t}, {"y", a}, {"x", b}, {"depth", c}, {"extra", e}, {"status", s},
                                {"beam_offsets", o}});
            case Shape::SlantRange:
                return columns({{"time", t}, {"range", a}, {"value", b}, {"angle1", c}, {"angle2", e},
                                {"status", s}, {"beam_offsets", o}});
            default:
                return columns({{"time", t}, {"error1", a}, {"error2", b}, {"status", s}, {"beam_offsets", o}});
            }
        }
    };

    // Headers of profiles [first, first + count) (from 0).
    py::dict readProfiles(unsigned first, py::object countArg) {
        requireProfiles();
        const unsigned n = clampRange(first, countArg, count());
        Headers h(n);
        {
            unsigned *np = out(h.beams), *fp = out(h.firstBeam), *wp = out(h.word), *sp = out(h.s);
            double *tp = out(h.t), *ap = out(h.a), *bp = out(h.b);
            py::gil_scoped_release unlocked;
            readHeaders(first, n, np, fp, tp, ap, bp, wp, sp);
        }
        return h.dict(family_.shape);
    }

    // Beams of profiles [first, first + count), flat, with the offsets of
    // each profile's first beam (count + 1 of them).
    py::dict readBeams(unsigned first, py::object countArg) {
        requireProfiles();
        const unsigned n = clampRange(first, countArg, count());
        Beams b(static_cast<py::ssize_t>(beamTotal(first, n)), n);
        readBeamsInto(first, n, nullptr, b);
        return b.dict(family_.shape);
    }

    // Both in one pass: {"profiles": ..., "beams": ...}. The whole line takes
    // its beam total from the summary, so its headers are read once.
    py::dict readRange(unsigned first, py::object countArg) {
        requireProfiles();
        const unsigned all = count();
        const unsigned n = clampRange(first, countArg, all);
        Headers h(n);
        const bool whole = first == 0 && n == all;
        const auto b = python::rangeBeams(
            whole, whole ? summaryBeams() : 0,
            [n](std::size_t total) { return std::make_unique<Beams>(static_cast<py::ssize_t>(total), n); },
            [&](Beams &beams, bool strict) { return readBeamsInto(first, n, &h, beams, strict); },
            [n](const Beams &beams) { return std::size_t{beams.offsets[n]}; }, [&] { return beamTotal(first, n); });
        py::dict d;
        d["profiles"] = h.dict(family_.shape);
        d["beams"] = b->dict(family_.shape);
        return d;
    }

    // The beams of profiles first .. first + n - 1 (from 0) by a counting read of their headers.
    std::size_t beamTotal(unsigned first, unsigned n) {
        return python::beamTotal(n, [&](unsigned *counts) {
            readHeaders(first, n, counts, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
            return 0;
        });
    }

    unsigned summaryBeams() {
        unsigned n = 0;
        switch (family_.shape) {
        case Shape::ObservedDepths: check(ObservedDepthsSummary(h_, 0, 0, 0, &n, 0, 0, 0, 0, 0), "summary"); break;
        case Shape::SlantRange: check(SLRangeSummary(h_, 0, 0, 0, &n, 0, 0, 0), "summary"); break;
        default: check(TPESummary(h_, 0, 0, &n, 0, 0, 0, 0, 0, 0, 0, 0, 0), "summary"); break;
        }
        return n;
    }

    // ReadBeams into b, or ReadRange when h is given; false on a failure
    // that is not to be raised.
    bool readBeamsInto(unsigned first, unsigned n, Headers *h, Beams &b, bool raise = true) {
        const auto capacity = static_cast<unsigned>(b.t.size());
        unsigned *o = b.offsets.data(), *sp = out(b.s);
        double *tp = out(b.t), *ap = out(b.a), *bp = out(b.b), *cp = out(b.c), *ep = out(b.e);
        unsigned *hn = h ? out(h->beams) : nullptr, *hf = h ? out(h->firstBeam) : nullptr;
        unsigned *hw = h ? out(h->word) : nullptr, *hs = h ? out(h->s) : nullptr;
        double *ht = h ? out(h->t) : nullptr, *ha = h ? out(h->a) : nullptr, *hb = h ? out(h->b) : nullptr;
        int rc = 0;
        {
            py::gil_scoped_release unlocked;
            switch (family_.shape) {
            case Shape::ObservedDepths:
                rc = h ? ObservedDepthsReadRange(h_, first + 1, n, hn, hf, ht, ha, hb, hs, capacity, o, tp, ap, bp, cp,
                                                 ep, sp)
                       : ObservedDepthsReadBeams(h_, first + 1, n, capacity, o, tp, ap, bp, cp, ep, sp);
                break;
            case Shape::SlantRange:
                rc = h ? SLRangeReadRange(h_, first + 1, n, hn, hf, ht, ha, hb, hs, capacity, o, tp, ap, bp, cp, ep, sp)
                       : SLRangeReadBeams(h_, first + 1, n, capacity, o, tp, ap, bp, cp, ep, sp);
                break;
            default:
                rc = h ? TPEReadRange(h_, first + 1, n, hn, hf, ht, hw, hs, capacity, o, tp, ap, bp, sp)
                       : TPEReadBeams(h_, first + 1, n, capacity, o, tp, ap, bp, sp);
                break;
            }
        }
        if (rc && !raise) return false;
        check(rc, "read");
        if (n == 0) b.offsets[0] = 0;
        return true;
    }

    // One segment of a time series family from equal-length columns.
    void writeRecords(const py::handle &name, const py::dict &data, unsigned segmentStatus) {
        requireRecords();
        const std::wstring source = wideText(name);
        auto t = doubles(column(data, "time"), "time");
        auto s = words(column(data, "status"), "status");
        requireLength(s.size(), t.size(), "status");
        const bool simple = family_.shape == Shape::Records;
        auto a = doubles(column(data, simple ? "value" : "latitude"), simple ? "value" : "latitude");
        requireLength(a.size(), t.size(), simple ? "value" : "latitude");
        py::array_t<double, py::array::c_style> b, c;
        if (!simple) {
            b = doubles(column(data, "longitude"), "longitude");
            requireLength(b.size(), t.size(), "longitude");
            c = doubles(data.contains("metres") ? py::object(data["metres"]) : broadcast(py::float_(0.0), t.size()),
                        "metres");
            requireLength(c.size(), t.size(), "metres");
        }
        const py::ssize_t n = t.size();
        const double *tp = t.data(), *ap = a.data(), *bp = simple ? nullptr : b.data(),
                     *cp = simple ? nullptr : c.data();
        const unsigned *sp = reinterpret_cast<const unsigned *>(s.data());
        requireTimes(tp, n);
        py::gil_scoped_release unlocked;
        if (n > 0xFFFFFFFFLL) throw Failure{kBadArgument, "more records than one segment can hold"};
        const unsigned count = static_cast<unsigned>(n);
        if (simple) {
            check(SimpleSensorBgnSeqWriteLineSegment(h_, source.c_str()), "begin segment");
            check(SimpleSensorSeqWriteRange(h_, count, tp, ap, sp), "write");
            check(SimpleSensorEndSeqWriteLineSegment(h_, segmentStatus), "end segment");
        } else {
            const NavigationOps &ops = nav();
            check(ops.beginSegment(h_, source.c_str()), "begin segment");
            check(ops.writeRange(h_, count, tp, ap, bp, cp, sp), "write");
            check(ops.endSegment(h_, segmentStatus), "end segment");
        }
    }

    // One segment of a profile family: per-profile headers and flat beams.
    void writeProfiles(const py::handle &name, const py::dict &profiles, const py::dict &beams,
                       unsigned segmentStatus) {
        requireProfiles();
        const std::wstring source = wideText(name);
        auto pt = doubles(column(profiles, "time"), "profile time");
        const py::ssize_t n = pt.size();
        auto pc = words(column(profiles, "beam_count"), "beam_count");
        auto pf = words(column(profiles, "first_beam"), "first_beam");
        auto ps = words(column(profiles, "status"), "profile status");
        requireLength(pc.size(), n, "beam_count");
        requireLength(pf.size(), n, "first_beam");
        requireLength(ps.size(), n, "profile status");
        const bool tpe = family_.shape == Shape::Tpe;
        py::array_t<double, py::array::c_style> a1, a2;
        py::array_t<std::uint32_t, py::array::c_style> pw;
        if (tpe) {
            pw = words(column(profiles, "profile_word"), "profile_word");
            requireLength(pw.size(), n, "profile_word");
        } else {
            a1 = doubles(column(profiles, "angle1"), "angle1");
            a2 = doubles(column(profiles, "angle2"), "angle2");
            requireLength(a1.size(), n, "angle1");
            requireLength(a2.size(), n, "angle2");
        }
        py::ssize_t total = 0;
        for (py::ssize_t i = 0; i < n; ++i) total += pc.data()[i];
        std::vector<const char *> names;
        switch (family_.shape) {
        case Shape::ObservedDepths: names = {"time", "y", "x", "depth"}; break;
        case Shape::SlantRange: names = {"time", "range", "value", "angle1", "angle2"}; break;
        default: names = {"time", "error1", "error2"}; break;
        }
        std::vector<py::array_t<double, py::array::c_style>> cols;
        for (const char *c : names) {
            cols.push_back(doubles(column(beams, c), c));
            requireLength(cols.back().size(), total, c);
        }
        auto bs = words(column(beams, "status"), "beam status");
        requireLength(bs.size(), total, "beam status");
        requireTimes(pt.data(), n);
        requireTimes(cols[0].data(), total);
        std::vector<const double *> c;
        for (auto &col : cols) c.push_back(col.data());
        const unsigned *cp = reinterpret_cast<const unsigned *>(pc.data()),
                       *fp = reinterpret_cast<const unsigned *>(pf.data()),
                       *sp = reinterpret_cast<const unsigned *>(ps.data()),
                       *wp = tpe ? reinterpret_cast<const unsigned *>(pw.data()) : nullptr,
                       *bsp = reinterpret_cast<const unsigned *>(bs.data());
        const double *tp = pt.data(), *a1p = tpe ? nullptr : a1.data(), *a2p = tpe ? nullptr : a2.data();

        py::gil_scoped_release unlocked;
        switch (family_.shape) {
        case Shape::ObservedDepths: check(ObservedDepthsBgnSeqWriteLineSegment(h_, source.c_str()), "begin segment"); break;
        case Shape::SlantRange: check(SLRangeBgnSeqWriteLineSegment(h_, source.c_str()), "begin segment"); break;
        default: check(TPEBgnSeqWriteLineSegment(h_, source.c_str()), "begin segment"); break;
        }
        py::ssize_t k = 0;
        for (py::ssize_t i = 0; i < n; ++i) {
            switch (family_.shape) {
            case Shape::ObservedDepths:
                check(ObservedDepthsBgnSeqWriteProfile(h_, cp[i], fp[i], tp[i], a1p[i], a2p[i], sp[i]), "profile");
                check(ObservedDepthsSeqWriteBeams(h_, cp[i], c[0] + k, c[1] + k, c[2] + k, c[3] + k, bsp + k), "beams");
                check(ObservedDepthsEndSeqWriteProfile(h_), "end profile");
                break;
            case Shape::SlantRange:
                check(SLRangeBgnSeqWriteProfile(h_, cp[i], fp[i], tp[i], a1p[i], a2p[i], sp[i]), "profile");
                check(SLRangeSeqWriteBeams(h_, cp[i], c[0] + k, c[1] + k, c[2] + k, c[3] + k, c[4] + k, bsp + k),
                      "beams");
                check(SLRangeEndSeqWriteProfile(h_), "end profile");
                break;
            default:
                check(TPEBgnSeqWriteProfile(h_, cp[i], fp[i], tp[i], wp[i], sp[i]), "profile");
                check(TPESeqWriteBeams(h_, cp[i], c[0] + k, c[1] + k, c[2] + k, bsp + k), "beams");
                check(TPEEndSeqWriteProfile(h_), "end profile");
                break;
            }
            k += cp[i];
        }
        switch (family_.shape) {
        case Shape::ObservedDepths: check(ObservedDepthsEndSeqWriteLineSegment(h_, segmentStatus), "end segment"); break;
        case Shape::SlantRange: check(SLRangeEndSeqWriteLineSegment(h_, segmentStatus), "end segment"); break;
        default: check(TPEEndSeqWriteLineSegment(h_, segmentStatus), "end segment"); break;
        }
    }

    // Update mode: record statuses (records from 0), held until save().
    void setRecordStatus(const py::handle &indices, const py::handle &statuses) {
        requireRecords();
        auto [idx, s] = indexedWords(indices, statuses, count());
        const std::int64_t *ip = idx.data();
        const unsigned *sp = reinterpret_cast<const unsigned *>(s.data());
        const py::ssize_t n = idx.size();
        py::gil_scoped_release unlocked;
        for (py::ssize_t i = 0; i < n; ++i) {
            const unsigned record = static_cast<unsigned>(ip[i] + 1);
            check(family_.shape == Shape::Records ? SimpleSensorSetRecordStatus(h_, record, sp[i])
                                                  : nav().setRecordStatus(h_, record, sp[i]),
                  "set record status");
        }
    }

    // Beam edits by flat beam index (as readBeams numbers them), on disk at once.
    void updateBeams(const std::string &what, const py::handle &indices, const py::dict &values) {
        requireProfiles();
        if (family_.shape == Shape::Tpe || (family_.shape == Shape::SlantRange && what != "status"))
            throw Failure{kBadArgument, std::string(family_.name) + " beams have no " + what + " edit"};
        loadBeamMap();
        const std::int64_t total = beamOffsets_.empty() ? 0 : beamOffsets_.back();
        auto idx = indexArray(indices, total);
        const py::ssize_t n = idx.size();
        auto given = [&](const char *name) { return values.contains(name) && !values[name].is_none(); };
        auto valueColumn = [&](const char *name) {
            py::array_t<double, py::array::c_style> v;
            if (given(name)) {
                v = doubles(broadcast(values[name], n), name);
                requireLength(v.size(), n, name);
            }
            return v;
        };
        py::array_t<std::uint32_t, py::array::c_style> s;
        if (given("status")) {
            s = words(broadcast(values["status"], n), "status");
            requireLength(s.size(), n, "status");
        }
        auto x = valueColumn("x"), y = valueColumn("y"), z = valueColumn("depth");
        // Absent columns stay null pointers: the library leaves those values alone.
        const double *xp = given("x") ? x.data() : nullptr, *yp = given("y") ? y.data() : nullptr,
                     *zp = given("depth") ? z.data() : nullptr;
        const unsigned *sp = given("status") ? reinterpret_cast<const unsigned *>(s.data()) : nullptr;
        if ((what == "status" || what == "rejection") && !sp) throw Failure{kBadArgument, "status: missing"};
        if (what == "depth" && !zp) throw Failure{kBadArgument, "depth: missing"};
        const std::int64_t *ip = idx.data();
        py::gil_scoped_release unlocked;
        for (py::ssize_t i = 0; i < n; ++i) {
            unsigned profile = 0, beam = 0;
            locateBeam(ip[i], profile, beam);
            int rc = 0;
            if (family_.shape == Shape::SlantRange) {
                rc = SLRangeUpdateStatus(h_, profile, beam, sp[i]);
            } else if (what == "status") {
                rc = ObservedDepthsUpdateStatus(h_, profile, beam, sp[i]);
            } else if (what == "rejection") {
                rc = ObservedDepthsUpdateRejectionStatus(h_, profile, beam, sp[i]);
            } else if (what == "depth") {
                rc = sp ? ObservedDepthsUpdateDepthStatus(h_, profile, beam, zp[i], sp[i])
                        : ObservedDepthsUpdateDepth(h_, profile, beam, zp[i]);
            } else if (what == "xyz") {
                rc = ObservedDepthsUpdateXYZStatus(h_, profile, beam, xp ? xp + i : nullptr, yp ? yp + i : nullptr,
                                                   zp ? zp + i : nullptr, sp ? sp + i : nullptr);
            } else {
                rc = kBadArgument;
            }
            check(rc, "update beam");
        }
    }

    void setSummaryStatus(unsigned status) {
        int rc = 0;
        switch (family_.shape) {
        case Shape::Records: rc = SimpleSensorSetSummaryStatus(h_, status); break;
        case Shape::Navigation: rc = nav().setSummaryStatus(h_, status); break;
        case Shape::ObservedDepths: rc = ObservedDepthsSetSummaryStatus(h_, status); break;
        case Shape::SlantRange: rc = SLRangeSetSummaryStatus(h_, status); break;
        case Shape::Tpe: rc = TPESetSummaryStatus(h_, status); break;
        }
        check(rc, "set summary status");
    }

    // Segments count from 0 here.
    void setSegmentStatus(int segment, unsigned status) {
        int rc = 0;
        switch (family_.shape) {
        case Shape::Records: rc = SimpleSensorSetLineSegmentStatus(h_, segment + 1, status); break;
        case Shape::Navigation: rc = nav().setSegmentStatus(h_, segment + 1, status); break;
        case Shape::ObservedDepths: rc = ObservedDepthsSetLineSegmentStatus(h_, segment + 1, status); break;
        case Shape::SlantRange: rc = SLRangeSetLineSegmentStatus(h_, segment + 1, status); break;
        case Shape::Tpe: rc = TPESetLineSegmentStatus(h_, segment + 1, status); break;
        }
        check(rc, "set segment status");
    }

    // Update mode: writes the edits held in memory. Slant range and error
    // estimates write theirs at close.
    void save() {
        int rc = 0;
        py::gil_scoped_release unlocked;
        switch (family_.shape) {
        case Shape::Records: rc = SimpleSensorSaveStatusToDisk(h_); break;
        case Shape::Navigation: rc = nav().save(h_); break;
        case Shape::ObservedDepths: rc = ObservedDepthsSaveStatusToDisk(h_); break;
        default: break;
        }
        check(rc, "save");
    }

private:
    const NavigationOps &nav() const { return family_.typeId == 12 ? kSideScanNavigation : kNavigation; }

    int closeHandle() {
        TOVO_Sensor *h = h_;
        h_ = nullptr;
        beamOffsets_.clear();
        switch (family_.shape) {
        case Shape::Records: return SimpleSensorClose(h);
        case Shape::Navigation: return nav().close(h);
        case Shape::ObservedDepths: return ObservedDepthsClose(h);
        case Shape::SlantRange: return SLRangeClose(h);
        case Shape::Tpe: return TPEClose(h);
        }
        return 0;
    }

    void requireRecords() const {
        if (family_.shape != Shape::Records && family_.shape != Shape::Navigation)
            throw Failure{kBadArgument, std::string(family_.name) + " holds profiles, not records"};
    }
    void requireProfiles() const {
        if (family_.shape == Shape::Records || family_.shape == Shape::Navigation)
            throw Failure{kBadArgument, std::string(family_.name) + " holds records, not profiles"};
    }

    // Times before 1980 have no stored form; the library would wrap them.
    void requireTimes(const double *t, py::ssize_t n) const {
        for (py::ssize_t i = 0; i < n; ++i)
            if (!(t[i] >= 0.0) || !std::isfinite(t[i]))
                throw Failure{family_.notEncodable, "time " + std::to_string(t[i]) + " is before 1980 or not a number"};
    }

    static py::object column(const py::dict &data, const char *name) {
        if (!data.contains(name)) throw Failure{kBadArgument, std::string(name) + ": missing"};
        return data[name];
    }

    unsigned clampRange(unsigned first, const py::object &countArg, unsigned total) const {
        if (first > total) throw Failure{kBadArgument, "first lies beyond the last record"};
        unsigned n = total - first;
        if (!countArg.is_none()) {
            const long long wanted = countArg.cast<long long>();
            if (wanted < 0 || static_cast<unsigned long long>(wanted) > n)
                throw Failure{kBadArgument, "count reaches beyond the last record"};
            n = static_cast<unsigned>(wanted);
        }
        return n;
    }

    // Profile headers in one bulk read; null arrays are skipped.
    void readHeaders(unsigned first, unsigned n, unsigned *counts, unsigned *firsts, double *times, double *angles1,
                     double *angles2, unsigned *words, unsigned *statuses) {
        switch (family_.shape) {
        case Shape::ObservedDepths:
            check(ObservedDepthsReadProfiles(h_, first + 1, n, counts, firsts, times, angles1, angles2, statuses),
                  "read");
            break;
        case Shape::SlantRange:
            check(SLRangeReadProfiles(h_, first + 1, n, counts, firsts, times, angles1, angles2, statuses), "read");
            break;
        default: check(TPEReadProfiles(h_, first + 1, n, counts, firsts, times, words, statuses), "read"); break;
        }
    }

    void loadBeamMap() {
        if (!beamOffsets_.empty()) return;
        const unsigned n = count();
        std::vector<unsigned> counts(n);
        firstBeams_.assign(n, 0);
        {
            py::gil_scoped_release unlocked;
            readHeaders(0, n, counts.data(), firstBeams_.data(), nullptr, nullptr, nullptr, nullptr, nullptr);
        }
        beamOffsets_.assign(n + 1, 0);
        for (unsigned i = 0; i < n; ++i) beamOffsets_[i + 1] = beamOffsets_[i] + counts[i];
    }

    void locateBeam(std::int64_t index, unsigned &profile, unsigned &beam) const {
        const auto it = std::upper_bound(beamOffsets_.begin(), beamOffsets_.end(), index);
        const std::size_t p = static_cast<std::size_t>(it - beamOffsets_.begin()) - 1;
        profile = static_cast<unsigned>(p + 1);
        beam = firstBeams_[p] + static_cast<unsigned>(index - beamOffsets_[p]);
    }

    std::pair<py::array_t<std::int64_t, py::array::c_style>, py::array_t<std::uint32_t, py::array::c_style>>
    indexedWords(const py::handle &indices, const py::handle &statuses, std::int64_t limit) const {
        auto idx = indexArray(indices, limit);
        auto s = words(broadcast(statuses, idx.size()), "status");
        requireLength(s.size(), idx.size(), "status");
        return {idx, s};
    }

    const Family &family_;
    std::string mode_;
    TOVO_Sensor *h_ = nullptr;
    std::vector<std::int64_t> beamOffsets_;
    std::vector<unsigned> firstBeams_;
};

}  // namespace

void registerSensors(py::module_ &m) {
    py::list names;
    for (const Family &f : kFamilies) names.append(f.name);
    m.attr("FAMILIES") = names;
    py::list profiled;
    for (const Family &f : kFamilies)
        if (f.shape == Shape::ObservedDepths || f.shape == Shape::SlantRange || f.shape == Shape::Tpe)
            profiled.append(f.name);
    m.attr("PROFILE_FAMILIES") = profiled;

    py::class_<Sensor>(m, "Sensor")
        .def(py::init<const py::object &, const std::string &, const std::string &, unsigned, unsigned>(),
             py::arg("line"), py::arg("family"), py::arg("mode") = "query", py::arg("parameter") = 0,
             py::arg("parameter2") = 0)
        .def_property_readonly("family", &Sensor::family)
        .def_property_readonly("mode", &Sensor::mode)
        .def_property_readonly("closed", &Sensor::closed)
        .def("close", &Sensor::close)
        .def("finish", &Sensor::finish, py::arg("status") = 0)
        .def("summary", &Sensor::summary)
        .def("count", &Sensor::count)
        .def("segments", &Sensor::segments)
        .def("read_records", &Sensor::readRecords, py::arg("first") = 0, py::arg("count") = py::none())
        .def("read_profiles", &Sensor::readProfiles, py::arg("first") = 0, py::arg("count") = py::none())
        .def("read_beams", &Sensor::readBeams, py::arg("first") = 0, py::arg("count") = py::none())
        .def("read_range", &Sensor::readRange, py::arg("first") = 0, py::arg("count") = py::none())
        .def("write_records", &Sensor::writeRecords, py::arg("name"), py::arg("data"), py::arg("status") = 0)
        .def("write_profiles", &Sensor::writeProfiles, py::arg("name"), py::arg("profiles"), py::arg("beams"),
             py::arg("status") = 0)
        .def("set_record_status", &Sensor::setRecordStatus, py::arg("indices"), py::arg("status"))
        .def("update_beams", &Sensor::updateBeams, py::arg("what"), py::arg("indices"), py::arg("values"))
        .def("set_summary_status", &Sensor::setSummaryStatus, py::arg("status"))
        .def("set_segment_status", &Sensor::setSegmentStatus, py::arg("segment"), py::arg("status"))
        .def("save", &Sensor::save);
}

}  // namespace velmio::python
