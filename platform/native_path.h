// The file system boundary: wide library paths become native byte paths here,
// and nowhere else.
#ifndef VELMIO_PLATFORM_NATIVE_PATH_H
#define VELMIO_PLATFORM_NATIVE_PATH_H

#include <string>

namespace velmio::platform {

// The separator of paths the library builds.
#if defined(_WIN32)
constexpr wchar_t kSeparator = L'\\';
#else
constexpr wchar_t kSeparator = L'/';
#endif

inline bool isSeparator(wchar_t c) { return c == L'/' || c == L'\\'; }

// Wide path to the native form: UTF-8 bytes with '/' and '\' both turned into
// the native separator. Null gives "".
std::string nativePath(const wchar_t *path);
inline std::string nativePath(const std::wstring &path) { return nativePath(path.c_str()); }

}  // namespace velmio::platform

#endif
