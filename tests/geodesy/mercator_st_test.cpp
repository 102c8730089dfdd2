// Mercator against GeographicLib's conformal latitude, and the ST plane.
#include <velmio/geodesy.h>

#include <GeographicLib/Math.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {
constexpr double kDeg = 3.14159265358979323846 / 180.0;
constexpr double kA = 6378137.0, kB = 6356752.314245;
}  // namespace

TEST(MercatorProjection, MatchesConformalLatitudeAndInverseReturnsIt) {
    MercatorMapProj *m = MercatorMapProjInit(kA, kB);
    ASSERT_NE(nullptr, m);
    const double e = std::sqrt(1 - (kB / kA) * (kB / kA));
    for (double deg = -85; deg <= 85; deg += 0.25) {
        const double y = MercatorMapProjLatitude(m, deg * kDeg);
        // The northing is a times the isometric latitude asinh(tan chi).
        ASSERT_NEAR(kA * std::asinh(GeographicLib::Math::taupf(std::tan(deg * kDeg), e)), y, 1e-6) << deg;
        ASSERT_NEAR(deg * kDeg, MercatorInvMapProjLatitude(m, y), 1e-12) << deg;
    }
    EXPECT_DOUBLE_EQ(0.3, MercatorInvMapProjLongitude(m, MercatorMapProjLongitude(m, 0.3)));
    // The bounded iteration ends at the poles and on NaN.
    EXPECT_NEAR(90 * kDeg, MercatorInvMapProjLatitude(m, MercatorMapProjLatitude(m, 90 * kDeg)), 1e-12);
    EXPECT_NEAR(-90 * kDeg, MercatorInvMapProjLatitude(m, MercatorMapProjLatitude(m, -90 * kDeg)), 1e-12);
    EXPECT_DOUBLE_EQ(90 * kDeg, MercatorInvMapProjLatitude(m, std::numeric_limits<double>::infinity()));
    EXPECT_TRUE(std::isnan(MercatorInvMapProjLatitude(m, std::nan(""))));
    EXPECT_TRUE(std::isnan(MercatorInvMapProjLatitude(nullptr, 1.0)));
    EXPECT_EQ(nullptr, MercatorMapProjInit(kB, kA));  // b > a
    MercatorMapProjFree(m);
}

// Values from the Clarke 1866 constant with the fourth root in N' (the usual
// prime vertical radius would give x = 4885.2346).
TEST(StProjection, ScalesWithClarkeConstantAndFourthRoot) {
    STMapProj *st = STMapProjInit(6378206.4, 12345.0, 0.7, -1.2);
    ASSERT_NE(nullptr, st);
    EXPECT_EQ(0.0, STMapProjLatitude(st, 0.7));
    EXPECT_EQ(0.0, STMapProjLongitude(st, -1.2));
    EXPECT_NEAR(4881.776719304, STMapProjLongitude(st, -1.199), 1e-6);
    EXPECT_NEAR(6361.709940683, STMapProjLatitude(st, 0.701), 1e-6);
    EXPECT_NEAR(-1.199, STInvMapProjLongitude(st, 4881.776719304), 1e-12);
    EXPECT_NEAR(0.701, STInvMapProjLatitude(st, 6361.709940683), 1e-12);
    ASSERT_EQ(0, STMapProjReInit(st, 6378206.4, 0.0, 0.0, 0.0));
    EXPECT_NEAR(6378.2064, STMapProjLongitude(st, 0.001), 1e-9);  // w = 1 on the equator
    EXPECT_EQ(-1, STMapProjReInit(st, -1.0, 0.0, 0.0, 0.0));
    EXPECT_NEAR(6378.2064, STMapProjLongitude(st, 0.001), 1e-9);  // left as it was
    EXPECT_EQ(-1, STMapProjReInit(nullptr, 6378206.4, 0.0, 0.0, 0.0));
    STMapProjFree(st);
}
