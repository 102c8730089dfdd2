// Ellipsoidal Mercator: no central meridian, no false origin.
#include <velmio/geodesy.h>

#include <cmath>
#include <limits>
#include <new>

struct MercatorMapProj {
    double a;  // semi-major axis
    double b;  // semi-minor axis
    double e;  // first eccentricity
};

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kQuarterPi = 0.78539816339744830962;
constexpr double kHalfPi = 1.57079632679489661923;
// The inverse converges to 1e-12 in under ten steps for real ellipsoids; the
// cap only stops NaN or a non-converging input from looping for ever.
constexpr int kMaxInverseSteps = 100;

bool validAxes(double a, double b) { return std::isfinite(a) && std::isfinite(b) && b > 0.0 && b <= a; }

// ((1 - e sin phi) / (1 + e sin phi))^(e/2), the ellipsoid's share of the
// isometric latitude.
double eccentricityFactor(double e, double phi) {
    const double es = e * std::sin(phi);
    return std::pow((1.0 - es) / (1.0 + es), e / 2.0);
}

}  // namespace

extern "C" {

VELMIO_API MercatorMapProj *MercatorMapProjInit(double a, double b) {
    if (!validAxes(a, b)) return nullptr;
    auto *state = new (std::nothrow) MercatorMapProj;
    if (!state) return nullptr;
    state->a = a;
    state->b = b;
    state->e = std::sqrt((a * a - b * b) / (a * a));
    return state;
}

VELMIO_API void MercatorMapProjFree(MercatorMapProj *state) { delete state; }

VELMIO_API double MercatorMapProjLatitude(const MercatorMapProj *state, double latitude) {
    if (!state) return kNaN;
    return state->a * std::log(std::tan(kQuarterPi + latitude / 2.0) * eccentricityFactor(state->e, latitude));
}

VELMIO_API double MercatorMapProjLongitude(const MercatorMapProj *state, double longitude) {
    if (!state) return kNaN;
    return state->a * longitude;
}

VELMIO_API double MercatorInvMapProjLatitude(const MercatorMapProj *state, double y) {
    if (!state) return kNaN;
    const double t = std::exp(-y / state->a);
    double phi = kHalfPi - 2.0 * std::atan(t);
    for (int step = 0; step < kMaxInverseSteps; ++step) {
        const double next = kHalfPi - 2.0 * std::atan(t * eccentricityFactor(state->e, phi));
        const double change = next - phi;
        phi = next;
        if (!(std::fabs(change) >= 1e-12)) break;  // also ends on NaN
    }
    return phi;
}

VELMIO_API double MercatorInvMapProjLongitude(const MercatorMapProj *state, double x) {
    if (!state) return kNaN;
    return x / state->a;
}

}  // extern "C"
