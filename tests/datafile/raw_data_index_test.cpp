// The raw data index: a data file with a fixed name, type, version and attributes.
#include "data_file_fixtures.h"

using namespace velmio::test;

TEST(RawDataIndex, WritesItsFixedDeclarationsAndReadsThemBack) {
    TempDir dir;
    {
        long status = -7;
        VELMRawDataIndex index(dir.wpath(), ACCESS_CREATE, status);
        ASSERT_EQ(status, 0);
        ASSERT_EQ(index.SetSummaryAttribute(L"DataType", intValue(12), 1), 0);
        dataValue offset;
        offset.d = 0;
        offset.ui = 0x80000000u;
        ASSERT_EQ(index.WriteRecord(3600.0, 0, {intValue(4), offset, intValue(-1), intValue(17)}, {}), 0);
    }
    const Bytes file = readFile(dir.file("RawDataIndex"));
    Bytes expected = ascii("TOVO");
    append(expected, be32s({70, 1, 2}));
    Bytes summary = be32s({0, 1, 0, 0, 0, 1, 1000, 60, 0, 0, 1, 0, 4, 0, 0});
    append(summary, xdrString("DataType"));
    be32(summary, 12);
    be32(summary, 12 + 4 * 4);
    const char *names[4] = {"RecordType", "RecordByteOffset", "RecordLength", "VELMProfileNumber"};
    const std::uint32_t types[4] = {0, 1, 0, 0};
    for (int i = 0; i < 4; ++i) {
        be32(summary, types[i]);
        append(summary, xdrString(names[i]));
    }
    summary = patched(summary, 0, static_cast<std::uint32_t>(summary.size()));
    append(expected, summary);
    append(expected, be32s({28, 0, 0, 4, 0x80000000u, 0xFFFFFFFFu, 17}));
    EXPECT_TRUE(SameBytes(expected, file));

    long status = -7;
    VELMRawDataIndex index(dir.wpath(), ACCESS_READ, status);
    EXPECT_EQ(status, 0);
}

TEST(RawDataIndex, RefusesAFileOfTheSameNameWithOtherAttributes) {
    TempDir dir;
    {
        long status;
        VELMDataFile f(dir.wpath(), L"RawDataIndex", L"", 70, ACCESS_CREATE, 1, status);
        ASSERT_EQ(f.AddAttribute(DT_INT, L"RecordType"), 0);
        ASSERT_EQ(f.WriteRecord(1.0, 0, {intValue(1)}, {}), 0);
    }
    long status;
    VELMRawDataIndex index(dir.wpath(), ACCESS_UPDATE, status);
    EXPECT_EQ(status, 5000025);
}
