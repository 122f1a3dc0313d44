// Folders of the user's that stand inside a leftover as well, bound there by somebody.

#include <gmock/gmock.h>

#include "../UninstallWorld.h"
#include "support/linux/private_mounts.h"

namespace velto {
namespace {

using testing::ElementsAre;

class MountedInsideALeftover : public testing::Test, protected UninstallWorld {
protected:
    /// Binds the projects to a place below the caches and removes what was chosen.
    void removeWithBound(const std::string& place) {
        AppEntry entry = *apps.readApp(application("Foobar"));
        home.text("Projects/thesis", "kept");
        const std::string cache = library("Caches/com.example.foobar/a/first");
        library("Caches/com.example.foobar/z/last");
        const InPrivate result = withPrivateMounts([&] {
            if (!bindTo(home.path("Projects"), home.path(place))) return false;
            const std::string chosen = home.path("Library/Caches/com.example.foobar");
            const auto removed = remover.uninstall(entry, {chosen});
            EXPECT_EQ(removed.removed, 0);
            EXPECT_THAT(removed.failures,
                        ElementsAre(AppRemover::Failure{"com.example.foobar", chosen, "busy"}));
            EXPECT_TRUE(machine.log.holds("Velto ▶ desinstalador: no se pudo quitar " + chosen +
                                          ": could not remove " + home.path(place) +
                                          ": something else is mounted there"));
            remover.uninstall(entry, {});  // sweeps
            EXPECT_EQ(home.read("Projects/thesis"), "kept");
            EXPECT_EQ(home.read(place + "/thesis"), "kept");
            EXPECT_TRUE(isThere(home.path(place)));
            return true;
        });
        if (result == InPrivate::notAllowed) GTEST_SKIP() << "this user may not mount anything";
        EXPECT_EQ(result, InPrivate::done);
        EXPECT_TRUE(isThere(cache));
    }
};

TEST_F(MountedInsideALeftover, AFolderThatIsBoundInsideIsNotEmptied) {
    removeWithBound("Library/Caches/com.example.foobar/z");
}

TEST_F(MountedInsideALeftover, NorIsOneThatStandsInTheLeftoversPlace) {
    home.text("Projects/a/first", "kept");
    removeWithBound("Library/Caches/com.example.foobar");
}

}  // namespace
}  // namespace velto
