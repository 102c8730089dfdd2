// Finding and opening a line's sound velocity profile file.
#include <velmio/svp_files.h>
#include <velmio/utils.hpp>

#include "foundation/wide_copy.h"
#include "platform/files.h"

#include <cerrno>
#include <string>

namespace {

std::wstring inLine(const wchar_t *lineDirectory, const wchar_t *name) {
    MORVAUString path(lineDirectory);
    VELMIOUtils::appendPath(path, MORVAUString(name));
    return path.str();
}

// A wide fopen mode as bytes: r, w or a, then any of "+", "b", "t" (text
// mode is the default here and dropped) and "x" after "w".
bool narrowMode(const wchar_t *mode, std::string &out) {
    if (!mode || (mode[0] != L'r' && mode[0] != L'w' && mode[0] != L'a')) return false;
    out.assign(1, static_cast<char>(mode[0]));
    for (const wchar_t *m = mode + 1; *m; ++m) {
        if (*m == L'+' || *m == L'b' || (*m == L'x' && mode[0] == L'w'))
            out.push_back(static_cast<char>(*m));
        else if (*m != L't')
            return false;
    }
    return true;
}

}  // namespace

extern "C" {

VELMIO_API int getSVPFileNameDirN(const wchar_t *lineDirectory, wchar_t *pathOut, size_t capacity) {
    if (!lineDirectory || !pathOut) return 0;
    if (capacity == 0) return -1;
    try {
        return velmio::copyBounded(pathOut, capacity, inLine(lineDirectory, L"Svp").c_str()) ? 0 : -1;
    } catch (...) {
        pathOut[0] = L'\0';
        return -1;
    }
}

VELMIO_API int getSVPFileNameDir(const wchar_t *lineDirectory, wchar_t *pathOut) {
    return getSVPFileNameDirN(lineDirectory, pathOut, VELMIO_SVP_PATH_MAX);
}

VELMIO_API FILE *OpenSVPFileDirN(const wchar_t *lineDirectory, const wchar_t *mode, wchar_t *pathOut,
                                 size_t capacity) {
    if (!lineDirectory || !mode || !pathOut || capacity == 0) return nullptr;
    pathOut[0] = L'\0';
    try {
        std::string narrow;
        if (!narrowMode(mode, narrow)) {
            errno = EINVAL;
            return nullptr;
        }
        static const wchar_t *const readNames[] = {L"SoundSpeedProfile", L"Svp", L"SVP"};
        static const wchar_t *const writeNames[] = {L"Svp"};
        const bool writing = mode[0] == L'w';
        const wchar_t *const *names = writing ? writeNames : readNames;
        const std::size_t count = writing ? 1 : 3;
        for (std::size_t i = 0; i < count; ++i) {
            std::wstring path = inLine(lineDirectory, names[i]);
            if (std::FILE *file = velmio::platform::openFile(path.c_str(), narrow.c_str())) {
                velmio::copyBounded(pathOut, capacity, path.c_str());
                return file;
            }
        }
    } catch (...) {
        errno = ENOMEM;
    }
    return nullptr;
}

VELMIO_API FILE *OpenSVPFileDir(const wchar_t *lineDirectory, const wchar_t *mode, wchar_t *pathOut) {
    return OpenSVPFileDirN(lineDirectory, mode, pathOut, VELMIO_SVP_PATH_MAX);
}

}  // extern "C"
