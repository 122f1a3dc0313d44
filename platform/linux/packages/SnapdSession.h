#pragma once

#include <libsoup/soup.h>

#include <string>

#include <nlohmann/json.hpp>

#include "platform/linux/glib_pointers.h"
#include "platform/linux/packages/OwnContext.h"

namespace velto {

/// Requests to snapd, one after another. For the thread that makes it, which has a main context of
/// its own meanwhile. Every function throws PackageError: also for an answer that is an error, and
/// for one that is none of snapd's.
class SnapdSession {
public:
    explicit SnapdSession(const std::string& socket);

    /// The whole answer, "result" and all.
    nlohmann::json get(const std::string& path) { return send("GET", path, {}); }

    /// May wait for the user's leave.
    nlohmann::json post(const std::string& path, const nlohmann::json& body) {
        return send("POST", path, body.dump());
    }

private:
    nlohmann::json send(const char* method, const std::string& path, const std::string& body);

    OwnContext context_;
    GlibReference<SoupSession> session_;
};

}  // namespace velto
