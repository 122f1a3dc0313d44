#pragma once

#include <string>

#include "platform/PackageService.h"

namespace velto {

/// Snaps, through the REST interface of snapd on its socket
/// (https://snapcraft.io/docs/snapd-api), which asks for the user's leave through polkit. It keeps
/// a copy of a removed snap's data for a while.
class Snapd final : public PackageService {
public:
    explicit Snapd(std::string socket = "/run/snapd.socket",
                   std::string entries = "/var/lib/snapd/desktop/applications")
        : socket_(std::move(socket)), entries_(std::move(entries)) {}

    PackageKeeper keeper() const override { return PackageKeeper::snap; }
    std::optional<Package> owner(const std::string& desktopEntry) override;
    std::vector<Package> removedWith(const Package& package) override;
    void remove(const Package& package, bool withOthers) override;

private:
    std::string socket_;
    std::string entries_;  // the folder of all snaps' desktop entries
};

}  // namespace velto
