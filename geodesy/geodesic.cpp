// GeoFord: the direct problem by Clarke's best formula (see series.cpp).
#include <velmio/geodesy.h>

#include "geodesy/series.h"

#include <cmath>

extern "C" VELMIO_API void GeoFord(double a, double e2, double startLatitude, double startLongitude,
                                   double *endLatitude, double *endLongitude, double distance, double azimuth) {
    const double ep2 = e2 / (1.0 - e2);
    const double s1 = std::sin(startLatitude), c1 = std::cos(startLatitude);
    const double sigma0 = distance / (a / std::sqrt(1.0 - e2 * s1 * s1));
    const velmio::geodesy::ClarkeTerms t = velmio::geodesy::clarkeAngularDistance(ep2, startLatitude, azimuth, sigma0);
    const double ss = std::sin(t.sigma), cs = std::cos(t.sigma);

    // The end point on the sphere about the axis point: latitude psi ...
    const double sinPsi = cs * s1 + std::cos(azimuth) * c1 * ss;
    const double cosPsi = std::sqrt(std::fmax(0.0, 1.0 - sinPsi * sinPsi));
    // ... back to geodetic latitude: tan phi2 = (1 + e'^2)(sin psi - e^2 sin phi1 N1/rho) / cos psi.
    const double lat = std::atan2((1.0 + ep2) * (sinPsi - e2 * s1 * t.radiusRatio), cosPsi);
    // Equal to asin(sin sigma sin alpha / cos psi) within a quarter turn, but
    // stays defined where rounding or a line past the pole takes the asin
    // argument beyond 1.
    const double dLon = std::atan2(ss * std::sin(azimuth) * c1, cs - s1 * sinPsi);
    if (endLatitude) *endLatitude = lat;
    // Longitudes are counted positive westward here: an eastward step lowers them.
    if (endLongitude) *endLongitude = startLongitude - dLon;
}
