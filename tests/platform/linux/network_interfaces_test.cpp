#include "platform/linux/network_interfaces.h"

#include <gtest/gtest.h>

#include "support/TempHome.h"

namespace velto {
namespace {

struct NetworkInterfaces : testing::Test {
    TempHome sys;
    InterfaceChoice choice{sys.path()};

    /// An interface with these entries in its folder.
    void interface(const std::string& name, int type, const std::vector<std::string>& entries) {
        sys.text("class/net/" + name + "/type", std::to_string(type) + "\n");
        for (const std::string& entry : entries)
            sys.folder("class/net/" + name + "/" + entry);
    }
    std::vector<std::string> counted(const std::vector<std::string>& names) {
        std::vector<InterfaceCounters> all;
        for (const std::string& name : names)
            all.push_back({name, 1, 1});
        std::vector<std::string> result;
        for (const auto& one : choice.of(std::move(all)))
            result.push_back(one.name);
        return result;
    }
};

using Names = std::vector<std::string>;

TEST(InterfacesIn, EveryLineIsReadAlsoWhereNameAndNumberTouch) {
    const auto all = interfacesIn(
        "Inter-|   Receive                                                |  Transmit\n"
        " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs\n"
        "    lo:    6534      58    0    0    0     0          0         0     6534      58    0\n"
        "  eth0:18822377560 50621   0    0    0     0          0         0  3579404   34429    0\n"
        "wlp0s2:7 1 2 3 4 5 6 7 9 1\n"
        "eth0:1: 11 1 0 0 0 0 0 0 13 1\n");
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all[1].name, "eth0");
    EXPECT_EQ(all[1].received, 18822377560u);  // more than 32 bits hold
    EXPECT_EQ(all[1].sent, 3579404u);
    EXPECT_EQ(all[2].name, "wlp0s2");
    EXPECT_EQ(all[2].received, 7u);
    EXPECT_EQ(all[2].sent, 9u);
    EXPECT_EQ(all[3].name, "eth0:1");
    EXPECT_EQ(all[3].sent, 13u);
}

TEST_F(NetworkInterfaces, TrafficOfContainersIsCountedOnceWhereItLeavesTheMachine) {
    interface("lo", 772, {});
    interface("enp3s0", 1, {"device"});
    interface("wlp2s0", 1, {"device"});
    interface("docker0", 1, {"bridge", "lower_veth1a"});
    interface("veth1a", 1, {"brport", "upper_docker0"});
    interface("veth2b", 1, {});
    interface("wg0", 65534, {});
    interface("tun0", 65534, {"tun_flags"});
    interface("enp3s0.7", 1, {"lower_enp3s0"});
    EXPECT_EQ(counted({"lo", "enp3s0", "wlp2s0", "docker0", "veth1a", "veth2b", "wg0", "tun0",
                       "enp3s0.7"}),
              (Names{"enp3s0", "wlp2s0"}));
}

TEST_F(NetworkInterfaces, ABridgedOrBondedCardIsCountedAndTheBridgeIsNot) {
    interface("eth0", 1, {"device", "brport"});
    interface("eth1", 1, {"device", "bonding_slave"});
    interface("br0", 1, {"bridge"});
    interface("bond0", 1, {"bonding", "lower_eth1"});
    EXPECT_EQ(counted({"eth0", "eth1", "br0", "bond0"}), (Names{"eth0", "eth1"}));
}

TEST_F(NetworkInterfaces, InsideAContainerTheOneThatLeadsOutIsCounted) {
    interface("lo", 772, {});
    interface("eth0", 1, {});
    interface("tunl0", 768, {});
    EXPECT_EQ(counted({"lo", "eth0", "tunl0"}), Names{"eth0"});
}

TEST_F(NetworkInterfaces, WithoutSysfsTheNamesTell) {
    EXPECT_EQ(counted({"lo", "eth0", "docker0", "br-12ab", "veth9", "wlan0"}),
              (Names{"eth0", "wlan0"}));
}

TEST_F(NetworkInterfaces, ACardThatIsPluggedInLaterIsCounted) {
    interface("eth0", 1, {"device"});
    interface("veth1", 1, {});
    EXPECT_EQ(counted({"eth0", "veth1"}), Names{"eth0"});
    interface("usb0", 1, {"device"});
    EXPECT_EQ(counted({"eth0", "veth1", "usb0"}), (Names{"eth0", "usb0"}));
}

}  // namespace
}  // namespace velto
