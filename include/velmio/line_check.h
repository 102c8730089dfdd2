/* Verifying survey lines: every sensor of a line, or of every line below a
 * directory, is opened for reading (which validates its data validation
 * record, summary, line segment file and time index and the data file's
 * length against the summary) and read through once, record by record in
 * file order; record times must not go backwards and the line segments must
 * cover the records from the first to the last, in order, without gaps or
 * overlaps.
 *
 * Each problem names the line directory, the sensor (the family's name, e.g.
 * L"Gyro", which is also its data file's name), the record or profile number
 * (from 1; 0 when the problem is not one record's) and a code whose sentence
 * the message bundle holds: the code the family's open or read returned,
 * 5029101 for a record time before the one of the record before it, 5029102
 * for line segments that do not cover the records. */
#ifndef VELMIO_LINE_CHECK_H
#define VELMIO_LINE_CHECK_H

#include <velmio/export.h>

VELMIO_BEGIN_C

typedef struct VELMCheckProblem {
    wchar_t *line;
    wchar_t *sensor;
    unsigned int number;
    int code;
} VELMCheckProblem;

/* Checks the line at path, or every line directory below it (a directory
 * holding at least one sensor's data file). On success returns 0 with
 * *problems an array of *problemCount entries (null when there is none),
 * freed with VELMCheckFree, and *linesChecked (may be null) the number of
 * lines checked. Returns -1 for a null path or output, 5000010 when path is
 * not a directory, 5000009 when memory runs out (nothing is handed out then). */
VELMIO_API int VELMCheckPath(const wchar_t *path, VELMCheckProblem **problems, unsigned int *problemCount,
                             unsigned int *linesChecked);
/* Frees what VELMCheckPath handed out; a null array is ignored. */
VELMIO_API void VELMCheckFree(VELMCheckProblem *problems, unsigned int problemCount);

VELMIO_END_C

#endif
