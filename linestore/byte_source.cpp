#include "linestore/byte_source.h"

#include "platform/file_io.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace velmio {

std::int64_t FileSource::readAt(std::uint64_t offset, void *out, std::size_t n) {
    return platform::readAt(fd_, out, n, offset);
}

bool FileSource::writeAt(std::uint64_t offset, const void *in, std::size_t n) {
    return platform::writeAt(fd_, in, n, offset);
}

std::int64_t MemorySource::readAt(std::uint64_t offset, void *out, std::size_t n) {
    const std::vector<unsigned char> &bytes = *bytes_;
    if (offset >= bytes.size()) return 0;
    const std::size_t got = std::min<std::uint64_t>(n, bytes.size() - offset);
    std::memcpy(out, bytes.data() + offset, got);
    return static_cast<std::int64_t>(got);
}

bool MemorySource::writeAt(std::uint64_t offset, const void *in, std::size_t n) {
    std::vector<unsigned char> &bytes = *bytes_;
    try {
        if (bytes.size() < offset + n) bytes.resize(offset + n);
    } catch (const std::bad_alloc &) {
        return false;
    }
    std::memcpy(bytes.data() + offset, in, n);
    return true;
}

const unsigned char *ReadWindow::refill(ByteSource &source, std::uint64_t offset, std::size_t n,
                                        std::size_t ahead) {
    const std::size_t want = std::max(n, std::min(ahead, kBulkWindowBytes));
    length_ = 0;
    if (capacity_ < want) {
        const std::size_t capacity = std::max(want, kWindowBytes);
        bytes_.reset(new (std::nothrow) unsigned char[capacity]);
        capacity_ = bytes_ ? capacity : 0;
        if (!bytes_) return nullptr;
    }
    const std::int64_t got = source.readAt(offset, bytes_.get(), want);
    if (got < static_cast<std::int64_t>(n)) return nullptr;
    start_ = offset;
    length_ = static_cast<std::size_t>(got);
    return bytes_.get();
}

void AppendBuffer::start(ByteSource *sink, std::uint64_t offset) {
    sink_ = sink;
    flushed_ = offset;
    used_ = 0;
}

bool AppendBuffer::reserve() {
    if (!held_) held_.reset(new (std::nothrow) unsigned char[kWindowBytes]);
    return held_ != nullptr;
}

bool AppendBuffer::flush() {
    if (used_ == 0) return true;
    if (!sink_ || !sink_->writeAt(flushed_, held_.get(), used_)) return false;
    flushed_ += used_;
    used_ = 0;
    return true;
}

}  // namespace velmio
