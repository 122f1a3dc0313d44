#pragma once

#include <string>

#include "platform/values/PropertyList.h"

namespace velto {

/// A dictionary as an XML property list, texts and containers alone.
std::string xmlPropertyList(const PropertyList& value);

/// The same in binary form.
std::string binaryPropertyList(const PropertyList& value);

/// A dictionary of texts.
PropertyList textDictionary(const std::vector<std::pair<std::string, std::string>>& texts);

}  // namespace velto
