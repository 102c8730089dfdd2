// Shared pieces of the fuzz targets: the seed builder that every target
// defines, a scratch directory for the files an input carries, and the
// packing of several files into one input.
#ifndef VELMIO_FUZZ_FUZZ_SUPPORT_H
#define VELMIO_FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

// Valid inputs of the target, built with the library itself each time they
// are asked for (so they always match the current file layouts).
std::vector<std::vector<std::uint8_t>> velmioFuzzSeeds();

namespace velmio::fuzz {

using Bytes = std::vector<std::uint8_t>;

// A view of one file carried by an input.
struct Part {
    const std::uint8_t *data;
    std::size_t size;
};

// An input made of a 4-byte header, count-1 big-endian 32-bit lengths and
// count files back to back; the last file takes whatever remains. Lengths
// running past the end are cut short, so every input splits somehow.
std::vector<Part> unpack(const std::uint8_t *data, std::size_t size, std::size_t count);
// The inverse of unpack: header bytes (up to 4, zero filled), then lengths
// and files.
Bytes pack(const Bytes &header, const std::vector<Bytes> &files);

// An empty directory for one input, below a per-process scratch directory
// that is removed at exit. Each call empties it again.
std::string freshDirectory();

void writeFile(const std::string &path, const std::uint8_t *data, std::size_t size);
inline void writeFile(const std::string &path, const Part &part) { writeFile(path, part.data, part.size); }
// The whole file; empty when it cannot be read.
Bytes readFile(const std::string &path);
// Like readFile, but the file must exist and be non-empty: a seed builder
// whose library call did not produce its file stops the run loudly.
Bytes requireFile(const std::string &path);

// The line directory at which targets mount an input's files in memory
// (its name parses as project, vessel, day and line).
std::wstring memoryDirectory();

// ASCII paths of the scratch directory as the wide paths the library takes.
std::wstring widen(const std::string &text);

}  // namespace velmio::fuzz

#endif
