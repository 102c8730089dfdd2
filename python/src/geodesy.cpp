// Map projections over arrays: the library's scalar functions in C++ loops
// over equal-length float64 columns (the Python side broadcasts).
#include "binding.hpp"

#include <velmio/geodesy.h>

#include <memory>

namespace velmio::python {

namespace {

using Column = py::array_t<double, py::array::c_style>;

struct Pair {
    Column a, b;
    py::ssize_t n;
};

Pair pair(const py::handle &first, const py::handle &second, const char *a, const char *b) {
    Pair p{doubles(first, a), doubles(second, b), 0};
    p.n = p.a.size();
    requireLength(p.b.size(), p.n, b);
    return p;
}

template <class State, State *(*Init)(double, double), void (*Free)(State *)>
std::unique_ptr<State, void (*)(State *)> state(double a, double b) {
    std::unique_ptr<State, void (*)(State *)> s(Init(a, b), Free);
    if (!s) throw Failure{kBadArgument, "ellipsoid axes must be finite with 0 < b <= a"};
    return s;
}

py::tuple mercator(const py::handle &lat, const py::handle &lon, double a, double b, bool inverse) {
    auto s = state<MercatorMapProj, MercatorMapProjInit, MercatorMapProjFree>(a, b);
    Pair p = pair(lat, lon, inverse ? "y" : "latitude", inverse ? "x" : "longitude");
    Column u(p.n), v(p.n);
    for (py::ssize_t i = 0; i < p.n; ++i) {
        if (inverse) {
            u.mutable_data()[i] = MercatorInvMapProjLatitude(s.get(), p.a.data()[i]);
            v.mutable_data()[i] = MercatorInvMapProjLongitude(s.get(), p.b.data()[i]);
        } else {
            u.mutable_data()[i] = MercatorMapProjLatitude(s.get(), p.a.data()[i]);
            v.mutable_data()[i] = MercatorMapProjLongitude(s.get(), p.b.data()[i]);
        }
    }
    return py::make_tuple(u, v);
}

py::tuple st(const py::handle &lat, const py::handle &lon, double a, double lat0, double lon0, bool inverse) {
    std::unique_ptr<STMapProj, void (*)(STMapProj *)> s(STMapProjInit(a, 0.0, lat0, lon0), STMapProjFree);
    if (!s) throw Failure{kBadArgument, "semi-major axis must be finite and positive"};
    Pair p = pair(lat, lon, inverse ? "y" : "latitude", inverse ? "x" : "longitude");
    Column u(p.n), v(p.n);
    for (py::ssize_t i = 0; i < p.n; ++i) {
        if (inverse) {
            u.mutable_data()[i] = STInvMapProjLatitude(s.get(), p.a.data()[i]);
            v.mutable_data()[i] = STInvMapProjLongitude(s.get(), p.b.data()[i]);
        } else {
            u.mutable_data()[i] = STMapProjLatitude(s.get(), p.a.data()[i]);
            v.mutable_data()[i] = STMapProjLongitude(s.get(), p.b.data()[i]);
        }
    }
    return py::make_tuple(u, v);
}

using Forward = double *(*)(double, double, double, double, int *, double *, double *, int);
using Inverse = double *(*)(double *, double *, double, double, int, double, double);

template <Forward F>
py::tuple transverse(const py::handle &lat, const py::handle &lon, double a, double b, const py::object &zone) {
    Pair p = pair(lat, lon, "latitude", "longitude");
    Column north(p.n), east(p.n);
    py::array_t<std::int32_t> zones(p.n);
    const bool given = !zone.is_none();
    const int fixed = given ? zone.cast<int>() : 0;
    for (py::ssize_t i = 0; i < p.n; ++i) {
        int z = fixed;
        F(p.a.data()[i], p.b.data()[i], a, b, &z, north.mutable_data() + i, east.mutable_data() + i, given ? 1 : 0);
        zones.mutable_data()[i] = z;
    }
    return py::make_tuple(north, east, zones);
}

template <Inverse F>
py::tuple transverseInverse(const py::handle &northing, const py::handle &easting, const py::handle &zone, double a,
                            double b) {
    Pair p = pair(northing, easting, "northing", "easting");
    Column zones = doubles(zone, "zone");
    requireLength(zones.size(), p.n, "zone");
    Column lat(p.n), lon(p.n);
    for (py::ssize_t i = 0; i < p.n; ++i)
        F(lat.mutable_data() + i, lon.mutable_data() + i, a, b, static_cast<int>(zones.data()[i]), p.a.data()[i],
          p.b.data()[i]);
    return py::make_tuple(lat, lon);
}

py::tuple convergence(const py::handle &lat, const py::handle &lon, double a, double b) {
    Pair p = pair(lat, lon, "latitude", "longitude");
    Column out(p.n);
    py::array_t<std::int32_t> zones(p.n);
    for (py::ssize_t i = 0; i < p.n; ++i) {
        int z = 0;
        out.mutable_data()[i] = UTMGridConv(p.a.data()[i], p.b.data()[i], a, b, &z);
        zones.mutable_data()[i] = z;
    }
    return py::make_tuple(out, zones);
}

py::tuple geoford(double a, double e2, const py::handle &lat, const py::handle &lon, const py::handle &distance,
                  const py::handle &azimuth) {
    Pair p = pair(lat, lon, "latitude", "longitude");
    Pair q = pair(distance, azimuth, "distance", "azimuth");
    requireLength(q.n, p.n, "distance");
    Column lat2(p.n), lon2(p.n);
    for (py::ssize_t i = 0; i < p.n; ++i)
        GeoFord(a, e2, p.a.data()[i], p.b.data()[i], lat2.mutable_data() + i, lon2.mutable_data() + i, q.a.data()[i],
                q.b.data()[i]);
    return py::make_tuple(lat2, lon2);
}

}  // namespace

void registerGeodesy(py::module_ &m) {
    m.def("mercator", &mercator, py::arg("latitude"), py::arg("longitude"), py::arg("a"), py::arg("b"),
          py::arg("inverse") = false);
    m.def("st", &st, py::arg("latitude"), py::arg("longitude"), py::arg("a"), py::arg("origin_latitude"),
          py::arg("origin_longitude"), py::arg("inverse") = false);
    m.def("utm", &transverse<UTMMapProj>, py::arg("latitude"), py::arg("longitude"), py::arg("a"), py::arg("b"),
          py::arg("zone") = py::none());
    m.def("gk", &transverse<GKMapProj>, py::arg("latitude"), py::arg("longitude"), py::arg("a"), py::arg("b"),
          py::arg("zone") = py::none());
    m.def("utm_inverse", &transverseInverse<UTMInvMapProj>, py::arg("northing"), py::arg("easting"), py::arg("zone"),
          py::arg("a"), py::arg("b"));
    m.def("gk_inverse", &transverseInverse<GKInvMapProj>, py::arg("northing"), py::arg("easting"), py::arg("zone"),
          py::arg("a"), py::arg("b"));
    m.def("utm_convergence", &convergence, py::arg("latitude"), py::arg("longitude"), py::arg("a"), py::arg("b"));
    m.def("geoford", &geoford, py::arg("a"), py::arg("e2"), py::arg("latitude"), py::arg("longitude"),
          py::arg("distance"), py::arg("azimuth"));
}

}  // namespace velmio::python
