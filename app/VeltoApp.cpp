#include "app/VeltoApp.h"

#include <array>
#include <utility>

#include "analysis/ExclusionService.h"
#include "app/arguments.h"
#include "app/information.h"
#include "bridge/JSBridge.h"
#include "platform/notification_permission.h"

namespace velto {
namespace {

constexpr std::array<AppCommand, 4> commandTable{{
    {"Analizar disco", "Analyze disk", 'r', false, "scan", "", "analyze", "--analyze"},
    {"Deshacer última limpieza", "Undo last cleanup", 'z', true, "undoLast", "", "undo", ""},
    {"Desinstalar una aplicación", "Uninstall an application", 'd', true, "goView", "apps",
     "applications", "--applications"},
    {"Abrir la Papelera de Velto", "Open Velto Trash", 0, false, "goView", "papelera", "trash",
     "--trash"},
}};

constexpr AppCommand guideEntry{"Guía de Velto", "Velto Guide", 0, false, "goView", "guia"};

constexpr AppCommand settingsEntry{"Ajustes…", "Settings…", ',', false, "goView", "ajustes"};

}  // namespace

VeltoApp::VeltoApp(Platform& platform)
    : platform_(platform),
      settings_(*platform.defaults, *platform.locale),
      language_(settings_),
      delegate_(platform, AppUsage::shared()),
      progress_(*platform.dispatcher, *platform.clock),
      cleanups_(*platform.dispatcher,
                {.trash = VeltoTrashService::shared(),
                 .history = HistoryService::shared(),
                 .cloud = CloudFolder::shared()},
                progress_),
      quit_(platform, language_, cleanups_, uninstalls_) {}

VeltoApp::~VeltoApp() = default;

void VeltoApp::setShell(ApplicationShell& shell) { shell_ = &shell; }

void VeltoApp::windowOpened(const std::shared_ptr<WebView>& webView) {
    bridge_ = std::make_shared<JSBridge>(
        BridgeContext{.platform = platform_,
                      .settings = settings_,
                      .language = language_,
                      .exclusions = ExclusionService::shared(),
                      .shell = *shell_,
                      .usage = AppUsage::shared(),
                      .cleanups = cleanups_,
                      .uninstalls = uninstalls_,
                      .askToNotify = [&platform = platform_] { askToNotify(platform); },
                      .progress = &progress_,
                      .version = versionText()});
    bridge_->attach(webView);
    quit_.setView(webView);
}

void VeltoApp::pageLoaded() {
    if (bridge_) bridge_->applyBootState();
    quit_.pageLoaded();
    pageStands_ = true;
    if (const AppCommand* command = std::exchange(waiting_, nullptr)) perform(*command);
}

void VeltoApp::windowClosed() {
    pageStands_ = false;
    quit_.setView(nullptr);
    bridge_.reset();
}

std::span<const AppCommand> VeltoApp::commands() { return commandTable; }

const AppCommand& VeltoApp::settingsCommand() { return settingsEntry; }

const AppCommand& VeltoApp::guideCommand() { return guideEntry; }

std::string_view VeltoApp::title(const AppCommand& command) const {
    return language_.text(command.titleEs, command.titleEn);
}

void VeltoApp::perform(const AppCommand& command) {
    const auto bridge = JSBridge::current();
    if (!bridge) return;
    const Payload payload =
        command.argument.empty() ? Payload() : Payload(std::string(command.argument));
    bridge->handle(std::string(command.intent), payload);
}

void VeltoApp::performWhenShown(const AppCommand& command) {
    if (pageStands_) return perform(command);
    waiting_ = &command;
}

const AppCommand* VeltoApp::askedFor(const std::vector<std::string>& arguments) {
    for (const AppCommand& command : commandTable) {
        if (!command.option.empty() && isGiven(command.option, arguments)) return &command;
    }
    return nullptr;
}

}  // namespace velto
