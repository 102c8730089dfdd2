// The vessel configuration as a Python object: load, the flat queries by
// sensor kind and time, its entries with their settings, store.
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

// One time-stamped entry of a vessel, its settings named by the table of
// vessel_settings.cpp. It keeps its vessel alive: moving it in time is a
// change of its kind's list.
class VesselEntry {
public:
    VesselEntry(std::shared_ptr<VELMVesselSensorConfig> entry, py::object vessel, VELMVessel *owner)
        : entry_(std::move(entry)), vessel_(std::move(vessel)), owner_(owner) {}

    py::object kind() const { return text(entry_->getSensorName()); }
    double time() const { return entry_->getTimeStamp(); }
    void setTime(double time) {
        if (time == entry_->getTimeStamp()) return;
        VELMVesselSensorList *list = owner_->getSensorList(entry_->getSensorName());
        if (!list) throw Failure{5100009, "the entry is no longer in its vessel"};
        int error = 0;
        auto held = list->getConfig(time, error);
        // The list drops an entry moved onto a taken time: refused before.
        if (held && held->getTimeStamp() == time) throw Failure{5100008, "an entry with that time exists"};
        check(list->updateTimeStamp(entry_.get(), time), "entry time");
    }
    py::list names() const { return entrySettingNames(*entry_); }
    py::object get(const std::string &name) const { return entrySetting(*entry_, name); }
    void set(const std::string &name, const py::handle &value) { setEntrySetting(*entry_, name, value); }
    // Several settings at once; "time" moves the entry after the others.
    void apply(const py::dict &settings) {
        for (auto item : settings) {
            const std::string key = py::str(item.first);
            if (key != "time") set(key, item.second);
        }
        if (settings.contains("time")) setTime(settings["time"].cast<double>());
    }

private:
    std::shared_ptr<VELMVesselSensorConfig> entry_;
    py::object vessel_;
    VELMVessel *owner_;
};

class Vessel {
public:
    explicit Vessel(const py::object &path) {
        int error = 0;
        const std::wstring name = widePath(path);
        {
            py::gil_scoped_release unlocked;
            vessel_ = std::make_unique<VELMVessel>(name.c_str(), error);
        }
        check(error, "vessel configuration");
    }
    Vessel() : vessel_(std::make_unique<VELMVessel>()) {}

    py::object fileName() const { return text(vessel_->getFileName()); }
    bool modified() const { return vessel_->isModified(); }

    void store(const py::object &path) {
        if (!path.is_none()) check(vessel_->setFileName(widePath(path).c_str()), "file name");
        int rc = 0;
        {
            py::gil_scoped_release unlocked;
            rc = vessel_->store();
        }
        check(rc, "store");
    }

    py::list kinds() const {
        py::list out;
        for (const auto &list : vessel_->getSensors()) out.append(text(list->getName()));
        return out;
    }

    static py::list entries(const py::object &self, const std::wstring &kind) {
        Vessel &v = self.cast<Vessel &>();
        py::list out;
        VELMVesselSensorList *list = v.vessel_->getSensorList(kind.c_str());
        if (!list) throw Failure{5100003, "no entries of that kind"};
        for (auto e = list->getFirstConfig(); e; e = list->getNextConfig(e.get()))
            out.append(VesselEntry(e, self, v.vessel_.get()));
        return out;
    }

    // The entry of a kind valid at time.
    static VesselEntry entry(const py::object &self, const std::wstring &kind, double time) {
        Vessel &v = self.cast<Vessel &>();
        int error = 0;
        auto e = v.vessel_->getSensor(kind.c_str(), time, error);
        check(error, "entry");
        if (!e) throw Failure{5100009, "no entry of that kind"};
        return VesselEntry(e, self, v.vessel_.get());
    }

    // Adds an entry of a kind at time with the given settings.
    static VesselEntry add(const py::object &self, const std::wstring &kind, double time, const py::dict &settings) {
        Vessel &v = self.cast<Vessel &>();
        std::shared_ptr<VELMVesselSensorConfig> e = VELM::VesselRegistry::create(kind.c_str());
        if (!e) throw Failure{5100003, "not a sensor kind of the vessel configuration"};
        VesselEntry made(e, self, v.vessel_.get());
        made.apply(settings);
        int error = 0;
        const VELMVesselSensorList *list = v.vessel_->getSensorList(kind.c_str());
        if (auto held = list ? list->getConfig(time, error) : nullptr; held && held->getTimeStamp() == time)
            throw Failure{5100008, "an entry with that time exists"};
        // Made at time 0, then moved to its time once its list holds it.
        check(v.vessel_->addSensor(e), "add entry");
        made.setTime(time);
        return made;
    }

    // Changes the settings of the entry of exactly that time.
    static void update(const py::object &self, const std::wstring &kind, double time, const py::dict &settings) {
        Vessel &v = self.cast<Vessel &>();
        VELMVesselSensorList *list = v.vessel_->getSensorList(kind.c_str());
        if (!list) throw Failure{5100003, "no entries of that kind"};
        for (auto e = list->getFirstConfig(); e; e = list->getNextConfig(e.get()))
            if (e->getTimeStamp() == time) return VesselEntry(e, self, v.vessel_.get()).apply(settings);
        throw Failure{5100009, "no entry with that time"};
    }

    void remove(const std::wstring &kind, double time) { check(vessel_->removeSensor(time, kind.c_str()), "remove"); }

    VELMVessel *handle() const { return vessel_.get(); }

private:
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
    py::list kinds;
    for (std::size_t i = 0; i < VELM::VesselRegistry::count(); ++i) kinds.append(text(VELM::VesselRegistry::name(i)));
    m.attr("VESSEL_KINDS") = kinds;
    m.attr("TRANSDUCER_SETTINGS") = transducerSettingNames();

    py::class_<VesselEntry>(m, "VesselEntry")
        .def_property_readonly("kind", &VesselEntry::kind)
        .def_property("time", &VesselEntry::time, &VesselEntry::setTime)
        .def("names", &VesselEntry::names)
        .def("get", &VesselEntry::get, py::arg("name"))
        .def("set", &VesselEntry::set, py::arg("name"), py::arg("value"))
        .def("apply", &VesselEntry::apply, py::arg("settings"));

    py::class_<Vessel>(m, "Vessel")
        .def(py::init<const py::object &>(), py::arg("path"))
        .def(py::init<>())
        .def_property_readonly("file_name", &Vessel::fileName)
        .def_property_readonly("modified", &Vessel::modified)
        .def("store", &Vessel::store, py::arg("path") = py::none())
        .def("kinds", &Vessel::kinds)
        .def("entries", &Vessel::entries, py::arg("kind"))
        .def("entry", &Vessel::entry, py::arg("kind"), py::arg("time"))
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
