// The three profile families behind one set of operations, and a line of
// several profiles and segments to write with any of them.
#ifndef VELMIO_TESTS_SENSORS_PROFILE_FAMILIES_H
#define VELMIO_TESTS_SENSORS_PROFILE_FAMILIES_H

#include <velmio/observed_depths.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include "sensors/profile_test_support.h"

#include <functional>
#include <vector>

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

// A beam's values, its status last.
using Values = std::vector<double>;
using H = TOVO_Sensor *;

// The operations of one family over a handle.
struct Family {
    const char *name = "";  // also the data file's name
    int block = 0;          // of the family's codes
    std::function<H(const std::wstring &, const wchar_t *)> open;
    int (*close)(H) = nullptr;
    int (*beginSegment)(H, const wchar_t *) = nullptr;
    int (*endSegment)(H, unsigned) = nullptr;
    std::function<int(H, unsigned p, const Layout &)> beginProfile;
    std::function<int(H, unsigned p, unsigned k)> writeBeam;  // beam k of profile p
    int (*endProfile)(H) = nullptr;
    std::function<int(H, unsigned &count)> readProfileSeq;
    std::function<int(H, Values &)> readSeq;
    std::function<int(H, unsigned p, unsigned b, Values &)> read;
    std::function<int(H, unsigned p, unsigned b)> edit;  // a status edit, where there is one
};

inline Family observedDepths() {
    Family f;
    f.name = "ObservedDepths";
    f.block = 5000200;
    f.open = [](const std::wstring &d, const wchar_t *t) { int e; return ObservedDepthsOpenDir(d.c_str(), t, &e); };
    f.close = ObservedDepthsClose;
    f.beginSegment = ObservedDepthsBgnSeqWriteLineSegment;
    f.endSegment = ObservedDepthsEndSeqWriteLineSegment;
    f.beginProfile = [](H h, unsigned p, const Layout &l) {
        return ObservedDepthsBgnSeqWriteProfile(h, l.count, l.first, pingTime(p), 0.01 * p, -0.02 * p, p);
    };
    f.writeBeam = [](H h, unsigned p, unsigned k) {
        return ObservedDepthsSeqWrite(h, beamTimeOf(p, k), p + 0.1 * k, -1.0 * k, 10 + p + 0.01 * k, 0, 0, statusOf(p, k));
    };
    f.endProfile = ObservedDepthsEndSeqWriteProfile;
    f.readProfileSeq = [](H h, unsigned &n) { unsigned b, s; double t, a; return ObservedDepthsReadProfileSeq(h, &n, &b, &t, &a, &a, &s); };
    f.readSeq = [](H h, Values &v) {
        unsigned s; v.assign(6, 0);
        const int rc = ObservedDepthsReadSeq(h, &v[0], &v[1], &v[2], &v[3], &v[4], &s);
        v[5] = s; return rc;
    };
    f.read = [](H h, unsigned p, unsigned b, Values &v) {
        unsigned s; v.assign(6, 0);
        const int rc = ObservedDepthsRead(h, p, b, &v[0], &v[1], &v[2], &v[3], &v[4], &s);
        v[5] = s; return rc;
    };
    f.edit = [](H h, unsigned p, unsigned b) { return ObservedDepthsUpdateStatus(h, p, b, 0x10000000u); };
    return f;
}

inline Family slantRange() {
    Family f;
    f.name = "SLRange";
    f.block = 5001900;
    f.open = [](const std::wstring &d, const wchar_t *t) { int e; return SLRangeOpenDir(d.c_str(), t, &e); };
    f.close = SLRangeClose;
    f.beginSegment = SLRangeBgnSeqWriteLineSegment;
    f.endSegment = SLRangeEndSeqWriteLineSegment;
    f.beginProfile = [](H h, unsigned p, const Layout &l) {
        return SLRangeBgnSeqWriteProfile(h, l.count, l.first, pingTime(p), 0.01 * p, -0.02 * p, p);
    };
    f.writeBeam = [](H h, unsigned p, unsigned k) {
        return SLRangeSeqWrite(h, beamTimeOf(p, k), 5.0 + k, 0.000123 * (p + k), 0.01 * k, -0.02 * p, statusOf(p, k));
    };
    f.endProfile = SLRangeEndSeqWriteProfile;
    f.readProfileSeq = [](H h, unsigned &n) { unsigned b, s; double t, a; return SLRangeReadProfileSeq(h, &n, &b, &t, &a, &a, &s); };
    f.readSeq = [](H h, Values &v) {
        unsigned s; v.assign(6, 0);
        const int rc = SLRangeReadSeq(h, &v[0], &v[1], &v[2], &v[3], &v[4], &s);
        v[5] = s; return rc;
    };
    f.read = [](H h, unsigned p, unsigned b, Values &v) {
        unsigned s; v.assign(6, 0);
        const int rc = SLRangeRead(h, p, b, &v[0], &v[1], &v[2], &v[3], &v[4], &s);
        v[5] = s; return rc;
    };
    f.edit = [](H h, unsigned p, unsigned b) { return SLRangeUpdateStatus(h, p, b, 0x10000000u); };
    return f;
}

inline Family tpe() {
    Family f;
    f.name = "TPE";
    f.block = 5002700;
    f.open = [](const std::wstring &d, const wchar_t *t) { int e; return TPEOpenDir(d.c_str(), t, &e); };
    f.close = TPEClose;
    f.beginSegment = TPEBgnSeqWriteLineSegment;
    f.endSegment = TPEEndSeqWriteLineSegment;
    f.beginProfile = [](H h, unsigned p, const Layout &l) {
        return TPEBgnSeqWriteProfile(h, l.count, l.first, pingTime(p), 1000 + p, p);
    };
    f.writeBeam = [](H h, unsigned p, unsigned k) {
        return TPESeqWrite(h, beamTimeOf(p, k), 0.001 * (p + k), -0.5 * k, statusOf(p, k));
    };
    f.endProfile = TPEEndSeqWriteProfile;
    f.readProfileSeq = [](H h, unsigned &n) { unsigned b, w, s; double t; return TPEReadProfileSeq(h, &n, &b, &t, &w, &s); };
    f.readSeq = [](H h, Values &v) {
        unsigned s; v.assign(4, 0);
        const int rc = TPEReadSeq(h, &v[0], &v[1], &v[2], &s);
        v[3] = s; return rc;
    };
    f.read = [](H h, unsigned p, unsigned b, Values &v) {
        unsigned s; v.assign(4, 0);
        const int rc = TPERead(h, p, b, &v[0], &v[1], &v[2], &s);
        v[3] = s; return rc;
    };
    return f;
}

// The first `profiles` profiles of the layout.
inline void writeLine(const Family &f, const std::wstring &dir, unsigned profiles = kProfiles) {
    H h = f.open(dir, L"create");
    ASSERT_NE(h, nullptr);
    for (unsigned p = 1; p <= profiles; ++p) {
        if (p == 1 || p == 4) {
            ASSERT_EQ(f.beginSegment(h, p == 1 ? L"a.raw" : L"b.raw"), 0);
        }
        ASSERT_EQ(f.beginProfile(h, p, kLayout[p - 1]), 0);
        for (unsigned k = 0; k < kLayout[p - 1].count; ++k) ASSERT_EQ(f.writeBeam(h, p, k), 0);
        ASSERT_EQ(f.endProfile(h), 0);
        if (p == 3 || p == profiles) {
            ASSERT_EQ(f.endSegment(h, p), 0);
        }
    }
    ASSERT_EQ(f.close(h), 0);
}

}  // namespace velmio::test

#endif
