/* Navigation: the positions of a survey line, one record per fix with a
 * time, a latitude, a longitude, one further value in metres and a status
 * word. Two families share the implementation and the file layout:
 * Navigation (sensor type 3, files "Navigation...", the vessel's position)
 * and SSSNavigation (type 12, files "SSSNavigation...", the towed side scan
 * sensor's position). Each accepts only handles of its own type.
 *
 * Files of the stem N in the line directory: the data file "N" (validation
 * record, 56-byte summary, 20-byte records), "NLineSegments" and "NTmIdx".
 * Latitudes and longitudes are radians, stored as units of 1e-9 rad (times
 * the position scale, 1) after a reference position fixed by the first
 * record; times are seconds stored to the millisecond after a whole-minute
 * reference time; the metres value is stored in millimetres.
 *
 * Calling orders:
 *   write: OpenDir(dir, "create"), BgnSeqWriteSummary(coordinateType), then per
 *          raw source file BgnSeqWriteLineSegment(name), SeqWrite... (or SeqWriteRange),
 *          EndSeqWriteLineSegment(status); then EndSeqWriteSummary(status), Close.
 *          A handle closed without records leaves no files.
 *   read:  OpenDir(dir, "query"), Summary, LineSegment(n), Read(n), ReadRange or
 *          ReadSeq, Close.
 *   edit:  OpenDir(dir, "update"), Read, GetRecordStatus, Set...Status,
 *          SaveStatusToDisk, Close (edits not saved are lost).
 * Records and segments count from 1. The name LineSegment hands out is a
 * fresh heap copy the caller frees with free() or VELMIO_free(); Close
 * releases the handle whatever it returns.
 *
 * Codes: 5000112 null handle; 5000113 handle of another type (with a
 * message naming the operation); 5000118 wrong access mode; -1 a handle
 * without navigation state or a missing output; 5000119 record number out of
 * range; 5000117 no such segment; 5000009 out of memory; 5000101 and
 * 5000132-5000135 line segment file cannot be opened (other error, not
 * found, too many files, access denied, no space); 5000102/5000103 line
 * segment file not written/invalid; 5000105/5000106 summary not
 * written/invalid (also a bad validation record or a record count the file
 * cannot hold); 5000108 record not in the time index; 5000109 status shadow
 * not loaded; 5000110 record status not saved; 5000111 summary space not
 * reserved; 5000114 time index not written; 5000115 seek or flush failed;
 * 5000121/5000122 record not decodable/encodable; 5000123 time index entry
 * failed; 5000124 write failed; 5000125 read failed (or a file shorter than
 * its summary); 5000126 close failed. The families differ on a handle of
 * the wrong type: Navigation's LineSegment and SaveStatusToDisk return
 * 5000112 silently, SSSNavigation's print a message and return 5000113;
 * SSSNavigationSetSummaryStatus returns 5000122 silently; SSSNavigationClose
 * returns 5000113 silently; SSSNavigation prints no messages while reading
 * the files at open. */
#ifndef VELMIO_NAVIGATION_H
#define VELMIO_NAVIGATION_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* Opens the line's navigation for "create", "query" or "update"; the handle,
 * or null with *error set. */
VELMIO_API TOVO_Sensor *NavigationOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
/* Finishes (create: summary, segments, time index) and releases the handle. */
VELMIO_API int NavigationClose(TOVO_Sensor *handle);
/* Copies the summary; every output may be null. */
VELMIO_API int NavigationSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount,
                                 unsigned int *coordinateType, double *minTime, double *maxTime,
                                 double *minLatitude, double *maxLatitude, double *minLongitude,
                                 double *maxLongitude, unsigned int *summaryStatus);
/* Segment n (from 1); *name receives a fresh copy the caller frees. Every
 * output is required. */
VELMIO_API int NavigationLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name,
                                     unsigned int *beginIndex, unsigned int *endIndex, double *minTime,
                                     double *maxTime, double *minLatitude, double *maxLatitude,
                                     double *minLongitude, double *maxLongitude, unsigned int *status);
/* Random read of record n (query or update; in update mode the status is
 * the edited one). Every output is required. */
VELMIO_API int NavigationRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *latitude,
                              double *longitude, double *metres, unsigned int *status);
/* Bulk read of records firstRecord .. firstRecord + count - 1 (query or
 * update) into caller-owned arrays of count entries, one per field; any array
 * may be null. The values (and, in update mode, the edited statuses) are
 * those Read gives record by record. count 0 returns 0 and touches nothing;
 * a range that runs past the last record returns 5000119 and writes nothing;
 * on any other failure the entries before the failing record are filled. */
VELMIO_API int NavigationReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count, double *times,
                                   double *latitudes, double *longitudes, double *metres, unsigned int *statuses);
/* Reads the next record (query mode only); the first call gives record 1. */
VELMIO_API int NavigationReadSeq(TOVO_Sensor *handle, double *time, double *latitude, double *longitude,
                                 double *metres, unsigned int *status);
/* Create mode: stores the caller's coordinate type code (1 when never set). */
VELMIO_API int NavigationBgnSeqWriteSummary(TOVO_Sensor *handle, unsigned int coordinateType);
/* Create mode: starts a segment named after the raw source file. */
VELMIO_API int NavigationBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
/* Create mode: appends one record. */
VELMIO_API int NavigationSeqWrite(TOVO_Sensor *handle, double time, double latitude, double longitude,
                                  double metres, unsigned int status);
/* Create mode: appends count records from caller arrays, the same bytes as
 * count SeqWrite calls. The value arrays are required (-1 when one is null
 * and count > 0); a null statuses array writes status 0. count 0 returns 0;
 * a failure stops at the failing record, the records before it written. */
VELMIO_API int NavigationSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times,
                                       const double *latitudes, const double *longitudes, const double *metres,
                                       const unsigned int *statuses);
/* Create mode: ends the current segment (5000117 when none was begun). */
VELMIO_API int NavigationEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
/* Create mode: sets the summary status. */
VELMIO_API int NavigationEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
/* Any mode: sets the summary status in memory. */
VELMIO_API int NavigationSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
/* Update mode: segment n's status; record n's status read from and set in
 * the edits held until NavigationSaveStatusToDisk. */
VELMIO_API int NavigationSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int NavigationGetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int *status);
VELMIO_API int NavigationSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
/* Update mode: writes the summary, the segments and the changed record
 * statuses (only those, once each). */
VELMIO_API int NavigationSaveStatusToDisk(TOVO_Sensor *handle);
/* Deletes the three navigation files of the line; 0 or 5000009. */
VELMIO_API int NavigationRemoveDir(const wchar_t *lineDirectory);

/* The same operations for the towed sensor's position (type 12). */
VELMIO_API TOVO_Sensor *SSSNavigationOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *error);
VELMIO_API int SSSNavigationClose(TOVO_Sensor *handle);
VELMIO_API int SSSNavigationSummary(TOVO_Sensor *handle, unsigned int *segmentCount, unsigned int *recordCount,
                                    unsigned int *coordinateType, double *minTime, double *maxTime,
                                    double *minLatitude, double *maxLatitude, double *minLongitude,
                                    double *maxLongitude, unsigned int *summaryStatus);
VELMIO_API int SSSNavigationLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **name,
                                        unsigned int *beginIndex, unsigned int *endIndex, double *minTime,
                                        double *maxTime, double *minLatitude, double *maxLatitude,
                                        double *minLongitude, double *maxLongitude, unsigned int *status);
VELMIO_API int SSSNavigationRead(TOVO_Sensor *handle, unsigned int recordNumber, double *time, double *latitude,
                                 double *longitude, double *metres, unsigned int *status);
VELMIO_API int SSSNavigationReadRange(TOVO_Sensor *handle, unsigned int firstRecord, unsigned int count,
                                      double *times, double *latitudes, double *longitudes, double *metres,
                                      unsigned int *statuses);
VELMIO_API int SSSNavigationReadSeq(TOVO_Sensor *handle, double *time, double *latitude, double *longitude,
                                    double *metres, unsigned int *status);
VELMIO_API int SSSNavigationBgnSeqWriteSummary(TOVO_Sensor *handle, unsigned int coordinateType);
VELMIO_API int SSSNavigationBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int SSSNavigationSeqWrite(TOVO_Sensor *handle, double time, double latitude, double longitude,
                                     double metres, unsigned int status);
VELMIO_API int SSSNavigationSeqWriteRange(TOVO_Sensor *handle, unsigned int count, const double *times,
                                          const double *latitudes, const double *longitudes, const double *metres,
                                          const unsigned int *statuses);
VELMIO_API int SSSNavigationEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSNavigationEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSNavigationSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SSSNavigationSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
VELMIO_API int SSSNavigationGetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int *status);
VELMIO_API int SSSNavigationSetRecordStatus(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int status);
VELMIO_API int SSSNavigationSaveStatusToDisk(TOVO_Sensor *handle);
VELMIO_API int SSSNavigationRemoveDir(const wchar_t *lineDirectory);

VELMIO_END_C

#endif
