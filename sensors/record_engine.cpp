#include "sensors/record_engine.h"

#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "foundation/diagnostics.h"
#include "linestore/memory_line.h"
#include "platform/files.h"
#include "platform/stdio_file.h"

#include <cstdio>
#include <new>

namespace velmio {

namespace {

constexpr std::uint32_t kMagic = 0x544F564F;
constexpr std::uint32_t kDataRecord = 1;
constexpr int kValidationNotWritten = 5000028;

void sayIf(const char *message) {
    if (message) say("%s", message);
}

std::uint32_t *unsignedWord(TOVO_Sensor &h, EngineState &s, SummaryWord w) {
    switch (w) {
    case SummaryWord::Status: return &h.summaryStatus;
    case SummaryWord::RecordCount: return &h.recordCount;
    case SummaryWord::ItemCount: return &s.itemCount;
    case SummaryWord::FamilyWord0: return &s.familyWords[0];
    case SummaryWord::FamilyWord1: return &s.familyWords[1];
    default: return nullptr;
    }
}

std::int32_t *signedWord(TOVO_Sensor &h, EngineState &s, SummaryWord w) {
    switch (w) {
    case SummaryWord::TimeScale: return &h.timeScale;
    case SummaryWord::DepthTimeScale: return &s.depthTimeScale;
    case SummaryWord::ReferenceTime: return &h.referenceTime;
    case SummaryWord::PositionScale: return &h.positionScale;
    case SummaryWord::ReferenceLatitude: return &h.referenceLatitude;
    case SummaryWord::ReferenceLongitude: return &h.referenceLongitude;
    default: return nullptr;
    }
}

bool isScale(SummaryWord w) {
    return w == SummaryWord::TimeScale || w == SummaryWord::DepthTimeScale || w == SummaryWord::PositionScale;
}

int invalidWord(const EngineFamily &f, int word) {
    if (f.summaryMessages) sayIf(f.summaryMessages[word]);
    return f.code(kSummaryInvalid);
}

// The validation record and the summary, as they are written at the start
// of the data file: 0 or the size in bytes.
std::size_t encodeSummaryBlock(TOVO_Sensor &h, EngineState &s, unsigned char *out) {
    const EngineFamily &f = s.family;
    const std::uint32_t validation[4] = {kMagic, h.typeId, kDataRecord, h.formatVersion};
    for (int i = 0; i < 4; ++i) storeBe32(out + 4 * i, validation[i]);
    unsigned char *p = out + 16;
    for (int i = 0; i < f.summaryWordCount; ++i, p += 4) {
        const SummaryField &field = f.summary[i];
        std::uint32_t word = 0;
        if (const std::uint32_t *u = unsignedWord(h, s, field.word)) {
            word = *u;
        } else if (const std::int32_t *v = signedWord(h, s, field.word)) {
            word = static_cast<std::uint32_t>(*v);
        } else if (field.word != SummaryWord::Zero) {
            const Extent &e = h.extents[field.extent];
            word = static_cast<std::uint32_t>(
                encodeExtent(h, field.kind, field.word == SummaryWord::ExtentMin ? e.min : e.max));
        }
        storeBe32(p, word);
    }
    return f.dataStart();
}

}  // namespace

int readSummary(TOVO_Sensor &h, EngineState &s) {
    const EngineFamily &f = s.family;
    unsigned char validation[16];
    const int checked = s.source->readAt(0, validation, sizeof validation) == 16
                            ? checkDataValidationRecord(h, validation)
                            : 5000027;  // as a short read of the record
    if (checked != 0) {
        sayIf(f.headerInvalidMessage);
        return f.headerInvalidCode ? f.headerInvalidCode : checked;
    }
    if (h.formatVersion < 2 && f.version1.headerBytes != 0) s.geometry = f.version1;
    unsigned char block[4 * kMaxSummaryWords];
    const std::size_t bytes = 4 * static_cast<std::size_t>(f.summaryWordCount);
    if (s.source->readAt(16, block, bytes) != static_cast<std::int64_t>(bytes)) {
        sayIf(f.summaryShortMessage);
        return f.code(f.shortSummaryReason);
    }
    std::int32_t units[kMaxExtents][2] = {};  // extents decode once the references are known
    for (int i = 0; i < f.summaryWordCount; ++i) {
        const SummaryField &field = f.summary[i];
        const std::uint32_t word = loadBe32(block + 4 * i);
        if (std::uint32_t *u = unsignedWord(h, s, field.word))
            *u = word;
        else if (std::int32_t *v = signedWord(h, s, field.word))
            *v = static_cast<std::int32_t>(word);
        else if (field.word != SummaryWord::Zero)
            units[field.extent][field.word == SummaryWord::ExtentMax ? 1 : 0] = static_cast<std::int32_t>(word);
    }
    // Scales divide every time and position; the counts must fit the file
    // before anything is sized or positioned by them.
    s.fileSize = platform::fileSize(h.dataFile);
    const std::uint64_t needed = std::uint64_t{h.recordCount} * s.geometry.headerBytes +
                                 std::uint64_t{s.itemCount} * s.geometry.itemBytes;
    const std::int64_t room = s.fileSize - static_cast<std::int64_t>(f.dataStart());
    const bool fits = s.fileSize >= 0 && room >= 0 && needed <= static_cast<std::uint64_t>(room);
    for (int i = 0; i < f.summaryWordCount; ++i) {
        const SummaryWord w = f.summary[i].word;
        const std::int32_t *v = signedWord(h, s, w);
        if ((isScale(w) && *v <= 0) || (w == SummaryWord::RecordCount && !fits)) return invalidWord(f, i);
    }
    for (int i = 0; i < f.summaryWordCount; ++i) {
        const SummaryField &field = f.summary[i];
        Extent &e = h.extents[field.extent];
        if (field.word == SummaryWord::ExtentMin) e.min = decodeExtent(h, field.kind, units[field.extent][0]);
        if (field.word == SummaryWord::ExtentMax) e.max = decodeExtent(h, field.kind, units[field.extent][1]);
    }
    return 0;
}

namespace {

int openExisting(TOVO_Sensor &h, EngineState &s) {
    if (int rc = readSummary(h, s)) return rc;
    try {
        if (int rc = readLineSegmentFile(h, s.family.segments)) return rc;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
    return readTimeIndexOf(h);
}

int openNew(TOVO_Sensor &h, EngineState &s) {
    const EngineFamily &f = s.family;
    h.formatVersion = f.writeVersion;
    // The blank summary reserves its place; records are appended behind it.
    unsigned char block[16 + 4 * kMaxSummaryWords];
    const std::size_t bytes = encodeSummaryBlock(h, s, block);
    for (std::size_t i = 16; i < bytes; ++i) block[i] = 0;
    if (!s.source->writeAt(0, block, bytes)) return kValidationNotWritten;
    s.appender.start(s.source.get(), f.dataStart());
    s.firstRecordPending = true;
    return 0;
}

}  // namespace

int openEngine(TOVO_Sensor *h, EngineState *state) {
    h->familyState = state;  // owned by the handle from here on
    int rc = 0;
    if (h->memory)
        state->source.reset(new (std::nothrow) MemorySource(&h->memory->data.bytes));
    else
        state->source.reset(new (std::nothrow) FileSource(fileno(h->dataFile)));
    h->dataSource = state->source.get();
    if (!state->source)
        rc = kNoMemory;
    else
        rc = isCreate(*h) ? openNew(*h, *state) : openExisting(*h, *state);
    if (rc != 0) {
        std::fclose(h->dataFile);
        h->dataFile = nullptr;
        // A file this open created and could not begin is of no use to anyone.
        if (isCreate(*h)) platform::removeFile(h->dataPath.c_str());
        SensorFree(h);
    }
    return rc;
}

int indexEntryFailed(const EngineState &s) {
    if (s.appender.offset() <= 0xFFFFFFFFu) say("TmIdxEntry: out of memory\n");
    return s.family.code(kTimeIndexEntryFailed);
}

int referencesFixed(TOVO_Sensor &h, EngineState &s) { return writeSummaryBlock(h, s); }

int writeSummaryBlock(TOVO_Sensor &h, EngineState &s) {
    unsigned char block[16 + 4 * kMaxSummaryWords];
    const std::size_t bytes = encodeSummaryBlock(h, s, block);
    if (!s.source || !s.source->writeAt(0, block, bytes)) return s.family.code(kWriteFailed);
    return 0;
}

int writeSegments(TOVO_Sensor &h, EngineState &s) {
    // The segment writer builds narrow names: running out of memory there
    // must not escape through the C interface.
    try {
        return writeLineSegmentFile(h, s.family.segments);
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

int closeEngine(TOVO_Sensor *h, EngineState &s, bool saveSummary) {
    const EngineFamily &f = s.family;
    int rc = 0;
    auto note = [&rc](int code) {
        if (rc == 0) rc = code;
    };
    const bool create = isCreate(*h);
    const bool wrote = create && s.written > 0;
    if (create && !s.appender.flush()) note(f.code(kSeekFailed));
    if (wrote || (saveSummary && isUpdate(*h))) {
        if (int code = writeSummaryBlock(*h, s)) note(f.summaryCloseCode ? f.summaryCloseCode : code);
        if (rc == 0) note(writeSegments(*h, s));
        if (wrote && rc == 0) {
            const int code = h->timeIndex.write(h->timeIndexPath.c_str(), h->typeId, h->formatVersion);
            if (code) note(f.timeIndexWriteCode ? f.timeIndexWriteCode : code);
        }
    }
    if (h->dataFile) {
        // A created line is on the disk once Close returns.
        const bool pushed = wrote ? platform::syncFile(h->dataFile) == 0 : std::fflush(h->dataFile) == 0;
        if (!pushed) note(f.code(kSeekFailed));
        if (std::fclose(h->dataFile) != 0) note(f.code(kCloseFailed));
        h->dataFile = nullptr;
    }
    if (create && s.written == 0) {
        // Nothing was recorded: leave no files, not even those of an earlier
        // write of this line that the create truncated.
        platform::removeFile(h->dataPath.c_str());
        platform::removeFile(h->segmentPath.c_str());
        platform::removeFile(h->timeIndexPath.c_str());
    }
    if (SensorFree(h) != 0) note(f.code(kFreeFailed));
    return rc;
}

}  // namespace velmio
