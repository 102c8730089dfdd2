// UTM forward and inverse per point beside PROJ's proj_trans on the same
// points, ellipsoid and zone.
#include "bench_support.h"

#include <velmio/geodesy.h>

#include <proj.h>

#include <cmath>
#include <stdexcept>
#include <vector>

namespace velmio::bench {
namespace {

constexpr double kA = 6378137.0, kB = 6356752.314245179;  // WGS84
constexpr int kZone = 31;
constexpr double kDegree = 0.017453292519943295;

struct Point {
    double latitude, longitude, northing, easting;
};

// Points over zone 31 from the equator to 70 degrees north, with their grid
// coordinates for the inverse.
std::vector<Point> points() {
    std::vector<Point> out;
    for (int i = 0; i < 1000; ++i) {
        Point p{(i % 100) * 0.7 * kDegree, (i / 100) * 0.6 * kDegree + 0.05 * kDegree, 0, 0};
        int zone = kZone;
        UTMMapProj(p.latitude, p.longitude, kA, kB, &zone, &p.northing, &p.easting, 1);
        out.push_back(p);
    }
    return out;
}

struct Projection {
    PJ_CONTEXT *context = proj_context_create();
    PJ *utm = proj_create(context, "+proj=utm +zone=31 +ellps=WGS84");
    Projection() {
        if (!utm) throw std::runtime_error("PROJ cannot make the UTM projection");
    }
    ~Projection() {
        proj_destroy(utm);
        proj_context_destroy(context);
    }
};

void UTMForward(benchmark::State &state) {
    const std::vector<Point> pts = points();
    Projection proj;
    compare(
        state, static_cast<double>(pts.size()),
        [&](Stopwatch &watch) {
            double sum = 0;
            watch.start();
            for (const Point &p : pts) {
                int zone = kZone;
                double northing, easting;
                UTMMapProj(p.latitude, p.longitude, kA, kB, &zone, &northing, &easting, 1);
                sum += northing + easting;
            }
            watch.stop();
            benchmark::DoNotOptimize(sum);
            return 0.0;
        },
        [&](Stopwatch &watch) {
            double sum = 0;
            watch.start();
            for (const Point &p : pts) {
                const PJ_COORD c = proj_trans(proj.utm, PJ_FWD, proj_coord(p.longitude, p.latitude, 0, 0));
                sum += c.enu.n + c.enu.e;
            }
            watch.stop();
            benchmark::DoNotOptimize(sum);
            return 0.0;
        });
}

void UTMInverse(benchmark::State &state) {
    const std::vector<Point> pts = points();
    Projection proj;
    compare(
        state, static_cast<double>(pts.size()),
        [&](Stopwatch &watch) {
            double sum = 0;
            watch.start();
            for (const Point &p : pts) {
                double latitude, longitude;
                UTMInvMapProj(&latitude, &longitude, kA, kB, kZone, p.northing, p.easting);
                sum += latitude + longitude;
            }
            watch.stop();
            benchmark::DoNotOptimize(sum);
            return 0.0;
        },
        [&](Stopwatch &watch) {
            double sum = 0;
            watch.start();
            for (const Point &p : pts) {
                const PJ_COORD c = proj_trans(proj.utm, PJ_INV, proj_coord(p.easting, p.northing, 0, 0));
                sum += c.lp.phi + c.lp.lam;
            }
            watch.stop();
            benchmark::DoNotOptimize(sum);
            return 0.0;
        });
}

BENCHMARK(UTMForward)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(0.5);
BENCHMARK(UTMInverse)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(0.5);

}  // namespace
}  // namespace velmio::bench
