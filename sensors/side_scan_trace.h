// The trace file of EM100 and EM1000 side scan: a validation record of
// record kind 4, then one 12-byte record per traced ping in the order
// written (docs/formats.md). Records are found by their place, so the file
// needs no index: record k starts at 16 + 12 (k - 1).
#ifndef VELMIO_SENSORS_SIDE_SCAN_TRACE_H
#define VELMIO_SENSORS_SIDE_SCAN_TRACE_H

#include "sensors/side_scan_records.h"

#include <cstdint>
#include <cstdio>

namespace velmio {

constexpr int kTraceFailed = 5000928;

// Writes the validation record at the start of an empty trace file.
int startTraceFile(std::FILE *file, std::uint32_t typeId);
// Appends a record at the end of the file.
int appendTrace(std::FILE *file, const SideScanTrace &trace);
// The number of records of a trace file whose validation record carries
// typeId and whose length is a whole number of records; else kTraceFailed.
int countTraces(std::FILE *file, std::uint32_t typeId, std::uint32_t &count);
// Record n (from 1) of count.
int readTrace(std::FILE *file, std::uint32_t count, std::uint32_t n, SideScanTrace &trace);

}  // namespace velmio

#endif
