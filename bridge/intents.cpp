#include <array>

#include <fmt/format.h>

#include "bridge/AboutIntent.h"
#include "bridge/AccessIntents.h"
#include "bridge/AppIntents.h"
#include "bridge/CleaningIntents.h"
#include "bridge/DeleteNowIntent.h"
#include "bridge/ExclusionIntents.h"
#include "bridge/FolderIntents.h"
#include "bridge/FurtherIntents.h"
#include "bridge/GrowthIntents.h"
#include "bridge/JSBridge.h"
#include "bridge/LeftBehindIntent.h"
#include "bridge/MaintenanceIntents.h"
#include "bridge/MeasurementIntents.h"
#include "bridge/PackageIntents.h"
#include "bridge/PreviewIntents.h"
#include "bridge/QuitIntents.h"
#include "bridge/SelectionIntents.h"
#include "bridge/SettingsIntents.h"
#include "bridge/SharingIntents.h"
#include "bridge/SystemIntents.h"
#include "bridge/ThemeIntents.h"
#include "bridge/TrashIntents.h"
#include "bridge/UsageIntents.h"
#include "bridge/events.h"

namespace velto {

/// Every intent with its handler, in the order of comparison. A row without one is recognised and
/// recorded; "webReady" has nothing to do, since the page has its first state already.
struct IntentTable {
    using Handler = void (*)(JSBridge&, const Payload&);
    struct Row {
        std::string_view name;
        Handler handler;
    };

    template <auto intent>
    static void own(JSBridge& bridge, const Payload& payload) {
        (bridge.*intent)(payload);
    }
    template <auto intents, auto intent>
    static void at(JSBridge& bridge, const Payload& payload) {
        (*(bridge.*intents).*intent)(payload);
    }
    static constexpr auto access = &JSBridge::accessIntents_;
    static constexpr auto apps = &JSBridge::appIntents_;
    static constexpr auto settings = &JSBridge::settingsIntents_;
    static constexpr auto maintenance = &JSBridge::maintenanceIntents_;
    static constexpr auto system = &JSBridge::systemIntents_;
    static constexpr auto cleaning = &JSBridge::cleaningIntents_;
    static constexpr auto trash = &JSBridge::trashIntents_;
    static constexpr auto selection = &JSBridge::selectionIntents_;
    static constexpr auto packages = &JSBridge::packageIntents_;
    static constexpr auto quitting = &JSBridge::quitIntents_;
    static constexpr auto theme = &JSBridge::themeIntents_;
    static constexpr auto leftovers = &JSBridge::leftBehindIntent_;
    static constexpr auto folders = &JSBridge::folderIntents_;
    static constexpr auto growing = &JSBridge::growthIntents_;
    static constexpr auto measured = &JSBridge::measurementIntents_;
    static constexpr auto deletingNow = &JSBridge::deleteNowIntent_;
    static constexpr auto exclusions = &JSBridge::exclusionIntents_;
    static constexpr auto further = &JSBridge::furtherIntents_;
    static constexpr auto about = &JSBridge::aboutIntent_;
    static constexpr auto usage = &JSBridge::usageIntents_;
    static constexpr auto sharing = &JSBridge::sharingIntents_;
    static constexpr auto previewing = &JSBridge::previewIntents_;

    static constexpr auto rows = std::to_array<Row>({
        {"webReady", nullptr},
        {"settings", at<settings, &SettingsIntents::onSettings>},
        {"setTheme", at<theme, &ThemeIntents::onSetTheme>},
        {"scan", own<&JSBridge::onScan>},
        {"systemWatch", at<system, &SystemIntents::onSystemWatch>},
        {"appsList", at<apps, &AppIntents::onAppsList>},
        {"appAnalysis", at<apps, &AppIntents::onAppAnalysis>},
        {"uninstall", at<apps, &AppIntents::onUninstall>},
        {"revealPath", own<&JSBridge::onRevealPath>},
        {"deleteFiles", at<trash, &TrashIntents::onDeleteFiles>},
        {"undoLast", at<trash, &TrashIntents::onUndoLast>},
        {"restoreItem", at<trash, &TrashIntents::onRestoreItem>},
        {"purgeItem", at<trash, &TrashIntents::onPurgeItem>},
        {"purgeTrash", at<trash, &TrashIntents::onPurgeTrash>},
        {"clearHistory", at<trash, &TrashIntents::onClearHistory>},
        {"openFDASettings", at<access, &AccessIntents::onOpenAccessSettings>},
        {"requestAccess", at<access, &AccessIntents::onRequestAccess>},
        {"checkAccess", at<access, &AccessIntents::onCheckAccess>},
        {"resetAccess", at<access, &AccessIntents::onResetAccess>},
        {"addExclusion", at<exclusions, &ExclusionIntents::onAddExclusion>},
        {"scanCleanables", at<cleaning, &CleaningIntents::onScanCleanables>},
        {"cleanPaths", at<trash, &TrashIntents::onCleanPaths>},
        {"moveCloud", at<cleaning, &CleaningIntents::onMoveCloud>},
        {"resetVelto", own<&JSBridge::onResetVelto>},
        {"goView", own<&JSBridge::onGoView>},
        {"setAutoMaintenance", at<settings, &SettingsIntents::onSettings>},
        {"exclusions", at<exclusions, &ExclusionIntents::onExclusions>},
        {"removeExclusion", at<exclusions, &ExclusionIntents::onRemoveExclusion>},
        {"maintenanceStatus", at<maintenance, &MaintenanceIntents::onMaintenanceStatus>},
        {"measureMaintenance", at<maintenance, &MaintenanceIntents::onMeasureMaintenance>},
        {"foretellCaches", at<maintenance, &MaintenanceIntents::onForetellCaches>},
        {"keepCaches", at<maintenance, &MaintenanceIntents::onKeepCaches>},
        {"fullDiskNotice", at<maintenance, &MaintenanceIntents::onFullDiskNotice>},
        {"restoreItemTo", at<trash, &TrashIntents::onRestoreItemTo>},
        {"appPackage", at<packages, &PackageIntents::onAppPackage>},
        {"removePackage", at<packages, &PackageIntents::onRemovePackage>},
        {"removeUnusedRuntimes", at<packages, &PackageIntents::onRemoveUnusedRuntimes>},
        {"giveUpWaiting", at<trash, &TrashIntents::onGiveUpWaiting>},
        {"quitApplication", at<quitting, &QuitIntents::onQuitApplication>},
        {"endApplication", at<quitting, &QuitIntents::onEndApplication>},
        {"leftBehind", at<leftovers, &LeftBehindIntent::onLeftBehind>},
        {"folder", at<folders, &FolderIntents::onFolder>},
        {"searchFolders", at<folders, &FolderIntents::onSearchFolders>},
        {"growth", at<growing, &GrowthIntents::onGrowth>},
        {"folderGrowth", at<growing, &GrowthIntents::onFolderGrowth>},
        {"forgetGrowth", at<growing, &GrowthIntents::onForgetGrowth>},
        {"continueComparison", at<measured, &MeasurementIntents::onContinueComparison>},
        {"stopComparison", at<measured, &MeasurementIntents::onStopComparison>},
        {"stopAnalysis", own<&JSBridge::onStopAnalysis>},
        {"purgeOperation", at<trash, &TrashIntents::onPurgeOperation>},
        {"checkSelection", at<selection, &SelectionIntents::onCheckSelection>},
        {"chooseExclusion", at<exclusions, &ExclusionIntents::onChooseExclusion>},
        {"deleteNow", at<deletingNow, &DeleteNowIntent::onDeleteNow>},
        {"scanFurther", at<further, &FurtherIntents::onScanFurther>},
        {"followSystemTheme", at<theme, &ThemeIntents::onFollowSystemTheme>},
        {"about", at<about, &AboutIntent::onAbout>},
        {"appUses", at<usage, &UsageIntents::onAppUses>},
        {"recordAppUses", at<usage, &UsageIntents::onRecordAppUses>},
        {"foretellSharing", at<sharing, &SharingIntents::onForetellSharing>},
        {"shareSpace", at<sharing, &SharingIntents::onShareSpace>},
        {"stopSharing", at<sharing, &SharingIntents::onStopSharing>},
        {"preview", at<previewing, &PreviewIntents::onPreview>},
    });
};

void JSBridge::handle(const std::string& type, const Payload& payload) {
    pendingIntents.push_back(type);
    const auto detail =
        platform_.log->isDetailed() ? payload::Detail::whole : payload::Detail::summary;
    log(fmt::format("Velto ▶ intención: {} payload: {}", type,
                    payload::description(payload, detail)));
    evaluate(events::intentEcho(type));
    for (const auto& row : IntentTable::rows) {
        if (row.name != type) continue;
        if (row.handler != nullptr) row.handler(*this, payload);
        return;
    }
}

void JSBridge::onScan(const Payload&) { startAnalysis(); }

void JSBridge::onRevealPath(const Payload& payload) {
    if (const auto path = payload::path(payload)) platform_.workspace->reveal(*path);
}

void JSBridge::onGoView(const Payload& payload) {
    if (const auto name = payload::string(payload)) evaluate(events::goView(*name));
}

}  // namespace velto
