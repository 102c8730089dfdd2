// Salvaging a line of a fixed-size-record family: every whole record behind
// the summary block is one record of the rebuilt line.
#include <velmio/encoding.h>
#include <velmio/linestore.h>

#include "linestore/byte_source.h"
#include "platform/stdio_file.h"
#include "sensors/record_family.h"
#include "sensors/salvage_steps.h"
#include "sensors/simple_families.h"

#include <algorithm>

namespace velmio {
namespace {

struct Layout {
    const RecordFamily *family;
    int valueKind;  // simple sensor: 0 metres, 1 radians
};

bool lookUp(std::uint32_t id, Layout &out) {
#define VELMIO_SIMPLE_LAYOUT(P, ID, KIND)          \
    if (id == ID) {                                \
        out = {&simpleSensorRecords(), KIND};      \
        return true;                               \
    }
    VELMIO_SIMPLE_FAMILIES(VELMIO_SIMPLE_LAYOUT)
#undef VELMIO_SIMPLE_LAYOUT
    if (id != 3 && id != 12) return false;  // navigation and its twin
    out = {&navigationRecords(), 0};
    return true;
}

}  // namespace

bool hasRecordLayout(std::uint32_t openId) {
    Layout layout;
    return lookUp(openId, layout);
}

int salvageRecords(TOVO_Sensor &h, std::uint32_t openId, const SalvageOptions &options, SalvageReport &r) {
    Layout layout;
    if (!lookUp(openId, layout)) return kSalvageUnknownFamily;
    const RecordFamily &f = *layout.family;
    h.encodeValue = layout.valueKind ? TOVO_EncodeRadians : TOVO_EncodeMeters;
    h.decodeValue = layout.valueKind ? TOVO_DecodeRadians : TOVO_DecodeMeters;
    // Words that do not decode stay zero, which no usable summary holds.
    h.timeScale = h.positionScale = 0;
    if (TOVO_ReadDataValidationRecord(&h) != 0 || platform::seekFile(h.dataFile, 0, SEEK_SET) != 0)
        return kSalvageNoReferences;
    r.summaryValid = readSummary(h, f) == 0;
    bool positioned = true;
    for (int i = 0; i < f.summaryWordCount; ++i)
        if (f.summary[i].word == SummaryWord::PositionScale) positioned = h.positionScale > 0;
    if (h.timeScale <= 0 || !positioned || r.dataBytes < f.dataStart()) return kSalvageNoReferences;
    r.summaryRecords = h.recordCount;
    r.summaryEnd = f.dataStart() + std::uint64_t{h.recordCount} * f.recordSize;
    // Offsets are 32-bit in the time index: records beyond it cannot be indexed.
    const std::uint64_t room = std::min<std::uint64_t>(r.dataBytes, 0xFFFFFFFFull) - f.dataStart();
    r.wholeRecords = static_cast<std::uint32_t>(room / f.recordSize);
    r.wholeBytes = f.dataStart() + std::uint64_t{r.wholeRecords} * f.recordSize;
    r.droppedBytes = r.dataBytes - r.wholeBytes;
    if (options.tailOnly) return 0;

    loadSegments(h, f.segments, options, r);
    IndexComparison existing(h);
    TimeIndex index;
    SegmentCursor cursor(h);
    FileSource source(fileno(h.dataFile));
    ReadWindow window;
    for (std::uint32_t n = 1; n <= r.wholeRecords; ++n) {
        const auto offset = static_cast<std::uint32_t>(f.dataStart() + std::uint64_t{n - 1} * f.recordSize);
        const unsigned char *bytes = window.at(source, offset, f.recordSize);
        if (!bytes) return f.code(kReadFailed);
        const auto time = static_cast<std::int32_t>(loadBe32(bytes + 4));
        existing.record(n, time, offset);
        if (index.append(time, offset) != 0) return kNoMemory;
        // Behind the status word come the extents' units in their order.
        Extent bounds[kMaxExtents];
        for (int k = 0; k < f.segments.extentCount; ++k) {
            const auto unit = static_cast<std::int32_t>(loadBe32(bytes + 4 + 4 * k));
            const double v = decodeExtent(h, f.segments.kinds[k], unit);
            bounds[k] = {v, v};
        }
        cursor.widen(n, bounds);
    }
    r.timeIndexValid = existing.intact(r.wholeRecords);
    if (options.dryRun) return 0;
    h.recordCount = r.wholeRecords;
    RecordState state(f);
    return writeSalvage(h, f.segments, index, options, r, f.code(kWriteFailed),
                        [&] { return writeSummary(h, state) != 0 ? f.code(kSummaryNotWritten) : 0; });
}

}  // namespace velmio
