// The bytes of an attribute data file, written by hand from the layout.
#include "data_file_fixtures.h"

#include <cfloat>

using namespace velmio::test;

namespace {

const char *const kNames[16] = {"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l", "m", "n", "o", "p"};

// Values of every type; the arrays of the second record are all empty.
struct AllTypes {
    std::int32_t ints[2] = {1, -2};
    float floats[1] = {1.0f};
    double doubles[1] = {2.0};
    char chars[3] = {'a', 'b', 'c'};
    std::int16_t shorts[3] = {1, 2, 3};
    char text[5] = {'h', 'e', 'l', 'l', 'o'};
    unsigned char blob[2] = {0xDE, 0xAD};

    std::vector<dataValue> values(bool emptyArrays) const {
        std::vector<dataValue> v(16);
        v[0].i = -2;
        v[1].ui = 0xFFFFFFFEu;
        v[2].f = 1.5f;
        v[3].d = 1.0;
        v[4].c = 'A';
        v[5].s = -3;
        v[6].us = 65535;
        const void *arrays[9] = {ints, nullptr, floats, doubles, chars, shorts, nullptr, text, blob};
        for (int k = 0; k < 9; ++k) v[7 + k] = ptrValue(emptyArrays ? nullptr : arrays[k]);
        return v;
    }
    static std::vector<int> counts(bool emptyArrays) {
        std::vector<int> c(16, 1);
        const int n[9] = {2, 0, 1, 1, 3, 3, 0, 5, 2};
        for (int k = 0; k < 9; ++k) c[7 + k] = emptyArrays ? 0 : n[k];
        return c;
    }
    // The record bytes after the status and time words.
    Bytes bytes(bool emptyArrays) const {
        Bytes out = be32s({0xFFFFFFFEu, 0xFFFFFFFEu, floatBits(1.5f)});
        xdouble(out, 1.0);
        append(out, be32s({0x41, 0xFFFFFFFDu, 0x0000FFFFu}));
        if (emptyArrays) {
            for (int k = 0; k < 9; ++k) be32(out, 0);
            return out;
        }
        xarray(out, ints, 2, 4);
        xarray(out, nullptr, 0, 4);
        xarray(out, floats, 1, 4);
        xarray(out, doubles, 1, 8);
        xarray(out, chars, 3, 1);
        xarray(out, shorts, 3, 2);
        xarray(out, nullptr, 0, 2);
        xarray(out, text, 5, 1);
        xarray(out, blob, 2, 1);
        return out;
    }
};

// The file of AllTypes as the library must write it: two records at 120.5 s
// and 121.25 s (reference 2 minutes, scale 1000), summary status 0x10.
Bytes expectedFile(const AllTypes &all, std::uint32_t &firstRecordOffset, std::uint32_t &secondRecordOffset) {
    Bytes file = ascii("TOVO");
    append(file, be32s({77, 1, 2}));
    Bytes summary = be32s({0, 3, 3});  // size (below), data version, description length
    append(summary, xdrString("abc"));
    append(summary, be32s({0x10, 2, 1000, 2, 500, 1250, 2, 0, 16, 0}));
    be32(summary, 0);
    append(summary, xdrString("Id"));
    be32(summary, 14);
    append(summary, xdrString("Tag"));
    be32(summary, 7);
    xarray(summary, "xyzzy", 5, 1);
    be32(summary, 44);  // fixed record size: 12 + 6 x 4 + 8
    for (int t = 0; t < 16; ++t) {
        be32(summary, static_cast<std::uint32_t>(t));
        append(summary, xdrString(kNames[t]));
    }
    summary = patched(summary, 0, static_cast<std::uint32_t>(summary.size()));
    append(file, summary);

    firstRecordOffset = static_cast<std::uint32_t>(file.size());
    Bytes body = all.bytes(false);
    append(file, be32s({static_cast<std::uint32_t>(12 + body.size()), 0x21, 500}));
    append(file, body);
    secondRecordOffset = static_cast<std::uint32_t>(file.size());
    body = all.bytes(true);
    append(file, be32s({static_cast<std::uint32_t>(12 + body.size()), 0x22, 1250}));
    append(file, body);
    return file;
}

void writeAllTypes(const TempDir &dir, const AllTypes &all) {
    long status = -7;
    VELMDataFile f(dir.wpath(), L"Attr", L"abc", 77, ACCESS_CREATE, 3, status);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(f.GetMinTime(), DBL_MAX);
    EXPECT_EQ(f.GetMaxTime(), -DBL_MAX);
    ASSERT_EQ(f.AddSummaryAttribute(DT_INT, L"Id"), 0);
    ASSERT_EQ(f.AddSummaryAttribute(DT_STRING, L"Tag"), 0);
    for (int t = 0; t < 16; ++t) ASSERT_EQ(f.AddAttribute(static_cast<dataType>(t), MORVAUString::fromUtf8(kNames[t])), 0);
    ASSERT_EQ(f.SetSummaryAttribute(L"Id", intValue(7), 1), 0);
    ASSERT_EQ(f.SetSummaryAttribute(1, ptrValue("xyzzy"), 5), 0);
    ASSERT_EQ(f.SetSummaryRecordStatus(0x10), 0);
    ASSERT_EQ(f.WriteRecord(120.5, 0x21, all.values(false), AllTypes::counts(false)), 0);
    ASSERT_EQ(f.WriteRecord(121.25, 0x22, all.values(true), AllTypes::counts(true)), 0);
    EXPECT_EQ(f.AddAttribute(DT_INT, L"late"), 5000062);
}

}  // namespace

TEST(DataFileLayout, EveryTypeIsWrittenAsTheLayoutSays) {
    TempDir dir;
    AllTypes all;
    writeAllTypes(dir, all);
    std::uint32_t first, second;
    Bytes expected = expectedFile(all, first, second);
    EXPECT_TRUE(SameBytes(expected, readFile(dir.file("Attr"))));

    Bytes index = ascii("TOVO");
    append(index, be32s({77, 3, 2, 1, 512, 2, 500, 1250, 2, 500, first, 1250, second}));
    EXPECT_TRUE(SameBytes(index, readFile(dir.file("AttrTmIdx"))));
}

TEST(DataFileLayout, UpdateRewritesOnlyTheRememberedSummaryFields) {
    TempDir dir;
    AllTypes all;
    writeAllTypes(dir, all);
    const Bytes before = readFile(dir.file("Attr"));
    {
        long status = -7;
        VELMDataFile f(dir.wpath(), L"Attr", L"ignored", 77, ACCESS_UPDATE, 0, status);
        ASSERT_EQ(status, 0);
        EXPECT_EQ(f.GetDataVersionNumber(), 3u);
        EXPECT_EQ(f.GetSummeryRecordSize(), static_cast<unsigned int>(before[19] | before[18] << 8));
        ASSERT_EQ(f.SetSummaryRecordStatus(0xABCD), 0);
        // Attribute values are not among the remembered fields.
        ASSERT_EQ(f.SetSummaryAttribute(0, intValue(99), 1), 0);
    }
    Bytes expected = before;
    expected = patched(expected, 16 + 4 + 4 + 4 + 8, 0xABCD);  // size, data version, length, "abc"
    EXPECT_TRUE(SameBytes(expected, readFile(dir.file("Attr"))));
}

TEST(DataFileLayout, SummaryBeyondTheBufferIsRefusedAndNothingIsLeft) {
    TempDir dir;
    {
        long status;
        VELMDataFile f(dir.wpath(), L"Big", L"", 1, ACCESS_CREATE, 1, status);
        ASSERT_EQ(f.AddSummaryAttribute(DT_OPAQUE, L"blob"), 0);
        ASSERT_EQ(f.AddAttribute(DT_INT, L"i"), 0);
        std::vector<unsigned char> blob(1000000, 0x5A);
        ASSERT_EQ(f.SetSummaryAttribute(0, ptrValue(blob.data()), static_cast<int>(blob.size())), 0);
        EXPECT_EQ(f.WriteRecord(1.0, 0, {intValue(1)}, {}), 5000026);
        EXPECT_EQ(f.GetNumberOfRecords(), 0u);
    }
    EXPECT_FALSE(fileExists(dir.file("Big")));
    EXPECT_FALSE(fileExists(dir.file("BigTmIdx")));
}
