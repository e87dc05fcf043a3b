#ifndef CORVINA_SEARCH_GUIDES_PROOFWALK_H
#define CORVINA_SEARCH_GUIDES_PROOFWALK_H

#include "search/guides/provedpositions.h"
#include "search/solverequest.h"

#include <functional>
#include <optional>

namespace corvina
{

/// White is to move; a mate in one, or with 3 half-moves left one in two: near the leaves all that
/// there are.
bool IsExactMate(TChessboard& board);

/// With so many half-moves left IsExactMate decides.
constexpr int EXACT_PLIES = 3;

/// Walks the proof of a mate that a search without certainty claims to have, by real moves: every
/// reply of Black, and the move of White that the search names, down to the mates. What it proves
/// goes to the register of the run.
class TProofWalk
{
public:
    /// Answers of the search that stand for no move.
    static constexpr int NO_ANSWER = -1;
    static constexpr int SHORT_MATE = -2; ///< a mate in one or two, which needs no search

    /// Index of White's mating move in the order of generation, or one of the above. The record may
    /// be searched below.
    using TMatingMove = std::function<int(TChessboard& board)>;

    /// The records of the walk are those of the context, whose thread's stop ends it.
    TProofWalk(TSolveRequest& request, TThreadContext& context, bool bRegister,
               TMatingMove matingMove)
        : m_request(request), m_context(context), m_bRegister(bRegister),
          MatingMove(std::move(matingMove))
    {
    }

    /// The first move of a proof that holds. Nothing: a stop, or the search was wrong.
    std::optional<TMove> Walk(TChessboard& root);

private:
    // Half-moves to the mate; NO_MATE when the proof doesn't hold.
    static constexpr int NO_MATE = -1;
    int MateAtWhite(TChessboard& board);
    int MateAfter(TChessboard& board, int nIndex);
    int MateAtBlack(TChessboard& board);
    /// The move that mates in one or two at the root; NO_ANSWER: there is none.
    int ShortMateAt(TChessboard& root);

    TSolveRequest& m_request;
    TThreadContext& m_context;
    const bool m_bRegister;
    const TMatingMove MatingMove;
    TProvedPositions m_proved;
};

} // namespace corvina

#endif
