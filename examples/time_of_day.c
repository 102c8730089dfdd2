/* Converts a year/day-of-year time to UTC seconds since 1980 and back. */
#include <velmio/velmio.h>

#include <stdio.h>

int main(void) {
    int year, day;
    double seconds;
    double t = TmYDStoUTCs80(2004, 123, TmHMSXtoS(12, 30, 0, 0.0));
    TmUTCs80toYDS(t, &year, &day, &seconds);
    printf("2004-123 12:30:00 is %.0f s after 1980; back: %04d-%03d %.0f s\n", t, year, day, seconds);
    return 0;
}
