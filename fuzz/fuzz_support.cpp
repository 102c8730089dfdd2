#include "fuzz_support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace velmio::fuzz {

namespace fs = std::filesystem;

std::vector<Part> unpack(const std::uint8_t *data, std::size_t size, std::size_t count) {
    std::vector<Part> parts;
    const std::size_t headerEnd = 4 + 4 * (count - 1);
    std::size_t at = headerEnd < size ? headerEnd : size;
    for (std::size_t i = 0; i + 1 < count; ++i) {
        std::size_t length = 0;
        const std::size_t field = 4 + 4 * i;
        if (field + 4 <= size)
            length = (std::size_t(data[field]) << 24) | (std::size_t(data[field + 1]) << 16) |
                     (std::size_t(data[field + 2]) << 8) | data[field + 3];
        if (length > size - at) length = size - at;
        parts.push_back({data + at, length});
        at += length;
    }
    parts.push_back({data + at, size - at});
    return parts;
}

Bytes pack(const Bytes &header, const std::vector<Bytes> &files) {
    Bytes out(4, 0);
    for (std::size_t i = 0; i < header.size() && i < 4; ++i) out[i] = header[i];
    for (std::size_t i = 0; i + 1 < files.size(); ++i) {
        const auto n = static_cast<std::uint32_t>(files[i].size());
        out.push_back(static_cast<std::uint8_t>(n >> 24));
        out.push_back(static_cast<std::uint8_t>(n >> 16));
        out.push_back(static_cast<std::uint8_t>(n >> 8));
        out.push_back(static_cast<std::uint8_t>(n));
    }
    for (const Bytes &f : files) out.insert(out.end(), f.begin(), f.end());
    return out;
}

namespace {
std::string &scratchRoot() {
    static std::string root;
    return root;
}

void removeScratch() {
    std::error_code ec;
    if (!scratchRoot().empty()) fs::remove_all(scratchRoot(), ec);
}
}  // namespace

std::string freshDirectory() {
    std::string &root = scratchRoot();
    if (root.empty()) {
        const char *tmp = std::getenv("TMPDIR");
        std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/velmio-fuzz-XXXXXX";
        if (!mkdtemp(pattern.data())) {
            std::perror("velmio fuzz: cannot make a scratch directory");
            std::abort();
        }
        root = pattern;
        std::atexit(removeScratch);
    }
    const std::string dir = root + "/line";
    std::error_code ec;
    fs::remove_all(dir, ec);
    fs::create_directory(dir, ec);
    if (ec) {
        std::fprintf(stderr, "velmio fuzz: cannot make %s: %s\n", dir.c_str(), ec.message().c_str());
        std::abort();
    }
    return dir;
}

void writeFile(const std::string &path, const std::uint8_t *data, std::size_t size) {
    std::FILE *f = std::fopen(path.c_str(), "wb");
    if (!f) {
        std::perror(path.c_str());
        std::abort();
    }
    if (size) std::fwrite(data, 1, size, f);
    std::fclose(f);
}

Bytes readFile(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

Bytes requireFile(const std::string &path) {
    Bytes bytes = readFile(path);
    if (bytes.empty()) {
        std::fprintf(stderr, "velmio fuzz: seed file %s was not written\n", path.c_str());
        std::abort();
    }
    return bytes;
}

std::wstring widen(const std::string &text) { return std::wstring(text.begin(), text.end()); }

std::wstring memoryDirectory() { return L"/memory/Project/Vessel/2009-083/Line"; }

}  // namespace velmio::fuzz
