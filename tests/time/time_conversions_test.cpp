#include <velmio/time_conversions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <ostream>
#include <vector>

namespace {
struct Yds {
    int year = 0, day = 0;
    double seconds = 0;
    bool operator==(const Yds &o) const { return year == o.year && day == o.day && seconds == o.seconds; }
};
std::ostream &operator<<(std::ostream &out, const Yds &t) { return out << t.year << "-" << t.day << " " << t.seconds; }
Yds plus(int year, int day, double s, double add) {
    Yds r;
    TmYDSplusS(year, day, s, add, &r.year, &r.day, &r.seconds);
    return r;
}
Yds of80(double utc) {
    Yds r;
    TmUTCs80toYDS(utc, &r.year, &r.day, &r.seconds);
    return r;
}
}  // namespace

TEST(TimeConversions, UtcSecondsCountLeapSeconds) {
    EXPECT_DOUBLE_EQ(TmUTCs80toUTCs70(0.0), 315532800.0);
    EXPECT_DOUBLE_EQ(TmYDStoUTCs70(1980, 1, 0.0), 315532800.0);
    EXPECT_DOUBLE_EQ(TmYDStoUTCs70(1970, 1, 10.0), 10.0);
    EXPECT_EQ(of80(47260801.0), (Yds{1981, 182, 0.0}));
    // The inserted second itself reads as the last second of the day before.
    EXPECT_EQ(of80(47260800.0), (Yds{1981, 181, 86399.0}));
    Yds r;
    TmUTCs70toYDS(315532800.0 + 86400.5, &r.year, &r.day, &r.seconds);
    EXPECT_EQ(r, (Yds{1980, 2, 0.5}));
    int y = 7, d = 7;
    TmUTCs80toYDS(100.0, &y, &d, nullptr);  // a missing output skips them all
    EXPECT_EQ(std::make_pair(y, d), std::make_pair(7, 7));
}

TEST(TimeConversions, PlusSecondsKeepsItsDeliberateYearEndAndCountsBackFromTheYearStart) {
    const struct {
        Yds from;
        double add;
        Yds expected;
    } cases[] = {
        {{1999, 1, 0.0}, 31535999.0, {1999, 365, 86399.0}},
        {{1999, 1, 0.0}, 31536000.0, {1999, 366, 0.0}},  // exactly a year: stays as day 366
        {{2000, 1, 0.0}, 366 * 86400.0 + 5.0, {2001, 1, 5.0}},
        {{2001, 3, 10.0}, 0.0, {2001, 3, 10.0 - 2 * 86400.0}},  // lowered by (day-1) days
        {{1980, 1, 0.0}, -1.0, {1979, 365, 86399.0}},
        {{1980, 1, 0.0}, -86400.0, {1979, 365, 0.0}},
        {{1980, 1, 0.0}, -(365.0 + 365.0) * 86400.0 - 1.0, {1977, 365, 86399.0}},  // back through 1979 and 1978
    };
    for (const auto &c : cases) EXPECT_EQ(plus(c.from.year, c.from.day, c.from.seconds, c.add), c.expected) << c.from;
}

TEST(TimeConversions, PlusSecondsRefusesBadInput) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (Yds r : {plus(1899, 1, 0.0, 1.0), plus(3001, 1, 0.0, 1.0), plus(2000, 0, 0.0, 1.0), plus(2000, 367, 0.0, 1.0),
                  plus(2000, 1, -1.0, 1.0), plus(2000, 1, nan, 1.0), plus(2000, 1, 0.0, nan),
                  plus(2000, 1, 0.0, 1e300), plus(1900, 1, 0.0, -1.0), plus(2999, 1, 0.0, 3.0e9)})
        EXPECT_EQ(r, (Yds{-1, -1, -1.0}));
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

TEST(TimeConversions, CalendarDaysAndClockTimes) {
    EXPECT_EQ(TmYMDtoJD(2000, 3, 1), 61);
    EXPECT_EQ(TmYMDtoJD(2001, 3, 1), 60);
    EXPECT_EQ(TmYMDtoJD(2000, 13, 1), 0);
    EXPECT_EQ(TmYMDtoJD(2000, 1, 32), 0);
    EXPECT_EQ(TmYMDtoJD(2001, 2, 31), 62);  // 3 March, unchecked day
    int m = 0, d = 0, m2 = 0, d2 = 0;
    TmYJDtoMD(2000, 61, &m, &d);
    TmYJDtoMD(2001, 365, &m2, &d2);
    EXPECT_EQ(std::vector<int>({m, d, m2, d2}), std::vector<int>({3, 1, 12, 31}));

    int h, min, s;
    double f;
    TmStoHMSX(3725.5, &h, &min, &s, &f);
    EXPECT_EQ(std::vector<double>({double(h), double(min), double(s), f}), std::vector<double>({1, 2, 5, 0.5}));
    EXPECT_DOUBLE_EQ(TmHMSXtoS(1, 2, 5, 0.5), 3725.5);
    TmStoHMSX(std::numeric_limits<double>::quiet_NaN(), &h, &min, &s, nullptr);  // defined, no trap
    TmStoHMSX(1e300, &h, nullptr, nullptr, nullptr);
    EXPECT_EQ(h, 2147483647);
}
