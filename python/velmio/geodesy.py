"""Map projections over numpy arrays. Angles are radians; distances are in
the unit of the semi-major axis a. Arguments broadcast against each other;
results take their shape. Accuracy and conventions are the library's (see
include/velmio/geodesy.h): no false northing, GeoFord longitudes positive
westward."""

import numpy as np

from . import _velmio


def _apply(fn, arrays, *args, **kwargs):
    arrays = np.broadcast_arrays(*[np.asarray(a, dtype=float) for a in arrays])
    shape = arrays[0].shape
    out = fn(*[a.reshape(-1) for a in arrays], *args, **kwargs)
    return tuple(o.reshape(shape) for o in out)


def mercator(latitude, longitude, a, b):
    """(y, x) of the ellipsoidal Mercator projection."""
    return _apply(_velmio.mercator, (latitude, longitude), a, b)


def mercator_inverse(y, x, a, b):
    """(latitude, longitude) of Mercator northings and eastings."""
    return _apply(_velmio.mercator, (y, x), a, b, True)


def st(latitude, longitude, a, origin_latitude, origin_longitude):
    """(y, x) in the local tangent plane about the origin."""
    return _apply(_velmio.st, (latitude, longitude), a, origin_latitude, origin_longitude)


def st_inverse(y, x, a, origin_latitude, origin_longitude):
    return _apply(_velmio.st, (y, x), a, origin_latitude, origin_longitude, True)


def utm(latitude, longitude, a, b, zone=None):
    """(northing, easting, zone); the zone is derived per point unless given."""
    return _apply(_velmio.utm, (latitude, longitude), a, b, zone)


def utm_inverse(northing, easting, zone, a, b):
    """(latitude, longitude) of UTM coordinates in their zones."""
    n, e, z = np.broadcast_arrays(np.asarray(northing, float), np.asarray(easting, float), np.asarray(zone, float))
    lat, lon = _velmio.utm_inverse(n.reshape(-1), e.reshape(-1), z.reshape(-1), a, b)
    return lat.reshape(n.shape), lon.reshape(n.shape)


def gk(latitude, longitude, a, b, zone=None):
    """(northing, easting, zone) of the Gauss-Krueger projection."""
    return _apply(_velmio.gk, (latitude, longitude), a, b, zone)


def gk_inverse(northing, easting, zone, a, b):
    n, e, z = np.broadcast_arrays(np.asarray(northing, float), np.asarray(easting, float), np.asarray(zone, float))
    lat, lon = _velmio.gk_inverse(n.reshape(-1), e.reshape(-1), z.reshape(-1), a, b)
    return lat.reshape(n.shape), lon.reshape(n.shape)


def utm_convergence(latitude, longitude, a, b):
    """(grid convergence in radians, zone)."""
    return _apply(_velmio.utm_convergence, (latitude, longitude), a, b)


def geoford(a, e2, latitude, longitude, distance, azimuth):
    """(latitude, longitude) at distance and azimuth from the start points."""
    arrays = np.broadcast_arrays(*[np.asarray(v, dtype=float) for v in (latitude, longitude, distance, azimuth)])
    shape = arrays[0].shape
    lat, lon = _velmio.geoford(a, e2, *[v.reshape(-1) for v in arrays])
    return lat.reshape(shape), lon.reshape(shape)
