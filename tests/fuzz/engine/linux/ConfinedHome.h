#pragma once

#include <map>
#include <string>

#include "fuzz/engine/linux/ConfinedCalls.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"

namespace velto::fuzz {

/// A made home in memory, with real files, that no input gets out of.
struct ConfinedHome {
    ConfinedHome();

    /// Puts a file into the home that nobody may change.
    void keep(const std::string& relative, const std::string& content);

    /// Proves that nothing outside was touched and that everything kept is where it was.
    void prove() const;

    TempHome home;
    ConfinedCalls calls{home.path()};
    PosixFileManager files{calls};

private:
    std::map<std::string, std::string> kept_;
};

}  // namespace velto::fuzz
