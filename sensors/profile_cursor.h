// The profile layout of the record engine (observed depths, slant range,
// total propagated error): each ping a profile header followed by as many
// beam records as the header counts, one time index entry per header. It
// positions on a beam, caches the header of the profile in hand and writes
// profiles and beams; each family describes itself (type, code block,
// record sizes, summary words) in a ProfileFamily table and keeps its own
// codes.
#ifndef VELMIO_SENSORS_PROFILE_CURSOR_H
#define VELMIO_SENSORS_PROFILE_CURSOR_H

#include <velmio/encoding.h>

#include "encoding/rounding.h"
#include "sensors/column_decode.h"
#include "sensors/record_engine.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <type_traits>
#include <vector>

namespace velmio {

inline std::int32_t asSigned(std::uint32_t w) { return static_cast<std::int32_t>(w); }
inline std::uint32_t asWord(std::int32_t v) { return static_cast<std::uint32_t>(v); }

// Access modes an operation accepts.
enum ModeMask : unsigned {
    kCreateMode = 1u << 1,
    kQueryMode = 1u << 2,
    kUpdateMode = 1u << 3,
    kReadModes = kQueryMode | kUpdateMode,
    kAnyMode = kCreateMode | kQueryMode | kUpdateMode,
};
bool modeAllowed(const TOVO_Sensor &h, unsigned modes);

class ProfileState;

struct ProfileFamily : EngineFamily {
    std::uint32_t typeId;
    int beamRangeReason;    // kOutOfRange, or TPE's own 28
    bool stateCheckedFirst; // observed depths: family state before type
    // Salvage rebuilds the bounds from the records: whether a header's time
    // bounds the time extent, and what one beam's words widen (its time
    // among them; s.profileTime is its profile's).
    bool headerTimeBound = true;
    void (*widenByBeam)(const ProfileState &s, const std::uint32_t *words, Extent *extents) = nullptr;
    // The items a header declares and its encoded time, for headers not laid
    // out {status, layout, time, ...}; null for that layout.
    void (*headerItemsAndTime)(const std::uint32_t *words, std::uint32_t &items, std::int32_t &encodedTime) = nullptr;
};

struct ProfileHeader {
    std::uint32_t number = 0;  // 0: nothing cached
    std::uint32_t offset = 0;  // of the header in the data file
    std::uint32_t beamCount = 0;
    std::uint32_t firstBeam = 0;
    // Status and units as read; zero in a header taken from KnownHeaders.
    std::uint32_t status = 0;
    std::uint32_t words[5] = {};
    double time = 0.0;

    bool holds(std::uint32_t beam) const { return beam >= firstBeam && beam - firstBeam < beamCount; }
};

// Headers already read and checked, by profile number: a direct-mapped
// table made on first use, so that a random beam of a profile met before
// costs one read of the beam's own bytes. A slot keeps only what locating a
// beam takes (16 bytes): the table of a long line then stays in the cache
// more often. Header reads still go to the file.
class KnownHeaders {
public:
    // The place, beams and time of a profile met before, into out.
    bool find(const TOVO_Sensor &h, std::uint32_t profile, ProfileHeader &out) const {
        if (!slots_) return false;
        // A bit per slot, small enough to stay in the cache: a profile not
        // met yet costs no miss on its slot.
        const std::uint32_t at = profile & mask_;
        if (!(filled_[at / 64] >> (at % 64) & 1u)) return false;
        const Slot &slot = slots_[at];
        if (slot.number != profile) return false;
        out = ProfileHeader();
        out.number = profile;
        out.offset = slot.offset;
        out.beamCount = slot.beams >> 16;
        out.firstBeam = slot.beams & 0xFFFFu;
        out.time = TOVO_DecodeTime(h.referenceTime, h.timeScale, slot.encodedTime);
        return true;
    }
    // profiles (the line's count) sizes the table on first use. A header
    // whose counts do not fit 16 bits is not kept.
    void keep(const ProfileHeader &header, std::uint32_t profiles);

private:
    struct Slot {
        std::uint32_t number;
        std::uint32_t offset;
        std::uint32_t beams;  // count << 16 | first
        std::int32_t encodedTime;
    };
    struct Free {
        void operator()(void *p) const { std::free(p); }
    };
    std::unique_ptr<Slot[], Free> slots_;
    std::unique_ptr<std::uint64_t[], Free> filled_;
    std::uint32_t mask_ = 0;
};

class ProfileState : public EngineState {
public:
    explicit ProfileState(const ProfileFamily &f) : EngineState(f), profiles(f) {}

    const ProfileFamily &profiles;
    double profileTime = 0.0;   // ping time of the profile in hand
    int repositionNeeded = 1;   // the file is not known to be at the next beam
    ProfileHeader header;       // last header positioned on
    KnownHeaders knownHeaders;  // of random beam reads
    std::uint32_t lastProfile = 0;
    std::uint32_t lastBeam = 0;
    // Writing: the segment begun and not yet ended, and the open profile's
    // declared and written beams.
    _TOVO_LnSeg *currentSegment = nullptr;
    bool profileOpen = false;
    std::uint32_t beamsDeclared = 0;
    std::uint32_t beamsWritten = 0;
    // Set by status setters of a family without SaveStatusToDisk, so that
    // its close writes summary and segments of an update handle.
    bool statusDirty = false;
    unsigned long seekCount = 0;     // data file repositionings
    // Read modes: the data file is read by position through the window. A
    // reposition makes the next refill small, so that a random read costs
    // one small positioned read; reads that follow refill 64 KiB at a time.
    std::uint64_t position = 0;
    std::size_t readAhead = kWindowBytes;
    // Set while a bulk read walks its range: where the range's bytes end,
    // so that headers are read with the bytes behind them in large windows.
    std::uint64_t bulkEnd = 0;
};

// The family's state on a handle after the entry checks in the family's
// order (null handle, type, mode, missing state -1). 0 or the code.
int enterProfile(TOVO_Sensor *h, const ProfileFamily &f, unsigned modes, ProfileState *&s);

// True for a handle that writes a new file: create, or an unknown token.
inline bool isWriting(const TOVO_Sensor &h) { return isCreate(h); }

// The tables of the families, for salvaging their lines.
const ProfileFamily &observedDepthsProfiles();
const ProfileFamily &slantRangeProfiles();
const ProfileFamily &tpeProfiles();
const ProfileFamily &processedDepthsProfiles();
// The side scan kind a file of typeId holds (32787 is written as 19), or null.
const ProfileFamily *sideScanProfiles(std::uint32_t typeId);

// Opens through SensorOpenDir with openId and builds the handle: create mode
// writes the validation record and reserves the summary; read modes read
// and check summary, line segments and time index. Null with *error set on
// failure (nothing stays open). Any mode other than query and update
// (an unknown token) is written like a create.
TOVO_Sensor *openProfileSensor(const wchar_t *lineDirectory, std::uint32_t openId, const wchar_t *token,
                               int *error, const ProfileFamily &f, std::unique_ptr<ProfileState> state);

// Writes summary, line segments and time index of a create handle with
// profiles (and summary and segments of an update handle whose status
// changed when saveDirtyStatus), closes the data file (deleting it when
// nothing was written) and frees the handle. The first failure's code.
int closeProfileSensor(TOVO_Sensor *h, const ProfileFamily &f, bool saveDirtyStatus);

// SaveStatusToDisk of an update handle: writes summary and segments, and
// marks the statuses saved. 0 or the first failure's code.
int saveProfileStatus(TOVO_Sensor &h, ProfileState &s);

// Slant range and TPE check a read's profile number against the beam total,
// as files have always been read; the time index refuses what lies beyond
// the profiles.
inline bool withinBeamTotal(const ProfileState &s, std::uint32_t profile) {
    return profile >= 1 && profile <= s.itemCount;
}

// Writing. beginProfile adds the time index entry and writes the header
// {status, layout, encoded time, extra...}; writeBeam appends one beam of
// the open profile. Both keep the counts and the reposition flag.
int beginProfile(TOVO_Sensor &h, ProfileState &s, std::uint32_t beams, std::uint32_t firstBeam, double time,
                 std::uint32_t status, const std::uint32_t *extra, unsigned extraCount, bool widenTime);
int writeBeam(TOVO_Sensor &h, ProfileState &s, const std::uint32_t *words, double beamTime);
int endProfile(TOVO_Sensor &h, ProfileState &s);
// Word 1 of a beam: status bits over the 16-bit time offset from the ping
// (TOVO_EncodeDepthTime inline, operation for operation). The bulk writer
// keeps a copy out of the state: its char stores could alias the state and
// would make the compiler reload ping time and scale for every beam.
struct BeamClock {
    double profileTime;
    double scale;
    std::uint32_t word1(double beamTime, std::uint32_t status) const {
        return (asWord(nint((beamTime - profileTime) * scale)) & 0xFFFFu) | status;
    }
};
inline BeamClock beamClock(const ProfileState &s) { return {s.profileTime, static_cast<double>(s.depthTimeScale)}; }
inline std::uint32_t statusAndOffset(const ProfileState &s, double beamTime, std::uint32_t status) {
    return beamClock(s).word1(beamTime, status);
}

// The bulk form of the per-beam (per-item) writes for every profile
// family: enters like the family's other create-mode calls, then encodes
// beams 0 .. count - 1 straight into the append buffer a buffer's worth at
// a time. encode(clock, i, status, bytes) stores beam i, widens the
// family's own extents in locals and returns the beam's time, which widens
// the time extents; families whose beam times stay out of those (or that
// have none) return nothing. widen(s) widens the handle's by those locals
// after each batch (a char store could alias the handle: its extents stay
// out of the loop). A beam the batch cannot take (a failing flush, more
// beams than declared) goes through writeOne(i), the per-beam write, so
// that codes are the same. Null statuses pass status 0 to encode.
template <class Encode, class Widen, class WriteOne>
int appendBeams(TOVO_Sensor *h, const ProfileFamily &f, std::uint32_t count, bool inputsPresent,
                const unsigned int *statuses, Encode encode, Widen widen, WriteOne writeOne) {
    ProfileState *s = nullptr;
    if (const int rc = enterProfile(h, f, kCreateMode, s)) return rc;
    if (count == 0) return 0;
    if (!inputsPresent) return -1;
    const std::uint32_t size = f.geometry.itemBytes;
    const std::uint32_t fits = s->profileOpen ? std::min(count, s->beamsDeclared - s->beamsWritten) : 0;
    const BeamClock clock = beamClock(*s);
    constexpr bool kTimed =
        !std::is_void<decltype(encode(clock, std::uint32_t{}, std::uint32_t{}, (unsigned char *)nullptr))>::value;
    // One loop per kind of status source, so that the loop tests nothing
    // but its end.
    auto encodeBatch = [&](std::uint32_t first, std::uint32_t n, unsigned char *p, auto statusOf) {
        Extent times;
        for (std::uint32_t k = first; k < first + n; ++k, p += size) {
            if constexpr (kTimed)
                times.widen(encode(clock, k, statusOf(k), p));
            else
                encode(clock, k, statusOf(k), p);
        }
        return times;
    };
    std::uint32_t i = 0;
    while (i < fits) {
        const std::uint32_t batch = std::min<std::uint32_t>(static_cast<std::uint32_t>(kWindowBytes / size), fits - i);
        unsigned char *p = s->appender.room(std::size_t{batch} * size);
        if (!p) {
            if (const int rc = writeOne(i)) return rc;
            ++i;
            continue;
        }
        const Extent times =
            statuses ? encodeBatch(i, batch, p, [statuses](std::uint32_t k) { return std::uint32_t{statuses[k]}; })
                     : encodeBatch(i, batch, p, [](std::uint32_t) { return std::uint32_t{0}; });
        s->appender.commit(std::size_t{batch} * size);
        s->beamsWritten += batch;
        s->repositionNeeded = 1;
        if (kTimed) {
            h->extents[0].widen(times);
            if (s->currentSegment) s->currentSegment->extents[0].widen(times);
        }
        widen(*s);
        i += batch;
    }
    return i < count ? writeOne(i) : 0;
}
// The beam time that word 1 carries.
inline double beamTime(const ProfileState &s, double profileTime, std::uint32_t word1) {
    return decodeDepthTime(profileTime, s.depthTimeScale, static_cast<std::int16_t>(word1 & 0xFFFFu));
}

// Word 1 of a run of beams as beam times and status halves, beamTime's
// arithmetic a column at a time; a null array is skipped.
inline void fillBeamWord1(double *times, unsigned int *statuses, std::uint32_t run, const std::uint32_t *word1,
                          double profileTime, std::int32_t scale) {
    fillColumn(times, run, word1, [profileTime, scale](std::uint32_t u) {
        return decodeDepthTime(profileTime, scale, static_cast<std::int16_t>(u & 0xFFFFu));
    });
    fillColumn(statuses, run, word1, [](std::uint32_t u) { return u & 0xFFFF0000u; });
}

int beginProfileSegment(TOVO_Sensor &h, ProfileState &s, const wchar_t *name);
int endProfileSegment(TOVO_Sensor &h, ProfileState &s, std::uint32_t status);
int setSegmentStatus(TOVO_Sensor &h, ProfileState &s, int segmentNumber, std::uint32_t status);
// Segment n's name (a malloc'ed copy), range and extents.
int describeSegment(TOVO_Sensor &h, ProfileState &s, int segmentNumber, wchar_t **name, std::uint32_t *begin,
                    std::uint32_t *end, Extent *extents, int extentCount, std::uint32_t *status);
// The segment whose profile range holds profile, or null.
_TOVO_LnSeg *segmentOfProfile(TOVO_Sensor &h, std::uint32_t profile);

// Reading. Positions are checked against the time index and the file: a
// header whose beams would run into the next profile or past the end of the
// file is refused with decodeReason.
int seekData(TOVO_Sensor &h, ProfileState &s, std::uint64_t offset, int seekReason);
int readRecord(TOVO_Sensor &h, ProfileState &s, unsigned bytes, std::uint32_t *words);
int parseHeader(TOVO_Sensor &h, ProfileState &s, const std::uint32_t *words, ProfileHeader &out);
// Where the beams of the profile whose header is at offset must end.
std::uint64_t profileLimit(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile);
// Maps, seeks to and reads header number profile into s.header, leaving
// the file behind it; ahead bytes come with it when more than a random
// read takes.
int loadHeader(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, int decodeReason, std::size_t ahead = 0);
// Reads one beam: no seek when it follows the last beam read in the same
// profile and nothing moved the file since.
int readBeam(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t beam, std::uint32_t *words,
             int beamRangeReason);
// Reads a beam for an edit (header from the cache when it is the profile in
// hand) and reports its byte offset.
int loadBeamForEdit(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t beam,
                    std::uint32_t *words, std::uint32_t &offset);
// Writes the beam back in place and flushes.
int storeBeam(TOVO_Sensor &h, ProfileState &s, std::uint32_t offset, const std::uint32_t *words);
// Sequential reads at the current file position.
int readHeaderSeq(TOVO_Sensor &h, ProfileState &s, ProfileHeader &out);
int readBeamSeq(TOVO_Sensor &h, ProfileState &s, std::uint32_t *words);

}  // namespace velmio

#endif
