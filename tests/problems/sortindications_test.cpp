#include "problems/sortindications.h"
#include "support/chesstest.h"

namespace corvina
{
namespace
{

constexpr TSquare A1 = 0, E1 = 4, G1 = 6, C1 = 2, E5 = 36, E7 = 52, E8 = 60, A8 = 56;

TEST(SortIndications, Items)
{
    const struct
    {
        const char* m_pText;
        TSortIndication m_item;
        const char* m_pWritten;
    } aCases[] = {
        {"1. Qa1-a8", {WHITE_QUEEN, A1, A8, -1, 0, 0, 1, false, false}, "1.Qa1-a8"},
        {" qa8+ ", {WHITE_QUEEN, NO_SQUARE, A8, -1, 1, 0, 0, false, false}, "Qa8+"},
        {"~12.Q:A8++", {WHITE_QUEEN, NO_SQUARE, A8, 1, 2, 0, 12, true, false}, "~12.Q:a8++"},
        {"a1>a8", {0, A1, A8, 0, 0, 0, 0, false, false}, "a1>a8"},
        {"-a8", {0, NO_SQUARE, A8, -1, 0, 0, 0, false, false}, "a8"},
        {">a8", {0, NO_SQUARE, A8, 0, 0, 0, 0, false, false}, ">a8"},
        {"pe7-e8S", {WHITE_PAWN, E7, E8, -1, 0, KIND_KNIGHT, 0, false, false}, "pe7-e8N"},
        {"Pe5*+", {WHITE_PAWN, NO_SQUARE, E5, -1, 1, 0, 0, false, true}, "pe5+"},
        {"3.0-0", {WHITE_KING, E1, G1, -1, 0, 0, 3, false, false}, "3.Ke1-g1"},
        {"0-0-0+", {WHITE_KING, E1, C1, -1, 1, 0, 0, false, false}, "Ke1-c1+"},
        {"65535.Ga8", {WHITE_BISHOP, NO_SQUARE, A8, -1, 0, 0, 65535, false, false}, "65535.Ba8"},
    };
    for (const auto& c : aCases) {
        EXPECT_EQ(ParseSortIndication(c.m_pText), c.m_item) << c.m_pText;
        TSortIndications list;
        list.Add(c.m_item);
        EXPECT_EQ(SortIndicationsToText(list), c.m_pWritten);
        EXPECT_EQ(list.m_bHasGeneralItem, c.m_item.m_nMoveNumber == 0);
    }
}

TEST(SortIndications, ListsAndFaults)
{
    TSortIndications list;
    ParseSortIndications(list, "2.Qa8; 1.e5 ;2.Ke1");
    ParseSortIndications(list, "2.Nc1");
    EXPECT_EQ(SortIndicationsToText(list), "1.e5; 2.Qa8; 2.Ke1; 2.Nc1");
    EXPECT_FALSE(list.m_bHasGeneralItem);

    const std::string strInvalid = "Invalid description of SortIndication";
    const std::string strLong = "Move description too long (note that moves should be separated "
                                "with a comma or semicolon)";
    const std::pair<const char*, std::string> aFaults[] = {
        {"|Qa8, ", strInvalid},
        {"Ya8", "Unknown figure letter: Y"},
        {"Qa8+++|Qa1-a8 Qb1|Qa8, Qb8; Qc8", strLong}};
    for (const auto& [pTexts, strFault] : aFaults) {
        for (const std::string& strText : Split(pTexts, '|'))
            EXPECT_EQ(FailureText([&] { ParseSortIndications(list, strText); }), strFault);
    }
    for (const std::string strText : {"0-1", "Qa9", "i1-a8", "Qa1-", "~", "65536.Qa8", "e8K"})
        EXPECT_EQ(FailureText([&] { ParseSortIndications(list, strText); }),
                  strInvalid + ": " + strText);
}

} // namespace
} // namespace corvina
