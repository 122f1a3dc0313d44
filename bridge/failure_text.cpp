#include "bridge/failure_text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

#include <fmt/format.h>

#include "cleaning/TrashRecords.h"
#include "maintenance/MaintenanceScheduler.h"
#include "platform/FileManager.h"
#include "platform/values/scratch_name.h"
#include "platform/values/text.h"

namespace velto {
namespace {

/// A sentence about a file, and one for when there is none to name. "{}" is the file.
struct Sentence {
    std::string_view named;
    std::string_view unnamed;
};

struct Row {
    std::array<int, 4> codes;  // errno; 0 where there are fewer
    Sentence spanish;
    Sentence english;
};

constexpr std::array rows{
    Row{{ENOSPC, EDQUOT},
        {"No queda espacio libre en el disco.", "No queda espacio libre en el disco."},
        {"There is no free space left on the disk.", "There is no free space left on the disk."}},
    Row{{EROFS},
        {"El disco en el que está «{}» es de solo lectura.", "El disco es de solo lectura."},
        {"The disk that holds “{}” is read-only.", "The disk is read-only."}},
    Row{{EACCES, EPERM},
        {"Velto no tiene permiso para cambiar «{}».",
         "Velto no tiene permiso para cambiar sus propios datos."},
        {"Velto has no permission to change “{}”.",
         "Velto has no permission to change its own data."}},
    Row{{EBUSY, ETXTBSY, EWOULDBLOCK},
        {"«{}» está en uso. Inténtalo de nuevo cuando no lo esté.",
         "Otro programa está usando los archivos. Inténtalo de nuevo en un momento."},
        {"“{}” is in use. Try again when it is not.",
         "Another program is using the files. Try again in a moment."}},
    Row{{ENOENT},
        {"«{}» ya no está en su sitio.", "Faltan en el disco datos de Velto."},
        {"“{}” is not in its place any more.", "Data of Velto are missing from the disk."}},
    Row{{EEXIST, ENOTEMPTY},
        {"En el lugar de «{}» ya hay otra cosa.", "En ese lugar ya hay otra cosa."},
        {"Something else stands in the place of “{}”.", "Something else stands in that place."}},
    Row{{ENOTDIR},
        {"«{}» no es una carpeta, y ahí tendría que haber una.",
         "Donde Velto guarda sus datos hay algo que no es una carpeta."},
        {"“{}” is no folder, and one has to be there.",
         "Something that is no folder stands where Velto keeps its data."}},
    Row{{ENAMETOOLONG},
        {"El nombre de «{}» es demasiado largo para el disco.",
         "Un nombre es demasiado largo para el disco."},
        {"The name of “{}” is too long for the disk.", "A name is too long for the disk."}},
    Row{{EIO},
        {"El disco no pudo leer o escribir «{}». Puede que esté dañado.",
         "El disco no pudo leer o escribir los datos de Velto. Puede que esté dañado."},
        {"The disk could not read or write “{}”. It may be damaged.",
         "The disk could not read or write the data of Velto. It may be damaged."}},
    Row{{ENOTSUP, EOPNOTSUPP, EXDEV},
        {"«{}» contiene algo que no se puede mover a otro disco.",
         "Hay algo que no se puede mover a otro disco."},
        {"“{}” holds something that cannot be moved to another disk.",
         "Something cannot be moved to another disk."}},
    Row{{ETIMEDOUT, ESTALE, EHOSTDOWN, ENOTCONN},
        {"El disco en el que está «{}» no responde.", "El disco no responde."},
        {"The disk that holds “{}” does not answer.", "The disk does not answer."}},
    Row{{EMFILE, ENFILE, ENOMEM},
        {"El sistema no da abasto ahora mismo. Inténtalo de nuevo más tarde.",
         "El sistema no da abasto ahora mismo. Inténtalo de nuevo más tarde."},
        {"The system is overloaded right now. Try again later.",
         "The system is overloaded right now. Try again later."}},
};

constexpr Row mounted{
    {},
    {"«{}» tiene otro disco o carpeta montados dentro. No se ha borrado ni movido.",
     "Hay otro disco o carpeta montados en medio. No se ha borrado ni movido nada."},
    {"Another disk or folder is mounted inside “{}”. It was neither deleted nor moved.",
     "Another disk or folder is mounted in between. Nothing was deleted or moved."}};

/// What hardly anybody meets; the number helps whoever is asked for help.
FailureText anythingElse(const std::optional<std::string>& file, int code) {
    if (!file) {
        return {fmt::format("El sistema no dejó a Velto usar sus propios datos (código {}).", code),
                fmt::format("The system did not let Velto use its own data (code {}).", code)};
    }
    return {fmt::format("El sistema no lo permitió con «{}» (código {}).", *file, code),
            fmt::format("The system did not allow it with “{}” (code {}).", *file, code)};
}

/// The item's own name within its name in the trash; nothing for what else lies there.
std::optional<std::string> nameInTrash(std::string_view belowTrash) {
    constexpr std::size_t idLength = 10;  // "it" and eight digits
    const std::size_t slash = belowTrash.find('/');
    if (slash == std::string_view::npos) return std::nullopt;
    std::string_view name = belowTrash.substr(slash + 1);
    name = name.substr(0, name.find('/'));
    if (!name.starts_with("it") || name.size() <= idLength || name[idLength] != '-') {
        return std::nullopt;
    }
    return validUtf8(name.substr(idLength + 1));
}

bool hasNameOfOurs(std::string_view path) {
    while (!path.empty()) {
        const std::string_view name = path.substr(0, path.find('/'));
        if (name.starts_with(".velto-") || isScratchName(std::string(name))) return true;
        path.remove_prefix(std::min(path.size(), name.size() + 1));
    }
    return false;
}

/// The user's file that a path stands for; nothing for what only this program knows.
std::optional<std::string> fileOfUser(const std::string& path, const HomeLayout& layout) {
    if (!path.starts_with('/')) return std::nullopt;
    if (path.starts_with(layout.trashFolder + "/")) {
        return nameInTrash(std::string_view(path).substr(layout.trashFolder.size() + 1));
    }
    if (path.starts_with(layout.trashFolder) || isAtOrBelow(path, layout.dataFolder) ||
        hasNameOfOurs(path)) {
        return std::nullopt;
    }
    return shownPath(path, layout.home);
}

std::string filled(const Sentence& sentence, const std::optional<std::string>& file) {
    return file ? fmt::format(fmt::runtime(sentence.named), *file) : std::string(sentence.unnamed);
}

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

FailureText fileText(const FileError& error, const HomeLayout& layout) {
    if (error.code() == EWOULDBLOCK && error.attempt() == "lock") {
        return {"Otra copia de Velto está usando la Papelera. Inténtalo de nuevo en un momento.",
                "Another Velto is using the trash. Try again in a moment."};
    }
    if (error.code() == ELOOP) {
        // Also where only this program looks: the user has to take the link away.
        const std::string path = shownPath(error.path(), layout.home);
        return {fmt::format("«{}» es un enlace y no se sigue. No se ha tocado nada.", path),
                fmt::format("“{}” is a link and is not followed. Nothing was touched.", path)};
    }
    const auto file = fileOfUser(error.path(), layout);
    if (dynamic_cast<const SomethingMounted*>(&error) != nullptr) {
        return {filled(mounted.spanish, file), filled(mounted.english, file)};
    }
    const auto row = std::ranges::find_if(rows, [&](const Row& each) {
        return error.code() != 0 && std::ranges::find(each.codes, error.code()) != each.codes.end();
    });
    if (row == rows.end()) return anythingElse(file, error.code());
    return {filled(row->spanish, file), filled(row->english, file)};
}

FailureText schedulerText(const SchedulerError& error) {
    switch (error.reason()) {
        case SchedulerError::Reason::programPlace:
            return {
                "La carpeta de Velto tiene un nombre con el que este sistema no puede iniciar "
                "programas.",
                "Velto lies in a folder with a name from which this system cannot start "
                "programs."};
        case SchedulerError::Reason::passingPlace:
            return {"Lleva primero Velto a la carpeta Aplicaciones y ábrelo desde allí.",
                    "First move Velto to the Applications folder and open it from there."};
        case SchedulerError::Reason::toolMissing:
            return {"Falta la parte del sistema que inicia programas a su hora.",
                    "The part of the system that starts programs on time is missing."};
        case SchedulerError::Reason::toolRefused:
            break;
    }
    return {"El sistema no aceptó el horario del mantenimiento.",
            "The system did not accept the schedule of the maintenance."};
}

FailureText waitsText(const ItemWaits& error, const std::string& home) {
    const std::string name = validUtf8(error.item().name);
    const std::string place = shownPath(error.path(), home);
    return {
        fmt::format("«{}» espera a que se pueda llegar otra vez a «{}»: un movimiento entre los "
                    "dos sitios quedó interrumpido. No se ha perdido nada.",
                    name, place),
        fmt::format("“{}” waits until “{}” can be reached again: a move between the two places "
                    "was cut off. Nothing is lost.",
                    name, place)};
}

}  // namespace

std::string shownPath(const std::string& path, const std::string& home) {
    const bool isInHome = path != home && isAtOrBelow(path, home);
    return validUtf8(isInHome ? fmt::format("~{}", path.substr(home.size())) : path);
}

FailureText failureText(const std::exception& error, const HomeLayout& layout) {
    if (const auto* blocked = dynamic_cast<const ReturnBlocked*>(&error)) {
        return blockedText(*blocked, layout.home);
    }
    if (const auto* waits = dynamic_cast<const ItemWaits*>(&error)) {
        return waitsText(*waits, layout.home);
    }
    if (const auto* file = dynamic_cast<const FileError*>(&error)) return fileText(*file, layout);
    if (const auto* schedule = dynamic_cast<const SchedulerError*>(&error)) {
        return schedulerText(*schedule);
    }
    if (dynamic_cast<const TrashError*>(&error) != nullptr) return {error.what(), error.what()};
    return {"Algo ha fallado dentro de Velto.", "Something went wrong inside Velto."};
}

}  // namespace velto
