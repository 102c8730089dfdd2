// Opening, freeing and removing a sensor's files in a line directory.
#include <velmio/encoding.h>
#include <velmio/linestore.h>
#include <velmio/utils.hpp>

#include "foundation/diagnostics.h"
#include "foundation/wide_copy.h"
#include "linestore/memory_line.h"
#include "linestore/sensor.h"
#include "platform/files.h"
#include "platform/memory_file.h"
#include "platform/system_error.h"

#include <cerrno>
#include <cstdlib>
#include <cwchar>
#include <new>

namespace velmio {
namespace {

constexpr std::size_t kDataBufferSize = 64 * 1024;

struct SensorEntry {
    std::uint32_t id;
    const wchar_t *name;
};

constexpr SensorEntry kSensors[] = {
    {0, L"ProcessedDepths"}, {1, L"Gyro"}, {2, L"Heave"}, {3, L"Navigation"}, {4, L"ObservedDepths"},
    {5, L"Pitch"}, {6, L"Roll"}, {7, L"Tide"}, {9, L"SideScan"}, {10, L"SideScan"}, {11, L"SSSGyro"},
    {12, L"SSSNavigation"}, {13, L"SSSSideScan"}, {19, L"SSSProcessedSideScan"}, {20, L"SideScan"},
    {30, L"SLRange"}, {32, L"EventMark"}, {40, L"SSSCableOut"}, {41, L"SSSSensorHeight"},
    {42, L"SSSSensorDepth"}, {45, L"DeltaDraft"}, {46, L"SOW"}, {47, L"GPSHeight"}, {48, L"GPSTide"},
    {52, L"TPE"}, {53, L"ObservedDepthsNew"}, {54, L"SSP"}, {55, L"TrueHeave"}, {57, L"SensorParameters"},
    {32787, L"NewSSSProcessedSideScan"},
};

// The type a handle records for an id.
std::uint32_t recordedType(std::uint32_t id) {
    if (id == 53) return 4;
    if (id == 32787) return 19;
    return id;
}

const char *stdioMode(std::uint32_t mode) {
    if (mode == VELMIO_ACCESS_CREATE) return "wb";
    if (mode == VELMIO_ACCESS_QUERY) return "rb";
    return "rb+";
}

void copyName(wchar_t (&dest)[kNameArrayLength], const MORVAUString &part) {
    // The fixed arrays hold 63 characters; longer names are cut.
    copyBounded(dest, kNameArrayLength, part.c_str());
}

std::wstring joined(const std::wstring &dir, const wchar_t *name) {
    MORVAUString path(dir);
    VELMIOUtils::appendPath(path, MORVAUString(name));
    return path.str();
}

// One of a sensor's files, from the disk or from a mounted line; errno
// tells why it failed, as for a file.
std::FILE *openSensorFile(MemoryLine *memory, MemoryFile *file, const std::wstring &path, std::uint32_t mode) {
    if (!memory) return platform::openFile(path.c_str(), stdioMode(mode));
    if (!file->exists) {
        errno = ENOENT;
        return nullptr;
    }
    return platform::openMemoryFile(file->bytes, stdioMode(mode));
}

}  // namespace

const wchar_t *sensorName(std::uint32_t typeId) {
    for (const auto &s : kSensors)
        if (s.id == typeId) return s.name;
    return nullptr;
}

}  // namespace velmio

using namespace velmio;

extern "C" VELMIO_API TOVO_Sensor *SensorOpenDir(const wchar_t *lineDirectory, unsigned int sensorTypeId,
                                                 const wchar_t *accessToken, int *errorCode) {
    int scratch = 0;
    int &error = errorCode ? *errorCode : scratch;
    try {
        const int mode = TOVO_DecodeAccessTypeToken(accessToken);
        if (mode == -1) {
            error = 5000021;
            return nullptr;
        }
        const wchar_t *name = sensorName(sensorTypeId);
        MemoryLine *memory = lineDirectory && name ? mountedLine(joined(lineDirectory, name)) : nullptr;
        if (memory && mode != VELMIO_ACCESS_QUERY && mode != VELMIO_ACCESS_UPDATE) {
            error = 5000021;  // a line in memory is read and edited, never written afresh
            return nullptr;
        }
        if (!memory && (!lineDirectory || !platform::pathExists(lineDirectory))) {
            say("VELMio:SensorOpenDir(type = %d): Unable to find directory %s\n", static_cast<int>(sensorTypeId),
                printable(lineDirectory).c_str());
            error = 5000010;
            return nullptr;
        }
        if (!name) {
            error = 5000022;
            return nullptr;
        }
        const std::uint32_t accessMode = static_cast<std::uint32_t>(mode);
        std::wstring dataPath = joined(lineDirectory, name);
        const bool dataExists = memory ? memory->data.exists : platform::pathExists(dataPath.c_str());
        if (accessMode != VELMIO_ACCESS_CREATE && !dataExists) {
            error = 5000046;
            return nullptr;
        }
        std::wstring segmentPath = dataPath + L"LineSegments";
        std::wstring tracePath;
        std::FILE *trace = nullptr;
        if (sensorTypeId == 9 || sensorTypeId == 10) {
            tracePath = dataPath + L"Trace";
            trace = openSensorFile(memory, memory ? &memory->trace : nullptr, tracePath, accessMode);
            if (!trace) {
                error = 5000024;
                return nullptr;
            }
        }
        std::wstring timeIndexPath = dataPath + L"TmIdx";
        std::FILE *data = openSensorFile(memory, memory ? &memory->data : nullptr, dataPath, accessMode);
        if (!data) {
            const int err = errno;
            if (trace) std::fclose(trace);
            error = platform::reportOpenFailure(printable(dataPath.c_str()), err,
                                                {5000046, 5000015, 5000016, 5000014, 5000025}, true, 5000025);
            return nullptr;
        }
        auto *h = new (std::nothrow) TOVO_Sensor;
        if (!h) {
            // The files stay open here, as they always have.
            error = 5000009;
            return nullptr;
        }
        // Sequential access should cost about one system call per 64 KiB;
        // stdio ignores the size unless it is given the buffer itself.
        if (!memory) {
            h->dataBuffer = static_cast<char *>(std::malloc(kDataBufferSize));
            if (h->dataBuffer) std::setvbuf(data, h->dataBuffer, _IOFBF, kDataBufferSize);
        }
        h->typeId = recordedType(sensorTypeId);
        h->formatVersion = 1;
        h->accessMode = accessMode;
        h->lineDirectory = lineDirectory;
        h->dataPath = std::move(dataPath);
        h->dataFile = data;
        h->tracePath = std::move(tracePath);
        h->traceFile = trace;
        h->memory = memory;
        h->segmentPath = std::move(segmentPath);
        h->timeIndexPath = std::move(timeIndexPath);
        h->encodeValue = TOVO_EncodeMeters;
        h->decodeValue = TOVO_DecodeMeters;
        MORVAUString root, project, vessel, day, line;
        if (VELMIOUtils::pathToPVDL(MORVAUString(lineDirectory), root, project, vessel, day, line)) {
            copyName(h->project, project);
            copyName(h->vessel, vessel);
            copyName(h->day, day);
            copyName(h->line, line);
        }
        error = 0;
        return h;
    } catch (const std::bad_alloc &) {
        error = 5000009;
        return nullptr;
    }
}

extern "C" VELMIO_API int SensorFree(TOVO_Sensor *handle) {
    if (!handle) return 0;
    for (_TOVO_LnSeg *s = handle->firstSegment; s;) {
        _TOVO_LnSeg *next = s->next;
        delete s;
        s = next;
    }
    handle->timeIndex.clear();
    std::free(handle->shadowChanged);
    std::free(handle->shadowStatus);
    // Families close the data file before freeing the handle; the trace
    // file this module opened is closed here, whoever gave up the handle.
    if (handle->traceFile) std::fclose(handle->traceFile);
    std::free(handle->dataBuffer);
    delete handle->familyState;
    delete handle;
    return 0;
}

extern "C" VELMIO_API int SensorRemoveDir(const wchar_t *lineDirectory, const wchar_t *sensorName) {
    if (!lineDirectory || !sensorName) return 0;
    try {
        std::wstring data = joined(lineDirectory, sensorName);
        platform::removeFile(data.c_str());
        platform::removeFile((data + L"LineSegments").c_str());
        platform::removeFile((data + L"TmIdx").c_str());
        return 0;
    } catch (const std::bad_alloc &) {
        return 5000009;
    }
}
