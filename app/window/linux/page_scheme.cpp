#include "app/window/linux/page_scheme.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "app/window/linux/gtk.h"
#include "app/window/navigation.h"

namespace velto::window {
namespace {

GlibReference<GInputStream> streamOf(std::string content) {
    auto owned = std::make_unique<std::string>(std::move(content));
    const char* const begin = owned->data();
    const std::size_t size = owned->size();
    GBytes* const bytes = g_bytes_new_with_free_func(
        begin, size, [](gpointer text) { delete static_cast<std::string*>(text); },
        owned.release());
    GlibReference<GInputStream> stream(g_memory_input_stream_new_from_bytes(bytes));
    g_bytes_unref(bytes);
    return stream;
}

/// With fields of its own an answer has its type from them alone.
SoupMessageHeaders* makeHeaders(std::string_view type) {
    SoupMessageHeaders* const headers = soup_message_headers_new(SOUP_MESSAGE_HEADERS_RESPONSE);
    soup_message_headers_append(headers, "Content-Type", std::string(type).c_str());
    for (const auto& [name, value] : PageFiles::headers()) {
        soup_message_headers_append(headers, std::string(name).c_str(), std::string(value).c_str());
    }
    return headers;
}

void refuse(WebKitURISchemeRequest* request) {
    GError* const error =
        g_error_new_literal(G_IO_ERROR, G_IO_ERROR_NOT_FOUND, "no such file of the page");
    webkit_uri_scheme_request_finish_error(request, error);
    g_error_free(error);
}

void answer(WebKitURISchemeRequest* request, gpointer files) {
    const char* const method = webkit_uri_scheme_request_get_http_method(request);
    const char* const address = webkit_uri_scheme_request_get_uri(request);
    if (method == nullptr || address == nullptr) return refuse(request);
    auto file = static_cast<const PageFiles*>(files)->answer(method, address);
    if (!file) return refuse(request);
    const auto length = static_cast<gint64>(file->content.size());
    const auto stream = streamOf(std::move(file->content));
    const GlibReference<WebKitURISchemeResponse> response(
        webkit_uri_scheme_response_new(stream.get(), length));
    webkit_uri_scheme_response_set_status(response.get(), SOUP_STATUS_OK, nullptr);
    webkit_uri_scheme_response_set_http_headers(response.get(), makeHeaders(file->type));
    webkit_uri_scheme_request_finish_with_response(request, response.get());
}

}  // namespace

void servePage(const PageFiles& files) {
    WebKitWebContext* const context = webkit_web_context_get_default();
    const std::string scheme(pageScheme);
    // Only read: the callback's data is handed through as it is.
    webkit_web_context_register_uri_scheme(context, scheme.c_str(), answer,
                                           const_cast<PageFiles*>(&files), nullptr);
    WebKitSecurityManager* const security = webkit_web_context_get_security_manager(context);
    webkit_security_manager_register_uri_scheme_as_secure(security, scheme.c_str());
    // No document of another origin may show the page's files.
    webkit_security_manager_register_uri_scheme_as_display_isolated(security, scheme.c_str());
}

}  // namespace velto::window
