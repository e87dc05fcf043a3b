#ifndef CORVINA_SEARCH_GUIDES_PROVEDPOSITIONS_H
#define CORVINA_SEARCH_GUIDES_PROVEDPOSITIONS_H

#include "registers/positionkey.h"
#include "search/line.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <unordered_map>

namespace corvina
{

/// Positions with White to move that the walk over a proof has done with, and the half-moves within
/// which he mates there. Nothing is ever lost. Positions that IsRegisterable refuses stay out.
class TProvedPositions
{
public:
    /// Half-moves to the mate, no more than the position has left; 0: it isn't known to hold.
    int Find(const TChessboard& board) const
    {
        if (!IsRegisterable(board))
            return 0;
        const auto proved = m_mapProved.find(TPositionKey::Of(board.m_board));
        return proved != m_mapProved.end() && proved->second <= board.m_nMoves ? proved->second : 0;
    }

    /// True when the position is a new one.
    bool Add(const TChessboard& board, int nPlies)
    {
        if (!IsRegisterable(board))
            return true;
        const auto nMate = static_cast<std::uint16_t>(nPlies);
        const auto [place, bNew] = m_mapProved.try_emplace(TPositionKey::Of(board.m_board), nMate);
        place->second = std::min(place->second, nMate);
        return bNew;
    }

private:
    struct THash
    {
        std::size_t operator()(const TPositionKey& key) const
        {
            return std::hash<std::string_view>()(
                {reinterpret_cast<const char*>(key.m_board), sizeof(key.m_board)});
        }
    };

    struct TEqual
    {
        bool operator()(const TPositionKey& a, const TPositionKey& b) const
        {
            return AreKeysEqual(a.m_board, b.m_board);
        }
    };

    std::unordered_map<TPositionKey, std::uint16_t, THash, TEqual> m_mapProved;
};

} // namespace corvina

#endif
