/* Line directory paths and small conversions of the flat interface.
 *
 * A line directory is DataRoot/Project/Vessel/Day/Line; '/' and '\' are both
 * accepted as separators. Strings returned here are fresh heap copies that the
 * caller frees with free() or VELMIO_free(). */
#ifndef VELMIO_PATHS_H
#define VELMIO_PATHS_H

#include <velmio/export.h>

VELMIO_BEGIN_C

/* The project, vessel, day or line part of a line directory path, or null when
 * the path has fewer than three separators or that part is empty. */
VELMIO_API wchar_t *VELMGetProjectFromPath(const wchar_t *path);
VELMIO_API wchar_t *VELMGetVesselFromPath(const wchar_t *path);
VELMIO_API wchar_t *VELMGetDayFromPath(const wchar_t *path);
VELMIO_API wchar_t *VELMGetLineFromPath(const wchar_t *path);

/* directionFlag != 0: knots to metres per second (speed x 0.5144444444);
 * directionFlag == 0: metres per second to knots (speed / 0.5144444444). */
VELMIO_API double convertMSToKnots(double speed, int directionFlag);

VELMIO_END_C

#endif
