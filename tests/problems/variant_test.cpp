#include "problems/variant.h"
#include "support/chesstest.h"

namespace corvina
{
namespace
{

/// A variant of full forms divided by blanks; a comment follows its move in square brackets.
TVariant VariantOf(const char* pFen, const std::string& strLine)
{
    TTestLine line(pFen, 21);
    TChessboard* pBoard = &line.board;
    TVariant variant{L"Основний варіант", {}};
    for (const std::string& strToken : Split(strLine, ' ')) {
        const std::vector<std::string> vecParts = Split(strToken, '[');
        TVariantMove move{ParseMove(*pBoard, vecParts[0]), vecParts[0], {}};
        if (vecParts.size() > 1)
            move.m_strComment.assign(vecParts[1].begin(), vecParts[1].end() - 1);
        pBoard = MakeMove(*pBoard, move.m_strText);
        variant.m_vecMoves.push_back(move);
    }
    return variant;
}

constexpr const char* START = g_aWalkStarts[0];

TEST(Variant, Forms)
{
    const TVariant plain = VariantOf(START, "e2-e4 e7-e5");
    const TVariant line = VariantOf(START, "e2-e4[best] e7-e5 Ng1-f3[threat] Nb8-c6[!]");
    const TVariant other = VariantOf(START, "e2-e4 e7-e5 Ng1-f3 Ng8-f6 Nf3:e5");
    const TVariant detour = VariantOf(START, "e2-e4 c7-c5 Ng1-f3 Nb8-c6");
    const struct
    {
        TVariant m_variant;
        TVariantTextOptions m_options;
        const wchar_t* m_pText;
    } aCases[] = {
        {plain, {.m_bNumbered = true}, L"1.e2-e4 e7-e5"},
        {plain, {.m_nNameMode = EVariantName::AsIs}, L"{Основний варіант} e2-e4 e7-e5"},
        {plain, {.m_nNameMode = EVariantName::EnglishMain}, L"{Main variant} e2-e4 e7-e5"},
        {{L"A", {}}, {.m_nNameMode = EVariantName::EnglishMain}, L"{A} "},
        {line, {.m_bWithComments = true}, L"e2-e4[best] e7-e5 Ng1-f3[threat] Nb8-c6[!]"},
        {line,
         {.m_bWithComments = true, .m_bNumbered = true},
         L"1.e2-e4(best) 1. ...e7-e5 2.Ng1-f3(threat) 2. ...Nb8-c6(!)"},
        {line, {.m_bNumbered = true}, L"1.e2-e4 e7-e5 2.Ng1-f3 Nb8-c6"},
        {line, {.m_bNumbered = true, .m_pSkip1 = &other}, L"2. ...Nb8-c6"},
        {line, {.m_bNumbered = true, .m_pSkip1 = &plain}, L"2.Ng1-f3 Nb8-c6"},
        // The last move is also one of the detour, but the lines have parted before.
        {line, {.m_pSkip1 = &detour, .m_pSkip2 = &other}, L"Nb8-c6"},
        {line, {.m_pSkip2 = &line}, L""},
    };
    for (const auto& c : aCases)
        EXPECT_EQ(VariantToText(c.m_variant, c.m_options), c.m_pText);
}

TEST(Variant, MarksAndShortForm)
{
    const struct
    {
        const char* m_pFen;
        const char* m_pLine;
        bool m_bShortForm;
        const wchar_t* m_pText;
    } aCases[] = {
        {START, "e2-e4 e7-e5 Qd1-h5 Nb8-c6 Bf1-c4 Ng8-f6 Qh5:f7", true,
         L"1.e4 e5 2.Qh5 Nc6 3.Bc4 Nf6 4.Q:f7x"},
        {START, "f2-f3 e7-e5 g2-g4 Qd8-h4", false, L"1.f2-f3 e7-e5 2.g2-g4 Qd8-h4x"},
        {START, "e2-e4 f7-f5 Qd1-h5 g7-g6 e4:f5 g6:h5", true, L"1.e4 f5 2.Qh5+ g6 3.ef5 gh5"},
        {"4k3/8/8/4N3/8/8/8/4RK2", "Ne5-c6 Ke8-f8 Re1-e8", false, L"1.Ne5-c6+ Ke8-f8 2.Re1-e8+"},
        {"6k1/5ppp/8/8/8/8/8/R3K3", "Ra1-a8", true, L"1.Ra8x model mate"},
        {"k7/8/1K6/8/8/8/2Q5/8", "Qc2-c7", false, L"1.Qc2-c7="},
        {"4k3/8/8/8/4N3/8/8/4RK2", "Ne4-f6", true, L"1.Nf6++"},
    };
    for (const auto& c : aCases) {
        TTestLine line(c.m_pFen, 9);
        const TVariant variant = VariantOf(c.m_pFen, c.m_pLine);
        EXPECT_EQ(VariantToText(variant, {.m_bNumbered = true,
                                          .m_pPosition = &line.board,
                                          .m_bShortForm = c.m_bShortForm}),
                  c.m_pText);
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
    const TVariant second = VariantOf("k7/8/K7/8/8/8/8/2R5", "Rc1-g1 Ka8-b8 Rg1-g7 Kb8-a8 Rg7-g8");
    EXPECT_EQ(VariantToText(second, options), L"Rg1 Kb8 Rg7 Kb8-a8 Rg7-g8");
    EXPECT_EQ(WriteFen(*pKept, false), strKept);
}

} // namespace
} // namespace corvina
