/* Observed depths: the soundings of an echo sounder as observed, one profile
 * per ping (header: status, beam count and first beam number, ping time, two
 * angles) followed by one record per beam (status bits over the beam's 16-bit
 * time offset from the ping, depth, x, y; metres).
 *
 * Files in the line directory: "ObservedDepths", "ObservedDepthsLineSegments"
 * and "ObservedDepthsTmIdx" (one time index entry per profile);
 * ObservedDepthsNewOpenDir works on the "ObservedDepthsNew" set, whose handle
 * every other ObservedDepths function accepts.
 *
 * Calling orders:
 *   write:  OpenDir("create"), BgnSeqWriteSummary, per source file
 *           BgnSeqWriteLineSegment, per ping BgnSeqWriteProfile + one SeqWrite
 *           per declared beam + EndSeqWriteProfile, EndSeqWriteLineSegment;
 *           EndSeqWriteSummary, Close.
 *   read:   OpenDir("query"), Summary, LineSegment, ReadProfile/Read or
 *           ReadProfileSeq/ReadSeq, Close.
 *   edit:   OpenDir("update"), Read, Update..., SaveStatusToDisk, Close.
 *           Beam edits reach the file at once; the summary and segment
 *           bounds they widen, and status setters, reach it with
 *           SaveStatusToDisk.
 *
 * Profiles count from 1; beams carry the profile's own numbering (first beam
 * .. first beam + count - 1). Times are UTC seconds. Error codes: 0 success,
 * 50002xx (the reason digits of every family), 5000009 out of memory, -1 for a
 * handle without family state or a missing output. Files of format version 1
 * (24-byte beams) are read; every edit of them succeeds without changing
 * anything. Strings handed out are fresh copies freed with free() or
 * VELMIO_free(). */
#ifndef VELMIO_OBSERVED_DEPTHS_H
#define VELMIO_OBSERVED_DEPTHS_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* The rejection bits of a beam's status word (ObservedDepthsUpdateRejectionStatus). */
#define VELMIO_OBSERVED_DEPTHS_REJECTION_MASK 0xF3F80000u

/* Opens the line's observed depths ("ObservedDepths", or "ObservedDepthsNew"
 * for the New form) with the token "create", "query" or "update". Returns the
 * handle, or null with *errorCode set. Released by ObservedDepthsClose. */
VELMIO_API TOVO_Sensor *ObservedDepthsOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                              int *errorCode);
VELMIO_API TOVO_Sensor *ObservedDepthsNewOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                                 int *errorCode);

/* The summary; every output may be null. Depths in metres. */
VELMIO_API int ObservedDepthsSummary(TOVO_Sensor *handle, unsigned int *toolType, unsigned int *numberOfLineSegments,
                                     unsigned int *numberOfProfiles, unsigned int *numberOfBeams, double *minTime,
                                     double *maxTime, double *minDepth, double *maxDepth, unsigned int *status);
/* Segment n (from 1): its source name (fresh copy, caller frees), first and
 * last profile, extents and status. 5000217 when there is no such segment. */
VELMIO_API int ObservedDepthsLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **sourceName,
                                         unsigned int *beginIndex, unsigned int *endIndex, double *minTime,
                                         double *maxTime, double *minDepth, double *maxDepth, unsigned int *status);

/* Header of profile n (query or update). */
VELMIO_API int ObservedDepthsReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int *numberOfBeams,
                                         unsigned int *firstBeam, double *time, double *angle1, double *angle2,
                                         unsigned int *status);
/* One beam (query or update). extra is 0 for version 2 files and the sixth
 * value of version 1 beams. Reading the beams of a profile in order seeks
 * only once, at its first beam. */
VELMIO_API int ObservedDepthsRead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                  double *time, double *y, double *x, double *depth, double *extra,
                                  unsigned int *status);
/* Bulk reads (query or update) of profiles firstProfile .. firstProfile +
 * count - 1 into caller-owned arrays; any array may be null. ReadProfiles
 * fills count entries per header field, as ReadProfile gives them.
 * ReadBeams fills flat beam arrays with every beam of those profiles in
 * order (the values Read gives) and beamOffsets (count + 1 entries) with
 * the index of each profile's first beam, the last entry the beam total, so
 * ragged and empty profiles stay exact. count 0 returns 0 and touches
 * nothing; a range past the last profile, or a beam total above
 * beamCapacity, returns 5000219 and writes nothing; on any other failure
 * the entries before the failing one are filled. */
VELMIO_API int ObservedDepthsReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                          unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,
                                          double *angles1, double *angles2, unsigned int *statuses);
VELMIO_API int ObservedDepthsReadBeams(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                       unsigned int beamCapacity, unsigned int *beamOffsets, double *times,
                                       double *ys, double *xs, double *depths, double *extras,
                                       unsigned int *statuses);
/* ReadProfiles and ReadBeams in one pass over the file, each header read
 * once: the header arrays of ReadProfiles, then those of ReadBeams, with
 * the same values and rules; a range that does not fit writes nothing in
 * any array. */
VELMIO_API int ObservedDepthsReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                       unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,
                                       double *angles1, double *angles2, unsigned int *statuses,
                                       unsigned int beamCapacity, unsigned int *beamOffsets, double *beamTimes,
                                       double *ys, double *xs, double *depths, double *extras,
                                       unsigned int *beamStatuses);
/* The next header (query only) and the next beam (query or update) at the
 * file position: after open, profile 1. */
VELMIO_API int ObservedDepthsReadProfileSeq(TOVO_Sensor *handle, unsigned int *numberOfBeams, unsigned int *firstBeam,
                                            double *time, double *angle1, double *angle2, unsigned int *status);
VELMIO_API int ObservedDepthsReadSeq(TOVO_Sensor *handle, double *time, double *y, double *x, double *depth,
                                     double *extra, unsigned int *status);

/* Writing (create mode). A profile is followed by exactly its numberOfBeams
 * beams: one more is refused with 5000219, and EndSeqWriteProfile reports a
 * short profile with 5000219. Beam status bits belong in the upper 16 bits;
 * reserved1 and reserved2 are not stored. */
VELMIO_API int ObservedDepthsBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int ObservedDepthsBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int ObservedDepthsBgnSeqWriteProfile(TOVO_Sensor *handle, unsigned int numberOfBeams,
                                                unsigned int firstBeam, double time, double angle1, double angle2,
                                                unsigned int status);
VELMIO_API int ObservedDepthsSeqWrite(TOVO_Sensor *handle, double time, double y, double x, double depth,
                                      double reserved1, double reserved2, unsigned int status);
/* Appends count beams of the open profile from caller arrays (create mode,
 * between BgnSeqWriteProfile and EndSeqWriteProfile): the same bytes as
 * count SeqWrite calls; the reserved values are not stored, so they have no
 * arrays. The value arrays are required (-1 when one is null and count > 0);
 * a null statuses array writes status 0. A failure stops at the failing
 * beam, the beams before it written. */
VELMIO_API int ObservedDepthsSeqWriteBeams(TOVO_Sensor *handle, unsigned int count, const double *times,
                                           const double *ys, const double *xs, const double *depths,
                                           const unsigned int *statuses);
VELMIO_API int ObservedDepthsEndSeqWriteProfile(TOVO_Sensor *handle);
VELMIO_API int ObservedDepthsEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int ObservedDepthsEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);
/* Tool type and summary status, in any mode. */
VELMIO_API int ObservedDepthsSetToolType(TOVO_Sensor *handle, unsigned int toolType);
VELMIO_API int ObservedDepthsSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
/* Segment status (update mode), saved by ObservedDepthsSaveStatusToDisk. */
VELMIO_API int ObservedDepthsSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);

/* Beam edits (update mode), written in place at once. UpdateStatus replaces
 * the upper 16 bits and keeps the time offset; UpdateRejectionStatus replaces
 * only the bits of VELMIO_OBSERVED_DEPTHS_REJECTION_MASK (bits should lie within it)
 * and writes nothing when they are already so; the depth edits widen the
 * summary and segment depth bounds (never narrow them). In UpdateXYZStatus
 * each non-null argument replaces its value. */
VELMIO_API int ObservedDepthsUpdateStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                          unsigned int status);
VELMIO_API int ObservedDepthsUpdateRejectionStatus(TOVO_Sensor *handle, unsigned int profileNumber,
                                                   unsigned int beamNumber, unsigned int bits);
VELMIO_API int ObservedDepthsUpdateDepth(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                         double depth);
VELMIO_API int ObservedDepthsUpdateDepthStatus(TOVO_Sensor *handle, unsigned int profileNumber,
                                               unsigned int beamNumber, double depth, unsigned int status);
VELMIO_API int ObservedDepthsUpdateXYZStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                             const double *x, const double *y, const double *z,
                                             const unsigned int *status);
/* Writes summary and line segment file of an update handle and flushes. */
VELMIO_API int ObservedDepthsSaveStatusToDisk(TOVO_Sensor *handle);

/* Closes the files and frees the handle; a create handle first writes
 * summary, segments and time index (or deletes the data file when no profile
 * was written). */
VELMIO_API int ObservedDepthsClose(TOVO_Sensor *handle);
/* Deletes the family's three files. */
VELMIO_API int ObservedDepthsRemoveDir(const wchar_t *lineDirectory);
VELMIO_API int ObservedDepthsNewRemoveDir(const wchar_t *lineDirectory);

/* Backups in the directory ".backup" of the line directory, made when
 * missing. BackupDir moves the "ObservedDepths" files there, and the
 * "ObservedDepthsNew" files too when that data file exists; RestoreBackupDir
 * moves the "ObservedDepths" files back, NewRestoreBackupDir the
 * "ObservedDepthsNew" files. Each moves by renaming, replaces the files it
 * moves onto, and is all or nothing: when one rename fails, everything moved
 * is moved back and 5000228 is returned (also when there is no data file to
 * move). RemoveBackupDir deletes the backed-up files of both sets. */
VELMIO_API int ObservedDepthsBackupDir(const wchar_t *lineDirectory);
VELMIO_API int ObservedDepthsRestoreBackupDir(const wchar_t *lineDirectory);
VELMIO_API int ObservedDepthsNewRestoreBackupDir(const wchar_t *lineDirectory);
VELMIO_API int ObservedDepthsRemoveBackupDir(const wchar_t *lineDirectory);

VELMIO_END_C

#endif
