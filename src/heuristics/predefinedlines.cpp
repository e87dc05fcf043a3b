#include "heuristics/predefinedlines.h"

/// Written by bench/knownlines.

namespace corvina
{
namespace
{

constexpr TPredefinedLine g_aLines[] = {
    {"8/8/8/8/7R/7P/6p1/2B1K1kb", nullptr},
    {"8/pp1p4/rrbQ4/kp1n4/1p6/8/P1N5/K7", nullptr},
    {"n1B2b1r/5p1n/1pK2pb1/1N4pq/2p1k1p1/1p4B1/1R1P2P1/2N5", nullptr},
    {"rn4b1/2p3p1/1pB5/p1nP3N/R1P1kBpN/2P5/2KP2P1/2b5", nullptr},
    {"1r6/1n2NNp1/5p2/R1p2B2/4pk1P/2P4R/1Bp3p1/3n1bK1", nullptr},
    {"8/pp2p1K1/4p3/3pPp2/1P1BkP2/4Pp2/2PpnP1P/3Nb3", nullptr},
    {"2R2K2/r2ppB2/1B1k3n/1Pp2P1P/4pP1R/rpN5/nN1P1b2/1q3b2", nullptr},
    {"1bn4q/p2R2pp/4p3/3p2N1/8/3KNP1P/1R5p/4k1n1", nullptr},
    {"8/6pq/p3P1pr/1p1N1p1p/bP2pB1k/1p2N3/1P4K1/8", nullptr},
    {"8/N1PP4/3P4/pp6/1P6/p1p5/rkPp2p1/qn1K2Rb", nullptr},
    {"K7/6p1/2Q3Pb/6p1/6Pp/2Pb3p/6pr/4B2k", nullptr},
    {"8/k1B4K/3N4/pppppppp/8/8/1b6/5R2", nullptr},
    {"8/3p1p1p/3p1p2/3p1B2/8/6pN/5pP1/3K1kbn", nullptr},
    {"1R1nN3/K1pP1nr1/B1k2Np1/3b4/P4P2/ppPpp1P1/2R5/6r1", nullptr},
    {"6Q1/8/8/5r2/2p5/4K3/7p/7k", nullptr},
    {"8/1p1Rp2r/1Pn1P1p1/2pBk1P1/3pN1K1/3P2n1/3P4/3N4", nullptr},
    {"2b2b2/2B2p1r/1n1r3p/8/1P1P1P2/2n1P1k1/1N3N2/4K2Q", nullptr},
    {"4K3/p7/6Rp/1NppkB1r/nBP1p3/4N2n/3p1P2/2b2R2", nullptr},
    {"n4N1n/1p1B1p2/1P5p/2Pk4/1P1p3r/K2PpNp1/2P3R1/6B1", nullptr},
    {"3qr3/1p1pB2p/1P1P4/Pnb2B1N/p5P1/r1p1kN2/P3P3/5K2", nullptr},
    {"8/1p4Pp/1p6/1p6/1p5p/5r1k/5p1p/5Kbr", nullptr},
    {"2b3BB/r2p4/p3P3/1n1N1kpP/2r1N1p1/R2P4/2q1P2P/4b2K", nullptr},
    {"5r1b/1pR4n/5kp1/1pNp2p1/R2P1P1P/4N1Pr/2P5/K4b2", nullptr},
    {"n7/p4RB1/2p1R1B1/r1p3P1/P1P3Pp/2Pp3P/bnP2pNK/3r1k2", nullptr},
    {"7r/p1N1Pb1B/P2p3r/3P1Pp1/3B2Pb/p1Pk1Pp1/P2N2Rp/7K", nullptr},
    {"rb2k3/2p1p1P1/2P4n/PpQP3r/bR2p3/6Bp/1npP4/4K2R", nullptr},
    {"3Q4/r1pP4/n3p3/BNprpbR1/4kbN1/1P3pP1/1nR2p2/5B1K", nullptr},
    {"4b3/K1pN1r2/pPpR1P2/8/1rp2N2/bB4P1/5P2/3R2Bk", nullptr},
    {"8/3prq2/6pQ/4pb1p/2P5/P1pp1P1k/R4P1p/2B3bK", nullptr},
    {"3n4/K1B2P1q/2p1N1pp/6p1/1p1p2B1/1p1rkP2/R1PbN1R1/3r4", nullptr},
    {"7R/n1p1pBk1/2r2pP1/1qN5/3rP1PP/4p1Kb/1Bn5/bQ6", nullptr},
    {"n4b2/2p5/6P1/7K/R2p1p2/pp1k1np1/N3Rp2/5B2", nullptr},
    {"n7/3p1p1b/3R1p1r/BN2P3/p5Bq/3pN3/2p1P2n/K1k5", nullptr},
    {"1K1R4/Bp1Np2B/4p3/2pkN2p/1q1p4/1r1p3n/2P2Pn1/b2R4", nullptr},
    {"4N3/p3b3/6p1/p7/Bp6/kP6/8/1K6", nullptr},
    {"8/6p1/2K2pP1/p3pP2/4P3/PBPpP3/1ppRp3/krrbB3", nullptr},
    {"1b5r/p3pN2/p2B1p2/p6p/Bp6/kP6/1p6/1K6", nullptr},
    {"5R2/8/1p2pBp1/5k2/Bppppp2/1rr2b1P/8/3n2K1", nullptr},
    {"8/5kP1/p1Q5/8/2pp1K2/5p2/4qP2/8", nullptr},
    {"3K1nbr/1p3pp1/6kp/2p2p1R/1p3P2/3Pb3/p1Q1B3/R2N2B1", nullptr},
    {"6n1/p2r2P1/3N3p/1P1KR2n/3p1k1N/3r2pP/1p2p3/1R1Bb3", nullptr},
    {"2K3bN/6n1/kbQ1p3/p6n/p5p1/8/6p1/8", nullptr},
    {"5Q2/8/p7/1p6/8/5K2/3r4/4k1b1", nullptr},
    {"n7/6nb/BB1P1pNq/2PkPN2/5pP1/4pP1p/P1p2bp1/2K5", nullptr},
    {"1b3K2/r1p1B3/2P1p3/1P2k3/8/P1P1NbPp/3N1P2/8", nullptr},
    {"K4br1/B1p1pnp1/2p5/k1N1n3/8/p1p5/Np2B3/6R1", nullptr},
    {"8/8/6p1/5qR1/4QNp1/5R1p/5Kbk/5B1r", nullptr},
    {"n2b4/4B1pN/p7/4pBp1/rpb2kP1/1p6/P2P3P/3KN3", nullptr},
    {"8/6p1/8/8/8/7p/2KB2n1/k6B", nullptr},
    {"4r2n/1R6/2n1p1P1/b3p1Bb/p1ppN1p1/rp3kNp/B1P4P/6K1", nullptr},
    {"8/8/8/5Q2/5p2/p7/1p2p3/kN1K4", nullptr},
    {"1Nb5/2p1pp2/5np1/1pp1rp2/2R4P/1N2kpP1/1K1R4/8", nullptr},
    {"r7/8/2K1Q3/6q1/8/5R2/7p/7k", nullptr},
    {"r1B5/5p1P/P2p2n1/B1P5/P2R2p1/1k2p3/1pN1P1rq/1Kn4b", nullptr},
    {"8/8/5N2/8/3K1N1p/1p3knR/1Pp2prb/n1B2b1B", nullptr},
    {"8/4N3/3pn3/8/4k1K1/2Q2p2/b1p5/8", nullptr},
    {"2r5/1p1p3p/5p1B/3NP3/n2PB2P/P1p4p/1p1p2n1/1rbk1K2", nullptr},
    {"3n4/8/B4R2/4N3/4NK2/p1p3p1/pbPp1PPp/kb1R2rq", nullptr},
    {"2rr4/3pp3/R1p1p2N/8/1pp2BR1/5p1k/4pP2/4K1nb", nullptr},
    {"2K1R1R1/P4p2/3p1k1p/1p2b3/rPpB2P1/1p1P4/rP6/8", nullptr},
    {"7r/k1N2p2/4b3/4p2r/2R5/4PK2/8/7R", nullptr},
    {"8/8/8/8/6R1/2B2p1K/5b2/7k", nullptr},
    {"4Nk1b/p2KN3/6P1/1pPp4/2p5/1P2BP2/1PP1P2r/3rq3", nullptr},
    {"7n/6p1/2KNNpP1/3P2r1/pp3p1P/k1pppP2/nrb1P3/2q5", nullptr},
    {"B2K2n1/3P1p2/np1pk3/4p1RN/2Rp3P/rP5q/4P3/bb6", nullptr},
    {"7k/4KR2/5Pq1/8/3B4/5B2/8/8", nullptr},
    {"2n1r1n1/pQ2p2B/Pp1bP3/6p1/rpP2pPp/8/7P/k6K", nullptr},
    {"n7/brp1K3/2R3p1/4Q2P/pkPpN2P/pp3p2/qr6/3b4", nullptr},
    {"1N1Q3K/nNp4p/2rp3p/Bkp3Pr/4pP2/bP1pP3/P2Pn1q1/8", nullptr},
    {"4n3/4K3/3BpNp1/1R1bP3/pPPk1pr1/2R3pQ/2PPr2n/q4Bb1", nullptr},
    {"r5k1/1p1p2p1/N7/1p4N1/1p4p1/8/7Q/bK4n1", nullptr},
    {"3n2r1/3B4/P4b2/rPN1pp2/pB1kP1P1/P4p2/2R2P2/1K6", nullptr},
    {"8/3p4/1KBpk3/3p4/P4P2/5P2/1NPPNP2/8", nullptr},
};

} // namespace

std::span<const TPredefinedLine> PredefinedLines()
{
    return g_aLines;
}

} // namespace corvina
