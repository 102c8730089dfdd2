#include "svp/svp_test_support.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

#include <clocale>
#include <sys/stat.h>

using namespace velmio::test;

TEST(SvpNative, Version2FileReadsAndWritesBackUnchanged) {
    TempDir dir;
    const std::string text = "[SVP_VERSION_2]\n" + dir.file("cast.svp") +
                             "\n"
                             "Section 2009-083 12:30:05 45:07:24.50 -63:30:0.00\n"
                             "  0.000000 1480.500000\n"
                             "  10.000000 1490.250000\n"
                             "Section 2010-001 00:00:00 -0:30:0.00 00:00:0.00\n"
                             "  5.000000 1500.000000\n";
    VelmSvpFile f;
    ASSERT_EQ(readInto(f, dir, "cast.svp", text), 0);
    const std::vector<Cast> expected = {
        {utc(2009, 83, 12, 30, 5), L"45:07:24.50", L"-63:30:0.00", {{0.0, 1480.5}, {10.0, 1490.25}}},
        {utc(2010, 1, 0, 0, 0), L"-0:30:0.00", L"00:00:0.00", {{5.0, 1500.0}}}};
    EXPECT_EQ(liveCasts(f), expected);

    writeText(dir.file("cast.svp"), "changed");
    ASSERT_EQ(f.UpdateDataFile(), 0);
    EXPECT_EQ(readText(dir.file("cast.svp")), text);
}

TEST(SvpNative, Version2KeepsOnlyDeeperValuesInRange) {
    TempDir dir;
    VelmSvpFile f;
    ASSERT_EQ(readInto(f, dir, "f.svp",
                           "[SVP_VERSION_2]\nf.svp\n  1.0 1500.0\n"
                           "Section 2009-083 12:30 -45:07:24.50 063:30:00.00\n"
                           "  0 1500\n  5 1500\n\n  5 1501\n  3 1500\n  abc\n  -1 1500\n"
                           "  10 1399.99\n  11 2000.01\n  12 1400\n  13 2000\n  14 1500 extra\n  20\n"),
              0);
    const std::vector<Cast> expected = {{utc(2009, 83, 12, 30, 0), L"-45:07:24.50", L"63:30:0.00",
                                         {{0, 1500}, {5, 1500}, {12, 1400}, {13, 2000}, {14, 1500}}}};
    EXPECT_EQ(liveCasts(f), expected);
}

TEST(SvpNative, Version1IsUnfilteredButStrict) {
    TempDir dir;
    VelmSvpFile f;
    ASSERT_EQ(readInto(f, dir, "v1", "Probe 7\nSection 1998-123 12:30\n\n  5 1399\n  3 2100\r\nSection 1998-124 00:15\n  1 1500\n"),
              0);
    const std::vector<Cast> expected = {
        {utc(1998, 123, 12, 30, 0), L"00:00:00", L"000:00:00", {{5, 1399}, {3, 2100}}},
        {utc(1998, 124, 0, 15, 0), L"00:00:00", L"000:00:00", {{1, 1500}}}};
    EXPECT_EQ(liveCasts(f), expected);

    EXPECT_EQ(readInto(f, dir, "bad", "Section 1998-123 12:30\n  5 1500\n  five 1500\n  6 1500\n"), 5016009);
    ASSERT_EQ(liveCasts(f).size(), 1u);
    EXPECT_EQ(liveCasts(f)[0].values.size(), 1u);  // what came before the bad line stays
    EXPECT_EQ(readInto(f, dir, "short", "Section 1998-123\n  5 1500\n"), 5016009);
    EXPECT_EQ(readInto(f, dir, "orphan", "Title\n  5 1500\n"), 5016009);
}

TEST(SvpNative, EmptyPositionsAndRemovedEntriesAreWrittenAsTheFormatSays) {
    TempDir dir;
    const double t = utc(2009, 83, 12, 30, 5);
    VelmSvpFile f(dir.wfile("out.svp").c_str());
    f.SetSvpSection(t, L"", L"");
    f.AddSvpValue(t, 5.0, 1500.0);
    f.AddSvpValue(t, 10.0, 1490.25);
    f.RemoveSvpValue(t, 5.0);
    f.SetSvpSection(t + 60.0, L"1:00:00", L"2:00:00");
    f.RemoveSection(t + 60.0);
    ASSERT_EQ(f.UpdateDataFile(), 0);
    EXPECT_EQ(readText(dir.file("out.svp")), "[SVP_VERSION_2]\n" + dir.file("out.svp") +
                                                 "\nSection 2009-083 12:30:05 00 00 00 000 00 00\n"
                                                 "  10.000000 1490.250000\n");
    VelmSvpFile back(dir.wfile("out.svp").c_str());
    ASSERT_EQ(back.ReadInData(), 0);
    const std::vector<Cast> expected = {{t, L"00:00:0.00", L"00:00:0.00", {{10.0, 1490.25}}}};
    EXPECT_EQ(liveCasts(back), expected);
}

TEST(SvpNative, HostileFilesGiveCodesNotCrashes) {
    TempDir dir;
    VelmSvpFile f(dir.wfile("missing").c_str());
    EXPECT_EQ(f.ReadInData(), 5016011);
    EXPECT_EQ(readInto(f, dir, "empty", ""), 0);
    EXPECT_EQ(readInto(f, dir, "header", "[SVP_VERSION_2]\n"), 0);
    EXPECT_EQ(f.GetSections(), nullptr);
    // A file name line that begins like a section line is still a name.
    EXPECT_EQ(readInto(f, dir, "named", "[SVP_VERSION_2]\nSection.svp\nSection 2009-083 12:30:05 00:00:00 000:00:00\n"), 0);
    EXPECT_EQ(liveCasts(f).size(), 1u);

    const std::string section = "[SVP_VERSION_2]\nx\nSection 2009-083 12:30:05 00:00:00 000:00:00\n";
    // The tail of a line longer than 256 characters is dropped, not read as a line.
    ASSERT_EQ(readInto(f, dir, "long", section + "  10.0 1500.0" + std::string(250, ' ') + "20.0 1510.0\n  30.0 1520.0\n"), 0);
    const std::vector<std::pair<double, double>> kept = {{10.0, 1500.0}, {30.0, 1520.0}};
    EXPECT_EQ(liveCasts(f)[0].values, kept);

    EXPECT_EQ(readInto(f, dir, "day", "[SVP_VERSION_2]\nSection 2009-400 12:30:05 00:00:00 000:00:00\n"), 5016009);
    EXPECT_EQ(readInto(f, dir, "lat", "[SVP_VERSION_2]\nSection 2009-083 12:30:05 95:00:00 000:00:00\n"), 5016009);
    EXPECT_EQ(readInto(f, dir, "words", "[SVP_VERSION_2]\nSection of the cast\n"), 5016009);
}

// Failures under every file operation are the fault tests' part; here, the
// text a failure leaves and the permissions a replacement keeps.
TEST(SvpNative, FailedWriteSaysWhyAndReplacementKeepsPermissions) {
    TempDir dir;
    VelmSvpFile f(dir.wfile("no/such/dir.svp").c_str());
    f.SetSvpSection(utc(2009, 83, 12, 30, 5), L"", L"");
    EXPECT_EQ(f.UpdateDataFile(), -1);
    EXPECT_STRNE(f.GetErrorText(), L"");

    writeText(dir.file("old.svp"), "old");
    ::chmod(dir.file("old.svp").c_str(), 0640);
    f.SetFileName(dir.wfile("old.svp").c_str());
    ASSERT_EQ(f.UpdateDataFile(), 0);
    struct stat st;
    ASSERT_EQ(::stat(dir.file("old.svp").c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0640u);
    EXPECT_NE(readText(dir.file("old.svp")), "old");
}

TEST(SvpNative, DecimalCommaLocaleChangesNothing) {
    const char *previous = std::setlocale(LC_ALL, nullptr);
    std::string saved = previous ? previous : "C";
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8") && !std::setlocale(LC_ALL, "de_DE.utf8"))
        GTEST_SKIP() << "no decimal-comma locale installed";
    TempDir dir;
    VelmSvpFile f;
    int rc = readInto(f, dir, "c.svp", "[SVP_VERSION_2]\nc\nSection 2009-083 12:30:05 45:07:24.50 000:00:00\n  2.5 1480.5\n");
    int written = f.UpdateDataFile();
    std::setlocale(LC_ALL, saved.c_str());
    ASSERT_EQ(rc, 0);
    ASSERT_EQ(written, 0);
    const std::vector<std::pair<double, double>> values = {{2.5, 1480.5}};
    EXPECT_EQ(liveCasts(f)[0].values, values);
    EXPECT_NE(readText(dir.file("c.svp")).find("  2.500000 1480.500000\n"), std::string::npos);
}
