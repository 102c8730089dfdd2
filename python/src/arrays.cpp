// Arguments crossing from Python: paths, texts and numeric arrays, checked
// before any of them reaches the library.
#include "binding.hpp"

#include <string>

namespace velmio::python {

std::wstring wideText(const py::handle &text) {
    if (!py::isinstance<py::str>(text)) throw Failure{kBadArgument, "expected a text"};
    return text.cast<std::wstring>();
}

std::wstring widePath(const py::handle &path) {
    py::object fspath = py::module_::import("os").attr("fspath");
    py::object name;
    try {
        name = fspath(path);
    } catch (py::error_already_set &) {
        throw Failure{kBadArgument, "expected a path"};
    }
    if (py::isinstance<py::bytes>(name)) name = name.attr("decode")("utf-8", "surrogateescape");
    return wideText(name);
}

namespace {

char kindOf(const py::handle &values, const char *name) {
    py::array array = py::array::ensure(values);
    if (!array) throw Failure{kBadArgument, std::string(name) + ": not an array"};
    if (array.ndim() > 1) throw Failure{kBadArgument, std::string(name) + ": not one-dimensional"};
    return array.dtype().kind();
}

}  // namespace

py::array_t<double, py::array::c_style> doubles(const py::handle &values, const char *name) {
    const char kind = kindOf(values, name);
    if (kind != 'f' && kind != 'i' && kind != 'u')
        throw Failure{kBadArgument, std::string(name) + ": expected numbers, got dtype kind '" + kind + "'"};
    return py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(values).reshape(
        std::vector<py::ssize_t>{-1});
}

py::array_t<std::uint32_t, py::array::c_style> words(const py::handle &values, const char *name) {
    const char kind = kindOf(values, name);
    if (kind != 'i' && kind != 'u')
        throw Failure{kBadArgument, std::string(name) + ": expected integer status words"};
    py::array array = py::array::ensure(values);
    if (array.size() > 0) {
        py::module_ np = py::module_::import("numpy");
        if (np.attr("any")(np.attr("less")(array, 0)).cast<bool>() ||
            np.attr("any")(np.attr("greater")(array, 0xFFFFFFFFu)).cast<bool>())
            throw Failure{kBadArgument, std::string(name) + ": status words lie in 0..4294967295"};
    }
    return py::array_t<std::uint32_t, py::array::c_style | py::array::forcecast>::ensure(array).reshape(
        std::vector<py::ssize_t>{-1});
}

py::array_t<std::int32_t, py::array::c_style> ints(const py::handle &values, const char *name) {
    const char kind = kindOf(values, name);
    if (kind != 'i' && kind != 'u') throw Failure{kBadArgument, std::string(name) + ": expected integers"};
    py::array array = py::array::ensure(values);
    if (array.size() > 0) {
        py::module_ np = py::module_::import("numpy");
        if (np.attr("any")(np.attr("less")(array, -2147483648LL)).cast<bool>() ||
            np.attr("any")(np.attr("greater")(array, 2147483647LL)).cast<bool>())
            throw Failure{kBadArgument, std::string(name) + ": values lie in -2147483648..2147483647"};
    }
    return py::array_t<std::int32_t, py::array::c_style | py::array::forcecast>::ensure(array).reshape(
        std::vector<py::ssize_t>{-1});
}

py::object broadcast(const py::handle &value, py::ssize_t n) {
    py::module_ np = py::module_::import("numpy");
    py::object array = np.attr("asarray")(value);
    if (array.attr("ndim").cast<int>() == 0) return np.attr("full")(n, array);
    return array;
}

py::array_t<std::int64_t, py::array::c_style> indexArray(const py::handle &indices, std::int64_t limit) {
    py::module_ np = py::module_::import("numpy");
    py::array array = np.attr("atleast_1d")(np.attr("asarray")(indices));
    const char kind = array.dtype().kind();
    if (kind == 'b') {
        requireLength(array.size(), limit, "mask");
        array = np.attr("flatnonzero")(array);
    } else if (kind != 'i' && kind != 'u') {
        throw Failure{kBadArgument, "indices: expected integers or a boolean mask"};
    }
    py::array_t<std::int64_t, py::array::c_style> idx =
        py::array_t<std::int64_t, py::array::c_style | py::array::forcecast>::ensure(array).reshape(
            std::vector<py::ssize_t>{-1});
    py::array_t<std::int64_t, py::array::c_style> copy(idx.size());
    for (py::ssize_t i = 0; i < idx.size(); ++i) {
        std::int64_t v = idx.data()[i];
        if (v < 0) v += limit;
        if (v < 0 || v >= limit) throw Failure{kBadArgument, "index " + std::to_string(idx.data()[i]) + " out of range"};
        copy.mutable_data()[i] = v;
    }
    return copy;
}

void requireLength(py::ssize_t length, py::ssize_t count, const char *name) {
    if (length != count)
        throw Failure{kBadArgument, std::string(name) + ": " + std::to_string(length) + " values where " +
                                        std::to_string(count) + " are needed"};
}

}  // namespace velmio::python
