// The flat time index functions over a sensor handle's index.
#include <velmio/linestore.h>

#include "foundation/diagnostics.h"
#include "linestore/sensor.h"

#include <cstdio>

using namespace velmio;

extern "C" VELMIO_API int TmIdxEntry(TOVO_Sensor *handle, int encodedTime) {
    if (!handle) {
        say("TmIdxEntry: sensor is invalid (empty)\n");
        return -1;
    }
    const long position = handle->dataFile ? std::ftell(handle->dataFile) : -1;
    // Offsets are 32-bit in the file: a data file beyond 4 GiB cannot be indexed.
    if (position < 0 || position > 0xFFFFFFFFL) return kTmIdxNoMemory;
    const int rc = handle->timeIndex.append(encodedTime, static_cast<std::uint32_t>(position));
    if (rc) say("TmIdxEntry: out of memory\n");
    return rc;
}

extern "C" VELMIO_API int TmIdxMapIndexToByteOffset(TOVO_Sensor *handle, unsigned int recordNumber,
                                                    unsigned int *offset) {
    if (!handle) {
        say("TmIdxMapIndexToByteOffset: sensor is invalid (empty)\n");
        return -1;
    }
    if (!offset) {
        say("TmIdxMapIndexToByteOffset: input variable 'offset' is invalid (empty)\n");
        return -1;
    }
    std::uint32_t byteOffset = 0;
    const int rc = handle->timeIndex.map(recordNumber, byteOffset);
    if (rc == kTmIdxRecordZero) say("TmIdxMapIndexToByteOffset: record number is invalid\n");
    if (rc == kTmIdxNotFound) say("TmIdxMapIndexToByteOffset: requested record number not found\n");
    if (rc == 0) *offset = byteOffset;
    return rc;
}

// A null handle is success here, as it has always been.
extern "C" VELMIO_API int TmIdxWrite(TOVO_Sensor *handle) {
    if (!handle) {
        say("TmIdxWrite: sensor is invalid (empty)\n");
        return 0;
    }
    return handle->timeIndex.write(handle->timeIndexPath.c_str(), handle->typeId, handle->formatVersion);
}

extern "C" VELMIO_API int TmIdxRead(TOVO_Sensor *handle) {
    if (!handle) {
        say("TmIdxRead: sensor is invalid (empty)\n");
        return 0;
    }
    return handle->timeIndex.read(handle->timeIndexPath.c_str(), handle->typeId);
}

extern "C" VELMIO_API TOVO_TmIdxSet *TmIdxSetAlloc(TOVO_Sensor *handle) {
    return handle ? handle->timeIndex.allocSet() : nullptr;
}

extern "C" VELMIO_API int TmIdxSetFree(TOVO_Sensor *handle) {
    if (handle) handle->timeIndex.clear();
    return 0;
}
