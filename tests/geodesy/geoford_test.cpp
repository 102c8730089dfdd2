// GeoFord against GeographicLib's direct geodesic (good to nanometres).
#include <velmio/geodesy.h>

#include <GeographicLib/Geodesic.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>

namespace {
constexpr double kDeg = 3.14159265358979323846 / 180.0;
constexpr double kA = 6378137.0, kF = 1 / 298.257223563, kE2 = kF * (2 - kF);
}  // namespace

// Clarke's formula follows the normal section, which leaves the geodesic of
// the same azimuth sideways by up to e'^2 s^3 / (12 N^2): 1.4 cm at 100 km.
// The bound is that leading term with a 10% margin for the next ones, plus a
// micrometre for rounding. Start longitude 10 degrees east is -10 in
// GeoFord's westward-positive count.
TEST(GeoFordDirect, StaysWithinNormalSectionErrorOfGeodesic) {
    const GeographicLib::Geodesic geod(kA, kF);
    std::cout << "| distance (m) | max error (m) |\n";
    for (double distance : {10.0, 100.0, 1e3, 1e4, 1e5}) {
        double worst = 0;
        for (double lat = -80; lat <= 80; lat += 10) {
            for (double azi = 0; azi < 360; azi += 15) {
                double lat2, lon2, ourLat, ourLonWest, apart;
                geod.Direct(lat, 10.0, azi, distance, lat2, lon2);
                GeoFord(kA, kE2, lat * kDeg, -10.0 * kDeg, &ourLat, &ourLonWest, distance, azi * kDeg);
                geod.Inverse(lat2, lon2, ourLat / kDeg, -ourLonWest / kDeg, apart);
                worst = std::max(worst, apart);
            }
        }
        std::cout << "| " << distance << " | " << worst << " |\n";
        EXPECT_LT(worst, 1.1 * kE2 / (1 - kE2) * distance * distance * distance / (12 * kA * kA) + 1e-6) << distance;
    }
}
