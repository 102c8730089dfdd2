// Damaged files give a code, never a crash, an over-read or a huge allocation.
#include "data_file_fixtures.h"

using namespace velmio::test;

namespace {

// Offsets in the file written by writeSmall (empty description):
constexpr std::size_t kSummaryCount = 56, kDataCount = 64, kSummaryArrayCount = 84, kSummaryArrayBytes = 88,
                      kDataNameLength = 104, kFirstRecord = 124, kRecordArrayCount = 140, kRecordArrayBytes = 144;

// Summary attribute "k" (int array {7}); data attributes "n" (int) and "a"
// (int array); three records of 1, 0 and 2 elements.
void writeSmall(const TempDir &dir) {
    long status;
    VELMDataFile f(dir.wpath(), L"Small", L"", 6, ACCESS_CREATE, 1, status);
    ASSERT_EQ(f.AddSummaryAttribute(DT_INT_ARRAY, L"k"), 0);
    ASSERT_EQ(f.AddAttribute(DT_INT, L"n"), 0);
    ASSERT_EQ(f.AddAttribute(DT_INT_ARRAY, L"a"), 0);
    std::int32_t seven = 7, a[2] = {8, 9};
    ASSERT_EQ(f.SetSummaryAttribute(0, ptrValue(&seven), 1), 0);
    ASSERT_EQ(f.WriteRecord(1.0, 0, {intValue(1), ptrValue(a)}, {1, 1}), 0);
    ASSERT_EQ(f.WriteRecord(2.0, 0, {intValue(2), ptrValue(nullptr)}, {1, 0}), 0);
    ASSERT_EQ(f.WriteRecord(3.0, 0, {intValue(3), ptrValue(a)}, {1, 2}), 0);
}

std::uint32_t unitAt(const Bytes &b, std::size_t at) {
    return std::uint32_t(b[at]) << 24 | std::uint32_t(b[at + 1]) << 16 | std::uint32_t(b[at + 2]) << 8 | b[at + 3];
}

struct Opened {
    long status = -7;
    std::vector<int> reads;  // the code of reading each record
};

Opened openAndReadAll(const TempDir &dir) {
    Opened o;
    VELMDataFile f(dir.wpath(), L"Small", L"", 6, ACCESS_READ, 1, o.status);
    for (int n = 1; n <= 3; ++n) o.reads.push_back(readCode(f, n));
    return o;
}

Opened openPatched(const TempDir &dir, const Bytes &good, std::size_t at, std::uint32_t value) {
    Bytes bad = good;
    bad = patched(bad, at, value);
    writeFile(dir.file("Small"), bad);
    return silently([&] { return openAndReadAll(dir); });
}

}  // namespace

TEST(DataFileCorrupt, TruncatedAtEveryOffset) {
    TempDir dir;
    writeSmall(dir);
    const Bytes good = readFile(dir.file("Small"));
    const std::size_t summaryEnd = 16 + unitAt(good, 16);
    ASSERT_EQ(summaryEnd, kFirstRecord);
    std::vector<std::size_t> recordEnds;
    for (std::size_t at = summaryEnd; at < good.size(); at += unitAt(good, at)) recordEnds.push_back(at + unitAt(good, at));
    ASSERT_EQ(recordEnds.size(), 3u);
    ASSERT_EQ(recordEnds.back(), good.size());

    testing::internal::CaptureStdout();
    for (std::size_t length = 0; length < good.size(); ++length) {
        writeFile(dir.file("Small"), Bytes(good.begin(), good.begin() + static_cast<long>(length)));
        Opened o = openAndReadAll(dir);
        if (length < 16) {
            EXPECT_EQ(o.status, 5000027) << length;
        } else if (length < summaryEnd) {
            EXPECT_EQ(o.status, 5000025) << length;
        } else {
            ASSERT_EQ(o.status, 0) << length;
            for (std::size_t r = 0; r < 3; ++r) EXPECT_EQ(o.reads[r], recordEnds[r] <= length ? 0 : 5000058) << length;
        }
    }
    writeFile(dir.file("Small"), good);
    const Bytes index = readFile(dir.file("SmallTmIdx"));
    for (std::size_t length = 0; length < index.size(); ++length) {
        writeFile(dir.file("SmallTmIdx"), Bytes(index.begin(), index.begin() + static_cast<long>(length)));
        EXPECT_EQ(openAndReadAll(dir).status, 5000039) << length;
    }
    testing::internal::GetCapturedStdout();
}

TEST(DataFileCorrupt, BadHeadersAndCountsOrLengthsBeyondTheFile) {
    TempDir dir;
    writeSmall(dir);
    const Bytes good = readFile(dir.file("Small"));
    // The offsets above are those of the layout.
    for (auto [at, value] : {std::pair<std::size_t, std::uint32_t>{kSummaryCount, 1}, {kDataCount, 2}, {kSummaryArrayBytes, 4},
                             {kDataNameLength, 1}, {kFirstRecord, 28}, {kRecordArrayBytes, 4}})
        ASSERT_EQ(unitAt(good, at), value) << at;

    for (std::uint32_t huge : {0x7FFFFFFFu, 0xFFFFFFFFu, 1000u}) {
        EXPECT_EQ(openPatched(dir, good, kSummaryCount, huge).status, 5000025) << huge;
        EXPECT_EQ(openPatched(dir, good, kDataCount, huge).status, 5000025) << huge;
        EXPECT_EQ(openPatched(dir, good, kSummaryArrayCount, huge).status, 5000025) << huge;
        EXPECT_EQ(openPatched(dir, good, 16, huge).status, 5000025) << huge;  // summary length
    }
    // A name over 256 bytes, and a byte count that disagrees with the count.
    EXPECT_EQ(openPatched(dir, good, kDataNameLength, 257).status, 5000025);
    EXPECT_EQ(openPatched(dir, good, kSummaryArrayBytes, 8).status, 5000025);

    const std::vector<int> firstBad = {5000058, 0, 0};
    EXPECT_EQ(openPatched(dir, good, kRecordArrayCount, 0x40000000u).reads, firstBad);
    EXPECT_EQ(openPatched(dir, good, kRecordArrayCount, 0xFFFFFFFFu).reads, firstBad);  // negative
    EXPECT_EQ(openPatched(dir, good, kRecordArrayBytes, 0xFFFFFFFCu).reads, firstBad);
    // Record length words: below the fixed part, and past the end of the file.
    EXPECT_EQ(openPatched(dir, good, kFirstRecord, 15).reads, firstBad);
    EXPECT_EQ(openPatched(dir, good, kFirstRecord, 0x7FFFFFFFu).reads, firstBad);

    // Foreign or mismatched headers.
    EXPECT_EQ(openPatched(dir, good, 0, 0x544F5650).status, 5000027);  // magic
    EXPECT_EQ(openPatched(dir, good, 8, 2).status, 5000027);           // record kind
    writeFile(dir.file("Small"), good);
    long status;
    testing::internal::CaptureStdout();
    VELMDataFile other(dir.wpath(), L"Small", L"", 7, ACCESS_READ, 1, status);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(status, 5000027);

    // An index entry pointing past the end of the data file.
    Bytes index = readFile(dir.file("SmallTmIdx"));
    index = patched(index, index.size() - 4, 0x00100000);
    writeFile(dir.file("SmallTmIdx"), index);
    Opened o = silently([&] { return openAndReadAll(dir); });
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.reads, (std::vector<int>{0, 0, 5000058}));
}
