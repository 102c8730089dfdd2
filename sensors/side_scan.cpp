// Side scan: profiles of raw samples, one layout for every sonar; the
// openers differ only in the files they open and the type they record.
#include <velmio/encoding.h>
#include <velmio/linestore.h>
#include <velmio/side_scan.h>

#include "platform/files.h"
#include "sensors/profile_bulk.h"
#include "sensors/profile_forwarders.h"
#include "sensors/profile_records.h"
#include "sensors/side_scan_access.h"
#include "sensors/side_scan_records.h"
#include "sensors/side_scan_trace.h"

#include <climits>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <cwctype>

using namespace velmio;

namespace {

constexpr int kTime = 0;
constexpr int kAmplitude = 1;
constexpr int kBlock = 5000900;
constexpr int code(int reason) { return kBlock + reason; }

constexpr SummaryField kSummary[] = {
    {SummaryWord::Status},
    {SummaryWord::FamilyWord0},  // sonar type
    {SummaryWord::RecordCount},
    {SummaryWord::ItemCount},    // samples
    {SummaryWord::TimeScale},
    {SummaryWord::ReferenceTime},
    {SummaryWord::ExtentMin, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMax, kTime, ExtentKind::Time},
    {SummaryWord::ExtentMin, kAmplitude, ExtentKind::Whole},
    {SummaryWord::ExtentMax, kAmplitude, ExtentKind::Whole},
};
constexpr int kSummaryWords = sizeof kSummary / sizeof kSummary[0];
static_assert(kSummaryWords == kSideScanSummaryWords && kSummaryWords <= kMaxSummaryWords, "the documented summary");
static_assert(kSideScanHeaderWords <= kMaxProfileRecordWords, "a header fits the record buffers");

// Amplitudes bound the summary only: the segments carry ping times alone.
void widenByBeam(const ProfileState &, const std::uint32_t *w, Extent *extents) {
    extents[kAmplitude].widen(asSigned(w[0]));
}

void headerItemsAndTime(const std::uint32_t *w, std::uint32_t &items, std::int32_t &encodedTime) {
    items = w[1];
    encodedTime = asSigned(w[3]);
}

// The kinds differ only in the type their files and handles carry.
ProfileFamily kind(std::uint32_t typeId) {
    return {{kBlock, 1, {4 * kSideScanHeaderWords, 4 * kSideScanSampleWords, false}, {0, 0, false}, kSummaryWords,
             kSummary, nullptr,
             {1, {ExtentKind::Time}, code(kSegmentOpenFailed), nullptr, code(kSegmentInvalid),
              code(kSegmentNotWritten), code(kCloseFailed), nullptr, nullptr, nullptr, nullptr},
             code(kSummaryInvalid), nullptr, kSummaryInvalid, nullptr, code(kTimeIndexNotWritten), 0},
            typeId,
            kOutOfRange,
            false,
            true,
            widenByBeam,
            headerItemsAndTime};
}

const ProfileFamily kKinds[] = {kind(9), kind(10), kind(13), kind(15), kind(19), kind(20)};

const ProfileFamily *kindOf(std::uint32_t typeId) {
    for (const ProfileFamily &k : kKinds)
        if (k.typeId == typeId) return &k;
    return nullptr;
}

// Entry checks of every operation: null handle, a type of no side scan,
// access mode, missing state.
int enter(TOVO_Sensor *h, unsigned modes, ProfileState *&s) {
    s = nullptr;
    if (!h) return code(kNullHandle);
    if (!kindOf(h->typeId)) return code(kWrongType);
    if (!modeAllowed(*h, modes)) return code(kWrongMode);
    for (const ProfileFamily &k : kKinds)
        if (h->familyState && h->familyState->owner == static_cast<const EngineFamily *>(&k))
            s = static_cast<ProfileState *>(h->familyState);
    return s ? 0 : -1;
}

bool hasTrace(const TOVO_Sensor &h) { return h.typeId == 9 || h.typeId == 10; }

int closeTrace(TOVO_Sensor &h) {
    if (!h.traceFile) return 0;
    const int rc = std::fclose(h.traceFile) == 0 ? 0 : kTraceFailed;
    h.traceFile = nullptr;
    return rc;
}

TOVO_Sensor *openKind(const wchar_t *dir, std::uint32_t openId, std::uint32_t typeId, const wchar_t *token,
                      int *errorCode) {
    int scratch = 0;
    int &error = errorCode ? *errorCode : scratch;
    std::unique_ptr<ProfileState> state(new (std::nothrow) ProfileState(*kindOf(typeId)));
    if (!state) {
        error = kNoMemory;
        return nullptr;
    }
    TOVO_Sensor *h = openProfileSensor(dir, openId, token, &error, *kindOf(typeId), std::move(state));
    if (h && isWriting(*h) && h->traceFile) {
        if (const int rc = startTraceFile(h->traceFile, h->typeId)) {
            SideScanClose(h);
            error = rc;
            return nullptr;
        }
    }
    return h;
}

// The access token compared without the token decoder, so that a refused
// token is reported once, by the open.
bool isToken(const wchar_t *token, const char *word) {
    for (; token && *word; ++token, ++word)
        if (std::towlower(static_cast<wint_t>(*token)) != static_cast<wint_t>(*word)) return false;
    return token && *token == 0;
}

// The trace-less "SideScan" files hold ELAC side scan (15) or side scan
// without detection words (20); read, they open as the kind they carry.
TOVO_Sensor *openTraceless(const wchar_t *dir, std::uint32_t createdType, const wchar_t *token, int *errorCode) {
    std::uint32_t typeId = createdType;
    if (dir && (isToken(token, "query") || isToken(token, "update"))) {
        std::unique_ptr<std::FILE, int (*)(std::FILE *)> file(
            platform::openFile((std::wstring(dir) + L"/SideScan").c_str(), "rb"), std::fclose);
        unsigned char bytes[8];
        if (file && std::fread(bytes, 1, 8, file.get()) == 8) {
            std::uint32_t words[2];
            getUnits(bytes, 2, words);
            if (words[1] == 15 || words[1] == 20) typeId = words[1];
        }
    }
    return openKind(dir, 20, typeId, token, errorCode);
}

// Makes profile n's header the one in hand; its samples must lie before the
// next profile before any count from it is used.
int loadPing(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, SideScanHeader &p) {
    if (profile < 1 || profile > h.recordCount) return code(kOutOfRange);
    s.header.number = 0;
    std::uint32_t offset = 0;
    if (const int rc = seekProfile(h, s, profile, offset)) return rc;
    std::uint32_t w[kSideScanHeaderWords];
    if (const int rc = readUnits(h, s, 4 * kSideScanHeaderWords, w)) return rc;
    if (!decodeSideScanHeader(w, h.referenceTime, h.timeScale, p) ||
        !payloadFits(h, s, profile, offset, p.sampleCount))
        return code(kNotDecoded);
    s.header.number = profile;
    s.header.offset = offset;
    s.header.beamCount = p.sampleCount;
    s.header.firstBeam = p.firstSample;
    s.header.status = p.status;
    s.header.time = p.time;
    return 0;
}

void fillHeader(const SideScanHeader &p, unsigned int *numberOfSamples, unsigned int *firstSample, double *time,
                double *sampleInterval, int *gain, int *attenuation1, int *attenuation2, unsigned int *status) {
    *numberOfSamples = p.sampleCount;
    *firstSample = p.firstSample;
    *time = p.time;
    *sampleInterval = p.sampleInterval;
    *gain = p.gain;
    *attenuation1 = p.attenuation1;
    *attenuation2 = p.attenuation2;
    *status = p.status;
}

int readSample(TOVO_Sensor &h, ProfileState &s, std::uint32_t profile, std::uint32_t sample, int *amplitude,
               unsigned int *detection) {
    if (s.header.number != profile) {
        SideScanHeader p;
        if (const int rc = loadPing(h, s, profile, p)) return rc;
    }
    if (!s.header.holds(sample)) return code(kOutOfRange);
    if (const int rc = seekItem(h, s, sample - s.header.firstBeam)) return rc;
    std::uint32_t w[kSideScanSampleWords];
    if (const int rc = readUnits(h, s, 4 * kSideScanSampleWords, w)) return rc;
    *amplitude = asSigned(w[0]);
    *detection = w[1];
    return 0;
}

// What the amplitude reader asks of the family.
int accessSummary(TOVO_Sensor *h, double *minTime, double *maxTime, unsigned int *status) {
    return SideScanSummary(h, nullptr, nullptr, nullptr, nullptr, minTime, maxTime, nullptr, nullptr, status);
}

std::uint32_t accessSonarType(const TOVO_Sensor *h) { return h ? h->typeId : 0; }

int accessReadPing(TOVO_Sensor *h, unsigned int profile, SideScanPing *ping) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kReadModes, s)) return rc;
    SideScanHeader p;
    if (const int rc = loadPing(*h, *s, profile, p)) return rc;
    ping->sampleCount = p.sampleCount;
    ping->firstSample = p.firstSample;
    ping->gain = p.gain;
    ping->attenuation1 = p.attenuation1;
    ping->attenuation2 = p.attenuation2;
    return 0;
}

int accessReadSamples(TOVO_Sensor *h, unsigned int profile, std::int32_t *amplitudes, std::uint32_t *detections) {
    ProfileState *s = nullptr;
    if (const int rc = enter(h, kReadModes, s)) return rc;
    SideScanHeader p;
    if (const int rc = loadPing(*h, *s, profile, p)) return rc;
    for (std::uint32_t k = 0; k < p.sampleCount; ++k) {
        int a = 0;
        unsigned int d = 0;
        if (const int rc = readSample(*h, *s, profile, p.firstSample + k, &a, &d)) return rc;
        amplitudes[k] = a;
        detections[k] = d;
    }
    return 0;
}

}  // namespace

namespace velmio {

const SideScanAccess &sideScanFamilyAccess() {
    static const SideScanAccess table = {{SideScanEM100OpenDir, SideScanEM1000OpenDir, SideScanELACOpenDir},
                                         accessSummary,
                                         accessSonarType,
                                         accessReadPing,
                                         accessReadSamples,
                                         SideScanClose};
    return table;
}

const ProfileFamily *sideScanProfiles(std::uint32_t typeId) { return kindOf(typeId == 32787 ? 19 : typeId); }

int enterSideScan(TOVO_Sensor *h, unsigned modes, ProfileState *&s) { return enter(h, modes, s); }

}  // namespace velmio

extern "C" {

// The kinds with files of their own: prefix, type opened, type recorded.
#define VELMIO_SIDE_SCAN_OPENERS(X)                                                                           \
    X(SideScanEM100, 9, 9) X(SideScanEM1000, 10, 10) X(SSSSideScan, 13, 13) X(SSSProcessedSideScan, 19, 19) \
    X(NewSSSProcessedSideScan, 32787, 19)
#define VELMIO_SIDE_SCAN_OPENER(P, OPEN_ID, TYPE_ID)                                                          \
    VELMIO_API TOVO_Sensor *P##OpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *errorCode) { \
        return openKind(lineDirectory, OPEN_ID, TYPE_ID, accessToken, errorCode);                              \
    }
VELMIO_SIDE_SCAN_OPENERS(VELMIO_SIDE_SCAN_OPENER)

VELMIO_API TOVO_Sensor *SideScanELACOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,
                                            int *errorCode) {
    return openTraceless(lineDirectory, 15, accessToken, errorCode);
}

VELMIO_API TOVO_Sensor *SideScanOpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken, int *errorCode) {
    return openTraceless(lineDirectory, 20, accessToken, errorCode);
}

VELMIO_API int SideScanClose(TOVO_Sensor *handle) {
    if (!handle) return code(kNullHandle);
    const ProfileFamily *k = kindOf(handle->typeId);
    if (!k) return code(kWrongType);
    const int traced = closeTrace(*handle);
    const int rc = closeProfileSensor(handle, *k, true);
    return rc ? rc : traced;
}

VELMIO_API int SideScanSummary(TOVO_Sensor *handle, unsigned int *sonarType, unsigned int *numberOfLineSegments,
                               unsigned int *numberOfProfiles, unsigned int *numberOfSamples, double *minTime,
                               double *maxTime, int *minAmplitude, int *maxAmplitude, unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kAnyMode, s)) return rc;
    const Extent &a = handle->extents[kAmplitude];
    const bool empty = a.min > a.max;
    if (sonarType) *sonarType = s->familyWords[0];
    if (numberOfLineSegments) *numberOfLineSegments = handle->segmentCount;
    if (numberOfProfiles) *numberOfProfiles = handle->recordCount;
    if (numberOfSamples) *numberOfSamples = s->itemCount;
    if (minTime) *minTime = handle->extents[kTime].min;
    if (maxTime) *maxTime = handle->extents[kTime].max;
    if (minAmplitude) *minAmplitude = empty ? INT_MAX : static_cast<int>(a.min);
    if (maxAmplitude) *maxAmplitude = empty ? INT_MIN : static_cast<int>(a.max);
    if (status) *status = handle->summaryStatus;
    return 0;
}

VELMIO_API int SideScanReadProfile(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int *numberOfSamples,
                                   unsigned int *firstSample, double *time, double *sampleInterval, int *gain,
                                   int *attenuation1, int *attenuation2, unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!numberOfSamples || !firstSample || !time || !sampleInterval || !gain || !attenuation1 || !attenuation2 ||
        !status)
        return -1;
    SideScanHeader p;
    if (const int rc = loadPing(*handle, *s, profileNumber, p)) return rc;
    fillHeader(p, numberOfSamples, firstSample, time, sampleInterval, gain, attenuation1, attenuation2, status);
    return 0;
}

VELMIO_API int SideScanRead(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int sampleNumber,
                            int *amplitude, unsigned int *detection) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!amplitude || !detection) return -1;
    return readSample(*handle, *s, profileNumber, sampleNumber, amplitude, detection);
}

VELMIO_API int SideScanReadProfileSeq(TOVO_Sensor *handle, unsigned int *numberOfSamples, unsigned int *firstSample,
                                      double *time, double *sampleInterval, int *gain, int *attenuation1,
                                      int *attenuation2, unsigned int *status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kQueryMode, s)) return rc;
    if (!numberOfSamples || !firstSample || !time || !sampleInterval || !gain || !attenuation1 || !attenuation2 ||
        !status)
        return -1;
    s->header.number = 0;
    const std::uint64_t offset = s->position;
    std::uint32_t w[kSideScanHeaderWords];
    if (const int rc = readUnits(*handle, *s, 4 * kSideScanHeaderWords, w)) return rc;
    SideScanHeader p;
    if (!decodeSideScanHeader(w, handle->referenceTime, handle->timeScale, p) ||
        !payloadFitsFile(*s, offset, p.sampleCount))
        return code(kNotDecoded);
    fillHeader(p, numberOfSamples, firstSample, time, sampleInterval, gain, attenuation1, attenuation2, status);
    return 0;
}

VELMIO_API int SideScanReadSeq(TOVO_Sensor *handle, int *amplitude, unsigned int *detection) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kQueryMode, s)) return rc;
    if (!amplitude || !detection) return -1;
    std::uint32_t w[kSideScanSampleWords];
    if (const int rc = readUnits(*handle, *s, 4 * kSideScanSampleWords, w)) return rc;
    *amplitude = asSigned(w[0]);
    *detection = w[1];
    return 0;
}

}  // extern "C"

namespace {

// The caller's header arrays, any of them null.
struct PingArrays {
    unsigned int *numbersOfSamples, *firstSamples;
    double *times, *sampleIntervals;
    int *gains, *attenuations1, *attenuations2;
    unsigned int *statuses;

    void store(const SideScanHeader &p, std::uint32_t i) const {
        if (numbersOfSamples) numbersOfSamples[i] = p.sampleCount;
        if (firstSamples) firstSamples[i] = p.firstSample;
        if (times) times[i] = p.time;
        if (sampleIntervals) sampleIntervals[i] = p.sampleInterval;
        if (gains) gains[i] = p.gain;
        if (attenuations1) attenuations1[i] = p.attenuation1;
        if (attenuations2) attenuations2[i] = p.attenuation2;
        if (statuses) statuses[i] = p.status;
    }
};

// SideScanReadSamples, and SideScanReadRange when headers has arrays.
int readRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count, const PingArrays &headers,
              unsigned int sampleCapacity, unsigned int *sampleOffsets, int *amplitudes, unsigned int *detections) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    SideScanHeader last;
    auto samplesOf = [&](std::uint32_t p, std::uint32_t &samples, std::uint32_t &first) {
        const int rc = loadPing(*handle, *s, p, last);
        samples = last.sampleCount;
        first = last.firstSample;
        return rc;
    };
    auto readOne = [&](std::uint32_t p, std::uint32_t k, std::uint32_t slot) {
        int a;
        unsigned int d;
        if (const int rc = readSample(*handle, *s, p, k, &a, &d)) return rc;
        if (amplitudes) amplitudes[slot] = a;
        if (detections) detections[slot] = d;
        return 0;
    };
    return readBeams(handle, s->profiles, firstProfile, count, sampleCapacity, sampleOffsets, samplesOf, readOne,
                     [&](std::uint32_t i) { headers.store(last, i); });
}

}  // namespace

extern "C" {

VELMIO_API int SideScanReadProfiles(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                    unsigned int *numbersOfSamples, unsigned int *firstSamples, double *times,
                                    double *sampleIntervals, int *gains, int *attenuations1, int *attenuations2,
                                    unsigned int *statuses) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    const PingArrays headers{numbersOfSamples, firstSamples, times, sampleIntervals, gains, attenuations1,
                             attenuations2, statuses};
    return readProfiles(handle, s->profiles, firstProfile, count, [&](std::uint32_t p, std::uint32_t i) {
        SideScanHeader header;
        if (const int rc = loadPing(*handle, *s, p, header)) return rc;
        headers.store(header, i);
        return 0;
    });
}

VELMIO_API int SideScanReadSamples(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                   unsigned int sampleCapacity, unsigned int *sampleOffsets, int *amplitudes,
                                   unsigned int *detections) {
    return readRange(handle, firstProfile, count, {}, sampleCapacity, sampleOffsets, amplitudes, detections);
}

VELMIO_API int SideScanReadRange(TOVO_Sensor *handle, unsigned int firstProfile, unsigned int count,
                                 unsigned int *numbersOfSamples, unsigned int *firstSamples, double *times,
                                 double *sampleIntervals, int *gains, int *attenuations1, int *attenuations2,
                                 unsigned int *statuses, unsigned int sampleCapacity, unsigned int *sampleOffsets,
                                 int *amplitudes, unsigned int *detections) {
    return readRange(handle, firstProfile, count,
                     {numbersOfSamples, firstSamples, times, sampleIntervals, gains, attenuations1, attenuations2,
                      statuses},
                     sampleCapacity, sampleOffsets, amplitudes, detections);
}

VELMIO_API int SideScanBgnSeqWriteProfile(TOVO_Sensor *handle, unsigned int numberOfSamples, unsigned int firstSample,
                                          double time, double sampleInterval, int gain, int attenuation1,
                                          int attenuation2, unsigned int status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    // A header no reader would accept is never written.
    if (numberOfSamples > kSideScanMaxSamples || firstSample == 0) return code(kNotEncoded);
    const bool first = fixReference(*handle, *s, time);
    const SideScanHeader p = {status, numberOfSamples, firstSample, time, sampleInterval, gain, attenuation1,
                              attenuation2};
    std::uint32_t w[kSideScanHeaderWords];
    encodeSideScanHeader(p, handle->referenceTime, handle->timeScale, w);
    return appendHeader(*handle, *s, numberOfSamples, time, w, first);
}

VELMIO_API int SideScanSeqWrite(TOVO_Sensor *handle, int amplitude, unsigned int detection) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    const std::uint32_t w[kSideScanSampleWords] = {asWord(amplitude), detection};
    if (const int rc = appendItem(*handle, *s, w)) return rc;
    handle->extents[kAmplitude].widen(amplitude);
    return 0;
}

VELMIO_API int SideScanSeqWriteSamples(TOVO_Sensor *handle, unsigned int count, const int *amplitudes,
                                       const unsigned int *detections) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    Extent amplitudeRange;
    return appendBeams(
        handle, s->profiles, count, amplitudes != nullptr, detections,
        [&](const BeamClock &, std::uint32_t i, std::uint32_t detection, unsigned char *bytes) {
            storeBe32(bytes, asWord(amplitudes[i]));
            storeBe32(bytes + 4, detection);
            amplitudeRange.widen(amplitudes[i]);
        },
        [&](ProfileState &) { handle->extents[kAmplitude].widen(amplitudeRange); },
        [&](std::uint32_t i) { return SideScanSeqWrite(handle, amplitudes[i], detections ? detections[i] : 0); });
}

VELMIO_API int SideScanSeqWriteTrace(TOVO_Sensor *handle, unsigned int bottomSample, double depth) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kCreateMode, s)) return rc;
    if (!hasTrace(*handle)) return kTraceFailed;
    if (handle->recordCount == 0) return code(kOutOfRange);
    return appendTrace(handle->traceFile, {handle->recordCount, bottomSample, depth});
}

VELMIO_API int SideScanTraceCount(TOVO_Sensor *handle, unsigned int *count) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!count) return -1;
    if (!hasTrace(*handle)) return kTraceFailed;
    std::uint32_t n = 0;
    if (const int rc = countTraces(handle->traceFile, handle->typeId, n)) return rc;
    *count = n;
    return 0;
}

VELMIO_API int SideScanReadTrace(TOVO_Sensor *handle, unsigned int recordNumber, unsigned int *profileNumber,
                                 unsigned int *bottomSample, double *depth) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kReadModes, s)) return rc;
    if (!profileNumber || !bottomSample || !depth) return -1;
    if (!hasTrace(*handle)) return kTraceFailed;
    std::uint32_t n = 0;
    SideScanTrace t;
    if (const int rc = countTraces(handle->traceFile, handle->typeId, n)) return rc;
    if (const int rc = readTrace(handle->traceFile, n, recordNumber, t)) return rc;
    *profileNumber = t.profile;
    *bottomSample = t.bottomSample;
    *depth = t.depth;
    return 0;
}

VELMIO_API int SideScanUpdateProfileStatus(TOVO_Sensor *handle, unsigned int profileNumber, unsigned int status) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kUpdateMode, s)) return rc;
    SideScanHeader p;
    if (const int rc = loadPing(*handle, *s, profileNumber, p)) return rc;
    s->header.number = 0;  // the cached status is stale now
    return storeUnits(*handle, *s, s->header.offset, &status, 1);
}

VELMIO_API int SideScanSaveStatusToDisk(TOVO_Sensor *handle) {
    ProfileState *s = nullptr;
    if (const int rc = enter(handle, kUpdateMode, s)) return rc;
    return saveProfileStatus(*handle, *s);
}

VELMIO_API int SideScanRemoveDir(const wchar_t *lineDirectory) {
    if (lineDirectory) platform::removeFile((std::wstring(lineDirectory) + L"/SideScanTrace").c_str());
    return SensorRemoveDir(lineDirectory, L"SideScan");
}

}  // extern "C"
