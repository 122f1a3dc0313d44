#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/PosixFileManager.h"
#include "platform/values/PropertyList.h"
#include "support/TempHome.h"
#include "support/TestPlatform.h"
#include "support/WatchedFileCalls.h"
#include "support/volumes.h"
#include "uninstall/AppRemover.h"
#include "uninstall/AppUsage.h"
#include "uninstall/InstalledApps.h"

namespace velto {

/// A made Mac home with applications, and a made disk for the folders of the system. Never in the
/// temporary folder: on some systems that is one of those in which nothing is ever removed.
struct UninstallWorld {
    explicit UninstallWorld(const std::string& parent = fastVolume());

    /// In memory where the machine has such a volume: syncing costs nothing there.
    static std::string fastVolume();
    /// False where the made homes are on the build folder's volume.
    static bool hasTwoVolumes();

    using Texts = std::vector<std::pair<std::string, std::string>>;

    /// A bundle with these texts in its Info.plist; `where` is an absolute folder.
    std::string bundle(const std::string& where, const std::string& fileName, const Texts& texts);
    /// "com.example.<name in small letters>" in the home's Applications.
    std::string application(const std::string& name);
    std::string systemApplications() const { return machine.platform.layout.systemApplications; }
    std::string userApplications() const { return machine.platform.layout.userApplications; }
    /// A file of the home's Library with some content, or of the system's.
    std::string library(const std::string& below, const std::string& content = "content");
    std::string systemLibrary(const std::string& below, const std::string& content = "content");
    /// A launch agent or daemon of that label at an absolute path, which it returns.
    std::string agent(const std::string& path, const std::string& label);
    void put(const std::string& path, const std::string& content);
    bool isThere(const std::string& path) const { return machine.platform.files->exists(path); }

    std::vector<std::string> listedNames();

    WatchedFileCalls calls;
    TempHome home;
    TempHome disk;
    TestPlatform machine;
    AppUsage usage{machine.platform};
    InstalledApps apps{machine.platform, usage};
    AppRemover remover{machine.platform, apps};
};

}  // namespace velto
