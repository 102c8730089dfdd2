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

struct Listed {
    Command command;
    const char *usageKey;
    const char *summaryKey;
};

const Listed kCommands[] = {
    {{"version", "", "print the library's version", runVersion}, nullptr, "ToolVersionSummary"},
    {{"time", "TEXT | SECONDS80 | --ymd Y M D h m s", "convert between time texts and UTC seconds", runTime},
     "ToolTimeArguments", "ToolTimeSummary"},
    {{"demo", "LINE_DIRECTORY", "write a demo survey line (sensors and a sound velocity profile)", runDemo},
     "ToolDemoArguments", "ToolDemoSummary"},
    {{"show", "LINE_DIRECTORY", "summarise every sensor of a survey line", runShow}, "ToolShowArguments",
     "ToolShowSummary"},
    {{"explain", "CODE...", "say what error codes mean", runExplain}, "ToolExplainArguments", "ToolExplainSummary"},
    {{"check", "PATH [--json]", "verify every sensor of a line or of the lines below", runCheck}, "ToolCheckArguments", "ToolCheckSummary"},
};

void usage(std::FILE *out) {
    std::fprintf(out, "%s\n\n%s\n", text("ToolUsage", "usage: velmio COMMAND [ARGS]").c_str(),
                 text("ToolCommands", "commands:").c_str());
    for (const auto &c : kCommands) {
        std::string args = c.usageKey ? text(c.usageKey, c.command.usage) : c.command.usage;
        std::fprintf(out, "  %-8s %-36s %s\n", c.command.name, args.c_str(),
                     text(c.summaryKey, c.command.summary).c_str());
    }
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
        if (!std::strcmp(argv[1], c.command.name)) return c.command.run(Args(argv + 2, argv + argc));
    }
    std::fprintf(stderr, text("ToolUnknownCommand", "velmio: unknown command '%s'").c_str(), argv[1]);
    std::fputc('\n', stderr);
    usage(stderr);
    return 2;
}
