#include "app/prepare_folders.h"

#include <array>

#include <fmt/format.h>

#include "platform/own_folder.h"
#include "platform/values/text.h"
#include "settings/VeltoSettings.h"

namespace velto {
namespace {

using Reason = UnsafeFolder::Reason;

// What the trash, the history and the cloud folder cannot do without. In the place of any other
// file a folder only means that nothing is remembered.
constexpr std::array<std::string_view, 7> neededPlaces{
    "Trash.lock",          "Trash.journal",     "Trash.waiting",  "Trash.reserve",
    "Trash/manifest.json", "history.json.lock", "cloud.json.lock"};

std::string targetOf(const FileManager& files, const std::string& link) {
    try {
        return files.resolved(link);
    } catch (const FileError&) {
        return "?";  // it leads nowhere
    }
}

std::string linkText(const std::string& path, const Platform& platform,
                     const AppLanguage& language) {
    const std::string target = targetOf(*platform.files, path);
    std::string text = fmt::format(
        fmt::runtime(language.text(
            "la carpeta de datos {} es un enlace (a {}), y Velto no guarda nada a través de un "
            "enlace. No se ha tocado nada. Para seguir, quita el enlace y mueve a su sitio la "
            "carpeta a la que lleva.",
            "the data folder {} is a link (to {}), and Velto keeps nothing behind a link. Nothing "
            "was touched. To go on, remove the link and move the folder that it leads to into its "
            "place.")),
        singleLine(path), singleLine(target));
    if (platform.layout.kind == HomeLayout::Kind::freedesktop) {
        text += language.text(
            " Para tenerla en otro disco, indica su carpeta superior con XDG_DATA_HOME.",
            " To have it on another disk, name the folder above it with XDG_DATA_HOME.");
    }
    return text;
}

void close(Log& log, const std::string& folder) {
    if (makeOwnFolder(folder)) {
        log.line("Velto ▶ carpeta cerrada a otros usuarios: " + singleLine(folder));
    }
}

void sweep(Log& log, const std::string& folder) {
    if (const int count = removeStaleTemporaries(folder)) {
        log.line(fmt::format("Velto ▶ restos de guardados interrumpidos eliminados: {}", count));
    }
}

void tidy(Log& log, const std::string& folder) {
    for (const std::string& path : closeToOthers(folder))
        log.line("Velto ▶ cerrado a otros usuarios: " + singleLine(path));
    sweep(log, folder);
}

void clearWay(Log& log, const std::string& path) {
    try {
        if (!makeWay(path)) return;
        log.line("Velto ▶ apartado lo que ocupaba el lugar de " + singleLine(path));
    } catch (const FileError& error) {
        // Whoever needs the place will say so too.
        log.line("Velto ▶ carpetas propias: no se pudo: " + singleLine(error.what()));
    }
}

void prepareData(const Platform& platform) {
    const HomeLayout& layout = platform.layout;
    close(*platform.log, layout.dataFolder);
    for (const std::string& folder : {layout.dataFolder, layout.trashFolder})
        tidy(*platform.log, folder);
    sweep(*platform.log, layout.dataFolder + "/Growth");
    for (const std::string_view name : neededPlaces)
        clearWay(*platform.log, fmt::format("{}/{}", layout.dataFolder, name));
    sweep(*platform.log, layout.agentsFolder);  // shared with other programs
}

/// Made with the first setting that is saved, and often a link to where the user keeps settings.
void prepareSettings(const Platform& platform) {
    if (platform.settingsFolder.empty() || !platform.files->exists(platform.settingsFolder)) return;
    const std::string folder = platform.files->resolved(platform.settingsFolder);
    close(*platform.log, folder);
    tidy(*platform.log, folder);
}

}  // namespace

std::optional<UnsafeFolder> prepareOwnFolders(const Platform& platform) {
    try {
        for (const auto prepare : {prepareSettings, prepareData}) {
            try {
                prepare(platform);
            } catch (const FileError& error) {
                platform.log->line("Velto ▶ carpetas propias: no se pudo: " +
                                   singleLine(error.what()));
            }
        }
        return std::nullopt;
    } catch (const UnsafeFolder& unsafe) {
        return unsafe;
    }
}

std::string textOf(const UnsafeFolder& unsafe, const Platform& platform,
                   const AppLanguage& language) {
    if (unsafe.reason() == Reason::link) return linkText(unsafe.path(), platform, language);
    const std::string path = singleLine(unsafe.path());
    if (unsafe.reason() == Reason::otherOwner) {
        return fmt::format(
            fmt::runtime(language.text(
                "la carpeta {} pertenece a otro usuario, que decidiría lo que Velto borra. No se "
                "ha tocado nada. Inicia Velto con la cuenta de ese usuario, aparta la carpeta o "
                "haz que vuelva a ser tuya (chown).",
                "the folder {} belongs to another user, who could decide what Velto deletes. "
                "Nothing was touched. Start Velto as that user, put the folder aside, or make it "
                "yours again (chown).")),
            path);
    }
    return fmt::format(
        fmt::runtime(language.text(
            "otros usuarios pueden escribir en la carpeta {}, y ese permiso no se puede quitar. "
            "No se ha borrado nada. Apártala, o llévala a un disco con permisos.",
            "other users may write in the folder {}, and that permission cannot be taken away. "
            "Nothing was deleted. Put it aside, or move it to a disk that has permissions.")),
        path);
}

void requireOwnFolders(Platform& platform) {
    const auto unsafe = prepareOwnFolders(platform);
    if (!unsafe) return;
    platform.log->line("Velto ▶ carpeta rechazada: " + singleLine(unsafe->path()));
    VeltoSettings settings(*platform.defaults, *platform.locale);
    fatal(textOf(*unsafe, platform, AppLanguage(settings)));
}

}  // namespace velto
