#pragma once

#include <string>

#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/Notifications.h"

namespace velto {

/// The desktop's notification service on the session bus ("org.freedesktop.Notifications"). It
/// knows a notification by the number that it gave it and lists none, so the numbers are kept in a
/// file, together with the service that gave them: another one counts from the start.
class LinuxNotifications final : public Notifications {
public:
    /// `memory` is the file that keeps the numbers. All outlive the object.
    LinuxNotifications(FileManager& files, Log& log, std::string memory)
        : files_(files), log_(log), memory_(std::move(memory)) {}

    void removeAllDelivered() override;
    void post(const std::string& identifier, const std::string& title,
              const std::string& body) override;

private:
    FileManager& files_;
    Log& log_;
    std::string memory_;
};

}  // namespace velto
