#pragma once

#include "bridge/BridgeFixture.h"
#include "support/made_property_list.h"

namespace velto {

/// A window on a machine with applications of the user's own.
struct AppsFixture : BridgeFixture {
    void SetUp() override {
        machine.platform.layout.setSystemRoot(machine.home.path("machine"));
        machine.platform.layout.neverRemovedBelow.clear();  // made homes may lie in such a folder
        open();
    }
    std::string application(const std::string& name, const std::string& identifier) {
        machine.home.text("Applications/" + name + ".app/Contents/Info.plist",
                          xmlPropertyList(textDictionary({{"CFBundleIdentifier", identifier}})));
        machine.home.file("Applications/" + name + ".app/Contents/MacOS/program", 2'000'000);
        return machine.home.path("Applications/" + name + ".app");
    }
    /// The arguments of each call.
    std::vector<std::string> calls(const std::string& callback) const {
        std::vector<std::string> arguments;
        for (const std::string& script : page->calls(callback)) {
            const std::size_t start = script.find('(') + 1;
            arguments.push_back(script.substr(start, script.size() - start - 2));
        }
        return arguments;
    }
};

}  // namespace velto
