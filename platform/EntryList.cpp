#include <algorithm>
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
    if (chunks_.empty()) chunks_.push_back(std::make_unique_for_overwrite<char[]>(chunkSize));
    if (used_ + name.size() > chunkSize) {
        ++chunk_;
        used_ = 0;
        if (chunk_ == chunks_.size())
            chunks_.push_back(std::make_unique_for_overwrite<char[]>(chunkSize));
    }
    char* stored = chunks_[chunk_].get() + used_;
    std::memcpy(stored, name.data(), name.size());
    used_ += name.size();
    DirectoryEntry& entry = entries_.emplace_back();
    entry.name = std::string_view(stored, name.size());
    return entry;
}

}  // namespace velto
