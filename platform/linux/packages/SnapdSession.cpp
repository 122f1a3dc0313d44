#include "platform/linux/packages/SnapdSession.h"

#include <gio/gunixsocketaddress.h>

#include <memory>

#include "platform/PackageService.h"
#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"

namespace velto {
namespace {

using Reason = PackageError::Reason;

struct UnrefBytes {
    void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
};
using Bytes = std::unique_ptr<GBytes, UnrefBytes>;

/// Of an answer's error, by its kind (https://snapcraft.io/docs/snapd-api#errors).
Reason reasonOf(const std::string& kind, std::int64_t status) {
    if (kind == "auth-cancelled" || kind == "login-required" ||
        status == SOUP_STATUS_UNAUTHORIZED || status == SOUP_STATUS_FORBIDDEN) {
        return Reason::refused;
    }
    if (kind == "snap-not-installed" || kind == "snap-not-found" ||
        status == SOUP_STATUS_NOT_FOUND) {
        return Reason::missing;
    }
    return kind == "snap-change-conflict" || status == SOUP_STATUS_CONFLICT ? Reason::busy
                                                                            : Reason::failed;
}

SoupSession* sessionOn(const std::string& socket) {
    const GlibReference<GSocketAddress> address(g_unix_socket_address_new(socket.c_str()));
    return SOUP_SESSION(g_object_new(SOUP_TYPE_SESSION, "remote-connectable", address.get(),
                                     "user-agent", "velto", nullptr));
}

}  // namespace

SnapdSession::SnapdSession(const std::string& socket) : session_(sessionOn(socket)) {}

nlohmann::json SnapdSession::send(const char* method, const std::string& path,
                                  const std::string& body) {
    const GlibReference<SoupMessage> message(
        soup_message_new(method, ("http://localhost" + path).c_str()));
    if (!message) throw PackageError(Reason::failed, "no request: " + path);
    soup_message_headers_append(soup_message_get_request_headers(message.get()),
                                "X-Allow-Interaction", "true");
    if (!body.empty()) {
        const Bytes bytes(g_bytes_new(body.data(), body.size()));
        soup_message_set_request_body_from_bytes(message.get(), "application/json", bytes.get());
    }
    GError* error = nullptr;
    const Bytes answer(soup_session_send_and_read(session_.get(), message.get(), nullptr, &error));
    if (const GlibError reason(error); reason || !answer) {
        throw PackageError(Reason::unavailable, reason ? reason->message : "snapd does not answer");
    }
    gsize size = 0;
    const auto* const text = static_cast<const char*>(g_bytes_get_data(answer.get(), &size));
    try {
        nlohmann::json value = parseJson(std::string_view(text, size));
        if (field<std::string>(value, "type") != "error") return value;
        const nlohmann::json& result = value.at("result");
        throw PackageError(reasonOf(result.value("kind", ""), value.value("status-code", 0)),
                           field<std::string>(result, "message"));
    } catch (const nlohmann::json::exception& unreadable) {
        throw PackageError(Reason::failed, unreadable.what());
    }
}

}  // namespace velto
