// Repairing lines: the record engine salvages a sensor's files in place;
// this layer first sets the damaged files aside under a suffix, so that
// whatever happens the bytes as found survive, and puts them back when the
// salvage fails.
#include <velmio/line_check.h>

#include "foundation/wide_copy.h"
#include "linestore/sensor.h"
#include "platform/durable_replace.h"
#include "platform/files.h"
#include "platform/stdio_file.h"
#include "sensors/line_salvage.h"

#include <cerrno>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr int kNoMemory = 5000009;
constexpr int kNoDirectory = 5000010;
constexpr int kNotFound = 5000046;
constexpr int kNotSetAside = 5029108;

struct Sensor {
    Sensor(std::uint32_t id, std::wstring n) : typeId(id), name(std::move(n)) {}
    std::uint32_t typeId;
    std::wstring name;
    velmio::SalvageReport found;
    int code = 0;
    bool repaired = false;
    std::wstring suffix;
};

// A sensor's files as the line store names them; side scan may have a trace.
std::vector<std::wstring> filesOf(const std::wstring &line, const std::wstring &name) {
    const std::wstring data = line + L"/" + name;
    if (name == L"SideScan") return {data, data + L"LineSegments", data + L"TmIdx", data + L"Trace"};
    return {data, data + L"LineSegments", data + L"TmIdx"};
}

bool anyExists(const std::vector<std::wstring> &files, const std::wstring &suffix) {
    for (const std::wstring &f : files)
        if (velmio::platform::pathExists((f + suffix).c_str())) return true;
    return false;
}

// ".damaged", or ".damagedN" for the first N whose names are all free.
std::wstring freeSuffix(const std::vector<std::wstring> &files) {
    std::wstring suffix = L".damaged";
    for (int n = 2; anyExists(files, suffix); ++n) suffix = L".damaged" + std::to_wstring(n);
    return suffix;
}

// A copy pushed to the disk before the repair writes into it.
bool copyFile(const std::wstring &from, const std::wstring &to) {
    using namespace velmio::platform;
    std::FILE *in = openFile(from.c_str(), "rb");
    if (!in) return false;
    const int rc = replaceFile(to, [in](std::FILE *out) {
        std::vector<char> buffer(1 << 16);
        for (;;) {
            const std::size_t n = readFile(buffer.data(), 1, buffer.size(), in);
            if (n && writeFile(buffer.data(), 1, n, out) != n) return EIO;
            if (n < buffer.size()) return std::ferror(in) ? EIO : 0;
        }
    });
    closeFile(in);
    return rc == 0;
}

class Repairer {
public:
    Repairer(std::wstring line, bool dryRun) : line_(std::move(line)), dryRun_(dryRun) {}

    void repair(Sensor &s) {
        velmio::SalvageOptions look;
        look.dryRun = true;
        s.code = velmio::salvageLine(line_.c_str(), s.typeId, look, s.found);
        const velmio::SalvageReport &r = s.found;
        s.repaired = s.code == 0 && !(r.summaryValid && r.summaryEnd == r.dataBytes && r.segmentsValid &&
                                      r.timeIndexValid && r.wholeRecords == r.summaryRecords && !r.traceDroppedBytes);
        if (!s.repaired || dryRun_) return;
        const std::vector<std::wstring> files = filesOf(line_, s.name);
        s.suffix = freeSuffix(files);
        std::vector<bool> found, aside;
        s.code = setAside(files, s.suffix, r.segmentsValid, found, aside);
        if (s.code == 0) {
            velmio::SalvageReport done;
            s.code = velmio::salvageLine(line_.c_str(), s.typeId, velmio::SalvageOptions{}, done);
        }
        if (s.code != 0 && !restore(files, s.suffix, found, aside)) s.code = kNotSetAside;
        if (s.code != 0) s.suffix.clear();
        velmio::platform::syncDirectory(line_);
    }

private:
    // Renames every file present, then copies back what the salvage reads:
    // the data file, an intact segment file and a trace file.
    int setAside(const std::vector<std::wstring> &files, const std::wstring &suffix, bool segmentsIntact,
                 std::vector<bool> &found, std::vector<bool> &aside) {
        for (std::size_t i = 0; i < files.size(); ++i) {
            found.push_back(velmio::platform::pathExists(files[i].c_str()));
            aside.push_back(false);
        }
        for (std::size_t i = 0; i < files.size(); ++i) {
            if (!found[i]) continue;
            if (!velmio::platform::renameFile(files[i].c_str(), (files[i] + suffix).c_str())) return kNotSetAside;
            aside[i] = true;
        }
        if (velmio::platform::syncDirectory(line_) != 0) return kNotSetAside;
        if (!copyFile(files[0] + suffix, files[0])) return kNotSetAside;
        if (segmentsIntact && !copyFile(files[1] + suffix, files[1])) return kNotSetAside;
        if (files.size() > 3 && found[3] && !copyFile(files[3] + suffix, files[3])) return kNotSetAside;
        return 0;
    }

    // Puts the damaged files back where they were found and removes what
    // the repair made where nothing was; a file never set aside stays.
    static bool restore(const std::vector<std::wstring> &files, const std::wstring &suffix,
                        const std::vector<bool> &found, const std::vector<bool> &aside) {
        bool ok = true;
        for (std::size_t i = 0; i < found.size(); ++i) {
            const wchar_t *f = files[i].c_str();
            if (aside[i])
                ok = velmio::platform::renameFile((files[i] + suffix).c_str(), f) && ok;
            else if (!found[i] && velmio::platform::pathExists(f))
                ok = velmio::platform::removeFile(f) && ok;
        }
        return ok;
    }

    std::wstring line_;
    bool dryRun_;
};

VELMRepairReport reportOf(const Sensor &s) {
    const velmio::SalvageReport &r = s.found;
    VELMRepairReport out{};
    out.sensor = velmio::mallocWideCopy(s.name.c_str());
    out.code = s.code;
    out.repaired = s.repaired ? 1 : 0;
    out.records = r.wholeRecords;
    out.summaryRecords = r.summaryRecords;
    out.dataBytes = r.dataBytes;
    out.droppedBytes = r.droppedBytes;
    out.summaryWasValid = r.summaryValid && r.summaryRecords == r.wholeRecords && r.summaryEnd == r.dataBytes;
    out.segmentsWereValid = r.segmentsValid;
    out.timeIndexWasValid = r.timeIndexValid;
    out.segmentsKept = r.segmentsKept;
    out.damagedSuffix = s.suffix.empty() ? nullptr : velmio::mallocWideCopy(s.suffix.c_str());
    return out;
}

}  // namespace

extern "C" {

VELMIO_API int VELMRepairPath(const wchar_t *line, const wchar_t *sensorName, int dryRun,
                              VELMRepairReport **reports, unsigned int *reportCount) {
    if (!line || !reports || !reportCount) return -1;
    *reports = nullptr;
    *reportCount = 0;
    if (!velmio::platform::isDirectory(line)) return kNoDirectory;
    try {
        std::vector<Sensor> sensors;
        if (sensorName) {
            std::uint32_t id = 0;
            if (!velmio::salvageTypeId(sensorName, id)) return velmio::kSalvageUnknownFamily;
            sensors.emplace_back(id, sensorName);
        } else {
            std::size_t count = 0;
            const std::uint32_t *ids = velmio::salvageTypeIds(count);
            for (std::size_t i = 0; i < count; ++i) {
                const std::wstring name = velmio::sensorName(ids[i]);
                if (velmio::platform::pathExists((std::wstring(line) + L"/" + name).c_str()))
                    sensors.emplace_back(ids[i], name);
            }
            if (sensors.empty()) return kNotFound;
        }
        Repairer repairer(line, dryRun != 0);
        int first = 0;
        for (Sensor &s : sensors) {
            repairer.repair(s);
            if (s.code && !first) first = s.code;
        }
        auto *out = static_cast<VELMRepairReport *>(std::calloc(sensors.size(), sizeof(VELMRepairReport)));
        if (!out) return kNoMemory;
        for (std::size_t i = 0; i < sensors.size(); ++i) {
            out[i] = reportOf(sensors[i]);
            if (!out[i].sensor || (!sensors[i].suffix.empty() && !out[i].damagedSuffix)) {
                VELMRepairFree(out, static_cast<unsigned int>(sensors.size()));
                return kNoMemory;
            }
        }
        *reports = out;
        *reportCount = static_cast<unsigned int>(sensors.size());
        return first;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

VELMIO_API void VELMRepairFree(VELMRepairReport *reports, unsigned int reportCount) {
    if (!reports) return;
    for (unsigned int i = 0; i < reportCount; ++i) {
        std::free(reports[i].sensor);
        std::free(reports[i].damagedSuffix);
    }
    std::free(reports);
}

}  // extern "C"
