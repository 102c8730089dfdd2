/* Finding and opening the sound velocity profile file of a line directory.
 *
 * Paths are wide; '/' and '\' both separate, and the paths built here use the
 * native separator. The forms without a capacity write at most
 * VELMIO_SVP_PATH_MAX wide characters (terminator included) into the caller's
 * buffer, which must hold that many; the "N" forms take the capacity. */
#ifndef VELMIO_SVP_FILES_H
#define VELMIO_SVP_FILES_H

#include <velmio/export.h>

#include <stddef.h>
#include <stdio.h>

#define VELMIO_SVP_PATH_MAX 512

VELMIO_BEGIN_C

/* Writes lineDirectory + separator + "Svp" into pathOut. Returns 0; does
 * nothing with a null argument. When the path does not fit it is truncated
 * and -1 is returned (also for a zero capacity, which writes nothing). */
VELMIO_API int getSVPFileNameDir(const wchar_t *lineDirectory, wchar_t *pathOut);
VELMIO_API int getSVPFileNameDirN(const wchar_t *lineDirectory, wchar_t *pathOut, size_t capacity);

/* Opens the line's profile file with an fopen mode ("r", "rb", "w", "a+",
 * ...). A mode not beginning with "w" tries "SoundSpeedProfile", "Svp" and
 * "SVP" in turn; a mode beginning with "w" opens "Svp". The path of the file
 * opened goes to pathOut (truncated to fit; "" when nothing was opened).
 * Null arguments, a zero capacity or an invalid mode give null. The caller
 * closes the stream with fclose. */
VELMIO_API FILE *OpenSVPFileDir(const wchar_t *lineDirectory, const wchar_t *mode, wchar_t *pathOut);
VELMIO_API FILE *OpenSVPFileDirN(const wchar_t *lineDirectory, const wchar_t *mode, wchar_t *pathOut,
                                 size_t capacity);

VELMIO_END_C

#endif
