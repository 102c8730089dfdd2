#include "svp/svp_test_support.h"
#include "support/test_support.h"

#include <gtest/gtest.h>

using namespace velmio::test;

namespace {

const std::string kDatFile =
    "Lat ,Lon ,Depth ,Date Time, Temp ,Vel\n"
    "+45.1234 ,-63.5000 ,+005.000 ,24/03/2009 12:30:05, +12.5000 ,+1480.5000\n"
    "+45.1234 ,-63.5000 ,+010.000 ,24/03/2009 12:30:05,  +0.0000 ,+1490.2500\n"
    " -5.2500 , +0.0000 ,+005.000 ,25/03/2009 08:00:00,  -1.7500 ,+1500.0000\n";

const std::string kEdfFile =
    "Ship          :  Survey One\n"
    "Latitude      :  45  7.400N\n"
    "Longitude     :  63 30.000W\n"
    "Date of Cast  :  24/03/2009\n"
    "Time of Cast  :  12:30:05\n"
    "Depth (m)  Temperature (C)  Velocity (m/s)\n"
    "0.5 12.50 1480.50\n"
    "10.0 0.00 1490.25\n"
    "Latitude      :  0 30.000S\n"
    "Longitude     :  0  0.000E\n"
    "Date of Cast  :  01/01/2010\n"
    "Time of Cast  :  00:00:00\n"
    "Depth (m)  Temperature (C)  Velocity (m/s)\n"
    "5.0 -1.75 1500.00\n";

}  // namespace

TEST(SvpRanDat, FileReadsAndWritesBackUnchanged) {
    TempDir dir;
    RANSvpFile_Dat f;
    ASSERT_EQ(readInto(f, dir, "cast.dat", kDatFile), 0);
    const std::vector<Cast> expected = {
        {utc(2009, 83, 12, 30, 5), L"45:07:24.24", L"-63:30:0.00", {{5.0, 1480.5}, {10.0, 1490.25}}},
        {utc(2009, 84, 8, 0, 0), L"-5:15:0.00", L"00:00:0.00", {{5.0, 1500.0}}}};
    EXPECT_EQ(liveCasts(f), expected);
    ASSERT_EQ(f.GetDataList().size(), 3u);
    EXPECT_EQ(f.GetDataList()[2].temperature, -1.75);
    EXPECT_EQ(f.GetTitle(), "Lat ,Lon ,Depth ,Date Time, Temp ,Vel");

    ASSERT_EQ(f.UpdateDataFile(), 0);
    EXPECT_EQ(readText(dir.file("cast.dat")), kDatFile);
}

TEST(SvpRanDat, NewValuesGetDayMonthYearAndNoTemperature) {
    TempDir dir;
    RANSvpFile_Dat f(dir.wfile("new.dat").c_str());
    const double t = utc(2009, 83, 12, 30, 5);
    f.SetSvpSection(t, L"-45:07:24.24", L"63:30:00");
    f.AddSvpValue(t, 7.5, 1481.0);
    ASSERT_EQ(f.UpdateDataFile(), 0);
    EXPECT_EQ(readText(dir.file("new.dat")),
              "Latitude ,Longitude ,Depth ,Date Time, Temperature ,Velocity\n"
              "-45.1234 ,+63.5000 ,+007.500 ,24/03/2009 12:30:05,  +0.0000 ,+1481.0000\n");
}

TEST(SvpRanDat, LinesOutsideTheRulesAreRejected) {
    RANSvpFile_Dat::DataLine d;
    const std::string good = "+45.1234 ,-63.5000 ,+005.000 ,24/03/09 12:30:05, +12.5000 ,+1480.5000";
    ASSERT_TRUE(RANSvpFile_Dat::DecodeData(good, d));
    EXPECT_EQ(d.time, utc(2009, 83, 12, 30, 5));  // two-digit year
    for (const char *bad : {"+45.1234 ,-63.5000 ,+005.000 ,24/03/2009 12:30:05, +12.5000 ,+999.9000",
                            "+45.1234 ,-63.5000 ,+005.000 ,24/03/2009 12:30:05, +12.5000 ,+2000.0100",
                            "+45.1234 ,-63.5000 ,+000.000 ,24/03/2009 12:30:05, +12.5000 ,+1480.5000",
                            "+45.1234 ,-63.5000 ,+005.000 ,31/02/2009 12:30:05, +12.5000 ,+1480.5000",
                            "+45.1234 ,-63.5000 ,+005.000 ,24/03/2009 24:30:05, +12.5000 ,+1480.5000",
                            "+95.1234 ,-63.5000 ,+005.000 ,24/03/2009 12:30:05, +12.5000 ,+1480.5000",
                            "+45.1234 ,-63.5000 ,5m ,24/03/2009 12:30:05, +12.5000 ,+1480.5000",
                            "+45.1234 ,-63.5000 ,+005.000 ,24/03/2009 12:30:05"})
        EXPECT_FALSE(RANSvpFile_Dat::DecodeData(bad, d)) << bad;

    TempDir dir;
    RANSvpFile_Dat f;
    EXPECT_EQ(readInto(f, dir, "bad.dat", kDatFile + "+45.1 ,-63.5 ,+005.000 ,24/03/2009 12:30:05, +1.0 ,+999.9\n"),
              5016009);
    EXPECT_EQ(liveCasts(f).size(), 2u);
    EXPECT_EQ(readInto(f, dir, "title.dat", "title only\n"), 0);
    EXPECT_EQ(f.GetSections(), nullptr);
    f.SetFileName(dir.wfile("missing").c_str());
    EXPECT_EQ(f.ReadInData(), 5016011);
}

TEST(SvpRanEdf, FileReadsAndWritesBackUnchanged) {
    TempDir dir;
    RANSvpFile_Edf f;
    ASSERT_EQ(readInto(f, dir, "cast.edf", kEdfFile), 0);
    const std::vector<Cast> expected = {
        {utc(2009, 83, 12, 30, 5), L"45:07:24", L"-063:30:00", {{0.5, 1480.5}, {10.0, 1490.25}}},
        {utc(2010, 1, 0, 0, 0), L"-00:30:00", L"000:00:00", {{5.0, 1500.0}}}};
    EXPECT_EQ(liveCasts(f), expected);
    ASSERT_EQ(f.GetHeaderValues().size(), 2u);
    EXPECT_EQ(f.GetHeaderValues()[0].otherLines, std::vector<std::string>{"Ship          :  Survey One"});
    EXPECT_EQ(f.GetDataList().at(2).temperature, -1.75);

    ASSERT_EQ(f.UpdateDataFile(), 0);
    EXPECT_EQ(readText(dir.file("cast.edf")), kEdfFile);
}

TEST(SvpRanEdf, KeywordsIgnoreCaseAndRowsAreFiltered) {
    TempDir dir;
    RANSvpFile_Edf f;
    ASSERT_EQ(readInto(f, dir, "a.edf",
                       "DATE OF CAST:24/3/09\ntime of cast: 12:30:05\nDEPTH (M)\n"
                       "0.0 1.0 1500\n5.0 1.0 999.9\n10.004 1.0 1490\n12.0 1.0 2000.1\n"),
              0);
    const std::vector<Cast> expected = {{utc(2009, 83, 12, 30, 5), L"00:00:00", L"00:00:00", {{10.0, 1490.0}}}};
    EXPECT_EQ(liveCasts(f), expected);

    const std::string head = "Date of Cast  :  24/03/2009\nTime of Cast  :  12:30:05\n";
    EXPECT_EQ(readInto(f, dir, "row.edf", head + "Depth (m)\n5.0 1490.0\n"), 5016009);
    EXPECT_EQ(readInto(f, dir, "nodate.edf", "Time of Cast  :  12:30:05\nDepth (m)\n5.0 1.0 1490.0\n"), 5016009);
    EXPECT_EQ(readInto(f, dir, "month.edf", "Date of Cast  :  24/13/2009\nTime of Cast  :  12:30:05\nDepth (m)\n"),
              5016009);
    EXPECT_EQ(readInto(f, dir, "lat.edf", "Latitude      :  95  7.400N\n" + head + "Depth (m)\n"), 5016009);
    EXPECT_EQ(readInto(f, dir, "hemi.edf", "Latitude      :  45  7.400E\n" + head + "Depth (m)\n"), 5016009);
    EXPECT_EQ(readInto(f, dir, "head.edf", head), 0);
    EXPECT_EQ(f.GetSections(), nullptr);
}
