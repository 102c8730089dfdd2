// The velmio command's subcommands: each lives in its own file and registers
// itself in the table of tools/main.cpp.
#ifndef VELMIO_TOOLS_COMMAND_H
#define VELMIO_TOOLS_COMMAND_H

#include <string>
#include <vector>

namespace velmio::tool {

using Args = std::vector<std::string>;

struct Command {
    const char *name;
    const char *usage;    // arguments, for the help text
    const char *summary;  // one line
    int (*run)(const Args &args);
};

int runVersion(const Args &args);
int runTime(const Args &args);
int runDemo(const Args &args);
int runShow(const Args &args);
int runExplain(const Args &args);
int runCheck(const Args &args);

// UTF-8 argument to a wide string, and back.
std::wstring widen(const std::string &text);
std::string narrow(const std::wstring &text);
// The tool's text under key in the message bundle, or fallback.
std::string text(const char *key, const char *fallback);
// Prints "velmio: what: error N: sentence" on standard error; returns 1.
int reportError(const char *what, int code);

}  // namespace velmio::tool

#endif
