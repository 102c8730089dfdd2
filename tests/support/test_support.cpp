#include "support/test_support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

namespace velmio::test {

TempDir::TempDir() {
    std::string pattern = (fs::temp_directory_path() / "velmio-test-XXXXXX").string();
    char *made = ::mkdtemp(pattern.data());
    if (!made) throw std::runtime_error("mkdtemp failed");
    path_ = made;
}

TempDir::~TempDir() {
    std::error_code ec;
    fs::remove_all(path_, ec);
}

std::wstring TempDir::wpath() const { return widen(path_); }
std::wstring TempDir::wfile(const std::string &name) const { return widen(file(name)); }

Bytes readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeFile(const std::string &path, const Bytes &bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

Files snapshot(const std::string &dir) {
    Files files;
    for (const auto &entry : fs::directory_iterator(dir))
        files[entry.path().filename().string()] = readFile(entry.path().string());
    return files;
}

void restore(const std::string &dir, const Files &files) {
    fs::remove_all(dir);
    fs::create_directories(dir);
    for (const auto &[name, bytes] : files) writeFile(dir + "/" + name, bytes);
}

void writeText(const std::string &path, const std::string &text) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

std::string readText(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool fileExists(const std::string &path) { return fs::exists(path); }

void be32(Bytes &out, std::uint32_t v) {
    out.push_back(static_cast<std::uint8_t>(v >> 24));
    out.push_back(static_cast<std::uint8_t>(v >> 16));
    out.push_back(static_cast<std::uint8_t>(v >> 8));
    out.push_back(static_cast<std::uint8_t>(v));
}

Bytes be32s(std::initializer_list<std::uint32_t> values) {
    Bytes out;
    for (auto v : values) be32(out, v);
    return out;
}

void append(Bytes &out, const Bytes &more) { out.insert(out.end(), more.begin(), more.end()); }

Bytes ascii(const std::string &text) { return Bytes(text.begin(), text.end()); }

std::string hex(const Bytes &bytes) {
    std::ostringstream s;
    char buf[4];
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(buf, sizeof buf, "%02X", bytes[i]);
        s << buf << ((i % 4 == 3) ? "  " : " ");
    }
    return s.str();
}

::testing::AssertionResult SameBytes(const Bytes &expected, const Bytes &actual) {
    if (expected == actual) return ::testing::AssertionSuccess();
    std::size_t i = 0;
    while (i < expected.size() && i < actual.size() && expected[i] == actual[i]) ++i;
    return ::testing::AssertionFailure() << "bytes differ at offset " << i << " (expected " << expected.size()
                                         << " bytes, got " << actual.size() << ")\nexpected: " << hex(expected)
                                         << "\nactual:   " << hex(actual);
}

std::wstring widen(const std::string &text) {
    std::wstring out;
    for (unsigned char c : text) out += static_cast<wchar_t>(c);
    return out;
}

}  // namespace velmio::test
