#include "cleaning/further/unused_flatpaks.h"

#include "cleaning/further/FurtherFixture.h"

namespace velto {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(UnusedFlatpaks, AListIsReadWholeOrNotAtAll) {
    const auto runtimes = installedRuntimes(
        "org.gnome.Platform/x86_64/45\tsystem\nruntime/org.kde.Platform/x86_64/6.6\tuser\r\n\n");
    ASSERT_TRUE(runtimes);
    EXPECT_THAT(*runtimes, ElementsAre(InstalledFlatpak{"org.gnome.Platform/x86_64/45", "", false},
                                       InstalledFlatpak{"org.kde.Platform/x86_64/6.6", "", true}));
    const auto applications = installedApplications(
        "org.gimp.GIMP/x86_64/stable\torg.gnome.Platform/x86_64/45\tsystem\n");
    ASSERT_TRUE(applications);
    EXPECT_THAT(*applications,
                ElementsAre(InstalledFlatpak{"org.gimp.GIMP/x86_64/stable",
                                             "org.gnome.Platform/x86_64/45", false}));
    EXPECT_EQ(installedRuntimes(""), std::vector<InstalledFlatpak>());
    for (const char* answer :
         {"org.gnome.Platform\tsystem\n", "org.gnome.Platform/x86_64/45\n",
          "org.gnome.Platform/x86_64/45\textra\n", "../../etc/x86_64/45\tsystem\n",
          "org.a/../45\tsystem\n", "org.a/x86_64/4$(rm)\tuser\n", "-org.a/x86_64/45\tuser\n",
          "Ref\tInstallation\n", "org.a/x86_64/45/more\tuser\n"})
        EXPECT_EQ(installedRuntimes(answer), std::nullopt) << answer;
    EXPECT_EQ(installedApplications("org.gimp.GIMP/x86_64/stable\t\tsystem\n"), std::nullopt);
}

// The two forms that flatpak 1.14 writes.
TEST(UnusedFlatpaks, PinsAreReadAndFitByPart) {
    const auto pins = pinnedPatterns(
        "Pinned patterns:\n  runtime/org.gtk.Gtk3theme.*/x86_64/3.22\n  org.kde.Sdk\n");
    EXPECT_THAT(pins, ElementsAre("org.gtk.Gtk3theme.*/x86_64/3.22", "org.kde.Sdk"));
    EXPECT_THAT(pinnedPatterns("No pinned patterns\n"), IsEmpty());
    EXPECT_TRUE(fitsPattern("org.gtk.Gtk3theme.Adwaita/x86_64/3.22", pins[0]));
    EXPECT_FALSE(fitsPattern("org.gtk.Gtk3theme.Adwaita/x86_64/3.24", pins[0]));
    EXPECT_FALSE(fitsPattern("org.gtk.Gtk3theme/x86_64/3.22", pins[0]));
    EXPECT_TRUE(fitsPattern("org.kde.Sdk/x86_64/6.6", pins[1]));
    EXPECT_TRUE(fitsPattern("org.kde.Sdk/x86_64/6.6", "org.kde.Sdk//6.6"));
    EXPECT_TRUE(fitsPattern("a/b/c", "*"));
    EXPECT_TRUE(fitsPattern("one.two.three/b/c", "*.two.*"));
    EXPECT_FALSE(fitsPattern("org.kde.SdkMore/x86_64/6.6", pins[1]));
}

// Keys as flatpak-metadata(5) has them.
TEST(UnusedFlatpaks, MetadataTellWhatIsUsed) {
    const auto metadata = flatpakMetadata(
        "[Runtime]\nname=org.gnome.Platform\nruntime=org.gnome.Platform/x86_64/45\n"
        "sdk=org.gnome.Sdk/x86_64/45\n\n[Extension org.freedesktop.Platform.GL]\n"
        "version=1.4\nversions=23.08;1.4\nsubdirectories=true\n\n"
        "[Extension org.gnome.Platform.Locale]\nautodelete=true\n\n"
        "[Extension org.a.Theme@two]\nversion=2\n",
        "45");
    EXPECT_EQ(metadata.sdk, "org.gnome.Sdk/x86_64/45");
    EXPECT_EQ(metadata.extensionOf, "");
    using Extension = FlatpakMetadata::Extension;
    EXPECT_THAT(metadata.extensions,
                ElementsAre(Extension{"org.freedesktop.Platform.GL", {"1.4", "23.08", "1.4"}},
                            Extension{"org.gnome.Platform.Locale", {"45"}},
                            Extension{"org.a.Theme", {"2"}}));
    EXPECT_EQ(flatpakMetadata("[ExtensionOf]\nref=runtime/org.a/x86_64/1\n", "1").extensionOf,
              "runtime/org.a/x86_64/1");
}

/// Both installations as Flatpak deploys them: each file a name of one in the store, and "active" a
/// link to what was deployed.
struct UnusedFlatpaksTest : FurtherFixture {
    static constexpr std::int64_t big = 256 * 1024;

    UnusedFlatpaksTest() {
        file("tools/flatpak");
        installations = {.user = home().path(".local/share/flatpak"),
                         .system = home().path("SYSTEM/var/lib/flatpak")};
        pins("--user", "No pinned patterns\n");
        pins("--system", "No pinned patterns\n");
        told();
    }

    void pins(const std::string& installation, const std::string& answer) {
        machine.tools.outputs["flatpak pin " + installation] = answer;
    }
    void told() {
        machine.tools.outputs["flatpak list --app"] = applications;
        machine.tools.outputs["flatpak list --runtime"] = runtimes;
    }
    std::string rootBelowHome(bool isUsers) const {
        return isUsers ? ".local/share/flatpak" : "SYSTEM/var/lib/flatpak";
    }
    std::string deploy(const std::string& path, bool isUsers, const std::string& metadata) {
        const std::string folder = rootBelowHome(isUsers) + "/" + path;
        home().text(folder + "/1f0c/metadata", metadata);
        fs::create_directory_symlink("1f0c", home().path(folder + "/active"));
        return folder + "/1f0c/files";
    }
    void application(const std::string& ref, const std::string& runtime, bool isUsers,
                     const std::string& more = "") {
        deploy("app/" + ref, isUsers, "[Application]\nruntime=" + runtime + "\n" + more);
        applications += ref + "\t" + runtime + "\t" + (isUsers ? "user" : "system") + "\n";
        told();
    }
    /// One with a file of its own.
    void runtime(const std::string& ref, bool isUsers,
                 const std::string& metadata = "[Runtime]\n") {
        const std::string files = deploy("runtime/" + ref, isUsers, metadata);
        stored(files + "/lib/own", rootBelowHome(isUsers), ref);
        runtimes += ref + "\t" + (isUsers ? "user" : "system") + "\n";
        told();
    }
    static std::string objectOf(const std::string& root, std::string name) {
        std::ranges::replace(name, '/', '_');
        return root + "/repo/objects/" + name + ".file";
    }
    /// A name of a file of the store.
    void stored(const std::string& path, const std::string& root, const std::string& name) {
        const std::string object = objectOf(root, name);
        if (!home().exists(object)) home().file(object, big);
        fs::create_directories(fs::path(home().path(path)).parent_path());
        fs::create_hard_link(home().path(object), home().path(path));
    }
    std::int64_t allocated(const std::string& path) {
        return machine.platform.files->attributes(home().path(path))->allocatedSize;
    }
    std::int64_t bytesOf(const std::string& name, bool isUsers) {
        return allocated(objectOf(rootBelowHome(isUsers), name));
    }
    /// What comes back of a runtime with a file of its own: file systems decide how much it is.
    std::int64_t own(const std::string& ref, bool isUsers) {
        return bytesOf(ref, isUsers) +
               allocated(rootBelowHome(isUsers) + "/runtime/" + ref + "/1f0c/metadata");
    }

    std::optional<ToolMeasure> measured() {
        return measureUnusedFlatpaks(machine.platform, {home().path("tools")}, installations);
    }
    /// The unused, by name.
    std::vector<std::string> unused() {
        std::vector<std::string> names;
        const auto measure = measured();
        if (!measure) return {"not known"};
        for (const ToolPart& part : measure->parts)
            names.push_back(part.name);
        std::ranges::sort(names);
        return names;
    }

    FlatpakInstallations installations;
    std::string applications;
    std::string runtimes;
};

TEST_F(UnusedFlatpaksTest, WhatNothingRunsOnIsMeasuredInBothInstallations) {
    application("org.gimp.GIMP/x86_64/stable", "org.gnome.Platform/x86_64/45", false);
    runtime("org.gnome.Platform/x86_64/45", false);
    runtime("org.gnome.Platform/x86_64/42", false);
    runtime("org.kde.Platform/x86_64/5.15", true);
    const std::string gnome = "org.gnome.Platform/x86_64/42";
    const std::string kde = "org.kde.Platform/x86_64/5.15";
    const auto measure = measured();
    ASSERT_TRUE(measure);
    EXPECT_THAT(measure->parts,
                UnorderedElementsAre(ToolPart{"org.gnome.Platform 42", own(gnome, false),
                                              "flatpak uninstall --system runtime/" + gnome},
                                     ToolPart{"org.kde.Platform 5.15", own(kde, true),
                                              "flatpak uninstall --user runtime/" + kde}));
    EXPECT_EQ(measure->bytes, own(gnome, false) + own(kde, true));
    EXPECT_GE(measure->bytes, 2 * big);
    for (const auto& command : machine.tools.commands)
        EXPECT_TRUE(command[1] == "list" || command[1] == "pin") << "something may have changed";
}

TEST_F(UnusedFlatpaksTest, FilesThatSomethingElseHasAsWellDoNotComeBack) {
    application("org.gimp.GIMP/x86_64/stable", "org.gnome.Platform/x86_64/45", false);
    runtime("org.gnome.Platform/x86_64/45", false);
    runtime("org.gnome.Platform/x86_64/42", false);
    runtime("org.gnome.Platform/x86_64/41", false);
    const std::string root = rootBelowHome(false);
    for (const char* branch : {"45", "42"})
        stored(root + "/runtime/org.gnome.Platform/x86_64/" + branch + "/1f0c/files/font", root,
               "font");
    // Of both that go: it goes, once.
    for (const char* branch : {"42", "41"})
        stored(root + "/runtime/org.gnome.Platform/x86_64/" + branch + "/1f0c/files/old", root,
               "old");
    EXPECT_EQ(measured()->bytes, own("org.gnome.Platform/x86_64/42", false) +
                                     own("org.gnome.Platform/x86_64/41", false) +
                                     bytesOf("old", false));
}

TEST_F(UnusedFlatpaksTest, WhatIsUsedByWayOfSomethingElseStays) {
    application("org.gimp.GIMP/x86_64/stable", "org.gnome.Platform/x86_64/45", true,
                "sdk=org.gnome.Sdk/x86_64/45\n[Extension org.gimp.GIMP.Plugin]\nversions=3;2-40\n");
    runtime("org.gnome.Platform/x86_64/45", false,
            "[Runtime]\n[Extension org.freedesktop.Platform.GL]\nversions=23.08;1.4\n");
    runtime("org.gnome.Sdk/x86_64/45", false, "[Runtime]\n[Extension org.gnome.Sdk.Docs]\n");
    runtime("org.gnome.Sdk.Docs/x86_64/45", false);
    runtime("org.gimp.GIMP.Plugin.BIMP/x86_64/2-40", true);
    // Of another runtime's name, as drivers are.
    runtime("org.freedesktop.Platform.GL.default/x86_64/23.08", false,
            "[ExtensionOf]\nref=runtime/org.freedesktop.Platform/x86_64/23.08\n");
    runtime("org.a.Locale/x86_64/45", false,
            "[ExtensionOf]\nref=runtime/org.gnome.Platform/x86_64/45\n");
    EXPECT_THAT(unused(), IsEmpty());
    runtime("org.freedesktop.Platform.GL.default/x86_64/22.08", false,
            "[ExtensionOf]\nref=runtime/org.freedesktop.Platform/x86_64/22.08\n");
    runtime("org.freedesktop.Platform.GLother/x86_64/23.08", false);
    EXPECT_THAT(unused(), ElementsAre("org.freedesktop.Platform.GL.default 22.08",
                                      "org.freedesktop.Platform.GLother 23.08"));
}

TEST_F(UnusedFlatpaksTest, WhatIsPinnedStaysWithWhatItUses) {
    runtime("org.kde.Sdk/x86_64/6.6", true, "[Runtime]\nsdk=org.kde.Base/x86_64/6.6\n");
    runtime("org.kde.Base/x86_64/6.6", true);
    runtime("org.kde.Sdk/x86_64/6.5", true);
    EXPECT_EQ(unused().size(), 3u);
    pins("--user", "Pinned patterns:\n  runtime/org.kde.Sdk/x86_64/6.6\n");
    EXPECT_THAT(unused(), ElementsAre("org.kde.Sdk 6.5"));
    pins("--system", "Pinned patterns:\n  org.kde.*\n");
    EXPECT_THAT(unused(), IsEmpty());
}

TEST_F(UnusedFlatpaksTest, WhatCannotBeToldLeavesTheSizeUnknown) {
    application("org.gimp.GIMP/x86_64/stable", "org.gnome.Platform/x86_64/45", false);
    runtime("org.gnome.Platform/x86_64/42", false);
    EXPECT_EQ(unused().size(), 1u) << "the runtime in use need not be there";

    const std::string told = machine.tools.outputs["flatpak list --app"];
    machine.tools.outputs["flatpak list --app"] = "error: something is wrong\n";
    EXPECT_THAT(unused(), ElementsAre("not known"));
    machine.tools.outputs["flatpak list --app"] = told;
    machine.tools.result.exitStatus = 1;
    EXPECT_THAT(unused(), ElementsAre("not known"));
    machine.tools.result.exitStatus = 0;
    EXPECT_EQ(unused().size(), 1u);
    fs::remove(home().path("SYSTEM/var/lib/flatpak/app/org.gimp.GIMP/x86_64/stable/active"));
    EXPECT_THAT(unused(), ElementsAre("not known"));
    fs::remove(home().path("tools/flatpak"));
    EXPECT_THAT(unused(), ElementsAre("not known"));
}

TEST_F(UnusedFlatpaksTest, TheRuleShowsItWithTheToolsCommandAndNeverAsFiles) {
    application("org.gimp.GIMP/x86_64/stable", "org.gnome.Platform/x86_64/45", true);
    runtime("org.gnome.Platform/x86_64/42", true);
    auto found = groups();
    discovery().askTools(found);
    const auto group = std::ranges::find(found, "flatpak-runtimes",
                                         [](const FurtherGroup& one) { return one.rule->id; });
    ASSERT_NE(group, found.end());
    EXPECT_THAT(group->items, IsEmpty());
    EXPECT_EQ(group->bytes, own("org.gnome.Platform/x86_64/42", true));
    EXPECT_THAT(group->parts, ElementsAre(Field(&ToolPart::name, "org.gnome.Platform 42")));

    machine.tools.outputs["flatpak list --runtime"] = "";
    found = groups();
    discovery().askTools(found);
    EXPECT_TRUE(std::ranges::none_of(
        found, [](const FurtherGroup& one) { return one.rule->id == "flatpak-runtimes"; }));
}

}  // namespace
}  // namespace velto
