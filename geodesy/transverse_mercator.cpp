// UTM and Gauss-Krueger: zones, scale, false easting and the footpoint
// iteration around the series of series.cpp.
#include <velmio/geodesy.h>

#include "geodesy/series.h"

#include <climits>
#include <cmath>

namespace {

using velmio::geodesy::TmPoint;
using velmio::geodesy::TmPosition;

constexpr double kPi = 3.14159265358979323846;
constexpr double kSixDegrees = 0.10471975511965977;
constexpr double kThreeDegrees = 0.05235987755982988;
constexpr double kFalseEasting = 500000.0;
// The footpoint iteration gains about two digits a step; the cap only stops
// NaN input or an absurd ellipsoid from looping for ever.
constexpr int kMaxFootpointSteps = 100;

// The grid of one family: how a longitude picks its zone and where the
// zone's central meridian lies.
struct Grid {
    double scale;
    int (*zoneOf)(double longitude);
    double (*centralMeridian)(int zone);
};

// 1 + the count of whole zones truncated toward zero, saturating instead of
// overflowing for absurd longitudes; NaN gives zone 1.
int oneBasedZone(double count) {
    if (std::isnan(count)) return 1;
    if (count >= static_cast<double>(INT_MAX) - 1.0) return INT_MAX;
    if (count <= static_cast<double>(INT_MIN)) return INT_MIN + 1;
    return static_cast<int>(count) + 1;
}

// 6-degree zones counted from 180 degrees west.
const Grid kUtm = {0.9996, [](double lon) { return oneBasedZone((lon + kPi) / (kPi / 30.0)); },
                   [](int zone) { return zone * kSixDegrees - kPi - kThreeDegrees; }};
// 3-degree zones counted from Greenwich, the central meridian on the west
// edge of the zone.
const Grid kGk = {1.0, [](double lon) { return oneBasedZone(lon / (kPi / 60.0)); },
                  [](int zone) { return (zone - 1.0) * kThreeDegrees; }};

struct Ellipsoid {
    double a, e2, ep2;
};

Ellipsoid ellipsoid(double a, double b) { return {a, (a * a - b * b) / (a * a), (a * a - b * b) / (b * b)}; }

double *forward(const Grid &grid, double latitude, double longitude, double a, double b, int *zone,
                double *northing, double *easting, int zoneGiven) {
    const int z = (zoneGiven == 1 && zone) ? *zone : grid.zoneOf(longitude);
    if (zone) *zone = z;
    const Ellipsoid el = ellipsoid(a, b);
    const TmPoint p = velmio::geodesy::tmForward(el.a, el.e2, el.ep2, latitude, longitude - grid.centralMeridian(z));
    // No false northing: southern points keep negative northings.
    if (northing) *northing = grid.scale * p.northing;
    if (easting) *easting = kFalseEasting + grid.scale * p.easting;
    return easting;
}

// Latitude whose meridian arc (e^6 series) is arc, by fixed-point iteration.
double footpointLatitude(const Ellipsoid &el, double arc) {
    const double rate = velmio::geodesy::meridianArcRate(el.a, el.e2);
    double phi = arc / rate;
    for (int step = 0; step < kMaxFootpointSteps; ++step) {
        const double correction = (arc - velmio::geodesy::meridianArcE6(el.a, el.e2, phi)) / rate;
        phi += correction;
        if (!(std::fabs(correction) > 1e-12)) break;  // also ends on NaN
    }
    return phi;
}

double *inverse(const Grid &grid, double *latitude, double *longitude, double a, double b, int zone,
                double northing, double easting) {
    const Ellipsoid el = ellipsoid(a, b);
    const double phi1 = footpointLatitude(el, northing / grid.scale);
    const TmPosition p = velmio::geodesy::tmInverse(el.a, el.e2, el.ep2, phi1, (easting - kFalseEasting) / grid.scale);
    double lon = grid.centralMeridian(zone) + p.longitudeOffset;
    // Only the zones at the antimeridian can reach past +-pi.
    if (zone == 60 && lon >= kPi) lon -= 2.0 * kPi;
    if (zone == 1 && lon <= -kPi) lon += 2.0 * kPi;
    if (latitude) *latitude = p.latitude;
    if (longitude) *longitude = lon;
    return longitude;
}

}  // namespace

extern "C" {

VELMIO_API double *UTMMapProj(double latitude, double longitude, double a, double b, int *zone, double *northing,
                              double *easting, int zoneGiven) {
    return forward(kUtm, latitude, longitude, a, b, zone, northing, easting, zoneGiven);
}

VELMIO_API double *GKMapProj(double latitude, double longitude, double a, double b, int *zone, double *northing,
                             double *easting, int zoneGiven) {
    return forward(kGk, latitude, longitude, a, b, zone, northing, easting, zoneGiven);
}

VELMIO_API double *UTMInvMapProj(double *latitude, double *longitude, double a, double b, int zone, double northing,
                                 double easting) {
    return inverse(kUtm, latitude, longitude, a, b, zone, northing, easting);
}

VELMIO_API double *GKInvMapProj(double *latitude, double *longitude, double a, double b, int zone, double northing,
                                double easting) {
    return inverse(kGk, latitude, longitude, a, b, zone, northing, easting);
}

VELMIO_API double UTMGridConv(double latitude, double longitude, double a, double b, int *zone) {
    const int z = kUtm.zoneOf(longitude);
    if (zone) *zone = z;
    return velmio::geodesy::gridConvergence(ellipsoid(a, b).ep2, latitude, longitude - kUtm.centralMeridian(z));
}

}  // extern "C"
