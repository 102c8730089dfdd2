// The profile families' exported functions that have one form in several
// families, made from the lists of profile_forwarders.h: each forwards to one
// shared operation through the family's entry checks.
#include <velmio/linestore.h>
#include <velmio/observed_depths.h>
#include <velmio/processed_depths.h>
#include <velmio/side_scan.h>
#include <velmio/slant_range.h>
#include <velmio/tpe.h>

#include "sensors/profile_bulk.h"
#include "sensors/profile_forwarders.h"

using namespace velmio;

namespace {

constexpr int kTime = 0;  // the extents of every family start with time
constexpr int kDepth = 1;

#define VELMIO_PROFILE_ENTRY(P, ENTER) constexpr ProfileEntry P##Entry = ENTER;
VELMIO_PROFILE_FAMILIES(VELMIO_PROFILE_ENTRY)
#undef VELMIO_PROFILE_ENTRY

int beginSummary(ProfileEntry enter, TOVO_Sensor *h) {
    ProfileState *s = nullptr;
    return enter(h, kCreateMode, s);
}

// The setter (not the summary begun in create mode) marks the summary for
// saving, which only an update handle does, at its close.
int setToolType(ProfileEntry enter, TOVO_Sensor *h, unsigned modes, std::uint32_t toolType) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, modes, s)) return rc;
    s->familyWords[0] = toolType;
    if (modes != kCreateMode) s->statusDirty = true;
    return 0;
}

int beginSegment(ProfileEntry enter, TOVO_Sensor *h, const wchar_t *name) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kCreateMode, s)) return rc;
    return beginProfileSegment(*h, *s, name);
}

int endOpenProfile(ProfileEntry enter, TOVO_Sensor *h) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kCreateMode, s)) return rc;
    return endProfile(*h, *s);
}

int endSegment(ProfileEntry enter, TOVO_Sensor *h, std::uint32_t status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kCreateMode, s)) return rc;
    return endProfileSegment(*h, *s, status);
}

int endSummary(ProfileEntry enter, TOVO_Sensor *h, std::uint32_t status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kCreateMode, s)) return rc;
    h->summaryStatus = status;
    return 0;
}

int setSummaryStatus(ProfileEntry enter, TOVO_Sensor *h, std::uint32_t status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kAnyMode, s)) return rc;
    h->summaryStatus = status;
    s->statusDirty = true;
    return 0;
}

int setLineSegmentStatus(ProfileEntry enter, TOVO_Sensor *h, int segmentNumber, std::uint32_t status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kUpdateMode, s)) return rc;
    return setSegmentStatus(*h, *s, segmentNumber, status);
}

// The summary with its time bounds, and its depth bounds where asked for.
int boundsSummary(ProfileEntry enter, TOVO_Sensor *h, unsigned int *toolType, unsigned int *segments,
                  unsigned int *profiles, unsigned int *beams, double *minTime, double *maxTime, double *minDepth,
                  double *maxDepth, unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kAnyMode, s)) return rc;
    if (toolType) *toolType = s->familyWords[0];
    if (segments) *segments = h->segmentCount;
    if (profiles) *profiles = h->recordCount;
    if (beams) *beams = s->itemCount;
    if (minTime) *minTime = h->extents[kTime].min;
    if (maxTime) *maxTime = h->extents[kTime].max;
    if (minDepth) *minDepth = h->extents[kDepth].min;
    if (maxDepth) *maxDepth = h->extents[kDepth].max;
    if (status) *status = h->summaryStatus;
    return 0;
}

// Segment n with its time bounds, and its depth bounds when withDepth.
int lineSegment(ProfileEntry enter, TOVO_Sensor *h, int n, wchar_t **name, unsigned int *begin, unsigned int *end,
                double *minTime, double *maxTime, bool withDepth, double *minDepth, double *maxDepth,
                unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kAnyMode, s)) return rc;
    if (!name || !begin || !end || !minTime || !maxTime || !status || (withDepth && (!minDepth || !maxDepth)))
        return -1;
    Extent extents[2];
    if (const int rc = describeSegment(*h, *s, n, name, begin, end, extents, withDepth ? 2 : 1, status)) return rc;
    *minTime = extents[kTime].min;
    *maxTime = extents[kTime].max;
    if (withDepth) {
        *minDepth = extents[kDepth].min;
        *maxDepth = extents[kDepth].max;
    }
    return 0;
}

TOVO_Sensor *openPlain(const wchar_t *lineDirectory, std::uint32_t openId, const wchar_t *token, int *error,
                       const ProfileFamily &f) {
    std::unique_ptr<ProfileState> state(new (std::nothrow) ProfileState(f));
    if (!state) {
        if (error) *error = kNoMemory;
        return nullptr;
    }
    return openProfileSensor(lineDirectory, openId, token, error, f, std::move(state));
}

}  // namespace

#define VELMIO_FORWARD_PROFILE_FAMILY(P, ENTER)                                                                       \
    extern "C" VELMIO_API int P##BgnSeqWriteLineSegment(TOVO_Sensor *handle, const wchar_t *sourceName) {             \
        return beginSegment(P##Entry, handle, sourceName);                                                            \
    }                                                                                                                 \
    extern "C" VELMIO_API int P##EndSeqWriteProfile(TOVO_Sensor *handle) { return endOpenProfile(P##Entry, handle); } \
    extern "C" VELMIO_API int P##EndSeqWriteLineSegment(TOVO_Sensor *handle, unsigned int status) {                   \
        return endSegment(P##Entry, handle, status);                                                                  \
    }                                                                                                                 \
    extern "C" VELMIO_API int P##EndSeqWriteSummary(TOVO_Sensor *handle, unsigned int status) {                       \
        return endSummary(P##Entry, handle, status);                                                                  \
    }                                                                                                                 \
    extern "C" VELMIO_API int P##SetSummaryStatus(TOVO_Sensor *handle, unsigned int status) {                         \
        return setSummaryStatus(P##Entry, handle, status);                                                            \
    }                                                                                                                 \
    extern "C" VELMIO_API int P##SetLineSegmentStatus(TOVO_Sensor *handle, int segmentNumber, unsigned int status) {  \
        return setLineSegmentStatus(P##Entry, handle, segmentNumber, status);                                         \
    }
VELMIO_PROFILE_FAMILIES(VELMIO_FORWARD_PROFILE_FAMILY)

#define VELMIO_FORWARD_PLAIN_SUMMARY_BEGIN(P) \
    extern "C" VELMIO_API int P##BgnSeqWriteSummary(TOVO_Sensor *handle) { return beginSummary(P##Entry, handle); }
VELMIO_PROFILE_PLAIN_SUMMARY_BEGIN(VELMIO_FORWARD_PLAIN_SUMMARY_BEGIN)

#define VELMIO_FORWARD_TYPED_SUMMARY_BEGIN(P)                                                     \
    extern "C" VELMIO_API int P##BgnSeqWriteSummary(TOVO_Sensor *handle, unsigned int toolType) { \
        return setToolType(P##Entry, handle, kCreateMode, toolType);                              \
    }
VELMIO_PROFILE_TYPED_SUMMARY_BEGIN(VELMIO_FORWARD_TYPED_SUMMARY_BEGIN)

#define VELMIO_FORWARD_ONE_TOOL_TYPE(P, NAME)                                         \
    extern "C" VELMIO_API int P##NAME(TOVO_Sensor *handle, unsigned int toolType) {   \
        return setToolType(P##Entry, handle, kAnyMode, toolType);                     \
    }
VELMIO_PROFILE_ONE_TOOL_TYPE(VELMIO_FORWARD_ONE_TOOL_TYPE)

#define VELMIO_FORWARD_DEPTH_BOUNDS(P)                                                                                \
    extern "C" VELMIO_API int P##Summary(TOVO_Sensor *handle, unsigned int *toolType,                                 \
                                         unsigned int *numberOfLineSegments, unsigned int *numberOfProfiles,          \
                                         unsigned int *numberOfBeams, double *minTime, double *maxTime,               \
                                         double *minDepth, double *maxDepth, unsigned int *status) {                  \
        return boundsSummary(P##Entry, handle, toolType, numberOfLineSegments, numberOfProfiles, numberOfBeams,       \
                             minTime, maxTime, minDepth, maxDepth, status);                                           \
    }                                                                                                                 \
    extern "C" VELMIO_API int P##LineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **sourceName,            \
                                             unsigned int *beginIndex, unsigned int *endIndex, double *minTime,       \
                                             double *maxTime, double *minDepth, double *maxDepth,                     \
                                             unsigned int *status) {                                                  \
        return lineSegment(P##Entry, handle, segmentNumber, sourceName, beginIndex, endIndex, minTime, maxTime, true, \
                           minDepth, maxDepth, status);                                                               \
    }
VELMIO_PROFILE_DEPTH_BOUNDS(VELMIO_FORWARD_DEPTH_BOUNDS)

#define VELMIO_FORWARD_TIME_SEGMENTS(P)                                                                                \
    extern "C" VELMIO_API int P##LineSegment(TOVO_Sensor *handle, int segmentNumber, wchar_t **sourceName,             \
                                             unsigned int *beginIndex, unsigned int *endIndex, double *minTime,        \
                                             double *maxTime, unsigned int *status) {                                  \
        return lineSegment(P##Entry, handle, segmentNumber, sourceName, beginIndex, endIndex, minTime, maxTime, false, \
                           nullptr, nullptr, status);                                                                  \
    }
VELMIO_PROFILE_TIME_SEGMENTS(VELMIO_FORWARD_TIME_SEGMENTS)

#define VELMIO_FORWARD_TIME_SUMMARY(P)                                                                          \
    extern "C" VELMIO_API int P##Summary(TOVO_Sensor *handle, unsigned int *toolType,                           \
                                         unsigned int *numberOfLineSegments, unsigned int *numberOfProfiles,    \
                                         unsigned int *numberOfBeams, double *minTime, double *maxTime,         \
                                         unsigned int *status) {                                                \
        return boundsSummary(P##Entry, handle, toolType, numberOfLineSegments, numberOfProfiles, numberOfBeams, \
                             minTime, maxTime, nullptr, nullptr, status);                                       \
    }
VELMIO_PROFILE_TIME_SUMMARY(VELMIO_FORWARD_TIME_SUMMARY)

// The beam arrays are the family's five columns and statuses, named in its header.
#define VELMIO_FORWARD_ANGLE_HEADERS(P, FAMILY, RANGE)                                                              \
    extern "C" VELMIO_API int P##ReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,   \
                                              unsigned int *numberOfBeams, unsigned int *firstBeams, double *times, \
                                              double *angles1, double *angles2, unsigned int *statuses) {           \
        return readAngleProfiles(handle, FAMILY(), P##ReadProfile, firstProfile, count,                             \
                                 {numberOfBeams, firstBeams, times, angles1, angles2, statuses});                   \
    }                                                                                                               \
    extern "C" VELMIO_API int P##ReadBeams(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,      \
                                           unsigned int beamCapacity, unsigned int *beamOffsets, double *column1,   \
                                           double *column2, double *column3, double *column4, double *column5,      \
                                           unsigned int *beamStatuses) {                                            \
        return RANGE(handle, firstProfile, count, {}, beamCapacity, beamOffsets, column1, column2, column3,         \
                     column4, column5, beamStatuses);                                                               \
    }                                                                                                               \
    extern "C" VELMIO_API int P##ReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,      \
                                           unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,    \
                                           double *angles1, double *angles2, unsigned int *statuses,                \
                                           unsigned int beamCapacity, unsigned int *beamOffsets, double *column1,   \
                                           double *column2, double *column3, double *column4, double *column5,      \
                                           unsigned int *beamStatuses) {                                            \
        return RANGE(handle, firstProfile, count, {numberOfBeams, firstBeams, times, angles1, angles2, statuses},   \
                     beamCapacity, beamOffsets, column1, column2, column3, column4, column5, beamStatuses);         \
    }
VELMIO_PROFILE_ANGLE_HEADERS(VELMIO_FORWARD_ANGLE_HEADERS)

#define VELMIO_FORWARD_PLAIN_OPENER(P, ID, FAMILY)                                                          \
    extern "C" VELMIO_API TOVO_Sensor *P##OpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, \
                                                  int *errorCode) {                                         \
        return openPlain(lineDirectory, ID, accessToken, errorCode, FAMILY());                              \
    }
VELMIO_PROFILE_PLAIN_OPENERS(VELMIO_FORWARD_PLAIN_OPENER)

#define VELMIO_FORWARD_CLOSER(P, FAMILY, SAVE_DIRTY) \
    extern "C" VELMIO_API int P##Close(TOVO_Sensor *handle) { return closeProfileSensor(handle, FAMILY(), SAVE_DIRTY); }
VELMIO_PROFILE_CLOSERS(VELMIO_FORWARD_CLOSER)

#define VELMIO_FORWARD_REMOVER(P)                                          \
    extern "C" VELMIO_API int P##RemoveDir(const wchar_t *lineDirectory) { \
        return SensorRemoveDir(lineDirectory, L"" #P);                     \
    }
VELMIO_PROFILE_REMOVERS(VELMIO_FORWARD_REMOVER)
