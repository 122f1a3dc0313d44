#include "platform/linux/packages/SystemFlatpaks.h"

#include "platform/DesktopEntry.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using Reason = PackageError::Reason;

constexpr const char* flatpak = "/usr/bin/flatpak";

}  // namespace

bool SystemFlatpaks::isInstalled(const std::string& identifier) const {
    const bool isName = !identifier.empty() && identifier.front() != '-' &&
                        identifier.front() != '.' && identifier.find('/') == std::string::npos;
    return isName && files_.exists(installation_ + "/app/" + identifier);
}

std::optional<Package> SystemFlatpaks::owner(const std::string& desktopEntry) {
    if (parentFolder(desktopEntry) != installation_ + "/exports/share/applications") {
        return std::nullopt;
    }
    const auto entry = readDesktopEntry(desktopEntry);
    if (!entry || !isInstalled(entry->flatpak)) return std::nullopt;
    return Package{entry->flatpak, entry->flatpak};
}

std::vector<Package> SystemFlatpaks::removedWith(const Package&) {
    return {};  // an application is needed by none; runtimes stay until they are asked for
}

void SystemFlatpaks::remove(const Package& package, bool) {
    if (!isInstalled(package.identifier)) {
        throw PackageError(Reason::missing, "not installed: " + package.identifier);
    }
    requireFlatpaksSuccess(tools_.run(flatpak, {"uninstall", "--system", "--noninteractive",
                                                "--assumeyes", "--", package.identifier}));
}

}  // namespace velto
