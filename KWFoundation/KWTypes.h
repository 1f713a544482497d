#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// A block of bytes, owned.
using KWData = std::vector<std::byte>;

/// The answer of an index look-up that found nothing: the largest positive signed 32-bit value.
inline constexpr std::uint32_t KWNotFound = 0x7fffffff;
