#include "app/window/linux/web_engine.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "app/window/graphics.h"
#include "app/window/window_rules.h"
#include "platform/own_folder.h"
#include "platform/values/text.h"
#include "platform/values/uuid.h"

namespace velto::window {
namespace {

/// Nobody can listen on port 0: what gets past the page's policy ends here.
constexpr const char* proxyToNowhere = "socks5://127.0.0.1:0";

void takeNetworkAway(WebKitNetworkSession* session) {
    WebKitNetworkProxySettings* const nowhere =
        webkit_network_proxy_settings_new(proxyToNowhere, nullptr);
    webkit_network_session_set_proxy_settings(session, WEBKIT_NETWORK_PROXY_MODE_CUSTOM, nowhere);
    webkit_network_proxy_settings_free(nowhere);
    const auto cancel = +[](WebKitNetworkSession*, WebKitDownload* download, gpointer) {
        webkit_download_cancel(download);
    };
    g_signal_connect(session, "download-started", G_CALLBACK(cancel), nullptr);
}

/// Whether the engine can lock its processes in namespaces of their own, which most containers and
/// some systems do not allow. Asked of the tool that the engine uses for it; about 10 ms.
bool sandboxWorks(Platform& platform) {
    if (platform.files->exists("/.flatpak-info")) return true;  // the sandbox is Flatpak's there
    const GlibText tool(g_find_program_in_path("bwrap"));
    if (!tool) return true;  // the engine may know where it is
    const auto result = platform.tools->run(
        tool.get(), {"--unshare-pid", "--unshare-uts", "--unshare-net", "--die-with-parent",
                     "--ro-bind", "/", "/", "--dev", "/dev", "--proc", "/proc", "true"});
    return result.started && result.exitStatus == 0;
}

/// Mesa's drivers read it.
constexpr const char* softwareVariable = "LIBGL_ALWAYS_SOFTWARE";

/// Drivers that need no node in /dev/dri: NVIDIA's own, and the one of a Linux inside Windows.
constexpr std::array<const char*, 2> otherGraphicsDevices{"/dev/nvidiactl", "/dev/dxg"};

GraphicsSigns graphicsSigns(const FileManager& files) {
    GraphicsSigns signs;
    try {
        signs.directNodes = files.list("/dev/dri");
    } catch (const FileError&) {
        // There is no such folder where no driver has made one.
    }
    signs.otherDevice = std::any_of(otherGraphicsDevices.begin(), otherGraphicsDevices.end(),
                                    [&](const char* path) { return files.exists(path); });
    const char* const software = std::getenv(softwareVariable);
    if (software != nullptr) signs.software = software;
    return signs;
}

/// The engine would make its folder with whatever permissions the umask leaves, and follow a link
/// in its place. What is not the user's own folder is put aside.
void prepareWebData(const Platform& platform, const std::string& folder) {
    try {
        try {
            makeOwnFolder(folder);
        } catch (const UnsafeFolder& unsafe) {
            platform.log->line("Velto ▶ datos del motor web apartados: " +
                               singleLine(unsafe.what()));
            const std::string name(lastPathComponent(folder));
            const auto parent =
                platform.mover->openFolder(parentFolder(folder), FolderPath::throughLinks);
            platform.mover->moveAtOnce(*parent, name, *parent, name + ".aside-" + newUUID());
            makeOwnFolder(folder);
        }
        removeStaleTemporaries(folder);
    } catch (const std::runtime_error& error) {
        // The page then remembers nothing.
        platform.log->line("Velto ▶ datos del motor web: no se pudo: " + singleLine(error.what()));
    }
}

}  // namespace

void prepareEnvironment(Platform& platform) {
    constexpr gboolean unlessTheUserHas = FALSE;
    // Some graphics stacks show an empty window otherwise.
    g_setenv("WEBKIT_DISABLE_DMABUF_RENDERER", "1", unlessTheUserHas);
    // Newer versions of GTK decide so by themselves, but only after they have started OpenGL.
    if (processorDraws(graphicsSigns(*platform.files))) {
        g_setenv("GSK_RENDERER", "cairo", unlessTheUserHas);
    }
    if (sandboxWorks(platform)) return;
    // The engine would end the program. The page is the program's own, and reads nothing from
    // outside, so it can do without.
    platform.log->line("Velto ▶ la página se muestra sin aislamiento: el sistema no lo permite");
    g_setenv("WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS", "1", unlessTheUserHas);
}

std::string webDataFolder(const Platform& platform) {
    return platform.layout.dataFolder + "/WebView";
}

GlibReference<WebKitNetworkSession> makeSession(const Platform& platform) {
    const std::string folder = webDataFolder(platform);
    prepareWebData(platform, folder);
    GlibReference<WebKitNetworkSession> session(
        webkit_network_session_new(folder.c_str(), (folder + "/cache").c_str()));
    // The page has no use for cookies; what counts is that the engine tells this to its network
    // process, and starts it to that end. At a page's first load it would cost some 30 ms.
    webkit_cookie_manager_set_accept_policy(
        webkit_network_session_get_cookie_manager(session.get()),
        WEBKIT_COOKIE_POLICY_ACCEPT_NEVER);
    takeNetworkAway(session.get());
    return session;
}

void nameLanguage(const Platform& platform) {
    if (!platform.locale->preferredLanguages().empty()) return;
    // In the locale "C" the engine would give that as the page's language, and everything of the
    // page that formats numbers or dates would end with "invalid language tag".
    constexpr std::array<const char*, 2> languages{"en", nullptr};
    webkit_web_context_set_preferred_languages(webkit_web_context_get_default(), languages.data());
}

std::optional<std::string> bundleFolder(const Platform& platform) {
    const std::string folder = parentFolder(platform.executablePath);
    const auto bundle =
        findResourceBundle({folder, folder + "/../../share/velto", folder + "/../share/velto"},
                           [&](const std::string& path) { return platform.files->exists(path); });
    if (!bundle) return std::nullopt;
    return platform.files->resolved(*bundle);
}

}  // namespace velto::window
