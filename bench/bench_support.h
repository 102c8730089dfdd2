// What the I/O benchmarks share: one scratch directory per run, big-endian
// words, warm files, and timing a VelmIO pass beside its raw limit.
#ifndef VELMIO_BENCH_BENCH_SUPPORT_H
#define VELMIO_BENCH_BENCH_SUPPORT_H

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace velmio::bench {

// A directory made on first use and removed with everything in it at exit.
const std::string &scratchDir();
// A fresh subdirectory of the scratch directory (emptied if it exists).
std::string freshDir(const std::string &name);
std::wstring widen(const std::string &text);

// Reads a whole file so that the timed passes start from the page cache.
void warm(const std::string &path);
std::vector<unsigned char> fileBytes(const std::string &path, std::size_t maxBytes = SIZE_MAX);
std::size_t fileSize(const std::string &path);

inline std::uint32_t be32(const unsigned char *p) {
    return static_cast<std::uint32_t>(p[0]) << 24 | static_cast<std::uint32_t>(p[1]) << 16 |
           static_cast<std::uint32_t>(p[2]) << 8 | p[3];
}
inline std::int32_t sbe32(const unsigned char *p) { return static_cast<std::int32_t>(be32(p)); }
inline void putBe32(unsigned char *p, std::uint32_t v) {
    p[0] = static_cast<unsigned char>(v >> 24);
    p[1] = static_cast<unsigned char>(v >> 16);
    p[2] = static_cast<unsigned char>(v >> 8);
    p[3] = static_cast<unsigned char>(v);
}
// Round half away from zero, as the file encodings do.
inline std::int32_t nint(double x) {
    return static_cast<std::int32_t>(x < 0 ? -std::trunc(-x + 0.5) : std::trunc(x + 0.5));
}

// Wall time, and the CPU time of the calling thread: on a machine shared
// with other work the CPU time shows the cost without the waits for a core.
class Stopwatch {
public:
    void start();
    void stop();
    double seconds() const { return seconds_; }
    double cpuSeconds() const { return cpuSeconds_; }

private:
    std::chrono::steady_clock::time_point begin_;
    double cpuBegin_ = 0;
    double seconds_ = 0, cpuSeconds_ = 0;
};

// A pass does its untimed setup, times only its work on the stopwatch it is
// given, and returns a checksum of what it decoded so nothing is optimised out.
using Pass = std::function<double(Stopwatch &)>;

// Runs the VelmIO pass and the raw pass in turn each iteration (so load from
// other processes falls on both) and reports the best pass of each: counters
// "velmio_per_s", "raw_per_s" (items per second of wall time), "ratio"
// (VelmIO over raw throughput; 1 is the raw limit) and "cpu_ratio" (the same
// from CPU times). Register with UseManualTime().
// When both passes decode, their checksums must agree, else the label says so.
void compare(benchmark::State &state, double itemsPerPass, const Pass &velmio, const Pass &raw);

// The same for work without a raw counterpart: counter "velmio_per_s" only.
void best(benchmark::State &state, double itemsPerPass, const Pass &velmio);

// Manual time in milliseconds; lines of a million records or more get a
// fixed number of passes (VELMIO_BENCH_PASSES, default 3), smaller ones run
// for half a second.
benchmark::internal::Benchmark *passes(benchmark::internal::Benchmark *b, std::size_t records);

// Resident memory now and its peak since resetPeak() (Linux; 0 elsewhere):
// peakBytes() - residentBytes() taken before the work is what the work added.
std::size_t residentBytes();
std::size_t residentFileBytes();  // of mapped files
void resetPeak();
std::size_t peakBytes();

}  // namespace velmio::bench

#endif
