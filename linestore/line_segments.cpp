// Line segments of a sensor handle and its status shadow.
#include <velmio/linestore.h>

#include "foundation/diagnostics.h"
#include "linestore/sensor.h"

#include <cstdlib>
#include <new>

using namespace velmio;

extern "C" VELMIO_API TOVO_LnSeg *LnSegAlloc(TOVO_Sensor *handle) {
    if (!handle) return nullptr;
    auto *seg = new (std::nothrow) _TOVO_LnSeg;
    if (!seg) {
        say("LnSegAlloc: out of memory\n");
        return nullptr;
    }
    seg->prev = handle->lastSegment;
    if (handle->lastSegment)
        handle->lastSegment->next = seg;
    else
        handle->firstSegment = seg;
    handle->lastSegment = seg;
    ++handle->segmentCount;
    return seg;
}

extern "C" VELMIO_API TOVO_LnSeg *LnSegIndexSearch(TOVO_Sensor *handle, int segmentNumber) {
    if (!handle) {
        say("LnSegIndexSearch: sensor is invalid (empty)\n");
        return nullptr;
    }
    if (segmentNumber < 1 || static_cast<std::uint32_t>(segmentNumber) > handle->segmentCount) return nullptr;
    _TOVO_LnSeg *s = handle->firstSegment;
    for (int i = 1; s && i < segmentNumber; ++i) s = s->next;
    return s;
}

// The misspelt prefix of these messages is what callers have always seen.
extern "C" VELMIO_API int SensorAllocStatusShadow(TOVO_Sensor *handle) {
    if (!handle) {
        say("SenosrAllocStatusShadow: sensor is invalid (empty)\n");
        return -1;
    }
    const std::size_t n = static_cast<std::size_t>(handle->recordCount) + 1;
    std::free(handle->shadowChanged);
    std::free(handle->shadowStatus);
    handle->shadowChanged = static_cast<std::uint8_t *>(std::calloc(n, sizeof(std::uint8_t)));
    handle->shadowStatus = static_cast<std::uint32_t *>(std::calloc(n, sizeof(std::uint32_t)));
    if (!handle->shadowChanged || !handle->shadowStatus) {
        std::free(handle->shadowChanged);
        std::free(handle->shadowStatus);
        handle->shadowChanged = nullptr;
        handle->shadowStatus = nullptr;
        say("SenosrAllocStatusShadow: out of memory\n");
        return 5000009;
    }
    return 0;
}
