#include <velmio/time_conversions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {
struct Yds {
    int year = 0, day = 0;
    double seconds = 0;
};
Yds plus(int year, int day, double s, double add) {
    Yds r;
    TmYDSplusS(year, day, s, add, &r.year, &r.day, &r.seconds);
    return r;
}
}  // namespace

TEST(TimeConversions, UtcSecondsCountLeapSeconds) {
    EXPECT_DOUBLE_EQ(TmYDStoUTCs80(1981, 182, 0.0), 47260801.0);
    EXPECT_DOUBLE_EQ(TmYDStoUTCs80(1980, 1, 0.0), 0.0);
    EXPECT_DOUBLE_EQ(TmUTCs80toUTCs70(0.0), 315532800.0);
    EXPECT_DOUBLE_EQ(TmYDStoUTCs70(1980, 1, 0.0), 315532800.0);
    EXPECT_DOUBLE_EQ(TmYDStoUTCs70(1970, 1, 10.0), 10.0);
    int y, d;
    double s;
    TmUTCs80toYDS(47260801.0, &y, &d, &s);
    EXPECT_EQ(y, 1981);
    EXPECT_EQ(d, 182);
    EXPECT_DOUBLE_EQ(s, 0.0);
    // The inserted second itself reads as the last second of the day before.
    TmUTCs80toYDS(47260800.0, &y, &d, &s);
    EXPECT_EQ(y, 1981);
    EXPECT_EQ(d, 181);
    EXPECT_DOUBLE_EQ(s, 86399.0);
    TmUTCs70toYDS(315532800.0 + 86400.5, &y, &d, &s);
    EXPECT_EQ(y, 1980);
    EXPECT_EQ(d, 2);
    EXPECT_DOUBLE_EQ(s, 0.5);
}

TEST(TimeConversions, UtcToYdsSkipsNullOutputs) {
    int y = 7, d = 7;
    TmUTCs80toYDS(100.0, &y, &d, nullptr);
    EXPECT_EQ(y, 7);
    EXPECT_EQ(d, 7);
}

TEST(TimeConversions, PlusSecondsKeepsItsDeliberateYearEnd) {
    Yds r = plus(1999, 1, 0.0, 31535999.0);
    EXPECT_EQ(r.year, 1999);
    EXPECT_EQ(r.day, 365);
    EXPECT_DOUBLE_EQ(r.seconds, 86399.0);
    r = plus(1999, 1, 0.0, 31536000.0);  // exactly a year: stays as day 366
    EXPECT_EQ(r.year, 1999);
    EXPECT_EQ(r.day, 366);
    EXPECT_DOUBLE_EQ(r.seconds, 0.0);
    r = plus(2000, 1, 0.0, 366 * 86400.0 + 5.0);
    EXPECT_EQ(r.year, 2001);
    EXPECT_EQ(r.day, 1);
    EXPECT_DOUBLE_EQ(r.seconds, 5.0);
    // From a later starting day the seconds result is lowered by (day-1) days.
    r = plus(2001, 3, 10.0, 0.0);
    EXPECT_EQ(r.day, 3);
    EXPECT_DOUBLE_EQ(r.seconds, 10.0 - 2 * 86400.0);
}

TEST(TimeConversions, PlusSecondsCountsBackFromTheYearStart) {
    Yds r = plus(1980, 1, 0.0, -1.0);
    EXPECT_EQ(r.year, 1979);
    EXPECT_EQ(r.day, 365);
    EXPECT_DOUBLE_EQ(r.seconds, 86399.0);
    r = plus(1980, 1, 0.0, -86400.0);
    EXPECT_EQ(r.year, 1979);
    EXPECT_EQ(r.day, 365);
    EXPECT_DOUBLE_EQ(r.seconds, 0.0);
    r = plus(1980, 1, 0.0, -(365.0 + 365.0) * 86400.0 - 1.0);  // back through 1979 and 1978
    EXPECT_EQ(r.year, 1977);
    EXPECT_EQ(r.day, 365);
    EXPECT_DOUBLE_EQ(r.seconds, 86399.0);
}

TEST(TimeConversions, PlusSecondsRefusesBadInput) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (Yds r : {plus(1899, 1, 0.0, 1.0), plus(3001, 1, 0.0, 1.0), plus(2000, 0, 0.0, 1.0), plus(2000, 367, 0.0, 1.0),
                  plus(2000, 1, -1.0, 1.0), plus(2000, 1, nan, 1.0), plus(2000, 1, 0.0, nan),
                  plus(2000, 1, 0.0, 1e300), plus(1900, 1, 0.0, -1.0), plus(2999, 1, 0.0, 3.0e9)}) {
        EXPECT_EQ(r.year, -1);
        EXPECT_EQ(r.day, -1);
        EXPECT_DOUBLE_EQ(r.seconds, -1.0);
    }
    int y = 5;
    TmYDSplusS(2000, 1, 0.0, 1.0, &y, nullptr, nullptr);
    EXPECT_EQ(y, -1);
}

TEST(TimeConversions, DifferencesAreSignedAndNeedNoLoopForFarYears) {
    EXPECT_DOUBLE_EQ(TmYDSminusYDS(1980, 1, 0.0, 1981, 1, 10.0), 366 * 86400.0 + 10.0);
    EXPECT_DOUBLE_EQ(TmYDSminusYDS(1981, 1, 10.0, 1980, 1, 0.0), -(366 * 86400.0 + 10.0));
    EXPECT_DOUBLE_EQ(TmYDSminusYDS(2000, 60, 0.0, 2000, 61, 0.0), 86400.0);
    // 400 Gregorian years hold 146097 days.
    EXPECT_DOUBLE_EQ(TmYDSminusYDS(-2000000000, 1, 0.0, -1999999600, 1, 0.0), 146097.0 * 86400.0);
}

TEST(TimeConversions, CalendarDays) {
    EXPECT_EQ(TmYMDtoJD(2000, 3, 1), 61);
    EXPECT_EQ(TmYMDtoJD(2001, 3, 1), 60);
    EXPECT_EQ(TmYMDtoJD(2000, 13, 1), 0);
    EXPECT_EQ(TmYMDtoJD(2000, 1, 32), 0);
    EXPECT_EQ(TmYMDtoJD(2001, 2, 31), 62);  // 3 March, unchecked day
    int m = 0, d = 0;
    TmYJDtoMD(2000, 61, &m, &d);
    EXPECT_EQ(m, 3);
    EXPECT_EQ(d, 1);
    TmYJDtoMD(2001, 365, &m, &d);
    EXPECT_EQ(m, 12);
    EXPECT_EQ(d, 31);
}

TEST(TimeConversions, HoursMinutesSeconds) {
    int h, m, s;
    double f;
    TmStoHMSX(3725.5, &h, &m, &s, &f);
    EXPECT_EQ(h, 1);
    EXPECT_EQ(m, 2);
    EXPECT_EQ(s, 5);
    EXPECT_DOUBLE_EQ(f, 0.5);
    EXPECT_DOUBLE_EQ(TmHMSXtoS(1, 2, 5, 0.5), 3725.5);
    TmStoHMSX(std::numeric_limits<double>::quiet_NaN(), &h, &m, &s, nullptr);  // defined, no trap
    TmStoHMSX(1e300, &h, nullptr, nullptr, nullptr);
    EXPECT_EQ(h, 2147483647);
}
