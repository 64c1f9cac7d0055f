// Registration, read-out and writes.
#include <benchmark/benchmark.h>

#include <chrono>

#include "allocations.h"
#include "panel.h"

namespace {

/** Keys of one word, three stations, every seventh word, out of order. */
QList<KEY_ADDRESS> scatteredKeys(int count)
{
    QList<KEY_ADDRESS> keys;
    for (int i = 0; i < count; ++i) {
        const int shuffled = int(qint64(i) * 7919 % count);
        keys.append(panel::key(shuffled % 3, "D_W", shuffled / 3 * 7 % 32768, 1));
    }
    return keys;
}

void Register(benchmark::State &state)
{
    const QList<KEY_ADDRESS> keys = scatteredKeys(int(state.range(0)));
    std::size_t held = 0;
    for (auto _ : state) {
        panel::start(64);
        const std::size_t before = heapBytes();
        const auto begin = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(intf_addrMerge(keys));
        const auto end = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
        held = heapBytes() - before;
    }
    state.counters["heap"] = double(held);
}

void GetData(benchmark::State &state)
{
    panel::start(64);
    panel::fillCache(int(state.range(1)));
    const int words = int(state.range(0));
    unsigned char out[128];
    for (auto _ : state) {
        intf_getData(1000, QLatin1String("N_W"), 500, words, out);
        benchmark::ClobberMemory();
    }
}

void SetData(benchmark::State &state)
{
    panel::start(64);
    panel::fillCache(50000);
    unsigned char value[2] = {0, 0};
    const int queued = int(state.range(0));
    for (int i = 0; i < queued; ++i)
        intf_setData(1, QLatin1String("D_W"), i, 1, value, 0);
    // A range that waits nowhere: the queue is searched from end to end.
    int addr = 1000;
    for (auto _ : state) {
        value[0] ^= 1;
        if (queued == 0) {
            intf_setData(1, QLatin1String("D_W"), 1000, 1, value, 0);
        } else {
            intf_setData(1, QLatin1String("D_W"), addr, 1, value, 0);
            addr = 1000 + (addr - 999) % 1000;
        }
    }
}

}  // namespace

BENCHMARK(Register)->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(
    benchmark::kMicrosecond);
BENCHMARK(GetData)
    ->ArgNames({"words", "areas"})
    ->Args({1, 50000})
    ->Args({64, 100})
    ->Args({64, 50000});
BENCHMARK(SetData)->ArgName("queued")->Arg(0)->Arg(512);
