#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "platform/FileManager.h"
#include "platform/HomeLayout.h"
#include "platform/Locale.h"
#include "uninstall/AppEntry.h"
#include "uninstall/InstalledApps.h"
#include "uninstall/ItemRemoval.h"

/// What an application leaves behind. No state.
namespace velto::Leftovers {

enum class Conf { certain, possible };
std::string_view rawValue(Conf conf);

/// One path that may be a leftover, before anybody has looked.
struct Candidate {
    std::string path;  // absolute; with `prefix` a folder, a slash and how a name begins
    std::string cat;   // one of `categories`
    Conf conf = Conf::certain;
    bool admin = false;   // in a folder of the whole system: removing it takes an administrator
    bool nested = false;  // inside the bundle: goes away with it
    bool prefix = false;  // stands for every entry of the folder whose name begins so

    bool operator==(const Candidate&) const = default;
};

/// The categories in the order in which groups are reported.
inline constexpr std::array<std::string_view, 10> categories{
    "app", "support", "caches", "prefs", "state", "containers", "group", "web", "logs", "agents"};

inline constexpr int searchLimit = 300;    // folders opened below one root
inline constexpr int expansionLimit = 12;  // entries for one prefix

/// The fixed table of a Mac's home, in its order; on another home that system's. A part of the
/// identity that cannot be the name of a file is not looked for: it would lead elsewhere.
std::vector<Candidate> buildCandidates(const std::string& bid, const std::string& name,
                                       const std::string& exec, const std::string& bundlePath,
                                       const std::string& team, const HomeLayout& home);

/// Tells which places stay closed, neither listed nor measured. An empty one closes none.
using Gate = std::function<bool(const std::string& path)>;

/// Folders below the roots that are named like the application, and entries so named one level
/// deeper, each as `possible`. In every root at most `limit` folders are opened, in the order in
/// which the system lists them; the first entry whose name begins with a full stop ends the search
/// of its root, on purpose. What the gate keeps is not opened.
std::vector<Candidate> searchByName(const FileManager& files, const Locale& locale,
                                    const std::string& name, const std::vector<std::string>& roots,
                                    const std::string& cat, int limit = searchLimit,
                                    const Gate& gate = {});

/// What a candidate stands for: itself, or the first `limit` entries, by name, of its folder that
/// begin with the prefix. An empty prefix stands for nothing, so that what is inside a bundle is
/// never listed beside it, on purpose. Nor is a folder listed that the gate keeps.
std::vector<Candidate> expand(const FileManager& files, const Candidate& candidate,
                              int limit = expansionLimit, const Gate& gate = {});

/// The name of each item as it is found.
using Progress = std::function<void(const std::string& name)>;

/// The application and everything of it that exists, grouped, with sizes (decimal GB, three
/// decimals) and totals; the shape is in docs/protocol.md. Blocking; safe from every thread. What
/// cannot be read contributes nothing. Without access (`hasAccess`) what the system guards is named
/// where its name is known, with the size 0, and not opened: the system would ask the user.
nlohmann::json analyze(const Platform& platform, const InstalledApps& apps, const AppEntry& entry,
                       bool hasAccess, const Progress& progress = {});

/// Where each path of an analysis leads that is a link or lies behind one, by path: beside what
/// `analyze` has found the user has to see what a removal would really reach. On a Linux home a
/// command that leads into the application itself is a part of it and left out.
std::map<std::string, LinkTarget> linkTargets(const Platform& platform, const InstalledApps& apps,
                                              const nlohmann::json& analysis);

}  // namespace velto::Leftovers
