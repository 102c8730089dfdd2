// The time-stamped sensor entries of a vessel configuration.
//
// Each entry is one "TimeStamp" element (attribute "value" =
// "YYYY-DDD hh:mm:ss") under the list element of its sensor kind, and holds
// the settings of that sensor valid from its time on. Times are UTC seconds
// since 1980-01-01 (leap seconds counted); offsets, angles, latencies and
// standard deviations are kept as the document holds them (by convention
// metres, degrees and seconds). Texts are owned copies; an unset text is
// returned as null and not written.
//
// Status codes are ints: 0 success, -1 for a missing "value" time, an element
// that cannot be made or a bad argument, 5100010 for a malformed time.
#ifndef VELMIO_VESSEL_ENTRIES_HPP
#define VELMIO_VESSEL_ENTRIES_HPP

#include <velmio/export.h>
#include <velmio/morva_string.hpp>
#include <velmio/xml_helpers.hpp>

#include <cstddef>
#include <optional>
#include <vector>

namespace velmio::vessel {
struct Tables;
}

// A text setting that may be unset.
using VELMOptionalText = std::optional<MORVAUString>;

// The root of every entry: time stamp, latency, comment and authorization,
// and the element the entry was loaded from or last stored to.
class VELMIO_API VELMVesselSensorConfig {
public:
    // sensorName is the list element name of the kind (copied); error is set
    // to 0, or -1 for a null name.
    VELMVesselSensorConfig(double timeStamp, const wchar_t *sensorName, int &error);
    VELMVesselSensorConfig(double timeStamp, const wchar_t *sensorName);
    // Also unlinks and frees the bound element: destroying an entry removes
    // it from its document.
    virtual ~VELMVesselSensorConfig();
    VELMVesselSensorConfig(const VELMVesselSensorConfig &) = delete;
    VELMVesselSensorConfig &operator=(const VELMVesselSensorConfig &) = delete;

    // Reads the entry from its "TimeStamp" element: the time, then
    // "Comment", "Authorization" and "Latency", then the kind's own elements.
    // Missing settings keep their defaults. 0, -1 (no "value" time) or
    // 5100010 (malformed time, with the decodeTime message).
    virtual int load(xmlNode *node);
    // Writes the entry under its list element parent, making its
    // "TimeStamp" element when it has none; elements already there are
    // updated in place. 0, or -1 when an element cannot be made or the time
    // has no calendar form.
    virtual int store(xmlNode *parent);

    double getTimeStamp() const { return timeStamp_; }
    const wchar_t *getSensorName() const { return sensorName_.c_str(); }
    const wchar_t *getComment() const { return comment_ ? comment_->c_str() : nullptr; }
    void setComment(const wchar_t *comment);  // copied; null unsets
    const wchar_t *getAuthorization() const { return authorization_ ? authorization_->c_str() : nullptr; }
    void setAuthorization(const wchar_t *authorization);  // copied; null unsets
    double getLatency() const { return latency_; }
    void setLatency(double latency) { latency_ = latency; }
    // The bound "TimeStamp" element, null until loaded or stored.
    xmlNode *getNode() const { return node_; }

protected:
    void setTimeStamp(double timeStamp) { timeStamp_ = timeStamp; }
    // The attribute of the child element childName of node, decoded from
    // UTF-8, as a malloc'ed copy the caller frees with free() or
    // VELMIO_free(); null when the node, child or attribute is missing.
    static wchar_t *readStringAttributeFromChild(xmlNode *node, const wchar_t *childName,
                                                 const wchar_t *attributeName);

private:
    friend class VELMVesselSensorList;
    friend class VELMVessel;
    friend struct velmio::vessel::Tables;
    void releaseNode();  // unlinks and frees the bound element
    void forgetNode() { node_ = nullptr; }

    double timeStamp_;
    double latency_ = 0.0;
    MORVAUString sensorName_;
    VELMOptionalText comment_;
    VELMOptionalText authorization_;
    xmlNode *node_ = nullptr;
};

// One row of a gyro offset table.
struct VELMIO_API VELMGyroOffset {
    double offset = 0.0;
    double azimuth = 0.0;
    VELMGyroOffset() = default;
    VELMGyroOffset(double offsetValue, double azimuthValue) : offset(offsetValue), azimuth(azimuthValue) {}
    bool operator<(const VELMGyroOffset &o) const { return azimuth < o.azimuth; }  // by azimuth only
};

// One row of a speed-to-draft table.
struct VELMIO_API VELMDraftEntry {
    double speed = 0.0;
    double draft = 0.0;
};

// One transducer of a depth sensor entry.
class VELMIO_API VELMTransducerConfig {
public:
    VELMTransducerConfig() = default;
    // transducerFixed is the sweep "TransducerFixed" flag.
    VELMTransducerConfig(unsigned number, unsigned startBeam, bool transducerFixed = true);

    unsigned getNumber() const { return number_; }
    void setNumber(unsigned number) { number_ = number; }
    unsigned getStartBeam() const { return startBeam_; }
    void setStartBeamNum(unsigned startBeam) { startBeam_ = startBeam; }
    double getLatency() const { return latency_; }
    void setLatency(double latency) { latency_ = latency; }
    void getPositionOffset(double &x, double &y, double &z) const;
    void setPositionOffset(double x, double y, double z);
    void getMountAngle(double &pitch, double &roll, double &azimuth) const;
    void setMountAngle(double pitch, double roll, double azimuth);
    const wchar_t *getModel() const { return model_ ? model_->c_str() : nullptr; }
    void setModel(const wchar_t *model);  // copied; null unsets
    const wchar_t *getManufacturer() const { return manufacturer_ ? manufacturer_->c_str() : nullptr; }
    void setManufacturer(const wchar_t *manufacturer);
    const wchar_t *getSerialNumber() const { return serialNumber_ ? serialNumber_->c_str() : nullptr; }
    void setSerialNumber(const wchar_t *serialNumber);
    // The sweep error figures, written only for a "Sweep" depth sensor.
    void getSweepTPEParameters(bool &transducerFixed, double &mruAlignmentGyro, double &mruAlignmentRoll,
                               double &squatPercFactor, double &heavePercAmplitude) const;
    void setSweepTPEParameters(bool transducerFixed, double mruAlignmentGyro, double mruAlignmentRoll,
                               double squatPercFactor, double heavePercAmplitude);

private:
    friend struct velmio::vessel::Tables;
    unsigned number_ = 0;
    unsigned startBeam_ = 0;
    double x_ = 0.0, y_ = 0.0, z_ = 0.0;
    double latency_ = 0.0;
    double pitch_ = 0.0, roll_ = 0.0, azimuth_ = 0.0;
    double mruGyro_ = 0.0, mruRoll_ = 0.0;
    double squatPercFactor_ = 100.0;
    double heavePercAmplitude_ = 100.0;
    bool transducerFixed_ = true;
    VELMOptionalText model_ = MORVAUString(L"Unknown");
    VELMOptionalText manufacturer_;
    VELMOptionalText serialNumber_;
};

// Settings shared by several kinds. They are mixed into the entry classes
// beside the root class, so that a kind and its side scan twin share one
// implementation while each stays a direct entry class of its own.

// "Manufacturer", "Model", "SerialNumber".
class VELMIO_API VELMSensorIdentity {
public:
    const wchar_t *getManufacturer() const { return manufacturer_ ? manufacturer_->c_str() : nullptr; }
    void setManufacturer(const wchar_t *manufacturer);  // copied; null unsets
    const wchar_t *getModel() const { return model_ ? model_->c_str() : nullptr; }
    void setModel(const wchar_t *model);
    const wchar_t *getSerialNumber() const { return serialNumber_ ? serialNumber_->c_str() : nullptr; }
    void setSerialNumber(const wchar_t *serialNumber);

protected:
    VELMSensorIdentity() = default;
    ~VELMSensorIdentity() = default;

private:
    friend struct velmio::vessel::Tables;
    VELMOptionalText manufacturer_, model_, serialNumber_;
};

// The gyro offset table (kept sorted by azimuth, one row per azimuth) and
// the apply flag.
class VELMIO_API VELMGyroSettings : public VELMSensorIdentity {
public:
    bool getApplyFlag() const { return applyFlag_; }
    void setApplyFlag(bool apply) { applyFlag_ = apply; }
    // Adds a row, or replaces the offset of the row with that azimuth.
    void setGyroOffset(double offset, double azimuth);
    // The offset at an azimuth in degrees: 0.0 outside 0..360 or for an
    // empty table; the one row's offset for a one-row table; linear between
    // neighbouring rows; outside the rows, interpolated across the 360 wrap
    // between the last row L and the first row F, starting from F's offset:
    // (F.offset - L.offset) / (F.azimuth + 360 - L.azimuth) x distance from L
    // + F.offset (the addition of F's offset is deliberate).
    double getGyroOffset(double azimuth) const;
    const std::vector<VELMGyroOffset> &getAllGyroOffsets() const { return gyroTable_; }
    // Keeps at most count rows (the lowest azimuths) and reserves room for count.
    void resizeGyroTable(std::size_t count);

protected:
    VELMGyroSettings() = default;
    ~VELMGyroSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    bool applyFlag_ = false;
    std::vector<VELMGyroOffset> gyroTable_;
};

// Heave sensor: "ApplyFlag"; "Offsets" X, Y, Z, Heave.
class VELMIO_API VELMHeaveSettings : public VELMSensorIdentity {
public:
    bool getApplyFlag() const { return applyFlag_; }
    void setApplyFlag(bool apply) { applyFlag_ = apply; }
    void getOffsets(double &x, double &y, double &z) const { x = x_, y = y_, z = z_; }
    void setOffsets(double x, double y, double z) { x_ = x, y_ = y, z_ = z; }
    double getHeaveOffset() const { return heave_; }
    void setHeaveOffset(double heave) { heave_ = heave; }

protected:
    VELMHeaveSettings() = default;
    ~VELMHeaveSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    bool applyFlag_ = false;
    double x_ = 0.0, y_ = 0.0, z_ = 0.0, heave_ = 0.0;
};

// Navigation sensor: "Ellipse" (ellipsoid name); "Offsets" X, Y, Z.
class VELMIO_API VELMNavSettings : public VELMSensorIdentity {
public:
    const wchar_t *getEllipseName() const { return ellipse_ ? ellipse_->c_str() : nullptr; }
    void setEllipseName(const wchar_t *name);  // copied; null unsets
    void getOffsets(double &x, double &y, double &z) const { x = x_, y = y_, z = z_; }
    void setOffsets(double x, double y, double z) { x_ = x, y_ = y, z_ = z; }

protected:
    VELMNavSettings() = default;
    ~VELMNavSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    VELMOptionalText ellipse_;
    double x_ = 0.0, y_ = 0.0, z_ = 0.0;
};

// Pitch sensor: "ApplyFlag"; "Offsets" Pitch.
class VELMIO_API VELMPitchSettings : public VELMSensorIdentity {
public:
    bool getApplyFlag() const { return applyFlag_; }
    void setApplyFlag(bool apply) { applyFlag_ = apply; }
    double getPitchOffset() const { return pitch_; }
    void setPitchOffset(double pitch) { pitch_ = pitch; }

protected:
    VELMPitchSettings() = default;
    ~VELMPitchSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    bool applyFlag_ = false;
    double pitch_ = 0.0;
};

// Roll sensor: "ApplyFlag"; "Offsets" Roll.
class VELMIO_API VELMRollSettings : public VELMSensorIdentity {
public:
    bool getApplyFlag() const { return applyFlag_; }
    void setApplyFlag(bool apply) { applyFlag_ = apply; }
    double getRollOffset() const { return roll_; }
    void setRollOffset(double roll) { roll_ = roll; }

protected:
    VELMRollSettings() = default;
    ~VELMRollSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    bool applyFlag_ = false;
    double roll_ = 0.0;
};

// The entry classes. kSensorName is the list element name of the kind.
#define VELMIO_VESSEL_ENTRY(Class, Name)                 \
public:                                                   \
    static constexpr const wchar_t *kSensorName = Name;   \
    explicit Class(double timeStamp, int &error);         \
    explicit Class(double timeStamp = 0.0);               \
    int load(xmlNode *node) override;                     \
    int store(xmlNode *parent) override;                  \
                                                          \
private:                                                  \
    friend struct velmio::vessel::Tables;

class VELMIO_API VELMGyroConfig : public VELMVesselSensorConfig, public VELMGyroSettings {
    VELMIO_VESSEL_ENTRY(VELMGyroConfig, L"GyroSensor")
};

class VELMIO_API VELMSideScanGyroConfig : public VELMVesselSensorConfig, public VELMGyroSettings {
    VELMIO_VESSEL_ENTRY(VELMSideScanGyroConfig, L"SideScanGyroSensor")
public:
    double getGyroStdDev() const { return gyroStdDev_; }  // "StdDev" Gyro
    void setGyroStdDev(double value) { gyroStdDev_ = value; }

private:
    double gyroStdDev_ = 0.0;
};

class VELMIO_API VELMHeaveConfig : public VELMVesselSensorConfig, public VELMHeaveSettings {
    VELMIO_VESSEL_ENTRY(VELMHeaveConfig, L"HeaveSensor")
};
class VELMIO_API VELMSideScanHeaveConfig : public VELMVesselSensorConfig, public VELMHeaveSettings {
    VELMIO_VESSEL_ENTRY(VELMSideScanHeaveConfig, L"SideScanHeaveSensor")
};
class VELMIO_API VELMNavConfig : public VELMVesselSensorConfig, public VELMNavSettings {
    VELMIO_VESSEL_ENTRY(VELMNavConfig, L"NavSensor")
};
class VELMIO_API VELMSideScanNavConfig : public VELMVesselSensorConfig, public VELMNavSettings {
    VELMIO_VESSEL_ENTRY(VELMSideScanNavConfig, L"SideScanNavSensor")
};
class VELMIO_API VELMPitchConfig : public VELMVesselSensorConfig, public VELMPitchSettings {
    VELMIO_VESSEL_ENTRY(VELMPitchConfig, L"PitchSensor")
};
class VELMIO_API VELMSideScanPitchConfig : public VELMVesselSensorConfig, public VELMPitchSettings {
    VELMIO_VESSEL_ENTRY(VELMSideScanPitchConfig, L"SideScanPitchSensor")
};
class VELMIO_API VELMRollConfig : public VELMVesselSensorConfig, public VELMRollSettings {
    VELMIO_VESSEL_ENTRY(VELMRollConfig, L"RollSensor")
};
class VELMIO_API VELMSideScanRollConfig : public VELMVesselSensorConfig, public VELMRollSettings {
    VELMIO_VESSEL_ENTRY(VELMSideScanRollConfig, L"SideScanRollSensor")
};

// Side scan sonar: identification only.
class VELMIO_API VELMSideScanConfig : public VELMVesselSensorConfig, public VELMSensorIdentity {
    VELMIO_VESSEL_ENTRY(VELMSideScanConfig, L"SideScanSensor")
};

// Towed sensor: "Offsets" X, Y, Z, Layback.
class VELMIO_API VELMTowedSSSConfig : public VELMVesselSensorConfig, public VELMSensorIdentity {
    VELMIO_VESSEL_ENTRY(VELMTowedSSSConfig, L"TowedSensor")
public:
    void getOffsets(double &x, double &y, double &z) const { x = x_, y = y_, z = z_; }
    void setOffsets(double x, double y, double z) { x_ = x, y_ = y, z_ = z; }
    double getLayback() const { return layback_; }
    void setLayback(double layback) { layback_ = layback; }

private:
    double x_ = 0.0, y_ = 0.0, z_ = 0.0, layback_ = 0.0;
};

// Sound velocity probe, one or two heads: "DualHead"; "Offsets" X, Y, Z,
// X2, Y2, Z2; "MountAngle" Pitch, Roll, Azimuth, Pitch2, Roll2, Azimuth2.
// head is 1 or 2; the head functions return 0, or -1 for another head.
class VELMIO_API VELMSVPConfig : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMSVPConfig, L"SVPSensor")
public:
    bool isDualHead() const { return dualHead_; }
    void setDualHead(bool dual) { dualHead_ = dual; }
    int getPositionOffsets(int head, double &x, double &y, double &z) const;
    int setPositionOffsets(int head, double x, double y, double z);
    int getMountAngle(int head, double &pitch, double &roll, double &azimuth) const;
    int setMountAngle(int head, double pitch, double roll, double azimuth);

private:
    bool dualHead_ = false;
    double x_ = 0.0, y_ = 0.0, z_ = 0.0, x2_ = 0.0, y2_ = 0.0, z2_ = 0.0;
    double pitch_ = 0.0, roll_ = 0.0, azimuth_ = 0.0, pitch2_ = 0.0, roll2_ = 0.0, azimuth2_ = 0.0;
};

// Depth sensor: class "Swath" or "Sweep", transducer table and, for "Sweep",
// the boom offsets and each transducer's sweep error figures.
class VELMIO_API VELMDepthConfig : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMDepthConfig, L"DepthSensor")
public:
    const wchar_t *getSensorClass() const { return sensorClass_ ? sensorClass_->c_str() : nullptr; }
    // Accepts "Swath" and "Sweep" ignoring case (kept as given): 0, or -1.
    int setSensorClass(const wchar_t *sensorClass);
    // True when the class is "Sweep" ignoring case.
    bool isSweep() const;
    void getMRUToBoomOffset(double &x, double &y, double &z) const { x = mruX_, y = mruY_, z = mruZ_; }
    void setMRUToBoomOffset(double x, double y, double z) { mruX_ = x, mruY_ = y, mruZ_ = z; }
    void getNavToBoomOffset(double &x, double &y, double &z) const { x = navX_, y = navY_, z = navZ_; }
    void setNavToBoomOffset(double x, double y, double z) { navX_ = x, navY_ = y, navZ_ = z; }
    // Appends a copy; returns the held transducer, valid until the table changes.
    VELMTransducerConfig *addTransducer(const VELMTransducerConfig &transducer);
    // 0, or -1 for an index outside the table.
    int removeTransducer(std::size_t index);
    VELMTransducerConfig *getTransducer(std::size_t index);  // null outside the table
    const VELMTransducerConfig *getTransducer(std::size_t index) const;
    std::size_t getNumTransducers() const { return transducers_.size(); }

private:
    VELMOptionalText sensorClass_ = MORVAUString(L"Swath");
    double navX_ = 0.0, navY_ = 0.0, navZ_ = 0.0;
    double mruX_ = 0.0, mruY_ = 0.0, mruZ_ = 0.0;
    std::vector<VELMTransducerConfig> transducers_;
};

// Draft: "ApplyFlag" and the speed-to-draft table "DraftEntries", kept
// sorted by speed with one row per speed.
class VELMIO_API VELMDraftConfig : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMDraftConfig, L"DraftSensor")
public:
    bool getApplyFlag() const { return applyFlag_; }
    void setApplyFlag(bool apply) { applyFlag_ = apply; }
    // Adds a row, or replaces the draft of the row with that speed.
    void setDraft(double speed, double draft);
    // 0, or 5100009 when no row has that speed.
    int removeDraft(double speed);
    const std::vector<VELMDraftEntry> &getDraftEntries() const { return draftTable_; }
    std::size_t getNumEntries() const { return draftTable_.size(); }
    bool empty() const { return draftTable_.empty(); }
    // Keeps at most count rows (the lowest speeds) and reserves room for count.
    void resizeDraftTable(std::size_t count);

private:
    bool applyFlag_ = false;
    std::vector<VELMDraftEntry> draftTable_;
};

// Waterline height of the reference point: "WaterLine", "ApplyFlag",
// "StdDev" Waterline.
class VELMIO_API VELMWaterlineHeight : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMWaterlineHeight, L"WaterlineHeight")
public:
    double getWaterLine() const { return waterLine_; }
    void setWaterLine(double height) { waterLine_ = height; }
    double getWaterlineStdDev() const { return waterlineStdDev_; }
    void setWaterlineStdDev(double value) { waterlineStdDev_ = value; }
    bool getApplyFlag() const { return applyFlag_; }
    void setApplyFlag(bool apply) { applyFlag_ = apply; }

private:
    double waterLine_ = 0.0;
    double waterlineStdDev_ = 0.0;
    bool applyFlag_ = false;
};

// The figures of the total propagated error computation.
class VELMIO_API VELMTPEConfig : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMTPEConfig, L"TPEConfiguration")
public:
    // "Offsets": "MRUtoTransducer", "NavigationToTransducer" (X, Y, Z, X2, Y2, Z2).
    void getOffsetMRUToTrans(double &x, double &y, double &z, double &x2, double &y2, double &z2) const;
    void setOffsetMRUToTrans(double x, double y, double z, double x2, double y2, double z2);
    void getOffsetNavToTrans(double &x, double &y, double &z, double &x2, double &y2, double &z2) const;
    void setOffsetNavToTrans(double x, double y, double z, double x2, double y2, double z2);
    // "Offsets" "Transducer" Roll and Roll2.
    void getTransducerRollOffset(double &roll, double &roll2) const { roll = transRoll_, roll2 = transRoll2_; }
    void setTransducerRollOffset(double roll, double roll2) { transRoll_ = roll, transRoll2_ = roll2; }
    double getNavigationLatency() const { return navLatency_; }  // "Offsets" "Navigation" Latency
    void setNavigationLatency(double v) { navLatency_ = v; }

    // "StandardDeviation" children.
    void getMeasurementStdDev(double &x, double &y, double &z) const { x = sdX_, y = sdY_, z = sdZ_; }
    void setMeasurementStdDev(double x, double y, double z) { sdX_ = x, sdY_ = y, sdZ_ = z; }
    double getGyroStdDev() const { return sdGyro_; }
    void setGyroStdDev(double v) { sdGyro_ = v; }
    void getHeaveStdDev(double &heave, double &percAmplitude) const { heave = sdHeave_, percAmplitude = sdHeavePerc_; }
    void setHeaveStdDev(double heave, double percAmplitude) { sdHeave_ = heave, sdHeavePerc_ = percAmplitude; }
    double getPitchStdDev() const { return sdPitch_; }
    void setPitchStdDev(double v) { sdPitch_ = v; }
    double getRollStdDev() const { return sdRoll_; }
    void setRollStdDev(double v) { sdRoll_ = v; }
    double getNavigationStdDev() const { return sdNavigation_; }
    void setNavigationStdDev(double v) { sdNavigation_ = v; }
    double getPitchStablizationStdDev() const { return sdPitchStab_; }
    void setPitchStablizationStdDev(double v) { sdPitchStab_ = v; }
    double getNavigationTimingStdDev() const { return tmNavigation_; }
    void setNavigationTimingStdDev(double v) { tmNavigation_ = v; }
    double getTransducerTimingStdDev() const { return tmTransducer_; }
    void setTransducerTimingStdDev(double v) { tmTransducer_ = v; }
    double getGyroTimingStdDev() const { return tmGyro_; }
    void setGyroTimingStdDev(double v) { tmGyro_ = v; }
    double getHeaveTimingStdDev() const { return tmHeave_; }
    void setHeaveTimingStdDev(double v) { tmHeave_ = v; }
    double getPitchTimingStdDev() const { return tmPitch_; }
    void setPitchTimingStdDev(double v) { tmPitch_ = v; }
    double getRollTimingStdDev() const { return tmRoll_; }
    void setRollTimingStdDev(double v) { tmRoll_ = v; }
    double getSoundVelocityStdDev() const { return svMeasured_; }
    void setSoundVelocityStdDev(double v) { svMeasured_ = v; }
    double getSurfSoundSpeedStdDev() const { return svSurface_; }
    void setSurfSoundSpeedStdDev(double v) { svSurface_ = v; }
    double getTideMeasuredStdDev() const { return tideMeasured_; }
    void setTideMeasuredStdDev(double v) { tideMeasured_ = v; }
    double getTidePredictedStdDev() const { return tideZoning_; }
    void setTidePredictedStdDev(double v) { tideZoning_ = v; }
    void getMRUAlignmentStdDev(double &gyro, double &pitch, double &roll) const;
    void setMRUAlignmentStdDev(double gyro, double pitch, double roll);
    double getSpeedOverGroundStdDev() const { return vSpeed_; }
    void setSpeedOverGroundStdDev(double v) { vSpeed_ = v; }
    double getVesselLoadingStdDev() const { return vLoading_; }
    void setVesselLoadingStdDev(double v) { vLoading_ = v; }
    double getDraftStdDev() const { return vDraft_; }
    void setDraftStdDev(double v) { vDraft_ = v; }
    double getDeltaDraftStdDev() const { return vDeltaDraft_; }
    void setDeltaDraftStdDev(double v) { vDeltaDraft_ = v; }
    const wchar_t *getStDevComment() const { return stDevComment_ ? stDevComment_->c_str() : nullptr; }
    void setStDevComment(const wchar_t *comment);  // copied; null unsets

private:
    double mruX_ = 0.0, mruY_ = 0.0, mruZ_ = 0.0, mruX2_ = 0.0, mruY2_ = 0.0, mruZ2_ = 0.0;
    double navX_ = 0.0, navY_ = 0.0, navZ_ = 0.0, navX2_ = 0.0, navY2_ = 0.0, navZ2_ = 0.0;
    double transRoll_ = 0.0, transRoll2_ = 0.0, navLatency_ = 0.0;
    double sdGyro_ = 0.0, sdHeavePerc_ = 0.0, sdHeave_ = 0.0, sdRoll_ = 0.0, sdPitch_ = 0.0, sdPitchStab_ = 0.0;
    double sdNavigation_ = 0.0;
    double tmTransducer_ = 0.0, tmNavigation_ = 0.0, tmGyro_ = 0.0, tmHeave_ = 0.0, tmPitch_ = 0.0, tmRoll_ = 0.0;
    double svMeasured_ = 0.0, svSurface_ = 0.0, tideMeasured_ = 0.0, tideZoning_ = 0.0;
    double sdX_ = 0.0, sdY_ = 0.0, sdZ_ = 0.0;
    double alignGyro_ = 0.0, alignPitch_ = 0.0, alignRoll_ = 0.0;
    double vSpeed_ = 0.0, vLoading_ = 0.0, vDraft_ = 0.0, vDeltaDraft_ = 0.0;
    VELMOptionalText stDevComment_;
};

#undef VELMIO_VESSEL_ENTRY

#endif
