#include "platform/linux/packages/PackageKit.h"

#include <algorithm>
#include <cstdint>

#include "platform/linux/packages/PackageKitTransaction.h"

namespace velto {
namespace {

// Numbers of PackageKit's enumerations, and bits for them (packagekit-glib2/pk-enum.h).
constexpr std::uint32_t infoInstalled = 1;
constexpr std::uint32_t infoRemoving = 13;
constexpr std::uint64_t onlyInstalled = 1U << 2;
constexpr std::uint64_t noFlag = 1U << 0;
constexpr std::uint64_t simulate = 1U << 2;

constexpr unsigned secondsToLook = 60;  // reading all package lists from a slow disk
constexpr unsigned asLongAsItTakes = 0;
constexpr gboolean unneededStay = FALSE;

GVariant* listOf(const std::string& text) {
    const char* const texts[] = {text.c_str(), nullptr};
    return g_variant_new_strv(texts, -1);
}

GVariant* removal(std::uint64_t flags, const Package& package, bool withOthers) {
    return g_variant_new("(t@asbb)", flags, listOf(package.identifier), withOthers ? TRUE : FALSE,
                         unneededStay);
}

Package packageOf(const PackageKitTransaction::Found& found) {
    return {found.identifier.substr(0, found.identifier.find(';')), found.identifier};
}

}  // namespace

std::optional<Package> PackageKit::owner(const std::string& desktopEntry) {
    PackageKitTransaction transaction(busAddress_);
    const auto found = transaction.run(
        "SearchFiles", g_variant_new("(t@as)", onlyInstalled, listOf(desktopEntry)), secondsToLook);
    const auto installed =
        std::ranges::find(found, infoInstalled, &PackageKitTransaction::Found::info);
    if (installed == found.end()) return std::nullopt;
    return packageOf(*installed);
}

std::vector<Package> PackageKit::removedWith(const Package& package) {
    PackageKitTransaction transaction(busAddress_);
    std::vector<Package> others;
    for (const auto& each :
         transaction.run("RemovePackages", removal(simulate, package, true), secondsToLook)) {
        if (each.info != infoRemoving) continue;
        if (Package other = packageOf(each); other.name != package.name) {
            others.push_back(std::move(other));
        }
    }
    return others;
}

void PackageKit::remove(const Package& package, bool withOthers) {
    PackageKitTransaction transaction(busAddress_);
    transaction.run("RemovePackages", removal(noFlag, package, withOthers), asLongAsItTakes);
}

}  // namespace velto
