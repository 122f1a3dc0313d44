#pragma once

#include <memory>
#include <optional>

#include "fuzz/engine/linux/ConfinedHome.h"
#include "support/TestPlatform.h"

namespace velto::fuzz {

/// The confined home with a machine of fakes around it. Made before whatever keeps a part of the
/// platform's layout.
struct ConfinedMachine : ConfinedHome {
    explicit ConfinedMachine(HomeLayout::Kind kind) {
        platform.files = std::make_unique<PosixFileManager>(calls);
        platform.mover = std::make_unique<PosixFileManager>(calls);
        platform.layout = kind == HomeLayout::Kind::macOS
                              ? HomeLayout::macOS(home.path())
                              : HomeLayout::freedesktop(
                                    home.path(), [](const auto&) { return std::nullopt; }, "");
        if (kind == HomeLayout::Kind::macOS) platform.layout.setSystemRoot(home.path("disk"));
    }

    TestPlatform machine;
    Platform& platform = machine.platform;
    const HomeLayout& layout = machine.platform.layout;
};

}  // namespace velto::fuzz
