// The time index: record number -> byte offset of the record in its data
// file, with each record's encoded time. Kept as a chain of fixed-capacity
// entry sets (appending never moves entries; one allocation serves 512
// records) plus a directory of the sets, so that mapping a record number
// costs the same at record 10 and at record 10,000,000. An index read from
// its file maps from the file's bytes; the chain is built from them only for
// callers that walk or extend the sets (first(), last(), entry(), appends).
#ifndef VELMIO_LINESTORE_TIME_INDEX_H
#define VELMIO_LINESTORE_TIME_INDEX_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <vector>

struct TOVO_TmIdxEntry {
    std::int32_t encodedTime;  // as TOVO_EncodeTime made it
    std::uint32_t byteOffset;  // where the record begins in the data file
};

struct _TOVO_TmIdxSet {
    std::uint32_t count;        // entries in use
    std::int32_t minTime;       // 2147483647 when empty
    std::int32_t maxTime;       // -2147483648 when empty
    TOVO_TmIdxEntry *entries;   // room for the chain's capacity
    _TOVO_TmIdxSet *next;
};

namespace velmio {

// Codes of the time index.
constexpr int kTmIdxNoMemory = 5000009;
constexpr int kTmIdxCloseFailed = 5000026;
constexpr int kTmIdxRecordZero = 5000036;
constexpr int kTmIdxNotFound = 5000037;
constexpr int kTmIdxCannotOpen = 5000038;
constexpr int kTmIdxInvalid = 5000039;
constexpr int kTmIdxWriteFailed = 5000040;

class TimeIndex {
public:
    static constexpr std::uint32_t kDefaultCapacity = 512;

    TimeIndex() = default;
    ~TimeIndex() { clear(); }
    TimeIndex(const TimeIndex &) = delete;
    TimeIndex &operator=(const TimeIndex &) = delete;
    TimeIndex(TimeIndex &&other) noexcept;
    TimeIndex &operator=(TimeIndex &&other) noexcept;


    // Appends an empty set sized by capacity(); prints "TmIdxSetAlloc:
    // malloc() returned NULL.  No memory available.\n" and returns null when
    // memory runs out.
    _TOVO_TmIdxSet *allocSet();
    // Releases every set; capacity() stays.
    void clear();

    // Adds the entry of the record about to be written. A new set is begun
    // when there is none or the last holds exactly 512 entries (the constant,
    // not capacity(): files of this system always carry 512). 0 or 5000009.
    int append(std::int32_t encodedTime, std::uint32_t byteOffset);
    // As n append() calls for records stride bytes apart from firstOffset,
    // filling a set at a time: the number appended (fewer only when memory
    // runs out).
    std::uint32_t appendRun(const std::int32_t *encodedTimes, std::uint32_t n, std::uint32_t firstOffset,
                            std::uint32_t stride);

    // Byte offset of record n (counted from 1): 0, 5000036 for n == 0,
    // 5000037 beyond the last entry. Prints nothing.
    int map(std::uint32_t recordNumber, std::uint32_t &byteOffset) const;
    // Starts loading record n's entry into the processor's cache, so that a
    // map() after a slow call (a read of the data file) finds it there.
    void prefetch(std::uint32_t recordNumber) const {
        if (image_.bytes && uniform_ && recordNumber - 1 < entryCount_)
            __builtin_prefetch(imageEntry(recordNumber - 1));
    }
    // The entry of record n, or null.
    const TOVO_TmIdxEntry *entry(std::uint32_t recordNumber);

    // The file form: "TOVO", type, 3, format version, set count, capacity,
    // the 12-byte set headers, then each set's entries as an XDR array.
    // write(): 0, 5000038 (cannot create), 5000040 (write failed), 5000026.
    int write(const wchar_t *path, std::uint32_t typeId, std::uint32_t formatVersion);
    int writeTo(std::FILE *file, std::uint32_t typeId, std::uint32_t formatVersion);  // 0 or 5000040
    // read() into an empty index: 0, 5000038, 5000039 (header mismatch, short
    // or inconsistent data), 5000009, 5000026. Counts are checked against the
    // file size before anything is allocated. On failure the sets read so far
    // stay on the chain (clear() or the destructor releases them). The file
    // comes in one read where memory allows.
    int read(const wchar_t *path, std::uint32_t typeId);
    int readFrom(std::FILE *file, std::uint32_t typeId);
    // The same from the file's bytes in memory (an in-memory line): 0,
    // 5000039 or 5000009.
    int readBytes(const unsigned char *bytes, std::size_t size, std::uint32_t typeId);

    std::uint32_t setCount() const { return setCount_; }
    std::uint32_t capacity() const { return capacity_; }
    void setCapacity(std::uint32_t c) { capacity_ = c; }
    std::uint32_t entryCount() const { return entryCount_; }
    _TOVO_TmIdxSet *first() {
        materialise();
        return first_;
    }
    _TOVO_TmIdxSet *last() {
        materialise();
        return last_;
    }

    // Where read() and readFrom() take their bytes: up to n bytes, the count
    // read (fewer only at the end), or -1.
    struct ChunkReader {
        virtual ~ChunkReader() = default;
        virtual std::int64_t get(void *out, std::size_t n) = 0;
    };

private:
    // read() keeps the file's bytes as they are and maps from them; the set
    // chain is built from them only when something asks for the sets.
    struct Image {
        unsigned char *bytes = nullptr;  // the whole file
        std::size_t size = 0;
        std::size_t arrays = 0;             // where the first set's array begins
        std::vector<std::size_t> arrayAt;  // each set's array, when the sets are not uniform
    };
    int readWhole(int fd, std::uint32_t typeId);
    bool adoptImage(unsigned char *bytes, std::size_t size, std::uint32_t sets, std::uint32_t capacity);
    void materialise();
    void dropImage();
    const unsigned char *imageEntry(std::uint32_t index) const;
    const TOVO_TmIdxEntry *chainEntry(std::uint32_t recordNumber) const;

    _TOVO_TmIdxSet *allocSet(std::uint32_t room);
    // The file form after its header words, each set's entries taken with
    // one read; remaining is what the file holds behind the header.
    int readBody(ChunkReader &in, std::uint32_t sets, std::uint32_t capacity, std::int64_t remaining);

    std::uint32_t setCount_ = 0;
    std::uint32_t capacity_ = kDefaultCapacity;
    _TOVO_TmIdxSet *first_ = nullptr;
    _TOVO_TmIdxSet *last_ = nullptr;
    // Directory of the chain: the sets in order and the number of entries
    // before each, for a constant-time (uniform sets) or logarithmic lookup.
    std::vector<_TOVO_TmIdxSet *> sets_;
    std::vector<std::uint32_t> before_;
    std::vector<std::uint32_t> rooms_;  // entries each set has room for
    std::uint32_t entryCount_ = 0;
    bool uniform_ = true;  // every set but the last holds exactly 512 entries
    Image image_;
};

}  // namespace velmio

#endif
