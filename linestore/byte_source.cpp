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
    if (offset >= bytes_.size()) return 0;
    const std::size_t got = std::min<std::uint64_t>(n, bytes_.size() - offset);
    std::memcpy(out, bytes_.data() + offset, got);
    return static_cast<std::int64_t>(got);
}

bool MemorySource::writeAt(std::uint64_t offset, const void *in, std::size_t n) {
    try {
        if (bytes_.size() < offset + n) bytes_.resize(offset + n);
    } catch (const std::bad_alloc &) {
        return false;
    }
    std::memcpy(bytes_.data() + offset, in, n);
    return true;
}

const unsigned char *ReadWindow::at(ByteSource &source, std::uint64_t offset, std::size_t n, std::size_t ahead) {
    if (offset >= start_ && offset - start_ + n <= length_) return bytes_.data() + (offset - start_);
    const std::size_t want = std::max(n, std::min(ahead, kWindowBytes));
    try {
        if (bytes_.size() < want) bytes_.resize(std::max(want, std::min(kWindowBytes, want * 2)));
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
    length_ = 0;
    const std::int64_t got = source.readAt(offset, bytes_.data(), want);
    if (got < static_cast<std::int64_t>(n)) return nullptr;
    start_ = offset;
    length_ = static_cast<std::size_t>(got);
    return bytes_.data();
}

void AppendBuffer::start(ByteSource *sink, std::uint64_t offset) {
    sink_ = sink;
    flushed_ = offset;
    held_.clear();
}

bool AppendBuffer::append(const void *in, std::size_t n) {
    if (held_.size() + n > kWindowBytes && !flush()) return false;
    try {
        if (held_.capacity() < kWindowBytes) held_.reserve(kWindowBytes);
    } catch (const std::bad_alloc &) {
        return false;
    }
    const auto *p = static_cast<const unsigned char *>(in);
    held_.insert(held_.end(), p, p + n);
    return true;
}

bool AppendBuffer::flush() {
    if (held_.empty()) return true;
    if (!sink_ || !sink_->writeAt(flushed_, held_.data(), held_.size())) return false;
    flushed_ += held_.size();
    held_.clear();
    return true;
}

}  // namespace velmio
