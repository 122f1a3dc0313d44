#include "uninstall/removal_folder.h"

#include <algorithm>
#include <cerrno>

#include "platform/values/text.h"

namespace velto {
namespace {

// The pattern of `newUUID`; H is an upper-case hexadecimal digit.
constexpr std::string_view identifierPattern = "HHHHHHHH-HHHH-HHHH-HHHH-HHHHHHHHHHHH";
// The pattern of the temporaries of `writeAtomically`; h is a lower-case hexadecimal digit.
constexpr std::string_view temporaryPattern = ".velto-hhhhhhhhhhhhhhhh";

bool fits(std::string_view text, std::string_view pattern) {
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    return std::ranges::equal(text, pattern, [&](char character, char wanted) {
        if (wanted == 'H') return isDigit(character) || (character >= 'A' && character <= 'F');
        if (wanted == 'h') return isDigit(character) || (character >= 'a' && character <= 'f');
        return character == wanted;
    });
}

/// The data folder as it really lies.
RemovalFolder openParent(const Platform& platform) {
    const std::string& home = platform.layout.home;
    const std::string parent = parentFolder(platform.layout.removalFolder);
    RemovalFolder opened{.handle = nullptr, .path = platform.files->resolved(parent)};
    // One that the user has put outside the home by name is where the user wants it.
    if (isAtOrBelow(parent, home) && !isAtOrBelow(opened.path, home)) {
        throw FileError("open folder", parent, ELOOP);
    }
    opened.handle = platform.mover->openFolder(opened.path, FolderPath::withoutLinks);
    return opened;
}

RemovalFolder openIn(const Platform& platform, const RemovalFolder& parent,
                     const std::string& name) {
    return {.handle = platform.mover->openFolder(*parent.handle, name),
            .path = parent.path + "/" + name};
}

}  // namespace

RemovalFolder openRemovalFolder(const Platform& platform) {
    const std::string& path = platform.layout.removalFolder;
    platform.files->createFolders(parentFolder(path));
    const RemovalFolder parent = openParent(platform);
    const std::string name(lastPathComponent(path));
    try {
        platform.mover->makeFolder(*parent.handle, name);
    } catch (const FileError& error) {
        if (error.code() != EEXIST) throw;
    }
    return openIn(platform, parent, name);
}

std::optional<RemovalFolder> existingRemovalFolder(const Platform& platform) {
    const std::string& path = platform.layout.removalFolder;
    if (!platform.files->exists(path)) return std::nullopt;
    return openIn(platform, openParent(platform), std::string(lastPathComponent(path)));
}

bool isNameOfRemoval(std::string_view name) {
    if (fits(name, temporaryPattern)) return true;
    if (name.ends_with(removalRecordSuffix)) name.remove_suffix(removalRecordSuffix.size());
    return fits(name, identifierPattern);
}

}  // namespace velto
