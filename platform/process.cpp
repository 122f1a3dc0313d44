#include <cstdio>
#include <cstdlib>

#include "platform/ApplicationShell.h"
#include "platform/Platform.h"

namespace velto {
namespace {

Platform* currentPlatform = nullptr;

}  // namespace

void fatal(std::string_view message) {
    std::fprintf(stderr, "velto: %.*s\n", static_cast<int>(message.size()), message.data());
    std::fflush(stderr);
    std::_Exit(EXIT_FAILURE);  // no destructors: nothing here can be trusted to unwind
}

Platform& processPlatform() {
    if (currentPlatform == nullptr) fatal("a shared service was used before the platform was set");
    return *currentPlatform;
}

void setProcessPlatform(Platform& platform) { currentPlatform = &platform; }

std::string appearanceName(Appearance appearance) {
    return appearance == Appearance::light ? "NSAppearanceNameAqua" : "NSAppearanceNameDarkAqua";
}

}  // namespace velto
