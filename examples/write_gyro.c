/* Writes one gyro record to a new survey line through the flat interface. */
#include <velmio/velmio.h>
#include <stdio.h>
#include <stdlib.h>

int main(int argc, char **argv) {
    const wchar_t *line = L"/tmp/velmio-example/Proj/Boat/2004-123/Line1";
    wchar_t given[512];
    int error = 0, year, day;
    double seconds;
    double t = TmYDStoUTCs80(2004, 123, TmHMSXtoS(12, 30, 0, 0.0));   /* UTC s since 1980 */
    TmUTCs80toYDS(t, &year, &day, &seconds);
    printf("%04d-%03d %.0f\n", year, day, seconds);

    if (argc > 1 && mbstowcs(given, argv[1], 512) < 512) line = given;   /* another line directory */
    if (LineCreateHierarchy(line) != 0) return 1;
    TOVO_Sensor *gyro = GyroOpenDir(line, L"create", &error);
    if (!gyro) { printf("open failed: %d\n", error); return 1; }
    GyroBgnSeqWriteSummary(gyro);
    GyroBgnSeqWriteLineSegment(gyro, L"raw_0001.all");
    GyroSeqWrite(gyro, t, 0.5236 /* rad */, 0);
    GyroEndSeqWriteLineSegment(gyro, 0);
    GyroEndSeqWriteSummary(gyro, 0);
    return GyroClose(gyro);
}
