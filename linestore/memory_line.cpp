#include "linestore/memory_line.h"

#include <velmio/utils.hpp>

#include <map>

namespace velmio {

namespace {

// Per thread, so that a mount never redirects another thread's opens.
thread_local std::map<std::wstring, MemoryLine *> mounts;

}  // namespace

MountedLine::MountedLine(const std::wstring &lineDirectory, const wchar_t *sensorName, MemoryLine &line) {
    MORVAUString path(lineDirectory);
    VELMIOUtils::appendPath(path, MORVAUString(sensorName));
    dataPath_ = path.str();
    mounts[dataPath_] = &line;
}

MountedLine::~MountedLine() { mounts.erase(dataPath_); }

MemoryLine *mountedLine(const std::wstring &dataPath) {
    if (mounts.empty()) return nullptr;
    const auto found = mounts.find(dataPath);
    return found == mounts.end() ? nullptr : found->second;
}

int readTimeIndexOf(TOVO_Sensor &h) {
    if (!h.memory) return h.timeIndex.read(h.timeIndexPath.c_str(), h.typeId);
    const MemoryFile &file = h.memory->timeIndex;
    if (!file.exists) return kTmIdxCannotOpen;
    return h.timeIndex.readBytes(file.bytes.data(), file.bytes.size(), h.typeId);
}

}  // namespace velmio
