#include "platform/values/scratch_name.h"

#include <algorithm>

namespace velto {
namespace {

constexpr std::string_view prefix = ".velto-";
constexpr std::string_view itemPrefix = "it";
constexpr std::size_t longestItem = 8;  // characters after that
// H is an upper-case hexadecimal digit.
constexpr std::string_view uuidPattern = "HHHHHHHH-HHHH-HHHH-HHHH-HHHHHHHHHHHH";

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

bool isUUID(std::string_view text) {
    return std::ranges::equal(text, uuidPattern, [](char letter, char wanted) {
        return wanted == '-' ? letter == '-' : isDigit(letter) || (letter >= 'A' && letter <= 'F');
    });
}

bool isItem(std::string_view text) {
    if (!text.starts_with(itemPrefix)) return false;
    text.remove_prefix(itemPrefix.size());
    return !text.empty() && text.size() <= longestItem &&
           std::ranges::all_of(text, [](char letter) {
               return isDigit(letter) || (letter >= 'A' && letter <= 'Z') ||
                      (letter >= 'a' && letter <= 'z');
           });
}

}  // namespace

std::string scratchName(std::string_view moveID) { return std::string(prefix).append(moveID); }

bool isScratchName(std::string_view name) {
    if (!name.starts_with(prefix)) return false;
    name.remove_prefix(prefix.size());
    return isUUID(name) || isItem(name);
}

}  // namespace velto
