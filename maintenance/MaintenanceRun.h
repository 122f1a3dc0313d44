#pragma once

#include <string>
#include <vector>

#include "cleaning/VeltoTrashService.h"
#include "maintenance/MaintenanceRules.h"
#include "maintenance/MaintenanceScheduler.h"
#include "settings/AppLanguage.h"
#include "settings/VeltoSettings.h"

namespace velto {

/// One unattended pass: it deletes for good what has been in the program's trash longer than the
/// retention, moves what the rules find into that trash, and tells the user once.
class MaintenanceRun {
public:
    /// All outlive the object.
    MaintenanceRun(Platform& platform, VeltoSettings& settings, const AppLanguage& language,
                   VeltoTrashService& trash, MaintenanceScheduler& scheduler)
        : platform_(platform),
          settings_(settings),
          language_(language),
          trash_(trash),
          scheduler_(scheduler) {}

    /// Blocks until the pass is over. A second pass at the same time, in whatever process, ends at
    /// once. Never throws: what fails is left to the next pass.
    void perform(const MaintenanceRules::Limits& limits);

private:
    void performAlone(const MaintenanceRules::Limits& limits);
    std::vector<MaintenanceRules::Candidate> moveToTrash(MaintenanceRules& rules);
    void notify(double freed, std::size_t moved);
    void tellOfFullDisk();

    Platform& platform_;
    VeltoSettings& settings_;
    const AppLanguage& language_;
    VeltoTrashService& trash_;
    MaintenanceScheduler& scheduler_;
};

/// The `kind` of the operations that a pass records in the trash.
inline constexpr const char* maintenanceKind = "maintenance";

/// What the user is told of a pass that freed `freed` GB for good and moved `moved` items; empty
/// when there is nothing to tell.
std::string maintenanceMessage(const AppLanguage& language, double freed, std::size_t moved);

}  // namespace velto
