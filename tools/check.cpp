// velmio check: every sensor of a line, or of every line below a directory,
// verified; exit 1 when anything is wrong, so that scripts can trust it.
#include "command.h"
#include "format.h"

#include <velmio/line_check.h>

#include <cstdio>

#if !defined(_WIN32)
#include <unistd.h>
#endif

namespace {

// The readers' own complaints go to standard error while the check runs,
// so that standard output holds the report alone (and parses as JSON).
int checkQuietly(const std::wstring &path, VELMCheckProblem **problems, unsigned int *count, unsigned int *lines) {
#if defined(_WIN32)
    return VELMCheckPath(path.c_str(), problems, count, lines);
#else
    std::fflush(stdout);
    const int saved = ::dup(1);
    if (saved >= 0) ::dup2(2, 1);
    const int rc = VELMCheckPath(path.c_str(), problems, count, lines);
    std::fflush(stdout);
    if (saved >= 0) {
        ::dup2(saved, 1);
        ::close(saved);
    }
    return rc;
#endif
}

}  // namespace

int velmio::tool::runCheck(const Args &args) {
    const bool asJson = args.size() == 2 && args[1] == "--json";
    if (args.empty() || (args.size() == 2 && !asJson) || args.size() > 2) {
        std::fprintf(stderr, "%s\n", text("ToolCheckUsage", "usage: velmio check PATH [--json]").c_str());
        return 2;
    }
    VELMCheckProblem *problems = nullptr;
    unsigned int count = 0, lines = 0;
    // A path that cannot be checked at all is not a finding: exit 2.
    if (int rc = checkQuietly(widen(args[0]), &problems, &count, &lines)) {
        reportError(args[0].c_str(), rc);
        return 2;
    }
    if (asJson) std::printf("{\"lines\": %u, \"problems\": [", lines);
    for (unsigned int i = 0; i < count; ++i) {
        const VELMCheckProblem &p = problems[i];
        if (asJson) {
            std::printf("%s\n  {\"line\": %s, \"sensor\": %s, \"number\": %u, \"code\": %d, \"message\": %s}",
                        i ? "," : "", jsonString(narrow(p.line)).c_str(), jsonString(narrow(p.sensor)).c_str(), p.number, p.code,
                        jsonString(sentence(p.code)).c_str());
        } else {
            // The problems of an interrupted write count bytes, not a record.
            const bool bytes = p.code == 5029103 || p.code == 5029104;
            std::printf("%s: %s: ", narrow(p.line).c_str(), narrow(p.sensor).c_str());
            if (bytes)
                std::printf(text("ToolCheckBytes", "%u bytes").c_str(), p.number);
            else
                std::printf("%s %u", text("ToolCheckRecord", "record").c_str(), p.number);
            std::printf(": ");
            std::printf(text("ToolErrorCode", "error %d: %s").c_str(), p.code, sentence(p.code).c_str());
            std::printf("\n");
        }
    }
    if (asJson) {
        std::printf("%s]}\n", count ? "\n" : "");
    } else {
        std::printf(text("ToolCheckResult", "%u lines checked, %u problems").c_str(), lines, count);
        std::printf("\n");
    }
    VELMCheckFree(problems, count);
    return count ? 1 : 0;
}
