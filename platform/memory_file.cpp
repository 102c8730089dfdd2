#include "platform/memory_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#if defined(__GLIBC__)
#include <sys/types.h>
#endif

namespace velmio::platform {

#if defined(__GLIBC__)

namespace {

struct Cursor {
    std::vector<unsigned char> *bytes;
    std::size_t position;
};

ssize_t readBytes(void *cookie, char *out, std::size_t n) {
    auto *c = static_cast<Cursor *>(cookie);
    if (c->position >= c->bytes->size()) return 0;
    const std::size_t got = std::min(n, c->bytes->size() - c->position);
    std::memcpy(out, c->bytes->data() + c->position, got);
    c->position += got;
    return static_cast<ssize_t>(got);
}

ssize_t writeBytes(void *cookie, const char *in, std::size_t n) {
    auto *c = static_cast<Cursor *>(cookie);
    try {
        if (c->bytes->size() < c->position + n) c->bytes->resize(c->position + n);
    } catch (const std::bad_alloc &) {
        errno = ENOSPC;
        return -1;
    }
    std::memcpy(c->bytes->data() + c->position, in, n);
    c->position += n;
    return static_cast<ssize_t>(n);
}

int seekBytes(void *cookie, off64_t *offset, int whence) {
    auto *c = static_cast<Cursor *>(cookie);
    const off64_t base = whence == SEEK_SET   ? 0
                         : whence == SEEK_CUR ? static_cast<off64_t>(c->position)
                                              : static_cast<off64_t>(c->bytes->size());
    if (*offset < -base) {
        errno = EINVAL;
        return -1;
    }
    c->position = static_cast<std::size_t>(base + *offset);
    *offset = static_cast<off64_t>(c->position);
    return 0;
}

int closeBytes(void *cookie) {
    delete static_cast<Cursor *>(cookie);
    return 0;
}

}  // namespace

std::FILE *openMemoryFile(std::vector<unsigned char> &bytes, const char *mode) {
    auto *cursor = new (std::nothrow) Cursor{&bytes, 0};
    if (!cursor) return nullptr;
    std::FILE *file = fopencookie(cursor, mode, {readBytes, writeBytes, seekBytes, closeBytes});
    if (!file) {
        delete cursor;
        return nullptr;
    }
    std::setvbuf(file, nullptr, _IONBF, 0);
    return file;
}

#else

std::FILE *openMemoryFile(std::vector<unsigned char> &, const char *) {
    errno = ENOSYS;
    return nullptr;
}

#endif

}  // namespace velmio::platform
