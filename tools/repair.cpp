// velmio repair: salvages an interrupted or damaged line from the whole
// records its data files hold; --dry-run only says what it would do.
#include "command.h"

#include <velmio/line_check.h>

#include <cstdio>

int velmio::tool::runRepair(const Args &args) {
    const Parsed parsed = parseArgs(args, {"--dry-run"}, {});
    if (!parsed.error.empty() || parsed.positional.empty() || parsed.positional.size() > 2)
        return usageError("repair", parsed.error);
    const bool dryRun = parsed.has("--dry-run");
    const std::string &line = parsed.positional[0];
    const std::wstring sensor = parsed.positional.size() == 2 ? widen(parsed.positional[1]) : L"";
    VELMRepairReport *reports = nullptr;
    unsigned int count = 0;
    const int rc = VELMRepairPath(widen(line).c_str(), sensor.empty() ? nullptr : sensor.c_str(), dryRun ? 1 : 0,
                                  &reports, &count);
    if (rc != 0 && count == 0) return reportError(line.c_str(), rc);
    for (unsigned int i = 0; i < count; ++i) {
        const VELMRepairReport &r = reports[i];
        const std::string name = narrow(r.sensor);
        if (r.code) {
            reportError((line + "/" + name).c_str(), r.code);
            continue;
        }
        if (!r.repaired) {
            std::printf(text("ToolRepairIntact", "%s: intact, %u records; nothing to do").c_str(), name.c_str(),
                        r.records);
            std::printf("\n");
            continue;
        }
        std::printf(text(dryRun ? "ToolRepairWould" : "ToolRepairDone",
                         dryRun ? "%s: would keep %u whole records of the %llu-byte data file (the summary counted %u)"
                                : "%s: kept %u whole records of the %llu-byte data file (the summary counted %u)")
                        .c_str(),
                    name.c_str(), r.records, r.dataBytes, r.summaryRecords);
        std::printf("\n");
        if (r.droppedBytes) {
            std::printf(text("ToolRepairDropped", "  cut off a partial record of %llu bytes").c_str(), r.droppedBytes);
            std::printf("\n");
        }
        std::printf("  %s\n", r.summaryWasValid ? text("ToolRepairSummaryValid", "summary was valid").c_str()
                                                : text("ToolRepairSummaryRebuilt", "summary rebuilt").c_str());
        std::printf("  %s\n", r.timeIndexWasValid ? text("ToolRepairIndexValid", "time index was valid").c_str()
                                                  : text("ToolRepairIndexRebuilt", "time index rebuilt").c_str());
        std::printf("  %s\n", r.segmentsKept ? text("ToolRepairSegmentsKept", "line segments kept").c_str()
                                             : text("ToolRepairSegmentsRecovered",
                                                    "line segments replaced by one segment named \"recovered\"")
                                                   .c_str());
        if (r.damagedSuffix) {
            std::printf(text("ToolRepairDamagedKept", "  the files as found are kept with the suffix %s").c_str(),
                        narrow(r.damagedSuffix).c_str());
            std::printf("\n");
        }
    }
    VELMRepairFree(reports, count);
    return rc == 0 ? 0 : kExitData;
}
