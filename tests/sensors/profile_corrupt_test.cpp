// Damaged profile files give the families' codes: never a crash, never a
// read outside a profile, never an allocation sized by a count from a file.
#include "sensors/profile_families.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

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

void pokeByte(const std::string &path, std::size_t at, std::uint8_t value) {
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(at));
    file.put(static_cast<char>(value));
}

bool knownCode(const Family &f, int rc) {
    return rc == 0 || (rc > f.block && rc < f.block + 100) || (rc >= 5000000 && rc < 5000100);
}

// Every read, edit and sequential read of the line's numbering; each must
// return 0 or a code of the family or the line store.
std::vector<int> exerciseAll(const Family &f, TOVO_Sensor *h) {
    std::vector<int> codes;
    Values v;
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
                TOVO_Sensor *h = f.open(dir.wpath(), L"query");
                EXPECT_EQ(h, nullptr) << f.name << suffix << " cut at " << length;
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
            pokeByte(path, at, whole[at] ^ 0xA5);
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
        Bytes bytes = patched(readFile(path), headerOffset(f, 1) + 4, 0xFFFF0001u);
        bytes = patched(bytes, headerOffset(f, 6) + 4, 0x00060002u);
        writeFile(path, bytes);
        for (const char *cache : {static_cast<const char *>(nullptr), "4"}) {
            CacheSizeSetting setting(cache);
            for (const wchar_t *mode : {L"query", L"update"}) {
                TOVO_Sensor *h = f.open(dir.wpath(), mode);
                ASSERT_NE(h, nullptr);
                Values v;
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
        TOVO_Sensor *h = nullptr;
        if (f.block == 5000200) h = ObservedDepthsOpenDir(dir.wpath().c_str(), L"query", &error);
        if (f.block == 5001900) h = SLRangeOpenDir(dir.wpath().c_str(), L"query", &error);
        if (f.block == 5002700) h = TPEOpenDir(dir.wpath().c_str(), L"query", &error);
        EXPECT_EQ(h, nullptr);
        EXPECT_EQ(error, f.block + 6) << f.name;
    }
}

TEST(ProfileCorrupt, TimeIndexPastTheFileReadsTheSameWithAndWithoutCache) {
    const Family f = tpe();
    TempDir dir;
    writeLine(f, dir.wpath());
    const std::string index = dir.file("TPETmIdx");
    // Profile 2's offset beyond the file; profile 4's before profile 3's.
    Bytes bytes = patched(readFile(index), 52, 0x7FFFFFF0u);
    bytes = patched(bytes, 40 + 8 * 3 + 4, 100);
    writeFile(index, bytes);
    std::vector<int> direct;
    {
        CacheSizeSetting off(nullptr);
        TOVO_Sensor *h = f.open(dir.wpath(), L"query");
        ASSERT_NE(h, nullptr);
        direct = exerciseAll(f, h);
        f.close(h);
    }
    EXPECT_NE(std::find(direct.begin(), direct.end(), 5002725), direct.end());
    for (const char *cache : {"1", "4", "64"}) {
        CacheSizeSetting setting(cache);
        TOVO_Sensor *h = f.open(dir.wpath(), L"query");
        ASSERT_NE(h, nullptr);
        // Sequential reads follow the block reader, not the file position,
        // so only the random reads are compared.
        std::vector<int> cached = exerciseAll(f, h);
        f.close(h);
        const std::size_t randomReads = (kProfiles + 2) * 8;
        EXPECT_EQ(std::vector<int>(cached.begin(), cached.begin() + randomReads),
                  std::vector<int>(direct.begin(), direct.begin() + randomReads))
            << cache;
    }
}

}  // namespace
