// The tool's texts come from the message bundle, so that they can be
// translated beside the library's messages; the English text is the fallback.
#include "command.h"

#include <velmio/messages.hpp>

#include <cstdio>

namespace velmio::tool {

std::string text(const char *key, const char *fallback) {
    MORVAUString value;
    if (VELMIOUtils::findResourceString(MORVAUString::fromUtf8(key), value) == 0 && !value.empty())
        return value.toUtf8();
    return fallback;
}

// Arguments are taken as UTF-8 whatever the locale, as paths are on disk.
std::wstring widen(const std::string &text) { return MORVAUString::fromUtf8(text.c_str()).str(); }

std::string narrow(const std::wstring &text) { return MORVAUString(text).toUtf8(); }

std::string sentence(int code) {
    MORVAUString value;
    return VELMIOUtils::findErrorMessage(code, value) == 0 ? value.toUtf8() : "";
}

int reportError(const char *what, int code) {
    const std::string reason = sentence(code);
    std::fprintf(stderr, "velmio: %s: ", what);
    std::fprintf(stderr, text("ToolErrorCode", "error %d: %s").c_str(), code, reason.c_str());
    std::fputc('\n', stderr);
    return 1;
}

}  // namespace velmio::tool
