#include "bridge/failure_text.h"

#include <cerrno>

#include <fmt/format.h>

#include "cleaning/TrashRecords.h"
#include "platform/FileManager.h"
#include "platform/values/text.h"

namespace velto {
namespace {

FailureText blockedText(const ReturnBlocked& error, const std::string& home) {
    const std::string name = validUtf8(error.item().name);
    const std::string obstacle = shownPath(error.path(), home);
    const bool isLink = error.code() == ELOOP;
    return {fmt::format("«{}» sigue en la Papelera: «{}» {}. Puedes restaurarlo en otra carpeta.",
                        name, obstacle, isLink ? "es ahora un enlace" : "ya no es una carpeta"),
            fmt::format("“{}” is still in Velto Trash: “{}” is {}. You can restore it to another "
                        "folder.",
                        name, obstacle, isLink ? "a link now" : "no folder any more")};
}

}  // namespace

std::string shownPath(const std::string& path, const std::string& home) {
    const bool isInHome = path != home && isAtOrBelow(path, home);
    return validUtf8(isInHome ? fmt::format("~{}", path.substr(home.size())) : path);
}

FailureText failureText(const std::exception& error, const std::string& home) {
    if (const auto* blocked = dynamic_cast<const ReturnBlocked*>(&error)) {
        return blockedText(*blocked, home);
    }
    const auto* file = dynamic_cast<const FileError*>(&error);
    if (file != nullptr && file->code() == EWOULDBLOCK && file->attempt() == "lock") {
        return {"Otra copia de Velto está usando la Papelera. Inténtalo de nuevo en un momento.",
                "Another Velto is using the trash. Try again in a moment."};
    }
    if (file != nullptr && file->code() == ELOOP) {
        const std::string path = shownPath(file->path(), home);
        return {fmt::format("«{}» es un enlace y no se sigue. No se ha tocado nada.", path),
                fmt::format("“{}” is a link and is not followed. Nothing was touched.", path)};
    }
    return {error.what(), error.what()};
}

}  // namespace velto
