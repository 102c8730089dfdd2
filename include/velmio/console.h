/* Redirection of the library's diagnostics, chosen by the environment
 * variable "CONSOLE".
 *
 * The library prints its diagnostics on standard output. At
 * VELM_IO_StartDiagnostics, "CONSOLE" (letter case ignored for the keywords):
 * - unset or empty, or "NO": nothing changes;
 * - "YES" or "CONSOLE": standard input, output and error are attached to the
 *   process's controlling terminal (/dev/tty on POSIX; a new console on
 *   Windows). Without a controlling terminal nothing changes;
 * - anything else is a file name: the file is created or truncated and
 *   standard output is written to it. A file of an earlier start is closed.
 * The state is process-wide; calls from several threads take turns. */
#ifndef VELMIO_CONSOLE_H
#define VELMIO_CONSOLE_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* Applies "CONSOLE" as described above. Returns 0; 5017203 when the named
 * file cannot be opened (standard output is then left as it was); 5000009
 * when memory runs out. */
VELMIO_API int VELM_IO_StartDiagnostics(void);

/* Undoes every change of VELM_IO_StartDiagnostics: the terminal is released
 * and the original standard streams are restored; a diagnostics file is
 * closed and forgotten. Returns 0, or -1 when closing the file failed. */
VELMIO_API int VELM_IO_StopDiagnostics(void);

/* Switches the one-line messages of failing calls on (nonzero) or off (0)
 * for the whole process; they are on at start. Returns the previous setting
 * (1 or 0). Programs that report failures themselves, such as the Python
 * module, turn them off. */
VELMIO_API int VELM_IO_SetDiagnostics(int enabled);

VELMIO_END_C

#endif
