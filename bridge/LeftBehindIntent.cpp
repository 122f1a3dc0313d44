#include "bridge/LeftBehindIntent.h"

#include <fmt/format.h>

#include "bridge/app_events.h"
#include "platform/values/path_text.h"
#include "uninstall/left_behind.h"

namespace velto {
namespace {

struct Found {
    std::string path;
    nlohmann::json record;
};

std::vector<Found> look(const Platform& platform) {
    std::vector<Found> found;
    const InstalledNames installed(platform, InstalledNames::placesOf(platform.layout));
    for (const LeftBehind& item : leftBehind(platform, installed))
        found.push_back({item.path, toJson(item)});
    return found;
}

}  // namespace

void LeftBehindIntent::onLeftBehind(const Payload&) {
    if (isLooking_) return;
    isLooking_ = true;
    Dispatcher& dispatcher = *context_.platform.dispatcher;
    dispatcher.global(QualityOfService::utility,
                      [&dispatcher, &platform = context_.platform, weak = weak_from_this()] {
                          if (weak.expired()) return;
                          const auto found = look(platform);
                          dispatcher.main([weak, found] {
                              const auto self = weak.lock();
                              if (!self) return;
                              self->isLooking_ = false;
                              nlohmann::json records = nlohmann::json::array();
                              for (const Found& item : found) {
                                  if (!self->context_.exclusions.isExcluded(item.path))
                                      records.push_back(item.record);
                              }
                              self->tell(records);
                          });
                      });
}

void LeftBehindIntent::tell(const nlohmann::json& found) {
    context_.platform.log->line(
        fmt::format("Velto ▶ desinstalador: {} restos de apps que ya no están", found.size()));
    context_.link.evaluate(events::leftBehind(found));
}

}  // namespace velto
