// UTM, GK and grid convergence against GeographicLib's exact transverse
// Mercator (Lee's elliptic-function solution, good to nanometres).
#include <velmio/geodesy.h>

#include <GeographicLib/TransverseMercatorExact.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>

namespace {

constexpr double kDeg = 3.14159265358979323846 / 180.0;
constexpr double kA = 6378137.0, kF = 1 / 298.257223563, kB = kA * (1 - kF);  // WGS84
constexpr double kBesselA = 6377397.155, kBesselF = 1 / 299.1528128;

struct Family {
    const char *name;
    double *(*forward)(double, double, double, double, int *, double *, double *, int);
    double *(*inverse)(double *, double *, double, double, int, double, double);
    double a, f, k0;
    int zone;
    double meridianDeg;
};

// Prints, for points up to each band's distance from the central meridian
// and latitudes up to 84 degrees, the largest forward error (mm), inverse
// error of exact coordinates (rad) and round-trip error (rad); asserts the
// working band of 3.5 degrees (a zone and its overlap).
void checkFamily(const Family &fam) {
    const GeographicLib::TransverseMercatorExact exact(fam.a, fam.f, fam.k0);
    const double b = fam.a * (1 - fam.f), bands[] = {1, 2, 3, 3.5, 5, 7, 10};
    double worst[7][3] = {};
    for (double lat = -84; lat <= 84; lat += 1.5) {
        for (double l = -10; l <= 10; l += 0.25) {
            const double lon = fam.meridianDeg + l;
            double x, y, n, e, rlat, rlon, ilat, ilon;
            exact.Forward(fam.meridianDeg, lat, lon, x, y);
            int zone = fam.zone;
            fam.forward(lat * kDeg, lon * kDeg, fam.a, b, &zone, &n, &e, 1);
            fam.inverse(&rlat, &rlon, fam.a, b, fam.zone, n, e);
            fam.inverse(&ilat, &ilon, fam.a, b, fam.zone, y, x + 500000.0);
            const double err[3] = {std::hypot(e - 500000.0 - x, n - y) * 1000,
                                   std::max(std::fabs(ilat - lat * kDeg), std::fabs(ilon - lon * kDeg)),
                                   std::max(std::fabs(rlat - lat * kDeg), std::fabs(rlon - lon * kDeg))};
            for (int i = 0; i < 7; ++i)
                for (int k = 0; k < 3 && std::fabs(l) <= bands[i]; ++k) worst[i][k] = std::max(worst[i][k], err[k]);
        }
    }
    std::cout << "| " << fam.name << ": degrees off meridian | forward (mm) | inverse (rad) | round trip (rad) |\n";
    for (int i = 0; i < 7; ++i)
        std::cout << "| " << bands[i] << " | " << worst[i][0] << " | " << worst[i][1] << " | " << worst[i][2] << " |\n";
    EXPECT_LT(worst[3][0], 2.0);
    EXPECT_LT(worst[3][1], 1e-9);
    EXPECT_LT(worst[3][2], 1e-9);
}

}  // namespace

TEST(UtmProjection, MatchesExactTransverseMercatorWithinZone) {
    checkFamily({"UTM", UTMMapProj, UTMInvMapProj, kA, kF, 0.9996, 31, 3.0});
}

TEST(GkProjection, MatchesExactTransverseMercatorWithinZone) {
    checkFamily({"GK", GKMapProj, GKInvMapProj, kBesselA, kBesselF, 1.0, 4, 9.0});
}

TEST(GridConvergence, MatchesExactTransverseMercator) {
    const GeographicLib::TransverseMercatorExact exact(kA, kF, 0.9996);
    for (double lat = -84; lat <= 84; lat += 3) {
        for (double lon = -6; lon < 6; lon += 0.25) {  // zones 30 and 31
            int zone = 0;
            const double gamma = UTMGridConv(lat * kDeg, lon * kDeg, kA, kB, &zone);
            ASSERT_EQ(lon < 0 ? 30 : 31, zone);
            double x, y, gammaDeg, k;
            exact.Forward(6.0 * zone - 183.0, lat, lon, x, y, gammaDeg, k);
            ASSERT_NEAR(gammaDeg * kDeg, gamma, 1e-9) << lat << " " << lon;
        }
    }
}

TEST(UtmProjection, DerivesOrHonoursZoneWithoutFalseNorthing) {
    int zone = 0;
    double n31, e31, n30, e30, east;
    EXPECT_EQ(1, (UTMMapProj(0.8, -180 * kDeg, kA, kB, &zone, &n31, &e31, 7), zone));  // only 1 is "given"
    EXPECT_EQ(61, (UTMMapProj(0.8, 180 * kDeg, kA, kB, &zone, &n31, &e31, 0), zone));
    // Greenwich is 3 degrees west of zone 31's meridian and 3 east of zone 30's.
    UTMMapProj(-0.8, 0.0, kA, kB, &zone, &n31, &e31, 0);
    EXPECT_EQ(31, zone);
    zone = 30;
    UTMMapProj(0.8, 0.0, kA, kB, &zone, &n30, &e30, 1);
    EXPECT_EQ(30, zone);
    EXPECT_DOUBLE_EQ(-n31, n30);  // southern northings are negative
    EXPECT_NEAR(1000000.0 - e31, e30, 1e-8);
    EXPECT_EQ(&east, UTMMapProj(0.8, 3 * kDeg, kA, kB, nullptr, nullptr, &east, 0));
    EXPECT_NEAR(500000.0, east, 1e-8);  // 3 degrees and the zone's meridian differ in the last bit
}

TEST(GkProjection, CountsThreeDegreeZonesFromGreenwich) {
    int zone = 0;
    double n, e;
    GKMapProj(0.9, 0.0, kA, kB, &zone, &n, &e, 0);
    EXPECT_EQ(1, zone);
    EXPECT_EQ(500000.0, e);
    EXPECT_EQ(4, (GKMapProj(0.9, 10 * kDeg, kA, kB, &zone, &n, &e, 0), zone));  // meridian 9 degrees
    EXPECT_EQ(0, (GKMapProj(0.9, -4 * kDeg, kA, kB, &zone, &n, &e, 0), zone));
}

TEST(UtmProjection, InverseWrapsOnlyAtAntimeridianZonesAndSurvivesBadInput) {
    auto roundTrip = [](int zone, double lonDeg) {
        double n, e, lat, lon;
        UTMMapProj(0.2, lonDeg * kDeg, kA, kB, &zone, &n, &e, 1);
        return *UTMInvMapProj(&lat, &lon, kA, kB, zone, n, e) / kDeg;
    };
    EXPECT_NEAR(-179.0, roundTrip(60, 181.0), 1e-7);
    EXPECT_NEAR(179.0, roundTrip(1, -181.0), 1e-7);
    EXPECT_NEAR(181.0, roundTrip(61, 181.0), 1e-7);
    // NaN ends the footpoint iteration; a huge longitude saturates the zone.
    double lat = 0, lon = 0, n = 0, e = 0;
    int zone = 0;
    UTMInvMapProj(&lat, &lon, kA, kB, 31, std::nan(""), 500000.0);
    EXPECT_TRUE(std::isnan(lat));
    UTMMapProj(0.1, 1e300, kA, kB, &zone, &n, &e, 0);
    EXPECT_EQ(std::numeric_limits<int>::max(), zone);
}
