/* VelmIO: the flat C interface of the survey data input/output library.
 *
 * Ownership: strings and arrays handed out are fresh heap copies that the
 * caller frees with free() or VELMIO_free(); sensor handles are released by
 * their family's Close. Error codes are 0 for success and seven-digit codes
 * otherwise. This header compiles as C99 and C++. */
#ifndef VELMIO_VELMIO_H
#define VELMIO_VELMIO_H

#include <velmio/export.h>
#include <velmio/encoding.h>
#include <velmio/time_conversions.h>
#include <velmio/paths.h>

#endif
