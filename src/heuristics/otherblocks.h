#ifndef CORVINA_HEURISTICS_OTHERBLOCKS_H
#define CORVINA_HEURISTICS_OTHERBLOCKS_H

#include "heuristics/blackmove.h"

/// The blocks of the hooks that don't look at the Black king's place. Without a test of its own a
/// heuristic cuts nothing: its block passes.

namespace corvina
{

/// SH_3MOVESTOMATE: with three moves left, does the material around the king still allow a mate?
inline EVerdict TestThreeMovesToMate(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_SAVEQUEENROOK: White has lost its last queen or rook.
inline EVerdict TestSaveQueenRook(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_DONTLETFIGUREUNBLOCK: a listed Black figure has left its square.
inline EVerdict TestUnblockedFigure(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_DONTLETPROMOTEDQUEENMOVE: a queen that Black has promoted in the line moves.
inline EVerdict TestPromotedQueenMove(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_DONTLETPROMOTEDFIGUREMOVE: the same of any promoted figure.
inline EVerdict TestPromotedFigureMove(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_KEYLINE: a rook or queen of Black moves along the key file.
inline EVerdict TestKeyLine(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_KEYDIAGONAL: a bishop or queen of Black moves along the key diagonal.
inline EVerdict TestKeyDiagonal(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_DONTLETBLACKQUEENCHECKTWICE: Black's queen checks once more.
inline EVerdict TestQueenChecks(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_DONTLOSEANYFIGURES: White has lost a figure, or a pawn that matters, for nothing.
inline EVerdict TestLostFigure(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_CAPTUREKNIGHT: Black's knight, whose capture is a precondition of the mate, gets away.
inline EVerdict TestCaptureKnight(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_KEYWHITEFIGURE: the figure that pins, or the pinned one, is lost.
inline EVerdict TestKeyWhiteFigure(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_REDUCTIONTOGLOBREGPOS: even without some of White's figures the endgame tables show no win.
inline EVerdict TestReducedPosition(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_ZUGZWANGTRIANGLES: the position has left the triangle of the zugzwang.
inline EVerdict TestZugzwangTriangle(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_DONTLEAVEMAINDIAGONAL: White's bishop no longer holds the main diagonal.
inline EVerdict TestMainDiagonal(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_SEASNAKE: Black's pendulum is broken by a queen that White doesn't attack.
inline EVerdict TestSeaSnake(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_SWEEPINGWHITEROOK: Black's pawns no longer run into the rook of the first row.
inline EVerdict TestSweepingRook(TBlackMove&)
{
    return EVerdict::Passes;
}

/// SH_ONECOLORPLAYPOSSIBLE: White can't go on with squares of one colour.
inline EVerdict TestOneColourPlay(TBlackMove&)
{
    return EVerdict::Passes;
}

/// White's material can't mate in the moves left. Names its code by the reason that it returns
/// through pCode.
inline EVerdict TestImpossibility(TBlackMove&, std::uint32_t*)
{
    return EVerdict::Passes;
}

// After White's move: true for doubtful.

/// SH_SWEEPINGWHITEROOK: the rook stops sweeping.
inline bool IsSweepGivenUp(const TChessboard&)
{
    return false;
}

/// SH_DONTLEAVEMAINDIAGONAL in its strict use.
inline bool IsMainDiagonalLeft(const TChessboard&)
{
    return false;
}

/// SH_DONTLETPROMOTEDQUEENMOVE, SH_DONTLETPROMOTEDFIGUREMOVE: a figure that Black has promoted is
/// free to move.
inline bool IsPromotedQueenFree(const TChessboard&)
{
    return false;
}

inline bool IsPromotedFigureFree(const TChessboard&)
{
    return false;
}

/// SH_DONTLETFIGUREUNBLOCK together with a strict rule on promoted figures: a listed figure stands
/// elsewhere.
inline bool IsFigureUnblocked(const TChessboard&)
{
    return false;
}

} // namespace corvina

#endif
