#pragma once

#include <KWBase/KWExpressionKernels.h>

#include <tests/VectorTargets.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <vector>

/// Calls the function with the kernels of every instruction set that this processor has, and with
/// the name of the set, the best first.
template <class Function>
void forEachTarget(Function function) {
    underEachTarget([&](const char* target) { function(KWExpressionKernels::best(), target); });
}

inline std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

/// Floats of every kind, and near the places where functions change.
inline std::vector<float> notableFloats() {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    std::vector<float> list{0,
                            1,
                            0.5f,
                            2,
                            3,
                            4,
                            5,
                            7,
                            10,
                            0.1f,
                            88.5f,
                            88.8f,
                            103.9f,
                            104.2f,
                            119.9f,
                            120,
                            1000,
                            3.1415927f,
                            1e5f,
                            1e10f,
                            1e20f,
                            1e30f,
                            1e38f,
                            1e-5f,
                            1e-20f,
                            1e-30f,
                            1e-38f,
                            1e-39f,
                            1e-45f,
                            0.75f,
                            0.7853982f,
                            0x1p-12f,
                            0x1p31f,
                            0x1p24f,
                            16777215,
                            0x1p126f,
                            0x1p-126f,
                            1.5f,
                            infinity,
                            0x1.fffffep127f,
                            0x1.fffffep30f};
    const std::size_t count = list.size();
    for (std::size_t k = 0; k < count; ++k)
        list.push_back(-list[k]);
    // Quiet and signalling NaNs.
    for (const std::uint32_t bits :
         {0x7fc00000u, 0xffc00000u, 0x7fc12345u, 0xffd54321u, 0x7f800001u, 0xffa00000u})
        list.push_back(std::bit_cast<float>(bits));
    return list;
}

/// Notable floats, and so many that are spread over all there are.
inline std::vector<float> floatsOfAllKinds(std::size_t spread) {
    std::vector<float> list = notableFloats();
    std::uint32_t bits = 12345;
    for (std::size_t k = 0; k < spread; ++k)
        list.push_back(std::bit_cast<float>(bits += 0x9e3779b1u));
    return list;
}
