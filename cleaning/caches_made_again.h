#pragma once

#include <array>
#include <string_view>

namespace velto {

/// An entry of a freedesktop home's caches folder that the program it belongs to is documented to
/// make again by itself when it is gone.
struct MadeAgainCache {
    std::string_view name;      // of the entry, to the letter
    std::string_view programs;  // the executables that use it besides one of its name, by spaces
    std::string_view reason;    // what it is, and how it comes back
    std::string_view source;    // what says so
};

inline constexpr auto cachesMadeAgain = std::to_array<MadeAgainCache>({
    // clang-format off

    // Browsers: what they have fetched, compiled or drawn of pages.
    {"mozilla", "firefox firefox-bin firefox-esr", "pages' files, fetched again",
     "support.mozilla.org: How to clear the Firefox cache"},
    {"librewolf", "librewolf-bin", "pages' files, fetched again",
     "support.mozilla.org: How to clear the Firefox cache"},
    {"waterfox", "waterfox-bin", "pages' files, fetched again",
     "support.mozilla.org: How to clear the Firefox cache"},
    {"chromium", "chrome chromium-browser", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"google-chrome", "chrome", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"google-chrome-beta", "chrome", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"google-chrome-unstable", "chrome", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"BraveSoftware", "brave brave-browser", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"microsoft-edge", "msedge", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"microsoft-edge-beta", "msedge", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"microsoft-edge-dev", "msedge", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"vivaldi", "vivaldi-bin", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"vivaldi-snapshot", "vivaldi-bin", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"opera", "", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"yandex-browser", "yandex_browser", "pages' files, fetched again",
     "chromium.org: User Data Directory, cache directory on Linux"},
    {"epiphany", "epiphany-browser", "pages' files, fetched again",
     "webkitgtk.org: NetworkSession, cache directory"},
    {"qutebrowser", "QtWebEngineProcess", "pages' files, fetched again",
     "doc.qt.io: QWebEngineProfile, cachePath"},
    {"falkon", "QtWebEngineProcess", "pages' files, fetched again",
     "doc.qt.io: QWebEngineProfile, cachePath"},
    {"kio_http", "kioworker kio_http_cache_cleaner", "pages' files, fetched again",
     "docs.kde.org: KDE, Cache preferences"},

    // Fonts and pictures.
    {"fontconfig", "fc-cache", "lists of the installed fonts, made at the next use",
     "fonts-conf(5): cachedir"},
    {"thumbnails", "tumblerd", "small pictures of files, drawn when they are next shown",
     "specifications.freedesktop.org: Thumbnail Managing Standard"},
    {"mesa_shader_cache", "", "compiled shaders, compiled again when they are needed",
     "docs.mesa3d.org: Environment variables, MESA_SHADER_CACHE_DIR"},
    {"mesa_shader_cache_sf", "", "compiled shaders, compiled again when they are needed",
     "docs.mesa3d.org: Environment variables, MESA_SHADER_CACHE_DIR"},
    {"mesa_shader_cache_db", "", "compiled shaders, compiled again when they are needed",
     "docs.mesa3d.org: Environment variables, MESA_SHADER_CACHE_DIR"},
    {"nvidia", "", "compiled shaders, compiled again when they are needed",
     "NVIDIA driver README: __GL_SHADER_DISK_CACHE_PATH"},
    {"gstreamer-1.0", "", "the list of plug-ins, made at the next start",
     "gstreamer.freedesktop.org: Registry"},
    {"darktable", "", "small pictures of photos, drawn when they are next shown",
     "docs.darktable.org: program invocation, --cachedir"},
    {"matplotlib", "", "the list of fonts, made at the next start",
     "matplotlib.org: get_cachedir"},

    // Package managers: what they have fetched, fetched again when it is asked for.
    {"pip", "pip pip3 python", "fetched packages", "pip.pypa.io: Caching"},
    {"npm", "node", "fetched packages", "docs.npmjs.com: npm cache"},
    {"yarn", "node", "fetched packages", "classic.yarnpkg.com: yarn cache"},
    {"pnpm", "node", "what the registry said about packages", "pnpm.io: Settings, cacheDir"},
    {"node-gyp", "node", "fetched headers", "github.com/nodejs/node-gyp: README"},
    {"electron", "node", "fetched archives", "github.com/electron/get: README, cache"},
    {"electron-builder", "node", "fetched archives", "electron.build: Environment variables"},
    {"composer", "php", "fetched packages", "getcomposer.org: cache-dir, clear-cache"},
    {"debuginfod_client", "gdb", "fetched debugging information, dropped with age anyway",
     "debuginfod-find(1): Cache"},

    // Compilers and what reads their code: results, computed again from the sources.
    {"go-build", "go compile link", "build results", "go help cache: GOCACHE"},
    {"gopls", "", "indexes of sources", "go.dev: gopls, implementation, file cache"},
    {"golangci-lint", "", "results", "golangci-lint.run: cache"},
    {"ccache", "cc1 cc1plus", "build results", "ccache.dev: Manual, cache_dir"},
    {"sccache", "rustc", "build results", "github.com/mozilla/sccache: docs, Local"},
    {"dune", "", "build results", "dune.readthedocs.io: Dune Cache"},
    {"clangd", "", "indexes of sources", "clangd.llvm.org: Design, the index"},
    {"vscode-cpptools", "cpptools code", "compiled headers",
     "code.visualstudio.com: C/C++ settings, intelliSenseCachePath"},
    {"typescript", "node code", "fetched type declarations",
     "github.com/microsoft/TypeScript: automatic type acquisition"},
    {"black", "", "which files are unchanged", "black.readthedocs.io: Usage, caching"},
    {"pylint", "", "results", "pylint.readthedocs.io: FAQ, PYLINTHOME"},
    {"jedi", "", "parsed sources", "jedi.readthedocs.io: settings, cache_directory"},
    // clang-format on
});

}  // namespace velto
