#include "sensors/profile_records.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include <cstdio>
#include <limits>

namespace velmio {

void putUnits(const std::uint32_t *words, unsigned count, unsigned char *bytes) {
    for (unsigned k = 0; k < count; ++k)
        for (unsigned b = 0; b < 4; ++b) bytes[4 * k + b] = static_cast<unsigned char>(words[k] >> (24 - 8 * b));
}

void getUnits(const unsigned char *bytes, unsigned count, std::uint32_t *words) {
    for (unsigned k = 0; k < count; ++k)
        words[k] = std::uint32_t{bytes[4 * k]} << 24 | std::uint32_t{bytes[4 * k + 1]} << 16 |
                   std::uint32_t{bytes[4 * k + 2]} << 8 | bytes[4 * k + 3];
}

int readUnits(TOVO_Sensor &, ProfileState &s, unsigned bytes, std::uint32_t *words) {
    const unsigned char *p = s.source ? s.window.at(*s.source, s.position, bytes, s.readAhead) : nullptr;
    if (!p) return s.family.code(kReadFailed);
    getUnits(p, bytes / 4, words);
    s.position += bytes;
    s.readAhead = kWindowBytes;
    return 0;
}

void skipBytes(ProfileState &s, unsigned bytes) { s.position += bytes; }

int seekProfile(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t &offset) {
    if (h.timeIndex.map(profile, offset) != 0) return s.family.code(kNotMapped);
    return seekData(h, s, offset, kSeekFailed);
}

bool payloadFits(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint64_t offset,
                 std::uint32_t count) {
    const std::uint64_t end = offset + s.geometry.headerBytes + std::uint64_t{count} * s.geometry.itemBytes;
    return end <= profileLimit(h, s, profile);
}

bool payloadFitsFile(const ProfileState &s, std::uint64_t offset, std::uint32_t count) {
    const std::uint64_t end = offset + s.geometry.headerBytes + std::uint64_t{count} * s.geometry.itemBytes;
    return s.fileSize >= 0 && end <= static_cast<std::uint64_t>(s.fileSize);
}

int seekItem(TOVO_Sensor &h, ProfileState &s, std::uint32_t k) {
    const std::uint64_t target =
        std::uint64_t{s.header.offset} + s.geometry.headerBytes + std::uint64_t{k} * s.geometry.itemBytes;
    return target == s.position ? 0 : seekData(h, s, target, kSeekFailed);
}

bool fixReference(TOVO_Sensor &h, ProfileState &s, double time) {
    if (!s.firstRecordPending) return false;
    h.referenceTime = TOVO_EncodeRefTime(time);
    s.firstRecordPending = false;
    return true;
}

int appendHeader(TOVO_Sensor &h, ProfileState &s, std::uint32_t items, double time, const std::uint32_t *words,
                 bool first) {
    const EngineFamily &f = s.family;
    // Counted before anything can fail, as readers of a partial file expect.
    h.recordCount += 1;
    s.itemCount += items;
    ++s.written;
    s.profileTime = time;
    s.profileOpen = true;
    s.beamsDeclared = items;
    s.beamsWritten = 0;
    if (const int rc = appendIndexEntry(h, s, TOVO_EncodeTime(time, h.referenceTime, h.timeScale))) return rc;
    unsigned char bytes[4 * kMaxProfileRecordWords];
    putUnits(words, f.geometry.headerBytes / 4, bytes);
    if (!s.appender.append(bytes, f.geometry.headerBytes)) return f.code(kWriteFailed);
    h.extents[0].widen(time);
    if (s.currentSegment) s.currentSegment->extents[0].widen(time);
    return first ? referencesFixed(h, s) : 0;
}

int appendItem(TOVO_Sensor &, ProfileState &s, const std::uint32_t *words) {
    const EngineFamily &f = s.family;
    // Readers find items by the header's count: one more would be read as
    // the next profile's header.
    if (!s.profileOpen || s.beamsWritten >= s.beamsDeclared) return f.code(kOutOfRange);
    unsigned char bytes[4 * kMaxProfileRecordWords];
    putUnits(words, f.geometry.itemBytes / 4, bytes);
    ++s.beamsWritten;
    if (!s.appender.append(bytes, f.geometry.itemBytes)) return f.code(kWriteFailed);
    return 0;
}

int storeUnits(TOVO_Sensor &, ProfileState &s, std::uint64_t offset, const std::uint32_t *words, unsigned count) {
    s.window.invalidate();  // reads after the edit must see it
    s.repositionNeeded = 1;
    ++s.seekCount;
    unsigned char bytes[4 * kMaxProfileRecordWords];
    putUnits(words, count, bytes);
    if (!s.source || !s.source->writeAt(offset, bytes, 4 * count)) return s.family.code(kWriteFailed);
    return 0;
}

}  // namespace velmio
