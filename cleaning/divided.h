#pragma once

#include <cstddef>
#include <map>
#include <utility>
#include <vector>

namespace velto {

/// `sets` of indices divided by `keyOf` each of them, in order; what ends up alone, or has no key,
/// is dropped. Parts of one set come in the order of their keys.
template <typename KeyOf>
std::vector<std::vector<std::size_t>> divided(const std::vector<std::vector<std::size_t>>& sets,
                                              const KeyOf& keyOf) {
    std::vector<std::vector<std::size_t>> result;
    for (const auto& set : sets) {
        std::map<decltype(keyOf(0)), std::vector<std::size_t>> parts;
        for (const std::size_t index : set)
            parts[keyOf(index)].push_back(index);
        for (auto& [key, part] : parts) {
            if (key != decltype(keyOf(0))() && part.size() > 1) result.push_back(std::move(part));
        }
    }
    return result;
}

}  // namespace velto
