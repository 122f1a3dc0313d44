#pragma once

#include <exception>
#include <string>

#include "platform/HomeLayout.h"

namespace velto {

/// One sentence for the user in both languages; the one who shows it chooses.
struct FailureText {
    std::string spanish;
    std::string english;
};

/// A path as people read it: "~/..." below `home`, valid UTF-8.
std::string shownPath(const std::string& path, const std::string& home);

/// What went wrong, for a toast: in plain words, with the user's own file where one can be named
/// and never a name that only this program knows, paths below the home as "~/...". What the system
/// said besides belongs into the log. The trash's own refusals exist in Spanish only; the event
/// that goes with them lets the page say more.
FailureText failureText(const std::exception& error, const HomeLayout& layout);

}  // namespace velto
