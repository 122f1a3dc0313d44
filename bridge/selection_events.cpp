#include "bridge/selection_events.h"

#include <string_view>

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/path_text.h"
#include "platform/values/text.h"

namespace velto::events {
namespace {

std::string_view word(SelectionCheck::Reason reason) {
    using Reason = SelectionCheck::Reason;
    switch (reason) {
        case Reason::link:
            return "link";
        case Reason::outside:
            return "outside";
        case Reason::protected_:
            return "protected";
        case Reason::gone:
            return "gone";
        case Reason::own:
            return "trash";
        case Reason::closed:
            return "closed";
        case Reason::readOnly:
            return "readOnly";
        case Reason::mounted:
            return "mounted";
        case Reason::other:
            break;
    }
    return "other";
}

}  // namespace

std::string selection(const SelectionCheck& check, std::int64_t request) {
    auto stays = nlohmann::json::array();
    for (const SelectionCheck::Stay& stay : check.stays) {
        stays.push_back({{"path", pathText(stay.path)},
                         {"reason", word(stay.reason)},
                         {"detail", stay.detail}});
    }
    return call(
        "onSelection",
        literal({{"request", request}, {"movable", pathTexts(check.movable)}, {"stays", stays}}));
}

std::optional<std::string> putBack(const std::vector<VeltoTrashService::Returned>& returned) {
    auto renamed = nlohmann::json::array();
    for (const auto& [item, path] : returned) {
        if (lastPathComponent(path) == item.name) continue;
        renamed.push_back({{"id", item.id}, {"path", pathText(path)}});
    }
    if (renamed.empty()) return std::nullopt;
    return call("onPutBack", literal(renamed));
}

}  // namespace velto::events
