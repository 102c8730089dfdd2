// The extension module velmio._velmio: failures become velmio.VelmioError,
// and the library's own failure lines are switched off at import.
#include "binding.hpp"

#include <velmio/console.h>
#include <velmio/messages.hpp>

namespace velmio::python {

namespace {

// The bundle's sentence for a code; None when the bundle has none.
py::object sentence(int code) {
    MORVAUString text;
    if (VELMIOUtils::findErrorMessage(code, text) != 0) return py::none();
    return py::str(text.toUtf8());
}

}  // namespace

}  // namespace velmio::python

using namespace velmio::python;

PYBIND11_MODULE(_velmio, m) {
    m.doc() = "VelmIO survey data I/O: the compiled part of the velmio package.";
    // Failures are reported as exceptions; the printed lines would only
    // repeat them on the caller's standard output.
    VELM_IO_SetDiagnostics(0);

    py::register_exception_translator([](std::exception_ptr failure) {
        try {
            if (failure) std::rethrow_exception(failure);
        } catch (const Failure &f) {
            py::object error = py::module_::import("velmio.errors").attr("_error")(f.code, f.what);
            PyErr_SetObject(reinterpret_cast<PyObject *>(Py_TYPE(error.ptr())), error.ptr());
        }
    });

    m.def("explain", &sentence, py::arg("code"), "The message bundle's sentence for an error code, or None.");
    m.def(
        "set_diagnostics", [](bool on) { return VELM_IO_SetDiagnostics(on ? 1 : 0) != 0; }, py::arg("enabled"),
        "Lets the library print its failure lines on standard output (off after import); returns the old setting.");

    registerTime(m);
    registerSensors(m);
    registerSonarFamilies(m);
    registerVessel(m);
    registerSvp(m);
    registerGeodesy(m);
}
