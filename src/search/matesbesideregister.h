#ifndef CORVINA_SEARCH_MATESBESIDEREGISTER_H
#define CORVINA_SEARCH_MATESBESIDEREGISTER_H

#include "search/guides/prooftable.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace corvina
{

/// Mates in positions that no register can hold, since a capture en passant is possible or a king
/// seems to have a right to castle: those of the proofs that a run has walked. By hash: a hint that
/// is worth following, and no proof.
class TMatesBesideRegister
{
public:
    /// Half-moves to the mate, no more than the position has left; 0: none is known.
    int Find(const TChessboard& board) const
    {
        const auto mate = m_mapMates.find(TProofTable::KeyOf(board));
        return mate != m_mapMates.end() && mate->second <= board.m_nMoves ? mate->second : 0;
    }

    /// By one thread at a time. Throws std::bad_alloc.
    void Add(const TChessboard& board, std::uint16_t nPlies)
    {
        const auto place = m_mapMates.try_emplace(TProofTable::KeyOf(board), nPlies).first;
        place->second = std::min(place->second, nPlies);
    }

    void Clear() { m_mapMates.clear(); }

private:
    std::unordered_map<std::uint64_t, std::uint16_t> m_mapMates;
};

} // namespace corvina

#endif
