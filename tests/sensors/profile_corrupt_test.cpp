// Damaged profile files give the families' codes: never a crash, never a
// read outside a profile, never an allocation sized by a count from a file.
#include "tests/sensors/profile_families.h"

#include <algorithm>
#include <filesystem>

using namespace velmio::test;

namespace {

struct Geometry {
    unsigned summary, header, beam, beamCountAt;
};

Geometry geometryOf(const Family &f) {
    if (f.block == 5000200) return {44, 20, 16, 28};
    if (f.block == 5001900) return {36, 20, 16, 28};
    return {72, 16, 12, 32};
}

// Where profile p's header begins in the data file.
std::size_t headerOffset(const Family &f, unsigned p) {
    const Geometry g = geometryOf(f);
    std::size_t offset = 16 + g.summary;
    for (unsigned q = 1; q < p; ++q) offset += g.header + kLayout[q - 1].count * g.beam;
    return offset;
}

bool knownCode(const Family &f, int rc) {
    return rc == 0 || (rc > f.block && rc < f.block + 100) || (rc >= 5000000 && rc < 5000100);
}

// Every read, edit and sequential read of the line's numbering; each must
// return 0 or a code of the family or the line store.
std::vector<int> exerciseAll(const Family &f, TOVO_Sensor *h) {
    std::vector<int> codes;
    Reading v;
    for (unsigned p = 0; p <= kProfiles + 1; ++p)
        for (unsigned b = 0; b < 8; ++b) {
            const unsigned beam = p >= 1 && p <= kProfiles ? kLayout[p - 1].first + b - 1 : b;
            codes.push_back(f.read(h, p, beam, v));
            if (f.edit) codes.push_back(f.edit(h, p, beam));
        }
    unsigned count = 0;
    for (unsigned p = 0; p < kProfiles; ++p) {
        codes.push_back(f.readProfileSeq(h, count));
        for (unsigned k = 0; k < std::min(count, 8u); ++k) codes.push_back(f.readSeq(h, v));
    }
    for (int rc : codes) EXPECT_TRUE(knownCode(f, rc)) << f.name << " " << rc;
    return codes;
}

// Four profiles in two segments keep the every-byte loops small.
constexpr unsigned kSmallLine = 4;

TEST(ProfileCorrupt, EveryTruncationOfEveryFileFailsTheOpenWithACode) {
    for (const Family &f : {observedDepths(), slantRange(), tpe()}) {
        TempDir dir;
        writeLine(f, dir.wpath(), kSmallLine);
        for (const std::string suffix : {"", "LineSegments", "TmIdx"}) {
            const std::string path = dir.file(f.name + suffix);
            const Bytes whole = readFile(path);
            for (std::size_t length = whole.size(); length-- > 0;) {
                std::filesystem::resize_file(path, length);
                int error = 0;
                TOVO_Sensor *h = f.openDir(dir.wpath().c_str(), L"query", &error);
                EXPECT_TRUE(!h && error != 0 && knownCode(f, error)) << f.name << suffix << " cut at " << length;
                if (h) f.close(h);
            }
            writeFile(path, whole);
        }
    }
}

TEST(ProfileCorrupt, FlippedBytesGiveCodesInEveryMode) {
    for (const Family &f : {observedDepths(), slantRange(), tpe()}) {
        TempDir dir;
        writeLine(f, dir.wpath(), kSmallLine);
        const std::string path = dir.file(f.name);
        const Bytes whole = readFile(path);
        CacheSizeSetting setting(f.block == 5002700 ? "2" : nullptr);
        for (std::size_t at = 16; at < whole.size(); ++at) {
            Bytes flipped = whole;
            flipped[at] ^= 0xA5;
            writeFile(path, flipped);
            for (const wchar_t *mode : {L"query", L"update"}) {
                TOVO_Sensor *h = f.open(dir.wpath(), mode);
                if (h) {
                    exerciseAll(f, h);
                    EXPECT_TRUE(knownCode(f, f.close(h)));
                }
            }
            writeFile(path, whole);
        }
    }
}

TEST(ProfileCorrupt, HeaderClaimingMoreBeamsThanTheFileHoldsIsRefused) {
    for (const Family &f : {observedDepths(), slantRange(), tpe()}) {
        TempDir dir;
        writeLine(f, dir.wpath());
        const std::string path = dir.file(f.name);
        // Profile 1 would run into profile 2; profile 6 past the end of the file.
        const Bytes bytes =
            patched(readFile(path), {{headerOffset(f, 1) + 4, 0xFFFF0001u}, {headerOffset(f, 6) + 4, 0x00060002u}});
        writeFile(path, bytes);
        for (const char *cache : {static_cast<const char *>(nullptr), "4"}) {
            CacheSizeSetting setting(cache);
            for (const wchar_t *mode : {L"query", L"update"}) {
                TOVO_Sensor *h = f.open(dir.wpath(), mode);
                ASSERT_NE(h, nullptr);
                Reading v;
                EXPECT_EQ(f.read(h, 1, 1, v), f.block + 21) << f.name;
                EXPECT_EQ(f.read(h, 6, 2, v), f.block + 21) << f.name;
                EXPECT_EQ(f.read(h, 2, 7, v), 0) << f.name;  // its neighbour is intact
                if (f.edit && mode[0] == L'u') {
                    EXPECT_EQ(f.edit(h, 1, 1), f.block + 27) << f.name;
                    EXPECT_EQ(f.edit(h, 6, 7), f.block + 27) << f.name;
                }
                EXPECT_EQ(f.close(h), 0);
            }
        }
        EXPECT_TRUE(SameBytes(bytes, readFile(path)));
    }
}

TEST(ProfileCorrupt, SummaryCountsBeyondTheFileFailTheOpen) {
    for (const Family &f : {observedDepths(), slantRange(), tpe()}) {
        TempDir dir;
        writeLine(f, dir.wpath());
        const std::string path = dir.file(f.name);
        writeFile(path, patched(readFile(path), geometryOf(f).beamCountAt, 0xFFFFFFFFu));
        int error = -1;
        EXPECT_EQ(f.openDir(dir.wpath().c_str(), L"query", &error), nullptr);
        EXPECT_EQ(error, f.block + 6) << f.name;
    }
}

TEST(ProfileCorrupt, TimeIndexPastTheFileReadsTheSameWithAndWithoutCache) {
    const Family f = tpe();
    TempDir dir;
    writeLine(f, dir.wpath());
    const std::string index = dir.file("TPETmIdx");
    // Profile 2's offset beyond the file; profile 4's before profile 3's.
    writeFile(index, patched(readFile(index), {{52, 0x7FFFFFF0u}, {40 + 8 * 3 + 4, 100}}));
    // The codes of the random reads: sequential reads follow the block
    // reader, not the file position, so they may differ.
    auto randomReadCodes = [&](const char *cache) {
        CacheSizeSetting setting(cache);
        TOVO_Sensor *h = f.open(dir.wpath(), L"query");
        EXPECT_NE(h, nullptr);
        std::vector<int> codes = h ? exerciseAll(f, h) : std::vector<int>();
        if (h) f.close(h);
        codes.resize(std::min<std::size_t>(codes.size(), (kProfiles + 2) * 8));
        return codes;
    };
    const std::vector<int> direct = randomReadCodes(nullptr);
    EXPECT_NE(std::find(direct.begin(), direct.end(), 5002725), direct.end());
    for (const char *cache : {"1", "4", "64"}) EXPECT_EQ(randomReadCodes(cache), direct) << cache;
}

}  // namespace
