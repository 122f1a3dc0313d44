#include "bridge/SettingsIntents.h"

#include <exception>
#include <optional>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "bridge/MaintenanceIntents.h"
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

void SettingsIntents::onSettings(const Payload& payload) {
    if (payload::object(payload) == nullptr) return;
    // What the page pushes while it starts are its own defaults: they never overwrite settings
    // that the user has made.
    const bool atBoot = payload::boolMember(payload, "boot").value_or(false);
    if (atBoot && context_.settings.settingsConfigured()) return;

    const std::string frequencyBefore = context_.settings.frequency();
    if (const auto days = retentionMember(payload)) context_.settings.setRetention(*days);
    if (const auto frequency = payload::stringMember(payload, "frequency")) {
        context_.settings.setFrequency(*frequency);
    }
    if (const auto enabled = payload::boolMember(payload, "enabled")) {
        context_.settings.setAutoMaintenance(*enabled);
    }
    if (const nlohmann::json* rules = payload::member(payload, "rules");
        rules != nullptr && rules->is_object()) {
        for (const auto& [id, on] : rules->items()) {
            if (on.is_boolean()) context_.settings.setRule(id, on.get<bool>());
        }
    }
    if (const auto code = payload::stringMember(payload, "language"))
        context_.language.setCode(*code);
    context_.settings.markConfigured();
    context_.platform.log->line(
        fmt::format("Velto ▶ ajustes: idioma={} · conservación={} días · mantenimiento={}",
                    context_.language.code(), context_.settings.retention(),
                    context_.settings.autoMaintenance() ? "sí" : "no"));
    applyMaintenance(frequencyBefore);
    context_.link.showSettings();
    context_.maintenance.tell();
}

void SettingsIntents::applyMaintenance(const std::string& frequencyBefore) {
    const bool wasInstalled = scheduler_.isInstalled();
    try {
        if (context_.settings.autoMaintenance()) {
            scheduler_.ensureInstalled(context_.settings.frequency());
            // Now that somebody is there to answer; a run by itself would ask nobody.
            if (!wasInstalled && context_.askToNotify) context_.askToNotify();
        } else {
            scheduler_.remove();
        }
    } catch (const std::exception& error) {
        // The page gets the switch as it really is, and an older schedule that goes on its own
        // frequency.
        context_.settings.setAutoMaintenance(scheduler_.isInstalled());
        if (scheduler_.isInstalled()) context_.settings.setFrequency(frequencyBefore);
        context_.platform.log->line("Velto ▶ mantenimiento no configurado: " +
                                    singleLine(error.what()));
        const FailureText reason = failureText(error, context_.platform.layout);
        context_.link.toast("No se pudo configurar el mantenimiento",
                            "Automatic maintenance couldn't be set up",
                            context_.language.text(reason.spanish, reason.english));
    }
}

}  // namespace velto
