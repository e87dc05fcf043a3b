#ifndef CORVINA_HEURISTICS_HEURISTICBITS_H
#define CORVINA_HEURISTICS_HEURISTICBITS_H

#include <cstdint>

namespace corvina
{

/// The heuristics: bits of TChessboard::m_nHeuristics, with the names that their texts print
/// (HeuristicName).
constexpr std::uint32_t SH_AREKINGSNEAR = 0x1;
constexpr std::uint32_t SH_SWEEPINGWHITEROOK = 0x2;
constexpr std::uint32_t SH_KEEPKINGONTHEEDGE = 0x4;
constexpr std::uint32_t SH_ONECOLORPLAYPOSSIBLE = 0x8;
constexpr std::uint32_t SH_ZUGZWANGTRIANGLES = 0x10;
constexpr std::uint32_t SH_DONTLEAVEMAINDIAGONAL = 0x20;
constexpr std::uint32_t SH_KEEPKINGWITHINEXTEDGE = 0x40;
constexpr std::uint32_t SH_DONTLETFIGUREUNBLOCK = 0x80;
constexpr std::uint32_t SH_FINDFORCEDMATE = 0x200;
constexpr std::uint32_t SH_DONTRECEDEBLACKKING = 0x400;
constexpr std::uint32_t SH_DONTLETPROMOTEDQUEENMOVE = 0x800;
constexpr std::uint32_t SH_KEYLINE = 0x1000;
constexpr std::uint32_t SH_KEYDIAGONAL = 0x2000;
constexpr std::uint32_t SH_SAVEQUEENROOK = 0x4000;
constexpr std::uint32_t SH_DONTLOSEANYFIGURES = 0x8000;
constexpr std::uint32_t SH_DONTLETBLACKQUEENCHECKTWICE = 0x10000;
constexpr std::uint32_t SH_USEBLOCKBLACKPAWNSLEVEL = 0x20000;
constexpr std::uint32_t SH_KEYSQUARE = 0x40000;
constexpr std::uint32_t SH_ASSERTBLACKKINGSURROUNDED = 0x80000;
constexpr std::uint32_t SH_SINGLEQUEENMATE = 0x100000;
constexpr std::uint32_t SH_3MOVESTOMATE = 0x200000;
constexpr std::uint32_t SH_KEYWHITEFIGURE = 0x400000;
constexpr std::uint32_t SH_CAPTUREKNIGHT = 0x800000;
constexpr std::uint32_t SH_SKIPWORSTWHITEMOVES = 0x1000000;
constexpr std::uint32_t SH_DONTLETPROMOTEDFIGUREMOVE = 0x2000000;
constexpr std::uint32_t SH_KEEPKINGNEARCORNER = 0x4000000;
constexpr std::uint32_t SH_SEASNAKE = 0x8000000;
constexpr std::uint32_t SH_REDUCTIONTOGLOBREGPOS = 0x40000000;
constexpr std::uint32_t SH_ZUGZWANG = 0x80000000;

} // namespace corvina

#endif
