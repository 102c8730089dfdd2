// Replacing a file so that a crash or a power loss at any moment leaves
// either the old file or the new one, complete: the new content is written
// to a temporary beside the target and pushed to the disk before the rename,
// and the directory is pushed after it.
#ifndef VELMIO_PLATFORM_DURABLE_REPLACE_H
#define VELMIO_PLATFORM_DURABLE_REPLACE_H

#include <cstdio>
#include <functional>
#include <string>

namespace velmio::platform {

// Pushes the entries of a directory (names made, renamed or removed in it)
// to the disk. 0 or errno.
int syncDirectory(const std::wstring &directory);
// The directory that holds path ("." for a bare name).
std::wstring parentDirectory(const std::wstring &path);

// Replaces target by what write puts into the stream it is given (opened
// "wb" on the temporary); write returns 0 or an errno. The result keeps the
// target's permissions. Returns 0 or errno; on failure the target is
// untouched and the temporary is gone.
int replaceFile(const std::wstring &target, const std::function<int(std::FILE *)> &write);
// The same for writers that open the file themselves (a library saving a
// document): save(temporaryPath) returns 0 when the temporary is complete.
int replaceFileBySaving(const std::wstring &target, const std::function<int(const std::wstring &)> &save);

}  // namespace velmio::platform

#endif
