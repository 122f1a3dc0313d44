#include "bridge/UsageIntents.h"

#include <string>

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/FileManager.h"
#include "platform/values/text.h"

namespace velto {

void UsageIntents::onAppUses(const Payload&) {
    context_.link.evaluate(events::call(
        "onAppUses", events::literal({{"recording", context_.usage.isRecording()},
                                      {"applications", context_.usage.launches().size()}})));
}

void UsageIntents::onRecordAppUses(const Payload& payload) {
    const auto on = payload::boolMember(payload, "on");
    if (!on) return;
    const Platform& platform = context_.platform;
    // In its turn: what was asked for last is what holds, and a reset comes before it or after it.
    context_.cleanups.run([&platform, &usage = context_.usage, on = *on,
                           weak = weak_from_this()](CleanupServices&) {
        bool isFileLeft = false;
        try {
            usage.setRecording(on);
            platform.log->line(
                on ? "Velto ▶ usos de aplicaciones: se anotan"
                   : "Velto ▶ usos de aplicaciones: no se anotan; lo anotado se ha borrado");
        } catch (const FileError& error) {
            isFileLeft = true;
            platform.log->line("Velto ▶ usos de aplicaciones: no se anotan; no se pudo borrar: " +
                               singleLine(error.what()));
        }
        platform.dispatcher->main([weak, isFileLeft] {
            if (const auto self = weak.lock()) self->finish(isFileLeft);
        });
    });
}

void UsageIntents::finish(bool isFileLeft) {
    if (isFileLeft) {
        context_.link.toast(
            "No se ha podido borrar lo anotado", "What was recorded couldn't be deleted",
            context_.language.text(
                "No se anota nada más. El archivo app-usage.json sigue en la carpeta de datos.",
                "Nothing more is recorded. The file app-usage.json is still in the data folder."));
    }
    onAppUses({});
}

}  // namespace velto
