#pragma once

#include <cstdint>

// What the reader and the writer of the sequential form share. The first byte of a number, taken as
// signed, is the number itself or one of these heads.

namespace KWTypedStream {

inline constexpr std::int8_t shortHead = -127; ///< a signed number of two bytes follows
inline constexpr std::int8_t longHead = -126;  ///< of four
inline constexpr std::int8_t realHead = -125;  ///< the bytes of a float or double follow
inline constexpr std::int8_t newHead = -124;   ///< something met for the first time follows
inline constexpr std::int8_t nilHead = -123;
inline constexpr std::int8_t endHead = -122;  ///< of an object's contents
inline constexpr std::int8_t wideHead = -121; ///< of eight, in newer streams
/// The smallest number that is its own head; numbering starts with it.
inline constexpr std::int8_t firstNumber = -110;

inline constexpr std::uint8_t streamerVersion = 4;
inline constexpr std::int32_t systemVersion = 1000;

} // namespace KWTypedStream
