#include "uninstall/app_removal.h"

#include <algorithm>
#include <cerrno>

#include "cleaning/TrashRecords.h"
#include "platform/DesktopEntry.h"
#include "platform/values/text.h"
#include "uninstall/ItemRemoval.h"
#include "uninstall/desktop_applications.h"
#include "uninstall/kept_places.h"
#include "uninstall/removable_path.h"

namespace velto {
namespace {

/// Of an application of which only the desktop entry is known.
std::string staysBehindEntry(const Platform& platform, const AppEntry& entry) {
    const std::string inHome = platform.layout.home + "/";
    if (!entry.path.starts_with(inHome) || entry.store) return "admin";
    for (const DesktopApplication& application : desktopApplications(platform)) {
        if (application.entry.path != entry.path) continue;
        const bool isElsewhere = !application.executable.starts_with(inHome);
        return application.isIdentified && isElsewhere ? "admin" : "entry";
    }
    return "entry";
}

bool isSharedFolder(const std::string& path, const HomeLayout& home) {
    const KeptMatch kept = keptPlaceOf(path, home);
    const bool isKeptAsFolder = kept.row != nullptr && kept.length == path.size() &&
                                kept.row->extent != KeptPlace::Extent::everything;
    return isKeptAsFolder || std::ranges::find(home.neverRemoved, path) != home.neverRemoved.end();
}

/// Why the removal of what is at the path would be refused; empty when it would not.
std::string refusal(const Platform& platform, const InstalledApps& apps, const std::string& path) {
    try {
        ItemRemoval(platform, apps).requireRemovable(path);
        return {};
    } catch (const TrashError& error) {
        if (error.reason() == TrashError::Reason::outsideHome) return "admin";
        if (error.reason() != TrashError::Reason::protected_) return {};
        return isSharedFolder(path, platform.layout) ? "shared" : "protected";
    } catch (const FileError& error) {
        // What is only in use now may be free when it is removed.
        return error.code() == EACCES || error.code() == EPERM ? "admin" : "";
    }
}

}  // namespace

std::optional<AppRemoval> appRemoval(const Platform& platform, const InstalledApps& apps,
                                     const AppEntry& entry) {
    if (platform.layout.kind != HomeLayout::Kind::freedesktop) return std::nullopt;
    if (entry.apple) return AppRemoval{.stays = "system", .folder = {}};
    if (entry.path.ends_with(desktopEntryExtension)) {
        return AppRemoval{.stays = staysBehindEntry(platform, entry), .folder = {}};
    }
    AppRemoval removal{.stays = refusal(platform, apps, entry.path), .folder = {}};
    const auto attributes = platform.files->attributes(entry.path);
    const bool isFile = attributes && attributes->kind == FileKind::regular;
    if (removal.stays.empty() && isFile && lowerCaseExtension(entry.path) != "appimage") {
        removal.folder = folderThatStays(platform, entry.path);
    }
    return removal;
}

}  // namespace velto
