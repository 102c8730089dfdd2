// Sound velocity profile files of every format as lists of casts with numpy
// depth and velocity columns.
#include "binding.hpp"

#include <velmio/svp.hpp>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace velmio::python {

namespace {

const char *formatOf(const SvpFile &file) {
    if (dynamic_cast<const CHSSvpFile *>(&file)) return "chs";
    if (dynamic_cast<const RANSvpFile_Dat *>(&file)) return "ran_dat";
    if (dynamic_cast<const RANSvpFile_Edf *>(&file)) return "ran_edf";
    return "native";
}

std::unique_ptr<SvpFile> fileOfFormat(const std::string &format, const std::wstring &path) {
    if (format == "native") return std::make_unique<VelmSvpFile>(path.c_str());
    if (format == "chs") return std::make_unique<CHSSvpFile>(path.c_str());
    if (format == "ran_dat") return std::make_unique<RANSvpFile_Dat>(path.c_str());
    if (format == "ran_edf") return std::make_unique<RANSvpFile_Edf>(path.c_str());
    throw Failure{kBadArgument, "format is \"native\", \"chs\", \"ran_dat\" or \"ran_edf\""};
}

// A position as the files' text: given as text, kept; as decimal degrees,
// written "d:mm:ss.ss" with a leading "-" for south or west.
std::wstring positionText(const py::handle &value) {
    if (py::isinstance<py::str>(value)) return wideText(value);
    const double degrees = value.cast<double>();
    if (!std::isfinite(degrees)) throw Failure{kBadArgument, "position is not a number"};
    double rest = std::fabs(degrees);
    int d = static_cast<int>(rest);
    rest = (rest - d) * 60.0;
    int m = static_cast<int>(rest);
    double s = std::round((rest - m) * 60.0 * 100.0) / 100.0;
    if (s >= 60.0) s -= 60.0, ++m;
    if (m >= 60) m -= 60, ++d;
    char buffer[48];
    std::snprintf(buffer, sizeof buffer, "%s%d:%02d:%05.2f", degrees < 0 ? "-" : "", d, m, s);
    return std::wstring(buffer, buffer + std::string(buffer).size());
}

py::dict read(const py::object &path, const py::object &format) {
    const std::wstring name = widePath(path);
    std::unique_ptr<SvpFile> file;
    if (format.is_none()) {
        int status = 0;
        file.reset(SvpFile::GetSvpFormat(name.c_str(), status));
        check(status, "profile format");
    } else {
        file = fileOfFormat(format.cast<std::string>(), name);
    }
    int rc = 0;
    {
        py::gil_scoped_release unlocked;
        rc = file->ReadInData();
    }
    check(rc, "read profile file");
    py::list casts;
    for (const SvpFile::SvpSections *s = file->GetSections(); s; s = s->next) {
        if (s->state == SvpFile::kRemoved) continue;
        std::vector<double> depth, velocity;
        for (const SvpFile::SvpValue *v = s->values; v; v = v->next) {
            if (v->state == SvpFile::kRemoved) continue;
            depth.push_back(v->depth);
            velocity.push_back(v->velocity);
        }
        py::dict cast;
        cast["time"] = s->time;
        cast["latitude"] = s->latitude.str();
        cast["longitude"] = s->longitude.str();
        cast["latitude_degrees"] = s->GetLatitude();
        cast["longitude_degrees"] = s->GetLongitude();
        cast["depth"] = py::array_t<double>(static_cast<py::ssize_t>(depth.size()), depth.data());
        cast["velocity"] = py::array_t<double>(static_cast<py::ssize_t>(velocity.size()), velocity.data());
        casts.append(cast);
    }
    py::dict out;
    out["format"] = formatOf(*file);
    out["casts"] = casts;
    return out;
}

void write(const py::object &path, const py::list &casts, const std::string &format) {
    const std::wstring name = widePath(path);
    std::unique_ptr<SvpFile> file = fileOfFormat(format, name);
    for (const py::handle &item : casts) {
        const py::dict cast = py::reinterpret_borrow<py::dict>(item);
        const double time = cast["time"].cast<double>();
        if (!(time >= 0.0)) throw Failure{kBadArgument, "cast time before 1980"};
        check(file->SetSvpSection(time, positionText(cast["latitude"]).c_str(), positionText(cast["longitude"]).c_str()),
              "cast");
        auto depth = doubles(cast["depth"], "depth");
        auto velocity = doubles(cast["velocity"], "velocity");
        requireLength(velocity.size(), depth.size(), "velocity");
        for (py::ssize_t i = 0; i < depth.size(); ++i)
            check(file->AddSvpValue(time, depth.data()[i], velocity.data()[i]), "value");
    }
    int rc = 0;
    {
        py::gil_scoped_release unlocked;
        rc = file->UpdateDataFile();
    }
    if (rc != 0) throw Failure{rc, "writing " + MORVAUString(file->GetErrorText()).toUtf8()};
}

}  // namespace

void registerSvp(py::module_ &m) {
    m.def("svp_read", &read, py::arg("path"), py::arg("format") = py::none());
    m.def("svp_write", &write, py::arg("path"), py::arg("casts"), py::arg("format") = "native");
}

}  // namespace velmio::python
