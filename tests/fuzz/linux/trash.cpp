#include <sys/stat.h>

#include <string>
#include <utility>
#include <vector>

#include "cleaning/VeltoTrashService.h"
#include "fuzz/engine/Target.h"
#include "fuzz/engine/linux/ConfinedHome.h"
#include "fuzz/engine/sections.h"
#include "platform/values/path_text.h"
#include "support/fakes.h"

namespace velto::fuzz {
namespace {

/// A home, and a trash whose manifest and journal say whatever they like.
struct World : ConfinedHome {
    explicit World(const std::vector<Section>& sections) {
        for (const char* path :
             {"Documents/carta.txt", "Documents/.velto", "Documents/plan/uno.txt",
              "Downloads/grande.dmg", ".ssh/id_ed25519"}) {
            keep(path, std::string("content of ") + path);
        }
        const std::string folder = layout.trashFolder.substr(home.path().size() + 1);
        home.text(folder + "/op-1/it1-a.txt", "one");
        home.text(folder + "/op-1/it2-b/inside.txt", "two");
        home.text(folder + "/op-2/.velto-it3", "three, put aside");
        ::chmod(home.path(folder).c_str(), 0700);
        for (const auto& [section, file] :
             {std::pair("manifest", "/manifest.json"), std::pair("journal", ".journal")}) {
            const std::string text = sectionOf(sections, section);
            if (!text.empty()) home.text(folder + file, withHome(text, home.path()));
        }
        // As after a move between volumes that was cut off: an input may name it.
        home.text("Documents/.velto-it1", "of a move");
    }

    /// What the trash refuses is as good an answer as any.
    template <typename Act>
    void attempt(Act act) {
        try {
            act();
        } catch (const TrashError&) {
        } catch (const FileError&) {
        }
        prove();
    }

    const HomeLayout layout = HomeLayout::macOS(home.path());
    FakeClock clock;
    FakeLog log;
    VeltoTrashService trash{files, files, clock, log, layout};
};

/// The text says in which order the trash is used; whatever stands where, nothing outside the home
/// is touched, and nothing of the user's.
void judge(std::string_view input) {
    const auto sections = sectionsIn(input);
    World world(sections);
    world.attempt([&] {
        for (const TrashItem& item : world.trash.items())
            require(pathBytes(pathText(item.originalPath)) == item.originalPath,
                    "what is shown comes back as it is");
    });
    const auto first = [&] {
        const auto& items = world.trash.items();
        return items.empty() ? std::string() : items.front().id;
    };
    for (const char step : sectionOf(sections, "steps").substr(0, 12)) {
        world.attempt([&] {
            switch (step) {
                case 'r':
                    return world.trash.restore(first());
                case 'u': {
                    const auto& operations = world.trash.operations();
                    return operations.empty() ? void()
                                              : world.trash.undoOperation(operations.front().id);
                }
                case 'd':
                    return world.trash.deletePermanently(first());
                case 'p':
                    world.trash.purgeExpired(30);
                    return;
                case 'e':
                    return world.trash.emptyTrash();
                case 'm':
                    world.home.text("Downloads/new.txt", "new");
                    world.trash.moveToTrash({world.home.path("Downloads/new.txt")}, "wind");
                    return;
                default:
                    return;
            }
        });
    }
}

const Registration registered("trash", judge);

}  // namespace
}  // namespace velto::fuzz
