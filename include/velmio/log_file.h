/* The per-directory log file "LogFile".
 *
 * Texts are wide strings and are written to the file as UTF-8. The log file of
 * a directory is <directory>/LogFile. Strings handed out are fresh heap copies
 * that the caller frees with free() or VELMIO_free(). */
#ifndef VELMIO_LOG_FILE_H
#define VELMIO_LOG_FILE_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* An open log file: the stream and two version texts the caller may attach. */
typedef struct VELMLogFile VELMLogFile;

/* Opens <directory>/LogFile with the stdio mode given as a wide string ("a",
 * "w", ...). Returns the handle, or null with *status set to 5017200 (null or
 * empty directory), 5017201 (null or empty mode), 5000009 (out of memory) or
 * 5017202 (the file could not be opened; an open-failure message is printed).
 * *status is 0 on success; status may be null. Release with LogFileClose. */
VELMIO_API VELMLogFile *LogFileOpen(const wchar_t *directory, const wchar_t *mode, int *status);

/* Writes text as it is (UTF-8, no line feed added) and flushes it. Returns 0,
 * or -1 for a null handle or text or when the write fails. */
VELMIO_API int LogFileAppendText(VELMLogFile *log, const wchar_t *text);

/* Replaces the two stored version texts with copies; a null text leaves its
 * slot empty. The library never writes them to the file. Returns 0, -1 for a
 * null handle, or 5000009 when a copy cannot be made (both slots are then
 * empty). */
VELMIO_API int LogFileSetVersionInfo(VELMLogFile *log, const wchar_t *first, const wchar_t *second);

/* Fresh copies of the two stored version texts (null for an empty slot); either
 * output may be null. Returns 0, -1 for a null handle, or 5000009 when a copy
 * cannot be made (no copy is then handed out). */
VELMIO_API int LogFileGetVersionInfo(const VELMLogFile *log, wchar_t **first, wchar_t **second);

/* Closes the stream and frees the handle. Returns 0, or -1 when closing the
 * stream failed (the handle is freed either way) or the handle is null. */
VELMIO_API int LogFileClose(VELMLogFile *log);

/* Deletes <directory>/LogFile. Returns 0 when the file is gone afterwards
 * (including when there was none), -1 for a null directory or when it could
 * not be deleted. */
VELMIO_API int LogFileRemove(const wchar_t *directory);

/* Appends text and a line feed to <directory>/LogFile (created when missing)
 * and closes it again. Returns 0; 5000049 when the log cannot be opened
 * (including a null directory); 5000009 when memory runs out; -1 for a null
 * text or when writing or closing fails. */
VELMIO_API int WriteToVELMLogFile(const wchar_t *directory, const wchar_t *text);

VELMIO_END_C

#endif
