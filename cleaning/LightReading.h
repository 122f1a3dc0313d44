#pragma once

#include <cstdint>
#include <deque>

#include "platform/FileContent.h"

namespace velto {

/// Reading of a part of a file, in order, that leaves the system's cache as it was: what is not in
/// there is asked for some time before it is needed, and given back once it was used. What others
/// have brought into the cache stays. At most two windows of the file are in there because of it.
class LightReading {
public:
    static constexpr std::int64_t window = 4 * 1024 * 1024;  // bytes

    /// `content` outlives the object.
    LightReading(FileContent& content, ByteRange part)
        : content_(content), end_(part.end()), asked_(part.offset) {}
    LightReading(const LightReading&) = delete;
    LightReading& operator=(const LightReading&) = delete;

    /// Gives the rest back, used or not.
    ~LightReading() { giveBack(end_); }

    /// Before reading at an offset of the part: everything before it has been used.
    void goTo(std::int64_t offset);

private:
    void giveBack(std::int64_t used);

    FileContent& content_;
    const std::int64_t end_;
    std::int64_t asked_;          // up to here the cache has been asked
    std::deque<ByteRange> ours_;  // was not in the cache, in order
};

}  // namespace velto
