// Wide-path file services over the C runtime and POSIX.
#ifndef VELMIO_PLATFORM_FILES_H
#define VELMIO_PLATFORM_FILES_H

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace velmio::platform {

// fopen with a wide path; errno tells why it failed.
std::FILE *openFile(const wchar_t *path, const char *mode);
bool pathExists(const wchar_t *path);
bool isDirectory(const wchar_t *path);
bool isRegularFile(const wchar_t *path);
// Size of a file in bytes, or -1.
std::int64_t fileSize(const wchar_t *path);
std::int64_t fileSize(std::FILE *file);
bool removeFile(const wchar_t *path);
bool renameFile(const wchar_t *from, const wchar_t *to);
// Cuts an open stream's file to length bytes (what the stream buffers is
// written first). False with errno set.
bool truncateFile(std::FILE *file, std::uint64_t length);
// Names of the directories in path, sorted; false when path cannot be listed.
bool listSubdirectories(const wchar_t *path, std::vector<std::wstring> &names);
// Makes one directory; true when it exists afterwards.
bool makeDirectory(const wchar_t *path);
// Absolute form of a path without resolving links; false on failure.
bool absolutePath(const wchar_t *path, std::wstring &out);
// A fresh temporary file name in the directory of target (the file is
// created empty so that the name is reserved); "" on failure.
std::wstring temporarySibling(const wchar_t *target);

}  // namespace velmio::platform

#endif
