#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"
#include "platform/HomeLayout.h"

namespace velto {

/// A desktop entry as freedesktop.org desktops have them: how to start an application.
struct DesktopEntry {
    std::string name;        // in the user's language
    std::string executable;  // absolute, links resolved
    std::string icon;        // the name of a theme's icon, or an absolute path; may be empty
    std::string version;     // of the application, where its packager wrote it down
    std::string flatpak;     // identifier of the Flatpak that it starts, else empty
    std::string snap;        // (instance) name of the Snap that it says it starts, else empty
    std::string script;      // what an interpreter is told to run, absolute, links resolved
    std::vector<std::string> arguments;  // of the program; what stands for opened files left out
    bool isShown = true;                 // on this desktop, to the user
    bool startsScript = false;           // `executable` only runs something: a shell, a launcher
};

/// Reads the entry at a path. Nothing when there is none, when it is marked as deleted, or when the
/// program that it starts is not installed. Safe from every thread; never throws. A Mac has none.
std::optional<DesktopEntry> readDesktopEntry(const std::string& path);

inline constexpr std::string_view desktopEntryExtension = ".desktop";

/// One file of desktop entries.
struct DesktopEntryFile {
    std::string id;      // what the standard calls it by: the file's name without its extension
    std::string origin;  // identifier of the folder
    std::string path;
};

/// The entries in `folders` and in their subfolders at any depth, the shortest id first: of several
/// of one application that is the least special. An id that an earlier folder has is hidden by it.
/// A file in a subfolder has the subfolders' names, each with a hyphen, before its own. Links to
/// folders are followed, each folder once. Folders that hold more than any system's are read in
/// part. Never throws.
std::vector<DesktopEntryFile> desktopEntryFiles(const FileManager& files,
                                                const std::vector<NamedLocation>& folders);

/// `folders` and the subfolders in which `desktopEntryFiles` looks, also the empty ones. Never
/// throws.
std::vector<std::string> desktopEntryFolders(const FileManager& files,
                                             const std::vector<NamedLocation>& folders);

/// The (instance) name of the Snap that an entry starts; empty when it starts none.
std::string snapOfEntry(const DesktopEntryFile& file, const DesktopEntry& entry);

/// The picture file of an entry's `icon`, looked for among the icons beside each of the folders of
/// entries; empty when there is none. Never throws.
std::string desktopIconFile(const FileManager& files, const std::vector<NamedLocation>& folders,
                            const std::string& icon);

}  // namespace velto
