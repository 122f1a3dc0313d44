#include "platform/posix/attribute_names.h"

#include <algorithm>

namespace velto {

std::vector<std::string> attributeNamesIn(std::string_view list) {
    std::vector<std::string> names;
    while (!list.empty()) {
        const std::string_view name = list.substr(0, list.find('\0'));
        names.emplace_back(name);
        list.remove_prefix(std::min(list.size(), name.size() + 1));
    }
    return names;
}

}  // namespace velto
