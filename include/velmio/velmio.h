/* VelmIO: the flat C interface of the survey data input/output library.
 *
 * Ownership: strings and arrays handed out are fresh heap copies that the
 * caller frees with free() or VELMIO_free(); sensor handles are released by
 * their family's Close. Error codes are 0 for success and seven-digit codes
 * otherwise. This header compiles as C99 and C++. */
#ifndef VELMIO_VELMIO_H
#define VELMIO_VELMIO_H

#include <velmio/export.h>

/* Line data encoding and time */
#include <velmio/encoding.h>
#include <velmio/time_conversions.h>

/* Line directory store and the sensor families */
#include <velmio/linestore.h>
#include <velmio/simple_sensor.h>
#include <velmio/navigation.h>
#include <velmio/observed_depths.h>
#include <velmio/slant_range.h>
#include <velmio/side_scan.h>
#include <velmio/processed_depths.h>
#include <velmio/tpe.h>

/* Verifying lines */
#include <velmio/line_check.h>

/* Vessel configuration queries, sound velocity profile files, geodesy */
#include <velmio/vessel_queries.h>
#include <velmio/svp_files.h>
#include <velmio/geodesy.h>

/* Library services */
#include <velmio/paths.h>
#include <velmio/log_file.h>
#include <velmio/console.h>
#include <velmio/file_info.h>

#endif
