#include "sensors/record_family.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "foundation/diagnostics.h"

#include <cstdio>
#include <new>

namespace velmio {

namespace {

void sayIf(const char *message) {
    if (message) say("%s", message);
}

int loadStatusShadow(TOVO_Sensor &h, RecordState &s) {
    const RecordFamily &f = s.records;
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
    for (std::uint32_t n = 1; n <= h.recordCount; ++n, at += f.recordSize()) {
        const unsigned char *bytes = s.window.at(*s.source, at, f.recordSize());
        if (!bytes) {
            sayIf(f.shadow.readFailed);
            return f.code(kReadFailed);
        }
        h.shadowStatus[n] = loadBe32(bytes);
    }
    s.window.invalidate();
    return 0;
}

}  // namespace

// The byte offset of record n. Offsets from the time index must name a
// whole record inside the data area: a damaged index must never make a
// status save overwrite the header or another record's fields.
int mapRecord(TOVO_Sensor &h, const RecordFamily &f, std::uint32_t n, std::uint32_t &offset) {
    if (h.timeIndex.map(n, offset) != 0) return f.code(kNotMapped);
    const std::uint64_t start = f.dataStart();
    const std::uint64_t end = start + static_cast<std::uint64_t>(h.recordCount) * f.recordSize();
    if (offset < start || (offset - start) % f.recordSize() != 0 || offset + std::uint64_t{f.recordSize()} > end)
        return f.code(kNotMapped);
    return 0;
}

int rangeStart(TOVO_Sensor &h, const RecordFamily &f, std::uint32_t first, std::uint32_t count,
               std::uint32_t &offset, bool &contiguous) {
    if (int rc = mapRecord(h, f, first, offset)) return rc;
    std::uint32_t last = offset;
    contiguous = count <= 1 || (mapRecord(h, f, first + count - 1, last) == 0 &&
                                std::uint64_t{last} - offset == std::uint64_t{count - 1} * f.recordSize());
    return 0;
}

int openRecordFamily(TOVO_Sensor *h, RecordState *state) {
    if (int rc = openEngine(h, state)) return rc;
    state->nextOffset = state->family.dataStart();
    if (isUpdate(*h)) {
        if (int rc = loadStatusShadow(*h, *state)) {
            std::fclose(h->dataFile);
            h->dataFile = nullptr;
            SensorFree(h);
            return rc;
        }
    }
    return 0;
}

int readRecordAt(TOVO_Sensor &h, RecordState &s, std::uint32_t n) {
    const RecordFamily &f = s.records;
    // Records lie one after another in every file we write: the read starts
    // at that place while the index entry, far off in a long line, is
    // fetched; the entry still decides, and a mismatch is read again.
    const std::uint64_t guess = f.dataStart() + std::uint64_t{n - 1} * f.recordSize();
    h.timeIndex.prefetch(n);
    const bool read = n != 0 && s.source->readAt(guess, s.record, f.recordSize()) == f.recordSize();
    std::uint32_t offset = 0;
    if (int rc = mapRecord(h, f, n, offset)) return rc;
    if ((!read || offset != guess) && s.source->readAt(offset, s.record, f.recordSize()) != f.recordSize())
        return f.code(kReadFailed);
    s.nextOffset = std::uint64_t{offset} + f.recordSize();
    return 0;
}

const unsigned char *readNextRecord(TOVO_Sensor &, RecordState &s, int *rc) {
    const RecordFamily &f = s.records;
    const unsigned char *bytes = s.window.at(*s.source, s.nextOffset, f.recordSize());
    if (!bytes) {
        *rc = f.code(kReadFailed);
        return nullptr;
    }
    s.nextOffset += f.recordSize();
    return bytes;
}

int saveStatusToDisk(TOVO_Sensor &h, RecordState &s) {
    const RecordFamily &f = s.records;
    if (writeSummaryBlock(h, s) != 0) return f.code(kSummaryNotWritten);
    if (int rc = writeSegments(h, s)) return rc;
    if (s.statusChanged) {
        for (std::uint32_t n = 1; n <= h.recordCount; ++n) {
            if (!h.shadowChanged[n]) continue;
            // Only the status unit changes; the rest of the record is
            // written back as it was read.
            std::uint32_t offset = 0;
            if (mapRecord(h, f, n, offset) != 0 ||
                s.source->readAt(offset, s.record, f.recordSize()) != f.recordSize())
                return f.code(kStatusNotSaved);  // the rest stays marked for the next save
            storeBe32(s.record, h.shadowStatus[n]);
            if (!s.source->writeAt(offset, s.record, f.recordSize())) return f.code(kStatusNotSaved);
            h.shadowChanged[n] = 0;
        }
        s.statusChanged = false;
    }
    if (std::fflush(h.dataFile) != 0) return f.code(kSeekFailed);
    return 0;
}

int closeRecordFamily(TOVO_Sensor *h, RecordState &s) { return closeEngine(h, s, false); }

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

int setRecordStatus(TOVO_Sensor &h, RecordState &s, unsigned int recordNumber, unsigned int status) {
    const RecordFamily &f = s.records;
    if (!isUpdate(h)) return f.code(kWrongMode);
    if (recordNumber < 1 || recordNumber > h.recordCount || !h.shadowStatus) return f.code(kOutOfRange);
    h.shadowStatus[recordNumber] = status;
    h.shadowChanged[recordNumber] = 1;
    s.statusChanged = true;
    return 0;
}

}  // namespace velmio
