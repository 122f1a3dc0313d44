#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace velto::window {

/// The scripts on their way to the page, in their order. After a long one the next waits until the
/// page has run it: what a person does meanwhile is answered in between, where the engine would
/// take all that was sent first. Main thread.
class ScriptQueue {
public:
    /// Evaluates a script. Calls `ended`, if there is one, when the page has run it, could not or
    /// is gone.
    using Evaluate =
        std::function<void(const std::string& script, const std::function<void()>& ended)>;

    /// Bytes from which on a script is a long one.
    static constexpr std::size_t longScript = 16'384;

    explicit ScriptQueue(Evaluate evaluate) : evaluate_(std::move(evaluate)) {}

    void put(const std::string& script);

    /// The page is another one, or none: what waits was meant for the last.
    void clear();

private:
    /// Its end is the end of a wait: an old script's end finds it gone.
    struct Wait {};

    void send(const std::string& script);
    void goOn();

    Evaluate evaluate_;
    std::deque<std::string> waiting_;
    std::shared_ptr<Wait> wait_;  // of the long script that runs
};

}  // namespace velto::window
