#include "platform/values/text.h"

#include <algorithm>
#include <string>

#include "fuzz/engine/Target.h"
#include "platform/HomeLayout.h"
#include "uninstall/removal_rules.h"

namespace velto::fuzz {
namespace {

void provePath(std::string_view input) {
    const std::string path = standardizedPath(input);
    require(path.empty() == !input.starts_with('/'), "an absolute path has a standard form");
    if (path.empty()) return;
    require(standardizedPath(path) == path, "it is its own standard form");
    const std::string closed = path + "/";
    for (std::string_view part : {"//", "/./", "/../"})
        require(path == "/" || closed.find(part) == std::string::npos, "without detours");
    if (path == "/") return;
    const std::string folder = parentFolder(path);
    const std::string name(lastPathComponent(path));
    require((folder == "/" ? "" : folder) + "/" + name == path, "folder and name make it up");
    require(isAtOrBelow(path, path), "it is at itself");
}

void proveTexts(std::string_view input) {
    const std::string valid = validUtf8(input);
    require(isValidUtf8(valid), "bad bytes are replaced");
    require(!isValidUtf8(input) || valid == input, "good ones stay");
    const std::string line = singleLine(input);
    require(isValidUtf8(line), "a line is UTF-8");
    require(std::ranges::none_of(line,
                                 [](char letter) {
                                     const auto code = static_cast<unsigned char>(letter);
                                     return code < 0x20 || code == 0x7F || letter == '\\';
                                 }),
            "a line is one line, without backslashes");
    require(singleLine(line) == line, "and stays as it is");
}

/// The rules judge the path that is meant, however it is spelt, and never give away a home.
void proveRemoval(std::string_view input, const HomeLayout& layout) {
    const std::string path(input);
    const bool isSafe = isSafeToRemove(path, "", layout);
    const std::string standard = standardizedPath(path);
    require(isSafe == isSafeToRemove(standard, "", layout), "spelling changes nothing");
    if (!isSafe) return;
    require(!isAtOrBelow(layout.home, standard), "neither the home nor what holds it");
    require(std::ranges::find(layout.neverRemoved, standard) == layout.neverRemoved.end(),
            "nothing that belongs to all");
    for (const std::string& folder : layout.neverRemovedBelow)
        require(!isAtOrBelow(standard, folder), "nothing out of bounds");
}

void judge(std::string_view input) {
    static const HomeLayout mac = HomeLayout::macOS("/Users/ana");
    static const HomeLayout desktop = HomeLayout::freedesktop(
        "/home/ana", [](const auto&) { return std::nullopt; }, "");
    provePath(input);
    proveTexts(input);
    for (const HomeLayout* layout : {&mac, &desktop}) {
        proveRemoval(input, *layout);
        proveRemoval(layout->home + "/" + std::string(input), *layout);
    }
}

const Registration registered("text", judge);

}  // namespace
}  // namespace velto::fuzz
