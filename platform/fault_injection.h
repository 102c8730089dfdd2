// A seam at the file system boundary through which tests make the Nth file
// operation of a kind fail with a chosen errno (ENOSPC, EIO, EACCES...), so
// that every failure path of every writer can be walked in turn. Every file
// operation of the library asks injectFault before doing its work; unarmed,
// that costs one relaxed atomic load.
#ifndef VELMIO_PLATFORM_FAULT_INJECTION_H
#define VELMIO_PLATFORM_FAULT_INJECTION_H

#include <cstdint>

namespace velmio::platform {

enum class FileOp { Open, Read, Write, Seek, Flush, Sync, Close, Rename, Count };

// True when the armed fault fires for this operation; errno is then set to
// the chosen error and the caller must fail as the real operation would.
bool injectFault(FileOp op) noexcept;

// Arms the seam: the nth operation of kind op from now on (1 = the next one)
// fails with error. Counting starts afresh for every kind at each arm.
void armFault(FileOp op, std::uint64_t nth, int error) noexcept;
// Counts operations without failing any (for a first pass that learns how
// many operations a writer makes).
void countFaultableOperations() noexcept;
void disarmFaults() noexcept;
// Operations of kind op seen since the last arm or count.
std::uint64_t faultableOperations(FileOp op) noexcept;

}  // namespace velmio::platform

#endif
