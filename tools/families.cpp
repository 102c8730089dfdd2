// The family table. Each kind (one value per record, positions, profiles of
// beams) has one adapter; an entry names the family's own functions.
#include "families.h"
#include "command.h"

#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>
#include <velmio/simple_sensor.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include <algorithm>
#include <cstdlib>

namespace velmio::tool {
namespace {

// A name handed out by the library, as UTF-8; the copy is freed.
std::string takeName(wchar_t *name) {
    std::string out = name ? narrow(name) : std::string();
    std::free(name);
    return out;
}

// Reads rows first..last of a record family: the subclass fills one chunk.
class RangeReader : public RowReader {
public:
    RangeReader(std::vector<Column> columns, unsigned int first, unsigned int last)
        : columns_(std::move(columns)), next_(first), last_(last) {}
    const std::vector<Column> &columns() const override { return columns_; }
    int next(std::vector<double> &rows, std::size_t maxRows) override {
        rows.clear();
        if (next_ > last_ || next_ == 0) return 0;
        const unsigned int count = static_cast<unsigned int>(std::min<std::size_t>(maxRows, last_ - next_ + 1));
        rows.resize(static_cast<std::size_t>(count) * columns_.size());
        const int rc = fill(next_, count, rows.data());
        if (rc != 0) rows.clear();
        next_ += count;
        return rc;
    }

protected:
    virtual int fill(unsigned int first, unsigned int count, double *rows) = 0;
    std::vector<Column> columns_;
    unsigned int next_, last_;
};

// ---- one value per record ----

class SimpleReader : public RangeReader {
public:
    SimpleReader(TOVO_Sensor *h, ColumnType value, unsigned int first, unsigned int last)
        : RangeReader({{"record", ColumnType::Count}, {"time", ColumnType::Time}, {"value", value},
                       {"status", ColumnType::Status}},
                      first, last),
          h_(h) {}

private:
    int fill(unsigned int first, unsigned int count, double *rows) override {
        times_.resize(count);
        values_.resize(count);
        statuses_.resize(count);
        if (int rc = SimpleSensorReadRange(h_, first, count, times_.data(), values_.data(), statuses_.data())) return rc;
        for (unsigned int i = 0; i < count; ++i, rows += 4) {
            rows[0] = first + i;
            rows[1] = times_[i];
            rows[2] = values_[i];
            rows[3] = statuses_[i];
        }
        return 0;
    }
    TOVO_Sensor *h_;
    std::vector<double> times_, values_;
    std::vector<unsigned int> statuses_;
};

int simpleSummary(TOVO_Sensor *h, Summary &s, ColumnType value) {
    double lo = 0, hi = 0;
    const int rc = SimpleSensorSummary(h, &s.segments, &s.records, &s.minTime, &s.maxTime, &lo, &hi, &s.status);
    s.extents = {{"value", value, lo, hi}};
    return rc;
}

int simpleSegment(TOVO_Sensor *h, int n, Segment &out) {
    wchar_t *name = nullptr;
    const int rc = SimpleSensorLineSegment(h, n, &name, &out.first, &out.last, &out.minTime, &out.maxTime, nullptr,
                                           nullptr, &out.status);
    out.name = takeName(name);
    return rc;
}

template <ColumnType Value>
Family simple(const char *name, unsigned int id, TOVO_Sensor *(*open)(const wchar_t *, const wchar_t *, int *)) {
    return {name,
            id,
            Kind::Simple,
            "records",
            open,
            SimpleSensorClose,
            [](TOVO_Sensor *h, Summary &s) { return simpleSummary(h, s, Value); },
            simpleSegment,
            [](TOVO_Sensor *h, unsigned int first, unsigned int last) -> std::unique_ptr<RowReader> {
                return std::make_unique<SimpleReader>(h, Value, first, last);
            }};
}

// ---- positions ----

using NavRange = int (*)(TOVO_Sensor *, unsigned int, unsigned int, double *, double *, double *, double *,
                         unsigned int *);

class NavigationReader : public RangeReader {
public:
    NavigationReader(TOVO_Sensor *h, NavRange read, unsigned int first, unsigned int last)
        : RangeReader({{"record", ColumnType::Count},
                       {"time", ColumnType::Time},
                       {"latitude", ColumnType::Radians},
                       {"longitude", ColumnType::Radians},
                       {"metres", ColumnType::Metres},
                       {"status", ColumnType::Status}},
                      first, last),
          h_(h), read_(read) {}

private:
    int fill(unsigned int first, unsigned int count, double *rows) override {
        for (auto *v : {&times_, &lats_, &lons_, &metres_}) v->resize(count);
        statuses_.resize(count);
        if (int rc = read_(h_, first, count, times_.data(), lats_.data(), lons_.data(), metres_.data(),
                           statuses_.data()))
            return rc;
        for (unsigned int i = 0; i < count; ++i, rows += 6) {
            rows[0] = first + i;
            rows[1] = times_[i];
            rows[2] = lats_[i];
            rows[3] = lons_[i];
            rows[4] = metres_[i];
            rows[5] = statuses_[i];
        }
        return 0;
    }
    TOVO_Sensor *h_;
    NavRange read_;
    std::vector<double> times_, lats_, lons_, metres_;
    std::vector<unsigned int> statuses_;
};

template <int (*SummaryFn)(TOVO_Sensor *, unsigned int *, unsigned int *, unsigned int *, double *, double *,
                           double *, double *, double *, double *, unsigned int *),
          int (*SegmentFn)(TOVO_Sensor *, int, wchar_t **, unsigned int *, unsigned int *, double *, double *,
                           double *, double *, double *, double *, unsigned int *),
          NavRange ReadFn>
Family navigation(const char *name, unsigned int id, TOVO_Sensor *(*open)(const wchar_t *, const wchar_t *, int *),
                  int (*close)(TOVO_Sensor *)) {
    return {name,
            id,
            Kind::Navigation,
            "fixes",
            open,
            close,
            [](TOVO_Sensor *h, Summary &s) {
                double lat0 = 0, lat1 = 0, lon0 = 0, lon1 = 0;
                const int rc = SummaryFn(h, &s.segments, &s.records, nullptr, &s.minTime, &s.maxTime, &lat0, &lat1,
                                         &lon0, &lon1, &s.status);
                s.extents = {{"lat", ColumnType::Radians, lat0, lat1}, {"lon", ColumnType::Radians, lon0, lon1}};
                return rc;
            },
            [](TOVO_Sensor *h, int n, Segment &out) {
                wchar_t *segName = nullptr;
                double a, b, c, d;
                const int rc = SegmentFn(h, n, &segName, &out.first, &out.last, &out.minTime, &out.maxTime, &a, &b,
                                         &c, &d, &out.status);
                out.name = takeName(segName);
                return rc;
            },
            [](TOVO_Sensor *h, unsigned int first, unsigned int last) -> std::unique_ptr<RowReader> {
                return std::make_unique<NavigationReader>(h, ReadFn, first, last);
            }};
}

// ---- profiles of beams: one row per beam, the profile's fields in front ----

using Columns = std::vector<std::vector<double>>;

struct ProfileOps {
    std::vector<Column> header;  // after "profile"
    std::vector<Column> beam;    // after "beam"
    // Headers of count profiles from first: beam counts, first beam numbers
    // and the header columns (count values each).
    int (*readProfiles)(TOVO_Sensor *, unsigned int first, unsigned int count, unsigned int *beams,
                        unsigned int *firstBeams, Columns &header);
    // Those headers and, in the same pass, every beam of those profiles:
    // offsets (count + 1) and the beam columns (capacity values each).
    int (*readRange)(TOVO_Sensor *, unsigned int first, unsigned int count, unsigned int *beams,
                     unsigned int *firstBeams, Columns &header, unsigned int capacity, unsigned int *offsets,
                     Columns &beam);
};

// Unsigned outputs of the bulk calls into a double column.
template <class T>
void widenColumn(const std::vector<T> &from, std::vector<double> &to) {
    std::copy(from.begin(), from.end(), to.begin());
}

class ProfileReader : public RowReader {
public:
    ProfileReader(TOVO_Sensor *h, const ProfileOps &ops, unsigned int first, unsigned int last)
        : h_(h), ops_(ops), next_(first), last_(last), header_(ops.header.size()), beam_(ops.beam.size()) {
        columns_.push_back({"profile", ColumnType::Count});
        columns_.insert(columns_.end(), ops.header.begin(), ops.header.end());
        columns_.push_back({"beam", ColumnType::Count});
        columns_.insert(columns_.end(), ops.beam.begin(), ops.beam.end());
    }
    const std::vector<Column> &columns() const override { return columns_; }
    // Whole profiles, as many as fit in maxRows beams (at least one), in one
    // read each: as many profiles as the last read's beams per profile
    // allow, halved while the read fails (one that does not fit writes
    // nothing; a damaged profile is reported after the good ones before it).
    int next(std::vector<double> &rows, std::size_t maxRows) override {
        rows.clear();
        if (next_ == 0 || next_ > last_) return 0;
        const auto capacity = static_cast<unsigned int>(std::clamp<std::size_t>(maxRows, 1, 1u << 30));
        unsigned int take = std::clamp(capacity / std::max(beamsPerProfile_, 1u), 1u, last_ - next_ + 1);
        int rc;
        while ((rc = read(take, capacity)) != 0 && take > 1) take /= 2;
        if (rc != 0) {
            // A profile of more beams than maxRows: read with room for them all.
            unsigned int beams = 0, firstBeam = 0;
            for (auto &c : header_) c.resize(1);
            if ((rc = ops_.readProfiles(h_, next_, 1, &beams, &firstBeam, header_)) != 0) return rc;
            if ((rc = read(1, std::max(beams, 1u))) != 0) return rc;
        }
        const std::size_t total = offsets_[take];
        beamsPerProfile_ = static_cast<unsigned int>((total + take - 1) / take);
        const std::size_t width = columns_.size();
        rows.resize(total * width);
        double *row = rows.data();
        for (unsigned int p = 0; p < take; ++p) {
            for (unsigned int k = offsets_[p]; k < offsets_[p + 1]; ++k, row += width) {
                double *at = row;
                *at++ = next_ + p;
                for (const auto &c : header_) *at++ = c[p];
                *at++ = firstBeams_[p] + (k - offsets_[p]);
                for (const auto &c : beam_) *at++ = c[k];
            }
        }
        next_ += take;
        return 0;
    }

private:
    int read(unsigned int take, unsigned int capacity) {
        beams_.resize(take);
        firstBeams_.resize(take);
        offsets_.resize(take + 1);
        for (auto &c : header_) c.resize(take);
        for (auto &c : beam_) c.resize(capacity);
        return ops_.readRange(h_, next_, take, beams_.data(), firstBeams_.data(), header_, capacity, offsets_.data(),
                              beam_);
    }


    TOVO_Sensor *h_;
    const ProfileOps &ops_;
    std::vector<Column> columns_;
    unsigned int next_, last_, beamsPerProfile_ = 0;
    std::vector<unsigned int> beams_, firstBeams_, offsets_;
    Columns header_, beam_;
};

const ProfileOps kObservedDepthsOps = {
    {{"ping_time", ColumnType::Time},
     {"angle1", ColumnType::Radians},
     {"angle2", ColumnType::Radians},
     {"profile_status", ColumnType::Status}},
    {{"time", ColumnType::Time},
     {"y", ColumnType::Metres},
     {"x", ColumnType::Metres},
     {"depth", ColumnType::Metres},
     {"extra", ColumnType::Value},
     {"status", ColumnType::Status}},
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c) {
        std::vector<unsigned int> status(n);
        const int rc = ObservedDepthsReadProfiles(h, first, n, beams, firstBeams, c[0].data(), c[1].data(),
                                                  c[2].data(), status.data());
        widenColumn(status, c[3]);
        return rc;
    },
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c,
       unsigned int capacity, unsigned int *offsets, Columns &b) {
        std::vector<unsigned int> status(n), beamStatus(capacity);
        const int rc = ObservedDepthsReadRange(h, first, n, beams, firstBeams, c[0].data(), c[1].data(), c[2].data(),
                                               status.data(), capacity, offsets, b[0].data(), b[1].data(),
                                               b[2].data(), b[3].data(), b[4].data(), beamStatus.data());
        widenColumn(status, c[3]);
        widenColumn(beamStatus, b[5]);
        return rc;
    }};

const ProfileOps kSlantRangeOps = {
    {{"ping_time", ColumnType::Time},
     {"angle1", ColumnType::Radians},
     {"angle2", ColumnType::Radians},
     {"profile_status", ColumnType::Status}},
    {{"time", ColumnType::Time},
     {"range", ColumnType::Metres},
     {"value", ColumnType::Value},
     {"beam_angle1", ColumnType::Radians},
     {"beam_angle2", ColumnType::Radians},
     {"status", ColumnType::Status}},
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c) {
        std::vector<unsigned int> status(n);
        const int rc = SLRangeReadProfiles(h, first, n, beams, firstBeams, c[0].data(), c[1].data(), c[2].data(),
                                           status.data());
        widenColumn(status, c[3]);
        return rc;
    },
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c,
       unsigned int capacity, unsigned int *offsets, Columns &b) {
        std::vector<unsigned int> status(n), beamStatus(capacity);
        const int rc = SLRangeReadRange(h, first, n, beams, firstBeams, c[0].data(), c[1].data(), c[2].data(),
                                        status.data(), capacity, offsets, b[0].data(), b[1].data(), b[2].data(),
                                        b[3].data(), b[4].data(), beamStatus.data());
        widenColumn(status, c[3]);
        widenColumn(beamStatus, b[5]);
        return rc;
    }};

const ProfileOps kTpeOps = {
    {{"ping_time", ColumnType::Time}, {"profile_word", ColumnType::Count}, {"profile_status", ColumnType::Status}},
    {{"time", ColumnType::Time},
     {"error1", ColumnType::Metres},
     {"error2", ColumnType::Metres},
     {"status", ColumnType::Status}},
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c) {
        std::vector<unsigned int> words(n), status(n);
        const int rc = TPEReadProfiles(h, first, n, beams, firstBeams, c[0].data(), words.data(), status.data());
        widenColumn(words, c[1]);
        widenColumn(status, c[2]);
        return rc;
    },
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c,
       unsigned int capacity, unsigned int *offsets, Columns &b) {
        std::vector<unsigned int> words(n), status(n), beamStatus(capacity);
        const int rc = TPEReadRange(h, first, n, beams, firstBeams, c[0].data(), words.data(), status.data(), capacity,
                                    offsets, b[0].data(), b[1].data(), b[2].data(), beamStatus.data());
        widenColumn(words, c[1]);
        widenColumn(status, c[2]);
        widenColumn(beamStatus, b[3]);
        return rc;
    }};

// Side scan: a row per sample.
const ProfileOps kSideScanOps = {
    {{"ping_time", ColumnType::Time},
     {"sample_interval", ColumnType::Value},
     {"gain", ColumnType::Value},
     {"attenuation1", ColumnType::Value},
     {"attenuation2", ColumnType::Value},
     {"profile_status", ColumnType::Status}},
    {{"amplitude", ColumnType::Value}, {"detection", ColumnType::Count}},
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *samples, unsigned int *firstSamples,
       Columns &c) {
        std::vector<int> gains(n), a1(n), a2(n);
        std::vector<unsigned int> status(n);
        const int rc = SideScanReadProfiles(h, first, n, samples, firstSamples, c[0].data(), c[1].data(), gains.data(),
                                            a1.data(), a2.data(), status.data());
        widenColumn(gains, c[2]);
        widenColumn(a1, c[3]);
        widenColumn(a2, c[4]);
        widenColumn(status, c[5]);
        return rc;
    },
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c,
       unsigned int capacity, unsigned int *offsets, Columns &b) {
        std::vector<int> gains(n), a1(n), a2(n), amplitudes(capacity);
        std::vector<unsigned int> status(n), detections(capacity);
        const int rc = SideScanReadRange(h, first, n, beams, firstBeams, c[0].data(), c[1].data(), gains.data(),
                                         a1.data(), a2.data(), status.data(), capacity, offsets, amplitudes.data(),
                                         detections.data());
        widenColumn(gains, c[2]);
        widenColumn(a1, c[3]);
        widenColumn(a2, c[4]);
        widenColumn(status, c[5]);
        widenColumn(amplitudes, b[0]);
        widenColumn(detections, b[1]);
        return rc;
    }};

// Processed depths pings and beams as the table's columns.
void pingColumns(const std::vector<ProcessedDepthsPing> &pings, unsigned int *beams, unsigned int *firstBeams,
                 Columns &c) {
    for (std::size_t i = 0; i < pings.size(); ++i) {
        const ProcessedDepthsPing &p = pings[i];
        beams[i] = p.beamCount;
        firstBeams[i] = p.firstBeam;
        const double values[] = {p.time, double(p.pingNumber), p.latitude, p.longitude, p.heading, double(p.status)};
        for (std::size_t k = 0; k < c.size(); ++k) c[k][i] = values[k];
    }
}

void beamColumns(const std::vector<ProcessedDepthsSounding> &s, const std::vector<ProcessedDepthsMeasurement> &m,
                 Columns &c) {
    for (std::size_t i = 0; i < s.size(); ++i) {
        const double values[] = {s[i].time,     s[i].depth,     s[i].acrossTrack,     s[i].alongTrack,
                                 s[i].latitude, s[i].longitude, m[i].reflectivity, double(s[i].status)};
        for (std::size_t k = 0; k < c.size(); ++k) c[k][i] = values[k];
    }
}

const ProfileOps kProcessedDepthsOps = {
    {{"ping_time", ColumnType::Time},
     {"ping_number", ColumnType::Count},
     {"latitude", ColumnType::Radians},
     {"longitude", ColumnType::Radians},
     {"heading", ColumnType::Radians},
     {"profile_status", ColumnType::Status}},
    {{"time", ColumnType::Time},
     {"depth", ColumnType::Metres},
     {"across", ColumnType::Metres},
     {"along", ColumnType::Metres},
     {"latitude", ColumnType::Radians},
     {"longitude", ColumnType::Radians},
     {"reflectivity", ColumnType::Value},
     {"status", ColumnType::Status}},
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c) {
        std::vector<ProcessedDepthsPing> pings(n);
        const int rc = ProcessedDepthsReadProfiles(h, first, n, pings.data(), nullptr, nullptr);
        pingColumns(pings, beams, firstBeams, c);
        return rc;
    },
    [](TOVO_Sensor *h, unsigned int first, unsigned int n, unsigned int *beams, unsigned int *firstBeams, Columns &c,
       unsigned int capacity, unsigned int *offsets, Columns &b) {
        std::vector<ProcessedDepthsPing> pings(n);
        std::vector<ProcessedDepthsSounding> s(capacity);
        std::vector<ProcessedDepthsMeasurement> m(capacity);
        const int rc = ProcessedDepthsReadRange(h, first, n, pings.data(), nullptr, nullptr, capacity, offsets,
                                                s.data(), m.data(), nullptr);
        pingColumns(pings, beams, firstBeams, c);
        beamColumns(s, m, b);
        return rc;
    }};

template <const ProfileOps &Ops>
std::unique_ptr<RowReader> profileReader(TOVO_Sensor *h, unsigned int first, unsigned int last) {
    return std::make_unique<ProfileReader>(h, Ops, first, last);
}

int observedDepthsSummary(TOVO_Sensor *h, Summary &s) {
    double d0 = 0, d1 = 0;
    const int rc = ObservedDepthsSummary(h, nullptr, &s.segments, &s.records, &s.beams, &s.minTime, &s.maxTime, &d0,
                                         &d1, &s.status);
    s.extents = {{"depth", ColumnType::Metres, d0, d1}};
    return rc;
}

int observedDepthsSegment(TOVO_Sensor *h, int n, Segment &out) {
    wchar_t *name = nullptr;
    double d0, d1;
    const int rc = ObservedDepthsLineSegment(h, n, &name, &out.first, &out.last, &out.minTime, &out.maxTime, &d0,
                                             &d1, &out.status);
    out.name = takeName(name);
    return rc;
}

int sideScanSummary(TOVO_Sensor *h, Summary &s) {
    int a0 = 0, a1 = 0;
    const int rc = SideScanSummary(h, nullptr, &s.segments, &s.records, &s.beams, &s.minTime, &s.maxTime, &a0, &a1,
                                   &s.status);
    if (a0 <= a1) s.extents = {{"amplitude", ColumnType::Value, double(a0), double(a1)}};
    return rc;
}

int sideScanSegment(TOVO_Sensor *h, int n, Segment &out) {
    wchar_t *name = nullptr;
    const int rc = SideScanLineSegment(h, n, &name, &out.first, &out.last, &out.minTime, &out.maxTime, &out.status);
    out.name = takeName(name);
    return rc;
}

Family sideScan(const char *name, unsigned int typeId, TOVO_Sensor *(*open)(const wchar_t *, const wchar_t *, int *)) {
    return {name, typeId, Kind::Profile, "pings", open, SideScanClose, sideScanSummary, sideScanSegment,
            profileReader<kSideScanOps>, "samples"};
}

std::vector<Family> makeTable() {
    using CT = ColumnType;
    return {
        navigation<NavigationSummary, NavigationLineSegment, NavigationReadRange>("Navigation", 3, NavigationOpenDir,
                                                                             NavigationClose),
        navigation<SSSNavigationSummary, SSSNavigationLineSegment, SSSNavigationReadRange>(
            "SSSNavigation", 12, SSSNavigationOpenDir, SSSNavigationClose),
        simple<CT::Radians>("Gyro", 1, GyroOpenDir),
        simple<CT::Metres>("Heave", 2, HeaveOpenDir),
        simple<CT::Radians>("Pitch", 5, PitchOpenDir),
        simple<CT::Radians>("Roll", 6, RollOpenDir),
        simple<CT::Metres>("Tide", 7, TideOpenDir),
        simple<CT::Radians>("SSSGyro", 11, SSSGyroOpenDir),
        simple<CT::Metres>("SSSCableOut", 40, SSSCableOutOpenDir),
        simple<CT::Metres>("SSSSensorHeight", 41, SSSSensorHeightOpenDir),
        simple<CT::Metres>("SSSSensorDepth", 42, SSSSensorDepthOpenDir),
        simple<CT::Metres>("DeltaDraft", 45, DeltaDraftOpenDir),
        simple<CT::Metres>("SOW", 46, SOWOpenDir),
        simple<CT::Metres>("GPSHeight", 47, GPSHeightOpenDir),
        simple<CT::Metres>("GPSTide", 48, GPSTideOpenDir),
        simple<CT::Metres>("TrueHeave", 55, TrueHeaveOpenDir),
        {"ObservedDepths", 4, Kind::Profile, "pings", ObservedDepthsOpenDir, ObservedDepthsClose,
         observedDepthsSummary, observedDepthsSegment, profileReader<kObservedDepthsOps>},
        {"ObservedDepthsNew", 53, Kind::Profile, "pings", ObservedDepthsNewOpenDir, ObservedDepthsClose,
         observedDepthsSummary, observedDepthsSegment, profileReader<kObservedDepthsOps>},
        {"SLRange", 30, Kind::Profile, "pings", SLRangeOpenDir, SLRangeClose,
         [](TOVO_Sensor *h, Summary &s) {
             return SLRangeSummary(h, nullptr, &s.segments, &s.records, &s.beams, &s.minTime, &s.maxTime, &s.status);
         },
         [](TOVO_Sensor *h, int n, Segment &out) {
             wchar_t *name = nullptr;
             const int rc = SLRangeLineSegment(h, n, &name, &out.first, &out.last, &out.minTime, &out.maxTime, &out.status);
             out.name = takeName(name);
             return rc;
         },
         profileReader<kSlantRangeOps>},
        {"TPE", 52, Kind::Profile, "pings", TPEOpenDir, TPEClose,
         [](TOVO_Sensor *h, Summary &s) {
             double a0 = 0, a1 = 0, b0 = 0, b1 = 0;
             const int rc = TPESummary(h, &s.segments, &s.records, &s.beams, &s.minTime, &s.maxTime, nullptr, nullptr,
                                       &a0, &a1, &b0, &b1, &s.status);
             s.extents = {{"error1", ColumnType::Metres, a0, a1}, {"error2", ColumnType::Metres, b0, b1}};
             return rc;
         },
         [](TOVO_Sensor *h, int n, Segment &out) {
             wchar_t *name = nullptr;
             const int rc = TPELineSegment(h, n, &name, &out.first, &out.last, &out.minTime, &out.maxTime, &out.status);
             out.name = takeName(name);
             return rc;
         },
         profileReader<kTpeOps>},
        {"ProcessedDepths", 0, Kind::Profile, "pings", ProcessedDepthsOpenDir, ProcessedDepthsClose,
         [](TOVO_Sensor *h, Summary &s) {
             double d0 = 0, d1 = 0;
             const int rc = ProcessedDepthsSummary(h, nullptr, &s.segments, &s.records, &s.beams, &s.minTime,
                                                   &s.maxTime, &d0, &d1, &s.status);
             s.extents = {{"depth", ColumnType::Metres, d0, d1}};
             return rc;
         },
         [](TOVO_Sensor *h, int n, Segment &out) {
             wchar_t *name = nullptr;
             double d0, d1;
             const int rc = ProcessedDepthsLineSegment(h, n, &name, &out.first, &out.last, &out.minTime,
                                                       &out.maxTime, &d0, &d1, &out.status);
             out.name = takeName(name);
             return rc;
         },
         profileReader<kProcessedDepthsOps>},
        sideScan("SideScan", 9, openSideScan),
        sideScan("SSSSideScan", 13, SSSSideScanOpenDir),
        sideScan("SSSProcessedSideScan", 19, SSSProcessedSideScanOpenDir),
        sideScan("NewSSSProcessedSideScan", 32787, NewSSSProcessedSideScanOpenDir),
    };
}

}  // namespace

// The "SideScan" files hold one of four kinds; the first opener that
// accepts them reads them.
TOVO_Sensor *openSideScan(const wchar_t *line, const wchar_t *token, int *error) {
    TOVO_Sensor *h = nullptr;
    for (auto open : {SideScanEM100OpenDir, SideScanEM1000OpenDir, SideScanELACOpenDir})
        if ((h = open(line, token, error))) break;
    return h;
}

const std::vector<Family> &families() {
    static const std::vector<Family> table = makeTable();
    return table;
}

const Family *findFamily(const std::string &name) {
    for (const Family &f : families())
        if (name == f.name) return &f;
    return nullptr;
}

}  // namespace velmio::tool
