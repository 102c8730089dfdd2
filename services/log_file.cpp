// The per-directory log file.
#include <velmio/log_file.h>
#include <velmio/utils.hpp>

#include "foundation/utf8.h"
#include "foundation/wide_copy.h"
#include "platform/files.h"
#include "platform/native_path.h"
#include "platform/stdio_file.h"
#include "platform/system_error.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

struct VELMLogFile {
    std::FILE *stream;
    wchar_t *firstVersion;
    wchar_t *secondVersion;
};

namespace {

constexpr int kOutOfMemory = 5000009;
constexpr int kNoDirectory = 5017200;
constexpr int kNoMode = 5017201;
constexpr int kNotOpened = 5017202;
constexpr int kWriteLogNotOpened = 5000049;

MORVAUString logPath(const wchar_t *directory) {
    MORVAUString path(directory);
    VELMIOUtils::appendPath(path, MORVAUString(L"LogFile"));
    return path;
}

// fopen modes are plain ASCII; anything else cannot name a mode.
bool narrowMode(const wchar_t *mode, std::string &out) {
    for (const wchar_t *c = mode; *c; ++c) {
        if (*c < 0x20 || *c > 0x7e) return false;
        out += static_cast<char>(*c);
    }
    return true;
}

void freeVersions(VELMLogFile *log) {
    std::free(log->firstVersion);
    std::free(log->secondVersion);
    log->firstVersion = log->secondVersion = nullptr;
}

VELMLogFile *openLog(const wchar_t *directory, const wchar_t *mode, int &status) {
    if (!directory || !*directory) {
        status = kNoDirectory;
        return nullptr;
    }
    if (!mode || !*mode) {
        status = kNoMode;
        return nullptr;
    }
    auto *log = new (std::nothrow) VELMLogFile{nullptr, nullptr, nullptr};
    if (!log) {
        status = kOutOfMemory;
        return nullptr;
    }
    status = 0;
    const MORVAUString path = logPath(directory);
    std::string narrow;
    if (narrowMode(mode, narrow)) {
        errno = 0;
        log->stream = velmio::platform::openFile(path.c_str(), narrow.c_str());
    } else {
        errno = EINVAL;
    }
    if (!log->stream) {
        const int code = kNotOpened;
        status = velmio::platform::reportOpenFailure(velmio::platform::nativePath(path.c_str()), errno,
                                                     {code, code, code, code, code}, true, code);
        delete log;
        return nullptr;
    }
    return log;
}

int writeAll(std::FILE *stream, const std::string &bytes) {
    if (velmio::platform::writeFile(bytes.data(), 1, bytes.size(), stream) != bytes.size()) return -1;
    return velmio::platform::flushFile(stream) == 0 ? 0 : -1;
}

}  // namespace

extern "C" {

VELMIO_API VELMLogFile *LogFileOpen(const wchar_t *directory, const wchar_t *mode, int *status) {
    int code = 0;
    VELMLogFile *log = nullptr;
    try {
        log = openLog(directory, mode, code);
    } catch (const std::bad_alloc &) {
        code = kOutOfMemory;
    }
    if (status) *status = code;
    return log;
}

VELMIO_API int LogFileAppendText(VELMLogFile *log, const wchar_t *text) {
    if (!log || !text) return -1;
    try {
        return writeAll(log->stream, velmio::toUtf8(text));
    } catch (const std::bad_alloc &) {
        return kOutOfMemory;
    }
}

VELMIO_API int LogFileSetVersionInfo(VELMLogFile *log, const wchar_t *first, const wchar_t *second) {
    if (!log) return -1;
    freeVersions(log);
    log->firstVersion = velmio::mallocWideCopy(first);
    log->secondVersion = velmio::mallocWideCopy(second);
    if ((first && !log->firstVersion) || (second && !log->secondVersion)) {
        freeVersions(log);
        return kOutOfMemory;
    }
    return 0;
}

VELMIO_API int LogFileGetVersionInfo(const VELMLogFile *log, wchar_t **first, wchar_t **second) {
    if (!log) return -1;
    wchar_t *a = velmio::mallocWideCopy(log->firstVersion);
    wchar_t *b = velmio::mallocWideCopy(log->secondVersion);
    if ((log->firstVersion && !a) || (log->secondVersion && !b)) {
        std::free(a);
        std::free(b);
        return kOutOfMemory;
    }
    if (first) {
        *first = a;
    } else {
        std::free(a);
    }
    if (second) {
        *second = b;
    } else {
        std::free(b);
    }
    return 0;
}

VELMIO_API int LogFileClose(VELMLogFile *log) {
    if (!log) return -1;
    const int closed = log->stream ? velmio::platform::closeFile(log->stream) : 0;
    freeVersions(log);
    delete log;
    return closed == 0 ? 0 : -1;
}

VELMIO_API int LogFileRemove(const wchar_t *directory) {
    if (!directory) return -1;
    try {
        const MORVAUString path = logPath(directory);
        if (velmio::platform::removeFile(path.c_str())) return 0;
        return velmio::platform::pathExists(path.c_str()) ? -1 : 0;
    } catch (const std::bad_alloc &) {
        return kOutOfMemory;
    }
}

VELMIO_API int WriteToVELMLogFile(const wchar_t *directory, const wchar_t *text) {
    if (!text) return -1;
    int status = 0;
    VELMLogFile *log = LogFileOpen(directory, L"a", &status);
    if (!log) return status == kOutOfMemory ? kOutOfMemory : kWriteLogNotOpened;
    int result;
    try {
        std::string line = velmio::toUtf8(text);
        line += '\n';
        result = writeAll(log->stream, line);
    } catch (const std::bad_alloc &) {
        result = kOutOfMemory;
    }
    if (LogFileClose(log) != 0 && result == 0) result = -1;
    return result;
}

}  // extern "C"
