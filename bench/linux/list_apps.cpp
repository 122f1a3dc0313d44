// The list of the installed applications, and the mere reading of their information property lists,
// in turn inside one process: `bench_list_apps HOME RUNS`. Prints first how many were listed, then
// one line of milliseconds per run: list, reading.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "linux/BenchPlatform.h"
#include "platform/linux/GlibDispatcher.h"
#include "platform/linux/JsonUserDefaults.h"
#include "platform/linux/LinuxLocale.h"
#include "platform/linux/LinuxRunningApplications.h"
#include "stopwatch.h"
#include "uninstall/InstalledApps.h"

namespace {

/// Bytes read: open, read to the end, close, one file after another.
std::size_t readAll(const std::vector<std::string>& paths) {
    std::array<char, 64 * 1024> buffer;
    std::size_t bytes = 0;
    for (const std::string& path : paths) {
        const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        ssize_t count = 0;
        while ((count = ::read(file, buffer.data(), buffer.size())) > 0)
            bytes += static_cast<std::size_t>(count);
        ::close(file);
    }
    return bytes;
}

}  // namespace

int main(int count, char** arguments) try {
    if (count != 3) {
        fmt::print(stderr, "usage: bench_list_apps HOME RUNS\n");
        return 2;
    }
    const auto platform = velto::benchPlatform(arguments[1]);
    platform->contents = velto::makeFileContentReader();
    platform->dispatcher = std::make_unique<velto::GlibDispatcher>();
    platform->running = std::make_unique<velto::LinuxRunningApplications>(*platform->dispatcher);
    platform->defaults = std::make_unique<velto::JsonUserDefaults>(
        *platform->files, nullptr, *platform->log, platform->layout.home + "/no settings.json");
    platform->locale = std::make_unique<velto::LinuxLocale>(
        [](const std::string&) { return std::optional<std::string>("en_US.UTF-8"); });
    platform->layout.setSystemRoot(platform->layout.home + "/no system");
    velto::AppUsage usage(*platform);
    velto::InstalledApps apps(*platform, usage);

    std::vector<std::string> paths;
    for (const velto::AppEntry& entry : apps.listApps())
        paths.push_back(entry.path + "/Contents/Info.plist");
    fmt::print("{}\n", paths.size());
    for (int run = std::atoi(arguments[2]); run > 0; --run) {
        std::size_t listed = 0, bytes = 0;
        const double list = velto::milliseconds([&] { listed = apps.listApps().size(); });
        const double read = velto::milliseconds([&] { bytes = readAll(paths); });
        if (listed != paths.size() || bytes == 0) {
            fmt::print(stderr, "bench_list_apps: {} applications, {} bytes\n", listed, bytes);
            return 1;
        }
        fmt::print("{:.3f} {:.3f}\n", list, read);
    }
    return 0;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_list_apps: {}\n", error.what());
    return 1;
}
