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

std::string narrow(const std::wstring &text) { return MORVAUString(text).toUtf8(); }

int reportError(const char *what, int code) {
    MORVAUString sentence;
    std::string reason = VELMIOUtils::findErrorMessage(code, sentence) == 0 ? sentence.toUtf8() : "";
    std::fprintf(stderr, "velmio: %s: ", what);
    std::fprintf(stderr, text("ToolErrorCode", "error %d: %s").c_str(), code, reason.c_str());
    std::fputc('\n', stderr);
    return 1;
}

}  // namespace velmio::tool
