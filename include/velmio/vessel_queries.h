/* Flat queries of the vessel configuration: open a vessel configuration
 * file, ask for the settings of one sensor kind valid at a time, free it.
 *
 * Conventions of every query:
 * - Times are UTC seconds since 1980-01-01 (leap seconds counted). The entry
 *   valid at a time is the latest entry whose time is not after it.
 * - Every output is first set to 0, 0.0 or NULL; a NULL output pointer is
 *   skipped. Strings are malloc'ed wide copies and arrays malloc'ed doubles
 *   that the caller frees with free() or VELMIO_free(); an unset string
 *   stays NULL.
 * - Angles are returned in radians (the document holds degrees); offsets,
 *   latencies and standard deviations are returned as held.
 * - Results: 0; -1 for a NULL vessel; 5000009 when an output cannot be
 *   allocated (nothing is then handed out); for each query one code when
 *   the vessel has no entry list of the kind and one when the time precedes
 *   the kind's first entry (given with each query). No query changes the
 *   vessel. */
#ifndef VELMIO_VESSEL_QUERIES_H
#define VELMIO_VESSEL_QUERIES_H

#include <velmio/export.h>

#include <stddef.h>

#ifdef __cplusplus
class VELMVessel;
typedef VELMVessel VELMVesselHandle;
#else
/* A vessel configuration opened by VELMGetVesselConfiguration. */
typedef struct VELMVesselHandle VELMVesselHandle;
#endif

VELMIO_BEGIN_C

/* Capacity in wide characters, terminator included, that the two-argument
 * getInstallationParameterFileName assumes of its buffer. */
#define VELMIO_INSTALLATION_PARAMETER_CAPACITY 512

/* Opens the vessel configuration file name (".tvc" is appended unless the
 * name ends in it). *error (may be NULL) receives 0 or the read's error;
 * a vessel is returned even when its file is not a vessel document
 * (5100001) so that the caller can inspect the error. NULL is returned for
 * a NULL name, an allocation failure (5000009), and for a file that is not
 * XML (taken for a Version 1 file, which cannot be read: 5000401). Release
 * with VesselConfigFree. */
VELMIO_API VELMVesselHandle *VELMGetVesselConfiguration(const wchar_t *name, int *error);
/* Destroys a vessel; NULL is ignored. */
VELMIO_API void VesselConfigFree(VELMVesselHandle *vessel);

/* Gyro: no list 5000412, time before the first entry 5000413. The gyro
 * offset is the offset table's value at azimuth 0. The three reserved
 * outputs are set to 0. */
VELMIO_API int VesselGyroSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                           wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                           double *reserved1, double *reserved2, double *reserved3,
                                           double *latency, double *gyroOffset, int *applyFlag, wchar_t **comment,
                                           wchar_t **authorization);

/* Heave: 5000414 / 5000415. */
VELMIO_API int VesselHeaveSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                            wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                            double *offsetX, double *offsetY, double *offsetZ, double *latency,
                                            double *heaveOffset, int *applyFlag, wchar_t **comment,
                                            wchar_t **authorization);

/* Navigation: 5000416 / 5000417. */
VELMIO_API int VesselNavigationSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                                 wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                                 wchar_t **ellipseName, double *offsetX, double *offsetY,
                                                 double *offsetZ, double *latency, wchar_t **comment,
                                                 wchar_t **authorization);

/* Pitch: 5000418 / 5000419. */
VELMIO_API int VesselPitchSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                            wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                            double *latency, double *pitchOffset, int *applyFlag,
                                            wchar_t **comment, wchar_t **authorization);

/* Roll: 5000420 / 5000421. */
VELMIO_API int VesselRollSensorTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                           wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                           double *latency, double *rollOffset, int *applyFlag, wchar_t **comment,
                                           wchar_t **authorization);

/* Sound velocity probe, first head then second head: 5000410 / 5000411. */
VELMIO_API int VesselSVPTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime, double *offsetX,
                                    double *offsetY, double *offsetZ, double *mountPitch, double *mountRoll,
                                    double *mountAzimuth, double *offsetX2, double *offsetY2, double *offsetZ2,
                                    double *mountPitch2, double *mountRoll2, double *mountAzimuth2, int *dualHead,
                                    wchar_t **comment, wchar_t **authorization);

/* Towed sensor: 5000408 / 5000409. */
VELMIO_API int VesselTowedTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                      wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
                                      double *offsetX, double *offsetY, double *offsetZ, double *latency,
                                      double *layback);

/* Waterline height of the reference point. The codes are the other way
 * round from every other query: no list 5000407, time before the first
 * entry 5000406. */
VELMIO_API int VesselRPTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime,
                                   double *waterlineHeight, double *waterlineStdDev, wchar_t **comment,
                                   wchar_t **authorization);

/* Depth sensor: 5000405 for both lookup failures. For a class other than
 * "Sweep" (ignoring case) transducer 1's identification, offsets, mount
 * angles and latency are returned, and with more than one transducer
 * transducer 2's offsets, mount angles and latency, the first head's beam
 * count (transducer 2's start beam - 1) and the total beam count (twice
 * that). For "Sweep" the per-transducer arrays are returned instead, one
 * double per transducer in table order, each of (transducerCount x 8 + 8)
 * bytes. */
VELMIO_API int VesselDepthSensorTmIdxConfig(
    VELMVesselHandle *vessel, double time, double *entryTime, wchar_t **sensorClass, int *transducerCount,
    int *firstHeadBeamCount, int *totalBeamCount, wchar_t **manufacturer, wchar_t **model, wchar_t **serialNumber,
    double *offsetX, double *offsetY, double *offsetZ, double *mountPitch, double *mountRoll, double *mountAzimuth,
    double *latency, double *offsetX2, double *offsetY2, double *offsetZ2, double *mountPitch2, double *mountRoll2,
    double *mountAzimuth2, double *latency2, double **sweepOffsetX, double **sweepOffsetY, double **sweepOffsetZ,
    double **sweepMountPitch, double **sweepMountRoll, double **sweepMountAzimuth, double **sweepLatency,
    wchar_t **comment, wchar_t **authorization);

/* Draft table of the entry as two arrays of rowCount doubles (speed
 * ascending, each of rowCount x 8 + 8 bytes): 5000422 / 5000423. */
VELMIO_API int VesselDraftTmIdxConfig(VELMVesselHandle *vessel, double time, double *entryTime, int *rowCount,
                                      double **speeds, double **drafts, int *applyFlag, wchar_t **comment,
                                      wchar_t **authorization);

/* The sweep error figures of every transducer of the depth entry, as
 * per-transducer arrays: transducer fixed (1.0 or 0.0), MRU alignment gyro
 * and roll (radians), squat percentage factor, heave percentage amplitude.
 * A "Swath" entry gives its transducers' defaults. 5000405. */
VELMIO_API int VesselSweepTPETmIdxConfig(VELMVesselHandle *vessel, double time, int *transducerCount,
                                         double **transducerFixed, double **mruAlignmentGyro,
                                         double **mruAlignmentRoll, double **squatPercFactor,
                                         double **heavePercAmplitude);

/* Mount angles (radians) of every transducer of the depth entry. 5000405. */
VELMIO_API int VesselDepthSensorOrientationTmIdxConfig(VELMVesselHandle *vessel, double time, int *transducerCount,
                                                       double **pitch, double **roll, double **azimuth);

/* Latency of every transducer of the depth entry. 5000405. */
VELMIO_API int VesselDepthSensorLatencyTmIdxConfig(VELMVesselHandle *vessel, double time, int *transducerCount,
                                                   double **latency);

/* Reads a Version 1 (pre-XML) vessel file, path without extension, into
 * vessel. Version 1 files are not supported: the result is 5000401 (also for
 * a NULL path); -1 for a NULL vessel with a path. */
VELMIO_API int VELMVesselImport(const wchar_t *path, VELMVesselHandle *vessel);
/* Imports a Version 1 file and stores it as path".tvc": the import's or the
 * store's status (5000401 while Version 1 files are not supported). */
VELMIO_API int VELMVesselConvert(const wchar_t *path);

/* directory + "/InstallationParameter.xml" into buffer, truncated to
 * capacity wide characters with the terminator. 0; -1 for a NULL argument,
 * a zero capacity or a name that had to be truncated. */
VELMIO_API int getInstallationParameterFileNameN(const wchar_t *directory, wchar_t *buffer, size_t capacity);
/* As above with a buffer of VELMIO_INSTALLATION_PARAMETER_CAPACITY characters. */
VELMIO_API int getInstallationParameterFileName(const wchar_t *directory, wchar_t *buffer);

VELMIO_END_C

#endif
