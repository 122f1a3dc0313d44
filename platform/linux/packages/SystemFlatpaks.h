#pragma once

#include <string>

#include "platform/FileManager.h"
#include "platform/PackageService.h"
#include "platform/ToolRunner.h"

namespace velto {

/// Flatpaks that are there for all users, through the flatpak tool, which asks for the user's leave
/// through polkit.
class SystemFlatpaks final : public PackageService {
public:
    /// Both outlive the object.
    SystemFlatpaks(const FileManager& files, ToolRunner& tools,
                   std::string installation = "/var/lib/flatpak")
        : files_(files), tools_(tools), installation_(std::move(installation)) {}

    PackageKeeper keeper() const override { return PackageKeeper::flatpak; }
    std::optional<Package> owner(const std::string& desktopEntry) override;
    std::vector<Package> removedWith(const Package& package) override;
    void remove(const Package& package, bool withOthers) override;

private:
    bool isInstalled(const std::string& identifier) const;

    const FileManager& files_;
    ToolRunner& tools_;
    std::string installation_;
};

}  // namespace velto
