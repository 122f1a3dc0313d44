#include <fmt/format.h>

#include <string>
#include <vector>

#include "app/information.h"
#include "app/prepare_folders.h"
#include "app/program_end.h"
#include "app/run_modes.h"
#include "platform/Platform.h"
#include "settings/VeltoSettings.h"

namespace {

int run(velto::Platform& platform, const std::vector<std::string>& arguments) {
    const velto::RunMode mode = velto::runModeOf(arguments);
    // A reset takes the folders away whatever is wrong with them.
    if (mode != velto::RunMode::reset) velto::requireOwnFolders(platform);
    switch (mode) {
        case velto::RunMode::maintenance:
            return velto::runMaintenance(platform);
        case velto::RunMode::reset:
            return velto::runReset(platform);
        case velto::RunMode::interactive:
            break;
    }
    return velto::runInteractive(platform, arguments);
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    const auto platform = velto::makePlatform(arguments.empty() ? "" : arguments.front());
    velto::VeltoSettings settings(*platform->defaults, *platform->locale);
    const velto::AppLanguage language(settings);
    if (const auto information = velto::informationAskedFor(arguments, language)) {
        fmt::print("{}", *information);
        return 0;
    }
    if (velto::wantsDetailedLog(arguments)) platform->log->setDetailed();
    platform->log->line(fmt::format("Velto ▶ versión {}", velto::versionText()));
    velto::setProcessPlatform(*platform);
    const int status = run(*platform, arguments);
    velto::finishWork(*platform, status);
    return status;
}
