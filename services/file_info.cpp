// Version information of modules: the library's own version symbol and its
// reader.
#include <velmio/file_info.h>
#include <velmio/version.h>

#include "foundation/classic_locale.h"
#include "foundation/utf8.h"
#include "foundation/wide_copy.h"
#include "platform/native_path.h"

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <new>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#if defined(__GLIBC__)
#include <link.h>
#endif
#endif

extern "C" VELMIO_API const VELMIOVersionInfo VELMIO_VersionInfo = {
    {VELMIO_VERSION_MAJOR, VELMIO_VERSION_MINOR, VELMIO_VERSION_PATCH, VELMIO_VERSION_TWEAK},
    VELMIO_DESCRIPTION,
};

namespace {

constexpr std::size_t kBufferChars = VELMIO_FILE_INFO_BUFFER_BYTES / sizeof(wchar_t);

struct ModuleVersion {
    unsigned int parts[4] = {0, 0, 0, 0};
    std::wstring description;
};

#if defined(_WIN32)
bool readVersion(const wchar_t *modulePath, ModuleVersion &out) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(modulePath, &ignored);
    if (size == 0) return false;
    std::string data(size, '\0');
    if (!GetFileVersionInfoW(modulePath, 0, size, data.data())) return false;
    VS_FIXEDFILEINFO *fixed = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(data.data(), L"\\", reinterpret_cast<void **>(&fixed), &length) || !fixed) return false;
    out.parts[0] = HIWORD(fixed->dwFileVersionMS);
    out.parts[1] = LOWORD(fixed->dwFileVersionMS);
    out.parts[2] = HIWORD(fixed->dwFileVersionLS);
    out.parts[3] = LOWORD(fixed->dwFileVersionLS);
    wchar_t *text = nullptr;
    if (VerQueryValueW(data.data(), L"\\StringFileInfo\\040904b0\\FileDescription", reinterpret_cast<void **>(&text),
                       &length) &&
        text)
        out.description.assign(text, length ? length - 1 : 0);
    return true;
}
#else
struct ModuleCloser {
    void operator()(void *module) const { dlclose(module); }
};

bool readVersion(const wchar_t *modulePath, ModuleVersion &out) {
    const std::string path = velmio::platform::nativePath(modulePath);
    if (path.empty()) return false;
    void *module = dlopen(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (!module) module = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    if (!module) return false;
    std::unique_ptr<void, ModuleCloser> holder(module);
    const auto *info = static_cast<const VELMIOVersionInfo *>(dlsym(module, "VELMIO_VersionInfo"));
    if (!info) return false;
#if defined(__GLIBC__)
    // dlsym also searches the module's dependencies: a program that merely
    // links libvelmio does not carry the version itself.
    struct link_map *own = nullptr;
    struct link_map *holderOfSymbol = nullptr;
    Dl_info where{};
    if (dlinfo(module, RTLD_DI_LINKMAP, &own) != 0 ||
        !dladdr1(info, &where, reinterpret_cast<void **>(&holderOfSymbol), RTLD_DL_LINKMAP) || own != holderOfSymbol)
        return false;
#endif
    for (int i = 0; i < 4; ++i) out.parts[i] = info->version[i];
    out.description = velmio::fromUtf8(info->description);
    return true;
}
#endif

void clear(wchar_t *buffer) {
    if (buffer) buffer[0] = L'\0';
}

int fileInfo(const wchar_t *modulePath, wchar_t **descriptionBuffer, wchar_t **versionBuffer) {
    if (!descriptionBuffer || !versionBuffer) return -1;
    ModuleVersion version;
    if (!modulePath || !readVersion(modulePath, version)) {
        clear(*descriptionBuffer);
        clear(*versionBuffer);
        return -1;
    }
    wchar_t text[32];
    {
        velmio::ClassicLocaleScope classic;
        std::swprintf(text, sizeof text / sizeof text[0], L"%d.%d.%d.%d", static_cast<int>(version.parts[0]),
                      static_cast<int>(version.parts[1]), static_cast<int>(version.parts[2]),
                      static_cast<int>(version.parts[3]));
    }
    wchar_t *description = *descriptionBuffer;
    wchar_t *versionText = *versionBuffer;
    if (!description) description = static_cast<wchar_t *>(std::malloc(VELMIO_FILE_INFO_BUFFER_BYTES));
    if (!versionText) versionText = static_cast<wchar_t *>(std::malloc(VELMIO_FILE_INFO_BUFFER_BYTES));
    if (!description || !versionText) {
        if (description != *descriptionBuffer) std::free(description);
        if (versionText != *versionBuffer) std::free(versionText);
        clear(*descriptionBuffer);
        clear(*versionBuffer);
        return -1;
    }
    velmio::copyBounded(description, kBufferChars, version.description.c_str());
    velmio::copyBounded(versionText, kBufferChars, text);
    *descriptionBuffer = description;
    *versionBuffer = versionText;
    return 0;
}

}  // namespace

extern "C" VELMIO_API int VELMGetFileInfo(const wchar_t *modulePath, wchar_t **descriptionBuffer,
                                          wchar_t **versionBuffer) {
    try {
        return fileInfo(modulePath, descriptionBuffer, versionBuffer);
    } catch (...) {
        return -1;
    }
}
