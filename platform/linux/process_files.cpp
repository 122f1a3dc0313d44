#include "platform/linux/process_files.h"

#include "platform/linux/kernel_file.h"

namespace velto {
namespace {

constexpr std::uint64_t bytesPerKibibyte = 1024;

void skipWords(std::string_view& text, int count) {
    for (int word = 0; word < count; ++word)
        nextWord(text);
}

}  // namespace

std::optional<ProcessStatus> processStatusIn(std::string_view text) {
    // The command is in parentheses and may hold any of them itself.
    const std::size_t open = text.find('(');
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) {
        return std::nullopt;
    }
    ProcessStatus status{.command = text.substr(open + 1, close - open - 1)};
    std::string_view rest = text.substr(close + 1);
    const auto next = [&rest] { return unsignedNumber(nextWord(rest)); };
    const std::string_view state = nextWord(rest);
    if (state.empty()) return std::nullopt;
    status.state = state.front();
    status.parent = static_cast<std::int32_t>(next());
    skipWords(rest, 5);
    status.faults = next();  // without reading
    skipWords(rest, 1);
    status.faults += next();  // with reading
    skipWords(rest, 1);
    status.ticks = next();
    status.ticks += next();
    skipWords(rest, 6);
    status.start = next();
    skipWords(rest, 1);
    const std::string_view resident = nextWord(rest);
    if (resident.empty()) return std::nullopt;
    status.resident = unsignedNumber(resident);
    return status;
}

std::uint64_t footprintIn(std::string_view status) {
    std::uint64_t resident = 0, anonymous = 0, swapped = 0;
    bool isSplit = false;  // kernels before 4.5 know the sum only
    while (!status.empty()) {
        std::string_view line = nextLine(status);
        if (!line.starts_with("Vm") && !line.starts_with("Rss")) continue;
        const std::string_view name = nextWord(line);
        const std::uint64_t bytes = unsignedNumber(nextWord(line)) * bytesPerKibibyte;
        if (name == "VmRSS:") resident = bytes;
        if (name == "VmSwap:") swapped = bytes;
        if (name == "RssAnon:") {
            anonymous = bytes;
            isSplit = true;
        }
    }
    return (isSplit ? anonymous : resident) + swapped;
}

std::optional<ProcessTraffic> processTrafficIn(std::string_view io) {
    ProcessTraffic traffic;
    int found = 0;
    while (!io.empty()) {
        std::string_view line = nextLine(io);
        const std::string_view name = nextWord(line);
        if (name != "read_bytes:" && name != "write_bytes:") continue;
        (name == "read_bytes:" ? traffic.read : traffic.written) = unsignedNumber(nextWord(line));
        ++found;
    }
    return found == 2 ? std::optional(traffic) : std::nullopt;
}

}  // namespace velto
