#include "svp/svp_test_support.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

using namespace velmio::test;

namespace {

// The cast time is the second date-time; the others are carried along.
const std::string kChsFile =
    "( SoundVelocity 1.01 1 200903240000 45.1233333 -63.5000000 -1 200903241230 200903241300 SVPEDITOR N 2 )\n"
    "0.00   1480.50\n"
    "10.00   1490.25\n"
    "( SoundVelocity 1.01 1 201001010000 -0.5000000 0.0000000 -1 201001010000 201001010000 SVPEDITOR N 1 )\n"
    "5.00   1500.00\n";

}  // namespace

TEST(SvpChs, FileReadsAndWritesBackUnchanged) {
    TempDir dir;
    writeText(dir.file("cast.chs"), kChsFile);
    CHSSvpFile f(dir.wfile("cast.chs").c_str());
    ASSERT_EQ(f.ReadInData(), 0);
    const std::vector<Cast> expected = {
        {utc(2009, 83, 12, 30, 0), L"45:07:24", L"-63:30:00", {{0.0, 1480.5}, {10.0, 1490.25}}},
        {utc(2010, 1, 0, 0, 0), L"-0:30:00", L"0:00:00", {{5.0, 1500.0}}}};
    EXPECT_EQ(liveCasts(f), expected);
    EXPECT_EQ(f.GetHeader(), kChsFile.substr(0, kChsFile.find('\n')));

    ASSERT_EQ(f.UpdateDataFile(), 0);
    EXPECT_EQ(readText(dir.file("cast.chs")), kChsFile);
}

TEST(SvpChs, HeadersFollowPositionAndCountOrAreMadeForNewCasts) {
    TempDir dir;
    writeText(dir.file("cast.chs"), kChsFile);
    CHSSvpFile f(dir.wfile("cast.chs").c_str());
    ASSERT_EQ(f.ReadInData(), 0);
    const double first = utc(2009, 83, 12, 30, 0);
    f.RemoveSvpValue(first, 0.0);
    f.SetSvpSection(first, L"-45:07:24", L"63:30:00");
    f.RemoveSection(utc(2010, 1, 0, 0, 0));
    const double added = utc(2011, 32, 6, 5, 59);  // seconds do not survive
    f.SetSvpSection(added, L"1:00:00", L"-2:00:00");
    f.AddSvpValue(added, 1.004, 1500.0);
    ASSERT_EQ(f.UpdateDataFile(), 0);
    EXPECT_EQ(readText(dir.file("cast.chs")),
              "( SoundVelocity 1.01 1 200903240000 -45.1233333 63.5000000 -1 200903241230 200903241300 SVPEDITOR N 1 )\n"
              "10.00   1490.25\n"
              "( SoundVelocity 1.01 1 201102010605 1.0000000 -2.0000000 -1 201102010605 201102010605 SVPEDITOR N 1 )\n"
              "1.00   1500.00\n");
}

TEST(SvpChs, HeadersAreStrictAndValueLinesLenient) {
    TempDir dir;
    const std::string header =
        "( SoundVelocity 1.01 1 200903240000 45.1233333 -63.5000000 -1 200903241230 200903241300 SVPEDITOR N 2 )\n";
    writeText(dir.file("a"), "0.0 1500\n" + header + "\nabc\n1.0 1500 extra\n2.0\n3.0 inf\n");
    CHSSvpFile f(dir.wfile("a").c_str());
    ASSERT_EQ(f.ReadInData(), 0);
    const std::vector<std::pair<double, double>> kept = {{1.0, 1500.0}};
    EXPECT_EQ(liveCasts(f).at(0).values, kept);

    for (const char *bad : {"( SoundVelocity 1.01 1 200903240000 45.1 -63.5 -1 200903241230\n",
                            "( SoundVelocty 1.01 1 200903240000 45.1 -63.5 -1 200903241230 0 S N 2 )\n",
                            "( SoundVelocity 1.01 1 200903240000 45.1 -63.5 -1 200913241230 0 S N 2 )\n",
                            "( SoundVelocity 1.01 1 200903240000 95.1 -63.5 -1 200903241230 0 S N 2 )\n",
                            "( SoundVelocity 1.01 1 0 45.1 -63.5 -1 -200903241230 0 S N 2 )\n"}) {
        writeText(dir.file("b"), bad);
        f.SetFileName(dir.wfile("b").c_str());
        EXPECT_EQ(f.ReadInData(), 5016009) << bad;
    }
    f.SetFileName(dir.wfile("missing").c_str());
    EXPECT_EQ(f.ReadInData(), 5016011);

    std::string shortHeader = "( SoundVelocity 1.01 )";
    EXPECT_EQ(CHSSvpFile::UpdateHeader(shortHeader, 1.0, 2.0, 3), 5016009);
    EXPECT_EQ(shortHeader, "( SoundVelocity 1.01 )");
}
