/* Version information of a module (shared library or DLL).
 *
 * On POSIX systems the version resource is the exported data symbol
 * VELMIO_VersionInfo: a module that defines it (libvelmio does) has a version
 * of four 16-bit parts and a description. On Windows the module's version
 * resource is read (fixed file version and the US English, Unicode string
 * table's FileDescription). */
#ifndef VELMIO_FILE_INFO_H
#define VELMIO_FILE_INFO_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* Size in bytes of the buffers that VELMGetFileInfo allocates and of the
 * buffers a caller passes in: 512 bytes, that is 512 / sizeof(wchar_t) wide
 * characters with the terminator (128 on Linux, 256 on Windows). */
#define VELMIO_FILE_INFO_BUFFER_BYTES 512

/* The well-known version symbol. */
struct VELMIOVersionInfo {
    unsigned short version[4]; /* most significant first: major, minor, patch, tweak */
    const char *description;   /* UTF-8 */
};

/* The version of this library. */
VELMIO_API extern const struct VELMIOVersionInfo VELMIO_VersionInfo;

/* Reads the version of the module at modulePath (a module already loaded is
 * used as it is; another one is loaded for the call and unloaded again).
 * *descriptionBuffer receives the description and *versionBuffer the version
 * as "%d.%d.%d.%d". When *descriptionBuffer or *versionBuffer is null, a
 * buffer of VELMIO_FILE_INFO_BUFFER_BYTES is allocated for it, which the
 * caller frees with free() or VELMIO_free(); a buffer the caller passes must
 * hold VELMIO_FILE_INFO_BUFFER_BYTES bytes. Longer texts are truncated.
 * Returns 0, or -1 when modulePath or either buffer address is null, the
 * module cannot be loaded or carries no version, or memory runs out; on -1
 * nothing is allocated (null buffers stay null) and buffers passed in hold "". */
VELMIO_API int VELMGetFileInfo(const wchar_t *modulePath, wchar_t **descriptionBuffer, wchar_t **versionBuffer);

VELMIO_END_C

#endif
