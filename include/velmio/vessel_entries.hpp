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
#include <memory>
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

    double getTimeStamp() const;
    const wchar_t *getSensorName() const;
    const wchar_t *getComment() const;
    void setComment(const wchar_t *comment);  // copied; null unsets
    const wchar_t *getAuthorization() const;
    void setAuthorization(const wchar_t *authorization);  // copied; null unsets
    double getLatency() const;
    void setLatency(double latency);
    // The bound "TimeStamp" element, null until loaded or stored.
    xmlNode *getNode() const;

protected:
    struct Impl;
    // For the entry kinds: state is the kind's whole state, made with new
    // and owned from here on. error (when not null) is set as above.
    VELMVesselSensorConfig(Impl *state, double timeStamp, const wchar_t *sensorName, int *error);
    void setTimeStamp(double timeStamp);
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
    void forgetNode();

    // The state lives in the library, so that it can change without breaking
    // programs built against an earlier version.
    std::unique_ptr<Impl> d_;
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
    VELMTransducerConfig();
    // transducerFixed is the sweep "TransducerFixed" flag.
    VELMTransducerConfig(unsigned number, unsigned startBeam, bool transducerFixed = true);
    VELMTransducerConfig(const VELMTransducerConfig &other);  // a deep copy
    VELMTransducerConfig &operator=(const VELMTransducerConfig &other);
    ~VELMTransducerConfig();

    unsigned getNumber() const;
    void setNumber(unsigned number);
    unsigned getStartBeam() const;
    void setStartBeamNum(unsigned startBeam);
    double getLatency() const;
    void setLatency(double latency);
    void getPositionOffset(double &x, double &y, double &z) const;
    void setPositionOffset(double x, double y, double z);
    void getMountAngle(double &pitch, double &roll, double &azimuth) const;
    void setMountAngle(double pitch, double roll, double azimuth);
    const wchar_t *getModel() const;
    void setModel(const wchar_t *model);  // copied; null unsets
    const wchar_t *getManufacturer() const;
    void setManufacturer(const wchar_t *manufacturer);
    const wchar_t *getSerialNumber() const;
    void setSerialNumber(const wchar_t *serialNumber);
    // The sweep error figures, written only for a "Sweep" depth sensor.
    void getSweepTPEParameters(bool &transducerFixed, double &mruAlignmentGyro, double &mruAlignmentRoll,
                               double &squatPercFactor, double &heavePercAmplitude) const;
    void setSweepTPEParameters(bool transducerFixed, double mruAlignmentGyro, double mruAlignmentRoll,
                               double squatPercFactor, double heavePercAmplitude);

private:
    friend struct velmio::vessel::Tables;
    struct Impl;
    std::unique_ptr<Impl> d_;
};

// Settings shared by several kinds. They are mixed into the entry classes
// beside the root class, so that a kind and its side scan twin share one
// implementation while each stays a direct entry class of its own. Their
// state is part of the entry's, which the root class owns: each mixin only
// points at its own share.

// "Manufacturer", "Model", "SerialNumber".
class VELMIO_API VELMSensorIdentity {
public:
    const wchar_t *getManufacturer() const;
    void setManufacturer(const wchar_t *manufacturer);  // copied; null unsets
    const wchar_t *getModel() const;
    void setModel(const wchar_t *model);
    const wchar_t *getSerialNumber() const;
    void setSerialNumber(const wchar_t *serialNumber);

protected:
    struct Impl;
    explicit VELMSensorIdentity(Impl *state);
    ~VELMSensorIdentity() = default;
    VELMSensorIdentity(const VELMSensorIdentity &) = delete;
    VELMSensorIdentity &operator=(const VELMSensorIdentity &) = delete;

private:
    friend struct velmio::vessel::Tables;
    Impl *d_;
};

// The gyro offset table (kept sorted by azimuth, one row per azimuth) and
// the apply flag.
class VELMIO_API VELMGyroSettings : public VELMSensorIdentity {
public:
    bool getApplyFlag() const;
    void setApplyFlag(bool apply);
    // Adds a row, or replaces the offset of the row with that azimuth.
    void setGyroOffset(double offset, double azimuth);
    // The offset at an azimuth in degrees: 0.0 outside 0..360 or for an
    // empty table; the one row's offset for a one-row table; linear between
    // neighbouring rows; outside the rows, interpolated across the 360 wrap
    // between the last row L and the first row F, starting from F's offset:
    // (F.offset - L.offset) / (F.azimuth + 360 - L.azimuth) x distance from L
    // + F.offset (the addition of F's offset is deliberate).
    double getGyroOffset(double azimuth) const;
    const std::vector<VELMGyroOffset> &getAllGyroOffsets() const;
    // Keeps at most count rows (the lowest azimuths) and reserves room for count.
    void resizeGyroTable(std::size_t count);

protected:
    struct Impl;
    explicit VELMGyroSettings(Impl *state);
    ~VELMGyroSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    Impl *d_;
};

// Heave sensor: "ApplyFlag"; "Offsets" X, Y, Z, Heave.
class VELMIO_API VELMHeaveSettings : public VELMSensorIdentity {
public:
    bool getApplyFlag() const;
    void setApplyFlag(bool apply);
    void getOffsets(double &x, double &y, double &z) const;
    void setOffsets(double x, double y, double z);
    double getHeaveOffset() const;
    void setHeaveOffset(double heave);

protected:
    struct Impl;
    explicit VELMHeaveSettings(Impl *state);
    ~VELMHeaveSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    Impl *d_;
};

// Navigation sensor: "Ellipse" (ellipsoid name); "Offsets" X, Y, Z.
class VELMIO_API VELMNavSettings : public VELMSensorIdentity {
public:
    const wchar_t *getEllipseName() const;
    void setEllipseName(const wchar_t *name);  // copied; null unsets
    void getOffsets(double &x, double &y, double &z) const;
    void setOffsets(double x, double y, double z);

protected:
    struct Impl;
    explicit VELMNavSettings(Impl *state);
    ~VELMNavSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    Impl *d_;
};

// Pitch sensor: "ApplyFlag"; "Offsets" Pitch.
class VELMIO_API VELMPitchSettings : public VELMSensorIdentity {
public:
    bool getApplyFlag() const;
    void setApplyFlag(bool apply);
    double getPitchOffset() const;
    void setPitchOffset(double pitch);

protected:
    struct Impl;
    explicit VELMPitchSettings(Impl *state);
    ~VELMPitchSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    Impl *d_;
};

// Roll sensor: "ApplyFlag"; "Offsets" Roll.
class VELMIO_API VELMRollSettings : public VELMSensorIdentity {
public:
    bool getApplyFlag() const;
    void setApplyFlag(bool apply);
    double getRollOffset() const;
    void setRollOffset(double roll);

protected:
    struct Impl;
    explicit VELMRollSettings(Impl *state);
    ~VELMRollSettings() = default;

private:
    friend struct velmio::vessel::Tables;
    Impl *d_;
};

// The entry classes. kSensorName is the list element name of the kind. Each
// points at its own share of the state the root class owns.
#define VELMIO_VESSEL_ENTRY(Class, Name)                 \
public:                                                   \
    static constexpr const wchar_t *kSensorName = Name;   \
    explicit Class(double timeStamp, int &error);         \
    explicit Class(double timeStamp = 0.0);               \
    int load(xmlNode *node) override;                     \
    int store(xmlNode *parent) override;                  \
                                                          \
private:                                                  \
    friend struct velmio::vessel::Tables;                 \
    struct Impl;                                          \
    Class(Impl *state, double timeStamp, int *error);     \
    Impl *d_;

class VELMIO_API VELMGyroConfig : public VELMVesselSensorConfig, public VELMGyroSettings {
    VELMIO_VESSEL_ENTRY(VELMGyroConfig, L"GyroSensor")
};

class VELMIO_API VELMSideScanGyroConfig : public VELMVesselSensorConfig, public VELMGyroSettings {
    VELMIO_VESSEL_ENTRY(VELMSideScanGyroConfig, L"SideScanGyroSensor")
public:
    double getGyroStdDev() const;  // "StdDev" Gyro
    void setGyroStdDev(double value);
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
    void getOffsets(double &x, double &y, double &z) const;
    void setOffsets(double x, double y, double z);
    double getLayback() const;
    void setLayback(double layback);
};

// Sound velocity probe, one or two heads: "DualHead"; "Offsets" X, Y, Z,
// X2, Y2, Z2; "MountAngle" Pitch, Roll, Azimuth, Pitch2, Roll2, Azimuth2.
// head is 1 or 2; the head functions return 0, or -1 for another head.
class VELMIO_API VELMSVPConfig : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMSVPConfig, L"SVPSensor")
public:
    bool isDualHead() const;
    void setDualHead(bool dual);
    int getPositionOffsets(int head, double &x, double &y, double &z) const;
    int setPositionOffsets(int head, double x, double y, double z);
    int getMountAngle(int head, double &pitch, double &roll, double &azimuth) const;
    int setMountAngle(int head, double pitch, double roll, double azimuth);
};

// Depth sensor: class "Swath" or "Sweep", transducer table and, for "Sweep",
// the boom offsets and each transducer's sweep error figures.
class VELMIO_API VELMDepthConfig : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMDepthConfig, L"DepthSensor")
public:
    const wchar_t *getSensorClass() const;
    // Accepts "Swath" and "Sweep" ignoring case (kept as given): 0, or -1.
    int setSensorClass(const wchar_t *sensorClass);
    // True when the class is "Sweep" ignoring case.
    bool isSweep() const;
    void getMRUToBoomOffset(double &x, double &y, double &z) const;
    void setMRUToBoomOffset(double x, double y, double z);
    void getNavToBoomOffset(double &x, double &y, double &z) const;
    void setNavToBoomOffset(double x, double y, double z);
    // Appends a copy; returns the held transducer, valid until the table changes.
    VELMTransducerConfig *addTransducer(const VELMTransducerConfig &transducer);
    // 0, or -1 for an index outside the table.
    int removeTransducer(std::size_t index);
    VELMTransducerConfig *getTransducer(std::size_t index);  // null outside the table
    const VELMTransducerConfig *getTransducer(std::size_t index) const;
    std::size_t getNumTransducers() const;
};

// Draft: "ApplyFlag" and the speed-to-draft table "DraftEntries", kept
// sorted by speed with one row per speed.
class VELMIO_API VELMDraftConfig : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMDraftConfig, L"DraftSensor")
public:
    bool getApplyFlag() const;
    void setApplyFlag(bool apply);
    // Adds a row, or replaces the draft of the row with that speed.
    void setDraft(double speed, double draft);
    // 0, or 5100009 when no row has that speed.
    int removeDraft(double speed);
    const std::vector<VELMDraftEntry> &getDraftEntries() const;
    std::size_t getNumEntries() const;
    bool empty() const;
    // Keeps at most count rows (the lowest speeds) and reserves room for count.
    void resizeDraftTable(std::size_t count);
};

// Waterline height of the reference point: "WaterLine", "ApplyFlag",
// "StdDev" Waterline.
class VELMIO_API VELMWaterlineHeight : public VELMVesselSensorConfig {
    VELMIO_VESSEL_ENTRY(VELMWaterlineHeight, L"WaterlineHeight")
public:
    double getWaterLine() const;
    void setWaterLine(double height);
    double getWaterlineStdDev() const;
    void setWaterlineStdDev(double value);
    bool getApplyFlag() const;
    void setApplyFlag(bool apply);
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
    void getTransducerRollOffset(double &roll, double &roll2) const;
    void setTransducerRollOffset(double roll, double roll2);
    double getNavigationLatency() const;  // "Offsets" "Navigation" Latency
    void setNavigationLatency(double v);

    // "StandardDeviation" children.
    void getMeasurementStdDev(double &x, double &y, double &z) const;
    void setMeasurementStdDev(double x, double y, double z);
    double getGyroStdDev() const;
    void setGyroStdDev(double v);
    void getHeaveStdDev(double &heave, double &percAmplitude) const;
    void setHeaveStdDev(double heave, double percAmplitude);
    double getPitchStdDev() const;
    void setPitchStdDev(double v);
    double getRollStdDev() const;
    void setRollStdDev(double v);
    double getNavigationStdDev() const;
    void setNavigationStdDev(double v);
    double getPitchStablizationStdDev() const;
    void setPitchStablizationStdDev(double v);
    double getNavigationTimingStdDev() const;
    void setNavigationTimingStdDev(double v);
    double getTransducerTimingStdDev() const;
    void setTransducerTimingStdDev(double v);
    double getGyroTimingStdDev() const;
    void setGyroTimingStdDev(double v);
    double getHeaveTimingStdDev() const;
    void setHeaveTimingStdDev(double v);
    double getPitchTimingStdDev() const;
    void setPitchTimingStdDev(double v);
    double getRollTimingStdDev() const;
    void setRollTimingStdDev(double v);
    double getSoundVelocityStdDev() const;
    void setSoundVelocityStdDev(double v);
    double getSurfSoundSpeedStdDev() const;
    void setSurfSoundSpeedStdDev(double v);
    double getTideMeasuredStdDev() const;
    void setTideMeasuredStdDev(double v);
    double getTidePredictedStdDev() const;
    void setTidePredictedStdDev(double v);
    void getMRUAlignmentStdDev(double &gyro, double &pitch, double &roll) const;
    void setMRUAlignmentStdDev(double gyro, double pitch, double roll);
    double getSpeedOverGroundStdDev() const;
    void setSpeedOverGroundStdDev(double v);
    double getVesselLoadingStdDev() const;
    void setVesselLoadingStdDev(double v);
    double getDraftStdDev() const;
    void setDraftStdDev(double v);
    double getDeltaDraftStdDev() const;
    void setDeltaDraftStdDev(double v);
    const wchar_t *getStDevComment() const;
    void setStDevComment(const wchar_t *comment);  // copied; null unsets
};

#undef VELMIO_VESSEL_ENTRY

#endif
