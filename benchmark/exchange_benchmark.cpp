// One exchange: get the frame, hand over a good reply. Against it the bare loop that any driver
// needs: decode the reply's characters, sum them, store the words.
#include <benchmark/benchmark.h>

#include "allocations.h"
#include "panel.h"

namespace {

int nibble(unsigned char character)
{
    return character <= '9' ? character - '0' : character - 'A' + 10;
}

void BareLoop(benchmark::State &state)
{
    const int words = int(state.range(0));
    const QByteArray reply = panel::readReply(words, 0x1234);
    quint16 stored[panel::WordsPerBlock];
    for (auto _ : state) {
        const auto *characters = reinterpret_cast<const unsigned char *>(reply.constData()) + 2;
        unsigned sum = 0;
        for (int k = 0; k < words; ++k, characters += 4) {
            sum += characters[0] + characters[1] + characters[2] + characters[3];
            stored[k] = quint16(nibble(characters[0]) << 4 | nibble(characters[1]) |
                                nibble(characters[2]) << 12 | nibble(characters[3]) << 8);
        }
        benchmark::DoNotOptimize(sum);
        benchmark::DoNotOptimize(stored);
        benchmark::ClobberMemory();
    }
}

/** Runs exchanges that read `words` words each; `blocks` of them in turn. */
void runExchanges(benchmark::State &state, int words, int blocks, bool changed)
{
    const QByteArray replies[] = {panel::readReply(words, 0x1234), panel::readReply(words, 0x5678)};
    unsigned turn = 0;
    const auto reply = [&] { return replies[changed ? turn++ / unsigned(blocks) & 1 : 0]; };
    // The first rounds fill the cache and the lists' spare room.
    for (int i = 0; i < 4 * blocks + 16; ++i)
        panel::exchange(reply());
    const std::size_t before = allocationCount();
    for (auto _ : state) {
        if (!panel::exchange(reply()))
            state.SkipWithError("exchange failed");
    }
    state.counters["allocations"] =
        benchmark::Counter(double(allocationCount() - before), benchmark::Counter::kAvgIterations);
}

void Exchange(benchmark::State &state)
{
    const int words = int(state.range(0));
    panel::start(words);
    panel::fillCache(int(state.range(1)) - words);
    intf_addrMerge({panel::key(1, "D_W", 0, words)});
    runExchanges(state, words, 1, state.range(2) != 0);
}

/** All areas of the cache are monitored and read block by block. */
void ExchangeInTurn(benchmark::State &state)
{
    panel::start(panel::WordsPerBlock);
    const int blocks = qMax(1, int(state.range(0)) / panel::WordsPerBlock);
    const int blocksPerStation = panel::AreaWords / panel::WordsPerBlock;
    QList<KEY_ADDRESS> keys;
    for (int i = 0; i < blocks; ++i)
        keys.append(panel::key(i / blocksPerStation, "N_W",
                               i % blocksPerStation * panel::WordsPerBlock, panel::WordsPerBlock));
    intf_addrMerge(keys);
    runExchanges(state, panel::WordsPerBlock, blocks, state.range(1) != 0);
}

}  // namespace

BENCHMARK(BareLoop)->Arg(64)->Arg(127);
BENCHMARK(Exchange)
    ->ArgNames({"words", "areas", "changed"})
    ->ArgsProduct({{64, 127}, {128, 5000, 50000}, {0, 1}});
BENCHMARK(ExchangeInTurn)
    ->ArgNames({"areas", "changed"})
    ->ArgsProduct({{128, 5000, 50000}, {0, 1}});
