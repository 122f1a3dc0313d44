#include "platform/linux/property_lists.h"
#include "platform/values/PropertyList.h"

namespace velto {

bool readsPropertyLists() { return false; }

std::optional<PropertyList> readPropertyList(std::string_view) { return std::nullopt; }

}  // namespace velto
