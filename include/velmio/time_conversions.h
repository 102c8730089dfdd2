/* Time conversions between year/day-of-year/seconds ("YDS"), calendar dates
 * and continuous UTC second counts since 1980-01-01 and 1970-01-01 that count
 * leap seconds. The leap seconds come from a fixed 16-row TAI-UTC table that
 * ends in 2009: no leap second after 2009 is known to these functions. */
#ifndef VELMIO_TIME_CONVERSIONS_H
#define VELMIO_TIME_CONVERSIONS_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* TAI-UTC in whole seconds on the given day; years before 1980 count as 1980. */
VELMIO_API int TmGetTAIUTCOffset(int year, int dayOfYear);
VELMIO_API double TmHMSXtoS(int hours, int minutes, int seconds, double fraction);
/* Splits seconds of day; null outputs are skipped. */
VELMIO_API void TmStoHMSX(double seconds, int *hours, int *minutes, int *wholeSeconds, double *fraction);
/* Day of year; 0 if month is outside 1..12 or day outside 1..31 (the day is
 * not checked against the month: 31 February is 3 March). */
VELMIO_API int TmYMDtoJD(int year, int month, int day);
VELMIO_API void TmYJDtoMD(int year, int dayOfYear, int *month, int *day);
/* The YDS lying addSeconds after the given one. Correct for callers starting
 * at day 1; an exact year end stays in that year as day 366 (367 in a leap
 * year) with 0.0 s. Bad input (null output, s < 0, year outside 1900..3000,
 * day outside 1..366, NaN or infinite seconds) gives -1, -1, -1.0. */
VELMIO_API void TmYDSplusS(int year, int day, double seconds, double addSeconds, int *outYear, int *outDay,
                           double *outSeconds);
VELMIO_API double TmYDSminusYDS(int year1, int day1, double seconds1, int year2, int day2, double seconds2);
VELMIO_API double TmYDStoUTCs80(int year, int day, double seconds);
VELMIO_API double TmYDStoUTCs70(int year, int day, double seconds);
VELMIO_API void TmUTCs80toYDS(double utcs80, int *year, int *day, double *seconds);
VELMIO_API void TmUTCs70toYDS(double utcs70, int *year, int *day, double *seconds);
VELMIO_API double TmUTCs80toUTCs70(double utcs80);

VELMIO_END_C

#endif
