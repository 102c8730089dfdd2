#include "linestore/time_index.h"

#include "foundation/diagnostics.h"
#include "linestore/byte_source.h"
#include "platform/durable_replace.h"
#include "platform/file_io.h"
#include "platform/files.h"
#include "platform/large_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace velmio {

namespace {
constexpr std::uint32_t kFullSet = 512;
constexpr std::int32_t kEmptyMin = 2147483647;
constexpr std::int32_t kEmptyMax = -2147483647 - 1;
constexpr std::uint32_t kMagic = 0x544F564F;  // "TOVO"
constexpr std::uint32_t kRecordVersion = 3;

template <class List>
void reserveOneMore(List &list) {
    if (list.size() == list.capacity()) list.reserve(2 * list.size() + 16);
}

}  // namespace

TimeIndex::TimeIndex(TimeIndex &&o) noexcept { *this = std::move(o); }

TimeIndex &TimeIndex::operator=(TimeIndex &&o) noexcept {
    if (this != &o) {
        clear();
        setCount_ = o.setCount_;
        capacity_ = o.capacity_;
        first_ = o.first_;
        last_ = o.last_;
        sets_ = std::move(o.sets_);
        before_ = std::move(o.before_);
        rooms_ = std::move(o.rooms_);
        entryCount_ = o.entryCount_;
        uniform_ = o.uniform_;
        image_ = std::move(o.image_);
        o.image_ = Image{};
        o.setCount_ = 0;
        o.first_ = o.last_ = nullptr;
        o.sets_.clear();
        o.before_.clear();
        o.rooms_.clear();
        o.entryCount_ = 0;
        o.uniform_ = true;
    }
    return *this;
}

_TOVO_TmIdxSet *TimeIndex::allocSet() {
    materialise();
    return allocSet(capacity_);
}

_TOVO_TmIdxSet *TimeIndex::allocSet(std::uint32_t room) {
    auto *set = static_cast<_TOVO_TmIdxSet *>(std::malloc(sizeof(_TOVO_TmIdxSet)));
    TOVO_TmIdxEntry *entries =
        room ? static_cast<TOVO_TmIdxEntry *>(std::calloc(room, sizeof(TOVO_TmIdxEntry))) : nullptr;
    bool listed = false;
    if (set && (entries || room == 0)) {
        try {
            // Room for the new set grows geometrically: an exact reserve per
            // set copies every list once per set, quadratic in a long line.
            reserveOneMore(sets_);
            reserveOneMore(before_);
            reserveOneMore(rooms_);
            listed = true;
        } catch (const std::bad_alloc &) {
        }
    }
    if (!listed) {
        std::free(set);
        std::free(entries);
        say("TmIdxSetAlloc: malloc() returned NULL.  No memory available.\n");
        return nullptr;
    }
    set->count = 0;
    set->minTime = kEmptyMin;
    set->maxTime = kEmptyMax;
    set->entries = entries;
    set->next = nullptr;
    if (last_) {
        // The previous last set is now a middle set; the directory stays
        // constant-time only while every middle set holds exactly 512.
        if (last_->count != kFullSet) uniform_ = false;
        last_->next = set;
    } else {
        first_ = set;
    }
    last_ = set;
    ++setCount_;
    before_.push_back(entryCount_);
    sets_.push_back(set);
    rooms_.push_back(room);
    return set;
}

void TimeIndex::clear() {
    dropImage();
    _TOVO_TmIdxSet *s = first_;
    while (s) {
        _TOVO_TmIdxSet *next = s->next;
        std::free(s->entries);
        std::free(s);
        s = next;
    }
    first_ = last_ = nullptr;
    setCount_ = 0;
    sets_.clear();
    before_.clear();
    rooms_.clear();
    entryCount_ = 0;
    uniform_ = true;
}

int TimeIndex::append(std::int32_t encodedTime, std::uint32_t byteOffset) {
    materialise();
    if (!last_ || last_->count == kFullSet) {
        if (!allocSet()) return kTmIdxNoMemory;
    }
    _TOVO_TmIdxSet *set = last_;
    if (set->count >= rooms_.back()) {
        // A set read from a file or a capacity below 512: start a set rather
        // than write past its entries.
        if (!allocSet()) return kTmIdxNoMemory;
        set = last_;
    }
    if (encodedTime < set->minTime) set->minTime = encodedTime;
    if (encodedTime > set->maxTime) set->maxTime = encodedTime;
    set->entries[set->count].encodedTime = encodedTime;
    set->entries[set->count].byteOffset = byteOffset;
    ++set->count;
    ++entryCount_;
    return 0;
}

std::uint32_t TimeIndex::appendRun(const std::int32_t *encodedTimes, std::uint32_t n, std::uint32_t firstOffset,
                                   std::uint32_t stride) {
    materialise();
    std::uint32_t done = 0;
    while (done < n) {
        _TOVO_TmIdxSet *set = last_;
        const std::uint32_t room = set ? std::min(kFullSet, rooms_.back()) : 0;
        if (!set || set->count >= room) {
            // A new set (or an odd one): append() decides as it always has.
            if (append(encodedTimes[done], firstOffset + done * stride) != 0) break;
            ++done;
            continue;
        }
        const std::uint32_t take = std::min(n - done, room - set->count);
        std::int32_t lo = set->minTime, hi = set->maxTime;
        TOVO_TmIdxEntry *e = set->entries + set->count;
        for (std::uint32_t k = 0; k < take; ++k) {
            const std::int32_t t = encodedTimes[done + k];
            lo = t < lo ? t : lo;
            hi = t > hi ? t : hi;
            e[k].encodedTime = t;
            e[k].byteOffset = firstOffset + (done + k) * stride;
        }
        set->minTime = lo;
        set->maxTime = hi;
        set->count += take;
        entryCount_ += take;
        done += take;
    }
    return done;
}

const TOVO_TmIdxEntry *TimeIndex::entry(std::uint32_t n) {
    materialise();
    return chainEntry(n);
}

const TOVO_TmIdxEntry *TimeIndex::chainEntry(std::uint32_t n) const {
    if (n == 0 || n > entryCount_ || sets_.empty()) return nullptr;
    const std::uint32_t index = n - 1;
    std::size_t s;
    if (uniform_) {
        s = index / kFullSet;
    } else {
        // before_ is ascending: the last set that starts at or before index.
        auto it = std::upper_bound(before_.begin(), before_.end(), index);
        s = static_cast<std::size_t>(it - before_.begin()) - 1;
    }
    if (s >= sets_.size()) return nullptr;
    const std::uint32_t within = index - before_[s];
    if (within >= sets_[s]->count) return nullptr;
    return &sets_[s]->entries[within];
}

int TimeIndex::map(std::uint32_t recordNumber, std::uint32_t &byteOffset) const {
    if (recordNumber == 0) return kTmIdxRecordZero;
    if (image_.bytes) {
        const unsigned char *e = recordNumber <= entryCount_ ? imageEntry(recordNumber - 1) : nullptr;
        if (!e) return kTmIdxNotFound;
        byteOffset = loadBe32(e + 4);
        return 0;
    }
    const TOVO_TmIdxEntry *e = chainEntry(recordNumber);
    if (!e) return kTmIdxNotFound;
    byteOffset = e->byteOffset;
    return 0;
}

int TimeIndex::writeTo(std::FILE *file, std::uint32_t typeId, std::uint32_t formatVersion) {
    materialise();
    // The header and set headers in one write, then the sets' arrays
    // gathered a megabyte at a time: a long line has tens of thousands of
    // sets, and a write per set made its close syscall-bound.
    constexpr std::size_t kChunk = 1 << 20;
    std::vector<unsigned char> out;
    auto put = [&out](std::uint32_t word) {
        const std::size_t at = out.size();
        out.resize(at + 4);
        storeBe32(&out[at], word);
    };
    auto emit = [&out, file]() {
        const bool ok = std::fwrite(out.data(), 1, out.size(), file) == out.size();
        out.clear();
        return ok;
    };
    try {
        for (std::uint32_t word : {kMagic, typeId, kRecordVersion, formatVersion, setCount_, capacity_}) put(word);
        for (_TOVO_TmIdxSet *s = first_; s; s = s->next) {
            put(s->count);
            put(static_cast<std::uint32_t>(s->minTime));
            put(static_cast<std::uint32_t>(s->maxTime));
        }
        if (!emit()) return kTmIdxWriteFailed;
        out.reserve(kChunk);
        for (_TOVO_TmIdxSet *s = first_; s; s = s->next) {
            // Sized once per set and stored in place.
            const std::size_t at = out.size();
            out.resize(at + 4 + std::size_t{s->count} * 8);
            unsigned char *p = out.data() + at;
            storeBe32(p, s->count);
            p += 4;
            for (std::uint32_t i = 0; i < s->count; ++i, p += 8) {
                storeBe32(p, static_cast<std::uint32_t>(s->entries[i].encodedTime));
                storeBe32(p + 4, s->entries[i].byteOffset);
            }
            if ((out.size() >= kChunk || !s->next) && !emit()) return kTmIdxWriteFailed;
        }
    } catch (const std::bad_alloc &) {
        return kTmIdxWriteFailed;
    }
    return 0;
}

int TimeIndex::write(const wchar_t *path, std::uint32_t typeId, std::uint32_t formatVersion) {
    // Replaced through a temporary, so that the index on the disk is whole.
    bool opened = false;
    int rc = 0;
    const int error = platform::replaceFile(path ? path : L"", [&](std::FILE *f) {
        opened = true;
        rc = writeTo(f, typeId, formatVersion);
        return rc ? EIO : 0;
    });
    if (!opened) return kTmIdxCannotOpen;
    if (rc) return rc;
    return error ? kTmIdxCloseFailed : 0;
}

namespace {

struct StreamReader final : TimeIndex::ChunkReader {
    explicit StreamReader(std::FILE *f) : file(f) {}
    std::int64_t get(void *out, std::size_t n) override {
        const std::size_t got = std::fread(out, 1, n, file);
        return got < n && std::ferror(file) ? -1 : static_cast<std::int64_t>(got);
    }
    std::FILE *file;
};

// Reads the file a block at a time: a long line's index is tens of
// thousands of small sets, and a read per set made its open syscall-bound.
struct DescriptorReader final : TimeIndex::ChunkReader {
    static constexpr std::size_t kBlock = 1 << 20;
    explicit DescriptorReader(int f) : fd(f), block(new (std::nothrow) unsigned char[kBlock]) {}
    std::int64_t get(void *out, std::size_t n) override {
        auto *to = static_cast<unsigned char *>(out);
        std::size_t done = 0;
        while (done < n) {
            if (at == held) {
                // Without a block, or for a request as large as one, read straight.
                if (!block || n - done >= kBlock) {
                    const std::int64_t got = platform::readNext(fd, to + done, n - done);
                    return got < 0 ? -1 : static_cast<std::int64_t>(done) + got;
                }
                const std::int64_t got = platform::readNext(fd, block.get(), kBlock);
                if (got < 0) return -1;
                if (got == 0) break;
                at = 0;
                held = static_cast<std::size_t>(got);
            }
            const std::size_t take = std::min(n - done, held - at);
            std::memcpy(to + done, block.get() + at, take);
            at += take;
            done += take;
        }
        return static_cast<std::int64_t>(done);
    }
    int fd;
    std::unique_ptr<unsigned char[]> block;
    std::size_t at = 0, held = 0;
};

constexpr std::size_t kHeaderBytes = 24;

struct MemoryReader final : TimeIndex::ChunkReader {
    MemoryReader(const unsigned char *b, std::size_t n) : bytes(b), left(n) {}
    std::int64_t get(void *out, std::size_t n) override {
        const std::size_t take = n < left ? n : left;
        if (take) std::memcpy(out, bytes, take);
        bytes += take;
        left -= take;
        return static_cast<std::int64_t>(take);
    }
    const unsigned char *bytes;
    std::size_t left;
};

// The six header words; false when they do not describe a time index of typeId.
bool parseHeader(const unsigned char *b, std::uint32_t typeId, std::uint32_t &sets, std::uint32_t &capacity) {
    sets = loadBe32(b + 16);
    capacity = loadBe32(b + 20);
    return loadBe32(b) == kMagic && loadBe32(b + 4) == typeId && loadBe32(b + 8) == kRecordVersion;
}

}  // namespace

int TimeIndex::readBody(ChunkReader &in, std::uint32_t sets, std::uint32_t capacity, std::int64_t remaining) {
    // Every set costs 16 bytes of the file at least (its header and its
    // array count) and every entry 8: counts the rest of the file cannot
    // hold are refused before anything is allocated from them, and the
    // entry arrays of sets read are sized by their counts, not the capacity.
    if (static_cast<std::int64_t>(sets) * 16 > remaining) return kTmIdxInvalid;
    capacity_ = capacity;
    std::vector<unsigned char> headers, chunk;
    try {
        headers.resize(static_cast<std::size_t>(sets) * 12);
    } catch (const std::bad_alloc &) {
        return kTmIdxNoMemory;
    }
    if (in.get(headers.data(), headers.size()) != static_cast<std::int64_t>(headers.size())) return kTmIdxInvalid;
    std::uint64_t total = 0;
    for (std::uint32_t i = 0; i < sets; ++i) {
        const std::uint32_t count = loadBe32(&headers[12 * i]);
        if (count > capacity_) return kTmIdxInvalid;
        total += count;
    }
    if (total * 8 + static_cast<std::uint64_t>(sets) * 4 > static_cast<std::uint64_t>(remaining)) return kTmIdxInvalid;
    for (std::uint32_t i = 0; i < sets; ++i) {
        const std::uint32_t count = loadBe32(&headers[12 * i]);
        _TOVO_TmIdxSet *s = allocSet(count);
        if (!s) return kTmIdxNoMemory;
        s->minTime = static_cast<std::int32_t>(loadBe32(&headers[12 * i + 4]));
        s->maxTime = static_cast<std::int32_t>(loadBe32(&headers[12 * i + 8]));
        const std::size_t bytes = 4 + static_cast<std::size_t>(count) * 8;
        try {
            if (chunk.size() < bytes) chunk.resize(bytes);
        } catch (const std::bad_alloc &) {
            return kTmIdxNoMemory;
        }
        const std::int64_t got = in.get(chunk.data(), bytes);
        if (got < 4 || loadBe32(chunk.data()) != count) return kTmIdxInvalid;
        // Entries wholly present are kept, as a read word by word would.
        const std::uint32_t present = static_cast<std::uint32_t>((got - 4) / 8);
        for (std::uint32_t k = 0; k < present; ++k) {
            s->entries[k].encodedTime = static_cast<std::int32_t>(loadBe32(&chunk[4 + 8 * k]));
            s->entries[k].byteOffset = loadBe32(&chunk[8 + 8 * k]);
        }
        s->count = present;
        entryCount_ += present;
        if (present != count) return kTmIdxInvalid;
    }
    return 0;
}

int TimeIndex::readFrom(std::FILE *file, std::uint32_t typeId) {
    unsigned char header[kHeaderBytes];
    std::uint32_t sets = 0, capacity = 0;
    if (std::fread(header, 1, kHeaderBytes, file) != kHeaderBytes || !parseHeader(header, typeId, sets, capacity))
        return kTmIdxInvalid;
    const long here = std::ftell(file);
    const std::int64_t size = platform::fileSize(file);
    const std::int64_t remaining = (size >= 0 && here >= 0) ? size - here : 0;
    StreamReader in(file);
    return readBody(in, sets, capacity, remaining);
}

int TimeIndex::readBytes(const unsigned char *bytes, std::size_t size, std::uint32_t typeId) {
    std::uint32_t sets = 0, capacity = 0;
    if (!bytes || size < kHeaderBytes || !parseHeader(bytes, typeId, sets, capacity)) return kTmIdxInvalid;
    // Copied once and mapped from, as a file read from the disk; what the
    // checks refuse goes through the chain for its code.
    if (!first_ && !image_.bytes) {
        if (unsigned char *copy = platform::allocLargeBuffer(size)) {
            std::memcpy(copy, bytes, size);
            if (adoptImage(copy, size, sets, capacity)) return 0;
            platform::freeLargeBuffer(copy);
        }
    }
    MemoryReader in(bytes + kHeaderBytes, size - kHeaderBytes);
    return readBody(in, sets, capacity, static_cast<std::int64_t>(size - kHeaderBytes));
}

int TimeIndex::read(const wchar_t *path, std::uint32_t typeId) {
    const int fd = platform::openForReading(path);
    if (fd < 0) return kTmIdxCannotOpen;
    int rc = readWhole(fd, typeId);
    if (!platform::closeFile(fd) && rc == 0) rc = kTmIdxCloseFailed;
    return rc;
}

int TimeIndex::readWhole(int fd, std::uint32_t typeId) {
    const std::int64_t size = platform::sizeOf(fd);
    const bool empty = !first_ && !image_.bytes;
    unsigned char *bytes = empty && size >= static_cast<std::int64_t>(kHeaderBytes) &&
                                   static_cast<std::uint64_t>(size) <= static_cast<std::size_t>(-1)
                               ? platform::allocLargeBuffer(static_cast<std::size_t>(size))
                               : nullptr;
    unsigned char header[kHeaderBytes];
    std::uint32_t sets = 0, capacity = 0;
    if (!bytes) {
        // Block by block into the chain, as a file too large to hold whole.
        DescriptorReader in(fd);
        if (in.get(header, kHeaderBytes) != static_cast<std::int64_t>(kHeaderBytes) ||
            !parseHeader(header, typeId, sets, capacity))
            return kTmIdxInvalid;
        return readBody(in, sets, capacity, size >= 0 ? size - static_cast<std::int64_t>(kHeaderBytes) : 0);
    }
    // The whole file in one read; the checks run over its bytes and the
    // entries are used where they lie.
    const std::int64_t got = platform::readNext(fd, bytes, static_cast<std::size_t>(size));
    int rc = kTmIdxInvalid;
    if (got >= static_cast<std::int64_t>(kHeaderBytes) && parseHeader(bytes, typeId, sets, capacity)) {
        if (got == size && adoptImage(bytes, static_cast<std::size_t>(size), sets, capacity)) return 0;
        // Refused (or changed under us): the chain decides the code and keeps
        // what it read, exactly as a read block by block would.
        MemoryReader in(bytes + kHeaderBytes, static_cast<std::size_t>(got) - kHeaderBytes);
        rc = readBody(in, sets, capacity, size - static_cast<std::int64_t>(kHeaderBytes));
    }
    platform::freeLargeBuffer(bytes);
    return rc;
}

// Takes the file's bytes as the index when readBody would accept them all;
// false (nothing kept) otherwise.
bool TimeIndex::adoptImage(unsigned char *bytes, std::size_t size, std::uint32_t sets, std::uint32_t capacity) {
    const std::size_t remaining = size - kHeaderBytes;
    if (std::uint64_t{sets} * 16 > remaining) return false;
    const unsigned char *headers = bytes + kHeaderBytes;
    std::uint64_t total = 0;
    bool uniform = true;
    for (std::uint32_t i = 0; i < sets; ++i) {
        const std::uint32_t count = loadBe32(headers + 12 * std::size_t{i});
        if (count > capacity) return false;
        if (i + 1 < sets && count != kFullSet) uniform = false;
        total += count;
    }
    if (total * 8 + std::uint64_t{sets} * 4 > remaining || total > 0xFFFFFFFFu) return false;
    Image image;
    std::vector<std::uint32_t> before;
    try {
        if (!uniform) {
            image.arrayAt.reserve(sets);
            before.reserve(sets);
        }
    } catch (const std::bad_alloc &) {
        return false;
    }
    image.arrays = kHeaderBytes + 12 * std::size_t{sets};
    std::size_t at = image.arrays;
    std::uint32_t entries = 0;
    for (std::uint32_t i = 0; i < sets; ++i) {
        const std::uint32_t count = loadBe32(headers + 12 * std::size_t{i});
        const std::size_t bytesOfSet = 4 + std::size_t{count} * 8;
        if (size - at < bytesOfSet || loadBe32(bytes + at) != count) return false;
        if (!uniform) {
            image.arrayAt.push_back(at);
            before.push_back(entries);
        }
        entries += count;
        at += bytesOfSet;
    }
    image.bytes = bytes;
    image.size = size;
    image_ = std::move(image);
    before_ = std::move(before);
    capacity_ = capacity;
    setCount_ = sets;
    entryCount_ = entries;
    uniform_ = uniform;
    return true;
}

// Entry index (from 0, below entryCount_) in the file's bytes.
const unsigned char *TimeIndex::imageEntry(std::uint32_t index) const {
    if (uniform_) {
        // Every set but the last holds 512: the entry's place is arithmetic.
        const std::size_t s = index / kFullSet;
        return image_.bytes + image_.arrays + s * (4 + 8 * std::size_t{kFullSet}) + 4 + 8 * std::size_t{index % kFullSet};
    }
    auto it = std::upper_bound(before_.begin(), before_.end(), index);
    if (it == before_.begin()) return nullptr;
    const std::size_t s = static_cast<std::size_t>(it - before_.begin()) - 1;
    const std::uint32_t within = index - before_[s];
    if (within >= loadBe32(image_.bytes + kHeaderBytes + 12 * s)) return nullptr;
    return image_.bytes + image_.arrayAt[s] + 4 + 8 * std::size_t{within};
}

// Builds the set chain from the file's bytes, for callers that walk or
// extend the sets.
void TimeIndex::materialise() {
    if (!image_.bytes) return;
    Image image = std::move(image_);
    image_ = Image{};
    const std::uint32_t sets = setCount_;
    setCount_ = 0;
    entryCount_ = 0;
    uniform_ = true;
    before_.clear();
    MemoryReader in(image.bytes + kHeaderBytes, image.size - kHeaderBytes);
    readBody(in, sets, capacity_, static_cast<std::int64_t>(image.size - kHeaderBytes));
    platform::freeLargeBuffer(image.bytes);
}

void TimeIndex::dropImage() {
    platform::freeLargeBuffer(image_.bytes);
    image_ = Image{};
}

}  // namespace velmio
