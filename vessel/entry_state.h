// The private state of the vessel entry classes. An entry's state is one
// object: the root's part, the part of the settings it mixes in and its own,
// so that a table of member pointers into it describes the whole entry.
#ifndef VELMIO_VESSEL_ENTRY_STATE_H
#define VELMIO_VESSEL_ENTRY_STATE_H

#include <velmio/vessel_entries.hpp>

#include <libxml/tree.h>

#include <vector>

struct VELMVesselSensorConfig::Impl {
    virtual ~Impl() = default;  // owned through the root part
    double timeStamp_ = 0.0;
    double latency_ = 0.0;
    MORVAUString sensorName_;
    VELMOptionalText comment_;
    VELMOptionalText authorization_;
    xmlNode *node_ = nullptr;
};

struct VELMTransducerConfig::Impl {
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

struct VELMSensorIdentity::Impl {
    VELMOptionalText manufacturer_, model_, serialNumber_;
};

struct VELMGyroSettings::Impl : VELMSensorIdentity::Impl {
    bool applyFlag_ = false;
    std::vector<VELMGyroOffset> gyroTable_;
    void setGyroOffset(double offset, double azimuth);  // keeps the table sorted, one row per azimuth
};

struct VELMHeaveSettings::Impl : VELMSensorIdentity::Impl {
    bool applyFlag_ = false;
    double x_ = 0.0, y_ = 0.0, z_ = 0.0, heave_ = 0.0;
};

struct VELMNavSettings::Impl : VELMSensorIdentity::Impl {
    VELMOptionalText ellipse_;
    double x_ = 0.0, y_ = 0.0, z_ = 0.0;
};

struct VELMPitchSettings::Impl : VELMSensorIdentity::Impl {
    bool applyFlag_ = false;
    double pitch_ = 0.0;
};

struct VELMRollSettings::Impl : VELMSensorIdentity::Impl {
    bool applyFlag_ = false;
    double roll_ = 0.0;
};

// Kinds made of the root and one set of shared settings.
struct VELMGyroConfig::Impl : VELMVesselSensorConfig::Impl, VELMGyroSettings::Impl {};
struct VELMHeaveConfig::Impl : VELMVesselSensorConfig::Impl, VELMHeaveSettings::Impl {};
struct VELMSideScanHeaveConfig::Impl : VELMVesselSensorConfig::Impl, VELMHeaveSettings::Impl {};
struct VELMNavConfig::Impl : VELMVesselSensorConfig::Impl, VELMNavSettings::Impl {};
struct VELMSideScanNavConfig::Impl : VELMVesselSensorConfig::Impl, VELMNavSettings::Impl {};
struct VELMPitchConfig::Impl : VELMVesselSensorConfig::Impl, VELMPitchSettings::Impl {};
struct VELMSideScanPitchConfig::Impl : VELMVesselSensorConfig::Impl, VELMPitchSettings::Impl {};
struct VELMRollConfig::Impl : VELMVesselSensorConfig::Impl, VELMRollSettings::Impl {};
struct VELMSideScanRollConfig::Impl : VELMVesselSensorConfig::Impl, VELMRollSettings::Impl {};
struct VELMSideScanConfig::Impl : VELMVesselSensorConfig::Impl, VELMSensorIdentity::Impl {};

struct VELMSideScanGyroConfig::Impl : VELMVesselSensorConfig::Impl, VELMGyroSettings::Impl {
    double gyroStdDev_ = 0.0;
};

struct VELMTowedSSSConfig::Impl : VELMVesselSensorConfig::Impl, VELMSensorIdentity::Impl {
    double x_ = 0.0, y_ = 0.0, z_ = 0.0, layback_ = 0.0;
};

struct VELMSVPConfig::Impl : VELMVesselSensorConfig::Impl {
    bool dualHead_ = false;
    double x_ = 0.0, y_ = 0.0, z_ = 0.0, x2_ = 0.0, y2_ = 0.0, z2_ = 0.0;
    double pitch_ = 0.0, roll_ = 0.0, azimuth_ = 0.0, pitch2_ = 0.0, roll2_ = 0.0, azimuth2_ = 0.0;
};

struct VELMDepthConfig::Impl : VELMVesselSensorConfig::Impl {
    VELMOptionalText sensorClass_ = MORVAUString(L"Swath");
    double navX_ = 0.0, navY_ = 0.0, navZ_ = 0.0;
    double mruX_ = 0.0, mruY_ = 0.0, mruZ_ = 0.0;
    std::vector<VELMTransducerConfig> transducers_;
};

struct VELMDraftConfig::Impl : VELMVesselSensorConfig::Impl {
    bool applyFlag_ = false;
    std::vector<VELMDraftEntry> draftTable_;
    void setDraft(double speed, double draft);  // keeps the table sorted, one row per speed
};

struct VELMWaterlineHeight::Impl : VELMVesselSensorConfig::Impl {
    double waterLine_ = 0.0;
    double waterlineStdDev_ = 0.0;
    bool applyFlag_ = false;
};

struct VELMTPEConfig::Impl : VELMVesselSensorConfig::Impl {
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

#endif
