#include "attack/Racer.h"

#include <fcntl.h>

#include <cstdio>
#include <filesystem>
#include <utility>

namespace velto {

Racer::Racer(std::vector<std::string> places) : places_(std::move(places)) {
    thread_ = std::thread([this] {
        while (!mayEnd_) {
            for (const std::string& place : places_) {
                // Out and back: at the end of each turn the folder is in its place, if it can be.
                if (exchange(place, place + " link")) ++swaps_;
                std::this_thread::yield();
                exchange(place, place + " link");
            }
        }
    });
}

Racer::~Racer() {
    mayEnd_ = true;
    thread_.join();
    for (const std::string& place : places_) {
        std::error_code ignored;
        if (std::filesystem::is_symlink(place, ignored)) exchange(place, place + " link");
    }
}

bool Racer::isPossible(const std::string& folder) {
    const std::string one = folder + "/one";
    const std::string other = folder + "/other";
    std::filesystem::create_directories(one);
    std::filesystem::create_directories(other);
    const bool isPossible = exchange(one, other);
    std::filesystem::remove(one);
    std::filesystem::remove(other);
    return isPossible;
}

bool Racer::exchange(const std::string& one, const std::string& other) {
    return ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

}  // namespace velto
