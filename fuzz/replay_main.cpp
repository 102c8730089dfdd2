// Replay driver of the fuzz targets, used when they are not built with
// libFuzzer, so that every target runs as an ordinary test.
//
//   <target>                    the seeds, truncations of each seed at spread
//                               offsets, then VELMIO_FUZZ_ITERATIONS
//                               deterministic mutations of each seed (default:
//                               4000 shared among the seeds)
//   <target> FILE|DIR...        replays the given inputs (e.g. a libFuzzer corpus)
//   <target> --write-seeds DIR  writes the seeds as files, a starting corpus
//
// A crash, a sanitizer report, an input running longer than VELMIO_FUZZ_TIMEOUT
// seconds (default 60) or an allocation above VELMIO_FUZZ_MALLOC_LIMIT_MB
// (default 512; plain builds) stops the run; the input is saved as
// "crash-<target>-<n>.bin" in the working directory, to be replayed with the
// second form. The library's diagnostics on standard output are discarded
// unless VELMIO_FUZZ_VERBOSE is set.
#include "fuzz_support.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace fs = std::filesystem;
using velmio::fuzz::Bytes;

namespace {

// Mutations of all seeds together when VELMIO_FUZZ_ITERATIONS (mutations
// per seed) is not set: about 1 ms an input keeps a default run near 3 s in
// a plain build and under 10 s with the sanitizers on a loaded machine.
constexpr unsigned long kDefaultMutations = 4000;
constexpr unsigned kTruncations = 32;

// ---- what is running, for the crash report -------------------------------

const std::uint8_t *g_input = nullptr;
std::size_t g_size = 0;
char g_label[96] = "";
char g_target[64] = "fuzz";
int g_stderr = 2;
volatile std::sig_atomic_t g_reported = 0;

void writeAll(int fd, const void *data, std::size_t size) {
    const char *p = static_cast<const char *>(data);
    while (size) {
        const ssize_t n = write(fd, p, size);
        if (n <= 0) return;
        p += n, size -= static_cast<std::size_t>(n);
    }
}

void say(const char *text) { writeAll(g_stderr, text, std::strlen(text)); }

// Saves the running input and names it; safe inside a signal handler.
void reportCurrentInput(const char *why) {
    if (g_reported) return;
    g_reported = 1;
    say("\n*** ");
    say(g_target);
    say(": ");
    say(why);
    say(" while running ");
    say(g_label[0] ? g_label : "(no input)");
    say("\n");
    if (!g_input) return;
    char path[200];
    std::snprintf(path, sizeof path, "crash-%s-%ld.bin", g_target, static_cast<long>(getpid()));
    const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd >= 0) {
        writeAll(fd, g_input, g_size);
        close(fd);
        say("*** input saved as ");
        say(path);
        say("\n");
    }
}

void printStack() {
    void *frames[64];
    const int n = backtrace(frames, 64);
    backtrace_symbols_fd(frames, n, g_stderr);
}

extern "C" void onSignal(int sig) {
    reportCurrentInput(sig == SIGALRM ? "timeout" : strsignal(sig));
    printStack();
    signal(sig, SIG_DFL);
    if (sig == SIGALRM) _exit(70);
    raise(sig);
}

unsigned long envNumber(const char *name, unsigned long fallback) {
    const char *text = std::getenv(name);
    if (!text || !*text) return fallback;
    char *end = nullptr;
    const unsigned long value = std::strtoul(text, &end, 10);
    return *end ? fallback : value;
}

unsigned g_timeout = 60;

void runOne(const std::uint8_t *data, std::size_t size, const char *label) {
    g_input = data, g_size = size;
    std::snprintf(g_label, sizeof g_label, "%s (%zu bytes)", label, size);
    alarm(g_timeout);
    LLVMFuzzerTestOneInput(data, size);
    alarm(0);
    g_input = nullptr, g_size = 0, g_label[0] = 0;
}

// ---- deterministic mutations ---------------------------------------------

// splitmix64: small, fast and the same on every platform.
struct Rng {
    std::uint64_t state;
    std::uint64_t next() {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    std::size_t below(std::size_t n) { return n ? static_cast<std::size_t>(next() % n) : 0; }
};

const std::uint8_t kBytes[] = {0x00, 0xFF, 0x7F, 0x80};
const std::uint32_t kWords[] = {0x00000000u, 0xFFFFFFFFu, 0x7FFFFFFFu, 0x80000000u,
                                0x00000001u, 0x00000200u, 0x00010000u, 0x40000000u};

void mutateOnce(Bytes &b, Rng &rng) {
    if (b.empty()) {
        b.push_back(static_cast<std::uint8_t>(rng.next()));
        return;
    }
    switch (rng.below(8)) {
    case 0:  // one bit
        b[rng.below(b.size())] ^= static_cast<std::uint8_t>(1u << rng.below(8));
        break;
    case 1:  // a byte to an edge value
        b[rng.below(b.size())] = kBytes[rng.below(4)];
        break;
    case 2:  // truncation
        b.resize(rng.below(b.size()));
        break;
    case 3: {  // a run duplicated in place
        const std::size_t at = rng.below(b.size());
        const std::size_t n = 1 + rng.below(std::min<std::size_t>(64, b.size() - at));
        const Bytes run(b.begin() + static_cast<long>(at), b.begin() + static_cast<long>(at + n));
        b.insert(b.begin() + static_cast<long>(at), run.begin(), run.end());
        break;
    }
    case 4: {  // a run deleted
        const std::size_t at = rng.below(b.size());
        const std::size_t n = 1 + rng.below(std::min<std::size_t>(64, b.size() - at));
        b.erase(b.begin() + static_cast<long>(at), b.begin() + static_cast<long>(at + n));
        break;
    }
    case 5:    // an aligned big-endian word to an edge value: counts, lengths, times
    case 6: {  // or nudged by one
        if (b.size() < 4) break;
        const std::size_t at = rng.below(b.size() / 4) * 4;
        std::uint32_t w = (std::uint32_t(b[at]) << 24) | (std::uint32_t(b[at + 1]) << 16) |
                          (std::uint32_t(b[at + 2]) << 8) | b[at + 3];
        w = rng.below(2) && w ? w + (rng.below(2) ? 1u : 0xFFFFFFFFu) : kWords[rng.below(8)];
        b[at] = static_cast<std::uint8_t>(w >> 24), b[at + 1] = static_cast<std::uint8_t>(w >> 16);
        b[at + 2] = static_cast<std::uint8_t>(w >> 8), b[at + 3] = static_cast<std::uint8_t>(w);
        break;
    }
    default:  // a random byte
        b[rng.below(b.size())] = static_cast<std::uint8_t>(rng.next());
        break;
    }
}

// Text inputs (documents, profile files) mostly die at the first broken
// byte, so most of their mutations work on lines and words instead.
bool looksLikeText(const Bytes &b) {
    std::size_t text = 0;
    for (std::uint8_t c : b) text += (c >= 0x20 || c == '\n' || c == '\r' || c == '\t');
    return !b.empty() && text * 20 >= b.size() * 19;
}

const char *const kTokens[] = {"", "0", "-1", "1e308", "-1e308", "nan", "inf", "4294967296", "2147483648",
                               "-2147483649", "99999999999999999999", "0x10", "1.5.5", "-0", ":", "-", "N", "S",
                               "2004-100 25:00:00", "9999-999 99:99:99", "2004-366 23:59:60", "31/02/2009",
                               "24:00:61", "1000", "2000.5", "-90.0000001", "180.5", "\"", "<", "&amp;",
                               "999999999999999999999999999999999999999999999999999999999999999999999999999999"
                               "999999999999999999999999999999999999999999999999999999999999999999999999999999"
                               "999999999999999999999999999999999999999999999999999999999999999999999999999999"
                               "999999999999999999999999999999999999999999999999999999999999999999999999999999"};

bool isWordByte(std::uint8_t c) { return std::isalnum(c) || c == '.' || c == '+' || c == '-' || c == ':'; }

void mutateText(Bytes &b, Rng &rng) {
    // Line starts, and the line to work on.
    std::vector<std::size_t> starts{0};
    for (std::size_t i = 0; i + 1 < b.size(); ++i)
        if (b[i] == '\n') starts.push_back(i + 1);
    const std::size_t line = rng.below(starts.size());
    const std::size_t from = starts[line];
    const std::size_t to = line + 1 < starts.size() ? starts[line + 1] : b.size();
    const Bytes text(b.begin() + static_cast<long>(from), b.begin() + static_cast<long>(to));
    switch (rng.below(4)) {
    case 0:  // the line deleted
        b.erase(b.begin() + static_cast<long>(from), b.begin() + static_cast<long>(to));
        break;
    case 1:  // the line repeated
        b.insert(b.begin() + static_cast<long>(to), text.begin(), text.end());
        break;
    case 2: {  // the line moved elsewhere
        b.erase(b.begin() + static_cast<long>(from), b.begin() + static_cast<long>(to));
        const std::size_t at = starts[rng.below(starts.size())];
        b.insert(b.begin() + static_cast<long>(std::min(at, b.size())), text.begin(), text.end());
        break;
    }
    default: {  // a word (number, name, date) replaced by an awkward one
        std::size_t at = rng.below(b.size());
        while (at < b.size() && !isWordByte(b[at])) ++at;
        if (at == b.size()) break;
        std::size_t begin = at, end = at;
        while (begin > 0 && isWordByte(b[begin - 1])) --begin;
        while (end < b.size() && isWordByte(b[end])) ++end;
        const char *token = kTokens[rng.below(sizeof kTokens / sizeof kTokens[0])];
        b.erase(b.begin() + static_cast<long>(begin), b.begin() + static_cast<long>(end));
        b.insert(b.begin() + static_cast<long>(begin), token, token + std::strlen(token));
        break;
    }
    }
}

Bytes mutate(const Bytes &seed, bool text, Rng &rng) {
    Bytes b = seed;
    const std::size_t rounds = 1 + rng.below(3);
    for (std::size_t i = 0; i < rounds; ++i) {
        if (text && !b.empty() && rng.below(4) != 0) mutateText(b, rng);
        else mutateOnce(b, rng);
    }
    return b;
}

// ---- huge allocations ----------------------------------------------------

#if defined(VELMIO_FUZZ_MALLOC_HOOK)
std::size_t g_mallocLimit = std::size_t(512) << 20;
#endif

void checkMemory() {
    struct rusage usage;
    if (getrusage(RUSAGE_SELF, &usage) != 0) return;
    // ru_maxrss is in kilobytes; the sanitizers' shadow memory sits below this.
    const unsigned long limitMb = envNumber("VELMIO_FUZZ_RSS_MB", 2048);
    if (static_cast<unsigned long>(usage.ru_maxrss) / 1024 > limitMb) {
        reportCurrentInput("resident memory above VELMIO_FUZZ_RSS_MB");
        std::abort();
    }
}

int replayPaths(int argc, char **argv) {
    std::size_t count = 0;
    auto runFile = [&](const fs::path &p) {
        const Bytes bytes = velmio::fuzz::readFile(p.string());
        runOne(bytes.data(), bytes.size(), p.string().c_str());
        checkMemory();
        ++count;
    };
    for (int i = 1; i < argc; ++i) {
        const fs::path p(argv[i]);
        std::error_code ec;
        if (fs::is_directory(p, ec)) {
            for (const auto &e : fs::recursive_directory_iterator(p, ec))
                if (e.is_regular_file()) runFile(e.path());
        } else if (fs::is_regular_file(p, ec)) {
            runFile(p);
        } else {
            std::fprintf(stderr, "%s: no such input %s\n", g_target, argv[i]);
            return 2;
        }
    }
    std::fprintf(stderr, "%s: replayed %zu inputs\n", g_target, count);
    return 0;
}

int writeSeeds(const char *dir) {
    std::error_code ec;
    fs::create_directories(dir, ec);
    const auto seeds = velmioFuzzSeeds();
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        char name[64];
        std::snprintf(name, sizeof name, "seed-%02zu.bin", i);
        velmio::fuzz::writeFile((fs::path(dir) / name).string(), seeds[i].data(), seeds[i].size());
    }
    std::fprintf(stderr, "%s: wrote %zu seeds to %s\n", g_target, seeds.size(), dir);
    return 0;
}

int runDefault() {
    const auto start = std::chrono::steady_clock::now();
    std::snprintf(g_label, sizeof g_label, "the seed builder");
    const auto seeds = velmioFuzzSeeds();
    g_label[0] = 0;
    const unsigned long iterations =
        envNumber("VELMIO_FUZZ_ITERATIONS", seeds.empty() ? 0 : kDefaultMutations / seeds.size());
    char label[80];
    std::size_t runs = 0;
    for (std::size_t s = 0; s < seeds.size(); ++s) {
        const Bytes &seed = seeds[s];
        std::snprintf(label, sizeof label, "seed %zu", s);
        runOne(seed.data(), seed.size(), label);
        for (unsigned k = 0; k < kTruncations && k < seed.size(); ++k) {
            const std::size_t at = seed.size() * k / kTruncations;
            std::snprintf(label, sizeof label, "seed %zu cut at %zu", s, at);
            runOne(seed.data(), at, label);
        }
        Rng rng{0x5EEDull * (s + 1)};
        const bool text = looksLikeText(seed);
        for (unsigned long m = 0; m < iterations; ++m) {
            const Bytes input = mutate(seed, text, rng);
            std::snprintf(label, sizeof label, "seed %zu mutation %lu", s, m);
            runOne(input.data(), input.size(), label);
        }
        runs += 1 + std::min<std::size_t>(kTruncations, seed.size()) + iterations;
        checkMemory();
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::fprintf(stderr, "%s: %zu seeds, %zu inputs, %.1f s\n", g_target, seeds.size(), runs, seconds);
    return seeds.empty() ? 1 : 0;
}

}  // namespace

// Sanitizer hooks, used only when the runtime is present: leaks fail the
// run, and an allocation no small input can justify is reported as a fault.
// The runtime finds them (and the allocation hooks below) only when they are
// visible outside the executable, which the hidden default would prevent.
#define VELMIO_FUZZ_VISIBLE __attribute__((visibility("default")))
extern "C" VELMIO_FUZZ_VISIBLE const char *__asan_default_options() {
    return "detect_leaks=1:allocator_may_return_null=0:max_allocation_size_mb=512";
}
extern "C" VELMIO_FUZZ_VISIBLE void __sanitizer_set_death_callback(void (*callback)(void)) __attribute__((weak));
extern "C" void onSanitizerDeath() { reportCurrentInput("sanitizer report"); }

#if defined(VELMIO_FUZZ_MALLOC_HOOK)
// Plain builds: every allocation passes a size check on its way to the C
// library's allocator.
extern "C" void *__libc_malloc(std::size_t);
extern "C" void *__libc_calloc(std::size_t, std::size_t);
extern "C" void *__libc_realloc(void *, std::size_t);

namespace {
void tooLarge(std::size_t size) {
    static bool inside = false;
    if (inside) return;
    inside = true;
    char text[96];
    std::snprintf(text, sizeof text, "allocation of %zu bytes", size);
    reportCurrentInput(text);
    printStack();
    std::abort();
}
}  // namespace

extern "C" VELMIO_FUZZ_VISIBLE void *malloc(std::size_t size) {
    if (size > g_mallocLimit) tooLarge(size);
    return __libc_malloc(size);
}
extern "C" VELMIO_FUZZ_VISIBLE void *calloc(std::size_t count, std::size_t size) {
    if (size && count > g_mallocLimit / size) tooLarge(count * size);
    return __libc_calloc(count, size);
}
extern "C" VELMIO_FUZZ_VISIBLE void *realloc(void *p, std::size_t size) {
    if (size > g_mallocLimit) tooLarge(size);
    return __libc_realloc(p, size);
}
#endif

int main(int argc, char **argv) {
    std::snprintf(g_target, sizeof g_target, "%s", fs::path(argv[0]).filename().string().c_str());
#if defined(VELMIO_FUZZ_MALLOC_HOOK)
    g_mallocLimit = std::size_t(envNumber("VELMIO_FUZZ_MALLOC_LIMIT_MB", 512)) << 20;
#endif
    g_timeout = static_cast<unsigned>(envNumber("VELMIO_FUZZ_TIMEOUT", 60));

    // The driver reports on its own copy of standard error; the library's
    // messages on standard output are noise here.
    g_stderr = dup(2);
    if (!std::getenv("VELMIO_FUZZ_VERBOSE")) {
        std::fflush(stdout);
        const int null = open("/dev/null", O_WRONLY);
        if (null >= 0) dup2(null, 1), close(null);
    }
    {
        void *warm[1];
        backtrace(warm, 1);  // loads the unwinder now, not inside a signal handler
    }
    if (__sanitizer_set_death_callback) {
        // The sanitizers report faults with their own stacks; the callback
        // adds the input. A separate undefined-behaviour runtime keeps a
        // callback of its own.
        __sanitizer_set_death_callback(onSanitizerDeath);
        if (void *ubsan = dlopen("libubsan.so.1", RTLD_LAZY | RTLD_NOLOAD)) {
            using SetCallback = void (*)(void (*)(void));
            if (auto set = reinterpret_cast<SetCallback>(dlsym(ubsan, "__sanitizer_set_death_callback")))
                set(onSanitizerDeath);
            dlclose(ubsan);
        }
        std::signal(SIGALRM, onSignal);
    } else {
        for (int sig : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGALRM}) std::signal(sig, onSignal);
    }

    if (argc == 3 && std::strcmp(argv[1], "--write-seeds") == 0) return writeSeeds(argv[2]);
    if (argc > 1) return replayPaths(argc, argv);
    return runDefault();
}
