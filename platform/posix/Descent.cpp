#include "platform/posix/Descent.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <utility>

#include "platform/posix/mounts.h"
#include "platform/posix/same_state.h"

namespace velto {
namespace {

constexpr std::size_t openLevels = 32;
constexpr int readFlags = O_RDONLY | folderFlags;

}  // namespace

Descent::Descent(FileCalls& calls, const Entry& root, const char* attempt)
    : calls_(calls), root_(root), attempt_(attempt) {}

int Descent::folder() const {
    return levels_.empty() ? root_.folder() : levels_.back().folder.number();
}

struct stat Descent::examine(const std::string& name) const {
    struct stat status;
    if (calls_.stat(folder(), name.c_str(), status) != 0) fail(name, errno);
    return status;
}

std::uint64_t Descent::mount(const std::string& name) const {
    return mountOf(calls_, folder(), name, attempt_, path(name));
}

void Descent::enter(const std::string& name, const struct stat& examined) {
    Descriptor opened(calls_.open(folder(), name.c_str(), readFlags, 0));
    struct stat status;
    if (!opened.isOpen() || calls_.status(opened.number(), status) != 0) fail(name, errno);
    if (!isSameFile(status, examined)) fail(name, EBUSY);
    levels_.push_back({.name = name, .folder = std::move(opened), .status = examined, .names = {}});
    if (depth() > openLevels) levels_[depth() - openLevels - 1].folder = Descriptor();
}

void Descent::list() {
    Level& level = levels_.back();
    Descriptor readable(calls_.open(level.folder.number(), ".", readFlags, 0));
    if (!readable.isOpen()) fail("", errno);
    if (calls_.names(std::move(readable), level.names) != 0) fail("", errno);
    std::ranges::sort(level.names, std::greater());
}

std::optional<std::string> Descent::next() {
    std::vector<std::string>& names = levels_.back().names;
    if (names.empty()) return std::nullopt;
    std::string name = std::move(names.back());
    names.pop_back();
    return name;
}

Descent::Level Descent::leave() {
    if (depth() > 1 && !levels_[depth() - 2].folder.isOpen()) {
        Level& above = levels_[depth() - 2];
        Descriptor opened(calls_.open(folder(), "..", readFlags, 0));
        struct stat status;
        if (!opened.isOpen() || calls_.status(opened.number(), status) != 0) fail("", errno);
        // Another one: the folder was moved away meanwhile.
        if (!isSameFile(status, above.status)) fail("", EBUSY);
        above.folder = std::move(opened);
    }
    Level left = std::move(levels_.back());
    levels_.pop_back();
    return left;
}

std::string Descent::path(const std::string& name) const {
    std::string whole = levels_.empty() ? root_.parent.path : root_.path();
    for (std::size_t index = 1; index < levels_.size(); ++index)
        whole += "/" + levels_[index].name;
    return name.empty() ? whole : whole + "/" + name;
}

void Descent::fail(const std::string& name, int reason) const {
    throw FileError(attempt_, path(name), reason);
}

}  // namespace velto
