#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <type_traits>

#include "platform/linux/property_lists.h"
#include "platform/values/PropertyList.h"

namespace velto {
namespace {

struct FreePlist {
    void operator()(void* plist) const { plist_free(plist); }
};
struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

/// libplist 2.3 has given the function a fourth argument, which tells the form that it found; which
/// one is installed, the compiler sees.
template <typename Parse>
plist_t parse(Parse from, const char* bytes, std::uint32_t size) {
    plist_t parsed = nullptr;
    if constexpr (std::is_invocable_v<Parse, const char*, std::uint32_t, plist_t*>) {
        from(bytes, size, &parsed);
    } else {
        from(bytes, size, &parsed, nullptr);
    }
    return parsed;
}

constexpr int mostDepth = 200;  // deeper values are left out; no program looks there

PropertyList convert(plist_t node, int depth);

PropertyList::List convertList(plist_t node, int depth) {
    PropertyList::List list;
    const std::uint32_t count = plist_array_get_size(node);
    list.reserve(count);
    plist_array_iter position = nullptr;
    plist_array_new_iter(node, &position);
    const std::unique_ptr<void, FreeMemory> owned(position);
    for (std::uint32_t index = 0; index < count; ++index) {
        plist_t item = nullptr;
        plist_array_next_item(node, position, &item);
        if (item == nullptr) break;
        list.push_back(convert(item, depth));
    }
    return list;
}

PropertyList::Dictionary convertDictionary(plist_t node, int depth) {
    PropertyList::Dictionary dictionary;
    plist_dict_iter position = nullptr;
    plist_dict_new_iter(node, &position);
    const std::unique_ptr<void, FreeMemory> owned(position);
    while (true) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, position, &key, &item);
        const std::unique_ptr<void, FreeMemory> ownedKey(key);
        if (key == nullptr || item == nullptr) break;
        dictionary.push_back({key, convert(item, depth)});
    }
    return dictionary;
}

PropertyList convert(plist_t node, int depth) {
    PropertyList result;
    if (depth == mostDepth) return result;
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t value = 0;
            plist_get_bool_val(node, &value);
            result.value = value != 0;
            break;
        }
        case PLIST_UINT: {
            std::uint64_t value = 0;
            plist_get_uint_val(node, &value);
            result.value = static_cast<std::int64_t>(value);  // negative ones come as their bits
            break;
        }
        case PLIST_REAL: {
            double value = 0;
            plist_get_real_val(node, &value);
            result.value = value;
            break;
        }
        case PLIST_STRING: {
            std::uint64_t length = 0;
            const char* text = plist_get_string_ptr(node, &length);
            if (text != nullptr) result.value = std::string(text, length);
            break;
        }
        case PLIST_ARRAY:
            result.value = convertList(node, depth + 1);
            break;
        case PLIST_DICT:
            result.value = convertDictionary(node, depth + 1);
            break;
        default:
            break;
    }
    return result;
}

}  // namespace

bool readsPropertyLists() { return true; }

std::optional<PropertyList> readPropertyList(std::string_view bytes) {
    if (!isBoundedPropertyList(bytes)) return std::nullopt;
    // The parser counts on a byte after the last one.
    const std::string terminated(bytes);
    const plist_t parsed = parse(&plist_from_memory, terminated.c_str(),
                                 static_cast<std::uint32_t>(terminated.size()));
    const std::unique_ptr<void, FreePlist> owned(parsed);
    if (parsed == nullptr) return std::nullopt;
    return convert(parsed, 0);
}

}  // namespace velto
