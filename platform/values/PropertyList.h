#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace velto {

/// A value of a property list. Dates and data, which nobody here asks for, are empty values.
struct PropertyList {
    struct Entry;
    using List = std::vector<PropertyList>;
    using Dictionary = std::vector<Entry>;  // in the file's order

    std::variant<std::monostate, bool, std::int64_t, double, std::string, List, Dictionary> value;

    bool isDictionary() const { return std::holds_alternative<Dictionary>(value); }
    /// The value under a key; null when this is no dictionary or lacks the key.
    const PropertyList* member(std::string_view key) const;
    /// The same as text (UTF-8); null when it is something else.
    const std::string* text(std::string_view key) const;
};

struct PropertyList::Entry {
    std::string key;
    PropertyList value;
};

/// Bytes of the longest property list that is read. Those of large applications have some ten
/// thousand, the longest known a few hundred thousand (a browser's, with all its document types).
inline constexpr std::size_t longestPropertyList = 1024 * 1024;

/// Reads a property list in XML or binary form; nothing when it is none, or one whose size or
/// nesting no program writes. Bytes come from anywhere: damaged or hostile ones are safe. Safe from
/// every thread. Answered by each system.
std::optional<PropertyList> readPropertyList(std::string_view bytes);

/// True when a system's parser can be trusted with the bytes: parsers recurse, a few kilobytes of
/// binary form can stand for more values than any memory holds, entities that a document declares
/// can do the same for XML, and some parsers move a whole text for each entity in it. What is no
/// property list at all may pass; the parser refuses it. Takes time in proportion to the size.
bool isBoundedPropertyList(std::string_view bytes);

}  // namespace velto
