// velmio: read, write and inspect survey data from the command line.
#include "command.h"

#include <clocale>
#include <cstdio>
#include <cstring>

namespace velmio::tool {

namespace {

struct Command {
    const char *name;
    int (*run)(const Args &args);
    const char *usage;    // arguments
    const char *summary;  // one line
    const char *help;     // what the options do; "" when there are none
    const char *key;      // bundle keys are Tool<key>Arguments, ...Summary, ...Help
};

// New subcommands (check, repair, ...) are one row here and one file.
const Command kCommands[] = {
    {"info", runInfo, "PATH [--json] [--quiet]", "what a line, day, vessel, project or data root holds",
     "For every line under PATH: the sensors present with their counts, time span, extents, segments and\n"
     "statuses, then totals per day, vessel and project. A damaged line is reported with its code and the\n"
     "scan goes on (exit 1).\n"
     "  --json    one JSON document on standard output (schema in the README)\n"
     "  --quiet   no progress bar (it is shown only when standard error is a terminal)",
     "Info"},
    {"dump", runDump, "LINE SENSOR [--records A:B | --profiles A:B] [--format csv|json]",
     "every field of every record of one sensor",
     "Times as ISO 8601 UTC and seconds since 1980, angles in degrees, statuses as numbers and texts.\n"
     "Profile sensors give one row per beam. Ranges count from 1 and include both ends; A: or :B leave\n"
     "one end open.\n"
     "  --format csv|json   output format (csv)",
     "Dump"},
    {"export", runExport, "PATH --to FILE [--format DRIVER] [--fixes]", "navigation tracks for GIS software",
     "Writes one line feature per navigation segment of every line under PATH (attributes line, vessel,\n"
     "day, segment, start, end, status) in WGS84 degrees through GDAL.\n"
     "  --format DRIVER   any vector driver: GPKG (default), GeoJSON, \"ESRI Shapefile\", KML, CSV, ...\n"
     "  --fixes           also every fix as a point feature (layer fixes)",
     "Export"},
    {"vessel", runVessel, "FILE [--at TIME] [--json]", "a vessel configuration as the queries see it",
     "Every sensor kind's entry valid at TIME (\"YYYY-DDD hh:mm:ss\" or seconds since 1980; default: the\n"
     "latest entry). Offsets in metres, angles in degrees.\n"
     "  --json   one JSON document",
     "Vessel"},
    {"svp", runSvp, "FILE [--from FORMAT] [--to OUT --format native|chs|dat|edf]",
     "show or convert a sound velocity file",
     "Shows the casts of FILE; with --to writes them to OUT in the format named.\n"
     "  --from FORMAT   read FILE as that format instead of detecting it",
     "Svp"},
    {"demo", runDemo, "ROOT | --line LINE_DIRECTORY", "write a demo survey (or one demo line)",
     "ROOT receives a project of two vessels, two days each and two lines a day with every family, a\n"
     "vessel configuration per vessel under ROOT/VesselConfig and a sound velocity cast per line.\n"
     "  --line LINE_DIRECTORY   write one such line only",
     "Demo"},
    {"show", runShow, "LINE_DIRECTORY", "summarise every sensor of a survey line", "", "Show"},
    {"time", runTime, "TEXT | SECONDS80 | --ymd Y M D h m s", "convert between time texts and UTC seconds", "",
     "Time"},
    {"explain", runExplain, "CODE...", "say what error codes mean", "", "Explain"},
    {"version", runVersion, "", "print the library's version", "", "Version"},
    {"help", nullptr, "[COMMAND]", "this text, or a command's", "", "Help"},
    {"check", runCheck, "PATH [--json]", "verify every sensor of a line or of the lines below",
     "Checks every file of every sensor: validation records, summaries against the records present, the\n"
     "time index, segments and time order. Each problem is listed with its line, sensor, record and code\n"
     "(for 5029103 and 5029104, whole records beyond the summary and a partial one at the end, a count of\n"
     "bytes in place of the record); exit 1 when anything is wrong.\n"
     "  --json   one JSON document",
     "Check"},
    {"repair", runRepair, "LINE [SENSOR] [--dry-run]", "salvage an interrupted or damaged line",
     "Rebuilds the summary, time index and line segment file of every sensor of LINE (or of SENSOR) from\n"
     "the whole records its data file holds and cuts off a partial record at its end. Intact segments are\n"
     "kept; otherwise one segment named \"recovered\" holds every record. The files as found are kept beside\n"
     "the repaired ones with the suffix .damaged (deleted by nobody but you). Exit 1 when a sensor could\n"
     "not be repaired.\n"
     "  --dry-run   say what would be done and change nothing",
     "Repair"},
};

std::string keyed(const Command &c, const char *what, const char *fallback) {
    const std::string key = std::string("Tool") + c.key + what;
    return text(key.c_str(), fallback);
}

const Command *find(const char *name) {
    for (const auto &c : kCommands)
        if (!std::strcmp(name, c.name)) return &c;
    return nullptr;
}

void usage(std::FILE *out) {
    std::fprintf(out, "%s\n\n%s\n", text("ToolUsage", "usage: velmio COMMAND [ARGS]").c_str(),
                 text("ToolCommands", "commands:").c_str());
    for (const auto &c : kCommands)
        std::fprintf(out, "  %-8s %s\n           %s\n", c.name, keyed(c, "Arguments", c.usage).c_str(),
                     keyed(c, "Summary", c.summary).c_str());
    std::fprintf(out, "\n%s\n",
                 text("ToolExitCodes", "exit codes: 0 success, 1 a failure of the data, 2 a usage error").c_str());
}

void help(const Command &c, std::FILE *out) {
    std::fprintf(out, "usage: velmio %s %s\n%s\n", c.name, keyed(c, "Arguments", c.usage).c_str(),
                 keyed(c, "Summary", c.summary).c_str());
    const std::string more = keyed(c, "Help", c.help);
    if (!more.empty()) std::fprintf(out, "\n%s\n", more.c_str());
}

// The manual page, built from the same texts as the help.
void manual(std::FILE *out) {
    std::fprintf(out,
                 ".TH VELMIO 1\n.SH NAME\nvelmio \\- inspect, dump and export hydrographic survey data\n"
                 ".SH SYNOPSIS\n.B velmio\n\\fICOMMAND\\fR [\\fIARGS\\fR]\n.SH COMMANDS\n");
    for (const auto &c : kCommands) {
        std::fprintf(out, ".TP\n.B %s %s\n%s\n", c.name, c.usage, c.summary);
        if (*c.help) {
            std::fprintf(out, ".IP\n.nf\n");
            for (const char *p = c.help; *p; ++p) {
                if (*p == '\\') std::fputc('\\', out);
                std::fputc(*p, out);
            }
            std::fprintf(out, "\n.fi\n");
        }
    }
    std::fprintf(out,
                 ".SH EXIT STATUS\n0 success; 1 a failure of the data, with its code and sentence on standard "
                 "error; 2 a usage error.\n");
}

int runHelp(const Args &args) {
    if (args.empty()) {
        usage(stdout);
        return 0;
    }
    if (args[0] == "--man") {
        manual(stdout);
        return 0;
    }
    if (const Command *c = find(args[0].c_str())) {
        help(*c, stdout);
        return 0;
    }
    std::fprintf(stderr, text("ToolUnknownCommand", "velmio: unknown command '%s'").c_str(), args[0].c_str());
    std::fputc('\n', stderr);
    return kExitUsage;
}

}  // namespace

int usageError(const char *command, const std::string &message) {
    if (!message.empty()) std::fprintf(stderr, "velmio %s: %s\n", command, message.c_str());
    if (const Command *c = find(command))
        std::fprintf(stderr, "usage: velmio %s %s\n", c->name, keyed(*c, "Arguments", c->usage).c_str());
    return kExitUsage;
}

Parsed parseArgs(const Args &args, const std::vector<std::string> &flags, const std::vector<std::string> &valued) {
    Parsed p;
    auto listed = [](const std::vector<std::string> &names, const std::string &n) {
        for (const auto &x : names)
            if (x == n) return true;
        return false;
    };
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string &a = args[i];
        if (a.size() < 3 || a.compare(0, 2, "--") != 0) {
            p.positional.push_back(a);
        } else if (listed(flags, a)) {
            p.options[a] = "";
        } else if (listed(valued, a)) {
            if (i + 1 == args.size()) {
                p.error = a + ": " + text("ToolMissingValue", "a value is missing");
                return p;
            }
            p.options[a] = args[++i];
        } else {
            p.error = a + ": " + text("ToolUnknownOption", "not an option of this command");
            return p;
        }
    }
    return p;
}

}  // namespace velmio::tool

int main(int argc, char **argv) {
    using namespace velmio::tool;
    std::setlocale(LC_CTYPE, "");
    if (argc < 2) {
        usage(stderr);
        return kExitUsage;
    }
    if (!std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")) return runHelp({});
    if (!std::strcmp(argv[1], "help")) return runHelp(Args(argv + 2, argv + argc));
    const Command *c = find(argv[1]);
    if (!c) {
        std::fprintf(stderr, text("ToolUnknownCommand", "velmio: unknown command '%s'").c_str(), argv[1]);
        std::fputc('\n', stderr);
        usage(stderr);
        return kExitUsage;
    }
    const Args args(argv + 2, argv + argc);
    for (const std::string &a : args) {
        if (a == "--help" || a == "-h") {
            help(*c, stdout);
            return 0;
        }
    }
    return c->run(args);
}
