#ifndef CORVINA_HEURISTICS_MATERIALBLOCKS_H
#define CORVINA_HEURISTICS_MATERIALBLOCKS_H

#include "heuristics/blackmove.h"

/// The blocks of the hooks that look at material and at figures that stand still, and not at the
/// Black king's place. The frame calls a block when its bit is on.

namespace corvina
{

/// SH_3MOVESTOMATE: with three moves left, does the material around the king still allow a mate?
EVerdict TestThreeMovesToMate(TBlackMove& move);

/// SH_SAVEQUEENROOK: White has lost its last queen or rook.
EVerdict TestSaveQueenRook(TBlackMove& move);

/// SH_DONTLETFIGUREUNBLOCK: a listed Black figure has left its square.
EVerdict TestUnblockedFigure(TBlackMove& move);

/// SH_DONTLETPROMOTEDQUEENMOVE: a queen that Black has promoted in the line moves.
EVerdict TestPromotedQueenMove(TBlackMove& move);

/// SH_DONTLETPROMOTEDFIGUREMOVE: the same of any promoted figure.
EVerdict TestPromotedFigureMove(TBlackMove& move);

/// SH_KEYLINE: a rook or queen of Black moves along the key file.
EVerdict TestKeyLine(TBlackMove& move);

/// SH_KEYDIAGONAL: a bishop or queen of Black moves along the key diagonal.
EVerdict TestKeyDiagonal(TBlackMove& move);

/// SH_DONTLETBLACKQUEENCHECKTWICE: Black's queen checks once more.
EVerdict TestQueenChecks(TBlackMove& move);

/// SH_DONTLOSEANYFIGURES: White has lost a figure, or a pawn that matters, for nothing.
EVerdict TestLostFigure(TBlackMove& move);

/// SH_CAPTUREKNIGHT: Black's knight, whose capture is a precondition of the mate, gets away.
EVerdict TestCaptureKnight(TBlackMove& move);

/// SH_KEYWHITEFIGURE: the figure that pins, or the pinned one, is lost.
EVerdict TestKeyWhiteFigure(TBlackMove& move);

/// SH_REDUCTIONTOGLOBREGPOS: even without some of White's figures the endgame tables show no win.
EVerdict TestReducedPosition(TBlackMove& move);

/// SH_ZUGZWANGTRIANGLES: as TestReducedPosition, where that one isn't on.
EVerdict TestZugzwangTriangle(TBlackMove& move);

/// SH_DONTLEAVEMAINDIAGONAL: White's bishop no longer holds the main diagonal.
EVerdict TestMainDiagonal(TBlackMove& move);

/// SH_SEASNAKE: Black's pendulum is broken by a queen that White doesn't attack.
EVerdict TestSeaSnake(TBlackMove& move);

/// SH_SWEEPINGWHITEROOK: Black's pawns no longer run into the rook of the first row.
EVerdict TestSweepingRook(TBlackMove& move);

/// SH_ONECOLORPLAYPOSSIBLE: White can't go on with squares of one colour.
EVerdict TestOneColourPlay(TBlackMove& move);

/// White's material can't mate in the moves left. *pReason: the code (impossibility.h).
EVerdict TestImpossibility(TBlackMove& move, std::uint32_t* pReason);

// After White's move: true for doubtful.

/// SH_SWEEPINGWHITEROOK: the rook stops sweeping.
bool IsSweepGivenUp(const TChessboard& child);

/// SH_DONTLEAVEMAINDIAGONAL in its strict use.
bool IsMainDiagonalLeft(const TChessboard& child);

/// SH_DONTLETPROMOTEDQUEENMOVE, SH_DONTLETPROMOTEDFIGUREMOVE: a figure that Black has promoted is
/// free to move.
bool IsPromotedQueenFree(const TChessboard& child);

bool IsPromotedFigureFree(const TChessboard& child);

/// SH_DONTLETFIGUREUNBLOCK together with a strict rule on promoted figures: a listed figure stands
/// elsewhere.
bool IsFigureUnblocked(const TChessboard& child);

} // namespace corvina

#endif
