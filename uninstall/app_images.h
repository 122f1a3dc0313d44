#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "uninstall/desktop_applications.h"

namespace velto {

/// What the file of an AppImage is called without what tells one build from another, and which
/// version it says it is (may be empty): "Foo" and "1.2" of "Foo-1.2-x86_64.AppImage".
struct AppImageName {
    std::string name;
    std::string version;

    bool operator==(const AppImageName&) const = default;
};
AppImageName appImageName(std::string_view fileName);

/// The AppImages directly in the folders where people keep them that none of `listed` starts. Each
/// is known by its path, which is also its identifier. Never throws.
std::vector<DesktopApplication> appImagesWithoutEntry(
    const Platform& platform, const std::vector<DesktopApplication>& listed);

}  // namespace velto
