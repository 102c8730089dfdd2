// The entry classes apart from their load and store (entry_tables.cpp).
#include <velmio/vessel_entries.hpp>

#include "foundation/wide_copy.h"
#include "vessel/xml_access.h"

#include <velmio/xml_helpers.hpp>

#include <algorithm>

namespace {
VELMOptionalText copyText(const wchar_t *text) {
    return text ? VELMOptionalText(MORVAUString(text)) : std::nullopt;
}
}  // namespace

VELMVesselSensorConfig::VELMVesselSensorConfig(double timeStamp, const wchar_t *sensorName, int &error)
    : timeStamp_(timeStamp), sensorName_(sensorName) {
    error = sensorName ? 0 : -1;
}

VELMVesselSensorConfig::VELMVesselSensorConfig(double timeStamp, const wchar_t *sensorName)
    : timeStamp_(timeStamp), sensorName_(sensorName) {}

VELMVesselSensorConfig::~VELMVesselSensorConfig() { releaseNode(); }

void VELMVesselSensorConfig::releaseNode() {
    VELM::DeleteNode(node_);
    node_ = nullptr;
}

void VELMVesselSensorConfig::setComment(const wchar_t *comment) { comment_ = copyText(comment); }
void VELMVesselSensorConfig::setAuthorization(const wchar_t *authorization) {
    authorization_ = copyText(authorization);
}

wchar_t *VELMVesselSensorConfig::readStringAttributeFromChild(xmlNode *node, const wchar_t *childName,
                                                              const wchar_t *attributeName) {
    if (!node || !childName || !attributeName) return nullptr;
    xmlNode *child = VELM::getNode(node->children, childName);
    const auto text = velmio::vessel::attributeText(child, velmio::vessel::xmlText(attributeName).c_str());
    if (!text) return nullptr;
    return velmio::mallocWideCopy(MORVAUString::fromUtf8(text->c_str()).str());
}

// Constructors of the entry kinds: each passes its list element name.
#define VELMIO_ENTRY_CONSTRUCTORS(Class)                                                              \
    Class::Class(double timeStamp, int &error) : VELMVesselSensorConfig(timeStamp, kSensorName, error) {} \
    Class::Class(double timeStamp) : VELMVesselSensorConfig(timeStamp, kSensorName) {}

VELMIO_ENTRY_CONSTRUCTORS(VELMGyroConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanGyroConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMHeaveConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanHeaveConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMNavConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanNavConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMPitchConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanPitchConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMRollConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanRollConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMSideScanConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMTowedSSSConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMSVPConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMDepthConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMDraftConfig)
VELMIO_ENTRY_CONSTRUCTORS(VELMWaterlineHeight)
VELMIO_ENTRY_CONSTRUCTORS(VELMTPEConfig)

// Identification.
void VELMSensorIdentity::setManufacturer(const wchar_t *manufacturer) { manufacturer_ = copyText(manufacturer); }
void VELMSensorIdentity::setModel(const wchar_t *model) { model_ = copyText(model); }
void VELMSensorIdentity::setSerialNumber(const wchar_t *serialNumber) { serialNumber_ = copyText(serialNumber); }
void VELMNavSettings::setEllipseName(const wchar_t *name) { ellipse_ = copyText(name); }
void VELMTPEConfig::setStDevComment(const wchar_t *comment) { stDevComment_ = copyText(comment); }

// Gyro offset table.
void VELMGyroSettings::setGyroOffset(double offset, double azimuth) {
    const VELMGyroOffset row(offset, azimuth);
    auto at = std::lower_bound(gyroTable_.begin(), gyroTable_.end(), row);
    if (at != gyroTable_.end() && at->azimuth == azimuth)
        at->offset = offset;
    else
        gyroTable_.insert(at, row);
}

double VELMGyroSettings::getGyroOffset(double azimuth) const {
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
    if (gyroTable_.size() > count) gyroTable_.resize(count);
    gyroTable_.reserve(count);
}

// Transducers.
VELMTransducerConfig::VELMTransducerConfig(unsigned number, unsigned startBeam, bool transducerFixed)
    : number_(number), startBeam_(startBeam), transducerFixed_(transducerFixed) {}

void VELMTransducerConfig::getPositionOffset(double &x, double &y, double &z) const { x = x_, y = y_, z = z_; }
void VELMTransducerConfig::setPositionOffset(double x, double y, double z) { x_ = x, y_ = y, z_ = z; }
void VELMTransducerConfig::getMountAngle(double &pitch, double &roll, double &azimuth) const {
    pitch = pitch_, roll = roll_, azimuth = azimuth_;
}
void VELMTransducerConfig::setMountAngle(double pitch, double roll, double azimuth) {
    pitch_ = pitch, roll_ = roll, azimuth_ = azimuth;
}
void VELMTransducerConfig::setModel(const wchar_t *model) { model_ = copyText(model); }
void VELMTransducerConfig::setManufacturer(const wchar_t *manufacturer) { manufacturer_ = copyText(manufacturer); }
void VELMTransducerConfig::setSerialNumber(const wchar_t *serialNumber) { serialNumber_ = copyText(serialNumber); }

void VELMTransducerConfig::getSweepTPEParameters(bool &transducerFixed, double &mruAlignmentGyro,
                                                 double &mruAlignmentRoll, double &squatPercFactor,
                                                 double &heavePercAmplitude) const {
    transducerFixed = transducerFixed_;
    mruAlignmentGyro = mruGyro_;
    mruAlignmentRoll = mruRoll_;
    squatPercFactor = squatPercFactor_;
    heavePercAmplitude = heavePercAmplitude_;
}

void VELMTransducerConfig::setSweepTPEParameters(bool transducerFixed, double mruAlignmentGyro,
                                                 double mruAlignmentRoll, double squatPercFactor,
                                                 double heavePercAmplitude) {
    transducerFixed_ = transducerFixed;
    mruGyro_ = mruAlignmentGyro;
    mruRoll_ = mruAlignmentRoll;
    squatPercFactor_ = squatPercFactor;
    heavePercAmplitude_ = heavePercAmplitude;
}

// Depth sensor.
int VELMDepthConfig::setSensorClass(const wchar_t *sensorClass) {
    if (!sensorClass) return -1;
    const MORVAUString wanted(sensorClass);
    if (!wanted.equalsIgnoreCase(L"Swath") && !wanted.equalsIgnoreCase(L"Sweep")) return -1;
    sensorClass_ = wanted;
    return 0;
}

bool VELMDepthConfig::isSweep() const { return sensorClass_ && sensorClass_->equalsIgnoreCase(L"Sweep"); }

VELMTransducerConfig *VELMDepthConfig::addTransducer(const VELMTransducerConfig &transducer) {
    transducers_.push_back(transducer);
    return &transducers_.back();
}

int VELMDepthConfig::removeTransducer(std::size_t index) {
    if (index >= transducers_.size()) return -1;
    transducers_.erase(transducers_.begin() + static_cast<std::ptrdiff_t>(index));
    return 0;
}

VELMTransducerConfig *VELMDepthConfig::getTransducer(std::size_t index) {
    return index < transducers_.size() ? &transducers_[index] : nullptr;
}

const VELMTransducerConfig *VELMDepthConfig::getTransducer(std::size_t index) const {
    return index < transducers_.size() ? &transducers_[index] : nullptr;
}

// Draft table.
void VELMDraftConfig::setDraft(double speed, double draft) {
    auto at = std::find_if(draftTable_.begin(), draftTable_.end(), [&](const VELMDraftEntry &r) { return r.speed >= speed; });
    if (at != draftTable_.end() && at->speed == speed)
        at->draft = draft;
    else
        draftTable_.insert(at, VELMDraftEntry{speed, draft});
}

int VELMDraftConfig::removeDraft(double speed) {
    auto at = std::find_if(draftTable_.begin(), draftTable_.end(), [&](const VELMDraftEntry &r) { return r.speed == speed; });
    if (at == draftTable_.end()) return 5100009;
    draftTable_.erase(at);
    return 0;
}

void VELMDraftConfig::resizeDraftTable(std::size_t count) {
    if (draftTable_.size() > count) draftTable_.resize(count);
    draftTable_.reserve(count);
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
    x = *headOf(head, &x_, &x2_), y = *headOf(head, &y_, &y2_), z = *headOf(head, &z_, &z2_);
    return 0;
}

int VELMSVPConfig::setPositionOffsets(int head, double x, double y, double z) {
    if (head != 1 && head != 2) return -1;
    *headOf(head, &x_, &x2_) = x, *headOf(head, &y_, &y2_) = y, *headOf(head, &z_, &z2_) = z;
    return 0;
}

int VELMSVPConfig::getMountAngle(int head, double &pitch, double &roll, double &azimuth) const {
    if (head != 1 && head != 2) return -1;
    pitch = *headOf(head, &pitch_, &pitch2_), roll = *headOf(head, &roll_, &roll2_);
    azimuth = *headOf(head, &azimuth_, &azimuth2_);
    return 0;
}

int VELMSVPConfig::setMountAngle(int head, double pitch, double roll, double azimuth) {
    if (head != 1 && head != 2) return -1;
    *headOf(head, &pitch_, &pitch2_) = pitch, *headOf(head, &roll_, &roll2_) = roll;
    *headOf(head, &azimuth_, &azimuth2_) = azimuth;
    return 0;
}

// Total propagated error figures.
void VELMTPEConfig::getOffsetMRUToTrans(double &x, double &y, double &z, double &x2, double &y2, double &z2) const {
    x = mruX_, y = mruY_, z = mruZ_, x2 = mruX2_, y2 = mruY2_, z2 = mruZ2_;
}
void VELMTPEConfig::setOffsetMRUToTrans(double x, double y, double z, double x2, double y2, double z2) {
    mruX_ = x, mruY_ = y, mruZ_ = z, mruX2_ = x2, mruY2_ = y2, mruZ2_ = z2;
}
void VELMTPEConfig::getOffsetNavToTrans(double &x, double &y, double &z, double &x2, double &y2, double &z2) const {
    x = navX_, y = navY_, z = navZ_, x2 = navX2_, y2 = navY2_, z2 = navZ2_;
}
void VELMTPEConfig::setOffsetNavToTrans(double x, double y, double z, double x2, double y2, double z2) {
    navX_ = x, navY_ = y, navZ_ = z, navX2_ = x2, navY2_ = y2, navZ2_ = z2;
}
void VELMTPEConfig::getMRUAlignmentStdDev(double &gyro, double &pitch, double &roll) const {
    gyro = alignGyro_, pitch = alignPitch_, roll = alignRoll_;
}
void VELMTPEConfig::setMRUAlignmentStdDev(double gyro, double pitch, double roll) {
    alignGyro_ = gyro, alignPitch_ = pitch, alignRoll_ = roll;
}
