// Every setting of the vessel entry kinds as a named Python value. One table
// of rows over the entry classes' public accessors, one row per setting of
// a settings class; a kind has the rows of every class it is made of, so a
// kind and its side scan twin share their rows and a new kind built from
// existing classes needs no row at all.
#include "binding.hpp"

#include <velmio/vessel_entries.hpp>

#include <array>
#include <functional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace velmio::python {

namespace {

using Entry = VELMVesselSensorConfig;

template <class O>
struct Row {
    const char *name;
    std::function<bool(O &)> applies;
    std::function<py::object(O &)> get;
    std::function<void(O &, const py::handle &)> set;
};

// Values from Python, refused with kBadArgument when of the wrong type.
double number(const py::handle &v, const char *name) {
    if (py::isinstance<py::bool_>(v) || !(py::isinstance<py::float_>(v) || py::isinstance<py::int_>(v) ||
                                          py::hasattr(v, "__float__")))
        throw Failure{kBadArgument, std::string(name) + ": expected a number"};
    return v.cast<double>();
}
bool flag(const py::handle &v, const char *name) {
    if (!py::isinstance<py::bool_>(v) && !py::hasattr(v, "dtype"))
        throw Failure{kBadArgument, std::string(name) + ": expected True or False"};
    return v.cast<bool>();
}
unsigned whole(const py::handle &v, const char *name) {
    const long long n = py::isinstance<py::int_>(v) || py::hasattr(v, "__index__") ? v.cast<long long>() : -1;
    if (n < 0 || n > 0xFFFFFFFFLL) throw Failure{kBadArgument, std::string(name) + ": expected an integer 0..2^32-1"};
    return static_cast<unsigned>(n);
}
py::object text(const wchar_t *t) { return t ? py::object(py::cast(std::wstring(t))) : py::object(py::none()); }
template <std::size_t N>
std::array<double, N> numbers(const py::handle &v, const char *name) {
    std::array<double, N> out{};
    py::sequence s = py::isinstance<py::sequence>(v) && !py::isinstance<py::str>(v) ? py::reinterpret_borrow<py::sequence>(v)
                                                                                    : py::sequence();
    if (s.size() != N) throw Failure{kBadArgument, std::string(name) + ": expected " + std::to_string(N) + " numbers"};
    for (std::size_t i = 0; i < N; ++i) out[i] = number(s[i], name);
    return out;
}
template <std::size_t N>
py::tuple tupleOf(const std::array<double, N> &a) {
    py::tuple t(N);
    for (std::size_t i = 0; i < N; ++i) t[i] = py::float_(a[i]);
    return t;
}

// The settings class a member function belongs to.
template <class T>
struct ClassOf;
template <class C, class R, class... A>
struct ClassOf<R (C::*)(A...) const> {
    using type = C;
};
template <class C, class R, class... A>
struct ClassOf<R (C::*)(A...)> {
    using type = C;
};

template <class C, class O>
C &as(O &o) {
    if constexpr (std::is_same_v<C, O>) return o;
    else return dynamic_cast<C &>(o);
}
template <class C, class O>
bool is(O &o) {
    if constexpr (std::is_same_v<C, O>) return true;
    else return dynamic_cast<C *>(&o) != nullptr;
}

// Rows from a getter and setter pair; the value's kind follows the getter.
template <class O, auto Get, auto Set>
Row<O> row(const char *name) {
    using C = typename ClassOf<decltype(Get)>::type;
    using V = decltype((std::declval<C &>().*Get)());
    Row<O> r{name, &is<C, O>, nullptr, nullptr};
    r.get = [](O &o) -> py::object {
        if constexpr (std::is_same_v<V, const wchar_t *>) return text((as<C>(o).*Get)());
        else return py::cast((as<C>(o).*Get)());
    };
    r.set = [name](O &o, const py::handle &v) {
        C &c = as<C>(o);
        if constexpr (std::is_same_v<V, const wchar_t *>) {
            const std::wstring w = v.is_none() ? std::wstring() : wideText(v);
            using R = decltype((c.*Set)(nullptr));
            if constexpr (std::is_same_v<R, int>)
                check((c.*Set)(v.is_none() ? nullptr : w.c_str()), name);
            else
                (c.*Set)(v.is_none() ? nullptr : w.c_str());
        } else if constexpr (std::is_same_v<V, bool>) {
            (c.*Set)(flag(v, name));
        } else if constexpr (std::is_same_v<V, unsigned>) {
            (c.*Set)(whole(v, name));
        } else {
            (c.*Set)(number(v, name));
        }
    };
    return r;
}

// Rows of N numbers read and written together (offsets, angles).
template <class O, std::size_t N, auto Get, auto Set>
Row<O> numbersRow(const char *name) {
    using C = typename ClassOf<decltype(Get)>::type;
    Row<O> r{name, &is<C, O>, nullptr, nullptr};
    r.get = [](O &o) -> py::object {
        std::array<double, N> a{};
        std::apply([&](auto &...v) { (as<C>(o).*Get)(v...); }, a);
        return tupleOf(a);
    };
    r.set = [name](O &o, const py::handle &v) {
        const auto a = numbers<N>(v, name);
        std::apply([&](auto... x) { (as<C>(o).*Set)(x...); }, a);
    };
    return r;
}

// One head of the two-headed sound velocity probe.
template <int Head, int (VELMSVPConfig::*Get)(int, double &, double &, double &) const,
          int (VELMSVPConfig::*Set)(int, double, double, double)>
Row<Entry> headRow(const char *name) {
    Row<Entry> r{name, &is<VELMSVPConfig, Entry>, nullptr, nullptr};
    r.get = [](Entry &o) -> py::object {
        std::array<double, 3> a{};
        check((as<VELMSVPConfig>(o).*Get)(Head, a[0], a[1], a[2]), "head");
        return tupleOf(a);
    };
    r.set = [name](Entry &o, const py::handle &v) {
        const auto a = numbers<3>(v, name);
        check((as<VELMSVPConfig>(o).*Set)(Head, a[0], a[1], a[2]), name);
    };
    return r;
}

// The sweep error figures of a transducer, one named value each.
using Sweep = std::tuple<bool, double, double, double, double>;
template <std::size_t I>
Row<VELMTransducerConfig> sweepRow(const char *name) {
    Row<VELMTransducerConfig> r{name, &is<VELMTransducerConfig, VELMTransducerConfig>, nullptr, nullptr};
    auto read = [](VELMTransducerConfig &t) {
        Sweep s;
        t.getSweepTPEParameters(std::get<0>(s), std::get<1>(s), std::get<2>(s), std::get<3>(s), std::get<4>(s));
        return s;
    };
    r.get = [read](VELMTransducerConfig &t) -> py::object { return py::cast(std::get<I>(read(t))); };
    r.set = [read, name](VELMTransducerConfig &t, const py::handle &v) {
        Sweep s = read(t);
        if constexpr (I == 0) std::get<0>(s) = flag(v, name);
        else std::get<I>(s) = number(v, name);
        std::apply([&](auto... x) { t.setSweepTPEParameters(x...); }, s);
    };
    return r;
}

using T = VELMTransducerConfig;
const std::vector<Row<T>> &transducerRows() {
    static const std::vector<Row<T>> rows = {
        row<T, &T::getNumber, &T::setNumber>("number"),
        row<T, &T::getStartBeam, &T::setStartBeamNum>("start_beam"),
        row<T, &T::getModel, &T::setModel>("model"),
        row<T, &T::getManufacturer, &T::setManufacturer>("manufacturer"),
        row<T, &T::getSerialNumber, &T::setSerialNumber>("serial_number"),
        numbersRow<T, 3, &T::getPositionOffset, &T::setPositionOffset>("offset"),
        row<T, &T::getLatency, &T::setLatency>("latency"),
        numbersRow<T, 3, &T::getMountAngle, &T::setMountAngle>("mount"),
        sweepRow<0>("transducer_fixed"),
        sweepRow<1>("mru_alignment_gyro"),
        sweepRow<2>("mru_alignment_roll"),
        sweepRow<3>("squat_perc_factor"),
        sweepRow<4>("heave_perc_amplitude"),
    };
    return rows;
}

template <class O>
const Row<O> &find(const std::vector<Row<O>> &rows, O &o, const std::string &name) {
    for (const Row<O> &r : rows)
        if (name == r.name && r.applies(o)) return r;
    throw Failure{kBadArgument, "not a setting of this entry: " + name};
}

py::dict transducerDict(T &t) {
    py::dict d;
    for (const Row<T> &r : transducerRows()) d[r.name] = r.get(t);
    return d;
}

// Table rows as (a, b) pairs: the gyro offsets and the draft table.
std::vector<std::array<double, 2>> pairsFrom(const py::handle &v, const char *name) {
    if (!py::isinstance<py::sequence>(v) && !py::hasattr(v, "__array__"))
        throw Failure{kBadArgument, std::string(name) + ": expected rows of two numbers"};
    std::vector<std::array<double, 2>> out;
    for (const py::handle item : py::iter(v)) out.push_back(numbers<2>(item, name));
    return out;
}

using G = VELMGyroSettings;
using SSG = VELMSideScanGyroConfig;
using Id = VELMSensorIdentity;
using H = VELMHeaveSettings;
using N = VELMNavSettings;
using P = VELMPitchSettings;
using R = VELMRollSettings;
using Tow = VELMTowedSSSConfig;
using Svp = VELMSVPConfig;
using D = VELMDepthConfig;
using Dr = VELMDraftConfig;
using W = VELMWaterlineHeight;
using Tpe = VELMTPEConfig;

const std::vector<Row<Entry>> &entryRows() {
    static const std::vector<Row<Entry>> rows = [] {
        std::vector<Row<Entry>> t = {
            row<Entry, &Entry::getLatency, &Entry::setLatency>("latency"),
            row<Entry, &Entry::getComment, &Entry::setComment>("comment"),
            row<Entry, &Entry::getAuthorization, &Entry::setAuthorization>("authorization"),
            row<Entry, &Id::getManufacturer, &Id::setManufacturer>("manufacturer"),
            row<Entry, &Id::getModel, &Id::setModel>("model"),
            row<Entry, &Id::getSerialNumber, &Id::setSerialNumber>("serial_number"),
            row<Entry, &G::getApplyFlag, &G::setApplyFlag>("apply"),
            row<Entry, &SSG::getGyroStdDev, &SSG::setGyroStdDev>("gyro_std_dev"),
            row<Entry, &H::getApplyFlag, &H::setApplyFlag>("apply"),
            numbersRow<Entry, 3, &H::getOffsets, &H::setOffsets>("offset"),
            row<Entry, &H::getHeaveOffset, &H::setHeaveOffset>("heave_offset"),
            row<Entry, &N::getEllipseName, &N::setEllipseName>("ellipse"),
            numbersRow<Entry, 3, &N::getOffsets, &N::setOffsets>("offset"),
            row<Entry, &P::getApplyFlag, &P::setApplyFlag>("apply"),
            row<Entry, &P::getPitchOffset, &P::setPitchOffset>("pitch_offset"),
            row<Entry, &R::getApplyFlag, &R::setApplyFlag>("apply"),
            row<Entry, &R::getRollOffset, &R::setRollOffset>("roll_offset"),
            numbersRow<Entry, 3, &Tow::getOffsets, &Tow::setOffsets>("offset"),
            row<Entry, &Tow::getLayback, &Tow::setLayback>("layback"),
            row<Entry, &Svp::isDualHead, &Svp::setDualHead>("dual_head"),
            headRow<1, &Svp::getPositionOffsets, &Svp::setPositionOffsets>("offset"),
            headRow<2, &Svp::getPositionOffsets, &Svp::setPositionOffsets>("offset2"),
            headRow<1, &Svp::getMountAngle, &Svp::setMountAngle>("mount"),
            headRow<2, &Svp::getMountAngle, &Svp::setMountAngle>("mount2"),
            row<Entry, &D::getSensorClass, &D::setSensorClass>("sensor_class"),
            numbersRow<Entry, 3, &D::getNavToBoomOffset, &D::setNavToBoomOffset>("nav_to_boom"),
            numbersRow<Entry, 3, &D::getMRUToBoomOffset, &D::setMRUToBoomOffset>("mru_to_boom"),
            row<Entry, &Dr::getApplyFlag, &Dr::setApplyFlag>("apply"),
            row<Entry, &W::getWaterLine, &W::setWaterLine>("waterline"),
            row<Entry, &W::getApplyFlag, &W::setApplyFlag>("apply"),
            row<Entry, &W::getWaterlineStdDev, &W::setWaterlineStdDev>("std_dev"),
            numbersRow<Entry, 6, &Tpe::getOffsetMRUToTrans, &Tpe::setOffsetMRUToTrans>("mru_to_transducer"),
            numbersRow<Entry, 6, &Tpe::getOffsetNavToTrans, &Tpe::setOffsetNavToTrans>("nav_to_transducer"),
            numbersRow<Entry, 2, &Tpe::getTransducerRollOffset, &Tpe::setTransducerRollOffset>("transducer_roll"),
            row<Entry, &Tpe::getNavigationLatency, &Tpe::setNavigationLatency>("navigation_latency"),
            numbersRow<Entry, 3, &Tpe::getMeasurementStdDev, &Tpe::setMeasurementStdDev>("offset_std_dev"),
            row<Entry, &Tpe::getGyroStdDev, &Tpe::setGyroStdDev>("gyro_std_dev"),
            numbersRow<Entry, 2, &Tpe::getHeaveStdDev, &Tpe::setHeaveStdDev>("heave_std_dev"),
            row<Entry, &Tpe::getPitchStdDev, &Tpe::setPitchStdDev>("pitch_std_dev"),
            row<Entry, &Tpe::getRollStdDev, &Tpe::setRollStdDev>("roll_std_dev"),
            row<Entry, &Tpe::getPitchStablizationStdDev, &Tpe::setPitchStablizationStdDev>("pitch_stabilization_std_dev"),
            row<Entry, &Tpe::getNavigationStdDev, &Tpe::setNavigationStdDev>("navigation_std_dev"),
            row<Entry, &Tpe::getTransducerTimingStdDev, &Tpe::setTransducerTimingStdDev>("transducer_timing_std_dev"),
            row<Entry, &Tpe::getNavigationTimingStdDev, &Tpe::setNavigationTimingStdDev>("navigation_timing_std_dev"),
            row<Entry, &Tpe::getGyroTimingStdDev, &Tpe::setGyroTimingStdDev>("gyro_timing_std_dev"),
            row<Entry, &Tpe::getHeaveTimingStdDev, &Tpe::setHeaveTimingStdDev>("heave_timing_std_dev"),
            row<Entry, &Tpe::getPitchTimingStdDev, &Tpe::setPitchTimingStdDev>("pitch_timing_std_dev"),
            row<Entry, &Tpe::getRollTimingStdDev, &Tpe::setRollTimingStdDev>("roll_timing_std_dev"),
            row<Entry, &Tpe::getSoundVelocityStdDev, &Tpe::setSoundVelocityStdDev>("sound_velocity_std_dev"),
            row<Entry, &Tpe::getSurfSoundSpeedStdDev, &Tpe::setSurfSoundSpeedStdDev>("surface_sound_speed_std_dev"),
            row<Entry, &Tpe::getTideMeasuredStdDev, &Tpe::setTideMeasuredStdDev>("tide_measured_std_dev"),
            row<Entry, &Tpe::getTidePredictedStdDev, &Tpe::setTidePredictedStdDev>("tide_predicted_std_dev"),
            numbersRow<Entry, 3, &Tpe::getMRUAlignmentStdDev, &Tpe::setMRUAlignmentStdDev>("mru_alignment_std_dev"),
            row<Entry, &Tpe::getSpeedOverGroundStdDev, &Tpe::setSpeedOverGroundStdDev>("speed_over_ground_std_dev"),
            row<Entry, &Tpe::getVesselLoadingStdDev, &Tpe::setVesselLoadingStdDev>("vessel_loading_std_dev"),
            row<Entry, &Tpe::getDraftStdDev, &Tpe::setDraftStdDev>("draft_std_dev"),
            row<Entry, &Tpe::getDeltaDraftStdDev, &Tpe::setDeltaDraftStdDev>("delta_draft_std_dev"),
            row<Entry, &Tpe::getStDevComment, &Tpe::setStDevComment>("std_dev_comment"),
        };
        // Tables of rows: read as lists, written by replacing every row.
        t.push_back({"gyro_offsets", &is<G, Entry>,
                     [](Entry &e) -> py::object {
                         py::list out;
                         for (const VELMGyroOffset &r : as<G>(e).getAllGyroOffsets())
                             out.append(py::make_tuple(r.azimuth, r.offset));
                         return out;
                     },
                     [](Entry &e, const py::handle &v) {
                         const auto rows = pairsFrom(v, "gyro_offsets (azimuth, offset)");
                         G &g = as<G>(e);
                         g.resizeGyroTable(0);
                         for (const auto &r : rows) g.setGyroOffset(r[1], r[0]);
                     }});
        t.push_back({"draft_table", &is<Dr, Entry>,
                     [](Entry &e) -> py::object {
                         py::list out;
                         for (const VELMDraftEntry &r : as<Dr>(e).getDraftEntries())
                             out.append(py::make_tuple(r.speed, r.draft));
                         return out;
                     },
                     [](Entry &e, const py::handle &v) {
                         const auto rows = pairsFrom(v, "draft_table (speed, draft)");
                         Dr &d = as<Dr>(e);
                         d.resizeDraftTable(0);
                         for (const auto &r : rows) d.setDraft(r[0], r[1]);
                     }});
        t.push_back({"transducers", &is<D, Entry>,
                     [](Entry &e) -> py::object {
                         py::list out;
                         D &d = as<D>(e);
                         for (std::size_t i = 0; i < d.getNumTransducers(); ++i)
                             out.append(transducerDict(*d.getTransducer(i)));
                         return out;
                     },
                     [](Entry &e, const py::handle &v) {
                         if (!py::isinstance<py::sequence>(v))
                             throw Failure{kBadArgument, "transducers: expected a list of dicts"};
                         std::vector<T> made;
                         for (const py::handle item : v) {
                             if (!py::isinstance<py::dict>(item))
                                 throw Failure{kBadArgument, "transducers: expected a list of dicts"};
                             T t;
                             for (auto [key, value] : py::reinterpret_borrow<py::dict>(item))
                                 find(transducerRows(), t, py::str(key)).set(t, value);
                             made.push_back(t);
                         }
                         D &d = as<D>(e);
                         while (d.getNumTransducers() > 0) d.removeTransducer(d.getNumTransducers() - 1);
                         for (const T &t : made) d.addTransducer(t);
                     }});
        return t;
    }();
    return rows;
}

}  // namespace

py::list entrySettingNames(VELMVesselSensorConfig &entry) {
    py::list names;
    for (const Row<Entry> &r : entryRows())
        if (r.applies(entry)) names.append(r.name);
    return names;
}

py::object entrySetting(VELMVesselSensorConfig &entry, const std::string &name) {
    return find(entryRows(), entry, name).get(entry);
}

void setEntrySetting(VELMVesselSensorConfig &entry, const std::string &name, const py::handle &value) {
    find(entryRows(), entry, name).set(entry, value);
}

py::list transducerSettingNames() {
    py::list names;
    for (const Row<T> &r : transducerRows()) names.append(r.name);
    return names;
}

}  // namespace velmio::python
