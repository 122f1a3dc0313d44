#include "uninstall/bundle_information.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <span>

#include "platform/values/PropertyList.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// A Mac's own bundles; those made for a telephone, inside the bundle that wraps them; shallow ones.
constexpr std::array<std::string_view, 3> places{"/Contents/Info.plist",
                                                 "/WrappedBundle/Info.plist", "/Info.plist"};

/// A file that may be a link, as some bundles have it.
std::unique_ptr<FileContent> open(const FileManager& files, FileContentReader& contents,
                                  const std::string& path) {
    auto content = contents.open(path);
    if (content || errno != ELOOP) return content;
    try {
        return contents.open(files.resolved(path));
    } catch (const FileError&) {
        return nullptr;  // the link leads nowhere
    }
}

/// How much of the buffer could be filled from the start of the file on; nothing on failure.
std::optional<std::size_t> fill(FileContent& content, std::span<char> buffer) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const auto rest = std::as_writable_bytes(buffer).subspan(filled);
        const std::ptrdiff_t count = content.read(static_cast<std::int64_t>(filled), rest);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    return filled;
}

}  // namespace

std::optional<BundleInformation> readBundleInformation(const FileManager& files,
                                                       FileContentReader& contents,
                                                       const std::string& path) {
    std::unique_ptr<FileContent> content;
    for (std::string_view place : places) {
        content = open(files, contents, path + std::string(place));
        if (content) break;
    }
    if (!content) return std::nullopt;
    // Nearly all fit, and can be read at once: that such a text is whole shows in its end.
    std::array<char, 32 * 1024> usual;
    const std::ptrdiff_t first = content->read(0, std::as_writable_bytes(std::span(usual)));
    if (first > 0) {
        const std::string_view bytes(usual.data(), static_cast<std::size_t>(first));
        if (auto quick = quickBundleInformation(bytes)) return quick;
    }
    const std::int64_t size = content->size();
    constexpr auto mostBytes = static_cast<std::int64_t>(longestPropertyList);
    if (size < 0 || size > mostBytes) return std::nullopt;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    const auto whole = fill(*content, bytes);
    return whole ? bundleInformationFrom(std::string_view(bytes).substr(0, *whole)) : std::nullopt;
}

std::optional<BundleInformation> bundleInformationFrom(std::string_view bytes) {
    if (auto quick = quickBundleInformation(bytes)) return quick;
    const auto list = readPropertyList(bytes);
    if (!list || !list->isDictionary()) return std::nullopt;
    BundleInformation information;
    for (const auto& [key, member] : bundleInformationKeys) {
        if (const std::string* text = list->text(key)) information.*member = validUtf8(*text);
    }
    return information;
}

}  // namespace velto
