/* The simple sensor: fourteen sensor families that record one value against
 * time (heading, heave, pitch, roll, tide, heights, cable out, speed over
 * water, ...). They share one implementation, the SimpleSensor functions;
 * each family's functions are those under its own prefix, with OpenDir and
 * RemoveDir knowing the family's type id, file names and value scale.
 *
 * Files of a family named N in the line directory: the data file "N" (a
 * validation record, a 32-byte summary and 12-byte records of status, time
 * and value), the line segment file "NLineSegments" and the time index
 * "NTmIdx". Values are radians (scaled by 1e7) for Gyro, Pitch, Roll and
 * SSSGyro, metres (millimetres, clamped at +-2000000 m) for the others; SOW
 * applies the metres scale to its speed. Times are seconds (UTC since 1980)
 * stored to the millisecond against a whole-minute reference time fixed by
 * the first record.
 *
 * Calling orders:
 *   write: OpenDir(dir, "create"), BgnSeqWriteSummary, then per raw source
 *          file BgnSeqWriteLineSegment(name), SeqWrite... (or SeqWriteRange),
 *          EndSeqWriteLineSegment; then EndSeqWriteSummary(status) and Close. A handle closed without
 *          records leaves no files.
 *   read:  OpenDir(dir, "query"), Summary, LineSegment(n), Read(n), ReadRange or
 *          ReadSeq, Close.
 *   edit:  OpenDir(dir, "update"), Read, Set...Status, SaveStatusToDisk, Close.
 * Records and segments count from 1. Names handed out (LineSegment) are
 * fresh heap copies the caller frees with free() or VELMIO_free(); the handle
 * is released by Close, whatever Close returns.
 *
 * Codes: 5000019 null handle; -1 a handle of another family or a missing
 * required output; 5000009 out of memory; 5001202 line segment file not
 * written; 5001203 line segment file invalid; 5001205 summary not written;
 * 5001206 summary invalid (or a record count the file cannot hold); 5001208
 * record not in the time index; 5001209 status shadow not loaded; 5001210
 * record status not saved; 5001211 summary space not reserved; 5001214 time
 * index not written; 5001215 seek or flush failed; 5001216 handle not
 * released; 5001217 no such segment; 5001218 not allowed in this access
 * mode; 5001219 record number out of range; 5001221/5001222 record not
 * decodable/encodable; 5001223 time index entry failed; 5001224 write
 * failed; 5001225 read failed (or a file shorter than its summary); 5001226
 * close failed; 5028600 line segment file cannot be opened. The codes of the
 * line store (SensorOpenDir, validation records 5000027/5000028, time index
 * 500003x) pass through unchanged. */
#ifndef VELMIO_SIMPLE_SENSOR_H
#define VELMIO_SIMPLE_SENSOR_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* Value scales of SimpleSensorOpen. */
#define VELMIO_SIMPLE_SENSOR_METRES 0
#define VELMIO_SIMPLE_SENSOR_RADIANS 1

/* Opens sensor type typeId (one of the fourteen families' ids) in
 * lineDirectory for "create", "query" or "update", with values scaled as
 * metres (0) or radians (1). Returns the handle, or null with *error set
 * (5000022 for an id that is not a simple sensor, -1 for another scale; the
 * file is not touched then). */
VELMIO_API TOVO_Sensor *SimpleSensorOpen(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                         unsigned int typeId, int encodingKind, int *error);
/* Copies the summary: segment and record counts, time and value ranges,
 * summary status. Every output may be null. */
VELMIO_API int SimpleSensorSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount,
                                   double *minTime, double *maxTime, double *minValue, double *maxValue,
                                   unsigned int *summaryStatus);
/* Segment n (from 1): *name receives a fresh copy the caller frees; name and
 * status are required, the other outputs may be null. 5001217, 5000009. */
VELMIO_API int SimpleSensorLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name,
                                       unsigned int *firstRecord, unsigned int *lastRecord, double *minTime,
                                       double *maxTime, double *minValue, double *maxValue, unsigned int *status);
/* Random read of record n (query or update; in update mode the status is
 * the edited one). time and value may be null, status is required. */
VELMIO_API int SimpleSensorRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value,
                                unsigned int *status);
/* Bulk read of records firstRecord .. firstRecord + count - 1 (query or
 * update) into caller-owned arrays of count entries, one per field; any array
 * may be null. Values, and the edited statuses in update mode, are those Read
 * gives record by record. count 0 returns 0 and touches nothing; a range
 * that runs past the last record returns 5001219 and writes nothing; on any
 * other failure the entries before the failing record are filled. */
VELMIO_API int SimpleSensorReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count,
                                     double *times, double *values, unsigned int *statuses);
/* Reads the next record (query mode only); the first call gives record 1. */
VELMIO_API int SimpleSensorReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
/* Create mode check before writing: 0 or 5001218. */
VELMIO_API int SimpleSensorBgnSeqWriteSummary(TOVO_Sensor *handle);
/* Starts a segment named after the raw source file (create mode). */
VELMIO_API int SimpleSensorBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
/* Appends one record (create mode). */
VELMIO_API int SimpleSensorSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
/* Appends count records (create mode) from caller arrays: the same bytes as
 * count SeqWrite calls. times and values are required (-1 when null and
 * count > 0); a null statuses array writes status 0. count 0 returns 0. A
 * failure stops at the failing record, the records before it written. */
VELMIO_API int SimpleSensorSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times,
                                         const double *values, const unsigned int *statuses);
VELMIO_API int SimpleSensorSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
/* Ends the current segment with the given status (create mode; 5001217
 * when no segment was begun). */
VELMIO_API int SimpleSensorEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
/* Sets the summary status (create mode). */
VELMIO_API int SimpleSensorEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
/* Sets the summary status in memory, any mode; it reaches the file with the
 * next summary write. */
VELMIO_API int SimpleSensorSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
/* Update mode: segment n's status, record n's status (held in memory until
 * SaveStatusToDisk). */
VELMIO_API int SimpleSensorSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int SimpleSensorSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
/* Update mode: writes the summary, the segments and the changed record
 * statuses (only those, once each). */
VELMIO_API int SimpleSensorSaveStatusToDisk(TOVO_Sensor *handle);
/* Finishes (create: summary, segments, time index) and releases the handle. */
VELMIO_API int SimpleSensorClose(TOVO_Sensor *handle);
/* Deletes the files of sensor type typeId in lineDirectory: 0, 5000022 for
 * an id that is not a simple sensor, 5000009. */
VELMIO_API int SimpleSensorRemoveDir(const wchar_t *lineDirectory, unsigned int typeId);

/* The families: each function is the SimpleSensor function of the same
 * operation; OpenDir and RemoveDir take no type id or scale. */
/* Gyro: type 1, files "Gyro", "GyroLineSegments", "GyroTmIdx"; values in radians. */
VELMIO_API TOVO_Sensor *GyroOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int GyroSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int GyroLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int GyroRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int GyroReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int GyroReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int GyroBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int GyroBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int GyroSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int GyroSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int GyroEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GyroEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GyroSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GyroSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int GyroSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int GyroSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int GyroClose(TOVO_Sensor *handle);
VELMIO_API int GyroRemoveDir(const wchar_t *lineDirectory);

/* Heave: type 2, files "Heave", "HeaveLineSegments", "HeaveTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *HeaveOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int HeaveSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int HeaveLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int HeaveRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int HeaveReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int HeaveReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int HeaveBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int HeaveBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int HeaveSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int HeaveSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int HeaveEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int HeaveEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int HeaveSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int HeaveSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int HeaveSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int HeaveSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int HeaveClose(TOVO_Sensor *handle);
VELMIO_API int HeaveRemoveDir(const wchar_t *lineDirectory);

/* Pitch: type 5, files "Pitch", "PitchLineSegments", "PitchTmIdx"; values in radians. */
VELMIO_API TOVO_Sensor *PitchOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int PitchSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int PitchLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int PitchRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int PitchReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int PitchReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int PitchBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int PitchBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int PitchSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int PitchSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int PitchEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int PitchEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int PitchSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int PitchSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int PitchSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int PitchSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int PitchClose(TOVO_Sensor *handle);
VELMIO_API int PitchRemoveDir(const wchar_t *lineDirectory);

/* Roll: type 6, files "Roll", "RollLineSegments", "RollTmIdx"; values in radians. */
VELMIO_API TOVO_Sensor *RollOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int RollSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int RollLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int RollRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int RollReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int RollReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int RollBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int RollBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int RollSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int RollSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int RollEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int RollEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int RollSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int RollSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int RollSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int RollSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int RollClose(TOVO_Sensor *handle);
VELMIO_API int RollRemoveDir(const wchar_t *lineDirectory);

/* Tide: type 7, files "Tide", "TideLineSegments", "TideTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *TideOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int TideSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int TideLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int TideRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int TideReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int TideReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int TideBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int TideBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int TideSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int TideSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int TideEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int TideEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int TideSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int TideSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int TideSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int TideSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int TideClose(TOVO_Sensor *handle);
VELMIO_API int TideRemoveDir(const wchar_t *lineDirectory);

/* SSSGyro: type 11, files "SSSGyro", "SSSGyroLineSegments", "SSSGyroTmIdx"; values in radians. */
VELMIO_API TOVO_Sensor *SSSGyroOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int SSSGyroSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int SSSGyroLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int SSSGyroRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int SSSGyroReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int SSSGyroReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int SSSGyroBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int SSSGyroBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int SSSGyroSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int SSSGyroSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int SSSGyroEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSGyroEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSGyroSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSGyroSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int SSSGyroSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int SSSGyroSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int SSSGyroClose(TOVO_Sensor *handle);
VELMIO_API int SSSGyroRemoveDir(const wchar_t *lineDirectory);

/* SSSCableOut: type 40, files "SSSCableOut", "SSSCableOutLineSegments", "SSSCableOutTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *SSSCableOutOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int SSSCableOutSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int SSSCableOutLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int SSSCableOutRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int SSSCableOutReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int SSSCableOutReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int SSSCableOutBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int SSSCableOutBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int SSSCableOutSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int SSSCableOutSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int SSSCableOutEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSCableOutEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSCableOutSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSCableOutSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int SSSCableOutSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int SSSCableOutSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int SSSCableOutClose(TOVO_Sensor *handle);
VELMIO_API int SSSCableOutRemoveDir(const wchar_t *lineDirectory);

/* SSSSensorHeight: type 41, files "SSSSensorHeight", "SSSSensorHeightLineSegments", "SSSSensorHeightTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *SSSSensorHeightOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int SSSSensorHeightSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int SSSSensorHeightLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int SSSSensorHeightRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int SSSSensorHeightReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int SSSSensorHeightReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int SSSSensorHeightBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int SSSSensorHeightBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int SSSSensorHeightSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int SSSSensorHeightSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int SSSSensorHeightEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSSensorHeightEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSSensorHeightSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSSensorHeightSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int SSSSensorHeightSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int SSSSensorHeightSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int SSSSensorHeightClose(TOVO_Sensor *handle);
VELMIO_API int SSSSensorHeightRemoveDir(const wchar_t *lineDirectory);

/* SSSSensorDepth: type 42, files "SSSSensorDepth", "SSSSensorDepthLineSegments", "SSSSensorDepthTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *SSSSensorDepthOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int SSSSensorDepthSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int SSSSensorDepthLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int SSSSensorDepthRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int SSSSensorDepthReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int SSSSensorDepthReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int SSSSensorDepthBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int SSSSensorDepthBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int SSSSensorDepthSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int SSSSensorDepthSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int SSSSensorDepthEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSSensorDepthEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSSensorDepthSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSSensorDepthSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int SSSSensorDepthSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int SSSSensorDepthSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int SSSSensorDepthClose(TOVO_Sensor *handle);
VELMIO_API int SSSSensorDepthRemoveDir(const wchar_t *lineDirectory);

/* DeltaDraft: type 45, files "DeltaDraft", "DeltaDraftLineSegments", "DeltaDraftTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *DeltaDraftOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int DeltaDraftSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int DeltaDraftLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int DeltaDraftRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int DeltaDraftReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int DeltaDraftReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int DeltaDraftBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int DeltaDraftBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int DeltaDraftSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int DeltaDraftSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int DeltaDraftEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int DeltaDraftEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int DeltaDraftSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int DeltaDraftSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int DeltaDraftSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int DeltaDraftSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int DeltaDraftClose(TOVO_Sensor *handle);
VELMIO_API int DeltaDraftRemoveDir(const wchar_t *lineDirectory);

/* SOW: type 46, files "SOW", "SOWLineSegments", "SOWTmIdx"; values in metres scale. */
VELMIO_API TOVO_Sensor *SOWOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int SOWSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int SOWLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int SOWRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int SOWReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int SOWReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int SOWBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int SOWBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int SOWSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int SOWSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int SOWEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SOWEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SOWSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SOWSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int SOWSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int SOWSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int SOWClose(TOVO_Sensor *handle);
VELMIO_API int SOWRemoveDir(const wchar_t *lineDirectory);

/* GPSHeight: type 47, files "GPSHeight", "GPSHeightLineSegments", "GPSHeightTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *GPSHeightOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int GPSHeightSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int GPSHeightLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int GPSHeightRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int GPSHeightReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int GPSHeightReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int GPSHeightBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int GPSHeightBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int GPSHeightSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int GPSHeightSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int GPSHeightEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GPSHeightEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GPSHeightSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GPSHeightSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int GPSHeightSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int GPSHeightSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int GPSHeightClose(TOVO_Sensor *handle);
VELMIO_API int GPSHeightRemoveDir(const wchar_t *lineDirectory);

/* GPSTide: type 48, files "GPSTide", "GPSTideLineSegments", "GPSTideTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *GPSTideOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int GPSTideSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int GPSTideLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int GPSTideRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int GPSTideReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int GPSTideReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int GPSTideBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int GPSTideBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int GPSTideSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int GPSTideSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int GPSTideEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GPSTideEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GPSTideSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int GPSTideSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int GPSTideSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int GPSTideSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int GPSTideClose(TOVO_Sensor *handle);
VELMIO_API int GPSTideRemoveDir(const wchar_t *lineDirectory);

/* TrueHeave: type 55, files "TrueHeave", "TrueHeaveLineSegments", "TrueHeaveTmIdx"; values in metres. */
VELMIO_API TOVO_Sensor *TrueHeaveOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int TrueHeaveSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount, double *minTime,
    double *maxTime, double *minValue, double *maxValue, unsigned int *summaryStatus);
VELMIO_API int TrueHeaveLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name, unsigned int *firstRecord,
    unsigned int *lastRecord, double *minTime, double *maxTime, double *minValue, double *maxValue, unsigned int *status);
VELMIO_API int TrueHeaveRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *value, unsigned int *status);
VELMIO_API int TrueHeaveReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
    double *values, unsigned int *statuses);
VELMIO_API int TrueHeaveReadSeq(TOVO_Sensor *handle, double *time, double *value, unsigned int *status);
VELMIO_API int TrueHeaveBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int TrueHeaveBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int TrueHeaveSeqWrite(TOVO_Sensor *handle, double time, double value, unsigned int status);
VELMIO_API int TrueHeaveSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times, const double *values,
    const unsigned int *statuses);
VELMIO_API int TrueHeaveEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int TrueHeaveEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int TrueHeaveSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int TrueHeaveSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int TrueHeaveSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int TrueHeaveSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int TrueHeaveClose(TOVO_Sensor *handle);
VELMIO_API int TrueHeaveRemoveDir(const wchar_t *lineDirectory);
VELMIO_END_C

#endif
