#include "platform/file_io.h"

#include "platform/fault_injection.h"
#include "platform/native_path.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace velmio::platform {

int openForReading(const wchar_t *path) {
    if (injectFault(FileOp::Open)) return -1;
    int fd;
    do {
        fd = ::open(nativePath(path).c_str(), O_RDONLY | O_CLOEXEC);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

std::int64_t readAt(int fd, void *out, std::size_t n, std::uint64_t offset) {
    if (injectFault(FileOp::Read)) return -1;
    auto *p = static_cast<unsigned char *>(out);
    std::size_t done = 0;
    while (done < n) {
        const ssize_t got = ::pread(fd, p + done, n - done, static_cast<off_t>(offset + done));
        if (got < 0) {
            if (errno == EINTR) continue;
            return -1;
        }
        if (got == 0) break;  // end of file
        done += static_cast<std::size_t>(got);
    }
    return static_cast<std::int64_t>(done);
}

std::int64_t readNext(int fd, void *out, std::size_t n) {
    if (injectFault(FileOp::Read)) return -1;
    auto *p = static_cast<unsigned char *>(out);
    std::size_t done = 0;
    while (done < n) {
        const ssize_t got = ::read(fd, p + done, n - done);
        if (got < 0) {
            if (errno == EINTR) continue;
            return -1;
        }
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<std::int64_t>(done);
}

bool writeAt(int fd, const void *in, std::size_t n, std::uint64_t offset) {
    if (injectFault(FileOp::Write)) return false;
    const auto *p = static_cast<const unsigned char *>(in);
    std::size_t done = 0;
    while (done < n) {
        const ssize_t put = ::pwrite(fd, p + done, n - done, static_cast<off_t>(offset + done));
        if (put < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        done += static_cast<std::size_t>(put);
    }
    return true;
}

std::int64_t sizeOf(int fd) {
    if (injectFault(FileOp::Seek)) return -1;
    struct stat st;
    if (::fstat(fd, &st) != 0) return -1;
    return static_cast<std::int64_t>(st.st_size);
}

bool syncFile(int fd) {
    if (injectFault(FileOp::Sync)) return false;
    return ::fsync(fd) == 0;
}

bool closeFile(int fd) {
    if (injectFault(FileOp::Close)) {
        ::close(fd);  // the descriptor is gone either way, as after a failed close
        return false;
    }
    return ::close(fd) == 0;
}

}  // namespace velmio::platform
