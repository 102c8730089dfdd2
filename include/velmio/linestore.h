/* The line directory store: a sensor's files in a survey line directory, the
 * sensor handle, line segments, the status shadow and the time index.
 *
 * Files of a sensor named N in the line directory: the data file "N", the
 * line segment file "NLineSegments", the time index "NTmIdx" and, for the
 * side scan ids 9 and 10 only, the trace file "NTrace". */
#ifndef VELMIO_LINESTORE_H
#define VELMIO_LINESTORE_H

#include <velmio/export.h>

VELMIO_BEGIN_C

typedef struct _TOVO_LnSeg TOVO_LnSeg;
typedef struct _TOVO_TmIdxSet TOVO_TmIdxSet;

/* Opens the files of sensor type sensorTypeId in lineDirectory for the access
 * token "create", "query" or "update" (any letter case) and returns the new
 * handle, or null with *errorCode set (5000010 no such directory, 5000022
 * unknown sensor type, 5000046 data file missing, 5000014/15/16/25 open
 * failures, 5000024 trace file, 5000009 out of memory). Reads and writes
 * nothing: validation records, summaries, segments and the time index are the
 * family's business. Ids 53 and 32787 open "ObservedDepthsNew" and
 * "NewSSSProcessedSideScan" and are recorded as types 4 and 19. An unknown
 * token is kept as the mode (the file is then opened "rb+"). */
VELMIO_API TOVO_Sensor *SensorOpenDir(const wchar_t *lineDirectory, unsigned int sensorTypeId,
                                      const wchar_t *accessToken, int *errorCode);
/* Releases everything the handle owns (not its files: the family's Close
 * closes them). Null is accepted. 0, or -1. */
VELMIO_API int SensorFree(TOVO_Sensor *handle);
/* Deletes "lineDirectory/name", "...LineSegments" and "...TmIdx", ignoring
 * whether each exists. 0, or 5000009. */
VELMIO_API int SensorRemoveDir(const wchar_t *lineDirectory, const wchar_t *sensorName);
/* 1 when path names an existing directory, else 0. */
VELMIO_API int LineExists(const wchar_t *path);
/* Creates every missing directory of DataRoot/Project/Vessel/Day/Line, in
 * that order. 0, or 5000034. */
VELMIO_API int LineCreateHierarchy(const wchar_t *path);
/* The vessel configuration file of the line's vessel: by convention the file
 * "<Vessel>.tvc" in the folder "VesselConfig" of the line's data root
 * (DataRoot/VesselConfig/Vessel.tvc). Copied with its terminator into buffer
 * when it exists and is shorter than bufferLength characters: 0, else 5000006. */
VELMIO_API int VELMFindVesselConfigurationDir(const wchar_t *lineDirectory, wchar_t *buffer, int bufferLength);

/* Appends a new segment to the handle's list (null, with a message, when
 * memory runs out). */
VELMIO_API TOVO_LnSeg *LnSegAlloc(TOVO_Sensor *handle);
/* Segment number n (counted from 1), or null. */
VELMIO_API TOVO_LnSeg *LnSegIndexSearch(TOVO_Sensor *handle, int segmentNumber);
/* Allocates the status shadow of an update handle: 0, 5000009, or -1 for a
 * null handle. */
VELMIO_API int SensorAllocStatusShadow(TOVO_Sensor *handle);

/* Adds the time index entry of the record about to be written at the data
 * file's current position: 0, 5000009, -1 for a null handle. */
VELMIO_API int TmIdxEntry(TOVO_Sensor *handle, int encodedTime);
/* Byte offset of record n: 0, 5000036 (n == 0), 5000037 (beyond the index),
 * -1 (null handle or offset). */
VELMIO_API int TmIdxMapIndexToByteOffset(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int *offset);
/* Writes or loads the handle's time index file. A null handle returns 0. */
VELMIO_API int TmIdxWrite(TOVO_Sensor *handle);
VELMIO_API int TmIdxRead(TOVO_Sensor *handle);
/* Appends an empty entry set to the handle's index (null when out of memory);
 * TmIdxSetFree releases every set of the index and returns 0. */
VELMIO_API TOVO_TmIdxSet *TmIdxSetAlloc(TOVO_Sensor *handle);
VELMIO_API int TmIdxSetFree(TOVO_Sensor *handle);

/* The 16-byte records that open data and line segment files: "TOVO", type,
 * record kind (1 data, 2 line segments), format version. xdrStream is the
 * library's internal XDR stream of the line segment file being read or written. */
VELMIO_API int TOVO_ReadDataValidationRecord(TOVO_Sensor *handle);
VELMIO_API int TOVO_WriteDataValidationRecord(TOVO_Sensor *handle);
VELMIO_API int TOVO_ReadLnSegValidationRecord(TOVO_Sensor *handle, void *xdrStream);
VELMIO_API int TOVO_WriteLnSegValidationRecord(TOVO_Sensor *handle, void *xdrStream);

VELMIO_END_C

#endif
