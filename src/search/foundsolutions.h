#ifndef CORVINA_SEARCH_FOUNDSOLUTIONS_H
#define CORVINA_SEARCH_FOUNDSOLUTIONS_H

#include "chess/move.h"

#include <atomic>
#include <cstdint>

namespace corvina
{

/// The solutions of one run in all-solutions mode, readable by its threads without a lock: a writer
/// reserves a place, writes the move, and publishes.
struct TFoundSolutions
{
    static constexpr int CAPACITY = 255;

    std::atomic<std::uint8_t> m_nReserved{0};
    std::atomic<std::uint8_t> m_nPublished{0};
    std::atomic<std::uint8_t> m_bInUse{0};
    std::uint8_t m_nSpare = 0;
    TMove m_aMoves[CAPACITY];

    void Publish(const TMove& move);

    /// Is the move among the published ones?
    bool Contains(const TMove& move) const;
};
static_assert(sizeof(TFoundSolutions) == 1024);

/// A slot of the process-wide pool of four, held as long as the object lives; null when all four
/// are taken.
class TFoundSolutionsHold
{
public:
    TFoundSolutionsHold();
    ~TFoundSolutionsHold();
    TFoundSolutionsHold(const TFoundSolutionsHold&) = delete;
    TFoundSolutionsHold& operator=(const TFoundSolutionsHold&) = delete;

    TFoundSolutions* get() const { return m_pSlot; }

private:
    TFoundSolutions* m_pSlot;
};

} // namespace corvina

#endif
