// Helpers shared by the tests: a fresh temporary directory per test, file
// bytes, and hand-written byte sequences.
#ifndef VELMIO_TESTS_TEST_SUPPORT_H
#define VELMIO_TESTS_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace velmio::test {

using Bytes = std::vector<std::uint8_t>;

// A directory made for one test and removed with everything in it afterwards.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir &) = delete;
    TempDir &operator=(const TempDir &) = delete;
    const std::string &path() const { return path_; }
    std::wstring wpath() const;
    std::string file(const std::string &name) const { return path_ + "/" + name; }
    std::wstring wfile(const std::string &name) const;

private:
    std::string path_;
};

Bytes readFile(const std::string &path);
void writeFile(const std::string &path, const Bytes &bytes);
void writeText(const std::string &path, const std::string &text);
std::string readText(const std::string &path);
bool fileExists(const std::string &path);

// The files of a directory by name, and a directory made to hold exactly them.
using Files = std::map<std::string, Bytes>;
Files snapshot(const std::string &dir);
void restore(const std::string &dir, const Files &files);

// Big-endian 32-bit units, as XDR writes them.
void be32(Bytes &out, std::uint32_t value);
Bytes be32s(std::initializer_list<std::uint32_t> values);
void append(Bytes &out, const Bytes &more);
// The ASCII bytes of text (no terminator).
Bytes ascii(const std::string &text);
// Readable hex dump for failure messages.
std::string hex(const Bytes &bytes);

// Big-endian words; negative values travel as their 32-bit patterns.
inline Bytes words(std::initializer_list<long long> values) {
    Bytes out;
    for (long long v : values) be32(out, static_cast<std::uint32_t>(v));
    return out;
}

inline Bytes cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes &p : parts) append(out, p);
    return out;
}

// An XDR string of 8-bit characters: length, bytes, zero pad.
inline Bytes xdrString(const std::string &text) {
    Bytes out = cat({words({static_cast<long long>(text.size())}), ascii(text)});
    while (out.size() % 4) out.push_back(0);
    return out;
}

// Bytes with the four bytes at offset replaced by a big-endian word.
inline Bytes patched(Bytes bytes, std::size_t offset, long long word) {
    const Bytes w = words({word});
    for (int i = 0; i < 4; ++i) bytes.at(offset + i) = w[i];
    return bytes;
}

// Bytes with several words replaced: {offset, word} pairs.
inline Bytes patched(Bytes bytes, std::initializer_list<std::pair<std::size_t, long long>> edits) {
    for (const auto &e : edits) bytes = patched(bytes, e.first, e.second);
    return bytes;
}

inline void patchWord(const std::string &path, std::size_t offset, long long value) {
    writeFile(path, patched(readFile(path), offset, value));
}

// Compares bytes and on mismatch reports the first differing offset.
::testing::AssertionResult SameBytes(const Bytes &expected, const Bytes &actual);

std::wstring widen(const std::string &text);

// What f returns, with what it prints to stdout dropped.
template <class F>
auto silently(F &&f) {
    ::testing::internal::CaptureStdout();
    auto result = f();
    ::testing::internal::GetCapturedStdout();
    return result;
}

}  // namespace velmio::test

#endif
