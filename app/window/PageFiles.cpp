#include "app/window/PageFiles.h"

#include <algorithm>
#include <array>
#include <utility>

#include "app/window/navigation.h"
#include "platform/values/text.h"

namespace velto::window {
namespace {

constexpr ReadLimit largestFile = anyFile(16 << 20);  // the whole page has half a million bytes

struct FileType {
    std::string_view extension;
    std::string_view type;
};

constexpr std::array<FileType, 6> types{{
    {"html", "text/html; charset=utf-8"},
    {"js", "text/javascript; charset=utf-8"},
    {"css", "text/css; charset=utf-8"},
    {"svg", "image/svg+xml"},
    {"png", "image/png"},
    {"woff2", "font/woff2"},
}};

// The page's own files, and no address of the network in any place that could name one. The page
// carries the same policy in its head, which cannot say frame-ancestors.
constexpr std::array<HeaderField, 4> fields{{
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
     "font-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cache-Control", "no-store"},
}};

bool isLetterOrDigit(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9');
}

/// Names alone: a text with a slash, a percent sign or a query is none, and no name is hidden.
bool isPlainName(std::string_view name) {
    return !name.empty() && isLetterOrDigit(name.front()) &&
           std::all_of(name.begin(), name.end(), [](char letter) {
               return isLetterOrDigit(letter) || letter == '.' || letter == '-' || letter == '_';
           });
}

std::string_view typeOf(std::string_view name) {
    const std::string extension = lowerCaseExtension(name);
    const auto known = std::find_if(types.begin(), types.end(), [&](const FileType& each) {
        return each.extension == extension;
    });
    return known == types.end() ? std::string_view() : known->type;
}

}  // namespace

PageFiles::PageFiles(const FileManager& files, std::string folder)
    : files_(files), folder_(std::move(folder)) {}

std::optional<PageFile> PageFiles::answer(std::string_view method, std::string_view address) const {
    if (method != "GET" || !address.starts_with(pageOrigin)) return std::nullopt;
    const std::string_view withoutFragment = address.substr(0, address.find('#'));
    const std::string_view name = withoutFragment.substr(pageOrigin.size());
    if (!isPlainName(name)) return std::nullopt;
    const std::string_view type = typeOf(name);
    if (type.empty()) return std::nullopt;
    const std::string path = folder_ + "/" + std::string(name);
    const auto attributes = files_.attributes(path);
    if (!attributes || attributes->kind != FileKind::regular) return std::nullopt;
    try {
        return PageFile{files_.read(path, largestFile), type};
    } catch (const FileError&) {
        return std::nullopt;
    }
}

std::span<const HeaderField> PageFiles::headers() { return fields; }

}  // namespace velto::window
