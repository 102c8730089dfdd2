// The profile families' operations that have one form in several families,
// one list per form. A family is named by its prefix and entered through its
// own checks, so that its codes stay its own; profile_forwarders.cpp makes
// the exported functions from these lists. Also the opener of the families
// that read through the block reader.
#ifndef VELMIO_SENSORS_PROFILE_FORWARDERS_H
#define VELMIO_SENSORS_PROFILE_FORWARDERS_H

#include <velmio/block_reader.hpp>

#include "sensors/cache_size.h"
#include "sensors/profile_cursor.h"

#include <memory>
#include <new>

namespace velmio {

// A family's entry checks: its state on a handle open in one of modes, or the code.
using ProfileEntry = int (*)(TOVO_Sensor *h, unsigned modes, ProfileState *&s);

template <const ProfileFamily &(*Family)()>
int enterFamily(TOVO_Sensor *h, unsigned modes, ProfileState *&s) {
    return enterProfile(h, Family(), modes, s);
}
// Side scan takes a handle of any of its kinds.
int enterSideScan(TOVO_Sensor *h, unsigned modes, ProfileState *&s);

// Opens a family whose State keeps a block reader. The reader is set up once
// the time index is read, so that its cache is bounded by the profile count.
template <class State>
TOVO_Sensor *openCachedProfile(const wchar_t *lineDirectory, std::uint32_t openId, const wchar_t *token, int *error,
                               const ProfileFamily &f) {
    std::unique_ptr<State> state(new (std::nothrow) State);
    if (!state) {
        if (error) *error = kNoMemory;
        return nullptr;
    }
    State *s = state.get();
    TOVO_Sensor *h = openProfileSensor(lineDirectory, openId, token, error, f, std::move(state));
    if (!h || isWriting(*h)) return h;
    if (const int rc = initialise(h, cacheSizeFromEnvironment(), &s->reader)) {
        closeProfileSensor(h, f, false);
        if (error) *error = rc;
        return nullptr;
    }
    return h;
}

}  // namespace velmio

// Every family: segments, profiles and statuses written alike.
#define VELMIO_PROFILE_FAMILIES(X)                                           \
    X(ObservedDepths, velmio::enterFamily<velmio::observedDepthsProfiles>)   \
    X(SLRange, velmio::enterFamily<velmio::slantRangeProfiles>)              \
    X(TPE, velmio::enterFamily<velmio::tpeProfiles>)                         \
    X(ProcessedDepths, velmio::enterFamily<velmio::processedDepthsProfiles>) \
    X(SideScan, velmio::enterSideScan)

// BgnSeqWriteSummary without a tool type (it is set by SetToolType).
#define VELMIO_PROFILE_PLAIN_SUMMARY_BEGIN(X) X(ObservedDepths) X(TPE)
// BgnSeqWriteSummary(toolType).
#define VELMIO_PROFILE_TYPED_SUMMARY_BEGIN(X) X(SLRange) X(ProcessedDepths) X(SideScan)
// The setter of a single tool type: prefix and name.
#define VELMIO_PROFILE_ONE_TOOL_TYPE(X) \
    X(ObservedDepths, SetToolType) X(SLRange, SetToolType) X(ProcessedDepths, SetToolType) X(SideScan, SetSonarType)
// Summary and LineSegment over time and depth bounds.
#define VELMIO_PROFILE_DEPTH_BOUNDS(X) X(ObservedDepths) X(ProcessedDepths)
// Summary over time bounds only.
#define VELMIO_PROFILE_TIME_SUMMARY(X) X(SLRange)
// LineSegment over time bounds only.
#define VELMIO_PROFILE_TIME_SEGMENTS(X) X(SLRange) X(TPE) X(SideScan)
// Headers of beams, first beam, time, two angles and status; beams of five
// doubles and a status: prefix, family table, range reader.
#define VELMIO_PROFILE_ANGLE_HEADERS(X)                                                 \
    X(ObservedDepths, velmio::observedDepthsProfiles, velmio::readObservedDepthsRange) \
    X(SLRange, velmio::slantRangeProfiles, velmio::readSlantRangeRange)

// Openers without state of their own: prefix, type opened, family table.
#define VELMIO_PROFILE_PLAIN_OPENERS(X)                      \
    X(ObservedDepths, 4, velmio::observedDepthsProfiles)     \
    X(ObservedDepthsNew, 53, velmio::observedDepthsProfiles) \
    X(SLRange, 30, velmio::slantRangeProfiles)

// Close: prefix, family table, whether an update handle saves changed statuses.
#define VELMIO_PROFILE_CLOSERS(X)                            \
    X(ObservedDepths, velmio::observedDepthsProfiles, false) \
    X(SLRange, velmio::slantRangeProfiles, true)             \
    X(TPE, velmio::tpeProfiles, true)                        \
    X(ProcessedDepths, velmio::processedDepthsProfiles, true)

// RemoveDir of a set whose data file is named as the prefix.
#define VELMIO_PROFILE_REMOVERS(X)                                                             \
    X(ObservedDepths) X(ObservedDepthsNew) X(SLRange) X(TPE) X(ProcessedDepths) X(SSSSideScan) \
    X(SSSProcessedSideScan) X(NewSSSProcessedSideScan)

#endif
