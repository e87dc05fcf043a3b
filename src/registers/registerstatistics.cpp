// The part of the aggregate that reports its contents.

#include "registers/aggregatedregister.h"

namespace corvina
{
namespace
{

/// Numbers of entries by depth in moves.
class TDepthCounts
{
public:
    void Add(std::uint16_t nMoves)
    {
        if (nMoves)
            ++m_mapCounts[nMoves / 2 + 1];
    }

    /// "label = total (#2 count, #3 count)" and the end of the line.
    std::string ToLine(const char* pLabel) const
    {
        std::uint64_t nTotal = 0;
        std::string strCounts;
        for (const auto& [nMoves, nCount] : m_mapCounts) {
            nTotal += nCount;
            strCounts += strCounts.empty() ? "" : ", ";
            strCounts += "#" + std::to_string(nMoves) + " " + std::to_string(nCount);
        }
        return pLabel + std::to_string(nTotal) + " (" + strCounts + ")\n";
    }

private:
    std::map<int, std::uint64_t> m_mapCounts;
};

} // namespace

std::string TAggregatedTemporaryChessboardRegister::Statistics()
{
    TDepthCounts mate, noMate, doubtful, notDoubtful;
    const TRegisterLock::TReadGuard guard(m_lock);
    std::uint64_t nCapacity = GetCapacity();
    ForEachEntry([&](const TPositionKey&, TRegisterDepths depths) {
        mate.Add(depths.m_nMovesMate);
        noMate.Add(depths.m_nMovesNoMate);
    });
    for (const auto& [nKey, pSetting] : m_mapDoubtful) {
        nCapacity += pSetting->GetCapacity();
        pSetting->ForEachEntry([&](const TPositionKey&, TRegisterDepths depths) {
            doubtful.Add(depths.m_nMovesMate);
            notDoubtful.Add(depths.m_nMovesNoMate);
        });
    }
    return "Elements count = " + std::to_string(GetElementsCount()) +
           "\nCurrent capacity = " + std::to_string(nCapacity) +
           "\nMax. elements count = " + std::to_string(GetMaxElements()) + "\n" +
           mate.ToLine("Mate elements = ") + noMate.ToLine("No mate elements = ") +
           doubtful.ToLine("Doubtful elements = ") + notDoubtful.ToLine("Not doubtful elements = ");
}

} // namespace corvina
