#include "fuzz/engine/linux/ConfinedHome.h"

#include <unistd.h>

#include <filesystem>

#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

/// Never the temporary folder where there is another: on some systems nothing in that is removed.
std::string fastVolume() {
    constexpr const char* memory = "/dev/shm";
    return ::access(memory, W_OK) == 0 ? memory : std::filesystem::current_path().string();
}

}  // namespace

ConfinedHome::ConfinedHome() : home(fastVolume()) {}

void ConfinedHome::keep(const std::string& relative, const std::string& content) {
    home.text(relative, content);
    kept_[relative] = content;
}

void ConfinedHome::prove() const {
    for (const std::string& escape : calls.escapes())
        require(false, "a change outside the home was attempted: " + escape);
    for (const auto& [relative, content] : kept_) {
        require(home.exists(relative), "a file of the user's is gone: " + relative);
        require(home.read(relative) == content, "a file of the user's was changed: " + relative);
    }
}

}  // namespace velto::fuzz
