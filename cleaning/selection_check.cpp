#include "cleaning/selection_check.h"

#include <cerrno>
#include <optional>

#include "cleaning/TrashGuard.h"
#include "platform/removal_check.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using Stays = SelectionCheck::Reason;

Stays reasonOf(const TrashError& error, const std::string& path, const HomeLayout& layout) {
    switch (error.reason()) {
        case TrashError::Reason::outsideHome:
            return standardizedPath(path).starts_with(layout.home + "/") ? Stays::link
                                                                         : Stays::outside;
        case TrashError::Reason::protected_:
            return Stays::protected_;
        case TrashError::Reason::alreadyInTrash:
            return Stays::own;
        case TrashError::Reason::notFound:
            break;
    }
    return Stays::gone;
}

Stays reasonOf(const FileError& error) {
    if (dynamic_cast<const SomethingMounted*>(&error) != nullptr) return Stays::mounted;
    switch (error.code()) {
        case ENOENT:
        case ENOTDIR:
            return Stays::gone;
        case EACCES:
        case EPERM:
            return Stays::closed;
        case EROFS:
            return Stays::readOnly;
        case EBUSY:
        case EXDEV:
            return Stays::mounted;
        default:
            return Stays::other;
    }
}

/// Why nothing can be seen at the path; nothing when the system gives no reason, or something
/// stands there after all.
std::optional<FileError> whyAbsent(FileMover& mover, const std::string& path) {
    try {
        const HeldPlace place = openPlace(mover, standardizedPath(path), FolderPath::withoutLinks);
        if (mover.attributes(*place.folder, place.name)) return std::nullopt;
        return FileError("find", path, ENOENT);
    } catch (const FileError& error) {
        return error;
    }
}

}  // namespace

SelectionCheck checkSelection(const Platform& platform, const std::vector<std::string>& paths) {
    const TrashGuard guard(*platform.files, *platform.mover, platform.layout);
    SelectionCheck found;
    for (const std::string& path : paths) {
        try {
            const auto admitted = guard.admit(path, {});
            requireMovable(*admitted.place.folder, admitted.place.name);
            found.movable.push_back(path);
        } catch (const TrashError& error) {
            SelectionCheck::Stay stay{path, reasonOf(error, path, platform.layout), {}};
            // A folder that may not be looked into hides what it holds; that is not gone.
            const auto why =
                stay.reason == Stays::gone ? whyAbsent(*platform.mover, path) : std::nullopt;
            if (why) stay = {path, reasonOf(*why), why->what()};
            found.stays.push_back(std::move(stay));
        } catch (const FileError& error) {
            found.stays.push_back({path, reasonOf(error), error.what()});
        }
    }
    return found;
}

}  // namespace velto
