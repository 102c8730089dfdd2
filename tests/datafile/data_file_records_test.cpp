// Writing and reading records, access rules and the object's lifecycle.
#include "data_file_fixtures.h"

#include <cfloat>
#include <cstdlib>
#include <tuple>
#include <utility>

using namespace velmio::test;

namespace {

constexpr int kRecords = 1100;  // more than two index sets of 512

std::string textOf(int i) { return std::string(static_cast<std::size_t>(i % 7), static_cast<char>('a' + i % 26)); }

void writeMany(const TempDir &dir) {
    long status;
    VELMDataFile f(dir.wpath(), L"Many", L"many records", 9, ACCESS_CREATE, 1, status);
    ASSERT_EQ(status, 0);
    ASSERT_EQ(f.AddAttribute(DT_INT, L"n"), 0);
    ASSERT_EQ(f.AddAttribute(DT_STRING, L"text"), 0);
    ASSERT_EQ(f.AddAttribute(DT_DOUBLE_ARRAY, L"xs"), 0);
    ASSERT_EQ(f.SetSummaryRecordStatus(0x55), 0);
    for (int i = 0; i < kRecords; ++i) {
        std::string text = textOf(i);
        double xs[2] = {i * 0.5, -i * 0.25};
        std::vector<dataValue> values = {intValue(i), ptrValue(text.data()), ptrValue(xs)};
        ASSERT_EQ(f.WriteRecord(1000.0 + i * 0.125, static_cast<unsigned int>(i), values,
                                {1, static_cast<int>(text.size()), i % 3}),
                  0);
    }
}

void expectRecord(VELMDataFile &f, int number, int expectedIndex) {
    double time;
    unsigned int status;
    std::vector<dataValue> values;
    std::vector<int> counts;
    ASSERT_EQ(f.ReadRecord(time, status, values, counts, number), 0) << number;
    const int i = expectedIndex;
    EXPECT_EQ(std::make_tuple(time, status, f.GetDataRecordStatus()),
              std::make_tuple(1000.0 + i * 0.125, unsigned(i), unsigned(i)));
    ASSERT_EQ(counts, (std::vector<int>{1, static_cast<int>(textOf(i).size()), i % 3}));
    EXPECT_EQ(values[0].i, i);
    EXPECT_EQ(std::string(values[1].str ? values[1].str : ""), textOf(i));
    for (int k = 0; k < i % 3; ++k) EXPECT_EQ(values[2].da[k], k == 0 ? i * 0.5 : -i * 0.25);
    f.FreeRecordValues(values);
    EXPECT_EQ(values[1].ptr, nullptr);
}

}  // namespace

TEST(DataFileRecords, ManyVariableRecordsReadBackByNumberInSequenceAndInUpdate) {
    TempDir dir;
    writeMany(dir);
    for (AccessType mode : {ACCESS_READ, ACCESS_UPDATE}) {
        long status;
        VELMDataFile f(dir.wpath(), L"Many", L"", 9, mode, 0, status);
        ASSERT_EQ(status, 0);
        ASSERT_EQ(f.GetNumberOfRecords(), static_cast<unsigned int>(kRecords));
        EXPECT_EQ(std::make_pair(f.GetMinTime(), f.GetMaxTime()), std::make_pair(1000.0, 1000.0 + (kRecords - 1) * 0.125));
        EXPECT_EQ(f.GetSummaryRecordStatus(), 0x55u);
        for (int n : {kRecords, 1, 513, 512, 700}) expectRecord(f, n, n - 1);
        // -999 continues after the record last read.
        expectRecord(f, 1, 0);
        for (int n = 2; n <= kRecords; ++n) expectRecord(f, -999, n - 1);
        for (int n : {-999, 0, kRecords + 1}) EXPECT_EQ(readCode(f, n), 5000064) << n;
        // The current record's values stay with the object.
        dataValue value;
        int count = 0;
        ASSERT_EQ(f.GetDataAttribute(L"text", value, &count), 0);
        EXPECT_EQ(std::string(value.str, static_cast<std::size_t>(count)), textOf(kRecords - 1));
        std::free(value.ptr);
    }
}

TEST(DataFileRecords, AccessModesAndDeclarationRules) {
    TempDir dir;
    {
        long status;
        VELMDataFile f(dir.wpath(), L"Rules", L"", 3, ACCESS_CREATE, 1, status);
        ASSERT_EQ(f.AddAttribute(static_cast<dataType>(16), L"bad"), -1);
        ASSERT_EQ(f.AddAttribute(DT_INT, MORVAUString::fromUtf8(std::string(257, 'n').c_str())), -1);
        ASSERT_EQ(f.AddAttribute(DT_INT, MORVAUString::fromUtf8(std::string(256, 'n').c_str())), 0);
        ASSERT_EQ(f.AddAttribute(DT_INT_ARRAY, L"arr"), 0);
        EXPECT_EQ(readCode(f, 1), 5000061);
        // Values that do not match the attributes are refused before anything is written.
        EXPECT_EQ(f.WriteRecord(1.0, 0, {intValue(1)}, {1}), 5000026);
        EXPECT_EQ(f.WriteRecord(1.0, 0, {intValue(1), ptrValue(nullptr)}, {1, 2}), 5000026);
        // Staged values are written by a record without values.
        std::int32_t arr[3] = {4, 5, 6};
        ASSERT_EQ(f.SetDataAttribute(0u, intValue(42), 1), 0);
        ASSERT_EQ(f.SetDataAttribute(L"arr", ptrValue(arr), 3), 0);
        arr[0] = 0;  // the object keeps its own copy
        ASSERT_EQ(f.WriteRecord(60.0, 1, {}, {}), 0);
        EXPECT_EQ(f.AddSummaryAttribute(DT_INT, L"late"), 5000062);
    }
    long status;
    VELMDataFile f(dir.wpath(), L"Rules", L"", 3, ACCESS_READ, 1, status);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(f.AddAttribute(DT_INT, L"x"), 5000061);
    EXPECT_EQ(f.WriteRecord(1.0, 0, {}, {}), 5000061);
    double t;
    unsigned int s;
    std::vector<dataValue> v;
    std::vector<int> c;
    ASSERT_EQ(f.ReadRecord(t, s, v, c, 1), 0);
    ASSERT_EQ(c[1], 3);
    EXPECT_EQ(std::make_tuple(t, v[0].i, v[1].ia[0], v[1].ia[2]), std::make_tuple(60.0, 42, 4, 6));
    f.FreeRecordValues(v);
}

TEST(DataFileRecords, AttributeLookups) {
    TempDir dir;
    long status;
    VELMDataFile f(dir.wpath(), L"Look", L"", 3, ACCESS_CREATE, 1, status);
    ASSERT_EQ(f.AddSummaryAttribute(DT_USHORT_ARRAY, L"u"), 0);
    ASSERT_EQ(f.AddAttribute(DT_FLOAT, L"f"), 0);
    std::uint16_t us[2] = {1, 65535};
    ASSERT_EQ(f.SetSummaryAttribute(0, ptrValue(us), 2), 0);
    dataValue v;
    int count = -1;
    EXPECT_EQ(f.GetSummaryAttribute(2, v, &count), -1);
    EXPECT_EQ(f.GetSummaryAttribute(1, v, &count), 5000063);  // equal to the count: the list's own check
    EXPECT_EQ(f.GetSummaryAttribute(L"none", v, &count), 5000063);
    ASSERT_EQ(f.GetSummaryAttribute(L"u", v, &count), 0);
    ASSERT_EQ(count, 2);
    EXPECT_NE(v.usa, us);  // a fresh copy for the caller
    EXPECT_EQ(v.usa[1], 65535);
    VELMDataFile::FreeValue(DT_USHORT_ARRAY, v);
}

TEST(DataFileRecords, MissingFileIsReportedAsNotFound) {
    TempDir dir;
    long status = 0;
    testing::internal::CaptureStdout();
    VELMDataFile f(dir.wpath(), L"Nope", L"", 3, ACCESS_READ, 1, status);
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(status, 5000046);
    EXPECT_EQ(out, "VELM IO was unable to find the data file '" + dir.file("Nope") + "'\n");
    EXPECT_EQ(readCode(f, 1), 5000064);
}

TEST(DataFileRecords, CopyIsAReaderOfTheSameFile) {
    TempDir dir;
    long status;
    VELMDataFile writer(dir.wpath(), L"Copy", L"", 3, ACCESS_CREATE, 1, status);
    ASSERT_EQ(writer.AddAttribute(DT_INT, L"n"), 0);
    ASSERT_EQ(writer.WriteRecord(10.0, 1, {intValue(5)}, {}), 0);
    ASSERT_EQ(writer.WriteRecord(11.0, 2, {intValue(6)}, {}), 0);
    {
        VELMDataFile copy(writer);
        double t;
        unsigned int s;
        std::vector<dataValue> v;
        ASSERT_EQ(copy.ReadRecord(t, s, v, 2), 0);
        EXPECT_EQ(v[0].i, 6);
        EXPECT_EQ(copy.WriteRecord(12.0, 3, {intValue(7)}, {}), 5000061);
    }
    // The copy wrote and removed nothing: the writer goes on.
    ASSERT_EQ(writer.WriteRecord(12.0, 3, {intValue(7)}, {}), 0);
    VELMDataFile assigned(dir.wpath(), L"Other", L"", 3, ACCESS_CREATE, 1, status);
    assigned = writer;
    EXPECT_EQ(assigned.GetNumberOfRecords(), 3u);
    EXPECT_FALSE(fileExists(dir.file("Other")));
}
