#ifndef CORVINA_REGISTERS_ANSWERS_H
#define CORVINA_REGISTERS_ANSWERS_H

#include <cstdint>

namespace corvina
{

/// Answers of the registers to a question about a position and a number of plies.
constexpr std::uint8_t REGISTER_NO_MATE = 0;         ///< certain
constexpr std::uint8_t REGISTER_MATE = 1;            ///< certain
constexpr std::uint8_t REGISTER_MATE_ADDITIONAL = 2; ///< certain, with the additional moves only
constexpr std::uint8_t REGISTER_UNKNOWN = 254;
constexpr std::uint8_t REGISTER_NO_MATE_HERE = 255; ///< none found under this setting: no proof

} // namespace corvina

#endif
