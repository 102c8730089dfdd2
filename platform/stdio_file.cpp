#include "platform/stdio_file.h"

#include "platform/fault_injection.h"

#include <cerrno>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace velmio::platform {

std::size_t readFile(void *data, std::size_t size, std::size_t count, std::FILE *file) {
    if (injectFault(FileOp::Read)) return 0;
    return std::fread(data, size, count, file);
}

int readChar(std::FILE *file, bool &failed) {
    if (injectFault(FileOp::Read)) {
        failed = true;
        return EOF;
    }
    const int c = std::getc(file);
    if (c == EOF && std::ferror(file)) failed = true;
    return c;
}

std::size_t writeFile(const void *data, std::size_t size, std::size_t count, std::FILE *file) {
    if (injectFault(FileOp::Write)) return 0;
    return std::fwrite(data, size, count, file);
}

int seekFile(std::FILE *file, long offset, int whence) {
    if (injectFault(FileOp::Seek)) return -1;
    return std::fseek(file, offset, whence);
}

int flushFile(std::FILE *file) {
    if (injectFault(FileOp::Flush)) return EOF;
    return std::fflush(file);
}

int closeFile(std::FILE *file) {
    if (!file) return 0;
    if (injectFault(FileOp::Close)) {
        const int error = errno;
        std::fclose(file);
        errno = error;
        return EOF;
    }
    return std::fclose(file);
}

int syncFile(std::FILE *file) {
    if (flushFile(file) != 0) return -1;
    if (injectFault(FileOp::Sync)) return -1;
#if defined(_WIN32)
    return ::_commit(_fileno(file)) == 0 ? 0 : -1;
#elif defined(__APPLE__)
    return ::fsync(fileno(file)) == 0 ? 0 : -1;
#else
    // The data and the size are what a reader needs; times can wait.
    return ::fdatasync(fileno(file)) == 0 ? 0 : -1;
#endif
}

}  // namespace velmio::platform
