#include "chess/linecontext.h"

namespace corvina
{

void TLineContext::Reserve(int nMaxPlies)
{
    const auto nLevels = static_cast<std::size_t>(nMaxPlies) + 1;
    if (m_aBoards.size() >= nLevels)
        return;
    m_anLevelCounter.resize(nLevels);
    m_aBoards.resize(nLevels);
}

} // namespace corvina
