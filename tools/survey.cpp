#include "survey.h"
#include "command.h"
#include "families.h"

#include <velmio/paths.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace velmio::tool {
namespace {

namespace fs = std::filesystem;

bool isLineEntry(const std::string &name) {
    if (name == "Svp" || name == "SVP" || name == "SoundSpeedProfile") return true;
    return findFamily(name) != nullptr;
}

// Returns false when visit asked to stop.
bool walk(const fs::path &dir, const std::function<bool(const std::string &)> &visit, std::size_t &count) {
    std::error_code ec;
    std::vector<std::string> subdirectories;
    bool line = false;
    for (fs::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (isLineEntry(name)) {
            line = true;
            break;
        }
        std::error_code typeError;
        // Linked directories are not followed: a link back up would never end.
        if (name[0] != '.' && name != "VesselConfig" && it->is_directory(typeError) && !it->is_symlink(typeError))
            subdirectories.push_back(name);
    }
    if (line) {
        ++count;
        return visit(dir.string());
    }
    std::sort(subdirectories.begin(), subdirectories.end());
    for (const std::string &name : subdirectories)
        if (!walk(dir / name, visit, count)) return false;
    return true;
}

std::string part(wchar_t *(*get)(const wchar_t *), const std::wstring &path) {
    wchar_t *value = get(path.c_str());
    std::string out = value ? narrow(value) : std::string();
    std::free(value);
    return out;
}

}  // namespace

std::size_t forEachLine(const std::string &path, const std::function<bool(const std::string &)> &visit) {
    std::size_t count = 0;
    std::string root = path;
    while (root.size() > 1 && (root.back() == '/' || root.back() == '\\')) root.pop_back();
    walk(fs::path(root), visit, count);
    return count;
}

LineName lineName(const std::string &path) {
    const std::wstring wide = widen(path);
    return {part(VELMGetProjectFromPath, wide), part(VELMGetVesselFromPath, wide), part(VELMGetDayFromPath, wide),
            part(VELMGetLineFromPath, wide)};
}

}  // namespace velmio::tool
