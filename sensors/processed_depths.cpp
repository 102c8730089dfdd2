// Processed depths: profiles of reduced soundings, each header and beam read
// in three sections, through the block reader when VelmIOCacheSize asks for
// it and from the data file otherwise, with the same values.
#include <velmio/block_reader.hpp>
#include <velmio/encoding.h>
#include <velmio/linestore.h>
#include <velmio/processed_depths.h>

#include "sensors/processed_depths_records.h"
#include "sensors/profile_bulk.h"
#include "sensors/profile_forwarders.h"
#include "sensors/profile_records.h"

#include <cstdio>
#include <new>

using namespace velmio;

namespace {

constexpr int kTime = 0;
constexpr int kDepth = 1;
constexpr unsigned kPingBytes = 4 * kPingWords, kHeadsBytes = 4 * kHeadsWords;
constexpr unsigned kUncertaintyBytes = 4 * kPingUncertaintyWords;
constexpr unsigned kSoundingBytes = 4 * kSoundingWords, kMeasurementBytes = 4 * kMeasurementWords;
constexpr unsigned kReductionBytes = 4 * kReductionWords;
static_assert(kProcessedHeaderBytes / 4 <= kMaxProfileRecordWords, "a header fits the record buffers");

ProcessedDepthsFrame frameOf(const TOVO_Sensor &h, const ProfileState &s) {
    return {h.timeScale, s.depthTimeScale, h.positionScale, h.referenceTime, h.referenceLatitude,
            h.referenceLongitude};
}

constexpr SummaryField kSummary[] = {
    {SummaryWord::Status},
    {SummaryWord::FamilyWord0},  // tool type
    {SummaryWord::RecordCount},
    {SummaryWord::ItemCount},    // beams
    {SummaryWord::TimeScale},
    {SummaryWord::DepthTimeScale},
    {SummaryWord::PositionScale},
    {SummaryWord::ReferenceTime},
    {SummaryWord::ReferenceLatitude},
    {SummaryWord::ReferenceLongitude},
    {SummaryWord::ExtentMin, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMax, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMin, kDepth, ExtentKind::Metres},
    {SummaryWord::ExtentMax, kDepth, ExtentKind::Metres},
    {SummaryWord::Zero},
    {SummaryWord::Zero},
};
constexpr int kSummaryWords = sizeof kSummary / sizeof kSummary[0];
static_assert(kSummaryWords == kProcessedSummaryWords && kSummaryWords <= kMaxSummaryWords, "the documented summary");

// Beam times stay out of the time bounds, as the writer leaves them out.
void widenByBeam(const ProfileState &, const std::uint32_t *w, Extent *extents) {
    extents[kDepth].widen(TOVO_DecodeMeters(asSigned(w[1])));
}

const ProfileFamily kProcessedDepths = {
    {
        5000300,
        1,                  // format version written
        {kProcessedHeaderBytes, kProcessedBeamBytes, false},
        {0, 0, false},
        kSummaryWords,
        kSummary,
        nullptr,
        {2, {ExtentKind::Time, ExtentKind::Metres}, 5000301, nullptr, 5000303, 5000302, 5000326, nullptr, nullptr,
         nullptr, nullptr},
        5000306,
        nullptr,
        kSummaryInvalid,
        nullptr,
        5000314,            // time index not written
        0,
    },
    0,
    kOutOfRange,
    false,
    true,
    widenByBeam,
    nullptr,
};

int code(int reason) { return kProcessedDepths.code(reason); }

}  // namespace

const ProfileFamily &velmio::processedDepthsProfiles() { return kProcessedDepths; }

namespace {

class ProcessedState : public ProfileState {
public:
    ProcessedState() : ProfileState(kProcessedDepths) {}
    ~ProcessedState() override { destroy(reader); }
    ProcessedState(const ProcessedState &) = delete;
    ProcessedState &operator=(const ProcessedState &) = delete;

    VELMBlockReader *reader = nullptr;  // null or off: the direct path
    ProcessedDepthsPing ping{};         // of the profile whose beams are read
};

int enter(TOVO_Sensor *h, unsigned modes, ProcessedState *&p) {
    ProfileState *s = nullptr;
    const int rc = enterProfile(h, kProcessedDepths, modes, s);
    p = static_cast<ProcessedState *>(s);
    return rc;
}

// The sections of the record in hand: from the block reader's current
// record, or from the data file at the read position.
struct Sections {
    TOVO_Sensor &h;
    ProcessedState &s;
    bool block;

    int read(unsigned bytes, std::uint32_t *words) {
        if (!block) return readUnits(h, s, bytes, words);
        unsigned char buffer[4 * kMaxProfileRecordWords];
        if (!BlockIOFread(s.reader, buffer, bytes)) return code(kReadFailed);
        getUnits(buffer, bytes / 4, words);
        return 0;
    }
    // A section nobody asked for. The block reader cannot stand on the byte
    // after its record, so there the section is copied and dropped.
    int skip(unsigned bytes) {
        if (!block) {
            skipBytes(s, bytes);
            return 0;
        }
        std::uint32_t words[kMaxProfileRecordWords];
        return read(bytes, words);
    }
    // True when count beams behind the header at offset stay within the
    // profile's bytes (profile 0: read in sequence, within the file).
    bool beamsFit(std::uint32_t profile, std::uint64_t offset, std::uint32_t count) {
        if (!block) return profile ? payloadFits(h, s, profile, offset, count) : payloadFitsFile(s, offset, count);
        const long end = static_cast<long>(kProcessedHeaderBytes + std::uint64_t{count} * kProcessedBeamBytes);
        const bool fits = setByteOffset(s.reader, end - 1, 0) != 0;
        setByteOffset(s.reader, kPingBytes, 0);
        return fits;
    }
};

// Reads a header's three sections (the ping in any case) and makes it the
// profile in hand; profile 0 for one read in sequence.
int readHeader(Sections &in, std::uint32_t profile, std::uint64_t offset, ProcessedDepthsPing *ping,
               ProcessedDepthsHeads *heads, ProcessedDepthsPingUncertainty *uncertainty) {
    ProcessedState &s = in.s;
    s.header.number = 0;
    const ProcessedDepthsFrame frame = frameOf(in.h, in.s);
    std::uint32_t w[kMaxProfileRecordWords];
    ProcessedDepthsPing p;
    if (const int rc = in.read(kPingBytes, w)) return rc;
    if (!decodePing(w, frame, p) || !in.beamsFit(profile, offset, p.beamCount)) return code(kNotDecoded);
    if (heads) {
        if (const int rc = in.read(kHeadsBytes, w)) return rc;
        if (!decodeHeads(w, *heads)) return code(kNotDecoded);
    } else if (const int rc = in.skip(kHeadsBytes)) {
        return rc;
    }
    if (uncertainty) {
        if (const int rc = in.read(kUncertaintyBytes, w)) return rc;
        decodePingUncertainty(w, *uncertainty);
    } else if (const int rc = in.skip(kUncertaintyBytes)) {
        return rc;
    }
    s.ping = p;
    s.profileTime = p.time;
    if (profile && offset <= UINT32_MAX) {
        s.header.number = profile;
        s.header.offset = static_cast<std::uint32_t>(offset);
        s.header.beamCount = p.beamCount;
        s.header.firstBeam = p.firstBeam;
        s.header.status = p.status;
        s.header.time = p.time;
    }
    if (ping) *ping = p;
    return 0;
}

int readBeamSections(Sections &in, ProcessedDepthsSounding *sounding, ProcessedDepthsMeasurement *measurement,
                     ProcessedDepthsReductions *reductions) {
    std::uint32_t w[kMaxProfileRecordWords];
    if (sounding) {
        if (const int rc = in.read(kSoundingBytes, w)) return rc;
        decodeSounding(w, in.s.ping, frameOf(in.h, in.s), *sounding);
    } else if (const int rc = in.skip(kSoundingBytes)) {
        return rc;
    }
    if (measurement) {
        if (const int rc = in.read(kMeasurementBytes, w)) return rc;
        decodeMeasurement(w, *measurement);
    } else if (const int rc = in.skip(kMeasurementBytes)) {
        return rc;
    }
    if (reductions) {
        if (const int rc = in.read(kReductionBytes, w)) return rc;
        decodeReductions(w, *reductions);
    } else if (const int rc = in.skip(kReductionBytes)) {
        return rc;
    }
    return 0;
}

// Profile n's header from the block when the cache holds it, else from the
// file at its time index offset.
int loadProfile(TOVO_Sensor &h, ProcessedState &s, Sections &in, std::uint32_t profile, ProcessedDepthsPing *ping,
                ProcessedDepthsHeads *heads, ProcessedDepthsPingUncertainty *uncertainty) {
    if (profile < 1 || profile > h.recordCount) return code(kOutOfRange);
    in.block = readRecord(s.reader, profile) == 0;
    std::uint32_t offset = 0;
    if (!in.block)
        if (const int rc = seekProfile(h, s, profile, offset)) return rc;
    return readHeader(in, profile, offset, ping, heads, uncertainty);
}

int positionOnBeam(Sections &in, std::uint32_t beam) {
    const ProfileHeader &header = in.s.header;
    if (!header.holds(beam)) return code(kOutOfRange);
    const std::uint64_t k = beam - header.firstBeam;
    if (!in.block) return seekItem(in.h, in.s, static_cast<std::uint32_t>(k));
    return setByteOffset(in.s.reader, static_cast<long>(kProcessedHeaderBytes + k * kProcessedBeamBytes), 0)
               ? 0
               : code(kReadFailed);
}

}  // namespace

extern "C" {

VELMIO_API TOVO_Sensor *ProcessedDepthsOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                               int *errorCode) {
    return openCachedProfile<ProcessedState>(lineDirectory, 0, accessToken, errorCode, kProcessedDepths);
}

VELMIO_API int ProcessedDepthsReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, ProcessedDepthsPing *ping,
                                          ProcessedDepthsHeads *heads, ProcessedDepthsPingUncertainty *uncertainty) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    Sections in{*handle, *s, false};
    return loadProfile(*handle, *s, in, profileNumber, ping, heads, uncertainty);
}

VELMIO_API int ProcessedDepthsRead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                   ProcessedDepthsSounding *sounding, ProcessedDepthsMeasurement *measurement,
                                   ProcessedDepthsReductions *reductions) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    Sections in{*handle, *s, false};
    // The block path reads the ping of every beam; the direct path reads it
    // once per profile.
    if (getCacheSize(s->reader) != 0 || s->header.number != profileNumber)
        if (const int rc = loadProfile(*handle, *s, in, profileNumber, nullptr, nullptr, nullptr)) return rc;
    if (const int rc = positionOnBeam(in, beamNumber)) return rc;
    return readBeamSections(in, sounding, measurement, reductions);
}

VELMIO_API int ProcessedDepthsReadProfileSeq(TOVO_Sensor *handle, ProcessedDepthsPing *ping,
                                             ProcessedDepthsHeads *heads,
                                             ProcessedDepthsPingUncertainty *uncertainty) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kQueryMode, s)) return rc;
    Sections in{*handle, *s, getCacheSize(s->reader) != 0};
    // Past the last profile the block reader has nothing: the file position
    // is its own, so there is no direct read to fall back on.
    if (in.block && readRecordSeq(s->reader) != 0) return code(kReadFailed);
    return readHeader(in, 0, s->position, ping, heads, uncertainty);
}

VELMIO_API int ProcessedDepthsReadSeq(TOVO_Sensor *handle, ProcessedDepthsSounding *sounding,
                                      ProcessedDepthsMeasurement *measurement, ProcessedDepthsReductions *reductions) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kQueryMode, s)) return rc;
    Sections in{*handle, *s, getCacheSize(s->reader) != 0};
    return readBeamSections(in, sounding, measurement, reductions);
}

}  // extern "C"

namespace {

// One header; heads and uncertainty are read only where the caller has arrays for them.
struct PingHeader {
    ProcessedDepthsPing ping{};
    ProcessedDepthsHeads heads{};
    ProcessedDepthsPingUncertainty uncertainty{};
};

// The caller's header arrays, any of them null.
struct PingArrays {
    ProcessedDepthsPing *pings;
    ProcessedDepthsHeads *heads;
    ProcessedDepthsPingUncertainty *uncertainties;

    int read(TOVO_Sensor *h, std::uint32_t p, PingHeader &a) const {
        return ProcessedDepthsReadProfile(h, p, &a.ping, heads ? &a.heads : nullptr,
                                          uncertainties ? &a.uncertainty : nullptr);
    }
    void store(const PingHeader &a, std::uint32_t i) const {
        if (pings) pings[i] = a.ping;
        if (heads) heads[i] = a.heads;
        if (uncertainties) uncertainties[i] = a.uncertainty;
    }
};

// ProcessedDepthsReadBeams, and ProcessedDepthsReadRange when headers has arrays.
int readRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count, const PingArrays &headers,
              unsigned int beamCapacity, unsigned int *beamOffsets, ProcessedDepthsSounding *soundings,
              ProcessedDepthsMeasurement *measurements, ProcessedDepthsReductions *reductions) {
    PingHeader last;
    auto beamsOf = [&](std::uint32_t p, std::uint32_t &beams, std::uint32_t &first) {
        const int rc = headers.read(handle, p, last);
        beams = last.ping.beamCount;
        first = last.ping.firstBeam;
        return rc;
    };
    auto readOne = [&](std::uint32_t p, std::uint32_t b, std::uint32_t k) {
        return ProcessedDepthsRead(handle, p, b, soundings ? soundings + k : nullptr,
                                   measurements ? measurements + k : nullptr, reductions ? reductions + k : nullptr);
    };
    return readBeams(handle, kProcessedDepths, firstProfile, count, beamCapacity, beamOffsets, beamsOf, readOne,
                     [&](std::uint32_t i) { headers.store(last, i); });
}

}  // namespace

extern "C" {

VELMIO_API int ProcessedDepthsReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                           ProcessedDepthsPing *pings, ProcessedDepthsHeads *heads,
                                           ProcessedDepthsPingUncertainty *uncertainties) {
    const PingArrays headers{pings, heads, uncertainties};
    return readProfiles(handle, kProcessedDepths, firstProfile, count, [&](std::uint32_t p, std::uint32_t i) {
        PingHeader a;
        if (const int rc = headers.read(handle, p, a)) return rc;
        headers.store(a, i);
        return 0;
    });
}

VELMIO_API int ProcessedDepthsReadBeams(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                        unsigned int beamCapacity, unsigned int *beamOffsets,
                                        ProcessedDepthsSounding *soundings, ProcessedDepthsMeasurement *measurements,
                                        ProcessedDepthsReductions *reductions) {
    return readRange(handle, firstProfile, count, {}, beamCapacity, beamOffsets, soundings, measurements,
                     reductions);
}

VELMIO_API int ProcessedDepthsReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                        ProcessedDepthsPing *pings, ProcessedDepthsHeads *heads,
                                        ProcessedDepthsPingUncertainty *uncertainties, unsigned int beamCapacity,
                                        unsigned int *beamOffsets, ProcessedDepthsSounding *soundings,
                                        ProcessedDepthsMeasurement *measurements,
                                        ProcessedDepthsReductions *reductions) {
    return readRange(handle, firstProfile, count, {pings, heads, uncertainties}, beamCapacity, beamOffsets,
                     soundings, measurements, reductions);
}

VELMIO_API int ProcessedDepthsBgnSeqWriteProfile(TOVO_Sensor *handle, const ProcessedDepthsPing *ping,
                                                 const ProcessedDepthsHeads *heads,
                                                 const ProcessedDepthsPingUncertainty *uncertainty) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    if (!ping) return -1;
    // The layout word has 16 bits for each number.
    if (ping->beamCount > 0xFFFFu || ping->firstBeam == 0 || ping->firstBeam > 0xFFFFu) return code(kNotEncoded);
    if (heads && heads->count > 2) return code(kNotEncoded);
    if (s->firstRecordPending) {
        handle->referenceLatitude = TOVO_EncodeRefPosition(ping->latitude);
        handle->referenceLongitude = TOVO_EncodeRefPosition(ping->longitude);
    }
    const bool first = fixReference(*handle, *s, ping->time);
    const ProcessedDepthsFrame frame = frameOf(*handle, *s);
    std::uint32_t w[kMaxProfileRecordWords];
    encodePing(*ping, frame, w);
    encodeHeads(heads ? *heads : ProcessedDepthsHeads{}, w + kPingWords);
    encodePingUncertainty(uncertainty ? *uncertainty : ProcessedDepthsPingUncertainty{}, w + kPingWords + kHeadsWords);
    // Beams are encoded against the ping as readers will decode it.
    decodePing(w, frame, s->ping);
    return appendHeader(*handle, *s, ping->beamCount, ping->time, w, first);
}

VELMIO_API int ProcessedDepthsSeqWrite(TOVO_Sensor *handle, const ProcessedDepthsSounding *sounding,
                                       const ProcessedDepthsMeasurement *measurement,
                                       const ProcessedDepthsReductions *reductions) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    if (!sounding) return -1;
    std::uint32_t w[kMaxProfileRecordWords];
    encodeSounding(*sounding, s->ping, frameOf(*handle, *s), w);
    encodeMeasurement(measurement ? *measurement : ProcessedDepthsMeasurement{}, w + kSoundingWords);
    encodeReductions(reductions ? *reductions : ProcessedDepthsReductions{}, w + kSoundingWords + kMeasurementWords);
    if (const int rc = appendItem(*handle, *s, w)) return rc;
    handle->extents[kDepth].widen(sounding->depth);
    if (s->currentSegment) s->currentSegment->extents[kDepth].widen(sounding->depth);
    return 0;
}

VELMIO_API int ProcessedDepthsSeqWriteBeams(TOVO_Sensor *handle, unsigned int count,
                                            const ProcessedDepthsSounding *soundings,
                                            const ProcessedDepthsMeasurement *measurements,
                                            const ProcessedDepthsReductions *reductions) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    // Copies: the buffer's char stores could alias the state.
    const ProcessedDepthsFrame frame = frameOf(*handle, *s);
    const ProcessedDepthsPing ping = s->ping;
    Extent depthRange;
    return appendBeams(
        handle, kProcessedDepths, count, soundings != nullptr, nullptr,
        [&](const BeamClock &, std::uint32_t i, std::uint32_t, unsigned char *bytes) {
            std::uint32_t w[kProcessedBeamBytes / 4];
            encodeSounding(soundings[i], ping, frame, w);
            encodeMeasurement(measurements ? measurements[i] : ProcessedDepthsMeasurement{}, w + kSoundingWords);
            encodeReductions(reductions ? reductions[i] : ProcessedDepthsReductions{},
                             w + kSoundingWords + kMeasurementWords);
            putUnits(w, kProcessedBeamBytes / 4, bytes);
            depthRange.widen(soundings[i].depth);
        },
        [&](ProfileState &state) {
            handle->extents[kDepth].widen(depthRange);
            if (state.currentSegment) state.currentSegment->extents[kDepth].widen(depthRange);
        },
        [&](std::uint32_t i) {
            return ProcessedDepthsSeqWrite(handle, soundings + i, measurements ? measurements + i : nullptr,
                                           reductions ? reductions + i : nullptr);
        });
}

VELMIO_API int ProcessedDepthsUpdateStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber,
                                           unsigned int status) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kUpdateMode, s)) return rc;
    if (profileNumber < 1 || profileNumber > handle->recordCount) return code(kOutOfRange);
    // Edits go to the file itself, and the block no longer holds its bytes.
    Sections in{*handle, *s, false};
    std::uint32_t offset = 0;
    if (const int rc = seekProfile(*handle, *s, profileNumber, offset)) return rc;
    if (const int rc = readHeader(in, profileNumber, offset, nullptr, nullptr, nullptr)) return rc;
    if (const int rc = positionOnBeam(in, beamNumber)) return rc;
    const std::uint64_t at = s->position;
    std::uint32_t word = 0;
    if (const int rc = readUnits(*handle, *s, 4, &word)) return rc;
    word = (word & 0xFFFFu) | (status & 0xFFFF0000u);
    if (const int rc = storeUnits(*handle, *s, at, &word, 1)) return rc;
    // The block reader reads through the stream: neither its block nor the
    // stream's buffer may keep the bytes from before the edit.
    clearBuffer(s->reader);
    return std::fflush(handle->dataFile) == 0 ? 0 : code(kSeekFailed);
}

VELMIO_API int ProcessedDepthsSaveStatusToDisk(TOVO_Sensor *handle) {
    ProcessedState *s = nullptr;
    if (const int rc = enter(handle, kUpdateMode, s)) return rc;
    clearBuffer(s->reader);
    return saveProfileStatus(*handle, *s);
}

}  // extern "C"
