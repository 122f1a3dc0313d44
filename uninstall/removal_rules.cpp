#include "uninstall/removal_rules.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"
#include "platform/values/text.h"
#include "uninstall/kept_places.h"

namespace velto {
namespace {

constexpr std::array<std::string_view, 6> codes{"admin", "perm",      "busy",
                                                "gone",  "protected", "other"};

// Foundation's file errors (FoundationErrors.h).
constexpr int cocoaNoSuchFile = 4;
constexpr int cocoaReadNoPermission = 257;
constexpr int cocoaReadNoSuchFile = 260;
constexpr int cocoaWriteNoPermission = 513;

bool isBelow(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && isAtOrBelow(path, folder);
}

bool isNeverRemoved(const std::string& path, const HomeLayout& home) {
    if (path == home.home) return true;
    if (std::ranges::find(home.neverRemoved, path) != home.neverRemoved.end()) return true;
    return std::ranges::any_of(home.neverRemovedBelow, [&](const std::string& folder) {
        return isAtOrBelow(path, folder);
    });
}

/// Below one of the folders in which applications of a Linux home keep things.
bool isInApplicationFolder(const std::string& path, const HomeLayout& home) {
    return std::ranges::any_of(home.libraryRoots,
                               [&](const std::string& root) { return isBelow(path, root); }) ||
           std::ranges::any_of(home.applicationRoots,
                               [&](const std::string& root) { return isBelow(path, root); });
}

/// A hidden place of the home in which no rule lets anything go.
bool isHiddenPlace(const std::string& path, const HomeLayout& home, const Claims& claims) {
    if (path.size() <= home.home.size() + 1 || path[home.home.size() + 1] != '.') return false;
    const auto isClaimed = [&](const std::string& place) { return isAtOrBelow(path, place); };
    return !isInApplicationFolder(path, home) && !isInProgramFolder(path, home) &&
           std::ranges::none_of(claims, isClaimed);
}

RemovalReason permission(const std::string& path, const HomeLayout& home) {
    return isBelow(path, home.home) ? RemovalReason::perm : RemovalReason::admin;
}

RemovalReason classifyTrash(int code) {
    switch (static_cast<TrashError::Reason>(code)) {
        case TrashError::Reason::outsideHome:
            return RemovalReason::admin;
        case TrashError::Reason::protected_:
            return RemovalReason::protected_;
        case TrashError::Reason::notFound:
            return RemovalReason::gone;
        case TrashError::Reason::alreadyInTrash:
            return RemovalReason::other;
    }
    return RemovalReason::other;
}

RemovalReason classifyPosix(int code, const std::string& path, const HomeLayout& home) {
    switch (code) {
        case EPERM:
        case EACCES:
            return permission(path, home);
        case ENOENT:
            return RemovalReason::gone;
        case EBUSY:
        case ETXTBSY:
            return RemovalReason::busy;
        default:
            return RemovalReason::other;
    }
}

RemovalReason classifyCocoa(int code, const std::string& path, const HomeLayout& home) {
    switch (code) {
        case cocoaWriteNoPermission:
        case cocoaReadNoPermission:
            return permission(path, home);
        case cocoaNoSuchFile:
        case cocoaReadNoSuchFile:
            return RemovalReason::gone;
        default:
            return RemovalReason::other;
    }
}

}  // namespace

std::string_view code(RemovalReason reason) { return codes[static_cast<std::size_t>(reason)]; }

bool isSafeToRemove(const std::string& path, const std::string& bundlePath, const HomeLayout& home,
                    const Claims& claims) {
    const std::string wanted = standardizedPath(path);
    if (wanted.empty()) return false;
    if (wanted == standardizedPath(bundlePath)) return true;
    if (wanted == home.home) return false;
    if (home.kind == HomeLayout::Kind::freedesktop) {
        if (!isBelow(wanted, home.home) && !isInApplicationFolder(wanted, home)) return false;
        if (isHiddenPlace(wanted, home, claims) || isKeptFromAll(wanted, home)) return false;
        return !isNeverRemoved(wanted, home);
    }
    const bool isInReach = isBelow(wanted, home.home) || isBelow(wanted, home.systemApplications) ||
                           isBelow(wanted, home.systemLibrary);
    return isInReach && !isNeverRemoved(wanted, home);
}

bool isProtectedPlace(const std::string& path, const HomeLayout& home, const Claims& claims) {
    const std::string wanted = standardizedPath(path);
    if (wanted.empty()) return true;
    if (!isAtOrBelow(wanted, home.home)) return false;
    if (isNeverRemoved(wanted, home) || isProtectedPath(wanted)) return true;
    if (isKeptFromAll(wanted, home)) return true;
    return home.kind == HomeLayout::Kind::freedesktop && isHiddenPlace(wanted, home, claims);
}

RemovalError removalError(const std::exception& error) {
    using Domain = RemovalError::Domain;
    if (const auto* trash = dynamic_cast<const TrashError*>(&error)) {
        return {.domain = Domain::trash, .code = static_cast<int>(trash->reason())};
    }
    if (const auto* file = dynamic_cast<const FileError*>(&error)) {
        return {.domain = Domain::posix, .code = file->code()};
    }
    return {};
}

RemovalReason classify(const RemovalError& error, const std::string& path, const HomeLayout& home) {
    switch (error.domain) {
        case RemovalError::Domain::trash:
            return classifyTrash(error.code);
        case RemovalError::Domain::posix:
            return classifyPosix(error.code, path, home);
        case RemovalError::Domain::cocoa:
            return classifyCocoa(error.code, path, home);
        case RemovalError::Domain::other:
            return RemovalReason::other;
    }
    return RemovalReason::other;
}

}  // namespace velto
