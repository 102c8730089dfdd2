// Line directories: existence, creation of the hierarchy, the vessel file.
#include <velmio/linestore.h>
#include <velmio/utils.hpp>

#include "foundation/wide_copy.h"
#include "platform/files.h"
#include "platform/native_path.h"

#include <cwchar>
#include <new>
#include <string>

using namespace velmio;

namespace {

// Makes dir and every missing parent, root first.
bool makeAll(const std::wstring &dir) {
    if (dir.empty()) return true;
    for (std::size_t i = 1; i <= dir.size(); ++i) {
        if (i == dir.size() || platform::isSeparator(dir[i])) {
            std::wstring prefix = dir.substr(0, i);
            if (prefix.empty() || platform::isSeparator(prefix.back())) continue;
            // A drive such as "C:" is not made.
            if (prefix.size() == 2 && prefix[1] == L':') continue;
            if (!platform::isDirectory(prefix.c_str()) && !platform::makeDirectory(prefix.c_str())) return false;
        }
    }
    return true;
}

}  // namespace

extern "C" VELMIO_API int LineExists(const wchar_t *path) { return platform::isDirectory(path) ? 1 : 0; }

extern "C" VELMIO_API int LineCreateHierarchy(const wchar_t *path) {
    if (!path) return 5000034;
    try {
        MORVAUString root, project, vessel, day, line;
        if (!VELMIOUtils::pathToPVDL(MORVAUString(path), root, project, vessel, day, line)) return 5000034;
        if (project.empty() || vessel.empty() || day.empty() || line.empty()) return 5000034;
        if (!makeAll(root.str())) return 5000034;
        MORVAUString dir = root;
        for (const MORVAUString *part : {&project, &vessel, &day, &line}) {
            VELMIOUtils::appendPath(dir, *part);
            if (!platform::isDirectory(dir.c_str()) && !platform::makeDirectory(dir.c_str())) return 5000034;
        }
        return 0;
    } catch (const std::bad_alloc &) {
        return 5000034;
    }
}

extern "C" VELMIO_API int VELMFindVesselConfigurationDir(const wchar_t *lineDirectory, wchar_t *buffer,
                                                        int bufferLength) {
    if (!lineDirectory || !buffer || bufferLength <= 0) return 5000006;
    try {
        MORVAUString root, project, vessel, day, line;
        if (!VELMIOUtils::pathToPVDL(MORVAUString(lineDirectory), root, project, vessel, day, line) ||
            vessel.empty())
            return 5000006;
        MORVAUString file = root;
        VELMIOUtils::appendPath(file, MORVAUString(L"VesselConfig"));
        VELMIOUtils::appendPath(file, vessel + MORVAUString(L".tvc"));
        if (!platform::isRegularFile(file.c_str())) return 5000006;
        if (file.length() == 0 || file.length() >= static_cast<std::size_t>(bufferLength)) return 5000006;
        std::wmemcpy(buffer, file.c_str(), file.length() + 1);
        return 0;
    } catch (const std::bad_alloc &) {
        return 5000006;
    }
}
