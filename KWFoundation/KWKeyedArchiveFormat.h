#pragma once

#include <cstdint>
#include <string_view>

// What the reader and the writer of keyed archives agree on.

/// The version that every keyed archive names, and the only one there is.
inline constexpr std::int64_t kwKeyedArchiveVersion = 100000;
/// The text in the first place of the objects, which stands for nil.
inline constexpr std::string_view kwKeyedArchiveNull = "$null";
