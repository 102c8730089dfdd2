#include <velmio/simple_sensor.h>

#include "tests/sensors/sensor_test_support.h"

#include <cwchar>

#include <sys/stat.h>

using namespace velmio::test;

namespace {

// Opens the line and reads every record, last first so that each read goes
// through the time index; the first failure's code, 0 if none.
int openAndReadAll(const TempDir &dir, const wchar_t *mode) {
    int error = -1;
    TOVO_Sensor *h = GyroOpenDir(dir.wpath().c_str(), mode, &error);
    if (!h) return error;
    unsigned int count = 0, status;
    double t, v;
    GyroSummary(h, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr);
    int rc = 0;
    for (unsigned int n = count; n >= 1 && rc == 0; --n) rc = GyroRead(h, n, &t, &v, &status);
    GyroClose(h);
    return rc;
}

// Each of the line's files cut at every byte: the open refuses it with the
// code of what is missing, in both reading modes, and leaves the file alone.
TEST(SimpleSensorCorrupt, TruncatedAtEveryByteIsRefused) {
    TempDir dir;
    writeGyroLine(dir);
    struct Case {
        const char *file;
        int (*expected)(std::size_t length);
    } cases[] = {
        {"Gyro", [](std::size_t n) { return n < 16 ? 5000027 : n < 48 ? 5001225 : 5001206; }},
        {"GyroLineSegments", [](std::size_t) { return 5001203; }},
        {"GyroTmIdx", [](std::size_t) { return 5000039; }},
    };
    for (const Case &c : cases) {
        const Bytes whole = readFile(dir.file(c.file));
        for (std::size_t n = 0; n < whole.size(); ++n) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<long>(n));
            writeFile(dir.file(c.file), cut);
            for (const wchar_t *mode : {L"query", L"update"})
                ASSERT_EQ(openAndReadAll(dir, mode), c.expected(n)) << c.file << " cut at " << n;
            ASSERT_TRUE(SameBytes(cut, readFile(dir.file(c.file))));
        }
        writeFile(dir.file(c.file), whole);
        ASSERT_EQ(openAndReadAll(dir, L"query"), 0);
    }
}

// A wrong magic, type or record version in any file, and counts that the
// file cannot hold, are refused before anything is sized by them.
TEST(SimpleSensorCorrupt, BadHeadersAndCountsAreRefused) {
    TempDir dir;
    writeGyroLine(dir);
    struct Case {
        const char *file;
        std::size_t offset;
        long long value;
        int expected;
    } cases[] = {
        // data file: magic, type, record version, one record more than the
        // file holds, a huge count, a zero time scale
        {"Gyro", 0, 0x544F5650, 5000027}, {"Gyro", 4, 2, 5000027}, {"Gyro", 8, 2, 5000027},
        {"Gyro", 20, 4, 5001206}, {"Gyro", 20, 0xFFFFFFFF, 5001206}, {"Gyro", 24, 0, 5001206},
        // line segments: magic, type, record version, counts, name length
        {"GyroLineSegments", 0, 0, 5001203}, {"GyroLineSegments", 4, 6, 5001203},
        {"GyroLineSegments", 8, 1, 5001203}, {"GyroLineSegments", 16, 0x7FFFFFFF, 5001203},
        {"GyroLineSegments", 16, -1, 5001203}, {"GyroLineSegments", 24, 0xFFFFFFF0, 5001203},
        // time index: magic, type, record version, set count, entries in a
        // set, the array's own count; offsets in the header, across two
        // records and beyond the file
        {"GyroTmIdx", 0, 0, 5000039}, {"GyroTmIdx", 4, 2, 5000039}, {"GyroTmIdx", 8, 1, 5000039},
        {"GyroTmIdx", 16, 0x10000000, 5000039}, {"GyroTmIdx", 24, 0xFFFFFF, 5000039},
        {"GyroTmIdx", 36, 4, 5000039}, {"GyroTmIdx", 44, 0, 5001208}, {"GyroTmIdx", 60, 62, 5001208},
        {"GyroTmIdx", 60, 0x7FFFFFF0, 5001208},
    };
    for (const Case &c : cases) {
        const Bytes whole = readFile(dir.file(c.file));
        patchWord(dir.file(c.file), c.offset, c.value);
        for (const wchar_t *mode : {L"query", L"update"})
            EXPECT_EQ(openAndReadAll(dir, mode), c.expected) << c.file << " word at " << c.offset;
        writeFile(dir.file(c.file), whole);
    }
}

// A damaged index entry must not let a status save overwrite another part
// of the file; the failed record stays marked for a later save.
TEST(SimpleSensorCorrupt, SaveNeverWritesThroughABadOffset) {
    TempDir dir;
    writeGyroLine(dir);
    patchWord(dir.file("GyroTmIdx"), 52, 16);  // record 2 "at" the summary
    TOVO_Sensor *h = openLine(GyroOpenDir, dir, L"update");
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(GyroSetRecordStatus(h, 2, 0xEE) + GyroSetRecordStatus(h, 3, 0xDD), 0);
    EXPECT_EQ(GyroSaveStatusToDisk(h), 5001210);
    EXPECT_EQ(h->shadowChanged[2], 1);
    EXPECT_EQ(GyroClose(h), 0);
    Bytes data = readFile(dir.file("Gyro"));
    EXPECT_TRUE(SameBytes(words({0x40, 3, 1000, 2}), Bytes(data.begin() + 16, data.begin() + 32)));
    EXPECT_TRUE(SameBytes(words({0, -19500}), Bytes(data.begin() + 60, data.begin() + 68)));
}

// Records are read where the index entry says, even where it is not the
// place they are written in order.
TEST(SimpleSensorCorrupt, ReadsFollowTheIndexEntry) {
    TempDir dir;
    writeGyroLine(dir);
    patchWord(dir.file("GyroTmIdx"), 44, 72);  // record 1 names record 3's bytes
    TOVO_Sensor *h = openLine(GyroOpenDir, dir, L"query");
    ASSERT_NE(h, nullptr);
    double t = 0, v = 0;
    unsigned int status = 0;
    EXPECT_EQ(GyroRead(h, 1, &t, &v, &status), 0);
    EXPECT_EQ(t, 101.0);
    EXPECT_EQ(status, 7u);
    EXPECT_EQ(GyroClose(h), 0);
}

// Path components longer than the handle's 64-character name arrays are
// cut, and the line is written and read as any other.
TEST(SimpleSensorCorrupt, LongPathComponentsDoNotOverflow) {
    TempDir root;
    std::string line = root.path();
    for (char c : {'P', 'V', 'D', 'L'}) {
        line += "/" + std::string(100, c);
        ASSERT_EQ(::mkdir(line.c_str(), 0755), 0);
    }
    const std::wstring wline = widen(line);
    int error = -1;
    TOVO_Sensor *h = HeaveOpenDir(wline.c_str(), L"create", &error);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(std::wcslen(h->project), 63u);
    EXPECT_EQ(std::wstring(h->day), std::wstring(63, L'D'));
    EXPECT_EQ(std::wstring(h->line), std::wstring(63, L'L'));
    for (int rc : {HeaveBgnSeqWriteLineSegment(h, std::wstring(300, L'n').c_str()), HeaveSeqWrite(h, 1.0, 2.0, 3),
                   HeaveEndSeqWriteLineSegment(h, 0), HeaveClose(h)})
        ASSERT_EQ(rc, 0);
    h = HeaveOpenDir(wline.c_str(), L"query", &error);
    ASSERT_NE(h, nullptr);
    wchar_t *name = nullptr;
    unsigned int status;
    ASSERT_EQ(HeaveLineSegment(h, 1, &name, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &status), 0);
    EXPECT_EQ(std::wstring(name), std::wstring(300, L'n'));
    free(name);
    EXPECT_EQ(HeaveClose(h), 0);
}

}  // namespace
