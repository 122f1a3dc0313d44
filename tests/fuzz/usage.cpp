#include <memory>
#include <utility>

#include "fuzz/engine/MemoryFiles.h"
#include "fuzz/engine/Target.h"
#include "support/FakeDispatcher.h"
#include "support/fakes.h"
#include "uninstall/AppUsage.h"

namespace velto::fuzz {
namespace {

constexpr double someTime = 1'700'000'000;

/// Whatever the file held, a use that is recorded is remembered, with all that could be read.
void judge(std::string_view input) {
    Platform platform;
    auto files = std::make_unique<MemoryFiles>();
    platform.layout = HomeLayout::macOS("/Users/ana");
    files->put(platform.layout.dataFolder + "/app-usage.json", input);
    platform.files = std::move(files);
    platform.defaults = std::make_unique<FakeUserDefaults>();
    platform.dispatcher = std::make_unique<FakeDispatcher>();
    AppUsage usage(platform);
    auto expected = usage.launches();
    if (expected["com.example.nuevo"] >= someTime) return;  // then the file's word counts
    expected["com.example.nuevo"] = someTime;
    usage.record("com.example.nuevo", someTime);
    usage.save();
    require(usage.launches() == expected, "the use is known");
    require(AppUsage(platform).launches() == expected, "what was saved reads as the same");
}

const Registration registered("usage", judge);

}  // namespace
}  // namespace velto::fuzz
