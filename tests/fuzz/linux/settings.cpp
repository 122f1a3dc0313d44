#include "settings/VeltoSettings.h"

#include <cmath>

#include "fuzz/engine/MemoryFiles.h"
#include "fuzz/engine/Target.h"
#include "platform/linux/JsonUserDefaults.h"
#include "support/fakes.h"

namespace velto::fuzz {
namespace {

constexpr const char* path = "/home/ana/.config/velto/settings.json";

/// Whatever the file says, the settings are ones that the program knows, and can be changed.
void judge(std::string_view input) {
    MemoryFiles files;
    files.put(path, input);
    FakeLog log;
    FakeLocale locale;
    JsonUserDefaults defaults(files, nullptr, log, path);
    VeltoSettings settings(defaults, locale);
    const Settings read = settings.record();
    require(read.retention >= 1 && read.retention <= 1'000'000, "a number of days");
    require(
        read.frequency == "daily" || read.frequency == "weekends" || read.frequency == "monthly",
        "a frequency");
    require(read.language == "es" || read.language == "en", "a language");
    require(read.rules && read.rules->size() == ruleSwitches.size(), "the rules, and no others");
    const double lastRound = settings.duplicatesRound();
    require(std::isfinite(lastRound), "a time");

    settings.setRetention(7);
    settings.setRule("caches", false);
    settings.setFrequency("monthly");
    JsonUserDefaults others(files, nullptr, log, path);
    Settings expected = read;
    expected.retention = 7;
    expected.frequency = "monthly";
    (*expected.rules)["caches"] = false;
    require(VeltoSettings(others, locale).record() == expected,
            "what was set is read, the rest stays");
}

const Registration registered("settings", judge);

}  // namespace
}  // namespace velto::fuzz
