// The series behind the transverse Mercator projections and GeoFord, kept
// together so that every coefficient and its source are in one place.
#ifndef VELMIO_GEODESY_SERIES_H
#define VELMIO_GEODESY_SERIES_H

namespace velmio::geodesy {

// Meridian arc from the equator to latitude phi (radians) on the ellipsoid
// (a, e2), through the e^8 terms as the system has always computed it.
double meridianArc(double a, double e2, double phi);
// The same series stopped after the e^6 terms, used for the footpoint.
double meridianArcE6(double a, double e2, double phi);
// a (1 - e2/4 - 3 e4/64 - 5 e6/256): the arc per radian of the e^6 series.
double meridianArcRate(double a, double e2);

// Unscaled transverse Mercator coordinates (scale 1, no false origin) of
// latitude phi at l radians east of the central meridian; ep2 is the second
// eccentricity squared (a^2 - b^2) / b^2.
struct TmPoint {
    double northing;
    double easting;
};
TmPoint tmForward(double a, double e2, double ep2, double phi, double l);

// Latitude and longitude offset from the central meridian of an unscaled
// easting x (from the central meridian) at the footpoint latitude phi1.
struct TmPosition {
    double latitude;
    double longitudeOffset;
};
TmPosition tmInverse(double a, double e2, double ep2, double phi1, double x);

// Grid convergence at latitude phi, l radians east of the central meridian.
double gridConvergence(double ep2, double phi, double l);

// GeoFord's angular distance sigma (radians, seen from where the normal of
// the start point meets the polar axis) of a line of angular length sigma0 =
// s / N1; and N1 / rho, the start's prime vertical radius over the distance
// from that axis point to the end point.
struct ClarkeTerms {
    double sigma;
    double radiusRatio;
};
ClarkeTerms clarkeAngularDistance(double ep2, double phi1, double azimuth, double sigma0);

}  // namespace velmio::geodesy

#endif
