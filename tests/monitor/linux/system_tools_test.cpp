// What the counters say, beside what the system's own tools say right before and right after.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "platform/linux/LinuxSystemCounters.h"

namespace velto {
namespace {

/// What a command prints as JSON; nothing where it is not installed or prints something else.
std::optional<nlohmann::json> answerOf(const std::string& command) {
    struct Close {
        void operator()(FILE* stream) const { ::pclose(stream); }
    };
    const std::unique_ptr<FILE, Close> stream(
        ::popen(("LC_ALL=C " + command + " 2>/dev/null").c_str(), "r"));
    std::string text;
    std::array<char, 4096> part{};
    while (stream) {
        const std::size_t size = std::fread(part.data(), 1, part.size(), stream.get());
        if (size == 0) break;
        text.append(part.data(), size);
    }
    auto answer = nlohmann::json::parse(text, nullptr, false);
    if (answer.is_discarded()) return std::nullopt;
    return answer;
}

struct Bytes {
    std::uint64_t in = 0;
    std::uint64_t out = 0;
};
using ByName = std::map<std::string, Bytes>;

/// Since the system was started, in whole kilobytes of 1,024 bytes, rounded down.
std::optional<ByName> disksOfIostat() {
    const auto answer = answerOf("iostat -d -k -o JSON");
    if (!answer) return std::nullopt;
    ByName disks;
    for (const auto& one :
         answer->at("sysstat").at("hosts").at(0).at("statistics").at(0).at("disk"))
        disks[one.at("disk_device")] = {one.at("kB_read"), one.at("kB_wrtn")};
    return disks;
}

std::optional<ByName> interfacesOfIp() {
    const auto answer = answerOf("ip -json -statistics link");
    if (!answer) return std::nullopt;
    ByName interfaces;
    for (const auto& one : *answer) {
        const auto& counted = one.at("stats64");
        interfaces[one.at("ifname")] = {counted.at("rx").at("bytes"), counted.at("tx").at("bytes")};
    }
    return interfaces;
}

void expectBetween(std::uint64_t before, std::uint64_t ours, std::uint64_t after,
                   const std::string& name) {
    EXPECT_LE(before, ours) << name;
    EXPECT_LE(ours, after) << name;
}

TEST(SystemTools, DisksHaveMovedWhatIostatSays) {
    constexpr std::uint64_t kilobyte = 1024;
    LinuxSystemCounters counters;
    const auto before = disksOfIostat();
    const auto ours = counters.disks();
    const auto after = disksOfIostat();
    if (!before || !after) GTEST_SKIP() << "iostat(1) is not installed, or an old one";
    ASSERT_TRUE(ours);
    if (ours->empty()) GTEST_SKIP() << "this machine has no disk of its own";
    for (const DiskCounters& disk : *ours) {
        ASSERT_TRUE(before->contains(disk.name)) << disk.name;
        const Bytes first = before->at(disk.name), last = after->at(disk.name);
        expectBetween(first.in, disk.read / kilobyte, last.in, disk.name);
        expectBetween(first.out, disk.written / kilobyte, last.out, disk.name);
    }
}

TEST(SystemTools, InterfacesHaveMovedWhatIpSays) {
    LinuxSystemCounters counters;
    const auto before = interfacesOfIp();
    const auto ours = counters.interfaces();
    const auto after = interfacesOfIp();
    if (!before || !after) GTEST_SKIP() << "ip(8) is not installed, or an old one";
    ASSERT_TRUE(ours);
    if (ours->empty()) GTEST_SKIP() << "this machine has no interface";
    for (const InterfaceCounters& one : *ours) {
        ASSERT_TRUE(before->contains(one.name)) << one.name;
        const Bytes first = before->at(one.name), last = after->at(one.name);
        expectBetween(first.in, one.received, last.in, one.name);
        expectBetween(first.out, one.sent, last.out, one.name);
    }
}

/// Every temperature that sensors(1) names, in degrees.
std::vector<double> temperaturesIn(const nlohmann::json& chips) {
    std::vector<double> degrees;
    const nlohmann::json flat = chips.flatten();
    for (const auto& [path, value] : flat.items()) {
        const std::string name = path.substr(path.rfind('/') + 1);
        if (name.starts_with("temp") && name.ends_with("_input")) degrees.push_back(value);
    }
    return degrees;
}

TEST(SystemTools, TheTemperatureIsOneOfThoseThatSensorsNames) {
    const auto chips = answerOf("sensors -j");
    if (!chips) GTEST_SKIP() << "sensors(1) is not installed";
    const std::vector<double> theirs = temperaturesIn(*chips);
    LinuxSystemCounters counters;
    const auto ours = counters.temperature();
    if (!ours || theirs.empty()) {
        // A thermal zone need not be a chip for sensors(1) as well.
        const bool hasZone = std::filesystem::exists("/sys/class/thermal/thermal_zone0");
        EXPECT_TRUE(theirs.empty() && (!ours || hasZone));
        return;
    }
    constexpr double tolerance = 2;  // degrees, for what changes between two readings
    EXPECT_TRUE(std::ranges::any_of(
        theirs, [&](double one) { return std::abs(one - ours->celsius) <= tolerance; }))
        << ours->celsius << " beside " << chips->dump();
}

}  // namespace
}  // namespace velto
