#include "problems/heuristicnames.h"
#include "problems/readparts.h"

#include <algorithm>

namespace corvina
{
namespace
{

constexpr std::string_view DEFAULT_CLAUSE = "//!default";
constexpr std::string_view TAGS_LINE = "//#TAGS";
constexpr std::string_view TAG_PREFIX = "//#";
constexpr std::string_view VARIANTS_LINE = "//!VARIANTS";
constexpr std::string_view VARIANTS_END_LINE = "//!ENDVARIANTS";
constexpr std::string_view VARIANT_PREFIX = "//!";
constexpr std::string_view SORT_INDICATIONS_LINE = "//@SortIndications";

struct TFlagWord
{
    std::string_view m_strWord;
    std::uint32_t m_nBit;
};

/// Options that only set a bit.
constexpr TFlagWord g_aFlagWords[] = {
    {"NOMIRROR", RUN_NOMIRROR},
    {"ALLSOLUTIONS", RUN_ALLSOLUTIONS},
    {"STOPONDUAL", RUN_STOPON2SOLUTIONS},
    {"STOPON3SOL", RUN_STOPON3SOLUTIONS},
    {"STOPON4SOL", RUN_STOPON4SOLUTIONS},
    {"MIRRORONLY", RUN_MIRRORONLY},
    {"NOGLOBREG", RUN_NOMEMORYLIMIT},
    {"SAFEMODE", RUN_SAFEMODE},
    {"REQUIRESSYZYGY", RUN_REQUIRESTABLEBASE},
    {"ALLSOLUTIONSREQUIRESSYZYGY", RUN_ALLREQUIRESTABLEBASE},
    {"HYBRIDBRUTEFORCE", RUN_HYBRIDBRUTEFORCE},
    {"BRUTEFORCE", RUN_BRUTEFORCE},
};

/// "n" or "n^L".
void ReadThreads(TProblem& problem, TLexer& lexer)
{
    const std::string_view strLexem = lexer.GetIdentifier();
    const std::size_t nHat = strLexem.find('^');
    problem.m_nRequestedThreads = NumberFromText<std::int8_t>(strLexem.substr(0, nHat));
    if (nHat != std::string_view::npos)
        problem.m_nRequestedMultithreadingLevels =
            NumberFromText<std::int8_t>(strLexem.substr(nHat + 1));
}

/// The count may be missing: what is no number of 1 or more is read again as an option.
void ReadGuiCheck(TProblem& problem, TLexer& lexer, std::uint32_t nBit)
{
    problem.m_nRunOptions |= nBit;
    const std::size_t nPos = lexer.GetPos();
    const std::string_view strLexem =
        lexer.GetLexem(TLexer::EAtEnd::Fail, TLexer::ESpecial::Return);
    const bool bNumber =
        std::all_of(strLexem.begin(), strLexem.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (bNumber && strLexem.find_first_not_of('0') != std::string_view::npos)
        problem.m_nGuiCheckRepeat = NumberFromText<std::int16_t>(strLexem);
    else
        lexer.SetPos(nPos);
}

struct TArgumentWord
{
    std::string_view m_strWord;
    void (*m_pRead)(TProblem& problem, TLexer& lexer);
};

/// Options that take arguments or set more than a bit.
constexpr TArgumentWord g_aArgumentWords[] = {
    {"THREADS", ReadThreads},
    {"SCHEDULERLEVELS",
     [](TProblem& problem, TLexer& lexer) {
         problem.m_shRequestedSchedulerLevels = NumberFromText<std::int16_t>(lexer.GetIdentifier());
     }},
    {"LICHESSLEVELS",
     [](TProblem& problem, TLexer& lexer) {
         problem.m_shLichessLevels = NumberFromText<std::int16_t>(lexer.GetIdentifier());
     }},
    {"GLOBREGMB",
     [](TProblem& problem, TLexer& lexer) {
         problem.m_nMemoryLimitMB = NumberFromText<std::int32_t>(lexer.GetIdentifier());
     }},
    {"REQUIRES", [](TProblem& problem,
                    TLexer& lexer) { problem.m_setRequires.emplace(lexer.GetIdentifier()); }},
    {"ONLYIFAVAIL", [](TProblem& problem,
                       TLexer& lexer) { problem.m_setRequires.emplace(lexer.GetIdentifier()); }},
    {"ALLSOLUTIONSREQUIRES",
     [](TProblem& problem, TLexer& lexer) {
         problem.m_setAllSolutionsRequires.emplace(lexer.GetIdentifier());
     }},
    {"GUICHECKBESTDEFENCEANDAUX",
     [](TProblem& problem, TLexer& lexer) {
         ReadGuiCheck(problem, lexer, RUN_CHECKDEFENCEANDAUX);
     }},
    {"GUICHECK", [](TProblem& problem,
                    TLexer& lexer) { ReadGuiCheck(problem, lexer, RUN_CHECKDEFENCEANDAUX); }},
    {"GUICHECKBESTDEFENCE",
     [](TProblem& problem, TLexer& lexer) { ReadGuiCheck(problem, lexer, RUN_CHECKDEFENCE); }},
    {"USEMAINVARIANTASSORTINDICATIONS",
     [](TProblem& problem, TLexer&) {
         problem.m_nRunOptions |= RUN_MAINVARIANTSORTS;
         problem.m_nMainVariantUse = 1;
     }},
    {"USEPREDEFINEDSETTINGS",
     [](TProblem& problem, TLexer&) { problem.m_bUsePredefinedSettings = true; }},
    {"STOPRELAXHEURISTICSONFIRSTSOLUTION",
     [](TProblem& problem, TLexer&) { problem.m_bStopRelaxingAfterSolution = true; }},
};

/// "OFF", or arguments in brackets.
void ReadHeuristic(TProblem& problem, TLexer& lexer, std::uint32_t nHeuristic)
{
    const char* pName = HeuristicName(nHeuristic);
    const std::string_view strLexem = lexer.GetLexem();
    std::vector<std::string>& vecArguments = problem.m_mapHeuristicOptions[nHeuristic];
    if (UpperCased(strLexem) == "OFF") {
        vecArguments.emplace_back("OFF");
        return;
    }
    if (strLexem != "(")
        throw ChessException(std::string("Unexpected lexem after ") + pName + " " +
                             std::string(strLexem) + " (expected opening bracket or OFF)");
    for (std::string_view strArgument; (strArgument = lexer.GetLexem()) != ")";)
        vecArguments.emplace_back(strArgument);
}

/// One of the names holds a slash, which no lexem does.
std::string HeuristicNameAt(TLexer& lexer, const std::string& strWord)
{
    constexpr std::string_view WITH_SLASH = "SH_SAVEQUEEN";
    constexpr std::string_view SLASH_PART = "/ROOK";
    if (strWord == WITH_SLASH && lexer.SkipText(SLASH_PART))
        return strWord + std::string(SLASH_PART);
    return strWord;
}

/// False when the word is no option.
bool ReadOption(TProblem& problem, TLexer& lexer, std::string_view strLexem)
{
    const std::string strWord = UpperCased(strLexem);
    const auto isWord = [&](const auto& entry) { return entry.m_strWord == strWord; };
    const auto flag = std::find_if(std::begin(g_aFlagWords), std::end(g_aFlagWords), isWord);
    if (flag != std::end(g_aFlagWords)) {
        problem.m_nRunOptions |= flag->m_nBit;
        return true;
    }
    const auto argument =
        std::find_if(std::begin(g_aArgumentWords), std::end(g_aArgumentWords), isWord);
    if (argument != std::end(g_aArgumentWords)) {
        argument->m_pRead(problem, lexer);
        return true;
    }
    const std::uint32_t nHeuristic = HeuristicFromName(HeuristicNameAt(lexer, strWord));
    if (nHeuristic)
        ReadHeuristic(problem, lexer, nHeuristic);
    return nHeuristic != 0;
}

/// The place of an error within a line of a variant, which is told in characters of the wide text.
void MarkVariantError(TLexer& lexer, const TTextForm& form, std::string_view strLine,
                      const std::wstring& strWide, std::size_t nErrorAt)
{
    const std::wstring strBefore = strWide.substr(0, nErrorAt);
    lexer.Mark(lexer.PosOf(strLine) + form.m_converter.FromWide(strBefore).size());
}

void ReadVariant(TProblem& problem, TLexer& lexer, const TTextForm& form, std::string_view strLine)
{
    strLine.remove_prefix(VARIANT_PREFIX.size());
    const std::wstring strWide = OneLine(form.m_converter.ToWide(strLine));
    std::size_t nErrorAt = 0;
    try {
        TVariant variant = ParseVariantLine(strWide, form.m_language, &nErrorAt);
        if (variant.m_strName.empty() && variant.m_vecMoves.empty())
            return;
        problem.m_mapVariants.insert_or_assign(variant.m_strName, std::move(variant));
    }
    catch (const ChessException&) {
        MarkVariantError(lexer, form, strLine, strWide, nErrorAt);
        throw;
    }
}

/// The lines of variants; where their end isn't marked they end with the last of them.
void ReadVariants(TProblem& problem, TLexer& lexer, const TTextForm& form)
{
    while (true) {
        const std::size_t nPos = lexer.GetPos();
        const std::string_view strLine =
            lexer.GetLexem(TLexer::EAtEnd::Fail, TLexer::ESpecial::Return);
        if (!strLine.starts_with(VARIANT_PREFIX)) {
            lexer.SetPos(nPos);
            return;
        }
        if (TrimBlanks(strLine) == VARIANTS_END_LINE)
            return;
        ReadVariant(problem, lexer, form, strLine);
    }
}

void ReadSortIndications(TProblem& problem, std::string_view strLine)
{
    strLine.remove_prefix(SORT_INDICATIONS_LINE.size());
    if (strLine.starts_with(':'))
        strLine.remove_prefix(1);
    ParseSortIndications(problem.m_sortIndications, strLine);
}

/// False when the lexem is no line of data that stands in a header.
bool ReadSpecialLine(TProblem& problem, TLexer& lexer, const TTextForm& form,
                     std::string_view strLine)
{
    if (strLine.starts_with(TAG_PREFIX)) {
        if (TrimBlanks(strLine) != TAGS_LINE)
            problem.AddTag(form.m_converter.ToWide(strLine.substr(TAG_PREFIX.size())));
        return true;
    }
    if (TrimBlanks(strLine) == VARIANTS_LINE)
        ReadVariants(problem, lexer, form);
    else if (strLine.starts_with(SORT_INDICATIONS_LINE))
        ReadSortIndications(problem, strLine);
    else
        return false;
    return true;
}

void ApplyDefaults(TProblem& problem, int nMoves, const TDefaultOptions& defaults)
{
    const auto clause = defaults.find(nMoves);
    if (clause == defaults.end())
        return;
    for (const std::string& strWord : clause->second) {
        if (UpperCased(strWord) != "ALLSOLUTIONS")
            throw ChessException("Unrecognizable option: " + strWord);
        problem.m_nRunOptions |= RUN_ALLSOLUTIONS;
    }
}

/// The number and the stipulation.
void ReadNumberAndStipulation(TProblem& problem, TLexer& lexer, const TDefaultOptions& defaults)
{
    constexpr int MAX_READ_MATE = std::numeric_limits<std::uint16_t>::max() / 2;
    problem.m_nProblemNumber = NumberFromText<std::int32_t>(lexer.GetIdentifier());
    const std::size_t nPos = lexer.GetPos();
    std::string_view strLexem = lexer.GetLexem(TLexer::EAtEnd::Fail, TLexer::ESpecial::Return);
    const bool bSelfMate = UpperCased(strLexem) == "S" && lexer.Peek() == '#';
    if (bSelfMate)
        strLexem = lexer.GetLexem();
    if (strLexem != "#") {
        lexer.SetPos(nPos);
        problem.SetStipulation(PROBLEM_LINE, LINE_HALFMOVES);
        return;
    }
    const int nMoves = NumberFromText<int>(lexer.GetIdentifier(), 1, MAX_READ_MATE);
    if (bSelfMate)
        problem.SetStipulation(PROBLEM_SELFMATE, HalfMovesOfSelfMate(nMoves));
    else
        problem.SetStipulation(PROBLEM_DIRECTMATE, HalfMovesOfMate(nMoves));
    ApplyDefaults(problem, nMoves, defaults);
}

/// The words of a line, divided by blanks.
std::vector<std::string_view> WordsOf(std::string_view strLine)
{
    std::vector<std::string_view> vecWords;
    while (!(strLine = TrimBlanks(strLine)).empty()) {
        vecWords.push_back(strLine.substr(0, strLine.find_first_of(" \t")));
        strLine.remove_prefix(vecWords.back().size());
    }
    return vecWords;
}

/// The n of "#n"; 0 for another text.
int StipulationFromWord(std::string_view strWord)
{
    if (!strWord.starts_with('#'))
        return 0;
    try {
        return NumberFromText<int>(strWord.substr(1));
    }
    catch (const ChessException&) {
        return 0;
    }
}

} // namespace

TDefaultOptions ReadDefaultClauses(TLexer& lexer)
{
    TDefaultOptions defaults;
    while (true) {
        const std::size_t nPos = lexer.GetPos();
        const std::string_view strLine =
            lexer.GetLexem(TLexer::EAtEnd::Allow, TLexer::ESpecial::Return);
        const std::vector<std::string_view> vecWords = WordsOf(strLine);
        if (vecWords.empty() || vecWords[0] != DEFAULT_CLAUSE) {
            lexer.SetPos(nPos);
            return defaults;
        }
        if (vecWords.size() != 3)
            throw ChessException("Incorrect 'default' clause.");
        const int nMoves = StipulationFromWord(vecWords[1]);
        if (nMoves == 0)
            throw ChessException("Error in 'default' clause.");
        defaults[nMoves].emplace(vecWords[2]);
    }
}

void ReadHeader(TProblem& problem, TLexer& lexer, const TTextForm& form,
                const TDefaultOptions& defaults)
{
    ReadNumberAndStipulation(problem, lexer, defaults);
    while (true) {
        const std::string_view strLexem =
            lexer.GetLexem(TLexer::EAtEnd::Fail, TLexer::ESpecial::Return);
        if (strLexem == "{")
            return;
        if (!ReadSpecialLine(problem, lexer, form, strLexem) &&
            !ReadOption(problem, lexer, strLexem))
            throw ChessException("Opening bracket expected { or unrecognized option encountered: " +
                                 std::string(strLexem));
    }
}

} // namespace corvina
