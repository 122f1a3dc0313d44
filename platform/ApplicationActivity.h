#pragma once

#include <functional>
#include <memory>

namespace velto {

/// Whether the application is the one that the user works with. Main thread.
class ApplicationActivity {
public:
    using Observer = std::function<void(bool active)>;
    /// Whoever holds it goes on being told.
    using Token = std::shared_ptr<const void>;

    ApplicationActivity();
    ~ApplicationActivity();
    ApplicationActivity(const ApplicationActivity&) = delete;
    ApplicationActivity& operator=(const ApplicationActivity&) = delete;

    bool isActive() const { return isActive_; }

    /// True when the user has turned to something else. An application that has not been in front
    /// yet is still expected there.
    bool isLeft() const { return wasActive_ && !isActive_; }

    /// The window system has spoken; observers hear of changes only.
    void set(bool active);

    /// Calls `observer` at once with the present state, and with every later one as long as the
    /// token is held. The token may outlive this object.
    [[nodiscard]] Token observe(Observer observer);

private:
    struct List;

    bool isActive_ = false;
    bool wasActive_ = false;
    std::unique_ptr<List> observers_;
};

}  // namespace velto
