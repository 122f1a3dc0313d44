#include <array>
#include <optional>

#include "uninstall/Leftovers.h"
#include "uninstall/desktop_leftovers.h"
#include "uninstall/words.h"

namespace velto::Leftovers {
namespace {

/// The part of the identity that a row is about.
enum class Key { identifier, name, executable, team, teamAndIdentifier, bundle };
enum class Base { home, system, bundle };

struct Row {
    Base base;
    std::string_view folder;
    Key key;
    std::string_view suffix;
    std::string_view cat;
    Conf conf = Conf::certain;
    bool prefix = false;
};

constexpr Conf possible = Conf::possible;
constexpr Conf certain = Conf::certain;

// Launch daemons are agents too, on purpose: the page has no group of their own for them.
constexpr std::array<Row, 31> macTable{{
    {Base::home, "/Application Support/", Key::identifier, "", "support"},
    {Base::home, "/Application Scripts/", Key::identifier, "", "support"},
    {Base::home, "/Caches/", Key::identifier, "", "caches"},
    {Base::home, "/Preferences/", Key::identifier, ".plist", "prefs"},
    {Base::home, "/Saved Application State/", Key::identifier, ".savedState", "state"},
    {Base::home, "/Containers/", Key::identifier, "", "containers"},
    {Base::home, "/HTTPStorages/", Key::identifier, "", "web"},
    {Base::home, "/HTTPStorages/", Key::identifier, ".binarycookies", "web"},
    {Base::home, "/Cookies/", Key::identifier, ".binarycookies", "web"},
    {Base::home, "/WebKit/", Key::identifier, "", "web"},
    {Base::home, "/LaunchAgents/", Key::identifier, ".plist", "agents"},
    {Base::home, "/Logs/", Key::identifier, "", "logs"},
    {Base::home, "/Group Containers/", Key::teamAndIdentifier, "", "group"},
    {Base::home, "/Group Containers/", Key::team, ".", "group", possible, true},
    {Base::home, "/Application Support/", Key::name, "", "support", possible},
    {Base::home, "/Caches/", Key::name, "", "caches", possible},
    {Base::home, "/Preferences/", Key::name, ".plist", "prefs", possible},
    {Base::home, "/Containers/", Key::name, "", "containers", possible},
    {Base::home, "/Logs/", Key::name, "", "logs", possible},
    {Base::home, "/LaunchAgents/", Key::name, ".plist", "agents", possible},
    {Base::home, "/Logs/DiagnosticReports/", Key::executable, "_", "logs", possible, true},
    {Base::home, "/Application Support/CrashReporter/", Key::executable, "_", "logs", possible,
     true},
    {Base::system, "/Application Support/", Key::identifier, "", "support"},
    {Base::system, "/Caches/", Key::identifier, "", "caches"},
    {Base::system, "/Preferences/", Key::identifier, ".plist", "prefs"},
    {Base::system, "/LaunchAgents/", Key::identifier, ".plist", "agents"},
    {Base::system, "/LaunchDaemons/", Key::identifier, ".plist", "agents"},
    {Base::system, "/Application Support/", Key::name, "", "support", possible},
    {Base::system, "/Logs/", Key::name, "", "logs", possible},
    {Base::bundle, "/Contents/Library/LoginItems/", Key::bundle, "", "app", certain, true},
    {Base::bundle, "/Contents/Library/LaunchServices/", Key::bundle, "", "app", certain, true},
}};

/// What the rows are filled in with; nothing for a key that leaves its rows out.
struct Identity {
    std::optional<std::string> identifier, name, executable, team, teamAndIdentifier;

    Identity(const std::string& bid, const std::string& appName, const std::string& exec,
             const std::string& teamIdentifier)
        : name(nameKey(appName)), executable(nameKey(exec)) {
        if (isEntryName(bid)) identifier = bid;
        if (isEntryName(teamIdentifier)) team = teamIdentifier;
        if (team && identifier) teamAndIdentifier = *team + "." + *identifier;
    }

    std::optional<std::string> key(Key which) const {
        switch (which) {
            case Key::identifier:
                return identifier;
            case Key::name:
                return name;
            case Key::executable:
                return executable;
            case Key::team:
                return team;
            case Key::teamAndIdentifier:
                return teamAndIdentifier;
            case Key::bundle:
                return "";
        }
        return std::nullopt;
    }
};

}  // namespace

std::vector<Candidate> buildCandidates(const std::string& bid, const std::string& name,
                                       const std::string& exec, const std::string& bundlePath,
                                       const std::string& team, const HomeLayout& home) {
    if (home.kind == HomeLayout::Kind::freedesktop) {
        return desktopCandidates(bid, name, exec, bundlePath, home);
    }
    const Identity identity(bid, name, exec, team);
    const auto base = [&](Base which) {
        switch (which) {
            case Base::home:
                return home.userLibrary;
            case Base::system:
                return home.systemLibrary;
            case Base::bundle:
                return bundlePath;
        }
        return std::string();
    };
    std::vector<Candidate> candidates;
    for (const Row& row : macTable) {
        const auto key = identity.key(row.key);
        if (!key) continue;
        candidates.push_back(
            {.path = base(row.base) + std::string(row.folder) + *key + std::string(row.suffix),
             .cat = std::string(row.cat),
             .conf = row.conf,
             .admin = row.base == Base::system,
             .nested = row.base == Base::bundle,
             .prefix = row.prefix});
    }
    return candidates;
}

}  // namespace velto::Leftovers
