#include <velmio/navigation.h>
#include <velmio/simple_sensor.h>

#include "tests/sensors/sensor_test_support.h"

#include <string>

using namespace velmio::test;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;

namespace {

// One fix of each family in its own line directory.
void writeLine(const TempDir &dir, bool sss) {
    TOVO_Sensor *h = openLine(sss ? SSSNavigationOpenDir : NavigationOpenDir, dir, L"create");
    ASSERT_NE(h, nullptr);
    for (int rc : {(sss ? SSSNavigationBgnSeqWriteLineSegment : NavigationBgnSeqWriteLineSegment)(h, L"s"),
                   (sss ? SSSNavigationSeqWrite : NavigationSeqWrite)(h, 5.0, 0.5, 0.25, 1.0, 2),
                   (sss ? SSSNavigationEndSeqWriteLineSegment : NavigationEndSeqWriteLineSegment)(h, 0),
                   (sss ? SSSNavigationClose : NavigationClose)(h)})
        ASSERT_EQ(rc, 0);
}

// The code of opening (and reading record 1 of) a line, and what was printed.
std::pair<int, std::string> openAndRead(const TempDir &dir, bool sss, const wchar_t *mode) {
    CaptureStdout();
    int error = -1;
    TOVO_Sensor *h = (sss ? SSSNavigationOpenDir : NavigationOpenDir)(dir.wpath().c_str(), mode, &error);
    if (h) {
        double t, lat, lon, m;
        unsigned int s;
        error = (sss ? SSSNavigationRead : NavigationRead)(h, 1, &t, &lat, &lon, &m, &s);
        (sss ? SSSNavigationClose : NavigationClose)(h);
    }
    return {error, GetCapturedStdout()};
}

// Every file cut at every byte is refused on open with the code of what is
// missing; Navigation says why, its twin stays silent.
TEST(NavigationCorrupt, TruncatedAtEveryByteIsRefused) {
    for (bool sss : {false, true}) {
        TempDir dir;
        writeLine(dir, sss);
        const std::string stem = sss ? "SSSNavigation" : "Navigation";
        for (const std::string suffix : {"", "LineSegments", "TmIdx"}) {
            const std::string file = dir.file(stem + suffix);
            const Bytes whole = readFile(file);
            for (std::size_t n = 0; n < whole.size(); ++n) {
                writeFile(file, Bytes(whole.begin(), whole.begin() + static_cast<long>(n)));
                int expected = suffix == "LineSegments" ? 5000103 : suffix == "TmIdx" ? 5000039
                               : n < 16 || n >= 72                            ? 5000106
                                                                              : 5000125;
                auto [code, printed] = openAndRead(dir, sss, n % 2 ? L"query" : L"update");
                ASSERT_EQ(code, expected) << stem << suffix << " cut at " << n;
                if (sss || suffix == "TmIdx") ASSERT_EQ(printed, "") << n;
                else ASSERT_NE(printed, "") << n;
            }
            writeFile(file, whole);
        }
        EXPECT_EQ(openAndRead(dir, sss, L"update").first, 0);
    }
}

TEST(NavigationCorrupt, MessagesNameWhatIsWrong) {
    TempDir dir;
    writeLine(dir, false);
    const Bytes data = readFile(dir.file("Navigation"));
    patchWord(dir.file("Navigation"), 4, 12);
    EXPECT_EQ(openAndRead(dir, false, L"query"),
              std::make_pair(5000106, std::string("NavigationReadSummary(): could not validate header \n")));
    writeFile(dir.file("Navigation"), data);
    patchWord(dir.file("Navigation"), 20, 2);  // two records in a file of one
    EXPECT_EQ(openAndRead(dir, false, L"query"),
              std::make_pair(5000106, std::string("NavigationReadSummary(): unable to decode number of data samples \n")));
    writeFile(dir.file("Navigation"), data);
    patchWord(dir.file("NavigationLineSegments"), 24, 1000);  // name length
    EXPECT_EQ(openAndRead(dir, false, L"query"),
              std::make_pair(5000103, std::string("NavigationReadLineSegmentFile(): could not decode line segment "
                                                  "source file name\n")));
    std::remove(dir.file("NavigationLineSegments").c_str());
    const std::string missing = "VELM IO was unable to find the data file '" + dir.file("NavigationLineSegments") + "'\n";
    EXPECT_EQ(openAndRead(dir, false, L"query"), std::make_pair(5000132, missing));
    EXPECT_EQ(openAndRead(dir, true, L"query").first, 5000046);  // no SSSNavigation data file at all
}

// A segment file cut inside a field names that field, whatever the count
// promised.
TEST(NavigationCorrupt, SegmentFileCutInAFieldNamesTheField) {
    TempDir dir;
    writeLine(dir, false);
    const std::string file = dir.file("NavigationLineSegments");
    const Bytes whole = readFile(file);
    const char *fields[] = {"status", "source file name length", "source file name", "begin index", "end index",
                            "min time", "max time", "min Latitude", "max Latitude", "min Longitude", "max Longitude"};
    for (std::size_t k = 0; k < 11; ++k) {
        // The name travels as an XDR string: its own length word, then its bytes.
        const std::size_t field = 20 + 4 * k + (k >= 3 ? 4 : 0);
        writeFile(file, Bytes(whole.begin(), whole.begin() + static_cast<long>(field + 2)));
        EXPECT_EQ(openAndRead(dir, false, L"query"),
                  std::make_pair(5000103, "NavigationReadLineSegmentFile(): could not decode line segment " +
                                              std::string(fields[k]) + "\n"));
    }
}

// The two families answer a handle of the wrong type differently, as they
// always have. Each row: Navigation's operation given an SSSNavigation
// handle, the twin's given a Navigation handle, and their answers.
TEST(NavigationRead, WrongHandleAnswersDifferPerFamily) {
    TempDir navDir, sssDir, gyroDir;
    writeLine(navDir, false);
    writeLine(sssDir, true);
    writeGyroLine(gyroDir);
    TOVO_Sensor *nav = openLine(NavigationOpenDir, navDir, L"update");
    TOVO_Sensor *sss = openLine(SSSNavigationOpenDir, sssDir, L"update");
    TOVO_Sensor *gyro = openLine(GyroOpenDir, gyroDir, L"update");
    ASSERT_TRUE(nav && sss && gyro);
    using Answer = std::pair<int, std::string>;
    using Op = int (*)(TOVO_Sensor *);
    auto call = [](Op op, TOVO_Sensor *h) {
        CaptureStdout();
        int rc = op(h);
        return Answer(rc, GetCapturedStdout());
    };
    const std::string bad = "(): invalid sensor type\n";
#define OP(CALL) [](TOVO_Sensor *h) { double d; unsigned int u; wchar_t *w; return (void)d, (void)u, (void)w, CALL; }
    const struct {
        Op navOp, sssOp;
        Answer navAnswer, sssAnswer;
    } rows[] = {
        {OP(NavigationLineSegment(h, 1, &w, &u, &u, &d, &d, &d, &d, &d, &d, &u)),
         OP(SSSNavigationLineSegment(h, 1, &w, &u, &u, &d, &d, &d, &d, &d, &d, &u)), {5000112, ""},
         {5000113, "SSSNavigationLineSegment" + bad}},
        {OP(NavigationSaveStatusToDisk(h)), OP(SSSNavigationSaveStatusToDisk(h)), {5000112, ""},
         {5000113, "SSSNavigationSaveStatusToDisk" + bad}},
        {OP(NavigationSetSummaryStatus(h, 1)), OP(SSSNavigationSetSummaryStatus(h, 1)),
         {5000113, "NavigationSetSummaryStatus" + bad}, {5000122, ""}},
        {OP(NavigationSummary(h, &u, &u, &u, &d, &d, &d, &d, &d, &d, &u)),
         OP(SSSNavigationSummary(h, &u, &u, &u, &d, &d, &d, &d, &d, &d, &u)),
         {5000113, "NavigationSummary(): invalid sensor type \n"}, {5000113, "SSSNavigationSummary" + bad}},
        {OP(NavigationEndSeqWriteLineSegment(h, 0)), OP(SSSNavigationEndSeqWriteLineSegment(h, 0)),
         {5000113, "NavigationEndWriteLineSegment" + bad}, {5000113, "SSSNavigationEndSeqWriteLineSegment" + bad}},
        {OP(NavigationClose(h)), OP(SSSNavigationClose(h)), {5000113, "NavigationClose" + bad}, {5000113, ""}},
    };
#undef OP
    for (const auto &r : rows) {
        EXPECT_EQ(call(r.navOp, sss), r.navAnswer);
        EXPECT_EQ(call(r.sssOp, nav), r.sssAnswer);
        EXPECT_EQ(call(r.navOp, gyro), r.navAnswer);  // any other type alike
        EXPECT_EQ(call(r.navOp, nullptr).first + call(r.sssOp, nullptr).first, 2 * 5000112);
    }
    // A navigation handle is not a simple sensor's, whatever its functions.
    double d;
    unsigned int u;
    EXPECT_EQ(GyroRead(nav, 1, &d, &d, &u), -1);
    EXPECT_EQ(NavigationClose(nav) + SSSNavigationClose(sss) + GyroClose(gyro), 0);
}

}  // namespace
