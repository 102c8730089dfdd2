// The three profile families behind one set of operations, and a line of
// several profiles and segments to write with any of them.
#ifndef VELMIO_TESTS_SENSORS_PROFILE_FAMILIES_H
#define VELMIO_TESTS_SENSORS_PROFILE_FAMILIES_H

#include <velmio/observed_depths.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include "tests/sensors/sensor_test_support.h"

#include <algorithm>
#include <ostream>

namespace velmio::test {

struct Layout {
    unsigned count, first;
};
// An empty profile, a first beam at the top of the 16-bit range, and two
// segments (profiles 1-3 and 4-6).
inline const Layout kLayout[] = {{3, 1}, {1, 7}, {0, 1}, {4, 100}, {2, 65535}, {5, 2}};
constexpr unsigned kProfiles = 6;

inline double pingTime(unsigned p) { return 300.0 + 0.7 * p; }
inline double beamTimeOf(unsigned p, unsigned k) { return pingTime(p) + 0.001 * (k + 1) - 0.0005 * (p % 2); }
inline unsigned statusOf(unsigned p, unsigned k) { return (p * 16 + k) << 20; }

// A beam as read: its values (those a family lacks stay 0) and its status.
struct Reading {
    double v[5] = {};
    unsigned status = 0;
    bool operator==(const Reading &o) const { return std::equal(v, v + 5, o.v) && status == o.status; }
};
inline std::ostream &operator<<(std::ostream &out, const Reading &r) {
    return out << r.v[0] << ' ' << r.v[1] << ' ' << r.v[2] << ' ' << r.v[3] << ' ' << r.v[4] << " / " << r.status;
}

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
    int (*edit)(H, unsigned p, unsigned b);       // a status edit, where there is one
    int (*writeBeam)(H, unsigned p, unsigned k);  // beam k of profile p

    H open(const std::wstring &dir, const wchar_t *mode) const {
        int error;
        return openDir(dir.c_str(), mode, &error);
    }
};

// ObservedDepths and SLRange share their signatures; only the beam written differs.
#define VELMIO_FIVE_VALUE_FAMILY(P, BLOCK, ...)                                                                  \
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
            [](H h, unsigned p, unsigned k) { return __VA_ARGS__; }                                              \
    }

inline Family observedDepths() {
    return VELMIO_FIVE_VALUE_FAMILY(ObservedDepths, 5000200,
                                    ObservedDepthsSeqWrite(h, beamTimeOf(p, k), p + 0.1 * k, -1.0 * k,
                                                           10 + p + 0.01 * k, 0, 0, statusOf(p, k)));
}

inline Family slantRange() {
    return VELMIO_FIVE_VALUE_FAMILY(SLRange, 5001900,
                                    SLRangeSeqWrite(h, beamTimeOf(p, k), 5.0 + k, 0.000123 * (p + k), 0.01 * k,
                                                    -0.02 * p, statusOf(p, k)));
}

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
            [](H h, unsigned p, unsigned k) {
                return TPESeqWrite(h, beamTimeOf(p, k), 0.001 * (p + k), -0.5 * k, statusOf(p, k));
            }};
}

// The first `profiles` profiles of the layout.
inline void writeLine(const Family &f, const std::wstring &dir, unsigned profiles = kProfiles) {
    H h = f.open(dir, L"create");
    ASSERT_NE(h, nullptr);
    for (unsigned p = 1; p <= profiles; ++p) {
        ASSERT_EQ(p == 1 || p == 4 ? f.beginSegment(h, p == 1 ? L"a.raw" : L"b.raw") : 0, 0);
        ASSERT_EQ(f.beginProfile(h, p, kLayout[p - 1]), 0);
        for (unsigned k = 0; k < kLayout[p - 1].count; ++k) ASSERT_EQ(f.writeBeam(h, p, k), 0);
        ASSERT_EQ(f.endProfile(h), 0);
        ASSERT_EQ(p == 3 || p == profiles ? f.endSegment(h, p) : 0, 0);
    }
    ASSERT_EQ(f.close(h), 0);
}

}  // namespace velmio::test

#endif
