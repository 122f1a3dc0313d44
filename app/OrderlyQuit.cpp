#include "app/OrderlyQuit.h"

#include <utility>

#include "bridge/events.h"
#include "platform/values/uuid.h"

namespace velto {
namespace {

constexpr double pause = 0.1;  // seconds between two looks

}  // namespace

bool OrderlyQuit::request(std::function<void()> ready) {
    const bool isFirst = waiting_.empty();
    if (isFirst && !isChanging()) return true;
    waiting_.push_back(std::move(ready));
    if (!isFirst) return false;
    platform_.log->line("Velto ▶ salida: se espera a que termine lo que está en marcha");
    tellUser();
    lookAgain();
    return false;
}

void OrderlyQuit::pageLoaded() {
    if (!waiting_.empty()) tellUser();
}

void OrderlyQuit::tellUser() {
    if (const auto view = view_.lock()) return view->evaluate(events::quitting(running()));
    const std::string_view title =
        language_.text("Velto se cerrará al terminar", "Velto will quit when it has finished");
    const std::string_view body = uninstalls_.isTaken()
                                      ? language_.text("Está desinstalando una aplicación.",
                                                       "It is uninstalling an application.")
                                      : language_.text("Está terminando lo que ha empezado.",
                                                       "It is finishing what it has begun.");
    platform_.notifications->post("velto.quit." + newUUID(), std::string(title), std::string(body));
}

void OrderlyQuit::lookAgain() {
    platform_.dispatcher->mainAfter(pause, [this, alive = std::weak_ptr<bool>(alive_)] {
        if (alive.expired()) return;
        if (isChanging()) return lookAgain();
        for (const auto& ready : std::exchange(waiting_, {}))
            ready();
    });
}

}  // namespace velto
