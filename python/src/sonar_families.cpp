// Side scan and processed depths as numpy columns: ragged reads of whole
// ranges of pings in one bulk call each. Processed depths come back as one
// structured array per read (a record per ping or beam, its sections side
// by side), every column a view of it.
#include "binding.hpp"

#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>

#include <cstddef>
#include <cstdlib>
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
};

const std::vector<SonarFamily> &sonarFamilies() {
    static const std::vector<SonarFamily> families = {
        {"ProcessedDepths", false, {ProcessedDepthsOpenDir}},
        {"SideScan", true, {SideScanOpenDir, SideScanEM1000OpenDir, SideScanEM100OpenDir}},
        {"SSSSideScan", true, {SSSSideScanOpenDir}},
        {"SSSProcessedSideScan", true, {SSSProcessedSideScanOpenDir}},
        {"NewSSSProcessedSideScan", true, {NewSSSProcessedSideScanOpenDir}},
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

// Made once and never freed: a Python object must not outlive the
// interpreter in a static destructor.
const py::dtype &pingDtype() {
    static const py::dtype *dtype = new py::dtype([] {
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
        static std::vector<std::string> names;  // the dtype keeps copies; these outlive its making
        for (int k = 0; k < 2; ++k)
            for (const Field &h : head) {
                names.push_back("head" + std::to_string(k + 1) + "_" + h.name);
                f.push_back(Field{nullptr, offsetof(P, heads) + offsetof(ProcessedDepthsHeads, head) + k * sizeof(H) +
                                               h.offset,
                                  h.format});
            }
        std::size_t n = 0;
        for (Field &field : f)
            if (!field.name) field.name = names[n++].c_str();
        return structDtype(f, sizeof(P));
    }());
    return *dtype;
}

const py::dtype &beamDtype() {
    static const py::dtype *dtype = new py::dtype([] {
        using B = BeamRecord;
        return structDtype(
            {
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
            },
            sizeof(B));
    }());
    return *dtype;
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

class SonarSensor {
public:
    SonarSensor(const py::object &line, const std::string &family, const std::string &mode)
        : family_(sonarFamily(family)) {
        if (mode != "query") throw Failure{kBadArgument, std::string(family_.name) + " is only read from Python"};
        const std::wstring dir = widePath(line);
        const std::wstring token(mode.begin(), mode.end());
        int first = 0;
        {
            py::gil_scoped_release unlocked;
            for (Opener open : family_.openers) {
                int error = 0;
                h_ = open(dir.c_str(), token.c_str(), &error);
                if (h_) break;
                if (!first) first = error;
            }
        }
        if (!h_) throw Failure{first ? first : kBadArgument, std::string(family_.name) + ": open failed"};
    }
    ~SonarSensor() {
        if (h_) {
            py::gil_scoped_release unlocked;
            closeHandle();
        }
    }

    const char *family() const { return family_.name; }
    bool closed() const { return h_ == nullptr; }

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
        if (!family_.sideScan) {
            py::array records(pingDtype(), std::vector<py::ssize_t>{static_cast<py::ssize_t>(n)});
            auto *p = static_cast<PingRecord *>(records.mutable_data());
            // Filled as three strided passes: the library takes one array per section.
            std::vector<ProcessedDepthsPing> pings(n);
            std::vector<ProcessedDepthsHeads> heads(n);
            std::vector<ProcessedDepthsPingUncertainty> sds(n);
            {
                py::gil_scoped_release unlocked;
                if (n) check(ProcessedDepthsReadProfiles(h_, first + 1, n, pings.data(), heads.data(), sds.data()),
                             "read");
                for (unsigned i = 0; i < n; ++i) p[i] = PingRecord{pings[i], heads[i], sds[i]};
            }
            return fieldsOf(records);
        }
        py::array_t<std::uint32_t> samples(n), firsts(n), statuses(n);
        py::array_t<double> times(n), intervals(n);
        py::array_t<std::int32_t> gains(n), att1(n), att2(n);
        {
            auto *sp = reinterpret_cast<unsigned *>(samples.mutable_data());
            auto *fp = reinterpret_cast<unsigned *>(firsts.mutable_data());
            auto *stp = reinterpret_cast<unsigned *>(statuses.mutable_data());
            double *tp = times.mutable_data(), *ip = intervals.mutable_data();
            int *gp = gains.mutable_data(), *a1 = att1.mutable_data(), *a2 = att2.mutable_data();
            py::gil_scoped_release unlocked;
            if (n) check(SideScanReadProfiles(h_, first + 1, n, sp, fp, tp, ip, gp, a1, a2, stp), "read");
        }
        py::dict d;
        d["time"] = times, d["sample_count"] = samples, d["first_sample"] = firsts, d["sample_interval"] = intervals;
        d["gain"] = gains, d["attenuation1"] = att1, d["attenuation2"] = att2, d["status"] = statuses;
        return d;
    }

    // Beams (samples) of pings [first, first + count), flat, with the
    // offset of each ping's first one (count + 1 of them).
    py::dict readBeams(unsigned first, const py::object &countArg) {
        const unsigned n = range(first, countArg);
        std::vector<unsigned> counts(n), offsets(n + 1, 0);
        {
            py::gil_scoped_release unlocked;
            if (n) check(family_.sideScan ? SideScanReadProfiles(h_, first + 1, n, counts.data(), 0, 0, 0, 0, 0, 0, 0)
                                          : ProcessedDepthsReadBeamCounts(first, n, counts.data()),
                         "read");
        }
        std::uint64_t total = 0;
        for (unsigned c : counts) total += c;
        if (total > 0xFFFFFFFFull) throw Failure{kBadArgument, "more samples than one read can hold"};
        const auto size = static_cast<py::ssize_t>(total);
        py::dict d;
        if (family_.sideScan) {
            py::array_t<std::int32_t> amplitudes(size);
            py::array_t<std::uint32_t> detections(size);
            int *ap = amplitudes.mutable_data();
            auto *dp = reinterpret_cast<unsigned *>(detections.mutable_data());
            {
                py::gil_scoped_release unlocked;
                if (n) check(SideScanReadSamples(h_, first + 1, n, static_cast<unsigned>(total), offsets.data(), ap, dp),
                             "read");
            }
            d["amplitude"] = amplitudes, d["detection"] = detections;
            d["sample_offsets"] = int64s(offsets);
            return d;
        }
        py::array records(beamDtype(), std::vector<py::ssize_t>{size});
        auto *b = static_cast<BeamRecord *>(records.mutable_data());
        {
            std::vector<ProcessedDepthsSounding> s(total);
            std::vector<ProcessedDepthsMeasurement> m(total);
            std::vector<ProcessedDepthsReductions> r(total);
            py::gil_scoped_release unlocked;
            if (n)
                check(ProcessedDepthsReadBeams(h_, first + 1, n, static_cast<unsigned>(total), offsets.data(), s.data(),
                                               m.data(), r.data()),
                      "read");
            for (std::size_t i = 0; i < total; ++i) b[i] = BeamRecord{s[i], m[i], r[i]};
        }
        d = fieldsOf(records);
        d["beam_offsets"] = int64s(offsets);
        return d;
    }

private:
    TOVO_Sensor *live() const {
        if (!h_) throw Failure{kBadArgument, std::string(family_.name) + ": the handle is closed"};
        return h_;
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

    static py::array_t<std::int64_t> int64s(const std::vector<unsigned> &values) {
        py::array_t<std::int64_t> out(static_cast<py::ssize_t>(values.size()));
        std::copy(values.begin(), values.end(), out.mutable_data());
        return out;
    }

    const SonarFamily &family_;
    TOVO_Sensor *h_ = nullptr;
};

}  // namespace

void registerSonarFamilies(py::module_ &m) {
    py::list names;
    for (const SonarFamily &f : sonarFamilies()) names.append(f.name);
    m.attr("SONAR_FAMILIES") = names;
    py::class_<SonarSensor>(m, "SonarSensor")
        .def(py::init<const py::object &, const std::string &, const std::string &>(), py::arg("line"),
             py::arg("family"), py::arg("mode") = "query")
        .def_property_readonly("family", &SonarSensor::family)
        .def_property_readonly("closed", &SonarSensor::closed)
        .def("close", &SonarSensor::close)
        .def("summary", &SonarSensor::summary)
        .def("count", &SonarSensor::count)
        .def("segments", &SonarSensor::segments)
        .def("read_profiles", &SonarSensor::readProfiles, py::arg("first") = 0, py::arg("count") = py::none())
        .def("read_beams", &SonarSensor::readBeams, py::arg("first") = 0, py::arg("count") = py::none());
}

}  // namespace velmio::python
