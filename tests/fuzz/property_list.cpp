#include "platform/values/PropertyList.h"

#include <algorithm>
#include <string>
#include <variant>

#include "fuzz/engine/Target.h"
#include "support/made_property_list.h"

namespace velto::fuzz {
namespace {

constexpr int deepest = 201;  // what a system's reader goes down to, and the empty value there
// What is written and read again stays well below the bounds of either form.
constexpr int mostDepth = 150;
constexpr int mostValues = 2'000;

bool isSame(const PropertyList& left, const PropertyList& right) {
    if (const auto* list = std::get_if<PropertyList::List>(&left.value)) {
        const auto* other = std::get_if<PropertyList::List>(&right.value);
        return other != nullptr && std::ranges::equal(*list, *other, isSame);
    }
    if (const auto* dictionary = std::get_if<PropertyList::Dictionary>(&left.value)) {
        const auto* other = std::get_if<PropertyList::Dictionary>(&right.value);
        return other != nullptr &&
               std::ranges::equal(*dictionary, *other, [](const auto& one, const auto& another) {
                   return one.key == another.key && isSame(one.value, another.value);
               });
    }
    if (left.value.index() != right.value.index()) return false;
    if (const auto* flag = std::get_if<bool>(&left.value)) {
        return *flag == std::get<bool>(right.value);
    }
    if (const auto* number = std::get_if<std::int64_t>(&left.value)) {
        return *number == std::get<std::int64_t>(right.value);
    }
    const auto* text = std::get_if<std::string>(&left.value);
    return text != nullptr && *text == std::get<std::string>(right.value);
}

bool isPlain(const std::string& text) {
    return !text.empty() && std::ranges::all_of(text, [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
               (letter >= '0' && letter <= '9') || letter == '<' || letter == '&';
    });
}

/// True for what can be written in either form: texts without white space, which readers may drop,
/// and no key twice.
bool canBeWritten(const PropertyList& value) {
    if (const auto* text = std::get_if<std::string>(&value.value)) return isPlain(*text);
    if (const auto* number = std::get_if<std::int64_t>(&value.value)) return *number >= 0;
    if (const auto* list = std::get_if<PropertyList::List>(&value.value)) {
        return std::ranges::all_of(*list, canBeWritten);
    }
    const auto* dictionary = std::get_if<PropertyList::Dictionary>(&value.value);
    if (dictionary == nullptr) return std::holds_alternative<bool>(value.value);
    for (const PropertyList::Entry& entry : *dictionary) {
        if (!isPlain(entry.key) || !canBeWritten(entry.value)) return false;
        if (std::ranges::count(*dictionary, entry.key, &PropertyList::Entry::key) > 1) return false;
    }
    return true;
}

int depthOf(const PropertyList& value) {
    int depth = 0;
    if (const auto* list = std::get_if<PropertyList::List>(&value.value)) {
        for (const PropertyList& item : *list)
            depth = std::max(depth, depthOf(item));
    } else if (const auto* dictionary = std::get_if<PropertyList::Dictionary>(&value.value)) {
        for (const PropertyList::Entry& entry : *dictionary)
            depth = std::max(depth, depthOf(entry.value));
    }
    return depth + 1;
}

int valuesIn(const PropertyList& value) {
    int count = 1;
    if (const auto* list = std::get_if<PropertyList::List>(&value.value)) {
        for (const PropertyList& item : *list)
            count += valuesIn(item);
    } else if (const auto* dictionary = std::get_if<PropertyList::Dictionary>(&value.value)) {
        for (const PropertyList::Entry& entry : *dictionary)
            count += valuesIn(entry.value);
    }
    return count;
}

/// What is read is bounded, and reads as the same again in both forms.
void judge(std::string_view input) {
    const auto list = readPropertyList(input);
    if (!list) return;
    require(isBoundedPropertyList(input), "what the bounds refuse is not read");
    const int depth = depthOf(*list);
    require(depth <= deepest, "no value is deeper than allowed");
    if (!list->isDictionary() || depth > mostDepth || valuesIn(*list) > mostValues) return;
    if (!canBeWritten(*list)) return;
    const auto fromXml = readPropertyList(xmlPropertyList(*list));
    require(fromXml && isSame(*fromXml, *list), "written as XML it reads as the same");
    const auto fromBinary = readPropertyList(binaryPropertyList(*list));
    require(fromBinary && isSame(*fromBinary, *list), "written as binary it reads as the same");
}

const Registration registered("property_list", judge);

}  // namespace
}  // namespace velto::fuzz
