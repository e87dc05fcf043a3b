#include "chess/fen.h"
#include "chess/geometry.h"
#include "chess/squaresets.h"
#include "heuristics/differential.h"
#include "heuristics/setreader.h"
#include "heuristics/settext.h"
#include "heuristics/themedpositions.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <bit>

namespace corvina
{
namespace
{

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
/// $M Black men, $D the bishop on a main diagonal, $F a file, $X the ends of a long diagonal, $K a
/// figure that pins.
struct TForm
{
    const char* m_pText;
    ETheme m_theme;
    bool m_bSaveException = false; ///< which no text tells
};

constexpr TForm g_aForms[] = {
    {"SH_3MOVESTOMATE", ETheme::Any},
    {"SH_SAVEQUEEN/ROOK", ETheme::Loss},
    {"SH_SAVEQUEEN/ROOK", ETheme::Loss, true},
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
    {"SH_KEYWHITEFIGURE($K)", ETheme::Pin},
    {"SH_DONTLETKINGMOVE, SH_DONTLEAVEMAINDIAGONAL($D)", ETheme::Corner},
    {"SH_SWEEPINGWHITEROOK", ETheme::FirstRow},
    {"SH_ONECOLORPLAYPOSSIBLE", ETheme::Bishops},
    {"SH_ONECOLORPLAYPOSSIBLE(WhiteSquaresOnly)", ETheme::Bishops},
    {"SH_ONECOLORPLAYPOSSIBLE(BlackSquaresOnly)", ETheme::Bishops},
    {"SH_ONECOLORPLAYPOSSIBLE(SeparatedBlackBishop)", ETheme::Cage},
    {"SH_SINGLEQUEENMATE", ETheme::SingleQueen},
};

/// Those that cut nothing here: one is an order of moves, one asks endgame tables, and one stands
/// for a search of its own.
constexpr TForm g_aQuietForms[] = {
    {"SH_KEYSQUARE(D4)", ETheme::Any},
    {"SH_REDUCTIONTOGLOBREGPOS", ETheme::Any},
    {"SH_USEBLOCKBLACKPAWNSLEVEL", ETheme::PinnedRook},
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
    const TSquare key = PinningFigure(board);
    std::string strText = form.m_pText;
    const bool bFits =
        Replace(strText, "$M", SomeBlackMen(board, random)) &&
        Replace(strText, "$D", bishops ? SquareName(LowestSquare(bishops)) : "") &&
        Replace(strText, "$F", std::string(1, static_cast<char>('A' + random() % 8))) &&
        Replace(strText, "$X", random() % 2 ? "A1-H8" : "A8-H1") &&
        Replace(strText, "$K", key != NO_SQUARE ? SquareName(key) : "");
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
            THeuristicSet set;
            ReadHeuristicsText(strSet, set, &task.m_board);
            set.m_params.m_bSaveFigureException = form.m_bSaveException;
            const TRunOf run = SolveWith(task.m_board, nMate, set);
            nCutting += run.m_anCuts[BitOf(strSet, task.m_board)] != 0;
            nSolved += !run.m_vecSolutions.empty();
            ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, strSet);
        }
        EXPECT_GE(nCutting, MIN_POSITIONS) << form.m_pText;
        EXPECT_GT(nSolved, MIN_POSITIONS) << form.m_pText;
    }
}

/// A form that cuts moves of White, after they are made or by a list that leaves them out, and the
/// length of the tasks in which that comes up.
struct TWhiteForm
{
    TForm m_form;
    int m_nMate;
};

constexpr TWhiteForm g_aWhiteForms[] = {
    {{"SH_SWEEPINGWHITEROOK", ETheme::FirstRow}, 2},
    {{"SH_DONTLETKINGMOVE, SH_DONTLEAVEMAINDIAGONAL($D)", ETheme::Corner}, 2},
    {{"SH_DONTLETPROMOTEDQUEENMOVE(strict)", ETheme::Promotion}, 4},
    {{"SH_DONTLETPROMOTEDFIGUREMOVE(strict)", ETheme::Promotion}, 4},
    {{"SH_DONTLETPROMOTEDQUEENMOVE(strict), SH_DONTLETFIGUREUNBLOCK(EFF,$M)", ETheme::Promotion},
     4},
    {{"SH_KEYWHITEFIGURE($K)", ETheme::HeldKnight}, 6},
    {{"SH_SKIPWORSTWHITEMOVES", ETheme::SingleQueen}, 6},
};

TEST(MaterialTruth, MovesOfWhiteAreCutAndNoSolutionChanges)
{
    constexpr int MIN_POSITIONS = 10, MIN_SOLVED = 3, MAX_TASKS = 3000;
    std::mt19937 random(63);
    TThemed themed(random);
    for (const auto& [form, nMate] : g_aWhiteForms) {
        int nCutting = 0, nSolved = 0;
        for (int i = 0; i < MAX_TASKS && (nCutting < MIN_POSITIONS || nSolved < MIN_SOLVED); ++i) {
            const TChessboard board = themed.Make(form.m_theme);
            const std::string strSet = SetFor(form, board, random);
            if (strSet.empty())
                continue;
            const TTask task = MakeTask(board, nMate);
            const TRunOf run = SolveWith(board, nMate, strSet);
            ASSERT_EQ(run.m_vecSolutions, task.m_vecSolutions) << Describe(task, strSet);
            const bool bCut = run.m_anWhiteCuts[BitOf(strSet, board)] != 0;
            nCutting += bCut;
            nSolved += bCut && !run.m_vecSolutions.empty();
        }
        EXPECT_GE(nCutting, MIN_POSITIONS) << form.m_pText;
        EXPECT_GE(nSolved, MIN_SOLVED) << form.m_pText;
    }
}

/// Three forms that go together, with the heuristics of the king among them.
std::string RandomSet(const TChessboard& board, std::mt19937& random)
{
    constexpr const char* aKing[] = {"", "SH_KEEPKINGONTHEEDGE, ", "SH_DONTLETKINGMOVE(excptns), ",
                                     "SH_ASSERTBLACKKINGSURROUNDED, ", "SH_FINDFORCEDMATE(#1), "};
    const auto form = [&] {
        const std::size_t n = random() % (std::size(g_aForms) + std::size(g_aQuietForms));
        return SetFor(n < std::size(g_aForms) ? g_aForms[n]
                                              : g_aQuietForms[n - std::size(g_aForms)],
                      board, random);
    };
    for (;;) {
        const std::string strKing = aKing[random() % std::size(aKing)];
        const std::string strForm = form();
        const std::string strSet = strKing + strForm + ", " + form();
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
        const auto theme = static_cast<ETheme>(i % (static_cast<int>(ETheme::SingleQueen) + 1));
        const TTask task = MakeTask(themed.Make(theme), i % 30 ? 2 + i % 2 : 4);
        const std::string strSet = RandomSet(task.m_board, random);
        ASSERT_EQ(SolveWith(task.m_board, task.m_nMate, strSet, 1 + i % 2).m_vecSolutions,
                  task.m_vecSolutions)
            << Describe(task, strSet);
    }
}

} // namespace
} // namespace corvina
