#include "platform/linux/flatpak_instances.h"

#include <unistd.h>

#include <array>
#include <optional>
#include <string_view>

#include <nlohmann/json.hpp>

#include "platform/linux/kernel_file.h"
#include "platform/posix/foreign_file.h"
#include "platform/values/parse_json.h"

namespace velto {
namespace {

constexpr std::size_t mostInstanceBytes = 64 * 1024;
constexpr std::size_t mostInstances = 500;

/// The number, outside, of the first process inside.
std::optional<std::int64_t> firstProcess(const std::string& instance) {
    const auto text = readForeignFile(instance + "/bwrapinfo.json", mostInstanceBytes);
    if (!text) return std::nullopt;
    try {
        return parseJson(*text).at("child-pid").get<std::int64_t>();
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;  // not written yet
    }
}

/// "name" in the section "[Application]".
std::string identifierIn(std::string_view information) {
    bool isApplication = false;
    while (!information.empty()) {
        const std::string_view line = nextLine(information);
        constexpr std::string_view name = "name=";
        if (line.starts_with('[')) isApplication = line == "[Application]";
        if (isApplication && line.starts_with(name)) return std::string(line.substr(name.size()));
    }
    return {};
}

}  // namespace

std::string processNamespace(const std::string& folder) {
    std::array<char, 64> target;
    const ssize_t length = ::readlink((folder + "/ns/pid").c_str(), target.data(), target.size());
    return length <= 0 ? std::string()
                       : std::string(target.data(), static_cast<std::size_t>(length));
}

std::map<std::string, std::string> flatpaksByNamespace(const std::string& proc,
                                                       const std::string& runtime) {
    std::map<std::string, std::string> found;
    if (runtime.empty()) return found;
    const std::string own = processNamespace(proc + "/self");
    for (const std::string& name : kernelNames(runtime + "/.flatpak")) {
        if (found.size() == mostInstances) break;
        const std::string instance = runtime + "/.flatpak/" + name;
        const auto process = firstProcess(instance);
        if (!process) continue;
        std::string identifier =
            identifierIn(readForeignFile(instance + "/info", mostInstanceBytes).value_or(""));
        std::string space = processNamespace(proc + "/" + std::to_string(*process));
        // One that has ended may have left its notes, and its number to another process.
        if (identifier.empty() || space.empty() || space == own) continue;
        found.emplace(std::move(space), std::move(identifier));
    }
    return found;
}

}  // namespace velto
