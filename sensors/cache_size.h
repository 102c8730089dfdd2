// The block reader's cache size that the environment asks for.
#ifndef VELMIO_SENSORS_CACHE_SIZE_H
#define VELMIO_SENSORS_CACHE_SIZE_H

namespace velmio {

// VelmIOCacheSize as a plain decimal: unset, "0", text and negative numbers
// give 0; a number too large for the type saturates (and is then bounded by
// the line's profile count).
unsigned int cacheSizeFromEnvironment();

}  // namespace velmio

#endif
