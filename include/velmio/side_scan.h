/* Side scan: per ping a profile header (status, sample count, first sample
 * number, ping time, sample interval, the sonar's gain and two attenuation
 * settings) followed by one 8-byte record per sample: the raw amplitude and
 * the sonar's detection word. One layout serves every side scan sensor; the
 * openers differ in the line's files and the type the handle carries:
 *
 *   SideScanEM100OpenDir    "SideScan" + "SideScanTrace"   type 9
 *   SideScanEM1000OpenDir   "SideScan" + "SideScanTrace"   type 10
 *   SideScanELACOpenDir     "SideScan"                     type 15 (created), else as the file says
 *   SideScanOpenDir         "SideScan"                     type 20 (created), else as the file says
 *   SSSSideScanOpenDir      "SSSSideScan"                  type 13
 *   SSSProcessedSideScanOpenDir     "SSSProcessedSideScan"     type 19
 *   NewSSSProcessedSideScanOpenDir  "NewSSSProcessedSideScan"  type 19
 *
 * ELAC side scan and side scan without detection words share the trace-less
 * "SideScan" files; the type in their validation records (15 or 20) tells
 * them apart, and either of the two openers reads both. Each file also has
 * "…LineSegments" and "…TmIdx" (one time index entry per ping).
 *
 * Calling orders:
 *   write: OpenDir("create"), BgnSeqWriteSummary(sonarType), per source file
 *          BgnSeqWriteLineSegment, per ping BgnSeqWriteProfile + one SeqWrite
 *          per declared sample (or SeqWriteSamples) + EndSeqWriteProfile,
 *          optionally SeqWriteTrace (types 9 and 10), EndSeqWriteLineSegment;
 *          EndSeqWriteSummary, Close.
 *   read:  OpenDir("query"), Summary, LineSegment, ReadProfile/Read or
 *          ReadProfileSeq + its samples' ReadSeq, TraceCount/ReadTrace, Close.
 *   edit:  OpenDir("update"), UpdateProfileStatus (on disk at once), status
 *          setters + SaveStatusToDisk (or Close), Close.
 *
 * Profiles count from 1; samples carry the profile's own numbering (first
 * sample number .. + count - 1). Error codes: 0, 50009xx (the reason digits
 * of every family; 5000928 for the trace file), 5000009 out of memory, -1
 * for a handle without family state or a missing output. Every operation
 * below takes a handle of any of the openers. Strings handed out are fresh
 * copies freed with free() or VELMIO_free(). */
#ifndef VELMIO_SIDE_SCAN_H
#define VELMIO_SIDE_SCAN_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* Open the line's side scan with "create", "query" or "update": the handle,
 * or null with *errorCode set. Released by SideScanClose. */
VELMIO_API TOVO_Sensor *SideScanEM100OpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                             int *errorCode);
VELMIO_API TOVO_Sensor *SideScanEM1000OpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                              int *errorCode);
VELMIO_API TOVO_Sensor *SideScanELACOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                            int *errorCode);
VELMIO_API TOVO_Sensor *SideScanOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *errorCode);
VELMIO_API TOVO_Sensor *SSSSideScanOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                           int *errorCode);
VELMIO_API TOVO_Sensor *SSSProcessedSideScanOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                                    int *errorCode);
VELMIO_API TOVO_Sensor *NewSSSProcessedSideScanOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                                       int *errorCode);
/* Writes summary, segments and time index of a create handle with profiles
 * (deletes the data file of one without), closes and frees the handle. */
VELMIO_API int SideScanClose(TOVO_Sensor *handle);

/* The summary; every output may be null. Amplitudes are the raw samples'
 * range (2147483647 and -2147483648 for a line without samples). */
VELMIO_API int SideScanSummary(TOVO_Sensor *handle, unsigned int *sonarType, unsigned int *numberOfLineSegments,
                               unsigned int *numberOfProfiles, unsigned int *numberOfSamples, double *minTime,
                               double *maxTime, int *minAmplitude, int *maxAmplitude, unsigned int *status);
/* Segment n (from 1): source name (fresh copy, caller frees), first and last
 * profile, ping time range, status. 5000917 when there is no such segment. */
VELMIO_API int SideScanLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **sourceName,
                                   unsigned int *beginIndex, unsigned int *endIndex, double *minTime,
                                   double *maxTime, unsigned int *status);

/* Header of profile n (query or update); the sample interval in seconds,
 * attenuations in dB. 5000919 for a profile outside the line, 5000921 for a
 * header whose samples would run past the next profile or the file. */
VELMIO_API int SideScanReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int *numberOfSamples,
                                   unsigned int *firstSample, double *time, double *sampleInterval, int *gain,
                                   int *attenuation1, int *attenuation2, unsigned int *status);
/* One sample (query or update): 5000919 outside the profile. Samples read
 * in order seek only at the first sample of a profile. */
VELMIO_API int SideScanRead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int sampleNumber,
                            int *amplitude, unsigned int *detection);
/* The next header and the next sample at the file position (query only). */
VELMIO_API int SideScanReadProfileSeq(TOVO_Sensor *handle, unsigned int *numberOfSamples, unsigned int *firstSample,
                                      double *time, double *sampleInterval, int *gain, int *attenuation1,
                                      int *attenuation2, unsigned int *status);
VELMIO_API int SideScanReadSeq(TOVO_Sensor *handle, int *amplitude, unsigned int *detection);
/* Bulk reads (query or update) of profiles firstProfile .. firstProfile +
 * count - 1 into caller-owned arrays; any array may be null. ReadProfiles
 * fills count entries per header field. ReadSamples fills flat arrays with
 * every sample of those profiles in order and sampleOffsets (count + 1
 * entries) with the index of each profile's first sample, the last entry
 * the total. count 0 returns 0 and touches nothing; a range past the last
 * profile, or a total above sampleCapacity, returns 5000919 and writes
 * nothing; on any other failure the entries before the failing one are
 * filled. */
VELMIO_API int SideScanReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                    unsigned int *numbersOfSamples, unsigned int *firstSamples, double *times,
                                    double *sampleIntervals, int *gains, int *attenuations1, int *attenuations2,
                                    unsigned int *statuses);
VELMIO_API int SideScanReadSamples(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                   unsigned int sampleCapacity, unsigned int *sampleOffsets, int *amplitudes,
                                   unsigned int *detections);
/* ReadProfiles and ReadSamples in one pass, each header read once: the
 * header arrays of ReadProfiles, then those of ReadSamples, with the same
 * values and rules; a range that does not fit writes nothing in any array. */
VELMIO_API int SideScanReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                 unsigned int *numbersOfSamples, unsigned int *firstSamples, double *times,
                                 double *sampleIntervals, int *gains, int *attenuations1, int *attenuations2,
                                 unsigned int *statuses, unsigned int sampleCapacity, unsigned int *sampleOffsets,
                                 int *amplitudes, unsigned int *detections);

/* Writing (create mode). A profile is followed by exactly its
 * numberOfSamples samples: one more is refused with 5000919 and
 * EndSeqWriteProfile reports a short profile with 5000919. At most 1048576
 * samples a profile, the first numbered 1 or more (else 5000922). */
VELMIO_API int SideScanBgnSeqWriteSummary(TOVO_Sensor *handle, unsigned int sonarType);
VELMIO_API int SideScanBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int SideScanBgnSeqWriteProfile(TOVO_Sensor *handle, unsigned int numberOfSamples, unsigned int firstSample,
                                          double time, double sampleInterval, int gain, int attenuation1,
                                          int attenuation2, unsigned int status);
VELMIO_API int SideScanSeqWrite(TOVO_Sensor *handle, int amplitude, unsigned int detection);
/* count samples of the open profile: the same bytes as count SeqWrite
 * calls. amplitudes is required (-1 when null and count > 0); a null
 * detections array writes 0. A failure stops at the failing sample. */
VELMIO_API int SideScanSeqWriteSamples(TOVO_Sensor *handle, unsigned int count, const int *amplitudes,
                                       const unsigned int *detections);
VELMIO_API int SideScanEndSeqWriteProfile(TOVO_Sensor *handle);
VELMIO_API int SideScanEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SideScanEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);

/* The trace file of types 9 and 10 (5000928 for other types and for any
 * failure of the file). SeqWriteTrace (create mode) appends a record for
 * the profile begun last (5000919 before the first); TraceCount and
 * ReadTrace (query or update) give the records in the order written. */
VELMIO_API int SideScanSeqWriteTrace(TOVO_Sensor *handle, unsigned int bottomSample, double depth);
VELMIO_API int SideScanTraceCount(TOVO_Sensor *handle, unsigned int *count);
VELMIO_API int SideScanReadTrace(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int *profileNumber,
                                 unsigned int *bottomSample, double *depth);

/* Sonar type and summary status (any mode), segment status (update mode);
 * an update handle writes them with SaveStatusToDisk or Close. */
VELMIO_API int SideScanSetSonarType(TOVO_Sensor *handle, unsigned int sonarType);
VELMIO_API int SideScanSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int SideScanSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
/* Replaces a profile's status word on disk (update mode). */
VELMIO_API int SideScanUpdateProfileStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int status);
/* Writes summary and segments of an update handle now. */
VELMIO_API int SideScanSaveStatusToDisk(TOVO_Sensor *handle);

/* Delete the sensor's files ("SideScan…" including the trace file). */
VELMIO_API int SideScanRemoveDir(const wchar_t *lineDirectory);
VELMIO_API int SSSSideScanRemoveDir(const wchar_t *lineDirectory);
VELMIO_API int SSSProcessedSideScanRemoveDir(const wchar_t *lineDirectory);
VELMIO_API int NewSSSProcessedSideScanRemoveDir(const wchar_t *lineDirectory);

VELMIO_END_C

#endif
