#include "UninstallWorld.h"

#include <filesystem>
#include <fstream>

#include "support/made_property_list.h"
#include "support/volumes.h"

namespace velto {
namespace {

std::string lower(std::string text) {
    for (char& letter : text) {
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    }
    return text;
}

}  // namespace

std::string UninstallWorld::fastVolume() { return otherVolume(); }

bool UninstallWorld::hasTwoVolumes() { return areTwoVolumes(fastVolume(), buildVolume()); }

UninstallWorld::UninstallWorld(const std::string& parent) : home(parent), disk(parent) {
    machine.platform.layout = HomeLayout::macOS(home.path());
    machine.platform.layout.setSystemRoot(disk.path());
    machine.platform.files = std::make_unique<PosixFileManager>(calls);
    machine.platform.mover = std::make_unique<PosixFileManager>(calls);
    home.folder("Library/Application Support");
    home.folder("Library/Caches");
    home.folder("Applications");
    disk.folder("Applications/Utilities");
    disk.folder("Library");
}

void UninstallWorld::put(const std::string& path, const std::string& content) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string UninstallWorld::bundle(const std::string& where, const std::string& fileName,
                                   const Texts& texts) {
    const std::string path = where + "/" + fileName;
    put(path + "/Contents/Info.plist", xmlPropertyList(textDictionary(texts)));
    return path;
}

std::string UninstallWorld::application(const std::string& name) {
    return bundle(userApplications(), name + ".app",
                  {{"CFBundleIdentifier", "com.example." + lower(name)},
                   {"CFBundleName", name},
                   {"CFBundleExecutable", name}});
}

std::string UninstallWorld::library(const std::string& below, const std::string& content) {
    const std::string path = home.path("Library/" + below);
    put(path, content);
    return path;
}

std::string UninstallWorld::systemLibrary(const std::string& below, const std::string& content) {
    const std::string path = machine.platform.layout.systemLibrary + "/" + below;
    put(path, content);
    return path;
}

std::string UninstallWorld::agent(const std::string& path, const std::string& label) {
    put(path, xmlPropertyList(textDictionary({{"Label", label}})));
    return path;
}

std::vector<std::string> UninstallWorld::listedNames() {
    std::vector<std::string> names;
    for (const AppEntry& entry : apps.listApps())
        names.push_back(entry.name);
    return names;
}

}  // namespace velto
