#pragma once

#include <map>
#include <string>

namespace velto {

/// The extended attributes of a file or folder with their values, those that hold an access list
/// included. A link has none.
std::map<std::string, std::string> extendedAttributes(const std::string& path);

/// False where the file system does not know the attribute.
bool setExtendedAttribute(const std::string& path, const std::string& name,
                          const std::string& value);

}  // namespace velto
