// Observed depths: profiles of soundings edited in place, beam by beam.
#include <velmio/encoding.h>
#include <velmio/linestore.h>
#include <velmio/observed_depths.h>

#include "sensors/column_decode.h"
#include "sensors/profile_bulk.h"
#include "sensors/profile_cursor.h"

#include <algorithm>
#include <cstdio>
#include <new>

using namespace velmio;

namespace {

constexpr std::uint32_t kRejectionMask = VELMIO_OBSERVED_DEPTHS_REJECTION_MASK;
constexpr int kTime = 0;   // extents of the handle and of each segment
constexpr int kDepth = 1;

constexpr SummaryField kSummary[] = {
    {SummaryWord::Status},
    {SummaryWord::FamilyWord0},  // tool type
    {SummaryWord::RecordCount},
    {SummaryWord::ItemCount},
    {SummaryWord::TimeScale},
    {SummaryWord::DepthTimeScale},
    {SummaryWord::ReferenceTime},
    {SummaryWord::ExtentMin, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMax, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMin, kDepth, ExtentKind::Metres},
    {SummaryWord::ExtentMax, kDepth, ExtentKind::Metres},
};
constexpr int kSummaryWords = sizeof kSummary / sizeof kSummary[0];
static_assert(kSummaryWords <= kMaxSummaryWords && 24 <= kMaxRecordBytes, "the engine's buffers hold these records");

void widenByBeam(const ProfileState &s, const std::uint32_t *w, Extent *extents);

const ProfileFamily kObservedDepths = {
    {
        5000200,                // code block
        2,                      // format version written
        {20, 16, false},        // header and beam bytes
        {20, 24, true},         // version 1: beam count only, 24-byte beams
        kSummaryWords,
        kSummary,
        nullptr,
        {2, {ExtentKind::Time, ExtentKind::Metres}, 5000201, nullptr, 5000203, 5000202, 5000226, nullptr, nullptr,
         nullptr, nullptr},
        5000206,                // a validation record that does not match
        nullptr,
        kSummaryInvalid,        // a short summary
        nullptr,
        5000214,                // time index not written
        0,
    },
    4,                          // type (ObservedDepthsNew is recorded as 4 too)
    kOutOfRange,
    true,                       // family state checked before the type
    false,                      // time bounds come from the beams only
    widenByBeam,
    nullptr,
};

int enter(TOVO_Sensor *h, unsigned modes, ProfileState *&s) { return enterProfile(h, kObservedDepths, modes, s); }

bool inRange(std::uint32_t n, std::uint32_t count) { return n >= 1 && n <= count; }

struct Beam {
    double time, y, x, depth, extra;
    std::uint32_t status;
};

Beam decodeBeam(const ProfileState &s, const std::uint32_t *w) {
    Beam b;
    b.depth = decodeMetres(asSigned(w[1]));
    b.x = decodeMetres(asSigned(w[2]));
    b.y = decodeMetres(asSigned(w[3]));
    if (s.geometry.countOnlyLayout) {
        // Version 1: the whole first unit is status, the offset has its own.
        b.status = w[0];
        b.time = decodeDepthTime(s.profileTime, s.depthTimeScale, asSigned(w[4]));
        b.extra = decodeMetres(asSigned(w[5]));
    } else {
        b.status = w[0] & 0xFFFF0000u;
        b.time = beamTime(s, s.profileTime, w[0]);
        b.extra = 0.0;
    }
    return b;
}

void widenByBeam(const ProfileState &s, const std::uint32_t *w, Extent *extents) {
    const Beam b = decodeBeam(s, w);
    extents[kTime].widen(b.time);
    extents[kDepth].widen(b.depth);
}

void fillBeam(const Beam &b, double *time, double *y, double *x, double *depth, double *extra,
              unsigned int *status) {
    *time = b.time;
    *y = b.y;
    *x = b.x;
    *depth = b.depth;
    *extra = b.extra;
    *status = b.status;
}

void fillHeader(const ProfileHeader &p, unsigned int *numberOfBeams, unsigned int *firstBeam, double *time,
                double *angle1, double *angle2, unsigned int *status) {
    *numberOfBeams = p.beamCount;
    *firstBeam = p.firstBeam;
    *time = p.time;
    *angle1 = TOVO_DecodeRadians(asSigned(p.words[3]));
    *angle2 = TOVO_DecodeRadians(asSigned(p.words[4]));
    *status = p.status;
}

// Edits: a version 1 file makes every edit a successful no-op.
constexpr int kVersion1 = 1;

int enterEdit(TOVO_Sensor *h, std::uint32_t profile, ProfileState *&s) {
    if (const int rc = enter(h, kAnyMode, s)) return rc;
    if (h->formatVersion < 2) return kVersion1;
    if (!modeAllowed(*h, kUpdateMode)) return kObservedDepths.code(kWrongMode);
    if (!inRange(profile, h->recordCount)) return kObservedDepths.code(kOutOfRange);
    return 0;
}

void widenDepth(TOVO_Sensor &h, std::uint32_t profile, double depth) {
    h.extents[kDepth].widen(depth);
    if (_TOVO_LnSeg *segment = segmentOfProfile(h, profile)) segment->extents[kDepth].widen(depth);
}

std::uint32_t withStatus(std::uint32_t word1, std::uint32_t status) { return (word1 & 0xFFFFu) | status; }

// Reads the beam, lets change() alter its words (returning false to leave
// the file alone), writes it back and widens the depth bounds by newDepth.
template <class Change>
int editBeam(TOVO_Sensor *h, std::uint32_t profile, std::uint32_t beam, Change change,
             const double *newDepth = nullptr) {
    ProfileState *s = nullptr;
    const int rc = enterEdit(h, profile, s);
    if (rc == kVersion1) return 0;
    if (rc) return rc;
    std::uint32_t words[kMaxRecordWords];
    std::uint32_t offset = 0;
    if (const int r = loadBeamForEdit(*h, *s, profile, beam, words, offset)) return r;
    if (!change(words)) return 0;
    if (const int r = storeBeam(*h, *s, offset, words)) return r;
    if (newDepth) widenDepth(*h, profile, *newDepth);
    return 0;
}

}  // namespace

const ProfileFamily &velmio::observedDepthsProfiles() { return kObservedDepths; }

extern "C" {

VELMIO_API int ObservedDepthsReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int *numberOfBeams,
                                         unsigned int *firstBeam, double *time, double *angle1, double *angle2,
                                         unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!numberOfBeams || !firstBeam || !time || !angle1 || !angle2 || !status) return -1;
    if (!inRange(profileNumber, handle->recordCount)) return kObservedDepths.code(kOutOfRange);
    if (const int rc = loadHeader(*handle, *s, profileNumber, kNotDecoded)) return rc;
    s->profileTime = s->header.time;
    fillHeader(s->header, numberOfBeams, firstBeam, time, angle1, angle2, status);
    return 0;
}

VELMIO_API int ObservedDepthsRead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                  double *time, double *y, double *x, double *depth, double *extra,
                                  unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!time || !y || !x || !depth || !extra || !status) return -1;
    if (!inRange(profileNumber, handle->recordCount)) return kObservedDepths.code(kOutOfRange);
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readBeam(*handle, *s, profileNumber, beamNumber, words, kOutOfRange)) return rc;
    fillBeam(decodeBeam(*s, words), time, y, x, depth, extra, status);
    return 0;
}

VELMIO_API int ObservedDepthsReadProfileSeq(TOVO_Sensor *handle, unsigned int *numberOfBeams, unsigned int *firstBeam,
                                            double *time, double *angle1, double *angle2, unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kQueryMode, s)) return rc;
    if (!numberOfBeams || !firstBeam || !time || !angle1 || !angle2 || !status) return -1;
    ProfileHeader header;
    if (const int rc = readHeaderSeq(*handle, *s, header)) return rc;
    fillHeader(header, numberOfBeams, firstBeam, time, angle1, angle2, status);
    return 0;
}

VELMIO_API int ObservedDepthsReadSeq(TOVO_Sensor *handle, double *time, double *y, double *x, double *depth,
                                     double *extra, unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!time || !y || !x || !depth || !extra || !status) return -1;
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readBeamSeq(*handle, *s, words)) return rc;
    fillBeam(decodeBeam(*s, words), time, y, x, depth, extra, status);
    return 0;
}

}  // extern "C"

int velmio::readObservedDepthsRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                    const AngleHeaderArrays &headers, unsigned int beamCapacity,
                                    unsigned int *beamOffsets, double *times, double *ys, double *xs, double *depths,
                                    double *extras, unsigned int *statuses) {
    AngleHeader last;
    auto beamsOf = angleProfileBeams(handle, ObservedDepthsReadProfile, last);
    const ProfileState *s = stateOf<ProfileState>(handle, kObservedDepths);
    auto decode = [&](const unsigned char *q, std::uint32_t n, std::uint32_t k, unsigned stride) {
        if (s->geometry.countOnlyLayout) {
            std::uint32_t words[kMaxRecordWords];
            for (std::uint32_t j = 0; j < n; ++j, q += stride) {
                for (unsigned w = 0; w < stride / 4; ++w) words[w] = loadBe32(q + 4 * w);
                const Beam b = decodeBeam(*s, words);
                if (times) times[k + j] = b.time;
                if (ys) ys[k + j] = b.y;
                if (xs) xs[k + j] = b.x;
                if (depths) depths[k + j] = b.depth;
                if (extras) extras[k + j] = b.extra;
                if (statuses) statuses[k + j] = b.status;
            }
            return;
        }
        // decodeBeam's arithmetic, a field at a time.
        const double ping = s->profileTime;
        const std::int32_t scale = s->depthTimeScale;
        auto metres = [](std::uint32_t w) { return decodeMetres(asSigned(w)); };
        forEachRun<4>(q, n, stride, [&](std::uint32_t done, std::uint32_t run, const std::uint32_t (*w)[kColumnRun]) {
            auto slots = [k, done](auto *array) { return array ? array + k + done : nullptr; };
            fillBeamWord1(slots(times), slots(statuses), run, w[0], ping, scale);
            fillColumn(slots(ys), run, w[3], metres);
            fillColumn(slots(xs), run, w[2], metres);
            fillColumn(slots(depths), run, w[1], metres);
            if (extras) std::fill_n(extras + k + done, run, 0.0);
        });
    };
    auto readable = [](std::uint32_t) { return true; };  // the range check covers it
    return readBeamBatches(handle, kObservedDepths, firstProfile, count, beamCapacity, beamOffsets, beamsOf,
                           readable, decode, [&](std::uint32_t i) { headers.store(last, i); });
}

extern "C" {

VELMIO_API int ObservedDepthsBgnSeqWriteProfile(TOVO_Sensor *handle, unsigned int numberOfBeams,
                                                unsigned int firstBeam, double time, double angle1, double angle2,
                                                unsigned int status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    const std::uint32_t angles[2] = {asWord(TOVO_EncodeRadians(angle1)), asWord(TOVO_EncodeRadians(angle2))};
    // Observed depths take their time bounds from the beams only.
    return beginProfile(*handle, *s, numberOfBeams, firstBeam, time, status, angles, 2, false);
}

VELMIO_API int ObservedDepthsSeqWrite(TOVO_Sensor *handle, double time, double y, double x, double depth,
                                      double /*reserved1*/, double /*reserved2*/, unsigned int status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    const std::uint32_t words[4] = {statusAndOffset(*s, time, status), asWord(encodeMetres(depth)),
                                    asWord(encodeMetres(x)), asWord(encodeMetres(y))};
    if (const int rc = writeBeam(*handle, *s, words, time)) return rc;
    handle->extents[kDepth].widen(depth);
    if (s->currentSegment) s->currentSegment->extents[kDepth].widen(depth);
    return 0;
}

VELMIO_API int ObservedDepthsSeqWriteBeams(TOVO_Sensor *handle, unsigned int count, const double *times,
                                           const double *ys, const double *xs, const double *depths,
                                           const unsigned int *statuses) {
    Extent depthRange;
    return appendBeams(
        handle, kObservedDepths, count, times && ys && xs && depths, statuses,
        [&](const BeamClock &clock, std::uint32_t i, std::uint32_t status, unsigned char *bytes) {
            storeBe32(bytes, clock.word1(times[i], status));
            storeBe32(bytes + 4, asWord(encodeMetres(depths[i])));
            storeBe32(bytes + 8, asWord(encodeMetres(xs[i])));
            storeBe32(bytes + 12, asWord(encodeMetres(ys[i])));
            depthRange.widen(depths[i]);
            return times[i];
        },
        [&](ProfileState &s) {
            handle->extents[kDepth].widen(depthRange);
            if (s.currentSegment) s.currentSegment->extents[kDepth].widen(depthRange);
        },
        [&](std::uint32_t i) {
            return ObservedDepthsSeqWrite(handle, times[i], ys[i], xs[i], depths[i], 0.0, 0.0,
                                          statuses ? statuses[i] : 0);
        });
}

VELMIO_API int ObservedDepthsUpdateStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                          unsigned int status) {
    return editBeam(handle, profileNumber, beamNumber, [&](std::uint32_t *w) {
        w[0] = withStatus(w[0], status);
        return true;
    });
}

VELMIO_API int ObservedDepthsUpdateRejectionStatus(TOVO_Sensor *handle, unsigned int profileNumber,
                                                   unsigned int beamNumber, unsigned int bits) {
    return editBeam(handle, profileNumber, beamNumber, [&](std::uint32_t *w) {
        const std::uint32_t masked = w[0] & kRejectionMask;
        if (masked == bits) return false;
        // The status half loses its rejection bits and gains the new ones;
        // the time offset below stays as it is.
        w[0] = (((w[0] & 0xFFFF0000u) - masked) + bits) | (w[0] & 0xFFFFu);
        return true;
    });
}

VELMIO_API int ObservedDepthsUpdateDepth(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                         double depth) {
    return editBeam(
        handle, profileNumber, beamNumber,
        [&](std::uint32_t *w) {
            w[1] = asWord(TOVO_EncodeMeters(depth));
            return true;
        },
        &depth);
}

VELMIO_API int ObservedDepthsUpdateDepthStatus(TOVO_Sensor *handle, unsigned int profileNumber,
                                               unsigned int beamNumber, double depth, unsigned int status) {
    return editBeam(
        handle, profileNumber, beamNumber,
        [&](std::uint32_t *w) {
            w[0] = withStatus(w[0], status);
            w[1] = asWord(TOVO_EncodeMeters(depth));
            return true;
        },
        &depth);
}

// A null z leaves the depth, and so the bounds, as they are.
VELMIO_API int ObservedDepthsUpdateXYZStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                             const double *x, const double *y, const double *z,
                                             const unsigned int *status) {
    return editBeam(
        handle, profileNumber, beamNumber,
        [&](std::uint32_t *w) {
            if (status) w[0] = withStatus(w[0], *status);
            if (z) w[1] = asWord(TOVO_EncodeMeters(*z));
            if (x) w[2] = asWord(TOVO_EncodeMeters(*x));
            if (y) w[3] = asWord(TOVO_EncodeMeters(*y));
            return true;
        },
        z);
}

VELMIO_API int ObservedDepthsSaveStatusToDisk(TOVO_Sensor *handle) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kUpdateMode, s)) return rc;
    if (const int rc = saveProfileStatus(*handle, *s)) return rc;
    return std::fflush(handle->dataFile) == 0 ? 0 : kObservedDepths.code(kSeekFailed);
}

}  // extern "C"
