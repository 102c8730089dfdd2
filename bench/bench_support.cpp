#include "bench_support.h"

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <stdexcept>

namespace fs = std::filesystem;

namespace velmio::bench {

namespace {
struct Scratch {
    std::string path;
    Scratch() {
        std::string pattern = (fs::temp_directory_path() / "velmio-bench-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
        path = pattern;
    }
    ~Scratch() {
        std::error_code ec;
        fs::remove_all(path, ec);
    }
};

struct FileClose {
    void operator()(std::FILE *f) const { std::fclose(f); }
};

double threadCpuSeconds() {
    timespec t{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// A value from /proc/self/status, in bytes.
std::size_t statusBytes(const char *key) {
    std::ifstream in("/proc/self/status");
    std::string line;
    const std::string prefix = std::string(key) + ":";
    while (std::getline(in, line))
        if (line.compare(0, prefix.size(), prefix) == 0) return std::stoull(line.substr(prefix.size())) * 1024;
    return 0;
}
}  // namespace

void Stopwatch::start() {
    cpuBegin_ = threadCpuSeconds();
    begin_ = std::chrono::steady_clock::now();
}

void Stopwatch::stop() {
    seconds_ += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin_).count();
    cpuSeconds_ += threadCpuSeconds() - cpuBegin_;
}

const std::string &scratchDir() {
    static Scratch scratch;
    return scratch.path;
}

std::string freshDir(const std::string &name) {
    const fs::path dir = fs::path(scratchDir()) / name;
    std::error_code ec;
    fs::remove_all(dir, ec);
    fs::create_directories(dir);
    return dir.string();
}

std::wstring widen(const std::string &text) { return std::wstring(text.begin(), text.end()); }

std::size_t fileSize(const std::string &path) {
    std::error_code ec;
    const auto size = fs::file_size(path, ec);
    return ec ? 0 : static_cast<std::size_t>(size);
}

std::vector<unsigned char> fileBytes(const std::string &path, std::size_t maxBytes) {
    std::vector<unsigned char> bytes(std::min(fileSize(path), maxBytes));
    std::unique_ptr<std::FILE, FileClose> f(std::fopen(path.c_str(), "rb"));
    if (!f || std::fread(bytes.data(), 1, bytes.size(), f.get()) != bytes.size())
        throw std::runtime_error("cannot read " + path);
    return bytes;
}

void warm(const std::string &path) {
    std::unique_ptr<std::FILE, FileClose> f(std::fopen(path.c_str(), "rb"));
    if (!f) return;
    std::vector<char> chunk(1 << 20);
    while (std::fread(chunk.data(), 1, chunk.size(), f.get()) == chunk.size()) {
    }
}

void compare(benchmark::State &state, double itemsPerPass, const Pass &velmio, const Pass &raw) {
    double bestVelmio = std::numeric_limits<double>::infinity();
    double bestRaw = bestVelmio, bestVelmioCpu = bestVelmio, bestRawCpu = bestVelmio;
    double velmioSum = 0, rawSum = 0;
    for (auto _ : state) {
        Stopwatch v;
        velmioSum = velmio(v);
        Stopwatch r;
        rawSum = raw(r);
        state.SetIterationTime(v.seconds());
        bestVelmio = std::min(bestVelmio, v.seconds());
        bestRaw = std::min(bestRaw, r.seconds());
        bestVelmioCpu = std::min(bestVelmioCpu, v.cpuSeconds());
        bestRawCpu = std::min(bestRawCpu, r.cpuSeconds());
    }
    benchmark::DoNotOptimize(velmioSum + rawSum);
    if (velmioSum != 0 && rawSum != 0 && std::fabs(velmioSum - rawSum) > 1e-9 * std::fabs(rawSum))
        state.SetLabel("checksums differ");
    state.SetItemsProcessed(static_cast<std::int64_t>(itemsPerPass) * state.iterations());
    state.counters["velmio_per_s"] = itemsPerPass / bestVelmio;
    state.counters["raw_per_s"] = itemsPerPass / bestRaw;
    state.counters["ratio"] = bestRaw / bestVelmio;
    state.counters["cpu_ratio"] = bestRawCpu / bestVelmioCpu;
}

void best(benchmark::State &state, double itemsPerPass, const Pass &velmio) {
    double fastest = std::numeric_limits<double>::infinity();
    for (auto _ : state) {
        Stopwatch v;
        benchmark::DoNotOptimize(velmio(v));
        state.SetIterationTime(v.seconds());
        fastest = std::min(fastest, v.seconds());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(itemsPerPass) * state.iterations());
    state.counters["velmio_per_s"] = itemsPerPass / fastest;
}

benchmark::internal::Benchmark *passes(benchmark::internal::Benchmark *b, std::size_t records) {
    b->UseManualTime()->Unit(benchmark::kMillisecond);
    if (records < 1000000) return b->MinTime(0.5);
    const char *count = std::getenv("VELMIO_BENCH_PASSES");
    return b->Iterations(count && std::atoi(count) > 0 ? std::atoi(count) : 3);
}

std::size_t residentBytes() { return statusBytes("VmRSS"); }
std::size_t residentFileBytes() { return statusBytes("RssFile"); }

void resetPeak() {
    // Writing 5 resets the peak resident size to the current one.
    std::ofstream("/proc/self/clear_refs") << "5";
}

std::size_t peakBytes() { return statusBytes("VmHWM"); }

}  // namespace velmio::bench
