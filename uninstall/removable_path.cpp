#include "uninstall/removable_path.h"

#include "platform/values/text.h"
#include "uninstall/removal_rules.h"
#include "uninstall/words.h"

namespace velto {
namespace {

/// True for a folder that carries the program's name, alone or before a version or the like. A name
/// that says little may be the name of a folder that holds much more.
bool isNamedLike(std::string_view folder, std::string_view program, const Locale& locale) {
    if (length(program) < 3 || isGenericInAnyCase(program)) return false;
    const std::string folderName = locale.lowerCased(folder);
    const std::string stem = locale.lowerCased(program);
    if (!folderName.starts_with(stem)) return false;
    return folderName.size() == stem.size() ||
           std::string_view("-_. 0123456789").find(folderName[stem.size()]) !=
               std::string_view::npos;
}

}  // namespace

std::string stemOf(std::string_view fileName) {
    const std::string extensionOfName = lowerCaseExtension(fileName);
    if (extensionOfName == "appimage" || extensionOfName == "sh") {
        fileName.remove_suffix(extensionOfName.size() + 1);
    }
    return std::string(fileName);
}

std::string removablePath(const Platform& platform, const DesktopEntryFile& file,
                          const DesktopEntry& entry) {
    const std::string& executable = entry.executable;
    if (file.origin != entryOrigin::user || lowerCaseExtension(executable) == "appimage") {
        return executable;
    }
    std::string folder = parentFolder(executable);
    if (lastPathComponent(folder) == "bin") folder = parentFolder(folder);
    const bool isNamedLikeIt = isNamedLike(lastPathComponent(folder),
                                           stemOf(lastPathComponent(executable)), *platform.locale);
    const bool isOwn = isSafeToRemove(folder, "", platform.layout);
    return isNamedLikeIt && isOwn ? folder : executable;
}

}  // namespace velto
