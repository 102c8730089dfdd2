/* Slant range: per ping a profile (status, beam count and first beam number,
 * time, two angles) followed by one 16-byte record per beam: status bits over
 * the beam's 16-bit time offset from the ping, the range in metres, a value
 * stored in millionths (truncated toward zero) and two beam angles stored in
 * ten-thousandths (rounded half away from zero) in one word.
 *
 * Files in the line directory: "SLRange", "SLRangeLineSegments", "SLRangeTmIdx"
 * (one time index entry per profile); files written carry format version 2.
 *
 * Calling orders:
 *   write: OpenDir("create"), BgnSeqWriteSummary(toolType), per source file
 *          BgnSeqWriteLineSegment, per ping BgnSeqWriteProfile + one SeqWrite
 *          per declared beam + EndSeqWriteProfile, EndSeqWriteLineSegment;
 *          EndSeqWriteSummary, Close.
 *   read:  OpenDir("query"), Summary, LineSegment, ReadProfile/Read or
 *          ReadProfileSeq + its beams' ReadSeq, Close.
 *   edit:  OpenDir("update"), Read, UpdateStatus (on disk at once), Close.
 *          Summary and segment statuses set on an update handle are written
 *          by Close.
 *
 * Profiles count from 1; beams carry the profile's own numbering. Error codes:
 * 0, 50019xx (the reason digits of every family), 5000009 out of memory, -1
 * for a handle without family state or a missing output. Strings handed out
 * are fresh copies freed with free() or VELMIO_free(). */
#ifndef VELMIO_SLANT_RANGE_H
#define VELMIO_SLANT_RANGE_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* Opens the line's slant ranges with "create", "query" or "update"; the
 * handle, or null with *errorCode set. Released by SLRangeClose. */
VELMIO_API TOVO_Sensor *SLRangeOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *errorCode);
/* Writes summary, segments and time index of a create handle with profiles
 * (deletes the data file of one without), closes and frees the handle. */
VELMIO_API int SLRangeClose(TOVO_Sensor *handle);

/* The summary; every output may be null. */
VELMIO_API int SLRangeSummary(TOVO_Sensor *handle, unsigned int *toolType, unsigned int *numberOfLineSegments,
                              unsigned int *numberOfProfiles, unsigned int *numberOfBeams, double *minTime,
                              double *maxTime, unsigned int *status);
/* Segment n (from 1): source name (fresh copy, caller frees), first and last
 * profile, time range, status. 5001917 when there is no such segment. */
VELMIO_API int SLRangeLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **sourceName,
                                  unsigned int *beginIndex, unsigned int *endIndex, double *minTime, double *maxTime,
                                  unsigned int *status);

/* Header of profile n (query or update). As kept from the first version of
 * the format, the profile number is checked against the beam total (5001919);
 * a number beyond the last profile then fails in the time index (5001908). */
VELMIO_API int SLRangeReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int *numberOfBeams,
                                  unsigned int *firstBeam, double *time, double *angle1, double *angle2,
                                  unsigned int *status);
/* One beam (query or update), profile number checked as in ReadProfile.
 * Beams read in order seek only at the first beam of a profile. */
VELMIO_API int SLRangeRead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                           double *beamTime, double *range, double *value, double *beamAngle1, double *beamAngle2,
                           unsigned int *status);
/* Bulk reads (query or update) of profiles firstProfile .. firstProfile +
 * count - 1 into caller-owned arrays; any array may be null. ReadProfiles
 * fills count entries per header field, as ReadProfile gives them.
 * ReadBeams fills flat beam arrays with every beam of those profiles in
 * order (the values Read gives) and beamOffsets (count + 1 entries) with
 * the index of each profile's first beam, the last entry the beam total, so
 * ragged and empty profiles stay exact. count 0 returns 0 and touches
 * nothing; a range past the last profile, or a beam total above
 * beamCapacity, returns 5001919 and writes nothing; on any other failure
 * the entries before the failing one are filled. */
VELMIO_API int SLRangeReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                   unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,
                                   double *angles1, double *angles2, unsigned int *statuses);
VELMIO_API int SLRangeReadBeams(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                unsigned int beamCapacity, unsigned int *beamOffsets, double *beamTimes,
                                double *ranges, double *values, double *beamAngles1, double *beamAngles2,
                                unsigned int *statuses);
/* ReadProfiles and ReadBeams in one pass over the file, each header read
 * once: the header arrays of ReadProfiles, then those of ReadBeams, with
 * the same values and rules; a range that does not fit writes nothing in
 * any array. */
VELMIO_API int SLRangeReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,
                                double *angles1, double *angles2, unsigned int *statuses, unsigned int beamCapacity,
                                unsigned int *beamOffsets, double *beamTimes, double *ranges, double *values,
                                double *beamAngles1, double *beamAngles2, unsigned int *beamStatuses);
/* The next header and the next beam at the file position (query only). */
VELMIO_API int SLRangeReadProfileSeq(TOVO_Sensor *handle, unsigned int *numberOfBeams, unsigned int *firstBeam,
                                     double *time, double *angle1, double *angle2, unsigned int *status);
VELMIO_API int SLRangeReadSeq(TOVO_Sensor *handle, double *beamTime, double *range, double *value,
                              double *beamAngle1, double *beamAngle2, unsigned int *status);

/* Writing (create mode). A profile is followed by exactly its numberOfBeams
 * beams: one more is refused with 5001919 and EndSeqWriteProfile reports a
 * short profile with 5001919. Beam status bits belong in the upper 16 bits:
 * lower bits would overwrite the stored time offset. */
VELMIO_API int SLRangeBgnSeqWriteSummary(TOVO_Sensor *handle, unsigned int toolType);
VELMIO_API int SLRangeBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int SLRangeBgnSeqWriteProfile(TOVO_Sensor *handle, unsigned int numberOfBeams, unsigned int firstBeam,
                                         double time, double angle1, double angle2, unsigned int status);
VELMIO_API int SLRangeSeqWrite(TOVO_Sensor *handle, double beamTime, double range, double value, double beamAngle1,
                               double beamAngle2, unsigned int status);
/* Appends count beams of the open profile from caller arrays (create mode,
 * between BgnSeqWriteProfile and EndSeqWriteProfile): the same bytes as
 * count SeqWrite calls. The value arrays are required (-1 when one is null
 * and count > 0); a null statuses array writes status 0. A failure stops at
 * the failing beam, the beams before it written. */
VELMIO_API int SLRangeSeqWriteBeams(TOVO_Sensor *handle, unsigned int count, const double *beamTimes,
                                    const double *ranges, const double *values, const double *beamAngles1,
                                    const double *beamAngles2, const unsigned int *statuses);
VELMIO_API int SLRangeEndSeqWriteProfile(TOVO_Sensor *handle);
VELMIO_API int SLRangeEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SLRangeEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);

/* Tool type and summary status (any mode), segment status (update mode). */
VELMIO_API int SLRangeSetToolType(TOVO_Sensor *handle, unsigned int toolType);
VELMIO_API int SLRangeSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SLRangeSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
/* Replaces the upper 16 bits of a beam's first word on disk (update mode);
 * the profile is checked against the profile count. A file of a version
 * other than 2 is left unchanged and 0 returned. */
VELMIO_API int SLRangeUpdateStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                   unsigned int status);

/* Deletes the family's three files. */
VELMIO_API int SLRangeRemoveDir(const wchar_t *lineDirectory);

VELMIO_END_C

#endif
