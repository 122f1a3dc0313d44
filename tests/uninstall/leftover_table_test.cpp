#include <gmock/gmock.h>

#include "uninstall/Leftovers.h"

namespace velto::Leftovers {
namespace {

struct Expected {
    int row;
    const char* path;
    const char* cat;
    bool certain;
    bool admin = false, nested = false, prefix = false;
};

// com.acme.foo, "Foobar", executable "foo-bin", team ABCDE12345, in /Applications/Foobar.app.
const Expected table[] = {
    {1, "/Users/ana/Library/Application Support/com.acme.foo", "support", true},
    {2, "/Users/ana/Library/Application Scripts/com.acme.foo", "support", true},
    {3, "/Users/ana/Library/Caches/com.acme.foo", "caches", true},
    {4, "/Users/ana/Library/Preferences/com.acme.foo.plist", "prefs", true},
    {5, "/Users/ana/Library/Saved Application State/com.acme.foo.savedState", "state", true},
    {6, "/Users/ana/Library/Containers/com.acme.foo", "containers", true},
    {7, "/Users/ana/Library/HTTPStorages/com.acme.foo", "web", true},
    {8, "/Users/ana/Library/HTTPStorages/com.acme.foo.binarycookies", "web", true},
    {9, "/Users/ana/Library/Cookies/com.acme.foo.binarycookies", "web", true},
    {10, "/Users/ana/Library/WebKit/com.acme.foo", "web", true},
    {11, "/Users/ana/Library/LaunchAgents/com.acme.foo.plist", "agents", true},
    {12, "/Users/ana/Library/Logs/com.acme.foo", "logs", true},
    {13, "/Users/ana/Library/Group Containers/ABCDE12345.com.acme.foo", "group", true},
    {14, "/Users/ana/Library/Group Containers/ABCDE12345.", "group", false, false, false, true},
    {15, "/Users/ana/Library/Application Support/Foobar", "support", false},
    {16, "/Users/ana/Library/Caches/Foobar", "caches", false},
    {17, "/Users/ana/Library/Preferences/Foobar.plist", "prefs", false},
    {18, "/Users/ana/Library/Containers/Foobar", "containers", false},
    {19, "/Users/ana/Library/Logs/Foobar", "logs", false},
    {20, "/Users/ana/Library/LaunchAgents/Foobar.plist", "agents", false},
    {21, "/Users/ana/Library/Logs/DiagnosticReports/foo-bin_", "logs", false, false, false, true},
    {22, "/Users/ana/Library/Application Support/CrashReporter/foo-bin_", "logs", false, false,
     false, true},
    {23, "/Library/Application Support/com.acme.foo", "support", true, true},
    {24, "/Library/Caches/com.acme.foo", "caches", true, true},
    {25, "/Library/Preferences/com.acme.foo.plist", "prefs", true, true},
    {26, "/Library/LaunchAgents/com.acme.foo.plist", "agents", true, true},
    {27, "/Library/LaunchDaemons/com.acme.foo.plist", "agents", true, true},
    {28, "/Library/Application Support/Foobar", "support", false, true},
    {29, "/Library/Logs/Foobar", "logs", false, true},
    {30, "/Applications/Foobar.app/Contents/Library/LoginItems/", "app", true, false, true, true},
    {31, "/Applications/Foobar.app/Contents/Library/LaunchServices/", "app", true, false, true,
     true},
};

std::vector<Candidate> built(const std::string& name, const std::string& exec,
                             const std::string& team, const std::string& bid = "com.acme.foo") {
    return buildCandidates(bid, name, exec, "/Applications/Foobar.app", team,
                           HomeLayout::macOS("/Users/ana"));
}

/// The rows by number that are there.
std::vector<int> rowsOf(const std::vector<Candidate>& candidates) {
    std::vector<int> rows;
    for (const Candidate& candidate : candidates) {
        for (const Expected& row : table) {
            if (row.path == candidate.path) rows.push_back(row.row);
        }
    }
    return rows;
}

std::vector<int> allBut(std::initializer_list<int> missing) {
    std::vector<int> rows;
    for (int row = 1; row <= 31; ++row) {
        if (std::find(missing.begin(), missing.end(), row) == missing.end()) rows.push_back(row);
    }
    return rows;
}

TEST(LeftoverTable, EveryRowStandsInItsPlace) {
    const auto candidates = built("Foobar", "foo-bin", "ABCDE12345");
    ASSERT_EQ(candidates.size(), 31u);
    for (const Expected& row : table) {
        const Candidate expected{.path = row.path,
                                 .cat = row.cat,
                                 .conf = row.certain ? Conf::certain : Conf::possible,
                                 .admin = row.admin,
                                 .nested = row.nested,
                                 .prefix = row.prefix};
        EXPECT_EQ(candidates[static_cast<std::size_t>(row.row - 1)], expected) << row.path;
    }
}

TEST(LeftoverTable, EveryCategoryIsOneThatIsReported) {
    for (const Expected& row : table) {
        EXPECT_THAT(categories, testing::Contains(row.cat));
    }
    EXPECT_THAT(categories, testing::ElementsAre("app", "support", "caches", "prefs", "state",
                                                 "containers", "group", "web", "logs", "agents"));
}

TEST(LeftoverTable, WithoutATeamItsRowsAreLeftOut) {
    EXPECT_EQ(rowsOf(built("Foobar", "foo-bin", "")), allBut({13, 14}));
}

TEST(LeftoverTable, AGenericNameClaimsNothing) {
    EXPECT_EQ(rowsOf(built("Music", "foo-bin", "ABCDE12345")),
              allBut({15, 16, 17, 18, 19, 20, 28, 29}));
    EXPECT_EQ(built("Music", "Music", "ABCDE12345").size(), 21u);
    EXPECT_EQ(rowsOf(built("Foobar", "Music", "ABCDE12345")), allBut({21, 22}));
}

TEST(LeftoverTable, ANameOfTwoLettersClaimsNothing) {
    EXPECT_EQ(rowsOf(built("Fo", "fo", "ABCDE12345")),
              allBut({15, 16, 17, 18, 19, 20, 21, 22, 28, 29}));
}

TEST(LeftoverTable, NamesAreTrimmedFirst) {
    EXPECT_EQ(rowsOf(built(" Foobar\n", "\tfoo-bin ", "ABCDE12345")), allBut({}));
}

TEST(LeftoverTable, AnIdentityThatLeadsElsewhereIsNotFollowed) {
    // A property list says what it likes; none of it may name somebody else's folder.
    EXPECT_EQ(rowsOf(built("../../../Documents", "../foo", "ABCDE12345/..")),
              allBut({13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 28, 29}));
    for (const char* bid : {"..", ".", "../../../Documents", ""}) {
        EXPECT_EQ(built("Foobar", "foo-bin", "ABCDE12345", bid).size(), 13u) << bid;
    }
}

TEST(LeftoverTable, AnotherMacDiskIsLookedThroughAtItsOwnPlace) {
    HomeLayout layout = HomeLayout::macOS("/media/mac/Users/ana");
    layout.setSystemRoot("/media/mac");
    const auto candidates = buildCandidates("com.acme.foo", "Foobar", "foo", "/a.app", "", layout);
    for (const Candidate& candidate : candidates) {
        if (candidate.nested) continue;
        EXPECT_TRUE(candidate.path.starts_with("/media/mac/")) << candidate.path;
    }
}

TEST(LeftoverTable, ALinuxHomeHasATableOfItsOwn) {
    const HomeLayout layout = HomeLayout::freedesktop(
        "/home/ana", [](const std::string&) { return std::nullopt; }, "");
    const auto candidates = buildCandidates("org.acme.Foo", "Foobar", "foo-bin", "", "", layout);
    const auto has = [&](const std::string& path, const std::string& cat, Conf conf) {
        EXPECT_THAT(candidates,
                    testing::Contains(Candidate{.path = path, .cat = cat, .conf = conf}))
            << path;
    };
    has("/home/ana/.config/org.acme.Foo", "prefs", Conf::certain);
    has("/home/ana/.cache/org.acme.Foo", "caches", Conf::certain);
    has("/home/ana/.local/share/org.acme.Foo", "support", Conf::certain);
    has("/home/ana/.local/state/org.acme.Foo", "state", Conf::certain);
    has("/home/ana/.var/app/org.acme.Foo", "containers", Conf::certain);
    has("/home/ana/.config/autostart/org.acme.Foo.desktop", "agents", Conf::certain);
    has("/home/ana/.config/systemd/user/org.acme.Foo.service", "agents", Conf::certain);
    has("/home/ana/.config/systemd/user/org.acme.Foo.timer", "agents", Conf::certain);
    has("/home/ana/.local/share/applications/org.acme.Foo.desktop", "support", Conf::certain);
    has("/home/ana/.config/systemd/user/org.acme.Foo.socket", "agents", Conf::certain);
    has("/home/ana/.local/share/dbus-1/services/org.acme.Foo.service", "agents", Conf::certain);
    has("/home/ana/.local/share/metainfo/org.acme.Foo.metainfo.xml", "support", Conf::certain);
    has("/home/ana/.local/share/metainfo/org.acme.Foo.appdata.xml", "support", Conf::certain);
    has("/home/ana/.local/share/appdata/org.acme.Foo.appdata.xml", "support", Conf::certain);
    has("/home/ana/.local/share/mime/packages/org.acme.Foo.xml", "support", Conf::certain);
    has("/home/ana/.config/Foobar", "prefs", Conf::possible);
    has("/home/ana/.cache/foo-bin", "caches", Conf::possible);
    EXPECT_EQ(candidates.size(), 34u);
    EXPECT_EQ(buildCandidates("org.acme.Foo", "Music", "fo", "", "", layout).size(), 16u);
}

}  // namespace
}  // namespace velto::Leftovers
