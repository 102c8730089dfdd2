// The entry classes apart from their load and store (entry_tables.cpp).
#include <velmio/vessel_entries.hpp>

#include "foundation/wide_copy.h"
#include "vessel/entry_state.h"
#include "vessel/xml_access.h"

#include <velmio/xml_helpers.hpp>

#include <algorithm>

namespace {
VELMOptionalText copyText(const wchar_t *text) {
    return text ? VELMOptionalText(MORVAUString(text)) : std::nullopt;
}

const wchar_t *textOf(const VELMOptionalText &text) { return text ? text->c_str() : nullptr; }
}  // namespace

// A setting read and written whole: getter, setter and the member of the state.
#define VELMIO_SETTING(Class, Type, get, set, member)     \
    Type Class::get() const { return d_->member; }        \
    void Class::set(Type value) { d_->member = value; }
#define VELMIO_TEXT_SETTING(Class, get, set, member)                      \
    const wchar_t *Class::get() const { return textOf(d_->member); }      \
    void Class::set(const wchar_t *text) { d_->member = copyText(text); }
// Three settings read and written together.
#define VELMIO_TRIPLE(Class, get, set, a, b, c)                                        \
    void Class::get(double &x, double &y, double &z) const { x = d_->a, y = d_->b, z = d_->c; } \
    void Class::set(double x, double y, double z) { d_->a = x, d_->b = y, d_->c = z; }

VELMVesselSensorConfig::VELMVesselSensorConfig(Impl *state, double timeStamp, const wchar_t *sensorName, int *error)
    : d_(state) {
    d_->timeStamp_ = timeStamp;
    d_->sensorName_ = MORVAUString(sensorName);
    if (error) *error = sensorName ? 0 : -1;
}

VELMVesselSensorConfig::VELMVesselSensorConfig(double timeStamp, const wchar_t *sensorName, int &error)
    : VELMVesselSensorConfig(new Impl, timeStamp, sensorName, &error) {}

VELMVesselSensorConfig::VELMVesselSensorConfig(double timeStamp, const wchar_t *sensorName)
    : VELMVesselSensorConfig(new Impl, timeStamp, sensorName, nullptr) {}

VELMVesselSensorConfig::~VELMVesselSensorConfig() { releaseNode(); }

void VELMVesselSensorConfig::releaseNode() {
    VELM::DeleteNode(d_->node_);
    d_->node_ = nullptr;
}

void VELMVesselSensorConfig::forgetNode() { d_->node_ = nullptr; }
double VELMVesselSensorConfig::getTimeStamp() const { return d_->timeStamp_; }
void VELMVesselSensorConfig::setTimeStamp(double timeStamp) { d_->timeStamp_ = timeStamp; }
const wchar_t *VELMVesselSensorConfig::getSensorName() const { return d_->sensorName_.c_str(); }
xmlNode *VELMVesselSensorConfig::getNode() const { return d_->node_; }
VELMIO_TEXT_SETTING(VELMVesselSensorConfig, getComment, setComment, comment_)
VELMIO_TEXT_SETTING(VELMVesselSensorConfig, getAuthorization, setAuthorization, authorization_)
VELMIO_SETTING(VELMVesselSensorConfig, double, getLatency, setLatency, latency_)

wchar_t *VELMVesselSensorConfig::readStringAttributeFromChild(xmlNode *node, const wchar_t *childName,
                                                              const wchar_t *attributeName) {
    if (!node || !childName || !attributeName) return nullptr;
    xmlNode *child = VELM::getNode(node->children, childName);
    const auto text = velmio::vessel::attributeText(child, velmio::vessel::xmlText(attributeName).c_str());
    if (!text) return nullptr;
    return velmio::mallocWideCopy(MORVAUString::fromUtf8(text->c_str()).str());
}

// Constructors of the entry kinds: each makes the state of the whole entry,
// hands it to the root (which owns it) and points its mixed-in settings at it.
#define VELMIO_ENTRY_CONSTRUCTORS(Class, ...)                                                              \
    Class::Class(Impl *state, double timeStamp, int *error)                                               \
        : VELMVesselSensorConfig(state, timeStamp, kSensorName, error), __VA_ARGS__ {}                    \
    Class::Class(double timeStamp, int &error) : Class(new Impl, timeStamp, &error) {}                   \
    Class::Class(double timeStamp) : Class(new Impl, timeStamp, nullptr) {}

VELMIO_ENTRY_CONSTRUCTORS(VELMGyroConfig, VELMGyroSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanGyroConfig, VELMGyroSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMHeaveConfig, VELMHeaveSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanHeaveConfig, VELMHeaveSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMNavConfig, VELMNavSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanNavConfig, VELMNavSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMPitchConfig, VELMPitchSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanPitchConfig, VELMPitchSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMRollConfig, VELMRollSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanRollConfig, VELMRollSettings(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanConfig, VELMSensorIdentity(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMTowedSSSConfig, VELMSensorIdentity(state), d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMSVPConfig, d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMDepthConfig, d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMDraftConfig, d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMWaterlineHeight, d_(state))
VELMIO_ENTRY_CONSTRUCTORS(VELMTPEConfig, d_(state))

// Shared settings.
VELMSensorIdentity::VELMSensorIdentity(Impl *state) : d_(state) {}
VELMIO_TEXT_SETTING(VELMSensorIdentity, getManufacturer, setManufacturer, manufacturer_)
VELMIO_TEXT_SETTING(VELMSensorIdentity, getModel, setModel, model_)
VELMIO_TEXT_SETTING(VELMSensorIdentity, getSerialNumber, setSerialNumber, serialNumber_)

VELMGyroSettings::VELMGyroSettings(Impl *state) : VELMSensorIdentity(state), d_(state) {}
VELMIO_SETTING(VELMGyroSettings, bool, getApplyFlag, setApplyFlag, applyFlag_)
const std::vector<VELMGyroOffset> &VELMGyroSettings::getAllGyroOffsets() const { return d_->gyroTable_; }

VELMHeaveSettings::VELMHeaveSettings(Impl *state) : VELMSensorIdentity(state), d_(state) {}
VELMIO_SETTING(VELMHeaveSettings, bool, getApplyFlag, setApplyFlag, applyFlag_)
VELMIO_TRIPLE(VELMHeaveSettings, getOffsets, setOffsets, x_, y_, z_)
VELMIO_SETTING(VELMHeaveSettings, double, getHeaveOffset, setHeaveOffset, heave_)

VELMNavSettings::VELMNavSettings(Impl *state) : VELMSensorIdentity(state), d_(state) {}
VELMIO_TEXT_SETTING(VELMNavSettings, getEllipseName, setEllipseName, ellipse_)
VELMIO_TRIPLE(VELMNavSettings, getOffsets, setOffsets, x_, y_, z_)

VELMPitchSettings::VELMPitchSettings(Impl *state) : VELMSensorIdentity(state), d_(state) {}
VELMIO_SETTING(VELMPitchSettings, bool, getApplyFlag, setApplyFlag, applyFlag_)
VELMIO_SETTING(VELMPitchSettings, double, getPitchOffset, setPitchOffset, pitch_)

VELMRollSettings::VELMRollSettings(Impl *state) : VELMSensorIdentity(state), d_(state) {}
VELMIO_SETTING(VELMRollSettings, bool, getApplyFlag, setApplyFlag, applyFlag_)
VELMIO_SETTING(VELMRollSettings, double, getRollOffset, setRollOffset, roll_)

// Settings of single kinds.
VELMIO_SETTING(VELMSideScanGyroConfig, double, getGyroStdDev, setGyroStdDev, gyroStdDev_)
VELMIO_TRIPLE(VELMTowedSSSConfig, getOffsets, setOffsets, x_, y_, z_)
VELMIO_SETTING(VELMTowedSSSConfig, double, getLayback, setLayback, layback_)
VELMIO_SETTING(VELMSVPConfig, bool, isDualHead, setDualHead, dualHead_)
VELMIO_TRIPLE(VELMDepthConfig, getMRUToBoomOffset, setMRUToBoomOffset, mruX_, mruY_, mruZ_)
VELMIO_TRIPLE(VELMDepthConfig, getNavToBoomOffset, setNavToBoomOffset, navX_, navY_, navZ_)
VELMIO_SETTING(VELMDraftConfig, bool, getApplyFlag, setApplyFlag, applyFlag_)
VELMIO_SETTING(VELMWaterlineHeight, double, getWaterLine, setWaterLine, waterLine_)
VELMIO_SETTING(VELMWaterlineHeight, double, getWaterlineStdDev, setWaterlineStdDev, waterlineStdDev_)
VELMIO_SETTING(VELMWaterlineHeight, bool, getApplyFlag, setApplyFlag, applyFlag_)

// Gyro offset table.
void VELMGyroSettings::Impl::setGyroOffset(double offset, double azimuth) {
    const VELMGyroOffset row(offset, azimuth);
    auto at = std::lower_bound(gyroTable_.begin(), gyroTable_.end(), row);
    if (at != gyroTable_.end() && at->azimuth == azimuth)
        at->offset = offset;
    else
        gyroTable_.insert(at, row);
}

void VELMGyroSettings::setGyroOffset(double offset, double azimuth) { d_->setGyroOffset(offset, azimuth); }

double VELMGyroSettings::getGyroOffset(double azimuth) const {
    const std::vector<VELMGyroOffset> &gyroTable_ = d_->gyroTable_;
    if (azimuth > 360.0 || azimuth < 0.0 || gyroTable_.empty()) return 0.0;
    if (gyroTable_.size() == 1) return gyroTable_.front().offset;
    const VELMGyroOffset &first = gyroTable_.front();
    const VELMGyroOffset &last = gyroTable_.back();
    if (azimuth < first.azimuth || azimuth > last.azimuth) {
        // Across the 360 wrap from the last row; the first row's offset is
        // added on purpose, as the processing that reads these tables expects.
        const double slope = (first.offset - last.offset) / (first.azimuth + 360.0 - last.azimuth);
        const double distance = azimuth < first.azimuth ? azimuth + 360.0 - last.azimuth : azimuth - last.azimuth;
        return slope * distance + first.offset;
    }
    for (std::size_t i = 0; i < gyroTable_.size(); ++i) {
        const VELMGyroOffset &row = gyroTable_[i];
        if (row.azimuth == azimuth) return row.offset;
        if (row.azimuth > azimuth) {
            const VELMGyroOffset &previous = gyroTable_[i - 1];  // i > 0: azimuth >= first row's
            return (row.offset - previous.offset) / (row.azimuth - previous.azimuth) * (azimuth - previous.azimuth) +
                   previous.offset;
        }
    }
    return last.offset;  // not reached: azimuth <= last row's
}

void VELMGyroSettings::resizeGyroTable(std::size_t count) {
    if (d_->gyroTable_.size() > count) d_->gyroTable_.resize(count);
    d_->gyroTable_.reserve(count);
}

// Transducers.
VELMTransducerConfig::VELMTransducerConfig() : d_(new Impl) {}

VELMTransducerConfig::VELMTransducerConfig(unsigned number, unsigned startBeam, bool transducerFixed)
    : d_(new Impl) {
    d_->number_ = number, d_->startBeam_ = startBeam, d_->transducerFixed_ = transducerFixed;
}

VELMTransducerConfig::VELMTransducerConfig(const VELMTransducerConfig &other) : d_(new Impl(*other.d_)) {}
VELMTransducerConfig::~VELMTransducerConfig() = default;

VELMTransducerConfig &VELMTransducerConfig::operator=(const VELMTransducerConfig &other) {
    *d_ = *other.d_;
    return *this;
}

VELMIO_SETTING(VELMTransducerConfig, unsigned, getNumber, setNumber, number_)
VELMIO_SETTING(VELMTransducerConfig, unsigned, getStartBeam, setStartBeamNum, startBeam_)
VELMIO_SETTING(VELMTransducerConfig, double, getLatency, setLatency, latency_)
VELMIO_TRIPLE(VELMTransducerConfig, getPositionOffset, setPositionOffset, x_, y_, z_)
VELMIO_TRIPLE(VELMTransducerConfig, getMountAngle, setMountAngle, pitch_, roll_, azimuth_)
VELMIO_TEXT_SETTING(VELMTransducerConfig, getModel, setModel, model_)
VELMIO_TEXT_SETTING(VELMTransducerConfig, getManufacturer, setManufacturer, manufacturer_)
VELMIO_TEXT_SETTING(VELMTransducerConfig, getSerialNumber, setSerialNumber, serialNumber_)

void VELMTransducerConfig::getSweepTPEParameters(bool &transducerFixed, double &mruAlignmentGyro,
                                                 double &mruAlignmentRoll, double &squatPercFactor,
                                                 double &heavePercAmplitude) const {
    transducerFixed = d_->transducerFixed_;
    mruAlignmentGyro = d_->mruGyro_;
    mruAlignmentRoll = d_->mruRoll_;
    squatPercFactor = d_->squatPercFactor_;
    heavePercAmplitude = d_->heavePercAmplitude_;
}

void VELMTransducerConfig::setSweepTPEParameters(bool transducerFixed, double mruAlignmentGyro,
                                                 double mruAlignmentRoll, double squatPercFactor,
                                                 double heavePercAmplitude) {
    d_->transducerFixed_ = transducerFixed;
    d_->mruGyro_ = mruAlignmentGyro;
    d_->mruRoll_ = mruAlignmentRoll;
    d_->squatPercFactor_ = squatPercFactor;
    d_->heavePercAmplitude_ = heavePercAmplitude;
}

// Depth sensor.
const wchar_t *VELMDepthConfig::getSensorClass() const { return textOf(d_->sensorClass_); }

int VELMDepthConfig::setSensorClass(const wchar_t *sensorClass) {
    if (!sensorClass) return -1;
    const MORVAUString wanted(sensorClass);
    if (!wanted.equalsIgnoreCase(L"Swath") && !wanted.equalsIgnoreCase(L"Sweep")) return -1;
    d_->sensorClass_ = wanted;
    return 0;
}

bool VELMDepthConfig::isSweep() const { return d_->sensorClass_ && d_->sensorClass_->equalsIgnoreCase(L"Sweep"); }

VELMTransducerConfig *VELMDepthConfig::addTransducer(const VELMTransducerConfig &transducer) {
    d_->transducers_.push_back(transducer);
    return &d_->transducers_.back();
}

int VELMDepthConfig::removeTransducer(std::size_t index) {
    if (index >= d_->transducers_.size()) return -1;
    d_->transducers_.erase(d_->transducers_.begin() + static_cast<std::ptrdiff_t>(index));
    return 0;
}

VELMTransducerConfig *VELMDepthConfig::getTransducer(std::size_t index) {
    return index < d_->transducers_.size() ? &d_->transducers_[index] : nullptr;
}

const VELMTransducerConfig *VELMDepthConfig::getTransducer(std::size_t index) const {
    return index < d_->transducers_.size() ? &d_->transducers_[index] : nullptr;
}

std::size_t VELMDepthConfig::getNumTransducers() const { return d_->transducers_.size(); }

// Draft table.
void VELMDraftConfig::Impl::setDraft(double speed, double draft) {
    auto at = std::find_if(draftTable_.begin(), draftTable_.end(), [&](const VELMDraftEntry &r) { return r.speed >= speed; });
    if (at != draftTable_.end() && at->speed == speed)
        at->draft = draft;
    else
        draftTable_.insert(at, VELMDraftEntry{speed, draft});
}

void VELMDraftConfig::setDraft(double speed, double draft) { d_->setDraft(speed, draft); }

int VELMDraftConfig::removeDraft(double speed) {
    auto &table = d_->draftTable_;
    auto at = std::find_if(table.begin(), table.end(), [&](const VELMDraftEntry &r) { return r.speed == speed; });
    if (at == table.end()) return 5100009;
    table.erase(at);
    return 0;
}

const std::vector<VELMDraftEntry> &VELMDraftConfig::getDraftEntries() const { return d_->draftTable_; }
std::size_t VELMDraftConfig::getNumEntries() const { return d_->draftTable_.size(); }
bool VELMDraftConfig::empty() const { return d_->draftTable_.empty(); }

void VELMDraftConfig::resizeDraftTable(std::size_t count) {
    if (d_->draftTable_.size() > count) d_->draftTable_.resize(count);
    d_->draftTable_.reserve(count);
}

// Sound velocity probe heads.
namespace {
template <class T>
T *headOf(int head, T *first, T *second) {
    return head == 1 ? first : head == 2 ? second : nullptr;
}
}  // namespace

int VELMSVPConfig::getPositionOffsets(int head, double &x, double &y, double &z) const {
    if (head != 1 && head != 2) return -1;
    const Impl &s = *d_;
    x = *headOf(head, &s.x_, &s.x2_), y = *headOf(head, &s.y_, &s.y2_), z = *headOf(head, &s.z_, &s.z2_);
    return 0;
}

int VELMSVPConfig::setPositionOffsets(int head, double x, double y, double z) {
    if (head != 1 && head != 2) return -1;
    Impl &s = *d_;
    *headOf(head, &s.x_, &s.x2_) = x, *headOf(head, &s.y_, &s.y2_) = y, *headOf(head, &s.z_, &s.z2_) = z;
    return 0;
}

int VELMSVPConfig::getMountAngle(int head, double &pitch, double &roll, double &azimuth) const {
    if (head != 1 && head != 2) return -1;
    const Impl &s = *d_;
    pitch = *headOf(head, &s.pitch_, &s.pitch2_), roll = *headOf(head, &s.roll_, &s.roll2_);
    azimuth = *headOf(head, &s.azimuth_, &s.azimuth2_);
    return 0;
}

int VELMSVPConfig::setMountAngle(int head, double pitch, double roll, double azimuth) {
    if (head != 1 && head != 2) return -1;
    Impl &s = *d_;
    *headOf(head, &s.pitch_, &s.pitch2_) = pitch, *headOf(head, &s.roll_, &s.roll2_) = roll;
    *headOf(head, &s.azimuth_, &s.azimuth2_) = azimuth;
    return 0;
}

// Total propagated error figures.
void VELMTPEConfig::getOffsetMRUToTrans(double &x, double &y, double &z, double &x2, double &y2, double &z2) const {
    x = d_->mruX_, y = d_->mruY_, z = d_->mruZ_, x2 = d_->mruX2_, y2 = d_->mruY2_, z2 = d_->mruZ2_;
}
void VELMTPEConfig::setOffsetMRUToTrans(double x, double y, double z, double x2, double y2, double z2) {
    d_->mruX_ = x, d_->mruY_ = y, d_->mruZ_ = z, d_->mruX2_ = x2, d_->mruY2_ = y2, d_->mruZ2_ = z2;
}
void VELMTPEConfig::getOffsetNavToTrans(double &x, double &y, double &z, double &x2, double &y2, double &z2) const {
    x = d_->navX_, y = d_->navY_, z = d_->navZ_, x2 = d_->navX2_, y2 = d_->navY2_, z2 = d_->navZ2_;
}
void VELMTPEConfig::setOffsetNavToTrans(double x, double y, double z, double x2, double y2, double z2) {
    d_->navX_ = x, d_->navY_ = y, d_->navZ_ = z, d_->navX2_ = x2, d_->navY2_ = y2, d_->navZ2_ = z2;
}
void VELMTPEConfig::getTransducerRollOffset(double &roll, double &roll2) const {
    roll = d_->transRoll_, roll2 = d_->transRoll2_;
}
void VELMTPEConfig::setTransducerRollOffset(double roll, double roll2) {
    d_->transRoll_ = roll, d_->transRoll2_ = roll2;
}
void VELMTPEConfig::getHeaveStdDev(double &heave, double &percAmplitude) const {
    heave = d_->sdHeave_, percAmplitude = d_->sdHeavePerc_;
}
void VELMTPEConfig::setHeaveStdDev(double heave, double percAmplitude) {
    d_->sdHeave_ = heave, d_->sdHeavePerc_ = percAmplitude;
}
VELMIO_TRIPLE(VELMTPEConfig, getMeasurementStdDev, setMeasurementStdDev, sdX_, sdY_, sdZ_)
VELMIO_TRIPLE(VELMTPEConfig, getMRUAlignmentStdDev, setMRUAlignmentStdDev, alignGyro_, alignPitch_, alignRoll_)
VELMIO_SETTING(VELMTPEConfig, double, getNavigationLatency, setNavigationLatency, navLatency_)
VELMIO_SETTING(VELMTPEConfig, double, getGyroStdDev, setGyroStdDev, sdGyro_)
VELMIO_SETTING(VELMTPEConfig, double, getPitchStdDev, setPitchStdDev, sdPitch_)
VELMIO_SETTING(VELMTPEConfig, double, getRollStdDev, setRollStdDev, sdRoll_)
VELMIO_SETTING(VELMTPEConfig, double, getNavigationStdDev, setNavigationStdDev, sdNavigation_)
VELMIO_SETTING(VELMTPEConfig, double, getPitchStablizationStdDev, setPitchStablizationStdDev, sdPitchStab_)
VELMIO_SETTING(VELMTPEConfig, double, getNavigationTimingStdDev, setNavigationTimingStdDev, tmNavigation_)
VELMIO_SETTING(VELMTPEConfig, double, getTransducerTimingStdDev, setTransducerTimingStdDev, tmTransducer_)
VELMIO_SETTING(VELMTPEConfig, double, getGyroTimingStdDev, setGyroTimingStdDev, tmGyro_)
VELMIO_SETTING(VELMTPEConfig, double, getHeaveTimingStdDev, setHeaveTimingStdDev, tmHeave_)
VELMIO_SETTING(VELMTPEConfig, double, getPitchTimingStdDev, setPitchTimingStdDev, tmPitch_)
VELMIO_SETTING(VELMTPEConfig, double, getRollTimingStdDev, setRollTimingStdDev, tmRoll_)
VELMIO_SETTING(VELMTPEConfig, double, getSoundVelocityStdDev, setSoundVelocityStdDev, svMeasured_)
VELMIO_SETTING(VELMTPEConfig, double, getSurfSoundSpeedStdDev, setSurfSoundSpeedStdDev, svSurface_)
VELMIO_SETTING(VELMTPEConfig, double, getTideMeasuredStdDev, setTideMeasuredStdDev, tideMeasured_)
VELMIO_SETTING(VELMTPEConfig, double, getTidePredictedStdDev, setTidePredictedStdDev, tideZoning_)
VELMIO_SETTING(VELMTPEConfig, double, getSpeedOverGroundStdDev, setSpeedOverGroundStdDev, vSpeed_)
VELMIO_SETTING(VELMTPEConfig, double, getVesselLoadingStdDev, setVesselLoadingStdDev, vLoading_)
VELMIO_SETTING(VELMTPEConfig, double, getDraftStdDev, setDraftStdDev, vDraft_)
VELMIO_SETTING(VELMTPEConfig, double, getDeltaDraftStdDev, setDeltaDraftStdDev, vDeltaDraft_)
VELMIO_TEXT_SETTING(VELMTPEConfig, getStDevComment, setStDevComment, stDevComment_)
