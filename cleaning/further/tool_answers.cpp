#include "cleaning/further/tool_answers.h"

#include <algorithm>

#include <fmt/format.h>

namespace velto {

std::optional<std::string> toolAnswer(const Platform& platform, std::string_view tool,
                                      const std::vector<std::string>& arguments,
                                      const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        const std::string path = fmt::format("{}/{}", folder, tool);
        if (!platform.files->exists(path)) continue;
        ToolResult result = platform.tools->read(path, arguments);
        if (!result.started || result.exitStatus != 0) return std::nullopt;
        return std::move(result.standardOutput);
    }
    return std::nullopt;
}

std::string_view nextPart(std::string_view& rest, char separator) {
    const std::string_view part = rest.substr(0, rest.find(separator));
    rest.remove_prefix(std::min(rest.size(), part.size() + 1));
    return part;
}

std::string_view trimmedAnswer(std::string_view text) {
    const auto first = text.find_first_not_of(" \r\t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \r\t") - first + 1);
}

}  // namespace velto
