// Shared pieces of the Python extension: how failures become exceptions and
// how numpy arrays cross into the library.
#ifndef VELMIO_PYTHON_BINDING_HPP
#define VELMIO_PYTHON_BINDING_HPP

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>
#include <vector>

class VELMVesselSensorConfig;

namespace velmio::python {

namespace py = pybind11;

// A failing call: the library's code and what failed. The module turns it
// into velmio.VelmioError; thrown with the GIL released or held.
struct Failure {
    int code;
    std::string what;
};

// The library's own code for a bad argument.
constexpr int kBadArgument = -1;

inline void check(int code, const char *what) {
    if (code != 0) throw Failure{code, what};
}

// A str or os.PathLike as the wide path the library takes.
std::wstring widePath(const py::handle &path);
std::wstring wideText(const py::handle &text);

// A 1-D float64 array from anything numeric (ints and floats convert; bool,
// complex, text and objects are refused with kBadArgument).
py::array_t<double, py::array::c_style> doubles(const py::handle &values, const char *name);
// A 1-D array of 32-bit status words: integers in 0..2^32-1 only.
py::array_t<std::uint32_t, py::array::c_style> words(const py::handle &values, const char *name);
// A 1-D array of 32-bit signed integers (amplitudes, gains).
py::array_t<std::int32_t, py::array::c_style> ints(const py::handle &values, const char *name);
// A scalar repeated n times; arrays pass as they are.
py::object broadcast(const py::handle &value, py::ssize_t n);
// Indices from 0 below limit (negative ones count from the end), or a
// boolean mask of limit entries.
py::array_t<std::int64_t, py::array::c_style> indexArray(const py::handle &indices, std::int64_t limit);
// Refuses arrays of another length than count.
void requireLength(py::ssize_t length, py::ssize_t count, const char *name);

// The beams of n profiles of a range: readCounts(counts) fills their
// counts (without the GIL) and gives the library's code.
template <class ReadCounts>
std::size_t beamTotal(unsigned n, ReadCounts readCounts) {
    std::vector<unsigned> counts(n);
    {
        py::gil_scoped_release unlocked;
        if (n) check(readCounts(counts.data()), "read");
    }
    std::uint64_t total = 0;
    for (unsigned c : counts) total += c;
    if (total > 0xFFFFFFFFull) throw Failure{kBadArgument, "more beams than one read can hold"};
    return static_cast<std::size_t>(total);
}

// The beam arrays of a ReadRange: a whole line is sized from its summary's
// beam total and read once, unless that read fails or the total proves
// wrong; otherwise the range's beams are counted first. make(total) gives
// the arrays, fill(beams, strict) reads into them (strict: a failure
// raises) and gives whether it succeeded, filled(beams) the beams placed.
template <class Make, class Fill, class Filled, class Count>
auto rangeBeams(bool wholeLine, std::size_t summaryTotal, Make make, Fill fill, Filled filled, Count count) {
    if (wholeLine) {
        auto beams = make(summaryTotal);
        if (fill(*beams, false) && filled(*beams) == summaryTotal) return beams;
    }
    auto beams = make(count());
    fill(*beams, true);
    return beams;
}

template <class T>
py::array_t<T> newArray(py::ssize_t count) {
    return py::array_t<T>(count);
}

// UTC seconds since 1980 (leap seconds counted) to datetime64[ns] and back.
py::array utcs80ToDatetime64(const double *seconds, py::ssize_t count);
py::array_t<double> datetime64ToUtcs80(const py::array &datetimes);

// The settings of a vessel entry by name (vessel_settings.cpp).
py::list entrySettingNames(VELMVesselSensorConfig &entry);
py::object entrySetting(VELMVesselSensorConfig &entry, const std::string &name);
void setEntrySetting(VELMVesselSensorConfig &entry, const std::string &name, const py::handle &value);
py::list transducerSettingNames();

void registerSensors(py::module_ &module);
void registerSonarFamilies(py::module_ &module);
void registerVessel(py::module_ &module);
void registerSvp(py::module_ &module);
void registerGeodesy(py::module_ &module);
void registerTime(py::module_ &module);

}  // namespace velmio::python

#endif
