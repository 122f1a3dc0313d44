#include <string>
#include <vector>

#include "app/prepare_folders.h"
#include "app/run_modes.h"
#include "platform/Platform.h"

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv, argv + argc);
    const auto platform = velto::makePlatform(arguments.empty() ? "" : arguments.front());
    velto::setProcessPlatform(*platform);
    const velto::RunMode mode = velto::runModeOf(arguments);
    // A reset takes the folders away whatever is wrong with them.
    if (mode != velto::RunMode::reset) velto::requireOwnFolders(*platform);
    switch (mode) {
        case velto::RunMode::maintenance:
            return velto::runMaintenance(*platform);
        case velto::RunMode::reset:
            return velto::runReset(*platform);
        case velto::RunMode::interactive:
            return velto::runInteractive(*platform);
    }
}
