// Backups of the observed depths files in the line's ".backup" directory.
// Every backup and restore is all or nothing: an editing tool that backs up
// before a session and restores after a crash must never find a sensor with
// its data file in one place and its time index in the other.
#include <velmio/observed_depths.h>
#include <velmio/utils.hpp>

#include "platform/durable_replace.h"
#include "platform/files.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

using namespace velmio;

namespace {

constexpr int kBackupFailed = 5000228;
constexpr int kNoMemory = 5000009;
const wchar_t *const kSets[] = {L"ObservedDepths", L"ObservedDepthsNew"};
const wchar_t *const kSuffixes[] = {L"", L"LineSegments", L"TmIdx"};

std::wstring joined(const std::wstring &dir, const std::wstring &name) {
    MORVAUString path(dir);
    VELMIOUtils::appendPath(path, MORVAUString(name));
    return path.str();
}

std::wstring backupDirectory(const wchar_t *lineDirectory) { return joined(lineDirectory, L".backup"); }

// Renames in order and remembers them, so that a failure part way can be
// undone in reverse. A file that a move would replace is first parked under
// a temporary name beside it and deleted only on commit.
class RenameJournal {
public:
    RenameJournal() = default;
    RenameJournal(const RenameJournal &) = delete;
    RenameJournal &operator=(const RenameJournal &) = delete;
    ~RenameJournal() {
        if (!committed_) rollback();
    }

    bool move(const std::wstring &from, const std::wstring &to) {
        if (platform::pathExists(to.c_str())) {
            // Only a plain file may be replaced; a directory in the way fails.
            if (!platform::isRegularFile(to.c_str())) return false;
            const std::wstring parked = platform::temporarySibling(to.c_str());
            if (parked.empty()) return false;
            if (!platform::renameFile(to.c_str(), parked.c_str())) {
                platform::removeFile(parked.c_str());
                return false;
            }
            steps_.push_back({to, parked, true});
        }
        if (!platform::renameFile(from.c_str(), to.c_str())) return false;
        steps_.push_back({from, to, false});
        return true;
    }

    // Pushes the renames to the disk; a set is moved only once both of its
    // directories have been synced.
    bool sync() const {
        std::vector<std::wstring> done;
        for (const Step &step : steps_)
            for (const std::wstring *path : {&step.from, &step.to}) {
                const std::wstring dir = platform::parentDirectory(*path);
                if (std::find(done.begin(), done.end(), dir) != done.end()) continue;
                if (platform::syncDirectory(dir) != 0) return false;
                done.push_back(dir);
            }
        return true;
    }

    void commit() {
        for (const Step &step : steps_)
            if (step.parked) platform::removeFile(step.to.c_str());
        committed_ = true;
    }

private:
    void rollback() {
        for (auto it = steps_.rbegin(); it != steps_.rend(); ++it)
            platform::renameFile(it->to.c_str(), it->from.c_str());
        steps_.clear();
    }

    struct Step {
        std::wstring from, to;
        bool parked;  // a replaced file moved aside
    };
    std::vector<Step> steps_;
    bool committed_ = false;
};

// Moves the files of one set whose data file exists in fromDir; the line
// segment and time index files go along when present.
bool moveSet(RenameJournal &journal, const std::wstring &fromDir, const std::wstring &toDir, const wchar_t *name) {
    for (const wchar_t *suffix : kSuffixes) {
        const std::wstring file = std::wstring(name) + suffix;
        const std::wstring from = joined(fromDir, file);
        if (*suffix && !platform::pathExists(from.c_str())) continue;
        if (!journal.move(from, joined(toDir, file))) return false;
    }
    return true;
}

bool hasDataFile(const std::wstring &dir, const wchar_t *name) {
    return platform::isRegularFile(joined(dir, name).c_str());
}

int restore(const wchar_t *lineDirectory, const wchar_t *name) {
    if (!lineDirectory) return kBackupFailed;
    try {
        const std::wstring backup = backupDirectory(lineDirectory);
        if (!hasDataFile(backup, name)) return kBackupFailed;
        RenameJournal journal;
        if (!moveSet(journal, backup, lineDirectory, name) || !journal.sync()) return kBackupFailed;
        journal.commit();
        return 0;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

}  // namespace

extern "C" {

VELMIO_API int ObservedDepthsBackupDir(const wchar_t *lineDirectory) {
    if (!lineDirectory) return kBackupFailed;
    try {
        std::vector<const wchar_t *> present;
        for (const wchar_t *name : kSets)
            if (hasDataFile(lineDirectory, name)) present.push_back(name);
        if (present.empty()) return kBackupFailed;
        const std::wstring backup = backupDirectory(lineDirectory);
        if (!platform::isDirectory(backup.c_str()) && !platform::makeDirectory(backup.c_str())) return kBackupFailed;
        RenameJournal journal;
        for (const wchar_t *name : present)
            if (!moveSet(journal, lineDirectory, backup, name)) return kBackupFailed;
        if (!journal.sync()) return kBackupFailed;
        journal.commit();
        return 0;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

VELMIO_API int ObservedDepthsRestoreBackupDir(const wchar_t *lineDirectory) {
    return restore(lineDirectory, L"ObservedDepths");
}

VELMIO_API int ObservedDepthsNewRestoreBackupDir(const wchar_t *lineDirectory) {
    return restore(lineDirectory, L"ObservedDepthsNew");
}

VELMIO_API int ObservedDepthsRemoveBackupDir(const wchar_t *lineDirectory) {
    if (!lineDirectory) return kBackupFailed;
    try {
        const std::wstring backup = backupDirectory(lineDirectory);
        for (const wchar_t *name : kSets)
            for (const wchar_t *suffix : kSuffixes) platform::removeFile(joined(backup, std::wstring(name) + suffix).c_str());
        return 0;
    } catch (const std::bad_alloc &) {
        return kNoMemory;
    }
}

}  // extern "C"
