#include <velmio/export.h>

#include <cstdlib>

extern "C" VELMIO_API void VELMIO_free(void *memory) { std::free(memory); }
