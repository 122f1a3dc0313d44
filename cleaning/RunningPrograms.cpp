#include "cleaning/RunningPrograms.h"

#include <algorithm>
#include <utility>

#include "platform/values/text.h"

namespace velto {
namespace {

/// "python3.11" is a python.
std::string_view withoutVersion(std::string_view program) {
    const std::size_t last = program.find_last_not_of("0123456789.-");
    return last == std::string_view::npos ? program : program.substr(0, last + 1);
}

/// True when one is the other, or its beginning up to a full stop: a helper's identifier and its
/// application's, an updater's folder and its application.
bool isOfOneApplication(std::string_view left, std::string_view right) {
    if (left.size() > right.size()) std::swap(left, right);
    return right.starts_with(left) && (right.size() == left.size() || right[left.size()] == '.');
}

}  // namespace

RunningPrograms::RunningPrograms(RunningApplications& running) {
    for (const RunningApplication& application : running.list())
        note(application);
}

void RunningPrograms::note(const RunningApplication& application) {
    const auto isCalled = [&](std::string_view name) {
        if (!name.empty()) words_.insert(lowerCasedAscii(name));
    };
    const std::string_view program = lastPathComponent(application.executable);
    isCalled(program);
    isCalled(withoutVersion(program));
    std::string_view bundle = lastPathComponent(application.bundlePath);
    if (bundle.ends_with(".app")) bundle.remove_suffix(std::string_view(".app").size());
    isCalled(bundle);
    isCalled(application.flatpak);
    isCalled(application.snap);
    if (!application.executable.empty()) executables_.push_back(application.executable);
    if (application.bundleIdentifier.empty()) return;
    identifiers_.push_back(lowerCasedAscii(application.bundleIdentifier));
    // "com.google.Chrome": its maker and its name, but not what everybody's begins with.
    std::string_view rest = application.bundleIdentifier;
    const std::size_t first = rest.find('.');
    if (first == std::string_view::npos) return;
    rest.remove_prefix(first + 1);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find('.'), rest.size());
        isCalled(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

bool RunningPrograms::has(std::string_view name) const {
    return words_.contains(lowerCasedAscii(name));
}

bool RunningPrograms::isOfABundle(std::string_view lowerName) const {
    return std::ranges::any_of(identifiers_, [&](const std::string& identifier) {
        return isOfOneApplication(identifier, lowerName);
    });
}

bool RunningPrograms::runsInside(const std::string& folder) const {
    return std::ranges::any_of(executables_, [&](const std::string& executable) {
        return executable.starts_with(folder + "/");
    });
}

}  // namespace velto
