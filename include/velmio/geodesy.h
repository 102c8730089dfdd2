/* Map projections and the horizontal datum lookup.
 *
 * Angles are radians; distances and axes are in the unit of the ellipsoid's
 * semi-major axis a (metres in practice). The projections do not check their
 * input ranges: NaN in gives NaN out, and out-of-range angles are projected
 * as the formulas have them.
 *
 * Mercator and ST keep their parameters in a state block made by their Init
 * function and released by their Free function. The state types are opaque
 * (three doubles a, b, e for Mercator; five doubles phi0, lambda0, N', M,
 * cos phi0 for ST). A null state makes a projection function return NaN.
 *
 * UTM and GK take the ellipsoid (a, b) with every call. Zones are 32-bit
 * ints. No false northing is added, also south of the equator, so southern
 * northings are negative.
 *
 * Accuracy of UTM and GK against an exact transverse Mercator: within 2 mm up
 * to 3.5 degrees from the central meridian and latitude 84 degrees; the
 * meridian arc's e^8 terms alone account for up to about 1.7 mm near
 * latitude 70 degrees.
 */
#ifndef VELMIO_GEODESY_H
#define VELMIO_GEODESY_H

#include <velmio/export.h>

VELMIO_BEGIN_C

typedef struct MercatorMapProj MercatorMapProj;
typedef struct STMapProj STMapProj;

/* Ellipsoidal Mercator without central meridian or false origin. Returns a
 * fresh state (release with MercatorMapProjFree), or null when memory runs
 * out or the axes are not finite with 0 < b <= a. */
VELMIO_API MercatorMapProj *MercatorMapProjInit(double a, double b);
/* Releases a state from MercatorMapProjInit; null is ignored. */
VELMIO_API void MercatorMapProjFree(MercatorMapProj *state);
/* Northing y of a latitude; +-pi/2 give +-infinity or a huge finite value. */
VELMIO_API double MercatorMapProjLatitude(const MercatorMapProj *state, double latitude);
/* Easting x = a * longitude. */
VELMIO_API double MercatorMapProjLongitude(const MercatorMapProj *state, double longitude);
/* Latitude of a northing, by fixed-point iteration to 1e-12 rad (at most 100
 * steps, so NaN or infinite input cannot hang it). */
VELMIO_API double MercatorInvMapProjLatitude(const MercatorMapProj *state, double y);
/* Longitude x / a. */
VELMIO_API double MercatorInvMapProjLongitude(const MercatorMapProj *state, double x);

/* Local tangent plane about the origin (originLatitude, originLongitude).
 * The radii always come from the Clarke 1866 eccentricity scaled to a; the
 * second ellipsoid argument is ignored. Returns a fresh state (release with
 * STMapProjFree), or null when memory runs out or a is not finite and > 0. */
VELMIO_API STMapProj *STMapProjInit(double a, double ignored, double originLatitude, double originLongitude);
/* Recomputes a state in place: 0, or -1 for a null state or a bad a (the
 * state is then left as it was). */
VELMIO_API int STMapProjReInit(STMapProj *state, double a, double ignored, double originLatitude,
                               double originLongitude);
/* y = (latitude - phi0) * M. */
VELMIO_API double STMapProjLatitude(const STMapProj *state, double latitude);
/* x = cos(phi0) * N' * (longitude - lambda0). */
VELMIO_API double STMapProjLongitude(const STMapProj *state, double longitude);
VELMIO_API double STInvMapProjLatitude(const STMapProj *state, double y);
VELMIO_API double STInvMapProjLongitude(const STMapProj *state, double x);
/* Releases a state from STMapProjInit; null is ignored. */
VELMIO_API void STMapProjFree(STMapProj *state);

/* UTM forward (6-degree zones from 180 degrees west, scale 0.9996, false
 * easting 500000). When zoneGiven is 1, *zone is used; otherwise the zone is
 * derived from the longitude (longitude +pi gives zone 61, central meridian
 * 183 degrees; NaN gives zone 1; absurd longitudes saturate at the int range)
 * and stored in *zone. Null outputs are skipped (a null zone
 * with zoneGiven 1 derives the zone). Returns easting (the pointer). */
VELMIO_API double *UTMMapProj(double latitude, double longitude, double a, double b, int *zone, double *northing,
                              double *easting, int zoneGiven);
/* Gauss-Krueger forward: 3-degree zones, zone = trunc(longitude / 3 deg) + 1,
 * central meridian (zone - 1) * 3 degrees, scale 1, false easting 500000.
 * Arguments and result as UTMMapProj. */
VELMIO_API double *GKMapProj(double latitude, double longitude, double a, double b, int *zone, double *northing,
                             double *easting, int zoneGiven);
/* UTM inverse in the given zone. Zone 60 longitudes of pi or more lose 2 pi,
 * zone 1 longitudes of -pi or less gain 2 pi. Null outputs are skipped.
 * Returns longitude (the pointer). */
VELMIO_API double *UTMInvMapProj(double *latitude, double *longitude, double a, double b, int zone, double northing,
                                 double easting);
/* Gauss-Krueger inverse in the given zone; as UTMInvMapProj. */
VELMIO_API double *GKInvMapProj(double *latitude, double *longitude, double a, double b, int zone, double northing,
                                double easting);
/* UTM grid convergence (radians, positive east of the central meridian in
 * the northern hemisphere); the zone is always derived from the longitude and
 * stored in *zone unless zone is null. */
VELMIO_API double UTMGridConv(double latitude, double longitude, double a, double b, int *zone);

/* Direct problem on the ellipsoid (a, first eccentricity squared e2): the end
 * of a line of the given length and azimuth (clockwise from north) from the
 * start point. Longitudes here are counted positive WESTWARD. It follows
 * the normal section, not the geodesic: the end point lies up to 1.4 cm off
 * the geodesic's at 100 km, 14 micrometres at 10 km (the error grows with the
 * cube of the distance). Null outputs are skipped. */
VELMIO_API void GeoFord(double a, double e2, double startLatitude, double startLongitude, double *endLatitude,
                        double *endLongitude, double distance, double azimuth);

/* Ellipsoid parameters of a datum from the text file named by the
 * environment variable "kbvXdatum" (UTF-8 path). A line matches when its
 * first four characters equal the name's first four, ignoring case; its two
 * numbers are read from the fifth character on. Lines starting with '!' are
 * comments; only the first 255 characters of a line count. The last match is
 * remembered: asking for the same name again (ignoring case) answers without
 * reading the file. Returns 0, or -1 with both outputs 0.0 when the name is
 * null or shorter than four characters, an output is null, the variable is
 * unset, the file cannot be opened (which also forgets the remembered
 * match), no line matches, or the matching line lacks two numbers. */
VELMIO_API int HorizDatumLookup(const wchar_t *datumName, double *first, double *second);

VELMIO_END_C

#endif
