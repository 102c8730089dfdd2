// The bulk reads and writes of the profile families against the per-profile
// and per-beam paths: ragged and empty profiles, time index set and segment
// boundaries, and the range and capacity checks that leave arrays alone.
#include "tests/sensors/profile_families.h"

#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>

#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <deque>
#include <vector>

namespace velmio::test {
namespace {

// 520 profiles over two time index sets and two segments (1-300, 301-520)
// of 0 to 3 beams, every twentieth of 1000 (so that bulk reads cross their
// read windows within a profile).
constexpr unsigned kBulkProfiles = 520;
constexpr unsigned kSegmentEnd = 300;
Layout bulkLayout(unsigned p) { return {p % 20 == 0 ? 1000 : p % 4, 1 + p % 5}; }
unsigned totalBeams(unsigned first, unsigned count) {
    unsigned n = 0;
    for (unsigned p = first; p < first + count; ++p) n += bulkLayout(p).count;
    return n;
}

// What a failed bulk read must leave as it was.
std::vector<Reading> untouched(std::size_t n) {
    Reading r;
    std::fill(r.v, r.v + 5, -7.0);
    r.status = r.count = r.first = 77;
    return std::vector<Reading>(n, r);
}

// Per-profile and per-beam reads of a range: headers, beams, offsets.
void readEach(const Family &f, H h, unsigned first, unsigned count, std::vector<Reading> &headers,
              std::vector<Reading> &beams, std::vector<unsigned> &offsets) {
    headers.assign(count, Reading());
    beams.clear();
    offsets.assign(count + 1, 0);
    for (unsigned i = 0; i < count; ++i) {
        ASSERT_EQ(f.readProfile(h, first + i, headers[i]), 0);
        offsets[i] = static_cast<unsigned>(beams.size());
        for (unsigned b = 0; b < headers[i].count; ++b) {
            beams.emplace_back();
            ASSERT_EQ(f.read(h, first + i, headers[i].first + b, beams.back()), 0);
        }
    }
    offsets[count] = static_cast<unsigned>(beams.size());
}

class BulkProfiles : public ::testing::TestWithParam<Family> {};

TEST_P(BulkProfiles, MatchThePerBeamPathsInBytesValuesAndCodes) {
    const Family &f = GetParam();
    TempDir perBeam, bulk;
    writeLine(f, perBeam.wpath(), kBulkProfiles, false, bulkLayout, kSegmentEnd);
    writeLine(f, bulk.wpath(), kBulkProfiles, true, bulkLayout, kSegmentEnd);
    for (const std::string suffix : {"", "LineSegments", "TmIdx"})
        EXPECT_TRUE(SameBytes(readFile(perBeam.file(f.name + suffix)), readFile(bulk.file(f.name + suffix)))) << suffix;

    H h = f.open(bulk.wpath(), L"query");
    ASSERT_NE(h, nullptr);
    {
        // TPE's block reader (blocks of 7 profiles) must give the same.
        CacheSizeSetting cache(f.block == 5002700 ? "7" : nullptr);
        H cached = f.open(bulk.wpath(), L"query");
        ASSERT_NE(cached, nullptr);
        for (auto [first, count] :
             {std::pair{1u, kBulkProfiles}, {509u, 6u}, {298u, 5u}, {kBulkProfiles, 1u}, {4u, 1u}}) {
            SCOPED_TRACE(first);
            std::vector<Reading> headers, beams;
            std::vector<unsigned> offsets;
            readEach(f, h, first, count, headers, beams, offsets);
            for (H reader : {h, cached}) {
                std::vector<Reading> gotHeaders(count), gotBeams(beams.size());
                std::vector<unsigned> gotOffsets(count + 1, 99);
                ASSERT_EQ(f.readProfiles(reader, first, count, gotHeaders.data()), 0);
                EXPECT_EQ(gotHeaders, headers);
                const auto capacity = static_cast<unsigned>(beams.size());
                ASSERT_EQ(f.readBeams(reader, first, count, capacity, gotOffsets.data(), gotBeams.data()), 0);
                EXPECT_EQ(gotBeams, beams);
                EXPECT_EQ(gotOffsets, offsets);
            }
        }
        EXPECT_EQ(f.close(cached), 0);
    }
    // Nothing read leaves the arrays as they were: no profiles, a range past
    // the end (more beams than the arrays hold: BulkRange below).
    const unsigned fits = totalBeams(1, 8);
    std::vector<Reading> out = untouched(fits);
    std::vector<unsigned> offsets(9, 99);
    EXPECT_EQ(f.readProfiles(h, 3, 0, out.data()), 0);
    EXPECT_EQ(f.readBeams(h, 3, 0, fits, offsets.data(), out.data()), 0);
    EXPECT_EQ(f.readProfiles(h, kBulkProfiles, 2, out.data()), f.block + 19);
    EXPECT_EQ(f.readBeams(h, 0, 1, fits, offsets.data(), out.data()), f.block + 19);
    EXPECT_EQ(out, untouched(fits));
    EXPECT_EQ(offsets, std::vector<unsigned>(9, 99));

    // The data file cut under the open handle: the family's code.
    const std::string data = bulk.file(f.name);
    ASSERT_EQ(::truncate(data.c_str(), static_cast<off_t>(readFile(data).size() / 2)), 0);
    const unsigned total = totalBeams(1, kBulkProfiles);
    std::vector<Reading> beams(total), headers(kBulkProfiles);
    const int rc = f.readBeams(h, 1, kBulkProfiles, total, nullptr, beams.data());
    EXPECT_GT(rc, f.block);
    EXPECT_LT(rc, f.block + 100);
    EXPECT_EQ(f.readProfiles(h, kBulkProfiles - 1, 2, headers.data()), rc) << "header past the cut";
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

// The arrays of one bulk read, filled with a pattern before it and compared
// as bytes after it.
class Arrays {
public:
    template <class T>
    T *take(std::size_t n) {
        return reinterpret_cast<T *>(blocks_.emplace_back(n * sizeof(T), kFill).data());
    }
    bool operator==(const Arrays &o) const { return blocks_ == o.blocks_; }
    bool untouched() const {
        for (const auto &b : blocks_)
            if (std::count(b.begin(), b.end(), kFill) != static_cast<std::ptrdiff_t>(b.size())) return false;
        return true;
    }

private:
    static constexpr unsigned char kFill = 0xA5;
    std::deque<std::vector<unsigned char>> blocks_;
};

// A family's headers, offsets and beams of a range by ReadProfiles then
// ReadBeams or, oneCall, by ReadRange; the bulkLayout line to read.
struct RangeFamily {
    const char *name;
    int outOfRange;
    void (*write)(const TempDir &dir);
    H (*openDir)(const wchar_t *, const wchar_t *, int *);
    int (*close)(H);
    int (*read)(H, unsigned first, unsigned count, unsigned capacity, bool oneCall, Arrays &out);
};
void PrintTo(const RangeFamily &f, std::ostream *out) { *out << f.name; }

#define VELMIO_ANGLE_RANGE(P)                                                                                      \
    [](H h, unsigned f, unsigned n, unsigned cap, bool oneCall, Arrays &a) {                                      \
        unsigned *beams = a.take<unsigned>(n), *firsts = a.take<unsigned>(n), *statuses = a.take<unsigned>(n);   \
        double *t = a.take<double>(n), *a1 = a.take<double>(n), *a2 = a.take<double>(n);                          \
        unsigned *offsets = a.take<unsigned>(n + 1), *bs = a.take<unsigned>(cap);                                 \
        double *b[5];                                                                                             \
        for (double *&c : b) c = a.take<double>(cap);                                                            \
        if (oneCall)                                                                                              \
            return P##ReadRange(h, f, n, beams, firsts, t, a1, a2, statuses, cap, offsets, b[0], b[1], b[2], b[3], \
                                b[4], bs);                                                                        \
        const int rc = P##ReadProfiles(h, f, n, beams, firsts, t, a1, a2, statuses);                             \
        return rc ? rc : P##ReadBeams(h, f, n, cap, offsets, b[0], b[1], b[2], b[3], b[4], bs);                  \
    }

template <Family (*F)()>
void writeProfiles(const TempDir &dir) {
    writeLine(F(), dir.wpath(), kBulkProfiles, true, bulkLayout, kSegmentEnd);
}

void writeProcessed(const TempDir &dir) {
    H h = openLine(ProcessedDepthsOpenDir, dir, L"create");
    ASSERT_EQ(ProcessedDepthsBgnSeqWriteSummary(h, 5) || ProcessedDepthsBgnSeqWriteLineSegment(h, L"a"), 0);
    for (unsigned p = 1; p <= kBulkProfiles; ++p) {
        const Layout l = bulkLayout(p);
        ProcessedDepthsPing ping{};
        ping.status = p << 24, ping.beamCount = l.count, ping.firstBeam = l.first, ping.time = pingTime(p);
        std::vector<ProcessedDepthsSounding> s(l.count);
        for (unsigned k = 0; k < l.count; ++k) s[k].time = beamTimeOf(p, k), s[k].depth = p + 0.25 * k;
        ASSERT_EQ(ProcessedDepthsBgnSeqWriteProfile(h, &ping, nullptr, nullptr) ||
                      ProcessedDepthsSeqWriteBeams(h, l.count, s.data(), nullptr, nullptr) ||
                      ProcessedDepthsEndSeqWriteProfile(h),
                  0);
    }
    ASSERT_EQ(ProcessedDepthsEndSeqWriteLineSegment(h, 0) || ProcessedDepthsClose(h), 0);
}

void writeSideScan(const TempDir &dir) {
    H h = openLine(SideScanOpenDir, dir, L"create");
    ASSERT_EQ(SideScanBgnSeqWriteSummary(h, 7) || SideScanBgnSeqWriteLineSegment(h, L"a"), 0);
    for (unsigned p = 1; p <= kBulkProfiles; ++p) {
        const Layout l = bulkLayout(p);
        std::vector<int> amplitudes(l.count, -int(p));
        ASSERT_EQ(SideScanBgnSeqWriteProfile(h, l.count, l.first, pingTime(p), 1e-4, int(p), -3, -4, p << 16) ||
                      SideScanSeqWriteSamples(h, l.count, amplitudes.data(), nullptr) || SideScanEndSeqWriteProfile(h),
                  0);
    }
    ASSERT_EQ(SideScanEndSeqWriteLineSegment(h, 0) || SideScanClose(h), 0);
}

// Zeroes the 4 padding bytes after the unsigned member at each offset in
// each of n structures: no read defines them.
template <class T>
void clearPadding(T *items, std::size_t n, std::initializer_list<std::size_t> after) {
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t at : after) std::memset(reinterpret_cast<char *>(items + i) + at + 4, 0, 4);
}

const RangeFamily kRangeFamilies[] = {
    {"ObservedDepths", 5000219, writeProfiles<observedDepths>, ObservedDepthsOpenDir, ObservedDepthsClose,
     VELMIO_ANGLE_RANGE(ObservedDepths)},
    {"SLRange", 5001919, writeProfiles<slantRange>, SLRangeOpenDir, SLRangeClose, VELMIO_ANGLE_RANGE(SLRange)},
    {"TPE", 5002719, writeProfiles<tpe>, TPEOpenDir, TPEClose,
     [](H h, unsigned f, unsigned n, unsigned cap, bool oneCall, Arrays &a) {
         unsigned *beams = a.take<unsigned>(n), *firsts = a.take<unsigned>(n), *words = a.take<unsigned>(n);
         unsigned *statuses = a.take<unsigned>(n), *offsets = a.take<unsigned>(n + 1), *bs = a.take<unsigned>(cap);
         double *t = a.take<double>(n), *bt = a.take<double>(cap), *e1 = a.take<double>(cap);
         double *e2 = a.take<double>(cap);
         if (oneCall) return TPEReadRange(h, f, n, beams, firsts, t, words, statuses, cap, offsets, bt, e1, e2, bs);
         const int rc = TPEReadProfiles(h, f, n, beams, firsts, t, words, statuses);
         return rc ? rc : TPEReadBeams(h, f, n, cap, offsets, bt, e1, e2, bs);
     }},
    {"ProcessedDepths", 5000319, writeProcessed, ProcessedDepthsOpenDir, ProcessedDepthsClose,
     [](H h, unsigned f, unsigned n, unsigned cap, bool oneCall, Arrays &a) {
         auto *pings = a.take<ProcessedDepthsPing>(n);
         auto *heads = a.take<ProcessedDepthsHeads>(n);
         auto *u = a.take<ProcessedDepthsPingUncertainty>(n);
         unsigned *offsets = a.take<unsigned>(n + 1);
         auto *s = a.take<ProcessedDepthsSounding>(cap);
         auto *m = a.take<ProcessedDepthsMeasurement>(cap);
         auto *r = a.take<ProcessedDepthsReductions>(cap);
         int rc = oneCall ? ProcessedDepthsReadRange(h, f, n, pings, heads, u, cap, offsets, s, m, r)
                          : ProcessedDepthsReadProfiles(h, f, n, pings, heads, u);
         if (rc == 0 && !oneCall) rc = ProcessedDepthsReadBeams(h, f, n, cap, offsets, s, m, r);
         if (rc) return rc;
         constexpr std::size_t word = offsetof(ProcessedDepthsHeads, head) + offsetof(ProcessedDepthsHead, word);
         clearPadding(pings, n, {offsetof(ProcessedDepthsPing, firstBeam), offsetof(ProcessedDepthsPing, pingNumber)});
         clearPadding(heads, n, {offsetof(ProcessedDepthsHeads, count), word, word + sizeof(ProcessedDepthsHead)});
         clearPadding(s, cap, {offsetof(ProcessedDepthsSounding, status)});
         clearPadding(m, cap, {offsetof(ProcessedDepthsMeasurement, head)});
         return 0;
     }},
    {"SideScan", 5000919, writeSideScan, SideScanOpenDir, SideScanClose,
     [](H h, unsigned f, unsigned n, unsigned cap, bool oneCall, Arrays &a) {
         unsigned *samples = a.take<unsigned>(n), *firsts = a.take<unsigned>(n), *statuses = a.take<unsigned>(n);
         double *t = a.take<double>(n), *intervals = a.take<double>(n);
         int *gains = a.take<int>(n), *a1 = a.take<int>(n), *a2 = a.take<int>(n), *amplitudes = a.take<int>(cap);
         unsigned *offsets = a.take<unsigned>(n + 1), *detections = a.take<unsigned>(cap);
         if (oneCall)
             return SideScanReadRange(h, f, n, samples, firsts, t, intervals, gains, a1, a2, statuses, cap, offsets,
                                      amplitudes, detections);
         const int rc = SideScanReadProfiles(h, f, n, samples, firsts, t, intervals, gains, a1, a2, statuses);
         return rc ? rc : SideScanReadSamples(h, f, n, cap, offsets, amplitudes, detections);
     }},
};

class BulkRange : public ::testing::TestWithParam<RangeFamily> {};

TEST_P(BulkRange, IsReadProfilesAndReadBeamsInOnePass) {
    const RangeFamily &f = GetParam();
    TempDir dir;
    f.write(dir);
    // Without and with the block reader (blocks of 7 profiles), where the family has one.
    for (const char *cache : {static_cast<const char *>(nullptr), "7"}) {
        CacheSizeSetting setting(cache);
        H h = openLine(f.openDir, dir, L"query");
        ASSERT_NE(h, nullptr);
        for (auto [first, count] : {std::pair{1u, kBulkProfiles}, {298u, 5u}, {kBulkProfiles, 1u}}) {
            Arrays two, one;
            ASSERT_EQ(f.read(h, first, count, totalBeams(first, count), false, two), 0);
            ASSERT_EQ(f.read(h, first, count, totalBeams(first, count), true, one), 0);
            EXPECT_TRUE(one == two) << first;
        }
        // A beam more than the arrays hold, a profile past the end: no array written.
        for (auto [first, count, capacity] : {std::array{1u, 8u, totalBeams(1, 8) - 1}, {kBulkProfiles, 2u, 5000u}}) {
            Arrays one;
            EXPECT_EQ(f.read(h, first, count, capacity, true, one), f.outOfRange);
            EXPECT_TRUE(one.untouched()) << first;
        }
        EXPECT_EQ(f.close(h), 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Families, BulkRange, ::testing::ValuesIn(kRangeFamilies),
                         [](const ::testing::TestParamInfo<RangeFamily> &i) { return std::string(i.param.name); });

INSTANTIATE_TEST_SUITE_P(Families, BulkProfiles, ::testing::Values(observedDepths(), slantRange(), tpe()),
                         [](const ::testing::TestParamInfo<Family> &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace velmio::test
