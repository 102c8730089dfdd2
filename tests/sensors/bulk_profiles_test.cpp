// The bulk reads and writes of the profile families against the per-profile
// and per-beam paths: ragged and empty profiles, time index set and segment
// boundaries, and the range and capacity checks that leave arrays alone.
#include "tests/sensors/profile_families.h"

#include <unistd.h>

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
    // the end, more beams than the arrays hold.
    const unsigned fits = totalBeams(1, 8);
    std::vector<Reading> out = untouched(fits);
    std::vector<unsigned> offsets(9, 99);
    EXPECT_EQ(f.readProfiles(h, 3, 0, out.data()), 0);
    EXPECT_EQ(f.readBeams(h, 3, 0, fits, offsets.data(), out.data()), 0);
    EXPECT_EQ(f.readProfiles(h, kBulkProfiles, 2, out.data()), f.block + 19);
    EXPECT_EQ(f.readBeams(h, 0, 1, fits, offsets.data(), out.data()), f.block + 19);
    EXPECT_EQ(f.readBeams(h, 1, 8, fits - 1, offsets.data(), out.data()), f.block + 19);
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

INSTANTIATE_TEST_SUITE_P(Families, BulkProfiles, ::testing::Values(observedDepths(), slantRange(), tpe()),
                         [](const ::testing::TestParamInfo<Family> &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace velmio::test
