#include "uninstall/unused_runtimes.h"

#include "platform/PackageService.h"

namespace velto {

void removeUnusedRuntimes(ToolRunner& tools, bool ofAllUsers) {
    const ToolResult ended =
        tools.run("/usr/bin/flatpak", {"uninstall", "--unused", ofAllUsers ? "--system" : "--user",
                                       "--noninteractive", "--assumeyes"});
    requireFlatpaksSuccess(ended);
}

}  // namespace velto
