// What durability costs: replacing a file with and without pushing it and
// its directory to the disk, and creating a data file (whose Close syncs).
// The figures depend on the disk far more than on the code.
#include <velmio/data_file.hpp>

#include "platform/durable_replace.h"
#include "platform/files.h"
#include "platform/stdio_file.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

// A scratch directory beside the other temporary files, on the disk the
// tests use.
struct Scratch {
    std::filesystem::path dir;
    Scratch() {
        std::string pattern = (std::filesystem::temp_directory_path() / "velmio-bench-XXXXXX").string();
        dir = ::mkdtemp(pattern.data());
    }
    ~Scratch() { std::filesystem::remove_all(dir); }
    std::wstring file(const char *name) const { return (dir / name).wstring(); }
};

int writeBytes(std::FILE *out, const std::string &bytes) {
    return velmio::platform::writeFile(bytes.data(), 1, bytes.size(), out) == bytes.size() ? 0 : EIO;
}

void BM_ReplaceFileDurable(benchmark::State &state) {
    Scratch scratch;
    const std::wstring target = scratch.file("target");
    const std::string bytes(static_cast<std::size_t>(state.range(0)), 'x');
    for (auto _ : state)
        if (velmio::platform::replaceFile(target, [&](std::FILE *out) { return writeBytes(out, bytes); }) != 0)
            state.SkipWithError("replace failed");
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ReplaceFileDurable)->Arg(4 << 10)->Arg(1 << 20)->UseRealTime();

// The same steps without the two syncs: what a replacement cost before.
void BM_ReplaceFileUnsynced(benchmark::State &state) {
    Scratch scratch;
    const std::wstring target = scratch.file("target");
    const std::string bytes(static_cast<std::size_t>(state.range(0)), 'x');
    for (auto _ : state) {
        const std::wstring temporary = velmio::platform::temporarySibling(target.c_str());
        std::FILE *out = velmio::platform::openFile(temporary.c_str(), "wb");
        if (!out || writeBytes(out, bytes) != 0 || velmio::platform::closeFile(out) != 0 ||
            !velmio::platform::renameFile(temporary.c_str(), target.c_str()))
            state.SkipWithError("replace failed");
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ReplaceFileUnsynced)->Arg(4 << 10)->Arg(1 << 20)->UseRealTime();

dataValue intValue(int i) {
    dataValue v;
    v.d = 0;
    v.i = i;
    return v;
}

// A data file of range(0) records, created and closed (synced) each time.
void BM_DataFileCreateAndClose(benchmark::State &state) {
    Scratch scratch;
    const std::wstring dir = scratch.dir.wstring();
    for (auto _ : state) {
        long status = 0;
        VELMDataFile f(dir, L"Depths", L"depths", 9, ACCESS_CREATE, 1, status);
        f.AddAttribute(DT_INT, L"n");
        for (int i = 0; i < state.range(0); ++i) f.WriteRecord(100.0 + i, 0, {intValue(i)}, {});
        if (status != 0 || f.Close() != 0) state.SkipWithError("create failed");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_DataFileCreateAndClose)->Arg(10)->Arg(100000)->UseRealTime();

}  // namespace
