#include "app/window/linux/web_engine.h"

#include <vector>

#include "app/window/window_rules.h"

namespace velto::window {

void prepareEnvironment() {
    // Some graphics stacks show an empty window otherwise.
    constexpr gboolean unlessTheUserHas = FALSE;
    g_setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", unlessTheUserHas);
}

std::string webDataFolder(const Platform& platform) {
    return platform.layout.dataFolder + "/WebView";
}

GlibReference<WebKitNetworkSession> makeSession(const Platform& platform) {
    const std::string folder = webDataFolder(platform);
    return GlibReference<WebKitNetworkSession>(
        webkit_network_session_new(folder.c_str(), (folder + "/cache").c_str()));
}

std::optional<std::string> pageUri(const Platform& platform) {
    const std::string& program = platform.executablePath;
    const std::string folder = program.substr(0, program.rfind('/'));
    const auto bundle = findResourceBundle(
        {folder, folder + "/../share/velto", folder + "/../lib/velto"},
        [&](const std::string& path) { return platform.files->exists(path); });
    if (!bundle) return std::nullopt;
    const std::string page = platform.files->resolved(*bundle) + "/index.html";
    const GlibText uri(g_filename_to_uri(page.c_str(), nullptr, nullptr));
    return uri ? std::optional<std::string>(uri.get()) : std::nullopt;
}

}  // namespace velto::window
