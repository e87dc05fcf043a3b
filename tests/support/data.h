#ifndef CORVINA_TESTS_SUPPORT_DATA_H
#define CORVINA_TESTS_SUPPORT_DATA_H

#include "chess/chessboard.h"

#include <random>
#include <string>
#include <vector>

namespace corvina
{

/// A task with its complete answer.
struct TAnsweredTask
{
    std::string m_strFen;
    int m_nMate;
    std::vector<std::string> m_vecKeys; ///< in full notation, sorted
};

/// Is the folder of extra positions known, through the environment variable CORVINA_DATA?
bool HasDataFolder();

/// The rows of a file of that folder that give keys, or prove that there are none: columns `fen`,
/// `n` and `keys`. A length of 0, "no mate within 3", becomes a task of 3 moves without an answer.
/// Throws std::runtime_error for a file that can't be read.
std::vector<TAnsweredTask> ReadAnsweredTasks(const std::string& strFile);

/// The rows of such a file with at least so many moves, with or without keys, which are left out.
std::vector<TAnsweredTask> ReadLongTasks(const std::string& strFile, int nMinMoves);

/// A random position with White to move and Black not in check: nFigures men in all, pawns and
/// castling figures often where they matter. Every system makes the same one of a seed.
TChessboard RandomPosition(std::mt19937& random, int nFigures);

/// A random position of the kinds that problems are made of, White with the mating force: the Black
/// king behind his own men or shut in on the edge, castling, pawns about to promote or to capture
/// en passant, a Black side with hardly a move.
TChessboard ComposedPosition(std::mt19937& random);

} // namespace corvina

#endif
