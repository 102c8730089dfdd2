// velmio explain: the sentence of each error code, from the message bundle.
#include "command.h"

#include <velmio/messages.hpp>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

int velmio::tool::runExplain(const Args &args) {
    if (args.empty()) {
        std::fprintf(stderr, "%s\n", text("ToolExplainUsage", "usage: velmio explain CODE...").c_str());
        return 2;
    }
    int unknown = 0;
    for (const std::string &a : args) {
        char *end = nullptr;
        errno = 0;
        const long code = std::strtol(a.c_str(), &end, 10);
        MORVAUString sentence;
        if (errno || end == a.c_str() || *end || code < -2147483647L - 1 || code > 2147483647L ||
            VELMIOUtils::findErrorMessage(static_cast<int>(code), sentence) != 0) {
            std::printf("%s: %s\n", a.c_str(), text("ToolExplainUnknown", "not a code of this library").c_str());
            ++unknown;
            continue;
        }
        std::printf("%s: %s\n", a.c_str(), sentence.toUtf8().c_str());
    }
    return unknown ? 1 : 0;
}
