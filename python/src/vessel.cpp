// The vessel configuration as a Python object: load, the flat queries by
// sensor kind and time, entry edits, store.
#include "binding.hpp"

#include <velmio/vessel.hpp>
#include <velmio/vessel_queries.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace velmio::python {

namespace {

// Outputs the flat queries hand out, freed on every path.
struct Text {
    wchar_t *p = nullptr;
    ~Text() { std::free(p); }
    py::object get() const { return p ? py::object(py::cast(std::wstring(p))) : py::object(py::none()); }
};
struct Doubles {
    double *p = nullptr;
    ~Doubles() { std::free(p); }
    py::array_t<double> get(int n) const {
        py::array_t<double> a(n > 0 ? n : 0);
        for (int i = 0; i < n; ++i) a.mutable_data()[i] = p[i];
        return a;
    }
};

py::object text(const wchar_t *t) { return t ? py::object(py::cast(std::wstring(t))) : py::object(py::none()); }

class Vessel {
public:
    explicit Vessel(const py::object &path) {
        int error = 0;
        const std::wstring name = widePath(path);
        vessel_ = std::make_unique<VELMVessel>(name.c_str(), error);
        check(error, "vessel configuration");
    }
    Vessel() : vessel_(std::make_unique<VELMVessel>()) {}

    py::object fileName() const { return text(vessel_->getFileName()); }
    bool modified() const { return vessel_->isModified(); }

    void store(const py::object &path) {
        if (!path.is_none()) check(vessel_->setFileName(widePath(path).c_str()), "file name");
        check(vessel_->store(), "store");
    }

    py::list kinds() const {
        py::list out;
        for (const auto &list : vessel_->getSensors()) out.append(text(list->getName()));
        return out;
    }

    py::list entries(const std::wstring &kind) const {
        py::list out;
        VELMVesselSensorList *list = vessel_->getSensorList(kind.c_str());
        if (!list) throw Failure{5100003, "no entries of that kind"};
        for (auto e = list->getFirstConfig(); e; e = list->getNextConfig(e.get())) out.append(describe(*e));
        return out;
    }

    // Adds an entry of a kind at time with the given settings.
    void add(const std::wstring &kind, double time, const py::dict &settings) {
        std::shared_ptr<VELMVesselSensorConfig> entry = VELM::VesselRegistry::create(kind.c_str());
        if (!entry) throw Failure{5100003, "not a sensor kind of the vessel configuration"};
        apply(*entry, settings);
        check(vessel_->addSensor(entry), "add entry");
        if (time != 0.0) check(vessel_->getSensorList(kind.c_str())->updateTimeStamp(entry.get(), time), "entry time");
    }

    // Changes the settings of the entry of exactly that time.
    void update(const std::wstring &kind, double time, const py::dict &settings) {
        VELMVesselSensorList *list = vessel_->getSensorList(kind.c_str());
        if (!list) throw Failure{5100003, "no entries of that kind"};
        for (auto e = list->getFirstConfig(); e; e = list->getNextConfig(e.get())) {
            if (e->getTimeStamp() != time) continue;
            apply(*e, settings);
            if (settings.contains("time"))
                check(list->updateTimeStamp(e.get(), settings["time"].cast<double>()), "entry time");
            return;
        }
        throw Failure{5100009, "no entry with that time"};
    }

    void remove(const std::wstring &kind, double time) { check(vessel_->removeSensor(time, kind.c_str()), "remove"); }

    VELMVessel *handle() const { return vessel_.get(); }

private:
    static py::dict describe(const VELMVesselSensorConfig &e) {
        py::dict d;
        d["time"] = e.getTimeStamp();
        d["latency"] = e.getLatency();
        d["comment"] = text(e.getComment());
        d["authorization"] = text(e.getAuthorization());
        if (auto *id = dynamic_cast<const VELMSensorIdentity *>(&e)) {
            d["manufacturer"] = text(id->getManufacturer());
            d["model"] = text(id->getModel());
            d["serial_number"] = text(id->getSerialNumber());
        }
        return d;
    }

    static void apply(VELMVesselSensorConfig &e, const py::dict &settings) {
        auto textOf = [&](const char *key) -> std::wstring { return wideText(settings[key]); };
        for (auto item : settings) {
            const std::string key = py::str(item.first);
            if (key == "time") continue;
            if (key == "latency") {
                e.setLatency(item.second.cast<double>());
            } else if (key == "comment") {
                e.setComment(item.second.is_none() ? nullptr : textOf("comment").c_str());
            } else if (key == "authorization") {
                e.setAuthorization(item.second.is_none() ? nullptr : textOf("authorization").c_str());
            } else if (auto *id = dynamic_cast<VELMSensorIdentity *>(&e);
                       id && (key == "manufacturer" || key == "model" || key == "serial_number")) {
                const std::wstring value = item.second.is_none() ? std::wstring() : textOf(key.c_str());
                const wchar_t *v = item.second.is_none() ? nullptr : value.c_str();
                if (key == "manufacturer") id->setManufacturer(v);
                if (key == "model") id->setModel(v);
                if (key == "serial_number") id->setSerialNumber(v);
            } else {
                throw Failure{kBadArgument, "not a setting of this entry: " + key};
            }
        }
    }

    std::unique_ptr<VELMVessel> vessel_;
};

py::dict queryGyro(Vessel &v, double time) {
    double entry, r1, r2, r3, latency, offset;
    int apply;
    Text make, model, serial, comment, auth;
    check(VesselGyroSensorTmIdxConfig(v.handle(), time, &entry, &make.p, &model.p, &serial.p, &r1, &r2, &r3, &latency,
                                      &offset, &apply, &comment.p, &auth.p),
          "gyro query");
    py::dict d;
    d["time"] = entry, d["manufacturer"] = make.get(), d["model"] = model.get(), d["serial_number"] = serial.get();
    d["latency"] = latency, d["gyro_offset"] = offset, d["apply"] = apply != 0;
    d["comment"] = comment.get(), d["authorization"] = auth.get();
    return d;
}

py::dict queryHeave(Vessel &v, double time) {
    double entry, x, y, z, latency, offset;
    int apply;
    Text make, model, serial, comment, auth;
    check(VesselHeaveSensorTmIdxConfig(v.handle(), time, &entry, &make.p, &model.p, &serial.p, &x, &y, &z, &latency,
                                       &offset, &apply, &comment.p, &auth.p),
          "heave query");
    py::dict d;
    d["time"] = entry, d["manufacturer"] = make.get(), d["model"] = model.get(), d["serial_number"] = serial.get();
    d["offset"] = py::make_tuple(x, y, z), d["latency"] = latency, d["heave_offset"] = offset;
    d["apply"] = apply != 0, d["comment"] = comment.get(), d["authorization"] = auth.get();
    return d;
}

py::dict queryNavigation(Vessel &v, double time) {
    double entry, x, y, z, latency;
    Text make, model, serial, ellipse, comment, auth;
    check(VesselNavigationSensorTmIdxConfig(v.handle(), time, &entry, &make.p, &model.p, &serial.p, &ellipse.p, &x, &y,
                                            &z, &latency, &comment.p, &auth.p),
          "navigation query");
    py::dict d;
    d["time"] = entry, d["manufacturer"] = make.get(), d["model"] = model.get(), d["serial_number"] = serial.get();
    d["ellipse"] = ellipse.get(), d["offset"] = py::make_tuple(x, y, z), d["latency"] = latency;
    d["comment"] = comment.get(), d["authorization"] = auth.get();
    return d;
}

template <int (*Query)(VELMVesselHandle *, double, double *, wchar_t **, wchar_t **, wchar_t **, double *, double *,
                       int *, wchar_t **, wchar_t **)>
py::dict queryAttitude(Vessel &v, double time) {
    double entry, latency, offset;
    int apply;
    Text make, model, serial, comment, auth;
    check(Query(v.handle(), time, &entry, &make.p, &model.p, &serial.p, &latency, &offset, &apply, &comment.p, &auth.p),
          "attitude query");
    py::dict d;
    d["time"] = entry, d["manufacturer"] = make.get(), d["model"] = model.get(), d["serial_number"] = serial.get();
    d["latency"] = latency, d["offset"] = offset, d["apply"] = apply != 0;
    d["comment"] = comment.get(), d["authorization"] = auth.get();
    return d;
}

py::dict querySvp(Vessel &v, double time) {
    double entry, x, y, z, p, r, a, x2, y2, z2, p2, r2, a2;
    int dual;
    Text comment, auth;
    check(VesselSVPTmIdxConfig(v.handle(), time, &entry, &x, &y, &z, &p, &r, &a, &x2, &y2, &z2, &p2, &r2, &a2, &dual,
                               &comment.p, &auth.p),
          "sound velocity probe query");
    py::dict d;
    d["time"] = entry, d["offset"] = py::make_tuple(x, y, z), d["mount"] = py::make_tuple(p, r, a);
    d["offset2"] = py::make_tuple(x2, y2, z2), d["mount2"] = py::make_tuple(p2, r2, a2), d["dual_head"] = dual != 0;
    d["comment"] = comment.get(), d["authorization"] = auth.get();
    return d;
}

py::dict queryTowed(Vessel &v, double time) {
    double entry, x, y, z, latency, layback;
    Text make, model, serial;
    check(VesselTowedTmIdxConfig(v.handle(), time, &entry, &make.p, &model.p, &serial.p, &x, &y, &z, &latency,
                                 &layback),
          "towed sensor query");
    py::dict d;
    d["time"] = entry, d["manufacturer"] = make.get(), d["model"] = model.get(), d["serial_number"] = serial.get();
    d["offset"] = py::make_tuple(x, y, z), d["latency"] = latency, d["layback"] = layback;
    return d;
}

py::dict queryWaterline(Vessel &v, double time) {
    double entry, height, deviation;
    Text comment, auth;
    check(VesselRPTmIdxConfig(v.handle(), time, &entry, &height, &deviation, &comment.p, &auth.p), "waterline query");
    py::dict d;
    d["time"] = entry, d["height"] = height, d["std_dev"] = deviation;
    d["comment"] = comment.get(), d["authorization"] = auth.get();
    return d;
}

py::dict queryDepth(Vessel &v, double time) {
    double entry, x, y, z, p, r, a, lat, x2, y2, z2, p2, r2, a2, lat2;
    int transducers, firstHead, total;
    Text cls, make, model, serial, comment, auth;
    Doubles sx, sy, sz, sp, sr, sa, sl;
    check(VesselDepthSensorTmIdxConfig(v.handle(), time, &entry, &cls.p, &transducers, &firstHead, &total, &make.p,
                                       &model.p, &serial.p, &x, &y, &z, &p, &r, &a, &lat, &x2, &y2, &z2, &p2, &r2, &a2,
                                       &lat2, &sx.p, &sy.p, &sz.p, &sp.p, &sr.p, &sa.p, &sl.p, &comment.p, &auth.p),
          "depth sensor query");
    py::dict d;
    d["time"] = entry, d["sensor_class"] = cls.get(), d["transducers"] = transducers;
    d["first_head_beams"] = firstHead, d["total_beams"] = total;
    d["manufacturer"] = make.get(), d["model"] = model.get(), d["serial_number"] = serial.get();
    d["offset"] = py::make_tuple(x, y, z), d["mount"] = py::make_tuple(p, r, a), d["latency"] = lat;
    d["offset2"] = py::make_tuple(x2, y2, z2), d["mount2"] = py::make_tuple(p2, r2, a2), d["latency2"] = lat2;
    if (sx.p) {
        const int n = transducers;
        py::dict sweep;
        sweep["x"] = sx.get(n), sweep["y"] = sy.get(n), sweep["z"] = sz.get(n), sweep["pitch"] = sp.get(n);
        sweep["roll"] = sr.get(n), sweep["azimuth"] = sa.get(n), sweep["latency"] = sl.get(n);
        d["sweep"] = sweep;
    }
    d["comment"] = comment.get(), d["authorization"] = auth.get();
    return d;
}

py::dict queryDraft(Vessel &v, double time) {
    double entry;
    int rows, apply;
    Doubles speeds, drafts;
    Text comment, auth;
    check(VesselDraftTmIdxConfig(v.handle(), time, &entry, &rows, &speeds.p, &drafts.p, &apply, &comment.p, &auth.p),
          "draft query");
    py::dict d;
    d["time"] = entry, d["speed"] = speeds.get(rows), d["draft"] = drafts.get(rows), d["apply"] = apply != 0;
    d["comment"] = comment.get(), d["authorization"] = auth.get();
    return d;
}

}  // namespace

void registerVessel(py::module_ &m) {
    py::class_<Vessel>(m, "Vessel")
        .def(py::init<const py::object &>(), py::arg("path"))
        .def(py::init<>())
        .def_property_readonly("file_name", &Vessel::fileName)
        .def_property_readonly("modified", &Vessel::modified)
        .def("store", &Vessel::store, py::arg("path") = py::none())
        .def("kinds", &Vessel::kinds)
        .def("entries", &Vessel::entries, py::arg("kind"))
        .def("add", &Vessel::add, py::arg("kind"), py::arg("time"), py::arg("settings") = py::dict())
        .def("update", &Vessel::update, py::arg("kind"), py::arg("time"), py::arg("settings"))
        .def("remove", &Vessel::remove, py::arg("kind"), py::arg("time"))
        .def("gyro", &queryGyro, py::arg("time"))
        .def("heave", &queryHeave, py::arg("time"))
        .def("navigation", &queryNavigation, py::arg("time"))
        .def("pitch", &queryAttitude<VesselPitchSensorTmIdxConfig>, py::arg("time"))
        .def("roll", &queryAttitude<VesselRollSensorTmIdxConfig>, py::arg("time"))
        .def("svp", &querySvp, py::arg("time"))
        .def("towed", &queryTowed, py::arg("time"))
        .def("waterline", &queryWaterline, py::arg("time"))
        .def("depth", &queryDepth, py::arg("time"))
        .def("draft", &queryDraft, py::arg("time"));
}

}  // namespace velmio::python
