// Fails every file operation of a writer in turn: a first run counts the
// operations, then the writer runs again from the same starting state once
// per operation and error, with that one operation failing.
#ifndef VELMIO_TESTS_FAULTS_FAULT_SWEEP_H
#define VELMIO_TESTS_FAULTS_FAULT_SWEEP_H

#include <cstdint>
#include <functional>

namespace velmio::test {

// prepare restores the starting state, run performs the writer and returns
// its code, judge checks the code and the files it left. The run without a
// fault must return 0, a failed one a code with a sentence in the message
// bundle. Returns the number of operations failed; every sweep
// adds to the total that the program prints at its end.
std::uint64_t sweepFaults(const std::function<void()> &prepare, const std::function<int()> &run,
                          const std::function<void(int code)> &judge);

}  // namespace velmio::test

#endif
