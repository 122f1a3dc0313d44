#include "app/window/ScriptQueue.h"

#include <utility>

namespace velto::window {

void ScriptQueue::put(const std::string& script) {
    if (wait_) {
        waiting_.push_back(script);
    } else {
        send(script);
    }
}

void ScriptQueue::clear() {
    waiting_.clear();
    wait_.reset();
}

void ScriptQueue::send(const std::string& script) {
    if (script.size() < longScript) return evaluate_(script, nullptr);
    wait_ = std::make_shared<Wait>();
    evaluate_(script, [this, ended = std::weak_ptr(wait_)] {
        if (!ended.expired()) goOn();
    });
}

void ScriptQueue::goOn() {
    wait_.reset();
    while (!wait_ && !waiting_.empty()) {
        const std::string script = std::move(waiting_.front());
        waiting_.pop_front();
        send(script);
    }
}

}  // namespace velto::window
