#include "heuristics/predefinedlines.h"

// Written by corvina-known-lines.

namespace corvina
{
namespace
{

constexpr TPredefinedLine g_aLines[] = {
    {"8/8/8/8/7R/7P/6p1/2B1K1kb",
     "1. Bc1-a3 Kg1-h2 2. Ba3-d6+ Kh2-g1 3. Rh4-f4 Kg1-h2 4. Rf4-f3+ Kh2-g1 5. Rf3-g3 Kg1-h2 6. "
     "Rg3-e3+ Kh2-g1 7. Re3-e5 Kg1-h2 8. Re5-h5+ Kh2-g1 9. Ke1-d2 Kg1-f2 10. Rh5-f5+ Kf2-g1 11. "
     "Bd6-f4 Kg1-f2 12. Bf4-h2#"},
    {"8/pp1p4/rrbQ4/kp1n4/1p6/8/P1N5/K7", nullptr},
    {"n1B2b1r/5p1n/1pK2pb1/1N4pq/2p1k1p1/1p4B1/1R1P2P1/2N5",
     "1. Nb5-c3+ Ke4-d4 2. Nc3-e2+ Kd4-e4 3. Rb2:b3 c4:b3 4. Bc8-a6 b6-b5 5. Ba6-b7 Ke4-f5 6. "
     "Ne2-d4+ Kf5-e4 7. Nd4:b3 Ke4-f5 8. Nb3-d4+ Kf5-e4 9. Nd4-c2 Ke4-f5 10. Bb7-c8+ Kf5-e4 11. "
     "d2-d3#"},
    {"rn4b1/2p3p1/1pB5/p1nP3N/R1P1kBpN/2P5/2KP2P1/2b5",
     "1. Bc6-e8 Bg8-h7 2. Nh4-g6 Ke4-f5 3. Nh5:g7+ Kf5-e4 4. Ng7-h5 Ke4-f5 5. Ng6-h4+ Kf5-e4 6. "
     "g2-g3 Nb8-d7 7. Nh5-f6+ Nd7:f6 8. Be8-c6 Bh7-g8 9. d5-d6+ Nf6-d5 10. c4:d5+ Nc5:a4 11. "
     "d2-d3#"},
    {"1r6/1n2NNp1/5p2/R1p2B2/4pk1P/2P4R/1Bp3p1/3n1bK1",
     "1. Ra5-a4 c5-c4 2. Ra4-a5 Nb7:a5 3. Bb2-a3 Na5-b7 4. Nf7-d6 Kf4-e5 5. Ne7-g6+ Ke5-d5 6. "
     "Bf5:e4+ Kd5-e6 7. Be4-f5+ Ke6-d5 8. Ng6-e7+ Kd5-e5 9. Nd6-f7+ Ke5-f4 10. Ba3-c1+ Nd1-e3 11. "
     "Bc1:e3#"},
    {"8/pp2p1K1/4p3/3pPp2/1P1BkP2/4Pp2/2PpnP1P/3Nb3",
     "1. b4-b5 a7-a6 2. b5:a6 b7-b5 3. a6-a7 b5-b4 4. a7-a8Q Ne2:d4 5. Qa8-a3 Nd4:c2 6. Qa3-b3 "
     "Nc2-a3 7. Kg7-f7 d5-d4 8. Kf7:e6 Na3-b1 9. Qb3:b1+ d4-d3 10. Qb1:b4#"},
    {"2R2K2/r2ppB2/1B1k3n/1Pp2P1P/4pP1R/rpN5/nN1P1b2/1q3b2",
     "1. Rh4-g4 Nh6:g4 2. Bb6-d8 Bf2-h4 3. f5-f6 Bh4:f6 4. Bd8-b6 Bf6-d4 5. d2-d3 Qb1:d3 6. "
     "Nb2-c4+ Qd3:c4 7. Nc3:e4#"},
    {"1bn4q/p2R2pp/4p3/3p2N1/8/3KNP1P/1R5p/4k1n1",
     "1. Ne3-g4 Ke1-f1 2. Rd7-b7 h2-h1N 3. f3-f4 Bb8:f4 4. Rb7-f7 Ng1-e2 5. Rb2:e2 Nh1-f2 6. "
     "Re2:f2+ Kf1-g1 7. Ng5-f3+ Kg1-h1 8. Rf7:f4 d5-d4 9. Rf2-h2#"},
    {"8/6pq/p3P1pr/1p1N1p1p/bP2pB1k/1p2N3/1P4K1/8",
     "1. Bf4-d6 a6-a5 2. Bd6-g3+ Kh4-g5 3. Bg3-f4+ Kg5-h4 4. Bf4-d6 a5:b4 5. Bd6-g3+ Kh4-g5 6. "
     "Bg3-f4+ Kg5-h4 7. Bf4-d6 f5-f4 8. Nd5:f4 Kh4-g5 9. Nf4-d5 Kg5-h4 10. Bd6:b4 Qh7-h8 11. "
     "Bb4-e7+ g6-g5 12. Ne3-f5+ Kh4-g4 13. Nd5-e3+ Kg4-f4 14. Be7-d6#"},
    {"8/N1PP4/3P4/pp6/1P6/p1p5/rkPp2p1/qn1K2Rb",
     "1. b4:a5 b5-b4 2. c7-c8Q b4-b3 3. c2:b3 Kb2:b3 4. Qc8-b7+ Kb3-c4 5. Qb7-b5+ Kc4-d4 6. "
     "Na7-c6+ Kd4-e3 7. Qb5-e2+ Ke3-f4 8. Qe2-f2+ Kf4-e4 9. Qf2-h4+ Ke4-d5 10. Nc6-e7+ Kd5-e5 11. "
     "Qh4-g5+ Ke5-e4 12. Qg5-g4+ Ke4-e5 13. Qg4-e2+ Ke5-f4 14. Ne7-g6+ Kf4-g3 15. Qe2-e5+ Kg3-g4 "
     "16. Qe5-e4+ Kg4-h5 17. Ng6-f4+ Kh5-g4 18. Nf4:g2+ Kg4-g5 19. d7-d8Q+ Kg5-h6 20. Rg1:h1+ "
     "Kh6-g7 21. Rh1-h7#"},
    {"K7/6p1/2Q3Pb/6p1/6Pp/2Pb3p/6pr/4B2k", nullptr},
    {"8/k1B4K/3N4/pppppppp/8/8/1b6/5R2",
     "1. Rf1-b1 a5-a4 2. Rb1:b2 b5-b4 3. Rb2-c2 c5-c4 4. Rc2-d2 d5-d4 5. Rd2-e2 e5-e4 6. Re2-f2 "
     "f5-f4 7. Rf2-g2 g5-g4 8. Rg2-h2 h5-h4 9. Rh2:h4 a4-a3 10. Rh4-h5 a3-a2 11. Rh5-a5#"},
    {"8/3p1p1p/3p1p2/3p1B2/8/6pN/5pP1/3K1kbn", nullptr},
    {"1R1nN3/K1pP1nr1/B1k2Np1/3b4/P4P2/ppPpp1P1/2R5/6r1", nullptr},
    {"6Q1/8/8/5r2/2p5/4K3/7p/7k",
     "1. Qg8-h7 Rf5-f1 2. Qh7-b7+ Kh1-g1 3. Qb7-g7+ Kg1-h1 4. Ke3-e2 Rf1-f4 5. Qg7-g8 Rf4-f5 6. "
     "Qg8-c8 Rf5-f4 7. Qc8-a8+ Kh1-g1 8. Qa8-g8+ Kg1-h1 9. Qg8-d5+ Kh1-g1 10. Qd5-g5+ Kg1-h1 11. "
     "Qg5:f4 Kh1-g2 12. Qf4-f3+ Kg2-g1 13. Qf3-f1#"},
    {"8/1p1Rp2r/1Pn1P1p1/2pBk1P1/3pN1K1/3P2n1/3P4/3N4",
     "1. Nd1-b2 Rh7-h4 2. Kg4:h4 Ng3-f1 3. Nb2-c4+ Ke5-f4 4. Bd5:c6 Nf1-h2 5. Rd7:e7 Nh2-f3 6. "
     "Kh4-h3 Nf3-h4 7. Kh3:h4 Kf4-f3 8. Re7-f7+ Kf3-e2 9. Rf7-f2+ Ke2-e1 10. Bc6-b5 Ke1-d1 11. "
     "Bb5-a4+ Kd1-e1 12. Nc4-e5 c5-c4 13. Ne5-f3#"},
    {"2b2b2/2B2p1r/1n1r3p/8/1P1P1P2/2n1P1k1/1N3N2/4K2Q",
     "1. Ke1-f1 Bc8-a6 2. b4-b5 Ba6:b5 3. Kf1-e1 Bb5-d7 4. Bc7-d8 f7-f6 5. Ke1-f1 Bd7-b5 6. Nb2-c4 "
     "Bb5:c4 7. Kf1-e1 Bc4-e6 8. Bd8:f6 Bf8-e7 9. f4-f5 Nc3-b1 10. Qh1-h3#"},
    {"4K3/p7/6Rp/1NppkB1r/nBP1p3/4N2n/3p1P2/2b2R2",
     "1. Bb4-a5 Na4-b6 2. Ba5-c3+ Ke5-f4 3. Bf5-g4 Rh5-e5 4. Bc3:e5+ Kf4:e5 5. f2-f4+ e4:f3 6. "
     "Rg6-e6+ Ke5-f4 7. Rf1:f3+ Kf4-g5 8. Rf3-f5+ Kg5-h4 9. Re6:h6+ Kh4-g3 10. Rh6:h3#"},
    {"n4N1n/1p1B1p2/1P5p/2Pk4/1P1p3r/K2PpNp1/2P3R1/6B1",
     "1. Rg2-h2 g3:h2 2. Bd7-c8 Kd5-c6 3. Nf3-e5+ Kc6-d5 4. Bg1:h2 Rh4:h2 5. Ne5-f3 Kd5-c6 6. "
     "Bc8-d7+ Kc6-d5 7. Nf8-h7 Rh2-h3 8. Nh7-f6#"},
    {"3qr3/1p1pB2p/1P1P4/Pnb2B1N/p5P1/r1p1kN2/P3P3/5K2",
     "1. Nh5-f6 Ke3-f4 2. Kf1-g2 Kf4-e3 3. Bf5-d3 Ke3-f4 4. Kg2-h3 Kf4-e3 5. Kh3-g3 Bc5:d6 6. "
     "Kg3-g2 Ke3-f4 7. Bd3-f5 Kf4-e3 8. Kg2-f1 Ke3-f4 9. Kf1-f2 Bd6-c5 10. Kf2-g2 Kf4-e3 11. "
     "Kg2-f1 Ke3-f4 12. Nf6-h5+ Kf4-e3 13. Be7:c5+ Nb5-d4 14. Bc5:d4#"},
    {"8/1p4Pp/1p6/1p6/1p5p/5r1k/5p1p/5Kbr", nullptr},
    {"2b3BB/r2p4/p3P3/1n1N1kpP/2r1N1p1/R2P4/2q1P2P/4b2K",
     "1. Nd5-e3+ Kf5-f4 2. Ne3-g2+ Kf4-f5 3. Ra3:a6 g4-g3 4. h2-h3 Bc8:a6 5. Ng2-e3+ Kf5-f4 6. "
     "Ne3-d5+ Kf4-f5 7. Bg8-h7+ Kf5:e6 8. Bh7-g8+ Ke6-f5 9. Nd5-e3+ Kf5-f4 10. Ne3-g2+ Kf4-f5 11. "
     "Ne4-c5 g5-g4 12. h3-h4 Be1-f2 13. Bg8-h7#"},
    {"5r1b/1pR4n/5kp1/1pNp2p1/R2P1P1P/4N1Pr/2P5/K4b2",
     "1. Ne3-g4+ Kf6-f5 2. Ng4-h6+ Kf5-f6 3. Ra4-a8 Rf8:a8 4. Ka1-b1 Ra8-f8 5. Nh6-g4+ Kf6-f5 6. "
     "Ng4-e3+ Kf5-f6 7. Ne3:d5+ Kf6-f5 8. Nd5-e3+ Kf5-f6 9. Nc5-e4+ Kf6-e6 10. d4-d5#"},
    {"n7/p4RB1/2p1R1B1/r1p3P1/P1P3Pp/2Pp3P/bnP2pNK/3r1k2", nullptr},
    {"7r/p1N1Pb1B/P2p3r/3P1Pp1/3B2Pb/p1Pk1Pp1/P2N2Rp/7K",
     "1. f5-f6+ Rh6:h7 2. Nd2-e4 Kd3-c4 3. Ne4:d6+ Kc4-d3 4. Nd6-e4 Kd3-c4 5. Ne4-d2+ Kc4-d3 6. "
     "Nd2-b3 Kd3-c4 7. Nb3-a5+ Kc4-d3 8. Na5-c6 Kd3-c4 9. Nc6-e5#"},
    {"rb2k3/2p1p1P1/2P4n/PpQP3r/bR2p3/6Bp/1npP4/4K2R",
     "1. 0-0 c2-c1Q 2. Qc5:c1 Bb8-a7 3. d2-d4 0-0-0 4. Qc1-f4 h3-h2 5. Kg1-h1 Ba7-b8 6. g7-g8Q "
     "Rh5:d5 7. Qg8:d8+ Rd5:d8 8. Qf4-e5 Nb2-c4 9. Qe5-e6+ Rd8-d7 10. Qe6:d7#"},
    {"3Q4/r1pP4/n3p3/BNprpbR1/4kbN1/1P3pP1/1nR2p2/5B1K",
     "1. Ng4-f6+ Ke4-e3 2. Nf6:d5+ e6:d5 3. Ba5-d2+ Ke3-e4 4. g3:f4 Nb2-c4 5. Qd8-f6 Bf5-h7 6. "
     "Rc2:c4+ d5:c4 7. Rg5:e5#"},
    {"4b3/K1pN1r2/pPpR1P2/8/1rp2N2/bB4P1/5P2/3R2Bk",
     "1. Bb3-a4 Rb4:a4 2. Bg1-h2+ Kh1:h2 3. Rd1-h1+ Kh2:h1 4. Rd6-d1+ Kh1-h2 5. Nd7-e5 c7:b6 6. "
     "Ka7-a8 Rf7-a7 7. Ka8:a7 Be8-h5 8. g3-g4 Ba3-b4 9. Ne5-f3#"},
    {"8/3prq2/6pQ/4pb1p/2P5/P1pp1P1k/R4P1p/2B3bK",
     "1. Qh6-e3 Bf5-e6 2. f3-f4+ Kh3-g4 3. Qe3-g3+ Kg4-f5 4. Qg3-g5+ Kf5-e4 5. Qg5:e5+ Ke4-f3 6. "
     "Qe5-e3+ Kf3-g4 7. Qe3-g3+ Kg4-f5 8. Qg3:d3+ Kf5-g4 9. Qd3-g3+ Kg4-f5 10. Qg3-h3+ Kf5-e4 11. "
     "Qh3-e3+ Ke4-f5 12. Qe3-e5+ Kf5-g4 13. Qe5-g5+ Kg4-f3 14. Qg5-g2#"},
    {"3n4/K1B2P1q/2p1N1pp/6p1/1p1p2B1/1p1rkP2/R1PbN1R1/3r4",
     "1. Ne2-f4 Rd1-e1 2. Ra2-a5 Nd8:f7 3. Ra5-a1 Re1:a1 4. Ka7-b6 Ra1-e1 5. Nf4-d5+ c6:d5 6. "
     "Bc7-f4+ g5:f4 7. Ne6-c7 Re1-e2 8. Nc7:d5#"},
    {"7R/n1p1pBk1/2r2pP1/1qN5/3rP1PP/4p1Kb/1Bn5/bQ6",
     "1. Rh8-g8+ Kg7-h6 2. Qb1-f1 Qb5:f1 3. Rg8-h8+ Kh6-g7 4. Rh8-h7+ Kg7-f8 5. Nc5-d7+ Rd4:d7 6. "
     "Rh7-h8+ Kf8-g7 7. Rh8-g8+ Kg7-h6 8. g4-g5+ Kh6-h5 9. Rg8-h8#"},
    {"n4b2/2p5/6P1/7K/R2p1p2/pp1k1np1/N3Rp2/5B2",
     "1. g6-g7 Bf8:g7 2. Na2-b4+ Kd3-c3 3. Nb4-d5+ Kc3-d3 4. Nd5:f4+ Kd3-c3 5. Ra4-c4+ Kc3:c4 6. "
     "Re2-c2+ Kc4-b4 7. Nf4-d5+ Kb4-a4 8. Rc2-c4+ Ka4-a5 9. Rc4-c5+ Ka5-a4 10. Bf1-b5+ Ka4-a5 11. "
     "Bb5-c6+ Ka5-a6 12. Nd5-b4+ Ka6-a7 13. Rc5-a5+ Ka7-b6 14. Ra5-b5+ Kb6-a7 15. Rb5-b7#"},
    {"n7/3p1p1b/3R1p1r/BN2P3/p5Bq/3pN3/2p1P2n/K1k5",
     "1. Nb5-c3 Kc1-d2 2. Nc3-d5+ Kd2-c1 3. Nd5-b4 Kc1-d2 4. Nb4:c2+ Kd2-c1 5. Nc2-b4 Kc1-d2 6. "
     "Nb4-d5+ Kd2-c1 7. Nd5-c3 Kc1-d2 8. Nc3-d1+ Kd2-c1 9. Rd6-d5 d7-d6 10. Rd5:d6 f6:e5 11. "
     "Nd1-c3 Kc1-d2 12. Nc3-e4+ Kd2:e3 13. Ba5-d2+ Ke3:e4 14. e2:d3#"},
    {"1K1R4/Bp1Np2B/4p3/2pkN2p/1q1p4/1r1p3n/2P2Pn1/b2R4",
     "1. f2-f3 Nh3-g5 2. Rd1-e1 Qb4:e1 3. f3-f4 Ng2:f4 4. c2-c4+ d4:c3 5. Nd7:c5+ Kd5:e5 6. "
     "Nc5-d7+ Ke5-d6 7. Nd7-e5+ Kd6:e5 8. Ba7-d4#"},
    {"4N3/p3b3/6p1/p7/Bp6/kP6/8/1K6", nullptr},
    {"8/6p1/2K2pP1/p3pP2/4P3/PBPpP3/1ppRp3/krrbB3",
     "1. Bb3-g8 a5-a4 2. c3-c4 Ka1-a2 3. c4-c5+ Ka2-a1 4. Kc6-d5 Ka1-a2 5. Kd5-d6+ Ka2-a1 6. "
     "Kd6-e6 Ka1-a2 7. Ke6-e7+ Ka2-a1 8. Ke7-f7 Ka1-a2 9. Kf7:g7+ Ka2-a1 10. Kg7-f7 Ka1-a2 11. "
     "Kf7:f6+ Ka2-a1 12. Kf6-e6 Ka1-a2 13. Ke6:e5+ Ka2-a1 14. Ke5-d5 Ka1-a2 15. Kd5-d4+ Ka2-a1 16. "
     "Kd4-c4 Ka1-a2 17. Kc4-c3+ Ka2-a1 18. Bg8-b3 a4:b3 19. g6-g7 Ka1-a2 20. g7-g8Q Ka2-a1 21. "
     "a3-a4 Ka1-a2 22. Qg8:b3+ Ka2-a1 23. Qb3-a3#"},
    {"1b5r/p3pN2/p2B1p2/p6p/Bp6/kP6/1p6/1K6", nullptr},
    {"5R2/8/1p2pBp1/5k2/Bppppp2/1rr2b1P/8/3n2K1",
     "1. Bf6-d8+ Kf5-e5 2. Bd8-c7+ Ke5-d5 3. Rf8-d8+ Kd5-c5 4. Bc7-d6+ Kc5-d5 5. Bd6-b8+ Kd5-c5 6. "
     "Rd8-c8+ Kc5-d5 7. Ba4-c6+ Kd5-c5 8. Bc6-e8+ Kc5-d5 9. Rc8-d8+ Kd5-c5 10. Bb8-e5 Rc3-d3 11. "
     "Be5-d6+ Kc5-d5 12. Bd6-b8+ Kd5-c5 13. Rd8-c8+ Kc5-d5 14. Be8-c6+ Kd5-c5 15. Bc6-a4+ Kc5-d5 "
     "16. Rc8-d8+ Kd5-c5 17. Bb8-d6+ Kc5-d5 18. Bd6-f8+ Kd5-e5 19. Bf8-g7+ Ke5-f5 20. Rd8-f8+ "
     "Kf5-g5 21. Bg7-f6+ Kg5-f5 22. Ba4-c6 g6-g5 23. Bf6:d4+ Kf5-g6 24. Bc6-e8+ Kg6-h7 25. "
     "Rf8-h8#"},
    {"8/5kP1/p1Q5/8/2pp1K2/5p2/4qP2/8",
     "1. Qc6-c7+ Kf7-g8 2. Kf4-f5 Qe2-e8 3. Kf5-f6 a6-a5 4. Qc7:c4+ Kg8-h7 5. Qc4-c2+ Kh7-g8 6. "
     "Qc2-c7 a5-a4 7. Qc7-c4+ Kg8-h7 8. Qc4-c2+ Kh7-g8 9. Qc2-c7 a4-a3 10. Qc7-c4+ Kg8-h7 11. "
     "Qc4-c2+ Kh7-g8 12. Qc2-c7 a3-a2 13. Qc7-c4+ Kg8-h7 14. Qc4-c2+ Kh7-g8 15. Qc2:a2+ Kg8-h7 16. "
     "Qa2-c2+ d4-d3 17. Qc2:d3+ Kh7-h6 18. Qd3-d2+ Kh6-h7 19. Qd2-c2+ Kh7-h6 20. Qc2-c1+ Kh6-h7 "
     "21. Qc1-h1+ Qe8-h5 22. Qh1:h5+ Kh7-g8 23. Qh5-h8#"},
    {"3K1nbr/1p3pp1/6kp/2p2p1R/1p3P2/3Pb3/p1Q1B3/R2N2B1", nullptr},
    {"6n1/p2r2P1/3N3p/1P1KR2n/3p1k1N/3r2pP/1p2p3/1R1Bb3",
     "1. Re5-e4+ Kf4-g5 2. Re4-g4+ Kg5-f6 3. Rg4-g6+ Kf6-e7 4. Rg6-e6+ Ke7-d8 5. Re6-e8+ Kd8-c7 6. "
     "Re8-c8+ Kc7-b6 7. Rc8-c6+ Kb6-a5 8. Rc6-a6+ Ka5-b4 9. Ra6-a4+ Kb4-c3 10. Ra4-c4+ Kc3-d2 11. "
     "Rc4-c2+ Kd2-e3 12. Rc2:e2+ Ke3-f4 13. Re2-e4+ Kf4-g5 14. Re4-g4+ Kg5-f6 15. Rg4-g6+ Kf6-e7 "
     "16. Rg6-e6+ Ke7-d8 17. Re6-e8+ Kd8-c7 18. Re8-c8+ Kc7-b6 19. Rc8-c6+ Kb6-a5 20. Rc6-a6+ "
     "Ka5-b4 21. Ra6-a4+ Kb4-c3 22. Ra4-c4+ Kc3-d2 23. Rc4-c2+ Kd2-e3 24. Nh4-g2#"},
    {"2K3bN/6n1/kbQ1p3/p6n/p5p1/8/6p1/8",
     "1. Qc6-c4+ Ka6-a7 2. Qc4-e4 Ka7-a6 3. Qe4-e2+ Ka6-a7 4. Qe2:g2 Ka7-a6 5. Qg2-e2+ Ka6-a7 6. "
     "Qe2-e4 Ka7-a6 7. Qe4-c4+ Ka6-a7 8. Qc4-c6 Ka7-a6 9. Nh8-f7 Bg8:f7 10. Qc6-c4+ Ka6-a7 11. "
     "Qc4-e4 Ka7-a6 12. Qe4-e2+ Ka6-a7 13. Qe2-g2 Ka7-a6 14. Qg2-f1+ Ka6-a7 15. Qf1:f7+ Ka7-a6 16. "
     "Qf7-f1+ Ka6-a7 17. Qf1-g2 Ka7-a6 18. Qg2-e2+ Ka6-a7 19. Qe2-e4 Ka7-a6 20. Qe4-c4+ Ka6-a7 21. "
     "Qc4-c6 Ka7-a6 22. Kc8-b8 a4-a3 23. Qc6-c4#"},
    {"5Q2/8/p7/1p6/8/5K2/3r4/4k1b1",
     "1. Qf8-b4 Bg1-f2 2. Qb4-b1+ Rd2-d1 3. Qb1-c2 Rd1-d2 4. Qc2-c1+ Rd2-d1 5. Qc1-c3+ Rd1-d2 6. "
     "Qc3-b4 a6-a5 7. Qb4-b1+ Rd2-d1 8. Qb1-c2 Rd1-d2 9. Qc2-c1+ Rd2-d1 10. Qc1-c3+ Rd1-d2 11. "
     "Qc3-a1+ Rd2-d1 12. Qa1:a5+ b5-b4 13. Qa5:b4+ Rd1-d2 14. Qb4-e4+ Ke1-f1 15. Qe4-c4+ Kf1-e1 "
     "16. Qc4-b4 Bf2-d4 17. Qb4-b1+ Rd2-d1 18. Qb1-c2 Rd1-d2 19. Qc2-e4+ Bd4-e3 20. Qe4-b1+ Rd2-d1 "
     "21. Qb1-c2 Rd1-d2 22. Qc2-c1+ Rd2-d1 23. Qc1:e3+ Ke1-f1 24. Qe3-f2#"},
    {"n7/6nb/BB1P1pNq/2PkPN2/5pP1/4pP1p/P1p2bp1/2K5", nullptr},
    {"1b3K2/r1p1B3/2P1p3/1P2k3/8/P1P1NbPp/3N1P2/8",
     "1. Be7-g5 Ke5-d6 2. Nd2-e4+ Kd6-e5 3. Ne4-c5 Ke5-d6 4. Bg5-e7+ Kd6-e5 5. Kf8-f7 Bf3-h5 6. "
     "Kf7-g7 Bh5-f3 7. a3-a4 h3-h2 8. Be7-f6+ Ke5-d6 9. Kg7-f8 h2-h1Q 10. Nc5-e4+ Bf3:e4 11. "
     "Bf6-e7+ Kd6-e5 12. f2-f4#"},
    {"K4br1/B1p1pnp1/2p5/k1N1n3/8/p1p5/Np2B3/6R1",
     "1. Ba7-b8 Ka5-b6 2. Nc5-a4+ Kb6-a5 3. Na4:c3 Ka5-b6 4. Nc3-a4+ Kb6-a5 5. Na4-c5 Ka5-b6 6. "
     "Bb8-a7+ Kb6-a5 7. Rg1-g3 b2-b1N 8. Rg3-g4 Ne5:g4 9. Ba7-b8 Ka5-b6 10. Nc5-d7+ Kb6-a5 11. "
     "Bb8:c7+ Ka5-a4 12. Nd7-c5#"},
    {"8/8/6p1/5qR1/4QNp1/5R1p/5Kbk/5B1r",
     "1. Rf3:h3+ Bg2:h3 2. Qe4:h1+ Kh2:h1 3. Rg5:f5 g6:f5 4. Bf1:h3 Kh1-h2 5. Bh3-g2 g4-g3 6. "
     "Kf2-f3 Kh2-g1 7. Nf4-e2+ Kg1-h2 8. Ne2:g3 Kh2-g1 9. Ng3-e2+ Kg1-h2 10. Kf3-f2 f5-f4 11. "
     "Ne2-g1 f4-f3 12. Ng1:f3#"},
    {"n2b4/4B1pN/p7/4pBp1/rpb2kP1/1p6/P2P3P/3KN3",
     "1. Nh7-f8 Bc4-f7 2. Kd1-e2 Bf7-c4 3. Ke2-f2 Bd8-b6 4. Kf2-g2 Bc4-d5 5. Kg2-h3 Bd5-f7 6. "
     "Nf8-h7 Bb6-d8 7. Kh3-g2 Bf7-d5 8. Kg2-f2 Bd8-b6 9. Kf2-f1 Bd5-c4 10. Kf1-g2 Bc4-d5 11. "
     "Kg2-h3 Bb6-d8 12. Nh7-f8 Bd5-f7 13. Kh3-g2 Bf7-d5 14. Kg2-f2 Bd8-b6 15. Kf2-e2 Bd5-c4 16. "
     "Ke2-d1 Bc4-f7 17. Nf8-h7 Bb6-d8 18. Nh7:g5 e5-e4 19. Ng5:f7 Ra4-a5 20. Be7-d6+ Ra5-e5 21. "
     "Bd6:e5#"},
    {"8/6p1/8/8/8/7p/2KB2n1/k6B",
     "1. Kc2-b3 Ka1-b1 2. Bd2-g5 Kb1-a1 3. Bg5-c1 Ka1-b1 4. Bc1-b2 g7-g6 5. Bb2-a3 Kb1-a1 6. "
     "Ba3-c1 Ka1-b1 7. Bc1-b2 g6-g5 8. Bb2-a3 Kb1-a1 9. Ba3-e7 g5-g4 10. Be7-f6+ Ka1-b1 11. Bf6-b2 "
     "g4-g3 12. Bb2-a3 Kb1-a1 13. Ba3-c1 Ka1-b1 14. Bc1-b2 h3-h2 15. Bb2-a3 Kb1-a1 16. Ba3-c1 "
     "Ka1-b1 17. Bc1-b2 Ng2-f4 18. Bh1-e4+ Nf4-d3 19. Be4:d3#"},
    {"4r2n/1R6/2n1p1P1/b3p1Bb/p1ppN1p1/rp3kNp/B1P4P/6K1",
     "1. Bg5-c1 Ba5-d8 2. Ne4-d2+ Kf3-f4 3. Nd2:c4+ Kf4-f3 4. Nc4-d2+ Kf3-f4 5. Nd2-e4+ Kf4-f3 6. "
     "Bc1-h6 Bd8-a5 7. Ne4-g5+ Kf3-f4 8. Ng5:e6+ Kf4-f3 9. Ne6-g5+ Kf3-f4 10. Ng5-e4+ Kf4-f3 11. "
     "Bh6-c1 Ba5-d8 12. Rb7-e7 Bd8:e7 13. Ne4-d2+ Kf3-f4 14. Nd2:b3+ Kf4-f3 15. Nb3:d4+ Nc6:d4 16. "
     "Ba2-d5+ e5-e4 17. Bd5:e4#"},
    {"8/8/8/5Q2/5p2/p7/1p2p3/kN1K4",
     "1. Kd1-d2 a3-a2 2. Qf5-a5 Ka1:b1 3. Qa5-f5+ Kb1-a1 4. Qf5-f6 Ka1-b1 5. Qf6-g6+ Kb1-a1 6. "
     "Qg6-g7 e2-e1Q 7. Kd2:e1 Ka1-b1 8. Qg7-g6+ Kb1-a1 9. Qg6-f6 Ka1-b1 10. Qf6-f5+ Kb1-a1 11. "
     "Qf5-e5 Ka1-b1 12. Qe5-e4+ Kb1-c1 13. Qe4-c4+ Kc1-b1 14. Qc4-d3+ Kb1-a1 15. Qd3-d4 f4-f3 16. "
     "Ke1-f2 Ka1-b1 17. Qd4-d1#"},
    {"1Nb5/2p1pp2/5np1/1pp1rp2/2R4P/1N2kpP1/1K1R4/8",
     "1. Rc4-c1 f3-f2 2. Rc1-c3+ Ke3-e4 3. Rd2-e2+ Ke4-d5 4. Rc3:c5+ Kd5-d6 5. Rc5-c6+ Kd6-d5 6. "
     "Re2-d2+ Kd5-e4 7. Rc6-c3 c7-c5 8. Rd2-e2+ Ke4-d5 9. Rc3:c5+ Kd5-d6 10. Rc5-c6+ Kd6-d5 11. "
     "Re2-d2+ Kd5-e4 12. Rc6-c3 f5-f4 13. Rd2-d4+ Ke4-f5 14. Rd4:f4+ Kf5-e6 15. Rc3-c6+ Ke6-d5 16. "
     "Rf4-d4#"},
    {"r7/8/2K1Q3/6q1/8/5R2/7p/7k",
     "1. Qe6-e1+ Qg5-g1 2. Rf3-f1 Ra8-a6 3. Kc6-c7 Kh1-g2 4. Qe1-e2+ Kg2-g3 5. Rf1-f3+ Kg3-h4 6. "
     "Rf3-f4+ Kh4-g5 7. Qe2-e5+ Kg5-h6 8. Rf4-h4+ Kh6-g6 9. Qe5-h5+ Kg6-g7 10. Qh5-h7+ Kg7-f6 11. "
     "Rh4-f4+ Kf6-g5 12. Qh7-f5+ Kg5-h6 13. Rf4-h4+ Kh6-g7 14. Rh4-h7+ Kg7-g8 15. Qf5-f7#"},
    {"r1B5/5p1P/P2p2n1/B1P5/P2R2p1/1k2p3/1pN1P1rq/1Kn4b",
     "1. Rd4-b4+ Kb3-c3 2. Rb4:g4+ Kc3-b3 3. Rg4-b4+ Kb3-c3 4. Rb4-h4+ Kc3-b3 5. h7-h8Q Ng6:h8 6. "
     "Rh4-b4+ Kb3-c3 7. Rb4-e4+ Kc3-b3 8. Bc8-b7 Rg2-g5 9. Re4-b4+ Kb3-c3 10. Rb4:b2+ Kc3-c4 11. "
     "Rb2-b4+ Kc4-c3 12. Rb4-e4+ Kc3-b3 13. Nc2-a1+ Kb3-a3 14. Ba5-b4+ Ka3:a4 15. Bb7-c6#"},
    {"8/8/5N2/8/3K1N1p/1p3knR/1Pp2prb/n1B2b1B",
     "1. Kd4-c5 Bh2-g1 2. Kc5-b6 Bg1-h2 3. Kb6-a7 Bh2-g1 4. Ka7-a8 Bg1-h2 5. Ka8-b8 Bh2-g1 6. "
     "Kb8-c7 Bg1-h2 7. Kc7-d6 Bh2-g1 8. Kd6-e7 Bg1-h2 9. Ke7-f8 Bh2-g1 10. Kf8-g7 Bg1-h2 11. "
     "Kg7-h6 Bh2-g1 12. Kh6-g5 Bg1-h2 13. Kg5:h4 Bf1-e2 14. Bh1:g2#"},
    {"8/4N3/3pn3/8/4k1K1/2Q2p2/b1p5/8",
     "1. Ne7-c6 Ke4-d5 2. Nc6-b4+ Kd5-e4 3. Nb4:c2 Ke4-d5 4. Nc2-b4+ Kd5-e4 5. Nb4-c6 Ke4-d5 6. "
     "Nc6-e7+ Kd5-e4 7. Ne7-g8 Ne6-d4 8. Ng8-f6+ Ke4-e5 9. Kg4-g5 Ke5-e6 10. Qc3-e3+ Ke6-f7 11. "
     "Qe3-e8+ Kf7-g7 12. Nf6-h5+ Kg7-h7 13. Qe8-g6+ Kh7-h8 14. Qg6-g7#"},
    {"2r5/1p1p3p/5p1B/3NP3/n2PB2P/P1p4p/1p1p2n1/1rbk1K2",
     "1. Nd5-b4 Ng2-e1 2. Be4-f5 Rc8-g8 3. Bh6-g5 h7-h5 4. Nb4-d5 Ne1-g2 5. Bf5-e4 Rg8-c8 6. "
     "Nd5-b4 Ng2-e1 7. Be4-g6 Rc8-h8 8. Bg5-h6 Rh8:h6 9. Nb4-d5 Ne1-g2 10. Bg6-e4 Rb1-a1 11. "
     "Be4-f3+ Kd1-c2 12. Nd5-b4+ Kc2-b1 13. Bf3-e4+ c3-c2 14. Be4:c2#"},
    {"3n4/8/B4R2/4N3/4NK2/p1p3p1/pbPp1PPp/kb1R2rq",
     "1. Ne4-c5 Bb2-c1 2. Nc5-b3+ Ka1-b2 3. Ne5-c4+ Kb2:c2 4. Nb3-d4+ Kc2:d1 5. Nc4-e3+ Kd1-e1 6. "
     "Nd4-f3+ Ke1:f2 7. Ne3-g4+ Kf2:g2 8. Nf3-h4+ Kg2-h3 9. Ng4-f2+ g3:f2 10. Ba6-c8+ Nd8-e6 11. "
     "Bc8:e6+ Bb1-f5 12. Be6:f5+ Rg1-g4 13. Bf5:g4+ Kh3:h4 14. Rf6-h6#"},
    {"2rr4/3pp3/R1p1p2N/8/1pp2BR1/5p1k/4pP2/4K1nb",
     "1. Bf4-g3 Kh3-g2 2. Bg3-d6+ Kg2-h3 3. Ra6-a5 c6-c5 4. Bd6-g3 Kh3-g2 5. Bg3-c7+ Kg2-h3 6. "
     "Ra5:c5 d7-d5 7. Bc7-g3 Kh3-g2 8. Bg3-d6+ Kg2-h3 9. Rc5:d5 e6:d5 10. Bd6-g3 Kh3-g2 11. "
     "Bg3-f4+ Kg2-h3 12. Rg4-g3+ Kh3-h4 13. Nh6-f5+ Kh4-h5 14. Rg3-g5#"},
    {"2K1R1R1/P4p2/3p1k1p/1p2b3/rPpB2P1/1p1P4/rP6/8",
     "1. Bd4-f2 Be5-f4 2. Bf2-h4+ Bf4-g5 3. Bh4-e1 Bg5-f4 4. Be1-c3+ Bf4-e5 5. d3-d4 Be5-f4 6. "
     "d4-d5+ Bf4-e5 7. Bc3-e1 Be5-f4 8. Be1-h4+ Bf4-g5 9. Bh4-f2 Bg5-f4 10. Bf2-d4+ Bf4-e5 11. "
     "Bd4-b6 Ra4:a7 12. Bb6-d8+ Ra7-e7 13. Bd8:e7#"},
    {"7r/k1N2p2/4b3/4p2r/2R5/4PK2/8/7R",
     "1. Rh1-a1+ Ka7-b8 2. Ra1-b1+ Kb8-c8 3. Nc7:e6+ Kc8-d7 4. Rc4-c7+ Kd7:e6 5. Rb1-b6+ Ke6-f5 6. "
     "Rc7:f7+ Kf5-g5 7. Rf7-g7+ Kg5-h4 8. Rg7-g4+ Kh4-h3 9. Rg4-g3+ Kh3-h2 10. Rb6-b2+ Kh2-h1 11. "
     "Rb2-b1+ Kh1-h2 12. Rg3-g2+ Kh2-h3 13. Rb1-h1#"},
    {"8/8/8/8/6R1/2B2p1K/5b2/7k",
     "1. Rg4-f4 Kh1-g1 2. Rf4:f3 Kg1-f1 3. Bc3-d4 Kf1-e2 4. Rf3:f2+ Ke2-d3 5. Bd4-f6 Kd3-c4 6. "
     "Rf2-f5 Kc4-b3 7. Kh3-g4 Kb3-a2 8. Rf5-f3 Ka2-b1 9. Rf3-f2 Kb1-c1 10. Rf2-b2 Kc1-d1 11. "
     "Bf6-g5 Kd1-e1 12. Bg5-e3 Ke1-d1 13. Kg4-f3 Kd1-e1 14. Rb2-b1#"},
    {"4Nk1b/p2KN3/6P1/1pPp4/2p5/1P2BP2/1PP1P2r/3rq3",
     "1. Ne8-c7 Kf8-g7 2. Nc7-e6+ Kg7-f6 3. Be3-g5+ Kf6-e5 4. Ne6-d8 Ke5-d4 5. b3-b4 Qe1:b4 6. "
     "Nd8-e6+ Kd4-e5 7. Bg5-f4+ Ke5-f6 8. Ne6-c7 Kf6-g7 9. Bf4-g5 Rh2:e2 10. Nc7-e8+ Kg7-f8 11. "
     "Bg5-h6+ Bh8-g7 12. Bh6:g7#"},
    {"7n/6p1/2KNNpP1/3P2r1/pp3p1P/k1pppP2/nrb1P3/2q5",
     "1. Nd6-b5+ Ka3-b3 2. Ne6-c5+ Kb3-c4 3. Nb5-d6+ Kc4-d4 4. Nc5-e6+ Kd4-e5 5. Nd6-c4+ Ke5-f5 6. "
     "Ne6-f8 Nh8:g6 7. Nc4-d6+ Kf5-e5 8. Nf8-d7+ Ke5-d4 9. Nd6-b5+ Kd4-c4 10. Nd7-b6+ Kc4-b3 11. "
     "Nb5-d4+ Kb3-a3 12. Nb6-c4#"},
    {"B2K2n1/3P1p2/np1pk3/4p1RN/2Rp3P/rP5q/4P3/bb6",
     "1. Nh5-g7+ Ke6-f6 2. Ng7-e8+ Kf6-e6 3. Rc4-c6 Ke6-d5 4. Rc6-c2+ Kd5-e6 5. e2-e4 d4:e3 6. "
     "Rc2-c6 Ke6-d5 7. Rc6-c4+ Kd5-e6 8. Ne8-g7+ Ke6-f6 9. Ng7-h5+ Kf6-e6 10. Ba8-d5+ Ke6:d5 11. "
     "Nh5-f4#"},
    {"7k/4KR2/5Pq1/8/3B4/5B2/8/8",
     "1. Rf7-f8+ Kh8-h7 2. Rf8-h8+ Kh7:h8 3. f6-f7+ Kh8-h7 4. f7-f8Q Qg6-g5 5. Ke7-d7 Qg5-b5 6. "
     "Bf3-c6 Qb5:c6 7. Kd7:c6 Kh7-g6 8. Bd4-e3 Kg6-h5 9. Qf8-f5+ Kh5-h4 10. Be3-f2#"},
    {"2n1r1n1/pQ2p2B/Pp1bP3/6p1/rpP2pPp/8/7P/k6K",
     "1. Qb7-e4 Ka1-b2 2. Qe4-b1+ Kb2-c3 3. Qb1-c2+ Kc3-d4 4. Qc2-d3+ Kd4-e5 5. Qd3-d5+ Ke5-f6 6. "
     "Qd5-f5+ Kf6-g7 7. Qf5-g6+ Kg7-h8 8. Bh7:g8 Ra4-a1 9. Kh1-g2 Ra1-a2 10. Kg2-f3 Ra2-a3 11. "
     "Kf3-e4 Ra3-e3 12. Ke4-d5 Re3-e5 13. Kd5-c6 Re5-c5 14. Kc6-b7 Rc5-c7 15. Kb7-a8 b4-b3 16. "
     "Qg6-h7#"},
    {"n7/brp1K3/2R3p1/4Q2P/pkPpN2P/pp3p2/qr6/3b4",
     "1. Ke7-f8 Rb7-b8 2. Kf8-g7 Rb8-b7 3. Qe5-e7+ Kb4-a5 4. Qe7-g5+ Ka5-b4 5. Kg7-h6 g6:h5 6. "
     "Qg5-e7+ Kb4-a5 7. Qe7-e5+ Ka5-b4 8. Kh6:h5 f3-f2 9. Kh5-g5 Bd1-e2 10. Rc6-b6+ Kb4:c4 11. "
     "Qe5-b5#"},
    {"1N1Q3K/nNp4p/2rp3p/Bkp3Pr/4pP2/bP1pP3/P2Pn1q1/8",
     "1. Qd8-g8 Ba3-b2 2. Qg8-g7 Bb2-a3 3. Qg7-f7 Ba3-b2 4. Qf7-f6 Bb2-a3 5. Qf6-e6 Ba3-b2 6. "
     "Qe6-e5 Bb2-a3 7. Qe5-d5 Ba3-b2 8. Qd5-d4 Bb2:d4 9. e3:d4 Ne2-c3 10. d2:c3 Qg2-g3 11. a2-a4#"},
    {"4n3/4K3/3BpNp1/1R1bP3/pPPk1pr1/2R3pQ/2PPr2n/q4Bb1",
     "1. Qh3-g2 Re2:g2 2. Rc3-d3+ Kd4:c4 3. Rd3-c3+ Kc4-d4 4. Rc3-c4+ Bd5:c4 5. Bd6-c5+ Kd4:e5 6. "
     "Bc5-d6+ Ke5-d4 7. Bd6-e5#"},
    {"r5k1/1p1p2p1/N7/1p4N1/1p4p1/8/7Q/bK4n1",
     "1. Qh2-a2+ Kg8-h8 2. Qa2-c2 Kh8-g8 3. Qc2-b3+ Kg8-h8 4. Qb3-d3 Kh8-g8 5. Qd3-d5+ Kg8-h8 6. "
     "Qd5-e4 Kh8-g8 7. Na6-b8 Ra8:b8 8. Qe4-d5+ Kg8-h8 9. Qd5-d3 Kh8-g8 10. Qd3-b3+ Kg8-h8 11. "
     "Qb3-c2 Kh8-g8 12. Qc2-a2+ b4-b3 13. Qa2:b3+ Kg8-h8 14. Qb3-c2 Kh8-g8 15. Qc2-a2+ d7-d5 16. "
     "Qa2:d5+ Kg8-h8 17. Qd5-d3 Kh8-g8 18. Qd3-b3+ Kg8-h8 19. Qb3-c2 Kh8-g8 20. Qc2-a2+ Kg8-h8 21. "
     "Qa2-h2+ Kh8-g8 22. Qh2:b8#"},
    {"3n2r1/3B4/P4b2/rPN1pp2/pB1kP1P1/P4p2/2R2P2/1K6",
     "1. Rc2-d2+ Kd4-c4 2. Nc5-d3 Kc4-d4 3. Bd7:f5 Kd4-c4 4. Bf5-d7 Kc4-d4 5. Nd3-c5+ Kd4-c4 6. "
     "Rd2-c2+ Kc4-d4 7. Bb4-d2 Bf6-g5 8. Bd2-c3+ Kd4:c5 9. Bc3:e5+ Kc5-b6 10. Be5-d4#"},
    {"8/3p4/1KBpk3/3p4/P4P2/5P2/1NPPNP2/8",
     "1. Bc6:d5+ Ke6-f5 2. Nb2-c4 Kf5-f6 3. Nc4-e3 Kf6-e7 4. Ne3-g4 Ke7-e8 5. Ne2-d4 Ke8-e7 6. "
     "Nd4-f5+ Ke7-e8 7. a4-a5 Ke8-d8 8. a5-a6 Kd8-c8 9. a6-a7 Kc8-d8 10. a7-a8Q#"},
};

} // namespace

std::span<const TPredefinedLine> PredefinedLines()
{
    return g_aLines;
}

} // namespace corvina
