/* Total propagated error: per ping a profile (status, beam count and first
 * beam number, time, a caller's profile word) followed by one 12-byte record
 * per beam: status bits over the beam's 16-bit time offset from the ping, and
 * two error values stored in thousandths, truncated toward zero (0.0015 is
 * stored as 1 and read back as 0.001).
 *
 * Files in the line directory: "TPE", "TPELineSegments", "TPETmIdx" (one time
 * index entry per profile); files carry format version 1.
 *
 * Calling orders:
 *   write: OpenDir("create"), BgnSeqWriteSummary, per source file
 *          BgnSeqWriteLineSegment, per ping BgnSeqWriteProfile + one SeqWrite
 *          per declared beam + EndSeqWriteProfile, EndSeqWriteLineSegment;
 *          EndSeqWriteSummary, Close.
 *   read:  OpenDir("query"), Summary, LineSegment, ReadProfile/Read or
 *          ReadProfileSeq + its beams' ReadSeq, Close.
 *          Summary and segment statuses set on an update handle are written
 *          by Close.
 *
 * Block reader: when the environment variable VelmIOCacheSize holds a
 * positive decimal number when a handle is opened for query or update, reads
 * are served from blocks of that many profiles (at most the line's profile
 * count), loaded with one seek and one read each; the values returned are
 * the same as without it. Unset, "0" or text that is not a number leave it
 * off.
 *
 * Error codes: 0, 50027xx (the reason digits of every family; 5002728 for a
 * beam number outside the profile), 5000009 out of memory, -1 for a handle
 * without family state or a missing output. Strings handed out are fresh
 * copies freed with free() or VELMIO_free(). */
#ifndef VELMIO_TPE_H
#define VELMIO_TPE_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* Opens the line's error estimates with "create", "query" or "update"; the
 * handle, or null with *errorCode set. Released by TPEClose. */
VELMIO_API TOVO_Sensor *TPEOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *errorCode);
/* Writes summary, segments and time index of a create handle with profiles
 * (deletes the data file of one without), closes and frees the handle. */
VELMIO_API int TPEClose(TOVO_Sensor *handle);

/* The summary; every output may be null. Error ranges at the stored
 * resolution of 0.001. */
VELMIO_API int TPESummary(TOVO_Sensor *handle, unsigned int *numberOfLineSegments, unsigned int *numberOfProfiles,
                          unsigned int *numberOfBeams, double *minTime, double *maxTime, unsigned int *toolType1,
                          unsigned int *toolType2, double *minError1, double *maxError1, double *minError2,
                          double *maxError2, unsigned int *status);
/* Segment n (from 1): source name (fresh copy, caller frees), first and last
 * profile, time range, status. 5002717 when there is no such segment. */
VELMIO_API int TPELineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **sourceName, unsigned int *beginIndex,
                              unsigned int *endIndex, double *minTime, double *maxTime, unsigned int *status);

/* Header of profile n (query or update). As kept from the first version of
 * the format, the profile number is checked against the beam total (5002719);
 * a number beyond the last profile then fails in the time index (5002708). */
VELMIO_API int TPEReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int *numberOfBeams,
                              unsigned int *firstBeam, double *time, unsigned int *profileWord, unsigned int *status);
/* One beam (query or update); profile checked as in ReadProfile, a beam
 * outside the profile's numbering gives 5002728. */
VELMIO_API int TPERead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber, double *beamTime,
                       double *error1, double *error2, unsigned int *status);
/* Bulk reads (query or update) of profiles firstProfile .. firstProfile +
 * count - 1 into caller-owned arrays; any array may be null. ReadProfiles
 * fills count entries per header field, as ReadProfile gives them.
 * ReadBeams fills flat beam arrays with every beam of those profiles in
 * order (the values Read gives) and beamOffsets (count + 1 entries) with
 * the index of each profile's first beam, the last entry the beam total, so
 * ragged and empty profiles stay exact. count 0 returns 0 and touches
 * nothing; a range past the last profile, or a beam total above
 * beamCapacity, returns 5002719 and writes nothing; on any other failure
 * the entries before the failing one are filled. */
VELMIO_API int TPEReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                               unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,
                               unsigned int *profileWords, unsigned int *statuses);
VELMIO_API int TPEReadBeams(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                            unsigned int beamCapacity, unsigned int *beamOffsets, double *beamTimes, double *errors1,
                            double *errors2, unsigned int *statuses);
/* ReadProfiles and ReadBeams in one pass over the file, each header read
 * once (through the block reader too, when VelmIOCacheSize sets one): the
 * header arrays of ReadProfiles, then those of ReadBeams, with the same
 * values and rules; a range that does not fit writes nothing in any array. */
VELMIO_API int TPEReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                            unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,
                            unsigned int *profileWords, unsigned int *statuses, unsigned int beamCapacity,
                            unsigned int *beamOffsets, double *beamTimes, double *errors1, double *errors2,
                            unsigned int *beamStatuses);
/* The next header and the next beam (query only). */
VELMIO_API int TPEReadProfileSeq(TOVO_Sensor *handle, unsigned int *numberOfBeams, unsigned int *firstBeam,
                                 double *time, unsigned int *profileWord, unsigned int *status);
VELMIO_API int TPEReadSeq(TOVO_Sensor *handle, double *beamTime, double *error1, double *error2,
                          unsigned int *status);

/* Writing (create mode). A profile is followed by exactly its numberOfBeams
 * beams: one more is refused with 5002719 and EndSeqWriteProfile reports a
 * short profile with 5002719. Beam status bits belong in the upper 16 bits. */
VELMIO_API int TPEBgnSeqWriteSummary(TOVO_Sensor *handle);
VELMIO_API int TPEBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int TPEBgnSeqWriteProfile(TOVO_Sensor *handle, unsigned int numberOfBeams, unsigned int firstBeam,
                                     double time, unsigned int profileWord, unsigned int status);
VELMIO_API int TPESeqWrite(TOVO_Sensor *handle, double beamTime, double error1, double error2, unsigned int status);
/* Appends count beams of the open profile from caller arrays (create mode,
 * between BgnSeqWriteProfile and EndSeqWriteProfile): the same bytes as
 * count SeqWrite calls. The value arrays are required (-1 when one is null
 * and count > 0); a null statuses array writes status 0. A failure stops at
 * the failing beam, the beams before it written. */
VELMIO_API int TPESeqWriteBeams(TOVO_Sensor *handle, unsigned int count, const double *beamTimes,
                                const double *errors1, const double *errors2, const unsigned int *statuses);
VELMIO_API int TPEEndSeqWriteProfile(TOVO_Sensor *handle);
VELMIO_API int TPEEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int TPEEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);

/* Both tool types and the summary status (any mode), segment status (update
 * mode). */
VELMIO_API int TPESetToolType(TOVO_Sensor *handle, unsigned int toolType1, unsigned int toolType2);
VELMIO_API int TPESetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int TPESetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);

/* Deletes the family's three files. */
VELMIO_API int TPERemoveDir(const wchar_t *lineDirectory);

VELMIO_END_C

#endif
