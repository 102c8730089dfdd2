// The bulk reads and writes of the profile families against the per-profile
// and per-beam paths: ragged and empty profiles, time index set and segment
// boundaries, and the range and capacity checks that leave arrays alone.
#include <velmio/observed_depths.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include "tests/sensors/sensor_test_support.h"

#include <unistd.h>

#include <vector>

namespace velmio::test {
namespace {

using H = TOVO_Sensor *;
constexpr int kValues = 5;

// Headers and beams as columns; a family leaves its missing columns alone.
struct Columns {
    std::vector<double> v[kValues];
    std::vector<unsigned> u[3];  // beams: status; headers: beam count, first beam, status (and TPE's word in v[1])
    explicit Columns(std::size_t n = 0) {
        for (auto &c : v) c.assign(n, -7.0);
        for (auto &c : u) c.assign(n, 77);
    }
    bool operator==(const Columns &o) const {
        for (int i = 0; i < kValues; ++i)
            if (v[i] != o.v[i]) return false;
        return u[0] == o.u[0] && u[1] == o.u[1] && u[2] == o.u[2];
    }
    double *d(int i) { return v[i].data(); }
};

struct ProfileOps {
    const char *name;
    int block;
    int writeColumns;  // value arrays SeqWriteBeams takes
    H (*openDir)(const wchar_t *, const wchar_t *, int *);
    int (*close)(H);
    int (*bgnSegment)(H, const wchar_t *);
    int (*endSegment)(H, unsigned);
    int (*bgnProfile)(H, unsigned beams, unsigned first, double time, unsigned status);
    int (*endProfile)(H);
    int (*seqWrite)(H, const double *v, unsigned status);
    int (*seqWriteBeams)(H, unsigned count, const double *const *v, const unsigned *statuses);
    int (*readProfile)(H, unsigned p, Columns &out, unsigned i);
    int (*readProfiles)(H, unsigned first, unsigned count, Columns &out);
    int (*read)(H, unsigned p, unsigned b, Columns &out, unsigned k);
    int (*readBeams)(H, unsigned first, unsigned count, unsigned capacity, unsigned *offsets, Columns &out);
};

// ObservedDepths and SLRange share their read signatures.
#define VELMIO_FIVE_VALUE_OPS(P)                                                                                 \
    [](H h, unsigned p, Columns &o, unsigned i) {                                                               \
        double t, a1, a2;                                                                                       \
        const int rc = P##ReadProfile(h, p, &o.u[0][i], &o.u[1][i], &t, &a1, &a2, &o.u[2][i]);                 \
        o.v[0][i] = t, o.v[1][i] = a1, o.v[2][i] = a2;                                                          \
        return rc;                                                                                              \
    },                                                                                                          \
        [](H h, unsigned f, unsigned n, Columns &o) {                                                           \
            return P##ReadProfiles(h, f, n, o.u[0].data(), o.u[1].data(), o.d(0), o.d(1), o.d(2), o.u[2].data()); \
        },                                                                                                      \
        [](H h, unsigned p, unsigned b, Columns &o, unsigned k) {                                               \
            return P##Read(h, p, b, &o.v[0][k], &o.v[1][k], &o.v[2][k], &o.v[3][k], &o.v[4][k], &o.u[0][k]);     \
        },                                                                                                      \
        [](H h, unsigned f, unsigned n, unsigned c, unsigned *off, Columns &o) {                                \
            return P##ReadBeams(h, f, n, c, off, o.d(0), o.d(1), o.d(2), o.d(3), o.d(4), o.u[0].data());        \
        }

const ProfileOps kProfileFamilies[] = {
    {"ObservedDepths", 5000200, 4, ObservedDepthsOpenDir, ObservedDepthsClose, ObservedDepthsBgnSeqWriteLineSegment,
     ObservedDepthsEndSeqWriteLineSegment,
     [](H h, unsigned n, unsigned f, double t, unsigned s) { return ObservedDepthsBgnSeqWriteProfile(h, n, f, t, 0.01, -0.02, s); },
     ObservedDepthsEndSeqWriteProfile,
     [](H h, const double *v, unsigned s) { return ObservedDepthsSeqWrite(h, v[0], v[1], v[2], v[3], 0, 0, s); },
     [](H h, unsigned n, const double *const *v, const unsigned *s) {
         return ObservedDepthsSeqWriteBeams(h, n, v[0], v[1], v[2], v[3], s);
     },
     VELMIO_FIVE_VALUE_OPS(ObservedDepths)},
    {"SLRange", 5001900, 5, SLRangeOpenDir, SLRangeClose, SLRangeBgnSeqWriteLineSegment, SLRangeEndSeqWriteLineSegment,
     [](H h, unsigned n, unsigned f, double t, unsigned s) { return SLRangeBgnSeqWriteProfile(h, n, f, t, 0.01, -0.02, s); },
     SLRangeEndSeqWriteProfile,
     [](H h, const double *v, unsigned s) { return SLRangeSeqWrite(h, v[0], v[1], v[2], v[3], v[4], s); },
     [](H h, unsigned n, const double *const *v, const unsigned *s) {
         return SLRangeSeqWriteBeams(h, n, v[0], v[1], v[2], v[3], v[4], s);
     },
     VELMIO_FIVE_VALUE_OPS(SLRange)},
    {"TPE", 5002700, 3, TPEOpenDir, TPEClose, TPEBgnSeqWriteLineSegment, TPEEndSeqWriteLineSegment,
     [](H h, unsigned n, unsigned f, double t, unsigned s) { return TPEBgnSeqWriteProfile(h, n, f, t, 1000 + s, s); },
     TPEEndSeqWriteProfile, [](H h, const double *v, unsigned s) { return TPESeqWrite(h, v[0], v[1], v[2], s); },
     [](H h, unsigned n, const double *const *v, const unsigned *s) { return TPESeqWriteBeams(h, n, v[0], v[1], v[2], s); },
     [](H h, unsigned p, Columns &o, unsigned i) {
         unsigned word;
         const int rc = TPEReadProfile(h, p, &o.u[0][i], &o.u[1][i], &o.v[0][i], &word, &o.u[2][i]);
         o.v[1][i] = word;
         return rc;
     },
     [](H h, unsigned f, unsigned n, Columns &o) {
         std::vector<unsigned> words(n);
         const int rc = TPEReadProfiles(h, f, n, o.u[0].data(), o.u[1].data(), o.d(0), words.data(), o.u[2].data());
         if (rc == 0)
             for (unsigned i = 0; i < n; ++i) o.v[1][i] = words[i];
         return rc;
     },
     [](H h, unsigned p, unsigned b, Columns &o, unsigned k) {
         return TPERead(h, p, b, &o.v[0][k], &o.v[1][k], &o.v[2][k], &o.u[0][k]);
     },
     [](H h, unsigned f, unsigned n, unsigned c, unsigned *off, Columns &o) {
         return TPEReadBeams(h, f, n, c, off, o.d(0), o.d(1), o.d(2), o.u[0].data());
     }},
};

// 520 profiles over two time index sets and two segments (1-300, 301-520)
// of 0 to 3 beams; every third profile has status-0 beams, written in bulk
// with a null status array.
constexpr unsigned kProfiles = 520;
constexpr unsigned kSegmentEnd = 300;
unsigned beamsOf(unsigned p) { return p % 4; }
unsigned firstBeamOf(unsigned p) { return 1 + p % 5; }
double pingTime(unsigned p) { return 500.0 + 0.05 * p; }
unsigned beamStatus(unsigned p, unsigned k) { return p % 3 == 0 ? 0 : ((p * 4 + k) & 0xFFFu) << 20; }
void beamValues(unsigned p, unsigned k, double *v) {
    const double values[kValues] = {pingTime(p) + 0.003 * (k + 1), 1.5 + 0.01 * p + k, -0.25 * k, 12.0 + 0.001 * p,
                                    0.02 * k};
    std::copy(values, values + kValues, v);
}
unsigned totalBeams(unsigned first, unsigned count) {
    unsigned n = 0;
    for (unsigned p = first; p < first + count; ++p) n += beamsOf(p);
    return n;
}

class BulkProfiles : public ::testing::TestWithParam<ProfileOps> {
protected:
    void writeLine(const TempDir &dir, bool bulk) {
        const ProfileOps &f = GetParam();
        H h = openLine(f.openDir, dir, L"create");
        ASSERT_NE(h, nullptr);
        for (unsigned p = 1; p <= kProfiles; ++p) {
            if (p == 1 || p == kSegmentEnd + 1) { ASSERT_EQ(f.bgnSegment(h, p == 1 ? L"a.raw" : L"b.raw"), 0); }
            ASSERT_EQ(f.bgnProfile(h, beamsOf(p), firstBeamOf(p), pingTime(p), p), 0);
            std::vector<double> columns[kValues];
            std::vector<unsigned> statuses;
            for (unsigned k = 0; k < beamsOf(p); ++k) {
                double v[kValues];
                beamValues(p, k, v);
                if (!bulk) { ASSERT_EQ(f.seqWrite(h, v, beamStatus(p, k)), 0); }
                for (int c = 0; c < kValues; ++c) columns[c].push_back(v[c]);
                statuses.push_back(beamStatus(p, k));
            }
            const double *v[kValues] = {columns[0].data(), columns[1].data(), columns[2].data(), columns[3].data(),
                                        columns[4].data()};
            if (bulk) { ASSERT_EQ(f.seqWriteBeams(h, beamsOf(p), v, p % 3 == 0 ? nullptr : statuses.data()), 0); }
            if (p == 7) {
                // A beam beyond those declared is refused and writes nothing.
                double extra[kValues];
                beamValues(p, 0, extra);
                EXPECT_EQ(bulk ? f.seqWriteBeams(h, 1, v, nullptr) : f.seqWrite(h, extra, 0), f.block + 19);
            }
            ASSERT_EQ(f.endProfile(h), 0);
            if (p == kSegmentEnd || p == kProfiles) { ASSERT_EQ(f.endSegment(h, p), 0); }
        }
        ASSERT_EQ(f.close(h), 0);
    }

    // Per-profile and per-beam reads of a range: headers, beams, offsets.
    void readEach(H h, unsigned first, unsigned count, Columns &headers, Columns &beams, std::vector<unsigned> &offsets) {
        const ProfileOps &f = GetParam();
        headers = Columns(count);
        beams = Columns(totalBeams(first, count));
        offsets.assign(count + 1, 0);
        unsigned k = 0;
        for (unsigned i = 0; i < count; ++i) {
            ASSERT_EQ(f.readProfile(h, first + i, headers, i), 0);
            offsets[i] = k;
            for (unsigned b = 0; b < headers.u[0][i]; ++b, ++k) ASSERT_EQ(f.read(h, first + i, headers.u[1][i] + b, beams, k), 0);
        }
        offsets[count] = k;
    }
};

TEST_P(BulkProfiles, MatchThePerBeamPathsInBytesValuesAndCodes) {
    const ProfileOps &f = GetParam();
    TempDir perBeam, bulk;
    writeLine(perBeam, false);
    writeLine(bulk, true);
    for (const std::string suffix : {"", "LineSegments", "TmIdx"})
        EXPECT_TRUE(SameBytes(readFile(perBeam.file(f.name + suffix)), readFile(bulk.file(f.name + suffix)))) << suffix;

    H h = openLine(f.openDir, bulk, L"query");
    ASSERT_NE(h, nullptr);
    for (auto [first, count] : {std::pair{1u, kProfiles}, {509u, 6u}, {298u, 5u}, {kProfiles, 1u}, {4u, 1u}}) {
        SCOPED_TRACE(first);
        Columns headers, beams;
        std::vector<unsigned> offsets;
        readEach(h, first, count, headers, beams, offsets);
        Columns gotHeaders(count), gotBeams(beams.u[0].size());
        std::vector<unsigned> gotOffsets(count + 1, 99);
        ASSERT_EQ(f.readProfiles(h, first, count, gotHeaders), 0);
        EXPECT_TRUE(gotHeaders == headers);
        ASSERT_EQ(f.readBeams(h, first, count, static_cast<unsigned>(gotBeams.u[0].size()), gotOffsets.data(), gotBeams), 0);
        EXPECT_TRUE(gotBeams == beams);
        EXPECT_EQ(gotOffsets, offsets);
    }
    // Nothing read leaves the arrays as they were: no profiles, a range past
    // the end, more beams than the arrays hold.
    const unsigned fits = totalBeams(1, 8);
    const Columns untouched(fits);
    Columns out(fits);
    std::vector<unsigned> offsets(9, 99);
    EXPECT_EQ(f.readProfiles(h, 3, 0, out), 0);
    EXPECT_EQ(f.readBeams(h, 3, 0, fits, offsets.data(), out), 0);
    EXPECT_EQ(f.readProfiles(h, kProfiles, 2, out), f.block + 19);
    EXPECT_EQ(f.readBeams(h, 0, 1, fits, offsets.data(), out), f.block + 19);
    EXPECT_EQ(f.readBeams(h, 1, 8, fits - 1, offsets.data(), out), f.block + 19);
    EXPECT_TRUE(out == untouched);
    EXPECT_EQ(offsets, std::vector<unsigned>(9, 99));

    // The data file cut under the open handle: the family's code.
    const std::string data = bulk.file(f.name);
    ASSERT_EQ(::truncate(data.c_str(), static_cast<off_t>(readFile(data).size() / 2)), 0);
    const unsigned total = totalBeams(1, kProfiles);
    Columns beams(total), headers(kProfiles);
    const int rc = f.readBeams(h, 1, kProfiles, total, nullptr, beams);
    EXPECT_GT(rc, f.block);
    EXPECT_LT(rc, f.block + 100);
    EXPECT_EQ(f.readProfiles(h, kProfiles - 1, 2, headers), rc) << "header past the cut";
    EXPECT_EQ(f.close(h), 0);
}

TEST(BulkProfileEdits, UpdateHandleReadsItsOwnBeamEdits) {
    TempDir dir;
    H h = openLine(ObservedDepthsOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    const double t[2] = {10.0, 10.001}, y[2] = {1, 2}, x[2] = {3, 4}, z[2] = {5, 6};
    for (int rc : {ObservedDepthsBgnSeqWriteLineSegment(h, L"a"), ObservedDepthsBgnSeqWriteProfile(h, 2, 1, 10.0, 0, 0, 0),
                   ObservedDepthsSeqWriteBeams(h, 2, t, y, x, z, nullptr), ObservedDepthsEndSeqWriteProfile(h),
                   ObservedDepthsEndSeqWriteLineSegment(h, 0), ObservedDepthsClose(h)})
        ASSERT_EQ(rc, 0);
    h = openLine(ObservedDepthsOpenDir, dir, L"update");
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(ObservedDepthsUpdateDepthStatus(h, 1, 2, 7.5, 0x10000000u), 0);
    double depths[2];
    unsigned statuses[2], offsets[2];
    ASSERT_EQ(ObservedDepthsReadBeams(h, 1, 1, 2, offsets, nullptr, nullptr, nullptr, depths, nullptr, statuses), 0);
    EXPECT_EQ(depths[1], 7.5);
    EXPECT_EQ(statuses[1], 0x10000000u);
    EXPECT_EQ(ObservedDepthsClose(h), 0);
}

INSTANTIATE_TEST_SUITE_P(Families, BulkProfiles, ::testing::ValuesIn(kProfileFamilies),
                         [](const ::testing::TestParamInfo<ProfileOps> &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace velmio::test
