#include "sensors/record_family.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "foundation/diagnostics.h"
#include "platform/files.h"
#include "platform/stdio_file.h"

#include <cstdio>
#include <new>

namespace velmio {

using namespace xdr;

namespace {

constexpr std::uint32_t kMaxSummaryBytes = 16 * 4;

void sayIf(const char *message) {
    if (message) say("%s", message);
}

std::uint32_t *summaryWord(TOVO_Sensor &h, SummaryWord w) {
    switch (w) {
    case SummaryWord::Status: return &h.summaryStatus;
    case SummaryWord::RecordCount: return &h.recordCount;
    case SummaryWord::FamilyWord0: return &h.familyWords[0];
    default: return nullptr;
    }
}

std::int32_t *signedSummaryWord(TOVO_Sensor &h, SummaryWord w) {
    switch (w) {
    case SummaryWord::TimeScale: return &h.timeScale;
    case SummaryWord::ReferenceTime: return &h.referenceTime;
    case SummaryWord::PositionScale: return &h.positionScale;
    case SummaryWord::ReferenceLatitude: return &h.referenceLatitude;
    case SummaryWord::ReferenceLongitude: return &h.referenceLongitude;
    default: return nullptr;
    }
}

int invalidWord(const RecordFamily &f, int word) {
    if (f.summaryMessages) sayIf(f.summaryMessages[word]);
    return f.code(kSummaryInvalid);
}

}  // namespace

int readSummary(TOVO_Sensor &h, const RecordFamily &f) {
    if (int rc = TOVO_ReadDataValidationRecord(&h)) {
        sayIf(f.headerInvalidMessage);
        return f.headerInvalidCode ? f.headerInvalidCode : rc;
    }
    char block[kMaxSummaryBytes];
    const std::size_t bytes = 4 * static_cast<std::size_t>(f.summaryWordCount);
    if (std::fread(block, 1, bytes, h.dataFile) != bytes) {
        sayIf(f.summaryShortMessage);
        return f.code(kReadFailed);
    }
    XDR x;
    xdrmem_create(&x, block, static_cast<unsigned int>(bytes), XDR_DECODE);
    int units[kMaxExtents][2] = {};  // the extents' encoded bounds, decoded once the references are known
    for (int i = 0; i < f.summaryWordCount; ++i) {
        const SummaryField &field = f.summary[i];
        bool ok;
        if (std::uint32_t *u = summaryWord(h, field.word)) {
            ok = xdr_u_int(&x, u);
        } else if (std::int32_t *s = signedSummaryWord(h, field.word)) {
            ok = xdr_int(&x, s);
        } else {
            ok = xdr_int(&x, &units[field.extent][field.word == SummaryWord::ExtentMax ? 1 : 0]);
        }
        if (!ok) return invalidWord(f, i);
    }
    // Scales divide every time and position; a record count must fit the
    // file before a shadow or anything else is sized by it.
    const std::int64_t size = platform::fileSize(h.dataFile);
    const std::int64_t room = size - static_cast<std::int64_t>(f.dataStart());
    for (int i = 0; i < f.summaryWordCount; ++i) {
        const SummaryWord w = f.summary[i].word;
        if ((w == SummaryWord::TimeScale && h.timeScale <= 0) ||
            (w == SummaryWord::PositionScale && h.positionScale <= 0) ||
            (w == SummaryWord::RecordCount && static_cast<std::int64_t>(h.recordCount) * f.recordSize > room))
            return invalidWord(f, i);
    }
    for (int i = 0; i < f.summaryWordCount; ++i) {
        const SummaryField &field = f.summary[i];
        if (field.word != SummaryWord::ExtentMin && field.word != SummaryWord::ExtentMax) continue;
        const ExtentKind kind = f.segments.kinds[field.extent];
        Extent &e = h.extents[field.extent];
        if (field.word == SummaryWord::ExtentMin)
            e.min = decodeExtent(h, kind, units[field.extent][0]);
        else
            e.max = decodeExtent(h, kind, units[field.extent][1]);
    }
    return 0;
}

namespace {

int loadStatusShadow(TOVO_Sensor &h, RecordState &s) {
    const RecordFamily &f = s.family;
    if (SensorAllocStatusShadow(&h) != 0) {
        sayIf(f.shadow.noMemory);
        return kNoMemory;
    }
    // A line without records has nothing to load (and no record 1 to find).
    if (h.recordCount == 0) return 0;
    std::uint32_t offset = 0;
    if (mapRecord(h, f, 1, offset) != 0) {
        sayIf(f.shadow.notMapped);
        return f.code(kNotMapped);
    }
    s.window.invalidate();
    std::uint64_t at = offset;
    for (std::uint32_t n = 1; n <= h.recordCount; ++n, at += f.recordSize) {
        const unsigned char *bytes = s.window.at(*s.source, at, f.recordSize);
        if (!bytes) {
            sayIf(f.shadow.readFailed);
            return f.code(kReadFailed);
        }
        h.shadowStatus[n] = loadBe32(bytes);
    }
    s.window.invalidate();
    return 0;
}

// The segment writer builds narrow names; running out of memory there must
// not escape through the C interface.
int writeSegments(TOVO_Sensor &h, const RecordFamily &f) {
    try {
        return writeLineSegmentFile(h, f.segments);
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

int openExisting(TOVO_Sensor &h, RecordState &s) {
    const RecordFamily &f = s.family;
    if (int rc = readSummary(h, f)) return rc;
    try {
        if (int rc = readLineSegmentFile(h, f.segments)) return rc;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    if (int rc = TmIdxRead(&h)) return rc;
    if (isUpdate(h)) return loadStatusShadow(h, s);
    return 0;
}

}  // namespace

// The byte offset of record n. Offsets from the time index must name a
// whole record inside the data area: a damaged index must never make a
// status save overwrite the header or another record's fields.
int mapRecord(TOVO_Sensor &h, const RecordFamily &f, std::uint32_t n, std::uint32_t &offset) {
    if (h.timeIndex.map(n, offset) != 0) return f.code(kNotMapped);
    const std::uint64_t start = f.dataStart();
    const std::uint64_t end = start + static_cast<std::uint64_t>(h.recordCount) * f.recordSize;
    if (offset < start || (offset - start) % f.recordSize != 0 || offset + std::uint64_t{f.recordSize} > end)
        return f.code(kNotMapped);
    return 0;
}

int openRecordFamily(TOVO_Sensor *h, RecordState *state) {
    h->familyState = state;  // owned by the handle from here on
    const RecordFamily &f = state->family;
    int rc = 0;
    state->source.reset(new (std::nothrow) FileSource(fileno(h->dataFile)));
    if (!state->source) {
        rc = kNoMemory;
    } else if (isCreate(*h)) {
        rc = TOVO_WriteDataValidationRecord(h);
        if (rc == 0 && std::fseek(h->dataFile, static_cast<long>(f.dataStart() - 16), SEEK_CUR) != 0)
            rc = f.code(kSummaryNotReserved);
        state->appender.start(state->source.get(), f.dataStart());
        h->firstRecordPending = 1;
    } else {
        rc = openExisting(*h, *state);
    }
    state->nextOffset = f.dataStart();
    if (rc != 0) {
        std::fclose(h->dataFile);
        h->dataFile = nullptr;
        SensorFree(h);
    }
    return rc;
}

int readRecordAt(TOVO_Sensor &h, RecordState &s, std::uint32_t n) {
    const RecordFamily &f = s.family;
    std::uint32_t offset = 0;
    if (int rc = mapRecord(h, f, n, offset)) return rc;
    if (s.source->readAt(offset, s.record, f.recordSize) != f.recordSize) return f.code(kReadFailed);
    s.nextOffset = std::uint64_t{offset} + f.recordSize;
    return 0;
}

const unsigned char *readNextRecord(TOVO_Sensor &, RecordState &s, int *rc) {
    const RecordFamily &f = s.family;
    const unsigned char *bytes = s.window.at(*s.source, s.nextOffset, f.recordSize);
    if (!bytes) {
        *rc = f.code(kReadFailed);
        return nullptr;
    }
    s.nextOffset += f.recordSize;
    return bytes;
}

int beginRecord(TOVO_Sensor &h, RecordState &s, std::int32_t encodedTime) {
    // Offsets are 32-bit in the index: a data file beyond 4 GiB cannot be indexed.
    const std::uint64_t offset = s.appender.offset();
    if (offset > 0xFFFFFFFFu) return s.family.code(kTimeIndexEntry);
    if (h.timeIndex.append(encodedTime, static_cast<std::uint32_t>(offset)) != 0) {
        say("TmIdxEntry: out of memory\n");
        return s.family.code(kTimeIndexEntry);
    }
    return 0;
}

int finishRecord(TOVO_Sensor &h, RecordState &s) {
    if (!s.appender.append(s.record, s.family.recordSize)) return s.family.code(kWriteFailed);
    // The references the first record fixed go to the disk at once: a writer
    // killed later leaves records that can still be decoded and salvaged.
    if (!s.summaryOnDisk) {
        if (writeSummary(h, s) != 0 || platform::flushFile(h.dataFile) != 0)
            return s.family.code(kSummaryNotWritten);
        s.summaryOnDisk = true;
    }
    return 0;
}

void widenExtents(TOVO_Sensor &h, const double *values, int count) {
    for (int k = 0; k < count; ++k) {
        h.extents[k].widen(values[k]);
        if (h.lastSegment) h.lastSegment->extents[k].widen(values[k]);
    }
}

int writeSummary(TOVO_Sensor &h, RecordState &s) {
    const RecordFamily &f = s.family;
    char block[kMaxSummaryBytes];
    const std::size_t bytes = 4 * static_cast<std::size_t>(f.summaryWordCount);
    XDR x;
    xdrmem_create(&x, block, static_cast<unsigned int>(bytes), XDR_ENCODE);
    for (int i = 0; i < f.summaryWordCount; ++i) {
        const SummaryField &field = f.summary[i];
        bool ok;
        if (std::uint32_t *u = summaryWord(h, field.word)) {
            ok = xdr_u_int(&x, u);
        } else if (std::int32_t *w = signedSummaryWord(h, field.word)) {
            ok = xdr_int(&x, w);
        } else {
            const Extent &e = h.extents[field.extent];
            int unit = encodeExtent(h, f.segments.kinds[field.extent],
                                    field.word == SummaryWord::ExtentMin ? e.min : e.max);
            ok = xdr_int(&x, &unit);
        }
        if (!ok) return f.code(kSummaryNotWritten);
    }
    if (TOVO_WriteDataValidationRecord(&h) != 0) return f.code(kSummaryNotWritten);
    if (std::fwrite(block, 1, bytes, h.dataFile) != bytes) return f.code(kWriteFailed);
    return 0;
}

int saveStatusToDisk(TOVO_Sensor &h, RecordState &s) {
    const RecordFamily &f = s.family;
    if (writeSummary(h, s) != 0) return f.code(kSummaryNotWritten);
    if (int rc = writeSegments(h, f)) return rc;
    if (h.statusChanged) {
        for (std::uint32_t n = 1; n <= h.recordCount; ++n) {
            if (!h.shadowChanged[n]) continue;
            // Only the status unit changes; the rest of the record is
            // written back as it was read.
            std::uint32_t offset = 0;
            if (mapRecord(h, f, n, offset) != 0 || s.source->readAt(offset, s.record, f.recordSize) != f.recordSize)
                return f.code(kStatusNotSaved);  // the rest stays marked for the next save
            storeBe32(s.record, h.shadowStatus[n]);
            if (!s.source->writeAt(offset, s.record, f.recordSize)) return f.code(kStatusNotSaved);
            h.shadowChanged[n] = 0;
        }
        h.statusChanged = 0;
    }
    if (std::fflush(h.dataFile) != 0) return f.code(kSeekFailed);
    return 0;
}

int closeRecordFamily(TOVO_Sensor *h, RecordState &s) {
    const RecordFamily &f = s.family;
    int rc = 0;
    auto note = [&rc](int code) {
        if (rc == 0) rc = code;
    };
    const bool create = isCreate(*h);
    if (create && !s.appender.flush()) note(f.code(kSeekFailed));
    if (create && s.written > 0 && writeSummary(*h, s) != 0) note(f.code(kSummaryNotWritten));
    if (h->dataFile) {
        // A created line is on the disk once Close returns.
        const bool pushed = create && s.written > 0 ? platform::syncFile(h->dataFile) == 0 : std::fflush(h->dataFile) == 0;
        if (!pushed) note(f.code(kSeekFailed));
        if (std::fclose(h->dataFile) != 0) note(f.code(kCloseFailed));
        h->dataFile = nullptr;
    }
    if (create) {
        if (s.written == 0) {
            // Nothing was recorded: leave no files, not even those of an
            // earlier write of this line that the create truncated.
            platform::removeFile(h->dataPath.c_str());
            platform::removeFile(h->segmentPath.c_str());
            platform::removeFile(h->timeIndexPath.c_str());
        } else {
            if (int code = writeSegments(*h, f)) note(code);
            if (TmIdxWrite(h) != 0) note(f.code(kTimeIndexNotWritten));
        }
    }
    if (SensorFree(h) != 0) note(f.code(kFreeFailed));
    return rc;
}

int beginLineSegment(TOVO_Sensor &h, const RecordFamily &f, const wchar_t *sourceName) {
    if (!isCreate(h)) return f.code(kWrongMode);
    return beginSegment(h, sourceName, h.recordCount + 1);
}

int endLineSegment(TOVO_Sensor &h, const RecordFamily &f, unsigned int status) {
    if (!isCreate(h)) return f.code(kWrongMode);
    if (!h.lastSegment) return f.code(kNoSegment);
    h.lastSegment->lastRecord = h.recordCount;
    h.lastSegment->status = status;
    return 0;
}

int setLineSegmentStatus(TOVO_Sensor &h, const RecordFamily &f, int segmentNumber, unsigned int status) {
    if (!isUpdate(h)) return f.code(kWrongMode);
    _TOVO_LnSeg *seg = LnSegIndexSearch(&h, segmentNumber);
    if (!seg) return f.code(kNoSegment);
    seg->status = status;
    return 0;
}

int setRecordStatus(TOVO_Sensor &h, const RecordFamily &f, unsigned int recordNumber, unsigned int status) {
    if (!isUpdate(h)) return f.code(kWrongMode);
    if (recordNumber < 1 || recordNumber > h.recordCount || !h.shadowStatus) return f.code(kOutOfRange);
    h.shadowStatus[recordNumber] = status;
    h.shadowChanged[recordNumber] = 1;
    h.statusChanged = 1;
    return 0;
}

}  // namespace velmio
