#include "heuristics/positionanalysis.h"

#include "chess/sides.h"
#include "heuristics/analysis.h"
#include "heuristics/attacksets.h"
#include "heuristics/forcedmate.h"
#include "heuristics/kingsurroundings.h"
#include "heuristics/reduction.h"
#include "heuristics/singlequeen.h"
#include "search/solverequest.h"

#include <chrono>

namespace corvina
{
namespace
{

constexpr std::uint32_t EDGES = SH_KEEPKINGONTHEEDGE | SH_KEEPKINGWITHINEXTEDGE;

/// What needs no look at the king: the check for short mates, and the patterns with analyses of
/// their own.
void BeginSet(TAnalysis& a)
{
    a.Set(SH_3MOVESTOMATE);
    if (HasReducedPosition(a.m_board))
        a.Set(SH_REDUCTIONTOGLOBREGPOS);
    ChooseMainDiagonal(a);
    DetectZugzwangPatterns(a);
}

bool HasFewMen(const TAnalysis& a)
{
    constexpr int MANY_MEN = 8;
    return a.m_facts.m_nMen < MANY_MEN;
}

/// A middling number of men: the rules for few figures have a say, and White may have to mate with
/// pawns.
void CheckMiddlingNumber(TAnalysis& a)
{
    constexpr int MANY_MEN = 13, MANY_WHITE_MEN = 7, FEW_FIGURES = 3;
    const TChessboard& b = a.m_board;
    TPositionFacts& f = a.m_facts;
    const int nWhiteMen = WhiteFigures(b) + b.m_nWhitePawns + 1;
    if (f.m_nMen >= MANY_MEN && nWhiteMen >= MANY_WHITE_MEN && WhiteFigures(b) + 1 >= FEW_FIGURES &&
        f.m_nBlackFigures + 1 >= FEW_FIGURES)
        return;
    CheckSmallPosition(a, false);
    f.m_bPawnPlay = WhiteMajors(b) == 0 && f.m_nWhiteMinors <= 1 && b.m_nWhitePawns > 0 &&
                    BlackNeighbours(b) <= (f.m_bCorner ? 0 : 1);
    if (f.m_bPawnPlay && (WhiteFigures(b) == 0 || f.m_nFreeSquares > 1))
        a.SetFlag(TChessboard::POSITION_PAWNPLAY);
}

void ChooseByFigures(TAnalysis& a)
{
    CheckMiddlingNumber(a);
    ChooseBlockedFigures(a);
    PresetEdgeRelaxation(a);
    ChooseForcedMate(a);
    ChooseSaveQueenRook(a);
    ChoosePromotedFigures(a);
    ChooseReceding(a);
    ChooseBlackQueen(a);
}

/// A promotion to a queen that White can't answer isn't worth a rule when Black has other moves.
void DropHopelessPromotionRule(TAnalysis& a)
{
    constexpr int MANY_MOVES = 4;
    if (a.Has(SH_DONTLETPROMOTEDQUEENMOVE) && a.m_facts.m_mobility.m_nMoves > MANY_MOVES &&
        a.m_board.m_nWhiteQueens == 0 && !a.m_facts.m_bPawnPromotes)
        a.Clear(SH_DONTLETPROMOTEDQUEENMOVE);
}

void ChooseSingleQueen(TAnalysis& a)
{
    if (!IsSingleQueenMate(a.m_board))
        return;
    a.Set(SH_SINGLEQUEENMATE);
    a.Clear(SH_FINDFORCEDMATE | SH_KEEPKINGONTHEEDGE | SH_REDUCTIONTOGLOBREGPOS);
}

/// No figure of Black can move, and White has what it takes to use that.
void NoteBlockedBlack(TAnalysis& a)
{
    const TPositionFacts& f = a.m_facts;
    if (f.m_nMovableFigures == 0 && f.m_nWhiteFigures >= 2 && f.m_nWhiteMajors > 0)
        a.SetFlag(TChessboard::POSITION_BLACKBLOCKED);
}

/// A rook that shuts its own king in will have to go: the king is better surrounded than held.
void FreeKingBehindRook(TAnalysis& a)
{
    const TChessboard& b = a.m_board;
    const bool bRook = a.m_facts.m_nBlackFigures == 1 && a.m_facts.m_nMovableFigures == 0 &&
                       (TSets::Equal(b.m_board, BLACK_ROOK) & KingZone(b.BlackKing())) != 0;
    if (bRook && a.HasStrictKing() && BlackNeighbours(b) == 1)
        a.Replace(SH_KEEPKINGONTHEEDGE, SH_ASSERTBLACKKINGSURROUNDED);
}

/// White's queen has so much help that the king on the outer rings has the edge left only.
void TightenExtEdge(TAnalysis& a)
{
    constexpr int MANY_FIGURES = 4, FEW_FREE = 2;
    if (a.Has(SH_KEEPKINGWITHINEXTEDGE) && a.m_board.m_nWhiteQueens > 0 &&
        a.m_facts.m_nWhiteFigures >= MANY_FIGURES && a.m_board.BlackKingRing() <= 1 &&
        a.m_facts.m_nFreeSquares <= FEW_FREE)
        a.m_params.m_bExtEdgeMoveOnly = true;
}

/// The corner of a queen's mate: nothing but the distance from it counts.
void ChooseCorner(TAnalysis& a)
{
    if (!IsCornerPattern(a.m_board))
        return;
    const int nSum = Ring(a.m_board.m_blackKingFile, 3) + Ring(3, a.m_board.m_blackKingRow);
    a.m_params.m_nCornerDistance = static_cast<std::int8_t>(nSum == 3 ? 3 : nSum + 1);
    a.Clear(SH_DONTLETPROMOTEDFIGUREMOVE | SH_ASSERTBLACKKINGSURROUNDED | EDGES);
    a.Set(SH_KEEPKINGNEARCORNER | SH_DONTLETPROMOTEDQUEENMOVE);
}

/// White may lose his last queen or rook where a pawn makes up for it in time.
void ChooseSaveWithException(TAnalysis& a)
{
    if (a.Has(SH_SAVEQUEENROOK) || !IsWhiteMaterialShort(a.m_board))
        return;
    a.Set(SH_SAVEQUEENROOK);
    a.m_params.m_bSaveFigureException = true;
}

/// A Black pawn is about to promote, and the White king has hardly a square: the new queen may mate
/// him or check him for ever.
bool CanWhiteKingBeCaughtOnAnIsland(const TChessboard& board)
{
    constexpr int FEW_SQUARES = 1;
    constexpr TSquareSet ROW_BEFORE_LAST = TSquareSet{0xFF} << 8;
    return (TSets::Equal(board.m_board, BLACK_PAWN) & ROW_BEFORE_LAST) &&
           CountKingSquares(board) <= FEW_SQUARES;
}

/// A fault in the tables must not cost the run: it goes on with the set as it stands.
void ApplyPredefinedSettings(TAnalysis& a)
{
    std::optional<std::string> failure;
    try {
        ApplyPredefinedAdditionalHeuristics(a.m_board, a.m_predefined);
    }
    catch (const std::exception& error) {
        failure = *error.what() ? std::string(" : ") + error.what() : std::string();
    }
    if (a.m_predefined.m_bSafeMode)
        a.ForceSafeMode();
    if (failure && a.m_request.OnMessage)
        a.m_request.OnMessage("Error occurred in ApplyPredefinedAdditionalHeuristics()" + *failure);
}

void FinishSet(TAnalysis& a)
{
    DropHopelessPromotionRule(a);
    DropKeyFigureOnDiagonal(a);
    ChooseSingleQueen(a);
    NoteBlockedBlack(a);
    FreeKingBehindRook(a);
    ChooseSweepingRook(a);
    if (a.Has(SH_FINDFORCEDMATE) && a.m_params.m_nFfmWithOther != FFM_OTHERS_APPLY &&
        !a.m_params.m_bFfmPreliminary)
        MakeForcedMateCustom(a.m_board, a.m_params);
    DecideSafeMode(a);
    TightenExtEdge(a);
    ChooseCorner(a);
    ChooseSaveWithException(a);
    ForceSafeModeForKeyFigure(a);
    DropEdgeFormsOfSeaSnake(a);
    ApplyPredefinedSettings(a);
    ForceSafeModeForLonePiece(a);
}

void RunSteps(TAnalysis& a)
{
    GatherFacts(a);
    SetMaterialFlags(a);
    BeginSet(a);
    if (HasFewMen(a)) {
        CheckSmallPosition(a, true);
    }
    else {
        ChooseByFigures(a);
        ChooseKingOffEdge(a);
        ChooseEdge(a);
    }
    RefineSet(a);
    FinishSet(a);
}

/// What a set leaves unsaid goes back to its initial value, so that its text tells all of it.
void DropUnusedParams(THeuristicSet& set)
{
    THeuristicSet used;
    used.m_params.m_bSeaSnakeAnalysed = set.m_params.m_bSeaSnakeAnalysed;
    for (std::uint32_t nRest = set.m_nHeuristics; nRest; nRest &= nRest - 1)
        CopyParams(nRest & (0 - nRest), set, used);
    THeuristicsParams& p = used.m_params;
    const THeuristicsParams& from = set.m_params;
    p.m_bSurroundAfterExceptions = from.m_bSurroundAfterExceptions;
    p.m_bDropQueenCheckEarly = from.m_bDropQueenCheckEarly;
    p.m_bDropPromotedEarly = from.m_bDropPromotedEarly;
    if (set.m_nHeuristics & SH_DONTLETFIGUREUNBLOCK) {
        p.m_bUnblockShrinkable = from.m_bUnblockShrinkable;
        p.m_nUnblockShrinkFigures = from.m_nUnblockShrinkFigures;
    }
    if (set.m_nHeuristics & SH_FINDFORCEDMATE) {
        p.m_nFfmRelaxations = from.m_nFfmRelaxations;
        p.m_nFfmCustomRelaxations = from.m_nFfmCustomRelaxations;
        p.m_bFfmAddCaptures = from.m_bFfmAddCaptures;
    }
    set.m_params = p;
}

} // namespace

TAnalysis::TAnalysis(const TChessboard& root)
    : m_request(*root.m_pRequest), m_context(root.m_nMoves + 1), m_params(m_context), m_board(root),
      m_trials(*this), m_bSafeMode(root.m_pRequest->m_bSafeMode)
{
    m_board.m_pThread = &m_context;
    m_board.m_pParent = nullptr;
    m_board.m_nHeuristics = m_board.m_nHeuristicsParams = 0;
    m_context.m_pRootBoard = &m_board;
}

TPositionAnalysis CheckPositionType(const TChessboard& root)
{
    const auto start = root.m_pRequest->Now();
    TAnalysis a(root);
    RunSteps(a);
    TPositionAnalysis result;
    result.m_nWished = a.m_board.m_nHeuristics;
    result.m_set.m_nHeuristics = a.m_board.m_nHeuristics & IMPLEMENTED_HEURISTICS;
    result.m_set.m_params = a.m_params;
    if (a.Has(SH_ZUGZWANG))
        result.m_set.m_vecZugzwangMoves = a.m_request.m_heuristicSet.m_vecZugzwangMoves;
    result.m_vecSeaSnakeMoves = a.m_vecSeaSnakeMoves;
    DropUnusedParams(result.m_set);
    result.m_nPositionFlags = a.m_board.m_nPositionFlags;
    if (CanWhiteKingBeCaughtOnAnIsland(a.m_board))
        result.m_boardFlags |= TChessboard::FLAG_ISLAND;
    result.m_bSafeMode = a.m_bSafeModeForced;
    result.m_shLookForQuickerMateDepth = a.m_predefined.m_shLookForQuickerMateDepth;
    result.m_facts = a.m_facts;
    result.m_vecTrials = a.m_trials.All();
    result.m_nPositions = a.m_trials.Positions();
    result.m_dSeconds = std::chrono::duration<double>(root.m_pRequest->Now() - start).count();
    return result;
}

void TakeUpAnalysis(const TPositionAnalysis& analysis, TChessboard& root)
{
    TSolveRequest& request = *root.m_pRequest;
    const THeuristicsParams before = request.m_heuristicSet.m_params;
    request.m_heuristicSet = analysis.m_set;
    THeuristicsParams& params = request.m_heuristicSet.m_params;
    params.m_bLetRelax = before.m_bLetRelax && root.m_nMoves >= MIN_RELAXED_PLIES;
    params.m_bRunPass2 = before.m_bRunPass2;
    params.m_bEnableFallback = before.m_bEnableFallback;
    root.m_nPositionFlags = analysis.m_nPositionFlags;
    root.m_boardFlags &= static_cast<std::uint16_t>(~TChessboard::FLAG_ISLAND);
    root.m_boardFlags |= analysis.m_boardFlags;
    request.m_vecSeaSnakeMoves = analysis.m_vecSeaSnakeMoves;
    if (analysis.m_bSafeMode)
        request.m_bSafeMode = true;
    // A depth that the user has given stays.
    if (analysis.m_shLookForQuickerMateDepth && request.m_shLookForQuickerMateDepth < 0) {
        request.m_shLookForQuickerMateDepth = *analysis.m_shLookForQuickerMateDepth;
        request.m_bPredefinedDepth = true;
    }
}

} // namespace corvina
