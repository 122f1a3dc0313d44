#include "platform/macos/MacSystemCounters.h"

#import <Foundation/Foundation.h>

#include <ifaddrs.h>
#include <mach/mach.h>
#include <net/if_var.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

namespace velto {
namespace {

template <typename Value>
std::optional<Value> systemValue(const char* name) {
    Value value{};
    std::size_t size = sizeof value;
    if (sysctlbyname(name, &value, &size, nullptr, 0) != 0 || size != sizeof value) {
        return std::nullopt;
    }
    return value;
}

/// Every call of `mach_host_self` gives a right that has to be given back.
class Host {
public:
    Host() : port_(mach_host_self()) {}
    ~Host() { mach_port_deallocate(mach_task_self(), port_); }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    mach_port_t port() const { return port_; }

private:
    mach_port_t port_;
};

std::int64_t pageSize() {
    if (const auto size = systemValue<int>("vm.pagesize"); size && *size > 0) return *size;
    return static_cast<std::int64_t>(vm_kernel_page_size);
}

std::optional<MemoryPressure> pressure() {
    switch (systemValue<int>("kern.memorystatus_vm_pressure_level").value_or(0)) {
        case 1:
            return MemoryPressure::normal;
        case 2:
            return MemoryPressure::warning;
        case 4:
            return MemoryPressure::critical;
        default:
            return std::nullopt;
    }
}

struct FreeAddresses {
    void operator()(ifaddrs* first) const { freeifaddrs(first); }
};

// The loopback, and tunnel ends whose bytes pass through another interface once more.
constexpr std::array<std::string_view, 3> skippedInterfaces{"lo0", "gif0", "stf0"};
constexpr int linkLevel = 18;  // AF_LINK

}  // namespace

std::optional<ProcessorTicks> MacSystemCounters::processorTicks() {
    const Host host;
    host_cpu_load_info_data_t load{};
    mach_msg_type_number_t count = HOST_CPU_LOAD_INFO_COUNT;
    const kern_return_t result = host_statistics(host.port(), HOST_CPU_LOAD_INFO,
                                                 reinterpret_cast<host_info_t>(&load), &count);
    if (result != KERN_SUCCESS) return std::nullopt;
    return ProcessorTicks{.user = load.cpu_ticks[CPU_STATE_USER],
                          .system = load.cpu_ticks[CPU_STATE_SYSTEM],
                          .idle = load.cpu_ticks[CPU_STATE_IDLE],
                          .nice = load.cpu_ticks[CPU_STATE_NICE]};
}

int MacSystemCounters::processorCount() {
    return static_cast<int>(NSProcessInfo.processInfo.processorCount);
}

double MacSystemCounters::loadAverage() {
    double load = 0;
    return getloadavg(&load, 1) == 1 ? load : 0;
}

std::optional<MemoryCounters> MacSystemCounters::memory() {
    const Host host;
    vm_statistics64_data_t pages{};
    mach_msg_type_number_t count = HOST_VM_INFO64_COUNT;
    const kern_return_t result = host_statistics64(host.port(), HOST_VM_INFO64,
                                                   reinterpret_cast<host_info64_t>(&pages), &count);
    if (result != KERN_SUCCESS) return std::nullopt;
    const std::int64_t page = pageSize();
    MemoryCounters memory{
        .physical = static_cast<std::int64_t>(NSProcessInfo.processInfo.physicalMemory),
        .internal = pages.internal_page_count * page,
        .purgeable = pages.purgeable_count * page,
        .wired = pages.wire_count * page,
        .compressed = pages.compressor_page_count * page,
        .cached = pages.external_page_count * page,
        .pressure = pressure()};
    if (const auto swap = systemValue<xsw_usage>("vm.swapusage")) {
        memory.swapUsed = static_cast<std::int64_t>(swap->xsu_used);
        memory.swapTotal = static_cast<std::int64_t>(swap->xsu_total);
    }
    return memory;
}

ThermalState MacSystemCounters::thermalState() {
    switch (NSProcessInfo.processInfo.thermalState) {
        case NSProcessInfoThermalStateFair:
            return ThermalState::fair;
        case NSProcessInfoThermalStateSerious:
            return ThermalState::serious;
        case NSProcessInfoThermalStateCritical:
            return ThermalState::critical;
        case NSProcessInfoThermalStateNominal:
            break;
    }
    return ThermalState::nominal;
}

bool MacSystemCounters::isLowPowerModeOn() { return NSProcessInfo.processInfo.lowPowerModeEnabled; }

std::optional<Temperature> MacSystemCounters::temperature() { return std::nullopt; }

GraphicsCounters MacSystemCounters::graphics() { return {}; }

std::optional<std::vector<InterfaceCounters>> MacSystemCounters::interfaces() {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0) return std::nullopt;
    const std::unique_ptr<ifaddrs, FreeAddresses> list(first);
    std::vector<InterfaceCounters> interfaces;
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_data == nullptr) continue;
        if (entry->ifa_addr->sa_family != linkLevel) continue;
        const std::string_view name = entry->ifa_name;
        if (std::ranges::find(skippedInterfaces, name) != skippedInterfaces.end()) continue;
        const auto* const data = static_cast<const if_data*>(entry->ifa_data);
        interfaces.push_back({std::string(name), data->ifi_ibytes, data->ifi_obytes});
    }
    return interfaces;
}

}  // namespace velto
