// The bulk reads of the profile families, built on each family's
// per-profile and per-beam operations so that both paths give the same
// values. Each family passes small callables that read one header or read
// one beam into slot i (bulk writes: appendBeams).
#ifndef VELMIO_SENSORS_PROFILE_BULK_H
#define VELMIO_SENSORS_PROFILE_BULK_H

#include "sensors/profile_cursor.h"

#include <algorithm>
#include <cstdint>

namespace velmio {

inline bool profilesInRange(const TOVO_Sensor &h, std::uint32_t first, std::uint32_t count) {
    return first >= 1 && std::uint64_t{first} + count - 1 <= h.recordCount;
}

// Profiles farther apart than this on average are read a header at a time
// when only their headers are wanted; closer, in large windows.
constexpr std::uint64_t kSparseProfileBytes = 65536;

// For the time of one bulk call over profiles first .. first + count - 1 (in
// range): reads start afresh, so that what another process or this handle
// changed since is seen, and headers come with the range's bytes behind
// them (unless only headers are wanted and the profiles lie far apart).
class BulkRange {
public:
    BulkRange(TOVO_Sensor &h, ProfileState &s, std::uint32_t first, std::uint32_t count, bool headersOnly) : s_(s) {
        s.window.invalidate();
        std::uint32_t start = 0;
        if (h.timeIndex.map(first, start) != 0) return;
        const std::uint64_t end = profileLimit(h, s, first + count - 1);
        if (end <= start || (headersOnly && (end - start) / count > kSparseProfileBytes)) return;
        s.bulkEnd = end;
    }
    ~BulkRange() { s_.bulkEnd = 0; }
    BulkRange(const BulkRange &) = delete;
    BulkRange &operator=(const BulkRange &) = delete;

private:
    ProfileState &s_;
};

// readHeader(profile, i) fills header slot i.
template <class ReadHeader>
int readProfiles(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t first, std::uint32_t count,
                 ReadHeader readHeader) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kReadModes, s)) return rc;
    if (count == 0) return 0;
    if (!profilesInRange(*h, first, count)) return f.code(kOutOfRange);
    const BulkRange range(*h, *s, first, count, true);
    for (std::uint32_t i = 0; i < count; ++i)
        if (const int rc = readHeader(first + i, i)) return rc;
    return 0;
}

// At most how many beams profiles first .. first + count - 1 hold, from the
// time index alone: a header's beams must end before the next profile (or
// the end of the file), which loadHeader checks. UINT64_MAX when the index
// cannot tell.
inline std::uint64_t beamBound(TOVO_Sensor &h, const ProfileState &s, std::uint32_t first, std::uint32_t count) {
    constexpr std::uint64_t kUnknown = ~std::uint64_t{0};
    std::uint32_t start = 0, next = 0;
    if (s.geometry.itemBytes == 0 || h.timeIndex.map(first, start) != 0) return kUnknown;
    std::uint64_t end = s.fileSize < 0 ? 0 : static_cast<std::uint64_t>(s.fileSize);
    if (std::uint64_t{first} + count <= h.recordCount) {
        if (h.timeIndex.map(first + count, next) != 0) return kUnknown;
        end = next;
    }
    const std::uint64_t headers = std::uint64_t{count} * s.geometry.headerBytes;
    if (end < start || end - start < headers) return kUnknown;
    return (end - start - headers) / s.geometry.itemBytes;
}

// beamsOf(profile, beams, firstBeam) reads a header's numbering;
// readBeam(profile, beam, k) fills flat slot k. The beam total is known
// before anything is written, so a range that does not fit the caller's
// arrays leaves them untouched: from the time index when it shows the
// range fits (each header is then read once), else by reading every header
// before the beams.
// The walk of both: fill(profile, beams, firstBeam, k) fills the slots from
// k of one profile whose header beamsOf has just read. storeHeader(i) files
// that header in slot i of the header arrays, once its beams are in: only in
// the pass that writes, so that a range that does not fit writes nothing.
struct NoHeaders {
    void operator()(std::uint32_t) const {}
};

template <class BeamsOf, class Fill, class StoreHeader = NoHeaders>
int readBeamWalk(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t first, std::uint32_t count,
                 std::uint32_t beamCapacity, unsigned int *beamOffsets, BeamsOf beamsOf, Fill fill,
                 StoreHeader storeHeader = {}) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kReadModes, s)) return rc;
    if (count == 0) return 0;
    if (!profilesInRange(*h, first, count)) return f.code(kOutOfRange);
    if (beamBound(*h, *s, first, count) > beamCapacity) {
        std::uint64_t total = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint32_t beams = 0, firstBeam = 0;
            if (const int rc = beamsOf(first + i, beams, firstBeam)) return rc;
            total += beams;
            if (total > beamCapacity) return f.code(kOutOfRange);
        }
    }
    std::uint32_t k = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint32_t beams = 0, firstBeam = 0;
        if (const int rc = beamsOf(first + i, beams, firstBeam)) return rc;
        if (std::uint64_t{k} + beams > beamCapacity) return f.code(kOutOfRange);
        if (beamOffsets) beamOffsets[i] = k;
        if (const int rc = fill(first + i, beams, firstBeam, k)) return rc;
        storeHeader(i);
        k += beams;
    }
    if (beamOffsets) beamOffsets[count] = k;
    return 0;
}

template <class BeamsOf, class ReadBeam, class StoreHeader = NoHeaders>
int readBeams(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t first, std::uint32_t count,
              std::uint32_t beamCapacity, unsigned int *beamOffsets, BeamsOf beamsOf, ReadBeam readBeam,
              StoreHeader storeHeader = {}) {
    return readBeamWalk(h, f, first, count, beamCapacity, beamOffsets, beamsOf,
                        [&](std::uint32_t p, std::uint32_t beams, std::uint32_t firstBeam, std::uint32_t k) {
                            for (std::uint32_t b = 0; b < beams; ++b)
                                if (const int rc = readBeam(p, firstBeam + b, k + b)) return rc;
                            return 0;
                        },
                        storeHeader);
}

// readBeams over the bytes of the data file: once beamsOf has loaded a
// profile's header, its beams are decoded straight from the read window, a
// window at a time: decode(bytes, n, k, stride) fills flat slots k ..
// k + n - 1 from n beams of stride bytes (s.profileTime is the profile's).
// readable(profile) is the check the family's per-beam read makes of the
// profile number. The same values as readBeams over the per-beam read.
template <class BeamsOf, class Readable, class DecodeBatch, class StoreHeader = NoHeaders>
int readBeamBatches(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t first, std::uint32_t count,
                    std::uint32_t beamCapacity, unsigned int *beamOffsets, BeamsOf beamsOf, Readable readable,
                    DecodeBatch decode, StoreHeader storeHeader = {}) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kReadModes, s)) return rc;
    if (count == 0) return 0;
    if (!profilesInRange(*h, first, count)) return f.code(kOutOfRange);
    const BulkRange range(*h, *s, first, count, false);
    const unsigned itemBytes = s->geometry.itemBytes;
    auto readProfileBeams = [&](std::uint32_t p, std::uint32_t beams, std::uint32_t firstBeam, std::uint32_t k) {
        if (beams == 0) return 0;
        if (!readable(p) || s->header.number != p || s->header.firstBeam != firstBeam) return f.code(kOutOfRange);
        s->repositionNeeded = 1;
        s->profileTime = s->header.time;
        std::uint64_t at = std::uint64_t{s->header.offset} + s->geometry.headerBytes;
        for (std::uint32_t b = 0; b < beams;) {
            const std::uint64_t rest = std::max<std::uint64_t>(std::uint64_t{beams - b} * itemBytes,
                                                               s->bulkEnd > at ? s->bulkEnd - at : 0);
            const std::size_t ahead = static_cast<std::size_t>(std::min<std::uint64_t>(kBulkWindowBytes, rest));
            const unsigned char *q = s->window.at(*s->source, at, itemBytes, ahead);
            if (!q) return f.code(kReadFailed);
            const auto batch = static_cast<std::uint32_t>(
                std::min<std::uint64_t>(beams - b, s->window.held(at) / itemBytes));
            decode(q, batch, k + b, itemBytes);
            b += batch;
            at += std::uint64_t{batch} * itemBytes;
        }
        s->position = at;
        return 0;
    };
    return readBeamWalk(h, f, first, count, beamCapacity, beamOffsets, beamsOf, readProfileBeams, storeHeader);
}

// readBeamBatches for a family that decodes a beam from its words:
// decode(words, k) fills flat slot k.
template <class BeamsOf, class Readable, class Decode, class StoreHeader = NoHeaders>
int readBeamsInPlace(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t first, std::uint32_t count,
                     std::uint32_t beamCapacity, unsigned int *beamOffsets, BeamsOf beamsOf, Readable readable,
                     Decode decode, StoreHeader storeHeader = {}) {
    auto batch = [&](const unsigned char *q, std::uint32_t n, std::uint32_t k, unsigned stride) {
        std::uint32_t words[kMaxRecordWords];
        for (std::uint32_t j = 0; j < n; ++j, q += stride) {
            for (unsigned w = 0; w < stride / 4; ++w) words[w] = loadBe32(q + 4 * w);
            decode(words, k + j);
        }
    };
    return readBeamBatches(h, f, first, count, beamCapacity, beamOffsets, beamsOf, readable, batch, storeHeader);
}

// Observed depths and slant range read a header the same way (beams, first
// beam, time, two angles, status), so their bulk header reads are one.
using AngleProfileReader = int (*)(TOVO_Sensor *, unsigned int, unsigned int *, unsigned int *, double *, double *,
                                   double *, unsigned int *);

struct AngleHeader {
    unsigned int beams = 0, firstBeam = 0, status = 0;
    double time = 0, angle1 = 0, angle2 = 0;

    int read(TOVO_Sensor *h, AngleProfileReader reader, std::uint32_t p) {
        return reader(h, p, &beams, &firstBeam, &time, &angle1, &angle2, &status);
    }
};

// The caller's header arrays, any of them null.
struct AngleHeaderArrays {
    unsigned int *numberOfBeams, *firstBeams;
    double *times, *angles1, *angles2;
    unsigned int *statuses;

    void store(const AngleHeader &a, std::uint32_t i) const {
        if (numberOfBeams) numberOfBeams[i] = a.beams;
        if (firstBeams) firstBeams[i] = a.firstBeam;
        if (times) times[i] = a.time;
        if (angles1) angles1[i] = a.angle1;
        if (angles2) angles2[i] = a.angle2;
        if (statuses) statuses[i] = a.status;
    }
};

inline int readAngleProfiles(TOVO_Sensor *h, const ProfileFamily &f, AngleProfileReader read, std::uint32_t first,
                             std::uint32_t count, const AngleHeaderArrays &headers) {
    return readProfiles(h, f, first, count, [&](std::uint32_t p, std::uint32_t i) {
        AngleHeader a;
        if (const int rc = a.read(h, read, p)) return rc;
        headers.store(a, i);
        return 0;
    });
}

// The beamsOf callable of readBeams over such a header reader; it keeps the
// header in last.
inline auto angleProfileBeams(TOVO_Sensor *h, AngleProfileReader read, AngleHeader &last) {
    return [h, read, &last](std::uint32_t p, std::uint32_t &beams, std::uint32_t &firstBeam) {
        const int rc = last.read(h, read, p);
        beams = last.beams;
        firstBeam = last.firstBeam;
        return rc;
    };
}

// The beams of such a family with, where headers has arrays, their headers
// in one pass: ReadBeams and ReadRange. Beam arrays in the family's order.
int readObservedDepthsRange(TOVO_Sensor *h, unsigned int first, unsigned int count, const AngleHeaderArrays &headers,
                            unsigned int beamCapacity, unsigned int *beamOffsets, double *times, double *ys,
                            double *xs, double *depths, double *extras, unsigned int *statuses);
int readSlantRangeRange(TOVO_Sensor *h, unsigned int first, unsigned int count, const AngleHeaderArrays &headers,
                        unsigned int beamCapacity, unsigned int *beamOffsets, double *beamTimes, double *ranges,
                        double *values, double *beamAngles1, double *beamAngles2, unsigned int *statuses);

}  // namespace velmio

#endif
