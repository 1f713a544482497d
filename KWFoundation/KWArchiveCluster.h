#pragma once

#include <array>
#include <string_view>
#include <utility>

/// The platform's own classes of values, which archives of both kinds read as values rather than as
/// objects.
enum class KWArchiveCluster {
    object, ///< none of them
    string,
    mutableString,
    data,
    mutableData,
    array,
    mutableArray,
    number,
};

inline KWArchiveCluster KWArchiveClusterNamed(std::string_view className) {
    using enum KWArchiveCluster;
    constexpr std::array<std::pair<std::string_view, KWArchiveCluster>, 7> clusters{{
        {"NSString", string},
        {"NSMutableString", mutableString},
        {"NSData", data},
        {"NSMutableData", mutableData},
        {"NSArray", array},
        {"NSMutableArray", mutableArray},
        {"NSNumber", number},
    }};
    for (const auto& [name, cluster] : clusters)
        if (name == className)
            return cluster;
    return object;
}

inline bool KWIsArrayCluster(KWArchiveCluster cluster) {
    return cluster == KWArchiveCluster::array || cluster == KWArchiveCluster::mutableArray;
}
