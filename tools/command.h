// The velmio command's subcommands: each lives in its own file and registers
// itself in the table of tools/main.cpp.
//
// Exit codes of every subcommand: 0 success, 1 a failure of the data (the
// code and the bundle's sentence on standard error), 2 a usage error.
#ifndef VELMIO_TOOLS_COMMAND_H
#define VELMIO_TOOLS_COMMAND_H

#include <map>
#include <string>
#include <vector>

namespace velmio::tool {

using Args = std::vector<std::string>;

constexpr int kExitData = 1;
constexpr int kExitUsage = 2;

int runVersion(const Args &args);
int runTime(const Args &args);
int runDemo(const Args &args);
int runShow(const Args &args);
int runExplain(const Args &args);
int runInfo(const Args &args);
int runDump(const Args &args);
int runExport(const Args &args);
int runVessel(const Args &args);
int runSvp(const Args &args);
int runCheck(const Args &args);
int runRepair(const Args &args);

// UTF-8 argument to a wide string, and back.
std::wstring widen(const std::string &text);
std::string narrow(const std::wstring &text);
// The tool's text under key in the message bundle, or fallback.
std::string text(const char *key, const char *fallback);
// Prints "velmio: what: error N: sentence" on standard error; returns 1.
int reportError(const char *what, int code);
// The bundle's sentence of a code ("" when it has none).
std::string sentence(int code);

// Arguments split into positionals and options. Options are "--name" flags
// or "--name VALUE" for the names in valued; anything else starting with
// "--" is an error.
struct Parsed {
    std::vector<std::string> positional;
    std::map<std::string, std::string> options;
    std::string error;  // "" when the arguments were well formed
    bool has(const std::string &name) const { return options.count(name) != 0; }
    std::string get(const std::string &name, const std::string &otherwise = "") const {
        auto it = options.find(name);
        return it == options.end() ? otherwise : it->second;
    }
};
Parsed parseArgs(const Args &args, const std::vector<std::string> &flags, const std::vector<std::string> &valued);
// Prints the message and the command's usage line on standard error; returns 2.
int usageError(const char *command, const std::string &message);

}  // namespace velmio::tool

#endif
