// Lookup of message texts in the ICU resource bundle "VelmMessages".
#include <velmio/messages.hpp>

#include "foundation/utf8.h"
#include "platform/files.h"
#include "platform/native_path.h"

#include <unicode/ures.h>
#include <unicode/ustring.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <limits.h>
#if defined(__GLIBC__)
#include <link.h>
#endif
#endif

namespace {

constexpr int kOutOfMemory = 5000009;

#if defined(_WIN32)
std::wstring moduleFile() {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<LPCWSTR>(&moduleFile), &module))
        return std::wstring();
    std::vector<wchar_t> name(32768);
    DWORD n = GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
    if (n == 0 || n >= name.size()) return std::wstring();
    return std::wstring(name.data(), n);
}
#else
std::string realPath(const char *path) {
    char resolved[PATH_MAX];
    return realpath(path, resolved) ? std::string(resolved) : std::string();
}

// The file of the module holding this code: libvelmio, or the program itself
// when it links the library's objects statically.
std::wstring moduleFile() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void *>(&moduleFile), &info) || !info.dli_fname) return std::wstring();
    std::string file = info.dli_fname;
#if defined(__GLIBC__)
    // The main program's name is argv[0], which may be relative to a former
    // working directory; its link map entry has an empty name.
    Dl_info again{};
    struct link_map *map = nullptr;
    if (dladdr1(reinterpret_cast<void *>(&moduleFile), &again, reinterpret_cast<void **>(&map), RTLD_DL_LINKMAP) &&
        map && (!map->l_name || !*map->l_name))
        file = "/proc/self/exe";
#endif
    if (file.find('/') == std::string::npos) file = "/proc/self/exe";
    return velmio::fromUtf8(realPath(file.c_str()));
}
#endif

std::wstring directoryOf(const std::wstring &file) {
    const std::size_t cut = file.find_last_of(L"/\\");
    return cut == std::wstring::npos ? std::wstring() : file.substr(0, cut);
}

const std::wstring &moduleDirectory() {
    static const std::wstring directory = directoryOf(moduleFile());
    return directory;
}

std::wstring join(const std::wstring &directory, const std::wstring &name) {
    return directory + velmio::platform::kSeparator + name;
}

bool locateBundle(const std::wstring &name, std::wstring &directory) {
    directory.clear();
    if (name.empty()) return false;
    if (name.find_first_of(L"/\\") != std::wstring::npos) {
        if (!velmio::platform::isDirectory(name.c_str())) return false;
        directory = name;
        return true;
    }
    std::vector<std::wstring> candidates;
    if (!moduleDirectory().empty()) candidates.push_back(join(moduleDirectory(), name));
#if defined(VELMIO_MESSAGE_BUILD_DIR)
    candidates.push_back(join(velmio::fromUtf8(VELMIO_MESSAGE_BUILD_DIR), name));
#endif
    for (const auto &candidate : candidates) {
        if (velmio::platform::isDirectory(candidate.c_str())) {
            directory = candidate;
            return true;
        }
    }
    return false;
}

// Bundle keys are invariant ASCII characters.
bool asciiKey(const std::wstring &key, std::string &out) {
    if (key.empty()) return false;
    for (wchar_t c : key) {
        if (c <= 0x20 || c >= 0x7f) return false;
        out += static_cast<char>(c);
    }
    return true;
}

std::wstring toWide(const UChar *text, int32_t length) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    u_strToUTF8(nullptr, 0, &needed, text, length, &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return std::wstring();
    std::string utf8(static_cast<std::size_t>(needed), '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8(utf8.data(), needed, nullptr, text, length, &status);
    return velmio::fromUtf8(utf8);
}

struct BundleCloser {
    void operator()(UResourceBundle *bundle) const { ures_close(bundle); }
};
using Bundle = std::unique_ptr<UResourceBundle, BundleCloser>;

int lookUp(const MORVAUString &key, MORVAUString &result, const MORVAUString &bundleName) {
    result = MORVAUString();
    const std::wstring name = bundleName.empty() ? std::wstring(VELMIOUtils::kMessageBundleName) : bundleName.str();
    std::wstring directory;
    if (!locateBundle(name, directory)) return -1;

    UErrorCode status = U_ZERO_ERROR;
    Bundle bundle(ures_open((velmio::platform::nativePath(directory) + "/").c_str(), nullptr, &status));
    if (U_FAILURE(status) || !bundle) return -1;

    std::string narrowKey;
    if (!asciiKey(key.str(), narrowKey)) return -1;
    Bundle entry(ures_getByKey(bundle.get(), narrowKey.c_str(), nullptr, &status));
    if (U_FAILURE(status)) return -1;
    int32_t length = 0;
    const UChar *text = ures_getStringByKey(bundle.get(), narrowKey.c_str(), &length, &status);
    if (U_FAILURE(status) || !text) return -1;
    result = MORVAUString(toWide(text, length));
    return 0;
}

}  // namespace

namespace VELMIOUtils {

int findResourceString(const MORVAUString &key, MORVAUString &result, const MORVAUString &bundle) {
    try {
        return lookUp(key, result, bundle);
    } catch (const std::bad_alloc &) {
        return kOutOfMemory;
    }
}

MORVAUString errorMessageKey(int code) {
    const long long value = code;
    return MORVAUString(value < 0 ? L"EMinus" + std::to_wstring(-value) : L"E" + std::to_wstring(value));
}

int findErrorMessage(int code, MORVAUString &result, const MORVAUString &bundle) {
    try {
        return lookUp(errorMessageKey(code), result, bundle);
    } catch (const std::bad_alloc &) {
        return kOutOfMemory;
    }
}

bool findMessageBundleDirectory(const MORVAUString &bundle, MORVAUString &directory) {
    try {
        std::wstring found;
        const bool ok = locateBundle(bundle.empty() ? std::wstring(kMessageBundleName) : bundle.str(), found);
        directory = MORVAUString(found);
        return ok;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

}  // namespace VELMIOUtils
