#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/Log.h"

namespace velto {

/// What the person has said to notifications of this program.
enum class NotificationPermission {
    unasked,  // nobody has been asked, or nobody has answered
    refused,
    given,
};

struct Notification {
    std::string identifier;
    std::string title;
    std::string body;
};

/// A notification centre that answers later, on threads of its own, or never. Answers may come when
/// whoever has asked is gone.
class NotificationCentre {
public:
    virtual ~NotificationCentre() = default;

    /// Never asks the person.
    virtual void permission(std::function<void(NotificationPermission)> answer) = 0;

    /// `answer` gets the reason why it was refused, empty when it is shown.
    virtual void add(const Notification& notification, std::function<void(std::string)> answer) = 0;
};

/// Hands the notification to the centre and waits for its answer, at most `patience`. Where nobody
/// has been asked it asks nobody either, since nobody may be there: the question would stay open
/// and the notification with it. What is not shown is logged, in that case with its text.
void deliver(NotificationCentre& centre, const Notification& notification,
             std::chrono::milliseconds patience, Log& log);

}  // namespace velto
