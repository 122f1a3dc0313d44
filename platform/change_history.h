#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/FolderChanges.h"

namespace velto {

/// What a Mac says of an event besides its path (FSEvents.h).
namespace change_flags {
inline constexpr std::uint32_t mustScanSubfolders = 0x01;
inline constexpr std::uint32_t userDropped = 0x02;
inline constexpr std::uint32_t kernelDropped = 0x04;
inline constexpr std::uint32_t identifiersWrapped = 0x08;
inline constexpr std::uint32_t historyDone = 0x10;
inline constexpr std::uint32_t rootChanged = 0x20;
inline constexpr std::uint32_t mount = 0x40;
inline constexpr std::uint32_t unmount = 0x80;
}  // namespace change_flags

/// Makes one answer of the events of a past range, as they come. One thread.
class ChangeHistory {
public:
    /// More than so many are no answer: a walk of everything is as quick.
    static constexpr std::size_t mostChanges = 50'000;

    /// `path` is a folder's, with or without a slash at its end.
    void take(std::string_view path, std::uint32_t flags);

    /// True when nothing that is still to come matters: all was told, or cannot be any more.
    bool isOver() const { return isComplete_ || isDoubtful_; }

    /// Each folder once, by path; nothing unless the whole range was told without a doubt.
    std::optional<std::vector<FolderChange>> takeResult();

private:
    std::vector<FolderChange> changes_;
    bool isComplete_ = false;
    bool isDoubtful_ = false;
};

}  // namespace velto
