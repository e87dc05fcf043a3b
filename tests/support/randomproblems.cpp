#include "support/randomproblems.h"

#include "chess/fen.h"
#include "chess/notation.h"
#include "platform/encoding.h"
#include "problems/heuristicnames.h"
#include "support/data.h"
#include "support/positions.h"

#include <algorithm>
#include <sstream>

namespace corvina
{
namespace
{

bool OneIn(std::mt19937& random, unsigned n)
{
    return random() % n == 0;
}

std::wstring RandomText(std::mt19937& random, std::size_t nMax, const wchar_t* pForbidden)
{
    const std::wstring strLetters = L"abcdefghijklmnoprst 1234567890 zażółćgęśląjaźń ŁÓŻ їєіґ "
                                    L"ЇЄІҐжщ 🙂 //!#@:;,.{}[]()*/-";
    std::wstring strText;
    for (std::size_t n = 1 + random() % nMax; n; --n) {
        const wchar_t c = strLetters[random() % strLetters.size()];
        if (std::wstring(pForbidden).find(c) == std::wstring::npos)
            strText += c;
    }
    return strText.empty() ? L"x" : strText;
}

/// Moves in full notation that no position needs to allow.
TVariant RandomVariant(std::mt19937& random, const std::wstring& strName)
{
    constexpr const char* aTexts[] = {"Qa1-a8", "e2-e4", "Nf3:g5", "c7-c8Q", "0-0", "0-0-0"};
    TVariant variant{strName, {}};
    for (std::size_t n = random() % 9; n; --n) {
        TVariantMove move;
        move.m_strText = aTexts[random() % 6];
        move.m_move = ParseFullMove(move.m_strText, variant.m_vecMoves.size() % 2 == 0);
        if (OneIn(random, 3))
            move.m_strComment = RandomText(random, 30, L"]");
        variant.m_vecMoves.push_back(move);
    }
    return variant;
}

TSortIndication RandomIndication(std::mt19937& random)
{
    constexpr TFigure aFigures[] = {NO_FIGURE,  WHITE_KING,   WHITE_QUEEN, WHITE_ROOK,
                                    WHITE_PAWN, WHITE_BISHOP, WHITE_KNIGHT};
    TSortIndication item;
    item.m_figure = aFigures[random() % 7];
    item.m_from = OneIn(random, 2) ? NO_SQUARE : static_cast<TSquare>(random() % 64);
    item.m_to = static_cast<TSquare>(random() % 64);
    item.m_capture = static_cast<std::int8_t>(static_cast<int>(random() % 3) - 1);
    item.m_nCheck = static_cast<std::uint8_t>(random() % 3);
    item.m_promotion = OneIn(random, 4) ? g_aPromotionKinds[random() % 4] : NO_FIGURE;
    item.m_nMoveNumber = static_cast<std::uint16_t>(OneIn(random, 3) ? 0 : random() % 20);
    item.m_bNegated = OneIn(random, 4);
    return item;
}

std::vector<TMove> RandomMoves(std::mt19937& random, const TChessboard& board)
{
    std::vector<TMove> vecMoves = LegalMoves(const_cast<TChessboard&>(board));
    std::shuffle(vecMoves.begin(), vecMoves.end(), random);
    vecMoves.resize(std::min<std::size_t>(vecMoves.size(), random() % 5));
    return vecMoves;
}

void AddTexts(TProblem& problem, std::mt19937& random)
{
    if (OneIn(random, 2))
        problem.SetDescription(RandomText(random, 60, L""));
    for (std::size_t n = random() % 4; n; --n)
        problem.AddTag(RandomText(random, 20, L""));
    for (std::size_t n = random() % 4; n; --n) {
        const std::wstring strName = RandomText(random, 15, L"{}");
        problem.m_mapVariants[strName] = RandomVariant(random, strName);
    }
    if (OneIn(random, 2))
        problem.m_mapVariants[L"Main variant"] = RandomVariant(random, L"Main variant");
    for (std::size_t n = OneIn(random, 2) ? random() % 6 : 0; n; --n)
        problem.m_sortIndications.Add(RandomIndication(random));
}

void AddOptions(TProblem& problem, std::mt19937& random)
{
    for (int nBit = 0; nBit < 18; ++nBit) {
        const bool bSection = nBit == 2 || nBit == 9 || nBit == 10;
        if (!bSection && OneIn(random, 4))
            problem.m_nRunOptions |= std::uint32_t{1} << nBit;
    }
    problem.m_nMainVariantUse = problem.m_nRunOptions & RUN_MAINVARIANTSORTS ? 1 : 0;
    if (problem.m_nRunOptions & (RUN_CHECKDEFENCE | RUN_CHECKDEFENCEANDAUX))
        problem.m_nGuiCheckRepeat = static_cast<std::int16_t>(1 + random() % 4);
    if (OneIn(random, 3))
        problem.m_nRequestedThreads = static_cast<std::int8_t>(random() % 65);
    if (problem.m_nRequestedThreads >= 0 && OneIn(random, 2))
        problem.m_nRequestedMultithreadingLevels = static_cast<std::int8_t>(random() % 6);
    if (OneIn(random, 3))
        problem.m_shRequestedSchedulerLevels = static_cast<std::int16_t>(random() % 10);
    if (OneIn(random, 3))
        problem.m_shLichessLevels = static_cast<std::int16_t>(random() % 10);
    if (OneIn(random, 3))
        problem.m_nMemoryLimitMB = static_cast<std::int32_t>(random() % 100000);
    problem.m_bStopRelaxingAfterSolution = OneIn(random, 3);
    problem.m_bUsePredefinedSettings = OneIn(random, 3);
    for (std::size_t n = random() % 3; n; --n)
        problem.m_setRequires.insert(std::string(1 + random() % 3, 'Q') + "rp");
    if (OneIn(random, 3))
        problem.m_setAllSolutionsRequires.insert("RNkq");
    for (std::size_t n = random() % 3; n; --n) {
        const std::uint32_t nHeuristic = std::uint32_t{1} << random() % 32;
        if (HeuristicName(nHeuristic))
            problem.m_mapHeuristicOptions[nHeuristic] =
                OneIn(random, 2) ? std::vector<std::string>{"OFF"}
                                 : std::vector<std::string>{"E4", ",", "C3f"};
    }
}

// Typing

class CTypist
{
public:
    explicit CTypist(std::mt19937& random) : m_random(random) {}

    std::string Gap()
    {
        constexpr const char* aGaps[] = {" ", "  ", "\t",           "\n",
                                         " ", " ",  "/* // { */\r", " // } a comment\r\n"};
        return aGaps[m_random() % 8];
    }

    std::string Word(std::string strWord)
    {
        for (char& c : strWord)
            c = static_cast<char>(OneIn(m_random, 2) ? std::tolower(c) : std::toupper(c));
        return strWord;
    }

    std::string AnyOf(std::initializer_list<const char*> words)
    {
        return Word(*(words.begin() + m_random() % words.size())) + MaybeGap() + ":" + MaybeGap();
    }

    std::string MaybeGap() { return OneIn(m_random, 3) ? Gap() : ""; }

    std::vector<std::string> Options(const TProblem& problem);
    std::string Figures(const TChessboard& board, TFigure colour);
    std::string Moves(const TChessboard& board, const std::vector<TMove>& vecMoves);
    std::string Lines(const TProblem& problem);

private:
    std::mt19937& m_random;
};

std::vector<std::string> CTypist::Options(const TProblem& problem)
{
    // By the numbers of their bits.
    const std::vector<std::string> vecFlags =
        Split("NoMirror|AllSolutions||StopOnDual|StopOn3Sol|UseMainVariantAsSortIndications|"
              "NoGlobReg|SafeMode|MirrorOnly|||||RequiresSyzygy|AllSolutionsRequiresSyzygy|"
              "StopOn4Sol|HybridBruteForce|BruteForce",
              '|');
    std::vector<std::string> vecOptions;
    for (std::size_t nBit = 0; nBit < vecFlags.size(); ++nBit) {
        if (!vecFlags[nBit].empty() && (problem.m_nRunOptions >> nBit & 1))
            vecOptions.push_back(Word(vecFlags[nBit]));
    }
    const auto add = [&](bool bWanted, const char* pWord, const std::string& strArgument) {
        if (bWanted)
            vecOptions.push_back(Word(pWord) + Gap() + strArgument);
    };
    const int nRepeat = problem.m_nGuiCheckRepeat;
    const std::string strRepeat = nRepeat > 1 || OneIn(m_random, 2) ? std::to_string(nRepeat) : "";
    add(problem.m_nRunOptions & 0x800, "GuiCheckBestDefence", strRepeat);
    add(problem.m_nRunOptions & 0x1000,
        OneIn(m_random, 2) ? "GuiCheck" : "GuiCheckBestDefenceAndAux", strRepeat);
    const int nLevels = problem.m_nRequestedMultithreadingLevels;
    add(problem.m_nRequestedThreads >= 0, "Threads",
        std::to_string(problem.m_nRequestedThreads) +
            (nLevels >= 0 ? "^" + std::to_string(nLevels) : ""));
    add(problem.m_shRequestedSchedulerLevels >= 0, "SchedulerLevels",
        std::to_string(problem.m_shRequestedSchedulerLevels));
    add(problem.m_shLichessLevels >= 0, "LichessLevels", std::to_string(problem.m_shLichessLevels));
    add(problem.m_nMemoryLimitMB >= 0, "GlobRegMB", std::to_string(problem.m_nMemoryLimitMB));
    add(problem.m_bUsePredefinedSettings, "UsePredefinedSettings", "");
    add(problem.m_bStopRelaxingAfterSolution, "StopRelaxHeuristicsOnFirstSolution", "");
    for (const std::string& strType : problem.m_setRequires)
        add(true, OneIn(m_random, 2) ? "Requires" : "OnlyIfAvail", strType);
    for (const std::string& strType : problem.m_setAllSolutionsRequires)
        add(true, "AllSolutionsRequires", strType);
    for (const auto& [nHeuristic, vecArguments] : problem.m_mapHeuristicOptions)
        add(true, HeuristicName(nHeuristic),
            vecArguments.size() == 1 ? Word("Off") : "(" + Gap() + "E4 ," + Gap() + "C3f)");
    std::shuffle(vecOptions.begin(), vecOptions.end(), m_random);
    return vecOptions;
}

std::string CTypist::Figures(const TChessboard& board, TFigure colour)
{
    std::string strList;
    for (TSquare square = 0; square < 64; ++square) {
        const TFigure figure = board.m_board[square];
        if (!(figure & colour))
            continue;
        const bool bLetter = (figure & KIND_MASK) != KIND_PAWN || OneIn(m_random, 2);
        strList += (strList.empty() ? "" : MaybeGap() + "," + MaybeGap()) +
                   Word((bLetter ? std::string(1, LetterFromFigure(figure)) : std::string()) +
                        SquareToString(square));
    }
    return strList;
}

std::string CTypist::Moves(const TChessboard& board, const std::vector<TMove>& vecMoves)
{
    std::string strList;
    for (const TMove& move : vecMoves)
        strList += (strList.empty() ? "" : MaybeGap() + "," + MaybeGap()) + PrintMove(move, board) +
                   (OneIn(m_random, 5) ? "+" : "");
    return strList;
}

/// Tags, variants and sort indications, which take a line each.
std::string CTypist::Lines(const TProblem& problem)
{
    constexpr const char* aMain[] = {"Main variant", "Wariant główny", "Основний варіант"};
    std::string strLines;
    for (const std::wstring& strTag : problem.m_setTags)
        strLines += "//#" + Utf8FromWide(strTag) + (OneIn(m_random, 2) ? "\r\n" : "\n");
    if (!problem.m_mapVariants.empty())
        strLines += "//!VARIANTS\n";
    for (const auto& [strName, variant] : problem.m_mapVariants) {
        const bool bMain = strName == L"Main variant";
        strLines += "//! {" + (bMain ? aMain[m_random() % 3] : Utf8FromWide(strName)) + "}";
        for (const TVariantMove& move : variant.m_vecMoves)
            strLines +=
                " ; " + move.m_strText +
                (move.m_strComment.empty() ? "" : "[" + Utf8FromWide(move.m_strComment) + "]");
        strLines += "\n // between\n";
    }
    if (!problem.m_mapVariants.empty())
        strLines += "//!ENDVARIANTS\n";
    if (!problem.m_sortIndications.empty())
        strLines +=
            "//@SortIndications: " + SortIndicationsToText(problem.m_sortIndications) + "\n";
    return strLines;
}

std::string MovesLine(const std::vector<TMove>& vecMoves, const TChessboard& board)
{
    std::string strText;
    for (const TMove& move : vecMoves)
        strText += " " + PrintMove(move, board);
    return strText;
}

} // namespace

std::unique_ptr<TProblem> RandomProblem(std::mt19937& random, std::int32_t nNumber)
{
    auto pProblem = std::make_unique<TProblem>();
    pProblem->m_nProblemNumber = nNumber;
    *pProblem->m_pChessboard = RandomPosition(random, 3 + static_cast<int>(random() % 20));
    const int nMoves = 1 + static_cast<int>(random() % 200);
    const auto nKind = random() % 5;
    if (nKind == 0)
        pProblem->SetStipulation(PROBLEM_LINE, LINE_HALFMOVES);
    else if (nKind == 1)
        pProblem->SetStipulation(PROBLEM_SELFMATE, HalfMovesOfSelfMate(nMoves));
    else
        pProblem->SetStipulation(PROBLEM_DIRECTMATE, HalfMovesOfMate(nMoves));
    AddTexts(*pProblem, random);
    AddOptions(*pProblem, random);
    const std::vector<TMove> vecAnswer = RandomMoves(random, *pProblem->m_pChessboard);
    if (OneIn(random, 2)) {
        pProblem->m_nRunOptions |= RUN_ANSWERKNOWN;
        pProblem->m_vecExpectedSolutions = vecAnswer;
    }
    else if (OneIn(random, 2)) {
        pProblem->m_nRunOptions |= RUN_SORTKNOWN | (OneIn(random, 2) ? RUN_SORTONLY : 0);
        pProblem->m_vecExpectedSortWhiteMoves = vecAnswer;
    }
    for (std::size_t n = nKind == 0 ? random() % 12 : 0; n; --n) {
        const std::vector<TMove> vecMoves = LegalMoves(*pProblem->m_pCurrentBoard);
        if (!vecMoves.empty())
            pProblem->PlayMove(vecMoves[random() % vecMoves.size()]);
    }
    return pProblem;
}

std::string TypedByHand(const TProblem& problem, std::mt19937& random)
{
    CTypist typist(random);
    const TChessboard& board = *problem.m_pChessboard;
    std::string strText = typist.Gap() + std::to_string(problem.m_nProblemNumber) + typist.Gap();
    if (problem.m_nProblemType != PROBLEM_LINE)
        strText += (problem.m_nProblemType == PROBLEM_SELFMATE ? "S #" : "#") +
                   std::to_string(problem.GetStipulation()) + typist.Gap();
    for (const std::string& strOption : typist.Options(problem))
        strText += strOption + typist.Gap();
    strText += "\n" + typist.Lines(problem) + typist.Gap() + "{" + typist.Gap();
    if (!problem.m_strDescription.empty())
        strText += typist.Word("desc") + ": \t" + Utf8FromWide(problem.m_strDescription) + " \r\n";
    if (OneIn(random, 2))
        strText += typist.Word("fen") + ":\n" + WriteFen(board, true) + "\n";
    else
        strText += typist.AnyOf({"White", "Wh", "W"}) + typist.Figures(board, COLOUR_WHITE) +
                   typist.Gap() + typist.AnyOf({"Black", "Bl", "B"}) +
                   typist.Figures(board, COLOUR_BLACK) + "\n";
    if (problem.m_pCurrentBoard != problem.m_pChessboard.get())
        strText += typist.AnyOf({"Moves"});
    for (const TChessboard* pBoard : problem.GetPlayedLine())
        strText += PrintMove(pBoard->m_LastMove, *pBoard->m_pParent) + typist.Gap();
    if (problem.m_nRunOptions & RUN_ANSWERKNOWN)
        strText += typist.AnyOf({"Answer", "Solution", "A"}) +
                   typist.Moves(board, problem.m_vecExpectedSolutions);
    else if (problem.m_nRunOptions & RUN_SORTKNOWN)
        strText += (problem.m_nRunOptions & RUN_SORTONLY
                        ? typist.AnyOf({"ExpectedSortWhiteMovesOnly"})
                        : typist.AnyOf({"ExpectedSortWhiteMoves", "SWM"})) +
                   typist.Moves(board, problem.m_vecExpectedSortWhiteMoves);
    return strText + typist.MaybeGap() + "}" + typist.MaybeGap();
}

std::string Describe(const TProblem& problem, bool bAll)
{
    const TProblem& p = problem;
    constexpr std::uint32_t LOST_BITS = RUN_NOMEMORYLIMIT | RUN_SORTKNOWN | RUN_SORTONLY;
    std::ostringstream out;
    const auto addAll = [&out](const auto&... values) { ((out << values << ' '), ...); };
    addAll(p.m_nProblemNumber, int{p.m_nProblemType}, p.m_nRequestedMoves,
           p.m_pChessboard->m_nMoves, p.m_pChessboard->m_nInitialMoves,
           bAll ? p.m_nRunOptions : p.m_nRunOptions & ~LOST_BITS, p.m_nGuiCheckRepeat,
           int{p.m_nRequestedThreads}, p.m_bUsePredefinedSettings, int{p.m_nMainVariantUse},
           WriteFen(*p.m_pChessboard, true), MovesLine(p.m_vecExpectedSolutions, *p.m_pChessboard),
           Utf8FromWide(p.m_strDescription), SortIndicationsToText(p.m_sortIndications));
    for (const TChessboard* pBoard : p.GetPlayedLine())
        addAll(WriteFen(*pBoard, false));
    for (const std::string& strType : p.m_setRequires)
        addAll("\nrequires", strType);
    for (const std::wstring& strTag : p.m_setTags)
        addAll("\ntag", Utf8FromWide(strTag));
    for (const auto& [strName, variant] : p.m_mapVariants) {
        addAll("\nvariant", Utf8FromWide(strName));
        addAll(Utf8FromWide(
            VariantToText(variant, {.m_bWithComments = true, .m_nNameMode = EVariantName::AsIs})));
        for (const TVariantMove& move : variant.m_vecMoves)
            addAll(FromTo(move.m_move), int{move.m_move.m_promotion});
    }
    if (!bAll)
        return out.str();
    addAll(int{p.m_nRequestedMultithreadingLevels}, p.m_shRequestedSchedulerLevels,
           p.m_shLichessLevels, p.m_nMemoryLimitMB, p.m_bStopRelaxingAfterSolution,
           MovesLine(p.m_vecExpectedSortWhiteMoves, *p.m_pChessboard));
    for (const std::string& strType : p.m_setAllSolutionsRequires)
        addAll("\nall requires", strType);
    for (const auto& [nHeuristic, vecArguments] : p.m_mapHeuristicOptions) {
        addAll("\n", HeuristicName(nHeuristic));
        for (const std::string& strArgument : vecArguments)
            addAll(strArgument);
    }
    return out.str();
}

} // namespace corvina
