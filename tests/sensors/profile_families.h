// The three profile families behind one set of operations, per beam and in
// bulk, and a line of profiles and segments to write with any of them.
#ifndef VELMIO_TESTS_SENSORS_PROFILE_FAMILIES_H
#define VELMIO_TESTS_SENSORS_PROFILE_FAMILIES_H

#include <velmio/observed_depths.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include "tests/sensors/sensor_test_support.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <vector>

namespace velmio::test {

struct Layout {
    unsigned count, first;
};
// An empty profile, a first beam at the top of the 16-bit range, and two
// segments (profiles 1-3 and 4-6).
inline const Layout kLayout[] = {{3, 1}, {1, 7}, {0, 1}, {4, 100}, {2, 65535}, {5, 2}};
constexpr unsigned kProfiles = 6;
inline Layout smallLayout(unsigned p) { return kLayout[p - 1]; }

inline double pingTime(unsigned p) { return 300.0 + 0.7 * p; }
inline double beamTimeOf(unsigned p, unsigned k) { return pingTime(p) + 0.001 * (k + 1) - 0.0005 * (p % 2); }
// Every third profile's beams have status 0, which bulk writes pass as no statuses.
inline bool withoutStatus(unsigned p) { return p % 3 == 2; }
inline unsigned statusOf(unsigned p, unsigned k) { return withoutStatus(p) ? 0 : ((p * 16 + k) & 0xFFFu) << 20; }

// A beam or a header as read: its values (those a family lacks stay 0) and
// status; a header also its beam count and first beam.
struct Reading {
    double v[5] = {};
    unsigned status = 0, count = 0, first = 0;
    bool operator==(const Reading &o) const {
        return std::equal(v, v + 5, o.v) && status == o.status && count == o.count && first == o.first;
    }
};
inline std::ostream &operator<<(std::ostream &out, const Reading &r) {
    return out << r.v[0] << ' ' << r.v[1] << ' ' << r.v[2] << ' ' << r.v[3] << ' ' << r.v[4] << " / " << r.status
               << " / " << r.count << ' ' << r.first;
}

// n readings as the column arrays of a bulk read, copied back when it returns.
class Columns {
public:
    Columns(Reading *out, std::size_t n) : out_(out), n_(n) {
        for (std::size_t i = 0; i < n; ++i) {
            for (int c = 0; c < 5; ++c) v_[c].push_back(out[i].v[c]);
            u_[0].push_back(out[i].status), u_[1].push_back(out[i].count), u_[2].push_back(out[i].first);
        }
    }
    ~Columns() {
        for (std::size_t i = 0; i < n_; ++i) {
            for (int c = 0; c < 5; ++c) out_[i].v[c] = v_[c][i];
            out_[i].status = u_[0][i], out_[i].count = u_[1][i], out_[i].first = u_[2][i];
        }
    }
    Columns(const Columns &) = delete;
    Columns &operator=(const Columns &) = delete;
    double *v(int c) { return v_[c].data(); }
    unsigned *status() { return u_[0].data(); }
    unsigned *count() { return u_[1].data(); }
    unsigned *first() { return u_[2].data(); }

private:
    Reading *out_;
    std::size_t n_;
    std::vector<double> v_[5];
    std::vector<unsigned> u_[3];
};

// Beams 0 .. n - 1 of profile p as the columns of a bulk write, from the
// values value(p, k) that the per-beam write passes.
template <std::size_t N>
struct BeamColumns {
    std::vector<double> v[N];
    std::vector<unsigned> s;
    const unsigned *statuses;
    BeamColumns(unsigned p, unsigned n, std::array<double, N> (*value)(unsigned, unsigned)) {
        for (unsigned k = 0; k < n; ++k) {
            for (std::size_t c = 0; c < N; ++c) v[c].push_back(value(p, k)[c]);
            s.push_back(statusOf(p, k));
        }
        statuses = withoutStatus(p) ? nullptr : s.data();
    }
    const double *operator[](std::size_t c) const { return v[c].data(); }
};

using H = TOVO_Sensor *;

// The operations of one family over a handle.
struct Family {
    const char *name;  // also the data file's name
    int block;         // of the family's codes
    H (*openDir)(const wchar_t *, const wchar_t *, int *);
    int (*close)(H);
    int (*beginSegment)(H, const wchar_t *);
    int (*endSegment)(H, unsigned);
    int (*beginProfile)(H, unsigned p, const Layout &);
    int (*endProfile)(H);
    int (*readProfileSeq)(H, unsigned &count);
    int (*readSeq)(H, Reading &);
    int (*read)(H, unsigned p, unsigned b, Reading &);
    int (*edit)(H, unsigned p, unsigned b);  // a status edit, where there is one
    int (*readProfile)(H, unsigned p, Reading &header);
    int (*readProfiles)(H, unsigned first, unsigned count, Reading *headers);
    int (*readBeams)(H, unsigned first, unsigned count, unsigned capacity, unsigned *offsets, Reading *beams);
    int (*writeBeam)(H, unsigned p, unsigned k);       // beam k of profile p
    int (*writeBeams)(H, unsigned p, unsigned count);  // its beams 0 .. count - 1 in one call

    H open(const std::wstring &dir, const wchar_t *mode) const {
        int error;
        return openDir(dir.c_str(), mode, &error);
    }
};

// ObservedDepths and SLRange share their signatures but for the beams written.
#define VELMIO_FIVE_VALUE_FAMILY(P, BLOCK)                                                                       \
    Family {                                                                                                    \
        #P, BLOCK, P##OpenDir, P##Close, P##BgnSeqWriteLineSegment, P##EndSeqWriteLineSegment,                   \
            [](H h, unsigned p, const Layout &l) {                                                               \
                return P##BgnSeqWriteProfile(h, l.count, l.first, pingTime(p), 0.01 * p, -0.02 * p, p);          \
            },                                                                                                   \
            P##EndSeqWriteProfile,                                                                               \
            [](H h, unsigned &n) {                                                                               \
                unsigned b, s;                                                                                   \
                double t, a;                                                                                     \
                return P##ReadProfileSeq(h, &n, &b, &t, &a, &a, &s);                                             \
            },                                                                                                   \
            [](H h, Reading &r) { return P##ReadSeq(h, &r.v[0], &r.v[1], &r.v[2], &r.v[3], &r.v[4], &r.status); }, \
            [](H h, unsigned p, unsigned b, Reading &r) {                                                        \
                return P##Read(h, p, b, &r.v[0], &r.v[1], &r.v[2], &r.v[3], &r.v[4], &r.status);                 \
            },                                                                                                   \
            [](H h, unsigned p, unsigned b) { return P##UpdateStatus(h, p, b, 0x10000000u); },                   \
            [](H h, unsigned p, Reading &r) {                                                                    \
                return P##ReadProfile(h, p, &r.count, &r.first, &r.v[0], &r.v[1], &r.v[2], &r.status);           \
            },                                                                                                   \
            [](H h, unsigned f, unsigned n, Reading *out) {                                                      \
                Columns c(out, n);                                                                               \
                return P##ReadProfiles(h, f, n, c.count(), c.first(), c.v(0), c.v(1), c.v(2), c.status());       \
            },                                                                                                   \
            [](H h, unsigned f, unsigned n, unsigned capacity, unsigned *offsets, Reading *out) {                \
                Columns c(out, capacity);                                                                        \
                return P##ReadBeams(h, f, n, capacity, offsets, c.v(0), c.v(1), c.v(2), c.v(3), c.v(4),          \
                                    c.status());                                                                 \
            },                                                                                                   \
            nullptr, nullptr                                                                                     \
    }

inline std::array<double, 4> depthBeam(unsigned p, unsigned k) {
    return {beamTimeOf(p, k), p + 0.1 * k, -1.0 * k, 10 + p + 0.01 * k};
}

inline Family observedDepths() {
    Family f = VELMIO_FIVE_VALUE_FAMILY(ObservedDepths, 5000200);
    f.writeBeam = [](H h, unsigned p, unsigned k) {
        const auto v = depthBeam(p, k);
        return ObservedDepthsSeqWrite(h, v[0], v[1], v[2], v[3], 0, 0, statusOf(p, k));
    };
    f.writeBeams = [](H h, unsigned p, unsigned n) {
        const BeamColumns<4> c(p, n, depthBeam);
        return ObservedDepthsSeqWriteBeams(h, n, c[0], c[1], c[2], c[3], c.statuses);
    };
    return f;
}

inline std::array<double, 5> rangeBeam(unsigned p, unsigned k) {
    return {beamTimeOf(p, k), 5.0 + k, 0.000123 * (p + k), 0.01 * k, -0.0005 * p};
}

inline Family slantRange() {
    Family f = VELMIO_FIVE_VALUE_FAMILY(SLRange, 5001900);
    f.writeBeam = [](H h, unsigned p, unsigned k) {
        const auto v = rangeBeam(p, k);
        return SLRangeSeqWrite(h, v[0], v[1], v[2], v[3], v[4], statusOf(p, k));
    };
    f.writeBeams = [](H h, unsigned p, unsigned n) {
        const BeamColumns<5> c(p, n, rangeBeam);
        return SLRangeSeqWriteBeams(h, n, c[0], c[1], c[2], c[3], c[4], c.statuses);
    };
    return f;
}

inline std::array<double, 3> errorBeam(unsigned p, unsigned k) { return {beamTimeOf(p, k), 0.001 * (p + k), -0.5 * k}; }

// The profile word travels in v[1] of a header.
inline Family tpe() {
    return {"TPE", 5002700, TPEOpenDir, TPEClose, TPEBgnSeqWriteLineSegment, TPEEndSeqWriteLineSegment,
            [](H h, unsigned p, const Layout &l) {
                return TPEBgnSeqWriteProfile(h, l.count, l.first, pingTime(p), 1000 + p, p);
            },
            TPEEndSeqWriteProfile,
            [](H h, unsigned &n) {
                unsigned b, w, s;
                double t;
                return TPEReadProfileSeq(h, &n, &b, &t, &w, &s);
            },
            [](H h, Reading &r) { return TPEReadSeq(h, &r.v[0], &r.v[1], &r.v[2], &r.status); },
            [](H h, unsigned p, unsigned b, Reading &r) { return TPERead(h, p, b, &r.v[0], &r.v[1], &r.v[2], &r.status); },
            nullptr,
            [](H h, unsigned p, Reading &r) {
                unsigned word = 0;
                const int rc = TPEReadProfile(h, p, &r.count, &r.first, &r.v[0], &word, &r.status);
                r.v[1] = word;
                return rc;
            },
            [](H h, unsigned f, unsigned n, Reading *out) {
                Columns c(out, n);
                std::vector<unsigned> words(n);
                const int rc = TPEReadProfiles(h, f, n, c.count(), c.first(), c.v(0), words.data(), c.status());
                for (unsigned i = 0; rc == 0 && i < n; ++i) c.v(1)[i] = words[i];
                return rc;
            },
            [](H h, unsigned f, unsigned n, unsigned capacity, unsigned *offsets, Reading *out) {
                Columns c(out, capacity);
                return TPEReadBeams(h, f, n, capacity, offsets, c.v(0), c.v(1), c.v(2), c.status());
            },
            [](H h, unsigned p, unsigned k) {
                const auto v = errorBeam(p, k);
                return TPESeqWrite(h, v[0], v[1], v[2], statusOf(p, k));
            },
            [](H h, unsigned p, unsigned n) {
                const BeamColumns<3> c(p, n, errorBeam);
                return TPESeqWriteBeams(h, n, c[0], c[1], c[2], c.statuses);
            }};
}

// The first `profiles` profiles laid out by layout, in segments that end after
// profile segmentEnd and after the last; beams written one by one or in bulk.
inline void writeLine(const Family &f, const std::wstring &dir, unsigned profiles = kProfiles, bool bulk = false,
                      Layout (*layout)(unsigned) = smallLayout, unsigned segmentEnd = 3) {
    H h = f.open(dir, L"create");
    ASSERT_NE(h, nullptr);
    for (unsigned p = 1; p <= profiles; ++p) {
        const Layout l = layout(p);
        ASSERT_EQ(p == 1 || p == segmentEnd + 1 ? f.beginSegment(h, p == 1 ? L"a.raw" : L"b.raw") : 0, 0);
        ASSERT_EQ(f.beginProfile(h, p, l), 0);
        if (bulk) {
            ASSERT_EQ(f.writeBeams(h, p, l.count), 0);
        }
        for (unsigned k = 0; !bulk && k < l.count; ++k) ASSERT_EQ(f.writeBeam(h, p, k), 0);
        if (p == 7) {
            // A beam beyond those declared is refused and writes nothing.
            EXPECT_EQ(bulk ? f.writeBeams(h, p, 1) : f.writeBeam(h, p, 0), f.block + 19);
        }
        ASSERT_EQ(f.endProfile(h), 0);
        ASSERT_EQ(p == segmentEnd || p == profiles ? f.endSegment(h, p) : 0, 0);
    }
    ASSERT_EQ(f.close(h), 0);
}

}  // namespace velmio::test

#endif
