#pragma once

#include <memory>
#include <stdexcept>
#include <type_traits>
#include <vector>

/// A list with a copy of each element, in order; a null element stays null. std::invalid_argument
/// when an element has no copy, or one of another class than the list holds.
template <class T>
std::vector<std::shared_ptr<T>> hjDeepCopy(const std::vector<std::shared_ptr<T>>& list) {
    std::vector<std::shared_ptr<T>> copies;
    copies.reserve(list.size());
    for (const auto& element : list) {
        if (!element) {
            copies.push_back(nullptr);
            continue;
        }
        auto copied = element->copy();
        if constexpr (std::is_convertible_v<decltype(copied), std::shared_ptr<T>>)
            copies.push_back(std::move(copied));
        else
            copies.push_back(std::dynamic_pointer_cast<T>(copied));
        if (!copies.back())
            throw std::invalid_argument("hjDeepCopy: an element has no copy");
    }
    return copies;
}

/// The same for a list of values, such as times.
template <class T>
std::vector<T> hjDeepCopy(const std::vector<T>& list) {
    return list;
}
