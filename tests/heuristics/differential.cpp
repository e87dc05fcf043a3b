#include "heuristics/differential.h"

#include "heuristics/setreader.h"
#include "support/chesstest.h"
#include "support/taskrequest.h"

namespace corvina
{

TRunOf SolveWith(const TChessboard& board, int nMate, const std::string& strSet, int nThreads,
                 bool bRunPass2)
{
    THeuristicSet set;
    ReadHeuristicsText(strSet, set, &board);
    set.m_params.m_bRunPass2 = bRunPass2;
    return SolveWith(board, nMate, set, nThreads);
}

TRunOf SolveWith(const TChessboard& board, int nMate, const THeuristicSet& set, int nThreads)
{
    TTaskRequest request(board, nMate);
    request.m_heuristicSet = set;
    request.m_nMinRegisterPlies = 0;
    request.m_nMinPinnedRookPlies = 5;
    request.m_nMinUnblockPlies = 3;
    TRunOf run;
    request.OnPassEnd = [&](const TPassReport& report) { run.m_vecPasses.push_back(report); };
    const TRunSettings settings{
        .m_nThreads = nThreads, .m_bQuickMode = nMate % 2 == 0, .m_overrides = {}};
    run.m_vecSolutions = SortedTexts(Solve(request, settings).m_vecSolutions);
    run.m_anCuts = request.m_anCuts;
    run.m_anWhiteCuts = request.m_anWhiteCuts;
    run.m_nPositions = request.m_nPositions;
    run.m_bDoubtful = request.m_bDoubtful;
    run.m_nOneColourMates = request.m_nOneColourMates;
    run.m_nSingleQueenMates = request.m_nSingleQueenMates;
    run.m_nPinnedRookSearches = request.m_nPinnedRookSearches;
    run.m_nPinnedRookMates = request.m_nPinnedRookMates;
    run.m_nUnblockTries = request.m_nUnblockTries;
    return run;
}

TTask MakeTask(const TChessboard& board, int nMate)
{
    return {board, nMate, SolveWith(board, nMate, "none").m_vecSolutions};
}

std::vector<TTask> RandomTasks(unsigned nSeed, std::initializer_list<int> anTasksByMate)
{
    std::mt19937 random(nSeed);
    std::vector<TTask> vecTasks;
    int nMate = 1;
    for (const int nTasks : anTasksByMate) {
        ++nMate;
        for (int i = 0; i < nTasks; ++i) {
            vecTasks.push_back(MakeTask(
                i % 4 ? ComposedPosition(random) : RandomPosition(random, 4 + i % 8), nMate));
        }
    }
    return vecTasks;
}

std::string Describe(const TTask& task, const std::string& strSet)
{
    return WriteFen(task.m_board, true) + " #" + std::to_string(task.m_nMate) + " with " + strSet;
}

} // namespace corvina
