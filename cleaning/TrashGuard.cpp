#include "cleaning/TrashGuard.h"

#include <algorithm>
#include <cerrno>
#include <optional>

#include "cleaning/own_folder.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using Reason = TrashError::Reason;

/// Answers of the system that mean that nobody stands at a path, as far as this user can tell.
bool meansAbsent(const FileError& error) {
    constexpr int reasons[] = {ENOENT, ENOTDIR, EACCES, ENAMETOOLONG, EINVAL};
    return std::ranges::find(reasons, error.code()) != std::end(reasons);
}

}  // namespace

HeldPlace openPlace(FileMover& mover, const std::string& path, FolderPath how) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) throw FileError("reach", path, EINVAL);
    const std::string folder = slash == 0 ? "/" : path.substr(0, slash);
    return {mover.openFolder(folder, how), path.substr(slash + 1)};
}

TrashGuard::Admitted TrashGuard::admit(const std::string& path,
                                       const std::vector<std::string>& extraRoots) const {
    // Links are looked for by opening the path without them, so that a path that passes is its own
    // resolved form. A link anywhere is refused, even when it stays inside the home: restoring
    // through it could write elsewhere.
    const std::string standardized = standardizedPath(path);
    if (!isAllowedRoot(standardized, extraRoots)) throw TrashError(Reason::outsideHome);
    std::optional<Admitted> found;
    try {
        HeldPlace place = openPlace(mover_, standardized, FolderPath::withoutLinks);
        if (const auto attributes = mover_.attributes(*place.folder, place.name)) {
            found = Admitted{std::move(place), *attributes};
        }
    } catch (const FileError& error) {
        if (error.code() == ELOOP) throw TrashError(Reason::outsideHome);
        if (!meansAbsent(error)) throw;
    }
    if (found && found->attributes.kind == FileKind::symbolicLink) {
        throw TrashError(Reason::outsideHome);
    }
    if (isProtectedPath(standardized)) throw TrashError(Reason::protected_);
    // No name holds a NUL byte, even where ".." takes it away again.
    const bool isName = path.find('\0') == std::string::npos;
    if (!found || !isName) throw TrashError(Reason::notFound);
    refuseTrash(path, standardized, *found);
    return std::move(*found);
}

std::string TrashGuard::formerPath(const TrashItem& item,
                                   const std::vector<std::string>& extraRoots) const {
    const std::string path = standardizedPath(item.originalPath);
    judgeReturn(path, extraRoots);
    // What the page shows as its name is what comes back.
    if (lastPathComponent(path) != item.name) throw TrashError(Reason::notFound);
    return path;
}

void TrashGuard::judgeReturn(const std::string& path,
                             const std::vector<std::string>& extraRoots) const {
    const bool isPath = standardizedPath(path) == path && path.find('\0') == std::string::npos;
    if (!isPath || !isAllowedRoot(path, extraRoots)) throw TrashError(Reason::outsideHome);
    if (isProtectedPath(path)) throw TrashError(Reason::protected_);
    if (isAtOrBelow(path, layout_.dataFolder)) throw TrashError(Reason::alreadyInTrash);
}

void TrashGuard::refuseOwnData(const FolderHandle& folder) const {
    const auto own = openFolderAbove(mover_, layout_.trashFolder);
    if (own && mover_.isAtOrBelow(folder, *own)) throw TrashError(Reason::alreadyInTrash);
}

bool TrashGuard::isAllowedRoot(const std::string& path,
                               const std::vector<std::string>& extraRoots) const {
    if (path.empty() || path == "/") return false;
    if (path.starts_with(layout_.home + "/")) return true;
    return std::ranges::any_of(extraRoots,
                               [&](const std::string& root) { return path.starts_with(root); });
}

void TrashGuard::refuseTrash(const std::string& path, const std::string& standardized,
                             const Admitted& admitted) const {
    const std::string& root = layout_.trashFolder;
    // The second test is broad on purpose: the trash folder itself and the files beside it that
    // belong to it begin with its path too.
    const bool byText =
        standardized.starts_with(standardizedPath(root) + "/") || path.starts_with(root);
    if (byText) throw TrashError(Reason::alreadyInTrash);
    // By identity: a path may reach the trash in other letters (a volume that ignores case).
    const auto trash = files_.attributes(root);
    if (!trash || trash->kind != FileKind::folder) return;
    const auto handle = openOwnFolder(mover_, root);
    if (!handle) return;
    if (admitted.attributes.identity == trash->identity ||
        mover_.isAtOrBelow(*admitted.place.folder, *handle)) {
        throw TrashError(Reason::alreadyInTrash);
    }
}

}  // namespace velto
