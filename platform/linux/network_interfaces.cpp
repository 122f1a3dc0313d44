#include "platform/linux/network_interfaces.h"

#include <unistd.h>

#include <algorithm>
#include <array>

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

// Interface types that have no cable: loopback and the ends of tunnels (if_arp.h).
constexpr std::array<std::int64_t, 7> cablelessTypes{
    768,    // IP in IP
    769,    // IP6 in IP6
    772,    // loopback
    776,    // IP6 in IP4
    778,    // GRE
    823,    // GRE over IP6
    65534,  // no addresses of its own: TUN, WireGuard
};

// Where sysfs is not to be had, names have to tell.
constexpr std::array<std::string_view, 12> repeatingNames{
    "lo", "docker", "br-", "virbr", "veth", "vnet", "tun", "tap", "wg", "cni", "bond", "ifb"};

bool exists(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

}  // namespace

std::vector<InterfaceCounters> interfacesIn(std::string_view netDev) {
    constexpr int fieldsUntilSent = 8;  // proc_pid_net(5): received bytes, seven others, sent bytes
    std::vector<InterfaceCounters> interfaces;
    while (!netDev.empty()) {
        std::string_view line = nextLine(netDev);
        // The name may touch the first number, and an alias has a colon in its name.
        const std::size_t colon = line.rfind(':');
        if (colon == std::string_view::npos) continue;
        std::string_view name = line.substr(0, colon);
        line.remove_prefix(colon + 1);
        InterfaceCounters one{.name = std::string(nextWord(name)), .isWide = true};
        one.received = unsignedNumber(nextWord(line));
        for (int field = 1; field < fieldsUntilSent; ++field)
            nextWord(line);
        one.sent = unsignedNumber(nextWord(line));
        interfaces.push_back(std::move(one));
    }
    return interfaces;
}

InterfaceChoice::Kind InterfaceChoice::kindOf(const std::string& name) const {
    const std::string folder = sys_ + "/class/net/" + name;
    if (!exists(folder)) {
        const bool repeats = std::ranges::any_of(
            repeatingNames, [&](std::string_view start) { return name.starts_with(start); });
        return repeats ? Kind::repeating : Kind::other;
    }
    if (exists(folder + "/bridge") || exists(folder + "/bonding")) return Kind::repeating;
    if (exists(folder + "/device")) return Kind::hardware;
    // On top of another interface, or plugged into a bridge.
    for (const std::string& entry : kernelNames(folder)) {
        if (entry.starts_with("lower_") || entry == "brport" || entry == "tun_flags") {
            return Kind::repeating;
        }
    }
    const std::int64_t type = kernelNumber(folder + "/type").value_or(0);
    return std::ranges::find(cablelessTypes, type) != cablelessTypes.end() ? Kind::repeating
                                                                           : Kind::other;
}

std::vector<InterfaceCounters> InterfaceChoice::of(std::vector<InterfaceCounters> all) {
    std::vector<std::string> names;
    names.reserve(all.size());
    for (const InterfaceCounters& one : all)
        names.push_back(one.name);
    if (names != known_) {
        std::vector<std::string> hardware, others;
        for (const std::string& name : names) {
            const Kind kind = kindOf(name);
            if (kind == Kind::hardware) hardware.push_back(name);
            if (kind == Kind::other) others.push_back(name);
        }
        counting_ = hardware.empty() ? std::move(others) : std::move(hardware);
        known_ = std::move(names);
    }
    std::erase_if(all, [this](const InterfaceCounters& one) {
        return std::ranges::find(counting_, one.name) == counting_.end();
    });
    return all;
}

}  // namespace velto
