#pragma once

#include <cstddef>

// How much is tried. What a sanitizer makes several times as dear is done fewer times there, and as
// often as it takes without one.

#ifdef __SANITIZE_ADDRESS__
/// Of places or seeds to try one after the other, every how many-th.
inline constexpr std::size_t placeStep = 7;
/// More levels than the stack has room for, were each of them a call.
inline constexpr int levelsBeyondTheStack = 150'000;
#else
inline constexpr std::size_t placeStep = 1;
inline constexpr int levelsBeyondTheStack = 1'000'000;
#endif
