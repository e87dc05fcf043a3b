#include "chess/fen.h"
#include "chess/geometry.h"
#include "chess/squaresets.h"
#include "heuristics/differential.h"
#include "heuristics/setreader.h"
#include "heuristics/settext.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <bit>

namespace corvina
{
namespace
{

/// What a position is about.
enum class ETheme
{
    Any,       ///< whatever comes
    Promotion, ///< Black pawns close to promotion
    Pin,       ///< a Black figure pinned against its king
    Queen,     ///< a Black queen that can check
    Corner,    ///< a Black bishop on the main diagonal of its cornered king
    FirstRow,  ///< a White rook on the first row, Black pawns and a bishop above it
    Knight,    ///< a Black knight against a rook
    Blocked,   ///< Black figures shut in around their king
    Loss       ///< White figures that hang
};

class TThemed
{
public:
    explicit TThemed(std::mt19937& random) : m_random(random) {}

    TChessboard Make(ETheme theme)
    {
        for (;;) {
            m_board = TChessboard();
            PutKings(theme);
            PutTheme(theme);
            const int nOthers = 1 + Below(3);
            for (int i = 0; i < nOthers; ++i)
                Put(Below(64), g_aWhite[Below(std::size(g_aWhite))]);
            for (int i = Below(3); i > 0; --i)
                Put(8 + Below(48), BLACK_PAWN);
            if (m_board.RescanBoard(true) && m_board.m_blackChecker == NO_CHECK)
                return m_board;
        }
    }

private:
    static constexpr TFigure g_aWhite[] = {WHITE_QUEEN,  WHITE_ROOK,   WHITE_ROOK,
                                           WHITE_BISHOP, WHITE_KNIGHT, WHITE_PAWN};
    static constexpr TFigure g_aBlack[] = {BLACK_QUEEN, BLACK_ROOK, BLACK_BISHOP, BLACK_KNIGHT};

    int Below(std::size_t nLimit) { return static_cast<int>(m_random() % nLimit); }

    void Put(int square, TFigure figure)
    {
        const bool bPawn = (figure & KIND_MASK) == KIND_PAWN;
        if (m_board.m_board[square] == NO_FIGURE && !(bPawn && (square < 8 || square > 55)))
            m_board.m_board[square] = figure;
    }

    void PutKings(ETheme theme)
    {
        constexpr int aCorners[] = {0, 7, 56, 63};
        m_king = theme == ETheme::Corner ? aCorners[Below(4)]
                                         : (Below(2) ? 8 * Below(8) : 56 + Below(8));
        Put(m_king, BLACK_KING);
        for (int square = Below(64);; square = Below(64)) {
            if (Distance(square, m_king) >= 2 && Distance(square, m_king) <= 4) {
                Put(square, WHITE_KING);
                return;
            }
        }
    }

    void PutPinned()
    {
        const int square = Below(64);
        const TSquareSet between = Between(square, m_king);
        if (!between)
            return Put(square, WHITE_ROOK);
        const bool bDiagonal = IsDiagonal(DirectionTo(square, m_king));
        const TFigure pinning = bDiagonal ? WHITE_BISHOP : WHITE_ROOK;
        const TFigure pinned = Below(2) ? BLACK_KNIGHT : (bDiagonal ? BLACK_ROOK : BLACK_BISHOP);
        Put(square, Below(3) ? pinning : WHITE_QUEEN);
        Put(LowestSquare(between), pinned);
    }

    void PutNextToKing(int nFigures, const TFigure* pKinds, std::size_t nKinds)
    {
        for (int i = 0; i < nFigures; ++i) {
            TSquareSet zone = KingZone(m_king);
            for (int nSkip = Below(static_cast<std::size_t>(std::popcount(zone))); nSkip > 0;
                 --nSkip)
                zone &= zone - 1;
            Put(LowestSquare(zone), pKinds[Below(nKinds)]);
        }
    }

    void PutTheme(ETheme theme)
    {
        constexpr TFigure aGuards[] = {BLACK_PAWN, BLACK_ROOK, BLACK_BISHOP, BLACK_KNIGHT};
        switch (theme) {
        case ETheme::Promotion:
            for (int i = 0; i < 2; ++i)
                Put(8 + Below(8), BLACK_PAWN);
            break;
        case ETheme::Pin:
            PutPinned();
            PutNextToKing(5, aGuards, std::size(aGuards));
            break;
        case ETheme::Queen:
            Put(Below(64), BLACK_QUEEN);
            break;
        case ETheme::Corner:
            Put(9 * (1 + Below(6)), BLACK_BISHOP);
            Put(7 * (2 + Below(6)), BLACK_BISHOP);
            Put(Below(64), WHITE_BISHOP);
            break;
        case ETheme::FirstRow:
            Put(Below(8), WHITE_ROOK);
            Put(8 + Below(8), BLACK_PAWN);
            Put(8 + Below(16), BLACK_PAWN);
            Put(Below(64), BLACK_BISHOP);
            break;
        case ETheme::Knight:
            Put(Below(64), BLACK_KNIGHT);
            Put(Below(64), WHITE_ROOK);
            break;
        case ETheme::Blocked:
            PutNextToKing(4, aGuards, std::size(aGuards));
            break;
        case ETheme::Loss:
            Put(Below(64), g_aBlack[Below(4)]);
            Put(Below(64), g_aBlack[Below(4)]);
            Put(Below(64), WHITE_PAWN);
            break;
        default:
            break;
        }
    }

    std::mt19937& m_random;
    TChessboard m_board;
    int m_king = 0;
};

std::string SquareName(int square)
{
    return {static_cast<char>('A' + FileOf(square)), static_cast<char>('1' + RowOf(square))};
}

/// Black's men, the king left out, as the parameters name them.
std::string SomeBlackMen(const TChessboard& board, std::mt19937& random)
{
    TSquareSet men =
        TSets::Having(board.m_board, COLOUR_BLACK) & ~TSets::Equal(board.m_board, BLACK_KING);
    std::string strList;
    for (int i = 0; men && i < 8; ++i) {
        const TSquare square = PopLowestSquare(men);
        if (random() % 4)
            strList += (strList.empty() ? "" : ",") + SquareName(square);
    }
    return strList;
}

/// A heuristic in one of its forms. A letter with a dollar stands for what depends on the position:
/// $M Black men, $D the bishop on a main diagonal, $F a file, $X the ends of a long diagonal.
struct TForm
{
    const char* m_pText;
    ETheme m_theme;
};

constexpr TForm g_aForms[] = {
    {"SH_3MOVESTOMATE", ETheme::Any},
    {"SH_SAVEQUEEN/ROOK", ETheme::Loss},
    {"SH_DONTLETFIGUREUNBLOCK($M)", ETheme::Blocked},
    {"SH_DONTLETFIGUREUNBLOCK(EFF,$M)", ETheme::Blocked},
    {"SH_DONTLETPROMOTEDQUEENMOVE", ETheme::Promotion},
    {"SH_DONTLETPROMOTEDQUEENMOVE(strict)", ETheme::Promotion},
    {"SH_DONTLETPROMOTEDFIGUREMOVE", ETheme::Promotion},
    {"SH_DONTLETPROMOTEDFIGUREMOVE(strict)", ETheme::Promotion},
    {"SH_KEYLINE($F)", ETheme::Queen},
    {"SH_KEYDIAGONAL($X)", ETheme::Queen},
    {"SH_DONTLETBLACKQUEENCHECKTWICE", ETheme::Queen},
    {"SH_DONTLOSEANYFIGURES", ETheme::Loss},
    {"SH_DONTLOSEANYFIGURES(incl.pawns)", ETheme::Loss},
    {"SH_DONTLOSEANYFIGURES(incl.pawnsBeforePromo)", ETheme::Loss},
    {"SH_CAPTUREKNIGHT", ETheme::Knight},
    {"SH_KEYWHITEFIGURE", ETheme::Pin},
    {"SH_DONTLETKINGMOVE, SH_DONTLEAVEMAINDIAGONAL($D)", ETheme::Corner},
    {"SH_SWEEPINGWHITEROOK", ETheme::FirstRow},
};

bool Replace(std::string& strText, const char* pWhat, const std::string& strBy)
{
    const auto position = strText.find(pWhat);
    if (position == std::string::npos)
        return true;
    strText.replace(position, 2, strBy);
    return !strBy.empty();
}

/// The text of the set for this position, or "" when it lacks what the form needs.
std::string SetFor(const TForm& form, const TChessboard& board, std::mt19937& random)
{
    constexpr TSquareSet RISING = 0x8040201008040201, FALLING = 0x0102040810204080;
    const TSquareSet bishops = TSets::Equal(board.m_board, BLACK_BISHOP) & (RISING | FALLING);
    std::string strText = form.m_pText;
    const bool bFits =
        Replace(strText, "$M", SomeBlackMen(board, random)) &&
        Replace(strText, "$D", bishops ? SquareName(LowestSquare(bishops)) : "") &&
        Replace(strText, "$F", std::string(1, static_cast<char>('A' + random() % 8))) &&
        Replace(strText, "$X", random() % 2 ? "A1-H8" : "A8-H1");
    return bFits ? strText : "";
}

/// The heuristic that the form is about: the last one of its text.
int BitOf(const std::string& strSet, const TChessboard& board)
{
    THeuristicSet set;
    const auto comma = strSet.rfind(", SH_");
    ReadHeuristicsText(comma == std::string::npos ? strSet : strSet.substr(comma + 2), set, &board);
    return std::countr_zero(set.m_nHeuristics);
}

TEST(MaterialTruth, EachFormCutsAndChangesNoSolution)
{
    constexpr int MIN_POSITIONS = 10, TASKS = 300, MAX_TASKS = 6000;
    std::mt19937 random(61);
    TThemed themed(random);
    for (const TForm& form : g_aForms) {
        int nCutting = 0, nSolved = 0;
        for (int i = 0; i < TASKS || (i < MAX_TASKS && nCutting < MIN_POSITIONS); ++i) {
            const int nMate = i % 20 ? 2 + i % 2 : 4 + i % 40 / 20;
            const TTask task = MakeTask(themed.Make(i % 8 ? form.m_theme : ETheme::Any), nMate);
            const std::string strSet = SetFor(form, task.m_board, random);
            if (strSet.empty())
                continue;
            const TRunOf run = SolveWith(task.m_board, nMate, strSet);
            nCutting += run.m_anCuts[BitOf(strSet, task.m_board)] != 0;
            nSolved += !run.m_vecSolutions.empty();
            ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, strSet);
        }
        EXPECT_GE(nCutting, MIN_POSITIONS) << form.m_pText;
        EXPECT_GT(nSolved, MIN_POSITIONS) << form.m_pText;
    }
}

/// Three forms that go together, with the heuristics of the king among them.
std::string RandomSet(const TChessboard& board, std::mt19937& random)
{
    constexpr const char* aKing[] = {"", "SH_KEEPKINGONTHEEDGE, ", "SH_DONTLETKINGMOVE(excptns), ",
                                     "SH_ASSERTBLACKKINGSURROUNDED, ", "SH_FINDFORCEDMATE(#1), "};
    for (;;) {
        const std::string strSet = aKing[random() % std::size(aKing)] +
                                   SetFor(g_aForms[random() % std::size(g_aForms)], board, random) +
                                   ", " +
                                   SetFor(g_aForms[random() % std::size(g_aForms)], board, random);
        THeuristicSet set;
        try {
            ReadHeuristicsText(strSet, set, &board);
        }
        catch (const ChessException&) {
            continue;
        }
        if (std::popcount(set.m_nHeuristics) > 1)
            return strSet;
    }
}

TEST(MaterialTruth, RandomSetsChangeNoSolution)
{
    std::mt19937 random(62);
    TThemed themed(random);
    for (int i = 0; i < 900; ++i) {
        const auto theme = static_cast<ETheme>(i % (static_cast<int>(ETheme::Loss) + 1));
        const TTask task = MakeTask(themed.Make(theme), i % 30 ? 2 + i % 2 : 4);
        const std::string strSet = RandomSet(task.m_board, random);
        ASSERT_EQ(SolveWith(task.m_board, task.m_nMate, strSet, 1 + i % 2).m_vecSolutions,
                  task.m_vecSolutions)
            << Describe(task, strSet);
    }
}

} // namespace
} // namespace corvina
