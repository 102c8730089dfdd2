#include "sensors/profile_cursor.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "foundation/wide_copy.h"
#include "platform/files.h"
#include "platform/stdio_file.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

namespace velmio {

using namespace xdr;

namespace {

// A random read fetches this much: a header and its first beams.
constexpr std::size_t kRandomReadAhead = 4096;

bool encodeWords(XDR &x, unsigned char *buffer, const std::uint32_t *words, unsigned count) {
    xdrmem_create(&x, reinterpret_cast<char *>(buffer), 4 * count, XDR_ENCODE);
    for (unsigned i = 0; i < count; ++i) {
        unsigned int w = words[i];
        if (!xdr_u_int(&x, &w)) return false;
    }
    return true;
}

bool decodeWords(XDR &x, unsigned char *buffer, std::uint32_t *words, unsigned count) {
    xdrmem_create(&x, reinterpret_cast<char *>(buffer), 4 * count, XDR_DECODE);
    for (unsigned i = 0; i < count; ++i) {
        unsigned int w = 0;
        if (!xdr_u_int(&x, &w)) return false;
        words[i] = w;
    }
    return true;
}

ProfileState *ownState(TOVO_Sensor &h, const ProfileFamily &f) {
    auto *s = dynamic_cast<ProfileState *>(h.familyState);
    return s && &s->family == &f ? s : nullptr;
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
        if (!(s = ownState(*h, f))) return -1;
        if (!modeAllowed(*h, modes)) return f.code(kWrongMode);
        return 0;
    }
    if (h->typeId != f.typeId) return f.code(kWrongType);
    if (!modeAllowed(*h, modes)) return f.code(kWrongMode);
    if (!(s = ownState(*h, f))) return -1;
    return 0;
}

TOVO_Sensor *openProfileSensor(const wchar_t *lineDirectory, std::uint32_t openId, const wchar_t *token,
                               int *error, const ProfileFamily &f, std::unique_ptr<ProfileState> state) {
    int scratch = 0;
    int &err = error ? *error : scratch;
    TOVO_Sensor *h = SensorOpenDir(lineDirectory, openId, token, &err);
    if (!h) return nullptr;
    auto fail = [&](int code) -> TOVO_Sensor * {
        if (h->dataFile) std::fclose(h->dataFile);
        h->dataFile = nullptr;
        // A file this open created and could not begin is of no use to anyone.
        if (isWriting(*h)) platform::removeFile(h->dataPath.c_str());
        SensorFree(h);
        err = code;
        return nullptr;
    };
    ProfileState &s = *state;
    h->familyState = state.release();
    // An unknown token arrives as a mode of its own and is written like a
    // create, as the line store has always done: it starts the file afresh.
    if (isWriting(*h)) {
        h->formatVersion = f.writeVersion;
        s.formatVersion = f.writeVersion;
        if (const int rc = TOVO_WriteDataValidationRecord(h)) return fail(rc);
        if (std::fseek(h->dataFile, static_cast<long>(f.summaryBytes), SEEK_CUR) != 0)
            return fail(f.code(kSummaryNotReserved));
        h->firstRecordPending = 1;
        return h;
    }
    if (TOVO_ReadDataValidationRecord(h) != 0) return fail(f.code(kSummaryInvalid));
    s.formatVersion = h->formatVersion;
    if (s.formatVersion < 2 && f.version1.headerBytes != 0) s.geometry = f.version1;
    unsigned char buffer[4 * kMaxSummaryWords];
    if (std::fread(buffer, 1, f.summaryBytes, h->dataFile) != f.summaryBytes)
        return fail(f.code(f.shortSummaryReason));
    std::uint32_t words[kMaxSummaryWords] = {};
    if (!decodeWords(h->decodeStream, buffer, words, f.summaryBytes / 4) || !f.fromWords(*h, words))
        return fail(f.code(kSummaryInvalid));
    s.source.reset(new (std::nothrow) FileSource(fileno(h->dataFile)));
    if (!s.source) return fail(kNoMemory);
    s.position = 16 + std::uint64_t{f.summaryBytes};
    // The counts must fit the file before anything trusts them.
    s.fileSize = platform::fileSize(h->dataFile);
    const std::uint64_t needed = std::uint64_t{h->recordCount} * s.geometry.headerBytes +
                                 std::uint64_t{h->familyWords[0]} * s.geometry.beamBytes;
    const std::int64_t room = s.fileSize - 16 - static_cast<std::int64_t>(f.summaryBytes);
    if (s.fileSize < 0 || room < 0 || needed > static_cast<std::uint64_t>(room))
        return fail(f.code(kSummaryInvalid));
    try {
        if (const int rc = readLineSegmentFile(*h, f.segments)) return fail(rc);
    } catch (const std::bad_alloc &) {
        return fail(kNoMemory);
    }
    if (const int rc = h->timeIndex.read(h->timeIndexPath.c_str(), h->typeId)) return fail(rc);
    return h;
}

int writeSummary(TOVO_Sensor &h, ProfileState &s) {
    const ProfileFamily &f = s.family;
    std::uint32_t words[kMaxSummaryWords] = {};
    f.toWords(h, words);
    unsigned char buffer[4 * kMaxSummaryWords];
    if (!encodeWords(h.encodeStream, buffer, words, f.summaryBytes / 4)) return f.code(kSummaryNotEncoded);
    if (TOVO_WriteDataValidationRecord(&h) != 0) return f.code(kSummaryNotEncoded);
    if (std::fwrite(buffer, 1, f.summaryBytes, h.dataFile) != f.summaryBytes) return f.code(kWriteFailed);
    // Reads that follow must not meet unflushed writes.
    if (!isWriting(h) && std::fflush(h.dataFile) != 0) return f.code(kSeekFailed);
    s.repositionNeeded = 1;
    return 0;
}

int closeProfileSensor(TOVO_Sensor *h, const ProfileFamily &f, bool saveDirtyStatus) {
    if (!h) return f.code(kNullHandle);
    if (h->typeId != f.typeId) return f.code(kWrongType);
    ProfileState *s = ownState(*h, f);
    int first = 0;
    auto keep = [&](int rc) {
        if (rc && !first) first = rc;
    };
    const bool creating = h->accessMode != VELMIO_ACCESS_QUERY && h->accessMode != VELMIO_ACCESS_UPDATE;
    try {
        if (s && creating && h->recordCount > 0) {
            keep(writeSummary(*h, *s));
            if (!first) keep(writeLineSegmentFile(*h, f.segments));
            if (!first) {
                const int rc = h->timeIndex.write(h->timeIndexPath.c_str(), h->typeId, h->formatVersion);
                if (rc) keep(f.timeIndexWriteCode ? f.timeIndexWriteCode : rc);
            }
        } else if (s && saveDirtyStatus && h->accessMode == VELMIO_ACCESS_UPDATE && s->statusDirty) {
            keep(writeSummary(*h, *s));
            if (!first) keep(writeLineSegmentFile(*h, f.segments));
        }
    } catch (const std::bad_alloc &) {
        keep(kNoMemory);
    }
    if (h->dataFile) {
        // A created line is on the disk once Close returns.
        const bool pushed = creating && h->recordCount > 0 ? platform::syncFile(h->dataFile) == 0
                                                           : std::fflush(h->dataFile) == 0;
        if (!pushed) keep(f.code(kSeekFailed));
        if (std::fclose(h->dataFile) != 0) keep(f.code(kCloseFailed));
        h->dataFile = nullptr;
    }
    if (creating && h->recordCount == 0) platform::removeFile(h->dataPath.c_str());
    if (SensorFree(h) != 0) keep(f.code(kNotFreed));
    return first;
}

std::uint32_t statusAndOffset(const TOVO_Sensor &h, const ProfileState &s, double time, std::uint32_t status) {
    const int offset = TOVO_EncodeDepthTime(time, s.profileTime, h.depthTimeScale);
    return (asWord(offset) & 0xFFFFu) | status;
}

double beamTime(const TOVO_Sensor &h, double profileTime, std::uint32_t word1) {
    const auto offset = static_cast<std::int16_t>(word1 & 0xFFFFu);
    return TOVO_DecodeDepthTime(profileTime, h.depthTimeScale, offset);
}

int beginProfile(TOVO_Sensor &h, ProfileState &s, std::uint32_t beams, std::uint32_t firstBeam, double time,
                 std::uint32_t status, const std::uint32_t *extra, unsigned extraCount, bool widenTime) {
    const ProfileFamily &f = s.family;
    if (h.firstRecordPending) {
        h.referenceTime = TOVO_EncodeRefTime(time);
        h.firstRecordPending = 0;
    }
    // Counted before anything can fail, as readers of a partial file expect.
    h.recordCount += 1;
    h.familyWords[0] += beams;
    s.profileTime = time;
    s.profileOpen = true;
    s.beamsDeclared = beams;
    s.beamsWritten = 0;
    s.repositionNeeded = 1;
    const int encodedTime = TOVO_EncodeTime(time, h.referenceTime, h.timeScale);
    if (TmIdxEntry(&h, encodedTime) != 0) return f.code(kTimeIndexEntryFailed);
    // The references the first profile fixed go to the disk before its
    // header: a writer killed later leaves profiles that can be salvaged.
    if (!s.summaryOnDisk) {
        if (const int rc = writeSummary(h, s)) return rc;
        if (platform::flushFile(h.dataFile) != 0) return f.code(kWriteFailed);
        s.summaryOnDisk = true;
    }
    std::uint32_t words[kMaxRecordWords] = {status, (beams << 16) | firstBeam, asWord(encodedTime)};
    const unsigned count = f.headerBytes / 4;
    for (unsigned i = 0; i < extraCount && 3 + i < count; ++i) words[3 + i] = extra[i];
    if (!encodeWords(h.encodeStream, s.buffer, words, count)) return f.code(kNotEncoded);
    if (std::fwrite(s.buffer, 1, f.headerBytes, h.dataFile) != f.headerBytes) return f.code(kWriteFailed);
    if (widenTime) {
        h.extents[0].widen(time);
        if (s.currentSegment) s.currentSegment->extents[0].widen(time);
    }
    return 0;
}

int writeBeam(TOVO_Sensor &h, ProfileState &s, const std::uint32_t *words, double time) {
    const ProfileFamily &f = s.family;
    // Readers find beams by the header's count: more beams than declared
    // would be read as the next profile's header.
    if (!s.profileOpen || s.beamsWritten >= s.beamsDeclared) return f.code(kOutOfRange);
    if (!encodeWords(h.encodeStream, s.buffer, words, f.beamBytes / 4)) return f.code(kNotEncoded);
    ++s.beamsWritten;
    s.repositionNeeded = 1;
    if (std::fwrite(s.buffer, 1, f.beamBytes, h.dataFile) != f.beamBytes) return f.code(kWriteFailed);
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

int readRecord(TOVO_Sensor &h, ProfileState &s, unsigned bytes, std::uint32_t *words, int decodeReason) {
    const unsigned char *p = s.source ? s.window.at(*s.source, s.position, bytes, s.readAhead) : nullptr;
    if (!p) return s.family.code(kReadFailed);
    std::memcpy(s.buffer, p, bytes);
    s.position += bytes;
    s.readAhead = kWindowBytes;
    if (!decodeWords(h.decodeStream, s.buffer, words, bytes / 4)) return s.family.code(decodeReason);
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

int loadHeader(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, int decodeReason) {
    const ProfileFamily &f = s.family;
    s.header.number = 0;
    s.repositionNeeded = 1;
    std::uint32_t offset = 0;
    if (h.timeIndex.map(profile, offset) != 0) return f.code(kNotMapped);
    if (const int rc = seekData(h, s, offset, kSeekFailed)) return rc;
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readRecord(h, s, s.geometry.headerBytes, words, decodeReason)) return rc;
    ProfileHeader header;
    parseHeader(h, s, words, header);
    // A header claiming more beams than lie before the next profile (or the
    // end of the file) would send reads and edits into foreign records.
    const std::uint64_t end =
        std::uint64_t{offset} + s.geometry.headerBytes + std::uint64_t{header.beamCount} * s.geometry.beamBytes;
    if (end > profileLimit(h, s, profile)) return f.code(decodeReason);
    header.number = profile;
    header.offset = offset;
    s.header = header;
    return 0;
}

int readBeam(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t beam, std::uint32_t *words,
             int beamRangeReason) {
    const ProfileFamily &f = s.family;
    const bool follows = !s.repositionNeeded && profile == s.lastProfile && s.header.number == profile &&
                         beam == s.lastBeam + 1;
    if (follows) {
        if (!s.header.holds(beam)) return f.code(beamRangeReason);
    } else {
        s.repositionNeeded = 1;
        bool justRead = false;
        if (s.header.number != profile) {
            if (const int rc = loadHeader(h, s, profile, kNotDecoded)) return rc;
            justRead = true;
        }
        if (!s.header.holds(beam)) return f.code(beamRangeReason);
        // Right behind a header just read, its first beam needs no seek.
        if (!justRead || beam != s.header.firstBeam) {
            const std::uint64_t target = std::uint64_t{s.header.offset} + s.geometry.headerBytes +
                                         std::uint64_t{beam - s.header.firstBeam} * s.geometry.beamBytes;
            if (const int rc = seekData(h, s, target, kSeekFailed)) return rc;
        }
    }
    if (const int rc = readRecord(h, s, s.geometry.beamBytes, words, kNotDecoded)) return rc;
    s.profileTime = s.header.time;
    s.lastProfile = profile;
    s.lastBeam = beam;
    s.repositionNeeded = 0;
    return 0;
}

int loadBeamForEdit(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t beam,
                    std::uint32_t *words, std::uint32_t &offset) {
    const ProfileFamily &f = s.family;
    s.repositionNeeded = 1;
    if (s.header.number != profile)
        if (const int rc = loadHeader(h, s, profile, kEditNotCoded)) return rc;
    if (!s.header.holds(beam)) return f.code(kOutOfRange);
    const std::uint64_t target = std::uint64_t{s.header.offset} + s.geometry.headerBytes +
                                 std::uint64_t{beam - s.header.firstBeam} * s.geometry.beamBytes;
    if (target > std::numeric_limits<std::uint32_t>::max()) return f.code(kSeekFailed);
    offset = static_cast<std::uint32_t>(target);
    if (const int rc = seekData(h, s, offset, kSeekFailed)) return rc;
    return readRecord(h, s, s.geometry.beamBytes, words, kEditNotCoded);
}

int storeBeam(TOVO_Sensor &h, ProfileState &s, std::uint32_t offset, const std::uint32_t *words) {
    const ProfileFamily &f = s.family;
    s.repositionNeeded = 1;
    s.window.invalidate();  // reads after the edit must see it
    if (!encodeWords(h.encodeStream, s.buffer, words, s.geometry.beamBytes / 4)) return f.code(kEditNotCoded);
    ++s.seekCount;
    if (std::fseek(h.dataFile, static_cast<long>(offset), SEEK_SET) != 0) return f.code(kSeekFailed);
    if (std::fwrite(s.buffer, 1, s.geometry.beamBytes, h.dataFile) != s.geometry.beamBytes)
        return f.code(kWriteFailed);
    // On disk at once, and the stream ready for the reads that follow.
    if (std::fflush(h.dataFile) != 0) return f.code(kWriteFailed);
    return 0;
}

int readHeaderSeq(TOVO_Sensor &h, ProfileState &s, ProfileHeader &out) {
    s.repositionNeeded = 1;
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readRecord(h, s, s.geometry.headerBytes, words, kNotDecoded)) return rc;
    parseHeader(h, s, words, out);
    s.profileTime = out.time;
    return 0;
}

int readBeamSeq(TOVO_Sensor &h, ProfileState &s, std::uint32_t *words) {
    s.repositionNeeded = 1;
    return readRecord(h, s, s.geometry.beamBytes, words, kNotDecoded);
}

int profileBgnSeqWriteSummary(TOVO_Sensor *h, const ProfileFamily &f) {
    ProfileState *s = nullptr;
    return enterProfile(h, f, kCreateMode, s);
}

int profileBgnSeqWriteLineSegment(TOVO_Sensor *h, const ProfileFamily &f, const wchar_t *name) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kCreateMode, s)) return rc;
    return beginProfileSegment(*h, *s, name);
}

int profileEndSeqWriteProfile(TOVO_Sensor *h, const ProfileFamily &f) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kCreateMode, s)) return rc;
    return endProfile(*h, *s);
}

int profileEndSeqWriteLineSegment(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t status) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kCreateMode, s)) return rc;
    return endProfileSegment(*h, *s, status);
}

int profileEndSeqWriteSummary(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t status) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kCreateMode, s)) return rc;
    h->summaryStatus = status;
    return 0;
}

int profileSetSummaryStatus(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t status) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kAnyMode, s)) return rc;
    h->summaryStatus = status;
    s->statusDirty = true;
    return 0;
}

int profileSetLineSegmentStatus(TOVO_Sensor *h, const ProfileFamily &f, int segmentNumber, std::uint32_t status) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kUpdateMode, s)) return rc;
    return setSegmentStatus(*h, *s, segmentNumber, status);
}

int profileSetToolTypes(TOVO_Sensor *h, const ProfileFamily &f, unsigned modes, std::uint32_t first,
                        const std::uint32_t *second) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, modes, s)) return rc;
    h->familyWords[1] = first;
    if (second) h->familyWords[2] = *second;
    // Only a setter outside writing marks the summary for saving.
    if (modes != kCreateMode) s->statusDirty = true;
    return 0;
}

}  // namespace velmio
