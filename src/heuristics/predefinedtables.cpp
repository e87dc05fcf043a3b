#include "heuristics/predefined.h"
#include "heuristics/predefinedlines.h"

namespace corvina
{
namespace
{

using TTables = TPredefinedTables;

TTables::TByFen<TTables::TTexts> KnownHeuristics()
{
    return {
        {"8/4p2k/3pB2p/3p1K1p/2pB3P/2P5/8/7n", {"DLFU(h1,d5,e7)"}},
        {"8/p2p1p1p/p7/8/p3R3/5p2/1n5p/b4K1k", {"LFQMDepth(#4)"}},
        {"8/3p1p1p/3p1p2/3p1B2/8/6pN/5pP1/3K1kbn", {"SafeMode"}},
        {"1R1nN3/K1pP1nr1/B1k2Np1/3b4/P4P2/ppPpp1P1/2R5/6r1", {"AssertBKS(strict)"}},
        {"6Q1/8/8/5r2/2p5/4K3/7p/7k", {"ExtEdge"}},
        {"2b2b2/2B2p1r/1n1r3p/8/1P1P1P2/2n1P1k1/1N3N2/4K2Q", {"AssertBKS(strict)"}},
        {"3n4/K1B2P1q/2p1N1pp/6p1/1p1p2B1/1p1rkP2/R1PbN1R1/3r4", {"DontLetKingMove"}},
        {"n7/3p1p1b/3R1p1r/BN2P3/p5Bq/3pN3/2p1P2n/K1k5", {"AssertBKS(strict)"}},
        {"1K1R4/Bp1Np2B/4p3/2pkN2p/1q1p4/1r1p3n/2P2Pn1/b2R4", {"AssertBKS(strict)"}},
        {"6n1/p2r2P1/3N3p/1P1KR2n/3p1k1N/3r2pP/1p2p3/1R1Bb3", {"LFQMDepth(#4)"}},
        {"8/8/8/8/6R1/2B2p1K/5b2/7k", {"LFQMDepth(#4)"}},
        {"7k/4KR2/5Pq1/8/3B4/5B2/8/8", {"AssertBKS"}},
        {"n7/brp1K3/2R3p1/4Q2P/pkPpN2P/pp3p2/qr6/3b4", {"LFQMDepth(#4)"}},
        {"4n3/4K3/3BpNp1/1R1bP3/pPPk1pr1/2R3pQ/2PPr2n/q4Bb1",
         {"AssertBKS(strict)", "LFQMDepth(#3)"}},
        {"r5k1/1p1p2p1/N7/1p4N1/1p4p1/8/7Q/bK4n1", {"LFQMDepth(#5)"}},
        {"8/p5p1/4K2p/2p2Pb1/P1NkN1p1/1P1B4/p1P3P1/8", {"DontLetPromotedQueenMove NO"}},
        {"8/3p4/1KBpk3/3p4/P4P2/5P2/1NPPNP2/8", {"LFQMDepth(#4)"}},
    };
}

/// The mating net that White's king draws around the king in the corner, while Black's bishop and
/// pawns run out of moves.
TTables::TByFen<std::string> NetInTheCorner()
{
    return {
        {"8/8/8/8/8/5NpB/5pPb/3K1k1n", "Kd1-d2"},    {"8/8/8/8/8/5NpB/3K1pP1/5kbn", "Kd2-d3"},
        {"8/8/8/8/8/3K1NpB/5pPb/5k1n", "Kd3-e3"},    {"8/8/8/8/5p2/5NpB/5pPb/3K1k1n", "Nf3-d4"},
        {"8/8/8/8/3N1p2/6pB/5pP1/3K1kbn", "Nd4-e2"}, {"8/8/8/8/5p2/6pB/4NpPb/3K1k1n", "Ne2:f4"},
        {"8/8/8/8/3p1p2/6pB/3KNpPb/5k1n", "Ne2:d4"}, {"8/8/8/8/5p1N/6pB/3K1pP1/5kbn", "Nh4-f3"},
        {"8/8/8/8/7p/3p1NpB/3K1pPb/5k1n", "Kd2:d3"},
    };
}

TTables::TByFen<TTables::TTexts> KnownLines()
{
    TTables::TByFen<TTables::TTexts> mapLines;
    for (const TPredefinedLine& line : PredefinedLines()) {
        TTables::TTexts& vecTexts = mapLines[line.m_pFen];
        if (line.m_pText)
            vecTexts.push_back(line.m_pText);
    }
    return mapLines;
}

} // namespace

const TPredefinedTables& PredefinedTables()
{
    static const TPredefinedTables tables{
        KnownHeuristics(),
        KnownLines(),
        {{"8/3p1p1p/3p1p2/3p1B2/8/6pN/5pP1/3K1kbn", NetInTheCorner()}},
    };
    return tables;
}

} // namespace corvina
