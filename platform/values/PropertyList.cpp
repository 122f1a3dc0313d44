#include "platform/values/PropertyList.h"

namespace velto {

const PropertyList* PropertyList::member(std::string_view key) const {
    const auto* dictionary = std::get_if<Dictionary>(&value);
    if (dictionary == nullptr) return nullptr;
    for (const Entry& entry : *dictionary) {
        if (entry.key == key) return &entry.value;
    }
    return nullptr;
}

const std::string* PropertyList::text(std::string_view key) const {
    const PropertyList* found = member(key);
    return found == nullptr ? nullptr : std::get_if<std::string>(&found->value);
}

}  // namespace velto
