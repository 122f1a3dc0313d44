#include "cleaning/restored_name.h"

#include <algorithm>

#include <fmt/format.h>

namespace velto {
namespace {

struct Split {
    std::string_view stem;
    std::string_view extension;  // with its full stop
};

Split split(std::string_view name) {
    const std::size_t stop = name.rfind('.');
    const bool hasExtension = stop != std::string::npos && stop != 0 && stop + 1 < name.size();
    if (!hasExtension) return {name, ""};
    return {name.substr(0, stop), name.substr(stop)};
}

}  // namespace

std::string restoredName(std::string_view name, int number) {
    const auto [stem, extension] = split(name);
    return fmt::format("{} (restaurado {}){}", stem, number, extension);
}

bool isRestoredName(std::string_view candidate, std::string_view name) {
    if (candidate == name) return true;
    const auto [stem, extension] = split(name);
    const std::string start = fmt::format("{} (restaurado ", stem);
    const std::string end = fmt::format("){}", extension);
    if (candidate.size() <= start.size() + end.size() || !candidate.starts_with(start) ||
        !candidate.ends_with(end)) {
        return false;
    }
    candidate.remove_prefix(start.size());
    candidate.remove_suffix(end.size());
    return std::ranges::all_of(candidate, [](char digit) { return digit >= '0' && digit <= '9'; });
}

}  // namespace velto
