UTF-8
//!default #5 AllSolutions

// Problems found and proved by Corvina. A random search made the positions; each answer is
// the complete result of the solver. Lines like this one are lost when the file is saved.

/* Two moves */

1 #2 GUICHECKBESTDEFENCE
//!VARIANTS
//!{Main variant} Qd4-c4 Kb3-a4 Rc6-a6
//!{another defence} Qd4-c4 Kb3-a3[shorter?] Rc6-a6
//!ENDVARIANTS
{
	Description: Corvina, 2026; a quiet key
	FEN: 8/8/2R5/8/1P1Q4/1k5q/6P1/K7
	Answer: Qd4-c4
}

2 #2
{
	White: Rf8, Rh8, Rb5, Kf4
	Black: f7, Kg7
	Answer: Kf4-f5
}

3 #2
{
	FEN: 1k4q1/2Rp2q1/1Pp2N2/2N2p1K/8/8/8/8
	Answer: Nc5-a6
}

4 #2
{
	FEN: 5RB1/R7/3P2k1/8/5K2/4P3/8/8
	Answer: Kf4-g4
}

5 #2
{
	FEN: 1N6/k1P5/1p5Q/2p5/1B6/p7/5K2/8
	Answer: c7-c8Q
}

6 #2
{
	FEN: 3k4/1B1B1PB1/2p2P2/p1K5/p1n5/8/8/8
	Answer: f7-f8Q
}

7 #2
{
	FEN: 1kB1n3/p3n3/p2PP1Q1/2R5/2p5/8/8/K7
	Answer: Qg6-b1
}

8 #2
{
	FEN: 1R6/8/3K4/2p5/7P/p1k5/1nB2R2/8
	Answer: Rb8-b3
}

/* Three moves */

9 #3 GUICHECK 2
//!VARIANTS
//!{Main variant} b7-b8Q[cichy ruch: groźba mata] Kc5-c6 Bb2-a3 Kc6-d7 Qa2-d5[mat wzorowy?]
//!ENDVARIANTS
{
	Description: Zadanie trzychodowe; cichy pierwszy ruch
	FEN: N5K1/1Pp5/8/2k5/8/8/QB6/8
	Answer: b7-b8Q
}

10 #3 GUICHECKBESTDEFENCEANDAUX
//!VARIANTS
//!{Main variant} Qd1-a1 Ka4-b4 Qf5-d3 Rb5-a5 Qd3-b3
//!ENDVARIANTS
{
	White: Qf5, Kc2, Qd1
	Black: b7, c7, Qb6, Rb5, c5, Ka4
	Answer: Qd1-a1
}

11 #3 UseMainVariantAsSortIndications
//!VARIANTS
//!{Main variant} Re3-b3[тихий хід] Kb1-c2[єдиний захист] Qh4-c4 Kc2-d1 Rb3-b1
//!ENDVARIANTS
{
	Description: Задача на три ходи
	FEN: 8/8/8/4p2K/7Q/4R3/3p3p/1k6
	Answer: Re3-b3
}

12 #3 THREADS 2
{
	FEN: 8/5P2/K3k3/8/6p1/2Q5/8/8
	Answer: f7-f8Q
}

13 #3 MirrorOnly
{
	FEN: 1K3R2/7k/7p/7q/4pp2/Q7/8/8
	SWM: Qa3-e7
}

14 #3 SH_KEEPKINGONTHEEDGE OFF
{
	FEN: 8/3k4/8/8/1R1B1Q2/Kn6/8/8
	Answer: Qf4-f7
}

15 #3 SH_SAVEQUEEN/ROOK OFF SH_DONTLOSEANYFIGURES (incl.pawns)
{
	FEN: 8/7P/4B3/8/8/8/2p2R2/k6K
	Answer: h7-h8Q
}

16 #3
//@SortIndications: 1. Na8-c7, 2. R>g5*, ~pe4, 3. 0-0
{
	FEN: N1K5/5P2/2k5/8/1P6/5NN1/8/8
	Answer: Na8-c7
}

/* Castling, promotion and en passant */

17 #2 NoMirror
//#TAGS
//#castling long
{
	Description: Castling
	FEN: 8/8/8/7P/6Pn/3p3p/3Q2p1/R3K1k1
	Answer: 0-0-0
}

18 #2 NoMirror
//#TAGS
//#castling long
{
	Description: Castling
	FEN: 8/8/8/p7/4R3/2k1p2P/2P5/R3K3
	Answer: 0-0-0
}

19 #3 NoMirror
//#TAGS
//#castling short
//!VARIANTS
//!{Main variant} 0-0 Kg3-h4 Kg1-g2 d4-d3 Rf1-f4
//!ENDVARIANTS
{
	Description: Castling
	FEN: 8/1n6/7p/4R3/3p4/6k1/7N/4K2R
	Answer: 0-0
}

20 #3 NoMirror
//#TAGS
//#castling long
//#krótka próba
{
	Description: Castling
	FEN: 8/p7/8/8/3R4/1k6/4B3/R3K3
	Answer: 0-0-0
}

21 #2 NoMirror
{
	Description: Black can castle
	FEN: r3k3/p7/6p1/8/8/K7/7R/6NQ
	Answer: Qh1-b7
}

22 #2 NoMirror
{
	Description: Black can castle
	FEN: r3k3/1RP5/4PBK1/7N/8/8/N7/8
	Answer: Rb7-b8
}

23 #2
//#TAGS
//#promotion to Queen
{
	Description: Promotion
	FEN: 8/2Pk1P2/2Rp1p2/8/8/pK6/8/4N3
	Answer: c7-c8Q
}

24 #3 Requires QPp
{
	Description: Promotion
	FEN: 8/2P3BP/2K5/7p/4k3/2p3R1/8/8
	Answer: c7-c8Q
}

25 #3 OnlyIfAvail QRp
{
	Description: Promotion
	FEN: 8/P4K2/1k6/8/1pR5/4N3/8/8
	Answer: a7-a8Q
}

26 #2
//#TAGS
//#underpromotion to Knight
{
	Description: Underpromotion
	FEN: 6K1/3Pp3/7k/2b2Q2/8/7p/6n1/8
	Answer: d7-d8N
}

27 #3 RequiresSyzygy
//#TAGS
//#underpromotion to Rook
{
	Description: Underpromotion
	FEN: 8/1P1P4/8/k7/6K1/8/8/8
	Answer: b7-b8R
}

28 #3 AllSolutionsRequiresSyzygy
//#TAGS
//#underpromotion to Rook
//!VARIANTS
//!{Main variant} b7-b8R Ka6-a7 e7-e8Q Ka7-a6 Qe8-a4
//!ENDVARIANTS
{
	Description: Underpromotion
	FEN: 8/1P2P3/k7/8/1B6/8/4K3/8
	Answer: b7-b8R
}

29 #2
{
	Description: A double step of a pawn
	FEN: 8/8/8/r7/1pBp3K/1p5Q/2k1P2R/8
	Answer: e2-e4
}

30 #2
{
	Description: A double step of a pawn
	FEN: 8/8/8/8/3p4/4Q3/1kP1R1K1/8
	Answer: c2-c4
}

31 #3
//#TAGS
//#en passant
//!VARIANTS
//!{Main variant} g2-g4 a2-a1Q Bh8:a1 d2-d1Q Qe7-g7
//!{en passant} g2-g4 h4:g3[the pawn of the double step] Qe7-f6 Kh6-h5 Bh1-f3
//!ENDVARIANTS
{
	Description: Black captures en passant
	FEN: 7B/4Q3/7k/K7/7p/8/p2p2P1/7B
	Answer: g2-g4
}

32 #3
//#TAGS
//#en passant
//!VARIANTS
//!{Main variant} b2-b4 Ka2-a1 Rh3-h2 Ka1-b1 Qd5-d1
//!{en passant} b2-b4 c4:b3[the pawn of the double step] Rh3-h2 Ka2-a1 Qd5-d1
//!ENDVARIANTS
{
	Description: Black captures en passant
	FEN: 8/6K1/8/3Q4/2p5/7R/kP6/8
	Answer: b2-b4
}

/* Several solutions, and none */

33 #2 AllSolutions
{
	Description: A dual
	FEN: 5R2/4K3/8/8/5R2/8/8/6k1
	Answer: Rf4-g4, Rf8-g8
}

34 #2 AllSolutions StopOnDual
{
	Description: A dual
	FEN: 8/4p3/1k6/8/8/KBp2Q2/5p2/7Q
	Answer: Qf3-c6, Qf3-b7
}

35 #2 AllSolutions AllSolutionsRequires QBp
{
	Description: All solutions only where tables are at hand, otherwise the first
	FEN: k7/2p5/7R/5Q2/3P3K/5P2/8/8
	Answer: Qf5-c8
}

36 #2 AllSolutions StopOn3Sol
{
	Description: Three solutions
	FEN: 5R2/8/8/3p2p1/3bQ3/3KN1k1/4p3/8
	Answer: Qe4-g4, Qe4-f3, Qe4-g2
}

37 #2 AllSolutions StopOn4Sol
{
	Description: Four solutions
	FEN: 1k5n/5P2/R2R3n/8/6p1/5P2/6Q1/7K
	Answer: Qg2-c2, Qg2-b2, Ra6-b6, Rd6-c6
}

38 #3
{
	Description: No solution
	FEN: 8/8/3P4/p2q3P/3k3B/N3R3/8/6K1
	Answer: 
}

39 #3
{
	Description: No solution
	FEN: 8/k7/3n4/2p5/5B2/K1p5/6p1/8
	Answer: 
}

/* Four and five moves */

40 #4 THREADS 4^2 SchedulerLevels 3
//!VARIANTS
//!{Main variant} Nd6-b5[the key] f3-f2 Ke1:f2[the only move that keeps the net] c3-c2 Rc5:c2 Kb8-a8 Rc2-c8
//!ENDVARIANTS
{
	FEN: 1k3B2/8/P2N4/2R5/8/2p2p2/8/4K3
	Answer: Nd6-b5
}

41 #4 SafeMode
{
	FEN: 8/6BP/3Rp3/6k1/7p/2p5/5K2/8
	Answer: h7-h8Q
}

42 #4 HybridBruteForce
//@SortIndications: 1.Kf6-e5; ~2.K-e1; Q:d5+
{
	FEN: 8/3kp1p1/4NK2/6P1/1Q6/8/8/8
	Answer: Kf6-e5
}

43 #4 BruteForce
{
	FEN: 6K1/1P6/8/2N5/8/k7/8/6N1
	Answer: b7-b8Q
}

44 #4 UsePredefinedSettings
//!VARIANTS
//!{Main variant} a7-a8Q Ke4-e3 Qa8:a3 Ke3-e2 Qf6:b2 Ke2-e1 Qa3-a1
//!ENDVARIANTS
{
	FEN: 8/P1N5/5Q2/8/4kr2/p7/1p5P/7K
	Answer: a7-a8Q
}

45 #4 StopRelaxHeuristicsOnFirstSolution
{
	FEN: 8/k4P2/B1pP4/8/8/1K6/8/6R1
	Answer: f7-f8Q
}

46 #5 NoGlobReg
{
	FEN: 5nR1/3P4/5k2/8/P2p2r1/3N1K2/8/8
	Answer: d7-d8Q
}

47 #5 GlobRegMB 512
{
	FEN: 8/5P2/7k/8/3Pp3/p3K3/8/5B2
	Answer: f7-f8Q
}

48 #5 LichessLevels 2
{
	FEN: n7/3p3P/2n3k1/7N/8/K4Rp1/8/8
	Answer: h7-h8Q
}

49 #5
//@SortIndications: 1. Rg2-f2, 2. R>g5*, ~pe4, 3. 0-0
{
	FEN: 8/8/8/p7/6NK/4P2R/4P1R1/5k2
	Answer: Rg2-f2
}

/* Kept, but not solved */

50 s#2
//#TAGS
//#self-mate
{
	Description: A self-mate: kept as it stands
	FEN: 8/8/8/8/8/2k5/1r6/K1Q5
}

51
{
	Description: A line played from a position, without a stipulation
	FEN: 8/1n6/7p/4R3/3p4/6k1/7N/4K2R
	Moves: 0-0 Kg3-h4 Kg1-g2 d4-d3 Rf1-f4
}

52 NoMirror
{
	Description: Castling on both sides, and a capture en passant
	FEN: r3k3/5p2/8/4P3/8/8/8/4K2R
	Moves: 0-0 f7-f5 e5:f6 0-0-0 f6-f7 Rd8-d2 f7-f8Q
}
