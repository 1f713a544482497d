#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

/// JSON whose numbers are floats, so that they are written as short as floats are, and whose keys
/// keep their order. What is not finite is written as null.
using Json = nlohmann::basic_json<nlohmann::ordered_map, std::vector, std::string, bool,
                                  std::int64_t, std::uint64_t, float>;

/// The text of a value; bytes that are no UTF-8 become U+FFFD. `indent` -1 is one line.
inline std::string jsonText(const Json& value, int indent = -1) {
    return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}
