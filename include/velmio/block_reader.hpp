// The block reader: a read-ahead cache of profile records. Instead of a seek
// and several small reads per profile it loads the bytes of a run of
// consecutive profiles (the cache size) with one seek and one read, and
// serves the reads from memory. The total propagated error family switches
// it on when the environment variable VelmIOCacheSize holds a positive
// decimal number of profiles.
//
// These are C++ functions (not extern "C"): their generic names carry the
// reader's own types in their mangled symbols and so cannot meet another
// library's initialise or destroy.
//
// A record is a profile: its bytes run from its time index offset to the
// next profile's (the last one to the end of the data file). Offsets that
// are not ascending or lie beyond the file make readRecord fail; nothing is
// allocated beyond the size of the data file.
#ifndef VELMIO_BLOCK_READER_HPP
#define VELMIO_BLOCK_READER_HPP

#include <velmio/export.h>

// Opaque; made by initialise, released by destroy.
struct VELMBlockReader;

// A reader for the sensor's data file and time index, holding up to
// cacheSize records per block (0: off; bounded by the time index's record
// count). 0; -1 for a null sensor or handle; 5000009 out of memory.
VELMIO_API int initialise(TOVO_Sensor *sensor, unsigned int cacheSize, VELMBlockReader **handle);
// Frees everything; null is ignored.
VELMIO_API void destroy(VELMBlockReader *handle);
// Changes the cache size and forgets the block. 0, 5000009 (the reader is
// then off), -1 for a null handle.
VELMIO_API int setCacheSize(VELMBlockReader *handle, unsigned int cacheSize);
// The cache size; 0 for a null handle.
VELMIO_API unsigned int getCacheSize(const VELMBlockReader *handle);
// First and last record of the block (both 0 when none, or for a null handle).
VELMIO_API void getStartEndRecordNumber(const VELMBlockReader *handle, unsigned int *first, unsigned int *last);
// Forgets the block.
VELMIO_API void clearBuffer(VELMBlockReader *handle);
// Makes record n current, planning the block that starts at n when n is not
// held. A record's bytes are read when it is first made current: with the
// rest of the block when n follows the record requested before, else alone
// (a random read costs one record's bytes, not the block's). 0; 1 when the
// cache is off; the time index's code when n does not map (5000036,
// 5000037); 5000039 for offsets that are not ascending or lie beyond the
// file; 5000009.
VELMIO_API int readRecord(VELMBlockReader *handle, unsigned int recordNumber);
// readRecord of the record after the last one requested (record 1 at first).
VELMIO_API int readRecordSeq(VELMBlockReader *handle);
// Copies the next byteCount bytes of the current record: 1, or 0 (cache off,
// or fewer bytes left in the record; nothing is copied).
VELMIO_API int BlockIOFread(VELMBlockReader *handle, void *destination, unsigned int byteCount);
// Moves the read position within the current record to offset (from the
// record's start, or from the read position when relative is not 0): 1, or
// 0 (cache off, or not within the record's bytes).
VELMIO_API int setByteOffset(VELMBlockReader *handle, long offset, int relative);

#endif
