#include "bridge/JSBridge.h"

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
#include "bridge/LeftBehindIntent.h"
#include "bridge/MaintenanceIntents.h"
#include "bridge/MeasurementIntents.h"
#include "bridge/PackageIntents.h"
#include "bridge/PreviewIntents.h"
#include "bridge/QuitIntents.h"
#include "bridge/ScannerWithAccess.h"
#include "bridge/SelectionIntents.h"
#include "bridge/SettingsIntents.h"
#include "bridge/SharingIntents.h"
#include "bridge/SystemIntents.h"
#include "bridge/ThemeIntents.h"
#include "bridge/TrashIntents.h"
#include "bridge/UsageIntents.h"
#include "bridge/events.h"
#include "platform/values/text.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr const char* handlerName = "velto";

std::weak_ptr<JSBridge>& currentBridge() {
    static std::weak_ptr<JSBridge> bridge;
    return bridge;
}

}  // namespace

JSBridge::JSBridge(const BridgeContext& context)
    : platform_(context.platform),
      settings_(context.settings),
      language_(context.language),
      exclusions_(context.exclusions),
      shell_(context.shell),
      usage_(context.usage),
      permissions_(context.platform),
      cache_(*context.platform.files, context.platform.layout),
      scanner_(std::make_shared<ScannerWithAccess>(context.platform)),
      cleanups_(context.cleanups),
      saves_(*context.platform.dispatcher),
      progress_(context.progress) {
    makeIntents(context);
    accessGranted = permissions_.hasAccess();
    if (auto entry = cache_.load()) {
        const double age = (platform_.clock->now() - entry->ts) / 60;
        bootState = BootState{std::move(entry->state), entry->ts};
        bootState->state.settings = settings_.record();  // they may have changed since
        history_ = bootState->state.history;
        lists_.replace(bootState->state, lists_.mark());
        log(fmt::format("Velto ▶ arranque: análisis guardado hace {} min · escaneo automático: no",
                        tenths(age)));
    } else {
        needsFirstScan = true;
        log("Velto ▶ arranque: sin análisis previo");
    }
}

/// Each with what it needs; whatever it asks of the bridge goes through the link.
void JSBridge::makeIntents(const BridgeContext& context) {
    BridgeLink& link = *this;
    BridgeState& state = *this;
    const auto apps = std::make_shared<AppsWork>(platform_, context.usage);
    accessIntents_ = std::make_shared<AccessIntents>(
        AccessIntents::Context{link, state, platform_, permissions_, shell_, language_});
    maintenanceIntents_ = std::make_shared<MaintenanceIntents>(
        MaintenanceIntents::Context{link, state, platform_, settings_, permissions_, exclusions_});
    settingsIntents_ = std::make_shared<SettingsIntents>(SettingsIntents::Context{
        link, platform_, settings_, language_, *maintenanceIntents_, context.askToNotify});
    trashIntents_ = std::make_shared<TrashIntents>(
        TrashIntents::Context{link, platform_, settings_, language_, shell_, lists_});
    selectionIntents_ =
        std::make_shared<SelectionIntents>(SelectionIntents::Context{link, platform_});
    appIntents_ = std::make_shared<AppIntents>(
        AppIntents::Context{link, state, platform_, language_, context.uninstalls, cleanups_, apps,
                            &JSBridge::finishCleanupAnywhere, progress_});
    packageIntents_ = std::make_shared<PackageIntents>(
        PackageIntents::Context{link, platform_, language_, context.uninstalls, apps, progress_});
    quitIntents_ = std::make_shared<QuitIntents>(QuitIntents::Context{link, platform_, language_});
    themeIntents_ = std::make_shared<ThemeIntents>(ThemeIntents::Context{platform_, shell_});
    leftBehindIntent_ =
        std::make_shared<LeftBehindIntent>(LeftBehindIntent::Context{link, platform_, exclusions_});
    folderIntents_ = std::make_shared<FolderIntents>(FolderIntents::Context{
        .link = link, .state = state, .platform = platform_, .cleanups = cleanups_});
    growthIntents_ = std::make_shared<GrowthIntents>(
        GrowthIntents::Context{.link = link, .platform = platform_, .cleanups = cleanups_});
    measurementIntents_ = std::make_shared<MeasurementIntents>(MeasurementIntents::Context{
        .link = link,
        .platform = platform_,
        .cleanups = cleanups_,
        .saves = saves_,
        .found = [this](const auto& groups) { addDuplicates(groups); }});
    exclusionIntents_ =
        std::make_shared<ExclusionIntents>(ExclusionIntents::Context{.link = link,
                                                                     .platform = platform_,
                                                                     .language = language_,
                                                                     .exclusions = exclusions_,
                                                                     .shell = shell_});
    cleaningIntents_ = std::make_shared<CleaningIntents>(
        CleaningIntents::Context{link, platform_, lists_, *measurementIntents_});
    furtherIntents_ = std::make_shared<FurtherIntents>(
        FurtherIntents::Context{.link = link,
                                .platform = platform_,
                                .lists = lists_,
                                .exclusions = exclusions_,
                                .cleaning = *cleaningIntents_,
                                .smallest = context.smallestFurther});
    deleteNowIntent_ = std::make_shared<DeleteNowIntent>(
        DeleteNowIntent::Context{link, platform_, language_, *cleaningIntents_});
    systemIntents_ = std::make_shared<SystemIntents>(
        SystemIntents::Context{link, state, platform_, *quitIntents_});
    aboutIntent_ =
        std::make_shared<AboutIntent>(AboutIntent::Context{link, platform_, context.version});
    usageIntents_ = std::make_shared<UsageIntents>(
        UsageIntents::Context{link, platform_, language_, context.usage, cleanups_});
    sharingIntents_ =
        std::make_shared<SharingIntents>(SharingIntents::Context{link, state, platform_});
    previewIntents_ =
        std::make_shared<PreviewIntents>(PreviewIntents::Context{link, state, platform_});
}

JSBridge::~JSBridge() {
    if (scanTask) scanTask->cancel();
    if (accessWatch) accessWatch->cancel();
    saves_.finish();  // the next window reads it
}

std::shared_ptr<JSBridge> JSBridge::current() { return currentBridge().lock(); }

void JSBridge::attach(const std::shared_ptr<WebView>& view) {
    webView_ = view;
    currentBridge() = weak_from_this();
    view->setMessageHandler(handlerName, [weak = weak_from_this()](const std::string& name,
                                                                   const nlohmann::json& body) {
        if (const auto bridge = weak.lock()) bridge->receive(name, body);
    });
    refreshTrash();
    systemIntents_->sendSamples();
    if (!bootState) return;
    if (const auto script = events::bootstrap(bootState->state, bootState->stamp)) {
        view->addUserScript(*script);
    }
}

void JSBridge::applyBootState() {
    const bool real = bootState && !bootState->state.cats.empty();
    log(fmt::format("Velto ▶ estado de arranque aplicado: {} · categorías={} · archivos={}",
                    real ? "real" : "pendiente de análisis",
                    bootState ? bootState->state.cats.size() : 0,
                    bootState ? bootState->state.files.size() : 0));
    measurementIntents_->tellAll();
    const std::string& cloud = platform_.layout.cloudDrive;
    if (!cloud.empty() && platform_.files->exists(cloud))
        evaluate(events::call("onCloudDrive", "true"));
    pushState();
    // Not before the page has something to show.
    if (bootState) measurementIntents_->lookAtSaved(bootState->state, bootState->stamp);
    isWaitingForTrash_ = true;
    if (trash_) finishBoot();
}

/// The page knows the state; the trash and the rest come in this order.
void JSBridge::finishBoot() {
    isWaitingForTrash_ = false;
    if (!waiting_.empty()) evaluate(events::trashWaiting(waiting_));
    evaluate(events::trashState(trash_->items));
    measurementIntents_->tellTrash();
    if (scanRunning) evaluate(events::scanStarted());  // the page was reloaded meanwhile
    if (needsFirstScan) startAnalysis();
}

void JSBridge::receive(const std::string& name, const nlohmann::json& body) {
    if (name != handlerName || !body.is_object()) return;
    const auto type = body.find("type");
    if (type == body.end() || !type->is_string()) return;
    const auto payload = body.find("payload");
    handle(type->get<std::string>(), payload == body.end() ? Payload() : Payload(*payload));
}

void JSBridge::evaluate(const std::string& script) {
    if (const auto view = webView_.lock()) view->evaluate(script);
}

void JSBridge::toast(std::string_view titleEs, std::string_view titleEn, std::string_view detail) {
    evaluate(events::toast(language_.text(titleEs, titleEn), singleLine(detail)));
}

void JSBridge::pushState() {
    evaluate(events::permissions(permissions_.hasAccess()));
    const double stamp = bootState ? bootState->stamp : platform_.clock->now();
    if (const auto script = events::setState(stateToShow(), stamp)) {
        evaluate(*script);
    } else {
        log("Velto: no se pudo serializar DiskState");
    }
}

void JSBridge::showSettings() {
    if (bootState) {
        bootState->state.settings = settings_.record();
        rememberState();
    }
    pushState();
}

void JSBridge::checkFullDiskAccess() { accessIntents_->check(); }

/// For the next start; not while a reset is on its way, which the file would outlive. `then` runs
/// later, when that is done.
void JSBridge::rememberState(SaveQueue::Work then) const {
    if (!bootState || resetsAhead_ > 0) {
        if (then) platform_.dispatcher->main(std::move(then));
        return;
    }
    saves_.put(
        "analysis", [cache = cache_, shown = *bootState] { cache.save(shown.state, shown.stamp); },
        std::move(then));
}

void JSBridge::log(const std::string& line) const { platform_.log->line(line); }

}  // namespace velto
