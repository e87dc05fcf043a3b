#include "search/registeraccess.h"

namespace corvina
{
bool UsesRegister(const TChessboard&)
{
    return false;
}
std::optional<TSearchResult> ProbeRegister(TChessboard&)
{
    return {};
}
void StoreCertain(TChessboard&, std::uint16_t, bool) {}
void StoreDoubtful(TChessboard&, std::uint16_t) {}
} // namespace corvina
