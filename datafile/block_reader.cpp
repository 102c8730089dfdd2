// The read-ahead block reader of the profile families.
#include "datafile/block_reader.h"

#include "linestore/byte_source.h"
#include "linestore/sensor.h"
#include "platform/file_io.h"
#include "platform/files.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

namespace {

constexpr int kNoMemory = 5000009;
constexpr int kIndexInvalid = 5000039;
constexpr std::size_t kInitialCapacity = 100000;
// held[] of a record whose bytes are not read yet.
constexpr std::uint32_t kNotRead = 0xFFFFFFFFu;

}  // namespace

struct VELMBlockReader {
    TOVO_Sensor *sensor = nullptr;
    std::int64_t fileSize = -1;
    unsigned int cacheSize = 0;
    unsigned int first = 0;  // records held, 0 when none
    unsigned int last = 0;
    std::uint32_t *offsets = nullptr;  // from the block start, cacheSize + 1
    std::uint32_t *lengths = nullptr;  // cacheSize + 1
    // Bytes of each record in memory, or kNotRead: a block reached by a jump
    // reads its records as they are asked for, so that a random read costs
    // one record's bytes and not the whole block's.
    std::uint32_t *held = nullptr;     // cacheSize + 1
    char *block = nullptr;
    std::size_t capacity = 0;
    std::uint32_t blockStart = 0;
    std::uint32_t slot = 0;      // of the current record
    std::uint32_t position = 0;  // read position within it
    unsigned int lastRequested = 0;
};

namespace {

void freeArrays(VELMBlockReader &r) {
    std::free(r.offsets);
    std::free(r.lengths);
    std::free(r.held);
    r.offsets = r.lengths = r.held = nullptr;
}

// Bytes of the current record that are in memory.
std::uint32_t currentLength(const VELMBlockReader &r) {
    if (r.first == 0 || !r.held || r.held[r.slot] == kNotRead) return 0;
    return r.held[r.slot];
}

// Reads the records of the block from slot on (all of them, or that one
// alone) with one positioned read. A short read leaves the records beyond
// it shorter, so that reads of them fail instead of returning stale bytes.
void load(VELMBlockReader &r, std::uint32_t slot, bool toBlockEnd) {
    const unsigned int count = r.last - r.first + 1;
    const std::uint32_t end = toBlockEnd ? count : slot + 1;
    const std::uint64_t from = r.offsets[slot];
    const std::uint64_t to = std::uint64_t{r.offsets[end - 1]} + r.lengths[end - 1];
    std::uint64_t got = 0;
    if (to > from) {
        // The profile reads that share the descriptor keep their own positions.
        const TOVO_Sensor &h = *r.sensor;
        const std::size_t want = static_cast<std::size_t>(to - from);
        const std::int64_t n = h.dataSource ? h.dataSource->readAt(r.blockStart + from, r.block + from, want)
                                            : velmio::platform::readAt(fileno(h.dataFile), r.block + from, want,
                                                                       r.blockStart + from);
        got = n > 0 ? static_cast<std::uint64_t>(n) : 0;
    }
    for (std::uint32_t i = slot; i < end; ++i) {
        const std::uint64_t start = r.offsets[i] - from;
        r.held[i] = start >= got ? 0 : static_cast<std::uint32_t>(std::min<std::uint64_t>(r.lengths[i], got - start));
    }
}

// Plans the block that starts at record n: fills offsets and lengths and
// reports where it starts in the file and its byte length.
int plan(VELMBlockReader &r, unsigned int n, std::uint32_t &start, std::uint64_t &blockLength) {
    const velmio::TimeIndex &index = r.sensor->timeIndex;
    if (const int rc = index.map(n, start)) return rc;
    const auto fileSize = static_cast<std::uint64_t>(r.fileSize);
    if (start > fileSize) return kIndexInvalid;
    r.offsets[0] = 0;
    std::uint32_t previous = start;
    for (unsigned int i = 1;; ++i) {
        std::uint32_t offset = 0;
        const bool maps = n <= std::numeric_limits<unsigned int>::max() - i && index.map(n + i, offset) == 0;
        if (!maps) {
            // The end of the line: the last record runs to the end of the file.
            r.last = n + i - 1;
            r.lengths[i - 1] = static_cast<std::uint32_t>(fileSize - previous);
            blockLength = fileSize - start;
            return 0;
        }
        if (offset < previous || offset > fileSize) return kIndexInvalid;
        r.lengths[i - 1] = offset - previous;
        if (i == r.cacheSize) {
            r.last = n + i - 1;
            blockLength = offset - start;
            return 0;
        }
        r.offsets[i] = offset - start;
        previous = offset;
    }
}

}  // namespace

VELMIO_API int initialise(TOVO_Sensor *sensor, unsigned int cacheSize, VELMBlockReader **handle) {
    if (!handle) return -1;
    *handle = nullptr;
    if (!sensor) return -1;
    auto *r = new (std::nothrow) VELMBlockReader;
    if (!r) return kNoMemory;
    r->sensor = sensor;
    r->fileSize = velmio::platform::fileSize(sensor->dataFile);
    if (const int rc = setCacheSize(r, cacheSize)) {
        destroy(r);
        return rc;
    }
    *handle = r;
    return 0;
}

VELMIO_API void destroy(VELMBlockReader *handle) {
    if (!handle) return;
    freeArrays(*handle);
    std::free(handle->block);
    delete handle;
}

VELMIO_API int setCacheSize(VELMBlockReader *handle, unsigned int cacheSize) {
    if (!handle) return -1;
    freeArrays(*handle);
    clearBuffer(handle);
    handle->lastRequested = 0;
    // A block never needs more records than the line has: a huge setting
    // costs no more than caching the whole line.
    const std::uint32_t records = handle->sensor ? handle->sensor->timeIndex.entryCount() : 0;
    cacheSize = std::min(cacheSize, std::max<std::uint32_t>(records, 1));
    // Without a file size the block cannot be bounded: stay off.
    if (handle->fileSize < 0) cacheSize = 0;
    handle->cacheSize = cacheSize;
    if (cacheSize == 0) return 0;
    handle->offsets = static_cast<std::uint32_t *>(std::calloc(std::size_t{cacheSize} + 1, sizeof(std::uint32_t)));
    handle->lengths = static_cast<std::uint32_t *>(std::calloc(std::size_t{cacheSize} + 1, sizeof(std::uint32_t)));
    handle->held = static_cast<std::uint32_t *>(std::calloc(std::size_t{cacheSize} + 1, sizeof(std::uint32_t)));
    if (!handle->offsets || !handle->lengths || !handle->held) {
        freeArrays(*handle);
        handle->cacheSize = 0;
        return kNoMemory;
    }
    return 0;
}

VELMIO_API unsigned int getCacheSize(const VELMBlockReader *handle) { return handle ? handle->cacheSize : 0; }

VELMIO_API void getStartEndRecordNumber(const VELMBlockReader *handle, unsigned int *first, unsigned int *last) {
    if (first) *first = handle ? handle->first : 0;
    if (last) *last = handle ? handle->last : 0;
}

VELMIO_API void clearBuffer(VELMBlockReader *handle) {
    if (!handle) return;
    handle->first = handle->last = 0;
    handle->slot = handle->position = 0;
}

VELMIO_API int readRecord(VELMBlockReader *handle, unsigned int recordNumber) {
    if (!handle || handle->cacheSize == 0) return 1;
    VELMBlockReader &r = *handle;
    // Reading on in order takes the rest of the block at once; a jump takes
    // the record asked for.
    const bool inOrder = recordNumber == r.lastRequested + 1;
    r.lastRequested = recordNumber;
    if (r.first != 0 && recordNumber >= r.first && recordNumber <= r.last) {
        r.slot = recordNumber - r.first;
        r.position = 0;
        if (r.held[r.slot] == kNotRead) load(r, r.slot, inOrder);
        return 0;
    }
    clearBuffer(handle);
    std::uint32_t start = 0;
    std::uint64_t blockLength = 0;
    if (const int rc = plan(r, recordNumber, start, blockLength)) {
        clearBuffer(handle);
        return rc;
    }
    if (blockLength > r.capacity) {
        const auto small = static_cast<std::size_t>(std::min<std::uint64_t>(kInitialCapacity, r.fileSize));
        const std::size_t capacity = std::max(static_cast<std::size_t>(blockLength), small);
        char *block = static_cast<char *>(std::malloc(capacity));
        if (!block) {
            clearBuffer(handle);
            return kNoMemory;
        }
        std::free(r.block);
        r.block = block;
        r.capacity = capacity;
    }
    r.blockStart = start;
    r.first = recordNumber;
    std::fill(r.held, r.held + (r.last - r.first + 1), kNotRead);
    load(r, 0, inOrder);
    r.slot = 0;
    r.position = 0;
    return 0;
}

VELMIO_API int readRecordSeq(VELMBlockReader *handle) {
    if (!handle || handle->cacheSize == 0) return 1;
    return readRecord(handle, handle->lastRequested + 1);
}

const unsigned char *velmio::takeBlockBytes(VELMBlockReader *handle, unsigned int byteCount) {
    if (!handle || handle->cacheSize == 0) return nullptr;
    VELMBlockReader &r = *handle;
    if (std::uint64_t{r.position} + byteCount > currentLength(r)) return nullptr;
    const char *bytes = r.block + r.offsets[r.slot] + r.position;
    r.position += byteCount;
    return reinterpret_cast<const unsigned char *>(bytes);
}

VELMIO_API int BlockIOFread(VELMBlockReader *handle, void *destination, unsigned int byteCount) {
    if (!destination) return 0;
    const unsigned char *bytes = velmio::takeBlockBytes(handle, byteCount);
    if (!bytes) return 0;
    std::memcpy(destination, bytes, byteCount);
    return 1;
}

VELMIO_API int setByteOffset(VELMBlockReader *handle, long offset, int relative) {
    if (!handle || handle->cacheSize == 0) return 0;
    VELMBlockReader &r = *handle;
    const std::int64_t target = static_cast<std::int64_t>(offset) + (relative ? r.position : 0);
    if (target < 0 || target >= static_cast<std::int64_t>(currentLength(r))) return 0;
    r.position = static_cast<std::uint32_t>(target);
    return 1;
}
