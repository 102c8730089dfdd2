/* Export and linkage macros shared by every public header of VelmIO. */
#ifndef VELMIO_EXPORT_H
#define VELMIO_EXPORT_H

#if defined(_WIN32)
#  if defined(VELMIO_BUILDING)
#    define VELMIO_API __declspec(dllexport)
#  else
#    define VELMIO_API __declspec(dllimport)
#  endif
#else
#  define VELMIO_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#  define VELMIO_BEGIN_C extern "C" {
#  define VELMIO_END_C }
#else
#  define VELMIO_BEGIN_C
#  define VELMIO_END_C
#endif

#include <stddef.h>

VELMIO_BEGIN_C
/* The opaque sensor handle returned by every <Family>OpenDir and passed to the
   family's other operations; released by the family's Close. */
typedef struct TOVO_Sensor TOVO_Sensor;

/* Frees a string or array that the library handed out (same as free()). */
VELMIO_API void VELMIO_free(void *memory);
VELMIO_END_C

#endif
