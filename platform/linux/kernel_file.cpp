#include "platform/linux/kernel_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/posix/Descriptor.h"
#include "platform/posix/foreign_file.h"
#include "platform/posix/names_in_folder.h"
#include "platform/posix/uninterrupted.h"

namespace velto {
namespace {

// A process decides itself how long some of its files are (its environment, for one).
constexpr std::size_t mostKernelBytes = 1024 * 1024;

}  // namespace

std::optional<std::string> kernelText(const std::string& path) {
    const auto file = openForeignFile(path);
    if (!file) return std::nullopt;
    std::string text;
    std::array<char, 4096> part;
    while (text.size() < mostKernelBytes) {
        const ssize_t count =
            uninterrupted([&] { return ::read(file->number(), part.data(), part.size()); });
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    text.resize(std::min(text.size(), mostKernelBytes));
    return text;
}

std::optional<std::string> kernelLine(const std::string& path) {
    auto text = kernelText(path);
    if (text) text->resize(std::min(text->size(), text->find('\n')));
    return text;
}

std::optional<std::int64_t> kernelNumber(const std::string& path) {
    const auto line = kernelLine(path);
    if (!line) return std::nullopt;
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(line->data(), line->data() + line->size(), number);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

std::vector<std::string> kernelNames(const std::string& folder) {
    Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.isOpen()) return {};
    auto names = namesInFolder(std::move(descriptor)).value_or(std::vector<std::string>());
    std::sort(names.begin(), names.end());
    return names;
}

std::string_view nextWord(std::string_view& text) {
    constexpr std::string_view blanks = " \t\n";
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(blanks)));
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(word.size());
    return word;
}

std::string_view nextLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    return line;
}

std::uint64_t unsignedNumber(std::string_view word) {
    std::uint64_t number = 0;
    std::from_chars(word.data(), word.data() + word.size(), number);  // an error leaves 0
    return number;
}

}  // namespace velto
