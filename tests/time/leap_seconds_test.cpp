// The TAI-UTC table against the leap-second list that Debian's tzdata ships.
#include <velmio/time_conversions.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

// (NTP seconds since 1900 at which the offset starts, TAI-UTC)
std::vector<std::pair<long long, int>> loadLeapList() {
    std::vector<std::pair<long long, int>> rows;
    for (const char *path : {"/usr/share/zoneinfo/leap-seconds.list", "/usr/share/zoneinfo/leapseconds"}) {
        std::ifstream in(path);
        std::string line;
        while (std::getline(in, line)) {
            if (line.empty() || line[0] == '#') continue;
            std::istringstream fields(line);
            long long ntp;
            int offset;
            if (fields >> ntp >> offset) rows.emplace_back(ntp, offset);
        }
        if (!rows.empty()) break;
    }
    return rows;
}

bool isLeap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

// The two half-years in which the table has always given one second more than
// the leap-second list: its rows start 27 s on 1992-001 (the leap second came
// on 1992-07-01, day 183) and 31 s on 1997-001 (it came on 1997-07-01, day 182).
bool inKnownTableDeviation(int year, int day) {
    return (year == 1992 && day < 183) || (year == 1997 && day < 182);
}

}  // namespace

TEST(LeapSeconds, TableAgreesWithTzdataFrom1980To2009) {
    const auto rows = loadLeapList();
    if (rows.empty()) GTEST_SKIP() << "tzdata's leap-seconds.list is not installed";
    const long long ntp1980 = 2524521600LL;  // 1980-01-01 in NTP seconds
    long long daysSince1980 = 0;
    int deviations = 0;
    for (int year = 1980; year <= 2009; ++year) {
        const int length = isLeap(year) ? 366 : 365;
        for (int day = 1; day <= length; ++day, ++daysSince1980) {
            const long long ntp = ntp1980 + daysSince1980 * 86400;
            int expected = 0;
            for (const auto &r : rows)
                if (r.first <= ntp) expected = r.second;
            const int got = TmGetTAIUTCOffset(year, day);
            if (inKnownTableDeviation(year, day)) {
                ++deviations;
                ASSERT_EQ(got, expected + 1) << year << "-" << day;
            } else {
                ASSERT_EQ(got, expected) << year << "-" << day;
            }
            ASSERT_DOUBLE_EQ(TmYDStoUTCs80(year, day, 0.0), daysSince1980 * 86400.0 + (got - 19))
                << year << "-" << day;
            int y, d;
            double s;
            TmUTCs80toYDS(TmYDStoUTCs80(year, day, 3600.0), &y, &d, &s);
            ASSERT_EQ(y, year);
            ASSERT_EQ(d, day);
            ASSERT_DOUBLE_EQ(s, 3600.0);
        }
    }
    EXPECT_EQ(deviations, 182 + 181);
}

TEST(LeapSeconds, TableKeepsItsGapAndKnowsNothingAfter2009) {
    // (year, day, TAI-UTC); 2006-200 lies in the gap between the last two rows.
    const int cases[][3] = {{1975, 100, 19}, {2006, 200, 33}, {2009, 300, 34}, {2030, 1, 34}, {2147483, 999, 34}};
    for (const auto &c : cases) EXPECT_EQ(TmGetTAIUTCOffset(c[0], c[1]), c[2]) << c[0] << "-" << c[1];
}
