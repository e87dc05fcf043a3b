#include "chess/fen.h"
#include "chess/movetext.h"
#include "chess/notation.h"
#include "problems/readparts.h"

#include <algorithm>
#include <initializer_list>

namespace corvina
{
namespace
{

bool IsOneOf(std::string_view strWord, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), strWord) != words.end();
}

bool IsAnswerWord(std::string_view strWord)
{
    return IsOneOf(strWord, {"ANSWER", "SOLUTION", "A"});
}

bool IsSortWord(std::string_view strWord)
{
    return IsOneOf(strWord, {"EXPECTEDSORTWHITEMOVES", "SWM", "EXPECTEDSORTWHITEMOVESONLY"});
}

void ReadColon(TLexer& lexer, const char* pError)
{
    if (lexer.GetLexem() != ":")
        throw ChessException(pError);
}

// The position

/// The texts that differ between the lists of the two colours.
struct TListTexts
{
    std::initializer_list<std::string_view> m_words;
    TFigure m_colour;
    const char* m_pName;
    const char* m_pNoIdentifier;
    const char* m_pNoColon;
};

const TListTexts g_whiteTexts = {{"WHITE", "WH", "W"},
                                 COLOUR_WHITE,
                                 "White",
                                 "White figures identifier expected (W, WH or WHITE).",
                                 "Colon ':' expected after white figures identifier."};
const TListTexts g_blackTexts = {{"BLACK", "BL", "B"},
                                 COLOUR_BLACK,
                                 "Black",
                                 "Black figures identifier expected (B, BL or BLACK).",
                                 "Colon expected after black figures identifier."};

/// "Ke1", or "a2" for a pawn.
void PlaceFigure(TChessboard& board, std::string_view strItem, const TListTexts& texts)
{
    const auto fail = [&](const char* pText) {
        throw ChessException(std::string(texts.m_pName) + pText + std::string(strItem));
    };
    if (strItem.size() != 2 && strItem.size() != 3)
        fail(" figure specifi"
             "cation is invalid: ");
    const bool bPawn = strItem.size() == 2;
    const TFigure kind = bPawn ? KIND_PAWN : FigureFromLetter(strItem[0]);
    const TSquare square = SquareAt(strItem, bPawn ? 0 : 1);
    if (square == NO_SQUARE)
        fail(" figure position is invalid: ");
    if (board.m_board[square] != NO_FIGURE)
        throw ChessException("Square " + SquareToString(square) + " already occupied.");
    board.m_board[square] = texts.m_colour | kind;
}

/// A list of figures whose identifier is the lexem at hand.
void ReadFigureList(TChessboard& board, TLexer& lexer, std::string_view strLexem,
                    const TListTexts& texts)
{
    if (!IsOneOf(UpperCased(strLexem), texts.m_words))
        throw ChessException(texts.m_pNoIdentifier);
    ReadColon(lexer, texts.m_pNoColon);
    if (lexer.Peek() == '}')
        return;
    while (true) {
        PlaceFigure(board, lexer.GetLexem(), texts);
        if (lexer.Peek() != ',')
            return;
        lexer.GetLexem();
    }
}

void ReadFenLine(TChessboard& board, TLexer& lexer)
{
    ReadColon(lexer, "Colon ':' expected after FEN identifier.");
    const std::string strFen(lexer.GetFenToken());
    if (strFen.empty() || !ReadFen(board, strFen))
        throw ChessException("Improper FEN code");
}

/// The position, which begins with the lexem at hand.
void ReadPosition(TChessboard& board, TLexer& lexer, std::string_view strLexem)
{
    if (UpperCased(strLexem) == "FEN") {
        ReadFenLine(board, lexer);
        return;
    }
    ReadFigureList(board, lexer, strLexem, g_whiteTexts);
    ReadFigureList(board, lexer, lexer.GetLexem(), g_blackTexts);
    board.ScanBoard(true);
}

// Moves

/// A square of two characters, with a letter of a figure in front of it or behind it.
struct TSquareWord
{
    TSquare m_square = NO_SQUARE;
    char m_letter = 0; ///< 0: none
};

TSquareWord SquareWithLetterInFront(std::string_view strWord)
{
    if (strWord.size() == 3)
        return {SquareAt(strWord, 1), strWord[0]};
    return {strWord.size() == 2 ? SquareAt(strWord, 0) : NO_SQUARE, 0};
}

TSquareWord SquareWithLetterBehind(std::string_view strWord)
{
    if (strWord.size() == 3)
        return {SquareAt(strWord, 0), strWord[2]};
    return {strWord.size() == 2 ? SquareAt(strWord, 0) : NO_SQUARE, 0};
}

/// The text of a castling that begins with the lexem "0" at hand; empty when something else than
/// hyphens and zeros follows.
std::string ReadCastlingText(TLexer& lexer)
{
    std::string strText = "0";
    while (strText.size() < 5 && lexer.Peek() == '-') {
        lexer.GetLexem();
        strText += "-";
        strText += lexer.GetLexem();
    }
    return CastlingFromText(strText, true) ? strText : std::string();
}

/// The end of a move: separator, destination and a letter of a promotion. The texts are those of
/// the two faults.
void ReadDestination(TLexer& lexer, TMove* pMove, const char* pNoSeparator, const char* pNoSquare)
{
    const std::string_view strSeparator = lexer.GetLexem();
    if (strSeparator != "-" && strSeparator != ":")
        throw ChessException(pNoSeparator);
    const std::string_view strLexem = lexer.GetLexem();
    const TSquareWord to = SquareWithLetterBehind(strLexem);
    pMove->m_to = to.m_square;
    if (to.m_letter)
        pMove->m_promotion = FigureFromLetter(to.m_letter);
    if (to.m_square == NO_SQUARE || to.m_square == pMove->m_from ||
        (to.m_letter && !IsPromotionKind(pMove->m_promotion)))
        throw ChessException(pNoSquare + std::string(strLexem));
}

void ReadMovesSection(TProblem& problem, TLexer& lexer)
{
    ReadColon(lexer, "Colon expected after Moves section start.");
    TChessboard& root = *problem.m_pChessboard;
    // Where there is a stipulation all the same it stays that of the problem.
    root.m_nMoves = root.m_nInitialMoves = LINE_HALFMOVES;
    root.ScanBoard(true);
    TMove move{};
    while (ReadMoveFromFile(lexer, &move, problem.m_pCurrentBoard->IsWhiteToMove()))
        problem.PlayMove(move);
}

// The answer

TMove ReadAnswerMove(TLexer& lexer)
{
    const std::string_view strLexem = lexer.GetLexem();
    if (strLexem == "0") {
        const std::string strCastling = ReadCastlingText(lexer);
        if (strCastling.empty())
            throw ChessException("Invalid correct answer: " + std::string(strLexem));
        return *CastlingFromText(strCastling, true);
    }
    TMove move{};
    move.m_from = SquareWithLetterInFront(strLexem).m_square;
    if (move.m_from == NO_SQUARE)
        throw ChessException("Invalid correct answer ('from' element): " + std::string(strLexem));
    ReadDestination(lexer, &move, "Hyphen expected to separate correct answer elements",
                    "Invalid correct answer ('to' element): ");
    return move;
}

/// Marks of check and mate tell nothing that the move doesn't.
void SkipMarks(TLexer& lexer)
{
    while (std::string_view("+#=").find(lexer.Peek()) != std::string_view::npos)
        lexer.GetLexem();
}

/// The section that the word opens, and the "}" behind it.
void ReadAnswerSection(TProblem& problem, TLexer& lexer, const std::string& strWord)
{
    ReadColon(lexer, "Colon expected after correct answer identifier.");
    problem.m_vecExpectedSolutions.clear();
    problem.m_nRunOptions &= ~RUN_ANSWERKNOWN;
    if (IsAnswerWord(strWord))
        problem.m_nRunOptions |= RUN_ANSWERKNOWN;
    else
        problem.m_nRunOptions |= RUN_SORTKNOWN;
    if (strWord == "EXPECTEDSORTWHITEMOVESONLY")
        problem.m_nRunOptions |= RUN_SORTONLY;
    std::vector<TMove>& vecMoves = IsAnswerWord(strWord) ? problem.m_vecExpectedSolutions
                                                         : problem.m_vecExpectedSortWhiteMoves;
    while (lexer.Peek() != '}') {
        vecMoves.push_back(ReadAnswerMove(lexer));
        SkipMarks(lexer);
        const std::string_view strLexem = lexer.GetLexem();
        if (strLexem == "}")
            return;
        if (strLexem != ",")
            throw ChessException(
                "Comma should separate various solutions of the problem, but encountered: " +
                std::string(strLexem));
    }
    lexer.GetLexem();
}

} // namespace

bool ReadMoveFromFile(TLexer& lexer, TMove* pMove, bool bWhite)
{
    const std::size_t nPos = lexer.GetPos();
    const std::string_view strLexem = lexer.GetLexem();
    if (strLexem == "0") {
        const std::string strCastling = ReadCastlingText(lexer);
        if (strCastling.empty())
            throw ChessException("Incorrect castling symbol: " + std::string(strLexem));
        *pMove = *CastlingFromText(strCastling, bWhite);
        return true;
    }
    const std::string strWord = UpperCased(strLexem);
    const bool bWord = IsLetter(strLexem.front()) || IsDigit(strLexem.front());
    const bool bMoveLength = strLexem.size() == 2 || strLexem.size() == 3;
    if (strLexem == "}" || IsSortWord(strWord) || (bWord && !bMoveLength)) {
        lexer.SetPos(nPos);
        return false;
    }
    if (!bWord)
        throw ChessException("Invalid lexem encountered: " + std::string(strLexem));
    *pMove = TMove{};
    pMove->m_from = SquareWithLetterInFront(strLexem).m_square;
    if (pMove->m_from == NO_SQUARE)
        throw ChessException("Invalid 'from' position: " + std::string(strLexem));
    ReadDestination(lexer, pMove, "Hyphen expected.", "Invalid 'to' position: ");
    return true;
}

void ReadBlock(TProblem& problem, TLexer& lexer, const TTextForm& form)
{
    std::string_view strLexem = lexer.GetLexem();
    if (IsOneOf(UpperCased(strLexem), {"DESCRIPTION", "DESC", "D"})) {
        ReadColon(lexer, "Colon ':' expected after description identifier.");
        problem.SetDescription(form.m_converter.ToWide(lexer.GetRestOfLine()));
        strLexem = lexer.GetLexem();
    }
    ReadPosition(*problem.m_pChessboard, lexer, strLexem);
    strLexem = lexer.GetLexem();
    if (UpperCased(strLexem) == "MOVES") {
        ReadMovesSection(problem, lexer);
        strLexem = lexer.GetLexem();
    }
    const std::string strWord = UpperCased(strLexem);
    if (IsAnswerWord(strWord) || IsSortWord(strWord))
        ReadAnswerSection(problem, lexer, strWord);
    else if (strLexem != "}")
        throw ChessException("Closing bracket expected.");
}

} // namespace corvina
