#include "platform/files.h"

#include "foundation/utf8.h"
#include "platform/fault_injection.h"
#include "platform/native_path.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>

#if defined(_WIN32)
#include <direct.h>
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace velmio::platform {

std::FILE *openFile(const wchar_t *path, const char *mode) {
    if (!path || !mode) {
        errno = ENOENT;
        return nullptr;
    }
    if (injectFault(FileOp::Open)) return nullptr;
    return std::fopen(nativePath(path).c_str(), mode);
}

namespace {
bool statPath(const wchar_t *path, struct stat &st) {
    if (!path) return false;
    return ::stat(nativePath(path).c_str(), &st) == 0;
}
}  // namespace

bool pathExists(const wchar_t *path) {
    struct stat st;
    return statPath(path, st);
}

bool isDirectory(const wchar_t *path) {
    struct stat st;
    return statPath(path, st) && S_ISDIR(st.st_mode);
}

bool isRegularFile(const wchar_t *path) {
    struct stat st;
    return statPath(path, st) && S_ISREG(st.st_mode);
}

std::int64_t fileSize(const wchar_t *path) {
    struct stat st;
    return statPath(path, st) ? static_cast<std::int64_t>(st.st_size) : -1;
}

std::int64_t fileSize(std::FILE *file) {
    if (!file) return -1;
    struct stat st;
#if !defined(_WIN32)
    if (fileno(file) < 0) {
        // A stream over memory has no descriptor: its end is its size.
        const long here = std::ftell(file);
        if (here < 0 || std::fseek(file, 0, SEEK_END) != 0) return -1;
        const long end = std::ftell(file);
        return std::fseek(file, here, SEEK_SET) == 0 ? end : -1;
    }
#endif
#if defined(_WIN32)
    if (::fstat(_fileno(file), &st) != 0) return -1;
#else
    if (::fstat(fileno(file), &st) != 0) return -1;
#endif
    return static_cast<std::int64_t>(st.st_size);
}

bool removeFile(const wchar_t *path) {
    if (!path) return false;
    return std::remove(nativePath(path).c_str()) == 0;
}

bool renameFile(const wchar_t *from, const wchar_t *to) {
    if (!from || !to) return false;
    if (injectFault(FileOp::Rename)) return false;
#if defined(_WIN32)
    // rename() never replaces an existing target there.
    return MoveFileExW(fromUtf8(nativePath(from)).c_str(), fromUtf8(nativePath(to)).c_str(),
                       MOVEFILE_REPLACE_EXISTING) != 0;
#else
    return std::rename(nativePath(from).c_str(), nativePath(to).c_str()) == 0;
#endif
}

bool truncateFile(std::FILE *file, std::uint64_t length) {
    if (!file || length > static_cast<std::uint64_t>(LLONG_MAX)) {
        errno = EINVAL;
        return false;
    }
    if (injectFault(FileOp::Write) || std::fflush(file) != 0) return false;
#if defined(_WIN32)
    return _chsize_s(_fileno(file), static_cast<long long>(length)) == 0;
#else
    return ::ftruncate(fileno(file), static_cast<off_t>(length)) == 0;
#endif
}

bool listSubdirectories(const wchar_t *path, std::vector<std::wstring> &names) {
    names.clear();
    if (!path) return false;
    std::error_code error;
    std::filesystem::directory_iterator it(std::filesystem::u8path(nativePath(path)), error), end;
    if (error) return false;
    for (; it != end; it.increment(error)) {
        if (error) return false;
        std::error_code kind;
        if (it->is_directory(kind)) names.push_back(fromUtf8(it->path().filename().u8string()));
    }
    std::sort(names.begin(), names.end());
    return true;
}

bool makeDirectory(const wchar_t *path) {
    if (!path) return false;
    std::string native = nativePath(path);
#if defined(_WIN32)
    int rc = _mkdir(native.c_str());
#else
    int rc = ::mkdir(native.c_str(), 0777);
#endif
    return rc == 0 || isDirectory(path);
}

bool absolutePath(const wchar_t *path, std::wstring &out) {
    if (!path || !*path) return false;
    std::wstring p(path);
    for (auto &c : p)
        if (isSeparator(c)) c = kSeparator;
#if defined(_WIN32)
    wchar_t buf[512];
    if (!_wfullpath(buf, p.c_str(), 512)) return false;
    out = buf;
    return true;
#else
    if (p[0] != L'/') {
        char cwd[PATH_MAX];
        if (!::getcwd(cwd, sizeof cwd)) return false;
        p = fromUtf8(cwd) + L"/" + p;
    }
    // Fold "." and ".." lexically, as a full-path function does.
    std::wstring result;
    std::size_t i = 0;
    while (i < p.size()) {
        while (i < p.size() && p[i] == L'/') ++i;
        std::size_t j = p.find(L'/', i);
        if (j == std::wstring::npos) j = p.size();
        std::wstring part = p.substr(i, j - i);
        i = j;
        if (part.empty() || part == L".") continue;
        if (part == L"..") {
            std::size_t cut = result.rfind(L'/');
            result.erase(cut == std::wstring::npos ? 0 : cut);
            continue;
        }
        result += L'/';
        result += part;
    }
    out = result.empty() ? L"/" : result;
    if (p.size() > 1 && p.back() == L'/' && out != L"/") out += L'/';
    return true;
#endif
}

std::wstring temporarySibling(const wchar_t *target) {
    if (!target) return L"";
    if (injectFault(FileOp::Open)) return L"";
    std::wstring dir(target);
    std::size_t cut = dir.find_last_of(L"/\\");
    dir = (cut == std::wstring::npos) ? std::wstring(L".") : dir.substr(0, cut);
    std::wstring base = dir + kSeparator + L".velmio-tmp-";
#if defined(_WIN32)
    for (int attempt = 0; attempt < 1000; ++attempt) {
        std::wstring name = base + std::to_wstring(std::rand());
        std::FILE *f = _wfopen(name.c_str(), L"wx");
        if (f) { std::fclose(f); return name; }
    }
    return L"";
#else
    std::string pattern = nativePath(base + L"XXXXXX");
    int fd = ::mkstemp(pattern.data());
    if (fd < 0) return L"";
    ::close(fd);
    return fromUtf8(pattern);
#endif
}

}  // namespace velmio::platform
