#ifndef CORVINA_PROBLEMS_PROBLEM_H
#define CORVINA_PROBLEMS_PROBLEM_H

#include "chess/linecontext.h"
#include "platform/language.h"
#include "problems/sortindications.h"
#include "problems/variant.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace corvina
{

/// Kinds of problem: values of TProblem::m_nProblemType.
constexpr std::uint8_t PROBLEM_DIRECTMATE = 1;
constexpr std::uint8_t PROBLEM_SELFMATE = 2; ///< read and written, not solved
constexpr std::uint8_t PROBLEM_LINE = 4;     ///< a position with a played line, no stipulation

/// Bits of TProblem::m_nRunOptions.
constexpr std::uint32_t RUN_NOMIRROR = 0x1; ///< no mirrored run
constexpr std::uint32_t RUN_ALLSOLUTIONS =
    0x2; ///< a single-solution mode becomes an all-solutions mode
constexpr std::uint32_t RUN_ANSWERKNOWN = 0x4; ///< the answer is known and compared
constexpr std::uint32_t RUN_STOPON2SOLUTIONS = 0x8;
constexpr std::uint32_t RUN_STOPON3SOLUTIONS = 0x10;
constexpr std::uint32_t RUN_STOPON4SOLUTIONS = 0x8000;
/// The main variant serves as sort indications.
constexpr std::uint32_t RUN_MAINVARIANTSORTS = 0x20;
/// No limit on the memory of precalculated data.
constexpr std::uint32_t RUN_NOMEMORYLIMIT = 0x40;
constexpr std::uint32_t RUN_SAFEMODE = 0x80;
constexpr std::uint32_t RUN_MIRRORONLY = 0x100; ///< only the mirrored position is solved
/// The order of White's first moves is known and compared.
constexpr std::uint32_t RUN_SORTKNOWN = 0x200;
constexpr std::uint32_t RUN_SORTONLY = 0x400; ///< only that comparison counts
/// The regression run checks the best defence by the logic of the board view; the second one with
/// auxiliary checks.
constexpr std::uint32_t RUN_CHECKDEFENCE = 0x800;
constexpr std::uint32_t RUN_CHECKDEFENCEANDAUX = 0x1000;
/// The online tablebase must be available, for any run or for one for all solutions.
constexpr std::uint32_t RUN_REQUIRESTABLEBASE = 0x2000;
constexpr std::uint32_t RUN_ALLREQUIRESTABLEBASE = 0x4000;
constexpr std::uint32_t RUN_HYBRIDBRUTEFORCE = 0x10000;
constexpr std::uint32_t RUN_BRUTEFORCE = 0x20000;

/// Half-moves of a directmate in nMoves moves.
constexpr std::uint16_t HalfMovesOfMate(int nMoves)
{
    return static_cast<std::uint16_t>(2 * nMoves - 1);
}

/// The longest stipulation in half-moves, and in moves.
constexpr int MAX_HALFMOVES = 599;
constexpr int MAX_MATE = (MAX_HALFMOVES + 1) / 2;

/// Half-moves of a board without a stipulation: room for the line that is played on it.
constexpr std::uint16_t LINE_HALFMOVES = 255;

/// Number of half-moves of a self-mate in nMoves moves.
constexpr std::uint16_t HalfMovesOfSelfMate(int nMoves)
{
    return static_cast<std::uint16_t>(2 * nMoves + 1);
}

/// A file has one line for a text: line ends become blanks.
std::wstring OneLine(std::wstring strText);

/// A problem as a document: what a file says of it. It owns its records, which stay where they are
/// when it is moved.
struct TProblem
{
    TProblem() = default;
    TProblem(TProblem&&) = default;
    TProblem& operator=(TProblem&&) = default;
    virtual ~TProblem() = default;

    std::uint8_t m_nProblemType = PROBLEM_DIRECTMATE;
    std::int32_t m_nProblemNumber = 0;
    std::uint16_t m_nRequestedMoves = 1;          ///< stipulation in half-moves
    std::uint16_t m_nShortestRepetitionDepth = 0; ///< half-moves
    std::unique_ptr<TChessboard> m_pChessboard = std::make_unique<TChessboard>();
    /// The records of a line that is played on the board; null without one.
    std::unique_ptr<TLineContext> m_pLine;
    /// The record that a view shows: m_pChessboard, or one of m_pLine.
    TChessboard* m_pCurrentBoard = m_pChessboard.get();
    std::vector<TMove> m_vecExpectedSolutions;
    std::vector<TMove> m_vecExpectedSortWhiteMoves; ///< White's first moves in the expected order
    std::uint32_t m_nRunOptions = 0;                ///< RUN_...
    std::int8_t m_nRequestedThreads = -1;           ///< -1: from the options
    std::int8_t m_nRequestedMultithreadingLevels = -1;
    std::int16_t m_shRequestedSchedulerLevels = -1;
    std::int16_t m_shLichessLevels = -1;
    std::int32_t m_nMemoryLimitMB = -1; ///< for precalculated data; -1: from the options
    bool m_bStopRelaxingAfterSolution = false;
    bool m_bUsePredefinedSettings = false;
    std::uint8_t m_nMainVariantUse = 0; ///< as sort indications: 0 off, 1 on, 2 also others
    std::int16_t m_nGuiCheckRepeat = 1; ///< how many times a check is repeated
    std::wstring m_strDescription;      ///< author, source, prize; one line
    /// Heuristics by their bit, with their arguments or the single text "OFF".
    std::map<std::uint32_t, std::vector<std::string>> m_mapHeuristicOptions;
    /// Position types that must be loaded, for any run and for a run for all solutions.
    std::set<std::string> m_setRequires;
    std::set<std::string> m_setAllSolutionsRequires;
    std::map<std::wstring, TVariant> m_mapVariants; ///< by name
    std::set<std::wstring> m_setTags;
    TSortIndications m_sortIndications;

    /// Sets the kind and the stipulation in half-moves, with all that follows it.
    void SetStipulation(std::uint8_t nType, std::uint16_t nHalfMoves);

    /// The n of "#n" or "s#n".
    int GetStipulation() const;

    /// The half-moves that lead from the position to m_pCurrentBoard, each with its record.
    std::vector<const TChessboard*> GetPlayedLine() const;

    /// Makes a legal move on the record shown, and shows the new one. Throws ChessException
    /// "Illegal move", and "Too many moves" when the board has no half-moves left.
    void PlayMove(TMove move);

    /// False when there is a variant of that name.
    bool AddVariant(const std::wstring& strName, const std::vector<TVariantMove>& vecMoves);
    void RemoveVariant(const std::wstring& strName);
    /// False when there is none of the old name or one of the new name.
    bool RenameVariant(const std::wstring& strOld, const std::wstring& strNew);
    /// Names the main variant in a language, unless there is another one of that name.
    void GetVariantsInLanguage(ELanguage language);

    void SetDescription(const std::wstring& strText);
    void AddTag(const std::wstring& strTag);
    void RemoveTag(const std::wstring& strTag);
};

} // namespace corvina

#endif
