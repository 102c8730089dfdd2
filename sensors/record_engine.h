// The one lifecycle of every sensor family's data file: the validation
// record and the summary block behind it (described by a table of words),
// the line segments, the time index, the access modes and the close. Two
// layouts sit on top: fixed-size records (record_family.h) and profiles, a
// header whose count gives the number of fixed-size items behind it
// (profile_cursor.h). Families describe themselves as data; the bytes go
// through a ByteSource.
#ifndef VELMIO_SENSORS_RECORD_ENGINE_H
#define VELMIO_SENSORS_RECORD_ENGINE_H

#include "encoding/rounding.h"
#include "linestore/byte_source.h"
#include "linestore/line_segment_file.h"
#include "linestore/sensor.h"

#include <cstdint>
#include <memory>

namespace velmio {

// The reason digits of every family: a family's code is its block plus the
// reason (observed depths 5000200 + 19 = 5000219, gyro 5001200 + 19).
enum Reason {
    kSegmentOpenFailed = 1,
    kSegmentNotWritten = 2,
    kSegmentInvalid = 3,
    kSummaryNotWritten = 5,
    kSummaryInvalid = 6,
    kNotMapped = 8,
    kShadowNotLoaded = 9,
    kStatusNotSaved = 10,
    kSummaryNotReserved = 11,
    kNullHandle = 12,
    kWrongType = 13,
    kTimeIndexNotWritten = 14,
    kSeekFailed = 15,
    kFreeFailed = 16,
    kNoSegment = 17,
    kWrongMode = 18,
    kOutOfRange = 19,
    kNotDecoded = 21,
    kNotEncoded = 22,
    kTimeIndexEntryFailed = 23,
    kWriteFailed = 24,
    kReadFailed = 25,
    kCloseFailed = 26,
    kEditNotCoded = 27,
    kBackupFailed = 28,
    kOwnBeamRange = 28,  // total propagated error: beam outside the profile
};

constexpr int kNoMemory = 5000009;
constexpr int kMissingOutput = -1;  // also: a handle without the family's state

// The largest summary block and record (header or item) of any family; each
// family checks its own against these at compile time.
constexpr unsigned kMaxSummaryWords = 18;  // total propagated error
constexpr unsigned kMaxRecordBytes = 24;   // observed depths beams of format version 1
constexpr unsigned kMaxRecordWords = kMaxRecordBytes / 4;

// One word of a summary block, in file order.
enum class SummaryWord {
    Status,
    RecordCount,     // records, or profiles
    ItemCount,       // profiles: the beams of all profiles
    FamilyWord0,     // tool type; navigation: the coordinate type
    FamilyWord1,     // a second tool type
    TimeScale,
    DepthTimeScale,
    ReferenceTime,
    PositionScale,
    ReferenceLatitude,
    ReferenceLongitude,
    ExtentMin,       // of extents[extent], in the field's kind
    ExtentMax,
    Zero,            // reserved: written as 0, not read
};

struct SummaryField {
    SummaryWord word;
    int extent = 0;
    ExtentKind kind = ExtentKind::Time;
};

// Bytes of one file's records: fixed-size records have no items.
struct RecordGeometry {
    unsigned headerBytes;   // a record, or a profile header
    unsigned itemBytes;     // a beam or sample behind a profile header
    bool countOnlyLayout;   // profiles: the layout word is the count, first item 1
};

struct EngineFamily {
    int block;                        // codes are block + reason
    std::uint32_t writeVersion;       // data file format version of new files
    RecordGeometry geometry;          // of the format version written now
    RecordGeometry version1;          // of format version 1 files, when headerBytes is not 0
    int summaryWordCount;
    const SummaryField *summary;
    // One per word, printed when it is not valid (null: nothing printed).
    const char *const *summaryMessages;
    SegmentFileFormat segments;
    // A data validation record that does not match: the code (0 passes the
    // record's own code through) and a message.
    int headerInvalidCode;
    const char *headerInvalidMessage;
    int shortSummaryReason;           // the summary block is short
    const char *summaryShortMessage;
    int timeIndexWriteCode;           // 0: the time index's own code passes through
    // A summary not written at close: this code (0: the write's own code).
    int summaryCloseCode;

    int code(int reason) const { return block + reason; }
    std::uint32_t dataStart() const { return 16 + 4 * static_cast<std::uint32_t>(summaryWordCount); }
};

// The state every family hangs on its handle, recognised by its family
// pointer (no cast per call). Family words and scales live here; what the
// line store needs (references, scales, extents, counts) stays on the handle.
struct EngineState : FamilyState {
    explicit EngineState(const EngineFamily &f) : family(f), geometry(f.geometry) { owner = &f; }

    const EngineFamily &family;
    RecordGeometry geometry;          // of the file open
    std::uint32_t familyWords[2] = {0, 0};
    std::uint32_t itemCount = 0;
    std::int32_t depthTimeScale = 1000;
    bool firstRecordPending = false;  // create: the first record fixes the references
    std::int64_t fileSize = -1;       // of the data file when opened to read
    std::uint32_t written = 0;        // records or profiles begun through this handle
    std::unique_ptr<ByteSource> source;
    ReadWindow window;
    AppendBuffer appender;            // create mode
    unsigned char record[kMaxRecordBytes] = {};  // the record in hand
};

// The engine state of a handle of family f, or null.
template <class State>
State *stateOf(const TOVO_Sensor *h, const EngineFamily &f) {
    return h && h->familyState && h->familyState->owner == &f ? static_cast<State *>(h->familyState) : nullptr;
}

// Modes other than query and update are written like a create, as the open does.
inline bool isCreate(const TOVO_Sensor &h) { return h.accessMode != 2 && h.accessMode != 3; }
inline bool isUpdate(const TOVO_Sensor &h) { return h.accessMode == 3; }

// The arithmetic of TOVO_DecodeMeters and TOVO_DecodeDepthTime inline, for
// the record loops: the same operations give the same values.
inline double decodeMetres(std::int32_t unit) { return unit / 1000.0; }
// TOVO_EncodeTime against the handle's references, inline for the record
// writers: the same operations in the same order give the same units.
inline std::int32_t encodeTime(const TOVO_Sensor &h, double time) {
    return nint((time - h.referenceTime * 60.0) * h.timeScale);
}
// TOVO_EncodeMeters inline, for the record writers: the same clamps and rounding.
inline std::int32_t encodeMetres(double metres) {
    return metres > 2000000.0 ? 2147483647 : metres < -2000000.0 ? -2147483647 - 1 : nint(metres * 1000.0);
}
inline double decodeDepthTime(double reference, std::int32_t scale, std::int32_t unit) {
    return static_cast<double>(unit) / scale + reference;
}

// Completes a handle fresh from SensorOpenDir: installs the state, then
// writes the validation record and a blank summary (create), or reads and
// checks the summary, the line segments and the time index. On failure the
// files are closed (a created data file removed), the handle is released
// and the code is returned.
int openEngine(TOVO_Sensor *h, EngineState *state);

// Decodes the validation record and the summary block of the data file
// (through s.source) into the handle and the state, then checks scales and
// counts against the file: 0 or the family's code (the words read stay set).
int readSummary(TOVO_Sensor &h, EngineState &s);

// Create mode: the time index entry of the record or profile about to be
// appended, at the offset it will have.
int indexEntryFailed(const EngineState &s);
inline int appendIndexEntry(TOVO_Sensor &h, EngineState &s, std::int32_t encodedTime) {
    // Offsets are 32-bit in the index: a data file beyond 4 GiB cannot be indexed.
    const std::uint64_t offset = s.appender.offset();
    if (offset > 0xFFFFFFFFu || h.timeIndex.append(encodedTime, static_cast<std::uint32_t>(offset)) != 0)
        return indexEntryFailed(s);
    return 0;
}
// Create mode, once the first record has fixed the references: writes the
// summary as it stands, so that a writer killed later leaves a data file
// whose summary decodes.
int referencesFixed(TOVO_Sensor &h, EngineState &s);

// Writes the validation record and the summary at the start of the file.
int writeSummaryBlock(TOVO_Sensor &h, EngineState &s);
// Replaces the line segment file (running out of memory is a code).
int writeSegments(TOVO_Sensor &h, EngineState &s);

// Create: flushes the records, writes summary, segments and time index (or,
// with nothing written, removes the line's files). Update with saveSummary:
// writes summary and segments. Then closes the data file and releases the
// handle whatever happens: the first failure's code.
int closeEngine(TOVO_Sensor *h, EngineState &s, bool saveSummary);

}  // namespace velmio

#endif
