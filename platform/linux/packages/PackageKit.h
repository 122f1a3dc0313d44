#pragma once

#include <string>

#include "platform/PackageService.h"

namespace velto {

/// The distribution's packages, through PackageKit's D-Bus interface
/// (org.freedesktop.PackageKit.Transaction), which asks for the user's leave through polkit.
class PackageKit final : public PackageService {
public:
    /// `busAddress` in place of the system's bus.
    explicit PackageKit(std::string busAddress = {}) : busAddress_(std::move(busAddress)) {}

    PackageKeeper keeper() const override { return PackageKeeper::distribution; }
    std::optional<Package> owner(const std::string& desktopEntry) override;
    std::vector<Package> removedWith(const Package& package) override;
    void remove(const Package& package, bool withOthers) override;

private:
    std::string busAddress_;
};

}  // namespace velto
