#include "chess/fen.h"
#include "chess/notation.h"
#include "problems/variant.h"
#include "support/positions.h"

#include <gtest/gtest.h>

#include <sstream>

namespace corvina
{
namespace
{

/// A variant of full forms divided by blanks; a comment follows its move in square brackets, with
/// "_" for a blank. The moves are taken from the position.
TVariant VariantOf(const char* pFen, const std::string& strLine)
{
    TTestLine line(pFen, 21);
    TChessboard* pBoard = &line.board;
    TVariant variant{L"Основний варіант", {}};
    std::istringstream stream(strLine);
    for (std::string strToken; stream >> strToken;) {
        const std::size_t nComment = std::min(strToken.find('['), strToken.size());
        TVariantMove move;
        move.m_strText = strToken.substr(0, nComment);
        move.m_move = ParseMove(*pBoard, move.m_strText);
        if (nComment < strToken.size())
            move.m_strComment.assign(strToken.begin() + static_cast<std::ptrdiff_t>(nComment) + 1,
                                     strToken.end() - 1);
        pBoard = MakeMove(*pBoard, move.m_strText);
        variant.m_vecMoves.push_back(move);
    }
    return variant;
}

constexpr const char* START = g_aWalkStarts[0];

TEST(Variant, Forms)
{
    const TVariant plain = VariantOf(START, "e2-e4 e7-e5");
    const TVariant commented = VariantOf(START, "e2-e4[best] e7-e5 Ng1-f3[a_threat] Nb8-c6[!]");
    const TVariant other = VariantOf(START, "e2-e4 e7-e5 Ng1-f3 Ng8-f6 Nf3:e5");
    const TVariant detour = VariantOf(START, "e2-e4 c7-c5 Ng1-f3 Nb8-c6");

    EXPECT_EQ(VariantToText(plain, {.m_bNumbered = true}), L"1.e2-e4 e7-e5");
    EXPECT_EQ(VariantToText(plain, {}), L"e2-e4 e7-e5");
    EXPECT_EQ(VariantToText(plain, {.m_nNameMode = EVariantName::AsIs}),
              L"{Основний варіант} e2-e4 e7-e5");
    EXPECT_EQ(VariantToText(plain, {.m_nNameMode = EVariantName::EnglishMain}),
              L"{Main variant} e2-e4 e7-e5");
    EXPECT_EQ(VariantToText({L"Wariant", {}}, {.m_nNameMode = EVariantName::EnglishMain}),
              L"{Wariant} ");

    EXPECT_EQ(VariantToText(commented, {.m_bWithComments = true}),
              L"e2-e4[best] e7-e5 Ng1-f3[a_threat] Nb8-c6[!]");
    EXPECT_EQ(VariantToText(commented, {.m_bWithComments = true, .m_bNumbered = true}),
              L"1.e2-e4(best) 1. ...e7-e5 2.Ng1-f3(a_threat) 2. ...Nb8-c6(!)");
    EXPECT_EQ(VariantToText(commented, {.m_bNumbered = true}), L"1.e2-e4 e7-e5 2.Ng1-f3 Nb8-c6");

    EXPECT_EQ(VariantToText(commented, {.m_bNumbered = true, .m_pSkip1 = &other}), L"2. ...Nb8-c6");
    EXPECT_EQ(VariantToText(commented, {.m_bNumbered = true, .m_pSkip1 = &plain}),
              L"2.Ng1-f3 Nb8-c6");
    // The last move is also one of the detour, but the lines have parted before.
    EXPECT_EQ(VariantToText(commented, {.m_pSkip1 = &detour, .m_pSkip2 = &other}), L"Nb8-c6");
    EXPECT_EQ(VariantToText(commented, {.m_pSkip2 = &commented}), L"");
}

TEST(Variant, MarksAndShortForm)
{
    const struct
    {
        const char* m_pFen;
        const char* m_pLine;
        const wchar_t* m_pLong;
        const wchar_t* m_pShort;
    } aCases[] = {
        {START, "e2-e4 e7-e5 Qd1-h5 Nb8-c6 Bf1-c4 Ng8-f6 Qh5:f7",
         L"1.e2-e4 e7-e5 2.Qd1-h5 Nb8-c6 3.Bf1-c4 Ng8-f6 4.Qh5:f7x",
         L"1.e4 e5 2.Qh5 Nc6 3.Bc4 Nf6 4.Q:f7x"},
        {START, "f2-f3 e7-e5 g2-g4 Qd8-h4", L"1.f2-f3 e7-e5 2.g2-g4 Qd8-h4x", L"1.f3 e5 2.g4 Qh4x"},
        {START, "e2-e4 f7-f5 Qd1-h5 g7-g6 e4:f5 g6:h5",
         L"1.e2-e4 f7-f5 2.Qd1-h5+ g7-g6 3.e4:f5 g6:h5", L"1.e4 f5 2.Qh5+ g6 3.ef5 gh5"},
        {"4k3/8/8/4N3/8/8/8/4RK2", "Ne5-c6 Ke8-f8 Re1-e8", L"1.Ne5-c6+ Ke8-f8 2.Re1-e8+",
         L"1.Nc6+ Kf8 2.Re8+"},
        {"4k3/8/8/4B3/8/8/8/4RK2", "Be5-g7 Ke8-f7", L"1.Be5-g7+ Ke8-f7", L"1.Bg7+ Kf7"},
        {"k7/8/K7/8/8/8/8/2R5", "Rc1-c8", L"1.Rc1-c8x ideal mate", L"1.Rc8x ideal mate"},
        {"6k1/5ppp/8/8/8/8/8/R3K3", "Ra1-a8", L"1.Ra1-a8x model mate", L"1.Ra8x model mate"},
        {"k7/8/1K6/8/8/8/2Q5/8", "Qc2-c7", L"1.Qc2-c7=", L"1.Qc7="},
        {"4k3/8/8/8/4N3/8/8/4RK2", "Ne4-f6", L"1.Ne4-f6++", L"1.Nf6++"},
    };
    for (const auto& c : aCases) {
        TTestLine line(c.m_pFen, 9);
        TVariantTextOptions options{.m_bNumbered = true, .m_pPosition = &line.board};
        const TVariant variant = VariantOf(c.m_pFen, c.m_pLine);
        EXPECT_EQ(VariantToText(variant, options), c.m_pLong);
        options.m_bShortForm = true;
        EXPECT_EQ(VariantToText(variant, options), c.m_pShort);
    }
}

TEST(Variant, LanguagesAndMovesThatDoNotFit)
{
    TTestLine line("k7/8/K7/8/8/8/8/2R5", 3);
    TChessboard* pKept = PlayMoves(line.board, "1.Rh1 Kb8 2.Rh7");
    ASSERT_TRUE(pKept);
    const std::string strKept = WriteFen(*pKept, false);
    TVariantTextOptions options{.m_pPosition = &line.board, .m_language = ELanguage::Polish};
    const TVariant mate = VariantOf("k7/8/K7/8/8/8/8/2R5", "Rc1-c8");
    EXPECT_EQ(VariantToText(mate, options), L"Rc1-c8x mat idealny");
    options.m_language = ELanguage::Ukrainian;
    EXPECT_EQ(VariantToText(mate, options), L"Rc1-c8x ideal mate");
    // What the position doesn't allow, or the task has no room for, stands as it is stored.
    options.m_bShortForm = true;
    const TVariant longer = VariantOf("1k6/8/K7/8/8/8/8/2R5", "Rc1-c2 Kb8-a8 Rc2-c8");
    EXPECT_EQ(VariantToText(longer, options), L"Rc2 Kb8-a8 Rc2-c8");
    const TVariant second = VariantOf("k7/8/K7/8/8/8/8/2R5", "Rc1-h1 Ka8-b8 Rh1-h7 Kb8-a8 Rh7-h8");
    EXPECT_EQ(VariantToText(second, options), L"Rh1 Kb8 Rh7 Kb8-a8 Rh7-h8");
    EXPECT_EQ(WriteFen(*pKept, false), strKept);
}

} // namespace
} // namespace corvina
