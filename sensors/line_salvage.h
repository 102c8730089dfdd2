// Salvaging a sensor's files in a line directory from the whole records its
// data file holds: summary, time index and line segment file are rebuilt
// from the records (the references are taken from the summary block, which
// a create handle writes as soon as its first record fixes them), and a
// partial record or profile at the end is cut off. The families' engine
// tables say how records are laid out and how their bounds are decoded.
#ifndef VELMIO_SENSORS_LINE_SALVAGE_H
#define VELMIO_SENSORS_LINE_SALVAGE_H

#include <cstddef>
#include <cstdint>

namespace velmio {

// Codes of the salvage, with sentences in the message bundle.
constexpr int kSalvageUnknownFamily = 5029106;  // not a family whose lines can be salvaged
constexpr int kSalvageNoReferences = 5029105;   // no validation record or no decodable references

struct SalvageOptions {
    bool dryRun = false;  // learn what would be done; open nothing for writing
    // The one segment written when the segment file is missing or does not
    // describe the records.
    const wchar_t *recoveredSegmentName = L"recovered";
    // Keep a segment file that is readable and covers the records exactly
    // (their bounds are recomputed); false replaces it in every case.
    bool keepIntactSegments = true;
    // Only measure what lies beyond the records a valid summary counts
    // (whole records, a partial one), reading the summary and that tail
    // alone; nothing is compared or written.
    bool tailOnly = false;
};

struct SalvageReport {
    std::uint32_t typeId = 0;
    std::uint64_t dataBytes = 0;     // the data file's length as found
    std::uint64_t wholeBytes = 0;    // up to the end of the last whole record or profile
    std::uint32_t wholeRecords = 0;  // records, or profiles of the profile families
    std::uint64_t beams = 0;         // in the whole profiles
    // As found: the summary block opens and its counts fit the file, the
    // segment file reads and covers the whole records, the time index reads
    // and maps every whole record to where it lies.
    bool summaryValid = false;
    bool segmentsValid = false;
    bool timeIndexValid = false;
    std::uint32_t summaryRecords = 0;  // what the summary counts (when it decodes)
    std::uint64_t summaryEnd = 0;      // where the records the summary counts end
    std::uint64_t droppedBytes = 0;    // the partial record or profile cut off
    std::uint64_t traceDroppedBytes = 0;  // trace records cut with it, or partial
    std::uint32_t segmentsWritten = 0;
    bool segmentsKept = false;
};

// True for the type ids salvageLine handles (53: observed depths written as
// ObservedDepthsNew; 9, 10, 15 and 20 salvage a "SideScan" file as the kind
// it records).
bool canSalvage(std::uint32_t typeId);

// The type id of a sensor name (its data file's name, e.g. L"Gyro") that
// salvageLine handles; false for any other name (0 is processed depths).
bool salvageTypeId(const wchar_t *sensorName, std::uint32_t &typeId);
// The side scan kind (9, 10, 15 or 20) the "SideScan" file in lineDirectory
// names in its validation record, or 0.
std::uint32_t sideScanFileType(const wchar_t *lineDirectory);
// The type ids salvageLine handles, in a fixed order; count set.
const std::uint32_t *salvageTypeIds(std::size_t &count);

// Salvages the files of sensor typeId in lineDirectory in place, or with
// dryRun only reports what it finds. 0, kSalvageUnknownFamily,
// kSalvageNoReferences, 5000046 when the data file is missing, or the code
// of the failing read or write (the family's own where it has one).
int salvageLine(const wchar_t *lineDirectory, std::uint32_t typeId, const SalvageOptions &options,
                SalvageReport &report);

}  // namespace velmio

#endif
