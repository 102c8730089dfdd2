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
 * for line segments that do not cover the records, 5029103 for whole records
 * in the data file beyond those its summary counts and 5029104 for a partial
 * record or profile at its end (for these two the number is the count of
 * bytes concerned, as an interrupted writer leaves them). */
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

/* Repairing a line: for each sensor, the summary, the time index and the
 * line segment file are rebuilt from the whole records (profiles) its data
 * file holds, and a partial record or profile at its end is cut off. The
 * references the records are encoded against come from the data file's
 * summary block, which a create writes with the first record. A segment file
 * that reads and covers the whole records exactly is kept (its bounds
 * recomputed); otherwise one segment named "recovered" holds every record.
 * A sensor whose files are intact is left untouched.
 *
 * Before a sensor is rebuilt, each of its files present (data, line segment,
 * time index file) is renamed with the suffix ".damaged" (".damaged2", ...
 * when that name is taken) and the repair works on a copy. When the repair
 * fails the damaged files are renamed back. When it succeeds they stay
 * under the new names beside the repaired ones, for the user to compare
 * and delete; nothing is ever deleted. */
typedef struct VELMRepairReport {
    wchar_t *sensor;                 /* the family's name, e.g. L"Gyro" */
    int code;                        /* 0, or why this sensor was not repaired */
    int repaired;                    /* 1: files rebuilt (dry run: would be); 0: intact, untouched */
    unsigned int records;            /* whole records (profiles) found, all kept */
    unsigned int summaryRecords;     /* what the summary counted (0 when it did not decode) */
    unsigned long long dataBytes;    /* the data file's length as found */
    unsigned long long droppedBytes; /* the partial record or profile cut off */
    int summaryWasValid;             /* 1 when the file was as the summary says, as found */
    int segmentsWereValid;           /* 1 when the segment file covered the records exactly */
    int timeIndexWasValid;           /* 1 when the time index mapped every record */
    int segmentsKept;                /* 1: the segments kept; 0: one "recovered" segment */
    wchar_t *damagedSuffix;          /* the suffix the damaged files keep (null when none was set aside) */
} VELMRepairReport;

/* Repairs the line directory line: the sensor named sensorName (its data
 * file's name, e.g. L"Gyro"), or every sensor with a data file when
 * sensorName is null. With dryRun nonzero nothing is changed and the reports
 * say what would be done. *reports receives an array of *reportCount
 * entries, one per sensor considered, freed with VELMRepairFree. Returns 0
 * when every sensor is intact or was repaired, else the first sensor's code
 * (its report says which; the reports are handed out in both cases); -1 for
 * a null path or output, 5000010 when line is not a directory, 5029106 for a
 * sensor name whose lines cannot be repaired, 5000046 when no sensor's data
 * file is there, 5000009 when memory runs out (nothing handed out then). */
VELMIO_API int VELMRepairPath(const wchar_t *line, const wchar_t *sensorName, int dryRun,
                              VELMRepairReport **reports, unsigned int *reportCount);
/* Frees what VELMRepairPath handed out; a null array is ignored. */
VELMIO_API void VELMRepairFree(VELMRepairReport *reports, unsigned int reportCount);

VELMIO_END_C

#endif
