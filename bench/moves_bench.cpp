#include "chess/fen.h"
#include "chess/linecontext.h"

#include <benchmark/benchmark.h>

namespace corvina
{
namespace
{

/// A middle game position with all kinds of figures, and room for a child.
struct TPosition
{
    TLineContext m_context{5};
    TChessboard m_board;

    explicit TPosition(const char* pFen = "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R",
                       std::uint16_t nHalfMoves = 5)
    {
        ReadFen(m_board, pFen);
        m_context.m_pRootBoard = &m_board;
        m_board.m_pThread = &m_context;
        m_board.CheckStartPosition(nHalfMoves, true);
    }
};

/// Black in check by a rook, not mated: the king's squares, captures and interpositions are all
/// looked at.
constexpr const char* MATED = "R5k1/5ppp/8/8/8/8/8/6K1";

template <bool (TChessboard::*ATTACKED)(std::int8_t, std::int8_t) const>
void BenchAttacked(benchmark::State& state)
{
    const TPosition position;
    for (auto _ : state) {
        for (std::int8_t row = 0; row < 8; ++row) {
            for (std::int8_t file = 0; file < 8; ++file)
                benchmark::DoNotOptimize((position.m_board.*ATTACKED)(file, row));
        }
    }
    state.SetItemsProcessed(state.iterations() * 64);
}
BENCHMARK(BenchAttacked<&TChessboard::IsAttackedByWhite>)->Name("IsAttackedByWhite/64");
BENCHMARK(BenchAttacked<&TChessboard::IsAttackedByBlack>)->Name("IsAttackedByBlack/64");

void BenchPinned(benchmark::State& state)
{
    const TPosition position;
    for (auto _ : state) {
        for (std::int8_t row = 0; row < 8; ++row) {
            for (std::int8_t file = 0; file < 8; ++file)
                benchmark::DoNotOptimize(position.m_board.IsPinnedToBlackKing(file, row));
        }
    }
    state.SetItemsProcessed(state.iterations() * 64);
}
BENCHMARK(BenchPinned)->Name("IsPinnedToBlackKing/64");

void BenchKingChecker(benchmark::State& state)
{
    const TPosition position;
    for (auto _ : state) {
        for (std::int8_t row = 0; row < 8; ++row) {
            for (std::int8_t file = 0; file < 8; ++file)
                benchmark::DoNotOptimize(position.m_board.GetBlackKingChecker(file, row));
        }
    }
    state.SetItemsProcessed(state.iterations() * 64);
}
BENCHMARK(BenchKingChecker)->Name("GetBlackKingChecker/64");

void BenchEscape(benchmark::State& state)
{
    const TPosition position(MATED, 4);
    for (auto _ : state)
        benchmark::DoNotOptimize(position.m_board.CanBlackEscapeCheck());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BenchEscape)->Name("CanBlackEscapeCheck/mate");

void BenchCopy(benchmark::State& state)
{
    TPosition position;
    for (auto _ : state)
        benchmark::DoNotOptimize(&position.m_context.MakeChild(position.m_board));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BenchCopy)->Name("Copy");

void BenchGenerate(benchmark::State& state)
{
    const TPosition position;
    TMoveList moves;
    for (auto _ : state) {
        benchmark::DoNotOptimize(position.m_board.GenerateWhiteMoves(moves.data()));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BenchGenerate)->Name("GenerateWhiteMoves");

template <bool (TChessboard::*MAKE)(TMove*)>
void BenchMake(benchmark::State& state)
{
    TPosition position;
    TMoveList moves;
    const int nMoves = position.m_board.GenerateWhiteMoves(moves.data());
    for (auto _ : state) {
        for (int i = 0; i < nMoves; ++i)
            benchmark::DoNotOptimize(
                (position.m_context.MakeChild(position.m_board).*MAKE)(&moves[i]));
    }
    state.SetItemsProcessed(state.iterations() * nMoves);
}
BENCHMARK(BenchMake<&TChessboard::MakeWhiteMove>)->Name("MakeWhiteMove/all");
BENCHMARK(BenchMake<&TChessboard::MakeWhiteMoveLight>)->Name("MakeWhiteMoveLight/all");

} // namespace
} // namespace corvina
