#include "platform/Log.h"

#include <limits>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr std::size_t longestLine = 1000;  // bytes; the log of a Mac cuts about there

}  // namespace

std::string Log::shown(std::string_view text) const {
    return logText(text, isDetailed_ ? std::numeric_limits<std::size_t>::max() : longestLine);
}

}  // namespace velto
