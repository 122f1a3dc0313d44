#include "maintenance/MaintenanceRun.h"

#include <exception>

#include <fmt/format.h>

#include "maintenance/MaintenanceRecord.h"
#include "maintenance/TakenItems.h"
#include "maintenance/full_disk_notice.h"
#include "maintenance/holdings.h"
#include "platform/values/units.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

constexpr double duplicatesInterval = 30 * secondsPerDay;

}  // namespace

std::string maintenanceMessage(const AppLanguage& language, double freed, std::size_t moved) {
    std::string_view text;
    if (freed > 0 && moved > 0) {
        text =
            language.text("Se han liberado {0} GB y {1} elementos esperan en la Papelera de Velto.",
                          "{0} GB freed, and {1} items wait in Velto Trash.");
    } else if (freed > 0) {
        text = language.text("Se han liberado {0} GB de la Papelera de Velto.",
                             "{0} GB freed from Velto Trash.");
    } else if (moved > 0) {
        text = language.text("{1} elementos esperan en la Papelera de Velto.",
                             "{1} items wait in Velto Trash.");
    }
    return fmt::format(fmt::runtime(text), tenths(freed), moved);
}

void MaintenanceRun::perform(const MaintenanceRules::Limits& limits) {
    try {
        const std::string folder = platform_.layout.dataFolder;
        platform_.files->createFolders(folder);
        const auto alone = platform_.mover->lock(folder + "/maintenance.lock", false);
        if (alone == nullptr) {
            platform_.log->line("Velto ▶ mantenimiento: ya hay una pasada en marcha");
            return;
        }
        performAlone(limits);
    } catch (const std::exception& error) {
        platform_.log->line(fmt::format("Velto ▶ mantenimiento interrumpido: {}", error.what()));
    }
}

void MaintenanceRun::performAlone(const MaintenanceRules::Limits& limits) {
    TakenItems taken(*platform_.files, platform_.layout);
    const KeptFor kept = keptFor(settings_);
    const double freed = trash_.purgeExpired(
        kept.retention, [&](const TrashItem& item) { return kept.days(taken.ruleOf(item)); });
    std::vector<Operation> operations;
    CleaningRules cleaning(platform_, [&] { return limits.hasAccess; });
    const auto mover = [&](const std::vector<std::string>& paths,
                           const MaintenanceRules::Sizes& sizes) {
        operations.push_back(trash_.moveToTrash(paths, maintenanceKind, sizes));
        return operations.back().gb;
    };
    MaintenanceRules rules(platform_, mover, cleaning, limits);
    const std::size_t moved = moveToTrash(rules).size();
    double movedGB = 0;
    for (const Operation& operation : operations) {
        taken.note(operation, rules.rulesByPath());
        movedGB += operation.gb;
    }
    taken.keepOnly(trash_.items());
    taken.save();
    platform_.log->line(
        fmt::format("Velto ▶ mantenimiento: {} GB liberados, {} elementos a la Papelera de Velto",
                    tenths(freed), moved));
    rememberMaintenance(*platform_.files, platform_.layout,
                        {.ts = platform_.clock->now(),
                         .freed = freed,
                         .moved = static_cast<std::int64_t>(moved),
                         .movedGB = movedGB});
    notify(freed, moved);
    tellOfFullDisk();
}

/// Duplicates are handled unattended at most once in 30 days, whatever the schedule.
std::vector<MaintenanceRules::Candidate> MaintenanceRun::moveToTrash(MaintenanceRules& rules) {
    MaintenanceRules::Switches switches = settings_.rules();
    bool& duplicates = switches["duplicates"];
    const double sinceLast = platform_.clock->now() - settings_.duplicatesRound();
    duplicates = duplicates && sinceLast >= duplicatesInterval;
    auto moved = rules.run(switches);
    // A round that could not be made is made by the next pass.
    if (rules.hasLookedForDuplicates()) settings_.setDuplicatesRound(platform_.clock->now());
    return moved;
}

void MaintenanceRun::notify(double freed, std::size_t moved) {
    const std::string message = maintenanceMessage(language_, freed, moved);
    if (message.empty()) return;
    scheduler_.notify(std::string(language_.text("Mantenimiento de Velto completado",
                                                 "Velto maintenance complete")),
                      message);
}

void MaintenanceRun::tellOfFullDisk() {
    const auto available = platform_.volumes->availableCapacity(platform_.layout.home);
    const FullDiskNotice notice = fullDiskNotice(settings_.fullDiskGB(), available,
                                                 settings_.fullDiskTold(), platform_.clock->now());
    if (notice.told != settings_.fullDiskTold()) settings_.setFullDiskTold(notice.told);
    if (!notice.isDue) return;
    platform_.notifications->post("velto.disk." + newUUID(), fullDiskTitle(language_),
                                  fullDiskMessage(language_, *available));
}

}  // namespace velto
