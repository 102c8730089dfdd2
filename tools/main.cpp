// velmio: read, write and inspect survey line data from the command line.
#include "command.h"

#include <clocale>
#include <cstdio>
#include <cstring>
#include <cwchar>

namespace velmio::tool {

std::wstring widen(const std::string &text) {
    std::wstring out;
    std::mbstate_t state{};
    const char *p = text.c_str();
    std::size_t n = std::mbsrtowcs(nullptr, &p, 0, &state);
    if (n == static_cast<std::size_t>(-1)) {
        for (unsigned char c : text) out += static_cast<wchar_t>(c);
        return out;
    }
    out.resize(n);
    p = text.c_str();
    state = std::mbstate_t{};
    std::mbsrtowcs(out.data(), &p, n, &state);
    return out;
}

namespace {

const Command kCommands[] = {
    {"version", "", "print the library's version", runVersion},
    {"time", "TEXT | SECONDS80 | --ymd Y M D h m s", "convert between time texts and UTC seconds", runTime},
};

void usage(std::FILE *out) {
    std::fprintf(out, "usage: velmio COMMAND [ARGS]\n\ncommands:\n");
    for (const auto &c : kCommands) std::fprintf(out, "  %-8s %-36s %s\n", c.name, c.usage, c.summary);
}

}  // namespace
}  // namespace velmio::tool

int main(int argc, char **argv) {
    using namespace velmio::tool;
    std::setlocale(LC_CTYPE, "");
    if (argc < 2 || !std::strcmp(argv[1], "help") || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) {
        usage(argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    for (const auto &c : kCommands) {
        if (!std::strcmp(argv[1], c.name)) return c.run(Args(argv + 2, argv + argc));
    }
    std::fprintf(stderr, "velmio: unknown command '%s'\n", argv[1]);
    usage(stderr);
    return 2;
}
