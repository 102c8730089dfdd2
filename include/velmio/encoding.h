/* Scaled field encodings of the TOVO line files and the access mode token.
 *
 * Every physical quantity of a sensor file is a signed 32-bit integer: metres
 * x 1000 (clamped at +-2000000 m), radians x 1e7, seconds x 1e6, times as
 * counts of the file's time scale after a reference time, positions relative
 * to a reference position. Rounding is half away from zero.
 *
 * Values that do not fit 32 bits wrap modulo 2^32 (only TOVO_EncodeMeters
 * clamps). NaN, infinities and magnitudes of 2^63 or more encode to
 * -2147483648 (0x80000000), the value no finite in-range input produces from
 * the metres clamp's other side, so that such input is recognisable.
 */
#ifndef VELMIO_ENCODING_H
#define VELMIO_ENCODING_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* Access modes of a sensor handle. */
#define VELMIO_ACCESS_CREATE 1
#define VELMIO_ACCESS_QUERY 2
#define VELMIO_ACCESS_UPDATE 3

VELMIO_API int TOVO_EncodeMeters(double metres);
VELMIO_API double TOVO_DecodeMeters(int value);
VELMIO_API int TOVO_EncodeDecibles(double decibels);
VELMIO_API double TOVO_DecodeDecibles(int value);
VELMIO_API int TOVO_EncodeRadians(double radians);
VELMIO_API double TOVO_DecodeRadians(int value);
VELMIO_API int TOVO_EncodeSeconds(double seconds);
VELMIO_API double TOVO_DecodeSeconds(int value);
VELMIO_API int TOVO_EncodeRefPosition(double radians);
VELMIO_API int TOVO_EncodePosition(double position, int reference, int scale);
VELMIO_API double TOVO_DecodePosition(int reference, int scale, int value);
VELMIO_API int TOVO_EncodeDepthPosition(double position, double reference, int scale);
VELMIO_API double TOVO_DecodeDepthPosition(double reference, int scale, int value);
VELMIO_API int TOVO_EncodeRefTime(double seconds);
VELMIO_API double TOVO_DecodeRefTime(int minutes);
VELMIO_API int TOVO_EncodeTime(double time, int referenceMinutes, int scale);
VELMIO_API double TOVO_DecodeTime(int referenceMinutes, int scale, int value);
VELMIO_API int TOVO_EncodeDepthTime(double time, double reference, int scale);
VELMIO_API double TOVO_DecodeDepthTime(double reference, int scale, int value);

/* "create" 1, "query" 2, "update" 3, in any letter case; 5000035 for a null,
 * empty or unknown token (with a message on standard output), 5000009 when
 * memory runs out. */
VELMIO_API int TOVO_DecodeAccessTypeToken(const wchar_t *token);

VELMIO_END_C

#endif
