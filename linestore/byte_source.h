// Where the bytes of a line's data file come from and go to. The record
// engine reads and writes only through this interface; the backend follows
// the mode: a file read and written with positioned calls (query, update,
// and the appending writer of create), or memory (tests, fuzzing). Positioned
// reads rather than a mapping, so that a file cut short by another process
// makes reads fail instead of raising SIGBUS.
#ifndef VELMIO_LINESTORE_BYTE_SOURCE_H
#define VELMIO_LINESTORE_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace velmio {

inline std::uint32_t loadBe32(const unsigned char *p) {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}
inline void storeBe32(unsigned char *p, std::uint32_t v) {
#if defined(__GNUC__) && defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    // One swap and one store: the compilers do not always merge the four
    // byte stores inside the record writers' loops.
    v = __builtin_bswap32(v);
    std::memcpy(p, &v, 4);
#elif defined(__GNUC__) && defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    std::memcpy(p, &v, 4);
#else
    p[0] = static_cast<unsigned char>(v >> 24);
    p[1] = static_cast<unsigned char>(v >> 16);
    p[2] = static_cast<unsigned char>(v >> 8);
    p[3] = static_cast<unsigned char>(v);
#endif
}

class ByteSource {
public:
    virtual ~ByteSource() = default;
    // Up to n bytes at offset, fewer only at the end: the count, or -1.
    virtual std::int64_t readAt(std::uint64_t offset, void *out, std::size_t n) = 0;
    virtual bool writeAt(std::uint64_t offset, const void *in, std::size_t n) = 0;
};

// A descriptor owned elsewhere (the data file's stream keeps it open).
class FileSource final : public ByteSource {
public:
    explicit FileSource(int fd) : fd_(fd) {}
    std::int64_t readAt(std::uint64_t offset, void *out, std::size_t n) override;
    bool writeAt(std::uint64_t offset, const void *in, std::size_t n) override;

private:
    int fd_;
};

class MemorySource final : public ByteSource {
public:
    explicit MemorySource(std::vector<unsigned char> bytes = {}) : own_(std::move(bytes)), bytes_(&own_) {}
    // Reads and writes the caller's bytes, which must outlive the source.
    explicit MemorySource(std::vector<unsigned char> *shared) : bytes_(shared) {}
    MemorySource(const MemorySource &) = delete;
    MemorySource &operator=(const MemorySource &) = delete;
    std::int64_t readAt(std::uint64_t offset, void *out, std::size_t n) override;
    bool writeAt(std::uint64_t offset, const void *in, std::size_t n) override;
    const std::vector<unsigned char> &bytes() const { return *bytes_; }

private:
    std::vector<unsigned char> own_;
    std::vector<unsigned char> *bytes_;
};

constexpr std::size_t kWindowBytes = 64 * 1024;
// Bulk reads of many records refill this much at a time: few reads, and a
// window that stays in the cache while its records are decoded.
constexpr std::size_t kBulkWindowBytes = 256 * 1024;

// A window of up to 64 KiB (kBulkWindowBytes for bulk reads) over a source
// for sequential and ranged reads, refilled with one positioned read when
// the bytes asked for lie outside it.
class ReadWindow {
public:
    // n bytes at offset, reading ahead at most `ahead` bytes (at least n)
    // on a refill; null when the source fails or ends before them.
    const unsigned char *at(ByteSource &source, std::uint64_t offset, std::size_t n,
                            std::size_t ahead = kWindowBytes) {
        if (offset >= start_ && offset - start_ + n <= length_) return bytes_.get() + (offset - start_);
        return refill(source, offset, n, ahead);
    }
    void invalidate() { length_ = 0; }
    // The bytes the window holds from offset on (0 when it lies outside).
    std::size_t held(std::uint64_t offset) const {
        return offset >= start_ && offset - start_ < length_ ? length_ - static_cast<std::size_t>(offset - start_) : 0;
    }

private:
    const unsigned char *refill(ByteSource &source, std::uint64_t offset, std::size_t n, std::size_t ahead);

    // Not value-initialised: a bulk read's first refill does not clear what
    // it is about to overwrite.
    std::unique_ptr<unsigned char[]> bytes_;
    std::size_t capacity_ = 0;
    std::uint64_t start_ = 0;
    std::size_t length_ = 0;
};

// Appends at a running offset through a 64 KiB buffer written with one
// positioned write when full or flushed.
class AppendBuffer {
public:
    void start(ByteSource *sink, std::uint64_t offset);
    // n is at most 64 KiB (a record).
    bool append(const void *in, std::size_t n) {
        if (used_ + n > kWindowBytes || !held_) {
            if (!flush() || !reserve()) return false;
        }
        std::memcpy(held_.get() + used_, in, n);
        used_ += n;
        return true;
    }
    // Room for n bytes (at most 64 KiB) at the end, filled by the caller and
    // then kept with commit(); null when a flush to make room fails.
    unsigned char *room(std::size_t n) {
        if (used_ + n > kWindowBytes || !held_) {
            if (!flush() || !reserve()) return nullptr;
        }
        return held_.get() + used_;
    }
    void commit(std::size_t n) { used_ += n; }
    bool flush();
    std::uint64_t offset() const { return flushed_ + used_; }

private:
    bool reserve();

    ByteSource *sink_ = nullptr;
    std::uint64_t flushed_ = 0;
    std::unique_ptr<unsigned char[]> held_;
    std::size_t used_ = 0;
};

}  // namespace velmio

#endif
