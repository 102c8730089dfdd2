// What a raw writer of a line does besides encoding its records, so that the
// raw limit of a write makes the same files as the library with the same
// durability: the time index file's bytes, and each file pushed to the disk
// (the data file synced in place; the index and segment files written to a
// temporary, synced, renamed over the target, the directory synced).
#ifndef VELMIO_BENCH_RAW_FILES_H
#define VELMIO_BENCH_RAW_FILES_H

#include "bench_support.h"

#include <cstdio>
#include <string>
#include <vector>

namespace velmio::bench {

// The time index file of a new line: entries in write order, sets of 512,
// filled in place as they come.
class RawIndex {
public:
    RawIndex(std::uint32_t typeId, std::uint32_t formatVersion, std::size_t entries);
    void add(std::int32_t encodedTime, std::uint32_t offset) {
        if (inSet_ == kSet) closeSet();
        if (inSet_ == 0) at_ += 4;  // the set's count word, written up front
        putBe32(&bytes_[at_], static_cast<std::uint32_t>(encodedTime));
        putBe32(&bytes_[at_ + 4], offset);
        at_ += 8;
        lo_ = encodedTime < lo_ ? encodedTime : lo_;
        hi_ = encodedTime > hi_ ? encodedTime : hi_;
        ++inSet_;
    }
    // The file's bytes once every entry is added.
    const std::vector<unsigned char> &bytes();

private:
    static constexpr std::uint32_t kSet = 512;
    void closeSet();

    std::vector<unsigned char> bytes_;
    std::size_t at_ = 0, set_ = 0;
    std::uint32_t inSet_ = 0;
    std::int32_t lo_ = 0, hi_ = 0;
};

// Pushes a written stream's data to the disk and closes it: false on failure.
bool syncClose(std::FILE *file);
// Replaces path by the bytes as durably as the library replaces its files.
bool replaceDurably(const std::string &path, const unsigned char *bytes, std::size_t n);

// The files of a line the library wrote in directory, other than its data
// and time index file (the segment file), to be written again by a raw pass.
struct SideFile {
    std::string name;
    std::vector<unsigned char> bytes;
};
std::vector<SideFile> sideFiles(const std::string &directory, const std::string &dataName);

// 1 when every file of the raw line in rawDirectory has the bytes of its
// namesake in directory, else 2: what a write pass returns as its checksum,
// so that a raw pass that writes other bytes is labelled.
double sameFiles(const std::string &directory, const std::string &rawDirectory);

}  // namespace velmio::bench

#endif
