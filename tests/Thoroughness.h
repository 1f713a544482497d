#pragma once

#include <cstddef>

/// Of places to try one after the other, every how many-th. A sanitizer makes each several times as
/// dear, and the same places are all tried without one.
#ifdef __SANITIZE_ADDRESS__
inline constexpr std::size_t placeStep = 7;
#else
inline constexpr std::size_t placeStep = 1;
#endif
