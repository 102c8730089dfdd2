#include "platform/native_path.h"

#include "foundation/utf8.h"

namespace velmio::platform {

std::string nativePath(const wchar_t *path) {
    std::string out = toUtf8(path);
    const char native = static_cast<char>(kSeparator);
    for (char &c : out)
        if (c == '/' || c == '\\') c = native;
    return out;
}

}  // namespace velmio::platform
