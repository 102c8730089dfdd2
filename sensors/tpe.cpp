// Total propagated error: profiles of per-beam error estimates, read through
// the block reader when VelmIOCacheSize asks for it.
#include <velmio/block_reader.hpp>
#include <velmio/encoding.h>
#include <velmio/linestore.h>
#include <velmio/tpe.h>

#include "datafile/block_reader.h"
#include "encoding/rounding.h"
#include "sensors/cache_size.h"
#include "sensors/column_decode.h"
#include "sensors/profile_bulk.h"
#include "sensors/profile_cursor.h"
#include "sensors/profile_forwarders.h"

#include <cctype>
#include <climits>
#include <cstdlib>

using namespace velmio;

namespace {

constexpr int kTime = 0;  // handle extents; the segments keep time only
constexpr int kError1 = 1;
constexpr int kError2 = 2;

// Errors travel in thousandths, truncated toward zero.
std::uint32_t encodeError(double value) { return asWord(truncToInt32(value * 1000.0)); }
double decodeError(std::uint32_t word) { return asSigned(word) / 1000.0; }

constexpr SummaryField kSummary[] = {
    {SummaryWord::Status},
    {SummaryWord::FamilyWord0},  // the two tool types
    {SummaryWord::FamilyWord1},
    {SummaryWord::RecordCount},
    {SummaryWord::ItemCount},
    {SummaryWord::TimeScale},
    {SummaryWord::DepthTimeScale},
    {SummaryWord::ReferenceTime},
    {SummaryWord::ExtentMin, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMax, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMin, kError1, ExtentKind::Thousandths},
    {SummaryWord::ExtentMax, kError1, ExtentKind::Thousandths},
    {SummaryWord::ExtentMin, kError2, ExtentKind::Thousandths},
    {SummaryWord::ExtentMax, kError2, ExtentKind::Thousandths},
    {SummaryWord::Zero},  // 16 reserved bytes
    {SummaryWord::Zero},
    {SummaryWord::Zero},
    {SummaryWord::Zero},
};
constexpr int kSummaryWords = sizeof kSummary / sizeof kSummary[0];
static_assert(kSummaryWords <= kMaxSummaryWords && 16 <= kMaxRecordBytes, "the engine's buffers hold these records");

void widenByBeam(const ProfileState &s, const std::uint32_t *w, Extent *extents) {
    extents[kTime].widen(beamTime(s, s.profileTime, w[0]));
    extents[kError1].widen(decodeError(w[1]));
    extents[kError2].widen(decodeError(w[2]));
}

const ProfileFamily kTpe = {
    {
        5002700,
        1,              // format version written
        {16, 12, false},  // header and beam bytes
        {0, 0, false},
        kSummaryWords,
        kSummary,
        nullptr,
        {1, {ExtentKind::Time}, 5002701, nullptr, 5002703, 5002702, 5002726, nullptr, nullptr, nullptr, nullptr},
        5002706,
        nullptr,
        kReadFailed,
        nullptr,
        0,              // the time index's own code passes through
        0,
    },
    52,
    kOwnBeamRange,
    false,
    true,
    widenByBeam,
    nullptr,
};

class TpeState : public ProfileState {
public:
    TpeState() : ProfileState(kTpe) {}
    ~TpeState() override { destroy(reader); }
    TpeState(const TpeState &) = delete;
    TpeState &operator=(const TpeState &) = delete;

    VELMBlockReader *reader = nullptr;  // null or off: the direct path
};

int enter(TOVO_Sensor *h, unsigned modes, TpeState *&t) {
    ProfileState *s = nullptr;
    const int rc = enterProfile(h, kTpe, modes, s);
    t = static_cast<TpeState *>(s);
    return rc;
}

bool cacheOn(const TpeState &t) { return getCacheSize(t.reader) != 0; }

// The record words of the block reader's current record.
int readFromBlock(TOVO_Sensor &, TpeState &t, unsigned bytes, std::uint32_t *words) {
    if (!BlockIOFread(t.reader, t.record, bytes)) return kTpe.code(kReadFailed);
    for (unsigned i = 0; i < bytes / 4; ++i) words[i] = loadBe32(t.record + 4 * i);
    return 0;
}

// The current block record's header; its beams must lie within the record,
// as the direct path demands they lie before the next profile.
int headerFromBlock(TOVO_Sensor &h, TpeState &t, ProfileHeader &header) {
    std::uint32_t words[kMaxRecordWords];
    if (const int rc = readFromBlock(h, t, kTpe.geometry.headerBytes, words)) return rc;
    parseHeader(h, t, words, header);
    const long end = static_cast<long>(kTpe.geometry.headerBytes + header.beamCount * kTpe.geometry.itemBytes);
    if (header.beamCount > 0 && !setByteOffset(t.reader, end - 1, 0)) return kTpe.code(kNotDecoded);
    setByteOffset(t.reader, kTpe.geometry.headerBytes, 0);
    // The file position is now the block reader's.
    t.repositionNeeded = 1;
    t.profileTime = header.time;
    return 0;
}

void fillHeader(const ProfileHeader &p, unsigned int *numberOfBeams, unsigned int *firstBeam, double *time,
                unsigned int *profileWord, unsigned int *status) {
    *numberOfBeams = p.beamCount;
    *firstBeam = p.firstBeam;
    *time = p.time;
    *profileWord = p.words[3];
    *status = p.status;
}

void fillBeam(const ProfileState &s, double profileTime, const std::uint32_t *w, double *time, double *error1,
              double *error2, unsigned int *status) {
    *time = beamTime(s, profileTime, w[0]);
    *error1 = decodeError(w[1]);
    *error2 = decodeError(w[2]);
    *status = w[0] & 0xFFFF0000u;
}

}  // namespace

const ProfileFamily &velmio::tpeProfiles() { return kTpe; }

extern "C" {

VELMIO_API TOVO_Sensor *TPEOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *errorCode) {
    return openCachedProfile<TpeState>(lineDirectory, 52, accessToken, errorCode, kTpe);
}

VELMIO_API int TPESummary(TOVO_Sensor *handle, unsigned int *numberOfLineSegments, unsigned int *numberOfProfiles,
                          unsigned int *numberOfBeams, double *minTime, double *maxTime, unsigned int *toolType1,
                          unsigned int *toolType2, double *minError1, double *maxError1, double *minError2,
                          double *maxError2, unsigned int *status) {
    TpeState *t = nullptr;
    if (const int rc = enter(handle, kAnyMode, t)) return rc;
    // Error ranges as the file keeps them, in whole thousandths.
    auto stored = [](double v) { return decodeError(encodeError(v)); };
    if (numberOfLineSegments) *numberOfLineSegments = handle->segmentCount;
    if (numberOfProfiles) *numberOfProfiles = handle->recordCount;
    if (numberOfBeams) *numberOfBeams = t->itemCount;
    if (minTime) *minTime = handle->extents[kTime].min;
    if (maxTime) *maxTime = handle->extents[kTime].max;
    if (toolType1) *toolType1 = t->familyWords[0];
    if (toolType2) *toolType2 = t->familyWords[1];
    if (minError1) *minError1 = stored(handle->extents[kError1].min);
    if (maxError1) *maxError1 = stored(handle->extents[kError1].max);
    if (minError2) *minError2 = stored(handle->extents[kError2].min);
    if (maxError2) *maxError2 = stored(handle->extents[kError2].max);
    if (status) *status = handle->summaryStatus;
    return 0;
}

VELMIO_API int TPEReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int *numberOfBeams,
                              unsigned int *firstBeam, double *time, unsigned int *profileWord, unsigned int *status) {
    TpeState *t = nullptr;
    if (const int rc = enter(handle, kReadModes, t)) return rc;
    if (!numberOfBeams || !firstBeam || !time || !profileWord || !status) return -1;
    if (!withinBeamTotal(*t, profileNumber)) return kTpe.code(kOutOfRange);
    if (readRecord(t->reader, profileNumber) == 0) {
        ProfileHeader header;
        if (const int rc = headerFromBlock(*handle, *t, header)) return rc;
        fillHeader(header, numberOfBeams, firstBeam, time, profileWord, status);
        return 0;
    }
    if (const int rc = loadHeader(*handle, *t, profileNumber, kNotDecoded)) return rc;
    t->profileTime = t->header.time;
    fillHeader(t->header, numberOfBeams, firstBeam, time, profileWord, status);
    return 0;
}

VELMIO_API int TPERead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int beamNumber, double *beamTime,
                       double *error1, double *error2, unsigned int *status) {
    TpeState *t = nullptr;
    if (const int rc = enter(handle, kReadModes, t)) return rc;
    if (!beamTime || !error1 || !error2 || !status) return -1;
    if (!withinBeamTotal(*t, profileNumber)) return kTpe.code(kOutOfRange);
    std::uint32_t words[kMaxRecordWords];
    if (readRecord(t->reader, profileNumber) == 0) {
        ProfileHeader header;
        if (const int rc = headerFromBlock(*handle, *t, header)) return rc;
        if (!header.holds(beamNumber)) return kTpe.code(kTpe.beamRangeReason);
        if (!setByteOffset(t->reader, static_cast<long>((beamNumber - header.firstBeam) * kTpe.geometry.itemBytes), 1))
            return kTpe.code(kSeekFailed);
        if (const int rc = readFromBlock(*handle, *t, kTpe.geometry.itemBytes, words)) return rc;
    } else if (const int rc = readBeam(*handle, *t, profileNumber, beamNumber, words, kTpe.beamRangeReason)) {
        return rc;
    }
    fillBeam(*t, t->profileTime, words, beamTime, error1, error2, status);
    return 0;
}

VELMIO_API int TPEReadProfileSeq(TOVO_Sensor *handle, unsigned int *numberOfBeams, unsigned int *firstBeam,
                                 double *time, unsigned int *profileWord, unsigned int *status) {
    TpeState *t = nullptr;
    if (const int rc = enter(handle, kQueryMode, t)) return rc;
    if (!numberOfBeams || !firstBeam || !time || !profileWord || !status) return -1;
    ProfileHeader header;
    if (cacheOn(*t)) {
        // Past the last profile (or on an unusable index) the file position
        // is the block reader's, so there is no direct read to fall back on.
        if (readRecordSeq(t->reader) != 0) return kTpe.code(kReadFailed);
        if (const int rc = headerFromBlock(*handle, *t, header)) return rc;
    } else if (const int rc = readHeaderSeq(*handle, *t, header)) {
        return rc;
    }
    fillHeader(header, numberOfBeams, firstBeam, time, profileWord, status);
    return 0;
}

VELMIO_API int TPEReadSeq(TOVO_Sensor *handle, double *beamTime, double *error1, double *error2,
                          unsigned int *status) {
    TpeState *t = nullptr;
    if (const int rc = enter(handle, kQueryMode, t)) return rc;
    if (!beamTime || !error1 || !error2 || !status) return -1;
    std::uint32_t words[kMaxRecordWords];
    const int rc = cacheOn(*t) ? readFromBlock(*handle, *t, kTpe.geometry.itemBytes, words) : readBeamSeq(*handle, *t, words);
    if (rc) return rc;
    fillBeam(*t, t->profileTime, words, beamTime, error1, error2, status);
    return 0;
}

}  // extern "C"

namespace {

struct TpeHeader {
    unsigned int beams = 0, firstBeam = 0, word = 0, status = 0;
    double time = 0;

    int read(TOVO_Sensor *h, std::uint32_t p) {
        return TPEReadProfile(h, p, &beams, &firstBeam, &time, &word, &status);
    }
};

// The caller's header arrays, any of them null.
struct TpeHeaderArrays {
    unsigned int *numberOfBeams, *firstBeams;
    double *times;
    unsigned int *profileWords, *statuses;

    void store(const TpeHeader &a, std::uint32_t i) const {
        if (numberOfBeams) numberOfBeams[i] = a.beams;
        if (firstBeams) firstBeams[i] = a.firstBeam;
        if (times) times[i] = a.time;
        if (profileWords) profileWords[i] = a.word;
        if (statuses) statuses[i] = a.status;
    }
};

// TPEReadBeams, and TPEReadRange when headers has arrays.
int readRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count, const TpeHeaderArrays &headers,
              unsigned int beamCapacity, unsigned int *beamOffsets, double *beamTimes, double *errors1,
              double *errors2, unsigned int *statuses) {
    TpeHeader last;
    auto beamsOf = [&](std::uint32_t p, std::uint32_t &beams, std::uint32_t &first) {
        const int rc = last.read(handle, p);
        beams = last.beams;
        first = last.firstBeam;
        return rc;
    };
    auto storeHeader = [&](std::uint32_t i) { headers.store(last, i); };
    TpeState *t = stateOf<TpeState>(handle, kTpe);
    // fillBeam's arithmetic, a field at a time.
    auto decode = [&](const unsigned char *q, std::uint32_t n, std::uint32_t k, unsigned stride) {
        const double ping = t->profileTime;
        const std::int32_t scale = t->depthTimeScale;
        forEachRun<3>(q, n, stride, [&](std::uint32_t done, std::uint32_t run, const std::uint32_t (*w)[kColumnRun]) {
            auto slots = [k, done](auto *array) { return array ? array + k + done : nullptr; };
            fillBeamWord1(slots(beamTimes), slots(statuses), run, w[0], ping, scale);
            fillColumn(slots(errors1), run, w[1], decodeError);
            fillColumn(slots(errors2), run, w[2], decodeError);
        });
    };
    auto readable = [t](std::uint32_t p) { return withinBeamTotal(*t, p); };
    if (!t || !cacheOn(*t))
        return readBeamBatches(handle, kTpe, firstProfile, count, beamCapacity, beamOffsets, beamsOf, readable,
                               decode, storeHeader);
    // The block reader holds the profile beamsOf has just read: its beams are
    // decoded where they lie in the block.
    auto fromBlock = [&](std::uint32_t p, std::uint32_t beams, std::uint32_t firstBeam, std::uint32_t k) {
        if (beams == 0) return 0;
        const unsigned itemBytes = t->geometry.itemBytes;
        if (readable(p) && readRecord(t->reader, p) == 0) {
            const unsigned char *q = setByteOffset(t->reader, kTpe.geometry.headerBytes, 0)
                                         ? takeBlockBytes(t->reader, beams * itemBytes)
                                         : nullptr;
            if (!q) return kTpe.code(kReadFailed);
            decode(q, beams, k, itemBytes);
            return 0;
        }
        // Not in a block (an index the reader refuses): TPERead's own fallback, beam by beam.
        for (std::uint32_t b = 0; b < beams; ++b) {
            double bt, e1, e2;
            unsigned int status;
            if (const int rc = TPERead(handle, p, firstBeam + b, &bt, &e1, &e2, &status)) return rc;
            if (beamTimes) beamTimes[k + b] = bt;
            if (errors1) errors1[k + b] = e1;
            if (errors2) errors2[k + b] = e2;
            if (statuses) statuses[k + b] = status;
        }
        return 0;
    };
    return readBeamWalk(handle, kTpe, firstProfile, count, beamCapacity, beamOffsets, beamsOf, fromBlock,
                        storeHeader);
}

}  // namespace

extern "C" {

VELMIO_API int TPEReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                               unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,
                               unsigned int *profileWords, unsigned int *statuses) {
    const TpeHeaderArrays headers{numberOfBeams, firstBeams, times, profileWords, statuses};
    return readProfiles(handle, kTpe, firstProfile, count, [&](std::uint32_t p, std::uint32_t i) {
        TpeHeader a;
        if (const int rc = a.read(handle, p)) return rc;
        headers.store(a, i);
        return 0;
    });
}

VELMIO_API int TPEReadBeams(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                            unsigned int beamCapacity, unsigned int *beamOffsets, double *beamTimes, double *errors1,
                            double *errors2, unsigned int *statuses) {
    return readRange(handle, firstProfile, count, {}, beamCapacity, beamOffsets, beamTimes, errors1, errors2,
                     statuses);
}

VELMIO_API int TPEReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                            unsigned int *numberOfBeams, unsigned int *firstBeams, double *times,
                            unsigned int *profileWords, unsigned int *statuses, unsigned int beamCapacity,
                            unsigned int *beamOffsets, double *beamTimes, double *errors1, double *errors2,
                            unsigned int *beamStatuses) {
    return readRange(handle, firstProfile, count, {numberOfBeams, firstBeams, times, profileWords, statuses},
                     beamCapacity, beamOffsets, beamTimes, errors1, errors2, beamStatuses);
}

VELMIO_API int TPEBgnSeqWriteProfile(TOVO_Sensor *handle, unsigned int numberOfBeams, unsigned int firstBeam,
                                     double time, unsigned int profileWord, unsigned int status) {
    TpeState *t = nullptr;
    if (const int rc = enter(handle, kCreateMode, t)) return rc;
    const std::uint32_t extra[1] = {profileWord};
    return beginProfile(*handle, *t, numberOfBeams, firstBeam, time, status, extra, 1, true);
}

VELMIO_API int TPESeqWrite(TOVO_Sensor *handle, double beamTime, double error1, double error2, unsigned int status) {
    TpeState *t = nullptr;
    if (const int rc = enter(handle, kCreateMode, t)) return rc;
    const std::uint32_t words[3] = {statusAndOffset(*t, beamTime, status), encodeError(error1),
                                    encodeError(error2)};
    if (const int rc = writeBeam(*handle, *t, words, beamTime)) return rc;
    handle->extents[kError1].widen(error1);
    handle->extents[kError2].widen(error2);
    return 0;
}

VELMIO_API int TPESeqWriteBeams(TOVO_Sensor *handle, unsigned int count, const double *beamTimes,
                                const double *errors1, const double *errors2, const unsigned int *statuses) {
    Extent range1, range2;
    return appendBeams(
        handle, kTpe, count, beamTimes && errors1 && errors2, statuses,
        [&](const BeamClock &clock, std::uint32_t i, std::uint32_t status, unsigned char *bytes) {
            storeBe32(bytes, clock.word1(beamTimes[i], status));
            storeBe32(bytes + 4, encodeError(errors1[i]));
            storeBe32(bytes + 8, encodeError(errors2[i]));
            range1.widen(errors1[i]);
            range2.widen(errors2[i]);
            return beamTimes[i];
        },
        [&](ProfileState &) {
            handle->extents[kError1].widen(range1);
            handle->extents[kError2].widen(range2);
        },
        [&](std::uint32_t i) {
            return TPESeqWrite(handle, beamTimes[i], errors1[i], errors2[i], statuses ? statuses[i] : 0);
        });
}

VELMIO_API int TPESetToolType(TOVO_Sensor *handle, unsigned int toolType1, unsigned int toolType2) {
    TpeState *t = nullptr;
    if (const int rc = enter(handle, kAnyMode, t)) return rc;
    t->familyWords[0] = toolType1;
    t->familyWords[1] = toolType2;
    t->statusDirty = true;
    return 0;
}

}  // extern "C"
