// Navigation and its twin SSSNavigation: one implementation; the type each
// accepts, its messages and its answers to a wrong handle are data.
#include <velmio/encoding.h>
#include <velmio/linestore.h>
#include <velmio/navigation.h>

#include "encoding/rounding.h"
#include "foundation/diagnostics.h"
#include "foundation/wide_copy.h"
#include "sensors/column_decode.h"
#include "sensors/record_family.h"

#include <algorithm>
#include <new>

namespace velmio {
namespace {

constexpr int kNullHandleCode = 5000112;
constexpr int kWrongTypeCode = 5000113;

constexpr SummaryField kSummary[] = {
    {SummaryWord::Status},
    {SummaryWord::RecordCount},
    {SummaryWord::TimeScale},
    {SummaryWord::ReferenceTime},
    {SummaryWord::ExtentMin, 0, ExtentKind::Time},
    {SummaryWord::ExtentMax, 0, ExtentKind::Time},
    {SummaryWord::FamilyWord0},  // the coordinate type
    {SummaryWord::PositionScale},
    {SummaryWord::ReferenceLatitude},
    {SummaryWord::ExtentMin, 1, ExtentKind::Latitude},
    {SummaryWord::ExtentMax, 1, ExtentKind::Latitude},
    {SummaryWord::ReferenceLongitude},
    {SummaryWord::ExtentMin, 2, ExtentKind::Longitude},
    {SummaryWord::ExtentMax, 2, ExtentKind::Longitude},
};
constexpr int kSummaryWords = sizeof kSummary / sizeof kSummary[0];
static_assert(kSummaryWords <= kMaxSummaryWords, "the summary buffer holds the summary");

// The texts callers have always seen, trailing blanks included.
constexpr const char *kSummaryMessages[] = {
    "NavigationReadSummary(): unable to decode status \n",
    "NavigationReadSummary(): unable to decode number of data samples \n",
    "NavigationReadSummary(): unable to decode clock accuracy \n",
    "NavigationReadSummary(): unable to decode reference time \n",
    "NavigationReadSummary(): unable to decode min time \n",
    "NavigationReadSummary(): unable to decode max time\n",
    "NavigationReadSummary(): unable to decode coordinate type\n",
    "NavigationReadSummary(): unable to decode position scale \n",
    "NavigationReadSummary(): unable to decode reference latitude \n",
    "NavigationReadSummary(): unable to decode min lat \n",
    "NavigationReadSummary(): unable to decode max lat \n",
    "NavigationReadSummary(): unable to decode reference longitude\n",
    "NavigationReadSummary(): unable to decode min long \n",
    "NavigationReadSummary(): unable to decode max long\n",
};

constexpr const char *kSegmentMessages[] = {
    "NavigationReadLineSegmentFile(): could not decode line segment status\n",
    "NavigationReadLineSegmentFile(): could not decode line segment source file name length\n",
    "NavigationReadLineSegmentFile(): could not decode line segment source file name\n",
    "NavigationReadLineSegmentFile(): could not decode line segment begin index\n",
    "NavigationReadLineSegmentFile(): could not decode line segment end index\n",
    "NavigationReadLineSegmentFile(): could not decode line segment min time\n",
    "NavigationReadLineSegmentFile(): could not decode line segment max time\n",
    "NavigationReadLineSegmentFile(): could not decode line segment min Latitude\n",
    "NavigationReadLineSegmentFile(): could not decode line segment max Latitude\n",
    "NavigationReadLineSegmentFile(): could not decode line segment min Longitude\n",
    "NavigationReadLineSegmentFile(): could not decode line segment max Longitude\n",
};

// Both families print the open failures of the line segment file.
constexpr platform::OpenFailureCodes kSegmentOpenCodes = {5000132, 5000133, 5000134, 5000135, 5000101};

constexpr ExtentKind kKinds[kMaxExtents] = {ExtentKind::Time, ExtentKind::Latitude, ExtentKind::Longitude};

constexpr std::uint32_t kRecordBytes = 20;  // status, time, latitude, longitude, metres
static_assert(kRecordBytes <= kMaxRecordBytes, "the record buffer holds a record");

const RecordFamily kNavigationRecords = {
    {
        5000100,
        1,  // format version written
        {kRecordBytes, 0, false},
        {0, 0, false},
        kSummaryWords,
        kSummary,
        kSummaryMessages,
        {3, {kKinds[0], kKinds[1], kKinds[2]}, 5000101, &kSegmentOpenCodes, 5000103, 5000102, 5000126,
         "NavigationReadLineSegmentFile(): could not decode the data stream \n",
         "NavigationReadLineSegmentFile(): could not allocate line segment\n",
         "NavigationReadLineSegmentFile(): fclose() failed for line segment file \n", kSegmentMessages},
        5000106,
        "NavigationReadSummary(): could not validate header \n",
        kReadFailed,
        "NavigationReadSummary(): unable to decode header \n",
        5000114,
        5000105,
    },
    {"NavigationReadStatusShadow(): unable to allocate navigation sensor \n",
     "NavigationReadStatusShadow(): could not map time to index\n", "NavigationReadStatusShadow(): fseek() failed\n",
     "NavigationReadStatusShadow(): fread() failed\n", "NavigationReadStatusShadow(): initialization failed \n"},
};

// The twin reads its files with the same steps and codes, silently.
const RecordFamily kSSSNavigationRecords = {
    {
        5000100,
        1,
        {kRecordBytes, 0, false},
        {0, 0, false},
        kSummaryWords,
        kSummary,
        nullptr,
        {3, {kKinds[0], kKinds[1], kKinds[2]}, 5000101, &kSegmentOpenCodes, 5000103, 5000102, 5000126, nullptr,
         nullptr, nullptr, nullptr},
        5000106,
        nullptr,
        kReadFailed,
        nullptr,
        5000114,
        5000105,
    },
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};

enum Operation {
    kClose,
    kSummaryOp,
    kLineSegment,
    kRead,
    kReadSeq,
    kBgnSeqWriteSummary,
    kBgnSeqWriteLineSegment,
    kSeqWrite,
    kEndSeqWriteLineSegment,
    kEndSeqWriteSummary,
    kSetSummaryStatus,
    kSetLineSegmentStatus,
    kGetRecordStatus,
    kSetRecordStatus,
    kSaveStatusToDisk,
    kOperationCount
};

// The mode each operation needs.
enum class Needs { Any, ReadOrUpdate, Query, Create, Update };
constexpr Needs kNeeds[kOperationCount] = {
    Needs::Any,    Needs::Any,    Needs::Any,    Needs::ReadOrUpdate, Needs::Query,
    Needs::Create, Needs::Create, Needs::Create, Needs::Create,       Needs::Create,
    Needs::Any,    Needs::Update, Needs::Update, Needs::Update,       Needs::Update,
};

// What an operation answers to a handle of another sensor type.
struct WrongType {
    const char *message;  // null: silent
    int code;
};

struct NavigationFamily {
    unsigned int typeId;
    const wchar_t *stem;
    const RecordFamily &records;
    WrongType wrongType[kOperationCount];
};

const NavigationFamily kNavigation = {
    3,
    L"Navigation",
    kNavigationRecords,
    {
        {"NavigationClose(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationSummary(): invalid sensor type \n", kWrongTypeCode},
        {nullptr, kNullHandleCode},
        {"NavigationRead(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationReadSeq(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationBgnSeqWriteSummary(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationBgnSeqWriteLineSegment(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationSeqWrite(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationEndWriteLineSegment(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationEndSeqWriteSummary(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationSetSummaryStatus(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationSetLineSegmentStatus(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationGetRecordStatus(): invalid sensor type\n", kWrongTypeCode},
        {"NavigationSetRecordStatus(): invalid sensor type\n", kWrongTypeCode},
        {nullptr, kNullHandleCode},
    },
};

const NavigationFamily kSSSNavigation = {
    12,
    L"SSSNavigation",
    kSSSNavigationRecords,
    {
        {nullptr, kWrongTypeCode},
        {"SSSNavigationSummary(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationLineSegment(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationRead(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationReadSeq(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationBgnSeqWriteSummary(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationBgnSeqWriteLineSegment(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationSeqWrite(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationEndSeqWriteLineSegment(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationEndSeqWriteSummary(): invalid sensor type\n", kWrongTypeCode},
        {nullptr, 5000122},
        {"SSSNavigationSetLineSegmentStatus(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationGetRecordStatus(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationSetRecordStatus(): invalid sensor type\n", kWrongTypeCode},
        {"SSSNavigationSaveStatusToDisk(): invalid sensor type\n", kWrongTypeCode},
    },
};

struct NavigationState : RecordState {
    explicit NavigationState(const RecordFamily &f) : RecordState(f) {}
};

bool modeAllows(const TOVO_Sensor &h, Needs needs) {
    switch (needs) {
    case Needs::Any: return true;
    case Needs::ReadOrUpdate: return !isCreate(h);
    case Needs::Query: return h.accessMode == VELMIO_ACCESS_QUERY;
    case Needs::Create: return isCreate(h);
    case Needs::Update: return isUpdate(h);
    }
    return false;
}

// The common checks, in their order: null handle, sensor type, access
// mode, family state.
int check(const NavigationFamily &f, Operation op, TOVO_Sensor *h, NavigationState *&state) {
    if (!h) return kNullHandleCode;
    if (h->typeId != f.typeId) {
        if (f.wrongType[op].message) say("%s", f.wrongType[op].message);
        return f.wrongType[op].code;
    }
    if (!modeAllows(*h, kNeeds[op])) return f.records.code(kWrongMode);
    state = stateOf<NavigationState>(h, f.records);
    return state ? 0 : kMissingOutput;
}

// A record's words: status, time, latitude, longitude, metres. Null outputs
// are skipped.
void decodeRecord(const TOVO_Sensor &h, const unsigned char *bytes, double *time, double *latitude,
                  double *longitude, double *metres, unsigned int *status) {
    auto word = [bytes](int k) { return static_cast<std::int32_t>(loadBe32(bytes + 4 * k)); };
    if (status) *status = loadBe32(bytes);
    if (time) *time = decodeTime(h, word(1));
    if (latitude) *latitude = decodePosition(h.referenceLatitude, h.positionScale, word(2));
    if (longitude) *longitude = decodePosition(h.referenceLongitude, h.positionScale, word(3));
    if (metres) *metres = word(4) / 1000.0;  // as TOVO_DecodeMeters
}

TOVO_Sensor *openDir(const NavigationFamily &f, const wchar_t *lineDirectory, const wchar_t *token, int *error) {
    int scratch = 0;
    int &rc = error ? *error : scratch;
    TOVO_Sensor *h = SensorOpenDir(lineDirectory, f.typeId, token, &rc);
    if (!h) return nullptr;
    auto *state = new (std::nothrow) NavigationState(f.records);
    if (!state) {
        std::fclose(h->dataFile);
        h->dataFile = nullptr;
        SensorFree(h);
        rc = kNoMemory;
        return nullptr;
    }
    rc = openRecordFamily(h, state);
    if (rc != 0) return nullptr;
    if (isCreate(*h)) state->familyWords[0] = 1;  // the coordinate type of a writer that never sets one
    return h;
}

int closeHandle(const NavigationFamily &f, TOVO_Sensor *h) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kClose, h, s)) return rc;
    return closeRecordFamily(h, *s);
}

int summary(const NavigationFamily &f, TOVO_Sensor *h, unsigned int *segmentCount, unsigned int *recordCount,
            unsigned int *coordinateType, double *minTime, double *maxTime, double *minLatitude,
            double *maxLatitude, double *minLongitude, double *maxLongitude, unsigned int *summaryStatus) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kSummaryOp, h, s)) return rc;
    if (segmentCount) *segmentCount = h->segmentCount;
    if (recordCount) *recordCount = h->recordCount;
    if (coordinateType) *coordinateType = s->familyWords[0];
    if (minTime) *minTime = h->extents[0].min;
    if (maxTime) *maxTime = h->extents[0].max;
    if (minLatitude) *minLatitude = h->extents[1].min;
    if (maxLatitude) *maxLatitude = h->extents[1].max;
    if (minLongitude) *minLongitude = h->extents[2].min;
    if (maxLongitude) *maxLongitude = h->extents[2].max;
    if (summaryStatus) *summaryStatus = h->summaryStatus;
    return 0;
}

int lineSegment(const NavigationFamily &f, TOVO_Sensor *h, int n, wchar_t **name, unsigned int *beginIndex,
                unsigned int *endIndex, double *minTime, double *maxTime, double *minLatitude, double *maxLatitude,
                double *minLongitude, double *maxLongitude, unsigned int *status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kLineSegment, h, s)) return rc;
    if (!name || !beginIndex || !endIndex || !minTime || !maxTime || !minLatitude || !maxLatitude ||
        !minLongitude || !maxLongitude || !status)
        return kMissingOutput;
    const _TOVO_LnSeg *seg = LnSegIndexSearch(h, n);
    if (!seg) return f.records.code(kNoSegment);
    wchar_t *copy = mallocWideCopy(seg->name);
    if (!copy) return kNoMemory;
    *name = copy;
    *beginIndex = seg->firstRecord;
    *endIndex = seg->lastRecord;
    *minTime = seg->extents[0].min;
    *maxTime = seg->extents[0].max;
    *minLatitude = seg->extents[1].min;
    *maxLatitude = seg->extents[1].max;
    *minLongitude = seg->extents[2].min;
    *maxLongitude = seg->extents[2].max;
    *status = seg->status;
    return 0;
}

int readAt(const NavigationFamily &f, TOVO_Sensor *h, unsigned int n, double *time, double *latitude,
         double *longitude, double *metres, unsigned int *status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kRead, h, s)) return rc;
    if (!time || !latitude || !longitude || !metres || !status) return kMissingOutput;
    if (n < 1 || n > h->recordCount) return f.records.code(kOutOfRange);
    if (int rc = readRecordAt(*h, *s, n)) return rc;
    decodeRecord(*h, s->record, time, latitude, longitude, metres, status);
    // Unsaved edits are what an editor must see.
    if (isUpdate(*h)) *status = h->shadowStatus[n];
    return 0;
}

int readSeq(const NavigationFamily &f, TOVO_Sensor *h, double *time, double *latitude, double *longitude,
            double *metres, unsigned int *status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kReadSeq, h, s)) return rc;
    if (!time || !latitude || !longitude || !metres || !status) return kMissingOutput;
    int rc = 0;
    const unsigned char *bytes = readNextRecord(*h, *s, &rc);
    if (!bytes) return rc;
    decodeRecord(*h, bytes, time, latitude, longitude, metres, status);
    return 0;
}

int bgnSeqWriteSummary(const NavigationFamily &f, TOVO_Sensor *h, unsigned int coordinateType) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kBgnSeqWriteSummary, h, s)) return rc;
    s->familyWords[0] = coordinateType;
    return 0;
}

int bgnSeqWriteLineSegment(const NavigationFamily &f, TOVO_Sensor *h, const wchar_t *sourceName) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kBgnSeqWriteLineSegment, h, s)) return rc;
    return beginLineSegment(*h, f.records, sourceName);
}

int readRange(const NavigationFamily &f, TOVO_Sensor *h, unsigned int first, unsigned int count, double *times,
              double *latitudes, double *longitudes, double *metres, unsigned int *statuses) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kRead, h, s)) return rc;
    if (count == 0) return 0;
    if (!inRange(*h, first, count)) return f.records.code(kOutOfRange);
    const bool edited = isUpdate(*h);
    // decodeRecord's arithmetic, with the handle's scales in locals.
    const double timeScale = h->timeScale, referenceTime = h->referenceTime * 60.0;
    const double positionScale = h->positionScale;
    const double referenceLatitude = h->referenceLatitude * 1e-7, referenceLongitude = h->referenceLongitude * 1e-7;
    auto timeOf = [timeScale, referenceTime](std::uint32_t u) {
        return static_cast<double>(static_cast<std::int32_t>(u)) / timeScale + referenceTime;
    };
    auto position = [positionScale](double reference) {
        return [positionScale, reference](std::uint32_t w) {
            return static_cast<double>(static_cast<std::int32_t>(w)) * positionScale * 1e-9 + reference;
        };
    };
    const auto latitudeOf = position(referenceLatitude), longitudeOf = position(referenceLongitude);
    auto metresOf = [](std::uint32_t u) { return static_cast<std::int32_t>(u) / 1000.0; };
    auto editedStatuses = [&](std::uint32_t i, std::uint32_t n) {
        if (statuses && edited) std::copy_n(h->shadowStatus + first + i, n, statuses + i);
    };
    if (times && latitudes && longitudes && metres && statuses) {
        // The usual call: one pass over each record beats gathering its
        // words first, most of all on short ranges.
        auto decodeRecords = [&](std::uint32_t i, const unsigned char *bytes, std::uint32_t n) {
            for (std::uint32_t j = i; j < i + n; ++j, bytes += kRecordBytes) {
                statuses[j] = loadBe32(bytes);
                times[j] = timeOf(loadBe32(bytes + 4));
                latitudes[j] = latitudeOf(loadBe32(bytes + 8));
                longitudes[j] = longitudeOf(loadBe32(bytes + 12));
                metres[j] = metresOf(loadBe32(bytes + 16));
            }
            editedStatuses(i, n);
            return 0;
        };
        return readRecordBatches(*h, *s, first, count, decodeRecords);
    }
    // Some arrays missing: a field at a time, skipping the missing ones.
    auto decode = [&](std::uint32_t i, std::uint32_t run, const std::uint32_t (*w)[kColumnRun]) {
        auto slots = [i](auto *array) { return array ? array + i : nullptr; };
        fillColumn(slots(times), run, w[1], timeOf);
        fillColumn(slots(latitudes), run, w[2], latitudeOf);
        fillColumn(slots(longitudes), run, w[3], longitudeOf);
        fillColumn(slots(metres), run, w[4], metresOf);
        if (!edited) fillColumn(slots(statuses), run, w[0], [](std::uint32_t u) { return u; });
        editedStatuses(i, run);
    };
    return readRecordBatches(*h, *s, first, count, [&](std::uint32_t i, const unsigned char *bytes, std::uint32_t n) {
        forEachRun<5>(bytes, n, kRecordBytes,
                      [&](std::uint32_t done, std::uint32_t run, const std::uint32_t (*w)[kColumnRun]) {
                          decode(i + done, run, w);
                      });
        return 0;
    });
}

// Appends one record; the per-record and the bulk write share it byte for byte.
int writeRecord(TOVO_Sensor *h, NavigationState *s, double time, double latitude, double longitude, double metres,
                unsigned int status) {
    const bool first = s->firstRecordPending;
    if (first) {
        h->referenceTime = TOVO_EncodeRefTime(time);
        h->referenceLatitude = TOVO_EncodeRefPosition(latitude);
        h->referenceLongitude = TOVO_EncodeRefPosition(longitude);
        s->firstRecordPending = false;
    }
    // Counted before anything can fail: a failed write still counts.
    ++h->recordCount;
    const std::int32_t t = encodeTime(*h, time);
    int rc = 0;
    unsigned char *bytes = beginRecord(*h, *s, t, &rc);
    if (!bytes) return rc;
    storeBe32(bytes, status);
    storeBe32(bytes + 4, static_cast<std::uint32_t>(t));
    storeBe32(bytes + 8, static_cast<std::uint32_t>(encodePosition(*h, latitude, h->referenceLatitude)));
    storeBe32(bytes + 12, static_cast<std::uint32_t>(encodePosition(*h, longitude, h->referenceLongitude)));
    storeBe32(bytes + 16, static_cast<std::uint32_t>(encodeMetres(metres)));
    s->appender.commit(kRecordBytes);
    const double values[3] = {time, latitude, longitude};
    widenExtents(*h, values);
    ++s->written;
    return first ? referencesFixed(*h, *s) : 0;
}

int seqWrite(const NavigationFamily &f, TOVO_Sensor *h, double time, double latitude, double longitude,
             double metres, unsigned int status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kSeqWrite, h, s)) return rc;
    return writeRecord(h, s, time, latitude, longitude, metres, status);
}

int seqWriteRange(const NavigationFamily &f, TOVO_Sensor *h, unsigned int count, const double *times,
                  const double *latitudes, const double *longitudes, const double *metres,
                  const unsigned int *statuses) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kSeqWrite, h, s)) return rc;
    if (count == 0) return 0;
    if (!times || !latitudes || !longitudes || !metres) return kMissingOutput;
    const double *const fields[3] = {times, latitudes, longitudes};
    return appendRecords(
        *h, *s, count, fields,
        [&](std::uint32_t first, std::uint32_t n, unsigned char *bytes, std::int32_t *encodedTimes) {
            // The references are fixed by now.
            for (std::uint32_t i = first; i < first + n; ++i, bytes += kRecordBytes) {
                const std::int32_t t = encodeTime(*h, times[i]);
                storeBe32(bytes, statuses ? statuses[i] : 0);
                storeBe32(bytes + 4, static_cast<std::uint32_t>(t));
                storeBe32(bytes + 8, static_cast<std::uint32_t>(encodePosition(*h, latitudes[i], h->referenceLatitude)));
                storeBe32(bytes + 12,
                          static_cast<std::uint32_t>(encodePosition(*h, longitudes[i], h->referenceLongitude)));
                storeBe32(bytes + 16, static_cast<std::uint32_t>(encodeMetres(metres[i])));
                *encodedTimes++ = t;
            }
        },
        [&](std::uint32_t i) {
            return writeRecord(h, s, times[i], latitudes[i], longitudes[i], metres[i], statuses ? statuses[i] : 0);
        });
}

int endSeqWriteLineSegment(const NavigationFamily &f, TOVO_Sensor *h, unsigned int status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kEndSeqWriteLineSegment, h, s)) return rc;
    return endLineSegment(*h, f.records, status);
}

int endSeqWriteSummary(const NavigationFamily &f, TOVO_Sensor *h, unsigned int status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kEndSeqWriteSummary, h, s)) return rc;
    h->summaryStatus = status;
    return 0;
}

int setSummaryStatus(const NavigationFamily &f, TOVO_Sensor *h, unsigned int status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kSetSummaryStatus, h, s)) return rc;
    h->summaryStatus = status;
    return 0;
}

int setLineSegmentStatusOf(const NavigationFamily &f, TOVO_Sensor *h, int n, unsigned int status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kSetLineSegmentStatus, h, s)) return rc;
    return setLineSegmentStatus(*h, f.records, n, status);
}

int getRecordStatus(const NavigationFamily &f, TOVO_Sensor *h, unsigned int n, unsigned int *status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kGetRecordStatus, h, s)) return rc;
    if (!status) return kMissingOutput;
    if (n < 1 || n > h->recordCount || !h->shadowStatus) return f.records.code(kOutOfRange);
    *status = h->shadowStatus[n];
    return 0;
}

int setRecordStatusOf(const NavigationFamily &f, TOVO_Sensor *h, unsigned int n, unsigned int status) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kSetRecordStatus, h, s)) return rc;
    return setRecordStatus(*h, *s, n, status);
}

int saveStatus(const NavigationFamily &f, TOVO_Sensor *h) {
    NavigationState *s = nullptr;
    if (int rc = check(f, kSaveStatusToDisk, h, s)) return rc;
    return saveStatusToDisk(*h, *s);
}

}  // namespace

// Both families' files have one layout; the twin's table reads them silently.
const RecordFamily &navigationRecords() { return kSSSNavigationRecords; }

}  // namespace velmio

using namespace velmio;

// The exported functions of both families, made from one list.
#define VELMIO_NAVIGATION_FAMILY(P, F)                                                                           \
    extern "C" VELMIO_API TOVO_Sensor *P##OpenDir(const wchar_t *lineDirectory, const wchar_t *token, int *error) { \
        return openDir(F, lineDirectory, token, error);                                                          \
    }                                                                                                            \
    extern "C" VELMIO_API int P##Close(TOVO_Sensor *h) { return closeHandle(F, h); }                              \
    extern "C" VELMIO_API int P##Summary(TOVO_Sensor *h, unsigned int *segmentCount, unsigned int *recordCount,  \
                                         unsigned int *coordinateType, double *minTime, double *maxTime,        \
                                         double *minLat, double *maxLat, double *minLon, double *maxLon,        \
                                         unsigned int *summaryStatus) {                                         \
        return summary(F, h, segmentCount, recordCount, coordinateType, minTime, maxTime, minLat, maxLat,        \
                       minLon, maxLon, summaryStatus);                                                           \
    }                                                                                                            \
    extern "C" VELMIO_API int P##LineSegment(TOVO_Sensor *h, int n, wchar_t **name, unsigned int *begin,         \
                                             unsigned int *end, double *minTime, double *maxTime, double *minLat, \
                                             double *maxLat, double *minLon, double *maxLon,                    \
                                             unsigned int *status) {                                            \
        return lineSegment(F, h, n, name, begin, end, minTime, maxTime, minLat, maxLat, minLon, maxLon, status); \
    }                                                                                                            \
    extern "C" VELMIO_API int P##Read(TOVO_Sensor *h, unsigned int n, double *time, double *lat, double *lon,    \
                                      double *metres, unsigned int *status) {                                   \
        return readAt(F, h, n, time, lat, lon, metres, status);                                                  \
    }                                                                                                            \
    extern "C" VELMIO_API int P##ReadRange(TOVO_Sensor *h, unsigned int first, unsigned int count, double *times,  \
                                           double *lats, double *lons, double *metres, unsigned int *statuses) { \
        return readRange(F, h, first, count, times, lats, lons, metres, statuses);                               \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SeqWriteRange(TOVO_Sensor *h, unsigned int count, const double *times,          \
                                               const double *lats, const double *lons, const double *metres,    \
                                               const unsigned int *statuses) {                                  \
        return seqWriteRange(F, h, count, times, lats, lons, metres, statuses);                                  \
    }                                                                                                            \
    extern "C" VELMIO_API int P##ReadSeq(TOVO_Sensor *h, double *time, double *lat, double *lon, double *metres, \
                                         unsigned int *status) {                                                \
        return readSeq(F, h, time, lat, lon, metres, status);                                                    \
    }                                                                                                            \
    extern "C" VELMIO_API int P##BgnSeqWriteSummary(TOVO_Sensor *h, unsigned int coordinateType) {               \
        return bgnSeqWriteSummary(F, h, coordinateType);                                                         \
    }                                                                                                            \
    extern "C" VELMIO_API int P##BgnSeqWriteLineSegment(TOVO_Sensor *h, const wchar_t *sourceName) {             \
        return bgnSeqWriteLineSegment(F, h, sourceName);                                                         \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SeqWrite(TOVO_Sensor *h, double time, double lat, double lon, double metres,    \
                                          unsigned int status) {                                                \
        return seqWrite(F, h, time, lat, lon, metres, status);                                                   \
    }                                                                                                            \
    extern "C" VELMIO_API int P##EndSeqWriteLineSegment(TOVO_Sensor *h, unsigned int status) {                   \
        return endSeqWriteLineSegment(F, h, status);                                                             \
    }                                                                                                            \
    extern "C" VELMIO_API int P##EndSeqWriteSummary(TOVO_Sensor *h, unsigned int status) {                       \
        return endSeqWriteSummary(F, h, status);                                                                 \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SetSummaryStatus(TOVO_Sensor *h, unsigned int status) {                         \
        return setSummaryStatus(F, h, status);                                                                   \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SetLineSegmentStatus(TOVO_Sensor *h, int n, unsigned int status) {              \
        return setLineSegmentStatusOf(F, h, n, status);                                                          \
    }                                                                                                            \
    extern "C" VELMIO_API int P##GetRecordStatus(TOVO_Sensor *h, unsigned int n, unsigned int *status) {         \
        return getRecordStatus(F, h, n, status);                                                                 \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SetRecordStatus(TOVO_Sensor *h, unsigned int n, unsigned int status) {          \
        return setRecordStatusOf(F, h, n, status);                                                               \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SaveStatusToDisk(TOVO_Sensor *h) { return saveStatus(F, h); }                    \
    extern "C" VELMIO_API int P##RemoveDir(const wchar_t *lineDirectory) {                                       \
        return SensorRemoveDir(lineDirectory, F.stem);                                                           \
    }

VELMIO_NAVIGATION_FAMILY(Navigation, kNavigation)
VELMIO_NAVIGATION_FAMILY(SSSNavigation, kSSSNavigation)
