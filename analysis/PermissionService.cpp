#include "analysis/PermissionService.h"

#include <cerrno>

#include <fmt/format.h>

namespace velto {

bool PermissionService::hasAccess() const {
    if (!platform_.layout.hasPrivacyGate) return true;
    for (const std::string& folder : platform_.layout.accessProbes) {
        try {
            platform_.files->list(folder);
            platform_.log->line(
                fmt::format("Velto ▶ permiso de disco: concedido (lee {})", folder));
            return true;
        } catch (const FileError& error) {
            if (error.code() == ENOENT) continue;
            platform_.log->line(fmt::format(
                "Velto ▶ permiso de disco: denegado al leer {} (código {})", folder, error.code()));
            return false;
        }
    }
    platform_.log->line("Velto ▶ permiso de disco: sin rutas de prueba legibles en este Mac");
    return false;
}

bool PermissionService::resetGrant() const {
    const ToolResult result = platform_.tools->run(
        "/usr/bin/tccutil", {"reset", "SystemPolicyAllFiles", platform_.bundleIdentifier});
    if (!result.started) {
        platform_.log->line(
            fmt::format("Velto ▶ no se pudo restablecer el permiso: {}", result.startError));
        return false;
    }
    platform_.log->line(
        fmt::format("Velto ▶ permiso restablecido (tccutil {})", result.exitStatus));
    return result.exitStatus == 0;
}

}  // namespace velto
