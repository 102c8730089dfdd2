// The block reader's bytes for the library's own bulk reads: the next bytes
// of the current record in place, without the copy BlockIOFread makes.
#ifndef VELMIO_DATAFILE_BLOCK_READER_H
#define VELMIO_DATAFILE_BLOCK_READER_H

#include <velmio/block_reader.hpp>

namespace velmio {

// The next byteCount bytes of the current record, the read position moved
// past them; null (nothing moved) when the cache is off or fewer are left.
// Valid until the reader next loads a block.
const unsigned char *takeBlockBytes(VELMBlockReader *handle, unsigned int byteCount);

}  // namespace velmio

#endif
