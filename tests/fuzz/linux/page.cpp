#include <algorithm>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "bridge/JSBridge.h"
#include "fuzz/engine/Target.h"
#include "fuzz/engine/linux/ConfinedMachine.h"
#include "fuzz/engine/sections.h"
#include "support/FakeDirectoryReader.h"
#include "support/FakeFileContents.h"
#include "support/FakeWebView.h"
#include "support/made_property_list.h"

namespace velto::fuzz {
namespace {

constexpr std::size_t mostMessages = 8;

/// A home with files, and a page that posts what it likes.
struct World : ConfinedMachine {
    World() : ConfinedMachine(HomeLayout::Kind::macOS) {
        keep("Library/Mail/inbox", "a letter");
        home.text("Applications/Foobar.app/Contents/Info.plist",
                  xmlPropertyList(textDictionary({{"CFBundleIdentifier", "com.example.foobar"}})));
        home.text("Library/Caches/com.example.foobar/data", "data");
        home.text("Downloads/viejo.dmg", "old");
        home.text("Documents/plan/uno.txt", "one");
        // What is walked is made up: no message makes the test read the machine's own disk.
        auto directories = std::make_unique<FakeDirectoryReader>();
        directories->folder(home.path());
        platform.directories = std::move(directories);
        platform.contents = std::make_unique<FakeFileContents>();
        bridge = std::make_shared<JSBridge>(BridgeContext{.platform = platform,
                                                          .settings = settings,
                                                          .language = language,
                                                          .exclusions = exclusions,
                                                          .shell = shell,
                                                          .usage = usage,
                                                          .cleanups = cleanups,
                                                          .uninstalls = uninstalls});
        bridge->attach(page);
        machine.dispatcher.runAll();
        bridge->applyBootState();
        machine.dispatcher.runAll();
    }

    VeltoSettings settings{machine.defaults, machine.locale};
    AppLanguage language{settings};
    ExclusionService exclusions{files, layout};
    VeltoTrashService trash{files, files, machine.clock, machine.log, layout};
    HistoryService history{files, files, machine.log, layout};
    CloudFolder cloud{files, files, machine.log, layout};
    CleanupQueue cleanups{machine.dispatcher,
                          CleanupServices{.trash = trash, .history = history, .cloud = cloud}};
    UninstallGate uninstalls;
    AppUsage usage{machine.platform};
    FakeApplicationShell shell;
    std::shared_ptr<FakeWebView> page = std::make_shared<FakeWebView>();
    std::shared_ptr<JSBridge> bridge;
};

/// Scripts into which a name goes that the page itself has sent.
bool isOfThePage(const std::string& script) {
    return script.find("goView") != std::string::npos ||
           script.find("console") != std::string::npos;
}

/// Each line is a message. Nothing of the user's that is protected is touched, and each script that
/// the page gets is one line.
void judge(std::string_view input) {
    World world;
    for (std::size_t message = 0; message < mostMessages && !input.empty(); ++message) {
        const std::string_view line = input.substr(0, input.find('\n'));
        input.remove_prefix(std::min(input.size(), line.size() + 1));
        const auto body =
            nlohmann::json::parse(withHome(std::string(line), world.home.path()), nullptr, false);
        if (body.is_discarded()) continue;
        world.page->scripts.clear();
        world.page->post(body);
        world.machine.dispatcher.runAll();
        world.machine.dispatcher.advance(2);
        world.machine.dispatcher.runAll();
        for (const std::string& script : world.page->scripts)
            require(isOfThePage(script) || script.find('\n') == std::string::npos, "one line");
        world.prove();
    }
}

const Registration registered("page", judge);

}  // namespace
}  // namespace velto::fuzz
