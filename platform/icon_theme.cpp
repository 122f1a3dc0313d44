#include "platform/icon_theme.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <string_view>
#include <unordered_set>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr ReadLimit indexLimit = anyFile(1 << 20);
constexpr std::size_t mostThemes = 20;  // in a chain
constexpr std::size_t mostSizes = 600;  // of a theme
constexpr std::array<std::string_view, 2> extensions{".png", ".svg"};

using Section = std::map<std::string_view, std::string_view>;

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\r");
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(" \t\r") - start + 1);
}

/// Takes what comes before the next `separator`, and this, from `text`.
std::string_view takePart(std::string_view& text, char separator) {
    const std::string_view part = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(text.size(), part.size() + 1));
    return withoutBlanks(part);
}

/// Its sections by name; points into the text.
std::map<std::string_view, Section> sectionsOf(std::string_view text) {
    std::map<std::string_view, Section> sections;
    Section* current = nullptr;
    while (!text.empty()) {
        const std::string_view line = takePart(text, '\n');
        const std::size_t equals = line.find('=');
        if (line.starts_with('[') && line.ends_with(']')) {
            current = &sections[line.substr(1, line.size() - 2)];
        } else if (current != nullptr && equals != std::string_view::npos &&
                   !line.starts_with('#')) {
            current->emplace(withoutBlanks(line.substr(0, equals)),
                             withoutBlanks(line.substr(equals + 1)));
        }
    }
    return sections;
}

std::string_view valueOf(const Section& section, std::string_view key) {
    const auto found = section.find(key);
    return found == section.end() ? std::string_view() : found->second;
}

int numberOf(const Section& section, std::string_view key, int otherwise) {
    const std::string_view text = valueOf(section, key);
    int number = otherwise;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && number > 0 && number < 10'000 ? number : otherwise;
}

std::vector<std::string> listOf(std::string_view text) {
    std::vector<std::string> items;
    while (!text.empty()) {
        const std::string_view item = takePart(text, ',');
        if (!item.empty()) items.emplace_back(item);
    }
    return items;
}

/// A folder of pictures of one size.
struct SizeFolder {
    std::string path;  // below the theme's own
    int distance = 0;  // of its size from the wanted one, in pixels
};

/// Too small is worse than too large.
int distanceOf(const Section& section, int pixels) {
    const int scale = numberOf(section, "Scale", 1);
    const int size = numberOf(section, "Size", 1);
    const std::string_view type = valueOf(section, "Type");
    const bool isScalable = type == "Scalable";
    const int least = isScalable ? numberOf(section, "MinSize", size) * scale : size * scale;
    const int most = isScalable ? numberOf(section, "MaxSize", size) * scale : size * scale;
    if (pixels < least) return least - pixels;
    return pixels > most ? 10'000 + pixels - most : 0;
}

struct Theme {
    std::vector<SizeFolder> folders;  // the nearest first
    std::vector<std::string> parents;
};

bool staysInside(const std::string& path) {
    const std::string absolute = std::string("/").append(path);
    return !path.starts_with('/') && standardizedPath(absolute) == absolute;
}

Theme themeIn(const FileManager& files, const std::vector<std::string>& places,
              const std::string& name, int pixels) {
    Theme theme;
    std::string text;
    for (const std::string& place : places) {
        try {
            text = files.read(place + "/" + name + "/index.theme", indexLimit);
            break;
        } catch (const FileError&) {
            continue;  // most of the places have few themes
        }
    }
    const auto sections = sectionsOf(text);
    const auto head = sections.find("Icon Theme");
    if (head == sections.end()) return theme;
    for (const char* key : {"Directories", "ScaledDirectories"}) {
        for (std::string& path : listOf(valueOf(head->second, key))) {
            const auto section = sections.find(path);
            if (section == sections.end() || !staysInside(path)) continue;
            if (theme.folders.size() == mostSizes) break;
            theme.folders.push_back({std::move(path), distanceOf(section->second, pixels)});
        }
    }
    std::ranges::stable_sort(theme.folders, {}, &SizeFolder::distance);
    theme.parents = listOf(valueOf(head->second, "Inherits"));
    return theme;
}

}  // namespace

std::string themedIconFile(const FileManager& files, const std::vector<std::string>& folders,
                           const std::string& theme, const std::string& icon, int pixels) {
    if (icon.empty() || icon.find('/') != std::string::npos) return {};
    std::vector<std::string> themes{theme};
    std::unordered_set<std::string> known{theme};
    for (std::size_t index = 0; index < themes.size() && index < mostThemes; ++index) {
        const std::string name = themes[index];
        if (!isComponent(name)) continue;
        const Theme found = themeIn(files, folders, name, pixels);
        for (const SizeFolder& size : found.folders) {
            for (const std::string& place : folders) {
                for (std::string_view extension : extensions) {
                    std::string path = place;
                    path.append("/").append(name).append("/").append(size.path);
                    path.append("/").append(icon).append(extension);
                    if (files.exists(path)) return path;
                }
            }
        }
        for (const std::string& parent : found.parents) {
            if (known.insert(parent).second) themes.push_back(parent);
        }
        if (index + 1 == themes.size() && known.insert("hicolor").second) {
            themes.emplace_back("hicolor");
        }
    }
    return {};
}

}  // namespace velto
