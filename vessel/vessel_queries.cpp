// The flat queries over VELMVessel, the Version 1 entry points and the
// installation parameter file name.
#include <velmio/utils.hpp>
#include <velmio/vessel.hpp>
#include <velmio/vessel_queries.h>

#include "foundation/diagnostics.h"
#include "foundation/wide_copy.h"

#include <cstdlib>
#include <new>
#include <vector>

namespace {
constexpr int kNoMemory = 5000009;
constexpr int kVersion1Unreadable = 5000401;
constexpr int kVersion1Empty = 5000402;
constexpr int kNoList = 5100003;
constexpr int kDepthLookup = 5000405;
constexpr double kRadiansPerDegree = 0.017453292519943295;

// Every output reset before anything else, NULL outputs skipped.
template <class... P>
void clearOutputs(P *...outputs) {
    ((outputs ? (void)(*outputs = P{}) : (void)0), ...);
}

template <class T>
void put(T *output, T value) {
    if (output) *output = value;
}

// The X, Y, Z offsets of an entry that has them.
template <class Entry>
void putOffsets(const Entry &e, double *x, double *y, double *z) {
    double ox, oy, oz;
    e.getOffsets(ox, oy, oz);
    put(x, ox), put(y, oy), put(z, oz);
}

// Strings and arrays handed out by one query: all of them, or none when an
// allocation fails.
class HandOut {
public:
    void text(wchar_t **output, const wchar_t *value) {
        if (!output || !value) return;
        *output = velmio::mallocWideCopy(value);
        track(reinterpret_cast<void **>(output));
    }
    // Room for count doubles, sized count x 8 + 8 bytes as callers expect.
    double *array(double **output, std::size_t count) {
        if (!output) return nullptr;
        *output = static_cast<double *>(std::malloc(count * sizeof(double) + sizeof(double)));
        track(reinterpret_cast<void **>(output));
        return *output;
    }
    // The identification strings most entries carry.
    template <class Entry>
    void identity(const Entry &e, wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber) {
        text(manufacturer, e.getManufacturer());
        text(model, e.getModel());
        text(serialNumber, e.getSerialNumber());
    }
    // The comment and authorization of every entry.
    template <class Entry>
    void notes(const Entry &e, wchar_t **comment, wchar_t **authorization) {
        text(comment, e.getComment());
        text(authorization, e.getAuthorization());
    }
    int finish() {
        if (!failed_) return 0;
        for (void **output : handed_) {
            std::free(*output);
            *output = nullptr;
        }
        return kNoMemory;
    }

private:
    void track(void **output) {
        if (*output)
            handed_.push_back(output);
        else
            failed_ = true;
    }
    std::vector<void **> handed_;
    bool failed_ = false;
};

// The entry of class T valid at time, or the query's code for the failure.
template <class T>
int lookup(VELMVessel *vessel, double time, int noListCode, int otherCode, std::shared_ptr<T> &entry) {
    int error = 0;
    entry = vessel->getSensor<T>(time, error);
    if (entry) return 0;
    return error == kNoList ? noListCode : otherCode;
}

// Runs a query body, keeping C++ exceptions away from C callers.
template <class Body>
int guarded(Body body) {
    try {
        return body();
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    } catch (...) {
        return -1;
    }
}

// The frame of every query: a null vessel is -1; the entry of class Entry
// valid at time, or the query's code; fill copies the entry's settings out
// through out, whose strings and arrays are all handed out or none.
template <class Entry, class Fill>
int runQuery(VELMVessel *vessel, double time, int noListCode, int otherCode, Fill fill) {
    if (!vessel) return -1;
    return guarded([&] {
        std::shared_ptr<Entry> e;
        if (int status = lookup(vessel, time, noListCode, otherCode, e)) return status;
        HandOut out;
        fill(*e, out);
        return out.finish();
    });
}
}  // namespace

// The definitions take C linkage from their declarations in the header.

VELMIO_API VELMVesselHandle *VELMGetVesselConfiguration(const wchar_t *name, int *error) {
    int ignored = 0;
    int &status = error ? *error : ignored;
    status = 0;
    if (!name) return nullptr;
    try {
        auto *vessel = new VELMVessel(name, status);
        if (status == kVersion1Unreadable || status == kVersion1Empty) {
            delete vessel;
            return nullptr;
        }
        return vessel;
    } catch (const std::bad_alloc &) {
        status = kNoMemory;
        return nullptr;
    } catch (...) {
        status = -1;
        return nullptr;
    }
}

VELMIO_API void VesselConfigFree(VELMVesselHandle *vessel) { delete vessel; }

VELMIO_API int VesselGyroSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                           wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                           double *reserved1, double *reserved2, double *reserved3,
                                           double *latency, double *gyroOffset, int *applyFlag, wchar_t **comment,
                                           wchar_t **authorization) {
    clearOutputs(entryTime, manufacturer, model, serialNumber, reserved1, reserved2, reserved3, latency, gyroOffset,
                 applyFlag, comment, authorization);
    return runQuery<VELMGyroConfig>(vessel, time, 5000412, 5000413, [&](VELMGyroConfig &e, HandOut &out) {
        put(entryTime, e.getTimeStamp());
        out.identity(e, manufacturer, model, serialNumber);
        put(latency, e.getLatency());
        put(gyroOffset, e.getGyroOffset(0.0) * kRadiansPerDegree);
        put(applyFlag, e.getApplyFlag() ? 1 : 0);
        out.notes(e, comment, authorization);
    });
}

VELMIO_API int VesselHeaveSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                            wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                            double *offsetX, double *offsetY, double *offsetZ, double *latency,
                                            double *heaveOffset, int *applyFlag, wchar_t **comment,
                                            wchar_t **authorization) {
    clearOutputs(entryTime, manufacturer, model, serialNumber, offsetX, offsetY, offsetZ, latency, heaveOffset,
                 applyFlag, comment, authorization);
    return runQuery<VELMHeaveConfig>(vessel, time, 5000414, 5000415, [&](VELMHeaveConfig &e, HandOut &out) {
        put(entryTime, e.getTimeStamp());
        out.identity(e, manufacturer, model, serialNumber);
        putOffsets(e, offsetX, offsetY, offsetZ);
        put(latency, e.getLatency());
        put(heaveOffset, e.getHeaveOffset());
        put(applyFlag, e.getApplyFlag() ? 1 : 0);
        out.notes(e, comment, authorization);
    });
}

VELMIO_API int VesselNavigationSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                                 wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                                 wchar_t **ellipseName, double *offsetX, double *offsetY,
                                                 double *offsetZ, double *latency, wchar_t **comment,
                                                 wchar_t **authorization) {
    clearOutputs(entryTime, manufacturer, model, serialNumber, ellipseName, offsetX, offsetY, offsetZ, latency,
                 comment, authorization);
    return runQuery<VELMNavConfig>(vessel, time, 5000416, 5000417, [&](VELMNavConfig &e, HandOut &out) {
        put(entryTime, e.getTimeStamp());
        out.identity(e, manufacturer, model, serialNumber);
        out.text(ellipseName, e.getEllipseName());
        putOffsets(e, offsetX, offsetY, offsetZ);
        put(latency, e.getLatency());
        out.notes(e, comment, authorization);
    });
}

namespace {
// Pitch and roll entries answer alike; only the offset differs.
template <class T, class Offset>
int attitudeQuery(VELMVessel *vessel, double time, int noList, int other, Offset offsetOf, double *entryTime,
                  wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber, double *latency, double *offset,
                  int *applyFlag, wchar_t **comment, wchar_t **authorization) {
    clearOutputs(entryTime, manufacturer, model, serialNumber, latency, offset, applyFlag, comment, authorization);
    return runQuery<T>(vessel, time, noList, other, [&](T &e, HandOut &out) {
        put(entryTime, e.getTimeStamp());
        out.identity(e, manufacturer, model, serialNumber);
        put(latency, e.getLatency());
        put(offset, offsetOf(e) * kRadiansPerDegree);
        put(applyFlag, e.getApplyFlag() ? 1 : 0);
        out.notes(e, comment, authorization);
    });
}
}  // namespace

VELMIO_API int VesselPitchSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                            wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                            double *latency, double *pitchOffset, int *applyFlag,
                                            wchar_t **comment, wchar_t **authorization) {
    return attitudeQuery<VELMPitchConfig>(
        vessel, time, 5000418, 5000419, [](const VELMPitchConfig &e) { return e.getPitchOffset(); }, entryTime,
        manufacturer, model, serialNumber, latency, pitchOffset, applyFlag, comment, authorization);
}

VELMIO_API int VesselRollSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                           wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                           double *latency, double *rollOffset, int *applyFlag, wchar_t **comment,
                                           wchar_t **authorization) {
    return attitudeQuery<VELMRollConfig>(
        vessel, time, 5000420, 5000421, [](const VELMRollConfig &e) { return e.getRollOffset(); }, entryTime,
        manufacturer, model, serialNumber, latency, rollOffset, applyFlag, comment, authorization);
}

VELMIO_API int VesselSVPTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime, double *offsetX,
                                    double *offsetY, double *offsetZ, double *mountPitch, double *mountRoll,
                                    double *mountAzimuth, double *offsetX2, double *offsetY2, double *offsetZ2,
                                    double *mountPitch2, double *mountRoll2, double *mountAzimuth2, int *dualHead,
                                    wchar_t **comment, wchar_t **authorization) {
    clearOutputs(entryTime, offsetX, offsetY, offsetZ, mountPitch, mountRoll, mountAzimuth, offsetX2, offsetY2,
                 offsetZ2, mountPitch2, mountRoll2, mountAzimuth2, dualHead, comment, authorization);
    return runQuery<VELMSVPConfig>(vessel, time, 5000410, 5000411, [&](VELMSVPConfig &e, HandOut &out) {
        double *offsets[2][3] = {{offsetX, offsetY, offsetZ}, {offsetX2, offsetY2, offsetZ2}};
        double *angles[2][3] = {{mountPitch, mountRoll, mountAzimuth}, {mountPitch2, mountRoll2, mountAzimuth2}};
        for (int head = 1; head <= 2; ++head) {
            double x, y, z, pitch, roll, azimuth;
            e.getPositionOffsets(head, x, y, z);
            e.getMountAngle(head, pitch, roll, azimuth);
            put(offsets[head - 1][0], x), put(offsets[head - 1][1], y), put(offsets[head - 1][2], z);
            put(angles[head - 1][0], pitch * kRadiansPerDegree);
            put(angles[head - 1][1], roll * kRadiansPerDegree);
            put(angles[head - 1][2], azimuth * kRadiansPerDegree);
        }
        put(entryTime, e.getTimeStamp());
        put(dualHead, e.isDualHead() ? 1 : 0);
        out.notes(e, comment, authorization);
    });
}

VELMIO_API int VesselTowedTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                      wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                      double *offsetX, double *offsetY, double *offsetZ, double *latency,
                                      double *layback) {
    clearOutputs(entryTime, manufacturer, model, serialNumber, offsetX, offsetY, offsetZ, latency, layback);
    return runQuery<VELMTowedSSSConfig>(vessel, time, 5000408, 5000409, [&](VELMTowedSSSConfig &e, HandOut &out) {
        put(entryTime, e.getTimeStamp());
        out.identity(e, manufacturer, model, serialNumber);
        putOffsets(e, offsetX, offsetY, offsetZ);
        put(latency, e.getLatency());
        put(layback, e.getLayback());
    });
}

VELMIO_API int VesselRPTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                   double *waterlineHeight, double *waterlineStdDev, wchar_t **comment,
                                   wchar_t **authorization) {
    clearOutputs(entryTime, waterlineHeight, waterlineStdDev, comment, authorization);
    // The reversed pair is what callers of this query test for.
    return runQuery<VELMWaterlineHeight>(vessel, time, 5000407, 5000406, [&](VELMWaterlineHeight &e, HandOut &out) {
        put(entryTime, e.getTimeStamp());
        put(waterlineHeight, e.getWaterLine());
        put(waterlineStdDev, e.getWaterlineStdDev());
        out.notes(e, comment, authorization);
    });
}

VELMIO_API int VesselDepthSensorTmIdxConfig(
    VELMVesselHandle *vessel, double time, double *entryTime, wchar_t **sensorClass, int *transducerCount,
    int *firstHeadBeamCount, int *totalBeamCount, wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
    double *offsetX, double *offsetY, double *offsetZ, double *mountPitch, double *mountRoll, double *mountAzimuth,
    double *latency, double *offsetX2, double *offsetY2, double *offsetZ2, double *mountPitch2, double *mountRoll2,
    double *mountAzimuth2, double *latency2, double **sweepOffsetX, double **sweepOffsetY, double **sweepOffsetZ,
    double **sweepMountPitch, double **sweepMountRoll, double **sweepMountAzimuth, double **sweepLatency,
    wchar_t **comment, wchar_t **authorization) {
    clearOutputs(entryTime, sensorClass, transducerCount, firstHeadBeamCount, totalBeamCount, manufacturer, model,
                 serialNumber, offsetX, offsetY, offsetZ, mountPitch, mountRoll, mountAzimuth, latency, offsetX2,
                 offsetY2, offsetZ2, mountPitch2, mountRoll2, mountAzimuth2, latency2, sweepOffsetX, sweepOffsetY,
                 sweepOffsetZ, sweepMountPitch, sweepMountRoll, sweepMountAzimuth, sweepLatency, comment,
                 authorization);
    return runQuery<VELMDepthConfig>(vessel, time, kDepthLookup, kDepthLookup, [&](VELMDepthConfig &e, HandOut &out) {
        const std::size_t count = e.getNumTransducers();
        put(entryTime, e.getTimeStamp());
        out.text(sensorClass, e.getSensorClass());
        put(transducerCount, static_cast<int>(count));
        if (!e.isSweep()) {
            double x, y, z, pitch, roll, azimuth;
            if (const VELMTransducerConfig *t = e.getTransducer(0)) {
                out.text(manufacturer, t->getManufacturer());
                out.text(model, t->getModel());
                out.text(serialNumber, t->getSerialNumber());
                t->getPositionOffset(x, y, z);
                t->getMountAngle(pitch, roll, azimuth);
                put(offsetX, x), put(offsetY, y), put(offsetZ, z);
                put(mountPitch, pitch * kRadiansPerDegree), put(mountRoll, roll * kRadiansPerDegree);
                put(mountAzimuth, azimuth * kRadiansPerDegree);
                put(latency, t->getLatency());
            }
            if (count > 1) {
                const VELMTransducerConfig *t = e.getTransducer(1);
                t->getPositionOffset(x, y, z);
                t->getMountAngle(pitch, roll, azimuth);
                put(offsetX2, x), put(offsetY2, y), put(offsetZ2, z);
                put(mountPitch2, pitch * kRadiansPerDegree), put(mountRoll2, roll * kRadiansPerDegree);
                put(mountAzimuth2, azimuth * kRadiansPerDegree);
                put(latency2, t->getLatency());
                const int firstHead = static_cast<int>(t->getStartBeam()) - 1;
                put(firstHeadBeamCount, firstHead);
                put(totalBeamCount, 2 * firstHead);
            }
        } else {
            double *arrays[7] = {out.array(sweepOffsetX, count),    out.array(sweepOffsetY, count),
                                 out.array(sweepOffsetZ, count),    out.array(sweepMountPitch, count),
                                 out.array(sweepMountRoll, count),  out.array(sweepMountAzimuth, count),
                                 out.array(sweepLatency, count)};
            for (std::size_t i = 0; i < count; ++i) {
                const VELMTransducerConfig *t = e.getTransducer(i);
                double values[7];
                t->getPositionOffset(values[0], values[1], values[2]);
                t->getMountAngle(values[3], values[4], values[5]);
                for (int a = 3; a < 6; ++a) values[a] *= kRadiansPerDegree;
                values[6] = t->getLatency();
                for (int a = 0; a < 7; ++a)
                    if (arrays[a]) arrays[a][i] = values[a];
            }
        }
        out.notes(e, comment, authorization);
    });
}

VELMIO_API int VesselDraftTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime, int *rowCount,
                                      double **speeds, double **drafts, int *applyFlag, wchar_t **comment,
                                      wchar_t **authorization) {
    clearOutputs(entryTime, rowCount, speeds, drafts, applyFlag, comment, authorization);
    return runQuery<VELMDraftConfig>(vessel, time, 5000422, 5000423, [&](VELMDraftConfig &e, HandOut &out) {
        const auto &rows = e.getDraftEntries();
        double *speed = out.array(speeds, rows.size());
        double *draft = out.array(drafts, rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (speed) speed[i] = rows[i].speed;
            if (draft) draft[i] = rows[i].draft;
        }
        put(entryTime, e.getTimeStamp());
        put(rowCount, static_cast<int>(rows.size()));
        put(applyFlag, e.getApplyFlag() ? 1 : 0);
        out.notes(e, comment, authorization);
    });
}

namespace {
// The per-transducer queries: one array per value that valueOf yields.
template <std::size_t N, class Values>
int perTransducer(VELMVessel *vessel, double time, int *transducerCount, double **(&arrays)[N], Values valueOf) {
    put(transducerCount, 0);
    for (double **a : arrays) put(a, static_cast<double *>(nullptr));
    return runQuery<VELMDepthConfig>(vessel, time, kDepthLookup, kDepthLookup, [&](VELMDepthConfig &e, HandOut &out) {
        const std::size_t count = e.getNumTransducers();
        double *filled[N];
        for (std::size_t a = 0; a < N; ++a) filled[a] = out.array(arrays[a], count);
        for (std::size_t i = 0; i < count; ++i) {
            double values[N];
            valueOf(*e.getTransducer(i), values);
            for (std::size_t a = 0; a < N; ++a)
                if (filled[a]) filled[a][i] = values[a];
        }
        put(transducerCount, static_cast<int>(count));
    });
}
}  // namespace

VELMIO_API int VesselSweepTPETmIdxConfig(VELMVesselHandle *vessel, double time, int *transducerCount,
                                         double **transducerFixed, double **mruAlignmentGyro,
                                         double **mruAlignmentRoll, double **squatPercFactor,
                                         double **heavePercAmplitude) {
    double **arrays[5] = {transducerFixed, mruAlignmentGyro, mruAlignmentRoll, squatPercFactor, heavePercAmplitude};
    return perTransducer(vessel, time, transducerCount, arrays, [](const VELMTransducerConfig &t, double *v) {
        bool fixed = true;
        t.getSweepTPEParameters(fixed, v[1], v[2], v[3], v[4]);
        v[0] = fixed ? 1.0 : 0.0;
        v[1] *= kRadiansPerDegree;
        v[2] *= kRadiansPerDegree;
    });
}

VELMIO_API int VesselDepthSensorOrientationTmIdxConfig(VELMVesselHandle *vessel, double time, int *transducerCount,
                                                       double **pitch, double **roll, double **azimuth) {
    double **arrays[3] = {pitch, roll, azimuth};
    return perTransducer(vessel, time, transducerCount, arrays, [](const VELMTransducerConfig &t, double *v) {
        t.getMountAngle(v[0], v[1], v[2]);
        for (int a = 0; a < 3; ++a) v[a] *= kRadiansPerDegree;
    });
}

VELMIO_API int VesselDepthSensorLatencyTmIdxConfig(VELMVesselHandle *vessel, double time, int *transducerCount,
                                                   double **latency) {
    double **arrays[1] = {latency};
    return perTransducer(vessel, time, transducerCount, arrays,
                         [](const VELMTransducerConfig &t, double *v) { v[0] = t.getLatency(); });
}

VELMIO_API int VELMVesselImport(const wchar_t *path, VELMVesselHandle *vessel) {
    if (!path) return kVersion1Unreadable;
    if (!vessel) return -1;
    // The Version 1 text format is not read by this library.
    velmio::say("VELMVesselImport(): unable to read Version 1 vessel file %s\n", velmio::printable(path).c_str());
    return kVersion1Unreadable;
}

VELMIO_API int VELMVesselConvert(const wchar_t *path) {
    return guarded([&] {
        VELMVessel vessel;
        if (int status = VELMVesselImport(path, &vessel)) return status;
        if (int status = vessel.setFileName(path)) return status;
        return vessel.store();
    });
}

VELMIO_API int getInstallationParameterFileNameN(const wchar_t *directory, wchar_t *buffer, size_t capacity) {
    if (!directory || !buffer || capacity == 0) return -1;
    return guarded([&] {
        MORVAUString name(directory);
        VELMIOUtils::appendPath(name, L"InstallationParameter.xml");
        return velmio::copyBounded(buffer, capacity, name.c_str()) ? 0 : -1;
    });
}

VELMIO_API int getInstallationParameterFileName(const wchar_t *directory, wchar_t *buffer) {
    return getInstallationParameterFileNameN(directory, buffer, VELMIO_INSTALLATION_PARAMETER_CAPACITY);
}

