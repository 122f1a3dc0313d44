#include <cerrno>
#include <utility>

#include <fmt/format.h>

#include "bridge/AboutIntent.h"
#include "bridge/CleanupOutcome.h"
#include "bridge/FolderIntents.h"
#include "bridge/GrowthIntents.h"
#include "bridge/JSBridge.h"
#include "bridge/MaintenanceIntents.h"
#include "bridge/MeasurementIntents.h"
#include "bridge/UsageIntents.h"
#include "bridge/events.h"
#include "bridge/failure_text.h"
#include "cleaning/own_folder.h"
#include "maintenance/MaintenanceScheduler.h"
#include "platform/values/text.h"

namespace velto {

namespace {

/// Where the data really lie when the data folder is a link; empty when it is none.
std::string linkedData(const Platform& platform) {
    const std::string& folder = platform.layout.dataFolder;
    const auto attributes = platform.files->attributes(folder);
    if (!attributes || attributes->kind != FileKind::symbolicLink) return {};
    try {
        return platform.files->resolved(folder);
    } catch (const FileError&) {
        return {};  // it leads nowhere, so there are no data
    }
}

/// What a reset could not take away.
struct Remains {
    bool hasAgent = false;
    std::vector<FileError> data;
    std::string elsewhere;  // where the data folder led as a link

    bool isNothing() const { return !hasAgent && data.empty() && elsewhere.empty(); }
};

/// What lies in the data folder and beside the trash: `isTrashGone` false leaves the trash and its
/// lock.
void removeOtherData(Platform& platform, bool isTrashGone, std::vector<FileError>& failures) {
    FileMover& mover = *platform.mover;
    const std::string& path = platform.layout.dataFolder;
    try {
        const auto above = openFolderAbove(mover, path);
        const auto folder = above ? openOwnFolder(mover, path) : nullptr;
        if (!folder) return;
        const std::string trash(lastPathComponent(platform.layout.trashFolder));
        for (const std::string& name : mover.list(*folder)) {
            if (!isTrashGone && (name == trash || name == trash + ".lock")) continue;
            try {
                mover.removeAll(*folder, name);
            } catch (const FileError& error) {
                failures.push_back(error);
            }
        }
        const std::string own(lastPathComponent(path));
        const bool isGone = mover.removeEmptyFolder(*above, own) || !mover.attributes(*above, own);
        if (!isGone && failures.empty()) failures.emplace_back("remove", path, ENOTEMPTY);
    } catch (const FileError& error) {
        failures.push_back(error);
    }
}

std::vector<FileError> removeData(Platform& platform, VeltoTrashService& trash, bool isLink) {
    std::vector<FileError> failures;
    try {
        // Of a link only the link is the program's to remove.
        if (isLink) {
            platform.files->removeAll(platform.layout.dataFolder);
            return failures;
        }
        std::vector<FileError> others;
        failures =
            trash.erase([&](bool isTrashGone) { removeOtherData(platform, isTrashGone, others); });
        // A folder that holds what stays was named already.
        for (const FileError& error : others) {
            const bool isKnown = !failures.empty() && error.code() == ENOTEMPTY;
            if (!isKnown) failures.push_back(error);
        }
    } catch (const FileError& error) {
        failures.push_back(error);
    }
    return failures;
}

void tell(Log& log, const Remains& remains, const std::string& folder) {
    for (const FileError& error : remains.data)
        log.line("Velto ▶ reset: no se pudo: " + singleLine(error.what()));
    if (remains.hasAgent) log.line("Velto ▶ reset incompleto: el LaunchAgent sigue instalado");
    if (!remains.data.empty()) {
        log.line("Velto ▶ reset incompleto: quedan datos en " + singleLine(folder));
    }
    if (!remains.elsewhere.empty()) {
        // What a link leads to is not the program's to erase.
        log.line(
            "Velto ▶ reset incompleto: la carpeta de datos era un enlace, que se ha quitado; "
            "los datos siguen en " +
            singleLine(remains.elsewhere));
    }
    if (remains.isNothing()) log.line("Velto ▶ reset completo: LaunchAgent y datos eliminados");
}

FailureText dataText(const std::vector<FileError>& failures, const HomeLayout& layout) {
    const FileError& first = failures.front();
    if (first.code() == EWOULDBLOCK) return failureText(first, layout);
    const std::string path = singleLine(shownPath(first.path(), layout.home));
    const std::size_t others = failures.size() - 1;
    return {fmt::format("No se ha podido borrar «{}»{}.", path,
                        others > 0 ? fmt::format(" (y {} más)", others) : ""),
            fmt::format("“{}”{} could not be removed.", path,
                        others > 0 ? fmt::format(" (and {} more)", others) : "")};
}

std::optional<FailureText> textOf(const Remains& remains, const HomeLayout& layout) {
    if (remains.isNothing()) return std::nullopt;
    FailureText text;
    const auto add = [&](const FailureText& more) {
        text.spanish += (text.spanish.empty() ? "" : " ") + more.spanish;
        text.english += (text.english.empty() ? "" : " ") + more.english;
    };
    if (remains.hasAgent) {
        add({"El mantenimiento automático sigue instalado.",
             "Automatic maintenance is still installed."});
    }
    if (!remains.data.empty()) add(dataText(remains.data, layout));
    if (!remains.elsewhere.empty()) {
        const std::string place = singleLine(shownPath(remains.elsewhere, layout.home));
        add({fmt::format("Los datos siguen en «{}», a donde llevaba un enlace.", place),
             fmt::format("The data are still in “{}”, where a link led.", place)});
    }
    return text;
}

}  // namespace

std::optional<FailureText> resetLocalData(Platform& platform, VeltoTrashService& trash) {
    Log& log = *platform.log;
    Remains remains;
    try {
        MaintenanceScheduler(platform).remove();
    } catch (const FileError& error) {
        log.line("Velto ▶ reset: no se pudo: " + singleLine(error.what()));
        remains.hasAgent = true;
    }
    const auto folder = platform.files->attributes(platform.layout.dataFolder);
    const std::string elsewhere = linkedData(platform);
    const bool isLink = folder && folder->kind == FileKind::symbolicLink;
    remains.data = removeData(platform, trash, isLink);
    if (remains.data.empty()) remains.elsewhere = elsewhere;
    tell(log, remains, platform.layout.dataFolder);
    return textOf(remains, platform.layout);
}

/// In its turn among the work on the trash: nothing is on its way into a folder that goes, and what
/// is asked for afterwards finds an empty trash.
void JSBridge::onResetVelto(const Payload&) {
    Platform& platform = platform_;
    ++resetsAhead_;
    runCleanup(
        [&platform, &usage = usage_, saves = saves_](CleanupServices& services,
                                                     CleanupOutcome& outcome) {
            // What was asked for before would come back after the folder has gone.
            saves.finish();
            // Before its file goes: a use noted in between is written without the older ones.
            usage.forget();
            outcome.failure = resetLocalData(platform, services.trash);
            services.history.forget();
        },
        [](JSBridge& bridge, const CleanupOutcome& outcome) {
            bridge.forgetLocalData(outcome.failure);
        });
}

void JSBridge::forgetLocalData(const std::optional<FailureText>& remains) {
    --resetsAhead_;
    exclusions_.clear();
    bootState.reset();
    lists_.forget();
    folderIntents_->forget();
    growthIntents_->tellAnew();
    measurementIntents_->forget();
    evaluate(events::exclusions(exclusions_.paths()));
    maintenanceIntents_->tell();  // nothing is scheduled any more
    aboutIntent_->onAbout({});
    usageIntents_->onAppUses({});
    if (remains) {
        toast("Velto no se ha restablecido del todo", "Velto has not been reset completely",
              language_.text(remains->spanish, remains->english));
        return;
    }
    toast("Velto restablecida", "Velto has been reset",
          language_.text("Se han eliminado el mantenimiento automático y todos los datos locales.",
                         "Automatic maintenance and all local data have been removed."));
}

}  // namespace velto
