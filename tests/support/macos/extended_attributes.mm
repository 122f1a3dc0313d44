#include "support/extended_attributes.h"

#include <sys/xattr.h>

#include <string_view>

namespace velto {

std::map<std::string, std::string> extendedAttributes(const std::string& path) {
    std::map<std::string, std::string> found;
    std::string names(64 * 1024, '\0');
    const ssize_t length = listxattr(path.c_str(), names.data(), names.size(), XATTR_NOFOLLOW);
    if (length <= 0) return found;
    names.resize(static_cast<std::size_t>(length));
    for (std::string_view rest = names; !rest.empty();) {
        const std::string name(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(name.size() + 1);
        std::string value(64 * 1024, '\0');
        const ssize_t size =
            getxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0, XATTR_NOFOLLOW);
        value.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
        found[name] = value;
    }
    return found;
}

bool setExtendedAttribute(const std::string& path, const std::string& name,
                          const std::string& value) {
    return setxattr(path.c_str(), name.c_str(), value.data(), value.size(), 0, XATTR_NOFOLLOW) == 0;
}

}  // namespace velto
