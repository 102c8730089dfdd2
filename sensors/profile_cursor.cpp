#include "sensors/profile_cursor.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "foundation/wide_copy.h"
#include "platform/files.h"
#include "platform/stdio_file.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

namespace velmio {

namespace {

// A random read fetches this much: a header and its first beams.
constexpr std::size_t kRandomReadAhead = 4096;
// Farther than this behind its header, a beam is read on its own: copying
// more costs as much as a second small read.
constexpr std::uint64_t kNearBeamBytes = 8192;
// Headers remembered per handle at most (16 bytes each), for random beam
// reads only: bulk reads hold no more than their window.
constexpr std::uint32_t kKnownHeaderSlots = std::uint32_t{1} << 16;

void storeWords(unsigned char *out, const std::uint32_t *words, unsigned count) {
    for (unsigned i = 0; i < count; ++i) storeBe32(out + 4 * i, words[i]);
}

}  // namespace

bool modeAllowed(const TOVO_Sensor &h, unsigned modes) {
    switch (h.accessMode) {
    case VELMIO_ACCESS_QUERY: return (modes & kQueryMode) != 0;
    case VELMIO_ACCESS_UPDATE: return (modes & kUpdateMode) != 0;
    default: return (modes & kCreateMode) != 0;  // every other mode writes, as the open did
    }
}

int enterProfile(TOVO_Sensor *h, const ProfileFamily &f, unsigned modes, ProfileState *&s) {
    s = nullptr;
    if (!h) return f.code(kNullHandle);
    if (f.stateCheckedFirst) {
        if (!h->familyState) return -1;
        if (h->typeId != f.typeId) return f.code(kWrongType);
        if (!(s = stateOf<ProfileState>(h, f))) return -1;
        if (!modeAllowed(*h, modes)) return f.code(kWrongMode);
        return 0;
    }
    if (h->typeId != f.typeId) return f.code(kWrongType);
    if (!modeAllowed(*h, modes)) return f.code(kWrongMode);
    if (!(s = stateOf<ProfileState>(h, f))) return -1;
    return 0;
}

TOVO_Sensor *openProfileSensor(const wchar_t *lineDirectory, std::uint32_t openId, const wchar_t *token,
                               int *error, const ProfileFamily &f, std::unique_ptr<ProfileState> state) {
    int scratch = 0;
    int &err = error ? *error : scratch;
    TOVO_Sensor *h = SensorOpenDir(lineDirectory, openId, token, &err);
    if (!h) return nullptr;
    ProfileState &s = *state;
    // A family may keep kinds apart that share a directory id (side scan).
    h->typeId = f.typeId;
    // An unknown token arrives as a mode of its own and is written like a
    // create, as the line store has always done: it starts the file afresh.
    if (const int rc = openEngine(h, state.release())) {
        err = rc;
        return nullptr;
    }
    s.position = f.dataStart();
    return h;
}

int closeProfileSensor(TOVO_Sensor *h, const ProfileFamily &f, bool saveDirtyStatus) {
    if (!h) return f.code(kNullHandle);
    if (h->typeId != f.typeId) return f.code(kWrongType);
    ProfileState *s = stateOf<ProfileState>(h, f);
    if (!s) {
        if (h->dataFile) std::fclose(h->dataFile);
        h->dataFile = nullptr;
        SensorFree(h);
        return 0;
    }
    return closeEngine(h, *s, saveDirtyStatus && s->statusDirty);
}

int saveProfileStatus(TOVO_Sensor &h, ProfileState &s) {
    if (writeSummaryBlock(h, s) != 0) return s.family.code(kSummaryNotWritten);
    if (const int rc = writeSegments(h, s)) return rc;
    s.statusDirty = false;
    return 0;
}



int beginProfile(TOVO_Sensor &h, ProfileState &s, std::uint32_t beams, std::uint32_t firstBeam, double time,
                 std::uint32_t status, const std::uint32_t *extra, unsigned extraCount, bool widenTime) {
    const EngineFamily &f = s.family;
    const bool first = s.firstRecordPending;
    if (first) {
        h.referenceTime = TOVO_EncodeRefTime(time);
        s.firstRecordPending = false;
    }
    // Counted before anything can fail, as readers of a partial file expect.
    h.recordCount += 1;
    s.itemCount += beams;
    ++s.written;
    s.profileTime = time;
    s.profileOpen = true;
    s.beamsDeclared = beams;
    s.beamsWritten = 0;
    s.repositionNeeded = 1;
    const int encodedTime = TOVO_EncodeTime(time, h.referenceTime, h.timeScale);
    if (appendIndexEntry(h, s, encodedTime) != 0) return f.code(kTimeIndexEntryFailed);
    std::uint32_t words[kMaxRecordWords] = {status, (beams << 16) | firstBeam, asWord(encodedTime)};
    const unsigned count = f.geometry.headerBytes / 4;
    for (unsigned i = 0; i < extraCount && 3 + i < count; ++i) words[3 + i] = extra[i];
    storeWords(s.record, words, count);
    if (!s.appender.append(s.record, f.geometry.headerBytes)) return f.code(kWriteFailed);
    if (widenTime) {
        h.extents[0].widen(time);
        if (s.currentSegment) s.currentSegment->extents[0].widen(time);
    }
    return first ? referencesFixed(h, s) : 0;
}

int writeBeam(TOVO_Sensor &h, ProfileState &s, const std::uint32_t *words, double time) {
    const EngineFamily &f = s.family;
    // Readers find beams by the header's count: more beams than declared
    // would be read as the next profile's header.
    if (!s.profileOpen || s.beamsWritten >= s.beamsDeclared) return f.code(kOutOfRange);
    ++s.beamsWritten;
    s.repositionNeeded = 1;
    unsigned char *bytes = s.appender.room(f.geometry.itemBytes);
    if (!bytes) return f.code(kWriteFailed);
    storeWords(bytes, words, f.geometry.itemBytes / 4);
    s.appender.commit(f.geometry.itemBytes);
    h.extents[0].widen(time);
    if (s.currentSegment) s.currentSegment->extents[0].widen(time);
    return 0;
}

int endProfile(TOVO_Sensor &, ProfileState &s) {
    const bool complete = !s.profileOpen || s.beamsWritten == s.beamsDeclared;
    s.profileOpen = false;
    return complete ? 0 : s.family.code(kOutOfRange);
}

int beginProfileSegment(TOVO_Sensor &h, ProfileState &s, const wchar_t *name) {
    try {
        if (const int rc = beginSegment(h, name, h.recordCount + 1)) return rc;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    s.currentSegment = h.lastSegment;
    return 0;
}

int endProfileSegment(TOVO_Sensor &h, ProfileState &s, std::uint32_t status) {
    _TOVO_LnSeg *segment = s.currentSegment ? s.currentSegment : h.lastSegment;
    if (!segment) return s.family.code(kNoSegment);
    segment->lastRecord = h.recordCount;
    segment->status = status;
    s.currentSegment = nullptr;
    return 0;
}

int setSegmentStatus(TOVO_Sensor &h, ProfileState &s, int segmentNumber, std::uint32_t status) {
    _TOVO_LnSeg *segment = LnSegIndexSearch(&h, segmentNumber);
    if (!segment) return s.family.code(kNoSegment);
    segment->status = status;
    s.statusDirty = true;
    return 0;
}

int describeSegment(TOVO_Sensor &h, ProfileState &s, int segmentNumber, wchar_t **name, std::uint32_t *begin,
                    std::uint32_t *end, Extent *extents, int extentCount, std::uint32_t *status) {
    const _TOVO_LnSeg *segment = LnSegIndexSearch(&h, segmentNumber);
    if (!segment) return s.family.code(kNoSegment);
    *name = mallocWideCopy(segment->name);
    if (!*name) return kNoMemory;
    *begin = segment->firstRecord;
    *end = segment->lastRecord;
    for (int i = 0; i < extentCount; ++i) extents[i] = segment->extents[i];
    *status = segment->status;
    return 0;
}

_TOVO_LnSeg *segmentOfProfile(TOVO_Sensor &h, std::uint32_t profile) {
    for (_TOVO_LnSeg *s = h.firstSegment; s; s = s->next)
        if (s->firstRecord <= profile && profile <= s->lastRecord) return s;
    return nullptr;
}

int seekData(TOVO_Sensor &, ProfileState &s, std::uint64_t offset, int seekReason) {
    ++s.seekCount;
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<long>::max()) || !s.source)
        return s.family.code(seekReason);
    s.position = offset;
    s.readAhead = kRandomReadAhead;
    return 0;
}

int readRecord(TOVO_Sensor &, ProfileState &s, unsigned bytes, std::uint32_t *words) {
    const unsigned char *p = s.source ? s.window.at(*s.source, s.position, bytes, s.readAhead) : nullptr;
    if (!p) return s.family.code(kReadFailed);
    for (unsigned i = 0; i < bytes / 4; ++i) words[i] = loadBe32(p + 4 * i);
    s.position += bytes;
    s.readAhead = kWindowBytes;
    return 0;
}

int parseHeader(TOVO_Sensor &h, ProfileState &s, const std::uint32_t *words, ProfileHeader &out) {
    out.status = words[0];
    if (s.geometry.countOnlyLayout) {
        out.beamCount = words[1];
        out.firstBeam = 1;
    } else {
        out.beamCount = words[1] >> 16;
        out.firstBeam = words[1] & 0xFFFFu;
    }
    const unsigned count = s.geometry.headerBytes / 4;
    for (unsigned i = 0; i < 5; ++i) out.words[i] = i < count ? words[i] : 0;
    out.time = TOVO_DecodeTime(h.referenceTime, h.timeScale, asSigned(words[2]));
    return 0;
}

std::uint64_t profileLimit(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile) {
    std::uint32_t next = 0;
    if (profile < std::numeric_limits<std::uint32_t>::max() && h.timeIndex.map(profile + 1, next) == 0) return next;
    return s.fileSize < 0 ? 0 : static_cast<std::uint64_t>(s.fileSize);
}

void KnownHeaders::keep(const ProfileHeader &header, std::uint32_t profiles) {
    if (header.beamCount > 0xFFFFu || header.firstBeam > 0xFFFFu) return;
    if (!slots_) {
        std::uint32_t size = 1;
        while (size < profiles && size < kKnownHeaderSlots) size <<= 1;
        // Zeroed pages come untouched from calloc: a handle that reads few
        // beams does not pay for clearing the whole table.
        slots_.reset(static_cast<Slot *>(std::calloc(size, sizeof(Slot))));
        filled_.reset(static_cast<std::uint64_t *>(std::calloc((size + 63) / 64, sizeof(std::uint64_t))));
        if (!slots_ || !filled_) {
            slots_.reset();  // reads go on, each with its header
            return;
        }
        mask_ = size - 1;
    }
    const std::uint32_t at = header.number & mask_;
    slots_[at] = {header.number, header.offset, header.beamCount << 16 | header.firstBeam, asSigned(header.words[2])};
    filled_[at / 64] |= std::uint64_t{1} << (at % 64);
}

int loadHeader(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, int decodeReason, std::size_t ahead) {
    const EngineFamily &f = s.family;
    s.header.number = 0;
    s.repositionNeeded = 1;
    std::uint32_t offset = 0;
    if (h.timeIndex.map(profile, offset) != 0) return f.code(kNotMapped);
    if (const int rc = seekData(h, s, offset, kSeekFailed)) return rc;
    if (ahead) s.readAhead = std::min(ahead, kWindowBytes);
    if (s.bulkEnd > offset)
        s.readAhead = static_cast<std::size_t>(std::min<std::uint64_t>(kBulkWindowBytes, s.bulkEnd - offset));
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readRecord(h, s, s.geometry.headerBytes, words)) return rc;
    ProfileHeader header;
    parseHeader(h, s, words, header);
    // A header claiming more beams than lie before the next profile (or the
    // end of the file) would send reads and edits into foreign records.
    const std::uint64_t end =
        std::uint64_t{offset} + s.geometry.headerBytes + std::uint64_t{header.beamCount} * s.geometry.itemBytes;
    if (end > profileLimit(h, s, profile)) return f.code(decodeReason);
    header.number = profile;
    header.offset = offset;
    s.header = header;
    return 0;
}

int readBeam(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t beam, std::uint32_t *words,
             int beamRangeReason) {
    const EngineFamily &f = s.family;
    const bool follows = !s.repositionNeeded && profile == s.lastProfile && s.header.number == profile &&
                         beam == s.lastBeam + 1;
    if (follows) {
        if (!s.header.holds(beam)) return f.code(beamRangeReason);
    } else {
        s.repositionNeeded = 1;
        bool justRead = false;
        if (s.header.number != profile && s.knownHeaders.find(h, profile, s.header)) {
            // Met before: only the beam is read, and a file cut since fails there.
        } else if (s.header.number != profile) {
            // One read for the header and, when it lies near, the beam
            // (beams are mostly numbered from 1); a far beam is not worth
            // the bytes between.
            const std::uint64_t reach = s.geometry.headerBytes + std::uint64_t{beam} * s.geometry.itemBytes;
            const std::size_t ahead =
                reach <= kNearBeamBytes ? static_cast<std::size_t>(reach) : s.geometry.headerBytes;
            if (const int rc = loadHeader(h, s, profile, kNotDecoded, ahead)) return rc;
            s.knownHeaders.keep(s.header, h.timeIndex.entryCount());
            justRead = true;
        }
        if (!s.header.holds(beam)) return f.code(beamRangeReason);
        // Right behind a header just read, its first beam needs no seek.
        if (!justRead || beam != s.header.firstBeam) {
            const std::uint64_t target = std::uint64_t{s.header.offset} + s.geometry.headerBytes +
                                         std::uint64_t{beam - s.header.firstBeam} * s.geometry.itemBytes;
            if (const int rc = seekData(h, s, target, kSeekFailed)) return rc;
        }
        // A beam at random: its own bytes, unless the header's read brought them.
        s.readAhead = s.geometry.itemBytes;
    }
    if (const int rc = readRecord(h, s, s.geometry.itemBytes, words)) return rc;
    s.profileTime = s.header.time;
    s.lastProfile = profile;
    s.lastBeam = beam;
    s.repositionNeeded = 0;
    return 0;
}

int loadBeamForEdit(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t beam,
                    std::uint32_t *words, std::uint32_t &offset) {
    const EngineFamily &f = s.family;
    s.repositionNeeded = 1;
    if (s.header.number != profile)
        if (const int rc = loadHeader(h, s, profile, kEditNotCoded)) return rc;
    if (!s.header.holds(beam)) return f.code(kOutOfRange);
    const std::uint64_t target = std::uint64_t{s.header.offset} + s.geometry.headerBytes +
                                 std::uint64_t{beam - s.header.firstBeam} * s.geometry.itemBytes;
    if (target > std::numeric_limits<std::uint32_t>::max()) return f.code(kSeekFailed);
    offset = static_cast<std::uint32_t>(target);
    if (const int rc = seekData(h, s, offset, kSeekFailed)) return rc;
    return readRecord(h, s, s.geometry.itemBytes, words);
}

int storeBeam(TOVO_Sensor &, ProfileState &s, std::uint32_t offset, const std::uint32_t *words) {
    const EngineFamily &f = s.family;
    s.repositionNeeded = 1;
    s.window.invalidate();  // reads after the edit must see it
    storeWords(s.record, words, s.geometry.itemBytes / 4);
    ++s.seekCount;
    if (!s.source->writeAt(offset, s.record, s.geometry.itemBytes)) return f.code(kWriteFailed);
    return 0;
}

int readHeaderSeq(TOVO_Sensor &h, ProfileState &s, ProfileHeader &out) {
    s.repositionNeeded = 1;
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readRecord(h, s, s.geometry.headerBytes, words)) return rc;
    parseHeader(h, s, words, out);
    s.profileTime = out.time;
    return 0;
}

int readBeamSeq(TOVO_Sensor &h, ProfileState &s, std::uint32_t *words) {
    s.repositionNeeded = 1;
    return readRecord(h, s, s.geometry.itemBytes, words);
}

}  // namespace velmio
