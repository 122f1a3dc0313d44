#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velto::fuzz {

struct Section {
    std::string name;
    std::string content;
};

/// An input that stands for several files. A line "=== name" begins each; its content goes up to
/// the line break before the next one. What comes before the first line is the content of "".
std::vector<Section> sectionsIn(std::string_view input);

/// The content of the first section of that name; empty without one.
std::string sectionOf(const std::vector<Section>& sections, std::string_view name);

/// True for a relative path of ordinary components that can be made below a folder of a test.
bool canBeMade(std::string_view path);

/// The text with every "@HOME" replaced: an input does not know where the made home will lie.
std::string withHome(std::string text, std::string_view home);

}  // namespace velto::fuzz
