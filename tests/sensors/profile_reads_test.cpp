// Random and sequential reads agree for every beam of a line of several
// profiles and segments with varying beam counts and first beam numbers, in
// every profile family and, for the total propagated error, whatever the
// block reader's cache size.
#include "tests/sensors/profile_families.h"

#include <vector>

using namespace velmio::test;

namespace {

// Every beam, in file order, three ways: sequentially, by number in order
// and, on a handle of their own, by number in a jumbled order that
// repositions at every beam, landing now in a profile (or cached block) met
// before and now in one not met yet.
struct Reads {
    std::vector<Reading> sequential, inOrder, jumbled, resumed;
    unsigned long inOrderSeeks = 0;
};

void readJumbled(const Family &f, const std::wstring &dir, std::vector<Reading> &out) {
    std::vector<std::pair<unsigned, unsigned>> beams;
    for (unsigned p = 1; p <= kProfiles; ++p)
        for (unsigned k = 0; k < kLayout[p - 1].count; ++k) beams.emplace_back(p, kLayout[p - 1].first + k);
    TOVO_Sensor *h = f.open(dir, L"query");
    ASSERT_NE(h, nullptr);
    out.resize(beams.size());
    // 4 is prime to the 15 beams: every beam once.
    for (std::size_t i = 0, at = 3; i < beams.size(); ++i, at = (at + 4) % beams.size())
        EXPECT_EQ(f.read(h, beams[at].first, beams[at].second, out[at]), 0) << f.name << " beam " << at;
    EXPECT_EQ(f.close(h), 0);
}

// Sequential reads go on from where a random read left them: the rest of
// its profile, then the next profile's header.
void readOnAfterJumps(const Family &f, const std::wstring &dir, std::vector<Reading> &out) {
    TOVO_Sensor *h = f.open(dir, L"query");
    ASSERT_NE(h, nullptr);
    Reading v;
    for (unsigned p : {4u, 1u, 6u, 2u}) {
        EXPECT_EQ(f.read(h, p, kLayout[p - 1].first, v), 0) << f.name << " " << p;
        for (unsigned k = 1; k < kLayout[p - 1].count; ++k) {
            EXPECT_EQ(f.readSeq(h, v), 0) << f.name << " " << p << "/" << k;
            out.push_back(v);
        }
        unsigned count = 99;
        if (p == kProfiles) continue;
        EXPECT_EQ(f.readProfileSeq(h, count), 0) << f.name << " after " << p;
        EXPECT_EQ(count, kLayout[p].count) << f.name << " after " << p;
    }
    EXPECT_EQ(f.close(h), 0);
}

Reads readAll(const Family &f, const std::wstring &dir) {
    Reads r;
    TOVO_Sensor *h = f.open(dir, L"query");
    EXPECT_NE(h, nullptr);
    if (!h) return r;
    Reading v;
    for (unsigned p = 1; p <= kProfiles; ++p) {
        unsigned count = 0;
        EXPECT_EQ(f.readProfileSeq(h, count), 0) << f.name << " profile " << p;
        EXPECT_EQ(count, kLayout[p - 1].count);
        for (unsigned k = 0; k < count; ++k) {
            EXPECT_EQ(f.readSeq(h, v), 0);
            r.sequential.push_back(v);
        }
    }
    const unsigned long before = seeksOf(h);
    for (unsigned p = 1; p <= kProfiles; ++p)
        for (unsigned k = 0; k < kLayout[p - 1].count; ++k) {
            EXPECT_EQ(f.read(h, p, kLayout[p - 1].first + k, v), 0) << f.name << " " << p << "/" << k;
            r.inOrder.push_back(v);
        }
    r.inOrderSeeks = seeksOf(h) - before;
    EXPECT_EQ(f.close(h), 0);
    readJumbled(f, dir, r.jumbled);
    readOnAfterJumps(f, dir, r.resumed);
    return r;
}

Reads expectAgreement(const Family &f, const TempDir &dir) {
    writeLine(f, dir.wpath());
    const Reads r = readAll(f, dir.wpath());
    EXPECT_EQ(r.sequential.size(), 15u);
    EXPECT_EQ(r.sequential, r.inOrder) << f.name;
    EXPECT_EQ(r.sequential, r.jumbled) << f.name;
    // One seek per profile with beams, at its first beam.
    EXPECT_EQ(r.inOrderSeeks, 5u) << f.name;
    if (r.sequential.size() != 15) return r;
    // Profiles 4, 1, 6 and 2 from their second beam on.
    const auto from = [&](std::size_t at, std::size_t n) {
        return std::vector<Reading>(r.sequential.begin() + at, r.sequential.begin() + at + n);
    };
    std::vector<Reading> resumed = from(5, 3);
    for (const auto &part : {from(1, 2), from(11, 4)}) resumed.insert(resumed.end(), part.begin(), part.end());
    EXPECT_EQ(r.resumed, resumed) << f.name;
    // What was written: the last beam of the last profile.
    EXPECT_NEAR(r.sequential.back().v[0], beamTimeOf(6, 4), 1e-9);
    EXPECT_EQ(r.sequential.back().status, statusOf(6, 4));
    return r;
}

TEST(ProfileRead, RandomAndSequentialReadsAgreeOnEveryBeam) {
    for (const Family &f : {observedDepths(), slantRange()}) expectAgreement(f, TempDir());
}

// Without a cache the reads agree; every cache size gives the same values.
TEST(TpeRead, RandomAndSequentialReadsAgreeOnEveryBeamWhateverTheCacheSize) {
    TempDir dir;
    const Family f = tpe();
    Reads direct;
    {
        CacheSizeSetting unset(nullptr);
        direct = expectAgreement(f, dir);
    }
    // "4" ends on a block of two profiles; "2" on a block of a single one
    // whose beams run to the end of the file.
    for (const char *setting : {"0", "abc", "64", "4", "2", "1", "99999999999"}) {
        CacheSizeSetting cache(setting);
        const Reads cached = readAll(f, dir.wpath());
        EXPECT_EQ(cached.sequential, direct.sequential) << setting;
        EXPECT_EQ(cached.inOrder, direct.inOrder) << setting;
        EXPECT_EQ(cached.jumbled, direct.jumbled) << setting;
        EXPECT_EQ(cached.resumed, direct.resumed) << setting;
    }
}

}  // namespace
