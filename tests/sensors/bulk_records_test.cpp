// The bulk reads and writes of the record families against the per-record
// paths: same bytes, same values, across segment and time index set
// boundaries, and the range checks that must leave the caller's arrays alone.
#include <velmio/navigation.h>
#include <velmio/simple_sensor.h>

#include "sensors/simple_families.h"
#include "tests/sensors/sensor_test_support.h"

#include <unistd.h>

#include <climits>
#include <cmath>
#include <vector>

namespace velmio::test {
namespace {

using H = TOVO_Sensor *;

// Columns of a line: simple sensors use t and a only.
struct Columns {
    std::vector<double> t, a, b, c;
    std::vector<unsigned> s;
    explicit Columns(std::size_t n = 0, double fill = -7.0) : t(n, fill), a(n, fill), b(n, fill), c(n, fill), s(n, 77) {}
    bool operator==(const Columns &o) const { return t == o.t && a == o.a && b == o.b && c == o.c && s == o.s; }
};

struct RecordOps {
    const char *name;
    int block;  // codes are 5000000 + 100 x block + reason
    H (*openDir)(const wchar_t *, const wchar_t *, int *);
    int (*close)(H);
    int (*bgnSegment)(H, const wchar_t *);
    int (*endSegment)(H, unsigned);
    int (*seqWrite)(H, double, double, double, double, unsigned);
    int (*seqWriteRange)(H, unsigned, const double *, const double *, const double *, const double *,
                         const unsigned *);
    int (*read)(H, unsigned, double *, double *, double *, double *, unsigned *);
    int (*readRange)(H, unsigned, unsigned, double *, double *, double *, double *, unsigned *);
    int (*setRecordStatus)(H, unsigned, unsigned);

    int code(int reason) const { return 5000000 + 100 * block + reason; }
};

#define VELMIO_SIMPLE_OPS(P, ID, KIND)                                                                         \
    RecordOps{#P, 12, P##OpenDir, P##Close, P##BgnSeqWriteLineSegment, P##EndSeqWriteLineSegment,            \
              [](H h, double t, double a, double, double, unsigned s) { return P##SeqWrite(h, t, a, s); },   \
              [](H h, unsigned n, const double *t, const double *a, const double *, const double *,          \
                 const unsigned *s) { return P##SeqWriteRange(h, n, t, a, s); },                            \
              [](H h, unsigned n, double *t, double *a, double *, double *, unsigned *s) {                   \
                  return P##Read(h, n, t, a, s);                                                             \
              },                                                                                             \
              [](H h, unsigned f, unsigned n, double *t, double *a, double *, double *, unsigned *s) {       \
                  return P##ReadRange(h, f, n, t, a, s);                                                     \
              },                                                                                             \
              P##SetRecordStatus},
#define VELMIO_NAVIGATION_OPS(P)                                                                               \
    RecordOps{#P, 1, P##OpenDir, P##Close, P##BgnSeqWriteLineSegment, P##EndSeqWriteLineSegment, P##SeqWrite, \
              P##SeqWriteRange, P##Read, P##ReadRange, P##SetRecordStatus},

const RecordOps kRecordFamilies[] = {VELMIO_SIMPLE_FAMILIES(VELMIO_SIMPLE_OPS) VELMIO_NAVIGATION_OPS(Navigation)
                                         VELMIO_NAVIGATION_OPS(SSSNavigation)};

// Two segments (1-600, 601-12000) over 24 time index sets; the second is
// one bulk call spanning three 64 KiB write batches even of 12-byte records
// (5461 a batch), and its statuses are all 0, which the bulk writer passes
// as null.
constexpr unsigned kRecords = 12000;
constexpr unsigned kFirstSegmentEnd = 600;

Columns lineValues() {
    Columns v(kRecords);
    for (unsigned i = 0; i < kRecords; ++i) {
        v.t[i] = 1000.0 + 0.02 * i;
        v.a[i] = 0.5 * std::sin(0.1 * i);
        v.b[i] = 0.3 + 1e-6 * i;
        v.c[i] = 0.25 * i - 40.0;
        v.s[i] = i < kFirstSegmentEnd ? i % 7 : 0;
    }
    return v;
}

class BulkRecords : public ::testing::TestWithParam<RecordOps> {
protected:
    // Writes the line record by record, or in ranges that cross a time
    // index set and a segment's start.
    void writeLine(const TempDir &dir, bool bulk) {
        const RecordOps &f = GetParam();
        const Columns v = lineValues();
        H h = openLine(f.openDir, dir, L"create");
        ASSERT_NE(h, nullptr);
        auto range = [&](unsigned from, unsigned count, bool nullStatuses) {
            return f.seqWriteRange(h, count, &v.t[from], &v.a[from], &v.b[from], &v.c[from],
                                   nullStatuses ? nullptr : &v.s[from]);
        };
        ASSERT_EQ(f.bgnSegment(h, L"one.raw"), 0);
        if (bulk) {
            for (int rc : {range(0, 1, false), range(1, 0, false), range(1, 520, false), range(521, 79, false)})
                ASSERT_EQ(rc, 0);
        } else {
            for (unsigned i = 0; i < kFirstSegmentEnd; ++i) ASSERT_EQ(f.seqWrite(h, v.t[i], v.a[i], v.b[i], v.c[i], v.s[i]), 0);
        }
        ASSERT_EQ(f.endSegment(h, 1), 0);
        ASSERT_EQ(f.bgnSegment(h, L"two.raw"), 0);
        if (bulk) {
            ASSERT_EQ(range(kFirstSegmentEnd, kRecords - kFirstSegmentEnd, true), 0);
        } else {
            for (unsigned i = kFirstSegmentEnd; i < kRecords; ++i)
                ASSERT_EQ(f.seqWrite(h, v.t[i], v.a[i], v.b[i], v.c[i], 0), 0);
        }
        ASSERT_EQ(f.endSegment(h, 2), 0);
        ASSERT_EQ(f.close(h), 0);
    }

    int readRange(H h, unsigned first, unsigned count, Columns &out) {
        return GetParam().readRange(h, first, count, out.t.data(), out.a.data(), out.b.data(), out.c.data(),
                                    out.s.data());
    }

    Columns readEach(H h, unsigned first, unsigned count) {
        Columns out(count);
        for (unsigned i = 0; i < count; ++i)
            EXPECT_EQ(GetParam().read(h, first + i, &out.t[i], &out.a[i], &out.b[i], &out.c[i], &out.s[i]), 0);
        return out;
    }
};

TEST_P(BulkRecords, MatchThePerRecordPathsInBytesValuesEditsAndCodes) {
    const RecordOps &f = GetParam();
    TempDir perRecord, bulk;
    writeLine(perRecord, false);
    writeLine(bulk, true);
    for (const std::string suffix : {"", "LineSegments", "TmIdx"})
        EXPECT_TRUE(SameBytes(readFile(perRecord.file(f.name + suffix)), readFile(bulk.file(f.name + suffix))))
            << suffix;

    H h = openLine(f.openDir, bulk, L"query");
    ASSERT_NE(h, nullptr);
    // Whole line, across a time index set, across the segments, both ends.
    for (auto [first, count] : {std::pair{1u, kRecords}, {510u, 5u}, {598u, 5u}, {kRecords, 1u}, {1u, 1u}}) {
        Columns got(count);
        ASSERT_EQ(readRange(h, first, count, got), 0) << first;
        EXPECT_TRUE(got == readEach(h, first, count)) << first;
    }
    // Any array may be null; the others get the same values.
    Columns whole(kRecords), some(kRecords);
    ASSERT_EQ(readRange(h, 1, kRecords, whole), 0);
    ASSERT_EQ(f.readRange(h, 1, kRecords, some.t.data(), nullptr, some.b.data(), nullptr, some.s.data()), 0);
    EXPECT_TRUE(some.t == whole.t && some.b == whole.b && some.s == lineValues().s);

    // Nothing read leaves the arrays as they were.
    const Columns untouched(3);
    Columns out(3);
    EXPECT_EQ(readRange(h, 5, 0, out), 0);
    EXPECT_EQ(readRange(h, kRecords - 1, 3, out), f.code(19));
    EXPECT_EQ(readRange(h, 0, 1, out), f.code(19));
    EXPECT_EQ(readRange(h, 2, UINT_MAX, out), f.code(19));
    EXPECT_TRUE(out == untouched);
    EXPECT_EQ(f.close(h), 0);

    // An update handle reads its own status edits, unsaved, in bulk too.
    h = openLine(f.openDir, bulk, L"update");
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(f.setRecordStatus(h, 513, 0xABCu), 0);
    Columns edited(4);
    ASSERT_EQ(readRange(h, 511, 4, edited), 0);
    EXPECT_EQ(edited.s[2], 0xABCu);
    EXPECT_TRUE(edited == readEach(h, 511, 4));
    EXPECT_EQ(f.close(h), 0);

    // The data file cut under an open query handle: the family's code.
    h = openLine(f.openDir, bulk, L"query");
    ASSERT_NE(h, nullptr);
    const std::string data = bulk.file(f.name);
    ASSERT_EQ(::truncate(data.c_str(), static_cast<off_t>(readFile(data).size() / 2)), 0);
    Columns cut(200);
    EXPECT_EQ(f.read(h, kRecords - 10, &cut.t[0], &cut.a[0], &cut.b[0], &cut.c[0], &cut.s[0]), f.code(25));
    EXPECT_EQ(readRange(h, kRecords - 200, 200, cut), f.code(25));
    EXPECT_EQ(f.close(h), 0);
}

INSTANTIATE_TEST_SUITE_P(Families, BulkRecords, ::testing::ValuesIn(kRecordFamilies),
                         [](const ::testing::TestParamInfo<RecordOps> &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace velmio::test
