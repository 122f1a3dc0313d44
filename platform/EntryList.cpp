#include <cstddef>
#include <cstring>

#include "platform/DirectoryReader.h"

namespace velto {

void EntryList::clear() {
    entries_.clear();
    chunk_ = 0;
    used_ = 0;
}

DirectoryEntry& EntryList::add(std::string_view name) {
    // A file name has at most 255 bytes (1,023 in decomposed UTF-8 on a Mac), so it fits a chunk;
    // a longer one, from a hostile file system, is cut.
    name = name.substr(0, chunkSize);
    char* const stored = room(name.size()).data();
    std::memcpy(stored, name.data(), name.size());
    keep(name.size());
    return addKept({stored, name.size()});
}

std::span<char> EntryList::room(std::size_t bytes) {
    constexpr std::size_t alignment = alignof(std::max_align_t);
    used_ = (used_ + alignment - 1) / alignment * alignment;
    if (chunks_.empty() || used_ + bytes > chunkSize) {
        if (!chunks_.empty()) ++chunk_;
        used_ = 0;
        if (chunk_ == chunks_.size())
            chunks_.push_back(std::make_unique_for_overwrite<char[]>(chunkSize));
    }
    return {chunks_[chunk_].get() + used_, chunkSize - used_};
}

}  // namespace velto
