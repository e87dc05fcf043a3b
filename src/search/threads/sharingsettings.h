#ifndef CORVINA_SEARCH_THREADS_SHARINGSETTINGS_H
#define CORVINA_SEARCH_THREADS_SHARINGSETTINGS_H

#include <atomic>
#include <chrono>
#include <cstdint>

namespace corvina
{

/// From where on a run shares the moves of a node among threads. Other values are for tests.
struct TSharingSettings
{
    // Least half-moves left at a node that hands its moves to a group of threads,
    int m_nMinLevelDepth = 13;
    int m_nMinLevelDepthOfMany = 11; ///< with POSITION_MANYFIGURES
    // and at a node whose moves are juggled.
    int m_nMinSchedulerDepth = 17;
    int m_nMinSchedulerDepthOfMany = 15; ///< without POSITION_FEWFIGURES

    // By brute force also beyond the levels: at a node of the last thread of a group; while the
    // last first move is at work, behind the first such node of a line; and there with many
    // figures.
    int m_nMinRespawnDepth = 21;
    int m_nMinExtraDepth = 21;
    int m_nMinExtraDepthOfHeavy = 19;
    int m_nProcessors = 0; ///< that these may take; 0: those of the machine

    std::chrono::nanoseconds m_second = std::chrono::seconds(1); ///< unit of the scheduler's quanta
};

/// What a run has made of it.
struct TSharingCounts
{
    std::atomic<std::uint64_t> m_nGroups{0};
    std::atomic<std::uint64_t> m_nGroupThreads{0};
    std::atomic<std::uint64_t> m_nRespawns{0};    ///< leaves for groups of the last thread of one,
    std::atomic<std::uint64_t> m_nExtraGroups{0}; ///< and for those of free processors
    std::atomic<std::uint64_t> m_nSchedulers{0};
    std::atomic<std::uint64_t> m_nJuggledMoves{0}; ///< each has had a thread
    std::atomic<std::uint64_t> m_nSwitches{0};     ///< a move was held for another one
    std::atomic<std::uint64_t> m_nFailures{0};     ///< threads or memory that couldn't be had

    void Clear()
    {
        for (auto* p : {&m_nGroups, &m_nGroupThreads, &m_nRespawns, &m_nExtraGroups, &m_nSchedulers,
                        &m_nJuggledMoves, &m_nSwitches, &m_nFailures})
            *p = 0;
    }
};

} // namespace corvina

#endif
