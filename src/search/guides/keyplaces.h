#ifndef CORVINA_SEARCH_GUIDES_KEYPLACES_H
#define CORVINA_SEARCH_GUIDES_KEYPLACES_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvina
{

/// Numbers from 0 by the 64-bit keys of what they stand for, which the caller keeps: open
/// addressing, two places for each number at the least. KeyOf tells the key of a number.
class TKeyPlaces
{
public:
    static constexpr std::uint32_t NONE = UINT32_MAX;

    /// Room for so many numbers before the first one more makes it grow. Throws std::bad_alloc.
    explicit TKeyPlaces(std::size_t nNumbers) : m_vecPlaces(std::bit_ceil(2 * nNumbers + 2), NONE)
    {
    }

    template <class TKeyOf>
    std::uint32_t Find(std::uint64_t nKey, const TKeyOf& KeyOf) const
    {
        return m_vecPlaces[PlaceOf(nKey, KeyOf)];
    }

    /// The number of the key, or nNew, the count of those that are in, which then is the key's:
    /// the caller keeps it. Throws std::bad_alloc, and is the same as before then.
    template <class TKeyOf>
    std::uint32_t FindOrAdd(std::uint64_t nKey, std::uint32_t nNew, const TKeyOf& KeyOf)
    {
        std::size_t nPlace = PlaceOf(nKey, KeyOf);
        if (m_vecPlaces[nPlace] != NONE)
            return m_vecPlaces[nPlace];
        if (2 * (std::size_t{nNew} + 1) > m_vecPlaces.size()) {
            Grow(nNew, KeyOf);
            nPlace = PlaceOf(nKey, KeyOf);
        }
        return m_vecPlaces[nPlace] = nNew;
    }

    std::size_t Bytes() const { return m_vecPlaces.size() * sizeof(std::uint32_t); }

private:
    /// Place of the key's number, or the free one where it belongs.
    template <class TKeyOf>
    std::size_t PlaceOf(std::uint64_t nKey, const TKeyOf& KeyOf) const
    {
        const std::size_t nMask = m_vecPlaces.size() - 1;
        std::size_t nPlace = nKey & nMask;
        while (m_vecPlaces[nPlace] != NONE && KeyOf(m_vecPlaces[nPlace]) != nKey)
            nPlace = (nPlace + 1) & nMask;
        return nPlace;
    }

    template <class TKeyOf>
    void Grow(std::uint32_t nNumbers, const TKeyOf& KeyOf)
    {
        m_vecPlaces = std::vector<std::uint32_t>(2 * m_vecPlaces.size(), NONE);
        for (std::uint32_t i = 0; i < nNumbers; ++i)
            m_vecPlaces[PlaceOf(KeyOf(i), KeyOf)] = i;
    }

    std::vector<std::uint32_t> m_vecPlaces;
};

} // namespace corvina

#endif
