#include "raw_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace velmio::bench {

namespace {
constexpr std::int32_t kEmptyMin = 2147483647;
constexpr std::int32_t kEmptyMax = -2147483647 - 1;
}  // namespace

RawIndex::RawIndex(std::uint32_t typeId, std::uint32_t formatVersion, std::size_t entries) {
    const std::size_t sets = (entries + kSet - 1) / kSet;
    bytes_.resize(24 + 12 * sets + 4 * sets + 8 * entries);
    const std::uint32_t head[6] = {0x544F564F, typeId, 3, formatVersion, static_cast<std::uint32_t>(sets), kSet};
    for (int i = 0; i < 6; ++i) putBe32(&bytes_[4 * i], head[i]);
    std::size_t body = 24 + 12 * sets;
    for (std::size_t s = 0; s < sets; ++s) {
        const auto count = static_cast<std::uint32_t>(std::min<std::size_t>(kSet, entries - s * kSet));
        putBe32(&bytes_[24 + 12 * s], count);
        putBe32(&bytes_[body], count);
        body += 4 + 8 * std::size_t{count};
    }
    at_ = 24 + 12 * sets;
    lo_ = kEmptyMin, hi_ = kEmptyMax;
}

void RawIndex::closeSet() {
    putBe32(&bytes_[24 + 12 * set_ + 4], static_cast<std::uint32_t>(lo_));
    putBe32(&bytes_[24 + 12 * set_ + 8], static_cast<std::uint32_t>(hi_));
    ++set_;
    inSet_ = 0;
    lo_ = kEmptyMin, hi_ = kEmptyMax;
}

const std::vector<unsigned char> &RawIndex::bytes() {
    if (inSet_) closeSet();
    return bytes_;
}

bool syncClose(std::FILE *file) {
    const bool synced = std::fflush(file) == 0 && ::fdatasync(fileno(file)) == 0;
    return std::fclose(file) == 0 && synced;
}

bool replaceDurably(const std::string &path, const unsigned char *bytes, std::size_t n) {
    const std::string temporary = path + ".tmp";
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0) return false;
    bool ok = ::write(fd, bytes, n) == static_cast<ssize_t>(n) && ::fdatasync(fd) == 0;
    ok = ::close(fd) == 0 && ok && ::rename(temporary.c_str(), path.c_str()) == 0;
    const int dir = ::open(fs::path(path).parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    ok = dir >= 0 && ::fsync(dir) == 0 && ok;
    if (dir >= 0) ::close(dir);
    return ok;
}

std::vector<SideFile> sideFiles(const std::string &directory, const std::string &dataName) {
    std::vector<SideFile> files;
    for (const auto &entry : fs::directory_iterator(directory)) {
        const std::string name = entry.path().filename().string();
        if (!entry.is_regular_file() || name == dataName || name == dataName + "TmIdx") continue;
        files.push_back({name, fileBytes(entry.path().string())});
    }
    return files;
}

double sameFiles(const std::string &directory, const std::string &rawDirectory) {
    for (const auto &entry : fs::directory_iterator(rawDirectory)) {
        const std::string name = entry.path().filename().string();
        if (fileBytes(entry.path().string()) != fileBytes(directory + "/" + name)) return 2.0;
    }
    return 1.0;
}

}  // namespace velmio::bench
