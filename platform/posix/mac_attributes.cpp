#include "platform/posix/mac_attributes.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace velto {
namespace {

constexpr std::array<std::string_view, 3> ofTheUser{
    "com.apple.FinderInfo", "com.apple.ResourceFork", "com.apple.TextEncoding"};

}  // namespace

bool isAttributeOfMacSystem(std::string_view name) {
    return name.starts_with("com.apple.") && !name.starts_with("com.apple.metadata:") &&
           std::find(ofTheUser.begin(), ofTheUser.end(), name) == ofTheUser.end();
}

bool mayStayBehindOnMac(std::string_view name, int reason) {
    return (reason == EPERM || reason == EACCES) && isAttributeOfMacSystem(name);
}

}  // namespace velto
