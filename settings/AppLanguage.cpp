#include "settings/AppLanguage.h"

#include <utility>

#include "settings/VeltoSettings.h"

namespace velto {

AppLanguage::AppLanguage(VeltoSettings& settings)
    : settings_(settings), code_(settings.language()) {}

std::string_view AppLanguage::text(std::string_view es, std::string_view en) const {
    return isSpanish() ? es : en;
}

void AppLanguage::setCode(const std::string& code) {
    settings_.setLanguage(code);
    code_ = settings_.language();
    for (const auto& observer : observers_)
        observer();
}

void AppLanguage::observe(std::function<void()> observer) {
    observers_.push_back(std::move(observer));
}

}  // namespace velto
