#include "platform/ApplicationActivity.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace velto {

struct ApplicationActivity::List {
    std::vector<std::weak_ptr<const Observer>> all;

    void forgetTheGone() {
        std::erase_if(all, [](const auto& observer) { return observer.expired(); });
    }
};

ApplicationActivity::ApplicationActivity() : observers_(std::make_unique<List>()) {}
ApplicationActivity::~ApplicationActivity() = default;

void ApplicationActivity::set(bool active) {
    if (active == isActive_) return;
    isActive_ = active;
    wasActive_ = true;
    observers_->forgetTheGone();
    const auto told = observers_->all;  // an observer may add another one
    for (const auto& observer : told) {
        if (const auto present = observer.lock()) (*present)(active);
    }
}

ApplicationActivity::Token ApplicationActivity::observe(Observer observer) {
    auto token = std::make_shared<const Observer>(std::move(observer));
    observers_->forgetTheGone();
    observers_->all.push_back(token);
    (*token)(isActive_);
    return token;
}

}  // namespace velto
