// Taking line directory paths apart and joining path pieces.
#include <velmio/paths.h>
#include <velmio/utils.hpp>

#include "foundation/wide_copy.h"
#include "platform/files.h"
#include "platform/native_path.h"

#include <string>

using velmio::platform::isSeparator;
using velmio::platform::kSeparator;

namespace VELMIOUtils {

bool pathToPVDL(const MORVAUString &path, MORVAUString &root, MORVAUString &project, MORVAUString &vessel,
                MORVAUString &day, MORVAUString &line) {
    std::wstring p = path.str();
    for (auto &c : p)
        if (c == L'/') c = L'\\';
    const bool leadingSeparator = !p.empty() && p[0] == L'\\';
    if (!p.empty() && p.back() == L'\\') p.pop_back();

    MORVAUString *parts[3] = {&line, &day, &vessel};
    for (MORVAUString *part : parts) {
        std::size_t cut = p.rfind(L'\\');
        if (cut == std::wstring::npos) return false;
        *part = MORVAUString(p.substr(cut + 1));
        p.erase(cut);
    }
    std::size_t cut = p.rfind(L'\\');
    if (cut == std::wstring::npos) {
        project = MORVAUString(p);
        root = MORVAUString();
        return true;
    }
    project = MORVAUString(p.substr(cut + 1));
    p.erase(cut);
    for (auto &c : p)
        if (c == L'\\') c = kSeparator;
    if (p.empty() && leadingSeparator) p = std::wstring(1, kSeparator);
    root = MORVAUString(p);
    return true;
}

void appendPath(MORVAUString &path, const MORVAUString &name) {
    std::wstring p = path.str();
    const bool onlySeparators = !p.empty() && p.find_first_not_of(L"/\\") == std::wstring::npos;
    while (!p.empty() && isSeparator(p.back())) p.pop_back();
    std::wstring n = name.str();
    std::size_t start = n.find_first_not_of(L"/\\");
    n = (start == std::wstring::npos) ? std::wstring() : n.substr(start);
    if (p.empty() && !onlySeparators) {
        path = MORVAUString(n);
        return;
    }
    p += kSeparator;
    p += n;
    path = MORVAUString(p);
}

bool getCanonicalPath(const MORVAUString &path, MORVAUString &canonical) {
    std::wstring out;
    if (!velmio::platform::absolutePath(path.c_str(), out) || out.size() >= 512) return false;
    canonical = MORVAUString(out);
    return true;
}

}  // namespace VELMIOUtils

namespace {
enum class Part { Project, Vessel, Day, Line };

wchar_t *partOf(const wchar_t *path, Part which) {
    if (!path) return nullptr;
    MORVAUString root, project, vessel, day, line;
    if (!VELMIOUtils::pathToPVDL(MORVAUString(path), root, project, vessel, day, line)) return nullptr;
    const MORVAUString &part = which == Part::Project  ? project
                               : which == Part::Vessel ? vessel
                               : which == Part::Day    ? day
                                                       : line;
    return part.empty() ? nullptr : velmio::mallocWideCopy(part.c_str());
}
}  // namespace

extern "C" {
VELMIO_API wchar_t *VELMGetProjectFromPath(const wchar_t *path) { return partOf(path, Part::Project); }
VELMIO_API wchar_t *VELMGetVesselFromPath(const wchar_t *path) { return partOf(path, Part::Vessel); }
VELMIO_API wchar_t *VELMGetDayFromPath(const wchar_t *path) { return partOf(path, Part::Day); }
VELMIO_API wchar_t *VELMGetLineFromPath(const wchar_t *path) { return partOf(path, Part::Line); }

VELMIO_API double convertMSToKnots(double speed, int directionFlag) {
    return directionFlag ? speed * 0.5144444444 : speed / 0.5144444444;
}
}
