// Side scan and processed depths as numpy columns: ragged reads of whole
// ranges of pings in one bulk call each, writes of one bulk call per ping
// from the same columns, and status edits. Processed depths come back as one
// structured array per read (a record per ping or beam, its sections side
// by side), every column a view of it.
#include "binding.hpp"

#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace velmio::python {

namespace {

using Opener = TOVO_Sensor *(*)(const wchar_t *, const wchar_t *, int *);

struct SonarFamily {
    const char *name;
    bool sideScan;
    // A query tries them in turn: the "SideScan" file of every sonar type
    // opens through the opener of its own type.
    std::vector<Opener> openers;
    unsigned defaultType;  // sonar or tool type of a new file
    int notEncodable;      // the family's code for a header it cannot store
};

const std::vector<SonarFamily> &sonarFamilies() {
    static const std::vector<SonarFamily> families = {
        {"ProcessedDepths", false, {ProcessedDepthsOpenDir}, 0, 5000322},
        {"SideScan", true, {SideScanOpenDir, SideScanEM1000OpenDir, SideScanEM100OpenDir}, 20, 5000922},
        {"SSSSideScan", true, {SSSSideScanOpenDir}, 13, 5000922},
        {"SSSProcessedSideScan", true, {SSSProcessedSideScanOpenDir}, 19, 5000922},
        {"NewSSSProcessedSideScan", true, {NewSSSProcessedSideScanOpenDir}, 19, 5000922},
    };
    return families;
}

const SonarFamily &sonarFamily(const std::string &name) {
    for (const SonarFamily &f : sonarFamilies())
        if (name == f.name) return f;
    throw Failure{5000022, "not a side scan or processed depths family: " + name};
}

// A field of a library struct as a numpy structured dtype field.
struct Field {
    const char *name;
    std::size_t offset;
    const char *format;
};
template <class T>
constexpr const char *formatOf() {
    if constexpr (std::is_same_v<T, double>) return "f8";
    else if constexpr (std::is_same_v<T, int>) return "i4";
    else return "u4";
}
#define VELMIO_FIELD(S, member, name) Field{name, offsetof(S, member), formatOf<decltype(S::member)>()}

py::dtype structDtype(const std::vector<Field> &fields, std::size_t size) {
    py::list names, formats, offsets;
    for (const Field &f : fields) {
        names.append(f.name);
        formats.append(f.format);
        offsets.append(f.offset);
    }
    py::dict layout;
    layout["names"] = names, layout["formats"] = formats, layout["offsets"] = offsets, layout["itemsize"] = size;
    return py::dtype::from_args(layout);
}

// One record per ping: the ping, its heads and its uncertainties side by side.
struct PingRecord {
    ProcessedDepthsPing ping;
    ProcessedDepthsHeads heads;
    ProcessedDepthsPingUncertainty sd;
};
struct BeamRecord {
    ProcessedDepthsSounding sounding;
    ProcessedDepthsMeasurement measurement;
    ProcessedDepthsReductions reductions;
};
// A side scan header as the write call takes it.
struct SideScanProfile {
    unsigned samples, first;
    double time, interval;
    int gain, attenuation1, attenuation2;
    unsigned status;
};

const std::vector<Field> &pingFields() {
    static const std::vector<Field> fields = [] {
        using P = PingRecord;
        std::vector<Field> f = {
            VELMIO_FIELD(P, ping.status, "status"),       VELMIO_FIELD(P, ping.beamCount, "beam_count"),
            VELMIO_FIELD(P, ping.firstBeam, "first_beam"), VELMIO_FIELD(P, ping.time, "time"),
            VELMIO_FIELD(P, ping.pingNumber, "ping_number"), VELMIO_FIELD(P, ping.latitude, "latitude"),
            VELMIO_FIELD(P, ping.longitude, "longitude"), VELMIO_FIELD(P, ping.heading, "heading"),
            VELMIO_FIELD(P, ping.heave, "heave"),         VELMIO_FIELD(P, ping.pitch, "pitch"),
            VELMIO_FIELD(P, ping.roll, "roll"),           VELMIO_FIELD(P, ping.tide, "tide"),
            VELMIO_FIELD(P, ping.draft, "draft"),         VELMIO_FIELD(P, ping.soundSpeed, "sound_speed"),
            VELMIO_FIELD(P, heads.count, "head_count"),
            VELMIO_FIELD(P, sd.horizontal, "sd_horizontal"), VELMIO_FIELD(P, sd.vertical, "sd_vertical"),
            VELMIO_FIELD(P, sd.heave, "sd_heave"),        VELMIO_FIELD(P, sd.tide, "sd_tide"),
            VELMIO_FIELD(P, sd.draft, "sd_draft"),        VELMIO_FIELD(P, sd.roll, "sd_roll"),
            VELMIO_FIELD(P, sd.pitch, "sd_pitch"),        VELMIO_FIELD(P, sd.heading, "sd_heading"),
            VELMIO_FIELD(P, sd.soundSpeed, "sd_sound_speed"), VELMIO_FIELD(P, sd.timing, "sd_timing"),
        };
        using H = ProcessedDepthsHead;
        const std::vector<Field> head = {
            VELMIO_FIELD(H, x, "x"),       VELMIO_FIELD(H, y, "y"),         VELMIO_FIELD(H, z, "z"),
            VELMIO_FIELD(H, roll, "roll"), VELMIO_FIELD(H, pitch, "pitch"), VELMIO_FIELD(H, heading, "heading"),
            VELMIO_FIELD(H, latency, "latency"), VELMIO_FIELD(H, word, "word"),
        };
        static std::vector<std::string> names;  // the field table points into them for good
        for (int k = 0; k < 2; ++k)
            for (const Field &h : head) names.push_back("head" + std::to_string(k + 1) + "_" + h.name);
        std::size_t n = 0;
        for (int k = 0; k < 2; ++k)
            for (const Field &h : head)
                f.push_back(Field{names[n++].c_str(),
                                  offsetof(P, heads) + offsetof(ProcessedDepthsHeads, head) + k * sizeof(H) + h.offset,
                                  h.format});
        return f;
    }();
    return fields;
}

const std::vector<Field> &beamFields() {
    using B = BeamRecord;
    static const std::vector<Field> fields = {
        VELMIO_FIELD(B, sounding.status, "status"), VELMIO_FIELD(B, sounding.time, "time"),
        VELMIO_FIELD(B, sounding.depth, "depth"), VELMIO_FIELD(B, sounding.acrossTrack, "across_track"),
        VELMIO_FIELD(B, sounding.alongTrack, "along_track"), VELMIO_FIELD(B, sounding.latitude, "latitude"),
        VELMIO_FIELD(B, sounding.longitude, "longitude"),
        VELMIO_FIELD(B, sounding.horizontalUncertainty, "horizontal_uncertainty"),
        VELMIO_FIELD(B, sounding.verticalUncertainty, "vertical_uncertainty"),
        VELMIO_FIELD(B, measurement.travelTime, "travel_time"),
        VELMIO_FIELD(B, measurement.acrossAngle, "across_angle"),
        VELMIO_FIELD(B, measurement.alongAngle, "along_angle"),
        VELMIO_FIELD(B, measurement.slantRange, "slant_range"),
        VELMIO_FIELD(B, measurement.reflectivity, "reflectivity"),
        VELMIO_FIELD(B, measurement.quality, "quality"), VELMIO_FIELD(B, measurement.detection, "detection"),
        VELMIO_FIELD(B, measurement.head, "head"), VELMIO_FIELD(B, reductions.tide, "reduction_tide"),
        VELMIO_FIELD(B, reductions.heave, "reduction_heave"),
        VELMIO_FIELD(B, reductions.draft, "reduction_draft"),
        VELMIO_FIELD(B, reductions.refraction, "reduction_refraction"),
    };
    return fields;
}

const std::vector<Field> &sideScanFields() {
    using S = SideScanProfile;
    static const std::vector<Field> fields = {
        VELMIO_FIELD(S, samples, "sample_count"), VELMIO_FIELD(S, first, "first_sample"),
        VELMIO_FIELD(S, time, "time"),            VELMIO_FIELD(S, interval, "sample_interval"),
        VELMIO_FIELD(S, gain, "gain"),            VELMIO_FIELD(S, attenuation1, "attenuation1"),
        VELMIO_FIELD(S, attenuation2, "attenuation2"), VELMIO_FIELD(S, status, "status"),
    };
    return fields;
}

// Made once and never freed: a Python object must not outlive the
// interpreter in a static destructor.
const py::dtype &pingDtype() {
    static const py::dtype *dtype = new py::dtype(structDtype(pingFields(), sizeof(PingRecord)));
    return *dtype;
}

const py::dtype &beamDtype() {
    static const py::dtype *dtype = new py::dtype(structDtype(beamFields(), sizeof(BeamRecord)));
    return *dtype;
}

// Columns that reads add and a write passes over.
bool derivedColumn(const std::string &name) {
    return name == "datetime" || name == "beam_offsets" || name == "sample_offsets";
}

// n records of R from the columns named as its fields: a missing column is
// zeros unless required, and a name of no field is refused (a misspelt
// column would otherwise be written as zeros).
template <class R>
std::vector<R> recordsFrom(const std::vector<Field> &fields, const py::dict &columns, std::size_t n,
                           std::initializer_list<const char *> required, const char *what) {
    for (const auto &item : columns) {
        const std::string name = py::str(item.first);
        bool known = derivedColumn(name);
        for (const Field &f : fields) known = known || name == f.name;
        if (!known) throw Failure{kBadArgument, std::string(what) + ": no column " + name};
    }
    for (const char *name : required)
        if (!columns.contains(name)) throw Failure{kBadArgument, std::string(name) + ": missing"};
    std::vector<R> out(n);
    auto *base = reinterpret_cast<unsigned char *>(out.data());
    const auto scatter = [&](const Field &f, const auto &array) {
        requireLength(array.size(), static_cast<py::ssize_t>(n), f.name);
        for (std::size_t i = 0; i < n; ++i)
            std::memcpy(base + i * sizeof(R) + f.offset, array.data() + i, sizeof(*array.data()));
    };
    for (const Field &f : fields) {
        if (!columns.contains(f.name)) continue;
        const py::object column = columns[f.name];
        if (f.format[0] == 'f') scatter(f, doubles(column, f.name));
        else if (f.format[0] == 'i') scatter(f, ints(column, f.name));
        else scatter(f, words(column, f.name));
    }
    return out;
}

// Every field of a structured array as its own column (views, no copy).
py::dict fieldsOf(const py::array &records) {
    py::dict columns;
    for (const py::handle name : records.dtype().attr("names")) columns[name] = records[name];
    return columns;
}

struct HandedOut {
    wchar_t *text = nullptr;
    ~HandedOut() { std::free(text); }
};

// The header arrays of n pings, as ReadProfiles and ReadRange fill them:
// the structures of processed depths, one array per field of side scan.
struct Pings {
    std::vector<ProcessedDepthsPing> pings;
    std::vector<ProcessedDepthsHeads> heads;
    std::vector<ProcessedDepthsPingUncertainty> sds;
    py::array_t<std::uint32_t> samples, firsts, statuses;
    py::array_t<double> times, intervals;
    py::array_t<std::int32_t> gains, att1, att2;

    Pings(bool sideScan, unsigned n)
        : pings(sideScan ? 0 : n), heads(pings.size()), sds(pings.size()), samples(sideScan ? n : 0),
          firsts(samples.size()), statuses(samples.size()), times(samples.size()), intervals(samples.size()),
          gains(samples.size()), att1(samples.size()), att2(samples.size()) {}
    py::dict dict(bool sideScan) const {
        if (!sideScan) {
            py::array records(pingDtype(), std::vector<py::ssize_t>{static_cast<py::ssize_t>(pings.size())});
            auto *p = static_cast<PingRecord *>(records.mutable_data());
            for (std::size_t i = 0; i < pings.size(); ++i) p[i] = PingRecord{pings[i], heads[i], sds[i]};
            return fieldsOf(records);
        }
        py::dict d;
        d["time"] = times, d["sample_count"] = samples, d["first_sample"] = firsts, d["sample_interval"] = intervals;
        d["gain"] = gains, d["attenuation1"] = att1, d["attenuation2"] = att2, d["status"] = statuses;
        return d;
    }
};

py::array_t<std::int64_t> int64s(const std::vector<unsigned> &values) {
    py::array_t<std::int64_t> out(static_cast<py::ssize_t>(values.size()));
    std::copy(values.begin(), values.end(), out.mutable_data());
    return out;
}

// The flat beams (samples) of total and the offsets of n pings.
struct Samples {
    std::size_t size;
    std::vector<ProcessedDepthsSounding> s;
    std::vector<ProcessedDepthsMeasurement> m;
    std::vector<ProcessedDepthsReductions> r;
    py::array_t<std::int32_t> amplitudes;
    py::array_t<std::uint32_t> detections;
    std::vector<unsigned> offsets;

    Samples(bool sideScan, std::size_t total, unsigned n)
        : size(total), s(sideScan ? 0 : total), m(s.size()), r(s.size()),
          amplitudes(static_cast<py::ssize_t>(sideScan ? total : 0)), detections(amplitudes.size()),
          offsets(n + 1, 0) {}
    py::dict dict(bool sideScan) const {
        py::dict d;
        if (sideScan) {
            d["amplitude"] = amplitudes, d["detection"] = detections;
            d["sample_offsets"] = int64s(offsets);
            return d;
        }
        py::array records(beamDtype(), std::vector<py::ssize_t>{static_cast<py::ssize_t>(size)});
        auto *b = static_cast<BeamRecord *>(records.mutable_data());
        for (std::size_t i = 0; i < size; ++i) b[i] = BeamRecord{s[i], m[i], r[i]};
        d = fieldsOf(records);
        d["beam_offsets"] = int64s(offsets);
        return d;
    }
};

// ReadProfiles into p, ReadBeams (ReadSamples) into b, or into both
// ReadRange; the arrays' pointers are taken before the GIL is released.
class BulkRead {
public:
    BulkRead(Pings *p, Samples *b)
        : p_(p), b_(b), sp_(p ? ptr<unsigned>(p->samples) : nullptr), fp_(p ? ptr<unsigned>(p->firsts) : nullptr),
          stp_(p ? ptr<unsigned>(p->statuses) : nullptr), tp_(p ? p->times.mutable_data() : nullptr),
          ip_(p ? p->intervals.mutable_data() : nullptr), gp_(p ? p->gains.mutable_data() : nullptr),
          a1_(p ? p->att1.mutable_data() : nullptr), a2_(p ? p->att2.mutable_data() : nullptr),
          ap_(b ? b->amplitudes.mutable_data() : nullptr), dp_(b ? ptr<unsigned>(b->detections) : nullptr) {}

    int operator()(TOVO_Sensor *h, bool sideScan, unsigned first, unsigned n) const {
        if (n == 0) return 0;
        const auto capacity = static_cast<unsigned>(b_ ? b_->size : 0);
        unsigned *o = b_ ? b_->offsets.data() : nullptr;
        if (sideScan) {
            if (!b_) return SideScanReadProfiles(h, first + 1, n, sp_, fp_, tp_, ip_, gp_, a1_, a2_, stp_);
            if (!p_) return SideScanReadSamples(h, first + 1, n, capacity, o, ap_, dp_);
            return SideScanReadRange(h, first + 1, n, sp_, fp_, tp_, ip_, gp_, a1_, a2_, stp_, capacity, o, ap_, dp_);
        }
        if (!b_)
            return ProcessedDepthsReadProfiles(h, first + 1, n, p_->pings.data(), p_->heads.data(), p_->sds.data());
        if (!p_)
            return ProcessedDepthsReadBeams(h, first + 1, n, capacity, o, b_->s.data(), b_->m.data(), b_->r.data());
        return ProcessedDepthsReadRange(h, first + 1, n, p_->pings.data(), p_->heads.data(), p_->sds.data(), capacity,
                                        o, b_->s.data(), b_->m.data(), b_->r.data());
    }

private:
    template <class T, class A>
    static T *ptr(A &array) {
        return reinterpret_cast<T *>(array.mutable_data());
    }
    Pings *p_;
    Samples *b_;
    unsigned *sp_, *fp_, *stp_;
    double *tp_, *ip_;
    int *gp_, *a1_, *a2_, *ap_;
    unsigned *dp_;
};

class SonarSensor {
public:
    SonarSensor(const py::object &line, const std::string &family, const std::string &mode, const py::object &type)
        : family_(sonarFamily(family)), mode_(mode) {
        if (mode != "query" && mode != "update" && mode != "create")
            throw Failure{kBadArgument, "mode is \"query\", \"update\" or \"create\""};
        const unsigned sonarType = type.is_none() ? family_.defaultType : type.cast<unsigned>();
        std::vector<Opener> openers = family_.openers;
        if (mode == "create") openers = {createOpener(sonarType)};
        const std::wstring dir = widePath(line);
        const std::wstring token(mode.begin(), mode.end());
        int first = 0;
        {
            py::gil_scoped_release unlocked;
            for (Opener open : openers) {
                int error = 0;
                h_ = open(dir.c_str(), token.c_str(), &error);
                if (h_) break;
                if (!first) first = error;
            }
        }
        if (!h_) throw Failure{first ? first : kBadArgument, std::string(family_.name) + ": open failed"};
        if (mode == "create") {
            const int rc = family_.sideScan ? SideScanBgnSeqWriteSummary(h_, sonarType)
                                            : ProcessedDepthsBgnSeqWriteSummary(h_, sonarType);
            if (rc) {
                closeHandle();
                throw Failure{rc, std::string(family_.name) + ": begin writing"};
            }
        }
    }
    ~SonarSensor() {
        if (h_) {
            py::gil_scoped_release unlocked;
            closeHandle();
        }
    }

    const char *family() const { return family_.name; }
    const std::string &mode() const { return mode_; }
    bool closed() const { return h_ == nullptr; }

    // Create mode: the summary status, then close (summary, segments, index).
    void finish(unsigned status) {
        check(family_.sideScan ? SideScanEndSeqWriteSummary(live(), status)
                               : ProcessedDepthsEndSeqWriteSummary(live(), status),
              "end summary");
        close();
    }

    void close() {
        if (!h_) return;
        int rc = 0;
        {
            py::gil_scoped_release unlocked;
            rc = closeHandle();
        }
        check(rc, "close");
    }

    py::dict summary() {
        unsigned type = 0, segments = 0, profiles = 0, samples = 0, status = 0;
        double t0 = 0, t1 = 0, d0 = 0, d1 = 0;
        py::dict d;
        if (family_.sideScan) {
            int a0 = 0, a1 = 0;
            check(SideScanSummary(live(), &type, &segments, &profiles, &samples, &t0, &t1, &a0, &a1, &status),
                  "summary");
            d["sonar_type"] = type, d["samples"] = samples, d["min_amplitude"] = a0, d["max_amplitude"] = a1;
        } else {
            check(ProcessedDepthsSummary(live(), &type, &segments, &profiles, &samples, &t0, &t1, &d0, &d1, &status),
                  "summary");
            d["tool_type"] = type, d["beams"] = samples, d["min_depth"] = d0, d["max_depth"] = d1;
        }
        d["segments"] = segments, d["profiles"] = profiles, d["min_time"] = t0, d["max_time"] = t1;
        d["status"] = status;
        return d;
    }

    unsigned count() {
        unsigned n = 0;
        check(family_.sideScan ? SideScanSummary(live(), 0, 0, &n, 0, 0, 0, 0, 0, 0)
                               : ProcessedDepthsSummary(live(), 0, 0, &n, 0, 0, 0, 0, 0, 0),
              "summary");
        return n;
    }

    py::list segments() {
        unsigned n = 0;
        check(family_.sideScan ? SideScanSummary(live(), 0, &n, 0, 0, 0, 0, 0, 0, 0)
                               : ProcessedDepthsSummary(live(), 0, &n, 0, 0, 0, 0, 0, 0, 0),
              "summary");
        py::list list;
        for (int i = 1; i <= static_cast<int>(n); ++i) {
            HandedOut name;
            unsigned first = 0, last = 0, status = 0;
            double t0 = 0, t1 = 0, d0 = 0, d1 = 0;
            py::dict d;
            if (family_.sideScan) {
                check(SideScanLineSegment(h_, i, &name.text, &first, &last, &t0, &t1, &status), "segment");
            } else {
                check(ProcessedDepthsLineSegment(h_, i, &name.text, &first, &last, &t0, &t1, &d0, &d1, &status),
                      "segment");
                d["min_depth"] = d0, d["max_depth"] = d1;
            }
            d["name"] = py::cast(std::wstring(name.text ? name.text : L""));
            d["first"] = first, d["last"] = last, d["min_time"] = t0, d["max_time"] = t1, d["status"] = status;
            list.append(d);
        }
        return list;
    }

    // Headers of pings [first, first + count) (from 0).
    py::dict readProfiles(unsigned first, const py::object &countArg) {
        const unsigned n = range(first, countArg);
        Pings p(family_.sideScan, n);
        const BulkRead read(&p, nullptr);
        {
            py::gil_scoped_release unlocked;
            check(read(h_, family_.sideScan, first, n), "read");
        }
        return p.dict(family_.sideScan);
    }

    // Beams (samples) of pings [first, first + count), flat, with the
    // offset of each ping's first one (count + 1 of them).
    py::dict readBeams(unsigned first, const py::object &countArg) {
        const unsigned n = range(first, countArg);
        Samples b(family_.sideScan, beamTotal(first, n), n);
        const BulkRead read(nullptr, &b);
        {
            py::gil_scoped_release unlocked;
            check(read(h_, family_.sideScan, first, n), "read");
        }
        return b.dict(family_.sideScan);
    }

    // Both in one pass: {"profiles": ..., "beams": ...}. The whole line takes
    // its beam total from the summary, so its headers are read once.
    py::dict readRange(unsigned first, const py::object &countArg) {
        const unsigned all = count();
        const unsigned n = range(first, countArg);
        Pings p(family_.sideScan, n);
        const bool whole = first == 0 && n == all;
        const auto b = python::rangeBeams(
            whole, whole ? summaryBeams() : 0,
            [&](std::size_t total) { return std::make_unique<Samples>(family_.sideScan, total, n); },
            [&](Samples &samples, bool strict) {
                const BulkRead read(&p, &samples);
                int rc = 0;
                {
                    py::gil_scoped_release unlocked;
                    rc = read(h_, family_.sideScan, first, n);
                }
                if (strict) check(rc, "read");
                return rc == 0;
            },
            [n](const Samples &samples) { return std::size_t{samples.offsets[n]}; },
            [&] { return beamTotal(first, n); });
        py::dict d;
        d["profiles"] = p.dict(family_.sideScan);
        d["beams"] = b->dict(family_.sideScan);
        return d;
    }

    // The beams of pings first .. first + n - 1 (from 0) by a counting read of their headers.
    std::size_t beamTotal(unsigned first, unsigned n) {
        return python::beamTotal(n, [&](unsigned *counts) {
            return family_.sideScan ? SideScanReadProfiles(h_, first + 1, n, counts, 0, 0, 0, 0, 0, 0, 0)
                                    : ProcessedDepthsReadBeamCounts(first, n, counts);
        });
    }

    unsigned summaryBeams() {
        unsigned n = 0;
        check(family_.sideScan ? SideScanSummary(live(), 0, 0, 0, &n, 0, 0, 0, 0, 0)
                               : ProcessedDepthsSummary(live(), 0, 0, 0, &n, 0, 0, 0, 0, 0),
              "summary");
        return n;
    }

    // One segment: per-ping headers and flat beams (samples), each ping
    // written with one bulk call. Side scan traces name their ping by its
    // index in this segment and follow it in the file.
    void writeSegment(const py::handle &name, const py::dict &profiles, const py::dict &beams,
                      const py::object &traces, unsigned segmentStatus) {
        requireMode("create");
        const std::wstring source = wideText(name);
        if (!profiles.contains("time")) throw Failure{kBadArgument, "time: missing"};
        const auto n = static_cast<std::size_t>(doubles(profiles["time"], "time").size());
        if (family_.sideScan) writeSideScan(source, profiles, beams, traces, n, segmentStatus);
        else writeProcessedDepths(source, profiles, beams, n, segmentStatus);
    }

    // The trace records in file order, their pings counted from 0 over the line.
    py::dict readTraces() {
        unsigned n = 0;
        check(SideScanTraceCount(live(), &n), "trace count");
        py::array_t<std::int64_t> profiles(n);
        py::array_t<std::uint32_t> bottoms(n);
        py::array_t<double> depths(n);
        {
            std::int64_t *pp = profiles.mutable_data();
            auto *bp = reinterpret_cast<unsigned *>(bottoms.mutable_data());
            double *dp = depths.mutable_data();
            py::gil_scoped_release unlocked;
            for (unsigned i = 0; i < n; ++i) {
                unsigned profile = 0;
                check(SideScanReadTrace(h_, i + 1, &profile, bp + i, dp + i), "read trace");
                pp[i] = static_cast<std::int64_t>(profile) - 1;
            }
        }
        py::dict d;
        d["profile"] = profiles, d["bottom_sample"] = bottoms, d["depth"] = depths;
        return d;
    }

    // Update mode: side scan ping statuses (pings from 0), on disk at once.
    void setProfileStatus(const py::handle &indices, const py::handle &statuses) {
        requireMode("update");
        if (!family_.sideScan) throw Failure{kBadArgument, "processed depths statuses are edited per beam"};
        auto idx = indexArray(indices, count());
        auto s = words(broadcast(statuses, idx.size()), "status");
        requireLength(s.size(), idx.size(), "status");
        const std::int64_t *ip = idx.data();
        const unsigned *sp = reinterpret_cast<const unsigned *>(s.data());
        py::gil_scoped_release unlocked;
        for (py::ssize_t i = 0; i < idx.size(); ++i)
            check(SideScanUpdateProfileStatus(h_, static_cast<unsigned>(ip[i] + 1), sp[i]), "update status");
    }

    // Update mode: processed depths beam statuses by flat beam index (as
    // readBeams numbers them), on disk at once.
    void updateBeams(const std::string &what, const py::handle &indices, const py::dict &values) {
        requireMode("update");
        if (family_.sideScan || what != "status")
            throw Failure{kBadArgument, std::string(family_.name) + " has no beam " + what + " edit"};
        if (!values.contains("status") || values["status"].is_none()) throw Failure{kBadArgument, "status: missing"};
        const unsigned n = count();
        std::vector<ProcessedDepthsPing> pings(n);
        {
            py::gil_scoped_release unlocked;
            if (n) check(ProcessedDepthsReadProfiles(h_, 1, n, pings.data(), nullptr, nullptr), "read");
        }
        std::vector<std::int64_t> offsets(n + 1, 0);
        for (unsigned i = 0; i < n; ++i) offsets[i + 1] = offsets[i] + pings[i].beamCount;
        auto idx = indexArray(indices, offsets.back());
        auto s = words(broadcast(values["status"], idx.size()), "status");
        requireLength(s.size(), idx.size(), "status");
        const std::int64_t *ip = idx.data();
        const unsigned *sp = reinterpret_cast<const unsigned *>(s.data());
        py::gil_scoped_release unlocked;
        for (py::ssize_t i = 0; i < idx.size(); ++i) {
            const auto p = static_cast<std::size_t>(std::upper_bound(offsets.begin(), offsets.end(), ip[i]) -
                                                    offsets.begin() - 1);
            const auto beam = pings[p].firstBeam + static_cast<unsigned>(ip[i] - offsets[p]);
            check(ProcessedDepthsUpdateStatus(h_, static_cast<unsigned>(p + 1), beam, sp[i]), "update status");
        }
    }

    void setSummaryStatus(unsigned status) {
        check(family_.sideScan ? SideScanSetSummaryStatus(live(), status)
                               : ProcessedDepthsSetSummaryStatus(live(), status),
              "set summary status");
    }

    // Segments from 0.
    void setSegmentStatus(int segment, unsigned status) {
        check(family_.sideScan ? SideScanSetLineSegmentStatus(live(), segment + 1, status)
                               : ProcessedDepthsSetLineSegmentStatus(live(), segment + 1, status),
              "set segment status");
    }

    // Update mode: writes the summary and segment statuses held in memory.
    void save() {
        TOVO_Sensor *h = live();
        int rc = 0;
        {
            py::gil_scoped_release unlocked;
            rc = family_.sideScan ? SideScanSaveStatusToDisk(h) : ProcessedDepthsSaveStatusToDisk(h);
        }
        check(rc, "save");
    }

private:
    TOVO_Sensor *live() const {
        if (!h_) throw Failure{kBadArgument, std::string(family_.name) + ": the handle is closed"};
        return h_;
    }

    void requireMode(const char *mode) const {
        live();
        if (mode_ != mode)
            throw Failure{kBadArgument, std::string(family_.name) + ": needs a handle opened for " + mode};
    }

    // A new "SideScan" file of sonar type 9, 10 or 15 takes the opener of that
    // type: the trace file and the type in the validation records follow it.
    Opener createOpener(unsigned sonarType) const {
        if (family_.openers.front() != SideScanOpenDir) return family_.openers.front();
        switch (sonarType) {
        case 9: return SideScanEM100OpenDir;
        case 10: return SideScanEM1000OpenDir;
        case 15: return SideScanELACOpenDir;
        default: return SideScanOpenDir;
        }
    }

    // Times before 1980 have no stored form; the library would wrap them.
    template <class R, class Time>
    void requireTimes(const std::vector<R> &rows, Time time) const {
        for (const R &row : rows)
            if (!(time(row) >= 0.0) || !std::isfinite(time(row)))
                throw Failure{family_.notEncodable,
                              "time " + std::to_string(time(row)) + " is before 1980 or not a number"};
    }

    template <class R, class Count>
    static std::size_t totalOf(const std::vector<R> &rows, Count count) {
        std::uint64_t total = 0;
        for (const R &row : rows) total += count(row);
        if (total > 0xFFFFFFFFull) throw Failure{kBadArgument, "more beams than one segment can hold"};
        return static_cast<std::size_t>(total);
    }

    void writeProcessedDepths(const std::wstring &source, const py::dict &profiles, const py::dict &beams,
                              std::size_t n, unsigned segmentStatus) {
        const auto pings = recordsFrom<PingRecord>(pingFields(), profiles, n, {"time", "beam_count", "first_beam"},
                                                   "profiles");
        const std::size_t total = totalOf(pings, [](const PingRecord &p) { return p.ping.beamCount; });
        const auto records = recordsFrom<BeamRecord>(beamFields(), beams, total, {"time", "depth"}, "beams");
        requireTimes(pings, [](const PingRecord &p) { return p.ping.time; });
        requireTimes(records, [](const BeamRecord &b) { return b.sounding.time; });
        std::vector<ProcessedDepthsSounding> s(total);
        std::vector<ProcessedDepthsMeasurement> m(total);
        std::vector<ProcessedDepthsReductions> r(total);
        for (std::size_t i = 0; i < total; ++i)
            s[i] = records[i].sounding, m[i] = records[i].measurement, r[i] = records[i].reductions;
        py::gil_scoped_release unlocked;
        check(ProcessedDepthsBgnSeqWriteLineSegment(h_, source.c_str()), "begin segment");
        std::size_t k = 0;
        for (const PingRecord &p : pings) {
            check(ProcessedDepthsBgnSeqWriteProfile(h_, &p.ping, &p.heads, &p.sd), "profile");
            check(ProcessedDepthsSeqWriteBeams(h_, p.ping.beamCount, s.data() + k, m.data() + k, r.data() + k),
                  "beams");
            check(ProcessedDepthsEndSeqWriteProfile(h_), "end profile");
            k += p.ping.beamCount;
        }
        check(ProcessedDepthsEndSeqWriteLineSegment(h_, segmentStatus), "end segment");
    }

    void writeSideScan(const std::wstring &source, const py::dict &profiles, const py::dict &samples,
                       const py::object &traces, std::size_t n, unsigned segmentStatus) {
        const auto pings =
            recordsFrom<SideScanProfile>(sideScanFields(), profiles, n, {"time", "sample_count", "first_sample"},
                                         "profiles");
        const std::size_t total = totalOf(pings, [](const SideScanProfile &p) { return p.samples; });
        requireTimes(pings, [](const SideScanProfile &p) { return p.time; });
        for (const auto &item : samples) {
            const std::string column = py::str(item.first);
            if (!derivedColumn(column) && column != "amplitude" && column != "detection")
                throw Failure{kBadArgument, "samples: no column " + column};
        }
        if (!samples.contains("amplitude")) throw Failure{kBadArgument, "amplitude: missing"};
        auto amplitudes = ints(samples["amplitude"], "amplitude");
        requireLength(amplitudes.size(), static_cast<py::ssize_t>(total), "amplitude");
        py::array_t<std::uint32_t, py::array::c_style> detections;
        const bool detected = samples.contains("detection");
        if (detected) {
            detections = words(samples["detection"], "detection");
            requireLength(detections.size(), static_cast<py::ssize_t>(total), "detection");
        }
        py::array_t<std::int64_t, py::array::c_style> traceProfiles;
        py::array_t<std::uint32_t, py::array::c_style> bottoms;
        py::array_t<double, py::array::c_style> depths;
        if (!traces.is_none()) {
            const py::dict t = traces;
            for (const char *c : {"profile", "bottom_sample", "depth"})
                if (!t.contains(c)) throw Failure{kBadArgument, std::string(c) + ": missing"};
            traceProfiles = indexArray(t["profile"], static_cast<std::int64_t>(n));
            bottoms = words(t["bottom_sample"], "bottom_sample");
            depths = doubles(t["depth"], "depth");
            requireLength(bottoms.size(), traceProfiles.size(), "bottom_sample");
            requireLength(depths.size(), traceProfiles.size(), "depth");
            for (py::ssize_t i = 1; i < traceProfiles.size(); ++i)
                if (traceProfiles.data()[i] < traceProfiles.data()[i - 1])
                    throw Failure{kBadArgument, "trace profiles: not in ping order"};
        }
        const int *ap = amplitudes.data();
        const unsigned *dp = detected ? reinterpret_cast<const unsigned *>(detections.data()) : nullptr;
        const py::ssize_t traceCount = traces.is_none() ? 0 : traceProfiles.size();
        const std::int64_t *tp = traceCount ? traceProfiles.data() : nullptr;
        const unsigned *bp = traceCount ? reinterpret_cast<const unsigned *>(bottoms.data()) : nullptr;
        const double *zp = traceCount ? depths.data() : nullptr;
        py::gil_scoped_release unlocked;
        check(SideScanBgnSeqWriteLineSegment(h_, source.c_str()), "begin segment");
        std::size_t k = 0;
        py::ssize_t t = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const SideScanProfile &p = pings[i];
            check(SideScanBgnSeqWriteProfile(h_, p.samples, p.first, p.time, p.interval, p.gain, p.attenuation1,
                                             p.attenuation2, p.status),
                  "profile");
            check(SideScanSeqWriteSamples(h_, p.samples, ap + k, dp ? dp + k : nullptr), "samples");
            check(SideScanEndSeqWriteProfile(h_), "end profile");
            for (; t < traceCount && tp[t] == static_cast<std::int64_t>(i); ++t)
                check(SideScanSeqWriteTrace(h_, bp[t], zp[t]), "trace");
            k += p.samples;
        }
        check(SideScanEndSeqWriteLineSegment(h_, segmentStatus), "end segment");
    }

    int closeHandle() {
        TOVO_Sensor *h = h_;
        h_ = nullptr;
        return family_.sideScan ? SideScanClose(h) : ProcessedDepthsClose(h);
    }

    unsigned range(unsigned first, const py::object &countArg) {
        const unsigned total = count();
        if (first > total) throw Failure{kBadArgument, "first lies beyond the last ping"};
        unsigned n = total - first;
        if (!countArg.is_none()) {
            const long long wanted = countArg.cast<long long>();
            if (wanted < 0 || static_cast<unsigned long long>(wanted) > n)
                throw Failure{kBadArgument, "count reaches beyond the last ping"};
            n = static_cast<unsigned>(wanted);
        }
        return n;
    }

    // Beam counts only: the ping section is the one a header read needs.
    int ProcessedDepthsReadBeamCounts(unsigned first, unsigned n, unsigned *counts) {
        std::vector<ProcessedDepthsPing> pings(n);
        const int rc = ProcessedDepthsReadProfiles(h_, first + 1, n, pings.data(), nullptr, nullptr);
        for (unsigned i = 0; i < n; ++i) counts[i] = pings[i].beamCount;
        return rc;
    }


    const SonarFamily &family_;
    std::string mode_;
    TOVO_Sensor *h_ = nullptr;
};

}  // namespace

void registerSonarFamilies(py::module_ &m) {
    py::list names;
    for (const SonarFamily &f : sonarFamilies()) names.append(f.name);
    m.attr("SONAR_FAMILIES") = names;
    py::class_<SonarSensor>(m, "SonarSensor")
        .def(py::init<const py::object &, const std::string &, const std::string &, const py::object &>(),
             py::arg("line"), py::arg("family"), py::arg("mode") = "query", py::arg("type") = py::none())
        .def_property_readonly("family", &SonarSensor::family)
        .def_property_readonly("mode", &SonarSensor::mode)
        .def_property_readonly("closed", &SonarSensor::closed)
        .def("close", &SonarSensor::close)
        .def("finish", &SonarSensor::finish, py::arg("status") = 0)
        .def("write_segment", &SonarSensor::writeSegment, py::arg("name"), py::arg("profiles"), py::arg("beams"),
             py::arg("traces") = py::none(), py::arg("status") = 0)
        .def("read_traces", &SonarSensor::readTraces)
        .def("set_profile_status", &SonarSensor::setProfileStatus, py::arg("indices"), py::arg("status"))
        .def("update_beams", &SonarSensor::updateBeams, py::arg("what"), py::arg("indices"), py::arg("values"))
        .def("set_summary_status", &SonarSensor::setSummaryStatus, py::arg("status"))
        .def("set_segment_status", &SonarSensor::setSegmentStatus, py::arg("segment"), py::arg("status"))
        .def("save", &SonarSensor::save)
        .def("summary", &SonarSensor::summary)
        .def("count", &SonarSensor::count)
        .def("segments", &SonarSensor::segments)
        .def("read_profiles", &SonarSensor::readProfiles, py::arg("first") = 0, py::arg("count") = py::none())
        .def("read_beams", &SonarSensor::readBeams, py::arg("first") = 0, py::arg("count") = py::none())
        .def("read_range", &SonarSensor::readRange, py::arg("first") = 0, py::arg("count") = py::none());
}

}  // namespace velmio::python
