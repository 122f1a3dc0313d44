#include "platform/linux/packages/Snapd.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <nlohmann/json.hpp>

#include "platform/linux/packages/SnapdSession.h"
#include "platform/values/json_fields.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using Reason = PackageError::Reason;

constexpr std::chrono::milliseconds betweenLooks(300);

/// An entry is called "<snap>_<application>.desktop"; of a snap that is installed twice the name
/// has a "+" where the snap's own has "_".
std::string snapOf(const std::string& desktopEntry) {
    const std::string file(lastPathComponent(desktopEntry));
    std::string name = file.substr(0, file.find('_'));
    std::ranges::replace(name, '+', '_');
    return name;
}

/// As snapd itself checks names; whatever else there is must not become part of a request.
bool isSnapName(const std::string& name) {
    return !name.empty() && std::ranges::all_of(name, [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') ||
               letter == '-' || letter == '_';
    });
}

}  // namespace

std::optional<Package> Snapd::owner(const std::string& desktopEntry) {
    const std::string name = snapOf(desktopEntry);
    if (parentFolder(desktopEntry) != entries_ || !isSnapName(name)) return std::nullopt;
    try {
        const nlohmann::json answer = SnapdSession(socket_).get("/v2/snaps/" + name);
        // Others hold up the system or other snaps.
        if (field<std::string>(answer.at("result"), "type") != "app") return std::nullopt;
        return Package{name, name};
    } catch (const PackageError& error) {
        if (error.reason() == Reason::missing) return std::nullopt;
        throw;
    } catch (const nlohmann::json::exception& error) {
        throw PackageError(Reason::failed, error.what());
    }
}

std::vector<Package> Snapd::removedWith(const Package&) {
    return {};  // snapd removes no snap that another one needs
}

void Snapd::remove(const Package& package, bool) {
    if (!isSnapName(package.identifier)) throw PackageError(Reason::failed, "no snap's name");
    SnapdSession session(socket_);
    try {
        const nlohmann::json begun =
            session.post("/v2/snaps/" + package.identifier, {{"action", "remove"}});
        const std::string change = "/v2/changes/" + field<std::string>(begun, "change");
        for (;; std::this_thread::sleep_for(betweenLooks)) {
            const nlohmann::json state = session.get(change).at("result");
            if (!field<bool>(state, "ready")) continue;
            if (field<std::string>(state, "status") == "Done") return;
            throw PackageError(Reason::failed, state.value("err", "snapd has undone the removal"));
        }
    } catch (const nlohmann::json::exception& error) {
        throw PackageError(Reason::failed, error.what());
    }
}

}  // namespace velto
