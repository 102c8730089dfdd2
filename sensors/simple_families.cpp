// The fourteen families' exported functions: thin forwarders to the simple
// sensor, made from the one family list.
#include <velmio/simple_sensor.h>

#include "sensors/simple_families.h"

#define VELMIO_FORWARD_FAMILY(P, ID, KIND)                                                                        \
    extern "C" VELMIO_API TOVO_Sensor *P##OpenDir(const wchar_t *lineDirectory, const wchar_t *accessToken,      \
                                                  int *error) {                                                 \
        return SimpleSensorOpen(lineDirectory, accessToken, ID, KIND, error);                                    \
    }                                                                                                            \
    extern "C" VELMIO_API int P##Summary(TOVO_Sensor *h, unsigned int *segmentCount, unsigned int *recordCount,  \
                                         double *minTime, double *maxTime, double *minValue, double *maxValue,  \
                                         unsigned int *summaryStatus) {                                         \
        return SimpleSensorSummary(h, segmentCount, recordCount, minTime, maxTime, minValue, maxValue,           \
                                   summaryStatus);                                                               \
    }                                                                                                            \
    extern "C" VELMIO_API int P##LineSegment(TOVO_Sensor *h, int n, wchar_t **name, unsigned int *first,         \
                                             unsigned int *last, double *minTime, double *maxTime,              \
                                             double *minValue, double *maxValue, unsigned int *status) {        \
        return SimpleSensorLineSegment(h, n, name, first, last, minTime, maxTime, minValue, maxValue, status);   \
    }                                                                                                            \
    extern "C" VELMIO_API int P##Read(TOVO_Sensor *h, unsigned int n, double *time, double *value,              \
                                      unsigned int *status) {                                                   \
        return SimpleSensorRead(h, n, time, value, status);                                                      \
    }                                                                                                            \
    extern "C" VELMIO_API int P##ReadRange(TOVO_Sensor *h, unsigned int first, unsigned int count, double *times,  \
                                           double *values, unsigned int *statuses) {                            \
        return SimpleSensorReadRange(h, first, count, times, values, statuses);                                  \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SeqWriteRange(TOVO_Sensor *h, unsigned int count, const double *times,          \
                                               const double *values, const unsigned int *statuses) {            \
        return SimpleSensorSeqWriteRange(h, count, times, values, statuses);                                     \
    }                                                                                                            \
    extern "C" VELMIO_API int P##ReadSeq(TOVO_Sensor *h, double *time, double *value, unsigned int *status) {    \
        return SimpleSensorReadSeq(h, time, value, status);                                                      \
    }                                                                                                            \
    extern "C" VELMIO_API int P##BgnSeqWriteSummary(TOVO_Sensor *h) { return SimpleSensorBgnSeqWriteSummary(h); } \
    extern "C" VELMIO_API int P##BgnSeqWriteLineSegment(TOVO_Sensor *h, const wchar_t *sourceName) {             \
        return SimpleSensorBgnSeqWriteLineSegment(h, sourceName);                                                \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SeqWrite(TOVO_Sensor *h, double time, double value, unsigned int status) {      \
        return SimpleSensorSeqWrite(h, time, value, status);                                                     \
    }                                                                                                            \
    extern "C" VELMIO_API int P##EndSeqWriteLineSegment(TOVO_Sensor *h, unsigned int status) {                   \
        return SimpleSensorEndSeqWriteLineSegment(h, status);                                                    \
    }                                                                                                            \
    extern "C" VELMIO_API int P##EndSeqWriteSummary(TOVO_Sensor *h, unsigned int status) {                       \
        return SimpleSensorEndSeqWriteSummary(h, status);                                                        \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SetSummaryStatus(TOVO_Sensor *h, unsigned int status) {                         \
        return SimpleSensorSetSummaryStatus(h, status);                                                          \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SetLineSegmentStatus(TOVO_Sensor *h, int n, unsigned int status) {              \
        return SimpleSensorSetLineSegmentStatus(h, n, status);                                                   \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SetRecordStatus(TOVO_Sensor *h, unsigned int n, unsigned int status) {          \
        return SimpleSensorSetRecordStatus(h, n, status);                                                        \
    }                                                                                                            \
    extern "C" VELMIO_API int P##SaveStatusToDisk(TOVO_Sensor *h) { return SimpleSensorSaveStatusToDisk(h); }     \
    extern "C" VELMIO_API int P##Close(TOVO_Sensor *h) { return SimpleSensorClose(h); }                           \
    extern "C" VELMIO_API int P##RemoveDir(const wchar_t *lineDirectory) {                                       \
        return SimpleSensorRemoveDir(lineDirectory, ID);                                                         \
    }

VELMIO_SIMPLE_FAMILIES(VELMIO_FORWARD_FAMILY)
