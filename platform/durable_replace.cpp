#include "platform/durable_replace.h"

#include "platform/fault_injection.h"
#include "platform/files.h"
#include "platform/native_path.h"
#include "platform/stdio_file.h"

#include <cerrno>
#include <sys/stat.h>

#if !defined(_WIN32)
#include <fcntl.h>
#include <unistd.h>
#endif

namespace velmio::platform {

namespace {

int failure() { return errno != 0 ? errno : EIO; }

// Gives the temporary the target's permissions (mkstemp makes it private),
// renames it over the target and pushes the directory entry.
int install(const std::wstring &temporary, const std::wstring &target) {
#if !defined(_WIN32)
    struct stat st;
    mode_t mode = 0644;
    if (::stat(nativePath(target).c_str(), &st) == 0) mode = st.st_mode & 07777;
    ::chmod(nativePath(temporary).c_str(), mode);
#endif
    errno = 0;
    if (!renameFile(temporary.c_str(), target.c_str())) return failure();
    return syncDirectory(parentDirectory(target));
}

// Pushes a file that another writer completed and closed.
int syncByPath(const std::wstring &path) {
    errno = 0;
    std::FILE *file = openFile(path.c_str(), "rb+");
    if (!file) return failure();
    int error = syncFile(file) != 0 ? failure() : 0;
    if (closeFile(file) != 0 && !error) error = failure();
    return error;
}

int replace(const std::wstring &target, const std::function<int(const std::wstring &)> &fill) {
    if (target.empty()) return ENOENT;
    errno = 0;
    const std::wstring temporary = temporarySibling(target.c_str());
    if (temporary.empty()) return failure();
    int error = fill(temporary);
    if (!error) error = install(temporary, target);
    // After a failed rename the temporary is still there; after a failed
    // directory sync it is the target, which is then kept.
    if (error && pathExists(temporary.c_str())) removeFile(temporary.c_str());
    return error;
}

}  // namespace

std::wstring parentDirectory(const std::wstring &path) {
    const std::size_t cut = path.find_last_of(L"/\\");
    if (cut == std::wstring::npos) return L".";
    if (cut == 0) return path.substr(0, 1);
    return path.substr(0, cut);
}

int syncDirectory(const std::wstring &directory) {
#if defined(_WIN32)
    (void)directory;  // renames there are durable once MoveFileEx returns
    return 0;
#else
    if (injectFault(FileOp::Open)) return failure();
    const int fd = ::open(nativePath(directory).c_str(), O_RDONLY | O_DIRECTORY);
    if (fd < 0) return failure();
    int error = 0;
    if (injectFault(FileOp::Sync) || (::fsync(fd) != 0 && errno != EINVAL)) error = failure();
    if (injectFault(FileOp::Close)) {
        if (!error) error = failure();
        ::close(fd);
    } else if (::close(fd) != 0 && !error) {
        error = failure();
    }
    return error;
#endif
}

int replaceFile(const std::wstring &target, const std::function<int(std::FILE *)> &write) {
    return replace(target, [&](const std::wstring &temporary) {
        errno = 0;
        std::FILE *out = openFile(temporary.c_str(), "wb");
        if (!out) return failure();
        int error = write(out);
        if (!error && syncFile(out) != 0) error = failure();
        if (closeFile(out) != 0 && !error) error = failure();
        return error;
    });
}

int replaceFileBySaving(const std::wstring &target, const std::function<int(const std::wstring &)> &save) {
    return replace(target, [&](const std::wstring &temporary) {
        const int error = save(temporary);
        return error ? error : syncByPath(temporary);
    });
}

}  // namespace velmio::platform
