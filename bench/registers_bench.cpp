#include "registers/aggregatedregister.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <random>
#include <vector>

namespace corvina
{
namespace
{

constexpr std::size_t BOARDS = 500000;
constexpr std::uint32_t BUCKETS = 524288;
constexpr std::uint32_t HEURISTICS = 0x40, HEUR_PARAMS = 0x1234;

using TBoard = std::array<std::uint8_t, 64>;

/// Boards with a dozen figures each, as they come in an ending.
std::vector<TBoard> MakeBoards(unsigned nSeed, std::size_t nCount)
{
    constexpr std::uint8_t aFigures[] = {0x41, 0x81, 0x42, 0x82, 0x44, 0x84,
                                         0x48, 0x88, 0x4c, 0x8c, 0x50, 0x90};
    std::mt19937 random(nSeed);
    std::vector<TBoard> vecBoards(nCount);
    for (TBoard& board : vecBoards) {
        for (const std::uint8_t figure : aFigures)
            board[random() % 64] = figure;
    }
    return vecBoards;
}

struct TFilledRegister
{
    std::vector<TBoard> m_vecKnown = MakeBoards(1, BOARDS), m_vecUnknown = MakeBoards(2, BOARDS);
    TAggregatedTemporaryChessboardRegister m_register;

    explicit TFilledRegister(bool bDoubtful)
    {
        m_register.SetBuckets(BUCKETS, false);
        for (std::size_t i = 0; i < BOARDS; ++i) {
            m_register.InsertFromFile(5, m_vecKnown[i].data(), i % 2);
            if (bDoubtful && i % 2)
                m_register.InsertDoubtful(5, m_vecUnknown[i].data(), HEURISTICS, HEUR_PARAMS, true);
        }
    }
};

template <bool bDoubtful>
TFilledRegister& Filled()
{
    static TFilledRegister filled(bDoubtful);
    return filled;
}

void BenchHash(benchmark::State& state)
{
    const std::vector<TBoard> vecBoards = MakeBoards(3, 1024);
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(GetHash(vecBoards[i++ % 1024].data()));
}
BENCHMARK(BenchHash)->Name("RegisterHash");

/// Each thread walks through the boards from a place of its own.
template <bool bKnown, bool bDoubtful>
void BenchFind(benchmark::State& state)
{
    TFilledRegister& filled = Filled<bDoubtful>();
    const std::vector<TBoard>& vecBoards = bKnown ? filled.m_vecKnown : filled.m_vecUnknown;
    std::size_t i = static_cast<std::size_t>(state.thread_index()) * BOARDS / 3;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            filled.m_register.FindPosition(5, vecBoards[i].data(), HEURISTICS, HEUR_PARAMS));
        i = i + 1 < BOARDS ? i + 1 : 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BenchFind<true, false>)->Name("RegisterHit")->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BenchFind<false, false>)->Name("RegisterMiss")->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BenchFind<false, true>)->Name("RegisterMiss/doubtful")->ThreadRange(1, 2)->UseRealTime();

/// New boards all the time; the register is made anew when they have run out.
void BenchInsert(benchmark::State& state)
{
    static const std::vector<TBoard> vecBoards = MakeBoards(4, BOARDS);
    static std::unique_ptr<TAggregatedTemporaryChessboardRegister> pRegister;
    if (state.thread_index() == 0) {
        pRegister = std::make_unique<TAggregatedTemporaryChessboardRegister>();
        pRegister->SetBuckets(BUCKETS, false);
    }
    const auto nThreads = static_cast<std::size_t>(state.threads());
    std::size_t i = static_cast<std::size_t>(state.thread_index());
    for (auto _ : state) {
        pRegister->InsertFromFile(5, vecBoards[i].data(), false);
        i += nThreads;
    }
    state.SetItemsProcessed(state.iterations());
    if (state.thread_index() == 0)
        pRegister.reset();
}
BENCHMARK(BenchInsert)
    ->Name("RegisterInsert")
    ->Iterations(BOARDS / 2)
    ->ThreadRange(1, 2)
    ->UseRealTime();

} // namespace
} // namespace corvina
