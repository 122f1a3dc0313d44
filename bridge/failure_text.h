#pragma once

#include <exception>
#include <string>

namespace velto {

/// One sentence for the user in both languages; the one who shows it chooses.
struct FailureText {
    std::string spanish;
    std::string english;
};

/// A path as people read it: "~/..." below `home`, valid UTF-8.
std::string shownPath(const std::string& path, const std::string& home);

/// What went wrong, for a toast. What the user can set right is said in plain words and names the
/// file and what stands in the way, paths below `home` as "~/..."; all else says what the exception
/// says. The trash's own refusals exist in Spanish only.
FailureText failureText(const std::exception& error, const std::string& home);

}  // namespace velto
