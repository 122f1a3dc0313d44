#include "platform/notification_delivery.h"

#include <atomic>
#include <future>
#include <memory>
#include <optional>
#include <utility>

#include "platform/values/text.h"

namespace velto {
namespace {

/// The centre's answer, awaited here once. It outlives the wait: the centre holds it, too.
template <typename Value>
class Answer {
public:
    std::function<void(Value)> taker() const {
        return [state = state_](Value value) {
            // A centre that answers twice is heard once.
            if (!state->isGiven.test_and_set()) state->promise.set_value(std::move(value));
        };
    }

    std::optional<Value> within(std::chrono::milliseconds patience) {
        auto value = state_->promise.get_future();
        if (value.wait_for(patience) != std::future_status::ready) return std::nullopt;
        return value.get();
    }

private:
    struct State {
        std::promise<Value> promise;
        std::atomic_flag isGiven;
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

constexpr const char* noAnswer = "el centro de notificaciones no responde";

/// Why the notification is not shown; empty when it is.
std::string whyNotShown(NotificationCentre& centre, const Notification& notification,
                        std::chrono::milliseconds patience) {
    Answer<NotificationPermission> permission;
    centre.permission(permission.taker());
    const auto given = permission.within(patience);
    if (!given) return noAnswer;
    if (*given == NotificationPermission::unasked) {
        return "falta el permiso, que se pide en la ventana; decía: " + notification.title + ": " +
               notification.body;
    }
    // One that was refused, too: the centre knows best why.
    Answer<std::string> outcome;
    centre.add(notification, outcome.taker());
    return outcome.within(patience).value_or(noAnswer);
}

}  // namespace

void deliver(NotificationCentre& centre, const Notification& notification,
             std::chrono::milliseconds patience, Log& log) {
    const std::string reason = whyNotShown(centre, notification, patience);
    if (reason.empty()) return;
    log.line("Velto ▶ no se pudo entregar la notificación: " + singleLine(reason));
}

}  // namespace velto
