#include "uninstall/removable_path.h"

#include <algorithm>
#include <array>
#include <span>

#include "platform/values/text.h"
#include "uninstall/common_words.h"
#include "uninstall/removal_rules.h"
#include "uninstall/words.h"

namespace velto {
namespace {

/// What an application's folder is called where neither its program nor its name tells.
struct Abbreviation {
    std::string_view program;
    std::string_view folder;
};

constexpr auto abbreviations = std::to_array<Abbreviation>({
    {"code", "VSCode"},
    {"code-insiders", "VSCode"},
    {"codium", "VSCodium"},
    {"studio", "android-studio"},
    {"studio", "AndroidStudio"},
    {"idea", "intellij-idea"},
    {"idea", "IntelliJIdea"},
    {"start-tor-browser", "tor-browser"},
    {"soffice", "libreoffice"},
});

/// Levels inside an application's folder that say nothing about whose it is.
constexpr auto innerFolders = std::to_array<std::string_view>({
    "bin",
    "Browser",
    "current",
    "latest",
    "lib",
    "lib64",
    "libexec",
    "linux",
    "linux64",
    "program",
    "usr",
    "x64",
    "x86_64",
});

// As deep as programs lie in the folders of applications.
constexpr int mostLevels = 5;

// Of what a folder of the user's own work has, and an application's has not.
constexpr auto marksOfWork = std::to_array<std::string_view>({".git", ".hg", ".svn", ".bzr"});

// Of what an unpacked application has beside or around its program.
constexpr auto marksOfProgram = std::to_array<std::string_view>({
    "bin",
    "lib",
    "lib64",
    "libexec",
    "locales",
    "plugins",
    "resources",
    "share",
    "usr",
});

bool isVersion(std::string_view name) {
    return !name.empty() && std::ranges::all_of(name, [](char character) {
        return (character >= '0' && character <= '9') || character == '.';
    });
}

bool isInner(std::string_view name) {
    return std::ranges::find(innerFolders, name) != innerFolders.end() || isVersion(name) ||
           (name.starts_with("ch-") && isVersion(name.substr(3)));
}

/// True for a folder that carries the word, alone or before a version or the like.
bool beginsWithWord(std::string_view folder, std::string_view word, const Locale& locale) {
    const std::string folderName = locale.lowerCased(folder);
    const std::string stem = locale.lowerCased(word);
    if (!folderName.starts_with(stem)) return false;
    return folderName.size() == stem.size() ||
           std::string_view("-_. 0123456789").find(folderName[stem.size()]) !=
               std::string_view::npos;
}

/// One folder and the application that may be all of it.
class Recognition {
public:
    Recognition(const Platform& platform, const DesktopEntryFile& file, const DesktopEntry& entry)
        : platform_(platform), locale_(*platform.locale), file_(file), entry_(entry) {
        stem_ = stemOf(lastPathComponent(entry.executable));
    }

    bool isAllOf(const std::string& folder) const {
        const std::string_view name = lastPathComponent(folder);
        return (hasProgramsName(name) || isAbbreviation(name) || hasItsName(folder)) &&
               isSafeToRemove(folder, "", platform_.layout) && !holdsAny(folder, marksOfWork);
    }

private:
    /// A name that says little may be the name of a folder that holds much more.
    bool hasProgramsName(std::string_view folder) const {
        return length(stem_) >= 3 && !isCommonWord(stem_) && beginsWithWord(folder, stem_, locale_);
    }
    bool isAbbreviation(std::string_view folder) const {
        return std::ranges::any_of(abbreviations, [&](const Abbreviation& one) {
            return one.program == stem_ && beginsWithWord(folder, one.folder, locale_);
        });
    }
    /// The application's own name may also be what somebody calls a folder of documents: then the
    /// folder has to look like a program's as well.
    bool hasItsName(const std::string& folder) const {
        const std::string name = comparable(lastPathComponent(folder), locale_);
        if (length(name) < 4 || isCommonWord(name)) return false;
        const std::string_view id = file_.id;
        const std::string_view last = id.substr(id.rfind('.') + 1);  // of a reverse domain name
        const auto is = [&](std::string_view text) { return comparable(text, locale_) == name; };
        return (is(entry_.name) || is(id) || is(last)) && holdsAny(folder, marksOfProgram);
    }
    bool holdsAny(const std::string& folder, std::span<const std::string_view> names) const {
        return std::ranges::any_of(names, [&](std::string_view name) {
            return platform_.files->exists(folder + "/" + std::string(name));
        });
    }

    const Platform& platform_;
    const Locale& locale_;
    const DesktopEntryFile& file_;
    const DesktopEntry& entry_;
    std::string stem_;
};

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
    const Recognition recognition(platform, file, entry);
    std::string folder = parentFolder(executable);
    for (int level = 0; level < mostLevels; ++level) {
        if (folder.size() <= platform.layout.home.size()) break;
        if (recognition.isAllOf(folder)) return folder;
        if (!isInner(lastPathComponent(folder))) break;
        folder = parentFolder(folder);
    }
    return executable;
}

std::string folderThatStays(const Platform& platform, const std::string& program) {
    const HomeLayout& home = platform.layout;
    std::string folder = parentFolder(program);
    while (isInner(lastPathComponent(folder)) && folder.size() > home.home.size())
        folder = parentFolder(folder);
    const bool isShared =
        std::ranges::find(home.applicationRoots, folder) != home.applicationRoots.end();
    if (isShared || !isSafeToRemove(folder, "", home)) return {};
    try {
        const bool isAlone =
            parentFolder(program) == folder && platform.files->list(folder).size() < 2;
        return isAlone ? std::string() : folder;
    } catch (const FileError&) {
        return {};
    }
}

}  // namespace velto
