// HorizDatumLookup: the datum file named by "kbvXdatum" and the one
// remembered match.
#include <velmio/geodesy.h>

#include "support/test_support.h"

#include <clocale>
#include <cstdlib>
#include <string>

using velmio::test::TempDir;
using velmio::test::writeText;

namespace {

// The remembered match lives for the whole process: a failed open forgets it.
void forgetRemembered() {
    setenv("kbvXdatum", "/nonexistent/velmio/datums.txt", 1);
    double x, y;
    HorizDatumLookup(L"none-such", &x, &y);
}

const std::string kFile =
    "!WGS8 1.0 2.0\n"
    "!" + std::string(254, '-') + "WGS8 3.0 4.0\n"  // the rest of a long line is no line of its own
    "wgs8 6378137.0 298.257223563\n"
    "WGS8 9.0 9.0\n"
    "GRS8 6378137.0 298.257222101" + std::string(300, ' ') + "trailing remark\n"
    "BAD1 6378137.0\n";

}  // namespace

// In a decimal-comma locale where there is one: the file's numbers are not
// the caller's locale's.
TEST(HorizDatumLookup, MatchesFirstFourCharactersAndReadsFromTheFifth) {
    forgetRemembered();
    TempDir dir;
    writeText(dir.file("datums.txt"), kFile);
    setenv("kbvXdatum", dir.file("datums.txt").c_str(), 1);
    std::setlocale(LC_ALL, "de_DE.utf8");
    double a = -1, f = -1;
    const int rc = HorizDatumLookup(L"WGS84", &a, &f);
    std::setlocale(LC_ALL, "C");
    ASSERT_EQ(0, rc);
    EXPECT_EQ(6378137.0, a);
    EXPECT_EQ(298.257223563, f);
    EXPECT_EQ(0, HorizDatumLookup(L"grs80", &a, &f));
    EXPECT_EQ(298.257222101, f);

    EXPECT_EQ(-1, HorizDatumLookup(L"NAD27", &a, &f));
    EXPECT_EQ(0.0, a);
    EXPECT_EQ(0.0, f);
    EXPECT_EQ(-1, HorizDatumLookup(L"BAD1", &a, &f));  // one number only
    EXPECT_EQ(-1, HorizDatumLookup(L"ED5", &a, &f));    // too short to compare four characters
    EXPECT_EQ(-1, HorizDatumLookup(nullptr, &a, &f));
}

TEST(HorizDatumLookup, AnswersRepeatedNameWithoutReadingTheFile) {
    forgetRemembered();
    TempDir dir;
    writeText(dir.file("d.txt"), "CLRK 6378206.4 294.98\n");
    setenv("kbvXdatum", dir.file("d.txt").c_str(), 1);
    double a = 0, f = 0;
    ASSERT_EQ(0, HorizDatumLookup(L"Clrk66", &a, &f));
    writeText(dir.file("d.txt"), "CLRK 1.0 2.0\n");
    unsetenv("kbvXdatum");
    ASSERT_EQ(0, HorizDatumLookup(L"CLRK66", &a, &f));  // same name in another case
    EXPECT_EQ(6378206.4, a);
    EXPECT_EQ(-1, HorizDatumLookup(L"Clrk80", &a, &f));  // another name needs the file
    EXPECT_EQ(0.0, a);

    // A file that cannot be opened drops the remembered match.
    setenv("kbvXdatum", dir.file("gone.txt").c_str(), 1);
    EXPECT_EQ(-1, HorizDatumLookup(L"Clrk80", &a, &f));
    setenv("kbvXdatum", dir.file("d.txt").c_str(), 1);
    ASSERT_EQ(0, HorizDatumLookup(L"Clrk66", &a, &f));
    EXPECT_EQ(1.0, a);
}
