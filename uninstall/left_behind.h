#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "platform/Platform.h"
#include "uninstall/InstalledNames.h"

namespace velto {

/// A folder of a Linux home in which an application kept its data that is not installed any more.
struct LeftBehind {
    std::string path;
    std::string identifier;  // of the application, or what its package is called
    std::string why;         // a code of `leftBehindReason`
    double gb = 0;           // decimal gigabytes, three decimals
    double last = 0;         // last change that can be seen without going down, seconds since 1970
};

/// What says that the application is gone.
namespace leftBehindReason {
/// The folder belongs to a Flatpak alone, and no Flatpak of that identifier is installed.
inline constexpr const char* flatpak = "flatpak";
/// Nothing that is installed has the identifier or a part of it, and nothing in the folder has
/// changed for a month.
inline constexpr const char* identifier = "identifier";
/// The folder is that of a known package, which is not installed in any form, and nothing in it has
/// changed for a month.
inline constexpr const char* package = "package";
}  // namespace leftBehindReason

/// All of them, the largest first; none on a Mac's home. Whatever is in doubt is left out.
/// Blocking; throws std::system_error when no thread can be started.
std::vector<LeftBehind> leftBehind(const Platform& platform, const InstalledNames& installed);

/// Keys equal the field names.
nlohmann::json toJson(const LeftBehind& item);

}  // namespace velto
