#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"
#include "uninstall/AppEntry.h"
#include "uninstall/Leftovers.h"

/// What an application leaves behind on a freedesktop home. What carries its own identifier is
/// certain, what only its name or its program's name matches is possible, and what is kept from
/// every uninstall (kept_places.h) is never among it.
namespace velto::Leftovers {

/// The places that the identity names, without a look at the disk.
std::vector<Candidate> desktopCandidates(const std::string& bid, const std::string& name,
                                         const std::string& exec, const std::string& path,
                                         const HomeLayout& home);

/// Hidden folders directly in the home that are named like the application, whether or not they are
/// there: those alone of all hidden folders of the home may go with it.
std::vector<Candidate> dotFolders(const AppEntry& entry, const HomeLayout& home);

/// True for a link that leads to the application or into its folder: it is a part of it, however it
/// came to be. `application` is the path of an entry; one that is a desktop entry has no folder.
bool leadsInto(const FileManager& files, const std::string& path, const std::string& application);

/// What only a look at the disk finds: hidden folders of the home, icons, links that lead into the
/// application, and folders named like it. Blocking; never throws.
std::vector<Candidate> desktopFindings(const Platform& platform, const AppEntry& entry);

}  // namespace velto::Leftovers
