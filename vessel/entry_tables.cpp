// The settings of every entry kind and of the vessel shape, as tables of
// element names in writing order over their private state, and the load and
// store of each class.
#include <velmio/utils.hpp>
#include <velmio/vessel.hpp>
#include <velmio/vessel_entries.hpp>

#include "vessel/entry_state.h"
#include "vessel/field_table.h"
#include "vessel/xml_access.h"

#include <algorithm>

struct VELMVesselShape::Impl {
    std::vector<Coord> plan_;
    std::vector<Coord> profile_;
    double length_ = 0.0, width_ = 0.0, height_ = 0.0;
};

namespace velmio::vessel {

struct Tables {
    template <class C>
    using F = Field<C>;

    static const Table<VELMVesselSensorConfig::Impl> &root() {
        using R = VELMVesselSensorConfig::Impl;
        static const Table<R> t = {
            F<R>{"Comment", "value", &R::comment_},
            F<R>{"Authorization", "value", &R::authorization_},
            F<R>{"Latency", "value", &R::latency_},
        };
        return t;
    }

    template <class E>
    static void identity(Table<E> &t) {
        t.push_back(F<E>{"Manufacturer", "value", at<E>(&VELMSensorIdentity::Impl::manufacturer_)});
        t.push_back(F<E>{"Model", "value", at<E>(&VELMSensorIdentity::Impl::model_)});
        t.push_back(F<E>{"SerialNumber", "value", at<E>(&VELMSensorIdentity::Impl::serialNumber_)});
    }

    static const Table<VELMGyroOffset> &gyroRow() {
        using G = VELMGyroOffset;
        static const Table<G> t = {F<G>{"", "Azimuth", &G::azimuth}, F<G>{"", "Offset", &G::offset}};
        return t;
    }

    template <class E>
    static Table<E> gyro() {
        Table<E> t;
        identity(t);
        t.push_back(F<E>{"ApplyFlag", "value", at<E>(&VELMGyroSettings::Impl::applyFlag_)});
        t.push_back(rows<E, VELMGyroOffset>(
            "Offsets/Gyro", "Entry", &VELMGyroSettings::Impl::gyroTable_,
            +[](E &e, const VELMGyroOffset &row) { e.setGyroOffset(row.offset, row.azimuth); }, &gyroRow()));
        return t;
    }

    template <class E>
    static Table<E> heave() {
        using S = VELMHeaveSettings::Impl;
        Table<E> t;
        identity(t);
        t.push_back(F<E>{"ApplyFlag", "value", at<E>(&S::applyFlag_)});
        t.push_back(F<E>{"Offsets", "X", at<E>(&S::x_)});
        t.push_back(F<E>{"Offsets", "Y", at<E>(&S::y_)});
        t.push_back(F<E>{"Offsets", "Z", at<E>(&S::z_)});
        t.push_back(F<E>{"Offsets", "Heave", at<E>(&S::heave_)});
        return t;
    }

    template <class E>
    static Table<E> nav() {
        using S = VELMNavSettings::Impl;
        Table<E> t;
        identity(t);
        t.push_back(F<E>{"Ellipse", "value", at<E>(&S::ellipse_)});
        t.push_back(F<E>{"Offsets", "X", at<E>(&S::x_)});
        t.push_back(F<E>{"Offsets", "Y", at<E>(&S::y_)});
        t.push_back(F<E>{"Offsets", "Z", at<E>(&S::z_)});
        return t;
    }

    template <class E>
    static Table<E> pitch() {
        Table<E> t;
        identity(t);
        t.push_back(F<E>{"ApplyFlag", "value", at<E>(&VELMPitchSettings::Impl::applyFlag_)});
        t.push_back(F<E>{"Offsets", "Pitch", at<E>(&VELMPitchSettings::Impl::pitch_)});
        return t;
    }

    template <class E>
    static Table<E> roll() {
        Table<E> t;
        identity(t);
        t.push_back(F<E>{"ApplyFlag", "value", at<E>(&VELMRollSettings::Impl::applyFlag_)});
        t.push_back(F<E>{"Offsets", "Roll", at<E>(&VELMRollSettings::Impl::roll_)});
        return t;
    }

    static Table<VELMSideScanGyroConfig::Impl> sideScanGyro() {
        using E = VELMSideScanGyroConfig::Impl;
        Table<E> t = gyro<E>();
        t.push_back(F<E>{"StdDev", "Gyro", &E::gyroStdDev_});
        return t;
    }

    template <class E>
    static Table<E> sideScan() {
        Table<E> t;
        identity(t);
        return t;
    }

    static Table<VELMTowedSSSConfig::Impl> towed() {
        using E = VELMTowedSSSConfig::Impl;
        Table<E> t;
        identity(t);
        for (auto f : {F<E>{"Offsets", "X", &E::x_}, F<E>{"Offsets", "Y", &E::y_}, F<E>{"Offsets", "Z", &E::z_},
                       F<E>{"Offsets", "Layback", &E::layback_}})
            t.push_back(f);
        return t;
    }

    static Table<VELMSVPConfig::Impl> svp() {
        using E = VELMSVPConfig::Impl;
        return {
            F<E>{"DualHead", "value", &E::dualHead_},
            F<E>{"Offsets", "X", &E::x_},           F<E>{"Offsets", "Y", &E::y_},
            F<E>{"Offsets", "Z", &E::z_},           F<E>{"Offsets", "X2", &E::x2_},
            F<E>{"Offsets", "Y2", &E::y2_},         F<E>{"Offsets", "Z2", &E::z2_},
            F<E>{"MountAngle", "Pitch", &E::pitch_}, F<E>{"MountAngle", "Roll", &E::roll_},
            F<E>{"MountAngle", "Azimuth", &E::azimuth_}, F<E>{"MountAngle", "Pitch2", &E::pitch2_},
            F<E>{"MountAngle", "Roll2", &E::roll2_}, F<E>{"MountAngle", "Azimuth2", &E::azimuth2_},
        };
    }

    static VELMTransducerConfig::Impl &transducerState(const VELMTransducerConfig &t) { return *t.d_; }

    static const Table<VELMTransducerConfig::Impl> &transducer() {
        using T = VELMTransducerConfig::Impl;
        static const Table<T> t = {
            F<T>{"", "Number", &T::number_},
            F<T>{"", "StartBeam", &T::startBeam_},
            F<T>{"", "Model", &T::model_},
            F<T>{"Manufacturer", "value", &T::manufacturer_},
            F<T>{"SerialNumber", "value", &T::serialNumber_},
            F<T>{"Offsets", "X", &T::x_},
            F<T>{"Offsets", "Y", &T::y_},
            F<T>{"Offsets", "Z", &T::z_},
            F<T>{"Offsets", "Latency", &T::latency_},
            F<T>{"MountAngle", "Pitch", &T::pitch_},
            F<T>{"MountAngle", "Roll", &T::roll_},
            F<T>{"MountAngle", "Azimuth", &T::azimuth_},
            F<T>{"TransducerFixed", "value", &T::transducerFixed_, true},
            F<T>{"SquatPercFactor", "value", &T::squatPercFactor_, true},
            F<T>{"HeavePercAmplitude", "value", &T::heavePercAmplitude_, true},
            F<T>{"MRUAlignment", "Gyro", &T::mruGyro_, true},
            F<T>{"MRUAlignment", "Roll", &T::mruRoll_, true},
        };
        return t;
    }

    static Table<VELMDepthConfig::Impl> depth() {
        using E = VELMDepthConfig::Impl;
        return {
            F<E>{"SensorClass", "value", &E::sensorClass_},
            F<E>{"TPENavigationToBoomOffset", "X", &E::navX_, true},
            F<E>{"TPENavigationToBoomOffset", "Y", &E::navY_, true},
            F<E>{"TPENavigationToBoomOffset", "Z", &E::navZ_, true},
            F<E>{"TPEMRUToBoomOffset", "X", &E::mruX_, true},
            F<E>{"TPEMRUToBoomOffset", "Y", &E::mruY_, true},
            F<E>{"TPEMRUToBoomOffset", "Z", &E::mruZ_, true},
            rows<E, VELMTransducerConfig>(
                "TransducerEntries", "Transducer", &E::transducers_,
                +[](E &e, const VELMTransducerConfig &row) { e.transducers_.push_back(row); }, &transducer(),
                &transducerState),
        };
    }

    static Table<VELMDraftConfig::Impl> draft() {
        using E = VELMDraftConfig::Impl;
        static const Table<VELMDraftEntry> row = {F<VELMDraftEntry>{"", "Speed", &VELMDraftEntry::speed},
                                                  F<VELMDraftEntry>{"", "Draft", &VELMDraftEntry::draft}};
        return {
            F<E>{"ApplyFlag", "value", &E::applyFlag_},
            rows<E, VELMDraftEntry>(
                "DraftEntries", "Entry", &E::draftTable_,
                +[](E &e, const VELMDraftEntry &r) { e.setDraft(r.speed, r.draft); }, &row),
        };
    }

    static Table<VELMWaterlineHeight::Impl> waterline() {
        using E = VELMWaterlineHeight::Impl;
        return {
            F<E>{"WaterLine", "value", &E::waterLine_},
            F<E>{"ApplyFlag", "value", &E::applyFlag_},
            F<E>{"StdDev", "Waterline", &E::waterlineStdDev_},
        };
    }

    static Table<VELMTPEConfig::Impl> tpe() {
        using E = VELMTPEConfig::Impl;
        return {
            F<E>{"Offsets/MRUtoTransducer", "X", &E::mruX_},
            F<E>{"Offsets/MRUtoTransducer", "Y", &E::mruY_},
            F<E>{"Offsets/MRUtoTransducer", "Z", &E::mruZ_},
            F<E>{"Offsets/MRUtoTransducer", "X2", &E::mruX2_},
            F<E>{"Offsets/MRUtoTransducer", "Y2", &E::mruY2_},
            F<E>{"Offsets/MRUtoTransducer", "Z2", &E::mruZ2_},
            F<E>{"Offsets/NavigationToTransducer", "X", &E::navX_},
            F<E>{"Offsets/NavigationToTransducer", "Y", &E::navY_},
            F<E>{"Offsets/NavigationToTransducer", "Z", &E::navZ_},
            F<E>{"Offsets/NavigationToTransducer", "X2", &E::navX2_},
            F<E>{"Offsets/NavigationToTransducer", "Y2", &E::navY2_},
            F<E>{"Offsets/NavigationToTransducer", "Z2", &E::navZ2_},
            F<E>{"Offsets/Transducer", "Roll", &E::transRoll_},
            F<E>{"Offsets/Transducer", "Roll2", &E::transRoll2_},
            F<E>{"Offsets/Navigation", "Latency", &E::navLatency_},
            F<E>{"StandardDeviation/Motion", "Gyro", &E::sdGyro_},
            F<E>{"StandardDeviation/Motion", "HeavePercAmplitude", &E::sdHeavePerc_},
            F<E>{"StandardDeviation/Motion", "Heave", &E::sdHeave_},
            F<E>{"StandardDeviation/Motion", "Roll", &E::sdRoll_},
            F<E>{"StandardDeviation/Motion", "Pitch", &E::sdPitch_},
            F<E>{"StandardDeviation/Motion", "PitchStablized", &E::sdPitchStab_},
            F<E>{"StandardDeviation/Position", "Navigation", &E::sdNavigation_},
            F<E>{"StandardDeviation/Timing", "Transducer", &E::tmTransducer_},
            F<E>{"StandardDeviation/Timing", "Navigation", &E::tmNavigation_},
            F<E>{"StandardDeviation/Timing", "Gyro", &E::tmGyro_},
            F<E>{"StandardDeviation/Timing", "Heave", &E::tmHeave_},
            F<E>{"StandardDeviation/Timing", "Pitch", &E::tmPitch_},
            F<E>{"StandardDeviation/Timing", "Roll", &E::tmRoll_},
            F<E>{"StandardDeviation/SoundVelocity", "Measured", &E::svMeasured_},
            F<E>{"StandardDeviation/SoundVelocity", "Surface", &E::svSurface_},
            F<E>{"StandardDeviation/Tide", "Measured", &E::tideMeasured_},
            F<E>{"StandardDeviation/Tide", "Zoning", &E::tideZoning_},
            F<E>{"StandardDeviation/Offsets", "X", &E::sdX_},
            F<E>{"StandardDeviation/Offsets", "Y", &E::sdY_},
            F<E>{"StandardDeviation/Offsets", "Z", &E::sdZ_},
            F<E>{"StandardDeviation/MRUAlignment", "Gyro", &E::alignGyro_},
            F<E>{"StandardDeviation/MRUAlignment", "Pitch", &E::alignPitch_},
            F<E>{"StandardDeviation/MRUAlignment", "Roll", &E::alignRoll_},
            F<E>{"StandardDeviation/Vessel", "Speed", &E::vSpeed_},
            F<E>{"StandardDeviation/Vessel", "Loading", &E::vLoading_},
            F<E>{"StandardDeviation/Vessel", "Draft", &E::vDraft_},
            F<E>{"StandardDeviation/Vessel", "DeltaDraft", &E::vDeltaDraft_},
            F<E>{"StDevComment", "value", &E::stDevComment_},
        };
    }

    static const Table<VELMVesselShape::Impl> &shape() {
        using S = VELMVesselShape::Impl;
        using P = VELMVesselShape::Coord;
        static const Table<P> planRow = {F<P>{"", "X", &P::first}, F<P>{"", "Y", &P::second}};
        static const Table<P> profileRow = {F<P>{"", "Y", &P::first}, F<P>{"", "Z", &P::second}};
        static const Table<S> t = {
            rows<S, P>(
                "PlanCoordinates", "Entry", &S::plan_, +[](S &s, const P &p) { s.plan_.push_back(p); }, &planRow),
            rows<S, P>(
                "ProfileCoordinates", "Entry", &S::profile_,
                +[](S &s, const P &p) { s.profile_.push_back(p); }, &profileRow),
            F<S>{"RP", "Length", &S::length_},
            F<S>{"RP", "Width", &S::width_},
            F<S>{"RP", "Height", &S::height_},
        };
        return t;
    }

    // The root's part of an entry's load: the time, the root settings, and
    // the binding to the element.
    static int loadRoot(VELMVesselSensorConfig::Impl &entry, xmlNode *node) {
        const auto text = attributeText(node, "value");
        if (!text) return -1;
        double time = 0.0;
        if (int status = VELMIOUtils::decodeTime(text->c_str(), time)) return status;
        entry.timeStamp_ = time;
        loadItems(entry, node, root());
        entry.node_ = node;
        return 0;
    }

    static int storeRoot(VELMVesselSensorConfig::Impl &entry, xmlNode *parent) {
        // An element of another document (the entry was moved) is left there.
        if (entry.node_ && parent && entry.node_->doc != parent->doc) entry.node_ = nullptr;
        if (!entry.node_) {
            if (!parent) return -1;
            entry.node_ = xmlNewChild(parent, nullptr, xml("TimeStamp"), nullptr);
            if (!entry.node_) return -1;
        }
        char text[32];
        if (formatTimeStamp(entry.timeStamp_, text, sizeof text) != 0) return -1;
        if (!setAttribute(entry.node_, "value", text)) return -1;
        return storeItems(entry, entry.node_, root(), true);
    }

    static VELMVesselSensorConfig::Impl &rootState(VELMVesselSensorConfig &entry) { return *entry.d_; }

    // The table of each kind, built once on first use.
    template <class E>
    static const Table<typename E::Impl> &table();

    template <class E>
    static int loadEntry(E &entry, xmlNode *node) {
        if (int status = entry.VELMVesselSensorConfig::load(node)) return status;
        loadItems(*entry.d_, node, table<E>());
        return 0;
    }

    template <class E>
    static int storeEntry(E &entry, xmlNode *parent, bool sweep = true) {
        if (int status = entry.VELMVesselSensorConfig::store(parent)) return status;
        return storeItems(*entry.d_, rootState(entry).node_, table<E>(), sweep);
    }
};

}  // namespace velmio::vessel

using velmio::vessel::Tables;

int VELMVesselSensorConfig::load(xmlNode *node) {
    if (!node) return -1;
    return Tables::loadRoot(*d_, node);
}

int VELMVesselSensorConfig::store(xmlNode *parent) { return Tables::storeRoot(*d_, parent); }

// S is the state of Class in tableExpression.
#define VELMIO_TABLE_ENTRY(Class, tableExpression, sweepExpression)                  \
    template <>                                                                      \
    const velmio::vessel::Table<Class::Impl> &Tables::table<Class>() {              \
        using S = Class::Impl;                                                       \
        static const velmio::vessel::Table<S> t = tableExpression;                   \
        return t;                                                                    \
    }                                                                                \
    int Class::load(xmlNode *node) { return Tables::loadEntry(*this, node); }        \
    int Class::store(xmlNode *parent) { return Tables::storeEntry(*this, parent, sweepExpression); }

VELMIO_TABLE_ENTRY(VELMGyroConfig, gyro<S>(), true)
VELMIO_TABLE_ENTRY(VELMSideScanGyroConfig, sideScanGyro(), true)
VELMIO_TABLE_ENTRY(VELMHeaveConfig, heave<S>(), true)
VELMIO_TABLE_ENTRY(VELMSideScanHeaveConfig, heave<S>(), true)
VELMIO_TABLE_ENTRY(VELMNavConfig, nav<S>(), true)
VELMIO_TABLE_ENTRY(VELMSideScanNavConfig, nav<S>(), true)
VELMIO_TABLE_ENTRY(VELMPitchConfig, pitch<S>(), true)
VELMIO_TABLE_ENTRY(VELMSideScanPitchConfig, pitch<S>(), true)
VELMIO_TABLE_ENTRY(VELMRollConfig, roll<S>(), true)
VELMIO_TABLE_ENTRY(VELMSideScanRollConfig, roll<S>(), true)
VELMIO_TABLE_ENTRY(VELMSideScanConfig, sideScan<S>(), true)
VELMIO_TABLE_ENTRY(VELMTowedSSSConfig, towed(), true)
VELMIO_TABLE_ENTRY(VELMSVPConfig, svp(), true)
VELMIO_TABLE_ENTRY(VELMDepthConfig, depth(), isSweep())
VELMIO_TABLE_ENTRY(VELMDraftConfig, draft(), true)
VELMIO_TABLE_ENTRY(VELMWaterlineHeight, waterline(), true)
VELMIO_TABLE_ENTRY(VELMTPEConfig, tpe(), true)

int VELMVesselShape::load(xmlNode *shapeElement) {
    if (!shapeElement) return -1;
    d_->plan_.clear();
    d_->profile_.clear();
    velmio::vessel::loadItems(*d_, shapeElement, Tables::shape());
    return 0;
}

int VELMVesselShape::store(xmlNode *shapeElement) const {
    if (!shapeElement) return -1;
    return velmio::vessel::storeItems(*d_, shapeElement, Tables::shape(), true);
}

VELMVesselShape::VELMVesselShape() : d_(new Impl) {}
VELMVesselShape::VELMVesselShape(const VELMVesselShape &other) : d_(new Impl(*other.d_)) {}
VELMVesselShape::~VELMVesselShape() = default;

VELMVesselShape &VELMVesselShape::operator=(const VELMVesselShape &other) {
    *d_ = *other.d_;
    return *this;
}

void VELMVesselShape::addPlanViewCoord(double x, double y) { d_->plan_.emplace_back(x, y); }
void VELMVesselShape::addProfileViewCoord(double y, double z) { d_->profile_.emplace_back(y, z); }
void VELMVesselShape::clearPlanViewCoords() { d_->plan_.clear(); }
void VELMVesselShape::clearProfileViewCoords() { d_->profile_.clear(); }
const std::vector<VELMVesselShape::Coord> &VELMVesselShape::getPlanViewCoords() const { return d_->plan_; }
const std::vector<VELMVesselShape::Coord> &VELMVesselShape::getProfileViewCoords() const { return d_->profile_; }

void VELMVesselShape::setRP(double length, double width, double height) {
    d_->length_ = length, d_->width_ = width, d_->height_ = height;
}

void VELMVesselShape::getRP(double &length, double &width, double &height) const {
    length = d_->length_, width = d_->width_, height = d_->height_;
}
