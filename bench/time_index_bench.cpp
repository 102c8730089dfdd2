// Costs of the time index and the scaled encodings on the write path.
#include <velmio/encoding.h>

#include "linestore/time_index.h"

#include <benchmark/benchmark.h>

static void BM_TimeIndexAppend(benchmark::State &state) {
    for (auto _ : state) {
        velmio::TimeIndex idx;
        for (std::int64_t i = 0; i < state.range(0); ++i) idx.append(static_cast<int>(i), static_cast<std::uint32_t>(i));
        benchmark::DoNotOptimize(idx.entryCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_TimeIndexAppend)->Arg(1 << 10)->Arg(1 << 20);

// Mapping must cost the same near the start and near the end of a long line.
static void BM_TimeIndexMap(benchmark::State &state) {
    velmio::TimeIndex idx;
    const std::uint32_t n = 10000000;
    for (std::uint32_t i = 1; i <= n; ++i) idx.append(0, i);
    const std::uint32_t record = static_cast<std::uint32_t>(state.range(0));
    std::uint32_t offset = 0;
    for (auto _ : state) {
        idx.map(record, offset);
        benchmark::DoNotOptimize(offset);
    }
}
BENCHMARK(BM_TimeIndexMap)->Arg(10)->Arg(10000000);

static void BM_EncodeTime(benchmark::State &state) {
    double t = 1000.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(TOVO_EncodeTime(t, 16, 1000));
        t += 0.001;
    }
}
BENCHMARK(BM_EncodeTime);
