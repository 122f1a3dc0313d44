#include "fuzz/engine/sections.h"

#include <algorithm>

namespace velto::fuzz {
namespace {

constexpr std::string_view mark = "=== ";
constexpr std::string_view homeMark = "@HOME";

constexpr std::size_t longestPath = 240;
constexpr int mostComponents = 8;

}  // namespace

std::vector<Section> sectionsIn(std::string_view input) {
    std::vector<Section> sections{{}};
    bool isFirst = true;  // of its section
    while (!input.empty()) {
        const std::string_view line = input.substr(0, input.find('\n'));
        const bool isLast = line.size() == input.size();
        input.remove_prefix(std::min(input.size(), line.size() + 1));
        if (line.starts_with(mark)) {
            sections.push_back({.name = std::string(line.substr(mark.size())), .content = {}});
            isFirst = true;
            continue;
        }
        std::string& content = sections.back().content;
        if (!isFirst) content += '\n';
        content += line;
        isFirst = false;
        if (isLast) break;
    }
    return sections;
}

std::string sectionOf(const std::vector<Section>& sections, std::string_view name) {
    const auto found = std::ranges::find(sections, name, &Section::name);
    return found == sections.end() ? std::string() : found->content;
}

bool canBeMade(std::string_view path) {
    if (path.size() > longestPath || path.find('\0') != std::string_view::npos) return false;
    if (path.empty() || path.ends_with('/')) return false;
    for (int count = 0; !path.empty(); ++count) {
        const std::string_view component = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), component.size() + 1));
        if (component.empty() || component == "." || component == "..") return false;
        if (count == mostComponents) return false;
    }
    return true;
}

std::string withHome(std::string text, std::string_view home) {
    for (std::size_t at = text.find(homeMark); at != std::string::npos;
         at = text.find(homeMark, at + home.size())) {
        text.replace(at, homeMark.size(), home);
    }
    return text;
}

}  // namespace velto::fuzz
