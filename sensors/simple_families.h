// The fourteen simple sensor families: prefix, sensor type id and value
// scale (0 metres, 1 radians). The one list from which the exported
// forwarders are made and against which SimpleSensorOpen checks its id.
#ifndef VELMIO_SENSORS_SIMPLE_FAMILIES_H
#define VELMIO_SENSORS_SIMPLE_FAMILIES_H

#define VELMIO_SIMPLE_FAMILIES(X) \
    X(Gyro, 1, 1)                 \
    X(Heave, 2, 0)                \
    X(Pitch, 5, 1)                \
    X(Roll, 6, 1)                 \
    X(Tide, 7, 0)                 \
    X(SSSGyro, 11, 1)             \
    X(SSSCableOut, 40, 0)         \
    X(SSSSensorHeight, 41, 0)     \
    X(SSSSensorDepth, 42, 0)      \
    X(DeltaDraft, 45, 0)          \
    X(SOW, 46, 0)                 \
    X(GPSHeight, 47, 0)           \
    X(GPSTide, 48, 0)             \
    X(TrueHeave, 55, 0)

#endif
