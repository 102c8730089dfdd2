/* Processed depths: per ping a 160-byte profile header followed by one
 * 80-byte record per beam. Each travels as three sections, read on their
 * own: the ping, the transducer heads and the ping's uncertainties of a
 * header; the sounding, the measurement and the reductions of a beam. A
 * null section pointer skips that section (the ping section of a header is
 * read in any case: it holds the beam layout).
 *
 * Files in the line directory: "ProcessedDepths",
 * "ProcessedDepthsLineSegments", "ProcessedDepthsTmIdx" (one time index
 * entry per ping). Read in query or update mode, the files go through the
 * block reader when the environment variable VelmIOCacheSize holds a
 * positive number of profiles; the values are the same either way.
 *
 * Calling orders:
 *   write: OpenDir("create"), BgnSeqWriteSummary(toolType), per source file
 *          BgnSeqWriteLineSegment, per ping BgnSeqWriteProfile + one SeqWrite
 *          per declared beam (or SeqWriteBeams) + EndSeqWriteProfile,
 *          EndSeqWriteLineSegment; EndSeqWriteSummary, Close.
 *   read:  OpenDir("query"), Summary, LineSegment, ReadProfile/Read or
 *          ReadProfileSeq + its beams' ReadSeq, Close.
 *   edit:  OpenDir("update"), UpdateStatus (on disk at once), status
 *          setters + SaveStatusToDisk (or Close), Close.
 *
 * Profiles count from 1; beams carry the profile's own numbering (first
 * beam 1-65535, at most 65535 beams). Angles and positions in radians,
 * lengths in metres, times in seconds. Error codes: 0, 50003xx (the reason
 * digits of every family), 5000009 out of memory, -1 for a handle without
 * family state or a missing output. Strings handed out are fresh copies
 * freed with free() or VELMIO_free(). */
#ifndef VELMIO_PROCESSED_DEPTHS_H
#define VELMIO_PROCESSED_DEPTHS_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* The ping: the first section of a header. */
typedef struct ProcessedDepthsPing {
    unsigned int status;     /* processed status word */
    unsigned int beamCount;  /* 0-65535 */
    unsigned int firstBeam;  /* 1-65535 */
    double time;
    unsigned int pingNumber;
    double latitude, longitude;  /* of the reference point */
    double heading, heave, pitch, roll;
    double tide, draft;
    double soundSpeed;  /* at the surface, m/s */
} ProcessedDepthsPing;

typedef struct ProcessedDepthsHead {
    double x, y, z;               /* offsets */
    double roll, pitch, heading;  /* mounting angles */
    double latency;
    unsigned int word;  /* the caller's */
} ProcessedDepthsHead;

/* The transducer heads used (count 0, 1 or 2; unused heads zero). */
typedef struct ProcessedDepthsHeads {
    unsigned int count;
    ProcessedDepthsHead head[2];
} ProcessedDepthsHeads;

/* One standard deviation each. */
typedef struct ProcessedDepthsPingUncertainty {
    double horizontal, vertical, heave, tide, draft;
    double roll, pitch, heading, soundSpeed, timing;
} ProcessedDepthsPingUncertainty;

typedef struct ProcessedDepthsSounding {
    unsigned int status;  /* upper 16 bits kept */
    double time;          /* within 16 bits of depth time scale counts of the ping */
    double depth, acrossTrack, alongTrack;
    double latitude, longitude;
    double horizontalUncertainty, verticalUncertainty;
} ProcessedDepthsSounding;

typedef struct ProcessedDepthsMeasurement {
    double travelTime;  /* two-way */
    double acrossAngle, alongAngle;
    double slantRange;
    double reflectivity;  /* dB */
    unsigned int quality, detection, head;
} ProcessedDepthsMeasurement;

/* The reductions applied to the depth. */
typedef struct ProcessedDepthsReductions {
    double tide, heave, draft, refraction;
} ProcessedDepthsReductions;

/* Opens the line's processed depths with "create", "query" or "update": the
 * handle, or null with *errorCode set. Released by ProcessedDepthsClose. */
VELMIO_API TOVO_Sensor *ProcessedDepthsOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                               int *errorCode);
/* Writes summary, segments and time index of a create handle with profiles
 * (deletes the data file of one without), closes and frees the handle. */
VELMIO_API int ProcessedDepthsClose(TOVO_Sensor *handle);

/* The summary; every output may be null. */
VELMIO_API int ProcessedDepthsSummary(TOVO_Sensor *handle, unsigned int *toolType, unsigned int *numberOfLineSegments,
                                      unsigned int *numberOfProfiles, unsigned int *numberOfBeams, double *minTime,
                                      double *maxTime, double *minDepth, double *maxDepth, unsigned int *status);
/* Segment n (from 1): source name (fresh copy, caller frees), first and last
 * profile, ping time and depth ranges, status. 5000317: no such segment. */
VELMIO_API int ProcessedDepthsLineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **sourceName,
                                          unsigned int *beginIndex, unsigned int *endIndex, double *minTime,
                                          double *maxTime, double *minDepth, double *maxDepth, unsigned int *status);

/* Header of profile n (query or update). 5000319 for a profile outside the
 * line, 5000321 for a header whose beams would run past the next profile. */
VELMIO_API int ProcessedDepthsReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, ProcessedDepthsPing *ping,
                                          ProcessedDepthsHeads *heads, ProcessedDepthsPingUncertainty *uncertainty);
/* One beam (query or update): 5000319 outside the profile. */
VELMIO_API int ProcessedDepthsRead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                   ProcessedDepthsSounding *sounding, ProcessedDepthsMeasurement *measurement,
                                   ProcessedDepthsReductions *reductions);
/* The next header and the next beam at the read position (query only). */
VELMIO_API int ProcessedDepthsReadProfileSeq(TOVO_Sensor *handle, ProcessedDepthsPing *ping,
                                             ProcessedDepthsHeads *heads,
                                             ProcessedDepthsPingUncertainty *uncertainty);
VELMIO_API int ProcessedDepthsReadSeq(TOVO_Sensor *handle, ProcessedDepthsSounding *sounding,
                                      ProcessedDepthsMeasurement *measurement, ProcessedDepthsReductions *reductions);
/* Bulk reads (query or update) of profiles firstProfile .. firstProfile +
 * count - 1 into caller-owned arrays; any array may be null. ReadProfiles
 * fills count entries of each array. ReadBeams fills flat arrays with
 * every beam of those profiles in order and beamOffsets (count + 1
 * entries) with the index of each profile's first beam, the last entry the
 * total. count 0 returns 0 and touches nothing; a range past the last
 * profile, or a total above beamCapacity, returns 5000319 and writes
 * nothing; on any other failure the entries before the failing one are
 * filled. */
VELMIO_API int ProcessedDepthsReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                           ProcessedDepthsPing *pings, ProcessedDepthsHeads *heads,
                                           ProcessedDepthsPingUncertainty *uncertainties);
VELMIO_API int ProcessedDepthsReadBeams(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                        unsigned int beamCapacity, unsigned int *beamOffsets,
                                        ProcessedDepthsSounding *soundings, ProcessedDepthsMeasurement *measurements,
                                        ProcessedDepthsReductions *reductions);
/* ReadProfiles and ReadBeams in one pass, each header read once: the
 * header arrays of ReadProfiles, then those of ReadBeams, with the same
 * values and rules; a range that does not fit writes nothing in any array. */
VELMIO_API int ProcessedDepthsReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                        ProcessedDepthsPing *pings, ProcessedDepthsHeads *heads,
                                        ProcessedDepthsPingUncertainty *uncertainties, unsigned int beamCapacity,
                                        unsigned int *beamOffsets, ProcessedDepthsSounding *soundings,
                                        ProcessedDepthsMeasurement *measurements,
                                        ProcessedDepthsReductions *reductions);

/* Writing (create mode). The ping is required (-1 when null); null heads,
 * uncertainty, measurement or reductions are written as zeros. A profile is
 * followed by exactly ping->beamCount beams: one more is refused with
 * 5000319, and EndSeqWriteProfile reports a short profile with 5000319.
 * A layout outside 16 bits or a first beam of 0 is refused with 5000322. */
VELMIO_API int ProcessedDepthsBgnSeqWriteSummary(TOVO_Sensor *handle, unsigned int toolType);
VELMIO_API int ProcessedDepthsBgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName);
VELMIO_API int ProcessedDepthsBgnSeqWriteProfile(TOVO_Sensor *handle, const ProcessedDepthsPing *ping,
                                                 const ProcessedDepthsHeads *heads,
                                                 const ProcessedDepthsPingUncertainty *uncertainty);
VELMIO_API int ProcessedDepthsSeqWrite(TOVO_Sensor *handle, const ProcessedDepthsSounding *sounding,
                                       const ProcessedDepthsMeasurement *measurement,
                                       const ProcessedDepthsReductions *reductions);
/* count beams of the open profile from caller arrays: the same bytes as
 * count SeqWrite calls (soundings required). A failure stops at the
 * failing beam, the beams before it written. */
VELMIO_API int ProcessedDepthsSeqWriteBeams(TOVO_Sensor *handle, unsigned int count,
                                            const ProcessedDepthsSounding *soundings,
                                            const ProcessedDepthsMeasurement *measurements,
                                            const ProcessedDepthsReductions *reductions);
VELMIO_API int ProcessedDepthsEndSeqWriteProfile(TOVO_Sensor *handle);
VELMIO_API int ProcessedDepthsEndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int ProcessedDepthsEndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status);

/* Tool type and summary status (any mode), segment status (update mode);
 * an update handle writes them with SaveStatusToDisk or Close. */
VELMIO_API int ProcessedDepthsSetToolType(TOVO_Sensor *handle, unsigned int toolType);
VELMIO_API int ProcessedDepthsSetSummaryStatus(TOVO_Sensor *handle, unsigned int status);
VELMIO_API int ProcessedDepthsSetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status);
/* Replaces the upper 16 bits of a beam's first unit on disk (update mode). */
VELMIO_API int ProcessedDepthsUpdateStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                           unsigned int status);
/* Writes summary and segments of an update handle now. */
VELMIO_API int ProcessedDepthsSaveStatusToDisk(TOVO_Sensor *handle);

/* Deletes the family's three files. */
VELMIO_API int ProcessedDepthsRemoveDir(const wchar_t *lineDirectory);

VELMIO_END_C

#endif
