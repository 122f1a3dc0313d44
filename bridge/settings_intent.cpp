#include <exception>

#include <fmt/format.h>

#include "bridge/JSBridge.h"
#include "bridge/failure_text.h"
#include "platform/values/text.h"

namespace velto {
namespace {

/// A number too large to be exact still says what was meant: as long as it goes.
std::optional<std::int64_t> retentionMember(const Payload& payload) {
    const nlohmann::json* value = payload::member(payload, "retention");
    const bool isBeyond = value != nullptr && value->is_number() &&
                          value->get<double>() > static_cast<double>(longestRetentionDays);
    return isBeyond ? longestRetentionDays : payload::integerMember(payload, "retention");
}

}  // namespace

void JSBridge::onSettings(const Payload& payload) {
    if (payload::object(payload) == nullptr) return;
    // What the page pushes while it starts are its own defaults: they never overwrite settings
    // that the user has made.
    const bool atBoot = payload::boolMember(payload, "boot").value_or(false);
    if (atBoot && settings_.settingsConfigured()) return;

    const std::string frequencyBefore = settings_.frequency();
    if (const auto days = retentionMember(payload)) settings_.setRetention(*days);
    if (const auto frequency = payload::stringMember(payload, "frequency")) {
        settings_.setFrequency(*frequency);
    }
    if (const auto enabled = payload::boolMember(payload, "enabled")) {
        settings_.setAutoMaintenance(*enabled);
    }
    if (const nlohmann::json* rules = payload::member(payload, "rules");
        rules != nullptr && rules->is_object()) {
        for (const auto& [id, on] : rules->items()) {
            if (on.is_boolean()) settings_.setRule(id, on.get<bool>());
        }
    }
    if (const auto code = payload::stringMember(payload, "language")) language_.setCode(*code);
    settings_.markConfigured();
    log(fmt::format("Velto ▶ ajustes: idioma={} · conservación={} días · mantenimiento={}",
                    language_.code(), settings_.retention(),
                    settings_.autoMaintenance() ? "sí" : "no"));
    applyMaintenance(frequencyBefore);
    refreshSettings();
    onMaintenanceStatus({});
}

void JSBridge::applyMaintenance(const std::string& frequencyBefore) {
    try {
        if (settings_.autoMaintenance()) {
            scheduler_.install(settings_.frequency());
        } else {
            scheduler_.remove();
        }
    } catch (const std::exception& error) {
        // The page gets the switch as it really is, and an older schedule that goes on its own
        // frequency.
        settings_.setAutoMaintenance(scheduler_.isInstalled());
        if (scheduler_.isInstalled()) settings_.setFrequency(frequencyBefore);
        log("Velto ▶ mantenimiento no configurado: " + singleLine(error.what()));
        const FailureText reason = failureText(error, platform_.layout);
        toast("No se pudo configurar el mantenimiento", "Automatic maintenance couldn't be set up",
              language_.text(reason.spanish, reason.english));
    }
}

void JSBridge::refreshSettings() {
    if (bootState) {
        bootState->state.settings = settings_.record();
        rememberState();
    }
    pushState();
}

}  // namespace velto
