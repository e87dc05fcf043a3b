#include "chess/chessboard.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <sstream>

namespace corvina
{
namespace
{

/// A board, not scanned, of figures like "Ke1 qd8": capitals for White.
TChessboard BareBoard(const std::string& strFigures)
{
    TChessboard board;
    std::istringstream stream(strFigures);
    for (std::string strFigure; stream >> strFigure;)
        board.m_board[(strFigure[2] - '1') * 8 + strFigure[1] - 'a'] =
            FigureFromLetter(strFigure[0]) |
            (std::isupper(strFigure[0]) ? COLOUR_WHITE : COLOUR_BLACK);
    return board;
}

TChessboard Scanned(const std::string& strFigures)
{
    TChessboard board = BareBoard(strFigures);
    board.ScanBoard(true);
    return board;
}

TEST(Board, ScanRejectsImpossiblePositions)
{
    const std::string strKings = "Illegal number of kings.";
    const std::string strPawns = "Pawns cannot occupy 1st nor 8th line of the chessboard.";
    const std::string strBoth = "Both kings attacked.";
    const std::pair<const char*, std::string> aCases[] = {
        {"|Ke1|Ke1 Ka4 ke8|Ke1 Kg1 ke8 ka8", strKings},
        {"Pa1 Ke1 Ke3|Ke1 ke8 ph1|Ke1 ke8 Ph8", strPawns}, // before the kings are counted
        {"Kd4 ke5|Kc3 rc8 kh8 Bd4", strBoth},
        {"Ke1 ke8 Pa2 pa7 Ra8|Ke1 ke8 Pa2 pa7 ra1", ""}, // one king in check
    };
    for (const auto& [pBoards, strText] : aCases) {
        for (const std::string& strFigures : Split(pBoards, '|')) {
            TChessboard board = BareBoard(strFigures);
            TChessboard other = board;
            EXPECT_EQ(FailureText([&] { board.ScanBoard(false); }), strText) << strFigures;
            EXPECT_EQ(other.RescanBoard(false), strText.empty()) << strFigures;
        }
    }
    EXPECT_EQ(FailureText([] { FigureFromLetter('x'); }), "Unknown figure letter: x");
}

TEST(Board, OnlyTheSideToMoveMayStartInCheck)
{
    const auto start = [](const std::string& strFigures, std::uint16_t nMoves) {
        TChessboard board = BareBoard(strFigures);
        const std::string strFailure = FailureText([&] { board.CheckStartPosition(nMoves, true); });
        EXPECT_EQ(board.m_nMoves, nMoves);
        EXPECT_EQ(board.m_nInitialMoves, nMoves);
        return strFailure;
    };
    EXPECT_EQ(start("Ke1 ke8 ra1", 5), "");
    EXPECT_EQ(start("Ke1 ke8 Ra8", 6), "");
    EXPECT_EQ(start("Ke1 ke8 Ra8", 5),
              "Black king cannot be checked in the mate task starting postition.");
    EXPECT_EQ(start("Ke1 ke8 ra1", 6),
              "White king cannot be checked in the mate-defence task starting postition.");
    EXPECT_EQ(start("Ke1 ke2", 5), "Both kings attacked.");
}

TEST(Board, ScanListsWhiteFiguresWhileTheyFit)
{
    // Bishops on squares of one colour have no list, and Black has none.
    const char* aBoards[] = {"Qa3 Qb3|Qa3 Qb3 Qc3 Qa4 Qb4 Qc4 Qa5 Qb5 Qc5|Ra3 Rb3 Rc5|Na3 Nb3 Nc5|"
                             "Bc4 Bd3|Bc3 Bb2|Bc4 Bc3 Bd3",
                             "Ra3 Rb3|Na3 Nb3|Bc4 Bc3|qa2 qa3 rc6 rd6 re6 na7 nb6 nc7 bc4 bd3"};
    for (const bool bValid : {false, true}) {
        for (const std::string& strFigures : Split(aBoards[bValid], '|'))
            EXPECT_EQ(Scanned("Kh1 kh8 " + strFigures).m_bWhiteSquaresValid, bValid) << strFigures;
    }
    EXPECT_EQ(Scanned("Kh1 kh8 Bc4 Bd3").m_whiteBishopSquares[0], 19);
    EXPECT_TRUE(Scanned("Kh1 kh8 Bc4 Bd3").HasTwoBishopsOfOneColour());
    EXPECT_FALSE(Scanned("Kh1 kh8 Bc4 Bc3").HasTwoBishopsOfOneColour());
    EXPECT_FALSE(Scanned("Kh1 kh8 Bc4").HasTwoBishopsOfOneColour());

    TChessboard board = Scanned("Kh1 kh8 Qd5 Rb2 Ra7 Na1 Nb8 Bc3 Bc4");
    auto* pLists =
        reinterpret_cast<std::uint8_t*>(&board) + offsetof(TChessboard, m_whiteRookSquares);
    const std::vector<int> vecExpected = {9, 48, 18, 26, 0, 57, 35, true};
    EXPECT_EQ(std::vector<int>(pLists, pLists + 8), vecExpected);
    std::fill_n(pLists, 8, std::uint8_t{0});
    board.RebuildWhiteLists();
    EXPECT_EQ(std::vector<int>(pLists, pLists + 8), vecExpected);
}

TEST(Board, ScanDerivesTheOtherMembers)
{
    TChessboard board = BareBoard("Kh1 kg6 qa1 ra2 rb2 ba4 bb4 bc4 na5 nb5 nc5 nd5 pa6 pb6 pc6 pd6 "
                                  "pe6 Qf1 Qf3 Rg1 Bc1 Bd1 Be1 Na3 Nb3 Pa7 Pb7 Pc7");
    board.m_board[63] = KIND_QUEEN;       // no figures: without a colour,
    board.m_board[62] = COLOUR_WHITE | 3; // without a kind
    board.m_moveFilter = 0xFF;
    board.m_boardFlags = 0xFFFF;
    board.m_nHeuristics = board.m_nHeuristicsParams = board.m_nPositionFlags = 5;
    board.ScanBoard(false);
    const auto* pCounts =
        reinterpret_cast<const std::uint8_t*>(&board) + offsetof(TChessboard, m_nWhiteQueens);
    EXPECT_EQ(std::vector<int>(pCounts, pCounts + 10),
              (std::vector<int>{2, 1, 1, 2, 3, 3, 2, 4, 3, 5}));
    EXPECT_EQ(board.WhiteKing(), 7);
    EXPECT_EQ(board.BlackKing(), 46);
    EXPECT_EQ(board.m_boardFlags, 0xFFEF); // ring 1
    EXPECT_EQ(board.m_blackChecker, 6);    // the rook on g1
    EXPECT_EQ(board.m_whiteChecker, NO_CHECK);
    EXPECT_EQ(board.m_moveFilter, 0xC3); // no captures counted
    EXPECT_EQ(board.m_nHeuristics + board.m_nPositionFlags, 10u);
    board.ScanBoard(true);
    EXPECT_EQ(board.m_nHeuristics + board.m_nPositionFlags, 0u);
    EXPECT_EQ(board.m_nHeuristicsParams, 5u);
    EXPECT_EQ(Scanned("Kh1 ke5 Re8 Ba1").m_blackChecker, DOUBLE_CHECK);
    EXPECT_EQ(Scanned("Kh1 kh8 rh5 nf2").m_whiteChecker, DOUBLE_CHECK);
}

TEST(Board, MoreThanNineQueensAndPawnsAreAskedAbout)
{
    const std::string strNote =
        "Note: There are more than 9 queens and pawns of the same color. Program is able to "
        "properly handle only legal positions (in which no more than 218 moves are possible); "
        "otherwise its behaviour may be unpredictable.";
    const std::string strNine = "Kh1 kh8 Pa2 Pb2 Pc2 Pd2 Pe2 Pf2 Pg2 Qh2 Qa3 "
                                "pa7 pb7 pc7 pd7 pe7 pf7 pg7 qh7 qa6";
    int nAsked = 0;
    const TQuestion question = [&](const std::string& strTitle, const std::string& strText) {
        EXPECT_EQ(strTitle, "Question");
        EXPECT_EQ(strText, strNote + "\nDo you want to continue anyway?");
        return nAsked++ % 2 == 0;
    };
    EXPECT_TRUE(Scanned(strNine).CheckFigureLimits(question));
    EXPECT_EQ(nAsked, 0);
    for (const char* pTenth : {" Pb3", " Qb3", " pb6", " qb6"}) {
        EXPECT_TRUE(Scanned(strNine + pTenth).CheckFigureLimits(question)) << pTenth;
        EXPECT_FALSE(Scanned(strNine + pTenth).CheckFigureLimits(question)) << pTenth;
    }

    std::FILE* pNotes = std::tmpfile();
    EXPECT_TRUE(Scanned(strNine).CheckFigureLimits(nullptr, pNotes));
    EXPECT_EQ(std::ftell(pNotes), 0);
    EXPECT_TRUE(Scanned(strNine + " Pb3").CheckFigureLimits(nullptr, pNotes));
    std::rewind(pNotes);
    char aText[1000];
    const std::string strPrinted(aText, std::fread(aText, 1, sizeof aText, pNotes));
    std::fclose(pNotes);
    EXPECT_EQ(strPrinted.substr(0, strPrinted.find('\n')), strNote);
    EXPECT_EQ(strPrinted.find("Do you"), std::string::npos);
}

} // namespace
} // namespace corvina
