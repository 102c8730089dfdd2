// Trace records of EM100 and EM1000 side scan, written and read in place.
#include "sensors/side_scan_trace.h"

#include "platform/files.h"

namespace velmio {

namespace {

constexpr std::uint32_t kMagic = 0x544F564F;  // "TOVO"
constexpr std::uint32_t kTraceVersion = 1;
constexpr long kValidationBytes = 16;
constexpr long kTraceBytes = 4 * kSideScanTraceWords;

bool writeUnits(std::FILE *file, const std::uint32_t *words, unsigned count) {
    unsigned char bytes[16];
    for (unsigned k = 0; k < count; ++k)
        for (unsigned b = 0; b < 4; ++b) bytes[4 * k + b] = static_cast<unsigned char>(words[k] >> (24 - 8 * b));
    return std::fwrite(bytes, 4, count, file) == count;
}

bool readUnits(std::FILE *file, std::uint32_t *words, unsigned count) {
    unsigned char bytes[16];
    if (std::fread(bytes, 4, count, file) != count) return false;
    for (unsigned k = 0; k < count; ++k) {
        words[k] = 0;
        for (unsigned b = 0; b < 4; ++b) words[k] = (words[k] << 8) | bytes[4 * k + b];
    }
    return true;
}

}  // namespace

int startTraceFile(std::FILE *file, std::uint32_t typeId) {
    const std::uint32_t validation[4] = {kMagic, typeId, kTraceRecordKind, kTraceVersion};
    return file && writeUnits(file, validation, 4) ? 0 : kTraceFailed;
}

int appendTrace(std::FILE *file, const SideScanTrace &trace) {
    std::uint32_t words[kSideScanTraceWords];
    encodeSideScanTrace(trace, words);
    if (!file || std::fseek(file, 0, SEEK_END) != 0 || !writeUnits(file, words, kSideScanTraceWords))
        return kTraceFailed;
    return 0;
}

int countTraces(std::FILE *file, std::uint32_t typeId, std::uint32_t &count) {
    std::uint32_t validation[4];
    // Flushed first, so that the size counts what this handle appended.
    if (!file || std::fflush(file) != 0 || std::fseek(file, 0, SEEK_SET) != 0 || !readUnits(file, validation, 4))
        return kTraceFailed;
    if (validation[0] != kMagic || validation[1] != typeId || validation[2] != kTraceRecordKind) return kTraceFailed;
    const std::int64_t size = platform::fileSize(file);
    if (size < kValidationBytes || (size - kValidationBytes) % kTraceBytes != 0) return kTraceFailed;
    count = static_cast<std::uint32_t>((size - kValidationBytes) / kTraceBytes);
    return 0;
}

int readTrace(std::FILE *file, std::uint32_t count, std::uint32_t n, SideScanTrace &trace) {
    std::uint32_t words[kSideScanTraceWords];
    if (!file || n < 1 || n > count || std::fseek(file, kValidationBytes + kTraceBytes * (n - 1L), SEEK_SET) != 0 ||
        !readUnits(file, words, kSideScanTraceWords))
        return kTraceFailed;
    decodeSideScanTrace(words, trace);
    return 0;
}

}  // namespace velmio
