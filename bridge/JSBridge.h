#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "analysis/DiskState.h"
#include "analysis/ExclusionService.h"
#include "analysis/PermissionService.h"
#include "analysis/ScanCache.h"
#include "analysis/ScannerService.h"
#include "bridge/AnalysisLists.h"
#include "bridge/BridgeLink.h"
#include "bridge/BridgeState.h"
#include "bridge/CleanupQueue.h"
#include "bridge/SaveQueue.h"
#include "bridge/UninstallGate.h"
#include "bridge/WorkProgress.h"
#include "bridge/failure_text.h"
#include "bridge/payload.h"
#include "cleaning/CleaningRules.h"
#include "cleaning/further/FurtherDiscovery.h"
#include "platform/ApplicationShell.h"
#include "platform/CancellationFlag.h"
#include "platform/Platform.h"
#include "platform/WebView.h"
#include "settings/AppLanguage.h"
#include "settings/VeltoSettings.h"
#include "uninstall/AppUsage.h"

namespace velto {

/// What a bridge works with. Everything outlives it.
struct BridgeContext {
    Platform& platform;
    VeltoSettings& settings;
    AppLanguage& language;
    ExclusionService& exclusions;
    ApplicationShell& shell;
    AppUsage& usage;
    CleanupQueue& cleanups;
    UninstallGate& uninstalls;
    std::function<void()> askToNotify = nullptr;  // the person, whether notifications may be shown
    const WorkProgress* progress = nullptr;       // null: what runs is shown in the page alone
    std::string_view version;                     // of this build
    /// What the further rules find of less is not told, in bytes.
    std::int64_t smallestFurther = FurtherDiscovery::smallestItem;
};

class AboutIntent;
class AccessIntents;
class AppIntents;
class CleaningIntents;
class FolderIntents;
class FurtherIntents;
class GrowthIntents;
class ExclusionIntents;
class DeleteNowIntent;
class LeftBehindIntent;
class MaintenanceIntents;
class MeasurementIntents;
class PackageIntents;
class PreviewIntents;
class QuitIntents;
class SelectionIntents;
class ThemeIntents;
class SettingsIntents;
class SharingIntents;
class SystemIntents;
class TrashIntents;
class UsageIntents;

/// The controller between the page and every service: intents in (`intents.cpp` holds their table),
/// events out (`events.h`), the first state, the analysis and the watch on Full Disk Access.
///
/// Everything runs on the main thread. Work elsewhere holds the bridge weakly and comes back
/// through the dispatcher. Make it with std::make_shared.
class JSBridge : public std::enable_shared_from_this<JSBridge>,
                 public BridgeState,
                 private BridgeLink {
public:
    /// Probes access and loads the saved analysis.
    explicit JSBridge(const BridgeContext& context);
    ~JSBridge() override;
    JSBridge(const JSBridge&) = delete;
    JSBridge& operator=(const JSBridge&) = delete;

    /// The bridge that menu commands and the application delegate use; null before one is attached
    /// and after it is gone.
    static std::shared_ptr<JSBridge> current();

    /// Connects the page's view, once, before it loads; the view is held weakly.
    void attach(const std::shared_ptr<WebView>& view);

    /// The page has loaded: pushes the state and starts the first analysis if none was saved.
    void applyBootState();

    /// A message of the page under a handler's name; a malformed one is dropped silently.
    void receive(const std::string& handlerName, const nlohmann::json& body);

    /// One intent, from the page or from the menu. An unknown one is only recorded.
    void handle(const std::string& type, const Payload& payload = std::nullopt);

    /// Probes Full Disk Access, tells the page, and resumes a full analysis when it was granted.
    void checkFullDiskAccess();

    /// Tells the page about the trash if another process has changed it.
    void refreshTrash();

private:
    friend struct IntentTable;

    // Intents (intents.cpp); the features have classes of their own.
    void onScan(const Payload& payload);
    void onStopAnalysis(const Payload& payload);  // analysis_task.cpp
    void onRevealPath(const Payload& payload);
    void onResetVelto(const Payload& payload);
    void onGoView(const Payload& payload);

    // Events (JSBridge.cpp).
    void evaluate(const std::string& script) override;
    void toast(std::string_view titleEs, std::string_view titleEn,
               std::string_view detail) override;
    void pushState();
    void pushTrash(const std::string& script = {});
    void finishBoot();

    void showSettings() override;

    // Analysis (analysis_task.cpp).
    void startAnalysis() override;
    void finishAnalysis(const AnalysisOutput& output);
    void tellAnalysis(const std::string& line);
    void keepFolders(double measured);
    void failAnalysis(const std::string& line);
    void endAnalysis();
    DiskState stateToShow() const;
    void rememberState(SaveQueue::Work then = {}) const;
    void addDuplicates(const std::vector<DupGroup>& groups);

    void makeIntents(const BridgeContext& context);

    /// In whatever bridge there is by then.
    static void finishCleanupAnywhere(const CleanupOutcome& outcome);

    // Work on the trash, the history and the cloud folder (cleanup_work.cpp). `report` runs on the
    // main thread, before the page is told of the trash and the state.
    using OwnReport = std::function<void(JSBridge&, const CleanupOutcome&)>;
    void runCleanup(CleanupWork work, OwnReport report);
    void enqueue(CleanupWork work, CleanupReport report) override;
    const TrashItem* trashItem(const std::string& id) const override;
    void toastFailure(std::string_view titleEs, std::string_view titleEn,
                      const CleanupOutcome& outcome) override;
    void finishCleanup(const CleanupOutcome& outcome, const OwnReport& report);
    bool updateState(const CleanupOutcome& outcome);

    // Reset (reset.cpp).
    void forgetLocalData(const std::optional<FailureText>& remains);

    void log(const std::string& line) const;

    Platform& platform_;
    VeltoSettings& settings_;
    AppLanguage& language_;
    ExclusionService& exclusions_;
    ApplicationShell& shell_;
    AppUsage& usage_;
    PermissionService permissions_;
    ScanCache cache_;
    // Shared with the walk, which may outlive the bridge.
    struct ScannerWithAccess;
    std::shared_ptr<ScannerWithAccess> scanner_;
    std::weak_ptr<WebView> webView_;

    CleanupQueue& cleanups_;
    const SaveQueue saves_;  // of the last analysis and its measurement
    AnalysisLists lists_;
    const WorkProgress* progress_;
    std::shared_ptr<WorkProgress::Work> analysisWork_;  // while one runs
    ApplicationActivity::Token analysisWatch_;          // whether somebody looks at it
    AnalysisLists::Mark analysisBegun_ = 0;
    std::vector<std::string> analysisExcluded_;  // what the last one kept out of
    std::vector<HistoryEntry> history_;          // what the page knows
    SharedTrash trash_;                          // the same; null until it has been read
    std::vector<WaitingItem> waiting_;           // the same of what waits for a disk
    bool isWaitingForTrash_ = false;             // the page has loaded first
    int resetsAhead_ = 0;                        // asked for and not done yet
    std::shared_ptr<AccessIntents> accessIntents_;
    std::shared_ptr<MaintenanceIntents> maintenanceIntents_;
    std::shared_ptr<SettingsIntents> settingsIntents_;
    std::shared_ptr<TrashIntents> trashIntents_;
    std::shared_ptr<SelectionIntents> selectionIntents_;
    std::shared_ptr<AppIntents> appIntents_;
    std::shared_ptr<PackageIntents> packageIntents_;
    std::shared_ptr<QuitIntents> quitIntents_;
    std::shared_ptr<ThemeIntents> themeIntents_;
    std::shared_ptr<LeftBehindIntent> leftBehindIntent_;
    std::shared_ptr<SystemIntents> systemIntents_;
    std::shared_ptr<FolderIntents> folderIntents_;
    std::shared_ptr<GrowthIntents> growthIntents_;
    std::shared_ptr<MeasurementIntents> measurementIntents_;
    std::shared_ptr<ExclusionIntents> exclusionIntents_;
    std::shared_ptr<CleaningIntents> cleaningIntents_;
    std::shared_ptr<FurtherIntents> furtherIntents_;
    std::shared_ptr<DeleteNowIntent> deleteNowIntent_;
    std::shared_ptr<AboutIntent> aboutIntent_;
    std::shared_ptr<UsageIntents> usageIntents_;
    std::shared_ptr<SharingIntents> sharingIntents_;
    std::shared_ptr<PreviewIntents> previewIntents_;
};

/// Takes the agent and all local data away, the trash with its lock held; the part of a full reset
/// that needs no page. A failure ends nothing: what can be removed is gone. Returns what stays, one
/// sentence for the user; nothing when nothing does.
std::optional<FailureText> resetLocalData(Platform& platform, VeltoTrashService& trash);

}  // namespace velto
