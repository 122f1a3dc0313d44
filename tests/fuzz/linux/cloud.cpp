#include "cleaning/CloudFolder.h"

#include "fuzz/engine/Target.h"
#include "fuzz/engine/linux/ConfinedHome.h"
#include "fuzz/engine/sections.h"
#include "platform/values/text.h"
#include "support/fakes.h"

namespace velto::fuzz {
namespace {

constexpr const char* things[] = {"Documents/carta.txt", "Documents/plan/uno.txt",
                                  "Downloads/grande.dmg", ".ssh/id_ed25519"};

/// What each of them holds tells which it is, wherever it has got to.
std::string contentOf(const std::string& thing) { return "content of " + thing; }

/// An index that says whatever it likes of where things came from. Settling a move that was cut off
/// may move things within the home; nothing is lost and nothing outside is touched.
void judge(std::string_view input) {
    ConfinedHome world;
    const HomeLayout layout = HomeLayout::macOS(world.home.path());
    const auto below = [&](const std::string& path) {
        return path.substr(world.home.path().size() + 1);
    };
    for (const char* thing : things)
        world.keep(thing, contentOf(thing));
    const std::string cloud = below(layout.cloudFolder);
    world.home.text(cloud + "/foto.jpg", "a photo");
    world.home.text(cloud + "/.velto-scratch", "put aside");
    world.home.text(below(layout.dataFolder) + "/cloud.json",
                    withHome(std::string(input), world.home.path()));
    FakeLog log;
    CloudFolder folder(world.files, world.files, log, layout);
    folder.settle();
    world.prove();
    const auto out = folder.moveFrom({layout.cloudFolder + "/foto.jpg"});
    for (const std::string& place : out.arrivedAt)
        require(isAtOrBelow(place, layout.home), "what comes back stays in the home");
    world.prove();
    world.home.text("Downloads/otra.jpg", "another photo");
    const auto in = folder.moveTo({world.home.path("Downloads/otra.jpg")});
    for (const std::string& place : in.arrivedAt)
        require(parentFolder(place) == layout.cloudFolder, "what is moved in is there");
    require(in.moved.size() + in.failed.size() == 1 && out.moved.size() + out.failed.size() == 1,
            "each path is answered for");
    world.prove();
}

const Registration registered("cloud", judge);

}  // namespace
}  // namespace velto::fuzz
