// Files of a file version other than 2, built by hand: no data version word
// in the summary and no length word before the records.
#include "data_file_fixtures.h"

#include <tuple>
#include <utility>

using namespace velmio::test;

namespace {

// Attributes "n" (int) and, when withString, "s" (string); two records at
// 60.5 s and 60.75 s (reference 1 minute, scale 100).
void writeVersionOneFile(const TempDir &dir, bool withString) {
    Bytes file = ascii("TOVO");
    append(file, be32s({5, 1, 1}));
    Bytes summary = be32s({0, 0, 0, 3, 2, 100, 1, 50, 75, 1, 0, withString ? 2u : 1u, 0, 0});
    append(summary, xdrString("k"));
    be32(summary, 9);
    be32(summary, 8 + 4);  // fixed record size without the length word
    be32(summary, 0);
    append(summary, xdrString("n"));
    if (withString) {
        be32(summary, 14);
        append(summary, xdrString("s"));
    }
    summary = patched(summary, 0, static_cast<std::uint32_t>(summary.size()));
    append(file, summary);
    const auto first = static_cast<std::uint32_t>(file.size());
    append(file, be32s({1, 50, 10}));
    if (withString) xarray(file, "hi", 2, 1);
    const auto second = static_cast<std::uint32_t>(file.size());
    append(file, be32s({2, 75, 11}));
    if (withString) be32(file, 0);
    writeFile(dir.file("Old"), file);

    Bytes index = ascii("TOVO");
    append(index, be32s({5, 3, 1, 1, 512, 2, 50, 75, 2, 50, first, 75, second}));
    writeFile(dir.file("OldTmIdx"), index);
}

}  // namespace

TEST(DataFileVersions, VersionOneFilesReadWithoutVersionAndLengthWords) {
    for (bool withString : {false, true}) {
        SCOPED_TRACE(withString ? "variable-length records" : "fixed records");
        TempDir dir;
        writeVersionOneFile(dir, withString);
        long status;
        VELMDataFile f(dir.wpath(), L"Old", L"", 5, ACCESS_READ, 4, status);
        ASSERT_EQ(status, 0);
        // File version, data version (not in the file: the constructor's), record size, summary status.
        EXPECT_EQ(std::vector<unsigned>({f.GetFileVersionNumber(), f.GetDataVersionNumber(), f.GetDataRecordSize(),
                                         f.GetSummaryRecordStatus()}),
                  std::vector<unsigned>({1, 4, 12, 3}));
        EXPECT_EQ(std::make_pair(f.GetMinTime(), f.GetMaxTime()), std::make_pair(60.5, 60.75));
        dataValue k;
        ASSERT_EQ(f.GetSummaryAttribute(L"k", k, nullptr), 0);
        EXPECT_EQ(k.i, 9);

        double t;
        unsigned int s;
        std::vector<dataValue> v;
        std::vector<int> c;
        ASSERT_EQ(f.ReadRecord(t, s, v, c, 2), 0);
        EXPECT_EQ(std::make_tuple(t, s, v[0].i), std::make_tuple(60.75, 2u, 11));
        if (withString) {
            EXPECT_EQ(c[1], 0);
        }
        ASSERT_EQ(f.ReadRecord(t, s, v, c, 1), 0);
        EXPECT_EQ(std::make_pair(t, v[0].i), std::make_pair(60.5, 10));
        if (withString) {
            ASSERT_EQ(c[1], 2);
            EXPECT_STREQ(v[1].str, "hi");
        }
        f.FreeRecordValues(v);
    }
}
