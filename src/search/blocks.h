#ifndef CORVINA_SEARCH_BLOCKS_H
#define CORVINA_SEARCH_BLOCKS_H

#include <boost/container/deque.hpp>

namespace corvina
{

/// Grows without moving what it holds: a large graph must not keep a stop waiting.
template <class T>
using TBlocks = boost::container::deque<
    T, void, boost::container::deque_options_t<boost::container::block_size<1u << 14>>>;

} // namespace corvina

#endif
