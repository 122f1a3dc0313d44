#include "app/window/kept_appearance.h"

namespace velto::window {
namespace {

constexpr const char* key = "velto.window.appearance";
constexpr const char* formerKey = "VeltoWindowAppearance";

}  // namespace

std::optional<Appearance> keptAppearance(const UserDefaults& defaults) {
    for (const char* name : {key, formerKey}) {
        const auto kept = defaults.value(name);
        for (const Appearance known : {Appearance::light, Appearance::dark}) {
            if (kept == DefaultsValue(appearanceName(known))) return known;
        }
    }
    return std::nullopt;
}

void keepAppearance(UserDefaults& defaults, std::optional<Appearance> appearance) {
    defaults.remove(formerKey);
    if (appearance) {
        defaults.setValue(key, appearanceName(*appearance));
    } else {
        defaults.remove(key);
    }
}

}  // namespace velto::window
