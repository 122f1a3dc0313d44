#include "uninstall/bundle_information.h"

#include <cerrno>
#include <cstddef>
#include <memory>
#include <span>

#include "platform/PropertyList.h"
#include "platform/text.h"

namespace velto {
namespace {

constexpr std::int64_t mostBytes = 4 * 1024 * 1024;

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

std::optional<std::string> bytesOf(FileContent& content) {
    const std::int64_t size = content.size();
    if (size < 0 || size > mostBytes) return std::nullopt;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const auto rest = std::as_writable_bytes(std::span(bytes)).subspan(filled);
        const std::ptrdiff_t count = content.read(static_cast<std::int64_t>(filled), rest);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;  // it has become shorter
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
}

}  // namespace

std::optional<BundleInformation> readBundleInformation(const FileManager& files,
                                                       FileContentReader& contents,
                                                       const std::string& path) {
    const auto content = open(files, contents, path + "/Contents/Info.plist");
    if (!content) return std::nullopt;
    const auto bytes = bytesOf(*content);
    return bytes ? bundleInformationFrom(*bytes) : std::nullopt;
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
