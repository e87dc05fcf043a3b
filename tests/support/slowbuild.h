#ifndef CORVINA_TESTS_SUPPORT_SLOWBUILD_H
#define CORVINA_TESTS_SUPPORT_SLOWBUILD_H

namespace corvina
{

/// A factor for limits of time: a sanitizer makes a build so many times slower.
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
inline constexpr int SLOWER = 4;
#else
inline constexpr int SLOWER = 1;
#endif

} // namespace corvina

#endif
